"""What the tests of the whole program share: a virtual display, what is on it, a copy of the program to run."""
import ctypes
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


class Display:
    """Pixels, windows and the mouse of the display, without a process for each look."""

    class Image(ctypes.Structure):
        _fields_ = [('width', ctypes.c_int), ('height', ctypes.c_int), ('xoffset', ctypes.c_int),
                    ('format', ctypes.c_int), ('data', ctypes.POINTER(ctypes.c_ubyte)), ('byte_order', ctypes.c_int),
                    ('bitmap_unit', ctypes.c_int), ('bitmap_bit_order', ctypes.c_int), ('bitmap_pad', ctypes.c_int),
                    ('depth', ctypes.c_int), ('bytes_per_line', ctypes.c_int), ('bits_per_pixel', ctypes.c_int)]

    def __init__(self):
        self.x11, self.test = ctypes.CDLL('libX11.so.6'), ctypes.CDLL('libXtst.so.6')
        self.x11.XOpenDisplay.restype = ctypes.c_void_p
        self.x11.XGetImage.restype = ctypes.POINTER(self.Image)
        # A window that has just gone is no reason to end.
        self.ignore = ctypes.CFUNCTYPE(ctypes.c_int, ctypes.c_void_p, ctypes.c_void_p)(lambda *_: 0)
        self.x11.XSetErrorHandler(self.ignore)
        self.display = ctypes.c_void_p(self.x11.XOpenDisplay(None))
        self.x11.XDefaultRootWindow.restype = ctypes.c_ulong
        self.root = ctypes.c_ulong(self.x11.XDefaultRootWindow(self.display))

    def column(self, x, y, height):
        """The colours of a column of pixels: list of (r, g, b)."""
        image = self.x11.XGetImage(self.display, self.root, x, y, 1, height, ctypes.c_ulong(0xFFFFFFFF), 2)
        line = image.contents.bytes_per_line
        data = image.contents.data
        colours = [(data[line * i + 2], data[line * i + 1], data[line * i]) for i in range(height)]
        self.x11.XDestroyImage(image)
        return colours

    def popups(self):
        """How many windows are seen that no manager would frame: menus, tips."""
        root, parent, children, count = (ctypes.c_ulong(), ctypes.c_ulong(), ctypes.POINTER(ctypes.c_ulong)(),
                                         ctypes.c_uint())
        self.x11.XQueryTree(self.display, self.root, ctypes.byref(root), ctypes.byref(parent),
                            ctypes.byref(children), ctypes.byref(count))
        seen = 0
        # The attributes of a window, as far as its state (at 92) and whether it overrides (at 120).
        attributes = ctypes.create_string_buffer(256)
        for i in range(count.value):
            if self.x11.XGetWindowAttributes(self.display, ctypes.c_ulong(children[i]), attributes):
                width, state, overrides = (ctypes.c_int.from_buffer(attributes, at).value for at in (8, 92, 120))
                seen += width > 60 and state == 2 and overrides != 0
        if count.value:
            self.x11.XFree(children)
        return seen

    def pixel(self, x, y):
        return self.column(x, y, 1)[0]

    def press(self, x, y):
        self.test.XTestFakeMotionEvent(self.display, -1, x, y, ctypes.c_ulong(0))
        self.x11.XSync(self.display, 0)
        time.sleep(0.03)
        self.test.XTestFakeButtonEvent(self.display, 1, 1, ctypes.c_ulong(0))
        self.x11.XFlush(self.display)

    def release(self):
        self.test.XTestFakeButtonEvent(self.display, 1, 0, ctypes.c_ulong(0))
        self.x11.XFlush(self.display)


def family(pid):
    """A process and all below it."""
    pids = [pid]
    for parent in pids:
        try:
            for task in os.listdir('/proc/%d/task' % parent):
                with open('/proc/%d/task/%s/children' % (parent, task), encoding='ascii') as handle:
                    pids.extend(int(child) for child in handle.read().split())
        except OSError:
            pass
    return pids
