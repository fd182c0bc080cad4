#!/usr/bin/env python3
"""On a desktop with a portal: files are chosen in the desktop's own dialogs, and windows follow its high contrast, at
once and from the start. Where the service is known and does not answer, the player's own dialog opens.

  asks_the_portal.py PROGRAM_FOLDER SWFC SCRATCH_FOLDER PORTAL_STUB     exit status 77: something is missing here
"""
import os
import shutil
import subprocess
import sys

from screen import compile_movie, copy_program, count, journal, under_virtual_display, wait_for, windows_of

MOVIE = '''<movie version="7" width="320" height="240" rate="20" background="#008040">
  <frame duration="10"><script>fscommand("MeowLog", "playing chosen");</script></frame>
</movie>
'''
PAPER = (0xF6, 0xF8, 0xFC)
SERVICE = '[D-BUS Service]\nName=org.freedesktop.portal.Desktop\nExec=/bin/false\n'


def key(*keys):
    subprocess.run(['xdotool', 'key', '--clearmodifiers'] + list(keys), check=True)


def titles():
    return [title for _, _, title in windows_of('Zorvex').values()]


class Portal:
    def __init__(self, stub, scratch):
        self.told = os.path.join(scratch, 'portal.txt')
        with open(self.told, 'w', encoding='utf-8') as handle:
            self.process = subprocess.Popen([stub], stdin=subprocess.PIPE, stdout=handle, text=True)
        wait_for('the portal', lambda: 'ready' in self.heard())

    def heard(self):
        with open(self.told, encoding='utf-8') as handle:
            return handle.read()

    def say(self, line):
        self.process.stdin.write(line + '\n')
        self.process.stdin.flush()

    def end(self):
        self.process.kill()
        self.process.wait()


def start(folder):
    player = subprocess.Popen([os.path.join(folder, 'Zorvex')])
    wait_for('the window', lambda: 'Zorvex' in titles(), 40)
    window = next(window for window, (_, _, title) in windows_of('Zorvex').items() if title == 'Zorvex')
    subprocess.run(['xdotool', 'windowactivate', '--sync', window], check=True)
    return player


def paper_of_options(name, is_paper, scratch):
    """Opens the options and waits until their ground is paper, or white."""
    key('ctrl+p')
    wait_for('the options', lambda: 'Настройки' in titles())
    wait_for('the ground of the options ' + name, lambda: (count(PAPER) > 20000) == is_paper)
    subprocess.run(['import', '-window', 'root', os.path.join(scratch, 'options %s.png' % name)], check=False)


def close_options():
    key('Escape')
    wait_for('the end of the options', lambda: 'Настройки' not in titles())


def main():
    program_folder, swfc, scratch, stub = sys.argv[1:5]
    if not os.environ.get('ZORVEX_E2E_BUS'):
        if not all(shutil.which(tool) for tool in ('dbus-run-session', 'openbox', 'wmctrl')):
            print('needs a bus, openbox and wmctrl')
            return 77
        data = os.path.join(scratch, 'data')
        os.makedirs(os.path.join(data, 'dbus-1/services'), exist_ok=True)
        with open(os.path.join(data, 'dbus-1/services/org.freedesktop.portal.Desktop.service'), 'w',
                  encoding='utf-8') as handle:
            handle.write(SERVICE)
        others = os.environ.get('XDG_DATA_DIRS', '/usr/local/share:/usr/share')
        environment = dict(os.environ, ZORVEX_E2E_BUS='1', XDG_DATA_DIRS=data + ':' + others)
        environment.pop('QT_QPA_PLATFORMTHEME', None)
        return subprocess.run(['dbus-run-session', '--', sys.executable] + sys.argv, env=environment,
                              check=False).returncode
    status = under_virtual_display('1100x860')
    if status is not None:
        return status
    folder, movie = copy_program(program_folder, scratch), os.path.join(scratch, 'chosen.swf')
    compile_movie(swfc, MOVIE, movie)
    manager = subprocess.Popen(['openbox', '--sm-disable'], stderr=subprocess.DEVNULL)
    wait_for('the window manager',
             lambda: subprocess.run(['wmctrl', '-m'], check=False, capture_output=True).stdout)
    portal, player = Portal(stub, scratch), None
    try:
        player = start(folder)
        portal.say('answer file://' + movie)
        key('ctrl+o')
        wait_for('the portal to be asked', lambda: 'OpenFile Открыть' in portal.heard())
        wait_for('the movie that it gave', lambda: 'Media debug :: playing chosen' in journal(folder))

        paper_of_options('as usual', True, scratch)
        portal.say('set org.freedesktop.appearance contrast u 1')
        wait_for('white under the open options', lambda: count(PAPER) < 2000)
        close_options()
        player.terminate()
        assert player.wait(20) == 0, player.returncode

        player = start(folder)
        paper_of_options('in high contrast', False, scratch)
        portal.say('set org.freedesktop.appearance contrast u 0')
        wait_for('paper again', lambda: count(PAPER) > 20000)
        close_options()

        # A portal that has gone leaves the player its own dialogs.
        portal.end()
        key('ctrl+o')
        wait_for('a dialog of its own', lambda: 'Открыть...' in titles() or len(titles()) > 1)
        subprocess.run(['import', '-window', 'root', os.path.join(scratch, 'own dialog.png')], check=False)
        key('Escape')
        wait_for('its end', lambda: len(titles()) == 1)
        player.terminate()
        assert player.wait(20) == 0, player.returncode
    finally:
        if player is not None:
            player.kill()
        portal.end()
        manager.terminate()
    print('The desktop is asked for what is its own.')
    return 0


if __name__ == '__main__':
    sys.exit(main())
