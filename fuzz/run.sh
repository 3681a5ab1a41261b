#!/usr/bin/env bash
# make fuzz: runs fuzz_store for SECONDS on a seed corpus of our crafted cases plus a few of the
# shared corpus collections (copied into the build folder, never into the project).
# Usage: bash fuzz/run.sh BUILD_DIR SECONDS
set -euo pipefail

BUILD=${1:-build-fuzz}
SECONDS_TO_RUN=${2:-600}
HERE=$(cd "$(dirname "$0")" && pwd)
CORPUS_DIR=${FENWORK_CORPUS_DIR:-$HERE/../../shared/corpus}

work="$BUILD/fuzz-work"
mkdir -p "$work/corpus" "$work/artifacts"
cp "$HERE"/seeds/*.abc "$work/corpus/"
if [ -d "$CORPUS_DIR" ]; then
  for f in nottingham/ashover.abc tuneworks/abc_1201_cooleys.abc abcm2ps/deco.abc abcmidi/drums.abc \
           abcm2ps/sample4.abc; do
    [ -f "$CORPUS_DIR/$f" ] && cp "$CORPUS_DIR/$f" "$work/corpus/corpus_$(basename "$f")"
  done
else
  echo "fuzz: no shared corpus at $CORPUS_DIR: crafted seeds only"
fi

export ASAN_OPTIONS=${ASAN_OPTIONS:-detect_leaks=0:abort_on_error=1}
export UBSAN_OPTIONS=${UBSAN_OPTIONS:-halt_on_error=1:print_stacktrace=1}
# Inputs are kept small enough that one run stays far below the time limit; a run over 10 s is
# reported as a hang.
exec "$BUILD/fuzz/fuzz_store" "$work/corpus" \
  -max_total_time="$SECONDS_TO_RUN" -max_len=32768 -timeout=10 -rss_limit_mb=4096 \
  -artifact_prefix="$work/artifacts/" -print_final_stats=1
