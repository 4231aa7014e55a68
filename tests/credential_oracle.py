#!/usr/bin/env python3
"""Checks the credential store against Python's plistlib.

Usage: credential_oracle.py DRIVER KELMO_DEFAULT, where DRIVER is the
credential_oracle_driver program and KELMO_DEFAULT the build's default
Kelmo address.

1. Configuration files written by plistlib (XML and binary, every kind of
   value, unicode, empty texts) load as the store's rules say: a key counts
   only when it holds a text, and "kelmo_endpoint" falls back to the default.
2. After random sequences of setters, plistlib reads back from the rewritten
   file exactly the saved keys with their values, and nothing else appeared
   in the directory.
"""
import datetime
import os
import plistlib
import random
import subprocess
import sys
import tempfile

DRIVER, KELMO_DEFAULT = sys.argv[1], sys.argv[2]
CONFIG = "TavuroConfig.plist"
TEXT_FIELDS = {"username": "tavuro_username", "password": "tavuro_password",
               "subscription": "tavuro_subscription"}
ENDPOINT_KEYS = {"frm": "frm_endpoint", "id": "ferisant_endpoint", "med": "med_endpoint",
                 "passive": "passive_liveness_endpoint", "kelmo": "kelmo_endpoint"}
SAVED_ENDPOINTS = ("id", "med", "frm")
NON_TEXTS = [0, -7, 2**63 - 1, 1.5, True, False, datetime.datetime(2020, 1, 2, 3, 4, 5),
             b"\x00\xff", [], ["text"], {}, {"nested": "text"}]
TEXTS = ["", "user", "https://id.example.com/api/", "Z\u00fcrich \u2713 \U0001d11e",
         "e\u0301", "<&>\"'", "tab\tand\nnewline", "  spaced  ", "\u4e2d\u6587"]
failures = 0


def check(label, got, want):
    global failures
    if got != want:
        failures += 1
        print(f"FAIL {label}:\n  got  {got!r}\n  want {want!r}")


def run(directory, *ops):
    out = subprocess.run([DRIVER, directory, *ops], check=True, capture_output=True,
                         text=True).stdout
    state = {}
    for line in out.splitlines():
        name, value = line.split(" ", 1)
        state[name] = None if value == "-" else (
            value if name == "endpoints" else bytes.fromhex(value).decode("utf-8"))
    return state


def expected_load(root):
    """What the store should hold after loading a file whose root is `root`."""
    if not isinstance(root, dict):
        return {"username": None, "password": None, "subscription": None, "endpoints": None}
    text = lambda key: root[key] if isinstance(root.get(key), str) else None
    state = {field: text(key) for field, key in TEXT_FIELDS.items()}
    state["endpoints"] = "present"
    state.update({field: text(key) for field, key in ENDPOINT_KEYS.items()})
    if state["kelmo"] is None:
        state["kelmo"] = KELMO_DEFAULT
    return state


def expected_file(state):
    saved = {key: state[field] for field, key in TEXT_FIELDS.items()}
    if state["endpoints"] is not None:
        saved.update({ENDPOINT_KEYS[f]: state[f] for f in SAVED_ENDPOINTS})
    return {key: value for key, value in saved.items() if value is not None}


def random_value(rng):
    return rng.choice(TEXTS + NON_TEXTS + [None])


def random_root(rng):
    keys = list(TEXT_FIELDS.values()) + list(ENDPOINT_KEYS.values()) + ["unknown", "\u00fcnknown"]
    root = {}
    for key in keys:
        value = random_value(rng)
        if value is not None:
            root[key] = value
    return root


def hex_or_absent(value):
    return "-" if value is None else value.encode("utf-8").hex()


def random_ops(rng, state):
    ops = []
    for _ in range(rng.randrange(1, 5)):
        kind = rng.choice(["set", "clear", "endpoints"])
        if kind == "endpoints":
            values = [rng.choice(TEXTS + [None]) for _ in SAVED_ENDPOINTS]
            ops += ["endpoints"] + [hex_or_absent(v) for v in values]
            state["endpoints"] = "present"
            state.update(dict(zip(SAVED_ENDPOINTS, values)))
            state.update(passive=None, kelmo=None)
        else:
            field = rng.choice(list(TEXT_FIELDS))
            value = rng.choice(TEXTS) if kind == "set" else None
            ops += ["set", field, hex_or_absent(value)] if kind == "set" else ["clear", field]
            state[field] = value
    return ops


def main():
    rng = random.Random(20240611)
    roots = [{}, {"tavuro_username": "", "kelmo_endpoint": ""}, ["not", "a", "dict"]]
    roots += [{key: value} for key in ["tavuro_username", "kelmo_endpoint"]
              for value in NON_TEXTS + TEXTS]
    roots += [random_root(rng) for _ in range(60)]
    for fmt_name, fmt in (("xml", plistlib.FMT_XML), ("binary", plistlib.FMT_BINARY)):
        for index, root in enumerate(roots):
            with tempfile.TemporaryDirectory() as directory:
                with open(os.path.join(directory, CONFIG), "wb") as f:
                    plistlib.dump(root, f, fmt=fmt)
                check(f"load {fmt_name} #{index} {root!r}", run(directory), expected_load(root))

    for index in range(60):
        root = random_root(rng)
        state = expected_load(root)
        ops = random_ops(rng, state)
        with tempfile.TemporaryDirectory() as directory:
            path = os.path.join(directory, CONFIG)
            with open(path, "wb") as f:
                plistlib.dump(root, f, fmt=rng.choice([plistlib.FMT_XML, plistlib.FMT_BINARY]))
            got_state = run(directory, *ops)
            with open(path, "rb") as f:
                saved = plistlib.load(f)
            label = f"save #{index} {root!r} {ops!r}"
            check(label + " memory", got_state, state)
            check(label + " file", saved, expected_file(state))
            check(label + " directory", os.listdir(directory), [CONFIG])

    with tempfile.TemporaryDirectory() as directory:
        run(directory, "set", "username", "75")
        check("no file is created", os.listdir(directory), [])

    print(f"{len(roots) * 2 + 61 - failures} passed, {failures} failed")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
