#!/bin/bash
# Measures the programs as people meet them: programs.sh BUILD_FOLDER. Each figure is the median of several runs.
set -euo pipefail
build=$(cd "$1" && pwd)
export LC_ALL=C

folder=$(mktemp -d)
node=
# shellcheck disable=SC2317  # called by the trap
finish() {
  stopNode
  rm -rf "$folder"
}
trap finish EXIT

microseconds() { echo "${EPOCHREALTIME/./}"; }
median() { sort -n | awk '{ value[NR] = $1 } END { print value[int((NR + 1) / 2)] }'; }

# startNode STARTUP: starts a node without cards; tells in `took` how long it took until operators could connect.
startNode() {
  local began
  printf 'socket = "socket"\nstartup = "%s"\nlog = "nowhere"\n' "$1" >"$folder/msand.toml"
  began=$(microseconds)
  "$build/bin/msand" --config "$folder/msand.toml" --snmp none &
  node=$!
  until [ -S "$folder/socket" ]; do
    kill -0 "$node" || exit 1
  done
  took=$(($(microseconds) - began))
}

stopNode() {
  [ -n "$node" ] || return 0
  kill "$node" && wait "$node"
  node=
}

# starts STARTUP RUNS: how long starts with this startup configuration take.
starts() {
  local run
  for ((run = 0; run < $2; run++)); do
    startNode "$1"
    stopNode
    echo "$took"
  done
}

# terminals RUNS: how long msanctl takes from its start to its end.
terminals() {
  local run began
  for ((run = 0; run < $1; run++)); do
    began=$(microseconds)
    "$build/bin/msanctl" --socket "$folder/socket" -c "show cid mode" >"$folder/shown"
    echo $(($(microseconds) - began))
  done
}

lines=20000
: >"$folder/empty.cfg"
for ((line = 0; line < lines; line += 4)); do
  echo "set cid mode dtmf
set rfc2833 negotiation manul default pt 97 rfc2198 negotiation auto default pt 96
set cid mode fsk
set voice md5 authentication close"
done >"$folder/long.cfg"

empty=$(starts empty.cfg 15 | median)
long=$(starts long.cfg 3 | median)
startNode empty.cfg
terminal=$(terminals 100 | median)
grep -q FSK "$folder/shown"  # the node's answer, not an error

show() { printf '%-40s %9.2f %s\n' "$@"; }
show "start of an empty node" "$(awk "BEGIN { print $empty / 1000 }")" "ms (aim: 20)"
show "msanctl -c, from start to end" "$(awk "BEGIN { print $terminal / 1000 }")" "ms (aim: 3)"
show "startup configuration" "$(awk "BEGIN { print $lines * 1000 / ($long - $empty) }")" "thousand lines a second"
stopNode

# A full chassis, and 10,240 lines that all stand in its configuration afterwards: what they take at the node and in the
# dark, and what compares, goes back, and is written, with 1,024 provisioned ports.
{
  printf 'socket = "socket"\nstartup = "full.cfg"\nlog = "nowhere"\n[slots]\n'
  for slot in {1..8} {11..18}; do echo "$slot = { card = \"adsl64\", state = \"up\" }"; done
} >"$folder/msand.toml"
for slot in {1..8} {11..18}; do
  for port in {1..64}; do
    echo "set interface $slot/$port enable"
    echo "set loop detect enable auto-recovery enable interface $slot/$port"
    for pvc in {0..7}; do echo "set mac limit enable number $((pvc + 1)) interface $slot/$port pvc $pvc"; done
  done
done >"$folder/change.cfg"
"$build/bin/msand" --config "$folder/msand.toml" --snmp none &
node=$!
ctl() { "$build/bin/msanctl" --socket "$folder/socket" --wait 10 "$@" >"$folder/shown"; }
# taken COMMAND...: how long it takes, in milliseconds, median of three
taken() {
  local run began
  for run in 1 2 3; do
    began=$(microseconds)
    "$@" || [ $? = 1 ]
    echo $((($(microseconds) - began) / 1000))
  done | median
}
ctl -c "show cid mode"
check=$(taken ctl check "$folder/change.cfg")
grep -q "all would be taken" "$folder/shown"
real=$(taken ctl -f "$folder/change.cfg")
ctl -c "write no-check"
sed 's/number 3 /number 4 /' "$folder/change.cfg" >"$folder/other.cfg"
compare=$(taken ctl compare startup "$folder/other.cfg")
grep -q '^+set mac limit' "$folder/shown"
rollback=$(taken ctl -c "set interface 1/1 disable" -c "rollback startup")
grep -q "slot 1: 1 message" "$folder/shown"
show "check of 10,240 lines" "$check" "ms, at the node $real (aim: 1.5 times)"
show "compare of two such configurations" "$compare" "ms (aim: 500)"
show "rollback of one of 1,024 ports" "$rollback" "ms (aim: 1000)"
