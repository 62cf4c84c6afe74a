#!/bin/bash
# The node that a newcomer gets.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"
export MSAN_SNMP=none XDG_STATE_HOME=$folder/state
runNode=$(dirname "${BASH_SOURCE[0]}")/../../scripts/run-node

run "$runNode" "$bin/.." <<<"show running-config
chassis show"
expect "exit code" 0 "$code"
expectMatch "the startup configuration was executed" \
  "*set cid mode dtmf*set rfc2833 negotiation auto default pt 97 rfc2198 negotiation manul default pt 96*" "$out"
expectMatch "lines are in service" "*attach adslLine profile*1/5*set interface 1/5 enable*" "$out"
expectMatch "ADSL, VDSL and POTS cards are up" "*adsl32 *up *32*vdsl64 *up *64*pots64 *up *64*" "$out"
run "$runNode" "$bin/.." <<<"nonsense"
expectMatch "exit code of a line that failed" "1 stdin:1:1: unknown command, * expected: nonsense" "$code $err"

# What is written is there at the next run, unless a fresh one is asked for.
"$runNode" "$bin/.." <<<$'set cid mode fsk\nwrite' >/dev/null
expectMatch "the next run" "*FSK*" "$("$runNode" "$bin/.." <<<"show cid mode")"
expectMatch "a fresh one" "*DTMF*" "$("$runNode" "$bin/.." --fresh <<<"show cid mode")"

# A second node beside a running one has its own folder and its agent at the next free port.
unset MSAN_SNMP
mkfifo "$folder/lines"
"$runNode" "$bin/.." <"$folder/lines" >"$folder/first" 2>&1 &
first=$!
exec {lines}>"$folder/lines"
echo "set cid mode fsk" >&"$lines"
until grep -qs success "$folder/first"; do sleep 0.05; done
run "$runNode" "$bin/.." <<<$'show cid mode\nwrite'
expectMatch "the second one" "0 *DTMF*written to $folder/state/msan/node-2/startup.cfg*" "$code $out"
expectMatch "where its agent is" "run-node: 127.0.0.1:16100 is taken; the agent of this node listens at 127.0.0.1:161[0-9][0-9]" "$err"
exec {lines}>&-
wait "$first"
XDG_STATE_HOME=/proc/none run "$runNode" "$bin/.." <<<"show cid mode"
expectMatch "a node whose folder can't be made" "0 *DTMF*keeps nothing*" "$code $out$err"
exit $bad
