#!/bin/bash
# Curves of lines at the terminal, and as pictures.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"
export LC_ALL=C.UTF-8
echo 'lines = ["slot 1 port 5 loop 1500 m 0.4 mm tap 30 m"]' | cat - "$folder/msand.toml" >"$folder/with-line"
mv "$folder/with-line" "$folder/msand.toml"
start
# A name at which a careless quoting would run a command.
name='`t>ran`"'
run ctl -c "add adslLine profile \"$name\" id 3" -c "attach adslLine profile id 3 interface 1/5" \
  -c "set interface 1/5 enable" -c "plot snr 1/5" -c "plot snr 1/6" -c "plot snr 3/1" -c "plot snr 1/5-6"
expect "without a curve" "1/5 has no such curve now: its line is in state INIT
1/6 has no such curve now: its line is in state CONFIG
3/1 is no DSL port
a single port, as 1/5" "$(tail -n 4 <<<"$out")"
until ctl -c "plot snr 1/5" >"$folder/out" 2>&1; do sleep 0.2; done
expectMatch "the drawing" "SNR of 1/5, adslLine profile 3 $name, 20*
*┤*⣿⣿⣿⣿*█████*   tone 0 *448
    MHz 0.00 *1.93
        SNR, dB    ⣿ upstream  █ downstream" "$(cat "$folder/out")"
expect "its width" 80 "$(wc -L <"$folder/out")"
expect "its width with COLUMNS" 132 "$(COLUMNS=132 ctl -c "plot hlog 1/5" | wc -L)"
expect "letters in another locale" "" "$(LC_ALL=C ctl -c "plot qln 1/5" | tr -d ' -~\n')"
expect "points of a list" 514 "$(ctl -c "plot bits 1/5 table" | wc -l)"

run ctl --svg "$folder/picture.svg" -c "plot snr 1/9"
expectMatch "no picture of nothing" "1 *1/9 has no such curve now*command:1: failed (-1): plot snr 1/9*" "$code $err"
run ctl --svg "$folder/picture.svg" -c "show cid mode" -c "exit"
expectMatch "a picture of two" "2 *one -c*" "$code $err"
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
