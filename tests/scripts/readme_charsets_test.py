"""The table of charsets in README.md against the library's names and the descriptions in data/.

Every canonical name stands in the table or among those without a conversion; a name in the table has a description, whose
source is what the table says; a name without a conversion is in no line "convert" of the list.
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
    left_out = set(re.findall(r"`(\d{3})`", section.split("Without a conversion are")[1].split(":")[0]))
    code = (ROOT / "strings" / "charset_names.cpp").read_text(encoding="utf-8")
    canonical = set(re.findall(r'"([^"]+)"', code.split("zelCharset[]")[1].split("}")[0]))

    faults = [f"{name} is missing in the table" for name in sorted(canonical - set(table) - left_out)]
    faults += [f"{name} is no name of the library" for name in sorted((set(table) | left_out) - canonical)]
    faults += [f"{name}: the table says {source}, its description {described(name)}"
               for name, source in table.items() if not source.startswith(described(name))]
    lines = (ROOT / "data" / "convmap.list").read_text(encoding="utf-8").splitlines()
    converted = {name for line in lines if line.startswith("convert") for name in line.split()[1:]}
    faults += [f"{name} is said to have no conversion, but converts" for name in sorted(left_out & converted)]
    faults += [f"{name} has no conversion" for name in sorted(set(table) - converted)]
    for told, found in ((r"(\d+) of the", len(table)), (r"of the (\d+) names", len(canonical))):
        if int(re.search(told, section).group(1)) != found:
            faults.append(f"the text says {re.search(told, section).group(0)}, there are {found}")
    print("\n".join(faults) if faults else f"{len(table)} charsets as the table says, {len(left_out)} without a conversion")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
