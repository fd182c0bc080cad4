#!/usr/bin/env python3
"""Opens in one go what lies about on people's disks: projectors of several systems, compressed and not, a movie packed
with LZMA, names with quotes, a way with "..": all on the command line, walked through by the keyboard.

  opens_what_people_have.py PROGRAM_FOLDER SWFC SCRATCH_FOLDER     exit status 77: something is missing here
"""
import lzma
import os
import re
import shutil
import struct
import subprocess
import sys
import zlib

from screen import compile_movie, copy_program, journal, under_virtual_display, wait_for, windows_of

MOVIE = '''<movie version="7" width="320" height="240" rate="20" background="#4974BA" compressed="no">
  <frame duration="10"><script>fscommand("MeowLog", "playing %s");</script></frame>
</movie>
'''
FOOTER = 0xFA123456


def header(signature, movie, version):
    return signature + bytes([version]) + movie[4:8]


def deflated(movie):
    return header(b'CWS', movie, 7) + zlib.compress(movie[8:])


def packed(movie):
    """With LZMA: the movie's own header, the packed length, the five bytes of properties, and the stream."""
    alone = lzma.compress(movie[8:], format=lzma.FORMAT_ALONE)
    return header(b'ZWS', movie, 13) + struct.pack('<I', len(alone) - 13) + alone[:5] + alone[13:]


def projector(head, movie, has_footer):
    return head + bytes(3000) + movie + (struct.pack('<II', FOOTER, len(movie)) if has_footer else b'')


# What is made of a movie, by the name that it gets.
FILES = {
    "first 'of' \"all\".swf": lambda movie: movie,
    'Ёлка.exe': lambda movie: projector(b'MZ', movie, True),
    'packed inside.exe': lambda movie: projector(b'MZ', deflated(movie), True),
    'of linux.exe': lambda movie: projector(b'\x7fELF', deflated(movie), False),
    'lzma.swf': packed,
}


def main():
    program_folder, swfc, scratch = sys.argv[1:4]
    if not all(shutil.which(tool) for tool in ('openbox', 'wmctrl')):
        print('needs openbox and wmctrl')
        return 77
    status = under_virtual_display('900x700')
    if status is not None:
        return status
    folder, movies = copy_program(program_folder, scratch), os.path.join(scratch, 'found')
    shutil.rmtree(movies, ignore_errors=True)
    os.makedirs(os.path.join(movies, 'deep'))
    paths = []
    for number, (name, made) in enumerate(FILES.items()):
        path = os.path.join(movies, name)
        compile_movie(swfc, MOVIE % number, path)
        with open(path, 'rb') as handle:
            plain = handle.read()
        with open(path, 'wb') as handle:
            handle.write(made(plain))
        paths.append(os.path.join(movies, 'deep', '..', name))
    manager = subprocess.Popen(['openbox', '--sm-disable'], stderr=subprocess.DEVNULL)
    wait_for('the window manager',
             lambda: subprocess.run(['wmctrl', '-m'], check=False, capture_output=True).stdout)
    player = subprocess.Popen([os.path.join(folder, 'Zorvex')] + paths)
    try:
        for number, name in enumerate(FILES):
            wait_for('"%s" to play' % name,
                     lambda number=number: 'Media debug :: playing %d' % number in journal(folder))
            window = wait_for('its name in the caption', lambda name=name: next(
                (window for window, (_, _, title) in windows_of('Zorvex').items() if title == 'Zorvex - ' + name), None))
            subprocess.run(['xdotool', 'windowactivate', '--sync', window, 'key', 'Next'], check=True)
        wait_for('the first one anew, or the last for good',
                 lambda: journal(folder).count('Media debug :: playing') >= len(FILES))
        # What was typed stands in the journal once, as it was typed.
        opened = re.findall(r':: LoadFlash \(\r\n(.*?)\)\.\.\. ', journal(folder))
        assert len(opened) >= len(FILES) and not any('/../' in path for path in opened), opened
        player.terminate()
        assert player.wait(20) == 0, player.returncode
    finally:
        player.kill()
        manager.terminate()
    print('What people have is opened.')
    return 0


if __name__ == '__main__':
    sys.exit(main())
