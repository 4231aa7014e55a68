#!/usr/bin/env python3
"""Differential tests against Python's base64 and plistlib; DRIVER is oracle_driver.

    python_oracle.py DRIVER base64 | plist | credential KELMO_DEFAULT

base64: encoding and lenient decoding of random bytes and texts. plist: what
plistlib writes (every kind of value, XML and binary, wide, deep, truncated)
reads to its string entries; what we write loads in plistlib and equals its
own output byte for byte. credential: files plistlib writes load as the
store's rules say; after random setters plistlib reads back the saved keys.
"""
import base64
import datetime
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
checks = failures = 0


def check(label, got, want):
    global checks, failures
    checks += 1
    if got != want:
        failures += 1
        if failures <= 10:
            print(f"FAIL {label}:\n  got  {got!r}\n  want {want!r}"[:2000])


def driver(*args, stdin=None):
    return subprocess.run([DRIVER, *args], input=stdin, text=True, check=True,
                          capture_output=True).stdout.split("\n")[:-1]


def hexed(text):
    return "-" if text is None else text.encode().hex()


def check_base64():
    requests, expected = [], []
    alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/"
    for length in list(range(64)) + [RNG.randrange(64, 3000) for _ in range(3000)]:
        data = RNG.randbytes(length)
        text = base64.b64encode(data).decode()
        wrapped = " \t".join(text[i:i + 76] for i in range(0, len(text), 76))
        requests += ["E " + data.hex(), "D " + text, "D " + text.rstrip("="), "D " + wrapped]
        # Without its padding a last group of two or three is refused.
        unpadded = data.hex() if len(text.rstrip("=")) % 4 == 0 else "absent"
        expected += [text, data.hex(), unpadded, base64.b64decode(wrapped).hex()]
    for _ in range(3000):  # short texts with their padding restored: Python's answer
        text = "".join(RNG.choice(alphabet) for _ in range(RNG.choice([2, 3, 6, 7])))
        text += "=" * (-len(text) % 4)
        requests.append("D " + text)
        expected.append(base64.b64decode(text).hex())
    for request, want, got in zip(requests, expected, driver("base64", stdin="\n".join(requests) + "\n")):
        check(request[:80], got, want)


def value(binary, depth):
    kind = RNG.choice(["str", "str", "int", "real", "bool", "date", "data"]
                      + ["list", "dict"] * (depth < 3) + ["uid"] * binary)
    return {
        "str": lambda: text(PLAIN + CONTROL if binary else PLAIN),
        "int": lambda: RNG.choice([0, -1, 255, 65536, -(2**63), 2**63 - 1, 2**64 - 1, RNG.randint(-9999, 9999)]),
        "real": lambda: RNG.choice([0.5, -1e300, 3.25, math.inf, float(RNG.randint(-99, 99))]),
        "bool": lambda: RNG.random() < 0.5,
        "date": lambda: datetime.datetime(RNG.randint(1, 9999), RNG.randint(1, 12), RNG.randint(1, 28),
                                          RNG.randint(0, 23), RNG.randint(0, 59), RNG.randint(0, 59)),
        "data": lambda: RNG.randbytes(RNG.randint(0, 40)),
        "uid": lambda: plistlib.UID(RNG.randint(0, 2**32 - 1)),
        "list": lambda: [value(binary, depth + 1) for _ in range(RNG.randint(0, 4))],
        "dict": lambda: {text(): value(binary, depth + 1) for _ in range(RNG.randint(0, 4))},
    }[kind]()


def text(alphabet=PLAIN, longest=12):
    return "".join(RNG.choice(alphabet) for _ in range(RNG.randint(0, longest)))


def strings_of(data):
    try:
        root = plistlib.loads(data)
    except Exception:
        return "absent"
    if not isinstance(root, dict):
        return "absent"
    return "".join(hexed(k) + ":" + hexed(v) + "," for k, v in sorted(root.items(), key=lambda e: e[0].encode())
                   if isinstance(v, str))


def check_plist(workdir):
    files = []
    for i in range(150):
        for fmt in (plistlib.FMT_XML, plistlib.FMT_BINARY):
            binary = fmt == plistlib.FMT_BINARY
            root = {text(PLAIN + CONTROL if binary else PLAIN): value(binary, 1) for _ in range(RNG.randint(0, 12))}
            files.append(plistlib.dumps(root, fmt=fmt))
            if i % 10 == 0:
                files.append(files[-1][:RNG.randint(0, len(files[-1]) - 2)])
    # Wide references and offsets: many objects and well over 64 KiB.
    big = {f"key {i} {text()}": f"{i}:" + "v" * RNG.randint(100, 400) for i in range(400)}
    big["numbers"] = list(range(300))
    files += [plistlib.dumps(big, fmt=fmt) for fmt in (plistlib.FMT_XML, plistlib.FMT_BINARY)]
    expected = [strings_of(data) for data in files]
    # plistlib has no depth limit; ours is 128 levels, the root counting.
    for levels, readable in ((128, True), (129, False)):
        deep = []
        for _ in range(levels - 2):
            deep = [deep]
        for fmt in (plistlib.FMT_XML, plistlib.FMT_BINARY):
            files.append(plistlib.dumps({"s": "t", "deep": deep}, fmt=fmt))
            expected.append(hexed("s") + ":" + hexed("t") + "," if readable else "absent")
    paths = []
    for i, data in enumerate(files):
        paths.append(os.path.join(workdir, f"case{i}.plist"))
        with open(paths[-1], "wb") as f:
            f.write(data)
    for data, want, got in zip(files, expected, driver("plist-read", *paths), strict=True):
        check(f"reading {data[:200]!r}", got, want)

    dicts = [{}, {"": ""}] + [{text(): text() for _ in range(RNG.randint(0, 10))} for _ in range(200)]
    with_cr = [{k: v for k, v in ((text(PLAIN + "\r"), text(PLAIN + "\r")) for _ in range(RNG.randint(1, 6)))
                if "\r\n" not in k + v} for _ in range(50)]
    lines = [",".join(hexed(k) + ":" + hexed(v) for k, v in d.items()) for d in dicts + with_cr]
    for d, written in zip(dicts + with_cr, driver("plist-write", stdin="\n".join(lines) + "\n")):
        ours = bytes.fromhex(written)
        # plistlib writes "\r" as "\n" (as an XML reader reads it); we keep it.
        # Keys come in the order of their UTF-16 code units, as the platform writes them.
        ordered = dict(sorted(d.items(), key=lambda item: item[0].encode("utf-16-be")))
        check(f"writing {d!r}", ours.replace(b"\r", b"\n"), plistlib.dumps(ordered, sort_keys=False))
        check(f"plistlib reading ours for {d!r}", plistlib.loads(ours) if d in dicts else d, d)


TEXT_FIELDS = {"username": "tavuro_username", "password": "tavuro_password",
               "subscription": "tavuro_subscription"}
ENDPOINT_KEYS = {"frm": "frm_endpoint", "id": "ferisant_endpoint", "med": "med_endpoint",
                 "passive": "passive_liveness_endpoint", "kelmo": "kelmo_endpoint"}
SAVED_ENDPOINTS = ("id", "med", "frm")
NON_TEXTS = [0, 2**63 - 1, 1.5, True, datetime.datetime(2020, 1, 2, 3, 4, 5), b"\x00\xff", [], {"n": "t"}]
TEXTS = ["", "user", "https://id.example.com/api/", "Z\u00fcrich \u2713 \U0001d11e", "e\u0301",
         "<&>\"'", "tab\tand\nnewline", "  spaced  "]


def expected_load(root):
    """What the store holds after loading a file whose root is `root`."""
    state = {field: None for field in TEXT_FIELDS}
    if isinstance(root, dict):
        keys = {**TEXT_FIELDS, **ENDPOINT_KEYS}
        state = {f: root[k] if isinstance(root.get(k), str) else None for f, k in keys.items()}
        state["kelmo"] = KELMO_DEFAULT if state["kelmo"] is None else state["kelmo"]
    return state


def check_credential():
    keys = list(TEXT_FIELDS.values()) + list(ENDPOINT_KEYS.values()) + ["unknown", "\u00fcnknown"]
    random_root = lambda: {k: v for k in keys if (v := RNG.choice(TEXTS + NON_TEXTS + [None])) is not None}
    roots = [{}, {"tavuro_username": "", "kelmo_endpoint": ""}, ["not", "a", "dict"]]
    roots += [{key: v} for key in ["tavuro_username", "kelmo_endpoint"] for v in NON_TEXTS + TEXTS]
    roots += [random_root() for _ in range(120)]
    for index, root in enumerate(roots):
        state = expected_load(root)
        ops = []
        for _ in range(RNG.randrange(0, 5) if index >= 60 else 0):  # the later roots get setters
            if RNG.random() < 0.3:
                values = [RNG.choice(TEXTS + [None]) for _ in SAVED_ENDPOINTS]
                ops += ["endpoints"] + [hexed(v) for v in values]
                state.update(dict(zip(SAVED_ENDPOINTS, values)), passive=None, kelmo=None)
            else:
                field, new = RNG.choice(list(TEXT_FIELDS)), RNG.choice(TEXTS + [None])
                ops += ["set", field, hexed(new)]
                state[field] = new
        with tempfile.TemporaryDirectory() as directory:
            path = os.path.join(directory, "TavuroConfig.plist")
            with open(path, "wb") as f:
                plistlib.dump(root, f, fmt=RNG.choice([plistlib.FMT_XML, plistlib.FMT_BINARY]))
            got = {name: None if value == "-" else bytes.fromhex(value).decode()
                   for name, value in (line.split(" ") for line in driver("credential", directory, *ops))}
            label = f"root {root!r}, setters {ops!r}"
            check(label, got, {k: v for k, v in state.items()})
            if ops:
                with open(path, "rb") as f:
                    saved = plistlib.load(f)
                want = {TEXT_FIELDS[f]: state[f] for f in TEXT_FIELDS}
                if "frm" in state:
                    want.update({ENDPOINT_KEYS[f]: state[f] for f in SAVED_ENDPOINTS})
                check(label + ": file", saved, {k: v for k, v in want.items() if v is not None})
                check(label + ": directory", os.listdir(directory), ["TavuroConfig.plist"])
    with tempfile.TemporaryDirectory() as directory:
        driver("credential", directory, "set", "username", "75")
        check("no file is created", os.listdir(directory), [])


if __name__ == "__main__":
    DRIVER, CHECK = sys.argv[1], sys.argv[2]
    KELMO_DEFAULT = sys.argv[3] if len(sys.argv) > 3 else None
    with tempfile.TemporaryDirectory() as workdir:
        {"base64": check_base64, "plist": lambda: check_plist(workdir), "credential": check_credential}[CHECK]()
    print(f"{CHECK}: {checks} comparisons, {failures} failed")
    sys.exit(1 if failures else 0)
