#!/usr/bin/env bash
# Compiles each wrong use by itself, which must fail with the text that it expects: check.sh COMPILER INCLUDE_FOLDER
set -euo pipefail
include=$(realpath "$2")
cd "$(dirname "$0")"
compiler=$1

# One use: prints what is amiss.
use() {
  local number=$1 text=$2 said
  if said=$("$compiler" -std=c++17 -fsyntax-only -I "$include" -DWRONG_USE="$number" wrong_uses.cpp 2>&1); then
    echo "wrong use $number compiles; expected: $text"
  elif ! grep -qF "$text" <<<"$said"; then
    printf 'wrong use %s: expected "%s", found:\n%s\n' "$number" "$text" "$(grep error <<<"$said" | head -3)"
  fi
}
export -f use
export compiler include

"$compiler" -std=c++17 -fsyntax-only -I "$include" -DWRONG_USE=0 wrong_uses.cpp
uses=$(sed -nE 's,^#(el)?if WRONG_USE == ([0-9]+) +// expect: (.+),\2\n\3,p' wrong_uses.cpp)
count=$(grep -c 'WRONG_USE ==' wrong_uses.cpp)
[ "$count" -gt 0 ] && [ "$(wc -l <<<"$uses")" -eq $((2 * count)) ] || { echo "a wrong use expects nothing" >&2; exit 1; }
amiss=$(xargs -d '\n' -n 2 -P "$(nproc)" bash -c 'use "$@"' _ <<<"$uses")
[ -z "$amiss" ] || { echo "$amiss" >&2; exit 1; }
echo "$count wrong uses: none compiles, each is told why"
