#!/usr/bin/env bash
# Installs what is missing, builds, and runs every test.
#   ./test.sh [--sanitize] [CTEST-ARGUMENT ...]
# --sanitize: the same tests, built with AddressSanitizer and UndefinedBehaviorSanitizer, and those of movies
#             once more with the scripts' garbage collected at every chance.
set -euo pipefail
cd "$(dirname "$(readlink -f "$0")")"

preset=release
if [ "${1:-}" = "--sanitize" ]; then
    preset=debug
    shift
fi
./build.sh --preset "$preset"
if [ "$preset" = release ]; then
    set -- -LE collect-always "$@"
fi
ctest --preset "$preset" -j2 "$@"
