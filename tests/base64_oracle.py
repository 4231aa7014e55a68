#!/usr/bin/env python3
"""Compares our base64 with Python's on thousands of random inputs.

Usage: base64_oracle.py DRIVER, where DRIVER is the base64_oracle_driver
program. Decoding is compared only on text that Python's decoder accepts
too: well-formed base64, padded, unpadded (which we refuse unless whole
groups remain) and broken by blanks every 76 characters (Python skips them too).
"""
import base64
import random
import subprocess
import sys


def cases(rng):
    lengths = list(range(0, 64)) + [rng.randrange(64, 3000) for _ in range(3000)]
    for length in lengths:
        data = bytes(rng.randrange(256) for _ in range(length))
        text = base64.b64encode(data).decode("ascii")
        yield "E " + data.hex(), text
        yield "D " + text, data.hex()
        unpadded = text.rstrip("=")
        yield "D " + unpadded, data.hex() if len(unpadded) % 4 == 0 else "absent"
        wrapped = " \t".join(text[i:i + 76] for i in range(0, len(text), 76))
        yield "D " + wrapped, base64.b64decode(wrapped).hex()
    # Short texts with their padding restored: Python's answer.
    alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/"
    for _ in range(3000):
        text = "".join(rng.choice(alphabet) for _ in range(rng.choice([2, 3, 6, 7])))
        padded = text + "=" * (-len(text) % 4)
        yield "D " + padded, base64.b64decode(padded).hex()


def main():
    requests, expected = zip(*cases(random.Random(4648)))
    answer = subprocess.run([sys.argv[1]], input="\n".join(requests) + "\n",
                            capture_output=True, text=True, check=True)
    actual = answer.stdout.split("\n")[:-1]
    if len(actual) != len(expected):
        print(f"driver answered {len(actual)} of {len(expected)} requests")
        return 1
    wrong = [(r, e, a) for r, e, a in zip(requests, expected, actual) if e != a]
    for request, want, got in wrong[:10]:
        print(f"{request[:80]!r}: Python {want[:80]!r}, ours {got[:80]!r}")
    print(f"{len(expected)} comparisons, {len(wrong)} disagreements")
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())
