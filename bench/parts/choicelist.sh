#!/usr/bin/env bash
# The working list: filled by a filter, pruned, written as ABC, made into a set (bench/collections).
# Usage: bash bench/parts/choicelist.sh BUILD_DIR
set -euo pipefail

BUILD=${1:-build}
BENCH="$BUILD/bench/collections/bench_list"

if [ ! -x "$BENCH" ]; then
  echo "bench: $BENCH is not built" >&2
  exit 1
fi
"$BENCH"
