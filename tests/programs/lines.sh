#!/bin/bash
# msanctl without a person: commands, files and pipes, their errors and exit codes.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"
start

run ctl -c "show cid mode" -c "nonsense" -c "set cid" -c "chassis slot 9 up"
expect "exit code with lines that failed" 1 "$code"
expect "errors of commands" "command:2:1: unknown command, no, ngn or more expected: nonsense
command:3:8: incomplete command, mode expected: set cid
command:4: failed (-1): chassis slot 9 up" "$(sed "1s/ngn.* expected/ngn or more expected/" <<<"$err")"
expectMatch "what they printed" "*CID Mode: FSK*slot 9 holds no service card" "$out"

printf 'trace hex\r\n\n! a comment\nset cid mode fsk\n  show cid mode\nnot a word\nset cid mode dtmf' >"$folder/lines"
run ctl -f "$folder/lines"
expect "exit code of a file" 1 "$code"
expectMatch "errors of a file" "$folder/lines:6:1: unknown command, * expected: not a word" "$err"
expectMatch "its output, with the trace of its messages" \
  '*trace: ngn 3087 "Set CIDMode configuration" 000000010001 00\*32*FSK*000000010002 00\*32*' "$out"
expect "carriage returns in it" "" "$(tr -cd '\r' <"$folder/out")"
run ctl <"$folder/lines"
expectMatch "errors of standard input" "stdin:6:1: unknown command, * expected: not a word" "$err"
run ctl -c "show cid mode" -f - <<<"exit
nonsense"
expect "what stands behind exit is not run" "0 " "$code $err"
run ctl -f "$folder/none"
expect "exit code of a file that is not there" 2 "$code"
run ctl -f "$folder"
expect "exit code of a folder" 2 "$code"
run ctl --sockets
expect "exit code of a bad option" 2 "$code"

{ head -c 20000 /dev/zero | tr '\0' 'x'; printf '\nshow cid mode\n'; } >"$folder/lines"
run ctl -f "$folder/lines"
expectMatch "a line that is too long" "$folder/lines:1: line too long: xxx*" "$err"
expectMatch "does not stop the rest" "*CID Mode: DTMF*" "$out"
head -c 100000 /dev/urandom >"$folder/lines"
run ctl -f "$folder/lines"
expect "exit code of noise" 1 "$code"

# Thousands of lines, sent ahead of their answers, keep their order and numbers.
for ((i = 1; i <= 5000; ++i)); do echo "no$i"; done >"$folder/lines"
run ctl -f "$folder/lines"
expect "errors of many lines" "$(sed "s|^no\(.*\)|$folder/lines:\1:1: unknown command: &|" "$folder/lines")" \
  "$(sed "s/, .* expected//" <<<"$err")"

# A partner that waits for each answer ahead of its next line gets it.
coproc partner { ctl 2>&1; }
# shellcheck disable=SC2154
process=$partner_PID # bash forgets it when it has ended
for word in one two three; do
  echo "$word" >&"${partner[1]}"
  read -r -t 20 answer <&"${partner[0]}" || answer="nothing"
  expectMatch "the answer to a single line" "stdin:*:1: unknown command, * expected: $word" "$answer"
done
eval "exec ${partner[1]}>&-"
wait "$process" || true

# The chassis by hand.
run ctl -c "chassis slot 5 card eth8" -c "chassis slot 5 present" -c "chassis slot 3 down" -c "chassis slot 1 card none" \
  -c "chassis show"
expect "the chassis" "slot  card         state    ports
1     -
3     pots64       down        64
5     eth8         present      8" "$(grep -E '^(slot|1 |3 |5 )' <<<"$out")"
run ctl -c "chassis slot 1 up" -c "chassis slot 5 card eth9" -c "chassis slot 21 up"
expect "what the chassis can't do" "slot 1 has no card type
there is no card type eth9" "$out"
expect "its exit code" 1 "$code"

# Flow rules and policies by hand.
run ctl -c "flow rule 7 name video entry 1,2,3,65535 01005e ff entry 0,0,0,0 00 00" -c "flow rule 3 name data" \
  -c "flow policy 2 name gold content 0102" -c "flow show"
expect "the flow store" "flow       id name                 entries
rule        3 data                       0
rule        7 video                      2
policy      2 gold" "$out"
run ctl -c "flow rule 7 none" -c "flow rule 7 none" -c "flow rule 8 name x entry 1,2,3 00 00" \
  -c "flow rule 8 name x entry 1,2,3,4 0 00" -c "flow rule 8 name a-name-of-21-characters" -c "flow show"
expect "what is refused" "there is none of this id
entry 1: four numbers as 1,2,3,4 and twice up to 32 hexadecimal digits
entry 1: four numbers as 1,2,3,4 and twice up to 32 hexadecimal digits
a name has 20 characters at most
flow       id name                 entries
rule        3 data                       0
policy      2 gold" "$out"

run ctl -c "chassis slot 1 card adsl16" -c "attach policy interface 1/2 pvc 3 up 2 0 down 2 3" -c "flow policy 2 none" \
  -c "flow rule 3 none" -c "detach policy interface 1/2 pvc 3" -c "flow rule 3 none" -c "chassis slot 1 card none"
expect "where a policy and a rule are bound" "it is bound to PVC 3 of port 1/2
it is bound to PVC 3 of port 1/2" "$out"

# A command that asks: the answer is the next line, or told ahead; without one nothing is done.
type() { ctl -c "show ngn_protocol_type" | tail -n 1; }
run ctl -c "set ngn_protocol_type sip"
expect "exit code of a question without an answer" 1 "$code"
expectMatch "it is told" "*asks, and got no answer" "$err"
expect "and nothing done" "ngn_protocol_type: none " "$(type)"
printf 'set ngn_protocol_type sip\nshow cid mode\n' >"$folder/lines"
run ctl -f "$folder/lines"
expect "what is no answer takes the question back" "$folder/lines:2: failed (-1): show cid mode" "$err"
printf 'set ngn_protocol_type sip\nn\nset ngn_protocol_type sip\ny\n' >"$folder/lines"
run ctl -f "$folder/lines"
expect "exit code of answers in a file" "0 " "$code $err"
expect "the second of which was yes" "ngn_protocol_type: sip " "$(type)"
run ctl --yes -c "set ngn_protocol_type h248"
expect "exit code of an answer ahead" "0 " "$code $err"
expect "which was yes" "ngn_protocol_type: h248 " "$(type)"

stop
exit $bad
