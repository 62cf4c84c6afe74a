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

# The program, its manual and the unit of the prefix that was built for name the file that is installed there.
built=$(sed -n 's/^CMAKE_INSTALL_PREFIX:PATH=//p' "$2/CMakeCache.txt")
install "$folder/root" "$2" "$built"
file=$("$folder/root$built/bin/msand" --help | sed -n 's/.*--config FILE=//p')
expect "the configuration that a node looks for" "" "$(stat "$folder/root$file" 2>&1 >/dev/null)"
for text in share/man/man8/msand.8 lib/systemd/system/msand.service; do
  expect "files that $text names" "$file" "$(grep -o '/[^ :]*/msand\.toml' "$folder/root$built/$text" | grep -v ^%d | sort -u)"
done

install "$folder/root" "$2" /usr
expectMatch "of another prefix" "*Note: msand was built to look for $file*/etc/msan/msand.toml*" "$(cat "$folder/installed")"
expect "the configuration of a node in /usr" yes "$([ -e "$folder/root/etc/msan/msand.toml" ] && echo yes)"
for file in lib/libmsan.so bin/msan-frame share/wireshark/plugins/msan.lua share/msan/grafana/msan.json share/snmp/mibs/MSAN-MIB.txt share/man/man8/msand.8 share/man/man1/msan-frame.1; do
  expect "$file in /usr" yes "$([ -e "$folder/root/usr/$file" ] && echo yes)"
done
exit $bad
