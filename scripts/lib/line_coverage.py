"""Lines that the tests ran, from gcov's own reports: line_coverage.py BUILD_FOLDER."""
import json
import subprocess
import sys
from collections import defaultdict
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent.parent
LIBRARY = ("core/", "convmap/", "chars/", "conversion/", "collation/", "strings/")


def counts(build):
    """File of the library -> line -> how often it ran, over all objects that hold it."""
    lines = defaultdict(lambda: defaultdict(int))
    notes = [str(path) for path in Path(build).resolve().rglob("*.gcno") if path.with_suffix(".gcda").exists()]
    for start in range(0, len(notes), 50):
        run = subprocess.run(["gcov", "--json-format", "--stdout", *notes[start:start + 50]], cwd=build,
                             stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, check=True)
        for text in run.stdout.decode().splitlines():
            report = json.loads(text) if text.startswith("{") else {"files": []}
            for file in report["files"]:
                path = Path(report["current_working_directory"], file["file"]).resolve()  # ccache writes "../.."
                name = str(path.relative_to(ROOT)) if path.is_relative_to(ROOT) else str(path)
                if name.startswith(LIBRARY):
                    for line in file["lines"]:
                        lines[name][line["line_number"]] += line["count"]
    return lines


def main():
    folders, missing = defaultdict(lambda: [0, 0]), []
    for name, lines in counts(sys.argv[1]).items():
        ran = sum(1 for count in lines.values() if count)
        for key in (name.split("/")[0], "all of it"):
            folders[key][0] += ran
            folders[key][1] += len(lines)
        missing.append((len(lines) - ran, name))
    for folder, (ran, total) in sorted(folders.items()):
        print(f"{folder:12} {ran:6} of {total:6} lines, {100 * ran / max(1, total):5.1f} %")
    for count, name in sorted(missing, reverse=True)[:10]:
        if count:
            print(f"  {count:4} lines not run in {name}")


main()
