# For ./dev and .ci/run: installing packages, and building one of the ways that CMakePresets.json lists.
# shellcheck shell=bash
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

fail() {
  echo "${0##*/}: $*" >&2
  exit 1
}

# Debian's packages, by what they are for.
packagesFor() {
  case $1 in
    # The compiler and the build; what platform and programs are made of.
    build) echo g++ cmake ninja-build pkg-config liblmdb-dev libfmt-dev libspdlog-dev libedit-dev libcli11-dev \
                libtomlplusplus-dev libsnmp-dev libsystemd-dev nlohmann-json3-dev zlib1g-dev ;;
    # snmp, snmptrapd: managers' tools, iproute2: ss, gnuplot: what draws pictures,
    # tshark: what shows captures, prometheus: promtool, libseccomp: the unit's filter, systemd: what it stands for.
    test) echo libgtest-dev libgmock-dev snmp snmptrapd procps iproute2 gnuplot-nox tshark prometheus libseccomp-dev systemd ;;
    # devscripts: hardening-check
    check) echo clang-format-16 smitools devscripts systemd ;;
    package) echo debhelper dpkg-dev fakeroot lintian ;;
    bench) echo libbenchmark-dev snmp snmpd ;;
    # The compiler, its fuzzing runtime, and what gives its traces names.
    fuzz) echo clang-16 libclang-rt-16-dev llvm-16 ;;
    # g++-multilib would exclude other cross compilers; the test library is built from its sources for 32 bits.
    m32) echo g++-12-multilib liblmdb-dev:i386 libfmt-dev:i386 googletest ;;
    emulator) echo qemu-user ;;
    cache) echo ccache ;;
    *) fail "no packages are known for $1" ;;
  esac
}

asRoot() {
  if [ "$(id -u)" = 0 ]; then "$@"; else sudo "$@"; fi
}

# need USE...: installs the packages of these uses that are missing.
need() {
  local use name native installed missing=()
  native=$(dpkg --print-architecture)
  installed=$'\n'$(dpkg-query -W -f '${Package}:${Architecture} ${db:Status-Status}\n')$'\n'
  for use; do
    for name in $(packagesFor "$use"); do
      case $installed in
        *$'\n'"$name installed"$'\n'* | *$'\n'"$name:$native installed"$'\n'* | *$'\n'"$name:all installed"$'\n'*) ;;
        *) missing+=("$name") ;;
      esac
    done
  done
  [ ${#missing[@]} = 0 ] && return
  [ "$(id -u)" = 0 ] || command -v sudo >/dev/null || fail "please install, as root: apt-get install ${missing[*]}"
  echo "Installing ${missing[*]} ..." >&2
  if [[ ${missing[*]} == *:i386* ]]; then asRoot dpkg --add-architecture i386; fi
  # A package list that can't be had is no reason to stop: what counts is whether the packages can be installed.
  logged install asRoot bash -c 'export DEBIAN_FRONTEND=noninteractive
    apt-get update || echo "going on with the package lists that are there"
    apt-get install -y --no-install-recommends -o DPkg::Lock::Timeout=300 "$@"' install "${missing[@]}"
}

# logged NAME COMMAND...: runs it with its output in build/NAME.log, shown if it fails.
logged() {
  local log=$root/build/$1.log
  shift
  mkdir -p "$root/build"
  "$@" >"$log" 2>&1 </dev/null && return
  tail -n 100 "$log" >&2
  fail "failed: $* (whole output: $log)"
}

# build PRESET [TARGET...]: configures and builds. At a terminal it shows one line of progress.
build() {
  local folder=$root/build/$1 command
  [ "$folder/build.ninja" -nt "$root/CMakePresets.json" ] || logged "$1-configure" cmake -S "$root" --preset "$1"
  command=(cmake --build "$folder" --parallel "$(nproc)" --target "${@:2}")
  [ $# -gt 1 ] || command+=(all)
  if [ -t 2 ]; then
    "${command[@]}" >&2 || fail "the build failed"
  else
    [ -e "$folder/lib/libmsan.so" ] || echo "Building ${folder#"$root/"} ..." >&2
    logged "$1-build" "${command[@]}"
  fi
}
