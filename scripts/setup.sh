#!/usr/bin/env bash
# Installs the Debian packages Praxa needs to build and test, when they are missing.
# Run as root it installs them; otherwise it prints the apt-get line to run and fails.
set -euo pipefail

packages=(cmake g++ make pkg-config googletest libgtest-dev libbenchmark-dev
          nlohmann-json3-dev liblapacke-dev libpugixml-dev libcpp-httplib-dev libgraphviz-dev libmuparser-dev
          nodejs npm chromium fonts-liberation
          clang libfuzzer-14-dev libclang-rt-14-dev)

missing=()
# Machines with NodeSource's nodejs carry npm inside it, and that nodejs conflicts with
# Debian's npm package: ask for npm only when no npm command is there.
if command -v npm >/dev/null 2>&1; then
  packages=("${packages[@]/npm}")
fi
for p in "${packages[@]}"; do
  [ -n "$p" ] || continue
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0

if [ "$(id -u)" -ne 0 ]; then
  echo "Praxa needs these Debian packages. Run as root:" >&2
  echo "  apt-get update && apt-get install -y ${missing[*]}" >&2
  exit 1
fi
echo "Installing: ${missing[*]}"
export DEBIAN_FRONTEND=noninteractive
apt-get update -q
apt-get install -y -q "${missing[@]}"
