#!/bin/bash
# A manager's round trips at msand, beside those at snmpd with an integer of its own: snmp.sh BUILD_FOLDER [ROUNDS]. The two
# take turns; each figure is the median of the rounds.
set -euo pipefail
build=$(cd "$1" && pwd)
rounds=${2:-7}
count=3000
export LC_ALL=C MIBS=""

folder=$(mktemp -d)
export SNMP_PERSISTENT_DIR=$folder/snmp SNMPCONFPATH=$folder
mkdir -p "$folder/snmp/cert_indexes"
running=()
# shellcheck disable=SC2317  # called by the trap
finish() {
  kill "${running[@]}" 2>/dev/null || true
  wait
  rm -rf "$folder"
}
trap finish EXIT

ours=127.0.0.1:16101
theirs=127.0.0.1:16102
printf 'socket = "socket"\nstartup = "startup.cfg"\nlog = "nowhere"\n' >"$folder/msand.toml"
"$build/bin/msand" --config "$folder/msand.toml" --snmp $ours &
running+=($!)
echo "rwcommunity public 127.0.0.1" >"$folder/snmpd.conf"
PATH=$PATH:/usr/sbin snmpd -f -Lf /dev/null -C -c "$folder/snmpd.conf" -I nsDebug,vacm_conf,usmConf \
  "udp:$theirs,tcp:$theirs" &
running+=($!)
"$build/bin/msanctl" --socket "$folder/socket" --wait 10 -c "show cid mode" >/dev/null
for ((try = 0; try < 100; ++try)); do
  snmpget -v2c -c public -r 0 -t 0.1 udp:$theirs .1.3.6.1.4.1.8072.1.7.1.1.0 >/dev/null 2>&1 && break
  sleep 0.05
done

zeros() { printf '%0*d' $((2 * $1)) 0; }
frame=$(zeros 32)00000001$(zeros 22)0002$(zeros 32)
table=.1.3.6.1.4.1.8072.9999.9999.1.1
integer=.1.3.6.1.4.1.8072.1.7.1.1.0  # nsDebugEnabled: kept in memory alone

measure() { "$build/bench/round_trips" "$1" $count "${@:2}"; }
for ((round = 0; round < rounds; ++round)); do
  for transport in udp tcp; do
    echo "$transport set msand $(measure $transport:$ours set $table.1.3087 "$frame")"
    echo "$transport set snmpd $(measure $transport:$theirs set $integer i:2)"
    echo "$transport get msand $(measure $transport:$ours get $table.5.3087)"
    echo "$transport get snmpd $(measure $transport:$theirs get $integer)"
  done
done >"$folder/figures"

median() { sort -n | awk '{ value[NR] = $1 } END { print value[int((NR + 1) / 2)] }'; }
# figure TRANSPORT WORD AGENT COLUMN
figure() { awk -v want="$1 $2 $3" -v column="$4" '$1 " " $2 " " $3 == want { print $column }' "$folder/figures" | median; }
printf '%-10s %12s %9s %9s %12s %9s %9s %7s\n' "" "msand /s" "p50 us" "p99 us" "snmpd /s" "p50 us" "p99 us" "ratio"
for transport in udp tcp; do
  for word in set get; do
    rate=$(figure $transport $word msand 4)
    other=$(figure $transport $word snmpd 4)
    printf '%-10s %12s %9s %9s %12s %9s %9s %7s\n' "$transport $word" \
      "$rate" "$(figure $transport $word msand 5)" "$(figure $transport $word msand 6)" \
      "$other" "$(figure $transport $word snmpd 5)" "$(figure $transport $word snmpd 6)" \
      "$(awk "BEGIN { printf \"%.2f\", $rate / $other }")"
  done
done
echo "aim: a SET at 0.9 of snmpd's bare integer or better, its p99 at 300 us or less"
