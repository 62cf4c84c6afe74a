#!/bin/bash
# What systemd hears of a node, also of one that has nothing to do.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"
perl -MSocket -e 'socket(S, AF_UNIX, SOCK_DGRAM, 0) && bind(S, pack_sockaddr_un($ARGV[0])) or die; $| = 1;
  while (defined recv(S, $_, 4096, 0)) { print "$_\n" }' "$folder/notify" >"$folder/heard" &
nodes+=($!)
until [ -S "$folder/notify" ]; do sleep 0.1; done
export NOTIFY_SOCKET=$folder/notify WATCHDOG_USEC=1000000
start
from=$(wc -l <"$folder/heard")
sleep 2.2
expect "alive twice in each of two seconds" yes \
  "$([ "$(tail -n +"$((from + 1))" "$folder/heard" | grep -c '^WATCHDOG=1$')" -ge 4 ] && echo yes)"
stop
expectMatch "from its start to its end" "STATUS=executes the startup configuration *
STATUS=serves 0 terminals
READY=1
*STATUS=serves 1 terminals
*STOPPING=1
STATUS=stops" "$(cat "$folder/heard")"
exit $bad
