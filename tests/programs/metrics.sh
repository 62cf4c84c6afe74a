#!/bin/bash
# What a node counts, at the terminal and in the file that Prometheus reads.
. "$(dirname "${BASH_SOURCE[0]}")/snmp_common.sh"
sed -i '1i metrics = "page.prom"' "$folder/msand.toml"
start

# value SAMPLE: its value now
value() { ctl -c "show metrics" | tr -d '\r' | grep -v '^#' | grep -F "$1 " | sed 's/.* //'; }

before=$(value 'msan_message_bytes_total{slot="0",link="ngn",kind="told"}')
run "$bin/msan-frame" --agent "$udp" set 3087 '00*32' u32:1 '00*22' u16:1 '00*32'
run "$bin/msan-frame" --agent "$udp" set 3087 '00*32' u32:1 '00*22' u16:3 '00*32'
run "$bin/msan-frame" --agent "$udp" get --hex 4711
expect "requests" 2 "$(value 'msan_requests_total{message="cidMode",request="set"}')"
expect "their durations" 2 "$(value 'msan_request_duration_seconds_bucket{message="cidMode",request="set",le="+Inf"}')"
expect "the refused one" 1 "$(value 'msan_refusals_total{message="cidMode",request="set",code="-120"}')"
expect "one of no message" 1 "$(value 'msan_refusals_total{message="unknown",request="get",code="none"}')"
expect "bytes to the voice side: count, mode, 32 reserved" 38 \
  "$(($(value 'msan_message_bytes_total{slot="0",link="ngn",kind="told"}') - before))"
expect "terminals" 1 "$(value msan_terminals)"

# A line is on the page when somebody has asked for it.
run ctl -c "add adslLine profile slow id 4" -c "set adslLine profile id 4" -c "set adsl DownRateMode fixed" \
  -c "set adsl MinRate down 3072" -c "attach adslLine profile id 4 interface 1/5" -c "set interface 1/5 enable"
expect "a line that nobody asked for" "0 0" "$(value msan_lines_told) $(value msan_lines_up)"
isUp() { ctl -c "get lineStatus 1/5" >/dev/null && [ "$(value msan_lines_up)" = 1 ]; }
await isUp
rate='msan_line_rate_bytes_per_second{slot="1",port="5",direction="down"}'
expect "3072 kbit/s" 384000 "$(value "$rate")"
expectMatch "its margin" "[1-9]*" "$(value 'msan_line_margin_decibels{slot="1",port="5",direction="up"}')"

expect "a file for other users" 644 "$(stat -c %a "$folder/page.prom")"
await grep -qF "$rate 384000" "$folder/page.prom"
expect "the file follows" "$rate 384000" "$(grep -F "$rate" "$folder/page.prom")"
run promtool check metrics <"$folder/page.prom"
expect "names, units and types" "0 " "$code $out$err"
ctl -c "chassis slot 1 down" >/dev/null
expect "lines of a card that is gone" 0 "$(value msan_lines_told)"
stop
expect "nothing is left beside it" page.prom "$(cd "$folder" && echo page*)"

sed -i 's/page.prom/none\/page.prom/' "$folder/msand.toml"
run "$bin/msand" --check --config "$folder/msand.toml"
expectMatch "a folder that is not there" "2 msand: */msand.toml:1: */none/page.prom: *" "$code $err"
sed -i 1d "$folder/msand.toml"
start
run ctl -c "show metrics"
expectMatch "without a file" "1 nothing is counted*" "$code $out"
stop
exit $bad
