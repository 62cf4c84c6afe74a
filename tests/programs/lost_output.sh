#!/bin/bash
# Output that can't be written: told, and no success. /dev/full is a full disk.
. "$(dirname "${BASH_SOURCE[0]}")/snmp_common.sh"
start

for ((i = 0; i < 300; ++i)); do echo "help all"; done >"$folder/lines" # many times what a stream holds back
echo "cli show cid mode" >"$folder/short.scn"
for ((i = 0; i < 300; ++i)); do cat "$folder/short.scn"; done >"$folder/long.scn"

# lost NAME PROGRAM ARGUMENT...: into a full disk, and with standard output closed
lost() {
  local name=$1 to
  shift
  for to in '>/dev/full' '>&-'; do
    code=0
    err=$(eval '"$@" 2>&1 '"$to") || code=$?
    expectMatch "$name $to" "3 *${1##*/}: standard output can't be written*" "$code $err"
  done
}
lost "a short answer" "$bin/msanctl" --socket "$socket" -c "show cid mode"
lost "a long one" "$bin/msanctl" --socket "$socket" -f "$folder/lines"
lost "an option's" "$bin/msanctl" --version
lost "a frame" "$bin/msan-frame" --agent "$udp" get 3087
lost "a record" "$bin/msan-scenario" --record "$folder/short.scn"
lost "a long record" "$bin/msan-scenario" --record "$folder/long.scn"

code=0
ctl -c "set cid mode dtmf" -c "help" >/dev/full 2>/dev/null || code=$?
expect "exit code" 3 "$code"
expectMatch "the lines were run" "*DTMF*" "$(ctl -c "show cid mode")"
code=0
ctl -c "trace off" >&- 2>"$folder/err" || code=$?
expect "nothing to print, nothing lost" "0 " "$code $(cat "$folder/err")"
# Its number would go to the connection to the node.
code=0
ctl -c "nonsense" 2>&- >"$folder/out" || code=$?
expect "standard error that is closed" 1 "$code"
code=0
err=$(ctl 2>&1 >/dev/null <&-) || code=$?
expectMatch "standard input that is closed" "2 msanctl: *" "$code $err"
stop
exit $bad
