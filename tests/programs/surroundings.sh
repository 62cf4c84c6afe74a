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
exit $bad
