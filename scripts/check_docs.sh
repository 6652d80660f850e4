#!/usr/bin/env bash
# Holds the documents against the code: README's programs are the examples that CI builds, every vector
# word stands in docs/simd.md, every family of nuqi.h with the number of its functions in
# README's table and names an example, every function has a line of its own, and every link leads
# somewhere.
set -euo pipefail
cd "$(dirname "$0")/.."
fail() { echo "$*" >&2; exit 1; }

while read -r language program; do
  diff <(awk -v fence="^\`\`\`$language\$" '$0 ~ fence {on = 1; next} /^```$/ {on = 0} on' README.md) "examples/$program" ||
    fail "README's program (<) is not examples/$program (>)"
done <<<'c hello.c
cpp edges.cpp'

# The words that kernels use, and all operations of a machine; what a word is made of need not be listed.
defined_in() {
  grep -hA3 'NUQI_INLINE' "$@" | tr '\n' ' ' | grep -oE 'NUQI_INLINE [^(]*\(' |
    sed -E 's/\($//; s/.*[ &*>]//' | grep -vE '^(operator.*|)$' | sort -u
}
used=$(git ls-files 'src/*_kernels.cpp' 'src/*.h' | grep -v core/simd | xargs sed 's,//.*,,' | grep -oE '[a-z0-9_]+[<(]' | tr -d '<(' | sort -u)
words=$(comm -12 <(defined_in src/core/simd/*.h) <(echo "$used"); defined_in src/core/simd/machine_plain.h)
[ "$(wc -w <<<"$words")" -gt 20 ] || fail "no vector words found"
missing=$(for word in $words; do grep -qE "\`$word\b" docs/simd.md || echo "$word"; done)
[ -z "$missing" ] || fail "docs/simd.md does not explain:" $missing

# What README's table has to say of each section of the header: its name and the number of its functions.
counted=$(awk '/^\/\* ---- / {gsub(/^\/\* ---- | -+( \*\/)?$/, ""); family = $0}
               /^NUQI_API / {count[family]++; all++}
               END {for (f in count) print "| " f " | " count[f] " |"; print "| **All** | **" all "** |"}' include/nuqi/nuqi.h)
[ "$(wc -l <<<"$counted")" -gt 2 ] || fail "no families found in nuqi.h"
while read -r row; do
  grep -qF "$row" README.md || fail "README's table of families lacks: $row"
done <<<"$counted"
families=$(sed -n '/^| family /,/^$/p' README.md | grep -c '^| ')
[ "$families" -eq $(($(wc -l <<<"$counted") + 1)) ] || fail "README's table has a family that nuqi.h lacks"

# A function's own line begins with its family; a family's section names its example.
unexplained=$(awk '/^\/\* ---- / {gsub(/^\/\* ---- | -+( \*\/)?$/, ""); family = $0}
                   /^NUQI_API / && index(before, "/** " family ": ") != 1
                   {before = $0}' include/nuqi/nuqi.h examples/new_family/include/nuqi/threshold.h)
[ -z "$unexplained" ] || fail "no line with the family's name stands above:" "$unexplained"
examples=$(sed -n 's/^ \* *Example *\(examples.*\)$/\1/p' include/nuqi/nuqi.h)
[ "$(wc -l <<<"$examples")" -eq $(($(wc -l <<<"$counted") - 1)) ] || fail "a family of nuqi.h names no example"
diff <(sort <<<"$examples") <(git ls-files 'examples/families/*.c' | sort) ||
  fail "nuqi.h names (<) other examples than there are (>)"

for page in README.md CONTRIBUTING.md docs/*.md; do
  { grep -oE '\]\([^)#: ]*[./][^)#: ]*\)' "$page" || true; } | sed 's/](//; s/)//' | while read -r target; do
    [ -e "$(dirname "$page")/$target" ] || fail "$page links to $target, which does not exist"
  done
done
echo "documents agree with the code"
