#!/bin/bash
# A manager's round trips at msand, beside those at snmpd: snmp.sh BUILD_FOLDER [ROUNDS]. The same client, transport and
# version of the protocol for both, and they take turns: each figure is the median of the rounds, a ratio the median of the
# ratios of rates within a round. At msand a SET is a frame of 92 bytes, the CID mode, a GET its answer of 96; at snmpd they
# are those of an integer that it keeps in memory. "query" is a SET of the same bytes at msand that the module has no part in:
# the difference is the module's, with its database transaction. "walk" is over ifTable, five columns that both have, at
# msand with 1024 ports whose cards are there, a row in a request: rows a second. "counted" is "set" at a second msand, which
# writes a page of metrics and a capture of every message.
set -euo pipefail
build=$(cd "$1" && pwd)
rounds=${2:-15}
count=2000
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
counted=127.0.0.1:16103
{
  printf 'socket = "socket"\nstartup = "startup.cfg"\nlog = "nowhere"\n[slots]\n'
  for slot in {1..8} {11..18}; do echo "$slot = { card = \"adsl64\", state = \"up\" }"; done
} >"$folder/msand.toml"
"$build/bin/msand" --config "$folder/msand.toml" --snmp $ours &
running+=($!)
sed 's/^socket = .*/socket = "counted"/; 1i metrics = "metrics.prom"\ncapture-size = 1024' "$folder/msand.toml" >"$folder/counted.toml"
"$build/bin/msand" --config "$folder/counted.toml" --startup "$folder/counted.d/startup.cfg" --snmp $counted &
running+=($!)
echo "rwcommunity public 127.0.0.1" >"$folder/snmpd.conf"
PATH=$PATH:/usr/sbin snmpd -f -Lf /dev/null -C -c "$folder/snmpd.conf" -I nsDebug,vacm_conf,usmConf,ifTable \
  "udp:$theirs,tcp:$theirs" &
running+=($!)
"$build/bin/msanctl" --socket "$folder/socket" --wait 10 -c "show cid mode" >/dev/null
"$build/bin/msanctl" --socket "$folder/counted" --wait 10 -c "trace file bench.pcapng" >/dev/null
for ((try = 0; try < 100; ++try)); do
  snmpget -v2c -c public -r 0 -t 0.1 udp:$theirs .1.3.6.1.4.1.8072.1.7.1.1.0 >/dev/null 2>&1 && break
  sleep 0.05
done

zeros() { printf '%0*d' $((2 * $1)) 0; }
frame=$(zeros 32)00000001$(zeros 22)0002$(zeros 32)
table=.1.3.6.1.4.1.8072.9999.9999.1.1
interfaces=.1.3.6.1.2.1.2.2.1
integer=.1.3.6.1.4.1.8072.1.7.1.1.0  # nsDebugEnabled: kept in memory alone

measure() { "$build/bench/round_trips" "$1" $count "${@:2}"; }
for ((round = 0; round < rounds; ++round)); do
  for transport in udp tcp; do
    echo "$transport set msand $(measure $transport:$ours set $table.1.3087 "$frame")"
    echo "$transport counted msand $(measure $transport:$counted set $table.1.3087 "$frame")"
    echo "$transport set snmpd $(measure $transport:$theirs set $integer i:2)"
    echo "$transport query msand $(measure $transport:$ours set $table.4.3087 "$frame")"
    echo "$transport get msand $(measure $transport:$ours get $table.5.3087)"
    echo "$transport get snmpd $(measure $transport:$theirs get $integer)"
    echo "$transport walk msand $(measure $transport:$ours walk $interfaces 1 1 2 3 7 8)"
    echo "$transport walk snmpd $(measure $transport:$theirs walk $interfaces 1 1 2 3 7 8)"
  done
done >"$folder/figures"

median() { sort -n | awk '{ value[NR] = $1 } END { print value[int((NR + 1) / 2)] }'; }
# column TRANSPORT WORD AGENT NUMBER: a value per round
column() { awk -v want="$1 $2 $3" -v number="$4" '$1 " " $2 " " $3 == want { print $number }' "$folder/figures"; }
# costOfCounting TRANSPORT: by how much a SET is slower, in per cent
costOfCounting() {
  paste <(column "$1" set msand 4) <(column "$1" counted msand 4) | awk '{ printf "%.1f\n", 100 * ($1 / $2 - 1) }' | median
}
# row TEXT WORD_OF_MSAND WORD_OF_SNMPD
row() {
  local transport
  for transport in udp tcp; do
    printf '%-12s %9s %8s %8s %12s %8s %8s %7s\n' "$transport $1" \
      "$(column $transport "$2" msand 4 | median)" "$(column $transport "$2" msand 5 | median)" \
      "$(column $transport "$2" msand 6 | median)" "$(column $transport "$3" snmpd 4 | median)" \
      "$(column $transport "$3" snmpd 5 | median)" "$(column $transport "$3" snmpd 6 | median)" \
      "$(paste <(column $transport "$2" msand 4) <(column $transport "$3" snmpd 4) | awk '{ printf "%.2f\n", $1 / $2 }' | median)"
  done
}
printf '%-12s %9s %8s %8s %12s %8s %8s %7s\n' "" "msand /s" "p50 us" "p99 us" "snmpd /s" "p50 us" "p99 us" "ratio"
row set set set
row query query set
row get get get
row walk walk walk
echo "metrics and a capture make a SET slower by $(costOfCounting udp) % over UDP, $(costOfCounting tcp) % over TCP; aim: 5 % at most"
echo "aim: a SET at 0.9 of snmpd's bare integer or better, its p99 at 300 us or less"
