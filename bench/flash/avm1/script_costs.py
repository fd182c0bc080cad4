#!/usr/bin/env python3
"""What single things cost in scripts: nanoseconds for one turn of a loop around each, the loop's own turn taken off.

    script_costs.py --compiler build/bin/swfc --runner build/bin/flashrun [--runner OTHER] [--only WORD] [--rounds N]

With several runners each case is run by all of them in turn, so that the figures of a line can be compared. A figure
is the fastest of the rounds; times are those of the processor. The engine starts, compiles and ends in each run: its
share goes by taking the time of a run with a tenth of the turns.
"""
import argparse
import pathlib
import resource
import subprocess
import tempfile

# name -> (turns, set-up, body); `i` is the loop's variable, a register. Everything runs in a function unless the name
# starts with "timeline".
CASES = {
    "empty loop in a register": (3_000_000, "", ""),
    "arithmetic": (3_000_000, "var x = 1;", "x = x * 3 + 7 - i;"),
    "timeline: empty loop": (1_000_000, "", ""),
    "timeline: variable read and written": (1_000_000, "n = 0;", "n = n + 1;"),
    "timeline variable from a function": (1_000_000, "_root.n = 0;", "n = n + 1;"),
    "member get": (2_000_000, "var o = {x: 1, y: 2};", "o.y;"),
    "member set": (2_000_000, "var o = {x: 1, y: 2};", "o.y = i;"),
    "clip member get": (2_000_000, "var o = _root; o.y = 2;", "o.y;"),
    "clip member set": (2_000_000, "var o = _root; o.y = 2;", "o.y = i;"),
    "array element get": (2_000_000, "var a = [1, 2, 3, 4];", "a[2];"),
    "array element set": (2_000_000, "var a = [1, 2, 3, 4];", "a[2] = i;"),
    "array append by index": (1_000_000, "var a = [];", "a[i] = i;"),
    "array append by length": (1_000_000, "var a = [];", "a[a.length] = i;"),
    "array push": (1_000_000, "var a = [];", "a.push(i);"),
    "array length": (2_000_000, "var a = [1, 2, 3];", "a.length;"),
    "method call": (1_000_000, "var o = {m: function(p) { return p; }};", "o.m(i);"),
    "method call through a class": (
        1_000_000, "function C() {} C.prototype.m = function(p) { return p; }; var o = new C();", "o.m(i);"),
    "function call": (1_000_000, "_root.f = function(p) { return p; };", "f(i);"),
    "closure call": (
        1_000_000, "var f = (function() { var n = 0; return function() { return n++; }; })();", "f();"),
    "new object": (500_000, "function P(x) { this.x = x; }", "new P(i);"),
    "literal object": (500_000, "", "({x: i, y: 2});"),
    "charAt": (1_000_000, 'var s = "hello world";', "s.charAt(3);"),
    "charCodeAt": (1_000_000, 'var s = "hello world";', "s.charCodeAt(3);"),
    "string length": (1_000_000, 'var s = "hello world";', "s.length;"),
    "Math.sin": (1_000_000, "", "Math.sin(i);"),
    "Math.floor": (1_000_000, "", "Math.floor(i);"),
    "concatenation": (1_000_000, 'var s = "";', 's += "abc";'),
    "_x of a clip": (1_000_000, 'var c = _root.createEmptyMovieClip("c", 1);', "c._x;"),
    "_x of a clip set": (1_000_000, 'var c = _root.createEmptyMovieClip("c", 1);', "c._x = i;"),
    "clip method": (1_000_000, 'var c = _root.createEmptyMovieClip("c", 1);', "c.getDepth();"),
    "string key": (1_000_000, "var o = {}; for (var k = 0; k < 100; k++) o['k' + k] = k;", "o['k' + (i % 100)];"),
    "for in": (100_000, "var o = {a: 1, b: 2, c: 3};", "for (var k in o) ;"),
    "sort of 1e5 numbers, whole": (
        10, "var b = []; var r = 1; for (var k = 0; k < 100000; k++) { r = (r * 16807) % 2147483647; b.push(r); }",
        "b.slice().sort(16);"),
}


def source(name, turns):
    count, setup, body = CASES[name]
    loop = f"i = 0; i < {turns}; i++) {{ {body} }}"
    if name.startswith("timeline:"):
        return f"{setup}\nfor ({loop}\n"
    return f"function run() {{ {setup} for (var {loop} }}\nrun();\n"


def seconds(runner, movie):
    before = resource.getrusage(resource.RUSAGE_CHILDREN)
    done = subprocess.run([runner, "trace", movie], capture_output=True, check=False)
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    if done.returncode != 0 or done.stderr:
        raise SystemExit(f"{runner}: {done.stderr.decode()}")
    return after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("--compiler", required=True)
    parser.add_argument("--runner", action="append", required=True)
    parser.add_argument("--only", default="")
    parser.add_argument("--rounds", type=int, default=3)
    arguments = parser.parse_args()
    folder = pathlib.Path(tempfile.mkdtemp())
    base = {}
    names = [name for name in CASES if arguments.only in name or "loop" in name]
    for name in names:
        turns = CASES[name][0]
        movies = []
        for part, count in (("whole", turns), ("tenth", turns // 10)):
            script, movie = folder / f"{part}.as", folder / f"{part}.swf"
            script.write_text(source(name, count))
            subprocess.run([arguments.compiler, script, "-o", movie], check=True)
            movies.append(movie)
        best = [[1e9, 1e9] for _ in arguments.runner]
        for _ in range(arguments.rounds):
            for at, runner in enumerate(arguments.runner):
                for which, movie in enumerate(movies):
                    best[at][which] = min(best[at][which], seconds(runner, movie))
        figures = [(whole - tenth) / (turns - turns // 10) * 1e9 for whole, tenth in best]
        kind = name.startswith("timeline:")
        shown = [figure - own for figure, own in zip(figures, base[kind])] if kind in base else figures
        base.setdefault(kind, figures)
        print(f"{name:40}" + "".join(f"{figure:12.1f}" for figure in shown), flush=True)


main()
