#!/usr/bin/env bash
# Installs what is missing, builds, and plays a movie.
#   ./run.sh [MOVIE.swf]        without a movie: the bundled film
# Without a display a virtual one is started; the program plays there for a few seconds and a screenshot is left
# in build/screenshot.png.
set -euo pipefail
here=$(dirname "$(readlink -f "$0")")

movie=${1:-}
if [ -n "$movie" ] && [ -e "$movie" ]; then movie=$(readlink -f "$movie"); fi

"$here/build.sh" program
program=$here/build/Zorvex/Zorvex
movie=${movie:-$here/build/Zorvex/media/samples/film.swf}

if [ -n "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ]; then
    exec "$program" "$movie"
fi

echo "No display: playing on a virtual one."
shot=$here/build/screenshot.png
export program movie shot
xvfb-run -a -s "-screen 0 1280x960x24" bash -c '
    "$program" "$movie" &
    player=$!
    sleep "${ZORVEX_SHOT_DELAY:-5}"
    import -window root "$shot"
    kill -TERM "$player" 2>/dev/null
    wait "$player" || true'
echo "Screenshot: $shot"
