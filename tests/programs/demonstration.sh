#!/bin/bash
# The node that a newcomer gets.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"
export MSAN_SNMP=none
runNode=$(dirname "${BASH_SOURCE[0]}")/../../scripts/run-node

run "$runNode" "$bin/.." <<<"show running-config
chassis show"
expect "exit code" 0 "$code"
expectMatch "the startup configuration was executed" \
  "*set cid mode dtmf*set rfc2833 negotiation auto default pt 97 rfc2198 negotiation manul default pt 96*" "$out"
expectMatch "ADSL, VDSL and POTS cards are up" "*adsl32 *up *32*vdsl64 *up *64*pots64 *up *64*" "$out"
run "$runNode" "$bin/.." <<<"nonsense"
expect "exit code of a line that failed" "1 stdin:1: unknown command: nonsense" "$code $err"
exit $bad
