#!/usr/bin/env bash
# Holds docs/operations.tsv, the one table of names, against nuqi.h and the C++ header: every exported function
# belongs to exactly one operation and stands in the code of include/nuqi/hpp exactly once (one that is replaced by a
# better one, in a comment "not called: NAME"), every operation is a function there, or a class of that name. Those
# of "-" are made of other operations.
set -euo pipefail
cd "$(dirname "$0")/.."
table=docs/operations.tsv
headers=(include/nuqi/hpp/*.hpp)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failed=0
fault() { echo "$*" >&2 && failed=1; }

grep -oE '^NUQI_API StatusCode nuqib?[A-Z][A-Za-z0-9_]*\(' include/nuqi/nuqi.h | sed 's/.* //; s/(//' | sort -u >"$work/exported"
sed 's,//.*,,' "${headers[@]}" >"$work/code"
grep -ohE '\bnuqib?[A-Z][A-Za-z0-9_]*' "$work/code" >"$work/mentioned" || true
sed -nE 's,^// not called: (nuqi[A-Za-z0-9_]+).*,\1,p' "${headers[@]}" >>"$work/mentioned"
sort -o "$work/mentioned" "$work/mentioned"
[ -s "$work/exported" ] || { echo "no prototypes found in nuqi.h" >&2; exit 1; }

# All rows, and what they match: "function operation".
: >"$work/matched"
while IFS=$'\t' read -r operation functions does rest; do
  [ "$operation" != operation ] || continue
  [[ $operation =~ ^[a-z][a-z0-9_]*$ && -n $functions && -n $does && -z $rest ]] || fault "$table: a row that is not three columns: $operation"
  for glob in ${functions#-}; do
    pattern=^$(sed 's/\*/.*/g' <<<"$glob")\$
    grep -E "$pattern" "$work/exported" >"$work/now" || fault "$table: $operation: $glob matches no function of nuqi.h"
    sed "s/\$/ $operation/" "$work/now" >>"$work/matched"
  done
  class=$(sed -E 's/(^|_)([a-z0-9])/\U\2/g' <<<"$operation")
  grep -qE "^(\[\[[a-z]+\]\] )?(inline |template <.*> )*[A-Za-z0-9_:<>]+ $operation\(|^class $class\b" "$work/code" ||
    fault "$table: $operation is neither a function nor a class in include/nuqi/hpp"
done <"$table"

# nuqiMean_* of one row and nuqiMean_StdDev_* of another would both match: exactly one may.
cut -d' ' -f1 "$work/matched" | sort >"$work/reached"
while read -r name; do fault "no operation in $table reaches $name"; done < <(comm -23 "$work/exported" <(sort -u "$work/reached"))
while read -r name; do fault "several operations in $table reach $name: $(grep "^$name " "$work/matched" | cut -d' ' -f2 | tr '\n' ' ')"; done < <(uniq -d "$work/reached")
while read -r name; do fault "include/nuqi/hpp lacks $name"; done < <(comm -23 "$work/exported" <(sort -u "$work/mentioned"))
while read -r name; do fault "include/nuqi/hpp has what nuqi.h lacks: $name"; done < <(comm -13 "$work/exported" <(sort -u "$work/mentioned"))
while read -r name; do fault "include/nuqi/hpp has several times: $name"; done < <(uniq -d "$work/mentioned")
for header in "${headers[@]}"; do
  reachable=$(cat include/nuqi/nuqi.hpp "${headers[@]}")
  grep -qF "#include <nuqi/hpp/$(basename "$header")>" <<<"$reachable" || fault "nothing includes $header"
done
[ "$failed" -eq 0 ] || exit 1
echo "$(wc -l <"$work/exported") functions, $(($(wc -l <"$table") - 1)) operations: each function in one operation and once in the C++ header"
