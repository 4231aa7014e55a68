#!/usr/bin/env python3
"""Checks the shared library's symbol table against the public headers.

  check_c_interface.py CXX_HEADER C_HEADER LIBRARY NM

LIBRARY exports every C function declared in C_HEADER and nothing but the
public interface: those C functions and C++ symbols of namespace tavuro whose
first name after "tavuro::" is declared public in CXX_HEADER (no platform:: or
detail:: internals, no standard-library instantiations), and the vtable and
type information of every public class with virtual members, which a host
needs to create or derive from one.
"""
import re
import subprocess
import sys


def main(cxx_header_path, c_header_path, library, nm):
    cxx = re.sub(r"//[^\n]*", "", open(cxx_header_path, encoding="utf-8").read())
    declared_c = set(re.findall(r"TAVURO_EXPORT[^;{]*?\b(tavuro_\w+)\s*\(",
                                open(c_header_path, encoding="utf-8").read()))
    public = {name for pattern in (r"\b(?:class|struct|enum class)\s+(?:TAVURO_EXPORT\s+)?(\w+)\s*[:{]",
                                   r"TAVURO_EXPORT\s+[\w:<>,\s&*]+?\b(\w+)\s*\(",
                                   r"\bconstexpr\s+[\w:]+\s+(\w+)\s*\(",
                                   r"inline\s+constexpr\s+[\w\s]+?\b(\w+)\s*\[")
              for name in re.findall(pattern, cxx)} - {"detail", "platform"}
    polymorphic = {name for name, body in
                   re.findall(r"\bclass\s+TAVURO_EXPORT\s+(\w+)[^;{]*\{(.*?)\n\};", cxx, re.S)
                   if re.search(r"\b(?:virtual|override)\b", body)}

    def symbols(*flags):
        out = subprocess.run([nm, "-D", "--defined-only", *flags, library], check=True,
                             capture_output=True, text=True).stdout
        return [parts[2] for parts in (line.split(None, 2) for line in out.splitlines())
                if len(parts) == 3]

    raw, demangled = symbols(), symbols("--demangle")
    problems = [f"{f} is declared in {c_header_path} but not exported"
                for f in sorted(declared_c - set(raw))]
    for mangled, name in zip(raw, demangled):
        if mangled in {"_init", "_fini", "__bss_start", "_edata", "_end"}:  # made by the linker
            continue
        if not mangled.startswith("_Z"):
            if mangled not in declared_c:
                problems.append(f"C symbol {mangled} is not declared in {c_header_path}")
            continue
        # "typeinfo for tavuro::X", "vtable for tavuro::X" and plain members.
        subject = re.sub(r"^(?:typeinfo name|typeinfo|vtable|VTT|construction vtable) for ", "", name)
        match = re.match(r"tavuro::(\w+)", subject)
        if not match or match.group(1) not in public:
            problems.append(f"exports a non-public symbol: {name}")
    if not any(s.startswith("tavuro_") for s in raw):
        problems.append("no C function exported at all: wrong library?")
    problems += [f"does not export the {what} for tavuro::{cls}" for cls in sorted(polymorphic)
                 for what in ("vtable", "typeinfo") if f"{what} for tavuro::{cls}" not in demangled]
    if len(polymorphic) < 5:
        problems.append(f"only {len(polymorphic)} classes with virtual members read from {cxx_header_path}")
    print(*problems, f"exports check: {len(problems)} problem(s)", sep="\n")
    return 1 if problems else 0


if __name__ == "__main__":
    if len(sys.argv) != 5:
        sys.exit(__doc__)
    sys.exit(main(*sys.argv[1:]))
