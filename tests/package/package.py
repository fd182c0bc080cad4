#!/usr/bin/env python3
"""Builds the Debian package, installs it into a root of its own, uses it as an ordinary user would, and removes it.

  package.py BUILD_FOLDER SCRATCH_FOLDER     exit status 77: a tool is missing, which is printed

The running system is left alone: dpkg has a database and a root folder of the test's own, and the desktop's tools are told
of that root as one more place to look at.
"""
import glob
import os
import pathlib
import pwd
import re
import shutil
import subprocess
import sys
import time

TYPE = 'application/vnd.adobe.flash.movie'
SYSTEM_TOOLS = ('cpack', 'dpkg', 'dpkg-deb', 'dpkg-shlibdeps', 'file', 'xvfb-run', 'import', 'desktop-file-validate',
                'appstreamcli', 'update-mime-database', 'update-desktop-database', 'xdg-mime', 'mimetype', 'gio', 'man',
                'setpriv', 'readelf')


def run(*command, **options):
    """What the command prints; it has to succeed."""
    done = subprocess.run([str(word) for word in command], check=False, text=True, errors='replace',
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT, **options)
    if done.returncode != 0:
        sys.exit('%s failed:\n%s' % (' '.join(map(str, command)), done.stdout))
    return done.stdout


def wait_for(what, question, seconds=20):
    end = time.monotonic() + seconds
    while time.monotonic() < end:
        if question():
            return
        time.sleep(0.1)
    sys.exit('in vain: ' + what)


class Package:
    """The package in a root folder, unpacked or installed."""

    def __init__(self, deb, root):
        self.deb, self.root = deb, root
        listing = run('dpkg-deb', '--contents', deb).splitlines()
        self.files = [line.split(' -> ')[0].split(' ./', 1)[1] for line in listing]

    def path(self, name):
        return self.root / name

    def unpack(self):
        run('dpkg-deb', '--extract', self.deb, self.root)

    def dpkg(self, *arguments):
        # What the package depends on is in the running system, of which this database knows nothing.
        path = os.environ['PATH'] + ':/usr/sbin:/sbin'
        return run('dpkg', '--root=%s' % self.root, '--log=%s' % os.devnull, '--force-depends', '--force-not-root',
                   *arguments, env=dict(os.environ, PATH=path))

    def install(self):
        database = self.root / 'var/lib/dpkg'
        for folder in ('info', 'updates', 'triggers'):
            (database / folder).mkdir(parents=True)
        for name in ('status', 'available'):
            (database / name).touch()
        self.dpkg('--install', self.deb)
        run('update-mime-database', self.path('usr/share/mime'))
        run('update-desktop-database', self.path('usr/share/applications'))
        # To its users this is a system's folder.
        for folder in self.path('usr/lib/zorvex').rglob('*'):
            folder.chmod(folder.stat().st_mode & ~0o222)
        self.path('usr/lib/zorvex').chmod(0o555)

    def remove(self):
        for folder in (self.path('usr/lib/zorvex'), *self.path('usr/lib/zorvex').rglob('*')):
            folder.chmod(folder.stat().st_mode | 0o200)
        self.dpkg('--purge', 'zorvex')


class User:
    """Someone who may not write the program's folder, with an empty home."""

    def __init__(self, home, root):
        self.home = home
        self.home.mkdir(mode=0o700)
        self.prefix = []
        # The virtual display lets those in who know its cookie, and keeps that from other users.
        display_key = pathlib.Path(shutil.copy(os.environ['XAUTHORITY'], home / 'Xauthority'))
        if os.geteuid() == 0:
            nobody = pwd.getpwnam('nobody')
            for path in (home, display_key):
                os.chown(path, nobody.pw_uid, nobody.pw_gid)
            self.prefix = ['setpriv', '--reuid=%d' % nobody.pw_uid, '--regid=%d' % nobody.pw_gid, '--clear-groups']
        keep = ('PATH', 'LANG', 'DISPLAY')
        self.environment = {name: os.environ[name] for name in keep if name in os.environ}
        self.environment['PATH'] = '%s/usr/bin:%s' % (root, self.environment['PATH'])
        self.environment.update(HOME=str(home), XDG_RUNTIME_DIR=str(home), XAUTHORITY=str(display_key),
                                QT_QPA_PLATFORM='xcb',
                                XDG_DATA_DIRS='%s/usr/share:/usr/local/share:/usr/share' % root)

    def run(self, *command):
        return run(*self.prefix, *command, env=self.environment, cwd=self.home)

    def start(self, *command):
        return subprocess.Popen([*self.prefix, *map(str, command)], env=self.environment, cwd=self.home)


def libraries_opened_at_run_time(program):
    """The packages of the libraries whose file names with a version stand in the program's constants, as Debian names
    them: libavcodec.so.59 is in libavcodec59. Those it is linked with stand elsewhere and are found by the packer."""
    # Some linkers gather the texts in a section of their own.
    constants = run('readelf', '--string-dump=.rodata', '--string-dump=.rodata.str', program)
    return {'lib%s%s' % name for name in re.findall(r'\blib(\w+)\.so\.(\d+)', constants)}


def validate(package):
    run('desktop-file-validate', package.path('usr/share/applications/zorvex.desktop'))
    run('appstreamcli', 'validate', '--no-net', package.path('usr/share/metainfo/org.zorvex.Zorvex.metainfo.xml'))
    for page in ('man1/zorvex', 'ru/man1/zorvex', 'man1/zorvex-export', 'ru/man1/zorvex-export', 'man1/swfc', 'ru/man1/swfc',
                 'man1/svgpng', 'ru/man1/svgpng'):
        page = 'man/%s.1.gz' % page
        said = run('man', '--warnings', '-l', '-Tutf8', package.path('usr/share/' + page),
                   env=dict(os.environ, LC_ALL='C.UTF-8', MANPAGER='cat'))
        assert 'zorvex' in said.lower() and 'warning' not in said, said
    for size in (16, 22, 24, 32, 48, 64, 96, 128, 256, 512):
        icon = package.path('usr/share/icons/hicolor/%dx%d/apps/zorvex.png' % (size, size))
        assert run('identify', '-format', '%wx%h', icon) == '%dx%d' % (size, size), icon
    depends = run('dpkg-deb', '-f', package.deb, 'Depends')
    programs = [package.path('usr/lib/zorvex/' + name) for name in ('Zorvex', 'zorvex-movie', 'flashrun')]
    opened = {name for program in programs for name in libraries_opened_at_run_time(program)}
    assert opened, 'the program has no names of libraries to open'
    for needed in ('libqt6widgets6', 'libc6', *opened):
        assert needed in depends, (needed, depends)


def screen_has(colour):
    """The number of pixels of a colour, as PPM bytes."""
    ppm = subprocess.run(['import', '-window', 'root', '-depth', '8', 'ppm:-'], check=True, capture_output=True).stdout
    pixels = ppm[-3 * 1024 * 768:]
    return sum(pixels[i:i + 3] == colour for i in range(0, len(pixels), 3))


def use(package, user):
    program = package.path('usr/bin/zorvex')
    version = run('dpkg-deb', '-f', package.deb, 'Version').strip()
    assert user.run(program, '--version') == 'Zorvex %s\n' % version
    assert '--version' in user.run(program, '--help')
    assert 'mp4' in user.run(package.path('usr/bin/zorvex-export'), '--formats')

    # Plays, for as long as it takes to see more than one colour of it, and ends as it should when told to.
    folder = package.path('usr/lib/zorvex')
    before = sorted(path for path in folder.rglob('*'))
    movie = folder / 'media/samples/testcard.swf'
    player = user.start(program, movie)
    settings, journal = user.home / '.config/zorvex/settings.xml', user.home / '.local/state/zorvex/App.Log.html'
    try:
        wait_for('the journal', journal.exists)
        wait_for('the movie', lambda: b'Ok<br>' in journal.read_bytes())
        wait_for('the picture', lambda: screen_has(bytes((0xEE, 0xEE, 0xFF))) > 500)
        time.sleep(1)
        assert player.poll() is None, 'it ended by itself'
        player.terminate()
        assert player.wait(20) == 0, player.returncode
    finally:
        player.kill()
    log = journal.read_text('cp1251')
    assert 'Settings Path: %s/.config/zorvex/ (the program is installed for all users)' % user.home in log, log
    assert 'Quit: ' in log, log
    assert 'testcard.swf</RECENT>' in settings.read_text('cp1251'), settings.read_text('cp1251')
    assert (user.home / '.cache/zorvex').is_dir()
    assert before == sorted(path for path in folder.rglob('*')), 'the program folder was written'

    # A file that is named like an option is opened, relative to where the user stands.
    user.run('cp', movie, './-reverse')
    player = user.start(program, '-reverse')
    try:
        wait_for('the file named like an option', lambda: '/-reverse)... <br>' in journal.read_text('cp1251'))
        wait_for('the movie', lambda: b'Ok<br>' in journal.read_bytes())
        player.terminate()
        assert player.wait(20) == 0, player.returncode
    finally:
        player.kill()

    # What file managers run for a picture of a movie.
    entry = package.path('usr/share/thumbnailers/zorvex.thumbnailer').read_text()
    command = next(line for line in entry.splitlines() if line.startswith('Exec='))[5:].split()
    command[0] = str(package.root) + command[0]
    picture = user.home / 'picture.png'
    values = {'%u': movie.as_uri(), '%o': str(picture), '%s': '128'}
    user.run(*[values.get(word, word) for word in command])
    assert run('identify', '-format', '%m %w', picture) == 'PNG 128', 'no thumbnail'

    assert user.run('xdg-mime', 'query', 'filetype', movie).strip() == TYPE
    assert 'zorvex.desktop' in user.run('gio', 'mime', TYPE)


def main():
    build, scratch = map(pathlib.Path, sys.argv[1:3])
    missing = [tool for tool in SYSTEM_TOOLS if not shutil.which(tool)]
    if missing:
        print('needs ' + ', '.join(missing))
        return 77
    if not os.environ.get('ZORVEX_E2E_DISPLAY'):
        command = ['xvfb-run', '-a', '-s', '-screen 0 1024x768x24', sys.executable, *sys.argv]
        return subprocess.run(command, env=dict(os.environ, ZORVEX_E2E_DISPLAY='1'), check=False).returncode

    # The user has to reach the unpacked package and the home: not below a folder that is closed to others.
    work = pathlib.Path('/tmp/zorvex-package-test-%d' % os.getpid())
    work.mkdir(mode=0o755)
    try:
        shutil.rmtree(scratch / 'package', ignore_errors=True)
        run('cpack', '--config', build / 'CPackConfig.cmake', '-B', scratch / 'package')
        deb, = glob.glob(str(scratch / 'package' / '*.deb'))
        deb = shutil.copy(deb, work)
        # Some systems leave manual pages out when they install, so what is in the package is looked at unpacked.
        unpacked = Package(deb, work / 'unpacked')
        unpacked.unpack()
        validate(unpacked)
        package = Package(deb, work / 'root')
        package.install()
        use(package, User(work / 'home', package.root))
        package.remove()
        own = [name for name in package.files if 'zorvex' in name.lower()]
        assert len(own) > 40, own
        left = [name for name in own if os.path.lexists(package.path(name))]
        assert not left, left
        print('The package installs, plays and leaves nothing behind.')
    finally:
        shutil.rmtree(work, ignore_errors=True)
    return 0


if __name__ == '__main__':
    sys.exit(main())
