#!/bin/bash
# Options and configuration files of msand.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

run "$bin/msand" --check --config "$folder/msand.toml"
expect "a good file" "0 $folder/msand.toml: good" "$code $out"
printf '\n[slots]\n3 = { card = "pots65" }\n' | configuration
for options in "--check" ""; do
  # shellcheck disable=SC2086
  run "$bin/msand" $options --config "$folder/msand.toml"
  expect "exit code of a bad file" 2 "$code"
  expect "its reason" "msand: $folder/msand.toml:3: there is no card type \"pots65\"" "$err"
done
run "$bin/msand" --config "$folder/none.toml"
expect "a file that is not there" "2 msand: $folder/none.toml: can't be opened: No such file or directory" "$code $err"
run "$bin/msand" --unknown
expect "exit code of a bad option" 2 "$code"

configuration <<<"socket = 'socket'"
run "$bin/msand" --config "$folder/msand.toml" --module "$folder/none.so"
expect "exit code without a module" 1 "$code"
expectMatch "its reason" "msand: $folder/none.so: *" "$err"
run "$bin/msand" --config "$folder/msand.toml" --module /lib/x86_64-linux-gnu/libm.so.6
expect "exit code of a library that is no module" 1 "$code"
run "$bin/msand" --config "$folder/msand.toml" --socket "$folder/none/socket"
expect "exit code without a place for the socket" 1 "$code"
expect "what is left behind" "" "$(find "$folder" -name 'socket*')"

for program in msand msanctl; do
  run "$bin/$program" --version
  expectMatch "version of $program" "$program [0-9]*.[0-9]*.[0-9]*" "$out"
  run "$bin/$program" --help
  expectMatch "help of $program" "*--socket PATH*Exit codes:*" "$out"
done
exit $bad
