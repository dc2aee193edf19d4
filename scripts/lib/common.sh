# shellcheck shell=bash
# Shared by scripts/demo and scripts/check: Debian packages, headings, timing, the number of jobs.

# need_packages NAME…: installs those of the Debian packages that are missing; touches nothing when none is.
need_packages() {
    local missing=() name
    for name in "$@"; do
        [[ $(dpkg-query -W -f='${db:Status-Status}' "$name" 2>/dev/null) == installed ]] || missing+=("$name")
    done
    if ((${#missing[@]} == 0)); then
        echo "Nothing to install: all ${#} packages are here."
        return
    fi
    echo "Installing ${missing[*]}"
    local as_root=()
    if ((EUID != 0)); then
        command -v sudo >/dev/null || {
            echo "Installing needs root or sudo. As root: apt-get install ${missing[*]}" >&2
            return 1
        }
        as_root=(sudo)
    fi
    "${as_root[@]}" apt-get update -q </dev/null >/dev/null
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -q -y --no-install-recommends "${missing[@]}" \
        </dev/null >"$LOG_DIR/apt.log" 2>&1 || {
        tail -n 20 "$LOG_DIR/apt.log" >&2
        return 1
    }
}

# What each of the two commands needs. README tells what each package is for.
BUILD_PACKAGES=(g++ make cmake libicu-dev libcli11-dev)
CHECK_PACKAGES=("${BUILD_PACKAGES[@]}" libgtest-dev libbenchmark-dev libsqlite3-dev sqlite3 clang libclang-rt-14-dev clang-format clang-tidy
    python3 pkg-config binutils locales git default-jdk-headless junit5 netbase)

# The parallel jobs of a build: one for each core.
jobs_of_build() { nproc; }

# heading TEXT: a line that stands out, on a terminal in bold.
heading() {
    if [[ -t 1 ]]; then printf '\n\033[1m== %s ==\033[0m\n' "$*"; else printf '\n== %s ==\n' "$*"; fi
}

# seconds_since START: with START from $SECONDS, as minutes and seconds.
seconds_since() { printf '%d:%02d' $(((SECONDS - $1) / 60)) $(((SECONDS - $1) % 60)); }

# Compiler output is kept when ccache is there; it is never needed.
if command -v ccache >/dev/null; then
    export CMAKE_C_COMPILER_LAUNCHER=${CMAKE_C_COMPILER_LAUNCHER-ccache}
    export CMAKE_CXX_COMPILER_LAUNCHER=${CMAKE_CXX_COMPILER_LAUNCHER-ccache}
fi
