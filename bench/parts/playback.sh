#!/usr/bin/env bash
# Playback: the press of Play to the first note (bench/playback), then fenwork-cli render under
# hyperfine, given as a multiple of real time.
# Usage: bash bench/parts/playback.sh BUILD_DIR
set -euo pipefail

BUILD=${1:-build}
BENCH="$BUILD/bench/playback/bench_playback"
CLI="$BUILD/fenwork-cli"

if [ ! -x "$BENCH" ]; then
  echo "bench: $BENCH is not built" >&2
  exit 1
fi
"$BENCH"

if ! command -v hyperfine >/dev/null || ! command -v abc2midi >/dev/null; then
  echo "bench: hyperfine or abc2midi is missing: fenwork-cli render not timed"
  exit 0
fi
here=$(cd "$(dirname "$0")/../.." && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export FENNELWORKS_ROOT="$work/root"
# The sample's first tune with its repeats: a little over a minute of music. A copy, so that
# nothing is ever written into the source tree.
cp "$here/data/sample.abc" "$work/sample.abc"
seconds=$("$CLI" render "$work/sample.abc" 1 "$work/out.wav")
hyperfine --warmup 1 --runs 10 --export-json "$work/render.json" \
  --command-name "fenwork-cli render ($seconds s of music)" \
  "'$CLI' render '$work/sample.abc' 1 '$work/out.wav'"
mean=$(python3 -c "import json,sys; print(json.load(open(sys.argv[1]))['results'][0]['mean'])" "$work/render.json")
python3 -c "import sys; s, t = float(sys.argv[1]), float(sys.argv[2]); print(f'playback: render is {s / t:.0f}x faster than real time ({s} s of music in {t:.3f} s)')" "$seconds" "$mean"
