#!/usr/bin/env bash
# format.sh          lays out every C and C++ file of the project
# format.sh --check  names the files whose layout differs, and changes nothing
set -euo pipefail
cd "$(dirname "$0")/.."
mode=(-i)
[[ ${1-} == --check ]] && mode=(--dry-run -Werror)
git ls-files -z '*.cpp' '*.hpp' '*.c' '*.h' | xargs -0 -r clang-format "${mode[@]}"
