#!/usr/bin/env python3
"""Plays movies in the real window that try to break the program or to pester its user, and looks at what comes of it:
the window is there within a second, its menu answers a click within a fifth of a second all the time, one question at
most is on the screen, nothing is opened unasked, the journal stays small, all processes together keep within their
memory, the next movie plays, and the program ends within a second of being asked to, its settings saved.

  withstands_hostile_movies.py PROGRAM_FOLDER SWFC SCRATCH_FOLDER [MOVIE or NAME...]
                                                     exit status 77: no virtual display to be had
"""
import os
import resource
import shutil
import signal
import subprocess
import sys
import time

from screen import Display, compile_movie, copy_program, family, journal, under_virtual_display, windows_of

ADDRESS_SPACE = 6 << 30
MOST_LOG = 5_000_000
SECONDS = 2.5
# What a machine that does other things as well may take longer.
WINDOW_WITHIN, END_WITHIN, MENU_WITHIN, NEXT_WITHIN = 3.0, 1.5, 0.6, 8.0
MOST_MEMORY_MB = 1200
INSIDE = os.environ.get('ZORVEX_ONE_PROCESS') == '1'
# The next movie, and what is seen of it.
NEXT = '<movie version="6" width="300" height="200" rate="20"><shape id="r"><rect width="300" height="200"' \
       ' fill="#12AB34"/></shape><frame><place id="r" depth="1"/></frame></movie>'
NEXT_COLOUR = (0x12, 0xAB, 0x34)

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
    'memory_by_and_by': ('var a = []; ' + EVERY_FRAME % 'for (var i = 0; i < 4000; i++) a.push({a: [i], b: "x" + i});',
                         False, 0),
    'frames_of_two_seconds': (EVERY_FRAME % 'var t = getTimer(); while (getTimer() - t < 1900) {}', True, 0),
    'text_fields': (EVERY_FRAME % 'for (var i = 0; i < 300; i++) { var d = _root.getNextHighestDepth();'
                    ' _root.createTextField("t" + d, d, d % 200, d % 150, 200, 200); var f = _root["t" + d];'
                    ' f.multiline = f.wordWrap = true; f.type = "input";'
                    ' f.text = "Many words that must be broken into lines, again and again. " + d; }', True, 0),
    'one_long_text': ('var s = "word "; while (s.length < 2000000) s += s; _root.createTextField("t", 1, 0, 0, 280, 180);'
                      ' t.multiline = t.wordWrap = true; ' + EVERY_FRAME % 't.text = s; t._width = 200 + getTimer() % 80;'
                      ' var h = t.textHeight;', True, 0),
    'filters': ('import flash.filters.BlurFilter; import flash.filters.GlowFilter; for (var i = 0; i < 20; i++) {'
                ' var c = _root.createEmptyMovieClip("c" + i, i); c.beginFill(0xFF0000); c.lineTo(2800, 0);'
                ' c.lineTo(2800, 2800); c.lineTo(0, 2800); c.endFill();'
                ' c.filters = [new BlurFilter(255, 255, 15), new GlowFilter(0, 1, 255, 255, 255, 15)]; } '
                + EVERY_FRAME % 'for (var i = 0; i < 20; i++) _root["c" + i]._rotation += 1;', True, 0),
    'bitmaps': ('import flash.display.BitmapData; import flash.geom.Point; import flash.filters.BlurFilter;'
                ' var b = new BitmapData(2880, 2880, true, 0xFF00FF00); _root.attachBitmap(b, 1); '
                + EVERY_FRAME % 'b.perlinNoise(100, 100, 8, getTimer(), true, true);'
                ' b.applyFilter(b, b.rectangle, new Point(), new BlurFilter(255, 255, 15));', True, 0),
    'outlines': (EVERY_FRAME % 'clear(); beginFill(0xFF0000, 50); for (var i = 0; i < 60000; i++)'
                 ' curveTo(Math.random() * 300, Math.random() * 200, Math.random() * 300, Math.random() * 200);',
                 True, 0),
    'loads': (EVERY_FRAME % 'for (var i = 0; i < 100; i++) { var l = new LoadVars(); l.load("a" + i + ".txt");'
              ' loadMovieNum(_url, 1 + random(1000)); var x = new XML(); x.load("b.xml"); }', False, 0),
    'sounds': (EVERY_FRAME % 'for (var i = 0; i < 200; i++) { var s = new Sound(); s.loadSound("a" + i + ".mp3", true);'
               ' s.start(0, 999); }', False, 0),
    'listeners': ('for (var i = 0; i < 50000; i++) { var l = {}; l.onKeyDown = l.onMouseMove = l.onMouseDown ='
                  ' function() { for (var j = 0; j < 100; j++) { n++; } }; Key.addListener(l); Mouse.addListener(l); }',
                  True, 0),
    'timers': ('for (var i = 0; i < 20000; i++) setInterval(function() { for (var j = 0; j < 1000; j++) n++; }, 1);',
               True, 0),
    'cursors': (EVERY_FRAME % 'for (var i = 0; i < 1000; i++) { Mouse.hide(); Mouse.show(); _quality = "BEST";'
                ' Stage.scaleMode = i % 2 ? "noScale" : "exactFit"; System.setClipboard("x" + i); }', True, 0),
    'recursion': (EVERY_FRAME % 'function f(n) { var o = {toString: function() { return f(n + 1); }}; return "" + o; }'
                  ' f(0);', False, 0),
    'traces': (BIG + EVERY_FRAME % 'for (var i = 0; i < 500; i++) trace(s + i);', False, 0),
    'big_shared_object': ('var o = SharedObject.getLocal("big"); var s = "x"; while (s.length < 2000000) s += s; '
                          + EVERY_FRAME % 'for (var i = 0; i < 20; i++) o.data["k" + getTimer() + i] = s; o.flush();',
                          False, 0),
    # Its process does not answer at all; nothing that a movie can do, but what a damaged one may come to.
    'stops': ('var n = 0;', True, 0),
    'many_objects': ('for (var i = 0; i < 2000; i++) { var o = SharedObject.getLocal("m" + i); o.data.x = 1; }',
                     False, 0),
}
# What costs so much that a window that plays them itself cannot answer meanwhile.
ONLY_ITS_OWN = list(MOVIES)[list(MOVIES).index('memory_by_and_by'):list(MOVIES).index('stops') + 1]
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
        self.answers, self.most_memory = [], 0

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

    def probe(self, display):
        """Opens the menu and closes it again; how long the click took to be answered."""
        windows = windows_of('Zorvex')
        if len(windows) != 1:
            return  # a question keeps the rest of the window waiting
        window, (width, height, _) = next(iter(windows.items()))

        def place():
            shape = subprocess.run(['xdotool', 'getwindowgeometry', '--shell', window], check=False,
                                   capture_output=True, text=True).stdout
            return dict(line.split('=') for line in shape.split())
        at = place()
        if 'X' not in at or height > 700:
            return  # the whole screen has no bar with a menu
        before = display.popups()
        display.press(int(at['X']) + width - 115, int(at['Y']) + 17)
        display.release()
        pressed = time.monotonic()
        while display.popups() == before and time.monotonic() - pressed < 3:
            time.sleep(0.002)
        took = time.monotonic() - pressed
        # One that has moved or changed its size meanwhile was clicked elsewhere, or a question came before it.
        if took < 3 or (place() == at and len(windows_of('Zorvex')) == 1):
            self.answers.append(took)
        closed = time.monotonic()
        while display.popups() > before and time.monotonic() - closed < 3:
            # A click beside a menu closes it; nobody has the keyboard here unless it is given to him.
            display.press(int(at['X']) + width // 2 - 40, int(at['Y']) + 17)
            display.release()
            time.sleep(0.05)

    def weigh(self):
        """Of all processes together: what each has for itself, and what they share once."""
        memory = 0
        for pid in family(self.process.pid):
            try:
                with open('/proc/%d/smaps_rollup' % pid, encoding='ascii') as handle:
                    memory += next(int(line.split()[1]) for line in handle if line.startswith('Pss:'))
            except PermissionError:  # a movie's process lets nobody look in
                with open('/proc/%d/statm' % pid, encoding='ascii') as handle:
                    memory += int(handle.read().split()[1]) * 4
            except (OSError, StopIteration):
                pass  # it has ended
        self.most_memory = max(self.most_memory, memory // 1000)

    def play_next(self, display, movie):
        """Opens another movie as a user would; how long until it is seen."""
        asked = time.monotonic()
        wanted, typed = None, -1.0
        while time.monotonic() - asked < NEXT_WITHIN + 5:
            if display.pixel(150, 120) == NEXT_COLOUR:
                return time.monotonic() - asked
            windows = windows_of('Zorvex')
            own = next((window for window, (_, _, title) in windows.items() if title.startswith('Zorvex')), None)
            dialog = next((window for window, (_, _, title) in windows.items() if title.startswith('Открыть файл')),
                          None)
            question = next((window for window, (width, _, title) in windows.items()
                             if width > 60 and window != dialog and not title.startswith('Zorvex')), None)
            if question is not None or (dialog is not None and wanted is None):
                # What the movie has brought up is in the way.
                subprocess.run(['xdotool', 'windowfocus', '--sync', question or dialog, 'key', 'Escape'], check=False)
            elif dialog is not None:
                focus = ['xdotool', 'windowfocus', '--sync', dialog]
                # A list of completions may take what was typed for itself.
                if time.monotonic() - typed > 2:
                    subprocess.run(focus + ['key', 'ctrl+a'], check=False)
                    subprocess.run(focus + ['type', '--delay', '1', movie], check=False)
                    typed = time.monotonic()
                subprocess.run(focus + ['key', 'Return'], check=False)
            elif own is not None and (wanted is None or time.monotonic() - wanted > 2):
                # Again, when a question came in between.
                wanted = time.monotonic()
                subprocess.run(['xdotool', 'windowfocus', '--sync', own, 'key', '--clearmodifiers', 'Escape', 'ctrl+o'],
                               check=False)
            time.sleep(0.2)
        raise AssertionError('the next movie does not play')

    def close_movie(self):
        """As the user would, in the midst of a script."""
        window = max(windows_of('Zorvex').items(), key=lambda found: found[1][0])[0]
        asked = time.monotonic()
        subprocess.run(['xdotool', 'windowfocus', '--sync', window, 'key', '--clearmodifiers', 'ctrl+w'], check=True)
        while ' :: Close Flash' not in journal(self.folder):
            assert time.monotonic() - asked < 2, 'Ctrl+W does nothing'
            time.sleep(0.05)


def check(name, folder, home, movie, acts, questions, following, picture=None):
    """Returns a line of figures; complains by an AssertionError."""
    display = Display()
    run = Run(folder, home, movie, name)
    try:
        while not run.look() and time.monotonic() - run.started < WINDOW_WITHIN + 5:
            assert run.process.poll() is None, run.complaint()
            time.sleep(0.02)
        window_after = time.monotonic() - run.started
        if name == 'stops':
            time.sleep(0.5)
            for pid in family(run.process.pid)[1:]:
                os.kill(pid, signal.SIGSTOP)
        end = time.monotonic() + SECONDS
        while time.monotonic() < end:
            run.look()
            if acts:
                run.act()
            run.weigh()
            run.probe(display)
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
        try:
            following_after = run.play_next(display, following)
        except AssertionError:
            if picture:
                subprocess.run(['import', '-window', 'root', picture], check=False)
            raise
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
    slowest = max(run.answers, default=0)
    line = '%-22s window %.2f s, menu %d ms (%d), windows %d, opened %d, journal %d KB, memory %d MB, next %.1f s, ' \
           'end %.2f s' % (name, window_after, 1000 * slowest, len(run.answers), run.most_windows, len(run.opened()),
                           len(log) // 1000, run.most_memory, following_after, took)
    problems = [what for what, wrong in (
        ('exit status %d' % status, status != 0),
        ('window late', window_after > WINDOW_WITHIN),
        ('windows at once: %s' % run.titles, run.most_windows > 1 + min(1, questions)),
        ('opened: %s' % run.opened(), bool(run.opened())),
        ('journal', len(log) > MOST_LOG),
        # Inside, whoever plays a frame answers nobody.
        ('menu late', slowest > MENU_WITHIN and not INSIDE),
        ('memory', run.most_memory > MOST_MEMORY_MB),
        ('next movie late', following_after > NEXT_WITHIN),
        ('ends late', took > END_WITHIN),
        ('settings not saved', ' :: Save Options' not in log),
        ('no last line', '<B>Quit: Query Unload by' not in log)) if wrong]
    assert not problems, line + ' ' + str(problems)
    return line


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
    movies = [(os.path.splitext(os.path.basename(given))[0], given, True, 1) for given in sys.argv[4:]
              if given not in MOVIES]
    for name, (script, acts, questions) in MOVIES.items():
        if (sys.argv[4:] and name not in sys.argv[4:]) or (INSIDE and name in ONLY_ITS_OWN):
            continue
        described = script.startswith('<movie')
        source = os.path.join(scratch, name + ('.xml' if described else '.as'))
        head = '' if described else '// movie: version="7" width="300" height="200" rate="30"\n'
        with open(source, 'w', encoding='utf-8') as handle:
            handle.write(head + script + '\n')
        movie = os.path.join(scratch, name + '.swf')
        subprocess.run([swfc, source, '-o', movie], check=True)
        movies.append((name, movie, acts, questions))
    following = os.path.join(scratch, 'following.swf')
    compile_movie(swfc, NEXT, following)
    failed = 0
    for name, movie, acts, questions in movies:
        try:
            print(check(name, folder, home, movie, acts, questions, following, os.path.join(scratch, name + '.png')))
        except AssertionError as complaint:
            failed += 1
            print('FAILED %s: %s' % (name, complaint))
        sys.stdout.flush()
    print('%d movies, %d failed' % (len(movies), failed))
    return 1 if failed else 0


if __name__ == '__main__':
    sys.exit(main())
