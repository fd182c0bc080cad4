#!/usr/bin/env python3
"""How much memory movies take that make things and drop them at once: megabytes at N and at 4N, which must be alike.

    peak_memory.py --compiler build/bin/swfc --runner build/bin/flashrun
"""
import argparse
import os
import pathlib
import subprocess
import tempfile

FRAMES = 100
# name -> (things made in each frame, script that makes one)
CASES = {
    "objects": (25_000, "var o = {x: i, y: 2};"),
    "arrays and texts": (10_000, "var a = [i, 'text ' + i];"),
    "functions": (10_000, "var f = function() { return i; };"),
    "clips": (2_500, "createEmptyMovieClip('c', 1).removeMovieClip();"),
    "clips over others": (2_500, "createEmptyMovieClip('c', 1).onEnterFrame = function() {};"),
    "text fields": (500, "createTextField('t', 1, 0, 0, 50, 20); t.text = i; t.removeTextField();"),
}


def peak(runner, movie):
    """Megabytes that a run had in memory at most."""
    process = subprocess.Popen([runner, "trace", movie, "--frames", str(FRAMES)], stdout=subprocess.DEVNULL)
    _, status, usage = os.wait4(process.pid, 0)
    if status != 0:
        raise SystemExit(f"{runner} failed on {movie}")
    return usage.ru_maxrss / 1024


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("--compiler", required=True)
    parser.add_argument("--runner", required=True)
    arguments = parser.parse_args()
    folder = pathlib.Path(tempfile.mkdtemp())
    for name, (count, body) in CASES.items():
        figures = []
        for turns in (count, 4 * count):
            script, movie = folder / "movie.as", folder / "movie.swf"
            script.write_text('// movie: version="8" rate="30"\n'
                              f"this.onEnterFrame = function() {{ for (var i = 0; i < {turns}; i++) {{ {body} }} }};\n")
            subprocess.run([arguments.compiler, script, "-o", movie], check=True)
            figures.append(peak(arguments.runner, movie))
        print(f"{name:20}{count * FRAMES:10}{figures[0]:8.1f} MB{4 * count * FRAMES:12}{figures[1]:8.1f} MB", flush=True)


main()
