#!/usr/bin/env bash
# abidiff.sh OLD_LIBNLS NEW_LIBNLS: what changed for programs between two builds of libnls.so with debugging information
# (preset dev). For a release; installs abigail-tools if they are missing. Ends with abidiff's own exit status.
set -euo pipefail
if (($# != 2)); then
    sed -n '2,3s/^# //p' "$0" >&2
    exit 2
fi
cd "$(dirname "$0")/.."
LOG_DIR=$(mktemp -d)
# shellcheck source=scripts/lib/common.sh
source scripts/lib/common.sh
need_packages abigail-tools
abidiff --no-added-syms --headers-dir1 include --headers-dir2 include "$1" "$2" && echo "Nothing changed for programs"
