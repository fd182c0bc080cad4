#!/usr/bin/env bash
# Builds the fuzz targets and runs each of them for a while.
#   fuzz/run.sh [-j N] [-o FOLDER] TIME [TARGET ...]
# TIME is that of each target: seconds, or with a unit, 20m. -j: so many targets side by side (default 1). What a target
# finds and its log are left in FOLDER (default build-fuzz/found), what it learnt in build-fuzz/corpus; the seeds in
# fuzz/corpus are only read. Without targets: all. Exit status: 0, or 1 when something was found.
set -euo pipefail
here=$(dirname "$(readlink -f "$0")")
root=$(dirname "$here")
build=$root/build-fuzz
jobs=1 out=$build/found
usage() { sed -n '2,7s/^# \{0,1\}//p' "$0" >&2; exit 2; }
while getopts j:o: option; do
    case $option in
        j) jobs=$OPTARG ;;
        o) mkdir -p "$OPTARG"; out=$(readlink -f "$OPTARG") ;;
        *) usage ;;
    esac
done
shift $((OPTIND - 1))
[ $# -ge 1 ] || usage
case $1 in
    *h) seconds=$((${1%h} * 3600)) ;;
    *m) seconds=$((${1%m} * 60)) ;;
    *) seconds=$((${1%s})) ;;
esac
shift

if [ $# -gt 0 ]; then "$root/build.sh" --preset fuzz "$@"; else "$root/build.sh" --preset fuzz fuzzers; fi
if [ $# -eq 0 ]; then
    mapfile -t targets < <(find "$build/fuzz" -maxdepth 1 -name 'Fuzz*' -executable -type f -printf '%f\n' | sort)
else
    targets=("$@")
fi
mkdir -p "$out"

# One target; prints one line. What a run may cost: an input of 64 kB, 10 s and 2 GB.
run_one() {
    local target=$1 learnt=$build/corpus/$1 dictionary=() status=0
    mkdir -p "$learnt" "$here/corpus/$target"
    [ ! -e "$here/$target.dict" ] || dictionary=("-dict=$here/$target.dict")
    # Parts of the libraries that are opened at run time stay loaded, which is no leak of ours.
    LSAN_OPTIONS=suppressions=$root/tests/lsan.supp \
        "$build/fuzz/$target" "$learnt" "$here/corpus/$target" "-max_total_time=$seconds" -timeout=10 \
        -rss_limit_mb=2048 -max_len=65536 "${dictionary[@]}" -print_final_stats=1 "-artifact_prefix=$out/$target-" \
        >"$out/$target.log" 2>&1 || status=$?
    local runs
    runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$out/$target.log")
    if [ "$status" -eq 0 ]; then
        echo "$target: ${runs:-?} inputs in $seconds s, nothing found"
    else
        echo "$target: FOUND something after ${runs:-?} inputs: $(grep -m1 -E 'SUMMARY|ERROR|runtime error' "$out/$target.log") ($out/$target.log)"
    fi
    return "$status"
}
export -f run_one
export here root build out seconds
status=0
printf '%s\n' "${targets[@]}" | xargs -P "$jobs" -I{} bash -c 'run_one {}' || status=1
exit $status
