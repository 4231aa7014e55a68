"""The regular part of the Swift module TavuroCommon, written from the interface table.

scripts/generate_interface.py calls swift_regions() and writes (or, with --check, compares) the
one region of Sources/TavuroCommon/Interface.swift. Everything there calls the C interface;
what cannot be said by a rule is written by hand in the other files of Sources/TavuroCommon:

  - a member whose C function is written by hand or missing ("c": "manual" or "none", or no
    selector), and a member that takes a JSON dictionary (the getters read a host-made
    [String: Any] in Swift): its declaration is generated here and its body calls
    `Irregular.<Class>_<member>`, so every name and signature still comes from the table;
  - the value types (TavuroErrorInfo, Picture, ByteBuffer, PixelFormat) and the conversions.

Names are the table's own names with their argument labels. Classes with an overridable member
are `open` and their overridable members `open` (class-level ones `open class func`); the others
are `final`. Every class holds one C handle and releases it in deinit.
"""
import re

PATH = "Sources/TavuroCommon/Interface.swift"

SCALARS = {"void": "Void", "bool": "Bool", "int64": "Int64", "size": "Int", "float": "Float",
           "double": "Double", "text": "String", "instant": "Date", "bytes": "Data",
           "JsonDictionary": "[String: Any]", "JsonArray": "[Any]", "JsonValue": "Any",
           "Picture": "Picture", "ByteBuffer": "ByteBuffer", "PixelFormat": "PixelFormat",
           "Point": "CGPoint", "TavuroInitializerCallback": "(TavuroError?) -> Void"}
JSON = {"JsonDictionary", "JsonArray", "JsonValue"}

# What a class is for and how it behaves across threads, shown by Xcode above the class.
CLASS_DOCS = {
    "ITavuroPackage": "A capture package as the initializer sees it: one start-up operation.",
    "ITavuroInitializer": "The start-up entry point: starts the host's packages in order, then reports completion.",
    "TavuroInitializer": "Starts the host's packages: every package's `initialize()` in list order, then the callback "
                         "once with no error, all before `initialize(packages:callback:)` returns, on the caller's "
                         "thread. Keeps no state; any number may exist.",
    "Credential": "The process-wide credential store. It loads `TavuroConfig.plist` from the resource directory once, "
                  "on the first call of any of its operations, and every setter rewrites that file. The store is "
                  "meant to be set from one thread at a time, before work spreads over threads.\n\n"
                  "Where the resource directory is: on the phone the app's main bundle (`Bundle.main`), "
                  "which this module names before the store's first use unless the host called "
                  "`setResourceDirectory(directory:)` or set `TAVURO_RESOURCE_PATH`; elsewhere the directory "
                  "named with `setResourceDirectory(directory:)`, else the environment variable "
                  "`TAVURO_RESOURCE_PATH`, else the directory of the running executable.",
    "Endpoints": "The base addresses of the five cloud services, each optional (`nil` when unset). A shared "
                 "record: `Credential.endpoints()` hands out the store's own record, so a change through any "
                 "object of it is seen by every holder. Not synchronised: fill it on one thread.",
    "TavuroJwtParser": "A stateless decoder of JSON Web Tokens in compact form; every instance behaves the same and "
                       "may be used from any thread. Only the payload's \"exp\" claim matters to the library. "
                       "A subclass's overrides are called where the host calls them; the credential store keeps "
                       "its own parser.",
    "TavuroJwtToken": "An immutable session token: its text and the instant it expires. Safe to share across threads.",
    "TavuroError": "The one error record of the library: a code from `TavuroErrorCodes` and an optional text from "
                   "`TavuroErrorDescriptions`. A shared record; it conforms to `Error`, so it can be thrown.",
    "Image": "The result record of one capture: picture, encoded bytes, measurements, points and error. A shared "
             "record, filled by its producer before it is handed over; not synchronised.",
    "DocumentProcessingMode": "The process-wide document processing mode: `.standard` at first and `.dataCapture` "
                              "for the rest of the process once switched. Set it before work spreads over threads.",
    "Utils": "Lenient JSON access, date field conversion and the two shared settings. The JSON operations keep no "
             "state and may be called from any thread; the settings are meant to be set before work spreads "
             "over threads.",
}

# Member documentation, by "Class.member" (and "Class.member.set" for a setter's own note).
DOCS = {
    "ITavuroPackage.initialize": "Starts the package. Called once per occurrence in the list given to the initializer.",
    "ITavuroInitializer.initialize": "Starts every package in list order (duplicates included), then calls `callback` once with `nil`.",
    "TavuroInitializer.init": "Creates an initializer; creating one starts nothing.",
    "TavuroInitializer.initialize": "Calls every package's `initialize()` in list order (duplicates included), then "
                                    "`callback(nil)` once, all before it returns. The packages and the callback are "
                                    "held only for the duration of the call.",
    "Credential.username": "The account user name; `nil` when the configuration file has none and none was set.",
    "Credential.password": "The account password; `nil` when absent.",
    "Credential.subscription": "The subscription identifier; `nil` when absent.",
    "Credential.endpoints": "The store's own `Endpoints` record (shared, not a copy); `nil` when no configuration "
                            "file was read and none was set.",
    "Credential.removeToken": "Drops the stored session token; `false` when none was stored.",
    "Credential.setToken": "Stores the session token when its \"exp\" claim lies after now; `false` otherwise. "
                           "A text without any \".\" ends the process.",
    "Credential.getToken": "The stored session token, expired or not; `nil` when none is stored.",
    "Credential.isCredentialValid": "Whether a request to `endpoint` can be made: `false` for `nil` or an empty "
                                    "endpoint; else `true` when user name, password and subscription are all "
                                    "non-empty, or while a token is stored (expired or not).",
    "Credential.getTavuroAuthHeader": "The \"Authorization\" value: \"Bearer \" and the token while one is stored, "
                                      "else the Basic value; `nil` when neither can be made.",
    "Credential.getBasicAuthHeader": "\"Basic \" and the base64 of user name \":\" password; `nil` when either is absent.",
    "Credential.setUsername": "Stores the user name (`nil` clears it), then rewrites the configuration file.",
    "Credential.setPassword": "Stores the password (`nil` clears it), then rewrites the configuration file.",
    "Credential.setSubscription": "Stores the subscription (`nil` clears it), then rewrites the configuration file.",
    "Credential.setEndpoints": "Keeps `endpoints` itself, not a copy (`nil` clears it), then rewrites the configuration file.",
    "Endpoints.init": "A record with every address absent.",
    "Endpoints.newInstance": "A new record with every address absent, as `init()` makes it.",
    "Endpoints.frmEndpoint": "The FRM service's base address; `nil` when unset.",
    "Endpoints.idEndpoint": "The document authentication service's base address; `nil` when unset.",
    "Endpoints.passiveLivenessEndpoint": "The passive liveness service's base address; `nil` when unset.",
    "Endpoints.healthInsuranceEndpoint": "The health insurance card service's base address; `nil` when unset.",
    "Endpoints.kelmoEndpoint": "The chip verification service's base address; `nil` when unset.",
    "TavuroJwtParser.init": "Creates a parser; parsers have no state.",
    "TavuroJwtParser.parseToken": "The token record of `jwtToken`; `nil` when \"exp\" is missing or not a whole "
                                  "number. A text without any \".\" ends the process.",
    "TavuroJwtParser.decode": "The claims of the token's payload; empty when unreadable. A text without any \".\" "
                              "ends the process.",
    "TavuroJwtParser.base64UrlDecode": "The bytes of a base64url text; `nil` when it cannot be decoded.",
    "TavuroJwtParser.decodeJWTPart": "The JSON object in one base64url segment; `nil` when there is none.",
    "TavuroJwtToken.init": "A token holding `value` and `expiration` unchanged (any text, any instant).",
    "TavuroJwtToken.value": "The token text as the service handed it out.",
    "TavuroJwtToken.expiration": "The instant the token expires.",
    "TavuroJwtToken.isValid": "Whether now is strictly before `expiration`.",
    "TavuroError.init": "A record with code 0 and no description.",
    "TavuroError.init(errorCode:errorDescription:)": "A record holding `errorCode` and `errorDescription` (`nil` stays absent).",
    "TavuroError.newInstance": "A new record with code 0 and no description, as `init()` makes it.",
    "TavuroError.errorCode": "The error code, one of `TavuroErrorCodes`; 0 when unset.",
    "TavuroError.errorDescription": "The error text, one of `TavuroErrorDescriptions`; `nil` when unset.",
    "TavuroErrorInfo.forCode": "The entry of `code`; `nil` for 0, positive numbers and the gaps of the numbering.",
    "TavuroErrorInfo.all": "Every entry: the codes from -1 downwards, then the texts without a code.",
    "Image.init": "A record with every field at its default: no picture, no bytes, 0, `nil`, `false`, 0.0, no points.",
    "Image.newInstance": "A new record with every field at its default, as `init()` makes it.",
    "Image.newInstance(image:data:)": "A default record holding `image` and then `data` (`nil` allowed).",
    "Image.image": "The captured picture; `nil` when unset.",
    "Image.data": "The picture's encoded bytes: the buffer itself, shared with whoever else holds it; `nil` when unset.",
    "Image.dpi": "Resolution in dots per inch; 0 when unset.",
    "Image.error": "The failure, when the capture did not succeed; `nil` otherwise.",
    "Image.isCorrectAspectRatio": "Whether the picture has the expected aspect ratio; `false` when unset.",
    "Image.aspectRatio": "The measured aspect ratio; 0.0 when unset.",
    "Image.points": "Points located on the picture, in the order written; empty when unset, never `nil`. Copied both ways.",
    "Image.isPassport": "Whether the captured document is a passport; `false` when unset.",
    "DocumentProcessingMode.processingMode": "The process's mode: `.standard` at first, `.dataCapture` after the switch.",
    "DocumentProcessingMode.setDataCaptureProcessingMode": "Switches the process to `.dataCapture` for good.",
    "Utils.convertToDictionary": "The dictionary of a JSON object text (numbers as `NSNumber`, texts as `String`, "
                                 "literals as `Bool` and `NSNull`, containers as `[String: Any]` and `[Any]`); `nil` "
                                 "for `nil`, for an array and for text that is not JSON, which also prints the "
                                 "reader's one-line error description on standard output.",
    "Utils.getIntValue": "The integer under `key`; 0 when `jsonDict` is `nil`, the key is missing, or the value is "
                         "not a number exactly representable as `Int64` (a text, a fraction, a boolean).",
    "Utils.getDoubleValue": "The number under `key`; 0.0 when `jsonDict` is `nil`, the key is missing, or the value "
                            "is not a number exactly representable as `Double`.",
    "Utils.getStringValue": "The text under `key`; \"\" when `jsonDict` is `nil`, the key is missing or the value is not a text. Never `nil`.",
    "Utils.getBooleanValue": "The boolean under `key`; `false` when `jsonDict` is `nil`, the key is missing or the value is not a boolean.",
    "Utils.getObjectValue": "The dictionary under `key`; `nil` when `jsonDict` is `nil`, the key is missing or the value is not a dictionary.",
    "Utils.getArrayValue": "The array under `key`, elements unconverted; `nil` when `jsonDict` is `nil`, the key is missing or the value is not an array.",
    "Utils.getArrayValueFromJson": "Same as `getArrayValue(jsonDict:key:)`.",
    "Utils.dateFieldToDateString": "\"/Date(1234567890000)/\" gives \"02-13-2009\" (GMT, \"MM-dd-yyyy\"); a text that "
                                   "is not a plain millisecond count comes back unchanged. `nil` ends the process.",
    "Utils.SENT_IMAGE_QUALITY_JPEG_COMPRESSION": "The JPEG quality for images sent to services (0.9 at first); any value is stored unchanged.",
    "Utils.SDK_VERSION_CODE": "The kit's version text (\"11.4.10\" at first); any text is stored unchanged.",
    "setResourceDirectory": "Names the directory that stands for the app's resource bundle (where "
                            "\"TavuroConfig.plist\" lies). Call it before the first use of `Credential`; later calls "
                            "do not reload the store. Without it: on the phone the app's main bundle; "
                            "elsewhere `TAVURO_RESOURCE_PATH`, else the directory of the running executable.",
    "resourceDirectory": "The resource directory in force now (\"\" when none can be found).",
}

# Members whose body is written by hand although their C function is regular:
# whole JSON texts cross with their length (no copy to find the end, and a NUL
# inside a text is read as the C++ interface reads it).
HAND_WRITTEN = {"Utils.convertToDictionary"}

# Classes whose one instance is the library's own.
SINGLE_INSTANCE = {"Credential", "DocumentProcessingMode"}

# Code run before each operation of a class, written by hand.
PRELUDE = {"Credential": "Irregular.prepareResourceDirectory()"}


def base_of(type_name):
    return type_name.rstrip("?")


class SwiftWriter:
    def __init__(self, interface):
        self.interface = interface
        self.classes = {c["name"]: c for c in interface.classes}

    # -- types -------------------------------------------------------------
    def swift_type(self, type_name):
        optional = type_name.endswith("?")
        base = base_of(type_name)
        if base.endswith("[]"):
            text = "[%s]" % self.swift_type(base[:-2])
        else:
            text = SCALARS.get(base, base)
        if optional:
            text = "%s?" % text
        return text

    def handle_class(self, base):
        cls = self.classes.get(base)
        return cls is not None and cls["kind"] in ("record", "object")

    def regular(self, cls, member):
        """Whether the member's body can be written by rule from its C function."""
        if member.get("c") in ("manual", "none") or "%s.%s" % (cls["name"], member["name"]) in HAND_WRITTEN:
            return False
        if member.get("selector") is None and member["kind"] != "init":
            return False
        types = [a["type"] for a in member.get("args", [])]
        return not any(base_of(t) in JSON or t.endswith("[]") for t in types)

    # -- conversions ---------------------------------------------------------
    def from_c(self, type_name, expression):
        base, optional = base_of(type_name), type_name.endswith("?")
        if base in ("bool", "int64", "float", "double", "size"):
            return expression
        if base == "text":
            return "takeText(%s)" % expression + ("" if optional else " ?? \"\"")
        if base == "instant":
            return "Date(timeIntervalSince1970: %s)" % expression
        if base == "bytes":
            return "takeBytes(%s)" % expression + ("" if optional else " ?? Data()")
        if base == "JsonDictionary":
            return "takeDictionary(%s)" % expression + ("" if optional else " ?? [:]")
        if base == "JsonArray":
            return "takeArray(%s)" % expression + ("" if optional else " ?? []")
        if base in self.interface.enums:
            first = self.interface.enums[base]["values"][0]["name"]
            return "%s(rawValue: %s) ?? .%s" % (base, expression, swift_case(first))
        if self.handle_class(base) or base in ("Picture", "ByteBuffer"):
            if optional:
                return "%s.map { %s(owning: $0) }" % (expression, base)
            return "%s(owning: made(%s))" % (base, expression)
        raise ValueError("no Swift conversion for %r" % type_name)

    def to_c(self, type_name, name):
        base, optional = base_of(type_name), type_name.endswith("?")
        if base in ("bool", "int64", "float", "double", "text"):
            return name
        if base == "instant":
            return "%s.timeIntervalSince1970" % name
        if base in self.interface.enums:
            return "%s%s.rawValue" % (name, "?" if optional else "")
        if self.handle_class(base) or base in ("Picture", "ByteBuffer"):
            return "%s%s.handle" % (name, "?" if optional else "")
        raise ValueError("no C argument for %r" % type_name)

    # -- declarations --------------------------------------------------------
    def params(self, args):
        out = []
        for arg in args:
            label = arg.get("label", arg["name"])
            head = arg["name"] if label == arg["name"] else "%s %s" % (label, arg["name"])
            swift = self.swift_type(arg["type"])
            if arg["type"] == "TavuroInitializerCallback":
                swift = "@escaping " + swift
            out.append("%s: %s" % (head, swift))
        return ", ".join(out)

    def signature_key(self, member):
        labels = "".join(a.get("label", a["name"]) + ":" for a in member.get("args", []))
        return "%s(%s)" % (member["name"], labels)

    def doc(self, cls_name, member, indent):
        key = "%s.%s" % (cls_name, member["name"]) if cls_name else member["name"]
        text = DOCS.get("%s.%s" % (cls_name, self.signature_key(member))) or DOCS.get(key)
        if text is None:
            raise ValueError("no Swift documentation for %s" % key)
        return doc_lines(text, indent)

    def c_function(self, cls_name, member, setter=False):
        selector = member["setter"] if setter else member["selector"]
        return "tavuro_%s_%s" % (cls_name, selector.replace(":", "_").rstrip("_"))

    def member(self, cls, member, is_open):
        name, kind = cls["name"], member["kind"]
        over = is_open and member.get("overridable")
        access = "open" if over else "public"
        lines = self.doc(name, member, "    ")
        args = member.get("args", [])
        prelude = PRELUDE.get(name)
        regular = self.regular(cls, member)
        irregular_call = "Irregular.%s_%s(%s)" % (
            name, member["name"], ", ".join(([] if kind in ("static", "factory", "init") else ["self"])
                                            + ["%s: %s" % (a["name"], a["name"]) for a in args]))

        def body(expression, result_type):
            out = []
            if prelude:
                out.append("        " + prelude)
            if result_type == "void":
                out.append("        " + expression)
            else:
                out.append("        return " + self.from_c(result_type, expression) if regular else
                           "        return " + expression)
            return out

        def call(function, extra):
            expression = "%s(%s)" % (function, ", ".join(extra + [self.to_c(a["type"], a["name"]) for a in args]))
            return with_texts(args, expression)

        if kind == "init":
            if member.get("selector") is None:
                factory = next(m for m in cls["members"] if m["kind"] == "factory" and not m.get("args"))
                function = self.c_function(name, factory)
            else:
                function = self.c_function(name, member)
            lines.append("    public init(%s) {" % self.params(args))
            lines.append("        handle = made(%s)" % call(function, []))
            lines.append("    }")
        elif kind == "factory":
            result = name
            fn = "class func" if not over else "class func"
            lines.append("    %s %s %s(%s) -> %s {" % (access, fn, member["name"], self.params(args), result))
            if regular:
                lines.append("        %s(owning: made(%s))" % (name, call(self.c_function(name, member), [])))
            else:
                lines.append("        " + irregular_call)
            lines.append("    }")
        elif kind in ("static", "method"):
            result = member.get("result", "void")
            head = ("%s class func" % access if over else "%s static func" % access) if kind == "static" \
                else "%s func" % access
            arrow = "" if result == "void" else " -> %s" % self.swift_type(result)
            lines.append("    %s %s(%s)%s {" % (head, member["name"], self.params(args), arrow))
            extra = [] if kind == "static" else ["handle"]
            if regular and "c_buffer" in member:
                # Written straight into the Swift string's storage, with no C copy; with a
                # revision function, made again only when the revision changes.
                lines += ["        " + prelude] if prelude else []
                if "c_revision" in cls:
                    kept = "kept" + member["name"][0].upper() + member["name"][1:]
                    text = "%s.%s.text()" % (name, kept)
                    self.kept += ["    private static let %s =" % kept,
                                  "        KeptText(%s, revision: %s)" % (member["c_buffer"], cls["c_revision"])]
                else:
                    text = "copiedText(%s)" % member["c_buffer"]
                lines.append("        return %s%s" % (text, "" if result.endswith("?") else " ?? \"\""))
            else:
                lines += body(call(self.c_function(name, member), extra) if regular else irregular_call, result)
            lines.append("    }")
        elif kind in ("property", "static property"):
            result = member["result"]
            static = kind == "static property"
            head = ("%s static var" % access) if static else ("%s var" % access)
            lines.append("    %s %s: %s {" % (head, member["name"], self.swift_type(result)))
            extra = [] if static else ["handle"]
            if not regular:
                lines.append("        get { Irregular.%s_%s(self) }" % (name, member["name"]))
                if not member.get("readonly"):
                    lines.append("        set { Irregular.%s_set%s(self, newValue) }"
                                 % (name, member["name"][0].upper() + member["name"][1:]))
            elif member.get("readonly"):
                lines.append("        %s" % self.from_c(result, "%s(%s)" % (
                    self.c_function(name, member), ", ".join(extra))))
            else:
                lines.append("        get { %s }" % self.from_c(result, "%s(%s)" % (
                    self.c_function(name, member), ", ".join(extra))))
                setter = "%s(%s)" % (self.c_function(name, member, setter=True), ", ".join(
                    extra + [self.to_c(result, "newValue")]))
                lines.append("        set { %s }" % with_texts([{"name": "newValue", "type": result}], setter))
            lines.append("    }")
        else:
            raise ValueError("no Swift form for %s.%s" % (name, member["name"]))
        return lines

    def class_lines(self, cls):
        name, kind = cls["name"], cls["kind"]
        lines = doc_lines(CLASS_DOCS[name], "")
        if kind == "interface":
            lines.append("public protocol %s: AnyObject {" % name)
            for member in cls["members"]:
                lines += self.doc(name, member, "    ")
                result = member.get("result", "void")
                arrow = "" if result == "void" else " -> %s" % self.swift_type(result)
                lines.append("    func %s(%s)%s" % (member["name"], self.params(member.get("args", [])), arrow))
            lines.append("}")
            return lines
        is_open = any(m.get("overridable") for m in cls["members"])
        conforms = cls.get("implements", []) + cls.get("swift_conforms", [])
        if "Error" in conforms:
            # Error asks for Sendable; the record's fields are as unsynchronised as in C++.
            conforms.append("@unchecked Sendable")
        lines.append("%s class %s%s {" % ("open" if is_open else "public final", name,
                                          ": " + ", ".join(conforms) if conforms else ""))
        if kind in ("record", "object"):
            lines += ["    /// The C handle; this object holds one reference and gives it back in deinit.",
                      "    let handle: OpaquePointer",
                      "",
                      "    /// Takes over the reference that `handle` carries.",
                      "    init(owning handle: OpaquePointer) {",
                      "        self.handle = handle",
                      "    }",
                      "",
                      "    deinit {",
                      "        tavuro_%s_release(handle)" % name,
                      "    }"]
        elif name in SINGLE_INSTANCE:
            lines += ["    /// The one shared instance lives in the library; nothing else is made.",
                      "    private init() {}"]
        else:
            lines += ["    /// An empty instance: every member is class-level.",
                      "    public init() {}"]
        self.kept = []
        for member in cls["members"]:
            lines.append("")
            lines += self.member(cls, member, is_open)
        if self.kept:
            lines += ["", "    // The texts last made, kept while the library's revision stays the same."] + self.kept
        lines.append("}")
        return lines

    def enum_lines(self, enum):
        docs = {"ProcessingMode": "How captured documents are processed; crosses the C interface as its raw value.",
                "DeleteType": "A two-valued kind shared with the capture packages."}
        lines = doc_lines(docs[enum["name"]], "")
        lines.append("public enum %s: Int64 {" % enum["name"])
        for value in enum["values"]:
            lines.append("    /// Raw value %d." % value["raw"])
            lines.append("    case %s = %d" % (swift_case(value["name"]), value["raw"]))
        lines.append("}")
        return lines

    def error_lines(self):
        errors = self.interface.errors
        codes, descriptions = errors["codes_class"], errors["descriptions_class"]
        lines = doc_lines("The fixed error codes of the kit: negative numbers that hosts compare against "
                          "(`case TavuroErrorCodes.ERROR_Network:`). Constants; any thread.", "")
        lines += ["public final class %s {" % codes, "    /// An empty instance; nothing reads it.",
                  "    public init() {}"]
        for entry in self.interface.codes():
            lines += ["", "    /// %d; its text is `%s.%s`." % (entry["value"], descriptions, entry["description"]),
                      "    public static let %s: Int64 = tavuro_%s_%s()" % (entry["code"], codes, entry["code"])]
        lines += ["}", ""]
        lines += doc_lines("The fixed error texts of the kit, one per failure. Constants; any thread.", "")
        lines += ["public final class %s {" % descriptions, "    /// An empty instance; nothing reads it.",
                  "    public init() {}"]
        for entry in errors["entries"]:
            code = ("the text of `%s.%s`" % (codes, entry["code"])) if "code" in entry else "a text without a code"
            lines += ["", "    /// \"%s\": %s." % (entry["text"], code),
                      "    public static let %s: String = String(cString: tavuro_%s_%s())"
                      % (entry["description"], descriptions, entry["description"])]
        lines.append("}")
        return lines

    def function_lines(self):
        lines = []
        for function in self.interface.table["functions"]:
            if function.get("c") == "none":
                continue
            lines += self.doc("", function, "")
            result = function["result"]
            arrow = "" if result == "void" else " -> %s" % self.swift_type(result)
            lines.append("public func %s(%s)%s {" % (function["name"], self.params(function["args"]), arrow))
            if function["name"] == "setResourceDirectory":
                lines.append("    Irregular.hostNamedResourceDirectory()")
            expression = with_texts(function["args"], "tavuro_%s(%s)" % (function["name"], ", ".join(
                self.to_c(a["type"], a["name"]) for a in function["args"])))
            lines.append("    " + (expression if result == "void" else "return " + self.from_c(result, expression)))
            lines.append("}")
            lines.append("")
        return lines[:-1]

    def lines(self):
        out = []
        for cls in self.interface.classes:
            if cls["kind"] == "struct":
                continue  # value types are written by hand
            out += self.class_lines(cls) + [""]
        for enum in self.interface.enums.values():
            out += self.enum_lines(enum) + [""]
        out += self.error_lines() + [""]
        out += self.function_lines()
        return out


def with_texts(args, expression):
    """`expression` inside withText for each optional text argument, which passes a native
    String's own bytes (an optional String converted implicitly would be copied)."""
    for arg in reversed(args):
        if arg["type"] == "text?":
            expression = "withText(%s) { %s in %s }" % (arg["name"], arg["name"], expression)
    return expression


def swift_case(name):
    return name[0].lower() + name[1:]


def doc_lines(text, indent, width=100):
    lines = []
    for paragraph in text.split("\n\n"):
        if lines:
            lines.append(indent + "///")
        line = indent + "///"
        for word in paragraph.split():
            if len(line) + 1 + len(word) > width:
                lines.append(line)
                line = indent + "///"
            line += " " + word
        lines.append(line)
    return lines


def swift_regions(interface):
    """{path: {region: lines}} for generate_interface.py."""
    return {PATH: {"swift": SwiftWriter(interface).lines()}}
