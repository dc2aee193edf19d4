#!/usr/bin/env bash
# tidy.sh [FILE…]: has clang read every source, warnings as errors, and clang-tidy those of the library and the tools; or
# clang-tidy read the named files alone. Nothing is built.
set -euo pipefail
cd "$(dirname "$0")/.."
build=build/tidy
jobs=$(nproc)
mkdir -p "$build"
cmake --preset tidy >"$build/tidy.log" 2>&1 || { tail -n 30 "$build/tidy.log"; exit 1; }

# in_parallel COMMAND…: over the file names of the standard input. clang-tidy tells warnings of the compiler as well.
in_parallel() { tr '\n' '\0' | xargs -0 -r -n 1 -P "$jobs" "$@" 2>>"$build/tidy.log"; }
tidy() { in_parallel clang-tidy -p "$build" --quiet; }

if (($# != 0)); then
    printf '%s\n' "$@" | tidy
    exit
fi
mapfile -t own < <(git ls-files 'core/*.cpp' 'convmap/*.cpp' 'chars/*.cpp' 'conversion/*.cpp' 'collation/*.cpp' \
    'icu/*.cpp' 'strings/*.cpp' 'jni/*.cpp' 'jutil/*.cpp' 'tools/*.cpp' 'integrations/*.cpp')
bad=0
printf '%s\n' "${own[@]}" | tidy &&
    echo "clang and clang-tidy have nothing to say about ${#own[@]} files of the library and the tools" || bad=1
mapfile -t others < <(git ls-files 'tests/*.c' 'tests/*.cpp' 'bench/*.cpp' 'fuzz/*.cpp')
printf '%s\n' "${others[@]}" | in_parallel python3 scripts/clang_reads.py "$build/compile_commands.json" &&
    echo "clang has nothing to say about ${#others[@]} files of tests, benchmarks and fuzz targets" || bad=1
exit $bad
