#!/bin/bash
# A manager's request that waits for the node's other end stops neither the agent nor the other doors.
. "$(dirname "${BASH_SOURCE[0]}")/snmp_common.sh"
start
ctl -c "chassis voice delay 2000" >/dev/null

milliseconds() { echo $((${EPOCHREALTIME/./} / 1000)); }
# quick WHAT COMMAND...: it ends within the time (50 ms of the node's, and the tool's own start in a sanitized build)
quick() {
  local began
  began=$(milliseconds)
  "${@:2}" >"$folder/answer"
  expect "$1 is answered meanwhile" yes "$( (($(milliseconds) - began < 500)) && echo yes)"
}

began=$(milliseconds)
manager snmpset "$udp" $table.1.1.3087 x "$(frame 2)" >"$folder/first" &
first=$!
sleep 0.2
quick "the system group" manager snmpget -Ov "$udp" .1.3.6.1.2.1.1.5.0
expect "its value" "6D 73 61 6E" "$(cat "$folder/answer")"
quick "a SET that needs no module" manager snmpset "$tcp" $table.1.4.3087 x 00
quick "a walk" manager snmpbulkget "$tcp" $table
quick "an operator" ctl -c "show cid mode"
expectMatch "who sees what was stored" "*DTMF*" "$(cat "$folder/answer")"

# One that has lost patience asks again: the module is asked once.
snmpset -v2c -c public -t 0.5 -r 9 "$tcp" $table.1.1.3087 x "$(frame 1)" >/dev/null 2>&1 || true
wait $first
expectMatch "the request that waited is answered" "$table.1.1.3087 *" "$(cat "$folder/first")"
expect "behind its time" yes "$( (($(milliseconds) - began >= 2000)) && echo yes)"

# A peer that leaves while its request waits.
"$bin/msan-frame" --agent "$tcp" --timeout 0.3 set 3087 '00*32' u32:1 '00*22' u16:2 '00*32' >/dev/null 2>&1 || true
quick "the agent goes on" manager snmpget -Ov "$udp" .1.3.6.1.2.1.1.5.0
ctl -c "chassis voice delay 0" >/dev/null
patience=10
expectMatch "and the next request is served" "$table.1.1.3087 *" \
  "$(manager snmpset "$udp" $table.1.1.3087 x "$(frame 1)")"

# A node that is told to stop while a request waits.
ctl -c "chassis voice delay 1000" >/dev/null
manager snmpset "$udp" $table.1.1.3087 x "$(frame 2)" >/dev/null &
sleep 0.2
stop
wait
exit $bad
