#!/usr/bin/env bash
# Installs what is missing (Debian packages) and builds.
#   ./build.sh [--preset release|debug|fuzz] [TARGET ...]
# The release preset leaves the program in build/Zorvex/ and the tools in build/bin/.
set -euo pipefail
cd "$(dirname "$(readlink -f "$0")")"

preset=release
if [ "${1:-}" = "--preset" ]; then
    preset=${2:?--preset needs a name: release, debug or fuzz}
    shift 2
fi

wanted_packages() {
    grep -v -e '^#' -e '^$' packages.txt
    if [ "$preset" = fuzz ]; then printf '%s\n' clang-14 libclang-rt-14-dev; fi
}

# The names of all that is installed, one a line: of the packages and of what they provide.
installed_names() {
    dpkg-query -W -f='${db:Status-Status},${Package},${Provides}\n' |
        sed -n 's/^installed,//p' | tr ',' '\n' | sed 's/^ *//; s/[ :].*//'
}

install_missing() {
    local missing
    mapfile -t missing < <(wanted_packages | grep -vxF -f <(installed_names))
    [ ${#missing[@]} -eq 0 ] && return
    echo "Installing: ${missing[*]}"
    local as_root=() command="apt-get install --no-install-recommends ${missing[*]}"
    if [ "$(id -u)" -ne 0 ]; then
        if ! command -v sudo >/dev/null; then
            printf 'These packages are missing, and only root may install them. As root:\n    %s\n' "$command" >&2
            exit 1
        fi
        as_root=(sudo)
    fi
    if ! "${as_root[@]}" apt-get update -qq ||
        ! "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
            apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null; then
        printf 'The packages could not be installed (no network, or no right to?). By hand, as root:\n    %s\n' \
            "$command" >&2
        exit 1
    fi
}

if command -v dpkg-query >/dev/null && command -v apt-get >/dev/null; then
    install_missing
else
    echo "This is no Debian system; the packages of packages.txt (or their like) are taken to be there." >&2
fi

build_dir=build
[ "$preset" = release ] || build_dir=build-$preset
cmake --preset "$preset" --log-level=WARNING
cmake --build "$build_dir" ${1:+--target "$@"}
