"""The regular part of the Java binding, written from interface/TavuroCommon.json.

scripts/generate_interface.py calls regions(interface) and writes (or, with
--check, compares) what it returns, as it does for the C interface:

  java/src/com/tavuro/common/*.java   the regular members of every class, the
                                      error tables and the enumerations
  java/jni/TavuroCommonJniGenerated.cpp  one JNI function per regular member,
                                         each calling its C function

A member is regular when every type it takes or gives is a text, a number, a
boolean, an instant, an enumeration or a record of the table, and it has a C
function. The others (JSON values, bytes, pictures, points, packages and
callbacks) are written by hand in the same Java files, outside the regions;
hand_written_problems() makes sure each one is there.
"""
import os
import re

JAVA_DIR = "java/src/com/tavuro/common"
JNI_SOURCE = "java/jni/TavuroCommonJniGenerated.cpp"
FORMATTED = (JNI_SOURCE,)

# type -> (Java type, JNI type, Java default, C default)
SCALARS = {
    "bool": ("boolean", "jboolean", "false", "JNI_FALSE"),
    "int64": ("long", "jlong", "0", "0"),
    "float": ("float", "jfloat", "0.0F", "0.0F"),
    "double": ("double", "jdouble", "0.0", "0.0"),
    "instant": ("Instant", "jdouble", "null", "0.0"),
    "text": ("String", "jstring", "null", "nullptr"),
}


def c_name(cls, selector):
    return "tavuro_%s_%s" % (cls, selector.replace(":", "_").rstrip("_"))


def native_name(selector):
    parts = [p for p in re.split(r"[:_]", selector) if p]
    return "n" + "".join(p[0].upper() + p[1:] for p in parts)


def capital(name):
    return name[0].upper() + name[1:]


class Types:
    def __init__(self, interface):
        self.records = {c["name"]: c for c in interface.classes if c["kind"] in ("record", "object")}
        self.enums = interface.enums

    def regular(self, type_name):
        base = type_name.rstrip("?")
        return base in SCALARS or base in self.records or base in self.enums

    def java(self, type_name):
        base = type_name.rstrip("?")
        if base in SCALARS:
            return SCALARS[base][0]
        return base

    def jni(self, type_name):
        base = type_name.rstrip("?")
        if base in SCALARS:
            return SCALARS[base][1]
        return "jlong"  # handles and raw values of enumerations

    def nullable(self, type_name):
        base = type_name.rstrip("?")
        return type_name.endswith("?") or base == "text" or base in self.records or base == "instant"


def is_regular(types, member):
    if member.get("c") in ("manual", "none"):
        return False
    if member["kind"] == "init" and member["selector"] is None:
        return not member["args"]
    if member["selector"] is None:
        return False
    types_used = [a["type"] for a in member.get("args", [])]
    if member.get("result") not in (None, "void"):
        types_used.append(member["result"])
    return all(types.regular(t) for t in types_used)


def java_member_names(cls, member):
    """The Java names a member has: what the hand-written code must declare when it is not regular."""
    name, kind = member["name"], member["kind"]
    if kind == "init":
        return [cls["name"]]
    if kind == "property":
        getter = name if name.startswith("is") and member["result"] == "bool" else "get" + capital(name)
        field = name[2:] if getter == name else capital(name)
        return [getter] + ([] if member.get("readonly") else ["set" + field])
    if kind == "static property":
        return ["get" + name, "set" + name]
    return [name]


def javadoc(text, indent="  "):
    words, lines, line = text.split(), [], indent + "/**"
    for word in words:
        if len(line) + 1 + len(word) > 100:
            lines.append(line)
            line = indent + " *"
        line += " " + word
    lines.append(line + " */")
    return [line[len(indent):] for line in lines]


def nullity(types, type_name, argument=False, constructor=False):
    """"@Nullable " where null may pass: an optional type, or a required text argument of a method,
    which (as in C) gives the member's default instead of failing."""
    if type_name.endswith("?"):
        return "@Nullable "
    return "@Nullable " if argument and not constructor and type_name == "text" else ""


# ---------------------------------------------------------------------------
# Java
# ---------------------------------------------------------------------------

def java_arg_value(types, arg, required=False):
    """The expression that hands a Java argument to the native method; a `required` one throws
    NullPointerException, naming it, when it is null."""
    base, name = arg["type"].rstrip("?"), arg["name"]
    if required:
        name = "Objects.requireNonNull(%s, \"%s\")" % (name, name)
    if base == "instant":
        return "NativeLibrary.seconds(%s)" % name
    if base in types.records:
        return "%s == null ? 0 : %s.handle" % (name, name)
    if base in types.enums:
        return "%s.rawValue()" % name
    return name


def java_result(types, type_name, call):
    base = type_name.rstrip("?")
    if base == "text":
        return "NativeLibrary.text(%s, buffer)" % call
    if base == "instant":
        return "NativeLibrary.instant(%s)" % call
    if base in types.records:
        return "%s.wrap(%s)" % (base, call)
    if base in types.enums:
        return "%s.fromRawValue(%s)" % (base, call)
    return call


def java_stops(member, args):
    stops = member.get("stops")
    if stops is None:
        return []
    name = args[0]["name"]
    if stops == "no-dot":
        return ["if (%s != null && %s.indexOf('.') < 0) {" % (name, name),
                "  throw new ArrayIndexOutOfBoundsException(\"a token needs at least one '.'\");",
                "}"]
    return ["Objects.requireNonNull(%s, \"%s\");" % (name, name)]


def java_body(types, cls, member, call, result, args, static):
    """Lines of a method body that calls native `call` and keeps `this` and every record argument alive."""
    keep = [] if static else ["this"]
    keep += [a["name"] for a in args if a["type"].rstrip("?") in types.records]
    lines = java_stops(member, args)
    if result not in (None, "void", "long") and result.rstrip("?") == "text":
        # Text results come back through a per-thread buffer (see NativeLibrary.text).
        lines.append("byte[] buffer = NativeLibrary.textBuffer();")
        call = call.replace("()", "(buffer)") if call.endswith("()") else call.replace("(", "(buffer, ", 1)
    expression = java_result(types, result, call) if result not in (None, "void") else call
    statement = ("return %s;" % expression) if result not in (None, "void") else expression + ";"
    if not keep:
        return lines + [statement]
    lines += ["try {", "  " + statement, "} finally {"]
    lines += ["  Reference.reachabilityFence(%s);" % k for k in keep]
    return lines + ["}"]


# What the Java comment says of a member whose table entry has no c_doc of its
# own (or whose c_doc speaks of C): class.member, ".set" for a setter.
JAVA_DOCS = {
    "TavuroInitializer.init": "A new initializer; making one starts nothing.",
    "Credential.username": "The account user name; null until the file or a setter gives one.",
    "Credential.password": "The account password; null until the file or a setter gives one.",
    "Credential.subscription": "The subscription identifier; null until the file or a setter gives one.",
    "Credential.endpoints": "The store's own record, not a copy (changing it changes the store); null when no "
                            "configuration file was read and none was set.",
    "Credential.setToken": "Decodes the token and stores it when its \"exp\" lies strictly after now; false, "
                           "with the stored token unchanged, when it cannot be decoded, has no usable \"exp\", "
                           "has expired or is null. A token without any \".\" throws "
                           "ArrayIndexOutOfBoundsException before native code is reached.",
    "Credential.isCredentialValid": "False for a null or empty endpoint; otherwise true when user name, password "
                                    "and subscription are all present and non-empty, or when any token is stored.",
    "Credential.getTavuroAuthHeader": "\"Bearer \" and the stored token (expired or not) while one is stored, else "
                                      "getBasicAuthHeader().",
    "Credential.getBasicAuthHeader": "\"Basic \" and the base64 of user name \":\" password; null when either is "
                                     "absent.",
    "Credential.setUsername": "Stores the user name (null clears it), then rewrites the configuration file.",
    "Credential.setPassword": "Stores the password (null clears it), then rewrites the configuration file.",
    "Credential.setSubscription": "Stores the subscription identifier (null clears it), then rewrites the "
                                  "configuration file.",
    "Credential.setEndpoints": "Stores the record itself, not a copy (null clears it), then rewrites the "
                               "configuration file.",
    "Endpoints.newInstance": "Same as the no-argument constructor: a new record with every field absent.",
    "TavuroJwtParser.init": "A new parser; it keeps no state.",
    "TavuroJwtParser.parseToken": "The token record of a token text; null when its \"exp\" is missing or not a "
                                  "whole number, or when the token is null. A token without any \".\" throws "
                                  "ArrayIndexOutOfBoundsException before native code is reached.",
    "TavuroJwtToken.initWithArguments": "A token record of {@code value} expiring at {@code expiration}; either being null "
                           "throws NullPointerException.",
    "TavuroJwtToken.value": "The token text.",
    "TavuroJwtToken.expiration": "The instant the token expires.",
    "TavuroJwtToken.isValid": "True while now is strictly before the expiration.",
    "TavuroError.init": "A record with code 0 and an absent description.",
    "TavuroError.initWithArguments": "A record with {@code errorCode} and {@code errorDescription} (null stays "
                                     "absent).",
    "TavuroError.errorCode": "The error code, one of TavuroErrorCodes (0 at first).",
    "TavuroError.errorCode.set": "Replaces the error code.",
    "TavuroError.errorDescription": "The error text, or null when absent.",
    "TavuroError.errorDescription.set": "Replaces the error text; null clears it.",
    "TavuroError.newInstance": "Same as the no-argument constructor: code 0 and an absent description.",
    "Image.init": "A record with every field at its default: no picture, bytes or error, 0 dpi, aspect ratio 0, "
                  "no points, not a passport.",
    "Image.newInstance": "Same as the no-argument constructor: every field at its default.",
    "Image.dpi": "The resolution of the picture in dots per inch.",
    "Image.dpi.set": "Replaces the resolution.",
    "Image.error": "The error of the capture (the record itself, shared), or null when absent.",
    "Image.error.set": "Replaces the error with {@code error} itself, shared; null clears it.",
    "Image.isCorrectAspectRatio": "Whether the picture passed the aspect-ratio check.",
    "Image.isCorrectAspectRatio.set": "Replaces the result of the aspect-ratio check.",
    "Image.aspectRatio": "The aspect ratio measured on the picture.",
    "Image.aspectRatio.set": "Replaces the aspect ratio.",
    "Image.isPassport": "Whether the captured document is a passport.",
    "Image.isPassport.set": "Replaces whether the captured document is a passport.",
    "DocumentProcessingMode.processingMode": "The process's mode: Standard at first, DataCapture after the switch.",
    "DocumentProcessingMode.setDataCaptureProcessingMode": "Switches the process to DataCapture, for good.",
    "Utils.dateFieldToDateString": "\"/Date(1234567890000)/\" gives \"02-13-2009\" (GMT); anything that is not "
                                   "a plain millisecond count comes back unchanged. Null throws "
                                   "NullPointerException before native code is reached.",
    "Utils.SENT_IMAGE_QUALITY_JPEG_COMPRESSION": "The JPEG quality, on the encoder's scale of 0.0 to 1.0, of "
                                                 "images sent to services; 0.9 at first.",
    "Utils.SENT_IMAGE_QUALITY_JPEG_COMPRESSION.set": "Stores the JPEG quality unchecked, for the whole process.",
    "Utils.SDK_VERSION_CODE": "The kit's version text; \"11.4.10\" at first.",
    "Utils.SDK_VERSION_CODE.set": "Stores a copy of the version text for the whole process; null leaves it "
                                  "unchanged.",
}


def member_doc(cls, member, role):
    key = "%s.%s%s" % (cls["name"], member["name"], ".set" if role == "set" else "")
    if member["kind"] in ("factory", "init") and member["args"]:
        key += "WithArguments"
    if key in JAVA_DOCS:
        return JAVA_DOCS[key]
    doc = member.get("c_setter_doc" if role == "set" else "c_doc")
    name = member["name"]
    result = member.get("result", "")
    absent = result.endswith("?")
    if doc:
        doc = (doc.replace("NULL", "null").replace("ends the process (rule 11)",
                                                   "throws before the native call (see the class comment)")
               .replace("(rule 3)", "").replace("(rule 7)", "").strip())
    if role == "set":
        base = doc or ("Replaces the %s%s." % (name, "; null clears it" if absent else ""))
        return base
    if doc:
        return doc
    if member["kind"] in ("property", "static property"):
        return "The %s%s." % (name, ", or null when absent" if absent else "")
    if member["kind"] == "init":
        return "A new %s with every field at its default." % cls["name"]
    if member["kind"] == "factory":
        return "Same as the no-argument constructor: a new %s." % cls["name"]
    return "%s of the %s class%s." % (capital(name), cls["name"], "; null when absent" if absent else "")


def java_method(types, cls, member, getter_setter=None):
    """Java lines of one regular member (for properties, `getter_setter` is 'get' or 'set')."""
    name, kind = member["name"], member["kind"]
    static = kind in ("static", "factory", "static property")
    final = "" if member.get("overridable") else " final"
    out = []
    if kind in ("property", "static property"):
        getter_name, setter_name = (java_member_names(cls, member) + [None])[:2]
        if getter_setter == "get":
            selector = member["selector"]
            out += javadoc(member_doc(cls, member, "get"))
            out.append("public%s%s %s%s %s() {" % (" static" if static else "", "" if static else final,
                                                    nullity(types, member["result"]), types.java(member["result"]),
                                                    getter_name))
            call = "%s(%s)" % (native_name(selector), "" if static else "handle")
            out += ["  " + l for l in java_body(types, cls, member, call, member["result"], [], static)]
            out.append("}")
            return out, [(native_name(selector), member["result"], [] if static else ["handle"], c_name(cls["name"], selector), static, [])]
        selector = member["setter"]
        arg = {"name": member.get("setter_arg", name), "type": member["result"]}
        out += javadoc(member_doc(cls, member, "set"))
        out.append("public%s%s void %s(%s%s %s) {" % (" static" if static else "", "" if static else final, setter_name,
                                                     nullity(types, arg["type"], True), types.java(arg["type"]), arg["name"]))
        call = "%s(%s)" % (native_name(selector), ", ".join(([] if static else ["handle"]) + [java_arg_value(types, arg)]))
        out += ["  " + l for l in java_body(types, cls, member, call, "void", [arg], static)]
        out.append("}")
        return out, [(native_name(selector), "void", [] if static else ["handle"], c_name(cls["name"], selector), static, [arg])]

    args = member.get("args", [])
    params = ", ".join("%s%s %s" % (nullity(types, a["type"], True, kind == "init"), types.java(a["type"]), a["name"])
                       for a in args)
    if kind == "init":
        selector = member["selector"]
        if selector is None:  # the plain constructor: the factory without arguments
            selector = "newInstance"
        out += javadoc(member_doc(cls, member, "get"))
        out.append("public %s(%s) {" % (cls["name"], params))
        # The arguments are checked as they are passed, before native code is reached.
        checked = [java_arg_value(types, a, a["type"] in ("text", "instant")) for a in args]
        line = "  super(%s(%s), %s::nRelease);" % (native_name(selector), ", ".join(checked), cls["name"])
        if len(line) + 2 <= 100:
            out.append(line)
        else:
            out += ["  super(", "      %s(" % native_name(selector)]
            out += ["          %s%s" % (v, "," if i < len(args) - 1 else "),") for i, v in enumerate(checked)]
            out.append("      %s::nRelease);" % cls["name"])
        out.append("}")
        return out, [(native_name(selector), "long", [], c_name(cls["name"], selector), True, args)]
    result = member.get("result", cls["name"] if kind == "factory" else "void")
    out += javadoc(member_doc(cls, member, "get"))
    out.append("public%s%s %s%s %s(%s) {" % (" static" if static else "", "" if static or kind == "factory" else final,
                                           nullity(types, result) if kind != "factory" else "",
                                           types.java(result) if result != "void" else "void", name, params))
    values = ", ".join(java_arg_value(types, a) for a in args)
    call = "%s(%s)" % (native_name(member["selector"]), ", ".join(([] if static else ["handle"]) + ([values] if values else [])))
    out += ["  " + l for l in java_body(types, cls, member, call, result, args, static)]
    out.append("}")
    return out, [(native_name(member["selector"]), result, [] if static else ["handle"], c_name(cls["name"], member["selector"]), static, args)]


def native_declaration(types, native, result, receiver, args):
    java_result_type = {"void": "void", "long": "long"}.get(result)
    if java_result_type is None:
        base = result.rstrip("?")
        java_result_type = ("double" if base == "instant" else "long" if base in types.records or base in types.enums
                            else "int" if base == "text" else types.java(result))
    params = ["byte[] buffer"] if result.rstrip("?") == "text" else []
    params += ["long handle"] if receiver else []
    for arg in args:
        base = arg["type"].rstrip("?")
        jt = ("double" if base == "instant" else "long" if base in types.records or base in types.enums
              else types.java(arg["type"]))
        params.append("%s %s" % (jt, arg["name"]))
    return "private static native %s %s(%s);" % (java_result_type, native, ", ".join(params))


def handle_class_lines(cls):
    name = cls["name"]
    return [
        "/** Takes over one reference to a native object (see NativeObject). */",
        "%s(long handle) {" % name,
        "  super(handle, %s::nRelease);" % name,
        "}",
        "",
        "/** The object over a reference that the caller hands over, or null for 0. */",
        "@Nullable",
        "static %s wrap(long handle) {" % name,
        "  return handle == 0 ? null : new %s(handle);" % name,
        "}",
        "",
        "private static native void nRelease(long handle);",
    ]


def class_regions(types, cls):
    lines, natives = ["static {", "  NativeLibrary.load();", "}", ""], []
    if cls["name"] in types.records:
        lines += handle_class_lines(cls)
        natives.append(("nRelease", "void", ["handle"], "tavuro_%s_release" % cls["name"], True, []))
    for member in cls["members"]:
        if not is_regular(types, member):
            continue
        roles = ["get"] + ([] if member.get("readonly") or "setter" not in member else ["set"]) \
            if member["kind"] in ("property", "static property") else [None]
        for role in roles:
            method, native = java_method(types, cls, member, role)
            lines += [""] + method
            natives += [n for n in native if n[0] not in {m[0] for m in natives}]
    lines.append("")
    for native, result, receiver, _, _, args in natives:
        if native == "nRelease":
            continue
        lines.append(native_declaration(types, native, result, receiver, args))
    return lines, natives


def error_regions(interface):
    errors = interface.errors
    codes = [""]
    for entry in sorted((e for e in errors["entries"] if "code" in e), key=lambda e: -e["value"]):
        codes += javadoc("Code of \"%s\"." % entry["text"]) + ["public static final long %s = %d;" % (entry["code"], entry["value"])]
    descriptions = [""]
    for entry in errors["entries"]:
        about = ("The text of %s." % entry["code"]) if "code" in entry else "A text that has no code."
        descriptions += javadoc(about) + ["public static final String %s = \"%s\";" % (entry["description"], entry["text"])]
    table = []
    for entry in sorted((e for e in errors["entries"] if "code" in e), key=lambda e: -e["value"]):
        table.append("new TavuroErrorInfo(%d, \"%s\", \"%s\", \"%s\")," % (entry["value"], entry["code"], entry["description"], entry["text"]))
    for entry in errors["entries"]:
        if "code" not in entry:
            table.append("new TavuroErrorInfo(0, null, \"%s\", \"%s\")," % (entry["description"], entry["text"]))
    table[-1] = table[-1].rstrip(",")
    return {"TavuroErrorCodes": codes, "TavuroErrorDescriptions": descriptions, "TavuroErrorInfo": {"entries": table}}


def enum_region(enum):
    lines = []
    values = enum["values"]
    for i, value in enumerate(values):
        lines += javadoc("Raw value %d." % value["raw"])
        lines.append("%s(%dL)%s" % (value["name"], value["raw"], ";" if i == len(values) - 1 else ","))
    lines += ["", "private final long raw;", "", "%s(long raw) {" % enum["name"], "  this.raw = raw;", "}", "",
              "/** The raw value of this case. */", "public long rawValue() {", "  return raw;", "}", "",
              "/** The case whose raw value is {@code raw}, or null for any other number. */",
              "@Nullable", "public static %s fromRawValue(long raw) {" % enum["name"]]
    lines += sum((["  if (raw == %dL) {" % v["raw"], "    return %s;" % v["name"], "  }"]
                                         for v in values), [])
    lines += ["  return null;", "}"]
    return lines


# ---------------------------------------------------------------------------
# JNI
# ---------------------------------------------------------------------------

def jni_function(types, owner, native, result, receiver, c_function, args):
    params = ["JNIEnv* env", "jclass /*unused*/"]
    if result.rstrip("?") == "text":
        params.append("jbyteArray buffer")
    params += ["jlong handle"] if receiver else []
    base_result = result.rstrip("?") if result not in ("void", "long") else result
    jni_result = {"void": "void", "long": "jlong"}.get(result) or types.jni(result)
    if base_result == "text":
        jni_result = "jint"  # the length written into the buffer; see tavuro_jni::putText
    body, call_args = [], []
    if receiver:
        call_args.append("tavuro_jni::handle<tavuro_%s>(handle)" % owner)
    default = {"void": "", "long": "0"}.get(result)
    if default is None:
        default = SCALARS[base_result][3] if base_result in SCALARS else "0"
    if base_result == "text":
        default = "-1"
    for arg in args:
        base = arg["type"].rstrip("?")
        name = arg["name"]
        params.append("%s %s" % (types.jni(arg["type"]), name))
        if base == "text":
            body.append("const tavuro_jni::Text %s_text(env, %s);" % (name, name))
            body.append("if (%s_text.failed()) return %s;" % (name, default))
            call_args.append("%s_text.get()" % name)
        elif base in types.records:
            call_args.append("tavuro_jni::handle<tavuro_%s>(%s)" % (base, name))
        elif base == "bool":
            call_args.append("%s == JNI_TRUE" % name)
        else:
            call_args.append(name)
    call = "%s(%s)" % (c_function, ", ".join(call_args))
    if result == "void":
        body.append("%s;" % call)
    elif result == "long" or base_result in types.records:
        body.append("return tavuro_jni::toJava(%s);" % call)
    elif base_result == "text":
        body.append("return tavuro_jni::putText(env, buffer, %s);" % call)
    elif base_result == "bool":
        body.append("return %s ? JNI_TRUE : JNI_FALSE;" % call)
    else:
        body.append("return %s;" % call)
    if not any("env" in line for line in body):
        params[0] = "JNIEnv* /*env*/"
    return (["extern \"C\" JNIEXPORT %s JNICALL Java_com_tavuro_common_%s_%s(%s) {" % (jni_result, owner, native, ", ".join(params))]
            + ["  " + line for line in body] + ["}"])


# ---------------------------------------------------------------------------
# What generate_interface.py asks for
# ---------------------------------------------------------------------------

def regions(interface):
    """{path: {region name: lines}} of every file of the Java binding."""
    types = Types(interface)
    out, jni = {}, []
    for cls in interface.classes:
        if cls["kind"] in ("interface", "struct"):
            continue
        lines, natives = class_regions(types, cls)
        out["%s/%s.java" % (JAVA_DIR, cls["name"])] = {"members": lines}
        for native, result, receiver, c_function, _, args in natives:
            jni += jni_function(types, cls["name"], native, result, bool(receiver), c_function, args) + [""]
    errors = error_regions(interface)
    out["%s/%s.java" % (JAVA_DIR, interface.errors["codes_class"])] = {"constants": errors["TavuroErrorCodes"]}
    out["%s/%s.java" % (JAVA_DIR, interface.errors["descriptions_class"])] = {"constants": errors["TavuroErrorDescriptions"]}
    out["%s/TavuroErrorInfo.java" % JAVA_DIR] = errors["TavuroErrorInfo"]
    for enum in interface.enums.values():
        out["%s/%s.java" % (JAVA_DIR, enum["name"])] = {"cases": enum_region(enum)}
    out[JNI_SOURCE] = {"wrappers": jni[:-1]}
    return out


def hand_written_problems(interface, root):
    """Members that are not regular and whose Java name the class file does not declare."""
    types, problems = Types(interface), []
    for cls in interface.classes:
        path = os.path.join(root, JAVA_DIR, cls["name"] + ".java")
        if not os.path.exists(path):
            problems.append("%s is missing" % path)
            continue
        with open(path, encoding="utf-8") as f:
            text = f.read()
        for member in cls["members"]:
            if member.get("c") == "none" or is_regular(types, member):
                continue
            for name in java_member_names(cls, member):
                if not re.search(r"\b%s\s*\(" % re.escape(name), text):
                    problems.append("%s does not declare %s, which is written by hand" % (path, name))
    return problems
