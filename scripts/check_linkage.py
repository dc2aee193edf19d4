#!/usr/bin/env python3
"""What libnls.so needs from others: the C library's plain functions, with the Java bridge libjutil.so, and nothing else.

    check_linkage.py LIBNLS_SO

No C++ run-time library, no heap, no exceptions, nothing that runs when the library is loaded, no lock. A function of the C
library that isn't in ALLOWED is a decision to take, not an accident to overlook: add it there with its reason.
"""
import re
import subprocess
import sys

ALLOWED = {
    "memcpy", "memmove", "memset", "memcmp", "memchr",  # bytes by length
    "strlen", "strnlen", "strcmp", "strncmp", "strcpy", # NUL-terminated names and text
    "strchr", "strstr",                                 # names and lists of ICU
    "secure_getenv", "dlopen", "dlsym", "dlerror",      # finding and loading ICU (icu/loader.cpp)
    "malloc", "free",                                   # one comparison through ICU of long text (icu/icu_compare.cpp)
    "__ctype_toupper_loc", "__ctype_tolower_loc",       # names fold case by the C locale of the process
}
# What the Java bridge uses besides, in a library that has it: the functions of libjutil.so, and the resolver.
JAVA_ALLOWED = re.compile(r"dbut_\w+|ju(Log|Zlm)\w+|gethostbyname|getservbyname")
# Weak names that the compiler's own start-up files bring into every shared library.
START_UP = {"__cxa_finalize", "__gmon_start__", "_ITM_deregisterTMCloneTable", "_ITM_registerTMCloneTable"}
WHY = [
    (r"_Zn[wa]|_Zd[la]|malloc|calloc|realloc|free|aligned_alloc|posix_memalign", "takes or gives back heap memory"),
    (r"__cxa_throw|__gxx_personality|_Unwind|_ZSt\d+__throw|__cxa_(?!finalize)", "throws or catches"),
    (r"_ZT[IVS]|__dynamic_cast", "uses run-time type information"),
    (r"pthread_|mtx_|__cxa_guard", "takes a lock"),
    (r"_Z", "is a function of a C++ library"),
]


def run(*command):
    return subprocess.run(command, stdout=subprocess.PIPE, check=True).stdout.decode()


def imports(library):
    rows = (line.split() for line in run("nm", "-D", "--undefined-only", library).splitlines())
    return {row[-1].split("@")[0] for row in rows if row}


def explain(name):
    for pattern, why in WHY:
        if re.match(pattern, name):
            return f"{name}: the library {why}"
    return f"{name}: not among the functions that the library may use (ALLOWED in this script)"


def load_time_calls(library):
    """Entries of .init_array and .ctors beyond the one of the compiler's start-up file."""
    total = 0
    for line in run("readelf", "-SW", library).splitlines():
        match = re.search(r"\.(init_array|ctors)\s+\S+\s+[0-9a-f]+\s+[0-9a-f]+\s+([0-9a-f]+)", line)
        if match:
            total += int(match.group(2), 16) // 8
    return total - 1


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    library = sys.argv[1]
    dynamic = run("readelf", "-dW", library)
    needed = re.findall(r"\(NEEDED\).*\[(.*)\]", dynamic)
    found = imports(library) - START_UP
    with_java = "libjutil.so" in needed
    faults = [f"needs {name}" for name in needed if name not in ("libc.so.6", "libjutil.so")]
    faults += [explain(name) for name in sorted(found - ALLOWED) if not (with_java and JAVA_ALLOWED.fullmatch(name))]
    if load_time_calls(library) > 0:
        faults.append(f"{load_time_calls(library)} constructors run when the library is loaded")
    if "[libnls.so.1]" not in dynamic:
        faults.append("the SONAME isn't libnls.so.1")
    if "TEXTREL" in dynamic:
        faults.append("code is changed when the library is loaded")
    if not re.search(r"BIND_NOW|\bNOW\b", dynamic):
        faults.append("isn't bound when it is loaded (-z now)")
    if re.search(r"GNU_STACK.*RWE", run("readelf", "-lW", library)):
        faults.append("asks for an executable stack")
    print("\n".join(f"{library}: {fault}" for fault in faults) if faults else
          f"{library} needs {', '.join(needed) or 'no library'}; of it {', '.join(sorted(found))}")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
