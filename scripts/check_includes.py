#!/usr/bin/env python3
"""Which way the arrows point: who may include whom, who may call whom. The picture stands in docs/architecture.md.

    check_includes.py

x.hpp, x.cpp and their wide twins x_avx2.cpp, x_avx512.cpp are one node. Four promises:
  1. an include follows the arrows of ARROWS. One against them is allowed in a .cpp, with a comment on its line or on the
     line above that says why;
  2. the nodes have no include cycle;
  3. nobody includes a door, and a door includes its own folder, core/base and what its folder may;
  4. nobody inside calls a door: the name of an exported function stands in the library only where it is defined.
"""
import re
import subprocess
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
# What a folder may include beside itself. A name with a dot is one file, a name without is a folder.
CLIENT = {"include"}
ARROWS = {
    "include": set(),
    "core/base": {"include"},
    "core": {"include", "core/base", "convmap", "collation/coll_kind.hpp", "collation/user_sort.hpp",
             "conversion/conv_type.hpp", "icu/collation_name.hpp", "icu/collator.hpp", "icu/control.hpp",
             "icu/image.hpp", "icu/name_list.hpp", "strings/str_record.hpp"},
    "convmap": {"include", "core/base", "collation/coll_kind.hpp", "collation/user_sort.hpp", "icu/collation_name.hpp",
                "icu/collator.hpp", "icu/converter.hpp"},
    "icu": {"include", "core/base", "convmap/conv_table.hpp"},
    "chars": {"include", "core/base"},
    "conversion": {"include", "core/base", "convmap/conv_table.hpp", "convmap/dbcs_index.hpp", "icu/icu_convert.hpp"},
    "collation": {"include", "core/base", "chars", "conversion", "convmap/conv_table.hpp", "convmap/case_pages.hpp",
                  "icu/icu_compare.hpp", "icu/icu_key.hpp"},
    "strings": {"include", "core/base", "chars", "collation", "conversion", "convmap/case_pages.hpp"},
    "tools/mkconvmap": CLIENT | {"core/base", "convmap", "collation/coll_kind.hpp"},
    "tools/nls": CLIENT | {"convmap/file_format.hpp", "convmap/type_codes.hpp", "core/base", "icu/packaging.hpp",
                           "icu/slot_names.hpp", "tools/stored"},
    "tools/stored": CLIENT,
    "integrations/sqlite": CLIENT | {"core/base/views.hpp", "tools/nls", "tools/stored"},
    "tools/mkmessages": CLIENT | {"jutil"},
    "jni": CLIENT | {"jutil/include"},
    "jutil": set(),
    "bench": CLIENT | {"core/base/cpu.hpp", "tests/support"},
    "fuzz": CLIENT | {"core/base", "tests/support"},
    "tests/support": set(),  # a folder of its own for those who may include it; itself it looks into everything
}
LIBRARY = ("core", "convmap", "chars", "conversion", "collation", "icu", "strings")
# Tests look into everything; those of the public interface are clients like any other.
CLIENT_TESTS = ("tests/abi", "tests/end_to_end", "tests/install")
INCLUDE = re.compile(r'^\s*#\s*include\s+"([^"]+)"(.*)$')


def sources():
    names = subprocess.run(["git", "ls-files", "-co", "--exclude-standard", "*.cpp", "*.hpp", "*.c", "*.h"], cwd=ROOT,
                           stdout=subprocess.PIPE, check=True).stdout.decode().splitlines()
    return sorted(name for name in names if (ROOT / name).is_file())


def folder_of(name):
    for folder in [*CLIENT_TESTS, *(known for known in ARROWS if "/" in known)]:
        if name.startswith(folder + "/"):
            return folder
    return name.split("/")[0]


def node_of(name):
    return re.sub(r"(_avx2|_avx512)?\.\w+$", "", name)


def includes(name):
    """(line number, file included, says why) of each quoted include."""
    before = ""
    for number, line in enumerate((ROOT / name).read_text(encoding="utf-8").splitlines(), 1):
        match = INCLUDE.match(line)
        if match:
            yield number, match.group(1), "//" in match.group(2) or before.strip().startswith("//")
        before = line


def resolve(name, target):
    for base in (ROOT, ROOT / "include", ROOT / "jutil" / "include", (ROOT / name).parent):
        if (base / target).is_file():
            return str((base / target).resolve().relative_to(ROOT))
    return None


def may_include(name, target):
    if target.startswith("include/"):
        return True
    folder, other = folder_of(name), folder_of(target)
    if folder in CLIENT_TESTS or folder.startswith("tests"):
        return folder not in CLIENT_TESTS or other == folder
    return folder == other or any(target == to or target.startswith(to + "/") for to in ARROWS.get(folder, set()))


def exported_functions():
    text = (ROOT / "cmake" / "exports.map").read_text(encoding="utf-8")
    variables = (ROOT / "cmake" / "overridable.list").read_text(encoding="utf-8")
    return set(re.findall(r"^\s+(\w+);", text, re.M)) - set(re.findall(r"^\s+(\w+);", variables, re.M))


def bare(text):
    """The text with comments and literals blanked out, line by line as before."""
    def blank(match):
        return re.sub(r"[^\n]", " ", match.group(0))
    return re.sub(r'//[^\n]*|/\*.*?\*/|"(?:\\.|[^"\\\n])*"|(?<![0-9A-Fa-f])\'(?:\\.|[^\'\\\n])+\'', blank, text, flags=re.S)


def door_faults(names):
    """Calls of doors inside the library, and the doors: the files that define an exported function."""
    faults, doors = [], set()
    exported = exported_functions()
    for name in names:
        if not name.startswith(LIBRARY):
            continue
        text = bare((ROOT / name).read_text(encoding="utf-8"))
        for match, inside in calls(text, exported):
            line = text.count("\n", 0, match.start()) + 1
            if inside:
                faults.append(f"{name}:{line}: calls the door {match.group(0)}; call its room")
            elif name.endswith(".cpp"):
                doors.add(name)
    return faults, doors


def calls(text, exported):
    """(match, inside a body) of each exported name in front of a bracket; members of the same name are no doors."""
    token = re.compile(r'(?:extern|namespace|class|struct)\b[^;{}()]*\{|\{|\}|(?:\.|->)?\b[A-Za-z_]\w*(?=\s*\()')
    open_braces = []  # what each brace opens: a body, or a scope of declarations
    for match in token.finditer(text):
        found = match.group(0)
        if found.endswith("{"):
            scope = re.match(r"\w+", found)
            open_braces.append(scope.group(0) if scope else "body")
        elif found == "}":
            if open_braces:
                open_braces.pop()
        elif found in exported and "class" not in open_braces and "struct" not in open_braces:
            yield match, "body" in open_braces


def cycle(graph):
    """One cycle of the graph as a list of nodes, or None."""
    state, path = {}, []

    def visit(node):
        state[node] = 1
        path.append(node)
        for other in sorted(graph.get(node, ())):
            if state.get(other) == 1:
                return path[path.index(other):] + [other]
            if other not in state:
                found = visit(other)
                if found:
                    return found
        state[node] = 2
        path.pop()
        return None

    for node in sorted(graph):
        if node not in state:
            found = visit(node)
            if found:
                return found
    return None


def main():
    names = sources()
    faults, doors = door_faults(names)
    graph, against = {}, 0
    for name in names:
        for line, target, says_why in includes(name):
            where, file = f"{name}:{line}", resolve(name, target)
            if file is None:
                faults.append(f"{where}: {target} isn't in the project; other people's headers stand in <>")
                continue
            if file in doors:
                faults.append(f"{where}: includes the door {file}")
            if file.startswith("tests/") and not name.startswith(("tests/", "fuzz/", "bench/")):
                faults.append(f"{where}: the product includes a test")
            if not may_include(name, file):
                against += 1
                if not (name.endswith(".cpp") and says_why):
                    faults.append(f"{where}: {file} is against the arrows" + (
                        "; say why in a comment" if name.endswith(".cpp") else "; a header may not do that"))
            if node_of(name) != node_of(file):
                graph.setdefault(node_of(name), set()).add(node_of(file))
    found = cycle(graph)
    if found:
        faults.append("include cycle: " + " -> ".join(found))
    print("\n".join(faults) if faults else
          f"{len(names)} files, {len(doors)} doors: no include cycle, nobody calls a door, {against} includes against the"
          " arrows, each with its reason")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
