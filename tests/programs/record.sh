#!/bin/bash
# What is done at all doors at once, recorded, and played to the same end. RECORD_STEPS and RECORD_SEED: more of it, and
# other doings.
. "$(dirname "${BASH_SOURCE[0]}")/snmp_common.sh"
steps=${RECORD_STEPS-150} seed=${RECORD_SEED-1}
scenarios=$(dirname "${BASH_SOURCE[0]}")/../scenarios
configuration <<TEXT
socket = "socket"
startup = "startup.cfg"
flow = ["rule 5 name video entry 1,2,3,4 01005e ff", "policy 2 name gold"]
[slots]
1 = { card = "adsl16" }
2 = { card = "vdsl16" }
3 = { card = "pots32" }
4 = { card = "eth16", state = "present" }
TEXT
start
file=$folder/captures/all.scn

expect "no record" "nothing is recorded" "$(ctl -c record | tr -d '\r')"
run ctl -c "record all.pcapng"
expectMatch "another ending" "1 *a record's name is of letters*ends with .scn*" "$code $out"
printf 'set cid mode dtmf\nset adslline name before id 9\n' | ctl >/dev/null 2>&1 || true
expect "it begins" "what is done is recorded in $file, up to 64 MiB" "$(ctl -c "record all.scn" | tr -d '\r')"

# some N < LINES: N of them, by chance, with repetitions
some() { awk -v n="$1" -v seed="$seed$2" 'BEGIN { srand(seed) } { line[NR] = $0 } END { while (n-- > 0) print line[int(rand() * NR) + 1] }'; }
operate() { { grep -h '^cli ' "$scenarios"/*.scn | cut -c5-; cat "$folder/words"; } | some "$steps" "$1" | ctl; }
cat >"$folder/words" <<TEXT
show running-config
chassis slot 1 up
chassis slot 2 down
chassis slot 2 up
chassis slot 3 present
chassis slot 3 up
chassis slot 4 up
chassis slot 5 card dsl16
chassis slot 5 card none
chassis slot 5 up
chassis port 1/5
plot snr 1/5
get cidMode
flow rule 7 name other
flow rule 7 none
flow policy 2 none
set ngn_protocol_type sip
y
set ngn_protocol_type h248
n
TEXT
manage() {
  local verb id bytes
  grep -hE '^snmp (set|get) [0-9]+ [^"\\]+$' "$scenarios"/*.scn | some "$((steps / 2))" "$1" |
    while read -r _ verb id bytes; do
      # shellcheck disable=SC2086
      "$bin/msan-frame" --agent "$udp" --timeout 60 "$verb" $([ "$verb" = set ] || echo --hex) "$id" $bytes || true
    done
}
standard() {
  local turn
  for ((turn = 0; turn < steps / 10; ++turn)); do
    manager snmpset $snmp ".1.3.6.1.2.1.2.2.1.7.$((65537 + turn % 16))" i $((turn % 2 + 1))
    manager snmpbulkwalk $snmp .1.3.6.1.2.1.2.2
    manager snmpbulkwalk $snmp .1.3.6.1.2.1.10.94
  done
}
workers=()
for work in "operate 1" "operate 2" "manage 3" standard; do
  $work >/dev/null 2>&1 &
  workers+=($!)
done
for worker in "${workers[@]}"; do wait "$worker" || true; done

# A question that another terminal's line comes between.
{ printf 'set ngn_protocol_type none\ny\nset ngn_protocol_type sip\n'; sleep 0.5; printf 'y\n'; } | ctl >/dev/null 2>&1 &
sleep 0.3
ctl -c "show cid mode" >/dev/null
wait $! || true
expectMatch "it ends" "$file: * directives, $(stat -c %s "$file") bytes*" "$(ctl -c "record off")"
ctl -c "set cid mode fsk" >/dev/null
stop
directives=$(grep -cE '^(cli|snmp|std|card|flow|confirm|running)' "$file")
echo "$directives directives, $(stat -c %s "$file") bytes"
expectMatch "each door is in it" "* 1 1 1 1 1 1 1" "doors: $(for word in 'cli ' 'snmp set ' 'snmp get ' 'std ' 'card ' 'answer ' 'confirm '; do
  grep -q "^$word" "$file" && printf ' 1'
done)"
run "$bin/msan-scenario" "$file"
expect "it plays to the same end" "0 1 passed, 0 failed" "$code $(tail -n 1 <<<"$out")"
[ "$code" = 0 ] || head -n 40 <<<"$out" | cut -c 1-300 >&2
exit $bad
