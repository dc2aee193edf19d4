#!/usr/bin/env python3
"""What libnls.so exports is what its headers declare and what cmake/exports.map lists, and nothing else.

    check_symbols.py LIBNLS_SO

Four promises:
  1. the declarations marked NLS_API in include/nls/*.h, the names of cmake/exports.map and the dynamic symbols of the
     library are the same set, and the map groups them by the header that declares them;
  2. cmake/overridable.list names the exported variables and the entry points of a site's own sort, and nothing else;
  3. no other exported name can be resolved to somebody else's: the library reaches its own functions without the
     dynamic linker;
  4. every header of include/nls declares something or is the umbrella, and the umbrella includes them all.

A library with the Java bridge, which exports a name that begins with "Java_", must also export what the two headers in jni/
declare, and libjutil.so beside it what jutil.h declares; another library exports nothing of it.
"""
import re
import subprocess
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
HEADERS = ROOT / "include" / "nls"
JAVA_HEADERS = [ROOT / "jni" / "native_methods.h", ROOT / "jni" / "message_helpers.h"]


def without_comments(text):
    return re.sub(r"/\*.*?\*/|//[^\n]*", " ", text, flags=re.S)


def declared(headers, mark="NLS_API"):
    """Names with the mark of an export: name -> (header, is a function)."""
    names = {}
    for header in headers:
        text = without_comments(header.read_text(encoding="utf-8"))
        for statement in re.findall(rf"\b{mark}\b([^;{{]*);", re.sub(r"#[^\n]*", "", text)):
            head = re.sub(r"\b(NLS_CHECKED|extern|const)\b", " ", statement)
            function = re.search(r"\b(\w+)\s*\(", head)
            name = function.group(1) if function else re.search(r"(\w+)\s*(\[[^\]]*\]\s*)*$", head).group(1)
            names[name] = (header.name, function is not None)
    return names


def listed(path):
    """Names of a linker list, with the last comment above each."""
    names, group = {}, ""
    for line in path.read_text(encoding="utf-8").splitlines():
        comment, name = re.search(r"/\*\s*(.*?)\s*\*/", line), re.match(r"\s*(\w+);", line)
        if comment:
            group = comment.group(1)
        elif name:
            names[name.group(1)] = group
    return names


def run(*command):
    return subprocess.run(command, stdout=subprocess.PIPE, check=True).stdout.decode()


def dynamic(library):
    """Names that the library defines for others: name -> is a function."""
    rows = (line.split() for line in run("nm", "-D", "--defined-only", library).splitlines())
    return {row[2]: row[1] in "TtWi" for row in rows if len(row) == 3}


def resolved_outside(library):
    """Names that the dynamic linker fills in when the library is loaded."""
    found = set()
    for line in run("readelf", "-rW", library).splitlines():
        match = re.search(r"R_X86_64_(?:GLOB_DAT|JUMP_SLO\w*|64|COPY)\s+[0-9a-f]+\s+(\w+)", line)
        if match:
            found.add(match.group(1))
    return found


def differences(left, right, left_name, right_name):
    for name in sorted(set(left) - set(right)):
        yield f"{name} stands in {left_name} but not in {right_name}"
    for name in sorted(set(right) - set(left)):
        yield f"{name} stands in {right_name} but not in {left_name}"


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    library = sys.argv[1]
    symbols, exports = dynamic(library), listed(ROOT / "cmake" / "exports.map")
    headers = declared(sorted(HEADERS.glob("*.h")))
    of_java = declared(header for header in JAVA_HEADERS if header.is_file())
    faults = []
    if any(name.startswith("Java_") for name in symbols):
        headers.update(of_java)
        jutil = declared([ROOT / "jutil" / "include" / "jutil.h"], "JUTIL_API")
        faults += differences(jutil, dynamic(Path(library).with_name("libjutil.so")), "jutil.h", "libjutil.so")
    else:
        exports = {name: group for name, group in exports.items() if name not in of_java}
    overridable = listed(ROOT / "cmake" / "overridable.list")

    faults += differences(headers, exports, "include/nls", "cmake/exports.map")
    faults += differences(exports, symbols, "cmake/exports.map", library)
    faults += [f"{name} is declared in {headers[name][0]}, but the map has it under {group}"
               for name, group in exports.items() if name in headers and headers[name][0] not in group]
    variables = {name for name, is_function in symbols.items() if not is_function}
    hooks = {name for name in headers if name.startswith("UserSort")}
    faults += differences(variables | hooks, overridable, "variables and entry points of user sort",
                          "cmake/overridable.list")
    faults += [f"{name} is a {'function' if headers[name][1] else 'variable'} in {headers[name][0]}, but not in {library}"
               for name, is_function in symbols.items() if name in headers and headers[name][1] != is_function]
    faults += [f"{name} can be resolved outside the library, but isn't in cmake/overridable.list"
               for name in sorted(resolved_outside(library) & set(symbols) - set(overridable))]
    umbrella = (HEADERS / "nls.h").read_text(encoding="utf-8")
    faults += [f"nls.h doesn't include {header.name}" for header in sorted(HEADERS.glob("*.h"))
               if header.name != "nls.h" and f'"nls/{header.name}"' not in umbrella]

    print("\n".join(faults) if faults else
          f"{len(symbols)} names: headers, cmake/exports.map and {library} agree; {len(variables)} of them are variables")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
