#!/usr/bin/env python3
"""A host in Python: loads the shared library with ctypes only, finds the
credentials through TAVURO_RESOURCE_PATH, sets and reads them back, and reads
a JSON answer with the typed getters.

    python_ctypes_host.py path/to/libTavuroCommon.so
"""
import base64
import ctypes
import os
import sys
import tempfile

with tempfile.TemporaryDirectory() as directory:
    config = os.path.join(directory, "TavuroConfig.plist")
    with open(config, "w", encoding="utf-8") as f:
        f.write('<plist version="1.0"><dict><key>tavuro_username</key><string>first</string>'
                '<key>unknown_key</key><string>dropped at the first save</string></dict></plist>')
    os.environ["TAVURO_RESOURCE_PATH"] = directory  # read when the store is first used
    lib = ctypes.CDLL(sys.argv[1])
    # Owned texts and handles come back as raw pointers (ctypes' default is int).
    for name in ("Credential_username", "Credential_getBasicAuthHeader",
                 "Utils_convertToDictionaryWithText", "Utils_getStringValueWithJsonDict_key",
                 "Utils_getArrayValueWithJsonDict_key"):
        getattr(lib, "tavuro_" + name).restype = ctypes.c_void_p
    lib.tavuro_Utils_getDoubleValueWithJsonDict_key.restype = ctypes.c_double
    lib.tavuro_TavuroErrorDescriptions_ERROR_DESC_Network.restype = ctypes.c_char_p
    for function in (lib.tavuro_string_free, lib.tavuro_JsonArray_count,
                     lib.tavuro_JsonArray_release, lib.tavuro_JsonDictionary_release):
        function.argtypes = [ctypes.c_void_p]
    lib.tavuro_JsonArray_count.restype = ctypes.c_size_t

    def take_text(pointer):  # copies an owned char* and frees it
        text = ctypes.string_at(pointer).decode("utf-8") if pointer else None
        lib.tavuro_string_free(pointer)
        return text

    def handle(pointer):
        return ctypes.c_void_p(pointer)

    assert take_text(lib.tavuro_Credential_username()) == "first"
    lib.tavuro_Credential_setUsernameWithUsername(b"user")
    lib.tavuro_Credential_setPasswordWithPassword("pässword".encode())
    assert take_text(lib.tavuro_Credential_getBasicAuthHeader()) == \
        "Basic " + base64.b64encode("user:pässword".encode()).decode()
    with open(config, encoding="utf-8") as f:
        saved = f.read()
    assert "unknown_key" not in saved and "<string>user</string>" in saved, saved

    answer = handle(lib.tavuro_Utils_convertToDictionaryWithText(b'{"x": 0.25, "s": "Ada", "a": [1, 2]}'))
    assert lib.tavuro_Utils_getDoubleValueWithJsonDict_key(answer, b"x") == 0.25
    assert take_text(lib.tavuro_Utils_getStringValueWithJsonDict_key(answer, b"s")) == "Ada"
    items = handle(lib.tavuro_Utils_getArrayValueWithJsonDict_key(answer, b"a"))
    assert lib.tavuro_JsonArray_count(items) == 2
    lib.tavuro_JsonArray_release(items)
    lib.tavuro_JsonDictionary_release(answer)
    assert lib.tavuro_TavuroErrorDescriptions_ERROR_DESC_Network() == b"Network problem"
print("python ctypes host: all checks passed")
