#!/bin/bash
# Questions to cards and to the voice side, over the agent: what the simulated ends answer, one that takes its time, and an
# answer that no piece holds.
. "$(dirname "${BASH_SOURCE[0]}")/snmp_common.sh"
slots=(1 2 3 4 5 6 7 8 11 12 13)
{
  echo $'socket = "socket"\nstartup = "startup.cfg"\n[slots]'
  for slot in "${slots[@]}"; do echo "$slot = { card = \"pots64\" }"; done
} | configuration
start
milliseconds() { echo $((${EPOCHREALTIME/./} / 1000)); }

expectMatch "a card's channels" "*slot: 3*get dsp channels status successfully*" "$(ctl -c 'show dsp channels status' | tr -d '\r\n')"
ctl -c 'chassis slot 3 present' >/dev/null
expectMatch "those of a card that does not run" "*slot: 2*slot: 4*" "$(ctl -c 'show dsp channels status' | tr -d '\r\n' | sed 's/slot: 3/FOUND/')"
ctl -c 'chassis slot 3 up' >/dev/null

# While a card takes four seconds over its answer, others are served within 50 ms of what they take else.
operator() { ctl -c 'show cid mode' >/dev/null; }
other() { manager snmpset "$tcp" $table.1.4.3087 x 00 >/dev/null; }
# times COMMAND...: the shortest of three times
times() {
  local began
  for _ in 1 2 3; do
    began=$(milliseconds)
    "$@"
    echo $(($(milliseconds) - began))
  done | sort -n | head -n 1
}
quiet=("$(times operator)" "$(times other)")
ctl -c 'chassis slot 3 delay 4000' >/dev/null
"$bin/msan-frame" --agent "$udp" --timeout 20 get --hex 2844 >"$folder/channels" &
asking=$!
sleep 0.3
for kind in operator other; do
  took=$(times $kind)
  expect "$kind while a card is waited for: ${quiet[0]} ms else, now $took" yes "$( ((took < quiet[0] + 50)) && echo yes)"
  quiet=("${quiet[@]:1}")
done
expect "the card was waited for all the time" yes "$(kill -0 $asking && echo yes)"
wait $asking
expectMatch "its channels" "reply 00000001 *" "$(cat "$folder/channels")"
ctl -c 'chassis slot 3 delay 0' >/dev/null

# 704 ports: 40 + 704 * 572 bytes, of which a piece holds 400000. The second one begins within the unit of port 13/60.
question=(00*32 u32:11)
for slot in "${slots[@]}"; do question+=("u16:$slot" ffff 00*16); done
run "$bin/msan-frame" --agent "$tcp" get 3100 "${question[@]}"
expect "its pieces" "0 last 0 last 1" "$code $(grep last <<<"$out" | tr '\n' ' ' | sed 's/ $//')"
expectMatch "the first one" "reply 00000001 00*34 02c000010001 00*16 ffff 00*551 010002 *" "$out"
expect "the second one" "reply 00*441 0d003d 00*16 ffff 00*551 0d003e 00*16 ffff 00*551 0d003f 00*16 ffff 00*551 0d0040 00*16 ffff 00*550" \
  "$(sed -n 3p <<<"$out")"

# A manager that never fetches the second piece: it is the next one's, whose own question is answered behind it.
manager snmpset "$tcp" $table.1.4.3100 x "$(zeros 32)0000000b$(for slot in "${slots[@]}"; do printf '%04xffff%s' "$slot" "$(zeros 16)"; done)" >/dev/null
manager snmpget -Ov "$tcp" $table.1.5.3100 >/dev/null
run "$bin/msan-frame" --agent "$udp" get 3100 00*32 u32:1 u16:1 u16:2 00*16
expectMatch "the piece that was left" "reply 00*441 0d003d *last 1" "$(tr '\n' ' ' <<<"$out" | sed 's/ $//')"
run "$bin/msan-frame" --agent "$udp" get 3100 00*32 u32:1 u16:1 u16:2 00*16
expect "the answer behind it" "0 reply 00000001 00*35 0100010002 00*16 ffff 00*550
last 1" "$code $out"
stop
exit $bad
