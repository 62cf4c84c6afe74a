#!/bin/bash
# The node goes on whatever happens around it.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"
cp "$folder/msand.toml" "$folder/plain.toml"

# A log that can't be written: on a full disk, and into a pipe whose reader has gone.
{ echo 'log = "/dev/full"'; cat "$folder/plain.toml"; } | configuration
start
run ctl -c "set cid mode fsk" -c "show cid mode"
expect "commands beside a full disk" 0 "$code"
stop
cp "$folder/plain.toml" "$folder/msand.toml"
exec {pipe}> >(head -c 1 >/dev/null)
reader=$!
"$bin/msand" --config "$folder/msand.toml" --snmp none >&"$pipe" 2>&1 </dev/null &
node=$!
nodes+=("$node")
wait "$reader"
run ctl --wait 60 -c "show cid mode"
expect "commands behind a broken pipe" 0 "$code"
stop
exec {pipe}>&-

# Started with the standard descriptors closed: what is logged does not go into what was opened in their place.
"$bin/msand" --config "$folder/msand.toml" --snmp none <&- >&- 2>&- &
node=$!
nodes+=("$node")
run ctl --wait 60 -c "set cid mode dtmf" -c "show cid mode"
expectMatch "commands of a node without them" "0 *DTMF*" "$code $out"
expect "its files among them" "/dev/null /dev/null /dev/null" "$(cd "/proc/$node/fd" && readlink 0 1 2 | paste -sd ' ')"
stop
exit $bad
