#!/usr/bin/env bash
# make bench: the tune store timings, then the batch companion on a file of 10,000 tunes.
# Usage: bash bench/run.sh BUILD_DIR
set -euo pipefail

BUILD=${1:-build}
BENCH="$BUILD/bench/fenwork_bench"
CLI="$BUILD/fenwork-cli"

if [ ! -x "$BENCH" ]; then
  echo "bench: $BENCH is not built" >&2
  exit 1
fi

summary_dir=$(mktemp -d)
export FENWORK_BENCH_SUMMARY="$summary_dir/rows.txt"
: > "$FENWORK_BENCH_SUMMARY"
print_summary() {
  echo
  echo "Summary: each figure beside its anchor, measured in this run (medians)"
  printf '  %-44s | %11s | %-34s | %11s | %6s | %s\n' "measure" "ours" "anchor" "anchor" "ratio" "goal"
  sed 's/^/  /' "$FENWORK_BENCH_SUMMARY"
  rm -rf "$summary_dir"
}

"$BENCH"

# Each subsystem's own figures (score, playback ...), one script each.
for part in "$(dirname "$0")"/parts/*.sh; do
  [ -e "$part" ] || continue
  echo
  bash "$part" "$BUILD"
done

print_summary

echo
if ! command -v hyperfine >/dev/null; then
  echo "bench: hyperfine is not installed: fenwork-cli normalize not timed"
  exit 0
fi

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
status=0
"$BENCH" --make 10000 "$work/tunes10000.abc" || status=$?
if [ "$status" -eq 3 ]; then
  echo "bench: no corpus: fenwork-cli normalize not timed"
  exit 0
elif [ "$status" -ne 0 ]; then
  echo "bench: cannot build the file of 10,000 tunes" >&2
  exit 1
fi
# A user root of its own, so that the settings of the person running the bench play no part.
export FENNELWORKS_ROOT="$work/root"
hyperfine --warmup 1 --runs 5 \
  --command-name "fenwork-cli normalize (10,000 tunes)" \
  "'$CLI' normalize '$work/tunes10000.abc' '$work/out.abc'"
