#!/bin/bash
# Curves of lines at the terminal, and as pictures.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"
export LC_ALL=C.UTF-8
echo 'lines = ["slot 1 port 5 loop 1500 m 0.4 mm tap 30 m"]' | cat - "$folder/msand.toml" >"$folder/with-line"
mv "$folder/with-line" "$folder/msand.toml"
start

# curve PORT: its curve, if the line is up, in $folder/out
curve() { ctl -c "plot snr $1" >"$folder/out" 2>&1; }

# A name at which a careless quoting would run a command.
name='`t>ran`"'
run ctl -c "add adslLine profile \"$name\" id 3" -c "attach adslLine profile id 3 interface 1/5" \
  -c "set interface 1/5 enable" -c "plot snr 1/5" -c "plot snr 1/6" -c "plot snr 3/1" -c "plot snr 1/5-6"
expect "without a curve" "1/5 has no such curve now: its line is in state INIT
1/6 has no such curve now: its line is in state CONFIG
3/1 is no DSL port
a single port, as 1/5" "$(tail -n 4 <<<"$out")"
await curve 1/5
expectMatch "the drawing" "SNR of 1/5, adslLine profile 3 $name, 20*
*┤*⣿⣿⣿⣿*█████*   tone 0 *448
    MHz 0.00 *1.93
        SNR, dB    ⣿ upstream  █ downstream" "$(cat "$folder/out")"
expect "its width" 80 "$(wc -L <"$folder/out")"
expect "its width with COLUMNS" 132 "$(COLUMNS=132 ctl -c "plot hlog 1/5" | wc -L)"
expect "letters in another locale" "" "$(LC_ALL=C ctl -c "plot qln 1/5" | tr -d ' -~\n')"
expect "points of a list" 514 "$(ctl -c "plot bits 1/5 table" | wc -l)"

# A port at a glance.
run ctl -c "chassis slot 4 card adsl32-pots" -c "chassis slot 4 up" -c "add adslLine profile slow id 4" -c "set adslLine profile id 4" \
  -c "set adsl DownRateMode fixed" -c "set adsl MinRate down 3072" -c "attach adslLine profile id 4 interface 4/3" \
  -c "set rate-limit id 2 name silver us-status enable us-cir 1024 ds-status disable ds-cir 64" \
  -c "attach rate-limit profile id 2 interface 4/3" -c "set mac limit enable number 16 interface 4/3 pvc 0" \
  -c "set voice port telephone number 4711 step 1 interface 4/3" -c "flow rule 5 name video" -c "create vlan profile triple" \
  -c "add unicast tag cvlan tpid 33024 vid 100 cos 3 rule video" -c "attach vlan profile triple interface 4/3 pvc 0" \
  -c "set interface 4/3 enable"
expect "what is set" "0 " "$code $err"
expectMatch "a port that trains" "card           adsl32-pots, up
in service     yes
line profile   adslLine profile 4 slow
line           INIT
drops          none
VLAN           pvc 0: unicast tag 100
MAC limit      pvc 0: 16 addresses
rate limit     profile 2 silver, down not limited, up 1024 kbit/s
voice number   4711" "$(ctl -c "chassis port 4/3")"
await curve 4/3
expectMatch "a port that is up" "*line           SHOWTIME
*
rate           down 3072 of 2[0-9][0-9][0-9][0-9], up 1[0-9][0-9][0-9] of 1[0-9][0-9][0-9] kbit/s
margin         down 31.0, up 3[01].[0-9] dB
power          down *
attenuation    down 20.[0-9], up 10.[0-9] dB
*" "$(ctl -c "chassis port 4/3")"
run ctl -c "chassis port 3/1" -c "chassis port 5/1" -c "chassis port 1/33"
expect "other ports" "card           pots64, up
voice number   none
slot 5 has no card type
adsl32 has 32 ports" "$out"

run ctl --svg "$folder/picture.svg" -c "plot snr 1/9"
expectMatch "no picture of nothing" "1 *1/9 has no such curve now*command:1: failed (-1): plot snr 1/9*" "$code $err"
run ctl --svg "$folder/picture.svg" -c "show cid mode" -c "exit"
expectMatch "a picture of two" "2 *one -c*" "$code $err"
run ctl --svg "$folder/picture.svg" -c "show cid mode"
expect "no curve" "3 msanctl: only curves can be drawn: plot bits, gain, snr, hlog or qln of a port" "$code $err"
run /usr/bin/env PATH=/none "$bin/msanctl" --socket "$socket" --svg "$folder/picture.svg" -c "plot snr 1/5"
expectMatch "without gnuplot" "3 *gnuplot, which is not installed (Debian: gnuplot-nox)" "$code $err"
expect "nothing is left" "" "$(ls "$folder" | grep picture || true)"
if command -v gnuplot >/dev/null; then
  cd "$folder"
  run ctl --svg picture.svg -c "plot snr 1/5"
  expect "a picture" "0 " "$code $err"
  for label in 'width="1000"' '>MHz<' '>tone<' '>SNR, dB<' 'SNR of 1/5, adslLine profile 3' '>downstream<' '>upstream<'; do
    grep -q "$label" picture.svg || expect "a label of the picture" "$label" none
  done
  expect "what a name has run" "" "$(ls | grep ran || true)"
fi
stop
exit $bad
