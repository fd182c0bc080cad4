#!/usr/bin/env python3
"""Sets the clock of the running program an hour forward and back, and stops its processes for a while as a machine that
sleeps does. The movie plays on at its own pace: nothing hangs, and nothing is made up for in a rush.

  survives_clocks.py PROGRAM_FOLDER SWFC SCRATCH_FOLDER CLOCK_SHIM     exit status 77: no virtual display to be had
"""
import os
import re
import signal
import struct
import sys
import time

from screen import compile_movie, copy_program, journal, under_virtual_display, wait_for
from survives_faults import Program, titles

RATE = 20
MOVIE = '''<movie version="7" width="320" height="240" rate="%d" background="#4974BA">
  <frame><script>
    var n = 0;
    this.onEnterFrame = function () {
      if (++n %% 4 == 0) fscommand("MeowLog", "tick " + n + " at " + getTimer());
    };
    var beats = 0;
    setInterval(function () { if (++beats %% 10 == 0) fscommand("MeowLog", "beat " + beats); }, 100);
  </script></frame>
</movie>
''' % RATE
HOUR, STILL = 3600, 4
# A machine that does other things as well may be slower, and the journal comes in pieces.
LEAST_SHARE, SLACK_FRAMES = 0.3, 16
# A pause is made up for by so many frames at most.
MADE_UP = 8


def last(folder, word):
    told = re.findall(r'Media debug :: %s (\d+)' % word, journal(folder))
    return int(told[-1]) if told else 0


def keeps_pace(folder, seconds, made_up=0):
    begin, before, beats = time.monotonic(), last(folder, 'tick'), last(folder, 'beat')
    time.sleep(seconds)
    frames, took = last(folder, 'tick') - before, time.monotonic() - begin
    beaten = last(folder, 'beat') - beats
    assert frames >= RATE * seconds * LEAST_SHARE, 'only %d frames in %.1f s' % (frames, took)
    assert frames <= RATE * took + SLACK_FRAMES + made_up, '%d frames in %.1f s' % (frames, took)
    assert beaten <= 10 * took + SLACK_FRAMES + made_up, '%d beats in %.1f s' % (beaten, took)
    return frames


def processes(program):
    """The player, then the process of its movie where it has one."""
    own = program.process.pid
    with open('/proc/%d/task/%d/children' % (own, own), encoding='ascii') as handle:
        children = [int(pid) for pid in handle.read().split()]
    # The last one that was started waits for the next movie; all of them sleep when a machine does.
    return [own] + children


def stop(pids):
    for pid in pids:
        os.kill(pid, signal.SIGSTOP)
    time.sleep(STILL)
    for pid in pids:
        os.kill(pid, signal.SIGCONT)


def main():
    program_folder, swfc, scratch, shim = sys.argv[1:5]
    status = under_virtual_display('800x600')
    if status is not None:
        return status
    movie, offset = os.path.join(scratch, 'movie.swf'), os.path.join(scratch, 'offset')
    compile_movie(swfc, MOVIE, movie)
    folder = copy_program(program_folder, scratch)

    def set_clock(seconds):
        with open(offset, 'r+b' if os.path.exists(offset) else 'wb') as handle:
            handle.write(struct.pack('q', seconds))

    set_clock(0)
    os.environ.update(LD_PRELOAD=shim, CLOCK_SHIM_FILE=offset)
    # A sanitizer's own library wants to be the first.
    os.environ['ASAN_OPTIONS'] = 'verify_asan_link_order=0'
    with Program(folder, movie) as program:
        # Only the player and its movie have the shim.
        del os.environ['LD_PRELOAD']
        wait_for('the movie to play', lambda: last(folder, 'tick') > 8)
        print('plays: %d frames in 2 s' % keeps_pace(folder, 2))
        for what, seconds in (('an hour on', HOUR), ('an hour back', -HOUR), ('right again', 0)):
            set_clock(seconds)
            print('%s: %d frames in 2 s' % (what, keeps_pace(folder, 2)))
        assert [title for title in titles() if 'Ошибка' in title] == [], titles()

        everyone = processes(program)
        stop(everyone)
        print('all stood still: %d frames in 2 s' % keeps_pace(folder, 2, MADE_UP))
        if len(everyone) > 1:
            stop(everyone[1:])
            print('the movie stood still: %d frames in 2 s' % keeps_pace(folder, 2, MADE_UP))
        # While the player alone stands still its movie plays on, and what it said comes all at once.
        stop(everyone[:1])
        time.sleep(1.5)
        print('the player stood still: %d frames in 2 s' % keeps_pace(folder, 2, MADE_UP))
        program.end()
    assert 'Quit: Query Unload by' in journal(folder)
    return 0


if __name__ == '__main__':
    sys.exit(main())
