#!/bin/bash
# Who may do what at the manager's door, and where it listens.
. "$(dirname "${BASH_SOURCE[0]}")/snmp_common.sh"
start
expectMatch "a node without managers says whom it lets in" '*"public" may read and write, from 127.0.0.1*' \
  "$(cat "$folder/log")"
run "$bin/msand" --config "$folder/msand.toml" --socket "$folder/other" --snmp "$tcp"
expect "exit code when the port is taken" 1 "$code"
expectMatch "its reason" "*msand: snmp: $tcp: can't be listened at: Address already in use" "$err"
expect "it listens at what was asked for alone" "127.0.0.1:$port 127.0.0.1:$port" \
  "$(ss -Hlntup 2>/dev/null | grep "pid=$node," | awk '{ print $5 }' | xargs)"
stop
run "$bin/msand" --config "$folder/msand.toml" --snmp "udp:localhost:161"
expect "exit code of an address that is none" 2 "$code"

configuration <<TEXT
socket = "socket"
startup = "startup.cfg"
[snmp]
listen = ["$snmp"]
name = "node 7"
location = "cellar"
contact = "noc"
communities = [
  { name = "reads-all", access = "read-only", source = "127.0.0.1" },
  { name = "writes all", access = "read-write", source = "127.0.0.0/8" },
  { name = "elsewhere", access = "read-write", source = "192.0.2.1" },
]
users = [
  { name = "writer", access = "read-write", auth = "SHA-512", auth-secret = "authentication-1", priv-secret = "privacy secret 1" },
  { name = "reader", auth-secret = "authentication-2", priv-secret = "privacy-secret-2" },
]
TEXT
snmp=$udp
start
snmp=127.0.0.1:$port
expect "name, location and contact" '"noc" "node 7" "cellar"' \
  "$(snmpget -v2c -c reads-all -Oqv "$udp" .1.3.6.1.2.1.1.4.0 .1.3.6.1.2.1.1.5.0 .1.3.6.1.2.1.1.6.0 | xargs -d '\n')"
community="reads-all"
expectMatch "a reading community does not write" "*noAccess*" "$(manager snmpset "$udp" $table.1.1.3087 x "$(frame 2)")"
expectMatch "a query, neither" "*noAccess*" "$(manager snmpset "$udp" $table.1.4.3087 x 00)"
expectMatch "and nothing was done" "*FSK*" "$(ctl -c "show cid mode")"
patience=1
community="writes all"
expectMatch "a writing one does" "$table.1.1.3087 *" "$(manager snmpset "$udp" $table.1.1.3087 x "$(frame 2)")"
for community in public elsewhere; do
  expectMatch "a stranger gets no answer" "*Timeout*" "$(manager snmpget "$udp" $table.1.3.3087)"
done
unset community

# user NAME AUTH AUTH_SECRET PRIV_SECRET TOOL ARGUMENT...
user() {
  "$5" -v3 -l authPriv -u "$1" -a "$2" -A "$3" -x AES -X "$4" -r 0 -t 5 -On "$udp" "${@:6}" 2>&1
}
expectMatch "a user writes" "$table.1.1.3087 = *" \
  "$(user writer SHA-512 authentication-1 "privacy secret 1" snmpset $table.1.1.3087 x "$(frame 1)")"
expectMatch "which reaches the node" "*FSK*" "$(ctl -c "show cid mode")"
expectMatch "a reader reads" "$table.1.3.3087 = *00 00 00 01*" \
  "$(user reader SHA-256 authentication-2 privacy-secret-2 snmpget $table.1.3.3087)"
expectMatch "and does not write" "*noAccess*" \
  "$(user reader SHA-256 authentication-2 privacy-secret-2 snmpset $table.1.1.3087 x "$(frame 2)")"
expectMatch "a wrong secret" "*uthentication failure*" \
  "$(user writer SHA-512 authentication-3 "privacy secret 1" snmpget $table.1.3.3087)"
expectMatch "without privacy there is no access" "*authorizationError*" \
  "$(snmpget -v3 -l authNoPriv -u writer -a SHA-512 -A authentication-1 -r 0 "$udp" $table.1.3.3087 2>&1)"
expectMatch "still" "*FSK*" "$(ctl -c "show cid mode")"
export MSAN_AUTH_SECRET=authentication-1 MSAN_PRIV_SECRET="privacy secret 1"
run "$bin/msan-frame" --agent "$udp" --user writer --auth SHA-512 get --hex 3087
expect "msan-frame as a user" 0 "$code"
stop

# A name for good, and a number for each start.
record=$(cat "$folder/snmp/engine")
expectMatch "the first start" "80001f8805???????????????? 1" "$record"
engine=${record% *}
snmp=$udp
start
snmp=127.0.0.1:$port
expect "the next one" "$engine 2" "$(cat "$folder/snmp/engine")"
reader=(-v3 -l authPriv -u reader -a SHA-256 -A authentication-2 -x AES -X privacy-secret-2 -r 0 -t 5 -On)
expectMatch "a manager that knows it needs no discovery" "*node 7*" \
  "$(snmpget "${reader[@]}" -e "0x$engine" "$udp" .1.3.6.1.2.1.1.5.0 2>&1)"
# What the agent calls itself, and behind it the number as an integer.
said=$(snmpget "${reader[@]}" -d "$udp" .1.3.6.1.2.1.1.5.0 2>&1 | sed -n 's/^[0-9]\{4\}: \([0-9A-F ]\{1,50\}\)  .*/\1/p' | tr -d ' \n')
expectMatch "what it says" "*${engine^^}020102*" "$said"
stop
expect "secrets in the log" 0 "$(grep -cE 'authentication-|secret|reads-all|writes all' "$folder/log" || true)"
expect "files of the agent" "" "$(find "$folder" -name '*.conf')"
exit $bad
