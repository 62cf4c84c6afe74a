#!/bin/bash
# Captures of a node: what "trace file" writes, as tshark shows it.
. "$(dirname "${BASH_SOURCE[0]}")/snmp_common.sh"
build=$2
sed -i '1i capture-size = 1' "$folder/msand.toml"
start
file=$folder/captures/a.pcapng
frames() { "$bin/msan-frame" --agent "$udp" --piece 20 "$@" >/dev/null; }
show() { tshark -X "lua_script:$build/share/wireshark/msan.lua" -r "$file" "$@" 2>/dev/null; }

for name in a ../a.pcapng .pcapng .a.pcapng; do
  run ctl -c "trace file $name"
  expectMatch "the name $name" "1 *a capture's name is of letters*" "$code $out"
done
expect "no capture" "there is no capture" "$(ctl -c "trace file" | tr -d '\r')"
expect "it begins" "every message goes to $file, up to 1 MiB" "$(ctl -c "trace file a.pcapng" | tr -d '\r')"
frames set 3087 '00*32' u32:1 '00*22' u16:2 '00*32' || bad=1
frames get 3087
frames set 3087 '00*32' u32:1 '00*22' u16:3 '00*32' || true
ctl -c "chassis port 1/1" >/dev/null
told=$(ctl -c "trace file off")
expectMatch "it ends" "$file: * messages, $(stat -c %s "$file") bytes*" "$told"
# Whole, though they came in pieces, and in order: a SET and what it caused, a GET, a SET that is refused.
expect "the manager and the voice side" 'set|0|dtmf||
ngn|0|dtmf||
set reply|0|||
get|0|||
get reply|0|dtmf||
set|0|3||
set reply|0||no such mode|3' \
  "$(show -Y 'msan.id == 3087' -T fields -E 'separator=|' -e msan.road -e msan.slot -e msan.cidMode.CIDMode -e msan.meaning -e msan.cidMode.error.CIDMode)"
expectMatch "a card's answer comes in" "*gpon answer|1|1*" \
  "$(show -Y 'frame.packet_flags_direction == 1' -T fields -E 'separator=|' -e msan.road -e msan.slot -e frame.p2p_dir)"
show -T json --no-duplicate-keys | "$build/tools/compare_dissection" "$file" || bad=1

ctl -c "trace file a.pcapng" >/dev/null
for _ in {1..400}; do echo "chassis slot 3 up"; done | ctl >/dev/null
expectMatch "a capture that is full" "*bytes, full*" "$(ctl -c "trace file")"
expect "its size" yes "$([ "$(stat -c %s "$file")" -gt 1000000 ] && [ "$(stat -c %s "$file")" -le 1048576 ] && echo yes)"
expect "packets that can't be read" 0 "$(show -Y msan.malformed | wc -l)"
stop
exit $bad
