"""The check scripts notice what they are there to notice: each row is a small project with one fault in it.

    check_scripts_test.py      ends with 0 if every fault is told, and the project without a fault passes
"""
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

SCRIPTS = Path(__file__).resolve().parent.parent.parent / "scripts"

SOUND = {
    "include/nls/nls.h": '#include "nls/a.h"\n',
    "include/nls/a.h": "#pragma once\n#define NLS_API __attribute__((visibility(\"default\")))\n"
                       "#ifdef __cplusplus\nextern \"C\" {\n#endif\n"
                       "NLS_API extern const int lamp;\n/* NLS_API int inComment(void); */\n"
                       "NLS_API int\n  open_(int, const char*);\nNLS_API int shut(void);\n"
                       "#ifdef __cplusplus\n}\n#endif\n",
    "cmake/exports.map": "{ global:\n    /* a.h */\n    lamp;\n    open_;\n    shut;\n  local: *;\n};\n",
    "cmake/overridable.list": "{\n    lamp;\n};\n",
    "core/base/views.hpp": '#include "nls/a.h"\n',
    "core/door.cpp": '#include "core/room.hpp"\nextern "C" {\nconst int lamp = 1;\n'
                     "int open_(int, const char*) { return room(); }\nint shut(void) { return 0; }\n}\n",
    "core/room.hpp": '#include "core/base/views.hpp"\ninline int room() { return 2; }  // not open_(1, "")\n',
}

# What is wrong, the script, the files that differ, and a word of the complaint.
INCLUDES, SIZE, SYMBOLS, LINKAGE = "check_includes.py", "check_size.py", "check_symbols.py", "check_linkage.py"
FAULTS = [
    ("a header against the arrows", INCLUDES, {"core/base/views.hpp": '#include "core/room.hpp"\n'}, "against the arrows"),
    ("the same, excused in a header", INCLUDES, {"core/base/views.hpp": '#include "core/room.hpp"  // why\n'}, "may not"),
    ("a source against the arrows", INCLUDES, {"core/base/x.cpp": '#include "core/room.hpp"\n'}, "say why"),
    ("a cycle", INCLUDES, {"core/room.hpp": '#include "core/x.hpp"\n', "core/x.hpp": '#include "core/room.hpp"\n'}, "cycle"),
    ("a cycle by way of a source", INCLUDES, {"core/x.hpp": "\n", "core/x.cpp": '#include "core/y.hpp"\n',
                                              "core/y.hpp": '#include "core/x.hpp"\n'}, "cycle"),
    ("a door called from a room", INCLUDES, {"core/room.hpp": "inline int room() { return shut(); }\n"}, "calls the door"),
    ("a door called from a door", INCLUDES, {"core/door.cpp": "extern \"C\" {\nint shut(void) { return open_(1, 0); }\n}\n"},
     "calls the door open_"),
    ("a member with a door's name, in order", INCLUDES, {
        "core/room.hpp": "class Box {\npublic:\n    int shut() const { return 1; }\n};\n"
                         "inline int room() { return Box{}.shut(); }\n"}, None),
    ("a door included", INCLUDES, {"core/x.cpp": '#include "core/door.cpp"\n'}, "includes the door"),
    ("a test in the product", INCLUDES, {"core/x.cpp": '#include "tests/t.hpp"\n', "tests/t.hpp": "\n"}, "a test"),
    ("a header that isn't there", INCLUDES, {"core/x.cpp": '#include "core/none.hpp"\n'}, "isn't in the project"),
    ("121 columns", SIZE, {"core/wide.cpp": "//" + "x" * 119 + "\n"}, "more than 120"),
    ("601 lines", SIZE, {"core/long.cpp": "\n" * 601}, "more than 600"),
    ("declared and not listed", SYMBOLS, {"include/nls/a.h": SOUND["include/nls/a.h"] + "NLS_API int more(void);\n"},
     "more stands in include/nls but not in cmake/exports.map"),
    ("listed and not defined", SYMBOLS, {"cmake/exports.map": SOUND["cmake/exports.map"].replace("shut;", "shut; \n    gone;")},
     "gone stands in cmake/exports.map but not in"),
    ("under the wrong header", SYMBOLS, {"cmake/exports.map": SOUND["cmake/exports.map"].replace("/* a.h", "/* b.h")}, "under b.h"),
    ("a variable that isn't listed", SYMBOLS, {"cmake/overridable.list": "{\n    none_;\n};\n"}, "lamp"),
    ("a function resolved outside", SYMBOLS, {"core/room.hpp": "extern \"C\" int shut(void);\ninline int room() { return shut(); }\n"},
     "shut can be resolved outside"),
    ("a header outside the umbrella", SYMBOLS, {"include/nls/b.h": "\n"}, "doesn't include b.h"),
    ("heap memory", LINKAGE, {"core/room.hpp": "#include <cstdlib>\nvoid* volatile kept;\n"
                                               "inline int room() { kept = calloc(9, 9); return 2; }\n"}, "heap memory"),
    ("exceptions", LINKAGE, {"core/room.hpp": "inline int room() { throw 2; }\n"}, "throws or catches"),
    ("code at load time", LINKAGE, {"core/room.hpp": "int other(); inline int room() { return 2; }\nint at = other();\n"
                                                     "__attribute__((noinline)) int other() { asm volatile(\"\"); return 3; }\n"},
     "constructors run"),
    ("an unknown import", LINKAGE, {"core/room.hpp": "#include <cstdio>\ninline int room() { return getchar(); }\n"}, "may use"),
]


def run(*command, cwd):
    return subprocess.run(command, cwd=cwd, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, check=False)


def build(folder):
    """A shared library of the project's one source, linked as libnls.so is, save that names don't bind inside."""
    flags = ["-Iinclude", "-I.", "-fPIC", "-O2", "-fno-inline", "-shared", "-Wl,-soname,libnls.so.1", "-Wl,-z,now",
             "-Wl,--version-script=cmake/exports.map"]
    made = run("g++", *flags, "core/door.cpp", "-o", "libnls.so", "-nodefaultlibs", "-lc", cwd=folder)
    if made.returncode != 0:
        sys.exit(f"the little library doesn't build:\n{made.stdout.decode()}")


def complaint(script, files):
    """Exit status and output of a script on the sound project with some files replaced."""
    with tempfile.TemporaryDirectory() as name:
        folder = Path(name)
        shutil.copytree(SCRIPTS, folder / "scripts")
        for path, text in {**SOUND, **files}.items():
            (folder / path).parent.mkdir(parents=True, exist_ok=True)
            (folder / path).write_text(text, encoding="utf-8")
        run("git", "init", "-q", cwd=folder)
        run("git", "add", "-A", cwd=folder)
        arguments = []
        if script in (SYMBOLS, LINKAGE):
            build(folder)
            arguments = ["libnls.so"]
        ran = run("python3", f"scripts/{script}", *arguments, cwd=folder)
        return ran.returncode, ran.stdout.decode()


def main():
    failures = 0
    rows = [("nothing wrong", script, {}, None) for script in (INCLUDES, SIZE, SYMBOLS, LINKAGE)] + FAULTS
    for what, script, files, word in rows:
        status, output = complaint(script, files)
        good = status == 0 if word is None else status == 1 and word in output
        if not good:
            failures += 1
            print(f"{script}, {what}: wanted {word or 'no complaint'}, got exit {status} and\n{output}")
    print(f"{len(rows) - failures} passed, {failures} failed")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
