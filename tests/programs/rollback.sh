#!/bin/bash
# Back to what was: while the node runs, by itself, and behind a death. ROLLBACK_ROUNDS, ROLLBACK_SEED: more of it, others.
. "$(dirname "${BASH_SOURCE[0]}")/snmp_common.sh"
rounds=${ROLLBACK_ROUNDS-3} seed=${ROLLBACK_SEED-1}
scenarios=$(cd "$(dirname "${BASH_SOURCE[0]}")/../scenarios" && pwd)
configuration <<TEXT
socket = "socket"
startup = "startup.cfg"
[slots]
1 = { card = "adsl16" }
2 = { card = "vdsl16" }
3 = { card = "pots32" }
[snmp]
notify = ["127.0.0.1:$((port + 10000))"]
TEXT
mode() { ctl -c 'show cid mode' | sed -n 's/.*Mode: \([A-Z]*\).*/\1/p'; }
start

# What differs is sent, and nothing else: of a list of ports the one that is other.
ctl -c 'write no-check' -c 'set cid mode dtmf' -c 'set interface 1/2 enable' -c 'set pots port feed voltage 30 current 20 interface 3/1' >/dev/null
run ctl -c 'trace hex' -c 'rollback startup'
expect "what a rollback sends" 'trace: ngn 3087 "Set CIDMode configuration" 000000010001 00*32
trace: gpon 1 2840 "yara data port cfg" 0000000100010002 00*33
trace: gpon 3 2839 "Set POTS port feed voltage & current parameters" 0000000100030001 00*19 2a00000016 00*32
the voice side: 1 message
slot 1: 1 message
slot 3: 1 message' "$(grep -v 'trace: out' <<<"$out" | tr -d '\r')"
expect "and the node has it" "0 FSK" "$(ctl compare running startup >/dev/null; echo $?) $(mode)"
expectMatch "nothing differs" "no message was to be sent*" "$(ctl -c 'rollback startup')"
printf 'set cid mode dtmf\nset cid mod xx\n' >"$folder/startup.cfg"
run ctl -c 'rollback startup'
expectMatch "a line that would be refused" "1 1 of its lines would be refused, the first is 2:13: set cid mod xx*; the node is as it was*" "$code $out"
expectMatch "no such number" "there is no 7 in the history*" "$(ctl -c 'rollback 7' 2>/dev/null || true)"
expect "managers go on" "CIDMode fsk" "$("$bin/msan-frame" --agent "$udp" get 3087)"
expect "by standard MIBs, too" 64 "$(snmpbulkwalk -v2c -c public $snmp .1.3.6.1.2.1.2.2.1.7 | wc -l)"

# Whatever was done, the node is where it was: the same configuration, and so the same in the dark.
grep -h '^cli ' "$scenarios"/*.scn | cut -c5- >"$folder/all"
some() { awk -v n=400 -v seed="$seed$1" 'BEGIN { srand(seed) } { line[NR] = $0 } END { while (n-- > 0) print line[int(rand() * NR) + 1] }' "$folder/all"; }
for ((round = 0; round < rounds; ++round)); do
  some "$round" | ctl >/dev/null 2>&1 || true
  ctl -c 'write force no-check' >/dev/null
  some "1$round" | ctl >/dev/null 2>&1 || true
  run ctl -c 'rollback startup'
  expect "round $round: $out" 0 "$code"
  expect "round $round, compared" "" "$(ctl compare running startup | grep '^[-+] *set' | grep -v 'set vdslpbo para' || true)"
done

# A change that waits to be confirmed.
ctl -c 'set cid mode fsk' -c 'write force no-check' >/dev/null
printf 'set cid mode dtmf\n' >"$folder/change"
run ctl --confirm 300 -f "$folder/change"
expectMatch "it waits" "0 *is taken back in 300 s*" "$code $out"
expectMatch "no second one" "*a change waits to be confirmed already*" "$(ctl -c 'confirm within 1' 2>/dev/null || true)"
expectMatch "no write meanwhile" "not written: a change waits to be confirmed*" "$(ctl -c write 2>/dev/null || true)"
expect "it stays" "the change stays
DTMF" "$(ctl -c confirm | tr -d '\r')
$(mode)"
expectMatch "nothing waits any more" "no change waits to be confirmed*" "$(ctl -c confirm 2>/dev/null || true)"
PATH=$PATH:/usr/sbin timeout 20 snmptrapd -f -Lo -On -C --disableAuthorization=yes "127.0.0.1:$((port + 10000))" \
  >"$folder/notification" 2>&1 &
listener=$!
ctl --confirm 1 -c 'set cid mode fsk' >/dev/null
mkfifo "$folder/typed"
ctl <"$folder/typed" >"$folder/watched" & # a terminal that does nothing meanwhile
watcher=$!
exec {typed}>"$folder/typed"
for _ in {1..300}; do [ "$(mode)" = DTMF ] && break; sleep 0.1; done
expect "nobody has confirmed" DTMF "$(mode)"
echo 'show cid mode' >&"$typed"
exec {typed}>&-
wait "$watcher"
kill $listener
expectMatch "a manager is notified: msanNotice, msanNoticeText" \
  "*.1.3.6.1.6.3.1.1.4.1.0 = OID: .1.3.6.1.4.1.8072.9999.9999.2.0.1*.2.2.0 = STRING: \"a change was not confirmed: *" "$(cat "$folder/notification")"
expectMatch "all terminals are told" "*a change was not confirmed: the node has the configuration ahead of it again*" "$(cat "$folder/watched")"
ctl -c 'confirm within 1' -c 'set cid mode fsk' -c rollback -c 'write force no-check' >/dev/null
expect "taken back at once, and written" DTMF "$(mode)"
ctl -c 'confirm within 10' -c 'set cid mode fsk' >/dev/null
kill -KILL "$node"
wait "$node" 2>/dev/null || true
printf 'set cid mode fsk\n' >"$folder/startup.cfg"
start
expect "behind a death the change is gone" DTMF "$(mode)"
expectMatch "and the log tells" "*a change was not confirmed when msand ended*" "$(cat "$folder/log")"
expect "once" none "$(ls "$folder"/startup.cfg.unconfirmed 2>/dev/null || echo none)"
stop
exit $bad
