#!/usr/bin/env python3
"""Goes through a whole session by the keyboard: from the welcome page to the end of the program.

  drives_the_player.py PROGRAM_FOLDER SWFC SCRATCH_FOLDER     exit status 77: no virtual display to be had

Pictures of every station stay in the scratch folder.
"""
import os
import re
import shutil
import subprocess
import sys
import time

from screen import compile_movie, copy_program, journal, under_virtual_display, wait_for, windows_of

SCREEN = (1280, 900)
MOVIE_SIZE = (480, 320)
LEAST_WIDTH = 360  # of the skin that ships
# Tells each frame that it comes to, and what it hears of the program's volume.
FRAMES = 400
MOVIE = '''<movie version="7" width="%d" height="%d" rate="20" background="#4974BA">
  <shape id="ball"><circle cx="160" cy="120" r="60" fill="#F2A93B"/></shape>
  <frame duration="%d"><place id="ball"/><script>
    var last = 0, volume = -1;
    this.onEnterFrame = function () {
      if (_currentframe != last) fscommand("MeowLog", "frame " + (last = _currentframe));
      var now = new Sound().getVolume();
      if (now != volume) fscommand("MeowLog", "volume " + (volume = now));
    };
  </script></frame>
</movie>
''' % (MOVIE_SIZE + (FRAMES,))


class Session:
    def __init__(self, folder, scratch):
        self.folder, self.scratch, self.pictures = folder, scratch, 0
        self.process = subprocess.Popen([os.path.join(folder, 'Zorvex')])

    def log(self):
        return journal(self.folder)

    def wait_for_log(self, text, times=1):
        wait_for('%r in the journal' % text, lambda: self.log().count(text) >= times)

    def windows(self):
        """The visible windows as {id: (width, height, title)}."""
        return windows_of('Zorvex')

    def main_window(self):
        windows = self.windows()
        return max(windows, key=lambda window: windows[window][0]) if windows else None

    def size(self):
        windows = self.windows()
        return max(((width, height) for width, height, _ in windows.values()), default=(0, 0))

    def key(self, *keys, window=None):
        # Nobody manages windows here who would give them the keyboard.
        target = window or wait_for('a window', self.main_window)
        subprocess.run(['xdotool', 'windowfocus', '--sync', target, 'key', '--clearmodifiers'] + list(keys),
                       check=True)

    def picture(self, name):
        self.pictures += 1
        target = os.path.join(self.scratch, '%02d %s.png' % (self.pictures, name))
        subprocess.run(['import', '-window', 'root', target], check=True)

    def frame(self):
        """The frame that the movie told last; 0 before the first."""
        told = re.findall(r'Media debug :: frame (\d+)<', self.log())
        return int(told[-1]) if told else 0

    def volume(self):
        told = re.findall(r'Media debug :: volume (\d+)<', self.log())
        return int(told[-1]) if told else None

    def halts(self):
        """Whether no frame comes within a second: beside other work one may be late."""
        before, end = self.frame(), time.monotonic() + 1
        while time.monotonic() < end:
            if self.frame() != before:
                return False
            time.sleep(0.05)
        return True


def play(session, movie):
    session.wait_for_log('welcome.swf)... ')
    wait_for('the window', session.main_window)
    session.picture('welcome')

    session.key('ctrl+o')
    session.wait_for_log(' :: Open Media Dialog<br>')
    dialog = wait_for('the dialog', lambda: next((window for window, (_, _, title) in session.windows().items()
                                                  if title.startswith('Открыть файл')), None))
    session.picture('open')
    typed = -10.0

    # The list of completions that the dialog shows by and by takes keys for itself.
    def is_open():
        nonlocal typed
        if dialog in session.windows():
            if time.monotonic() - typed > 4:
                session.key('ctrl+a', window=dialog)
                subprocess.run(['xdotool', 'type', '--delay', '1', movie], check=True)
                typed = time.monotonic()
            session.key('Return', window=dialog)
        return 'movie.swf)... ' in session.log()
    wait_for('the movie to be opened', is_open, 60)
    wait_for('the movie to run', lambda: session.frame() > 3)
    session.picture('playing')

    session.key('ctrl+space')
    wait_for('the pause', session.halts)
    before = session.frame()
    session.key('ctrl+Right')
    wait_for('a step on', lambda: session.frame() == before + 1)
    session.key('ctrl+Left')
    wait_for('a step back', lambda: session.frame() == before)
    session.key('ctrl+space')
    wait_for('the movie to go on', lambda: session.frame() > before + 2)
    session.key('ctrl+Home')
    wait_for('the stop at the first frame', lambda: session.frame() == 1 and session.halts())
    session.picture('stopped')


def place(session):
    def wait_for_size(what, size):
        wait_for('%s at %s, not %s' % (what, size, session.size()), lambda: session.size() == size)

    session.key('ctrl+2')
    wait_for('100 %', lambda: 0 <= session.size()[0] - MOVIE_SIZE[0] <= 8)
    normal = session.size()
    around = (normal[0] - MOVIE_SIZE[0], normal[1] - MOVIE_SIZE[1])
    assert 40 <= around[1] <= 140, normal
    session.key('ctrl+3')
    wait_for_size('200 %', (2 * MOVIE_SIZE[0] + around[0], 2 * MOVIE_SIZE[1] + around[1]))
    session.picture('zoom 200')
    session.key('ctrl+1')
    half = (max(LEAST_WIDTH, MOVIE_SIZE[0] // 2 + around[0]), max(240, MOVIE_SIZE[1] // 2 + around[1]))
    wait_for_size('50 %', half)
    session.picture('zoom 50')
    session.key('F11')
    wait_for_size('full screen', SCREEN)
    session.picture('full screen')
    session.key('Escape')
    wait_for_size('back from full screen', half)
    session.key('ctrl+2')
    wait_for_size('100 %', normal)


def speak(session):
    """Types statements into the console."""
    normal = session.size()

    def run(statement, keys):
        subprocess.run(['xdotool', 'windowfocus', '--sync', session.main_window(), 'type', '--delay', '1', statement],
                       check=True)
        session.key(*keys)

    session.key('F12')
    run('ZoomFlash 200, 0', ['Return'])
    wait_for('the statement to zoom', lambda: session.size()[0] > normal[0] + MOVIE_SIZE[0] - 1)
    session.picture('console has run')
    session.key('ctrl+a')
    run('Player.ZoomFlash 100, 0', ['Return', 'Escape'])
    wait_for('the statement to zoom back', lambda: session.size() == normal)


def main():
    program_folder, swfc, scratch = sys.argv[1:4]
    status = under_virtual_display('%dx%d' % SCREEN)
    if status is not None:
        return status
    for name in os.listdir(scratch):
        if name.endswith('.png'):
            os.remove(os.path.join(scratch, name))
    folder, movies = copy_program(program_folder, scratch), os.path.join(scratch, 'movies')
    shutil.rmtree(movies, ignore_errors=True)
    os.makedirs(movies)
    movie = os.path.join(movies, 'movie.swf')
    compile_movie(swfc, MOVIE, movie)
    settings = os.path.join(folder, 'settings.xml')
    with open(settings, encoding='cp1251') as handle:
        text = handle.read()
    with open(settings, 'w', encoding='cp1251') as handle:
        handle.write(text.replace('search=""', 'search="%s"' % movies))

    session = Session(folder, scratch)
    try:
        play(session, movie)
        place(session)
        speak(session)
        # Into the process of a movie that is none of the program's the sound page does not go.
        inside = os.environ.get('ZORVEX_ONE_PROCESS') == '1'
        wait_for('the volume of the sound page', lambda: not inside or session.volume() == 100)
        session.key('ctrl+m')
        wait_for('silence', lambda: not inside or session.volume() == 0)
        session.picture('muted')
        session.key('ctrl+b')
        session.wait_for_log('browse.swf)... ')
        time.sleep(1)  # for the picture's sake only: the page fades in
        session.picture('browser')
        session.key('ctrl+q')
        assert session.process.wait(20) == 0, session.process.returncode
    finally:
        session.process.kill()

    at = 0
    for line in (' :: Start Up<br>', ' :: Form Load<br>', 'Flash ', ' :: Load Options<br>', ' :: Enumerate Skins<br>',
                 ' :: Close Flash<br>', ' :: LoadFlash (', ' :: Open Media Dialog<br>', 'movie.swf)... ',
                 'Compressed File<br>', ' :: Media Browse<br>', ' :: New Media Browse (', 'browse.swf)... ',
                 ' :: Save Options<br>', '<B>Quit: Exit Menu</B><br>'):
        found = session.log().find(line, at)
        assert found >= 0, (line, session.log())
        at = found + len(line)
    assert 'color="#000000"' not in session.log(), 'an error was reported: ' + session.log()
    with open(settings, encoding='cp1251') as handle:
        kept = handle.read()
    assert 'mute="True"' in kept and 'volume="100"' in kept and movie in kept, kept
    print('A session from the welcome page to the end goes as it should.')
    return 0


if __name__ == '__main__':
    sys.exit(main())
