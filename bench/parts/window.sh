#!/usr/bin/env bash
# The window on a file of 10,000 tunes: start to painted, memory with the SoundFont ready, and the
# filter filling the choice list, each beside its anchor (bench/window).
# Usage: bash bench/parts/window.sh BUILD_DIR
set -euo pipefail

BUILD=${1:-build}
BENCH="$BUILD/bench/window/bench_window"
if [ ! -x "$BENCH" ] || [ ! -x "$BUILD/bench/fenwork_bench" ]; then
  echo "bench: $BENCH is not built" >&2
  exit 1
fi
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
status=0
"$BUILD/bench/fenwork_bench" --make 10000 "$work/tunes10000.abc" 2>/dev/null || status=$?
if [ "$status" -eq 3 ]; then
  echo "bench: no corpus: the window is not timed"
  exit 0
elif [ "$status" -ne 0 ]; then
  echo "bench: cannot build the file of 10,000 tunes" >&2
  exit 1
fi
"$BENCH" "$work/tunes10000.abc" "${RUNS:-5}"
