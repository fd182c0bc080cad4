#!/usr/bin/env python3
"""Takes away from the running program what it counts on: its cache, settings, journal, movie and display, and lets two
of it run at once. Nothing may crash, and what can still be saved is saved.

  survives_faults.py PROGRAM_FOLDER SWFC SCRATCH_FOLDER     exit status 77: no virtual display to be had
"""
import os
import shutil
import signal
import subprocess
import sys
import time
import xml.dom.minidom

from screen import compile_movie, copy_program, journal, screen, under_virtual_display, wait_for, windows_of

# Changes its colour with the time, so that it is seen to play.
MOVIE = '''<movie version="6" width="320" height="240" rate="20" background="#4974BA">
  <shape id="a"><rect width="320" height="240" fill="#F2A93B"/></shape>
  <shape id="b"><rect width="320" height="240" fill="#D9534F"/></shape>
  <frame duration="4"><place id="a" depth="1"/></frame>
  <frame duration="4"><remove depth="1"/><place id="b" depth="1"/></frame>
</movie>
'''


class Program:
    def __init__(self, folder, movie, display=None):
        self.folder = folder
        environment = dict(os.environ)
        if display is not None:
            environment['DISPLAY'] = display
        self.process = subprocess.Popen([os.path.join(folder, 'Zorvex'), movie], env=environment,
                                        stderr=subprocess.DEVNULL)

    def file(self, name):
        return os.path.join(self.folder, name)

    def end(self):
        asked = time.monotonic()
        self.process.send_signal(signal.SIGTERM)
        status = self.process.wait(20)
        assert status == 0, status
        # Where it hangs on something, it would be killed after 20.
        assert time.monotonic() - asked < 8, 'ends late'

    def __enter__(self):
        return self

    def __exit__(self, *_):
        if self.process.poll() is None:
            self.process.kill()
            self.process.wait()


def middle():
    width, rows = screen()
    names = set()
    for y in range(0, len(rows), 20):
        for x in range(0, width, 20):
            colour = rows[y][3 * x:3 * x + 3]
            names.update(name for name, known in (('a', b'\xF2\xA9\x3B'), ('b', b'\xD9\x53\x4F')) if colour == known)
    return names


def plays():
    for colour in 'ab':
        wait_for('the movie to play', lambda colour=colour: colour in middle())


def titles():
    return [title for width, _, title in windows_of('Zorvex').values() if width > 60]


def replace_by_folder(path):
    if os.path.isdir(path):
        shutil.rmtree(path)
    elif os.path.lexists(path):
        os.remove(path)
    os.makedirs(os.path.join(path, 'inside'))


def cache_is_no_folder(fresh, movie):
    folder = fresh()
    shutil.rmtree(os.path.join(folder, 'cache'))
    with open(os.path.join(folder, 'cache'), 'w', encoding='ascii') as handle:
        handle.write('a file')
    with Program(folder, movie) as program:
        plays()
        program.end()
    assert 'Quit: Query Unload by' in journal(folder)


def settings_cannot_be_written(fresh, movie):
    folder = fresh()
    replace_by_folder(os.path.join(folder, 'settings.xml'))
    with Program(folder, movie) as program:
        plays()
        program.end()
    assert 'not saved' in journal(folder), journal(folder)


def journal_cannot_be_written(fresh, movie):
    for fault in (replace_by_folder, lambda path: (os.remove(path), os.symlink('/dev/full', path))):
        folder = fresh()
        with Program(folder, movie) as program:
            plays()
            fault(program.file('App.Log.html'))
            main = wait_for('a window', lambda: next(iter(windows_of('Zorvex')), None))
            # A command that logs: it is carried out, and the fault is told once.
            for _ in range(3):
                subprocess.run(['xdotool', 'windowfocus', '--sync', main, 'key', '--clearmodifiers', 'F11'], check=True)
                subprocess.run(['xdotool', 'windowfocus', main, 'key', '--clearmodifiers', 'ctrl+w'], check=False)
                time.sleep(0.3)
            wait_for('the fault to be told', lambda: 'Ошибка' in titles())
            assert titles().count('Ошибка') == 1, titles()
            program.end()


def movie_changes_on_disk(fresh, movie):
    folder = fresh()
    for change in (os.remove, lambda path: os.truncate(path, 20), lambda path: shutil.copy(__file__, path),
                   lambda path: (os.remove(path), os.makedirs(path))):
        copy = os.path.join(folder, 'changing.swf')
        if os.path.isdir(copy):
            os.rmdir(copy)
        shutil.copy(movie, copy)
        with Program(folder, copy) as program:
            plays()
            change(copy)
            plays()
            program.end()
        if os.path.isdir(copy):
            os.rmdir(copy)


def two_at_once(fresh, movie):
    folder = fresh()
    with Program(folder, movie) as one, Program(folder, movie) as other:
        plays()
        time.sleep(1)
        one.process.send_signal(signal.SIGTERM)
        other.process.send_signal(signal.SIGTERM)
        assert (one.process.wait(20), other.process.wait(20)) == (0, 0)
    xml.dom.minidom.parse(os.path.join(folder, 'settings.xml'))
    assert movie in open(os.path.join(folder, 'settings.xml'), encoding='cp1251').read()
    assert not [name for name in os.listdir(folder) if name.endswith('.tmp')], os.listdir(folder)


def display_goes(fresh, movie):
    folder = fresh()
    answer, number = os.pipe()
    server = subprocess.Popen(['Xvfb', '-displayfd', str(number), '-screen', '0', '640x480x24', '-nolisten', 'tcp'],
                              pass_fds=[number], stderr=subprocess.DEVNULL)
    os.close(number)
    with os.fdopen(answer) as pipe:
        display = ':' + pipe.readline().strip()
    try:
        with Program(folder, movie, display) as program:
            wait_for('the movie', lambda: 'Ok<br>' in journal(folder))
            time.sleep(1)
            server.kill()
            server.wait()
            status = program.process.wait(20)
            assert status >= 0, 'crashed: %d' % status
    finally:
        server.kill()
    assert ' :: Save Options' in journal(folder), journal(folder)
    assert movie in open(os.path.join(folder, 'settings.xml'), encoding='cp1251').read()


def main():
    program_folder, swfc, scratch = sys.argv[1:4]
    status = under_virtual_display('1024x768')
    if status is not None:
        return status
    movie = os.path.join(scratch, 'movie.swf')
    compile_movie(swfc, MOVIE, movie)
    for fault in (cache_is_no_folder, settings_cannot_be_written, journal_cannot_be_written, movie_changes_on_disk,
                  two_at_once, display_goes):
        fault(lambda: copy_program(program_folder, scratch), movie)
        print(fault.__name__.replace('_', ' '), ': survived', sep='')
        sys.stdout.flush()
    return 0


if __name__ == '__main__':
    sys.exit(main())
