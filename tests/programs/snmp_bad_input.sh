#!/bin/bash
# What comes to the manager's door from somebody who means no good.
. "$(dirname "${BASH_SOURCE[0]}")/snmp_common.sh"
start
name="6D 73 61 6E"  # of the node
alive() { expect "the agent goes on behind $1" "$name" "$(manager snmpget -Ov "$udp" .1.3.6.1.2.1.1.5.0)"; }
msanFrame() { run "$bin/msan-frame" "$@"; }

# --- pieces that no others follow: they hold the module's memory until their manager has gone
expect "a piece of a frame" "$table.1.2.3087 00" "$(manager snmpset "$udp" $table.1.2.3087 x 00)"
for id in 3093 3080; do
  expectMatch "there is memory for one" "*resourceUnavailable*" "$(manager snmpset "$udp" $table.1.2.$id x 00)"
done
msanFrame --agent "$udp" set 3087 00
expect "the last piece" 1 "$code"
for id in 3087 3093 3080 3087; do
  expect "a piece of a manager that goes then" "$table.1.2.$id 00" "$(manager snmpset "$tcp" $table.1.2.$id x 00)"
done
expect "memory for others" "$table.1.2.3093 00" "$(manager snmpset "$udp" $table.1.2.3093 x 00)"
msanFrame --agent "$udp" set 3093 00

# --- lengths
for agent in "$udp" "$tcp"; do
  for length in 0 1; do
    expectMatch "a frame of $length bytes" "*inconsistentValue*" \
      "$(manager snmpset "$agent" $table.1.1.3087 x "$(printf '%.*s' $((2 * length)) 00)")"
  done
done
msanFrame --agent "$udp" set 3087 '00*65446'
expect "a frame of zeros of many pieces is refused by the module" 1 "$code"
msanFrame --agent "$udp" set 3087 "00*32" u32:1 "00*22" u16:2 "00*399940"
expectMatch "400,000 bytes in pieces of a datagram" "0 reply 00000001" "$code $out"
msanFrame --agent "$tcp" set 3087 "00*32" u32:1 "00*22" u16:1 "00*399940"
expectMatch "400,000 bytes in one piece" "0 reply 00000001" "$code $out"
# The largest value of a datagram: 65,507 bytes less 16 for the name, 6 for the community, 39 for the rest of the message.
msanFrame --agent "$udp" --piece 65446 set 3087 "00*32" u32:1 "00*22" u16:2 "00*65386"
expectMatch "the largest frame of a datagram" "0 reply 00000001" "$code $out"
# One byte more; unless the request's number, which the library draws, needs only three bytes in place of four.
for ((i = 0; i < 3; ++i)); do
  msanFrame --agent "$udp" --piece 65447 --timeout 1 set 3087 "00*32" u32:1 "00*22" u16:1 "00*65387"
  [ "$code" = 0 ] || break
  ctl -c "set cid mode dtmf" >/dev/null
done
expect "what fits into no datagram is not sent" "3 msan-frame: Too long" "$code $err"
expectMatch "and changed nothing" "*DTMF*" "$(ctl -c "show cid mode")"
for length in 65448 65449; do
  msanFrame --agent "$udp" --piece $length --timeout 1 set 3087 "00*$length"
  expect "$length bytes in one datagram are not sent" 3 "$code"
  msanFrame --agent "$udp" set 3087 "00*32" u32:1 "00*22" u16:2 "00*$((length - 60))"
  expectMatch "in two they are accepted" "0 reply 00000001" "$code $out"
done
msanFrame --agent "$tcp" --piece 400001 set 3087 "00*32" u32:1 "00*22" u16:2 "00*399941"
expect "400,001 bytes are refused" "1 reply 00000041
refused: the node gives no reason" "$code $out"
msanFrame --agent "$tcp" --piece 2000000 set 3087 "00*2000000"
expect "2,000,000 bytes are not read" 3 "$code"
alive "large frames"
# A value that a stream has brought and a datagram can't take away: a query waits for ever to be asked.
msanFrame --agent "$tcp" query 3087 "ab*65447"
expect "a large query" 0 "$code"
expectMatch "is too big for a datagram" "*tooBig*" "$(manager snmpget "$udp" $table.1.4.3087)"
expectMatch "and not for a stream" "AB AB*" "$(manager snmpget -Ov "$tcp" $table.1.4.3087)"
msanFrame --agent "$tcp" query 3087 "ab*65446"
expectMatch "one byte less fits" "AB AB*" "$(manager snmpget -Ov "$udp" $table.1.4.3087)"
msanFrame --agent "$tcp" query 3087 "ab*400001"
expect "one that is longer than any frame" 3 "$code"

# --- garbage
for ((i = 0; i < 300; ++i)); do
  head -c $((i * 5 + 1)) /dev/urandom >"/dev/udp/127.0.0.1/$port"
done
alive "datagrams of garbage"
# A whole header of a GET, then whatever comes.
for ((i = 0; i < 100; ++i)); do
  { printf '\x30\x29\x02\x01\x01\x04\x06public\xa0'; head -c 28 /dev/urandom; } >"/dev/udp/127.0.0.1/$port"
done
alive "requests of garbage"
for ((i = 0; i < 20; ++i)); do
  head -c 3000 /dev/urandom >"/dev/tcp/127.0.0.1/$port" || true
done 2>/dev/null
alive "streams of garbage"

# Peers that begin a request and wait; one of them says that 2 GB will come.
exec 5<>"/dev/tcp/127.0.0.1/$port" 6<>"/dev/tcp/127.0.0.1/$port"
printf '\x30\x29\x02\x01\x01\x04\x06pub' >&5
printf '\x30\x84\x7f\xff\xff\xff\x02\x01\x01' >&6
alive "peers that wait"
expect "another one is served over TCP" "$name" "$(manager snmpget -Ov "$tcp" .1.3.6.1.2.1.1.5.0)"
printf 'lic' >&5
exec 5>&- 6>&-
alive "peers that leave"
expect "lines of its log" yes "$( (($(wc -l <"$folder/log") < 60)) && echo yes)"
stop
exit $bad
