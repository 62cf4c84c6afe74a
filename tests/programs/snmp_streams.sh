#!/bin/bash
# Connections of managers that say nothing, or do not listen; IPv6.
. "$(dirname "${BASH_SOURCE[0]}")/snmp_common.sh"
snmp="[::1]:$port"
if ! grep -q '^0*1 .* lo$' /proc/net/if_inet6; then
  echo "no IPv6 here: over IPv4"
  snmp=127.0.0.1:$port
fi
configuration <<TEXT
socket = "socket"
startup = "startup.cfg"
[snmp]
communities = [{ name = "public", access = "read-write" }]
TEXT
start
patience=30  # sanitizers take their time for large answers
if [[ $snmp = \[* ]]; then udp=udp6:$snmp tcp=tcp6:$snmp; else udp=udp:$snmp tcp=tcp:$snmp; fi
host=${snmp%:*}
host=${host//[\[\]]/}
name="6D 73 61 6E"  # of the node
alive() {
  expect "the agent answers datagrams: $1" "$name" "$(manager snmpget -Ov "$udp" .1.3.6.1.2.1.1.5.0)"
  expect "and streams: $1" "$name" "$(manager snmpget -Ov "$tcp" .1.3.6.1.2.1.1.5.0)"
}
connections() { ss -Hnt state established sport = ":$port" | wc -l; }
alive "at its address"
expect "msan-frame does, too" 0 "$("$bin/msan-frame" --agent "$tcp" set 3087 '00*32' u32:1 '00*22' u16:2 '00*32' >/dev/null; echo $?)"
expect "its own addresses alone" "$snmp $snmp" "$(ss -Hlntup 2>/dev/null | grep "pid=$node," | awk '{ print $5 }' | xargs)"

# --- many that say nothing: 64 at a time, the one that was silent for longest makes room
get='\x30\x2e\x02\x01\x01\x04\x06public\xa0\x21\x02\x01\x01\x02\x01\x00\x02\x01\x00\x30\x16\x30\x14\x06\x10'
get+='\x2b\x06\x01\x04\x01\xbf\x08\xce\x0f\xce\x0f\x01\x01\x04\x98\x0f\x05\x00' # of the query of message 3087
exec 7<>"/dev/tcp/$host/$port"
open=()
for ((i = 0; i < 150; ++i)); do
  exec {one}<>"/dev/tcp/$host/$port"
  open+=("$one")
  if ((i % 20 == 0)); then # the first connection keeps on talking
    # shellcheck disable=SC2059
    printf "$get" >&7
    head -c 48 <&7 >"$folder/answer"
    expect "an answer to it" 48 "$(wc -c <"$folder/answer")"
  fi
done
alive "beside 150 connections"
expect "connections that are left" yes "$( (($(connections) <= 64)) && echo yes)"
# shellcheck disable=SC2059
printf "$get" >&7
expect "the one that talked is among them" 48 "$(timeout 5 head -c 48 <&7 | wc -c)"
for one in "${open[@]}"; do exec {one}>&-; done
exec 7>&-
alive "behind them"

# --- one that asks and does not take the answers: 60 of 400,000 bytes, more than any buffer holds
"$bin/msan-frame" --agent "$tcp" query 3087 'ab*400000'
exec 7<>"/dev/tcp/$host/$port"
for ((i = 0; i < 60; ++i)); do
  # shellcheck disable=SC2059
  printf "$get"
done >&7 || true
sleep 0.3
alive "beside one that does not listen"
expect "a large answer is whole" "$(printf 'AB %.0s' {1..400000} | md5sum)" \
  "$(manager snmpget -Ov "$tcp" $table.1.4.3087 | sed 's/$/ /' | tr -d '\n' | md5sum)"
exec 7>&-
alive "behind it"

# --- a peer that takes its answers late gets them whole, also behind more that take none than the library can wait for: eleven
# answers are more than a socket's buffers hold, and less than what makes the node lose its patience
# shellcheck disable=SC2059
askMuch() { printf "$get%.0s" {1..11}; }
open=()
for ((i = 0; i < 34; ++i)); do
  exec {one}<>"/dev/tcp/$host/$port"
  askMuch >&"$one"
  open+=("$one")
done
exec 7<>"/dev/tcp/$host/$port"
askMuch >&7
alive "behind those that do not listen"
got=$(timeout 10 head -c $((11 * 400063)) <&7 | tr -dc '\253' | wc -c)
expect "all answers" 4400000 "$got"
for one in 7 "${open[@]}"; do exec {one}>&-; done
stop
exit $bad
