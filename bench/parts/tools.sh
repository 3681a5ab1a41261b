#!/usr/bin/env bash
# The file tools: cleaning, sorting and reindexing files of 1,000, 10,000 and 50,000 tunes
# (bench/tools), then the analysis of 200 tunes against abcm2ps run on each tune alone in a
# shell loop.
# Usage: bash bench/parts/tools.sh BUILD_DIR
set -euo pipefail

BUILD=${1:-build}
BENCH="$BUILD/bench/tools/bench_tools"
MAKE="$BUILD/bench/fenwork_bench"
CLI="$BUILD/fenwork-cli"

if [ ! -x "$BENCH" ] || [ ! -x "$MAKE" ]; then
  echo "bench: $BENCH or $MAKE is not built" >&2
  exit 1
fi
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export FENNELWORKS_ROOT="$work/root"

for n in 1000 10000 50000; do
  status=0
  "$MAKE" --make "$n" "$work/tunes$n.abc" || status=$?
  if [ "$status" -eq 3 ]; then
    echo "bench: no corpus: the file tools not timed"
    exit 0
  elif [ "$status" -ne 0 ]; then
    echo "bench: cannot build the file of $n tunes" >&2
    exit 1
  fi
  "$BENCH" "$work/tunes$n.abc"
  rm -f "$work/tunes$n.abc"
done

if ! command -v abcm2ps >/dev/null || [ ! -x "$CLI" ]; then
  echo "bench: abcm2ps or fenwork-cli is missing: the analysis not timed"
  exit 0
fi
"$MAKE" --make 200 "$work/tunes200.abc"
# The anchor: the same tunes, each alone in a file, through abcm2ps one after the other.
mkdir -p "$work/alone"
awk -v dir="$work/alone" '/^[ ]*X:/ { n++ } n { print > (dir "/" n ".abc") }' "$work/tunes200.abc"
start=$(date +%s.%N)
for tune in "$work"/alone/*.abc; do
  abcm2ps "$tune" -s0.65 -O "$work/alone.ps" >/dev/null 2>&1 || true
done
loop=$(echo "$(date +%s.%N) - $start" | bc)
start=$(date +%s.%N)
"$CLI" analyse "$work/tunes200.abc" > "$work/bad.txt"
analyse=$(echo "$(date +%s.%N) - $start" | bc)
bad=$(wc -l < "$work/bad.txt")
python3 -c "import sys; l, a = float(sys.argv[1]), float(sys.argv[2]); print(f'tools: analysis of 200 tunes {a:.2f} s, abcm2ps alone in a shell loop {l:.2f} s: {a / l:.2f} times')" "$loop" "$analyse"
echo "tools: analysis listed $bad line(s)"
