// `tavuro jwt`, `header`, `date` and `json`: what the library makes of one
// token, the current credentials, one date field or one JSON answer.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <iterator>
#include <limits>
#include <string>

#include "cli.h"
#include "platform/Json.h"

namespace tavuro::tool {
namespace {

std::int64_t nowSeconds() {
  return std::chrono::duration_cast<std::chrono::seconds>(
             std::chrono::system_clock::now().time_since_epoch())
      .count();
}

const char kJwtHelp[] =
    "usage: tavuro jwt TOKEN|- [--json]\n"
    "       tavuro jwt --token-file FILE [--json]\n\n"
    "Decodes the payload of a JSON Web Token as the library does (the signature\n"
    "is not checked) and shows its claims, the expiry from \"exp\" in UTC and\n"
    "local time, and whether the token is valid now. Give \"-\" to read the token\n"
    "from standard input, or --token-file, to keep it off the command line.\n\n"
    "Exit status: 0 the token is valid now, 1 it is expired, has no usable \"exp\"\n"
    "or is not a token (the credential store would refuse it), 2 usage error.\n";

struct TokenReport {
  JsonDictionary claims;
  std::shared_ptr<TavuroJwtToken> token;  // null without a usable "exp"
  std::int64_t expiry = 0;                // the "exp" claim, when `token` is set
};

// The library stops the process on a text without "."; check first.
TokenReport decodeToken(const std::string& text) {
  if (text.find('.') == std::string::npos) {
    throw std::runtime_error("not a JSON Web Token: the text has no \".\"");
  }
  const TavuroJwtParser parser;
  TokenReport report{parser.decode(text), parser.parseToken(text)};
  // The claim itself, exact: the token's double expiration cannot be cast
  // back for claims near the ends of the 64-bit range.
  if (report.token) report.expiry = Utils::getIntValue(report.claims, "exp");
  return report;
}

// expiry - now, saturated at the ends of the 64-bit range.
std::int64_t secondsLeft(std::int64_t expiry) {
  const std::int64_t now = nowSeconds();
  constexpr auto kMin = std::numeric_limits<std::int64_t>::min();
  constexpr auto kMax = std::numeric_limits<std::int64_t>::max();
  if (now > 0 && expiry < kMin + now) return kMin;
  if (now < 0 && expiry > kMax + now) return kMax;
  return expiry - now;
}

std::string orBeyondCalendar(const std::string& time) {
  return time.empty() ? "(beyond the calendar)" : time;
}

void printTokenText(const TokenReport& report) {
  std::printf("claims:\n");
  for (std::size_t i = 0; i < report.claims.size(); ++i) {
    std::printf("  %.*s: %s\n", static_cast<int>(report.claims.keyAt(i).size()),
                report.claims.keyAt(i).data(), toJsonText(report.claims.valueAt(i)).c_str());
  }
  if (report.claims.empty()) std::printf("  (none: the payload is not a JSON object)\n");
  if (!report.token) {
    std::printf("expires: no usable \"exp\" claim; the credential store refuses this token\n");
    return;
  }
  std::printf("expires: %s (UTC), %s (local)\n", orBeyondCalendar(formatUtc(report.expiry)).c_str(),
              orBeyondCalendar(formatLocal(report.expiry)).c_str());
  const std::string left = formatDuration(secondsLeft(report.expiry));
  if (report.token->isValid()) {
    std::printf("valid now: yes, for %s\n", left.c_str());
  } else {
    std::printf("valid now: no, expired %s ago\n", left.c_str());
  }
}

std::string jsonTextOrNull(const std::string& text) {
  return text.empty() ? "null" : jsonQuote(text);
}

void printTokenJson(const TokenReport& report) {
  std::string out = "{\"claims\":" + toJsonText(report.claims);
  if (report.token) {
    out += ",\"exp\":" + std::to_string(report.expiry) +
           ",\"expiresUtc\":" + jsonTextOrNull(formatUtc(report.expiry)) +
           ",\"expiresLocal\":" + jsonTextOrNull(formatLocal(report.expiry)) +
           ",\"valid\":" + (report.token->isValid() ? "true" : "false") +
           ",\"secondsLeft\":" + std::to_string(secondsLeft(report.expiry));
  } else {
    out += R"(,"exp":null,"valid":false)";
  }
  std::printf("%s}\n", out.c_str());
}

const char kHeaderHelp[] =
    "usage: tavuro header [--resources DIR] [--token TOKEN|- | --token-file FILE] [--json]\n\n"
    "Prints the Authorization value that a request would carry now: Bearer while\n"
    "a token is stored (--token stores one first, as setToken does; \"-\" reads it\n"
    "from standard input), else Basic from the configuration's user name and\n"
    "password.\n\n"
    "Exit status: 0 a value is printed, 1 there is none (no token, and user name\n"
    "or password absent) or the given token was refused, 2 usage error.\n";

const char kDateHelp[] =
    "usage: tavuro date FIELD [--json]\n\n"
    "Converts a date field such as /Date(1234567890000)/ to MM-dd-yyyy in GMT, as\n"
    "Utils::dateFieldToDateString does: the Julian calendar before 1582-10-15,\n"
    "the Gregorian one from then on, the year of era with at least four digits.\n"
    "A field that is not a plain millisecond count (\"hello\", \"\", a field with a\n"
    "zone offset) comes back unchanged; it is printed as the library returns it.\n\n"
    "Exit status: 0 converted, 1 returned unchanged, 2 usage error.\n";

const char kJsonHelp[] =
    "usage: tavuro json FILE|- KEY [--as int|double|string|bool|object|array] [--json]\n\n"
    "Reads FILE (\"-\": standard input) as a JSON object and prints the value under\n"
    "KEY. With --as the value goes through the library's typed getter of that\n"
    "kind, which gives its default (0, 0, empty, false, nothing) for a missing\n"
    "key, a null or a value of another kind. A text that is not JSON is reported\n"
    "on standard error with the reader's own description. --json prints the\n"
    "result as JSON (a string quoted).\n\n"
    "Exit status: 0 a value is printed, 1 FILE is not JSON, not a JSON object or\n"
    "has no value to print, 2 usage error.\n";

const char* const kKinds[] = {"int", "double", "string", "bool", "object", "array"};

bool isKind(const std::string& kind) {
  return std::any_of(std::begin(kKinds), std::end(kKinds),
                     [&](const char* known) { return kind == known; });
}

// The value under `key` through the typed getter of `kind`, as text; nothing
// when an object or array getter finds none.
std::optional<std::string> readTyped(const std::optional<JsonDictionary>& dictionary,
                                     const std::string& key, const std::string& kind) {
  if (kind == "int") return std::to_string(Utils::getIntValue(dictionary, key));
  if (kind == "double") return formatDouble(Utils::getDoubleValue(dictionary, key));
  if (kind == "string") return Utils::getStringValue(dictionary, key);
  if (kind == "bool") return Utils::getBooleanValue(dictionary, key) ? "true" : "false";
  if (kind == "object") {
    const auto object = Utils::getObjectValue(dictionary, key);
    return object ? std::optional<std::string>(toJsonText(*object)) : std::nullopt;
  }
  const auto array = Utils::getArrayValue(dictionary, key);
  return array ? std::optional<std::string>(toJsonText(*array)) : std::nullopt;
}

}  // namespace

int runJwt(const std::vector<std::string>& words) {
  const Arguments arguments = parseArguments(words, {{"--json"}, {"--token-file"}, 0, 1});
  if (arguments.has("--help")) return showHelp(kJwtHelp);
  const std::string token = secretArgument(
      arguments,
      arguments.positional.empty() ? std::nullopt : std::optional(arguments.positional[0]),
      "--token-file");
  const TokenReport report = decodeToken(token);
  if (arguments.has("--json")) {
    printTokenJson(report);
  } else {
    printTokenText(report);
  }
  return report.token && report.token->isValid() ? kOk : kFailed;
}

int runHeader(const std::vector<std::string>& words) {
  const Arguments arguments =
      parseArguments(words, {{"--json"}, {"--resources", "--token", "--token-file"}, 0, 0});
  if (arguments.has("--help")) return showHelp(kHeaderHelp);
  applyResourceOption(arguments);
  bool refused = false;
  if (arguments.has("--token") || arguments.has("--token-file")) {
    const std::string token =
        secretArgument(arguments, arguments.option("--token"), "--token-file");
    decodeToken(token);  // refuses a text without "." before the store sees it
    refused = !Credential::setToken(token);
    if (refused) {
      std::fprintf(stderr,
                   "tavuro header: the store refused the token (expired or no usable "
                   "\"exp\"); it is not used\n");
    }
  }
  const std::optional<std::string> header = Credential::getTavuroAuthHeader();
  if (!header) {
    std::fprintf(stderr,
                 "tavuro header: no Authorization value: no token is stored and the "
                 "user name or password is absent\n");
    return kFailed;
  }
  if (arguments.has("--json")) {
    std::printf("{\"authorization\":%s,\"tokenRefused\":%s}\n", jsonQuote(*header).c_str(),
                refused ? "true" : "false");
  } else {
    std::printf("%s\n", header->c_str());
  }
  return refused ? kFailed : kOk;
}

int runDate(const std::vector<std::string>& words) {
  const Arguments arguments = parseArguments(words, {{"--json"}, {}, 1, 1});
  if (arguments.has("--help")) return showHelp(kDateHelp);
  const std::string& field = arguments.positional[0];
  const std::string result = *Utils::dateFieldToDateString(field);
  // A converted date always has "-" between digits, which no field that
  // converts can have, so an equal text is one that was not converted.
  const bool converted = result != field;
  if (arguments.has("--json")) {
    std::printf("{\"field\":%s,\"converted\":%s,\"result\":%s}\n", jsonQuote(field).c_str(),
                converted ? "true" : "false", jsonQuote(result).c_str());
  } else {
    std::printf("%s\n", result.c_str());
  }
  if (!converted) {
    std::fprintf(stderr,
                 "tavuro date: '%s' is not a plain millisecond count; the library returns it "
                 "unchanged\n",
                 field.c_str());
  }
  return converted ? kOk : kFailed;
}

int runJson(const std::vector<std::string>& words) {
  const Arguments arguments = parseArguments(words, {{"--json"}, {"--as"}, 2, 2});
  if (arguments.has("--help")) return showHelp(kJsonHelp);
  const std::string& path = arguments.positional[0];
  const std::string& key = arguments.positional[1];
  const std::optional<std::string> kind = arguments.option("--as");
  if (kind && !isKind(*kind)) {
    throw UsageError("--as takes int, double, string, bool, object or array");
  }
  const std::string text = path == "-" ? readSecret("-") : readInputFile(path);
  // The library's own reader, for its description of what is wrong; the
  // library then sees a text it reads without a word.
  const platform::JsonParseResult parsed = platform::parseJson(text);
  if (!parsed.document) {
    throw std::runtime_error(path + " is not JSON: " + parsed.errorDescription);
  }
  std::optional<JsonDictionary> answer;
  {
    const LibraryOutputToStderr quiet;
    answer = Utils::convertToDictionary(text);
  }
  if (!answer) throw std::runtime_error(path + " holds a JSON array, not an object");
  const bool json = arguments.has("--json");
  if (kind) {
    const std::optional<std::string> typed = readTyped(answer, key, *kind);
    if (!typed) {
      std::fprintf(stderr, "tavuro json: no %s under \"%s\"\n", kind->c_str(), key.c_str());
      return kFailed;
    }
    std::printf("%s\n", json && *kind == "string" ? jsonQuote(*typed).c_str() : typed->c_str());
    return kOk;
  }
  const std::optional<JsonValue> value = answer->find(key);
  if (!value) {
    std::fprintf(stderr, "tavuro json: no key \"%s\" in %s\n", key.c_str(), path.c_str());
    return kFailed;
  }
  std::printf("%s\n", toJsonText(*value).c_str());
  return kOk;
}

}  // namespace tavuro::tool
