#!/usr/bin/env bash
# Automatic chords over every tune of a 1,000-tune collection, one and two chords a bar.
# Usage: bash bench/parts/chords.sh BUILD_DIR
set -euo pipefail

BUILD=${1:-build}
BENCH="$BUILD/bench/chords/bench_chords"

if [ ! -x "$BENCH" ]; then
  echo "bench: $BENCH is not built" >&2
  exit 1
fi
"$BENCH"
