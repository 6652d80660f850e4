#!/usr/bin/env bash
# Configures and builds into a folder, quietly: build.sh FOLDER [CMAKE ARGUMENTS...]. On failure it
# prints what the tools said.
set -euo pipefail
cd "$(dirname "$0")/.."
folder=$1
shift
mkdir -p "$folder"
log=$folder/build.log
echo "Building into $folder ..."
if ! { cmake -S . -B "$folder" "$@" && cmake --build "$folder" --parallel "$(nproc)"; } >"$log" 2>&1; then
  grep -E -A5 'error|Error' "$log" | head -60 >&2 || true
  echo "The build failed; all that it printed is in $log" >&2
  exit 1
fi
