# For the tests of the programs: a folder that goes with the test, nodes that are started and stopped in it.
# The one argument of a test is the folder of the programs.
# shellcheck shell=bash disable=SC2034,SC2119,SC2120
set -euo pipefail
bin=$1
folder=$(mktemp -d)
socket=$folder/socket
nodes=()
snmp=none # where the agents of nodes listen
bad=0
export MSAND_HOLD_MESSAGES=yes # a node ends where a message is not as it is described

cleanUp() {
  local node
  for node in "${nodes[@]}"; do kill -KILL "$node" 2>/dev/null || true; done
  rm -rf "$folder"
}
trap cleanUp EXIT

# expect WHAT EXPECTED FOUND
expect() {
  [ "$2" = "$3" ] && return
  printf -- '---- %s\nexpected: %s\nfound:    %s\n' "$1" "$2" "$3" >&2
  bad=1
}

# expectMatch WHAT PATTERN FOUND: PATTERN as in case
expectMatch() {
  # shellcheck disable=SC2053
  [[ $3 == $2 ]] && return
  printf -- '---- %s\nexpected: %s\nfound:    %s\n' "$1" "$2" "$3" >&2
  bad=1
}

configuration() { (umask 077 && rm -f "$folder/msand.toml" && cat >"$folder/msand.toml"); }

# start [MSAND_OPTION...]: a node in the folder, ready; its log is $folder/log
start() {
  "$bin/msand" --config "$folder/msand.toml" --snmp "$snmp" "$@" >>"$folder/log" 2>&1 </dev/null &
  node=$!
  nodes+=("$node")
  ctl --wait 60 -c "chassis show" >/dev/null
}

# stop: ends the node; it has to end well
stop() {
  local code=0
  kill -TERM "$node"
  wait "$node" || code=$?
  expect "exit code of a node that is told to stop" 0 "$code"
}

ctl() { "$bin/msanctl" --socket "$socket" "$@"; }

# await COMMAND...: until it succeeds, for 20 s
await() {
  local tries
  for ((tries = 0; tries < 100; ++tries)); do "$@" && return; sleep 0.2; done
}

# run COMMAND...: its standard output in $out, its standard error in $err, its exit code in $code
run() {
  code=0
  "$@" >"$folder/out" 2>"$folder/err" || code=$?
  out=$(cat "$folder/out")
  err=$(cat "$folder/err")
}

configuration <<TEXT
socket = "socket"
startup = "startup.cfg"
[slots]
1 = { card = "adsl32" }
3 = { card = "pots64" }
TEXT
