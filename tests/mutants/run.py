#!/usr/bin/env python3
"""Plants the faults of faults.py, one at a time, and tells which of them the tests catch.

    tests/mutants/run.py [--build FOLDER] [--ninja COMMAND] [--area AREA] [--only TEXT] [--list]

The sources stay as they are: each fault goes into a copy of its one file, below build/mutants/, which is compiled as the
build compiles the file (of a header, those that include it) and put in front of the libraries when the tests of its area
are linked once more. A fault whose text is no longer in the file, or that does not compile, is told as stale: it must
follow the code that it was taken from.
The program ends with 1 when a fault was stale or more than four went unnoticed.
"""

import argparse
import json
import os
import pathlib
import re
import shlex
import subprocess
import sys
import time

from faults import FAULTS

ROOT = pathlib.Path(__file__).resolve().parents[2]
MAX_UNNOTICED = 4
PATIENCE_S = 300  # for one test program; a fault may also make it hang, which is noticed

# The tests that a change in an area has to pass, the quickest first: program, filter, and the program that is linked
# with the fault where the tests run another one. What needs further programs is left out, and so are the movies about
# sound, memory, damage or size; they take minutes and look for faults of other kinds.
QUICK_MOVIES = "Movies_language*:Movies_placement*:Movies_buttons*"
OTHER_MOVIES = ("Movies_script4*:Movies_classes*:Movies_engine.*:Movies_engine_pictures*:Movies_text*:Movies_shapes*:"
                "Movies_library*:Movies_player*:Movies_bitmaps*:Movies_memory.instances")
MOVIES = [("movie_tests", QUICK_MOVIES, "flashrun"), ("movie_tests", OTHER_MOVIES, "flashrun")]
TESTS = {
    "vm": [("flash_vm_tests", "*", None)],
    "avm2": [("flash_avm2_tests", "*", None), ("movie_tests", "Movies_actionscript3*", "flashrun")],
    "avm1": [("flash_avm1_tests", "*", None), *MOVIES],
    "stage": [("flash_stage_tests", "*", None), *MOVIES],
    "render": [("flash_render_tests", "*", None), *MOVIES],
    "player": [("player_tests", "-*Skin*:Hostile*:FilmExport*", None)],
    "skin": [("skin_tests", "-*InAnInstant", None)],
}


def path_of(program):
    return ("bin/" if program == "flashrun" else "tests/") + program


def compile_command(build, source):
    """@returns the command without its output and input"""
    for entry in json.loads((build / "compile_commands.json").read_text()):
        if entry["file"] == str(source):
            return re.sub(r" -o \S+ -c \S+$", "", entry["command"])
    raise SystemExit(f"{source} is not part of the build in {build}")


def compile_includers(build, header, before, compiled):
    """@returns what makes one object of all sources that name a header, which is taken from the folder `before`"""
    commands, objects = [], []
    for entry in json.loads((build / "compile_commands.json").read_text()):
        source = pathlib.Path(entry["file"])
        if source.is_relative_to(ROOT / "src") and f'#include "{header}"' in source.read_text():
            objects.append(f"{compiled}.{len(objects)}")
            command = compile_command(build, source).replace(" -I", f" -I{before} -I", 1)
            commands.append(f"{command} -w -o {objects[-1]} -c {source}")
    return " && ".join(commands + [f"ld -r -o {compiled} {' '.join(objects)}"])


def link_command(build, program):
    listed = subprocess.run(["ninja", "-C", str(build), "-t", "commands", "-s", path_of(program)], capture_output=True,
                            text=True, check=True)
    command = listed.stdout.strip().splitlines()[-1]
    return command.split("&& ", 1)[1].split(" && ")[0]


def plan(build, folder, faults):
    """Writes the faulty copies and how they become programs. @returns the numbers of the faults that are stale"""
    rules, stale = ["rule run\n  command = cd %s && $what\n" % build], set()
    linked = {}
    for number, (name, area, file, before, after) in faults:
        source = ROOT / "src" / file
        text = source.read_text()
        if text.count(before) != 1:
            stale.add(number)
            print(f"stale      {area}: {name} (its text is there {text.count(before)} times)", flush=True)
            continue
        own = folder / str(number)
        own.mkdir(parents=True, exist_ok=True)
        copy, compiled = own / "faulty" / file, own / "fault.o"
        faulty = text.replace(before, after)
        if not copy.is_file() or copy.read_text() != faulty:
            copy.parent.mkdir(parents=True, exist_ok=True)
            copy.write_text(faulty)
        if source.suffix == ".h":
            what = compile_includers(build, file, own / "faulty", compiled)
        else:
            what = f"{compile_command(build, source)} -w -o {compiled} -c {copy}"
        rules.append(f"build {compiled}: run {copy} {source}\n  what = {what}\n")
        for program in sorted({tested or test for test, _, tested in TESTS[area]}):
            if program not in linked:
                linked[program] = link_command(build, program)
            what = linked[program].replace(f"-o {path_of(program)} ", f"-o {own / program} {compiled} ")
            rules.append(f"build {own / program}: run {compiled} {build / path_of(program)}\n  what = {what}\n")
    (folder / "build.ninja").write_text("\n".join(rules))
    return stale


def failing_test(build, own, test):
    """@returns a name of what failed, or None"""
    program, chosen, tested = test
    environment = dict(os.environ, QT_QPA_PLATFORM="offscreen", GTEST_FAIL_FAST="1")
    if tested:
        environment["ZORVEX_TEST_" + tested.upper()] = str(own / tested)
    path = build / "tests" / program if tested else own / program
    try:
        run = subprocess.run([str(path), "--gtest_brief=1", "--gtest_filter=" + chosen], cwd=build / "tests",
                             env=environment, capture_output=True, text=True, errors="replace", timeout=PATIENCE_S)
    except subprocess.TimeoutExpired:
        return f"{program} (hangs)"
    if run.returncode == 0:
        return None
    failed = [line.split("]", 1)[1].split(",")[0].split("(")[0].strip() for line in run.stdout.splitlines()
              if line.startswith("[  FAILED  ]")]
    return failed[0] if failed else f"{program} (ends with {run.returncode})"


def main():
    arguments = argparse.ArgumentParser()
    arguments.add_argument("--build", type=pathlib.Path, default=ROOT / "build", help="of the release preset")
    arguments.add_argument("--ninja", default="ninja -C", help="builds the targets behind a folder")
    arguments.add_argument("--area", choices=sorted(TESTS), action="append", help="may be given more than once")
    arguments.add_argument("--only", action="append", help="faults whose name holds this text; may be given more than once")
    arguments.add_argument("--list", action="store_true", help="tells which texts are there, and does no more")
    options = arguments.parse_args()
    chosen = [(number, fault) for number, fault in enumerate(FAULTS)
              if any(text in fault[0] for text in options.only or [""]) and (options.area is None or fault[1] in options.area)]

    if options.list:
        gone = [fault for _, fault in chosen if (ROOT / "src" / fault[2]).read_text().count(fault[3]) != 1]
        for _, fault in chosen:
            print(f"{'STALE  ' if fault in gone else ''}{fault[1]}: {fault[0]}")
        return 1 if gone else 0

    build, ninja = options.build.resolve(), shlex.split(options.ninja)
    tests = sorted({test for _, fault in chosen for test in TESTS[fault[1]]}, key=str)
    programs = sorted({program for test in tests for program in (test[0], test[2]) if program})
    if subprocess.run(ninja + [str(build)] + programs).returncode != 0:
        return 2
    for test in tests:
        if failure := failing_test(build, build / ("bin" if test[2] else "tests"), test):
            print(f"{test[0]} fails without any fault: {failure}")
            return 2
    folder = build / "mutants"
    folder.mkdir(exist_ok=True)
    stale = plan(build, folder, chosen)
    # What does not compile is found missing below.
    for number, _ in chosen:
        (folder / str(number) / "fault.o").unlink(missing_ok=True)
    subprocess.run(ninja + [str(folder), "-k0"])

    caught, unnoticed = [], []
    for number, (name, area, *_) in chosen:
        if number in stale:
            continue
        own, began = folder / str(number), time.monotonic()
        if not all((own / (tested or test)).is_file() for test, _, tested in TESTS[area]) \
                or not (own / "fault.o").is_file():
            stale.add(number)
            print(f"stale      {area}: {name} (does not compile)", flush=True)
            continue
        failure = next(filter(None, (failing_test(build, own, test) for test in TESTS[area])), None)
        (caught if failure else unnoticed).append(name)
        took = f"{time.monotonic() - began:.0f} s"
        print(f"caught     {area}: {name} (by {failure}, {took})" if failure else
              f"UNNOTICED  {area}: {name} ({took})", flush=True)
    print(f"{len(caught)} of {len(chosen)} faults were caught, {len(unnoticed)} went unnoticed, {len(stale)} are stale")
    return 1 if stale or len(unnoticed) > MAX_UNNOTICED else 0


if __name__ == "__main__":
    sys.exit(main())
