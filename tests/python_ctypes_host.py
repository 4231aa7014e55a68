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
<plist version="1.0">
<dict>
\t<key>tavuro_username</key>
\t<string>first</string>
\t<key>unknown_key</key>
\t<string>dropped at the first save</string>
</dict>
</plist>
"""


class Library:
    """The few functions this host calls, with their C types."""

    def __init__(self, path):
        lib = ctypes.CDLL(path)
        text, handle = ctypes.c_void_p, ctypes.c_void_p  # owned results: kept as raw pointers
        signatures = {
            "tavuro_string_free": (None, [text]),
            "tavuro_Credential_username": (text, []),
            "tavuro_Credential_setUsernameWithUsername": (None, [ctypes.c_char_p]),
            "tavuro_Credential_setPasswordWithPassword": (None, [ctypes.c_char_p]),
            "tavuro_Credential_getBasicAuthHeader": (text, []),
            "tavuro_Credential_isCredentialValidWithEndpoint": (ctypes.c_bool, [ctypes.c_char_p]),
            "tavuro_Utils_convertToDictionaryWithText": (handle, [ctypes.c_char_p]),
            "tavuro_Utils_getIntValueWithJsonDict_key": (ctypes.c_int64, [handle, ctypes.c_char_p]),
            "tavuro_Utils_getDoubleValueWithJsonDict_key": (ctypes.c_double, [handle, ctypes.c_char_p]),
            "tavuro_Utils_getStringValueWithJsonDict_key": (text, [handle, ctypes.c_char_p]),
            "tavuro_Utils_getBooleanValueWithJsonDict_key": (ctypes.c_bool, [handle, ctypes.c_char_p]),
            "tavuro_Utils_getObjectValueWithJsonDict_key": (handle, [handle, ctypes.c_char_p]),
            "tavuro_Utils_getArrayValueWithJsonDict_key": (handle, [handle, ctypes.c_char_p]),
            "tavuro_JsonArray_count": (ctypes.c_size_t, [handle]),
            "tavuro_JsonArray_release": (None, [handle]),
            "tavuro_JsonDictionary_release": (None, [handle]),
            "tavuro_TavuroErrorDescriptions_ERROR_DESC_Network": (ctypes.c_char_p, []),
            "tavuro_TavuroErrorCodes_ERROR_Network": (ctypes.c_int64, []),
        }
        for name, (restype, argtypes) in signatures.items():
            function = getattr(lib, name)
            function.restype, function.argtypes = restype, argtypes
        self.lib = lib

    def __getattr__(self, name):
        return getattr(self.lib, "tavuro_" + name)

    def take_text(self, pointer):
        """Copies an owned char* result and frees it; None for NULL."""
        if not pointer:
            return None
        try:
            return ctypes.string_at(pointer).decode("utf-8")
        finally:
            self.lib.tavuro_string_free(pointer)


def expect(actual, expected, what):
    if actual != expected:
        raise AssertionError("%s: got %r, expected %r" % (what, actual, expected))


def credentials(lib, directory):
    config = os.path.join(directory, "TavuroConfig.plist")
    expect(lib.take_text(lib.Credential_username()), "first", "username read from the file")
    lib.Credential_setUsernameWithUsername("user".encode())
    lib.Credential_setPasswordWithPassword("pässword".encode())
    expected = "Basic " + base64.b64encode("user:pässword".encode()).decode()
    expect(lib.take_text(lib.Credential_getBasicAuthHeader()), expected, "Basic header")
    expect(lib.Credential_isCredentialValidWithEndpoint(b"https://x/"), False, "no subscription")
    with open(config, encoding="utf-8") as f:
        saved = f.read()
    expect("unknown_key" in saved, False, "unknown key after a save")
    expect("<string>user</string>" in saved, True, "user name in the saved file")


def typed_getters(lib):
    answer = lib.Utils_convertToDictionaryWithText(
        b'{"count": 3, "score": 0.25, "name": "Ada", "ok": true, "items": [1, 2], "sub": {}}')
    if not answer:
        raise AssertionError("valid JSON gave no dictionary")
    try:
        expect(lib.Utils_getIntValueWithJsonDict_key(answer, b"count"), 3, "int")
        expect(lib.Utils_getDoubleValueWithJsonDict_key(answer, b"score"), 0.25, "double")
        expect(lib.take_text(lib.Utils_getStringValueWithJsonDict_key(answer, b"name")), "Ada", "string")
        expect(lib.take_text(lib.Utils_getStringValueWithJsonDict_key(answer, b"count")), "", "string of a number")
        expect(lib.Utils_getBooleanValueWithJsonDict_key(answer, b"ok"), True, "bool")
        expect(lib.Utils_getIntValueWithJsonDict_key(None, b"count"), 0, "absent dictionary")
        items = lib.Utils_getArrayValueWithJsonDict_key(answer, b"items")
        expect(lib.JsonArray_count(items), 2, "array length")
        lib.JsonArray_release(items)
        expect(lib.Utils_getObjectValueWithJsonDict_key(answer, b"items"), None, "object of an array")
    finally:
        lib.JsonDictionary_release(answer)
    expect(lib.TavuroErrorDescriptions_ERROR_DESC_Network(), b"Network problem", "static text")
    expect(lib.TavuroErrorCodes_ERROR_Network(), -5, "code")


def main(argv):
    if len(argv) != 2:
        sys.stderr.write(__doc__)
        return 2
    with tempfile.TemporaryDirectory() as directory:
        with open(os.path.join(directory, "TavuroConfig.plist"), "w", encoding="utf-8") as f:
            f.write(CONFIG)
        # Read by the library when the store is first used, after loading.
        os.environ["TAVURO_RESOURCE_PATH"] = directory
        lib = Library(argv[1])
        credentials(lib, directory)
        typed_getters(lib)
    print("python ctypes host: all checks passed")
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
