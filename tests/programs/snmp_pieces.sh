#!/bin/bash
# Answers of more than one piece, from a module that gives such (the second argument).
. "$(dirname "${BASH_SOURCE[0]}")/snmp_common.sh"
unset MSAND_HOLD_MESSAGES # this module's messages are its own
configuration <<<$'socket = "socket"\nstartup = "startup.cfg"'
start --module "$2"

# piece AGENT ID: its bytes with their counts, such as "60000x01", and the last flag; or the agent's error
piece() {
  manager snmpget -Ov "$1" $table.1.5."$2" $table.1.6."$2" | sed 's/\([01]\)$/ last \1/' | tr -s ' ' '\n' | grep . | uniq -c |
    awk '$2 == "last" { getline; print "last", $2; next } $2 ~ /^[0-9A-F]+$/ { printf "%sx%s ", $1, $2; next } { printf "%s ", $2 }'
}

# --- pieces that a datagram holds
for agent in "$udp" "$tcp"; do
  manager snmpset "$agent" $table.1.4.1 x ab >/dev/null
  expect "the first piece, with the query" "1xAB 59999x01 last 0" "$(piece "$agent" 1)"
  manager snmpset "$agent" $table.1.4.1 x cd >/dev/null
  expect "the next one" "60000x02 last 0" "$(piece "$agent" 1)"
  expect "the last one" "7x03 last 1" "$(piece "$agent" 1)"
  expect "the answer anew: the query went with the second piece" "60000x01 last 0" "$(piece "$agent" 1)"
  piece "$agent" 1 >/dev/null
  piece "$agent" 1 >/dev/null
  run "$bin/msan-frame" --agent "$agent" get 1 ab
  expect "msan-frame gets all of them" "0 reply ab 01*59999
last 0
reply 02*60000
last 0
reply 03030303030303
last 1" "$code $out"
done

# A walk fetches no piece, and the flag is that of the last piece.
piece "$udp" 1 >/dev/null
manager snmpbulkget "$udp" $table >/dev/null
expect "the flag" 0 "$(manager snmpget -Ov "$udp" $table.1.6.1)"
expect "the piece behind a walk" "60000x02 last 0" "$(piece "$udp" 1)"
expect "two answers in one request: none is fetched" yes \
  "$([[ $(manager snmpget "$udp" $table.1.5.1 $table.1.5.1) == *genError* ]] && echo yes)"
expect "the third piece is still there" "7x03 last 1" "$(piece "$udp" 1)"

# --- pieces that no datagram holds: none of them is lost by asking for it over UDP
expectMatch "the first one over UDP" "*tooBig*" "$(manager snmpget "$udp" $table.1.5.2)"
expectMatch "and again" "*tooBig*" "$(manager snmpget "$udp" $table.1.5.2)"
run "$bin/msan-frame" --agent "$udp" get 2
expect "msan-frame says what to do" "3 msan-frame: the answer is too large for a datagram: ask over TCP" "$code $err"
expect "the first one over TCP" "400000x01 last 0" "$(piece "$tcp" 2)"
expectMatch "the second one over UDP" "*tooBig*" "$(manager snmpget "$udp" $table.1.5.2)"
run "$bin/msan-frame" --agent "$tcp" get 2
expect "the rest over TCP" "0 reply 02*400000
last 0
reply 03
last 1" "$code $out"
stop
exit $bad
