#!/usr/bin/env bash
# Installs the library into a fresh folder and uses it from outside the tree: shared and static, by
# find_package and by pkg-config; the C++ header with both compilers, as C++17 and C++20, without a warning.
# Then uninstalls it. check_package.sh BUILD_FOLDER
set -euo pipefail
build=$(realpath "$1")
cd "$(dirname "$0")/.."
away=$(mktemp -d)
trap 'rm -rf "$away"' EXIT
expected="    0    0    0  400    0 -400    0    0   status 0"

cmake --install "$build" --prefix "$away/usr" >/dev/null
cp -r examples "$away/project"
cmake -S "$away/project" -B "$away/build" -DCMAKE_PREFIX_PATH="$away/usr" >/dev/null
cmake --build "$away/build" >/dev/null
for program in hello_shared hello_static; do
  [ "$("$away/build/$program")" = "$expected" ] || { echo "$program printed something else" >&2; exit 1; }
done

[ "$("$away/build/edges")" = "92 pixels of edges, mean 47.8125" ] || { echo "edges printed something else" >&2; exit 1; }

PKG_CONFIG_PATH=$(dirname "$(find "$away/usr" -name nuqi.pc)")
export PKG_CONFIG_PATH
read -ra flags <<<"$(pkg-config --cflags --libs nuqi)"
cc -std=c99 -pedantic -Wall -Wextra -Werror examples/hello.c "${flags[@]}" -o "$away/hello"
libdir=$(pkg-config --variable=libdir nuqi)
[ "$(LD_LIBRARY_PATH=$libdir "$away/hello")" = "$expected" ] || { echo "hello printed something else" >&2; exit 1; }
[ -L "$libdir/libnuqi.so.0" ] || { echo "libnuqi.so has no versioned name" >&2; exit 1; }
# The C++ header, every operation of it.
strict=(-Wall -Wextra -Wpedantic -Wconversion -Werror)
for compiler in g++ clang++; do
  for standard in c++17 c++20; do
    "$compiler" -std=$standard "${strict[@]}" tests/hpp/every_operation.cpp "${flags[@]}" -o "$away/every_operation" &&
      LD_LIBRARY_PATH=$libdir "$away/every_operation" || { echo "$compiler -std=$standard: the C++ header fails" >&2; exit 1; }
  done
done
xargs -d '\n' rm <"$build/install_manifest.txt"
left=$(find "$away/usr" -type f -o -type l)
[ -z "$left" ] || { echo "uninstalling leaves:" "$left" >&2; exit 1; }
echo "installed, found, used and uninstalled: shared, static, by find_package and by pkg-config"
