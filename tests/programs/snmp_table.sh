#!/bin/bash
# The module's frames in the table of the agent, with the tools that every manager has.
. "$(dirname "${BASH_SOURCE[0]}")/snmp_common.sh"
start
expect "the groups that all agents have" "72" "$(manager snmpget -Ov "$udp" .1.3.6.1.2.1.1.7.0)"
expectMatch "a counter of the snmp group" "[1-9]*" "$(manager snmpget -Ov "$udp" .1.3.6.1.2.1.11.1.0)"

for agent in "$udp" "$tcp"; do
  ctl -c "set cid mode fsk" >/dev/null
  expectMatch "a frame is accepted" "$table.1.1.3087 *" "$(manager snmpset "$agent" $table.1.1.3087 x "$(frame 2)")"
  expectMatch "and configures the node" "*CID Mode: DTMF*" "$(ctl -c "show cid mode")"
  expect "its reply" "00 00 00 01" "$(manager snmpget -Ov "$agent" $table.1.3.3087)"
  expect "it reads as it was sent" "$(frame 2 | sed 's/../& /g; s/ $//')" \
    "$(manager snmpget -Ov "$agent" $table.1.1.3087)"
  # 00000001, the envelope, the count, the label, the mode, the reserved bytes
  expect "the answer and its last flag" \
    "$(echo "00000001$(zeros 32)00000001$(zeros 22)0002$(zeros 32)" | sed 's/../& /g')1" \
    "$(manager snmpget -Ov "$agent" $table.1.5.3087 $table.1.6.3087)"
  expectMatch "a frame that the module refuses" "*inconsistentValue*" \
    "$(manager snmpset "$agent" $table.1.1.3087 x "$(frame 3)")"
  expect "why" "00 00 00 41 00 01 00 0A 0C 0F FF 88 00 00 00 00 00 03" \
    "$(manager snmpget -Ov "$agent" $table.1.3.3087)"
  expect "and the accepted one stays" "$(frame 2 | sed 's/../& /g; s/ $//')" \
    "$(manager snmpget -Ov "$agent" $table.1.1.3087)"
  "$bin/msan-frame" --agent "$agent" --piece 50 set 3087 "$(frame 1)" >/dev/null
  expectMatch "a frame in pieces" "*FSK*" "$(ctl -c "show cid mode")"
done
ctl -c "set cid mode dtmf" >/dev/null
half=$(frame 1)
expectMatch "a piece of a frame" "$table.1.2.3087 *" "$(manager snmpset "$udp" $table.1.2.3087 x "${half:0:100}")"
expectMatch "changes nothing" "*DTMF*" "$(ctl -c "show cid mode")"
manager snmpset "$udp" $table.1.1.3087 x "${half:100}" >/dev/null
expectMatch "the last one does" "*FSK*" "$(ctl -c "show cid mode")"

# --- errors
expectMatch "an id that is unknown" "*noCreation*" "$(manager snmpset "$udp" $table.1.1.9 x "$(frame 1)")"
expectMatch "an id that is no message's" "*noCreation*" "$(manager snmpset "$udp" $table.1.1.65536 x "$(frame 1)")"
expectMatch "a query of an unknown id" "*noCreation*" "$(manager snmpset "$udp" $table.1.4.9 x 00)"
expectMatch "a frame that is a number" "*wrongType*" "$(manager snmpset "$udp" $table.1.1.3087 i 1)"
for column in 3 5 6; do
  expectMatch "column $column is not written" "*notWritable*" "$(manager snmpset "$udp" $table.1.$column.3087 x 00)"
done
expectMatch "an unknown column" "*noCreation*" "$(manager snmpset "$udp" $table.1.7.3087 x 00)"
expectMatch "two frames in one request" "*resourceUnavailable*" \
  "$(manager snmpset "$udp" $table.1.1.3087 x "$(frame 2)" $table.1.1.3087 x "$(frame 2)")"
expectMatch "a frame beside a query" "*resourceUnavailable*" \
  "$(manager snmpset "$udp" $table.1.1.3087 x "$(frame 2)" $table.1.4.3087 x 00)"
expectMatch "did nothing" "*FSK*" "$(ctl -c "show cid mode")"
for name in 1.1.9 1.5.9 1.7.3087 1.1.65536 1.1.3087.0 1.1; do
  expectMatch "$name can't be read" "*No Such Instance*" "$(manager snmpget "$udp" $table.$name)"
done
expect "a query waits for its GET" "AB" "$(manager snmpset -Ov "$udp" $table.1.4.3087 x ab)"
manager snmpget "$udp" $table.1.5.3087 >/dev/null
expect "and goes with it" "" "$(manager snmpget -Ov "$udp" $table.1.4.3087)"

# --- walks
walk() { "$@" -v2c -c public -On "$udp" $table 2>&1; }
walk snmpwalk | grep -v "No more variables" >"$folder/walked"
expect "columns that are walked: no piece is fetched" "1 3 6" \
  "$(sed -n "s/^$table\.1\.\([0-9]*\)\..*/\1/p" "$folder/walked" | uniq | xargs)"
expect "ids of each come once and ascend" "" \
  "$(sed -n "s/^$table\.1\.\([0-9]*\)\.\([0-9]*\) .*/\1 \2/p" "$folder/walked" | LC_ALL=C sort -n -k1,1 -k2,2 -u -c 2>&1)"
for repetitions in 1 2 7 100; do
  expect "a bulk walk of $repetitions" "$(cat "$folder/walked")" \
    "$(walk snmpbulkwalk -Cr$repetitions | grep -v "No more variables")"
done
expectMatch "beyond the table" "*No more*" "$(manager snmpgetnext "$udp" $table.1.6.65535)"
expectMatch "between two columns" "$table.1.3.*" "$(manager snmpgetnext "$udp" $table.1.1.65535)"

# --- by name
mibs=$(dirname "${BASH_SOURCE[0]}")/../../node/share/mibs
expectMatch "a manager with the MIB" "MSAN-MIB::reply.3087 = *00 00 00 01*" \
  "$(snmpget -M "+$mibs" -m +MSAN-MIB -v2c -c public "$udp" MSAN-MIB::reply.3087 2>/dev/null)"
stop
exit $bad
