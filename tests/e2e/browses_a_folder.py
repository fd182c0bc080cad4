#!/usr/bin/env python3
"""Opens the media browser on a folder, waits for the thumbnails, and plays a movie by a click on its picture.

  browses_a_folder.py PROGRAM_FOLDER SWFC SCRATCH_FOLDER     exit status 77: no virtual display to be had
"""
import os
import shutil
import subprocess
import sys

from screen import click, compile_movie, copy_program, count, journal, spots, under_virtual_display, wait_for

# Each movie is one colour with a dark stripe, and says in the journal that it plays.
MOVIE = '''<movie version="7" width="320" height="240" rate="20" background="%s">
  <shape id="stripe"><rect y="100" width="320" height="40" fill="#101010"/></shape>
  <frame duration="10"><place id="stripe"/><script>
    fscommand("MeowLog", "playing %s at size " + Stage.width);
  </script></frame>
</movie>
'''
HANGS = '''<movie version="7"><frame><script>while (true) x++;</script></frame></movie>'''
# The second name has all that is hard on the way through addresses and encodings.
MOVIES = {'plain.swf': '#00A020', '日本 Ёж #1 100%? & co.swf': '#E000E0', 'Кино.SWF': '#E06000'}
COLOUR = (0xE0, 0x00, 0xE0)
JPEG_TOLERANCE = 12
OLD_COLOUR, OLD_NAME = (0x00, 0xC0, 0xC0), 'Кино и люди'


def old_names(folder, swfc, scratch):
    """Names of windows-1251 bytes: shown, clicked, and given on the command line."""
    movies = os.path.join(scratch, 'old').encode() + b'/' + OLD_NAME.encode('cp1251')
    shutil.rmtree(os.path.dirname(movies), ignore_errors=True)
    os.makedirs(movies)
    compile_movie(swfc, MOVIE % ('#00C0C0', 3), os.path.join(scratch, 'old.swf'))
    movie = movies + b'/' + OLD_NAME.encode('cp1251') + b'.swf'
    os.rename(os.path.join(scratch, 'old.swf'), movie)
    shown = os.path.join(scratch, 'old', OLD_NAME, OLD_NAME + '.swf')
    for argument in (movies, movie):
        os.remove(os.path.join(folder, 'App.Log.html'))
        player = subprocess.Popen([os.path.join(folder, 'Zorvex'), argument])
        try:
            if argument == movies:
                wait_for('the picture', lambda: 3000 < count(OLD_COLOUR, JPEG_TOLERANCE) < 20000, 40)
                place = spots(OLD_COLOUR, JPEG_TOLERANCE)
                click(*place[len(place) // 4])
            wait_for('the movie to run', lambda: 'Media debug :: playing 3 at size 320' in journal(folder))
            assert ' :: LoadFlash (\r\n%s)' % shown in journal(folder), journal(folder)
            player.terminate()
            assert player.wait(20) == 0, player.returncode
        finally:
            player.kill()


def main():
    program_folder, swfc, scratch = sys.argv[1:4]
    status = under_virtual_display('900x700')
    if status is not None:
        return status
    folder, movies = copy_program(program_folder, scratch), os.path.join(scratch, 'browsed')
    shutil.rmtree(movies, ignore_errors=True)
    os.makedirs(os.path.join(movies, 'Подпапка'))
    for number, (name, colour) in enumerate(MOVIES.items()):
        compile_movie(swfc, MOVIE % (colour, number), os.path.join(movies, name))
    compile_movie(swfc, HANGS, os.path.join(movies, 'hangs.swf'))
    settings = os.path.join(folder, 'settings.xml')
    with open(settings, encoding='cp1251') as handle:
        text = handle.read()
    with open(settings, 'w', encoding='cp1251') as handle:
        handle.write(text.replace('startUp="0"', 'startUp="1"').replace('search=""', 'search="%s"' % movies))
    cache = os.path.join(folder, 'cache')

    def pictures():
        return sorted(name for name in os.listdir(cache) if name.endswith('.jpg'))

    player = subprocess.Popen([os.path.join(folder, 'Zorvex')])
    try:
        wait_for('the thumbnails', lambda: len(pictures()) == len(MOVIES), 40)
        wait_for('the page', lambda: 'browse.swf' in journal(folder), 40)
        # A thumbnail in a slot of the page is much smaller than the movie.
        wait_for('the picture of the movie on the page', lambda: 3000 < count(COLOUR, JPEG_TOLERANCE) < 20000)
        shown = spots(COLOUR, JPEG_TOLERANCE)
        click(*shown[len(shown) // 4])
        wait_for('the movie at its own size', lambda: count(COLOUR) > 320 * 195)
        wait_for('the movie to run', lambda: 'Media debug :: playing 1 at size 320' in journal(folder))
        player.terminate()
        assert player.wait(20) == 0, player.returncode
    finally:
        player.kill()

    log = journal(folder)
    for line in (' :: Media Browse<br>\r\n', ' :: New Media Browse (', 'Thumbnail dropped: ', '<B>Quit: '):
        assert line in log, (line, log)
    assert 'playing 0' not in log and 'playing 2' not in log, 'what is pictured commands nothing'
    assert pictures() == sorted((movies + '/' + name).replace('/', '#') + '.jpg' for name in MOVIES), pictures()
    with open(settings, encoding='cp1251') as handle:
        assert 'search="%s/"' % movies in handle.read()
    old_names(folder, swfc, scratch)
    print('The browser pictures a folder and plays what is clicked.')
    return 0


if __name__ == '__main__':
    sys.exit(main())
