#!/usr/bin/env python3
"""A movie that makes clips and takes them away again holds no more memory after a million of them than after a few.

    flat_memory.py --compiler build/bin/swfc --runner build/bin/flashrun [--clips N]

Each clip has a name that none had before, as those have that timelines place without one. Exit status 1: memory grows.
"""
import argparse
import os
import pathlib
import subprocess
import sys
import tempfile

A_FRAME = 250
# What a run may hold more of at most when it makes all the clips instead of a few of them.
MOST_MEGABYTES = 2.5
# A third is removed, a third replaced by the next at its depth, a third goes with the clip around it; each has
# variables, a handler and a child, and its name is looked up.
MOVIE = """// movie: version="8" rate="30"
var made = 0;
function make(at, depth) {
    var clip = at.createEmptyMovieClip("made" + made++, depth);
    clip.number = made;
    clip.onEnterFrame = function() { this.number++; };
    clip.createEmptyMovieClip("child" + made, 1);
    return at["made" + (made - 1)];
}
this.onEnterFrame = function() {
    for (var i = 0; i < %d / 3; i++) {
        make(this, 1).removeMovieClip();
        make(this, 2 + i %% 5);
        make(this.createEmptyMovieClip("around" + made, 10), 1);
    }
};
"""


def peak(runner, movie, frames):
    """Megabytes that a run had in memory at most."""
    process = subprocess.Popen([runner, "trace", movie, "--frames", str(frames)], stdout=subprocess.DEVNULL)
    _, status, usage = os.wait4(process.pid, 0)
    if status != 0:
        raise SystemExit(f"{runner} failed on {movie}")
    return usage.ru_maxrss / 1024


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n", maxsplit=1)[0])
    parser.add_argument("--compiler", required=True)
    parser.add_argument("--runner", required=True)
    parser.add_argument("--clips", type=int, default=250_000)
    arguments = parser.parse_args()
    with tempfile.TemporaryDirectory() as folder:
        script, movie = pathlib.Path(folder) / "clips.as", pathlib.Path(folder) / "clips.swf"
        script.write_text(MOVIE % A_FRAME)
        subprocess.run([arguments.compiler, script, "-o", movie], check=True)
        # A few are as many as the collector lets gather before it looks.
        counts = arguments.clips // 50, arguments.clips
        few, many = (peak(arguments.runner, movie, count // A_FRAME) for count in counts)
    print(f"{few:.1f} MB after {counts[0]} clips, {many:.1f} MB after {counts[1]}")
    return 0 if many - few < MOST_MEGABYTES else 1


if __name__ == "__main__":
    sys.exit(main())
