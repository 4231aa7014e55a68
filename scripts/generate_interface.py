#!/usr/bin/env python3
"""Writes what follows from interface/TavuroCommon.json into the regions of the
files that hold it, each between a line "BEGIN generated from
interface/TavuroCommon.json: NAME" and a line "END generated: NAME":

  common/include/TavuroCommon/TavuroCommon.h    the error tables' constants
  common/TavuroErrorInfo.cpp                    the table behind TavuroErrorInfo
  common/include/TavuroCommon/TavuroCommon_c.h  the regular C declarations
  common/TavuroCommon_c.cpp                     the regular C wrappers
  docs/c-interface.md                           the tables of names
  cmake/TavuroCommon.map                        the exported C++ free functions
  java/ (through scripts/generate_java.py)      the regular part of the Java binding
  Sources/TavuroCommon/Interface.swift          the regular Swift layer (scripts/generate_swift.py)

  generate_interface.py [--clang-format PROGRAM]          rewrite the regions
  generate_interface.py --check [--clang-format PROGRAM]  exit 1 when a region is stale

The C and C++ regions are formatted by clang-format-14 (the version pins the
layout). Without it --check compares them ignoring white space, and writing
refuses. Members whose table entry says "c": "manual" are written by hand; the
check makes sure each is declared in the C header under its derived name.
"""
import argparse
import difflib
import json
import os
import re
import shutil
import subprocess
import sys

import generate_java
from generate_swift import swift_regions

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
TABLE = "interface/TavuroCommon.json"
PUBLIC_HEADER = "common/include/TavuroCommon/TavuroCommon.h"
C_HEADER = "common/include/TavuroCommon/TavuroCommon_c.h"
C_SOURCE = "common/TavuroCommon_c.cpp"
ERROR_INFO_SOURCE = "common/TavuroErrorInfo.cpp"
DOC = "docs/c-interface.md"
EXPORT_MAP = "cmake/TavuroCommon.map"
FORMATTED = (PUBLIC_HEADER, C_HEADER, C_SOURCE, ERROR_INFO_SOURCE) + generate_java.FORMATTED

BEGIN = re.compile(r"BEGIN generated from interface/TavuroCommon\.json: ([\w ]+?)\s*(?:\*/|-->)?\s*$")
END = re.compile(r"END generated: ([\w ]+?)\s*(?:\*/|-->)?\s*$")

PRIMITIVES = {"void", "bool", "int64", "size", "float", "double", "text", "instant", "bytes"}
MEMBER_KINDS = {"init", "factory", "static", "method", "property", "static property"}
CLASS_KINDS = {"record", "object", "static", "interface", "struct"}
# C spelling of the scalar types, and the value a function gives when it cannot answer.
C_SCALARS = {"bool": ("bool", "false"), "int64": ("int64_t", "0"), "size": ("size_t", "0"),
             "float": ("float", "0.0F"), "double": ("double", "0.0"), "instant": ("double", "0.0")}


class TableError(Exception):
    pass


# ---------------------------------------------------------------------------
# Reading and checking the table
# ---------------------------------------------------------------------------

class Interface:
    def __init__(self, table):
        self.table = table
        self.classes = table["classes"]
        self.enums = {e["name"]: e for e in table["enums"]}
        self.errors = table["errors"]
        # Types that cross the C interface as handles, in the order they are declared.
        self.handles = [(c["name"], "class") for c in self.classes if c["kind"] in ("record", "object")]
        self.handles += [(h["type"], h["held"]) for h in table["c_handles"]]
        self.held = dict(self.handles)
        self.check()

    def known(self, type_name):
        base = type_name[:-1] if type_name.endswith("?") else type_name
        base = base[:-2] if base.endswith("[]") else base
        return (base in PRIMITIVES or base in self.table["types"] or base in self.enums
                or any(c["name"] == base for c in self.classes))

    def check(self):
        problems = []
        for owner, member in self.all_members():
            required = ["name"] + (["kind", "selector"] if owner else ["args", "result"])
            required += {"property": ["result"], "static property": ["result", "setter"]}.get(member.get("kind"), [])
            if member.get("kind") == "property" and not member.get("readonly"):
                required.append("setter")
            problems += ["%s.%s: no %r" % (owner, member.get("name"), key) for key in required if key not in member]
        for cls in self.classes:
            if cls["kind"] not in CLASS_KINDS:
                problems.append("%s: unknown class kind %r" % (cls["name"], cls["kind"]))
            if cls["kind"] in ("record", "object") and "c_self" not in cls:
                problems.append("%s: no c_self" % cls["name"])
        if problems:
            raise TableError("\n".join(problems))
        for owner, member in self.all_members():
            where = "%s.%s" % (owner, member["name"])
            if member.get("kind", "function") not in MEMBER_KINDS | {"function"}:
                problems.append("%s: unknown kind %r" % (where, member.get("kind")))
            types = [a["type"] for a in member.get("args", [])] + [member.get("result", "void")]
            problems += ["%s: unknown type %r" % (where, t) for t in types if not self.known(t)]
            if member.get("stops") not in (None, "no-dot", "absent"):
                problems.append("%s: unknown stop %r" % (where, member["stops"]))
            if member.get("c") not in (None, "manual", "none"):
                problems.append("%s: unknown C treatment %r" % (where, member["c"]))
            if "c_buffer" in member and (member.get("kind") != "static" or member.get("args")
                                         or member.get("result") not in ("text", "text?")):
                problems.append("%s: c_buffer is for static text results without arguments" % where)
        seen = set()
        for entry in self.errors["entries"]:
            if ("code" in entry) != ("value" in entry):
                problems.append("%s: a code needs both its name and its value" % entry["description"])
            for key in ("code", "value", "description", "text"):
                if key in entry and (key, entry[key]) in seen:
                    problems.append("the error %s %r occurs twice" % (key, entry[key]))
                seen.add((key, entry.get(key)))
            if entry.get("value", -1) >= 0:
                problems.append("%s: codes are negative" % entry["code"])
        if problems:
            raise TableError("\n".join(problems))

    def all_members(self):
        for cls in self.classes:
            for member in cls["members"]:
                yield cls["name"], member
        for function in self.table["functions"]:
            yield "", function

    def codes(self):
        """The entries with a code, by value from -1 downwards."""
        return sorted((e for e in self.errors["entries"] if "code" in e), key=lambda e: -e["value"])

    def texts_without_code(self):
        return [e for e in self.errors["entries"] if "code" not in e]


def c_name(cls, selector):
    return "tavuro_%s_%s" % (cls, selector.replace(":", "_").rstrip("_"))


def setter_name(name):
    return "set" + name[0].upper() + name[1:]


def upper_snake(name):
    return re.sub(r"(?<=[a-z0-9])(?=[A-Z])", "_", name).upper()


def c_functions(cls, member):
    """(C function, role) of every object-interface name of a member."""
    if member.get("selector") is None:
        return []
    functions = [(c_name(cls, member["selector"]), "get" if "property" in member["kind"] else "call")]
    if "property" in member["kind"] and not member.get("readonly"):
        functions.append((c_name(cls, member["setter"]), "set"))
    return functions


# ---------------------------------------------------------------------------
# C wrappers
# ---------------------------------------------------------------------------

class CWriter:
    """The C declaration and the C++ definition of one regular member."""

    def __init__(self, interface):
        self.interface = interface

    def handle(self, type_name):
        base = type_name.rstrip("?")
        return base if base in self.interface.held else None

    def arg_type(self, type_name):
        base = type_name.rstrip("?")
        if base == "text":
            return "const char*"
        if base in C_SCALARS:
            return C_SCALARS[base][0]
        if self.handle(type_name):
            const = "const " if self.interface.held[base] == "value" else ""
            return "%stavuro_%s*" % (const, base)
        raise TableError("no C argument type for %r" % type_name)

    def result_type(self, type_name):
        base = type_name.rstrip("?")
        if base == "void":
            return "void"
        if base == "text":
            return "char*"
        if base == "bytes":
            return "tavuro_ByteBuffer*"
        if base in self.interface.enums:
            return C_SCALARS[self.interface.enums[base]["raw"]][0]
        if base in C_SCALARS:
            return C_SCALARS[base][0]
        if self.handle(type_name):
            return "tavuro_%s*" % base
        raise TableError("no C result type for %r" % type_name)

    def zero(self, type_name):
        base = type_name.rstrip("?")
        if base in self.interface.enums:
            base = self.interface.enums[base]["raw"]
        return C_SCALARS[base][1] if base in C_SCALARS else "nullptr"

    def argument(self, type_name, name):
        """The C++ argument made from the C one."""
        base = type_name.rstrip("?")
        if type_name == "text?":
            return "optionalText(%s)" % name
        if base in ("text", "bool", "int64", "float", "double"):
            return name
        if base == "instant":
            return "tavuro::Instant(std::chrono::duration<double>(%s))" % name
        if self.handle(type_name):
            if self.interface.held[base] == "value":
                return "optionalValue(%s)" % name if type_name.endswith("?") else "%s->value" % name
            return "objectOf(%s)" % name
        raise TableError("no C argument for %r" % type_name)

    def result(self, type_name, expression):
        """The C result made from the C++ one."""
        base = type_name.rstrip("?")
        if type_name == "text":
            return "copyText(%s)" % expression
        if type_name == "text?":
            return "copyOptionalText(%s)" % expression
        if base == "instant":
            return "%s.time_since_epoch().count()" % expression
        if base == "bytes":
            return "wrapBytes(%s)" % expression
        if base in self.interface.enums:
            return "tavuro::rawValue(%s)" % expression
        if base in C_SCALARS:
            return expression
        if self.handle(type_name):
            if self.interface.held[base] == "value" and not type_name.endswith("?"):
                return "new tavuro_%s(%s)" % (base, expression)
            return "wrap<tavuro_%s>(%s)" % (base, expression)
        raise TableError("no C result for %r" % type_name)

    def literal(self, type_name, value):
        if value is None:
            return self.zero(type_name)
        if isinstance(value, bool):
            return "true" if value else "false"
        if isinstance(value, str):
            return self.result(type_name, cxx_string(value))
        return repr(value)

    def functions(self, cls, member):
        """[(comment, declaration, definition)] of a member's C functions."""
        return [self.function(cls, member, function, role) for function, role in c_functions(cls["name"], member)]

    def function(self, cls, member, function, role):
        """The C function `function` of a member (of a free function when `cls` is None). `role`:
        'call' for an operation, 'get' and 'set' for a property. A NULL handle and a NULL where a
        text is required give the default without calling C++; any exception gives the zero of the
        result type."""
        kind = member.get("kind", "function")
        class_name = "tavuro::" + cls["name"] if cls else "tavuro"
        params, required = [], []
        instance = kind in ("method", "property")
        if instance:
            const = "" if role == "set" else "const "
            params.append("%stavuro_%s* %s" % (const, cls["name"], cls["c_self"]))
            required.append(cls["c_self"])
        args = member.get("args", [])
        result = member.get("result", "void")
        if role == "get":
            args = []
        elif role == "set":
            args = [{"name": member.get("setter_arg", member["name"]), "type": member["result"]}]
            result = "void"
        elif kind in ("init", "factory"):
            result = cls["name"]
        for arg in args:
            params.append("%s %s" % (self.arg_type(arg["type"]), arg["name"]))
            if arg["type"] == "text" or self.interface.held.get(arg["type"]) == "value":
                required.append(arg["name"])
        call_args = ", ".join(self.argument(a["type"], a["name"]) for a in args)
        self_value = "%s->value->" % cls["c_self"] if instance else class_name + "::"
        if kind == "init":
            call = "std::make_shared<%s>(%s)" % (class_name, call_args)
        elif role == "set":
            call = "%s%s(%s)" % (self_value, setter_name(member["name"]), call_args)
        else:
            call = "%s%s(%s)" % (self_value, member["name"], call_args)
        c_result = self.result_type(result)
        declaration = "TAVURO_EXPORT %s %s(%s);" % (c_result, function, ", ".join(params) or "void")
        body = []
        if required:
            condition = " || ".join("%s == nullptr" % name for name in required)
            early = "" if result == "void" else " " + self.literal(result, member.get("default"))
            body.append("if (%s) return%s;" % (condition, early))
        if result == "void":
            body.append("guardedVoid([&] { %s; });" % call)
        else:
            body.append("return guarded<%s>(%s, [&] { return %s; });"
                        % (c_result, self.zero(result), self.result(result, call)))
        definition = "%s %s(%s) {\n%s\n}" % (c_result, function, ", ".join(params) or "void",
                                              "\n".join("  " + line for line in body))
        doc = member.get("c_setter_doc") if role == "set" else member.get("c_doc")
        return doc, declaration, definition


def cxx_string(text):
    return '"%s"' % text.replace("\\", "\\\\").replace('"', '\\"')


def c_comment(text, opener="/**", width=80):
    """A comment of `text`, wrapped as the header's own comments are."""
    words, lines, line = text.split(), [], opener
    for word in words:
        if len(line) + 1 + len(word) > width - 3:
            lines.append(line)
            line = " *"
        line += " " + word
    lines.append(line + " */")
    return lines


# ---------------------------------------------------------------------------
# The regions
# ---------------------------------------------------------------------------

def c_header_regions(interface):
    writer, regions = CWriter(interface), {}
    regions["handles"] = ["typedef struct tavuro_%s tavuro_%s;" % (name, name) for name, _ in interface.handles]
    # Each handle type's retain and release stand with its other functions.
    counting = {name: ["TAVURO_EXPORT tavuro_%s* tavuro_%s_retain(tavuro_%s* handle);" % (name, name, name),
                       "TAVURO_EXPORT void tavuro_%s_release(tavuro_%s* handle);" % (name, name)]
                for name, _ in interface.handles}
    for name, held in interface.handles:
        if held != "class":
            regions[name] = counting[name]

    lines = []
    for function in interface.table["functions"]:
        if function.get("c") != "none":
            doc, declaration, _ = writer.function(None, function, "tavuro_" + function["name"], "call")
            lines += (c_comment(doc) if doc else []) + [declaration]
    regions["functions"] = lines

    lines = []
    for enum in interface.enums.values():
        prefix = "TAVURO_" + upper_snake(enum["name"]) + "_"
        values = ", ".join("%s%s = %d" % (prefix, upper_snake(v["name"]), v["raw"]) for v in enum["values"])
        lines.append("enum { %s };" % values)
    regions["enums"] = lines

    for cls in interface.classes:
        if cls["kind"] in ("interface", "struct"):
            continue
        lines = c_comment(cls["c_doc"], "/*") if cls.get("c_doc") else []
        for member in cls["members"]:
            if member.get("c") == "manual":
                continue
            for doc, declaration, _ in writer.functions(cls, member):
                lines += (c_comment(doc) if doc else []) + [declaration]
        regions[cls["name"]] = lines + counting.get(cls["name"], [])

    codes, descriptions = interface.errors["codes_class"], interface.errors["descriptions_class"]
    lines = c_comment("The codes: each returns its constant.", "/*")
    lines += ["TAVURO_EXPORT int64_t tavuro_%s_%s(void);" % (codes, e["code"]) for e in interface.codes()]
    lines += [""] + c_comment("The descriptions: each returns its constant text (rule 4: never free). "
                              "Beside each, the code it belongs to.", "/*")
    for entry in interface.errors["entries"]:
        lines += ["TAVURO_EXPORT const char*  // code: %s" % entry.get("code", "none"),
                  "tavuro_%s_%s(void);" % (descriptions, entry["description"])]
    regions["error tables"] = lines
    return regions


def c_source_regions(interface):
    writer, regions = CWriter(interface), {}
    held = {"class": "std::shared_ptr<tavuro::%s>", "shared": "std::shared_ptr<tavuro::%s>",
            "immutable": "std::shared_ptr<const tavuro::%s>", "value": "tavuro::%s"}
    lines = []
    for name, kind in interface.handles:
        lines += ["struct tavuro_%s : Box<%s> {" % (name, held[kind] % name), "  using Box::Box;", "};"]
    for enum in interface.enums.values():
        prefix = "TAVURO_" + upper_snake(enum["name"]) + "_"
        for value in enum["values"]:
            lines.append("static_assert(%s%s == tavuro::rawValue(tavuro::%s::%s));"
                         % (prefix, upper_snake(value["name"]), enum["name"], value["name"]))
    regions["handles"] = lines

    lines = ["TAVURO_C_REFERENCE_COUNTING(%s)" % name for name, _ in interface.handles]
    for function in interface.table["functions"]:
        if function.get("c") != "none":
            lines += [""] + writer.function(None, function, "tavuro_" + function["name"], "call")[2].split("\n")
    for cls in interface.classes:
        if cls["kind"] in ("interface", "struct"):
            continue
        for member in cls["members"]:
            if member.get("c") != "manual":
                for _, _, definition in writer.functions(cls, member):
                    lines += [""] + definition.split("\n")
    lines += [""] + ["TAVURO_C_CODE(%s)" % e["code"] for e in interface.codes()]
    lines += [""] + ["TAVURO_C_DESCRIPTION(%s)" % e["description"] for e in interface.errors["entries"]]
    regions["wrappers"] = lines
    return regions


def public_header_regions(interface):
    codes = ["static constexpr std::int64_t %s = %d;" % (e["code"], e["value"]) for e in interface.codes()]
    descriptions = []
    for entry in interface.errors["entries"]:
        # One shape for every entry, so the list reads as a table.
        note = "has code" if "code" in entry else "no code"
        descriptions += ["static constexpr char %s[] =  // %s" % (entry["description"], note),
                         "    " + cxx_string(entry["text"]) + ";"]
    return {"error codes": codes, "error descriptions": descriptions}


def error_info_regions(interface):
    lines = ["TAVURO_ENTRY(%s, %s)," % (e["code"], e["description"]) for e in interface.codes()]
    lines += ["TAVURO_TEXT_ONLY(%s)," % e["description"] for e in interface.texts_without_code()]
    return {"error table": lines}


def cxx_member(cls, member, role):
    args = ", ".join(a["name"] for a in member.get("args", []))
    if member["kind"] == "init":
        return "%s(%s)" % (cls, args)
    if role == "get":
        return "%s::%s()" % (cls, member["name"])
    if role == "set":
        return "%s::%s(%s)" % (cls, setter_name(member["name"]), member.get("setter_arg", member["name"]))
    return "%s::%s(%s)" % (cls, member["name"], args)


def doc_regions(interface):
    lines = []

    def table(title, rows):
        lines.extend(["### " + title, "", "| Object-interface name | C function | C++ member |",
                      "|---|---|---|"])
        lines.extend("| `%s` | `%s` | `%s` |" % row for row in rows)
        lines.append("")

    native_only = []
    for cls in interface.classes:
        if cls["kind"] == "interface":
            continue
        rows = []
        for member in cls["members"]:
            if member.get("selector") is None and member["kind"] != "init" and "c_function" not in member:
                native_only.append("`%s`" % cxx_member(cls["name"], member, "call"))
            for function, role in c_functions(cls["name"], member):
                selector = member["setter"] if role == "set" else member["selector"]
                rows.append((selector, function, cxx_member(cls["name"], member, role)))
        if rows:
            table(cls["name"], rows)
    codes, descriptions = interface.errors["codes_class"], interface.errors["descriptions_class"]
    table(codes, [(e["code"], "tavuro_%s_%s" % (codes, e["code"]), "%s::%s" % (codes, e["code"]))
                  for e in interface.codes()])
    table(descriptions, [(e["description"], "tavuro_%s_%s" % (descriptions, e["description"]),
                          "%s::%s" % (descriptions, e["description"])) for e in interface.errors["entries"]])
    if native_only:
        lines.append("Reachable only from C++, with no C function: %s." % ", ".join(native_only))
    return {"tables": lines}


def map_regions(interface):
    names = [f["name"] for f in interface.table["functions"]]
    names += [e["name"][0].lower() + e["name"][1:] + "WithRawValue" for e in interface.enums.values()]
    return {"functions": ["tavuro::%s*;" % name for name in names]}


# ---------------------------------------------------------------------------
# Files
# ---------------------------------------------------------------------------

def replace_regions(path, text, regions):
    """`text` with every region's lines replaced; [(first, last)] line numbers of the new lines."""
    out, ranges, lines, index = [], [], text.split("\n"), 0
    found = set()
    while index < len(lines):
        line = lines[index]
        out.append(line)
        begin = BEGIN.search(line)
        index += 1
        if not begin:
            continue
        name = begin.group(1)
        if name not in regions:
            raise TableError("%s: region %r is not one the table writes" % (path, name))
        indent = re.match(r"\s*", line).group(0)
        while index < len(lines) and not END.search(lines[index]):
            index += 1
        if index == len(lines) or END.search(lines[index]).group(1) != name:
            raise TableError("%s: region %r has no matching END line" % (path, name))
        first = len(out) + 1
        out.extend(indent + new if new else "" for new in regions[name])
        ranges.append((first, len(out)))
        found.add(name)
    missing = set(regions) - found
    if missing:
        raise TableError("%s: no region for %s" % (path, ", ".join(sorted(missing))))
    return "\n".join(out), ranges


def clang_format(program, path, text, ranges):
    args = [program, "--style=file", "--assume-filename=" + os.path.join(ROOT, path)]
    args += ["--lines=%d:%d" % r for r in ranges if r[0] <= r[1]]
    return subprocess.run(args, input=text, capture_output=True, text=True, check=True).stdout


def loose(text):
    """Text with white space and joins of adjacent string literals ignored."""
    return re.sub(r'"\s*"', "", re.sub(r"\s+", "", text))


def declared_c_functions(c_header):
    return set(re.findall(r"TAVURO_EXPORT[^;{]*?\b(tavuro_\w+)\s*\(", c_header))


def manual_problems(interface, c_header):
    """Members written by hand whose C function the header does not declare."""
    declared = declared_c_functions(c_header)
    problems = []
    for cls in interface.classes:
        for member in cls["members"]:
            for key in ("c_function", "c_buffer"):
                if key in member and member[key] not in declared:
                    problems.append("%s is not declared in %s" % (member[key], C_HEADER))
            if member.get("c") == "manual":
                problems += ["%s is written by hand but not declared in %s" % (function, C_HEADER)
                             for function, _ in c_functions(cls["name"], member) if function not in declared]
        if "c_revision" in cls and cls["c_revision"] not in declared:
            problems.append("%s is not declared in %s" % (cls["c_revision"], C_HEADER))
    return problems


def main(argv):
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--check", action="store_true", help="report stale regions instead of writing them")
    parser.add_argument("--clang-format", default=shutil.which("clang-format-14"),
                        help="clang-format 14 (default: clang-format-14 on PATH)")
    options = parser.parse_args(argv[1:])
    try:
        with open(os.path.join(ROOT, TABLE), encoding="utf-8") as f:
            interface = Interface(json.load(f))
        outputs = {PUBLIC_HEADER: public_header_regions(interface), C_HEADER: c_header_regions(interface),
                   C_SOURCE: c_source_regions(interface), ERROR_INFO_SOURCE: error_info_regions(interface),
                   DOC: doc_regions(interface), EXPORT_MAP: map_regions(interface)}
        outputs.update(generate_java.regions(interface))  # the Java binding: scripts/generate_java.py
        outputs.update(swift_regions(interface))
        if not options.check and not options.clang_format:
            raise TableError("writing needs clang-format-14 (or --clang-format PROGRAM)")
        stale = []
        for path, regions in outputs.items():
            with open(os.path.join(ROOT, path), encoding="utf-8") as f:
                current = f.read()
            new, ranges = replace_regions(path, current, regions)
            if path in FORMATTED and options.clang_format:
                new = clang_format(options.clang_format, path, new, ranges)
            elif path in FORMATTED and loose(new) == loose(current):
                continue
            if new == current:
                continue
            stale.append(path)
            if options.check:
                sys.stdout.writelines(difflib.unified_diff(current.splitlines(True), new.splitlines(True),
                                                           "a/" + path, "b/" + path))
            else:
                with open(os.path.join(ROOT, path), "w", encoding="utf-8") as f:
                    f.write(new)
        with open(os.path.join(ROOT, C_HEADER), encoding="utf-8") as f:
            problems = manual_problems(interface, f.read())
        problems += generate_java.hand_written_problems(interface, ROOT)
    except (TableError, KeyError, subprocess.CalledProcessError) as error:
        print("generate_interface.py: %s" % (error,), file=sys.stderr)
        return 1
    for problem in problems:
        print(problem)
    if options.check:
        for path in stale:
            print("%s is stale: run scripts/generate_interface.py" % path)
        if not options.clang_format:
            print("(clang-format-14 not found: C and C++ regions compared ignoring white space)")
        return 1 if stale or problems else 0
    for path in stale:
        print("wrote %s" % path)
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
