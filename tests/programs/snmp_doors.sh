#!/bin/bash
# A manager's request that waits for the node's other end stops neither the agent nor the other doors.
. "$(dirname "${BASH_SOURCE[0]}")/snmp_common.sh"
start
patience=20
quiet=()

milliseconds() { echo $((${EPOCHREALTIME/./} / 1000)); }
median() { sort -n | sed -n 3p; }
# times COMMAND...: what it takes from its start to its end, the median of five times; what it says is $folder/answer
times() {
  local began
  for _ in 1 2 3 4 5; do
    began=$(milliseconds)
    "$@" >"$folder/answer"
    echo $(($(milliseconds) - began))
  done | median
}
kinds=("the system group" "a SET that needs no module" "a walk" "an operator")
kind() {
  case $1 in
    "the system group") manager snmpget -Ov "$udp" .1.3.6.1.2.1.1.5.0 ;;
    "a SET that needs no module") manager snmpset "$tcp" $table.1.4.3087 x 00 ;;
    "a walk") manager snmpbulkget "$tcp" $table ;;
    "an operator") ctl -c "show cid mode" ;;
  esac
}
for one in "${kinds[@]}"; do quiet[${#quiet[@]}]=$(times kind "$one"); done

# While a request waits, all others are answered within 50 ms of what they take else.
ctl -c "chassis voice delay 5000" >/dev/null
began=$(milliseconds)
manager snmpset "$udp" $table.1.1.3087 x "$(frame 2)" >"$folder/first" &
first=$!
sleep 0.2
for i in "${!kinds[@]}"; do
  took=$(times kind "${kinds[i]}")
  expect "${kinds[i]} is answered meanwhile: ${quiet[i]} ms in quiet times, now $took" yes \
    "$( ((took < quiet[i] + 50)) && echo yes)"
  case $i in
    0) expect "its value" "6D 73 61 6E" "$(cat "$folder/answer")" ;;
    3) expectMatch "who sees what was stored" "*DTMF*" "$(cat "$folder/answer")" ;;
  esac
done
expect "all that was while the request waited" yes "$(kill -0 $first && echo yes)"
ctl -c "chassis voice delay 1000" >/dev/null

# One that has lost patience asks again: the module is asked once.
snmpset -v2c -c public -t 0.5 -r 20 "$tcp" $table.1.1.3087 x "$(frame 1)" >/dev/null 2>&1 || true
wait $first
expectMatch "the request that waited is answered" "$table.1.1.3087 *" "$(cat "$folder/first")"
expect "behind its time" yes "$( (($(milliseconds) - began >= 5000)) && echo yes)"

# A peer that leaves while its request waits.
"$bin/msan-frame" --agent "$tcp" --timeout 0.3 set 3087 '00*32' u32:1 '00*22' u16:2 '00*32' >/dev/null 2>&1 || true
expect "the agent goes on" "6D 73 61 6E" "$(manager snmpget -Ov "$udp" .1.3.6.1.2.1.1.5.0)"
ctl -c "chassis voice delay 0" >/dev/null
expectMatch "and the next request is served" "$table.1.1.3087 *" \
  "$(manager snmpset "$udp" $table.1.1.3087 x "$(frame 1)")"

# Two switches of the protocol at once, each with a job that takes a second: the requests don't wait for those.
ctl -c "chassis voice delay 1000" >/dev/null
began=$(milliseconds)
manager snmpset "$udp" $table.1.1.30720 x "$(zeros 32)0001" >"$folder/switch" &
switch=$!
ctl --yes -c "set ngn_protocol_type h248" >/dev/null
wait $switch
expectMatch "a manager's switch" "$table.1.1.30720 *" "$(cat "$folder/switch")"
expect "both were done together" yes "$( (($(milliseconds) - began < 1700)) && echo yes)"

# A node that is told to stop while a job runs, and a request waits.
patience=1
manager snmpset "$udp" $table.1.1.3087 x "$(frame 2)" >/dev/null &
sleep 0.2
stop
wait
exit $bad
