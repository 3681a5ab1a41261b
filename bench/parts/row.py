"""Rows of the bench summary from a hyperfine JSON file: the first command is ours, the second
its anchor; medians, their ratio. With a second argument (seconds of music), the render row."""
import json
import os
import sys


def row(measure, ours, anchor, anchor_value, goal, unit="ms"):
    ratio = ours / anchor_value if anchor_value > 0 else 0
    line = f"{measure:<44} | {ours:8.2f} {unit} | {anchor:<34} | {anchor_value:8.2f} {unit} | {ratio:6.2f} | {goal}"
    print("  " + line)
    summary = os.environ.get("FENWORK_BENCH_SUMMARY")
    if summary:
        with open(summary, "a") as out:
            out.write(line + "\n")


results = json.load(open(sys.argv[1]))["results"]
ours = results[0]["median"] * 1000
anchor = results[1]["median"] * 1000 if len(results) > 1 else 0
if len(sys.argv) > 2:
    seconds = float(sys.argv[2])
    print(f"playback: render is {seconds * 1000 / ours:.0f}x faster than real time ({seconds} s of music)")
    row("fenwork-cli render (whole run)", ours, "fluidsynth -F", anchor, "goal: near the anchor")
