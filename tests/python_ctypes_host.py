#!/usr/bin/env python3
"""A host in Python: loads the shared library with ctypes only, sets the
credentials in a scratch resource directory, reads the Basic header and reads
a JSON answer with the typed getters.

    python_ctypes_host.py path/to/libTavuroCommon.so
"""
import base64
import ctypes
import os
import sys
import tempfile

CONFIG = """<?xml version="1.0" encoding="UTF-8"?>
<plist version="1.0"><dict>
<key>tavuro_username</key><string>first</string>
<key>unknown_key</key><string>dropped at the first save</string>
</dict></plist>
"""
TEXT, HANDLE, IN = ctypes.c_void_p, ctypes.c_void_p, ctypes.c_char_p  # owned results: raw pointers
SIGNATURES = {
    "string_free": (None, [TEXT]),
    "Credential_username": (TEXT, []),
    "Credential_setUsernameWithUsername": (None, [IN]),
    "Credential_setPasswordWithPassword": (None, [IN]),
    "Credential_getBasicAuthHeader": (TEXT, []),
    "Utils_convertToDictionaryWithText": (HANDLE, [IN]),
    "Utils_getDoubleValueWithJsonDict_key": (ctypes.c_double, [HANDLE, IN]),
    "Utils_getStringValueWithJsonDict_key": (TEXT, [HANDLE, IN]),
    "Utils_getArrayValueWithJsonDict_key": (HANDLE, [HANDLE, IN]),
    "JsonArray_count": (ctypes.c_size_t, [HANDLE]),
    "JsonArray_release": (None, [HANDLE]),
    "JsonDictionary_release": (None, [HANDLE]),
    "TavuroErrorDescriptions_ERROR_DESC_Network": (ctypes.c_char_p, []),
}


def expect(actual, expected, what):
    if actual != expected:
        raise AssertionError("%s: got %r, expected %r" % (what, actual, expected))


def main(argv):
    if len(argv) != 2:
        sys.stderr.write(__doc__)
        return 2
    with tempfile.TemporaryDirectory() as directory:
        config = os.path.join(directory, "TavuroConfig.plist")
        with open(config, "w", encoding="utf-8") as f:
            f.write(CONFIG)
        os.environ["TAVURO_RESOURCE_PATH"] = directory  # read when the store is first used
        lib = ctypes.CDLL(argv[1])
        fn = {}
        for name, (restype, argtypes) in SIGNATURES.items():
            fn[name] = getattr(lib, "tavuro_" + name)
            fn[name].restype, fn[name].argtypes = restype, argtypes

        def take_text(pointer):  # copies an owned char* and frees it
            text = ctypes.string_at(pointer).decode("utf-8") if pointer else None
            fn["string_free"](pointer)
            return text

        expect(take_text(fn["Credential_username"]()), "first", "username read from the file")
        fn["Credential_setUsernameWithUsername"]("user".encode())
        fn["Credential_setPasswordWithPassword"]("pässword".encode())
        expected = "Basic " + base64.b64encode("user:pässword".encode()).decode()
        expect(take_text(fn["Credential_getBasicAuthHeader"]()), expected, "Basic header")
        with open(config, encoding="utf-8") as f:
            saved = f.read()
        expect(("unknown_key" in saved, "<string>user</string>" in saved), (False, True), "saved")

        answer = fn["Utils_convertToDictionaryWithText"](b'{"score": 0.25, "name": "Ada", "items": [1, 2]}')
        expect(fn["Utils_getDoubleValueWithJsonDict_key"](answer, b"score"), 0.25, "double")
        expect(take_text(fn["Utils_getStringValueWithJsonDict_key"](answer, b"name")), "Ada", "string")
        items = fn["Utils_getArrayValueWithJsonDict_key"](answer, b"items")
        expect(fn["JsonArray_count"](items), 2, "array length")
        fn["JsonArray_release"](items)
        fn["JsonDictionary_release"](answer)
        expect(fn["TavuroErrorDescriptions_ERROR_DESC_Network"](), b"Network problem", "static text")
    print("python ctypes host: all checks passed")
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
