#!/usr/bin/env python3
"""Reads built programs for what makes a fault of memory hard to use.

  hardening.py PROGRAM ...     exit status 1: what is missing is printed; 77: no readelf
"""
import platform
import re
import shutil
import subprocess
import sys

READELF = ['readelf', '--wide']
# What every unit has to be compiled with, as far as the compiler knows it for this processor.
COMPILED_WITH = ['-fstack-protector-strong', '-O2']
if platform.machine() == 'x86_64':
    COMPILED_WITH += ['-fstack-clash-protection', '-fcf-protection=full']


def read(program, *what):
    return subprocess.run([*READELF, *what, program], check=True, capture_output=True, text=True, errors='replace').stdout


def faults(program):
    header, segments, dynamic = read(program, '-h'), read(program, '-l'), read(program, '-d')
    if not re.search(r'Type:\s+DYN', header) or 'PIE' not in dynamic:
        yield 'is loaded at a fixed address (no PIE)'
    if 'GNU_RELRO' not in segments:
        yield 'keeps its relocations writable (no RELRO)'
    if not re.search(r'BIND_NOW|FLAGS_1.*\bNOW\b', dynamic):
        yield 'resolves names late (no BIND_NOW), so its table of functions stays writable'
    stack = re.search(r'GNU_STACK.*?\s([RWE ]{3})\s+0x', segments)
    if not stack or 'E' in stack.group(1):
        yield 'has an executable stack'
    if re.search(r'LOAD\s.*\sRWE\s', segments):
        yield 'has memory that is writable and executable'
    imports = read(program, '--dyn-syms')
    if '__stack_chk_fail' not in imports:
        yield 'has no stack protector'
    if not re.search(r'\b__\w+_chk\b', imports.replace('__stack_chk_fail', '')):
        yield 'has no checked functions of the C library (FORTIFY)'
    commands = set(re.findall(r'GNU C\+\+\d+ .*', read(program, '--string-dump=.debug_str')))
    if not commands:
        yield 'does not say how it was compiled'
    for command in sorted(commands):
        for flag in COMPILED_WITH:
            if not re.search(r'\s%s(\s|$)' % re.escape(flag), command):
                yield 'has a unit compiled without %s: %s' % (flag, command)


def main():
    if not shutil.which('readelf'):
        print('needs readelf')
        return 77
    found = ['%s %s' % (program, fault) for program in sys.argv[1:] for fault in faults(program)]
    print('\n'.join(found) or 'Hardened: ' + ', '.join(sys.argv[1:]))
    return 1 if found else 0


if __name__ == '__main__':
    sys.exit(main())
