#!/usr/bin/env bash
# The score: a click on a tune to its page on screen, against abcm2ps and gs run as commands on
# the same text (bench/score), then the two commands alone under hyperfine.
# Usage: bash bench/parts/score.sh BUILD_DIR
set -euo pipefail

BUILD=${1:-build}
BENCH="$BUILD/bench/score/bench_score"

if [ ! -x "$BENCH" ]; then
  echo "bench: $BENCH is not built" >&2
  exit 1
fi
"$BENCH"

if ! command -v hyperfine >/dev/null || ! command -v abcm2ps >/dev/null || ! command -v gs >/dev/null; then
  exit 0
fi
here=$(cd "$(dirname "$0")/../.." && pwd)
tune="${FENWORK_CORPUS_DIR:-$here/../shared/corpus}/tuneworks/abc_1201_cooleys.abc"
[ -f "$tune" ] || exit 0
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cp "$tune" "$work/tmp.abc"
cd "$work"
hyperfine --warmup 2 --runs 15 --command-name "abcm2ps + gs (commands)" \
  "abcm2ps tmp.abc -s0.65 -O tmp.ps >/dev/null 2>&1 && gs -dNOPAUSE -dBATCH -dSAFER -r110 -sDEVICE=bmpgray -sOutputFile=tmp%d.bmp -c -f tmp.ps >/dev/null 2>&1"
