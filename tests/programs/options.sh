#!/bin/bash
# Options and configuration files of msand.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

run "$bin/msand" --check --config "$folder/msand.toml"
expect "a good file" "0 $folder/msand.toml: good" "$code $out"

# refused LINE COMPLAINT: what neither the check nor the start takes, as the second line of a file
refused() {
  printf '%s\n%s\n' "${3-socket = 'socket'}" "$1" | configuration
  local options
  for options in "--check" "--snmp none"; do
    # shellcheck disable=SC2086
    run "$bin/msand" $options --config "$folder/msand.toml"
    expectMatch "$options with $1" "2 msand: $folder/msand.toml:2: $2" "$code ${err##*$'\n'}"
  done
}
refused 'slots = { 3 = { card = "pots65" } }' 'there is no card type "pots65"'
refused 'lines = ["slot 1 port 65 loop 5 m 0.4 mm"]' 'lines "slot 1 port 65 loop 5 m 0.4 mm": ports of the slot are 1 to 64: 5, 1-8,12'
refused 'lines = ["slot 1 card none"]' 'lines "slot 1 card none": tell of no line'
refused 'flow = ["rule"]' 'flow "rule": no such words'
refused 'flow = ["show"]' 'flow "show": makes no rule or policy of its own'
refused 'flow = ["rule 5 name a", "rule 5 name b"]' 'flow "rule 5 name b": makes no rule or policy of its own'
refused 'flow = ["policy 2 name gold content 1"]' 'flow "policy 2 name gold content 1": up to 146 hexadecimal digits'
refused 'module = "none.so"' "$folder/none.so: *"
refused 'module = "msand.toml"' "$folder/msand.toml: *"
refused 'module = "/lib/x86_64-linux-gnu/libm.so.6"' '*libm.so.6: is loaded already'
refused 'module = "/lib/x86_64-linux-gnu/libutil.so.1"' '*libutil.so.1: undefined symbol: msan_Module_Init'
refused "socket = '$(printf %0100d)'" "$folder/$(printf %0100d): is too long for a socket: 103 bytes at most" ""
refused 'log = "/dev"' "/dev: can't be opened: Is a directory"
refused 'log = "msand.toml/log"' "$folder/msand.toml/log: can't be opened: Not a directory"
printf 'log = "logs/log"\nflow = ["rule 5 name a", "policy 5 name a content ab"]\n' | configuration
run "$bin/msand" --check --config "$folder/msand.toml"
expect "what would be good" "0 $folder/msand.toml: good" "$code $out"
expect "a check makes no log" "" "$(find "$folder" -name logs)"
run "$bin/msand" --config "$folder/none.toml"
expect "a file that is not there" "2 msand: $folder/none.toml: can't be opened: No such file or directory" "$code $err"
run "$bin/msand" --unknown
expect "exit code of a bad option" 2 "$code"

configuration <<<"socket = 'socket'"
run "$bin/msand" --config "$folder/msand.toml" --module "$folder/none.so"
expectMatch "without a module" "2 msand: --module: $folder/none.so: *" "$code $err"
run "$bin/msand" --config "$folder/msand.toml" --socket "$folder/none/socket"
expect "exit code without a place for the socket" 1 "$code"
expect "what is left behind" "" "$(find "$folder" -name 'socket*')"

for program in msand msanctl; do
  run "$bin/$program" --version
  expectMatch "version of $program" "$program [0-9]*.[0-9]*.[0-9]*" "$out"
  run "$bin/$program" --help
  expectMatch "help of $program" "*--socket PATH*Exit codes:*" "$out"
done
for program in msan-frame msan-scenario; do
  run "$bin/$program" --version
  expectMatch "version of $program" "$program [0-9]*.[0-9]*.[0-9]*" "$out"
done
MSAN_PRIV_SECRET=short run "$bin/msan-frame" --user noc get 3087
expectMatch "a manager without secrets" "2 *MSAN_AUTH_SECRET is not set*MSAN_PRIV_SECRET is shorter" "$code $err"
exit $bad
