#!/usr/bin/env bash
# Installs the Debian packages that a purpose needs and this machine lacks: tour, test, bench, python,
# python-bench (what the package is compared with, and what draws its gallery) or ci.
# Removes nothing, except for `ci`: its cross compilers and gcc-multilib exclude each other.
set -euo pipefail

library=(cmake g++ make)
tools=(libcli11-dev libpng-dev libjpeg-dev)
tests=(libgtest-dev libeigen3-dev)
bench=(libbenchmark-dev clang)
python=(python3-dev pybind11-dev python3-numpy python3-setuptools python3-wheel python3-pip python3-venv)
python_tests=(python3-pytest python3-hypothesis python3-numpydoc mypy)
python_bench=(python3-pytest-benchmark python3-skimage python3-scipy python3-pil python3-matplotlib)
ci=("${bench[@]}" ccache clang-format clang-tidy libclang-rt-14-dev googletest pkg-config
    g++-i686-linux-gnu g++-aarch64-linux-gnu qemu-user-static binutils)

guard=(--no-remove)
case "${1:-}" in
  tour) wanted=("${library[@]}" "${tools[@]}") ;;
  test) wanted=("${library[@]}" "${tools[@]}" "${tests[@]}" "${python[@]}" "${python_tests[@]}") ;;
  bench) wanted=("${library[@]}" "${bench[@]}") ;;
  python) wanted=("${library[@]}" "${python[@]}" "${python_tests[@]}") ;;
  python-bench) wanted=("${library[@]}" "${python[@]}" "${python_bench[@]}") ;;
  ci) wanted=("${library[@]}" "${tools[@]}" "${tests[@]}" "${ci[@]}" "${python[@]}" "${python_tests[@]}") guard=() ;;
  *) echo "usage: $0 tour|test|bench|python|python-bench|ci" >&2; exit 2 ;;
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
