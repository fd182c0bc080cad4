#!/usr/bin/env python3
"""Plays under a window manager and on a bus of its own: keys without a mouse, what the window manager does to the
window, and what the desktop's controls ask for.

  obeys_the_desktop.py PROGRAM_FOLDER SWFC SCRATCH_FOLDER     exit status 77: something is missing here
"""
import os
import re
import shutil
import subprocess
import sys
import time

from screen import Display, compile_movie, copy_program, journal, under_virtual_display, wait_for, windows_of

SCREEN = (1280, 900)
# 80 seconds, so that there is something to seek in; each frame tells itself.
FRAMES, RATE = 1600, 20
MOVIE = '''<movie version="7" width="480" height="320" rate="%d" background="#4974BA">
  <shape id="ball"><circle cx="160" cy="120" r="60" fill="#F2A93B"/></shape>
  <frame duration="%d"><place id="ball"/><script>
    var last = 0;
    this.onEnterFrame = function () {
      if (_currentframe != last) fscommand("MeowLog", "frame " + (last = _currentframe));
    };
  </script></frame>
</movie>
''' % (RATE, FRAMES)
BUS_NAME = 'org.mpris.MediaPlayer2.zorvex'
PLAYER = 'org.mpris.MediaPlayer2.Player'


def run(*command):
    return subprocess.run(command, check=False, capture_output=True, text=True).stdout


class Session:
    def __init__(self, folder, scratch, movies):
        self.folder, self.scratch, self.pictures = folder, scratch, 0
        self.process = subprocess.Popen([os.path.join(folder, 'Zorvex')] + movies)
        wait_for('the movie to run', lambda: self.frame() > 3)
        self.window = wait_for('the window', self.main_window)

    def main_window(self):
        windows = windows_of('Zorvex')
        return max(windows, key=lambda window: windows[window][0] * windows[window][1]) if windows else None

    def shape(self):
        """Left, top, width, height of what the movie's window covers, without its frame."""
        told = dict(line.split('=') for line in
                    run('xdotool', 'getwindowgeometry', '--shell', self.window).split() if '=' in line)
        return tuple(int(told[key]) for key in ('X', 'Y', 'WIDTH', 'HEIGHT'))

    def frame(self):
        told = re.findall(r'Media debug :: frame (\d+)<', journal(self.folder))
        return int(told[-1]) if told else 0

    def position(self):
        """Microseconds from the movie's begin, as the desktop is told."""
        return int(self.property('Position').split()[-1].rstrip('>,)').split(')')[0])

    def key(self, *keys):
        subprocess.run(['xdotool', 'windowactivate', '--sync', self.window, 'key', '--clearmodifiers'] + list(keys),
                       check=True)

    def title(self):
        return run('xdotool', 'getwindowname', self.window).strip()

    def picture(self, name):
        self.pictures += 1
        run('import', '-window', 'root', os.path.join(self.scratch, '%02d %s.png' % (self.pictures, name)))

    def is_playing(self):
        """Whether another frame comes within a second: beside other work one may be late."""
        before, end = self.frame(), time.monotonic() + 1
        while time.monotonic() < end:
            if self.frame() != before:
                return True
            time.sleep(0.05)
        return False

    def property(self, name, interface=PLAYER):
        return run('gdbus', 'call', '--session', '--dest', BUS_NAME, '--object-path', '/org/mpris/MediaPlayer2',
                   '--method', 'org.freedesktop.DBus.Properties.Get', interface, name).strip()

    def set_property(self, name, value, interface=PLAYER):
        run('gdbus', 'call', '--session', '--dest', BUS_NAME, '--object-path', '/org/mpris/MediaPlayer2',
            '--method', 'org.freedesktop.DBus.Properties.Set', interface, name, '<%s>' % value)

    def ask(self, method, *arguments):
        run('gdbus', 'call', '--session', '--dest', BUS_NAME, '--object-path', '/org/mpris/MediaPlayer2',
            '--method', method, *arguments)


def popups():
    return Display().popups()


def close_menus():
    def are_closed():
        if popups() == 0:
            return True
        run('xdotool', 'key', 'Escape')  # one for each menu that hangs on another
        return False
    wait_for('no menu', are_closed)


def keys(session):
    wait_for('the title to name the file', lambda: session.title() == 'Zorvex - movie.swf')
    session.key('space')
    wait_for('the pause', lambda: not session.is_playing())
    at = session.frame()
    session.key('period')
    wait_for('a frame on', lambda: session.frame() == at + 1)
    session.key('comma')
    wait_for('a frame back', lambda: session.frame() == at)
    session.key('5')
    wait_for('the middle', lambda: session.frame() == FRAMES // 2 + 1)
    session.picture('told the place')
    session.key('0')
    wait_for('the beginning', lambda: session.frame() == 1)
    session.key('space')
    wait_for('going on', session.is_playing)

    # Speed: 400 % takes 20 s of the movie in little more than five.
    session.key('bracketright', 'bracketright', 'bracketright', 'bracketright')
    first, start = session.frame(), time.monotonic()
    wait_for('twenty seconds of the movie', lambda: session.frame() >= first + 20 * RATE)
    took = time.monotonic() - start
    assert took < 14, took
    session.picture('fast')
    session.key('BackSpace')

    # A section over and over.
    session.key('5', 'a')
    at = wait_for('the section to begin', lambda: session.frame() > FRAMES // 2 and session.frame())
    wait_for('some frames', lambda: session.frame() >= at + 20)
    session.key('a')
    # Without a section it would only ever go on.
    for turn in ('once', 'twice'):
        wait_for('the section to begin anew, ' + turn, lambda: session.frame() < at + 12)
        wait_for('the section to go on, ' + turn, lambda: session.frame() >= at + 12)
    session.key('a')

    # Menus, the bar being hidden.
    for what, press in (('F10', 'F10'), ('the pop-up key', 'shift+F10'), ('a letter', 'alt+d')):
        session.key(press)
        wait_for('a menu by ' + what, popups)
        session.picture('menu by ' + what)
        close_menus()
    session.key('ctrl+F1')
    wait_for('the list of keys', lambda: 'Сочетания клавиш' in [title for _, _, title in windows_of('Zorvex').values()])
    session.picture('keys')
    subprocess.run(['xdotool', 'key', 'Escape'], check=True)
    wait_for('its end', lambda: len(windows_of('Zorvex')) == 1)


def russian_layout(session):
    """Letters mean their keys, whichever layout is on, and also where there is no other."""
    for layouts, group in (('us,ru', 1), ('ru', 0)):
        run('setxkbmap', '-layout', layouts)
        time.sleep(0.5)
        # The locked group is what a layout switch changes.
        if group:
            run('xdotool', 'key', 'ISO_Next_Group')
        code = '58'  # the key of M
        session.key('space')
        wait_for('the pause', lambda: not session.is_playing())
        session.key('space')
        before = 'True' in journal(session.folder)
        volume = session.property('Volume')
        subprocess.run(['xdotool', 'windowactivate', '--sync', session.window, 'key', code], check=True)
        wait_for('silence by the key of M in ' + layouts, lambda: session.property('Volume') != volume)
        subprocess.run(['xdotool', 'windowactivate', '--sync', session.window, 'key', code], check=True)
        wait_for('sound again', lambda: session.property('Volume') == volume)
        # Alt and the key of the letter of "Файл".
        subprocess.run(['xdotool', 'windowactivate', '--sync', session.window, 'key', 'alt+38'], check=True)
        wait_for('the menu in ' + layouts, popups)
        close_menus()
        # Ctrl+I: properties.
        subprocess.run(['xdotool', 'windowactivate', '--sync', session.window, 'key', 'ctrl+31'], check=True)
        wait_for('properties in ' + layouts, lambda: len(windows_of('Zorvex')) > 1)
        subprocess.run(['xdotool', 'key', 'Escape'], check=True)
        wait_for('their end', lambda: len(windows_of('Zorvex')) == 1)
    run('setxkbmap', '-layout', 'us')
    time.sleep(0.5)


def window(session):
    normal = session.shape()
    # Full screen from outside, and back.
    run('wmctrl', '-i', '-r', session.window, '-b', 'add,fullscreen')
    wait_for('the whole screen', lambda: session.shape()[2:] == SCREEN)
    wait_for('the mark', lambda: 'true' in session.property('Fullscreen', 'org.mpris.MediaPlayer2'))
    session.picture('full screen from outside')
    session.key('Escape')
    wait_for('the former size', lambda: session.shape()[2:] == normal[2:])
    session.key('F11')
    wait_for('the whole screen', lambda: session.shape()[2:] == SCREEN)
    run('wmctrl', '-i', '-r', session.window, '-b', 'remove,fullscreen')
    wait_for('the mark to go', lambda: 'false' in session.property('Fullscreen', 'org.mpris.MediaPlayer2'))
    wait_for('the former size', lambda: session.shape()[2:] == normal[2:])
    # Maximised from outside: the skin's button follows.
    run('wmctrl', '-i', '-r', session.window, '-b', 'add,maximized_vert,maximized_horz')
    wait_for('maximised', lambda: session.shape()[2] == SCREEN[0])
    time.sleep(0.5)
    session.picture('maximised from outside')
    run('wmctrl', '-i', '-r', session.window, '-b', 'remove,maximized_vert,maximized_horz')
    wait_for('the former size', lambda: session.shape()[2:] == normal[2:])

    # By its edges. The window hears of its state a moment after it got its size.
    time.sleep(1)
    for name, at, by, change in (('right edge', (1, 0.5), (60, 0), (0, 0, 60, 0)),
                                 ('left edge', (0, 0.5), (-40, 0), (-40, 0, 40, 0)),
                                 ('top edge', (0.5, 0), (0, -30), (0, -30, 0, 30)),
                                 ('upper left corner', (0, 0), (20, 20), (20, 20, -20, -20)),
                                 ('bottom edge', (0.4, 1), (0, 40), (0, 0, 0, 40))):
        left, top, width, height = before = session.shape()
        x = min(left + round(width * at[0]), left + width - 2) + (at[0] == 0) * 1
        y = min(top + round(height * at[1]), top + height - 2) + (at[1] == 0) * 1
        run('xdotool', 'mousemove', str(x), str(y), 'sleep', '0.2', 'mousedown', '1', 'sleep', '0.4')
        for part in (1, 2, 3, 4):
            run('xdotool', 'mousemove', str(x + by[0] * part // 4), str(y + by[1] * part // 4), 'sleep', '0.1')
        wanted = tuple(one + more for one, more in zip(before, change))
        # The button is held until the window has come after the pointer.
        wait_for('%s from %s to %s' % (name, before, wanted),
                 lambda wanted=wanted: all(abs(one - other) <= 6 for one, other in zip(session.shape(), wanted)))
        run('xdotool', 'mouseup', '1')
    # A double click on the title, and the key that drags windows.
    session.key('ctrl+2')
    left, top, width, height = session.shape()
    run('xdotool', 'mousemove', str(left + width // 3), str(top + 14), 'click', '--repeat', '2', '--delay', '60', '1')
    wait_for('maximised by the title', lambda: session.shape()[2] == SCREEN[0])
    time.sleep(0.6)  # or it were a third and a fourth click
    run('xdotool', 'mousemove', '300', '14', 'click', '--repeat', '2', '--delay', '60', '1')
    wait_for('back by the title', lambda: session.shape()[2] == width)
    left, top, width, height = session.shape()
    run('xdotool', 'mousemove', str(left + 100), str(top + 150), 'keydown', 'alt', 'mousedown', '1',
        'mousemove', str(left + 140), str(top + 170), 'sleep', '0.1', 'mousemove', str(left + 160), str(top + 180),
        'sleep', '0.2', 'mouseup', '1', 'keyup', 'alt')
    wait_for('dragged from inside', lambda: session.shape()[0] >= left + 40)


def answers(session):
    """The console: a mistake is answered in it, and the keyboard stays there through full screen."""
    session.key('F12')
    for statement in ('Player.NoSuchThing', 'FullScreen True', 'FullScreen False'):
        session.key('ctrl+a')
        run('xdotool', 'type', '--delay', '1', statement)
        run('xdotool', 'key', 'Return')
        if statement.endswith('True'):
            wait_for('full screen by the console', lambda: session.shape()[2:] == SCREEN)
        elif statement.endswith('False'):
            wait_for('the window by the console', lambda: session.shape()[2:] != SCREEN)
        else:
            wait_for('the error in the journal', lambda: '<B><FONT color="#000000">' in journal(session.folder))
            time.sleep(0.5)
            assert len(windows_of('Zorvex')) == 1, 'a window for a slip of the finger'
            session.picture('console answers')
    session.key('Escape')


def desktop(session, monitor):
    assert "'Zorvex'" in session.property('Identity', 'org.mpris.MediaPlayer2')
    metadata = session.property('Metadata')
    assert "'xesam:title': <'movie'>" in metadata and 'int64 80000000' in metadata and 'file:///' in metadata, metadata
    wait_for('it plays', lambda: 'Playing' in session.property('PlaybackStatus'))
    session.ask(PLAYER + '.PlayPause')
    wait_for('paused', lambda: 'Paused' in session.property('PlaybackStatus'))
    assert not session.is_playing()
    track = re.search(r"objectpath '([^']*)'", metadata).group(1)
    # However far it has come meanwhile: from near its end a seek would go on to the next movie.
    session.ask(PLAYER + '.SetPosition', track, '0')
    wait_for('the beginning', lambda: session.position() < 1_000_000)
    session.ask(PLAYER + '.Seek', '--', '20000000')
    wait_for('the place that was sought', lambda: session.position() >= 20_000_000)
    session.ask(PLAYER + '.SetPosition', track, '40000000')
    wait_for('the position', lambda: session.frame() == 40 * RATE + 1)
    session.ask(PLAYER + '.SetPosition', '/another', '0')
    session.ask(PLAYER + '.Play')
    wait_for('playing', session.is_playing)
    assert session.frame() > 40 * RATE, 'the position of another movie was taken'
    session.set_property('Volume', '0.5')
    wait_for('half the volume', lambda: '0.5' in session.property('Volume'))
    session.set_property('Rate', '2.0')
    wait_for('the rate', lambda: '2.0' in session.property('Rate'))
    session.set_property('Rate', '1.0')
    session.ask(PLAYER + '.Stop')
    wait_for('stopped', lambda: 'Stopped' in session.property('PlaybackStatus') and session.frame() == 1)
    session.ask(PLAYER + '.Play')
    # The screen stays lit while it plays over all of it.
    session.set_property('Fullscreen', 'true', 'org.mpris.MediaPlayer2')
    wait_for('full screen', lambda: session.shape()[2:] == SCREEN)
    wait_for('the wish for light', lambda: 'member=Inhibit' in monitor())
    session.set_property('Fullscreen', 'false', 'org.mpris.MediaPlayer2')
    wait_for('the window', lambda: session.shape()[2:] != SCREEN)
    session.ask(PLAYER + '.SetPosition', track, '40000000')
    wait_for('the middle once more', lambda: session.frame() > 40 * RATE)
    session.ask(PLAYER + '.Next')
    wait_for('the next movie', lambda: 'next.swf)... ' in journal(session.folder))
    wait_for('its name', lambda: "'next'" in session.property('Metadata'))
    for event in ("PlaybackStatus", 'Metadata', 'member=Seeked'):
        assert event in monitor(), (event, monitor())


def main():
    if not os.environ.get('ZORVEX_E2E_BUS'):
        if not all(shutil.which(tool) for tool in ('dbus-run-session', 'gdbus', 'dbus-monitor', 'openbox', 'wmctrl',
                                                   'xprop', 'setxkbmap')):
            print('needs a bus, openbox and wmctrl')
            return 77
        environment = dict(os.environ, ZORVEX_E2E_BUS='1')
        return subprocess.run(['dbus-run-session', '--', sys.executable] + sys.argv, env=environment,
                              check=False).returncode
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
    for name in ('movie', 'next'):
        compile_movie(swfc, MOVIE, os.path.join(movies, name + '.swf'))
    manager = subprocess.Popen(['openbox', '--sm-disable'], stderr=subprocess.DEVNULL)
    heard = os.path.join(scratch, 'bus.txt')
    with open(heard, 'w', encoding='utf-8') as handle:
        listener = subprocess.Popen(['dbus-monitor', '--session'], stdout=handle)

    def monitor():
        with open(heard, encoding='utf-8', errors='replace') as handle:
            return handle.read()

    wait_for('the window manager', lambda: run('wmctrl', '-m'))
    session = Session(folder, scratch, [os.path.join(movies, 'movie.swf')])
    try:
        keys(session)
        russian_layout(session)
        window(session)
        place = session.shape()[:2]
        desktop(session, monitor)
        session.ask('org.mpris.MediaPlayer2.Quit')
        assert session.process.wait(20) == 0, session.process.returncode
        # Where it stood, it stands again.
        again = Session(folder, scratch, [os.path.join(movies, 'movie.swf')])
        try:
            wait_for('the former place %s, not %s' % (place, again.shape()[:2]),
                     lambda: all(abs(one - other) <= 4 for one, other in zip(again.shape()[:2], place)))
            again.picture('offers to go on')
            again.key('r')
            wait_for('the film to go on where it was left', lambda: again.frame() > 40 * RATE)
            answers(again)
        finally:
            again.process.kill()
    finally:
        session.process.kill()
        listener.terminate()
        manager.terminate()
    print('The desktop and its keyboard have their way.')
    return 0


if __name__ == '__main__':
    sys.exit(main())
