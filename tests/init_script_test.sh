#!/bin/sh
# The init script's start and reload decisions, under stand-ins for procd,
# jsonfilter, logger and lynd-check that write down how they were called.
# usage: init_script_test.sh PATH/TO/lynd.init
set -u
script=$1
work=$(mktemp -d) || exit 1
trap 'rm -rf "$work"' EXIT
mkdir "$work/bin"
for tool in lynd-check jsonfilter logger; do
	cat >"$work/bin/$tool" <<'STUB'
#!/bin/sh
name=$(basename "$0")
echo "$name $*" >>"$WORK/calls"
case $name in
lynd-check) [ -z "$CHECK_OUT" ] || echo "$CHECK_OUT"; exit "$CHECK_RC" ;;
jsonfilter)
	case "$*" in
	*@.enable*) [ -z "$ENABLE" ] || echo "$ENABLE" ;;
	*@.log_level*) [ -z "$LEVEL" ] || echo "$LEVEL" ;;
	esac ;;
esac
exit 0
STUB
	chmod +x "$work/bin/$tool"
done

failed=0
# case NAME ACTION CHECK_RC CHECK_OUT ENABLE LEVEL EXPECTED_STATUS EXPECTED_CALLS
check_case() {
	name=$1 action=$2 expected_status=$7 expected=$8
	: >"$work/calls"
	status=$(
		WORK=$work CHECK_RC=$3 CHECK_OUT=$4 ENABLE=$5 LEVEL=$6 PATH="$work/bin:$PATH"
		export WORK CHECK_RC CHECK_OUT ENABLE LEVEL PATH
		procd_open_instance() { echo "procd_open_instance" >>"$WORK/calls"; }
		procd_set_param() { echo "procd_set_param $*" >>"$WORK/calls"; }
		procd_append_param() { echo "procd_append_param $*" >>"$WORK/calls"; }
		procd_close_instance() { echo "procd_close_instance" >>"$WORK/calls"; }
		CHECKED=
		start() { start_service; }
		. "$script"
		"$action" >/dev/null 2>&1
		echo $?
	)
	printf '%s' "$expected" >"$work/want"
	if [ "$status" != "$expected_status" ] || ! diff -u "$work/want" "$work/calls" >"$work/diff"; then
		echo "FAIL $name: status $status (want $expected_status)"
		cat "$work/diff"
		failed=1
	else
		echo "ok   $name"
	fi
}

instance='procd_open_instance
procd_set_param command /usr/sbin/lynd -c /etc/lynd.json
procd_set_param respawn
procd_set_param file /etc/lynd.json
procd_set_param stderr 1
procd_close_instance
'

check_case "a clean file starts the daemon" start_service 0 "" true "" 0 "lynd-check -q /etc/lynd.json
jsonfilter -i /etc/lynd.json -e @.enable
jsonfilter -i /etc/lynd.json -e @.log_level
$instance"

check_case "log_level becomes -l" start_service 0 "" true 4 0 "lynd-check -q /etc/lynd.json
jsonfilter -i /etc/lynd.json -e @.enable
jsonfilter -i /etc/lynd.json -e @.log_level
procd_open_instance
procd_set_param command /usr/sbin/lynd -c /etc/lynd.json
procd_append_param command -l 4
procd_set_param respawn
procd_set_param file /etc/lynd.json
procd_set_param stderr 1
procd_close_instance
"

check_case "a log_level that is not a number is left out" start_service 0 "" true high 0 "lynd-check -q /etc/lynd.json
jsonfilter -i /etc/lynd.json -e @.enable
jsonfilter -i /etc/lynd.json -e @.log_level
$instance"

check_case "warnings are logged and the daemon starts" start_service 0 "/etc/lynd.json: 2 warnings" true "" 0 \
"lynd-check -q /etc/lynd.json
logger -t lynd -p daemon.warning /etc/lynd.json: 2 warnings (lynd-check /etc/lynd.json tells more)
jsonfilter -i /etc/lynd.json -e @.enable
jsonfilter -i /etc/lynd.json -e @.log_level
$instance"

check_case "a refused file is one logger line and no instance" start_service 2 \
"/etc/lynd.json: refused: line 1, column 29: unexpected end of data" true "" 1 "lynd-check -q /etc/lynd.json
logger -t lynd -p daemon.err not started: /etc/lynd.json: refused: line 1, column 29: unexpected end of data
"

check_case "a disabled file is one logger line and no instance" start_service 0 "" false "" 0 \
"lynd-check -q /etc/lynd.json
jsonfilter -i /etc/lynd.json -e @.enable
logger -t lynd -p daemon.notice not started: disabled in /etc/lynd.json
"

check_case "a missing enable counts as disabled" start_service 0 "" "" "" 0 "lynd-check -q /etc/lynd.json
jsonfilter -i /etc/lynd.json -e @.enable
logger -t lynd -p daemon.notice not started: disabled in /etc/lynd.json
"

check_case "a refused reload leaves the running daemon alone" reload_service 2 \
"/etc/lynd.json: refused: interfaces.ath12.type: \"5G\" is not one of ethernet, 2.4g, 5g, 5g_2, 6g" true "" 1 \
"lynd-check -q /etc/lynd.json
logger -t lynd -p daemon.err reload refused, lynd keeps running as it was: /etc/lynd.json: refused: interfaces.ath12.type: \"5G\" is not one of ethernet, 2.4g, 5g, 5g_2, 6g
"

check_case "a good reload checks once and declares the instance again" reload_service 0 "" true "" 0 \
"lynd-check -q /etc/lynd.json
jsonfilter -i /etc/lynd.json -e @.enable
jsonfilter -i /etc/lynd.json -e @.log_level
$instance"

exit $failed
