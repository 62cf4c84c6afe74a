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
expectMatch "its reason" "not written: *: Not a directory*" "$out"
stop
mkdir "$folder/taken"
start --startup "$folder/taken"
run ctl -c write
expectMatch "a folder is not replaced" "not written: the file was not executed at start*: is not a regular file*" "$out"
run ctl -c "write force"
expectMatch "not by force either" "not written: $folder/taken: can't be replaced: Is a directory" "$out"
expectMatch "which is logged" "*not written: $folder/taken: can't be replaced: Is a directory*" "$(cat "$folder/log")"
stop
expect "the old file" "$(cat "$folder/before")" "$(cat "$folder/startup.cfg")"
expect "temporary files" "" "$(find "$folder" -name '*.??????' -newer "$folder/before" ! -name '*.cfg')"

# Lines that fail are told with their numbers; the others are executed.
printf '! a comment\r\n\nset cid mode fsk\nset cid\n\x01\x00\xff\xfe\nno such command \x1b[2J\nset cid mode dt' \
  >"$folder/startup.cfg"
: >"$folder/log"
start
expectMatch "the last line has no end and is executed" "*set cid mode dtmf*" "$(ctl -c 'show running-config')"
expect "lines that failed" ":4:8: set cid: incomplete command, mode expected
:5:2: \x01\x00??: unknown command
:6:4: no such command \x1b[2J: unknown command, WORDS expected" \
  "$(LC_ALL=C tr '\200-\377' '?' <"$folder/log" | sed -n 's/.*startup.cfg\(:[0-9]\)/\1/p' | sed '3s/, .* expected/, WORDS expected/')"
expectMatch "and their count" "*warning startup configuration $folder/startup.cfg executed, 3 lines failed*" "$(cat "$folder/log")"

# They are not lost by a write, unless it is forced.
cp "$folder/startup.cfg" "$folder/before"
run ctl -c wr
expect "a write that would lose lines" \
  "1 not written: $folder/startup.cfg: 3 lines failed at start and would be lost; \"write force\" writes nevertheless" "$code $out"
expect "the file" "" "$(cmp "$folder/before" "$folder/startup.cfg" 2>&1)"
run ctl -c "write force" -c write
expect "by force, and from then on" "0 $(printf "written to $folder/startup.cfg\n%.0s" 1 2)" "$code $out"
stop

# A text of another editor: a mark ahead of it, line ends of CR alone.
printf '\xef\xbb\xbfset cid mode dtmf\rnone\rset cid mode fsk' >"$folder/startup.cfg"
: >"$folder/log"
start
expectMatch "one line of it failed" "*startup.cfg:2:1: none: unknown command, *expected*, 1 lines failed*" "$(cat "$folder/log")"
expectMatch "the last one was executed" "*set cid mode fsk*" "$(ctl -c 'show running-config')"
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
run ctl -c write
expectMatch "it is not replaced" "1 not written: the file was not executed at start*is longer than*" "$code $out"
run ctl -c "write force"
expect "but by force, and kept" "0 written to $folder/startup.cfg
the old file is kept as $folder/startup.cfg.unread" "$code $out"
expect "as it was" 20971520 "$(stat -c %s "$folder/startup.cfg.unread")"
stop

# What writes that were killed left behind goes, at start and with the next write; what another process writes stays.
touch "$folder/startup.cfg.new-aaaaaa" "$folder/startup.cfg.new-cccccc" "$folder/startup.cfg.backup"
exec {lock}<"$folder/startup.cfg.new-cccccc"
flock "$lock"
start
touch "$folder/startup.cfg.new-bbbbbb"
leftovers() { (cd "$folder" && echo startup.cfg.*); }
expect "files at start" "startup.cfg.backup startup.cfg.history startup.cfg.new-bbbbbb startup.cfg.new-cccccc startup.cfg.unread" "$(leftovers)"
ctl -c write >/dev/null
expect "files behind a write" "startup.cfg.backup startup.cfg.history startup.cfg.new-cccccc startup.cfg.unread" "$(leftovers)"
exec {lock}<&-
stop

# A node that is told to stop while it executes a long one stops ahead of the next line.
{ yes chassis || true; } | head -c 15000000 >"$folder/startup.cfg"
: >"$folder/log"
"$bin/msand" --config "$folder/msand.toml" --snmp none >"$folder/log" 2>&1 </dev/null &
node=$!
nodes+=("$node")
until grep -q startup.cfg:100: "$folder/log"; do sleep 0.01; done
stop
expectMatch "it says so" "*told to stop while the startup configuration $folder/startup.cfg was executed" "$(cat "$folder/log")"

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
expectMatch "and no line of it failed" "" "$(grep 'startup.cfg:[0-9]*: attach vlan' "$folder/log" || true)"
stop
exit $bad
