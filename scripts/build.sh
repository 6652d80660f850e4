#!/usr/bin/env bash
# Configures and builds into a folder, quietly: build.sh FOLDER [CMAKE ARGUMENTS...]. A terminal shows how
# far it is. On failure it prints what the tools said.
set -euo pipefail
cd "$(dirname "$0")/.."
folder=$1
shift
mkdir -p "$folder"
log=$folder/build.log

# Reads what the tools say; make begins its lines with "[ 12%]".
show_progress() {
  local line
  while IFS= read -r line; do
    [[ -t 2 && $line =~ ^\[\ *([0-9]+)%\] ]] && printf '\r%3d %% built' "${BASH_REMATCH[1]}" >&2
  done
  [ ! -t 2 ] || printf '\r\033[K' >&2
}

echo "Building into $folder ..."
if ! { cmake -S . -B "$folder" "$@" && cmake --build "$folder" --parallel "$(nproc)"; } 2>&1 |
  tee "$log" | show_progress; then
  grep -E -A5 'error|Error' "$log" | head -60 >&2 || true
  echo "The build failed; all that it printed is in $log" >&2
  exit 1
fi
