#!/usr/bin/env python3
"""Checks the shared library's symbol table against the public headers.

  check_c_interface.py CXX_HEADER C_HEADER LIBRARY NM

LIBRARY exports every C function declared in C_HEADER and nothing but the
public interface: those C functions and C++ symbols of namespace tavuro whose
first name after "tavuro::" is declared public in CXX_HEADER (no platform:: or
detail:: internals, no standard-library instantiations). It exports the vtable
and type information of every public class with virtual members, which a host
needs to create or derive from one. (The names themselves follow from
interface/TavuroCommon.json; scripts/generate_interface.py --check keeps the
header current with it.)
"""
import re
import subprocess
import sys

C_DECLARATION = re.compile(r"TAVURO_EXPORT[^;{]*?\b(tavuro_\w+)\s*\(")
EXPORTED_CLASS = re.compile(r"\bclass\s+TAVURO_EXPORT\s+(\w+)[^;{]*\{(.*?)\n\};", re.S)
# Linker-made markers that every shared library defines.
LINKER_SYMBOLS = {"_init", "_fini", "__bss_start", "_edata", "_end"}


def read(path):
    with open(path, encoding="utf-8") as f:
        return f.read()


def exported_symbols(library, nm, demangle):
    args = [nm, "-D", "--defined-only"] + (["--demangle"] if demangle else []) + [library]
    out = subprocess.run(args, check=True, capture_output=True, text=True).stdout
    symbols = []
    for line in out.splitlines():
        parts = line.split(None, 2)
        if len(parts) == 3:
            symbols.append(parts[2])
    return symbols


def public_cxx_names(cxx_header):
    """Names declared at namespace level in the public header."""
    text = re.sub(r"//[^\n]*", "", cxx_header)
    names = set(re.findall(r"\b(?:class|struct|enum class)\s+(?:TAVURO_EXPORT\s+)?(\w+)\s*[:{]", text))
    names |= set(re.findall(r"TAVURO_EXPORT\s+[\w:<>,\s&*]+?\b(\w+)\s*\(", text))
    names |= set(re.findall(r"\bconstexpr\s+[\w:]+\s+(\w+)\s*\(", text))
    names |= set(re.findall(r"inline\s+constexpr\s+[\w\s]+?\b(\w+)\s*\[", text))
    return names - {"detail", "platform"}


def polymorphic_classes(cxx_header):
    """Exported classes of the public header that declare or override virtual members."""
    text = re.sub(r"//[^\n]*", "", cxx_header)
    return {name for name, body in EXPORTED_CLASS.findall(text)
            if re.search(r"\b(?:virtual|override)\b", body)}


def check_exports(cxx_header_path, c_header_path, library, nm):
    cxx_header = read(cxx_header_path)
    public = public_cxx_names(cxx_header)
    declared_c = set(C_DECLARATION.findall(read(c_header_path)))
    raw = exported_symbols(library, nm, demangle=False)
    demangled = exported_symbols(library, nm, demangle=True)
    problems = []
    missing = declared_c - set(raw)
    problems += ["%s is declared in %s but not exported" % (f, c_header_path) for f in sorted(missing)]
    for mangled, name in zip(raw, demangled):
        if mangled in LINKER_SYMBOLS:
            continue
        if not mangled.startswith("_Z"):
            if mangled not in declared_c:
                problems.append("C symbol %s is not declared in %s" % (mangled, c_header_path))
            continue
        # "typeinfo for tavuro::X", "vtable for tavuro::X" and plain members.
        subject = re.sub(r"^(?:typeinfo name|typeinfo|vtable|VTT|construction vtable) for ", "", name)
        match = re.match(r"tavuro::(\w+)", subject)
        if not match or match.group(1) not in public:
            problems.append("exports a non-public symbol: %s" % name)
    if not any(s.startswith("tavuro_") for s in raw):
        problems.append("no C function exported at all: wrong library?")
    polymorphic = polymorphic_classes(cxx_header)
    exported = set(demangled)
    for cls in sorted(polymorphic):
        for what in ("vtable", "typeinfo"):
            if "%s for tavuro::%s" % (what, cls) not in exported:
                problems.append("does not export the %s for tavuro::%s" % (what, cls))
    if len(polymorphic) < 5:
        problems.append("only %d classes with virtual members read from %s" % (len(polymorphic), cxx_header_path))
    return problems


def main(argv):
    if len(argv) != 5:
        sys.stderr.write(__doc__)
        return 2
    problems = check_exports(*argv[1:])
    for problem in problems:
        print(problem)
    print("exports check: %d problem(s)" % len(problems))
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
