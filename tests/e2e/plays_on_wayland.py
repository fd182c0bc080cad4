#!/usr/bin/env python3
"""Under a Wayland compositor without X: the window, its dialogs, a movie, full screen and back.

  plays_on_wayland.py PROGRAM_FOLDER SWFC SCRATCH_FOLDER     exit status 77: something is missing here
"""
import os
import shutil
import subprocess
import sys
import tempfile
import time

from screen import compile_movie, copy_program, count, journal, spots, under_virtual_display, wait_for

MOVIE = '''<movie version="7" width="480" height="320" rate="20" background="#E000E0">
  <frame duration="400"><script>fscommand("MeowLog", "playing here");</script></frame>
</movie>
'''
GROUND, PAPER, SLATE = (0xE0, 0x00, 0xE0), (0xF6, 0xF8, 0xFC), (0x22, 0x33, 0x49)
WIDTH, HEIGHT = 1100, 800


def key(*keys):
    # The compositor is a window of the display: it takes the keys and hands them on.
    subprocess.run(['xdotool', 'key'] + list(keys), check=True)


def picture(scratch, name):
    subprocess.run(['import', '-window', 'root', os.path.join(scratch, name + '.png')], check=False)


def main():
    if not shutil.which('weston'):
        print('needs weston')
        return 77
    program_folder, swfc, scratch = sys.argv[1:4]
    status = under_virtual_display('%dx%d' % (WIDTH, HEIGHT))
    if status is not None:
        return status
    folder, movie = copy_program(program_folder, scratch), os.path.join(scratch, 'wayland.swf')
    compile_movie(swfc, MOVIE, movie)
    with tempfile.TemporaryDirectory() as runtime:
        os.chmod(runtime, 0o700)
        environment = dict(os.environ, XDG_RUNTIME_DIR=runtime, WAYLAND_DISPLAY='zorvex-test')
        with open(os.path.join(scratch, 'weston.txt'), 'w', encoding='utf-8') as log:
            compositor = subprocess.Popen(
                ['weston', '--backend=x11-backend.so', '--socket=zorvex-test', '--idle-time=0', '--no-config',
                 '--width=%d' % WIDTH, '--height=%d' % HEIGHT],
                env={name: value for name, value in environment.items() if name != 'WAYLAND_DISPLAY'},
                stdout=log, stderr=log)
        environment['QT_QPA_PLATFORM'] = 'wayland'
        del environment['DISPLAY']
        player = None
        try:
            wait_for('the compositor', lambda: os.path.exists(os.path.join(runtime, 'zorvex-test')))
            player = subprocess.Popen([os.path.join(folder, 'Zorvex'), movie], env=environment)
            wait_for('the movie', lambda: 'Media debug :: playing here' in journal(folder))
            # All of it at its own size, and the bar below.
            wait_for('its picture', lambda: count(GROUND) >= 480 * 320 - 5000)
            assert count(GROUND) < 480 * 320 + 5000
            wait_for('the bar', lambda: count(SLATE) > 5000)
            picture(scratch, 'window')
            where = spots(GROUND)
            subprocess.run(['xdotool', 'mousemove', *map(str, where[len(where) // 2])], check=True)
            key('ctrl+p')
            wait_for('the options', lambda: count(PAPER) > 20000)
            picture(scratch, 'options')
            key('Escape')
            wait_for('their end', lambda: count(PAPER) < 2000)
            # The compositor gives the keyboard back to the window some time after the dialog has gone.
            pressed = -10.0

            def is_whole():
                nonlocal pressed
                if count(GROUND) > WIDTH * HEIGHT * 0.7:
                    return True
                if time.monotonic() - pressed > 5:
                    pressed = time.monotonic()
                    key('F11')
                return False
            wait_for('the whole screen', is_whole)
            picture(scratch, 'full screen')
            key('Escape')
            wait_for('the window again', lambda: 480 * 320 - 5000 <= count(GROUND) < 480 * 320 + 5000)
            player.terminate()
            assert player.wait(20) == 0, player.returncode
        finally:
            if player is not None:
                player.kill()
            compositor.terminate()
            compositor.wait(20)
    print('The program plays on Wayland.')
    return 0


if __name__ == '__main__':
    sys.exit(main())
