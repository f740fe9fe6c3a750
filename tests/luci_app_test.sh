#!/bin/sh
# The LuCI application's checks, on the application as it stands (must pass)
# and on copies with one fault each (each must fail).
# usage: luci_app_test.sh SOURCE_DIR [NODE]
set -u
src=$1
node=${2:-node}
app=$src/openwrt/luci-app-lynd
table=$src/src/daemon/status_object.cpp
check="$node $src/tools/luci-app-check"
work=$(mktemp -d) || exit 1
trap 'rm -rf "$work"' EXIT
failed=0

for f in $(find "$app" -name '*.js'); do
	"$node" --check "$f" || failed=1
done
$check "$app" "$table" || failed=1
"$node" "$src/tools/luci-app-pot" "$app" >"$work/lynd.pot" &&
	cmp -s "$work/lynd.pot" "$app/po/templates/lynd.pot" ||
	{ echo "po/templates/lynd.pot is stale: run tools/luci-app-pot $app"; failed=1; }

acl=root/usr/share/rpcd/acl.d/luci-app-lynd.json
view=htdocs/luci-static/resources/view/lynd/overview.js
# case NAME FILE SED-EXPRESSION: the copy with FILE edited must fail the check
must_fail() {
	rm -rf "$work/app" && cp -r "$app" "$work/app" && cp "$table" "$work/table.cpp"
	sed -i "$3" "$work/$2" || { echo "$1: cannot edit $2"; failed=1; return; }
	if $check "$work/app" "$work/table.cpp" >"$work/out" 2>&1; then
		echo "$1: the check passed a faulty copy"; failed=1
	fi
}
must_fail "read holds shadow" "app/$acl" 's/"counters" \]/"counters", "shadow" ]/'
must_fail "read holds record" "app/$acl" 's/"counters" \]/"counters", "record" ]/'
must_fail "write holds record" "app/$acl" 's/"shadow" \]/"shadow", "record" ]/'
must_fail "ACL names an unpublished method" "app/$acl" 's/"shadow" \]/"shadow", "reboot" ]/'
must_fail "view calls an unpublished method" "app/$view" "s/lynd.paths()/lynd.paths(), rpc.declare({ object: 'lynd', method: 'restart' })()/"
must_fail "view calls a method not granted" "app/$acl" 's/"decisions", //'
must_fail "daemon stops publishing status" "table.cpp" 's/{"status", /{"state", /'
must_fail "JavaScript does not parse" "app/$view" '$s/$/ {/'
must_fail "JSON does not parse" "app/$acl" '1s/{/{,/'
must_fail "string missing from the template" "app/$view" "s/_('Uptime')/_('Uptime now')/"
exit $failed
