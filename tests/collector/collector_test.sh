#!/bin/sh
# Records a scenario's bus replies with the simulator, then runs the
# exporter collector on them. Usage: collector_test.sh LYND_SIM SOURCE_DIR WORK_DIR
set -eu
sim=$1 src=$2 work=$3
rm -rf "$work" && mkdir -p "$work"
"$sim" run --out "$work" "$src/scenarios/ps_flap_guard.json" >/dev/null
exec lua5.1 "$src/tests/collector/collector_test.lua" "$src/openwrt/files/lynd.prometheus.lua" "$work/ubus_calls.json"
