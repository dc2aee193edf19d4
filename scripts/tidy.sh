#!/usr/bin/env bash
# tidy.sh [FILE…]: builds everything with clang, warnings as errors, and runs clang-tidy over the library and the tools, or
# over the named files alone.
set -euo pipefail
cd "$(dirname "$0")/.."
build=build/tidy
jobs=$(nproc)
mkdir -p "$build"
run() { "$@" >"$build/tidy.log" 2>&1 || { grep -E -m 20 'error:|warning:' "$build/tidy.log" || tail -n 30 "$build/tidy.log"; return 1; }; }
run cmake --preset tidy
run cmake --build "$build" -j "$jobs"
echo "clang built everything without a warning"
if (($# == 0)); then
    mapfile -t files < <(git ls-files 'core/*.cpp' 'convmap/*.cpp' 'chars/*.cpp' 'conversion/*.cpp' 'collation/*.cpp' \
        'strings/*.cpp' 'tools/*.cpp')
else
    files=("$@")
fi
printf '%s\0' "${files[@]}" | xargs -0 -n 1 -P "$jobs" clang-tidy -p "$build" --quiet 2>/dev/null
echo "clang-tidy has nothing to say about ${#files[@]} files"
