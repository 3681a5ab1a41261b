#!/usr/bin/env bash
# The similar-melody search over a file of 10,000 tunes: per query, the index build and its
# memory (fenwork-cli similar --queries), beside abcmatch on the same file and queries.
# Usage: bash bench/parts/similar.sh BUILD_DIR
set -euo pipefail

BUILD=${1:-build}
CLI="$BUILD/fenwork-cli"
BENCH="$BUILD/bench/fenwork_bench"
here=$(cd "$(dirname "$0")/../.." && pwd)
nottingham="${FENWORK_CORPUS_DIR:-$here/../shared/corpus}/nottingham"

if [ ! -x "$CLI" ] || [ ! -x "$BENCH" ]; then
  echo "bench: $CLI or $BENCH is not built" >&2
  exit 1
fi
if [ ! -d "$nottingham" ]; then
  echo "bench: no corpus: the similar-melody search not timed"
  exit 0
fi
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export FENNELWORKS_ROOT="$work/root"
"$BENCH" --make 10000 "$work/tunes10000.abc" >/dev/null

# 60 queries: the second and third bars of every 17th Nottingham tune, with its key and unit.
awk -v OFS='\t' '
  /^X:/ { n++; body = 0; key = ""; unit = "1/8"; next }
  n % 17 != 1 { next }
  /^L:/ && !body { unit = substr($0, 3); next }
  /^K:/ { if (!body) { key = substr($0, 3); body = 1 }; next }
  /^[A-Za-z]:/ || /^%/ { next }
  body == 1 {
    count = split($0, bars, "|")
    if (count >= 4) { print key, "[L:" unit "]" bars[2] "|" bars[3]; body = 2 }
  }
' "$nottingham"/*.abc | head -60 > "$work/queries.txt"
queries=$(wc -l < "$work/queries.txt")

echo "Similar melody: $queries queries over 10,000 tunes"
"$CLI" similar "$work/tunes10000.abc" --queries "$work/queries.txt" --top 10 2>&1 >/dev/null \
  | sed 's/^/  fenwork-cli similar: /'
/usr/bin/time -f "  fenwork-cli similar, whole run (opening included): %e s, peak %M KiB" \
  "$CLI" similar "$work/tunes10000.abc" --queries "$work/queries.txt" --top 10 >/dev/null 2>"$work/time.txt" || true
tail -1 "$work/time.txt"

if ! command -v abcmatch >/dev/null; then
  echo "  abcmatch is not installed: not compared"
  exit 0
fi
# abcmatch reads its query from match.abc in the folder it runs in, one process a query.
cd "$work"
runs=20
start=$(date +%s%N)
head -"$runs" queries.txt | while IFS=$'\t' read -r key fragment; do
  printf 'X:1\nT:query\nM:none\nL:1/8\nK:%s\n%s\n' "$key" "$fragment" > match.abc
  abcmatch tunes10000.abc -a >/dev/null 2>&1 || true
done
end=$(date +%s%N)
echo "  abcmatch -a (one process a query, opening included): $(( (end - start) / runs / 1000000 )) ms a query over $runs queries"
