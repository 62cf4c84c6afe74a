# For the tests of the manager's door: where the node's agent listens, and the stock tools at it.
# shellcheck shell=bash disable=SC2034
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"
port=$((20000 + $$ % 10000))
snmp=127.0.0.1:$port
udp=udp:$snmp
tcp=tcp:$snmp
table=.1.3.6.1.4.1.8072.9999.9999.1
export SNMP_PERSISTENT_DIR=$folder/tools SNMPCONFPATH=$folder/tools MIBS=""
mkdir -p "$folder/tools/cert_indexes"

# manager TOOL ARGUMENT...: values as numbers and unbroken bytes
manager() {
  local tool=$1
  shift
  "$tool" -v2c -c "${community-public}" -t "${patience-5}" -r 0 -On -Oe -Ox -Oq "$@" 2>&1 | tr -d '\n"' | sed 's/ *$//'
}

# zeros N: so many zero bytes in hexadecimal
zeros() { printf '%0*d' $((2 * $1)) 0; }

# The frame of message 3087 (envelope, one item, label, mode, reserved bytes) with a mode.
frame() { printf '%s00000001%s%04x%s' "$(zeros 32)" "$(zeros 22)" "$1" "$(zeros 32)"; }
