#!/bin/sh
# The fault seeder finds each kind of fault in a small unit and changes nothing
# while it lists them.
set -eu
tool=$1
dir=$(mktemp -d)
trap 'rm -rf "$dir"' EXIT
cat > "$dir/unit.cpp" <<'CPP'
int busy(int* count, int threshold) {
    if (*count >= threshold) {
        return 1;
    }
    *count = 0;
    reset_a();
    reset_b();
    return 0;
}
CPP
cp "$dir/unit.cpp" "$dir/before.cpp"
"$tool" --list "$dir/unit.cpp" > "$dir/out"
for want in "unit.cpp:2: rel: '>=' -> '>'" "unit.cpp:2: neg: condition negated" \
            "unit.cpp:3: del: statement removed: return 1;" "unit.cpp:5: del: statement removed: *count = 0;" \
            "unit.cpp:6: swap: calls swapped with the next line"; do
    grep -qF "$want" "$dir/out" || { echo "missing: $want"; cat "$dir/out"; exit 1; }
done
cmp -s "$dir/unit.cpp" "$dir/before.cpp" || { echo "the unit was changed by a listing"; exit 1; }
echo "mutate: listing ok"
