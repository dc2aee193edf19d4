#!/usr/bin/env python3
"""Has the compiler read one source as a build would compile it, and make nothing of it.

    clang_reads.py COMPILE_COMMANDS_JSON SOURCE

A source that isn't part of the build passes: it is a program of its own (tests/install), or data of a test. What the
compiler says goes to the standard output.
"""
import json
import shlex
import subprocess
import sys
from pathlib import Path


def command_for(database, source):
    wanted = str(Path(source).resolve())
    for entry in json.loads(Path(database).read_text(encoding="utf-8")):
        if entry["file"] == wanted:
            return entry["directory"], shlex.split(entry["command"])
    return None


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    found = command_for(*sys.argv[1:])
    if found is None:
        return 0
    directory, words = found
    output = words.index("-o")
    words = [word for word in words[:output] + words[output + 2:] if word != "ccache" and not word.endswith("/ccache")]
    return subprocess.run([*words, "-fsyntax-only"], cwd=directory, stderr=subprocess.STDOUT, check=False).returncode


if __name__ == "__main__":
    sys.exit(main())
