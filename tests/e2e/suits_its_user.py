#!/usr/bin/env python3
"""In English, on a bus and under a window manager: the browser and its order, progress in the task bar, the help, the
options, and a conversion with its note.

  suits_its_user.py PROGRAM_FOLDER SWFC SCRATCH_FOLDER     exit status 77: something is missing here
"""
import os
import re
import shutil
import subprocess
import sys

from screen import click, compile_movie, copy_program, journal, spots, under_virtual_display, wait_for, windows_of

MOVIE = '''<movie version="7" width="320" height="240" rate="20" background="%s" compressed="no">
  <shape id="stripe"><rect y="100" width="320" height="40" fill="#101010"/></shape>
  <frame duration="10"><place id="stripe"/><script>
    fscommand("MeowLog", "playing %s");
  </script></frame>
</movie>
'''
COLOURS = {'aaa': '#00A020', 'bbb': '#E000E0', 'ccc': '#E06000'}
PICTURED = (0xE0, 0x00, 0xE0)
JPEG_TOLERANCE = 12


def run(*command):
    return subprocess.run(command, check=False, capture_output=True, text=True).stdout


def titles():
    return [title for _, _, title in windows_of('Zorvex').values()]


def key(*keys):
    subprocess.run(['xdotool', 'key', '--clearmodifiers'] + list(keys), check=True)


def window_named(name):
    def focused():
        found = [window for window, (_, _, title) in windows_of('Zorvex').items() if title == name]
        return found[0] if found and run('xdotool', 'getactivewindow').strip() == found[0] else None
    return wait_for('the window "%s", not %s' % (name, titles()), focused)


def main():
    if not os.environ.get('ZORVEX_E2E_BUS'):
        if not all(shutil.which(tool) for tool in ('dbus-run-session', 'dbus-monitor', 'openbox', 'wmctrl')):
            print('needs a bus, openbox and wmctrl')
            return 77
        environment = dict(os.environ, ZORVEX_E2E_BUS='1', ZORVEX_LANG='en')
        return subprocess.run(['dbus-run-session', '--', sys.executable] + sys.argv, env=environment,
                              check=False).returncode
    program_folder, swfc, scratch = sys.argv[1:4]
    status = under_virtual_display('1100x860')
    if status is not None:
        return status
    folder, movies = copy_program(program_folder, scratch), os.path.join(scratch, 'browsed')
    shutil.rmtree(movies, ignore_errors=True)
    os.makedirs(os.path.join(movies, 'more'))
    for age, (name, colour) in enumerate(COLOURS.items()):
        path = os.path.join(movies, name + '.swf')
        compile_movie(swfc, MOVIE % (colour, name), path)
        os.utime(path, (10 ** 9 + age, 10 ** 9 + age))
    heard = os.path.join(scratch, 'bus.txt')
    with open(heard, 'w', encoding='utf-8') as handle:
        listener = subprocess.Popen(['dbus-monitor', '--session', "interface='com.canonical.Unity.LauncherEntry'"],
                                    stdout=handle)
    manager = subprocess.Popen(['openbox', '--sm-disable'], stderr=subprocess.DEVNULL)
    wait_for('the window manager', lambda: run('wmctrl', '-m'))
    player = subprocess.Popen([os.path.join(folder, 'Zorvex'), movies])

    def picture(name):
        run('import', '-window', 'root', os.path.join(scratch, name + '.png'))

    def left_of_picture():
        found = spots(PICTURED, JPEG_TOLERANCE)
        return min(x for x, _ in found) if len(found) > 3000 else None

    try:
        wait_for('the browser in English', lambda: 'Zorvex - Browse Media' in titles(), 40)
        by_name = wait_for('the picture', left_of_picture)
        with open(heard, encoding='utf-8') as handle:
            said = handle.read()
        assert 'application://zorvex.desktop' in said and 'progress-visible' in said, said
        picture('browsed by name')

        # Folders stand first: the way up, "more", then the movies. The newest of three is the last by name.
        window = window_named('Zorvex - Browse Media')
        shape = dict(line.split('=') for line in run('xdotool', 'getwindowgeometry', '--shell', window).split())
        middle = int(shape['X']) + int(shape['WIDTH']) // 2
        # The button with the order stands left of the one that chooses a folder; the page is as wide as the window.
        click(middle + int(int(shape['WIDTH']) * (320 - 12 - 156 - 8 - 50) / 640), int(shape['Y']) + 34 + 22)
        wait_for('another scan', lambda: journal(folder).count(' :: New Media Browse (') == 2)
        wait_for('the same movie in the middle', lambda: left_of_picture() == by_name)
        picture('browsed by date')

        window_named('Zorvex - Browse Media')
        key('F1')
        window_named('Help')
        picture('help')
        key('Escape')
        window_named('Zorvex - Browse Media')
        key('ctrl+p')
        window_named('Settings')
        picture('options')
        key('Escape')

        window_named('Zorvex - Browse Media')
        found = spots(PICTURED, JPEG_TOLERANCE)
        click(*found[len(found) // 4])
        wait_for('the movie', lambda: 'Media debug :: playing bbb' in journal(folder))
        window_named('Zorvex - bbb.swf')
        movie = os.path.join(movies, 'bbb.swf')
        plain = os.path.getsize(movie)
        key('F12')
        subprocess.run(['xdotool', 'type', '--delay', '20', 'Player.mnuCompress.Click'], check=True)
        key('Return')

        def signature():
            with open(movie, 'rb') as handle:
                return handle.read(3)
        wait_for('the compressed file', lambda: signature() == b'CWS')
        assert os.path.getsize(movie) < plain
        picture('told of the gain')
        kept = [name for name in os.listdir(os.path.join(folder, 'cache')) if name.endswith('bbb.swf.swf')]
        assert len(kept) == 1 and os.path.getsize(os.path.join(folder, 'cache', kept[0])) == plain, kept
        player.terminate()
        assert player.wait(20) == 0, player.returncode
    finally:
        player.kill()
        listener.terminate()
        manager.terminate()
    with open(os.path.join(folder, 'settings.xml'), encoding='cp1251') as handle:
        assert re.search(r'order="date"', handle.read()), 'the order is kept'
    print('The program suits its user.')
    return 0


if __name__ == '__main__':
    sys.exit(main())
