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
# Asked for when it was read first.
value $interfaces.8.$line >/dev/null
for _ in {1..50}; do
  state=$(value $interfaces.8.$line)
  [ "$state" != 4 ] && break
  sleep 0.1
done
expectMatch "whether the line is up" "[124]" "$state"
expect "its profiles" "676F6C64 6C6F7564" "$(value $adsl.1.1.4.$line | tr -d ' ') $(value $adsl.1.1.5.$line | tr -d ' ')"
gold=103.111.108.100 loud=108.111.117.100
expect "margin, rate" "50 64000" "$(value $adsl.14.1.18.$gold) $(value $adsl.14.1.12.$gold)"
expect "a threshold" 9 "$(value $adsl.15.1.14.$loud)"

for table in $interfaces .1.3.6.1.2.1.31.1.1.1 $adsl; do
  snmpwalk -v2c -c public -On "$udp" $table >"$folder/walked"
  # snmpwalk itself ends where names do not increase.
  expect "$table increases" "" "$(grep -i "not increasing" "$folder/walked" || true)"
  for repetitions in 1 7 100; do
    expect "$table in bulks of $repetitions" "$(cut -d' ' -f1 "$folder/walked")" \
      "$(snmpbulkwalk -v2c -c public -On -Cr$repetitions "$udp" $table | cut -d' ' -f1)"
  done
done
expect "names of profiles that are walked" "68.69.70.86.65.76 $gold" \
  "$(snmpwalk -v2c -c public -On "$udp" $adsl.14.1.30 | sed 's/.*\.1\.30\.\([0-9.]*\) .*/\1/' | xargs)"
stop
exit $bad
