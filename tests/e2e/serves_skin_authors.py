#!/usr/bin/env python3
"""Works on a skin as its author does: writes it into its folder, sees it, changes it, reloads it by a key, makes a
mistake, is told where, and mends it.

  serves_skin_authors.py PROGRAM_FOLDER SWFC SCRATCH_FOLDER     exit status 77: something is missing here
"""
import os
import re
import shutil
import subprocess
import sys

from screen import compile_movie, copy_program, count, under_virtual_display, wait_for, windows_of

MOVIE = '''<movie version="7" width="480" height="320" rate="20" background="#101010"><frame duration="10"/></movie>'''
SKIN = '''<?xml version="1.0" encoding="utf-8"?>
<THEME scriptFile="mine.vbs" minWidth="240" minHeight="160">
  <VIEW name="viewNormal" onResize="Place" onInfoUpdate="info.Caption = Player.StatusText">
    <SUBVIEW name="bar" top="Player.ScaleHeight - 32" width="Player.ScaleWidth" height="32">
      <LABEL name="info" left="96" top="6" width="bar.Width - 104" foreColor="#FFEEEE"/>
    </SUBVIEW>
  </VIEW>
  <VIEW name="viewFullScreen"/>
</THEME>
'''
# The colour shows that the documented names are there; black would say that they are not.
SCRIPT = '''Sub onLoad
    bar.BackColor = RGB(0, 0, 0)
    If TypeName(bar) <> "PictureBox" Or TypeName(info) <> "Label" Then Exit Sub
    If Len(Player.mnuQLvl(0).Caption) = 0 Then Exit Sub
    bar.BackColor = RGB(%d, %d, %d)
End Sub
Sub Place
    SWF.Move 0, 0, Player.ScaleWidth, Player.ScaleHeight - bar.Height
End Sub
%s
'''
FIRST, SECOND, THIRD = (200, 0, 160), (0, 160, 200), (160, 200, 0)
MISTAKES = 'Ошибки шкурки'


def main():
    program_folder, swfc, scratch = sys.argv[1:4]
    if not all(shutil.which(tool) for tool in ('openbox', 'wmctrl')):
        print('needs openbox and wmctrl')
        return 77
    status = under_virtual_display('900x700')
    if status is not None:
        return status
    folder, movie = copy_program(program_folder, scratch), os.path.join(scratch, 'skinned.swf')
    compile_movie(swfc, MOVIE, movie)
    skin = os.path.join(folder, 'media/skins/mine')
    os.makedirs(skin)

    def write(colour, more=''):
        with open(os.path.join(skin, 'mine.vbs'), 'w', encoding='utf-8') as handle:
            handle.write(SCRIPT % (colour + (more,)))

    with open(os.path.join(skin, 'skin.xml'), 'w', encoding='utf-8') as handle:
        handle.write(SKIN)
    write(FIRST)
    settings = os.path.join(folder, 'settings.xml')
    with open(settings, encoding='cp1251') as handle:
        text = handle.read()
    with open(settings, 'w', encoding='cp1251') as handle:
        handle.write(re.sub(r'skin="[^"]*"', 'skin="mine"', text))
    manager = subprocess.Popen(['openbox', '--sm-disable'], stderr=subprocess.DEVNULL)
    wait_for('the window manager',
             lambda: subprocess.run(['wmctrl', '-m'], check=False, capture_output=True).stdout)
    player = subprocess.Popen([os.path.join(folder, 'Zorvex'), movie])

    def titles():
        return [title for _, _, title in windows_of('Zorvex').values()]

    def reload_skin():
        window = next(window for window, (_, _, title) in windows_of('Zorvex').items()
                      if title == 'Zorvex - skinned.swf')
        subprocess.run(['xdotool', 'windowactivate', '--sync', window, 'key', 'F5'], check=True)

    def is_shown(colour):
        return lambda: count(colour) > 480 * 20

    try:
        wait_for('the skin', is_shown(FIRST), 40)
        wait_for('the caption', lambda: 'Zorvex - skinned.swf' in titles())
        write(SECOND)
        reload_skin()
        wait_for('the skin as it was changed', is_shown(SECOND))
        assert MISTAKES not in titles()

        write(THIRD, 'Sub broken(\n')
        reload_skin()
        wait_for('the list of mistakes', lambda: MISTAKES in titles())
        subprocess.run(['import', '-window', 'root', os.path.join(scratch, 'mistakes.png')], check=False)
        window = next(window for window, (_, _, title) in windows_of('Zorvex').items() if title == MISTAKES)
        subprocess.run(['xdotool', 'windowactivate', '--sync', window, 'key', 'Escape'], check=True)
        wait_for('its end', lambda: MISTAKES not in titles())

        write(THIRD)
        reload_skin()
        wait_for('the skin as it was mended', is_shown(THIRD))
        assert MISTAKES not in titles()
        player.terminate()
        assert player.wait(20) == 0, player.returncode
    finally:
        player.kill()
        manager.terminate()
    print('Authors of skins are served.')
    return 0


if __name__ == '__main__':
    sys.exit(main())
