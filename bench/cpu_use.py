#!/usr/bin/env python3
"""Measures what the whole program costs while it plays a movie: in its own process and in all it has started.

  cpu_use.py PROGRAM MOVIE [--seconds S] [--settle S] [--window WIDTHxHEIGHT] [--awake]
  cpu_use.py PROGRAM MOVIE --paired [--rounds N]

Prints the processor time used in the span, in per cent of one core (user and system, all threads of all processes;
then of each process), and the memory of all processes together (proportional set size, so that what they share counts
once). --paired plays
the movie twice at the same time, in a process of its own and inside the player's, and prints both and their ratio for
each round and the median: what else the machine does then hits both alike. --awake keeps the processors from falling
asleep by loops that run when nothing else does: in a virtual machine, what it costs to wake one up again is counted as
the program's, and comes to more than a small frame does. Starts a virtual display when there is
none. The figures are for the program alone, not for the display server.
"""
import argparse
import os
import shutil
import statistics
import subprocess
import sys
import time

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), '..', 'tests', 'e2e'))
from screen import family  # noqa: E402


def used_seconds(pids):
    """To the nanosecond where the kernel counts so; its clock ticks are ten milliseconds."""
    total = 0.0
    for pid in pids:
        for task in os.listdir('/proc/%d/task' % pid):
            with open('/proc/%d/task/%s/schedstat' % (pid, task), encoding='ascii') as handle:
                total += int(handle.read().split()[0]) / 1e9
    return total


def name_of(pid):
    with open('/proc/%d/comm' % pid, encoding='ascii', errors='replace') as handle:
        return handle.read().strip()


def memory_mib(pids):
    total = 0
    for pid in pids:
        with open('/proc/%d/smaps_rollup' % pid, encoding='ascii') as handle:
            total += next(int(line.split()[1]) for line in handle if line.startswith('Pss:'))
    return total / 1024


def keep_awake():
    """@returns processes that take what time nobody else wants, one for each processor, to be killed."""
    def last():
        os.sched_setscheduler(0, os.SCHED_IDLE, os.sched_param(0))
    return [subprocess.Popen(['sh', '-c', 'while :; do :; done'], preexec_fn=last) for _ in range(os.cpu_count())]


class Playing:
    """One life of the program."""

    def __init__(self, program, movie, inside=None, window=None):
        environment = dict(os.environ)
        if inside is not None:
            environment['ZORVEX_ONE_PROCESS'] = '1' if inside else '0'
        self.process = subprocess.Popen([program, movie], env=environment)
        if window:
            self.resize(window)

    def resize(self, size):
        found = subprocess.run(['xdotool', 'search', '--sync', '--onlyvisible', '--pid', str(self.process.pid)],
                               check=True, capture_output=True, text=True).stdout.split()
        for name in found:
            subprocess.run(['xdotool', 'windowsize', name] + size.split('x'), check=True)

    def mark(self):
        if self.process.poll() is not None:
            sys.exit('the program ended with status %d' % self.process.returncode)
        self.pids = family(self.process.pid)
        self.before, self.begun = {pid: used_seconds([pid]) for pid in self.pids}, time.monotonic()

    def shares(self):
        """Of each process, in the order they were started in."""
        return {pid: (used_seconds([pid]) - self.before[pid]) / (time.monotonic() - self.begun) for pid in self.pids}

    def share(self):
        return sum(self.shares().values())

    def end(self):
        self.process.terminate()
        self.process.wait()


def main():
    ap = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    ap.add_argument('program')
    ap.add_argument('movie')
    ap.add_argument('--seconds', type=float, default=20)
    ap.add_argument('--settle', type=float, default=4, help='seconds to let the start-up pass')
    ap.add_argument('--window', metavar='WIDTHxHEIGHT', help='the size to give the window; needs xdotool')
    ap.add_argument('--awake', action='store_true', help='keep the processors from falling asleep')
    ap.add_argument('--paired', action='store_true')
    ap.add_argument('--rounds', type=int, default=5)
    args = ap.parse_args()
    if not os.environ.get('DISPLAY') and shutil.which('xvfb-run'):
        os.execvp('xvfb-run', ['xvfb-run', '-a', '-s', '-screen 0 1280x960x24', sys.executable] + sys.argv)
    loops = keep_awake() if args.awake else []
    try:
        measure(args)
    finally:
        for loop in loops:
            loop.kill()


def measure(args):
    if not args.paired:
        playing = Playing(args.program, args.movie, window=args.window)
        try:
            time.sleep(args.settle)
            playing.mark()
            time.sleep(args.seconds)
            shares = playing.shares()
            print('%.2f %% of one core over %.0f s, %.0f MiB (%s)' %
                  (100 * sum(shares.values()), args.seconds, memory_mib(playing.pids),
                   ', '.join('%s %.2f %%' % (name_of(pid), 100 * share) for pid, share in shares.items())))
        finally:
            playing.end()
        return
    both = [Playing(args.program, args.movie, inside) for inside in (False, True)]
    ratios, growth = [], 0
    try:
        time.sleep(args.settle)
        for _ in range(args.rounds):
            for playing in both:
                playing.mark()
            time.sleep(args.seconds / args.rounds)
            shares = [100 * playing.share() for playing in both]
            memory = [memory_mib(playing.pids) for playing in both]
            ratios.append(shares[0] / shares[1])
            growth = max(growth, memory[0] - memory[1])
            print('of its own %.2f %%, %.1f MiB; inside %.2f %%, %.1f MiB; %.3f times' %
                  (shares[0], memory[0], shares[1], memory[1], ratios[-1]))
    finally:
        for playing in both:
            playing.end()
    print('median %.3f times, %+.1f MiB' % (statistics.median(ratios), growth))


if __name__ == '__main__':
    main()
