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
mkdir -p "$FENNELWORKS_ROOT"
# One SoundFont for both sides: the one the system names as its General MIDI font.
font=$(readlink -f /usr/share/sounds/sf2/default-GM.sf2 || true)
[ -f "$font" ] && printf '[Player]\r\nSoundFont=%s\r\n' "$font" > "$FENNELWORKS_ROOT/fenwork.ini"
# The sample's first tune with its repeats: a little over a minute of music. A copy, so that
# nothing is ever written into the source tree.
cp "$here/data/sample.abc" "$work/sample.abc"
seconds=$("$CLI" render "$work/sample.abc" 1 "$work/out.wav")
runs=(--command-name "fenwork-cli render ($seconds s of music)" "'$CLI' render '$work/sample.abc' 1 '$work/out.wav'")
# The anchor: the same tune made into MIDI by abc2midi, rendered by the fluidsynth command.
if command -v fluidsynth >/dev/null && [ -f "$font" ]; then
  (cd "$work" && abc2midi sample.abc 1 -o anchor.mid >/dev/null 2>&1) || true
  if [ -s "$work/anchor.mid" ]; then
    runs+=(--command-name "fluidsynth -F (the same MIDI)" \
      "fluidsynth -ni -q -g 0.6 -r 44100 -F '$work/anchor.wav' '$font' '$work/anchor.mid'")
  fi
fi
hyperfine --warmup 1 --runs 10 --style basic --export-json "$work/render.json" "${runs[@]}" >/dev/null
python3 "$(dirname "$0")/row.py" "$work/render.json" "$seconds"
