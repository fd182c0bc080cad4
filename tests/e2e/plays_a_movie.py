#!/usr/bin/env python3
"""Starts the real program on a virtual display, as a user would, and looks at the screen and the journal.

  plays_a_movie.py PROGRAM_FOLDER SWFC SCRATCH_FOLDER     exit status 77: no virtual display to be had

A copy of the program folder is used, so that its journal and cache are this test's own.
"""
import os
import shutil
import subprocess
import sys
import time

MOVIE = '''<movie version="6" width="320" height="240" rate="20" background="#4974BA">
  <shape id="disc"><circle cx="160" cy="120" r="60" fill="#F2A93B"/></shape>
  <sprite id="s"><frame><place id="disc"/></frame></sprite>
  <frame><place id="s" name="s"/><script>
    _root.onMouseDown = function () { s._visible = false; };
    fscommand("MeowLog", "hello from the movie");
  </script></frame>
</movie>
'''
DISC, GROUND = (0xF2, 0xA9, 0x3B), (0x49, 0x74, 0xBA)


def screen():
    """The root window as (width, rows of RGB bytes)."""
    ppm = subprocess.run(['import', '-window', 'root', '-depth', '8', 'ppm:-'], check=True, capture_output=True).stdout
    _, width, height, _, pixels = ppm.split(maxsplit=4) if ppm[:2] == b'P6' else sys.exit('no picture')
    width, height = int(width), int(height)
    pixels = ppm[len(ppm) - 3 * width * height:]
    return width, [pixels[3 * width * y:3 * width * (y + 1)] for y in range(height)]


def count(colour):
    width, rows = screen()
    wanted = bytes(colour)
    return sum(row[3 * x:3 * x + 3] == wanted for row in rows for x in range(width))


def wait_for(what, question, seconds=20):
    end = time.monotonic() + seconds
    while time.monotonic() < end:
        if question():
            return
        time.sleep(0.2)
    sys.exit('in vain: ' + what)


def find(colour):
    width, rows = screen()
    wanted = bytes(colour)
    spots = [(x, y) for y, row in enumerate(rows) for x in range(width) if row[3 * x:3 * x + 3] == wanted]
    return spots[len(spots) // 2]


def main():
    program_folder, swfc, scratch = sys.argv[1:4]
    if not os.environ.get('ZORVEX_E2E_DISPLAY'):
        tools = ('xvfb-run', 'xdotool', 'import')
        if not all(shutil.which(tool) for tool in tools):
            print('needs ' + ', '.join(tools))
            return 77
        command = ['xvfb-run', '-a', '-s', '-screen 0 800x600x24', sys.executable] + sys.argv
        return subprocess.run(command, env=dict(os.environ, ZORVEX_E2E_DISPLAY='1'), check=False).returncode

    os.environ['QT_QPA_PLATFORM'] = 'xcb'
    suppressions = os.path.join(os.path.dirname(os.path.abspath(__file__)), '..', 'lsan.supp')
    os.environ['LSAN_OPTIONS'] = 'suppressions=' + suppressions
    folder = os.path.join(scratch, 'program')
    shutil.rmtree(folder, ignore_errors=True)
    shutil.copytree(program_folder, folder)
    source, movie = os.path.join(scratch, 'movie.xml'), os.path.join(scratch, 'Мой ролик.swf')
    with open(source, 'w', encoding='utf-8') as handle:
        handle.write(MOVIE)
    subprocess.run([swfc, source, '-o', movie], check=True)

    player = subprocess.Popen([os.path.join(folder, 'Zorvex'), movie])
    try:
        wait_for('the disc', lambda: count(DISC) > 10000)
        # A disc of radius 60 on 320 x 240: the movie is shown at its own size, not scaled.
        assert 10500 < count(DISC) < 11500, count(DISC)
        assert count(GROUND) > 320 * 240 - 11500 - 600, count(GROUND)
        x, y = find(DISC)
        subprocess.run(['xdotool', 'mousemove', str(x), str(y), 'click', '1'], check=True)
        wait_for('the click to reach the movie', lambda: count(DISC) == 0)
        player.terminate()
        assert player.wait(20) == 0, player.returncode
    finally:
        player.kill()

    with open(os.path.join(folder, 'App.Log.html'), encoding='cp1251', newline='') as handle:
        log = handle.read()
    for line in (' :: Start Up<br>\r\n', ' :: Form Load<br>\r\n', ' :: LoadFlash (\r\n', 'Compressed File<br>\r\n',
                 'Ok<br>\r\n', 'Media debug :: hello from the movie<br>\r\n', '<B>Quit: Query Unload by '):
        assert line in log, (line, log)
    print('The program plays, listens and keeps its journal.')
    return 0


if __name__ == '__main__':
    sys.exit(main())
