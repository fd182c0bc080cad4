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
import wave

from screen import Display, compile_movie, copy_program, family, journal, under_virtual_display, windows_of

ADDRESS_SPACE = 6_000_000 << 10  # as "ulimit -v 6000000"
MOST_LOG = 5_000_000
SECONDS = 1.5
# So many movies at the same time, each on a display of its own: for most of them the test waits.
SIDE_BY_SIDE = 2
# What a machine that does other things as well may take longer.
WINDOW_WITHIN, END_WITHIN, MENU_WITHIN, NEXT_WITHIN = 3.0, 1.5, 0.6, 15.0
MOST_MEMORY_MB = 1200
SHARE = 'ZORVEX_HOSTILE_SHARE'
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
    'frames_from_the_first': ('function busy() { var t = getTimer(); while (getTimer() - t < 1900) {} } busy(); '
                              + EVERY_FRAME % 'busy();', True, 0),
    'levels': ('var n = 0; ' + EVERY_FRAME % 'for (var i = 0; i < 500; i++) loadMovieNum(_url, ++n % 10000 + 1);', False, 0),
    'loads_itself_into_itself': ('_root.createEmptyMovieClip("c", 1).loadMovie(_url); c.loadMovie(_url); '
                                 'this.loadMovie(_url); loadMovieNum(_url, 0);', False, 0),
    'bitmaps_kept': ('import flash.display.BitmapData; var kept = []; '
                     + EVERY_FRAME % 'for (var i = 0; i < 10; i++) kept.push(new BitmapData(2880, 2880, true, i));',
                     True, 0),
    'bitmaps_copied': ('import flash.display.BitmapData; import flash.geom.*;'
                       ' var a = new BitmapData(2880, 2880, true, 0x80FF0000), b = a.clone(), p = new Point(); '
                       + EVERY_FRAME % 'for (var i = 0; i < 200; i++) { b.copyPixels(a, a.rectangle, p, a, p, true);'
                       ' b.draw(a, new Matrix(1.1, 0.1, -0.1, 1.1), null, "multiply"); b.threshold(a, a.rectangle, p, ">", 0);'
                       ' b.floodFill(0, 0, i); b.pixelDissolve(a, a.rectangle, p, i, 99999999); }', True, 0),
    'unloads_without_end': ('function f() { var d = _root.getNextHighestDepth(); var c = _root.createEmptyMovieClip("u" + d, d);'
                            ' c.onUnload = f; c.removeMovieClip(); } f(); '
                            + EVERY_FRAME % 'f();', True, 0),
    'unloads_endlessly': ('_root.onUnload = function() { while (true) {} }; _root.createEmptyMovieClip("c", 1).onUnload ='
                          ' function() { while (true) {} };', True, 0),
    'commands_by_the_thousand': (EVERY_FRAME % 'for (var i = 0; i < 20000; i++) fscommand("c" + i, i);'
                                 ' for (var i = 0; i < 2000; i++) getURL("FSCommand:showmenu", i);', True, 0),
    'masks_in_masks': ('for (var i = 0; i < 300; i++) { var c = _root.createEmptyMovieClip("c" + i, i);'
                       ' c.beginFill(i * 99, 60); c.moveTo(-999, -999); c.lineTo(2800, i); c.lineTo(i, 2800); c.endFill();'
                       ' c.blendMode = 3 + i % 11; c.cacheAsBitmap = true; if (i) c.setMask(_root["c" + (i - 1)]); } '
                       + EVERY_FRAME % 'for (var i = 0; i < 300; i++) _root["c" + i]._rotation += 2;', True, 0),
    'huge_scales': ('import flash.filters.*; var c = _root.createEmptyMovieClip("c", 1); c.lineStyle(255, 255, 50);'
                    ' for (var i = 0; i < 3000; i++) c.curveTo(random(9999), random(9999), random(9999), random(9999));'
                    ' c.cacheAsBitmap = true; c.filters = [new DropShadowFilter(9, 45, 0, 1, 255, 255, 9, 15),'
                    ' new BevelFilter(9, 45, 255, 1, 0, 1, 255, 255, 9, 15), new ConvolutionFilter(15, 15, new Array(225))]; '
                    + EVERY_FRAME % 'c._xscale = c._yscale = 1 + getTimer() * 7919 % 1000000;', True, 0),
    'gradients': (EVERY_FRAME % 'clear(); for (var i = 0; i < 2000; i++) { beginGradientFill("radial", [255, 99, 7], [9, 50, 99],'
                  ' [0, 99, 255], {matrixType: "box", x: i, y: 0, w: 3000, h: 3000, r: i}, "reflect"); lineTo(3000, 0);'
                  ' lineTo(3000, 3000); lineTo(0, 3000); endFill(); }', True, 0),
    'html_texts': ('var s = ""; for (var i = 0; i < 4000; i++) s += "<p><font size=\'" + (i % 99) + "\'><b>w" + i + "</b>'
                   '<img src=\'a.jpg\'></font></p>"; for (var i = 0; i < 20; i++) { _root.createTextField("t" + i, i, 0, 0, 280, 180);'
                   ' _root["t" + i].html = _root["t" + i].multiline = true; _root["t" + i].autoSize = true; } '
                   + EVERY_FRAME % 'for (var i = 0; i < 20; i++) { _root["t" + i].htmlText = s; _root["t" + i].scroll = i; }',
                   True, 0),
    'xml_and_sorting': ('var s = "<a b=\'c\'>"; while (s.length < 4000000) s += s; var a = []; for (var i = 0; i < 200000; i++)'
                        ' a.push(random(1e9)); ' + EVERY_FRAME % 'var x = new XML(s); var t = x.toString();'
                        ' a.sort(function(p, q) { return random(3) - 1; }); a.reverse(); a.sortOn("x");', True, 0),
    'watches_and_accessors': ('var o = {}; o.watch("p", function(n, a, b) { o.p = b + 1; return b; });'
                              ' o.addProperty("q", function() { return o.q; }, function(v) { o.q = v; }); '
                              + EVERY_FRAME % 'for (var i = 0; i < 1000; i++) { o.p = i; o.q = i; var z = o.q; }', True, 0),
    'clips_by_the_thousand': ('var n = 0; ' + EVERY_FRAME % 'for (var i = 0; i < 3000; i++) { var c ='
                              ' _root.createEmptyMovieClip("c" + n, n++); c.onEnterFrame = c.onMouseMove = function() {'
                              ' this._x = _root._xmouse; for (var k in this) {} }; c.lineStyle(1); c.lineTo(300, n % 200); }',
                              True, 0),
    'streams_and_connections': ('var kept = []; ' + EVERY_FRAME % 'for (var i = 0; i < 100; i++) { var c = new NetConnection();'
                                ' c.connect(null); var s = new NetStream(c); s.play("v" + i + ".flv"); kept.push(c, s);'
                                ' var l = new LocalConnection(); l.connect("l" + i); l.send("l" + i, "f", kept); kept.push(l);'
                                ' var x = new XMLSocket(); x.connect("localhost", 6000); kept.push(x); }', True, 0),
    'jumps_in_frames': ('<movie version="7" width="300" height="200" rate="120"><frame><script>'
                        'function f() { gotoAndPlay(2); gotoAndStop(1); nextFrame(); prevFrame(); play(); } f();'
                        '</script></frame><frame><script>f(); f(); gotoAndPlay(1);</script></frame></movie>', True, 0),
    'sound_flood': ('<movie version="7" width="300" height="200" rate="30"><sound id="s" file="tone.wav"/>'
                    '<export id="s" name="s"/><frame><script>var kept = []; _root.onEnterFrame = function() {'
                    ' for (var i = 0; i != 500; i++) { var s = new Sound(); s.attachSound("s"); s.start(i / 99, 999);'
                    ' s.setPan(i); s.onSoundComplete = function() { this.start(); }; kept.push(s); } };'
                    '</script></frame></movie>', True, 0),
    'focus_and_selection': ('for (var i = 0; i < 500; i++) { _root.createTextField("t" + i, i, i % 200, i % 150, 99, 20);'
                            ' var f = _root["t" + i]; f.type = "input"; f.onSetFocus = f.onKillFocus = f.onChanged = function(o) {'
                            ' Selection.setFocus("t" + random(500)); this.replaceText(0, 1, "xx"); }; } Selection.addListener({onSetFocus:'
                            ' function() { Selection.setFocus("t" + random(500)); }}); '
                            + EVERY_FRAME % 'for (var i = 0; i < 50; i++) Selection.setFocus("t" + i);', True, 0),
    # Its process does not answer at all; nothing that a movie can do, but what a damaged one may come to. The one
    # that is kept ready for the next movie does not either.
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
    if problems:
        raise AssertionError(line, problems)
    return line


def chosen_movies(names):
    """(name, path or None, acts, questions) of all that are to be played; those without a path are compiled."""
    movies = [(os.path.splitext(os.path.basename(given))[0], given, True, 1) for given in names if given not in MOVIES]
    return movies + [(name, None, acts, questions) for name, (_, acts, questions) in MOVIES.items()
                     if (not names or name in names) and not (INSIDE and name in ONLY_ITS_OWN)]


def compile_hostile(swfc, name, scratch):
    script = MOVIES[name][0]
    described = script.startswith('<movie')
    source = os.path.join(scratch, name + ('.xml' if described else '.as'))
    head = '' if described else '// movie: version="8" width="300" height="200" rate="30"\n'
    with open(source, 'w', encoding='utf-8') as handle:
        handle.write(head + script + '\n')
    movie = os.path.join(scratch, name + '.swf')
    subprocess.run([swfc, source, '-o', movie], check=True)
    return movie


def play_share(program_folder, swfc, scratch, movies, late=None):
    """Plays some of the movies, one after the other. Writes to late which of them were only that."""
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
    with wave.open(os.path.join(scratch, 'tone.wav'), 'wb') as tone:
        tone.setparams((1, 2, 22050, 0, 'NONE', None))
        tone.writeframes(bytes(i * 40 % 256 for i in range(22050 * 2)))
    following = os.path.join(scratch, 'following.swf')
    compile_movie(swfc, NEXT, following)
    failed = 0
    for name, movie, acts, questions in movies:
        movie = movie or compile_hostile(swfc, name, scratch)
        try:
            print(check(name, folder, home, movie, acts, questions, following, os.path.join(scratch, name + '.png')))
        except AssertionError as complaint:
            if late is not None and complaint.args[1:] and all('late' in what for what in complaint.args[1]):
                # Beside others: it is looked at once more, alone.
                late.write(name + '\n')
                print('late %s: %s' % (name, complaint))
                continue
            failed += 1
            print('FAILED %s: %s' % (name, complaint))
        sys.stdout.flush()
    print('%d movies, %d failed' % (len(movies), failed))
    return 1 if failed else 0


def late_ones(scratch, share, mode):
    os.makedirs(scratch, exist_ok=True)
    return open(os.path.join(scratch, 'late%s.txt' % share), mode, encoding='utf-8')


def main():
    program_folder, swfc, scratch = sys.argv[1:4]
    share = os.environ.get(SHARE)
    movies = chosen_movies(sys.argv[4:])
    if share is None and len(movies) > 1:
        # Each share on a display, and in a folder, of its own.
        shares = [subprocess.Popen([sys.executable] + sys.argv, env=dict(os.environ, **{SHARE: str(i)}))
                  for i in range(SIDE_BY_SIDE)]
        status = max(one.wait() for one in shares)
        late = [name for i in range(SIDE_BY_SIDE) for name in late_ones(scratch, str(i), 'r').read().split()]
        return subprocess.call([sys.executable] + sys.argv[:4] + late) if status == 0 and late else status
    status = under_virtual_display('1024x768')
    if status is not None:
        return status
    if share is not None:
        scratch = os.path.join(scratch, 'share' + share)
        movies = movies[int(share)::SIDE_BY_SIDE]
    os.makedirs(scratch, exist_ok=True)
    if share is None:
        return play_share(program_folder, swfc, scratch, movies)
    with late_ones(os.path.dirname(scratch), share, 'w') as late:
        return play_share(program_folder, swfc, scratch, movies, late)


if __name__ == '__main__':
    sys.exit(main())
