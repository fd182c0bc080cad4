#!/usr/bin/env python3
"""What build.sh asks of the package tools: nothing when all is there, and a clear word to who may not install.

  commands.py PROJECT_FOLDER

The script runs as it stands, with stand-ins for the tools that it calls.
"""
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile


class Machine:
    """Stand-ins for a machine's tools, which note how they are called."""

    def __init__(self, folder, installed, user='1000', sudo='ok', apt='ok'):
        self.folder, self.calls = pathlib.Path(folder), pathlib.Path(folder) / 'calls'
        self.calls.touch()
        self.tool('dpkg-query', 'printf "%s"' % installed)
        self.tool('id', 'echo ' + user)
        self.tool('cmake', self.note('cmake'))
        self.tool('apt-get', self.note('apt-get') + ('\nexit 100' if apt == 'fails' else ''))
        if sudo == 'ok':
            self.tool('sudo', 'exec "$@"')
        # What the script needs besides; no sudo but ours.
        for name in ('bash', 'env', 'grep', 'sed', 'tr', 'dirname', 'readlink'):
            os.symlink(shutil.which(name), self.folder / name)

    def note(self, name):
        return 'echo "%s $*" >> %s' % (name, self.calls)

    def tool(self, name, body):
        path = self.folder / name
        path.write_text('#!/bin/sh\n%s\n' % body)
        path.chmod(0o755)

    def build(self, project):
        done = subprocess.run([project / 'build.sh', 'program'], check=False, text=True, stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT, env={'PATH': str(self.folder)})
        return done.returncode, done.stdout, self.calls.read_text()


def main():
    project = pathlib.Path(sys.argv[1])
    names = [line for line in (project / 'packages.txt').read_text().splitlines() if line and line[0] != '#']
    assert len(names) > 30, names
    # The last two are there under other packages' names only.
    rows = ['installed,%s,' % name for name in names[:-2]]
    rows.append('installed,other:amd64,%s, %s (= 1.2)' % tuple(names[-2:]))
    everything = '\\n'.join(rows) + '\\n'
    all_but_one = '\\n'.join(rows[1:] + ['config-files,%s,' % names[0]]) + '\\n'
    cases = (
        ('all is there', dict(installed=everything, sudo='none', apt='fails'), 0, '', ''),
        ('one was removed', dict(installed=all_but_one), 0, 'Installing: %s\n' % names[0],
         'install -y -qq --no-install-recommends %s\n' % names[0]),
        ('for root', dict(installed=all_but_one, user='0', sudo='none'), 0, '', 'apt-get install'),
        ('nobody may install', dict(installed=all_but_one, sudo='none'), 1,
         'As root:\n    apt-get install --no-install-recommends %s\n' % names[0], ''),
        ('no network', dict(installed=all_but_one, apt='fails'), 1, 'could not be installed', 'apt-get update'),
    )
    for name, machine, status, said, called in cases:
        with tempfile.TemporaryDirectory() as folder:
            found = Machine(folder, **machine).build(project)
        assert found[0] == status, (name, found)
        assert said in found[1], (name, found)
        assert called in found[2], (name, found)
        assert ('apt-get' in found[2]) == bool(called), (name, found)
        # It builds when, and only when, all is there.
        assert ('cmake --build build --target program' in found[2]) == (status == 0), (name, found)
    print('The commands ask for what is missing, and for nothing else.')
    return 0


if __name__ == '__main__':
    sys.exit(main())
