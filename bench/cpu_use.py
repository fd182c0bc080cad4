#!/usr/bin/env python3
"""Measures what the whole program costs while it plays a movie.

  cpu_use.py PROGRAM MOVIE [--seconds S] [--settle S]

Prints the processor time used in the span, in per cent of one core (user and system, all threads). Starts a
virtual display when there is none. The figure is for the program alone, not for the display server.
"""
import argparse
import os
import shutil
import subprocess
import sys
import time


def used_seconds(pid):
    with open('/proc/%d/stat' % pid, encoding='ascii') as handle:
        fields = handle.read().rsplit(')', 1)[1].split()
    return (int(fields[11]) + int(fields[12])) / os.sysconf('SC_CLK_TCK')


def main():
    ap = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    ap.add_argument('program')
    ap.add_argument('movie')
    ap.add_argument('--seconds', type=float, default=20)
    ap.add_argument('--settle', type=float, default=4, help='seconds to let the start-up pass')
    args = ap.parse_args()
    if not os.environ.get('DISPLAY') and shutil.which('xvfb-run'):
        os.execvp('xvfb-run', ['xvfb-run', '-a', '-s', '-screen 0 1280x960x24', sys.executable] + sys.argv)
    player = subprocess.Popen([args.program, args.movie])
    try:
        time.sleep(args.settle)
        before, begun = used_seconds(player.pid), time.monotonic()
        time.sleep(args.seconds)
        if player.poll() is not None:
            sys.exit('the program ended with status %d' % player.returncode)
        share = (used_seconds(player.pid) - before) / (time.monotonic() - begun)
    finally:
        player.terminate()
        player.wait()
    print('%.2f %% of one core over %.0f s' % (100 * share, args.seconds))


if __name__ == '__main__':
    main()
