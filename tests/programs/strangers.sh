#!/bin/bash
# Users who are no operators, and managers in another network.
. "$(dirname "${BASH_SOURCE[0]}")/snmp_common.sh"
space=msan-$$
endSpace() { ip netns del "$space" 2>/dev/null || true; }
trap 'endSpace; cleanUp' EXIT
prepare() {
  setpriv --reuid 1 --regid 65534 --clear-groups true && ip netns add "$space" &&
    ip link add "v$$" type veth peer name "w$$" netns "$space" && ip addr add 198.18.7.1/24 dev "v$$" && ip link set "v$$" up &&
    ip -n "$space" addr add 198.18.7.2/24 dev "w$$" && ip -n "$space" addr add 198.18.7.3/24 dev "w$$" &&
    ip -n "$space" link set "w$$" up
}
why=$(prepare 2>&1) || { echo "NOT PERMITTED HERE, so nothing of this was tested: $why" >&2; exit 77; }
chmod 711 "$folder"

configuration <<TEXT
socket = "socket"
group = "daemon"
startup = "startup.cfg"
[snmp]
listen = ["198.18.7.1:$port"]
communities = [{ name = "watch", source = "198.18.7.2" }]
users = [{ name = "noc", auth-secret = "authentication-1", priv-secret = "privacy-secret-1" }]
TEXT
snmp=198.18.7.1:$port
start
as() { run setpriv --reuid "$1" --regid "$2" "${@:3}" "$bin/msanctl" --socket "$socket" -c "show cid mode"; }
as 1 65534 --groups 1
expect "a member of the group" 0 "$code"
as 2 1 --clear-groups
expect "somebody whose first group it is" 0 "$code"
as 2 2 --clear-groups
expectMatch "somebody else" "3 *no operator of this node*" "$code $err"
expectMatch "is logged" "*refused at the operators' socket: process * of user 2*" "$(cat "$folder/log")"

name=.1.3.6.1.2.1.1.5.0
# from ADDRESS OPTION...: the node's name, asked for from there; is patient for some 0.3 s
from() {
  ip netns exec "$space" snmpget -r 0 -t 0.3 -Oqv --clientaddr="$1" "${@:2}" "$snmp" $name 2>&1 | tr -d '"' || true
}
watch=(-v2c -c watch)
noc=(-v3 -u noc -l authPriv -a SHA-256 -x AES -X privacy-secret-1 -A)
expect "a manager at its place" msan "$(from 198.18.7.2 "${watch[@]}")"
expect "a user" msan "$(from 198.18.7.3 "${noc[@]}" authentication-1)"
expectMatch "one elsewhere" "Timeout*" "$(from 198.18.7.3 "${watch[@]}")"
for _ in 1 2 3 4; do from 198.18.7.3 "${noc[@]}" wrong-secret >/dev/null; done
sleep 1
expectMatch "the sixth wrong key" "Timeout*" "$(from 198.18.7.3 -v2c -c public)"
expectMatch "makes the node deaf" "*Timeout*" "$(from 198.18.7.3 "${noc[@]}" authentication-1)"
expect "to that source alone" msan "$(from 198.18.7.2 "${watch[@]}")"
sleep 2
expect "and for a while" msan "$(from 198.18.7.3 "${noc[@]}" authentication-1)"
expectMatch "which is logged" "*snmp: 198.18.7.3: a community that may not ask from there*snmp: 198.18.7.3: a wrong authentication \
key*snmp: 198.18.7.3: a community * heard again in 2 s*" "$(cat "$folder/log")"
stop

chmod 644 "$folder/msand.toml"
run "$bin/msand" --check --config "$folder/msand.toml"
expect "a file of secrets that everybody may read" "2 msand: $folder/msand.toml: holds secrets, and everybody may read it: chmod o-r" \
  "$code $err"
exit $bad
