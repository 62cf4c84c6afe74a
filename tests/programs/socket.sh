#!/bin/bash
# The operators' socket: one node for one socket, many terminals for one node.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

start
expect "mode of the socket" 600 "$(stat -c %a "$socket")"
run "$bin/msand" --config "$folder/msand.toml"
expect "exit code of a second node" 1 "$code"
expect "its reason" "msand: $socket: is served by another msand" "$err"
run ctl -c "chassis show"
expect "the first one goes on" 0 "$code"

# A node that was killed leaves its socket behind.
kill -KILL "$node"
wait "$node" 2>/dev/null || true
run ctl -c "chassis show"
expect "exit code without a node" 3 "$code"
expect "reason" "msanctl: $socket: no connection to msand: Connection refused" "$err"
expect "it is there" yes "$([ -S "$socket" ] && echo yes)"
start

# One that is killed in the middle of its work leaves the node as it is.
yes "set cid mode fsk" | "$bin/msanctl" --socket "$socket" >/dev/null &
flood=$!
sleep 0.3
kill -KILL "$flood"
wait "$flood" 2>/dev/null || true
run ctl -c "show cid mode"
expect "the node goes on" 0 "$code"

stop
expect "what a stopped node leaves" "" "$(find "$folder" -name 'socket*')"
start
exit $bad
