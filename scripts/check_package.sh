#!/usr/bin/env bash
# Installs the library into a fresh folder, uses it from outside the tree, shared and static, by
# find_package and by pkg-config, and uninstalls it. check_package.sh BUILD_FOLDER
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

PKG_CONFIG_PATH=$(dirname "$(find "$away/usr" -name nuqi.pc)")
export PKG_CONFIG_PATH
read -ra flags <<<"$(pkg-config --cflags --libs nuqi)"
cc -std=c99 -pedantic -Wall -Wextra -Werror examples/hello.c "${flags[@]}" -o "$away/hello"
libdir=$(pkg-config --variable=libdir nuqi)
[ "$(LD_LIBRARY_PATH=$libdir "$away/hello")" = "$expected" ] || { echo "hello printed something else" >&2; exit 1; }
[ -L "$libdir/libnuqi.so.0" ] || { echo "libnuqi.so has no versioned name" >&2; exit 1; }
xargs -d '\n' rm <"$build/install_manifest.txt"
left=$(find "$away/usr" -type f -o -type l)
[ -z "$left" ] || { echo "uninstalling leaves:" "$left" >&2; exit 1; }
echo "installed, found, used and uninstalled: shared, static, by find_package and by pkg-config"
