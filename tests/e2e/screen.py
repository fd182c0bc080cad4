"""What the tests of the whole program share: a virtual display, what is on it, a copy of the program to run."""
import os
import shutil
import subprocess
import sys
import time

NO_DISPLAY = 77


def under_virtual_display(size):
    """Runs this very script on a display of its own. Returns its exit status, or None on that display."""
    if os.environ.get('ZORVEX_E2E_DISPLAY'):
        os.environ['QT_QPA_PLATFORM'] = 'xcb'
        suppressions = os.path.join(os.path.dirname(os.path.abspath(__file__)), '..', 'lsan.supp')
        os.environ['LSAN_OPTIONS'] = 'suppressions=' + suppressions
        return None
    tools = ('Xvfb', 'xdotool', 'import')
    if not all(shutil.which(tool) for tool in tools):
        print('needs ' + ', '.join(tools))
        return NO_DISPLAY
    # The server picks a free number by itself: asked for one, two that start at once would fight for it.
    answer, number = os.pipe()
    # Without the reset that it makes when its last window goes: what starts meanwhile is turned away.
    server = subprocess.Popen(['Xvfb', '-displayfd', str(number), '-screen', '0', size + 'x24', '-nolisten', 'tcp',
                               '-noreset'],
                              pass_fds=[number], stderr=subprocess.DEVNULL)
    os.close(number)
    try:
        with os.fdopen(answer) as pipe:
            display = pipe.readline().strip()
        if not display:
            print('no virtual display can be had')
            return NO_DISPLAY
        environment = dict(os.environ, ZORVEX_E2E_DISPLAY='1', DISPLAY=':' + display)
        return subprocess.run([sys.executable] + sys.argv, env=environment, check=False).returncode
    finally:
        server.terminate()
        server.wait()


def screen():
    """The root window as (width, rows of RGB bytes)."""
    ppm = subprocess.run(['import', '-window', 'root', '-depth', '8', 'ppm:-'], check=True, capture_output=True).stdout
    _, width, height, _, pixels = ppm.split(maxsplit=4) if ppm[:2] == b'P6' else sys.exit('no picture')
    width, height = int(width), int(height)
    pixels = ppm[len(ppm) - 3 * width * height:]
    return width, [pixels[3 * width * y:3 * width * (y + 1)] for y in range(height)]


def spots(colour, tolerance=0):
    """Where on the screen a colour is seen: list of (x, y)."""
    width, rows = screen()
    wanted = bytes(colour)
    if tolerance == 0:
        return [(x, y) for y, row in enumerate(rows) for x in range(width) if row[3 * x:3 * x + 3] == wanted]
    return [(x, y) for y, row in enumerate(rows) for x in range(width)
            if all(abs(row[3 * x + i] - wanted[i]) <= tolerance for i in range(3))]


def count(colour, tolerance=0):
    return len(spots(colour, tolerance))


def click(x, y, *options):
    subprocess.run(['xdotool', 'mousemove', str(x), str(y), 'click'] + list(options) + ['1'], check=True)


def windows_of(name):
    """The visible windows of a program as {id: (width, height, title)}."""
    found = subprocess.run(['xdotool', 'search', '--onlyvisible', '--class', name],
                           check=False, capture_output=True, text=True).stdout.split()
    windows = {}
    for window in found:
        shape = subprocess.run(['xdotool', 'getwindowgeometry', '--shell', window], check=False,
                               capture_output=True, text=True).stdout
        title = subprocess.run(['xdotool', 'getwindowname', window], check=False, capture_output=True,
                               text=True).stdout.strip()
        size = dict(line.split('=') for line in shape.split())
        if 'WIDTH' in size:
            windows[window] = (int(size['WIDTH']), int(size['HEIGHT']), title)
    return windows


def wait_for(what, question, seconds=20):
    end = time.monotonic() + seconds
    while time.monotonic() < end:
        answer = question()
        if answer:
            return answer
        time.sleep(0.2)
    return sys.exit('in vain: ' + what)


def copy_program(program_folder, scratch):
    """A copy of the program folder, so that journal, cache and settings are the test's own."""
    folder = os.path.join(scratch, 'program')
    shutil.rmtree(folder, ignore_errors=True)
    # What an earlier run wrote there is none of this one's.
    shutil.copytree(program_folder, folder, ignore=shutil.ignore_patterns('App.Log.html', 'cache'))
    os.makedirs(os.path.join(folder, 'cache'))
    return folder


def compile_movie(swfc, text, target):
    source = target + '.xml'
    with open(source, 'w', encoding='utf-8') as handle:
        handle.write(text)
    subprocess.run([swfc, source, '-o', target], check=True)
    os.remove(source)


def journal(folder):
    """What the program has logged so far."""
    path = os.path.join(folder, 'App.Log.html')
    if not os.path.exists(path):
        return ''
    with open(path, encoding='cp1251', newline='') as handle:
        return handle.read()
