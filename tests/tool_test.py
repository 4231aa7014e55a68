#!/usr/bin/env python3
"""Runs the tavuro tool as a process and checks its standard output, standard
error and exit status, one table per command.

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
PLIST = '<?xml version="1.0" encoding="UTF-8"?>\n<plist version="1.0">\n<dict>\n%s</dict>\n</plist>\n'


def plist(**entries):
    body = "".join("\t<key>%s</key>\n\t%s\n" % (k, v if v.startswith("<") else "<string>%s</string>" % v)
                   for k, v in entries.items())
    return PLIST % body


def token(claims):
    return "e30." + base64.urlsafe_b64encode(json.dumps(claims).encode()).decode().rstrip("=") + ".s"


def write(path, data):
    with open(path, "wb" if isinstance(data, bytes) else "w") as f:
        f.write(data)
    return path


def jq(test):
    """A check on standard output read as JSON."""
    return lambda out: test(json.loads(out))


def main(argv):
    tool, emulator = argv[1], argv[2:]
    env = {k: v for k, v in os.environ.items() if k != "TAVURO_RESOURCE_PATH"}
    env["TZ"] = "UTC"
    failures, count = [], 0

    def run(args, stdin=""):
        return subprocess.run(emulator + [tool] + args, capture_output=True, text=True, env=env,
                              input=stdin, timeout=120)

    def check(name, args, status, out=None, err=None, stdin=""):
        """out/err: a text the stream must contain, a predicate on it, or None
        for anything (standard output must then be empty on a usage error)."""
        nonlocal count
        count += 1
        result = run(args, stdin)
        problems = []
        if result.returncode != status:
            problems.append("exit %d, want %d" % (result.returncode, status))
        for stream, want in (("stdout", out), ("stderr", err)):
            text = getattr(result, stream)
            try:
                good = want is None or (want(text) if callable(want) else want in text)
            except (ValueError, KeyError, TypeError) as error:
                good = "%s: %s" % (type(error).__name__, error)
            if good is not True:
                problems.append("%s %r is not as wanted (%r)" % (stream, text[-400:], good if good else want))
        if status == 2 and ("--help" not in result.stderr or result.stdout):
            problems.append("a usage error explains itself on stderr only")
        if problems:
            failures.append("[%s] tavuro %s: %s" % (name, " ".join(args), "; ".join(problems)))

    with tempfile.TemporaryDirectory() as work:
        def path(*parts):
            return os.path.join(work, *parts)
        for d in ("res", "clean", "empty", "bin", "dir", "dir/TavuroConfig.plist"):
            os.mkdir(path(d))
        res = path("res")
        config = write(path("res", "TavuroConfig.plist"),
                       plist(tavuro_username="user", tavuro_password="pass", other="x",
                             kelmo_endpoint="<integer>1</integer>"))
        clean = write(path("clean", "TavuroConfig.plist"),
                      plist(tavuro_username="u", tavuro_password="p", frm_endpoint="https://f/"))
        malformed = write(path("bad.plist"), "<plist><dict><key>a</key></plist>")
        kept = write(path("kept.plist"), plist(tavuro_username="u", tavuro_password="",
                                               passive_liveness_endpoint="https://p/",
                                               med_endpoint="<integer>1</integer>"))
        binary = {name: write(path(name + ".bplist"), plistlib.dumps(
            dict(tavuro_username="u", tavuro_password="p", **extra), fmt=plistlib.FMT_BINARY))
            for name, extra in (("clean", {}), ("mixed", {"frm_endpoint": 1, "x": [1]}))}
        bin_config = write(path("bin", "TavuroConfig.plist"), open(binary["mixed"], "rb").read())
        answer = write(path("answer.json"),
                       '{"n": 12, "x": 12.5, "s": "text", "ok": true, "list": [1, 2], "o": {"k": 1}}')
        not_json = write(path("not.json"), '{"n": 1,')
        array = write(path("array.json"), "[1]")
        token_file = write(path("token"), LIVE + "\n")
        password_file = write(path("password"), "from file\n")
        samples = os.path.join(os.environ.get("TAVURO_SOURCE_DIR", ""), "examples", "host", "resources")
        basic = "Basic " + base64.b64encode(b"user:pass").decode()
        huge = token({"exp": 2**63 - 1})
        gregorian_eve = token({"exp": -12219292801})  # the last second of 1582-10-04 (Julian)

        # The command line itself: help, version, option forms, unknown words.
        for args, status, out in [
            ([], 2, None), (["frobnicate"], 2, None), (["--version"], 0, "11.4.10"),
            (["-h"], 0, "Commands:"), (["help", "jwt"], 0, "usage: tavuro jwt"),
            (["help", "config", "set"], 0, "--dry-run"), (["help", "nothing"], 2, None),
            (["error", "--list=1"], 2, None), (["json", answer, "--as"], 2, None),
            (["json", answer, "n", "--as=int"], 0, "12\n"), (["error", "--", "-5"], 0, "Network problem"),
        ] + [([c, h], 0, "usage: tavuro " + c) for c in ("demo", "config", "jwt", "header", "error",
                                                         "date", "json") for h in ("--help", "-h")]:
            check("cli", args, status, out)

        # error: found 0, nothing matches 1.
        for args, status, out in [
            (["error", "-5"], 0, "Network problem"),
            (["error", "ERROR_DESC_ERROR_CouldNotAccessCredential"], 0, "-27"),
            (["error", "Invalid Parameters."], 0, "ERROR_INVALID_PARAMETER"),
            (["error", "42"], 1, ""), (["error"], 2, None),
            (["error", "--list", "--json"], 0, jq(lambda j: len(j) == 28)),
            (["error", "-5", "--json"], 0, jq(lambda j: j["name"] == "ERROR_Network")),
        ]:
            check("error", args, status, out)

        # date: converted 0, returned unchanged 1; one calendar with jwt.
        for args, status, out in [
            (["date", "/Date(1234567890000)/"], 0, "02-13-2009\n"),
            (["date", "/Date(-12219292801000)/"], 0, "10-04-1582\n"),
            (["date", "/Date(1234567890000-0500)/"], 1, "/Date(1234567890000-0500)/\n"),
            (["date", "hello"], 1, "hello\n"), (["date", ""], 1, "\n"),
            (["date", "-1500", "--json"], 0, jq(lambda j: j == {"field": "-1500", "converted": True,
                                                                "result": "12-31-1969"})),
        ]:
            check("date", args, status, out, "" if status == 0 else "unchanged")

        # jwt: valid now 0, anything the store would refuse 1; secrets from stdin or a file.
        for args, status, out, stdin in [
            (["jwt", LIVE], 0, "valid now: yes", ""),
            (["jwt", "-"], 0, "valid now: yes", LIVE + "\n"),
            (["jwt", "--token-file", token_file, "--json"], 0, jq(lambda j: j["valid"]), ""),
            (["jwt", "-"], 0, "valid now: yes", token({"exp": 4102444800, "pad": "x" * 300000})),
            (["jwt", EXPIRED, "--json"], 1, jq(lambda j: j["valid"] is False
                                               and j["expiresUtc"] == "1970-01-01T00:00:01Z"), ""),
            (["jwt", gregorian_eve, "--json"], 1, jq(lambda j: j["expiresUtc"] == "1582-10-04T23:59:59Z"
                                                     and j["expiresLocal"] == "1582-10-04 23:59:59 UTC"), ""),
            (["jwt", token({"exp": -62135596800}), "--json"], 1,
             jq(lambda j: j["expiresUtc"] == "0001-01-03T00:00:00Z"), ""),
            (["jwt", "x.!!!.y"], 1, 'no usable "exp"', ""), (["jwt", "no-dot"], 1, "", ""),
            (["jwt", huge, "--json"], 0, jq(lambda j: j["exp"] == 2**63 - 1 and j["expiresUtc"] is None
                                            and j["secondsLeft"] > 0), ""),
            (["jwt", "a.b", "--bogus"], 2, None, ""), (["jwt"], 2, None, ""),
            (["jwt", LIVE, "--token-file", token_file], 2, None, ""),
            (["jwt", "--token-file", path("dir")], 1, "", ""),
        ]:
            check("jwt", args, status, out, "is a directory" if "dir" in " ".join(args) else None, stdin)

        # header: a value 0, none or a refused token 1.
        for args, status, out, stdin in [
            (["header", "--resources", res], 0, basic + "\n", ""),
            (["header", "--resources", res, "--token", LIVE], 0, "Bearer " + LIVE + "\n", ""),
            (["header", "--resources=" + res, "--token", "-", "--json"], 0,
             jq(lambda j: j["authorization"] == "Bearer " + LIVE), LIVE),
            (["header", "--resources", res, "--token", EXPIRED], 1, basic, ""),
            (["header", "--resources", path("empty")], 1, "", ""),
        ]:
            check("header", args, status, out, None, stdin)

        # json: the library's parse-error line never reaches standard output.
        for args, status, out, err, stdin in [
            (["json", answer, "list"], 0, "[1,2]\n", "", ""),
            (["json", answer, "x", "--as", "int"], 0, "0\n", "", ""),
            (["json", answer, "n", "--as", "double"], 0, "12\n", "", ""),
            (["json", answer, "s", "--as", "string", "--json"], 0, '"text"\n', "", ""),
            (["json", "-", "k"], 0, '"v"\n', "", '{"k": "v"}'),
            (["json", answer, "list", "--as", "object"], 1, "", "no object", ""),
            (["json", answer, "missing"], 1, "", "no key", ""),
            (["json", answer, "n", "--as", "float"], 2, None, None, ""),
            (["json", not_json, "n"], 1, lambda o: o == "", "is not JSON: Unexpected end of input", ""),
            (["json", array, "n"], 1, lambda o: o == "", "array", ""),
            (["json", path("dir"), "n"], 1, lambda o: o == "", "is a directory", ""),
        ]:
            check("json", args, status, out, err, stdin)

        # config check and show: 0 only for a file read whole.
        for args, status, out in [
            (["config", "check", clean], 0, "Nothing in this file is lost."),
            (["config", "check", config], 1, "LOST other"),
            (["config", "check", config, "--json"], 1, jq(lambda j: {f["key"] for f in j["findings"]
                                                                     if f["lost"]} == {"other", "kelmo_endpoint"})),
            (["config", "check", malformed], 1, "LOST"),
            (["config", "check", kept, "--json"], 1, jq(lambda j: {(f["key"], f["lost"]) for f in j["findings"]
                                                                   if f["key"]} == {
                ("passive_liveness_endpoint", True), ("med_endpoint", True), ("tavuro_password", False)})),
            (["config", "check", binary["clean"]], 0, "Nothing in this file is lost."),
            (["config", "check", binary["mixed"]], 1, "LOST 2 value(s) that are not texts"),
            (["config", "check", path("dir", "TavuroConfig.plist")], 1, ""),
            (["config", "show", "--resources", res, "--json"], 0, jq(lambda j: (
                j["endpoints"]["kelmo_endpoint"]["source"], j["endpoints"]["frm_endpoint"]["source"]) == (
                "built-in default", "absent"))),
            (["config", "show", "--resources", path("empty"), "--json"], 1,
             jq(lambda j: j["fileState"].startswith("missing") and j["endpoints"] is None)),
            (["config", "show", "--resources", path("dir")], 1, "a directory"),
        ]:
            check("config", args, status, out)

        # config set/unset: nothing lost without --force; --dry-run writes nothing.
        before = open(bin_config, "rb").read()
        for args, status, out, err, stdin in [
            (["config", "set", "kelmo_endpoint", "x", "--resources", res], 1, "", "never written", ""),
            (["config", "set", "nonsense", "x", "--resources", res], 2, None, None, ""),
            (["config", "set", "frm_endpoint", "https://new/", "--resources", res], 1, "",
             "would lose (nothing written; --force to accept): kelmo_endpoint, other", ""),
            (["config", "set", "frm_endpoint", "https://new/", "--resources", res, "--dry-run", "--force"], 0,
             "<string>https://new/</string>", "would lose: kelmo_endpoint, other", ""),
            (["config", "set", "frm_endpoint", "https://f/", "--resources", path("bin"), "--json"], 1,
             jq(lambda j: j["refused"] and j["toXml"] and j["lost"] == ["(2 value(s) that are not texts)"]),
             "binary form", ""),
            (["config", "set", "frm_endpoint", "https://new/", "--resources", res, "--force"], 0,
             "frm_endpoint set", "dropped: kelmo_endpoint, other", ""),
            (["config", "set", "tavuro_password", "-", "--resources", res], 0, "", "", "s3cret\n"),
            (["config", "set", "tavuro_username", "--value-file", password_file, "--resources", res], 0, "", "", ""),
            (["config", "unset", "tavuro_subscription", "--resources", res, "--dry-run"], 0, "<plist", "", ""),
            (["config", "set", "tavuro_password", "x", "--resources", path("empty")], 1, "", "cannot read", ""),
            (["config", "set", "tavuro_password", "x", "--resources", path("dir")], 1, "", "is a directory", ""),
        ]:
            check("config set", args, status, out, err, stdin)
        saved = plistlib.load(open(config, "rb"))
        if saved != {"frm_endpoint": "https://new/", "tavuro_password": "s3cret", "tavuro_username": "from file"}:
            failures.append("config set did not rewrite the file as the store does: %r" % saved)
        if open(bin_config, "rb").read() != before:
            failures.append("a refused change rewrote the binary file")

        check("demo", ["demo", "--resources", samples], 0, "4. Results travel back to the host")

    for failure in failures:
        print(failure)
    print("%d passed, %d failed" % (count + 2 - len(failures), len(failures)))
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
