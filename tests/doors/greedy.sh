#!/bin/bash
# Clients that want everything, at both doors of a full chassis: greedy.sh PROGRAMS SECONDS, in two rounds. Others are served
# meanwhile, nobody of them is turned out, and when the clients have gone the node is as it was.
. "$(dirname "${BASH_SOURCE[0]}")/../programs/snmp_common.sh"
# Whatever else the machine does is not what is measured.
renice -n -10 $$ >/dev/null 2>&1 || true
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
g++ -std=c++20 -O1 -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror -I "$root/node/daemon" -I "$root/platform/include" \
  "$root/tests/doors/greedy.cpp" "$root/node/daemon/protocol.cpp" -o "$folder/greedy"
{
  printf 'socket = "socket"\nstartup = "startup.cfg"\nmetrics = "metrics.prom"\n'
  printf '[snmp]\ncommunities = [{ name = "public", access = "read-write", source = "127.0.0.0/8" }]\n[slots]\n'
  printf '%d = { card = "adsl64" }\n' {1..8} {11..18}
} | configuration
start
printf 'set interface %d/1-64 enable\n' {1..8} {11..18} | ctl >/dev/null
"$bin/msan-frame" --agent "$tcp" query 3087 'ab*400000'
sleep 1

descriptors() { find "/proc/$node/fd" -mindepth 1 | wc -l; }
# of the memory that is nobody else's, and of what is in use of it: KiB
resident() { awk '/^RssAnon/ { print $2 }' "/proc/$node/status"; }
used() { ctl -c 'show metrics' | tr -d '\r' | awk '/^msan_heap_used_bytes/ { print int($2 / 1024) }'; }
round() {
  local try left
  "$folder/greedy" "$socket" "$snmp" "$(($1))" 500 100 || bad=1
  # Those that had not been let in when they left are still to come and go; some of them leave without a word.
  for ((try = 0; try < 40; ++try)); do
    sleep 0.5
    left=$(descriptors)
    sleep 0.2
    [ "$left" = "$open" ] && [ "$(descriptors)" = "$open" ] && break
  done
  expect "descriptors behind it" "$open" "$(descriptors)"
  sleep 1
  now=$(used)
  kept=$(resident)
  most=$(awk '/^VmHWM/ { print $2 }' "/proc/$node/status")
  echo "in use: $now KiB, resident: $kept KiB; of all, $most KiB at most"
  expect "memory while they are there, within 256 MiB" yes "$( ((most < 262144)) && echo yes)"
}
open=$(descriptors)
before=$(used)
echo "before: in use: $before KiB, resident: $(resident) KiB, $open descriptors"
round "$2 / 2"
first=$kept
expect "memory in use behind it, within 1 MiB" yes "$( ((now < before + 1024)) && echo yes)"
round "$2 / 2"
expect "memory in use behind the second time" yes "$( ((now < before + 1024)) && echo yes)"
expect "resident memory, within 8 MiB of the first time's" yes "$( ((kept < first + 8192)) && echo yes)"
expectMatch "the node goes on" "*fsk*" "$(ctl -c 'set cid mode fsk' -c 'show running-config')"
stop
exit $bad
