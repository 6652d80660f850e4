#!/usr/bin/env bash
# Checks the library's objects: kernels define nothing but their tables, nothing runs at load, the one
# writable byte is the chosen instruction set, no kernel outgrows its budget. check_objects.sh BUILD_FOLDER
set -euo pipefail
objects=$1/src/CMakeFiles
fail() { echo "$*" >&2; exit 1; }

kernels=0
for object in "$objects"/nuqi_kernels_*.dir/*/*_kernels.cpp.o; do
  kernels=$((kernels + 1))
  level=${object#*nuqi_kernels_} level=${level%%.dir/*}
  # A weak function may be linked into code for older machines; so may any shared name.
  weak=$(nm -C "$object" | grep -E ' [WVu] ' || true)
  [ -z "$weak" ] || fail "$object holds weak symbols:" "$weak"
  other=$(nm -C --defined-only --extern-only "$object" | grep -vE ' [DR] nuqi::'"$level"'::[a-z0-9_]+_kernels$' || true)
  [ -z "$other" ] || fail "$object defines more than its table:" "$other"
done
[ "$kernels" -gt 0 ] || fail "no kernel objects in $objects"

for object in "$objects"/nuqi_*.dir/*/*.o; do
  if readelf -SW "$object" | grep -qE '\.(init_array|ctors|tdata|tbss)'; then fail "$object runs code at load"; fi
  # Constants that hold addresses lie in .data.rel.ro, which is read-only once the library is loaded.
  writable=$(objdump -t "$object" | awk 'NF > 3 && $(NF-2) ~ /^(\.data|\.bss|\.tm_clone_table|COMMON)($|\.[^r])/ && $NF !~ /^\./' | grep -v chosen_isa || true)
  [ -z "$writable" ] || fail "$object holds writable data:" "$writable"
done

# KB of code and constants that a kernel object may have at a level. Above 40 each has its reason.
budget() {
  case $1 in
    *:derivative3x3) echo 114 ;; # seven derivatives times three walks, unrolled by four rows
    *:match_template_8[us]) echo 64 ;; # two methods; transforms unrolled by eight points
    *:norm) echo 88 ;;           # 54 functions
    *:*_fill) echo 72 ;;         # four searches by words, and as many walks span by span, wide and narrow
    *) echo 40 ;;
  esac
}
# Of optimised builds with GCC alone: other compilers' sizes differ, and only growth is looked for.
sizes=0
if grep -q '^CMAKE_BUILD_TYPE:.*=Release$' "$1/CMakeCache.txt" &&
  grep -qs '_COMPILER_ID "GNU"' "$1"/CMakeFiles/*/CMakeCXXCompiler.cmake; then
  for object in "$objects"/nuqi_kernels_*.dir/*/*_kernels.cpp.o; do
    sizes=$((sizes + 1))
    level=${object#*nuqi_kernels_} level=${level%%.dir/*} family=$(basename "$object" _kernels.cpp.o)
    size=$(size "$object" | awk 'NR == 2 { print $1 }') most=$(budget "$level:$family")
    [ "$size" -le $((most * 1024)) ] || fail "$object has $size bytes of text: more than $most KB"
  done
fi

library=$1/src/libnuqi.so
dynamic=$(readelf -dW "$library") && grep -q '(SONAME)' <<<"$dynamic" || fail "$library is no shared library"
needed=$(sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p' <<<"$dynamic" | grep -vE '^(libc\.so\.6|ld-linux.*)$' || true)
[ -z "$needed" ] || fail "libnuqi.so needs $needed"
echo "$kernels kernel objects: tables alone; $sizes sizes checked; nothing runs at load; only the C library is needed"
