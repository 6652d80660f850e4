#!/usr/bin/env bash
# Builds the Python package's wheel, offline, and uses it in an environment that has NumPy alone: the example of
# README, and the lowest glibc that README names. mypy reads the installed types, and holds the stubs of nuqi.c
# against the module. The source distribution is configured; building it takes as long as the library does.
# check_python.sh BUILD_FOLDER
set -euo pipefail
build=$(realpath "$1")
cd "$(dirname "$0")/.."
away=$(mktemp -d)
trap 'rm -rf "$away"' EXIT
fail() { echo "$*" >&2; exit 1; }

# The source distribution: it holds what the compiler and CMake have read of this tree, and can be configured.
/usr/bin/python3 setup.py --quiet egg_info --egg-base "$away" sdist --dist-dir "$away" >"$away/sdist.log" 2>&1 ||
  { cat "$away/sdist.log" >&2; exit 1; }
mkdir "$away/source" && tar xzf "$away"/nuqi-*.tar.gz -C "$away/source" --strip-components 1
# Compilers that a cache stands before write paths relative to where they ran.
for folder in src python; do
  find "$build/$folder" -name '*.d' -exec cat {} + | tr -s ' \\' '\n\n' | (cd "$build/$folder" && grep / | grep -v '^/usr/' | xargs realpath -m)
done >"$away/opened"
grep -oE '"/[^"]*"' "$build/CMakeFiles/Makefile.cmake" | tr -d '"' >>"$away/opened"
{ grep -E "^$PWD/(CMakeLists.txt|(cmake|include|src|python)/)" "$away/opened" || true; } | sed "s,^$PWD/,," | sort -u >"$away/read"
[ "$(grep -cE '^(src/.*_kernels.cpp|include/nuqi/hpp/.*|python/bindings/.*cpp|python/CMakeLists.txt)$' "$away/read")" -gt 50 ] ||
  fail "the build folder does not tell what it has read"
missing=$(cd "$away/source" && while read -r file; do [ -e "$file" ] || echo "$file"; done <"$away/read")
[ -z "$missing" ] || fail "the source distribution lacks" $missing
{ cmake -S "$away/source" -B "$away/configured" -DNUQI_BUILD_PYTHON=ON -DNUQI_BUILD_TESTS=OFF &&
  cmake --build "$away/configured" --target nuqi_python_texts; } >"$away/configured.log" 2>&1 ||
  { cat "$away/configured.log" >&2; exit 1; }

/usr/bin/python3 -m venv --system-site-packages "$away/builds"
NUQI_BUILD_DIR=$build "$away/builds/bin/pip" wheel --quiet --no-index --no-build-isolation --no-deps -w "$away" . \
  >"$away/pip.log" 2>&1 || { cat "$away/pip.log" >&2; exit 1; }

/usr/bin/python3 -m venv "$away/alone"
site=$("$away/alone/bin/python" -c 'import sysconfig; print(sysconfig.get_path("purelib"))')
ln -s "$(/usr/bin/python3 -c 'import numpy, os; print(os.path.dirname(numpy.__file__))')" "$site/numpy"
"$away/alone/bin/pip" install --quiet --no-index --no-deps "$away"/nuqi-*.whl

awk '/^```python$/ {on = 1; next} /^```$/ {on = 0} on' README.md >"$away/example.py"
[ -s "$away/example.py" ] || fail "README has no example in Python"
(cd "$away" && alone/bin/python example.py) || fail "README's example in Python fails"

module=$(find "$site/nuqi" -name '_native*.so')
needed=$(ldd "$module" | awk '{print $1}' | grep -vE '^(linux-vdso|libc\.so|libm\.so|/lib.*ld-linux)' || true)
[ -z "$needed" ] || fail "the module needs $needed"
glibc=$(objdump -T "$module" | grep -oE 'GLIBC_[0-9.]+' | sed 's/GLIBC_//' | sort -uV | tail -1)
grep -qF "glibc $glibc" README.md || fail "README does not say that the wheel needs glibc $glibc"

mkdir "$away/typed" && cp -r "$site/nuqi" "$away/typed"
(cd "$away/typed" && /usr/bin/python3 -m mypy --strict --no-error-summary --cache-dir "$away/mypy" nuqi)
(cd "$away/typed" && PYTHONPATH=. /usr/bin/python3 -m mypy.stubtest nuqi.c >"$away/stubs.log") || { cat "$away/stubs.log" >&2; exit 1; }
echo "source distribution complete; wheel built, installed and used beside NumPy alone; mypy and its stubtest are content"
