#!/usr/bin/env python3
"""Checks that every include in src/ goes down a layer and that the engines are entered by their public headers.

  check_layers.py SRC      exit status 1 and a line for each offence
"""
import pathlib
import re
import sys

# Lowest first. A module may include itself and modules named before it.
LAYERS = ['base', 'flash/guard', 'flash/codec', 'flash/swf', 'flash/video', 'flash/render', 'flash/stage', 'flash/net', 'flash/vm', 'flash/avm1/interpreter',
          'flash/avm1/classes', 'flash/avm1/bindings', 'flash/avm2/abc', 'flash/avm2/interpreter', 'flash/avm2/classes',
          'flash/avm2/bindings', 'flash/sound', 'flash',
          'script', 'platform', 'core', 'media', 'settings', 'skin', 'browser', 'export', 'ui', 'player',
          'app']
# What the player's modules may include of the two engines.
ENTRIES = {'flash/FlashControl.h', 'flash/Engine.h', 'flash/Film.h', 'flash/InputRecorder.h', 'flash/control/Confinement.h', 'flash/control/FileBroker.h',
           'script/ScriptControl.h', 'script/Dispatch.h',
         'script/QtDispatch.h'}
INCLUDE = re.compile(r'^\s*#\s*include\s+"([^"]+)"')


def module_of(path):
    parts = pathlib.PurePosixPath(path).parts[:-1]
    for length in range(len(parts), 0, -1):
        name = '/'.join(parts[:length])
        if name in LAYERS:
            return name
    return None


def engine_of(module):
    return module.split('/')[0] if module.split('/')[0] in ('flash', 'script') else None


def offences(src):
    for path in sorted(src.rglob('*')):
        if path.suffix not in ('.cpp', '.h'):
            continue
        own = path.relative_to(src).as_posix()
        module = module_of(own)
        if module is None:
            yield '%s: lies in no module' % own
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
            other = module_of(target)
            engine = engine_of(other)
            if LAYERS.index(other) > LAYERS.index(module):
                yield '%s:%d: goes up to %s' % (own, number, target)
            elif engine and engine != engine_of(module) and target not in ENTRIES:
                yield '%s:%d: enters an engine by the side: %s' % (own, number, target)
            elif engine_of(module) and other not in ('base',) and engine != engine_of(module):
                yield '%s:%d: an engine knows nothing of %s' % (own, number, other)


def main():
    found = list(offences(pathlib.Path(sys.argv[1])))
    print('\n'.join(found) if found else 'All includes go down.')
    return 1 if found else 0


if __name__ == '__main__':
    sys.exit(main())
