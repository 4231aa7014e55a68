#!/usr/bin/env python3
"""Differential test of the property-list reader and writer against plistlib.

Usage: plist_oracle.py DRIVER   (DRIVER is plist_oracle_driver)

1. plistlib writes dictionaries holding every kind of value, in XML and binary
   form, plus a few hand-written XML files and truncated copies; the string
   entries plistlib reads back from each file (or its failure) are what our
   reader must give.
2. Our writer's output for dictionaries of strings must load in plistlib to
   exactly those strings, and must equal plistlib.dumps(sort_keys=True) byte
   for byte, except that plistlib turns "\\r" into "\\n" where we keep it.
"""
import datetime
import json
import math
import os
import plistlib
import random
import subprocess
import sys
import tempfile

RNG = random.Random(20240229)
PLAIN = "abcXYZ019 _-.:/<>&'\"\t\n\u00e9\u00df\u4e2d\u05d0\U0001F600\uFFFD"
CONTROL = "\x00\x01\x1f\x7f\r"


def text(alphabet=PLAIN, longest=12):
    return "".join(RNG.choice(alphabet) for _ in range(RNG.randint(0, longest)))


def value(binary, depth):
    kinds = ["str", "str", "int", "real", "bool", "date", "data"]
    if depth < 3:
        kinds += ["list", "dict"]
    if binary:
        kinds.append("uid")
    kind = RNG.choice(kinds)
    if kind == "str":
        return text(PLAIN + CONTROL if binary else PLAIN)
    if kind == "int":
        return RNG.choice([0, -1, 255, 65536, -(2**63), 2**63 - 1, 2**64 - 1, RNG.randint(-9999, 9999)])
    if kind == "real":
        return RNG.choice([0.5, -1e300, 3.25, math.inf, float(RNG.randint(-99, 99))])
    if kind == "bool":
        return RNG.random() < 0.5
    if kind == "date":
        return datetime.datetime(RNG.randint(1, 9999), RNG.randint(1, 12), RNG.randint(1, 28),
                                 RNG.randint(0, 23), RNG.randint(0, 59), RNG.randint(0, 59))
    if kind == "data":
        return bytes(RNG.randrange(256) for _ in range(RNG.randint(0, 40)))
    if kind == "uid":
        return plistlib.UID(RNG.randint(0, 2**32))
    if kind == "list":
        return [value(binary, depth + 1) for _ in range(RNG.randint(0, 4))]
    return {text(): value(binary, depth + 1) for _ in range(RNG.randint(0, 4))}


def nested_list(levels):
    inner = []
    for _ in range(levels - 1):
        inner = [inner]
    return inner


def expected_strings(data):
    try:
        root = plistlib.loads(data)
    except Exception:
        return None
    if not isinstance(root, dict):
        return None
    return {k: v for k, v in root.items() if isinstance(v, str)}


HAND_WRITTEN = [
    '<plist><dict><!-- c --><key>a</key><!-- c --><string>xy</string></dict></plist>',
    '<plist><dict><key><![CDATA[<k>&]]></key><string>a<![CDATA[]]]]>b</string></dict></plist>',
    '<plist><dict><key>&lt;&amp;&gt;&apos;&quot;</key><string>&#65;&#x1F600;&#233;</string>'
    '</dict></plist>',
    '<plist><dict><key/><string/><key>e</key><string></string><key>w</key><string> \t </string>'
    '</dict></plist>',
    '<plist><dict><key>a</key><string>1</string><key>a</key><string>2</string><key>b</key>'
    '<string>1</string><key>b</key><integer>2</integer></dict></plist>',
    '<plist><dict><key>d</key><data>\n\tAAEC\n\tAw==\n</data><key>i</key><integer>0x1F'
    '</integer><key>r</key><real>-1.5e3</real><key>s</key><string>ok</string></dict></plist>',
    '<?xml version="1.0" encoding="UTF-8"?>\n<!DOCTYPE plist SYSTEM "x.dtd">\n<?pi x?>\n'
    '<plist version="1.0"><dict><key>k</key><string>v</string></dict></plist>\n<!-- end -->',
    '<plist><array><string>not a dict</string></array></plist>',
    '<plist><dict><key>a</key><string>x</key></dict></plist>',
    '<plist><dict><key>a</key><string>&nbsp;</string></dict></plist>',
]


def read_cases():
    """(bytes, expected string dict or None, label)"""
    cases = []
    for i in range(150):
        for fmt, name in ((plistlib.FMT_XML, "xml"), (plistlib.FMT_BINARY, "binary")):
            binary = fmt == plistlib.FMT_BINARY
            root = {text(PLAIN + CONTROL if binary else PLAIN): value(binary, 1)
                    for _ in range(RNG.randint(0, 12))}
            data = plistlib.dumps(root, fmt=fmt)
            expected = expected_strings(data)
            assert expected == {k: v for k, v in root.items() if isinstance(v, str)}
            cases.append((data, expected, f"{name} {i}"))
            if i % 10 == 0:
                cut = data[:RNG.randint(0, len(data) - 2)]
                cases.append((cut, expected_strings(cut), f"{name} {i} cut to {len(cut)}"))
    # Wide references and offsets: many objects and well over 64 KiB.
    big = {f"key {i} {text()}": f"{i}:" + "v" * RNG.randint(100, 400) for i in range(400)}
    big["numbers"] = list(range(300))
    for fmt in (plistlib.FMT_XML, plistlib.FMT_BINARY):
        data = plistlib.dumps(big, fmt=fmt)
        assert fmt == plistlib.FMT_XML or data[-26:-24] == b"\x04\x02"  # offset, ref sizes
        cases.append((data, expected_strings(data), f"big {fmt}"))
    for i, doc in enumerate(HAND_WRITTEN):
        cases.append((doc.encode(), expected_strings(doc.encode()), f"hand-written {i}"))
    # plistlib has no depth limit; ours is 128 levels, the root counting.
    for levels, readable in ((128, True), (129, False)):
        root = {"s": "t", "deep": nested_list(levels - 1)}
        for fmt in (plistlib.FMT_XML, plistlib.FMT_BINARY):
            cases.append((plistlib.dumps(root, fmt=fmt), {"s": "t"} if readable else None,
                          f"depth {levels} {fmt}"))
    return cases


def check_reader(driver, workdir):
    cases = read_cases()
    paths = []
    for i, (data, _, _) in enumerate(cases):
        path = os.path.join(workdir, f"case{i}.plist")
        with open(path, "wb") as f:
            f.write(data)
        paths.append(path)
    out = subprocess.run([driver, "read", *paths], check=True, capture_output=True).stdout
    failures = 0
    for (data, expected, label), line in zip(cases, out.decode("utf-8").splitlines(), strict=True):
        actual = json.loads(line)
        if actual != expected:
            failures += 1
            print(f"reader mismatch, {label}: got {actual!r}, plistlib {expected!r}")
    print(f"reader: {len(cases)} files, {failures} mismatches")
    return failures


def check_writer(driver):
    dicts = [{}, {"": ""}, {"tavuro_username": "user", "tavuro_password": "p<a>s&s"}]
    dicts += [{text(): text() for _ in range(RNG.randint(0, 10))} for _ in range(200)]
    with_cr = []
    for _ in range(50):
        d = {text(PLAIN + "\r"): text(PLAIN + "\r") for _ in range(RNG.randint(1, 6))}
        with_cr.append({k: v for k, v in d.items() if "\r\n" not in k + v})
    all_dicts = dicts + with_cr
    lines = [",".join(k.encode().hex() + ":" + v.encode().hex() for k, v in d.items())
             for d in all_dicts]
    out = subprocess.run([driver, "write"], input="\n".join(lines) + "\n", text=True,
                         check=True, capture_output=True).stdout.split("\n")
    failures = 0
    for d, written in zip(all_dicts, out):
        ours = bytes.fromhex(written)
        # Keys in UTF-16 order, as the platform writes them.
        ordered = dict(sorted(d.items(), key=lambda item: item[0].encode("utf-16-be")))
        theirs = plistlib.dumps(ordered, fmt=plistlib.FMT_XML, sort_keys=False)
        # plistlib writes "\r" as "\n" (and an XML reader normalises it so
        # too); we keep it, so compare with that one difference undone.
        if ours.replace(b"\r", b"\n") != theirs:
            failures += 1
            print(f"writer bytes differ for {d!r}:\n{ours!r}\n{theirs!r}")
        if d in dicts and plistlib.loads(ours) != d:
            failures += 1
            print(f"plistlib reads back {plistlib.loads(ours)!r} instead of {d!r}")
    print(f"writer: {len(all_dicts)} dictionaries, {failures} mismatches")
    return failures


def main():
    driver = sys.argv[1]
    with tempfile.TemporaryDirectory() as workdir:
        failures = check_reader(driver, workdir) + check_writer(driver)
    print(f"{0 if failures else 1} passed, {1 if failures else 0} failed")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
