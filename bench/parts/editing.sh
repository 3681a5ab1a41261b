#!/usr/bin/env bash
# The colouring of the editor: a whole tune of 300 lines, and the caret's line on a keystroke.
# Usage: bash bench/parts/editing.sh BUILD_DIR
set -euo pipefail

BUILD=${1:-build}
BENCH="$BUILD/bench/editing/bench_editing"

if [ ! -x "$BENCH" ]; then
  echo "bench: $BENCH is not built" >&2
  exit 1
fi
"$BENCH"
if [ -x "$BUILD/bench/editing/bench_keystroke" ]; then "$BUILD/bench/editing/bench_keystroke"; fi
