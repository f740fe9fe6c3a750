#!/bin/sh
# Every command README.md and docs/*.md show is run here, or is a target of
# the Makefile: a document cannot show a command that does not work.
# usage: docs_commands_test.sh SOURCE_DIR LYND_SIM LYND_CHECK
#
# A shown command is a line of a shell block (fenced as sh, console or
# without a language, or indented by four spaces) that starts with lynd-sim,
# lynd-check, build/ or make. A comment after it that says "exit N" is the
# status it must end with; otherwise 0. A synopsis is written "usage: ...".
# The commands run in order in one scratch directory that sees the source
# tree's scenarios/, examples/, openwrt/ and docs/, so a later command may
# read what an earlier one wrote.
set -u
src=$1
absolute() { (cd "$(dirname "$1")" && echo "$PWD/$(basename "$1")"); }
sim=$(absolute "$2")
check=$(absolute "$3")
work=$(mktemp -d) || exit 1
trap 'rm -rf "$work"' EXIT
for d in scenarios examples openwrt docs; do ln -s "$src/$d" "$work/$d"; done

# Commands too long for a test, with the reason; each is a shell pattern.
skipped() {
	case $1 in
	*day_of_churn*) echo "24 virtual hours; scenario.day_of_churn runs it" ;;
	*) return 1 ;;
	esac
}

# FILE:LINE, a tab, the command (comment kept) for every shown command.
extract() {
	awk '
	FNR == 1 { fence = 0; prev_blank_or_code = 1 }
	/^ *```/ {
		if (fence) { fence = 0 } else { fence = 1; lang = $0; sub(/^ *```/, "", lang); shell = (lang == "" || lang == "sh" || lang == "console" || lang == "shell") }
		next
	}
	{
		line = ""
		if (fence && shell) line = $0
		else if (!fence && /^    / && prev_blank_or_code) line = substr($0, 5)
		prev_blank_or_code = (!fence && ($0 ~ /^ *$/ || (/^    / && prev_blank_or_code)))
		if (line == "") next
		sub(/^\$ /, "", line)
		if (line ~ /^(lynd-sim|lynd-check|build\/[^ ]+|make)( |$)/) printf "%s:%d\t%s\n", FILENAME, FNR, line
	}
	' "$@"
}

is_make_target() {
	grep -Eq "^$1:" "$src/Makefile"
}

# The target a make line names: the first word that is no option or variable.
make_target() {
	for w in $1; do
		case $w in make|-*|*=*) ;; *) echo "$w"; return ;; esac
	done
	echo all
}

# What "make run [SCENARIO=...] [TIMELINE=...]" plays, as a lynd-sim line.
run_of_make() {
	scenario=scenarios/demo.json
	timeline=
	for w in $1; do
		case $w in SCENARIO=*) scenario=${w#*=} ;; TIMELINE=*) timeline="--timeline ${w#*=} " ;; esac
	done
	echo "lynd-sim run $timeline$scenario"
}

failed=0
ran=0
tab=$(printf '\t')
extract "$src/README.md" "$src"/docs/*.md >"$work/commands" || exit 1
while IFS="$tab" read -r where line; do
	cmd=$(printf '%s\n' "$line" | sed 's/  *#.*$//')
	want=$(printf '%s\n' "$line" | sed -n 's/.*#.*exits\{0,1\} \([0-9][0-9]*\).*/\1/p')
	case $cmd in
	make|make\ *)
		t=$(make_target "$cmd")
		is_make_target "$t" || { echo "FAIL $where: make $t: no such target in the Makefile"; failed=1; }
		[ "$t" = run ] || continue
		cmd=$(run_of_make "$cmd") ;;
	esac
	if why=$(skipped "$cmd"); then
		echo "skip $where: $cmd ($why)"
		continue
	fi
	case $cmd in
	build/lynd-sim*|lynd-sim*) run="$sim${cmd#*lynd-sim}" ;;
	build/lynd-check*|lynd-check*) run="$check${cmd#*lynd-check}" ;;
	*) echo "FAIL $where: $cmd: only lynd-sim and lynd-check commands can be shown"; failed=1; continue ;;
	esac
	(cd "$work" && timeout 300 sh -c "$run" >"$work/out" 2>&1)
	rc=$?
	ran=$((ran + 1))
	if [ "$rc" -ne "${want:-0}" ]; then
		echo "FAIL $where: $cmd: exit $rc, expected ${want:-0}"
		tail -n 5 "$work/out"
		failed=1
	fi
done <"$work/commands"
# Every bundled scenario is listed where the scenarios are told.
for sc in "$src"/scenarios/*.json; do
	name=$(basename "$sc" .json)
	grep -q "\`$name\`" "$src/docs/simulator.md" || { echo "FAIL: scenario $name is not listed in docs/simulator.md"; failed=1; }
done
echo "$ran commands run"
[ "$ran" -gt 0 ] || { echo "FAIL: no command found"; failed=1; }
exit $failed
