"""The table of charsets in README.md against the library's names and the descriptions in data/.

Every canonical name stands in the table or among those left out; a name in the table has a description, whose source is
what the table says; a name left out has none.
"""
import re
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent.parent
SOURCES = {"iconv": "glibc", "icu": "ICU", None: "by rule"}


def described(name):
    """Where a description takes its rows from; "missing" without one."""
    path = ROOT / "data" / "charsets" / f"{name}.txt"
    if not path.exists():
        return "missing"
    source = re.search(r"^source\s+(\w+)", path.read_text(encoding="utf-8"), re.M)
    return SOURCES[source.group(1) if source else None]


def main():
    section = (ROOT / "README.md").read_text(encoding="utf-8").split("\n## Charsets\n")[1].split("\n## ")[0]
    rows = re.findall(r"^\| (`.*?) \| (.*?) \| (.*?) \|$", section, re.M)
    table = {name: source for names, _, source in rows for name in re.findall(r"`([^`]+)`", names)}
    left_out = set(re.findall(r"`(\d{3})`", section.split("Left out are")[1].split(":")[0]))
    code = (ROOT / "strings" / "charset_names.cpp").read_text(encoding="utf-8")
    canonical = set(re.findall(r'"([^"]+)"', code.split("zelCharset[]")[1].split("}")[0]))

    faults = [f"{name} is missing in the table" for name in sorted(canonical - set(table) - left_out)]
    faults += [f"{name} is no name of the library" for name in sorted((set(table) | left_out) - canonical)]
    faults += [f"{name}: the table says {source}, its description {described(name)}"
               for name, source in table.items() if not source.startswith(described(name))]
    faults += [f"{name} is said to be left out, but has a description" for name in left_out if described(name) != "missing"]
    for told, found in ((r"(\d+) of the", len(table)), (r"of the (\d+) names", len(canonical))):
        if int(re.search(told, section).group(1)) != found:
            faults.append(f"the text says {re.search(told, section).group(0)}, there are {found}")
    print("\n".join(faults) if faults else f"{len(table)} charsets as the table says, {len(left_out)} left out")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
