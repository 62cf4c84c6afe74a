#!/bin/bash
# msan-frame: what it prints, and its exit codes.
. "$(dirname "${BASH_SOURCE[0]}")/snmp_common.sh"
start
frames() { run "$bin/msan-frame" --agent "$udp" "$@"; }

frames set 3087 '00*32' u32:1 '00*22' u16:2 '00*32'
expect "a frame that is accepted" "0 reply 00000001" "$code $out"
expectMatch "it is" "*DTMF*" "$(ctl -c "show cid mode")"
frames get 3087
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
run "$bin/msan-frame" --agent "udp:127.0.0.1:9" --timeout 0.2 get 3087
expect "exit code without a node" 3 "$code"
run "$bin/msan-frame" --agent "tcp:127.0.0.1:9" --timeout 0.2 get 3087
expect "exit code without a connection" 3 "$code"
stop
exit $bad
