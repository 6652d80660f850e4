#!/usr/bin/env bash
# Installs the Debian packages that a purpose needs and this machine lacks: tour, test, bench or ci.
# Removes nothing, except for `ci`: its cross compilers and gcc-multilib exclude each other.
set -euo pipefail

library=(cmake g++ make)
tools=(libcli11-dev libpng-dev libjpeg-dev)
tests=(libgtest-dev libeigen3-dev)
bench=(libbenchmark-dev clang)
ci=("${bench[@]}" clang-format clang-tidy libclang-rt-14-dev googletest pkg-config
    g++-i686-linux-gnu g++-aarch64-linux-gnu qemu-user-static binutils)

guard=(--no-remove)
case "${1:-}" in
  tour) wanted=("${library[@]}" "${tools[@]}") ;;
  test) wanted=("${library[@]}" "${tools[@]}" "${tests[@]}") ;;
  bench) wanted=("${library[@]}" "${bench[@]}") ;;
  ci) wanted=("${library[@]}" "${tools[@]}" "${tests[@]}" "${ci[@]}") guard=() ;;
  *) echo "usage: $0 tour|test|bench|ci" >&2; exit 2 ;;
esac

missing=()
for package in "${wanted[@]}"; do
  dpkg-query -W -f '${Status}' "$package" 2>/dev/null | grep -q 'ok installed' || missing+=("$package")
done
[ ${#missing[@]} -eq 0 ] && exit 0

echo "Installing: ${missing[*]}"
root=()
if [ "$(id -u)" -ne 0 ]; then
  command -v sudo >/dev/null || { echo "These packages are missing, and only root can install them: ${missing[*]}" >&2; exit 1; }
  root=(sudo)
fi
log=$(mktemp)
trap 'rm -f "$log"' EXIT
export DEBIAN_FRONTEND=noninteractive
if ! { "${root[@]}" apt-get update && "${root[@]}" apt-get install -y --no-install-recommends "${guard[@]}" "${missing[@]}"; } >"$log" 2>&1; then
  cat "$log" >&2
  exit 1
fi
