#!/usr/bin/env bash
# format.sh          lays out every C and C++ file of the project
# format.sh --check  names the files whose layout differs, and changes nothing
set -euo pipefail
cd "$(dirname "$0")/.."
mapfile -t files < <(git ls-files '*.cpp' '*.hpp' '*.c' '*.h')
if [[ ${1-} != --check ]]; then
    clang-format -i "${files[@]}"
    exit
fi
mapfile -t odd < <(clang-format --dry-run "${files[@]}" 2>&1 | sed -n 's/^\([^:]*\):[0-9]*:[0-9]*: warning.*/\1/p' | sort -u)
if ((${#odd[@]} != 0)); then
    printf '%s\n' "${odd[@]}" "scripts/format.sh lays these ${#odd[@]} files out."
    exit 1
fi
echo "${#files[@]} files are laid out as .clang-format says"
