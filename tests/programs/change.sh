#!/bin/bash
# What a change would do, what it has changed, and what is kept. CHANGE_STEPS, CHANGE_SEED: longer files of lines, others.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"
steps=${CHANGE_STEPS-1500} seed=${CHANGE_SEED-1}
configuration <<TEXT
socket = "socket"
startup = "startup.cfg"
[slots]
1 = { card = "adsl16" }
2 = { card = "vdsl16" }
3 = { card = "pots32" }
4 = { card = "eth16" }
TEXT
start
scenarios=$(cd "$(dirname "${BASH_SOURCE[0]}")/../scenarios" && pwd)
bin=$(cd "$bin" && pwd)
cd "$folder"
printf 'set cid mode dtmf\n! a comment\nset cid mod xx\nset pots port feed voltage 30 current 20 interface 3/1\n\nshow slot 9 pots port feed voltage and current configuration\n' >new.cfg
run ctl check new.cfg
expect "a change is checked" 'new.cfg:3:13: unknown command, fsk or dtmf expected: set cid mod xx
new.cfg:6: failed (-1): show slot 9 pots port feed voltage and current configuration
4 lines, 2 would not be taken
the voice side: 1 message, 38 bytes
slot 3: 1 message, 64 bytes' "$(tr -d '\r' <<<"$out")"
expect "its exit code" 1 "$code"
run ctl check - --messages <<<'set cid mode dtmf'
expect "a good one, with its messages" '0 ngn 3087 000000010002 00*32
1 line, all would be taken
the voice side: 1 message, 38 bytes' "$code $(tr -d '\r' <<<"$out")"
run ctl -c 'flow rule 8 name "of two"' -c 'check new.cfg'
expectMatch "with a rule of two words" "*4 lines, 2 would not be taken*" "$out"
expect "nothing of it is done" 0 "$(ctl -c 'show cid mode' | grep -c DTMF)"
run ctl -c 'check open' -c 'set cid mode dtmf' -c write -c exit -c 'set cid mode fsk' -c 'check close' -c 'show cid mode'
expectMatch "typed in the dark, up to exit" "*3 lines, all would be taken*the voice side: 1 message*FSK*" "$out"
expect "a file that isn't there" 1 "$(ctl -c 'check none.cfg' >/dev/null 2>&1; echo $?)"

# A shadow that is killed is told of at once.
killed() {
  local shadow try
  for ((try = 0; try < 500; ++try)); do
    if shadow=$(pgrep -P "$node" -f -- --shadow); then
      kill -KILL "$shadow" || true
      return
    fi
  done
}
yes 'set cid mode fsk' | head -n 30000 >long.cfg || true # takes it longer than to be found
killed &
run ctl check long.cfg
wait $!
expectMatch "a shadow that dies" "[12] *the shadow*" "$code $out"
expect "and nothing of it stays" 0 "$(pgrep -c -P "$node" || true)"
run ctl check - <<<'set cid mode dtmf'
expect "the next one" 0 "$code"

expect "nothing written yet" 2 "$(ctl compare running startup >/dev/null; echo $?)"
run ctl -c 'write comment "the first"' -c 'set cid mode dtmf' -c write
expect "written" "0 2" "$code $(grep -c 'written to' <<<"$out")"
run ctl compare 'rollback' 1 running
expectMatch "what has changed" "1 --- rollback 1*+++ running*-set cid mode fsk*+set cid mode dtmf*" "$code $out"
run ctl compare --json startup rollback 1
expect "as JSON" '1 {"same":false,"removed":["set cid mode dtmf"],"added":["set cid mode fsk"]}' "$code $(tr -d '\r' <<<"$out")"
expect "order and spelling don't count" 0 "$( (printf 'se cid m d\n'; sort startup.cfg) >other.cfg; ctl compare startup other.cfg >/dev/null; echo $?)"
expect "no such number" 2 "$(ctl compare rollback 2 running >/dev/null; echo $?)"
expectMatch "history" "*startup*a terminal*1 *a terminal the first*" "$(ctl -c 'show history')"
echo 'set cid mode fsk' >startup.cfg
ctl -c 'write no-check' >/dev/null
expectMatch "somebody else's file is kept, too" "*startup*1 *another*found at this write*2 *a terminal*3 *the first*" "$(ctl -c 'show history')"
for i in {1..26}; do printf 'write no-check\nwrite --no-check\n'; done | ctl >/dev/null
expect "so many are kept" 51 "$(ls startup.cfg.history | wc -l)"
expectMatch "a history file is a configuration" "! written *, a terminal: *set cid mode dtmf*" "$(zcat "$(ls -d startup.cfg.history/* | tail -n 1)")"
stop

# What was predicted is what comes: all that leaves the node, the texts and the results, but for what cards tell of lines.
rm -f startup.cfg
start
grep -h "^cli " "$scenarios"/*.scn | cut -c5- >all
awk -v n="$steps" -v seed="$seed" 'BEGIN { srand(seed) } { line[NR] = $0 } END { while (n-- > 0) print line[int(rand() * NR) + 1] }' all >lines
told() {
  tr -d '\r' | awk '/^(answer|#)/ { next } /^(cli|confirm|running)/ { if (!asks) printf "%s", block; block = ""; asks = 0 }
    /^g?(e?pon|ngn)\?/ { asks = 1 } { block = block $0 "\n" } END { if (!asks) printf "%s", block }'
}
ctl -c 'check lines record' 2>/dev/null | told >predicted || true
ctl -c 'record real.scn' >/dev/null
ctl -f lines >/dev/null 2>&1 || true
ctl -c 'record off' >/dev/null
sed '1,/^# What was done/d' captures/real.scn | told >real
expect "lines that were predicted" yes "$([ "$(grep -c '^cli' real)" -gt $((steps / 2)) ] && echo yes)"
ctl -c write >written 2>&1 || true
expect "lines that would not come back, but for those of power back-off" "" "$(grep 'will not come back' written | grep -v 'set vdslpbo para' || true)"
diff predicted real >difference || { bad=1; echo "---- predicted and real" >&2; head -n 20 difference | cut -c 1-200 >&2; }
stop
exit $bad
