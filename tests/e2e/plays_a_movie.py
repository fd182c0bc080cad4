#!/usr/bin/env python3
"""Starts the real program on a virtual display, as a user would, and looks at the screen and the journal.

  plays_a_movie.py PROGRAM_FOLDER SWFC SCRATCH_FOLDER     exit status 77: no virtual display to be had
"""
import os
import subprocess
import sys

from screen import (click, compile_movie, copy_program, count, journal, spots, under_virtual_display, wait_for)

MOVIE = '''<movie version="6" width="320" height="240" rate="20" background="#4974BA">
  <shape id="disc"><circle cx="160" cy="120" r="60" fill="#F2A93B"/></shape>
  <sprite id="s"><frame><place id="disc"/></frame></sprite>
  <frame><place id="s" name="s"/><script>
    _root.onMouseDown = function () { s._visible = false; };
    fscommand("MeowLog", "hello from the movie");
  </script></frame>
</movie>
'''
DISC, GROUND = (0xF2, 0xA9, 0x3B), (0x49, 0x74, 0xBA)


def main():
    program_folder, swfc, scratch = sys.argv[1:4]
    status = under_virtual_display('800x600')
    if status is not None:
        return status
    folder = copy_program(program_folder, scratch)
    movie = os.path.join(scratch, 'Мой ролик.swf')
    compile_movie(swfc, MOVIE, movie)

    player = subprocess.Popen([os.path.join(folder, 'Zorvex'), movie])
    try:
        wait_for('the disc', lambda: count(DISC) > 10000)
        # A disc of radius 60 on 320 x 240: the movie is shown at its own size, not scaled.
        assert 10500 < count(DISC) < 11500, count(DISC)
        assert count(GROUND) > 320 * 240 - 11500 - 600, count(GROUND)
        disc = spots(DISC)
        click(*disc[len(disc) // 2])
        wait_for('the click to reach the movie', lambda: count(DISC) == 0)
        player.terminate()
        assert player.wait(20) == 0, player.returncode
    finally:
        player.kill()

    log = journal(folder)
    for line in (' :: Start Up<br>\r\n', ' :: Form Load<br>\r\n', ' :: LoadFlash (\r\n', 'Compressed File<br>\r\n',
                 'Ok<br>\r\n', 'Media debug :: hello from the movie<br>\r\n', '<B>Quit: Query Unload by '):
        assert line in log, (line, log)
    print('The program plays, listens and keeps its journal.')
    return 0


if __name__ == '__main__':
    sys.exit(main())
