#include "cli.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <ctime>
#include <fstream>
#include <iterator>
#include <sstream>

namespace tavuro::tool {

std::optional<std::string> Arguments::option(const std::string& name) const {
  const auto found = options.find(name);
  if (found == options.end()) return std::nullopt;
  return found->second;
}

namespace {

bool contains(const std::vector<std::string>& list, const std::string& word) {
  return std::find(list.begin(), list.end(), word) != list.end();
}

}  // namespace

Arguments parseArguments(const std::vector<std::string>& words, const Syntax& syntax) {
  Arguments arguments;
  for (std::size_t i = 0; i < words.size(); ++i) {
    const std::string& word = words[i];
    // A lone "-" or a negative number such as an error code is positional.
    const bool looksLikeOption = word.size() > 2 && word.compare(0, 2, "--") == 0;
    if (!looksLikeOption) {
      arguments.positional.push_back(word);
    } else if (word == "--help" || contains(syntax.flags, word)) {
      arguments.options[word] = "";
    } else if (contains(syntax.valued, word)) {
      if (i + 1 == words.size()) throw UsageError("option " + word + " needs a value");
      arguments.options[word] = words[++i];
    } else {
      throw UsageError("unknown option " + word);
    }
  }
  if (arguments.has("--help")) return arguments;
  const std::size_t count = arguments.positional.size();
  if (count < syntax.minPositional) throw UsageError("missing argument");
  if (count > syntax.maxPositional) {
    throw UsageError("unexpected argument '" + arguments.positional[syntax.maxPositional] + "'");
  }
  return arguments;
}

int showHelp(const char* text) {
  std::fputs(text, stdout);
  return kOk;
}

void applyResourceOption(const Arguments& arguments) {
  if (const auto directory = arguments.option("--resources")) setResourceDirectory(*directory);
}

std::string jsonQuote(std::string_view text) {
  std::string out = "\"";
  for (const char c : text) {
    switch (c) {
      case '"': out += "\\\""; break;
      case '\\': out += "\\\\"; break;
      case '\n': out += "\\n"; break;
      case '\r': out += "\\r"; break;
      case '\t': out += "\\t"; break;
      default:
        if (static_cast<unsigned char>(c) < 0x20) {
          static const char kHex[] = "0123456789abcdef";
          out += "\\u00";
          out += kHex[(c >> 4) & 0xF];
          out += kHex[c & 0xF];
        } else {
          out += c;
        }
    }
  }
  return out + "\"";
}

std::string jsonQuote(const std::optional<std::string>& text) {
  return text ? jsonQuote(std::string_view(*text)) : "null";
}

namespace {

template <typename Number>
std::string numberText(Number number) {
  char buffer[64];
  const auto result = std::to_chars(buffer, buffer + sizeof buffer, number);
  return std::string(buffer, result.ptr);
}

}  // namespace

std::string formatDouble(double number) {
  return numberText(number);
}

std::string toJsonText(const JsonValue& value) {
  switch (value.kind()) {
    case JsonValue::Kind::Null: return "null";
    case JsonValue::Kind::Boolean: return *value.boolValue() ? "true" : "false";
    case JsonValue::Kind::String: return jsonQuote(*value.stringValue());
    case JsonValue::Kind::Array: return toJsonText(*value.arrayValue());
    case JsonValue::Kind::Object: return toJsonText(*value.dictionaryValue());
    case JsonValue::Kind::Number: break;
  }
  switch (value.numberKind().value_or(JsonValue::NumberKind::Double)) {
    case JsonValue::NumberKind::Int64: return numberText(*value.int64Value());
    case JsonValue::NumberKind::UInt64: return numberText(*value.uint64Value());
    case JsonValue::NumberKind::Double: break;
  }
  // Every stored double equals itself exactly, so doubleValue() is present.
  return numberText(value.doubleValue().value_or(0.0));
}

std::string toJsonText(const JsonDictionary& dictionary) {
  std::string out = "{";
  for (std::size_t i = 0; i < dictionary.size(); ++i) {
    if (i != 0) out += ',';
    out += jsonQuote(dictionary.keyAt(i)) + ':' + toJsonText(dictionary.valueAt(i));
  }
  return out + "}";
}

std::string toJsonText(const JsonArray& array) {
  std::string out = "[";
  for (std::size_t i = 0; i < array.size(); ++i) {
    if (i != 0) out += ',';
    out += toJsonText(array[i]);
  }
  return out + "]";
}

namespace {

std::string formatTime(std::int64_t seconds, bool utc, const char* pattern) {
  const auto time = static_cast<std::time_t>(seconds);
  if (static_cast<std::int64_t>(time) != seconds) return "";
  std::tm fields{};
  const bool converted =
      utc ? gmtime_r(&time, &fields) != nullptr : localtime_r(&time, &fields) != nullptr;
  char buffer[96];
  if (!converted || std::strftime(buffer, sizeof buffer, pattern, &fields) == 0) return "";
  return buffer;
}

}  // namespace

std::string formatUtc(std::int64_t seconds) {
  return formatTime(seconds, true, "%Y-%m-%dT%H:%M:%SZ");
}

std::string formatLocal(std::int64_t seconds) {
  return formatTime(seconds, false, "%Y-%m-%d %H:%M:%S %Z");
}

std::string formatDuration(std::int64_t seconds) {
  // The magnitude as unsigned, so that the most negative value has one too.
  auto left = static_cast<std::uint64_t>(seconds);
  if (seconds < 0) left = 0 - left;
  const std::uint64_t units[] = {86400, 3600, 60, 1};
  const char* names[] = {"d", "h", "m", "s"};
  std::string out;
  for (int i = 0; i < 4; ++i) {
    const std::uint64_t count = left / units[i];
    left %= units[i];
    if (count == 0 && !(i == 3 && out.empty())) continue;
    if (!out.empty()) out += ' ';
    out += numberText(count) + names[i];
  }
  return out;
}

std::optional<std::string> readFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) return std::nullopt;
  std::ostringstream contents;
  contents << file.rdbuf();
  if (file.bad()) return std::nullopt;
  return contents.str();
}

}  // namespace tavuro::tool
