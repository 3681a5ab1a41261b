#!/usr/bin/env bash
# Publishing: the Nottingham tune books in one file exported to PDF, to PNG at 120 dpi and to
# MIDI by fenwork-cli, side by side with abcm2ps + gs and abc2midi run as commands with the same
# arguments; then one tune to PDF.
# Usage: bash bench/parts/publishing.sh BUILD_DIR
set -euo pipefail

BUILD=$(cd "${1:-build}" && pwd)
CLI="$BUILD/fenwork-cli"
here=$(cd "$(dirname "$0")/../.." && pwd)
books="${FENWORK_CORPUS_DIR:-$here/../shared/corpus}/nottingham"

if [ -x "$BUILD/bench/publishing/bench_publishing" ]; then
  "$BUILD/bench/publishing/bench_publishing"
fi
if [ ! -x "$CLI" ]; then
  echo "bench: $CLI is not built" >&2
  exit 1
fi
for tool in hyperfine abcm2ps gs abc2midi; do
  if ! command -v "$tool" >/dev/null; then
    echo "bench: $tool is not installed: publishing not timed"
    exit 0
  fi
done
if [ ! -d "$books" ]; then
  echo "bench: no corpus: publishing not timed"
  exit 0
fi

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export FENNELWORKS_ROOT="$work/root"
mkdir -p "$FENNELWORKS_ROOT/user" "$work/out" "$work/tools"
for f in "$books"/*.abc; do cat "$f"; printf '\r\n'; done > "$work/all.abc"
# The dialog's first format, as the export uses it.
"$CLI" format "$work/none.fmt" "$FENNELWORKS_ROOT/user/format.fmt"
fmt="$FENNELWORKS_ROOT/user/format.fmt"
awk 'BEGIN{RS="\r?\n"} /^X:/{n++} n==1' "$work/all.abc" > "$work/one.abc"
cd "$work/tools"

echo "publishing: $(grep -c '^X:' "$work/all.abc") tunes in one file"
gsargs="-dNOPAUSE -dBATCH -dSAFER -sPAPERSIZE=a4 -c -f tmp.ps"
hyperfine --warmup 1 --runs 5 \
  --command-name "fenwork-cli export .pdf" "$CLI export $work/all.abc $work/out/all.pdf >/dev/null" \
  --command-name "abcm2ps + gs pdfwrite (commands)" \
  "abcm2ps $work/all.abc -F $fmt -O tmp.ps >/dev/null 2>&1; gs -r720 -sDEVICE=pdfwrite -sOutputFile=all.pdf $gsargs >/dev/null"
hyperfine --warmup 1 --runs 3 --prepare "rm -f $work/out/*.png tools*.png" \
  --command-name "fenwork-cli export .png 120 dpi" "$CLI export $work/all.abc $work/out/all.png >/dev/null" \
  --command-name "abcm2ps + gs pnggray (commands)" \
  "abcm2ps $work/all.abc -F $fmt -O tmp.ps >/dev/null 2>&1; gs -r120 -sDEVICE=pnggray -sOutputFile=all%d.png $gsargs >/dev/null"
hyperfine --warmup 1 --runs 5 \
  --command-name "fenwork-cli export .mid" "$CLI export $work/all.abc $work/out/all.mid >/dev/null 2>&1" \
  --command-name "abc2midi (command)" "abc2midi $work/all.abc >/dev/null"
hyperfine --warmup 2 --runs 20 \
  --command-name "fenwork-cli export one tune .pdf" "$CLI export $work/one.abc $work/out/one.pdf >/dev/null" \
  --command-name "abcm2ps + gs pdfwrite one tune (commands)" \
  "abcm2ps $work/one.abc -F $fmt -O tmp.ps >/dev/null 2>&1; gs -r720 -sDEVICE=pdfwrite -sOutputFile=one.pdf $gsargs >/dev/null"
