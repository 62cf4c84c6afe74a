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
