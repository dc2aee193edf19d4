#!/usr/bin/env bash
# coverage.sh: builds the coverage preset, runs the tests and prints, for each folder of the library, how many of its lines
# the tests run; then the ten files with the most lines that no test runs.
set -euo pipefail
cd "$(dirname "$0")/.."
jobs=$(nproc)
cmake --preset coverage >/dev/null
cmake --build build/coverage -j "$jobs" >/dev/null
find build/coverage -name '*.gcda' -delete
ctest --test-dir build/coverage -j "$jobs" >build/coverage/ctest.log || { tail -n 20 build/coverage/ctest.log; exit 1; }
grep 'tests passed' build/coverage/ctest.log
python3 scripts/lib/line_coverage.py build/coverage
