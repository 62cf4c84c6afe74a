#!/bin/bash
# msan-frame: what it prints, and its exit codes.
. "$(dirname "${BASH_SOURCE[0]}")/snmp_common.sh"
start
frames() { run "$bin/msan-frame" --agent "$udp" "$@"; }

frames set 3087 '00*32' u32:1 '00*22' u16:2 '00*32'
expect "a frame that is accepted" "0 reply 00000001" "$code $out"
expectMatch "it is" "*DTMF*" "$(ctl -c "show cid mode")"
frames get --hex 3087
expect "an answer" "0 reply 00000001 00*35 01 00*23 02 00*32
last 1" "$code $out"
frames set 3087 '00*32' u32:1 '00*22' u16:3 '00*32'
expect "a frame that is refused" "1 reply 000000410001000a0c0fff88000000000003
refused: message 3087, code -120: a value is outside its range (0003)" "$code $out"
frames set 3087 -
expect "an empty frame is refused" 1 "$code"
frames set 9 00
expect "an unknown message" "3 msan-frame: the node knows no such message" "$code $err"
frames get 9
expect "asked for" "3 msan-frame: the node knows no such message" "$code $err"
frames set 3087 0g
expect "exit code of bytes that are none" 2 "$code"
frames set 65536 00
expect "exit code of an id that is none" 2 "$code"
frames set 3087
expect "exit code without bytes" 2 "$code"

# By names: what is not told stays, or of a new profile is as profile 0 has it.
frames set rfc2833 rfc2833PT=97
expect "a value" "0 done" "$code $out"
frames set 3082 RFC2833N=auto
frames get rfc2833
expect "what was not told stays" "0 rfc2833Neg auto
rfc2198Neg manual
rfc2833PTDefault 97
rfc2198PTDefault 96" "$code $out"
frames get vdslVnProfiles
expectMatch "a kind of profiles that refuses an empty question" "0 *DEFVDVN*" "$code $out"
frames set 3082 rfc2833pt=5 --json
expect "a refusal in JSON" '1 {"error":{"code":-122,"meaning":"outofrange,intheorderofthefields","message":3082,"value":5}}' \
  "$code $(tr -d ' \n' <<<"$out")"
frames set 3082 rfc=auto
expect "a name that may mean several" \
  "2 msan-frame: rfc: which of rfc2833Neg, rfc2198Neg, rfc2833PTDefault, rfc2198PTDefault?" "$code $err"
frames set 3082 rfc2833n=never
expect "a word that there is not" '2 msan-frame: rfc2833Neg: "never" is none of manual, auto' "$code $err"
ctl -c "chassis slot 1 card adsl16" >/dev/null
frames set adslProfiles --new id=65535 name=gold snrmdn=9.5
frames set adslProfiles id=1 minrateup=64 'tone[1].start=5' 'tone[1].end=9'
expect "a profile" "0 done" "$code $out"
frames set adslProfiles id=77 snrmdn=9
expect "none to be changed" "2 msan-frame: there is no id 77; --new makes one" "$code $err"
frames set dslPair id=5
expect "none of a kind that gives no others" "2 msan-frame: there is no id 5; --new makes one" "$code $err"
frames get adslProfiles id=1
expectMatch "as it is" "profile 1
  id 1
  name \"gold\"*SnrmDn 9.5 dB*MaxSnrmDn 31 dB*start 5
    end 9*MinRateUp 64 kbit/s" "$out"
run "$bin/msan-frame" --agent "$udp" set adslAttachment --from - <<<'{"port": [{"slot": 1, "port": 3, "prfId": 1}]}'
expect "a port, told in JSON" "0 done" "$code $out"
frames get adslAttachment 1/3 1/4 --json
expect "what ports have" '0 {"port":[{"slot":1,"port":3,"prfId":1},{"slot":1,"port":4,"prfId":0}]}' "$code $(tr -d ' \n' <<<"$out")"
frames set adslAttachment prfid=1
expect "a port has to be told" "2 msan-frame: for which port? SLOT/PORT" "$code $err"
run "$bin/msan-frame" --agent "$udp" set adslAttachment --from - <<<'{"port": [{"slot": 1, "port": 3, "profile": 1}]}'
expect "a member that there is not" \
  "2 msan-frame: port/0/profile: the message has no such field, or not with these values" "$code $err"
run "$bin/msan-frame" describe lineTest
expectMatch "what can be told" "lineTest (2829): *type *0 selt, 1 delt*-101 *" "$out"

# A line that would be refused makes the configuration none to go back to.
frames set adslProfiles --new id=65535 'name=a b'
expectMatch "no way back" "there would be no way back: *" "$(ctl -c 'confirm within 1' 2>/dev/null || true)"

run "$bin/msan-frame" --agent "udp:127.0.0.1:9" --timeout 0.2 get 3087
expect "exit code without a node" 3 "$code"
run "$bin/msan-frame" --agent "tcp:127.0.0.1:9" --timeout 0.2 get 3087
expect "exit code without a connection" 3 "$code"
stop
exit $bad
