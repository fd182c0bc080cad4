#!/usr/bin/env python3
"""What a screen reader finds, over the accessibility bus: every control of the main window, of the pages and of the
dialogs has a role and a name; what has the keyboard on a page is told; a tile can be chosen without a pointer.

  reads_itself_out.py PROGRAM_FOLDER SWFC SCRATCH_FOLDER     exit status 77: something is missing here
"""
import os
import re
import shutil
import subprocess
import sys

from screen import compile_movie, copy_program, journal, under_virtual_display, wait_for, windows_of

MOVIE = '''<movie version="7" width="320" height="240" rate="20" background="#008040">
  <frame duration="10"><script>fscommand("MeowLog", "playing one");</script></frame>
</movie>
'''
BUS = ('--session', '--dest', 'org.a11y.Bus', '--object-path', '/org/a11y/bus', '--method')
# What can be pressed, chosen or typed in, and so has to say what it is.
SPOKEN = ('push button', 'check box', 'radio button', 'slider', 'spin button', 'page tab', 'list item')
FOCUSED, VISIBLE, SHOWING = 12, 30, 25  # bits of a state


def run(*command):
    return subprocess.run(command, check=False, capture_output=True, text=True).stdout


class Reader:
    """A client of the accessibility bus."""

    def __init__(self):
        run('gdbus', 'call', *BUS, 'org.freedesktop.DBus.Properties.Set', 'org.a11y.Status', 'IsEnabled', '<true>')
        told = re.search(r"'([^']+)'", run('gdbus', 'call', *BUS, 'org.a11y.Bus.GetAddress'))
        self.bus = told.group(1) if told else None

    def call(self, item, method, *arguments):
        return run('gdbus', 'call', '--address', self.bus, '--dest', item[0], '--object-path', item[1],
                   '--method', method, *arguments)

    def children(self, item):
        return re.findall(r"\('([^']*)', (?:objectpath )?'([^']*)'\)",
                          self.call(item, 'org.a11y.atspi.Accessible.GetChildren'))

    def role(self, item):
        return self.call(item, 'org.a11y.atspi.Accessible.GetRoleName').strip()[2:-3]

    def name(self, item):
        told = self.call(item, 'org.freedesktop.DBus.Properties.Get', 'org.a11y.atspi.Accessible', 'Name')
        return re.sub(r'''^\(<["'](.*)["']>,\)$''', r'\1', told.strip(), flags=re.DOTALL)

    def has(self, item, state):
        words = [int(word) for word in re.findall(r'\d+', self.call(item, 'org.a11y.atspi.Accessible.GetState')
                                                  .replace('uint32', ''))]
        return len(words) == 2 and bool(words[state // 32] >> state % 32 & 1)

    def press(self, item):
        return 'true' in self.call(item, 'org.a11y.atspi.Action.DoAction', '0')

    def value(self, item):
        told = re.search(r'<(-?[\d.]+)>', self.call(item, 'org.freedesktop.DBus.Properties.Get',
                                                    'org.a11y.atspi.Value', 'CurrentValue'))
        return float(told.group(1)) if told else None

    def set_value(self, item, value):
        self.call(item, 'org.freedesktop.DBus.Properties.Set', 'org.a11y.atspi.Value', 'CurrentValue',
                  '<%.1f>' % value)

    def windows(self):
        root = ('org.a11y.atspi.Registry', '/org/a11y/atspi/accessible/root')
        return [window for program in self.children(root) for window in self.children(program)]

    def below(self, item):
        """All of a window but its menus, as (role, name, item)."""
        found, waiting = [], [item]
        while waiting:
            one = waiting.pop(0)
            role = self.role(one)
            found.append((role, self.name(one), one))
            if role not in ('popup menu', 'menu'):
                waiting = self.children(one) + waiting
        return found


def key(*keys):
    subprocess.run(['xdotool', 'key', '--clearmodifiers'] + list(keys), check=True)


def titles():
    return [title for _, _, title in windows_of('Zorvex').values()]


def check_names(where, found):
    nameless = [(role, item) for role, name, item in found if role in SPOKEN and not name]
    assert not nameless, '%s: without a name: %s' % (where, nameless)


def main():
    if not os.environ.get('ZORVEX_E2E_BUS'):
        if not all(shutil.which(tool) for tool in ('dbus-run-session', 'gdbus', 'openbox', 'wmctrl')):
            print('needs a bus, openbox and wmctrl')
            return 77
        environment = dict(os.environ, ZORVEX_E2E_BUS='1')
        return subprocess.run(['dbus-run-session', '--', sys.executable] + sys.argv, env=environment,
                              check=False).returncode
    program_folder, swfc, scratch = sys.argv[1:4]
    status = under_virtual_display('1100x860')
    if status is not None:
        return status
    reader = Reader()
    if reader.bus is None:
        print('needs at-spi2-core')
        return 77
    folder, movies = copy_program(program_folder, scratch), os.path.join(scratch, 'spoken')
    shutil.rmtree(movies, ignore_errors=True)
    os.makedirs(movies)
    compile_movie(swfc, MOVIE, os.path.join(movies, 'Первый ролик.swf'))
    manager = subprocess.Popen(['openbox', '--sm-disable'], stderr=subprocess.DEVNULL)
    wait_for('the window manager', lambda: run('wmctrl', '-m'))
    player = subprocess.Popen([os.path.join(folder, 'Zorvex')])

    def window(title):
        return next((item for item in reader.windows() if reader.name(item) == title), None)

    def page(title):
        """What the page in the main window says, once it says something."""
        found = reader.below(wait_for('the window "%s"' % title, lambda: window(title), 40))
        return found if any(role == 'document' for role, _, _ in found) else None

    def item(found, wanted):
        return next((one for role, name, one in found if role == 'push button' and name == wanted), None)

    try:
        wait_for('the window', lambda: 'Zorvex' in titles(), 40)
        found = wait_for('the welcome page', lambda: page('Zorvex'))
        check_names('main window', found)
        spoken = [(role, name) for role, name, _ in found]
        for wanted in (('push button', 'Открыть файл, Ролик .swf или проектор .exe'), ('push button', 'testcard'),
                       ('slider', 'Громкость'), ('slider', 'Место в ролике'), ('push button', 'Воспроизвести'),
                       ('label', 'Проигрыватель роликов Flash'), ('label', 'Остановлено')):
            assert wanted in spoken, (wanted, spoken)

        # A slider says where it stands, and can be set without a pointer.
        volume = next(one for role, name, one in found if (role, name) == ('slider', 'Громкость'))
        assert reader.value(volume) == 100, reader.value(volume)
        reader.set_value(volume, 40)
        wait_for('another volume', lambda: abs(reader.value(volume) - 40) <= 1)
        reader.set_value(volume, 100)

        # The ring on the page is the focus of who listens.
        main_window = next(number for number, (_, _, title) in windows_of('Zorvex').items() if title == 'Zorvex')
        run('xdotool', 'windowactivate', '--sync', main_window)
        key('Tab')
        first = item(found, 'Открыть файл, Ролик .swf или проектор .exe')
        wait_for('the focus of the first card', lambda: reader.has(first, FOCUSED))
        key('Tab')
        second = item(found, 'Обзор медиа, Ролики папки с эскизами')
        wait_for('the focus of the second', lambda: reader.has(second, FOCUSED) and not reader.has(first, FOCUSED))

        for name, keys, controls in (('Настройки', 'ctrl+p', ('combo box', 'check box', 'push button')),
                                     ('Сочетания клавиш', 'ctrl+F1', ('push button',)),
                                     ('Справка', 'F1', ())):
            key(keys)
            dialog = wait_for('the window "%s"' % name, lambda name=name: window(name))
            inside = reader.below(dialog)
            check_names(name, inside)
            roles = [role for role, _, _ in inside]
            assert all(control in roles for control in controls), (name, roles)
            key('Escape')
            wait_for('the end of "%s"' % name, lambda name=name: name not in titles())

        # A tile is chosen by whoever cannot point at it.
        assert reader.press(item(found, 'testcard'))
        wait_for('the movie', lambda: 'testcard.swf)... ' in journal(folder))
        wait_for('its name', lambda: any(role == 'animation' and name == 'testcard'
                                         for role, name, _ in reader.below(wait_for(
                                             'its window', lambda: window('Zorvex - testcard.swf')))))
        player.terminate()
        assert player.wait(20) == 0, player.returncode

        player = subprocess.Popen([os.path.join(folder, 'Zorvex'), movies])
        found = wait_for('the browser', lambda: page('Zorvex - Обзор медиа'))
        check_names('browser', found)
        names = [name for role, name, _ in found if role == 'push button']
        for wanted in ('Первый ролик.swf', 'На уровень выше', 'Выбрать папку…', 'По имени', 'Следующая страница'):
            assert wanted in names, (wanted, names)
        assert reader.press(item(found, 'Первый ролик.swf'))
        wait_for('the movie', lambda: 'Media debug :: playing one' in journal(folder))
        player.terminate()
        assert player.wait(20) == 0, player.returncode
    finally:
        player.kill()
        manager.terminate()
    print('The program reads itself out.')
    return 0


if __name__ == '__main__':
    sys.exit(main())
