#include "cli.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <sstream>
#include <system_error>

#include "platform/DateFormat.h"

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
  bool optionsEnded = false;
  for (std::size_t i = 0; i < words.size(); ++i) {
    const std::string& word = words[i];
    if (optionsEnded || word.size() <= 2 || word.compare(0, 2, "--") != 0) {
      if (!optionsEnded && word == "-h") {
        arguments.options["--help"] = "";
      } else if (!optionsEnded && word == "--") {
        optionsEnded = true;
      } else {
        arguments.positional.push_back(word);
      }
      continue;
    }
    const std::size_t equals = word.find('=');
    const std::string name = word.substr(0, equals);
    if (name == "--help" || contains(syntax.flags, name)) {
      if (equals != std::string::npos) throw UsageError("option " + name + " takes no value");
      arguments.options[name] = "";
    } else if (!contains(syntax.valued, name)) {
      throw UsageError("unknown option " + name);
    } else if (equals != std::string::npos) {
      arguments.options[name] = word.substr(equals + 1);
    } else if (i + 1 == words.size()) {
      throw UsageError("option " + name + " needs a value");
    } else {
      arguments.options[name] = words[++i];
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

constexpr std::int64_t kSecondsPerDay = 86400;

// "yyyy-MM-dd" + separator + "HH:mm:ss" in the library's calendar; empty
// beyond the range the calendar shows.
std::string calendarText(std::int64_t seconds, char separator) {
  if (seconds < platform::kEarliestFormattedSeconds ||
      seconds > platform::kLatestFormattedSeconds) {
    return "";
  }
  const std::string date = platform::formatDateMMddyyyyGMT(seconds);  // MM-dd-yyyy
  std::int64_t ofDay = seconds % kSecondsPerDay;
  if (ofDay < 0) ofDay += kSecondsPerDay;
  char time[16];
  std::snprintf(time, sizeof time, "%c%02d:%02d:%02d", separator, static_cast<int>(ofDay / 3600),
                static_cast<int>(ofDay / 60 % 60), static_cast<int>(ofDay % 60));
  return date.substr(6) + "-" + date.substr(0, 5) + time;
}

}  // namespace

std::string formatUtc(std::int64_t seconds) {
  const std::string text = calendarText(seconds, 'T');
  return text.empty() ? text : text + "Z";
}

std::string formatLocal(std::int64_t seconds) {
  // The zone's offset and name at that instant, from the C library; the
  // calendar is the library's.
  const auto time = static_cast<std::time_t>(seconds);
  std::tm fields{};
  if (static_cast<std::int64_t>(time) != seconds || localtime_r(&time, &fields) == nullptr ||
      seconds < platform::kEarliestFormattedSeconds ||
      seconds > platform::kLatestFormattedSeconds) {
    return "";
  }
  const std::string text = calendarText(seconds + fields.tm_gmtoff, ' ');
  return text.empty() ? text : text + " " + (fields.tm_zone != nullptr ? fields.tm_zone : "");
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

std::string readInputFile(const std::string& path) {
  std::error_code error;
  if (std::filesystem::is_directory(path, error)) {
    throw std::runtime_error(path + " is a directory, not a file");
  }
  std::optional<std::string> contents = readFile(path);
  if (!contents) {
    throw std::runtime_error("cannot read " + path + ": " + std::generic_category().message(errno));
  }
  return std::move(*contents);
}

namespace {

std::string withoutLineEnd(std::string text) {
  if (!text.empty() && text.back() == '\n') text.pop_back();
  if (!text.empty() && text.back() == '\r') text.pop_back();
  return text;
}

}  // namespace

std::string readSecret(const std::string& text) {
  if (text != "-") return text;
  std::ostringstream contents;
  contents << std::cin.rdbuf();
  return withoutLineEnd(contents.str());
}

std::string secretArgument(const Arguments& arguments, const std::optional<std::string>& positional,
                           const std::string& fileOption) {
  const std::optional<std::string> file = arguments.option(fileOption);
  if (positional.has_value() == file.has_value()) {
    throw UsageError(file ? "give the value or " + fileOption + ", not both"
                          : "missing argument (the value, \"-\" for standard input, or " +
                                fileOption + " FILE)");
  }
  return file ? withoutLineEnd(readInputFile(*file)) : readSecret(*positional);
}

LibraryOutputToStderr::LibraryOutputToStderr() {
  std::fflush(stdout);
  saved_ = dup(STDOUT_FILENO);
  if (saved_ >= 0) dup2(STDERR_FILENO, STDOUT_FILENO);
}

LibraryOutputToStderr::~LibraryOutputToStderr() {
  std::fflush(stdout);
  if (saved_ < 0) return;
  dup2(saved_, STDOUT_FILENO);
  close(saved_);
}

}  // namespace tavuro::tool
