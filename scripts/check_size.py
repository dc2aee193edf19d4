#!/usr/bin/env python3
"""No file over 600 lines, no line of C or C++ over 120 columns; and how long the files and the functions are.

    check_size.py             complains about files over the ceiling, and about lines over the margin, which clang-format
                              leaves alone in comments
    check_size.py --report    also prints the longest files and functions, and the share of test lines
"""
import argparse
import re
import statistics
import subprocess
import sys
from pathlib import Path

CEILING, MARGIN = 600, 120
ROOT = Path(__file__).resolve().parent.parent
CODE = (".cpp", ".hpp", ".c", ".h")
COUNTED = CODE + (".py", ".sh", ".cmake")
OPENS = re.compile(r"\)\s*(const|noexcept|override|final|->[^{;]*|\s)*\{$")  # the last line of a function's head


def files():
    names = subprocess.run(["git", "ls-files"], cwd=ROOT, stdout=subprocess.PIPE, check=True).stdout.decode().split("\n")
    return [ROOT / name for name in names if name.endswith(COUNTED) and (ROOT / name).is_file()]


def functions(path):
    """(lines, name) of each function of a file laid out by clang-format: its closing brace stands under its first line."""
    lines = path.read_text(encoding="utf-8").splitlines()
    start = None
    for number, line in enumerate(lines):
        stripped = line.strip()
        if start is None and OPENS.search(stripped) and not re.match(r"(if|for|while|switch|do|else|})\b", stripped):
            first = number
            while first > 0 and indent(lines[first]) and (
                    lines[first].lstrip().startswith(":") or lines[first - 1].rstrip().endswith((",", "("))):
                first -= 1
            start, margin = first, indent(lines[first])
        elif start is not None and line.rstrip() in (margin + "}", margin + "};"):
            name = re.search(r"([~\w:]+)\s*\(", lines[start])
            yield number - start + 1, f"{path.relative_to(ROOT)}:{start + 1} {name.group(1) if name else '?'}"
            start = None


def indent(line):
    return line[:len(line) - len(line.lstrip())]


def report(sizes):
    code = {path: size for path, size in sizes.items() if path.suffix in CODE}
    tests = sum(size for path, size in code.items() if path.relative_to(ROOT).parts[0] in ("tests", "fuzz"))
    print(f"{len(code)} C and C++ files, {sum(code.values())} lines, {tests} of them in tests and fuzz targets"
          f" ({100 * tests / max(1, sum(code.values())):.0f} %)")
    for path, size in sorted(code.items(), key=lambda item: -item[1])[:8]:
        print(f"  {size:4} {path.relative_to(ROOT)}")
    product = [path for path in code if path.relative_to(ROOT).parts[0] not in ("tests", "fuzz", "bench")]
    found = sorted((entry for path in product for entry in functions(path)), reverse=True)
    if found:
        lengths = [length for length, _ in found]
        under = sum(1 for length in lengths if length <= 30)
        print(f"{len(found)} functions of several lines: median {statistics.median(lengths):.0f}, "
              f"{100 * under / len(found):.0f} % of at most 30 lines; the longest:")
        for length, name in found[:8]:
            print(f"  {length:4} {name}")


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--report", action="store_true")
    args = parser.parse_args()
    sizes = {path: len(path.read_bytes().splitlines()) for path in files()}
    if args.report:
        report(sizes)
    long = [f"{path.relative_to(ROOT)}: {size} lines, more than {CEILING}" for path, size in sizes.items() if size > CEILING]
    for path in (path for path in sizes if path.suffix in CODE):
        for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
            if len(line) > MARGIN:
                long.append(f"{path.relative_to(ROOT)}:{number}: {len(line)} columns, more than {MARGIN}")
    print("\n".join(long) if long else f"{len(sizes)} files, none over {CEILING} lines, no line over {MARGIN} columns")
    return 1 if long else 0


if __name__ == "__main__":
    sys.exit(main())
