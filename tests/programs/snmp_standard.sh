#!/bin/bash
# A manager that knows nothing of this node reads its lines, by numbers and with the published MIBs where they are.
. "$(dirname "${BASH_SOURCE[0]}")/snmp_common.sh"
interfaces=.1.3.6.1.2.1.2.2.1
adsl=.1.3.6.1.2.1.10.94.1.1
line=$((1 << 16 | 2)) # port 1/2
start
ctl -c "add adslLine profile gold id 7" -c "set adslLine profile id 7" -c "set adsl MinRate down 64" \
  -c "set adsl SnrmMargin up 5" -c "attach adslLine profile id 7 interface 1/2" \
  -c "add alarm profile loud id 3" -c "set alarm profile id 3" -c "set alarm FeLprsThreshold15min 9" \
  -c "attach alarm profile id 3 interface 1/2" -c "set interface 1/2 enable" >/dev/null
value() { manager snmpget -Ov "$udp" "$1"; }

expect "the number of interfaces" 96 "$(value .1.3.6.1.2.1.2.1.0)"
expect "the type of an ADSL line" 94 "$(value $interfaces.3.$line)"
expect "in service" 1 "$(value $interfaces.7.$line)"
expect "not in service" 2 "$(value $interfaces.7.$((line + 1)))"
expect "no such port" "$interfaces.3.$((1 << 16 | 33)) = No Such Instance currently exists at this OID" \
  "$(snmpget -v2c -c public -On "$udp" $interfaces.3.$((1 << 16 | 33)))"
expectMatch "whether the line is up, read for the first time" "[12]" "$(value $interfaces.8.$line)"
expect "its profiles" "676F6C64 6C6F7564" "$(value $adsl.1.1.4.$line | tr -d ' ') $(value $adsl.1.1.5.$line | tr -d ' ')"
gold=103.111.108.100 loud=108.111.117.100
expect "margin, rate" "50 64000" "$(value $adsl.14.1.18.$gold) $(value $adsl.14.1.12.$gold)"
for none in 14.1.11.$gold 1.1.4.$((1 << 16 | 33)); do expectMatch "$none" "*No Such Instance*" "$(value $adsl.$none)"; done
expect "a threshold" 9 "$(value $adsl.15.1.14.$loud)"

# A card that takes its time delays those alone who ask for it, and nobody for long.
ctl -c "chassis slot 1 delay 800"
value $adsl.2.1.4.$((line + 5)) >"$folder/slow" &
slow=$!
value $adsl.4.1.2.$((line + 6)) >"$folder/other" &
other=$!
sleep 0.2
expect "others, meanwhile" "2 " "$(value $interfaces.7.$((line + 5))) $(cat "$folder/slow")"
wait $slow $other
expectMatch "and those who wait" "[0-9-]* [0-9]*" "$(cat "$folder/slow") $(cat "$folder/other")"
ctl -c "chassis slot 1 delay 6000"
absent="$adsl.2.1.4.$((line + 7)) No Such Instance currently exists at this OID"
for patience in 5 1; do expect "a card that is silent" "$absent" "$(patience=$patience manager snmpget "$udp" $adsl.2.1.4.$((line + 7)))"; done
ctl -c "chassis slot 1 delay 0"
sleep 3 # until it has answered
# What the card tells of a line: the same as at the terminal, in the manager's units.
ctl -c "show port dsl_status slot 1 port 2" >"$folder/state"
told() { awk -v name="$1" -v factor="$2" 'index($0, name) == 1 { printf "%d", $NF * factor + ($NF < 0 ? -0.5 : 0.5) }' "$folder/state"; }
for row in "2.1.4 US snrMargin 10" "2.1.5 Agg Ln Atten Us 1" "2.1.7 DS outputPower 10" "2.1.8 DS attainableBitRate 1000" \
  "3.1.4 DS snrMargin 10" "3.1.5 Agg Ln Atten Ds 1" "3.1.7 US outputPower 10" "3.1.8 US attainableBitRate 1000" \
  "4.1.1 DS delay 1" "4.1.2 DS LineBitRate 1000" "5.1.1 US delay 1" "5.1.2 US LineBitRate 1000"; do
  read -r column name <<<"${row% *}"
  expect "$name" "$(told "$name" "${row##* }")" "$(value $adsl.$column.$line)"
done
expect "the modem's vendor and the beginning of its version" "53 49 4D 4C 73 69 6D 75 6C 61 74 65 64 20 6D 6F 64 65 6D 20" \
  "$(value $adsl.3.1.2.$line) $(value $adsl.3.1.3.$line)"

for group in $interfaces .1.3.6.1.2.1.31.1.1.1 $adsl; do
  snmpwalk -v2c -c public -On "$udp" $group >"$folder/walked"
  # snmpwalk itself ends where names do not increase.
  expect "$group increases" "" "$(grep -i "not increasing" "$folder/walked" || true)"
  for repetitions in 1 7 100; do
    expect "$group in bulks of $repetitions" "$(cut -d' ' -f1 "$folder/walked")" \
      "$(snmpbulkwalk -v2c -c public -On -Cr$repetitions "$udp" $group | cut -d' ' -f1)"
  done
done
expect "names of profiles that are walked" "68.69.70.86.65.76 $gold" \
  "$(snmpwalk -v2c -c public -On "$udp" $adsl.14.1.30 | sed 's/.*\.1\.30\.\([0-9.]*\) .*/\1/' | xargs)"

# --- writes
config() { ctl -c "show running-config" | tr -d '\r'; }
# written WHAT OBJECT TYPE VALUE...: is done
written() { expect "$1" "" "$(snmpset -v2c -c public -On -r 0 "$udp" "${@:2}" 2>&1 | grep "^Reason" || true)"; }
# refused WHAT ERROR OBJECT TYPE VALUE...: with the number of the variable, if it is not the first
refused() {
  local told
  told=$(snmpset -v2c -c public -On -r 0 "$udp" "${@:3}" 2>&1 || true)
  local reason object
  reason=$(sed -n 's/^Reason: \([a-zA-Z]*\).*/\1/p' <<<"$told") object=$(sed -n 's/^Failed object: //p' <<<"$told")
  expect "$1" "$2" "$reason${4+$(for ((i = 6; i < $#; i += 3)); do [ "${!i}" = "$object" ] && echo " $((i / 3))"; done)}"
}
profile=$adsl.14.1 alarm=$adsl.15.1 new=110.101.119 # new
attached=$adsl.1.1.4.$line attachedAlarm=$adsl.1.1.5.$line

ctl -c "set adsl PowerMode L2Mode" -c "set adsl toneblackout number 2 0 start 5 end 9 1 start 11 end 12" \
  -c "set alarm NeUasThreshold15min 8" >/dev/null
written "columns" $profile.16.$gold i 3 $profile.4.$gold i 44 $profile.12.$gold u 128000 $profile.19.$gold i 250 $profile.20.$gold i 20 \
  $profile.15.$gold i 63 $profile.26.$gold u 32000 $alarm.2.$loud i 900
expect "what was not set stays" "set adsl UpRateMode RunAdpt
set adsl SnrmMargin down 4.4
set adsl SnrmMargin up 5.0
set adsl MaxInterLeaveDelay down 63
set adsl PowerMode L2Mode
set adsl Snrm up MaxSnrm 25 MinSnrm 2
set adsl MinRate down 128
set adsl MinRate up 32
set adsl toneblackout number 2 0 start 5 end 9 1 start 11 end 12
set alarm NeLofsThreshold15min  900
set alarm NeUasThreshold15min  8
set alarm FeLprsThreshold15min  9" "$(config | grep -E '^set (adsl|alarm) [A-Zt]' | sed 's/ *$//' | sort -s -k2,2)"
expect "a rate mode" "2 3" "$(value $profile.2.$gold) $(value $profile.16.$gold)"
refused "above the range" wrongValue $profile.4.$gold i 311
refused "below it" wrongValue $profile.4.$gold i -1
refused "delays above the node's" wrongValue $profile.15.$gold i 64
refused "parts of a dB" wrongValue $profile.5.$gold i 255
refused "parts of a kbit/s" wrongValue $profile.12.$gold u 1500
refused "another type" wrongType $profile.12.$gold i 1000
refused "the least margin above the most" "inconsistentValue 2" $profile.4.$gold i 7 $profile.20.$gold i 260
refused "a channel that the line type lacks" inconsistentName $profile.11.$gold u 1000
refused "what the node has not" notWritable $profile.3.$gold i 1
refused "the default profile" notWritable $profile.4.68.69.70.86.65.76 i 1
refused "a column of no row" inconsistentName $profile.4.$new i 1
expect "nothing of a refused request" 44 "$(value $profile.4.$gold)"

refused "active without a row" inconsistentValue $profile.30.$new i 1
refused "createAndGo with one" inconsistentValue $profile.30.$gold i 4
refused "createAndWait" wrongValue $profile.30.$new i 5
refused "notInService" wrongValue $profile.30.$gold i 2
refused "a name with a blank" noCreation $profile.30.97.32 i 4
refused "a name of 21 letters" noCreation $profile.30.97$(printf '.97%.0s' {1..20}) i 4
refused "the name that the node has for the default" inconsistentName \
  $alarm.20.100.101.102.97.117.108.116.78.97.109.101 i 4
refused "a profile in use" inconsistentValue $profile.30.$gold i 6
written "a profile that is not there" $profile.30.$new i 6
written "active" $profile.30.$gold i 1
written "a new one, its port, the end of the old one" $profile.30.$gold i 6 $attached s new $profile.18.$new i 99 \
  $profile.30.$new i 4
expect "the port and its profile" "6E 65 77 99" "$(value $attached) $(value $profile.18.$new)"
expect "the old one" "" "$(config | grep gold || true)"
refused "a port without a profile" inconsistentValue $attached s gold
refused "a port whose profile ends" inconsistentValue $attached s new $profile.30.$new i 6
refused "a name above the MIB's" wrongLength $attached s "$(printf 'a%.0s' {1..33})"
written "the default ones" $attached s DEFVAL $attachedAlarm s DEFVAL $alarm.20.$loud i 6
expect "no port has another" "" "$(config | grep -E '^attach|loud' || true)"

written "in service and not" $interfaces.7.$line i 2 $interfaces.7.$((line + 1)) i 1
expect "the ports" "set interface 1/3 enable" "$(config | grep '^set interface')"
refused "testing" wrongValue $interfaces.7.$line i 3
refused "POTS ports" notWritable $interfaces.7.$((3 << 16 | 1)) i 1
refused "the port of no card" noCreation $interfaces.7.$((2 << 16 | 1)) i 1
refused "beside other objects" resourceUnavailable $interfaces.7.$line i 1 .1.3.6.1.2.1.1.4.0 s somebody

# All numbers are taken, and one name is there twice: the module refuses what looks well. What was done ahead of it goes.
for id in {1..20}; do echo "add alarm profile p$id id $id"; done | ctl >/dev/null
manager snmpset "$udp" $table.1.1.34668 x "$(zeros 32)00010005$(printf p3 | od -An -tx1 | tr -d ' ')$(zeros 82)" >/dev/null
refused "no number is free" "commitFailed 3" $profile.18.$new i 100 $attached s other $alarm.20.$new i 4 \
  $profile.30.111.116.104.101.114 i 4 $interfaces.7.$line i 1
expect "all is as before" "99 44 45 46 56 41 4C" "$(value $profile.18.$new) $(value $attached)"
expect "and the profile made for it is gone" "" "$(config | grep other || true)"

# Somebody's pieces stay his.
snmpset -v2c -c public "$udp" $table.1.2.34661 x "$(zeros 32)" >/dev/null
refused "while a frame comes in pieces" resourceUnavailable $profile.18.$new i 7
stop
exit $bad
