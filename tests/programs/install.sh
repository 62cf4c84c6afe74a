#!/bin/bash
# An installation, and one over it. The second argument is the folder of the build.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"
prefix=$folder/node
install() { DESTDIR=${1-} cmake --install "$2" --prefix "$3" >"$folder/installed"; }

install "" "$2" "$prefix"
expect "what the unit runs" "ExecStart=$prefix/bin/msand --config %d/msand.toml" \
  "$(grep ^ExecStart= "$prefix/lib/systemd/system/msand.service")"
expect "with" "LoadCredential=msand.toml:$prefix/etc/msan/msand.toml" \
  "$(grep ^LoadCredential= "$prefix/lib/systemd/system/msand.service")"
expect "who reads the configuration" 600 "$(stat -c %a "$prefix/etc/msan/msand.toml")"
run "$prefix/bin/msand" --check --config "$prefix/etc/msan/msand.toml"
expect "it is a good one" "0 " "$code $err"
bin=$prefix/bin
cp "$folder/msand.toml" "$prefix/etc/msan/msand.toml"
echo "# mine" >"$prefix/lib/systemd/system/msand.service"
(folder=$prefix/etc/msan socket=$prefix/etc/msan/socket && start && stop && exit $bad) || expect "a node that is installed runs" yes no

install "" "$2" "$prefix"
expect "a configuration that is there stays" "" "$(diff "$folder/msand.toml" "$prefix/etc/msan/msand.toml" 2>&1)"
expect "a unit does not" 0 "$(grep -c "# mine" "$prefix/lib/systemd/system/msand.service" || true)"
expect "what is said to be installed and is not there" "" \
  "$(sed -nE 's/^-- (Installing|Up-to-date|Kept): //p' "$folder/installed" | xargs -d '\n' ls -d 2>&1 >/dev/null)"

install "$folder/root" "$2" /usr
expect "the configuration of a node in /usr" yes "$([ -e "$folder/root/etc/msan/msand.toml" ] && echo yes)"
for file in lib/libmsan.so bin/msan-frame share/snmp/mibs/MSAN-MIB.txt share/man/man8/msand.8 share/man/man1/msan-frame.1; do
  expect "$file in /usr" yes "$([ -e "$folder/root/usr/$file" ] && echo yes)"
done
exit $bad
