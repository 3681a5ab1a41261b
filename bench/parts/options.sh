#!/usr/bin/env bash
# The options dialog's opening and a language switch, and the start's cost of a version check
# whose server never answers (bench/options).
# Usage: bash bench/parts/options.sh BUILD_DIR
set -euo pipefail

BUILD=${1:-build}
BENCH="$BUILD/bench/options/bench_options"
if [ ! -x "$BENCH" ]; then
  echo "bench: $BENCH is not built" >&2
  exit 1
fi
"$BENCH"
