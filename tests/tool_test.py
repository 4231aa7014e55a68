#!/usr/bin/env python3
"""Runs the tavuro tool as a process and checks its output and exit status.

    tool_test.py path/to/tavuro [emulator and its arguments...]
"""
import base64
import json
import os
import plistlib
import subprocess
import sys
import tempfile

LIVE = "eyJhbGciOiJub25lIn0.eyJleHAiOjQxMDI0NDQ4MDB9.sig"  # exp in 2100
EXPIRED = "eyJhbGciOiJub25lIn0.eyJleHAiOjF9.sig"  # exp 1970-01-01T00:00:01Z
PLIST = """<?xml version="1.0" encoding="UTF-8"?>
<plist version="1.0">
<dict>
%s</dict>
</plist>
"""


def plist(**entries):
    body = "".join("\t<key>%s</key>\n\t%s\n" % (k, v if v.startswith("<") else "<string>%s</string>" % v)
                   for k, v in entries.items())
    return PLIST % body


def write(path, text):
    with open(path, "w", encoding="utf-8") as f:
        f.write(text)
    return path


def main(argv):
    tool, emulator = argv[1], argv[2:]
    env = {k: v for k, v in os.environ.items() if k != "TAVURO_RESOURCE_PATH"}
    failures = []

    def run(args):
        return subprocess.run(emulator + [tool] + args, capture_output=True, text=True, env=env,
                              timeout=120)

    with tempfile.TemporaryDirectory() as work:
        res = os.path.join(work, "res")
        os.mkdir(res)
        config = write(os.path.join(res, "TavuroConfig.plist"),
                       plist(tavuro_username="user", tavuro_password="pass", other="x",
                             kelmo_endpoint="<integer>1</integer>"))
        os.mkdir(os.path.join(work, "clean"))
        os.mkdir(os.path.join(work, "empty"))
        clean = write(os.path.join(work, "clean", "TavuroConfig.plist"),
                      plist(tavuro_username="u", tavuro_password="p", frm_endpoint="https://f/"))
        malformed = write(os.path.join(work, "bad.plist"), "<plist><dict><key>a</key></plist>")
        kept = write(os.path.join(work, "kept.plist"),
                     plist(tavuro_username="u", tavuro_password="", passive_liveness_endpoint="https://p/",
                           med_endpoint="<integer>1</integer>"))
        binary = {}
        for name, extra in (("clean", {}), ("mixed", {"frm_endpoint": 1, "x": [1]})):
            binary[name] = os.path.join(work, name + ".bplist")
            with open(binary[name], "wb") as f:
                plistlib.dump(dict(tavuro_username="u", tavuro_password="p", **extra), f,
                              fmt=plistlib.FMT_BINARY)
        huge_exp = "e30." + base64.urlsafe_b64encode(b'{"exp":9223372036854775807}').decode().rstrip("=")
        answer = write(os.path.join(work, "answer.json"),
                       '{"n": 12, "x": 12.5, "s": "text", "ok": true, "list": [1, 2], "o": {"k": 1}}')
        samples = os.path.join(os.environ.get("TAVURO_SOURCE_DIR", ""), "examples", "host", "resources")
        basic = "Basic " + base64.b64encode(b"user:pass").decode()

        def config_json(out):
            endpoints = json.loads(out)["endpoints"]
            return endpoints["kelmo_endpoint"]["source"] == "built-in default" and \
                endpoints["frm_endpoint"]["source"] == "absent"

        # (arguments, exit status, what standard output must contain or satisfy)
        cases = [
            ([], 2, ""),
            (["frobnicate"], 2, ""),
            (["error", "-5"], 0, "Network problem"),
            (["error", "ERROR_DESC_ERROR_CouldNotAccessCredential"], 0, "-27"),
            (["error", "Invalid Parameters."], 0, "ERROR_INVALID_PARAMETER"),
            (["error", "42"], 1, ""),
            (["error"], 2, ""),
            (["error", "--list", "--json"], 0, lambda out: len(json.loads(out)) == 28),
            (["date", "/Date(1234567890000)/"], 0, "02-13-2009\n"),
            (["date", "/Date(1234567890000-0500)/"], 0, "/Date(1234567890000-0500)/\n"),
            (["jwt", LIVE], 0, "valid now: yes"),
            (["jwt", EXPIRED, "--json"], 0, lambda out: json.loads(out)["valid"] is False
             and json.loads(out)["expiresUtc"] == "1970-01-01T00:00:01Z"),
            (["jwt", "x.!!!.y"], 1, 'no usable "exp"'),
            (["jwt", "no-dot"], 1, ""),
            (["jwt", huge_exp, "--json"], 0, lambda out: json.loads(out)["exp"] == 2**63 - 1
             and json.loads(out)["valid"] is True and json.loads(out)["secondsLeft"] > 0),
            (["jwt", "a.b", "--bogus"], 2, ""),
            (["header", "--resources", res], 0, basic + "\n"),
            (["header", "--resources", res, "--token", LIVE], 0, "Bearer " + LIVE + "\n"),
            (["header", "--resources", os.path.join(work, "empty")], 1, ""),
            (["json", answer, "list"], 0, "[1,2]\n"),
            (["json", answer, "x", "--as", "int"], 0, "0\n"),
            (["json", answer, "n", "--as", "double"], 0, "12\n"),
            (["json", answer, "s", "--as", "string"], 0, "text\n"),
            (["json", answer, "list", "--as", "object"], 1, ""),
            (["json", answer, "missing"], 1, ""),
            (["json", answer, "n", "--as", "float"], 2, ""),
            (["json", malformed, "n"], 1, ""),
            (["config", "check", clean], 0, "Nothing in this file is lost."),
            (["config", "check", config], 1, "LOST other"),
            (["config", "check", config, "--json"], 1,
             lambda out: {f["key"] for f in json.loads(out)["findings"] if f["lost"]} == {"other", "kelmo_endpoint"}),
            (["config", "check", malformed], 1, "LOST"),
            (["config", "check", kept, "--json"], 1,
             lambda out: {(f["key"], f["lost"]) for f in json.loads(out)["findings"] if f["key"]} == {
                 ("passive_liveness_endpoint", True), ("med_endpoint", True), ("tavuro_password", False)}),
            (["config", "check", binary["clean"]], 0, "Nothing in this file is lost."),
            (["config", "check", binary["mixed"]], 1, "LOST 2 value(s) that are not texts"),
            (["config", "show", "--resources", res, "--json"], 0, config_json),
            (["config", "set", "kelmo_endpoint", "x", "--resources", res], 1, ""),
            (["config", "set", "nonsense", "x", "--resources", res], 2, ""),
            (["config", "set", "frm_endpoint", "https://new/", "--resources", res], 0,
             "dropped by the rewrite: other"),
            (["config", "unset", "tavuro_password", "--resources", res], 0, "tavuro_password removed"),
            (["demo", "--resources", samples], 0, "4. Results travel back to the host"),
        ]
        commands = ["demo", "config", "jwt", "header", "error", "date", "json"]
        cases += [([command, "--help"], 0, "usage: tavuro " + command) for command in commands]

        for args, status, expected in cases:
            result = run(args)
            good_output = expected(result.stdout) if callable(expected) else expected in result.stdout
            if result.returncode != status or not good_output:
                failures.append("tavuro %s: exit %d (want %d)\n  stdout: %r\n  stderr: %r" % (
                    " ".join(args), result.returncode, status, result.stdout[-400:], result.stderr[-400:]))
            if status == 2 and "usage" not in result.stderr and "--help" not in result.stderr:
                failures.append("tavuro %s: a usage error must explain itself on stderr" % " ".join(args))

        # The store's own rewrite: the set value in, the unknown key and the unset one out.
        with open(config, encoding="utf-8") as f:
            saved = f.read()
        if "https://new/" not in saved or "other" in saved or "tavuro_password" in saved:
            failures.append("config set/unset did not rewrite the file as the store does:\n" + saved)

    for failure in failures:
        print(failure)
    print("%d passed, %d failed" % (len(cases) + 1 - len(failures), len(failures)))
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
