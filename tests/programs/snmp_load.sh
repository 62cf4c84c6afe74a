#!/bin/bash
# Managers, operators and cards at once. What counts is what the sanitizers find, and that all of them are served.
. "$(dirname "${BASH_SOURCE[0]}")/snmp_common.sh"
configuration <<TEXT
socket = "socket"
startup = "startup.cfg"
[slots]
1 = { card = "adsl32" }
2 = { card = "vdsl64" }
3 = { card = "pots64" }
TEXT
start
rounds=60
workers=()
manage() {
  local round
  for ((round = 0; round < rounds; ++round)); do
    "$bin/msan-frame" --agent "$1" --timeout 60 set 3087 '00*32' u32:1 '00*22' u16:$((round % 2 + 1)) '00*32' || return 1
    "$bin/msan-frame" --agent "$1" --timeout 60 get --hex 3087 || return 1
  done
}
walk() {
  local round
  for ((round = 0; round < rounds; ++round)); do
    snmpbulkwalk -v2c -c public -t 60 "$udp" .1 || return 1
  done
}
operate() {
  local round
  for ((round = 0; round < rounds * 20; ++round)); do
    printf 'set cid mode fsk\nshow cid mode\nset cid mode dtmf\nshow running-config\n'
  done | ctl
}
cards() {
  local round
  for ((round = 0; round < rounds; ++round)); do
    printf 'chassis slot %d down\nchassis slot %d up\n' 3 3 2 2 1 1
    printf 'chassis slot 5 card eth8\nchassis slot 5 up\nchassis slot 5 card none\n'
  done | ctl
}
for work in "manage $udp" "manage $tcp" walk operate cards "ctl -c trace\ on -f /dev/null"; do
  eval "$work" >/dev/null 2>"$folder/${#workers[@]}" &
  workers+=($!)
done
for worker in "${!workers[@]}"; do
  code=0
  wait "${workers[worker]}" || code=$?
  expect "exit code of worker $worker, which said: $(head -c 500 "$folder/$worker")" 0 "$code"
done
stop
expect "races" 0 "$(grep -c 'data race' "$folder/log" || true)"
[ $bad = 0 ] || head -n 60 "$folder/log" >&2
exit $bad
