#!/bin/bash
# What tshark shows of the messages of all scenarios: the names and values of their JSON, no byte left over.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"
build=$2
capture=$folder/all.pcapng

run "$bin/msan-scenario" --capture "$capture" "$(dirname "${BASH_SOURCE[0]}")"/../scenarios/*.scn
expectMatch "messages of all scenarios" "0 *[0-9][0-9][0-9] messages" "$code $out"
tshark -X "lua_script:$build/share/wireshark/msan.lua" -r "$capture" -T json --no-duplicate-keys 2>/dev/null |
  "$build/tools/compare_dissection" "$capture" || bad=1
exit $bad
