#!/usr/bin/env python3
"""Compares how long the player takes to show its window with programs that show one line of text, and nothing.

  start_time.py BUILD [RUNS]    needs a display; prints ms and ratios, of the medians and of the best runs
"""
import pathlib
import shutil
import statistics
import subprocess
import sys
import tempfile
import time


def run(command):
    begin = time.perf_counter()
    # Without a time limit: waiting with one looks only every so often, and rounds the figures up.
    subprocess.run(command, check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    return (time.perf_counter() - begin) * 1000


def main():
    build = pathlib.Path(sys.argv[1])
    runs = int(sys.argv[2]) if len(sys.argv) > 2 else 15
    with tempfile.TemporaryDirectory() as folder:
        shutil.copytree(build / 'Zorvex' / 'media', folder + '/media')
        shutil.copy(build / 'Zorvex' / 'settings.xml', folder)
        (pathlib.Path(folder) / 'cache').mkdir()
        commands = {'empty': [build / 'bench/show_empty'], 'text': [build / 'bench/show_text'],
                    'player': [build / 'bench/show_player', folder]}
        times = {name: [] for name in commands}
        for turn in range(runs + 1):
            for name, command in commands.items():
                taken = run(command)
                if turn > 0:  # the first one reads the disk
                    times[name].append(taken)
    # The best run is the one that the rest of the machine disturbed least.
    for name, figure in (('median', statistics.median), ('best', min)):
        empty, text, player = (figure(times[name]) for name in ('empty', 'text', 'player'))
        print('%s: empty %.0f ms, text %.0f ms, player %.0f ms; to text %.2f, to empty %.2f' %
              (name, empty, text, player, player / text, player / empty))


if __name__ == '__main__':
    main()
