#!/bin/bash
# The startup configuration: executed at start, told where it fails, written back, never lost.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

# A node keeps what was written, over a restart.
start
expectMatch "a node without one says so" "*there is no startup configuration $folder/startup.cfg*" "$(cat "$folder/log")"
ctl -c "set cid mode fsk" >/dev/null
run ctl -c write
expect "write" "written to $folder/startup.cfg" "$out"
stop
expect "it is the running configuration, in lines that end as text files' do" "set cid mode fsk" \
  "$(grep -x 'set cid mode fsk' "$folder/startup.cfg")"
expect "carriage returns in it" 0 "$(grep -c $'\r' "$folder/startup.cfg" || true)"
start
expectMatch "it comes back" "*set cid mode fsk*" "$(ctl -c 'show running-config')"

# What can't be written is told, and the old file stays.
cp "$folder/startup.cfg" "$folder/before"
stop
start --startup "$folder/startup.cfg/none"
run ctl -c write
expect "exit code of a write that failed" 1 "$code"
expectMatch "its reason" "not written: *: Not a directory" "$out"
stop
mkdir "$folder/taken"
start --startup "$folder/taken"
run ctl -c write
expectMatch "a folder is not replaced" "not written: *: can't be replaced: Is a directory" "$out"
stop
expect "the old file" "$(cat "$folder/before")" "$(cat "$folder/startup.cfg")"
expect "temporary files" "" "$(find "$folder" -name '*.??????' -newer "$folder/before" ! -name '*.cfg')"

# Lines that fail are told with their numbers; the others are executed.
printf '! a comment\r\n\nset cid mode fsk\nset cid\n\x01\x00\xff\xfe\nno such command \x1b[2J\nset cid mode dt' \
  >"$folder/startup.cfg"
: >"$folder/log"
start
expectMatch "the last line has no end and is executed" "*set cid mode dtmf*" "$(ctl -c 'show running-config')"
expect "lines that failed" ":4: set cid: incomplete command
:5: \x01\x00??: unknown command
:6: no such command \x1b[2J: unknown command" \
  "$(LC_ALL=C tr '\200-\377' '?' <"$folder/log" | sed -n 's/.*startup.cfg\(:[0-9]\)/\1/p')"
expectMatch "and their count" "*startup.cfg executed, 3 lines failed*" "$(cat "$folder/log")"
stop

# A huge file, and one of noise, do not keep the node from starting.
head -c 3000000 /dev/zero | tr '\0' 'x' >"$folder/startup.cfg"
head -c 300000 /dev/urandom >>"$folder/startup.cfg"
: >"$folder/log"
start
stop
expect "lines of its log" 1 "$((($(wc -l <"$folder/log") < 200) && ($(wc -c <"$folder/log") < 500000)))"
truncate -s 20M "$folder/startup.cfg"
: >"$folder/log"
start
expectMatch "a file that is too long" "*not executed: $folder/startup.cfg: is longer than 16777216 bytes*" \
  "$(cat "$folder/log")"
stop

# Services that cite a flow rule come back when the configuration file makes the rule.
rm "$folder/startup.cfg"
cp "$folder/msand.toml" "$folder/plain.toml"
{ echo 'flow = ["rule 5 name video entry 1,2,3,4 01 02", "policy 2 name gold"]'; cat "$folder/plain.toml"; } >"$folder/msand.toml"
start
ctl -c "chassis slot 5 card vdsl16" -c "add vlan service type unicast mode tag vid 9 crule video interface 5/1" \
  -c write >/dev/null
line=$(grep 'rule video' "$folder/startup.cfg")
stop
printf '5 = { card = "vdsl16" }\n' >>"$folder/msand.toml"
: >"$folder/log"
start
expectMatch "a service with its rule" "*$line*" "$(ctl -c 'show running-config')"
expectMatch "without a failed line" "*startup.cfg executed, 0 lines failed" "$(grep executed "$folder/log")"
stop
{ echo 'flow = ["rule 5 named video"]'; cat "$folder/plain.toml"; } >"$folder/msand.toml"
run "$bin/msand" --config "$folder/msand.toml" --snmp none
expect "exit code of words that are none" 1 "$code"
expectMatch "and why" '*flow "rule 5 named video": no such words*' "$err"
exit $bad
