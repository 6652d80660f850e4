#!/usr/bin/env bash
# Compares three lists: the prototypes in nuqi.h, what the shared object exports, and the names that
# the tests call: the sources that the test program is linked from, and the lists of members that they
# include. check_exports.sh BUILD_FOLDER
set -euo pipefail
cd "$(dirname "$0")/.."
lists=$(mktemp -d)
trap 'rm -rf "$lists"' EXIT

prototypes() { grep -oE '^NUQI_API StatusCode nuqib?[A-Z][A-Za-z0-9_]*\(' include/nuqi/nuqi.h | sed 's/.* //; s/(//'; }
exported() { nm --dynamic --defined-only --format=just-symbols "$1/src/libnuqi.so"; }
# The test program's sources and the lists of members that they include, as the objects that it is linked
# from tell.
compiled() {
  local program=$1/tests/CMakeFiles/nuqi_tests.dir
  tr ' ' '\n' <"$program/link.txt" | sed -nE "s#^CMakeFiles/nuqi_tests.dir/(.*_test.cpp.o)\$#$program/\1.d#p" |
    xargs cat | tr ' ' '\n' | grep -E '_(members\.h|test\.cpp)$' |
    (cd "$1/tests" && xargs realpath --relative-to="$OLDPWD") | grep '^tests/' | sort -u
}
tested() { compiled "$1" | xargs sed 's#//.*##' | grep -oE '\bnuqib?[A-Z][A-Za-z0-9_]*\b'; }

prototypes | sort -u >"$lists/header"
exported "$1" | sort -u >"$lists/exports"
tested "$1" | sort -u >"$lists/tests"
[ -s "$lists/header" ] || { echo "no prototypes found in nuqi.h" >&2; exit 1; }
if ! diff "$lists/header" "$lists/exports"; then
  echo "nuqi.h (<) and the exports of libnuqi.so (>) differ" >&2
  exit 1
fi
if untested=$(comm -23 "$lists/header" "$lists/tests"); [ -n "$untested" ]; then
  printf 'no test calls these:\n%s\n' "$untested" >&2
  exit 1
fi
echo "$(wc -l <"$lists/header") functions: declared, exported and tested"
