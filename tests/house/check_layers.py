#!/usr/bin/env python3
"""Checks that every include in src/ goes down a floor and that the engines are entered by their front doors.

  check_layers.py SRC      exit status 1 and a line for each offence
"""
import pathlib
import re
import sys

# Ground floor first. A room may include itself and rooms named before it, except where BARRED says no.
FLOORS = ['base', 'flash/codec', 'flash/swf', 'flash/video', 'flash/render', 'flash/stage', 'flash/avm1', 'flash/sound', 'flash/net', 'flash',
          'script', 'platform', 'core', 'media', 'settings', 'skin', 'browser', 'ui', 'player',
          'app']
# What the player's rooms may include of the two engines.
DOORS = {'flash/FlashControl.h', 'flash/Engine.h', 'script/ScriptControl.h', 'script/Dispatch.h',
         'script/QtDispatch.h'}
INCLUDE = re.compile(r'^\s*#\s*include\s+"([^"]+)"')


def room_of(path):
    parts = pathlib.PurePosixPath(path).parts[:-1]
    for length in range(len(parts), 0, -1):
        name = '/'.join(parts[:length])
        if name in FLOORS:
            return name
    return None


def engine_of(room):
    return room.split('/')[0] if room.split('/')[0] in ('flash', 'script') else None


def offences(src):
    for path in sorted(src.rglob('*')):
        if path.suffix not in ('.cpp', '.h'):
            continue
        own = path.relative_to(src).as_posix()
        room = room_of(own)
        if room is None:
            yield '%s: lies in no room of the house' % own
            continue
        for number, line in enumerate(path.read_text(encoding='utf-8').splitlines(), 1):
            found = INCLUDE.match(line)
            if not found:
                continue
            target = found.group(1)
            if not (src / target).exists():
                if '/' in target:
                    yield '%s:%d: no such header: %s' % (own, number, target)
                continue
            other = room_of(target)
            engine = engine_of(other)
            if FLOORS.index(other) > FLOORS.index(room):
                yield '%s:%d: goes up to %s' % (own, number, target)
            elif engine and engine != engine_of(room) and target not in DOORS:
                yield '%s:%d: enters an engine by the side: %s' % (own, number, target)
            elif engine_of(room) and other not in ('base',) and engine != engine_of(room):
                yield '%s:%d: an engine knows nothing of %s' % (own, number, other)


def main():
    found = list(offences(pathlib.Path(sys.argv[1])))
    print('\n'.join(found) if found else 'All includes go down.')
    return 1 if found else 0


if __name__ == '__main__':
    sys.exit(main())
