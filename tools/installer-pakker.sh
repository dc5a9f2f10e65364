#!/usr/bin/env bash
# Installs the Debian packages Tolvik needs to build, run and test; does nothing when all are there.
# With --sanitizer: what make fuzz and make test-asan need besides (clang, libFuzzer and the
# sanitizer runtimes, unzip for the fuzz seeds).
set -euo pipefail
pakker=(g++ cmake make pkg-config qt6-base-dev qt6-charts-dev libqt6opengl6-dev libgl-dev
        libsqlcipher-dev libssl-dev sqlcipher sqlite3 libzip-dev libpugixml-dev libxlsxwriter-dev
        libgtest-dev dpkg-dev python3 python3-openpyxl xvfb xauth time strace jing libxml2-utils)
[ "${1:-}" = "--sanitizer" ] && pakker=(clang libclang-rt-14-dev unzip)
mangler=()
for p in "${pakker[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || mangler+=("$p")
done
[ ${#mangler[@]} -eq 0 ] && exit 0
echo "Installerer: ${mangler[*]}"
sudo=""
[ "$(id -u)" -eq 0 ] || sudo="sudo"
$sudo apt-get update -qq
DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends "${mangler[@]}"
