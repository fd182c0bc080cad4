#!/usr/bin/env python3
"""What it costs that a movie plays in a process of its own: the same program, with and without, turn by turn.

  process_cost.py PROGRAM SWFC [--runs N] [--only start|memory|input|frames]

  start   from the start of the program to the first frame of a movie on the screen, ms
  memory  of all processes of the program together while it plays, MiB (proportional set size)
  input   from a press of the mouse to what a script makes of it on the screen, ms
  frames  a movie of 60 frames a second on the full screen of 1280x960, everything moving: the frames that were
          never seen on the screen, per cent

Looks at single pixels of a virtual display of its own some thousand times a second.
"""
import argparse
import os
import shutil
import statistics
import subprocess
import sys
import tempfile
import time

from cpu_use import memory_mib

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), '..', 'tests', 'e2e'))
from screen import Display, family  # noqa: E402

MOVIES = {
    # Red from the first frame on; its ground, which the window shows before, is white.
    'start': '''<movie version="7" width="550" height="400" rate="30" background="#FFFFFF">
      <shape id="r"><rect width="550" height="400" fill="#FF0000"/></shape><frame><place id="r" depth="1"/></frame></movie>''',
    'memory': None,
    # Every press changes the colour of the whole stage.
    'input': '''<movie version="7" width="550" height="400" rate="60" background="#FF0000">
      <shape id="g"><rect width="550" height="400" fill="#00FF00"/></shape>
      <sprite id="ground"><frame><place id="g" depth="1"/></frame></sprite>
      <frame><place id="ground" name="ground" depth="1"/><script><![CDATA[
        ground._visible = false;
        var l = {onMouseDown: function() { ground._visible = !ground._visible; }};
        Mouse.addListener(l);]]></script></frame></movie>''',
    # The number of the frame as eight squares on the left, black or white, and forty leaves that move.
    'frames': '''<movie version="7" width="1280" height="960" rate="60" background="#808080">
      <shape id="s"><rect width="60" height="60" fill="#FFFFFF"/></shape>
      <shape id="b"><rect width="60" height="480" fill="#000000"/></shape>
      <shape id="l"><path d="M0 -44 C36 -44 60 -16 48 20 C40 48 8 60 -16 52 C-48 44 -60 8 -44 -20 C-34 -36 -18 -44 0 -44 Z"
        fill="#4974BA"/></shape>
      <sprite id="bit"><frame><place id="s" depth="1"/></frame></sprite><export id="bit" name="bit"/>
      <sprite id="leaf"><frame><place id="l" depth="1"/></frame></sprite><export id="leaf" name="leaf"/>
      <frame><place id="b" depth="1"/><script><![CDATA[
        var n = 0;
        for (var i = 0; i < 8; i++) { var c = _root.attachMovie("bit", "b" + i, 100 + i); c._y = 60 * i; }
        for (var i = 0; i < 40; i++) { var c = _root.attachMovie("leaf", "l" + i, 200 + i);
          c._x = 160 + i % 8 * 150; c._y = 90 + Math.floor(i / 8) * 190; }
        onEnterFrame = function() {
          n++;
          for (var i = 0; i < 8; i++) _root["b" + i]._visible = (n >> i & 1) == 1;
          for (var i = 0; i < 40; i++) { var c = _root["l" + i]; c._rotation += 3; c._x += Math.sin(n / 20 + i); }
        };]]></script></frame></movie>''',
}
SCREEN = (1280, 960)


class Life:
    def __init__(self, program, movie, inside):
        environment = dict(os.environ, ZORVEX_ONE_PROCESS='1' if inside else '0')
        self.begun = time.perf_counter()
        self.process = subprocess.Popen([program, movie], env=environment, stderr=subprocess.DEVNULL)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.process.terminate()
        self.process.wait()


def wait_for(screen, x, y, colour, seconds=10):
    end = time.perf_counter() + seconds
    while screen.pixel(x, y) != colour:
        if time.perf_counter() > end:
            sys.exit('%r is not seen at %d, %d' % (colour, x, y))
    return time.perf_counter()


SPOT = (200, 200)  # in the window, which stands at the left above
RED, GREEN = (255, 0, 0), (0, 255, 0)


def start(screen, program, movie, inside):
    with Life(program, movie, inside) as life:
        return (wait_for(screen, *SPOT, RED) - life.begun) * 1000


def memory(_, program, movie, inside):
    with Life(program, movie, inside) as life:
        time.sleep(4)  # with the spare process that is kept ready
        return memory_mib(family(life.process.pid))


def press(screen, program, movie, inside):
    times = []
    with Life(program, movie, inside):
        wait_for(screen, *SPOT, RED)
        time.sleep(1)
        for i in range(40):
            screen.press(*SPOT)
            begun = time.perf_counter()
            times.append((wait_for(screen, *SPOT, GREEN if i % 2 == 0 else RED) - begun) * 1000)
            screen.release()
            time.sleep(0.011 * (i % 7))
    return statistics.median(times)


def frames(screen, program, movie, inside):
    seen, last, turns = 0, None, 0
    with Life(program, movie, inside):
        time.sleep(2)
        subprocess.run(['xdotool', 'mousemove', '640', '480', 'click', '1', 'key', 'F11'], check=False,
                       capture_output=True)
        time.sleep(2)
        first = None
        begun = time.perf_counter()
        while time.perf_counter() - begun < 8:
            bits = screen.column(30, 0, SCREEN[1] // 2)[30::60]
            number = sum((colour[0] > 128) << i for i, colour in enumerate(bits))
            if number == last:
                continue
            if last is not None:
                turns += (number - last) % 256
            first = number if first is None else first
            last, seen = number, seen + 1
    # What the movie itself left out, because it came too late for it, was not to be seen either way.
    expected = 8 * 60
    print('  %s: %d of %d frames seen, the movie came to %d' % ('inside' if inside else 'of its own', seen, expected, turns))
    return 100 * (1 - min(seen, expected) / expected)


MEASURES = {'start': (start, 'ms to the first frame'), 'memory': (memory, 'MiB'),
            'input': (press, 'ms from press to picture'), 'frames': (frames, '% of frames dropped')}


def main():
    ap = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    ap.add_argument('program')
    ap.add_argument('swfc')
    ap.add_argument('--runs', type=int, default=9)
    ap.add_argument('--only', choices=list(MEASURES))
    args = ap.parse_args()
    if not os.environ.get('ZORVEX_BENCH_DISPLAY'):
        os.environ['ZORVEX_BENCH_DISPLAY'] = '1'
        os.execvp('xvfb-run', ['xvfb-run', '-a', '-s', '-screen 0 %dx%dx24 -noreset' % SCREEN, sys.executable] + sys.argv)
    screen = Display()
    with tempfile.TemporaryDirectory() as folder:
        # A copy, so that settings and journal are the bench's own.
        program = os.path.join(folder, 'program')
        shutil.copytree(os.path.dirname(os.path.abspath(args.program)), program,
                        ignore=shutil.ignore_patterns('App.Log.html', 'cache'))
        os.makedirs(os.path.join(program, 'cache'))
        program = os.path.join(program, os.path.basename(args.program))
        for name, (measure, unit) in MEASURES.items():
            if args.only not in (None, name):
                continue
            source, movie = os.path.join(folder, name + '.xml'), os.path.join(folder, name + '.swf')
            with open(source, 'w', encoding='utf-8') as handle:
                handle.write(MOVIES[name] or MOVIES['frames'])
            subprocess.run([args.swfc, source, '-o', movie], check=True)
            figures = {False: [], True: []}
            for turn in range(args.runs + 1):
                for inside in (turn % 2 == 0, turn % 2 == 1):
                    figure = measure(screen, program, movie, inside)
                    if turn > 0:  # the first one reads the disk
                        figures[inside].append(figure)
                if turn == 2 and name in ('frames', 'memory'):
                    break
            own, within = (statistics.median(figures[inside]) for inside in (False, True))
            print('%-7s of its own %.1f, inside %.1f, difference %+.1f %s (medians of %d; %+.1f of the best)' %
                  (name, own, within, own - within, unit, len(figures[True]),
                   min(figures[False]) - min(figures[True])))
            sys.stdout.flush()


if __name__ == '__main__':
    main()
