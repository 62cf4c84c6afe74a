#!/bin/bash
# All doors at once: load.sh PROGRAMS SECONDS. Two operators configure, one reads the running configuration and one writes
# it, two managers read and set, cards are pulled, return and answer late. Each of them changes what is his alone, so all
# that he says has to be done, and the node has what each said last. Then all of them go on while somebody takes the node back
# to what was written, again and again: now what they say may fail. At the end the next start has what this one has.
# shellcheck disable=SC2317  # what is called by its name in a variable
. "$(dirname "${BASH_SOURCE[0]}")/../programs/snmp_common.sh"
seconds=$2
sed -i '1i metrics = "metrics.prom"' "$folder/msand.toml"
cat >>"$folder/msand.toml" <<TEXT
2 = { card = "vdsl64" }
4 = { card = "adsl64" }
5 = { card = "eth8" }
6 = { card = "vdsl32" }
TEXT
start
ctl >/dev/null <<TEXT
add adslLine profile doors id 5
attach adslLine profile id 5 interface 1/1-8
set interface 1/1-32 enable
set interface 4/1-64 enable
TEXT

# rounds WORK: WORK N again and again until `end`, once at least; what was told last is in $folder/last.WORK
rounds() {
  local round=0
  while [ $round = 0 ] || ((SECONDS < end)); do "$1" $((++round)) || [ $strict = no ] || return 1; done
  echo "$1: $round rounds"
}
# together WORK...: all at once, and a terminal that is shown what they do and does not read it
together() {
  local work code workers=()
  for work; do
    rounds "$work" >"$folder/said.$work" 2>&1 &
    workers+=($!)
  done
  { echo 'trace full'; sleep $((end - SECONDS)); } | ctl >/dev/null 2>&1 &
  for work; do
    code=0
    wait "${workers[0]}" || code=$?
    workers=("${workers[@]:1}")
    expect "exit code of $work, which said: $(tail -c 500 "$folder/said.$work")" 0 "$code"
    tail -n 1 "$folder/said.$work"
  done
}
# lines of standard input, all of which have to do well
tell() { ctl >/dev/null; }
profiles() {
  local margin=$(($1 % 3 + 7)).0  # 6.0 is not printed
  echo "set adsl SnrmMargin down $margin" >"$folder/last.profiles"
  tell <<TEXT
set adslLine profile id 5
set adsl SnrmMargin down $margin
flush adslLine profile id 5
attach adslLine profile id 5 interface 1/$(($1 % 8 + 1))
show port dsl_status slot 1 port 1
chassis port 1/$(($1 % 32 + 1))
show adslLine profile id 5
TEXT
}
voice() {
  local mode
  mode=$([ $(($1 % 2)) = 0 ] && echo fsk || echo dtmf)
  echo "set cid mode $mode" >"$folder/last.voice"
  tell <<TEXT
set cid mode $mode
show cid mode
set voice_self_switch $([ $(($1 % 3)) = 0 ] && echo enable || echo disable)
get rfc2833
show pots telephone number
help cid mode
TEXT
}
reading() {
  printf 'trace full\nshow running-config\nshow metrics\nhelp all\n' | tell
}
writing() {
  printf 'write no-check\n' | tell || return
  case $(($1 % 10)) in
    1) printf 'trace file doors.pcapng\n' | tell ;;
    3) printf 'record doors.scn\n' | tell ;;
    5) printf 'write\n' | tell ;;
    7) printf 'trace file off\nrecord off\nshow history\n' | tell ;;
  esac
}
datagrams() {
  local payload=$(($1 % 31 + 96)) at=$((($1 % 2 * 3 + 1) * 65536 + $1 % 32))
  echo "*set rfc2833 negotiation * default pt $payload rfc2198*" >"$folder/last.datagrams"
  frame="$bin/msan-frame --agent $udp --timeout 60"
  bulk="snmpbulkget -v2c -c public -t 60 $udp"
  $frame set rfc2833 rfc2833PTDefault="$payload" && $frame get rfc2833 && $bulk .1.3.6.1.2.1.2.2.1.8."$at" &&
    $bulk .1.3.6.1.2.1.10.94.1.1.3.1.4."$at" && $bulk .1.3.6.1.2.1.10.94.1.1.14.1.11
}
streams() {
  local at=$((4 * 65536 + $1 % 64 + 1))
  frame="$bin/msan-frame --agent $tcp --timeout 60"
  $frame get adslAttachment 1/1 && $frame get --hex 3087 && $frame get portVlan 4/1 &&
    snmpset -v2c -c public -t 60 "$tcp" .1.3.6.1.2.1.2.2.1.7."$at" i $(($1 % 2 + 1)) &&
    snmpget -v2c -c public -t 60 "$tcp" .1.3.6.1.2.1.2.2.1.7."$at"
}
cards() {
  tell <<TEXT
chassis slot 1 delay $(($1 % 4 * 10))
chassis slot 4 delay $(($1 % 3 * 30))
chassis voice delay $(($1 % 5 * 5))
chassis slot 2 down
chassis slot 3 down
chassis slot 6 present
chassis slot 5 card none
chassis slot 5 card eth8
chassis slot 5 up
chassis slot 6 up
chassis slot 3 up
chassis slot 2 up
TEXT
}

strict=yes
end=$((SECONDS + seconds * 4 / 5))
works=(profiles voice reading writing datagrams streams cards)
together "${works[@]}"
settle() {
  printf 'record off\ntrace file off\nchassis slot %d delay 0\nchassis slot %d delay 0\nchassis voice delay 0\n' 1 4 | tell
  ctl -c 'show running-config' >"$folder/before"
}
settle
expectMatch "an operator's profile" "*$(cat "$folder/last.profiles")*" "$(cat "$folder/before")"
expectMatch "the other one's mode" "*$(cat "$folder/last.voice")*" "$(cat "$folder/before")"
expectMatch "a manager's payload type" "$(cat "$folder/last.datagrams")" "$(cat "$folder/before")"

strict=no
end=$((SECONDS + seconds / 5))
back() {
  local line
  # Each by a terminal of its own, which has not had much of the node's time yet.
  for line in 'rollback startup' 'confirm within 1' 'set cid mode fsk' rollback; do ctl -c "$line" >/dev/null || true; done
}
together "${works[@]}" back
settle
ctl -c write || bad=1
stop
start
ctl -c 'show running-config' >"$folder/after"
expect "the running configuration behind a restart" "" "$(diff "$folder/before" "$folder/after")"
echo "$(wc -l <"$folder/before") lines of running configuration"
stop
expect "what the sanitizers found" "" "$(grep -E -m 3 'Sanitizer|runtime error' "$folder/log")"
[ $bad = 0 ] || tail -n 60 "$folder/log" >&2
exit $bad
