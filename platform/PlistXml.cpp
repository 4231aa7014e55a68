// The XML form of a property list. A small, strict reader of just the XML
// that property lists use: no DTD processing, no entities beyond the five
// predefined ones and numeric references, exactly one <plist> root.
//
// Text is taken byte for byte: line ends are not normalised and raw control
// characters are kept, so that every file writeXmlPlist produces (it escapes
// only "<", ">" and "&") reads back to the same strings.
#include <algorithm>
#include <cstdint>
#include <iterator>
#include <string>
#include <string_view>
#include <utility>

#include "platform/PlistFormats.h"
#include "platform/Utf8.h"

namespace tavuro::platform {

namespace {

bool isXmlSpace(char c) {
  return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

/// The value of a hexadecimal digit, or -1.
int hexDigitValue(char c) {
  if (isDigit(c)) return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

char asciiLower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool equalsIgnoringAsciiCase(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (asciiLower(a[i]) != asciiLower(b[i])) return false;
  }
  return true;
}

std::string_view trimXmlSpace(std::string_view text) {
  while (!text.empty() && isXmlSpace(text.front())) text.remove_prefix(1);
  while (!text.empty() && isXmlSpace(text.back())) text.remove_suffix(1);
  return text;
}

/// Decimal or 0x-prefixed hexadecimal with an optional sign, within the
/// range a property-list integer can hold: -2^63 to 2^64-1.
bool isPlistInteger(std::string_view text) {
  text = trimXmlSpace(text);
  bool negative = false;
  if (!text.empty() && (text.front() == '+' || text.front() == '-')) {
    negative = text.front() == '-';
    text.remove_prefix(1);
  }
  std::uint64_t base = 10;
  if (text.size() > 2 && text[0] == '0' && asciiLower(text[1]) == 'x') {
    base = 16;
    text.remove_prefix(2);
  }
  if (text.empty()) return false;
  const std::uint64_t limit = negative ? std::uint64_t{1} << 63 : UINT64_MAX;
  std::uint64_t value = 0;
  for (char c : text) {
    const int digit = base == 16 ? hexDigitValue(c) : (isDigit(c) ? c - '0' : -1);
    if (digit < 0) return false;
    const auto d = static_cast<std::uint64_t>(digit);
    if (value > (limit - d) / base) return false;
    value = value * base + d;
  }
  return true;
}

std::size_t countDigits(std::string_view text, std::size_t from) {
  std::size_t end = from;
  while (end < text.size() && isDigit(text[end])) ++end;
  return end - from;
}

/// A decimal floating-point number (digits with an optional fraction and
/// exponent, optional sign), or nan / inf / infinity in any case.
bool isPlistReal(std::string_view text) {
  text = trimXmlSpace(text);
  if (!text.empty() && (text.front() == '+' || text.front() == '-')) text.remove_prefix(1);
  if (equalsIgnoringAsciiCase(text, "nan") || equalsIgnoringAsciiCase(text, "inf") ||
      equalsIgnoringAsciiCase(text, "infinity")) {
    return true;
  }
  std::size_t pos = countDigits(text, 0);
  std::size_t mantissaDigits = pos;
  if (pos < text.size() && text[pos] == '.') {
    const std::size_t fraction = countDigits(text, pos + 1);
    mantissaDigits += fraction;
    pos += 1 + fraction;
  }
  if (mantissaDigits == 0) return false;
  if (pos < text.size() && asciiLower(text[pos]) == 'e') {
    ++pos;
    if (pos < text.size() && (text[pos] == '+' || text[pos] == '-')) ++pos;
    const std::size_t exponent = countDigits(text, pos);
    if (exponent == 0) return false;
    pos += exponent;
  }
  return pos == text.size();
}

bool isLeapYear(int year) {
  return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
}

int daysInMonth(int year, int month) {
  static constexpr int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  return month == 2 && isLeapYear(year) ? 29 : kDays[month - 1];
}

/// "YYYY-MM-DDTHH:MM:SSZ" naming a real instant (UTC, no leap seconds),
/// with nothing around it.
bool isPlistDate(std::string_view text) {
  constexpr std::string_view kShape = "dddd-dd-ddTdd:dd:ddZ";
  if (text.size() != kShape.size()) return false;
  for (std::size_t i = 0; i < kShape.size(); ++i) {
    if (kShape[i] == 'd' ? !isDigit(text[i]) : text[i] != kShape[i]) return false;
  }
  const auto field = [&](std::size_t at, std::size_t width) {
    int value = 0;
    for (std::size_t i = at; i < at + width; ++i) value = value * 10 + (text[i] - '0');
    return value;
  };
  const int year = field(0, 4);
  const int month = field(5, 2);
  if (month < 1 || month > 12) return false;
  const int day = field(8, 2);
  return day >= 1 && day <= daysInMonth(year, month) && field(11, 2) <= 23 && field(14, 2) <= 59 &&
         field(17, 2) <= 59;
}

bool isBase64Letter(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || isDigit(c) || c == '+' || c == '/';
}

/// Base64 with whitespace anywhere: letters, then at most two "=" that
/// complete the last group of four. Unpadded text is accepted as long as its
/// last group is not a single letter, which could not carry a whole byte.
bool isPlistData(std::string_view text) {
  std::size_t letters = 0;
  std::size_t padding = 0;
  for (char c : text) {
    if (isXmlSpace(c)) continue;
    if (c == '=') {
      ++padding;
    } else if (isBase64Letter(c) && padding == 0) {
      ++letters;
    } else {
      return false;
    }
  }
  if (letters % 4 == 1 || padding > 2) return false;
  return padding == 0 || (letters + padding) % 4 == 0;
}

struct Tag {
  std::string_view name;
  bool isEnd = false;    // </name>
  bool isEmpty = false;  // <name/>
};

class XmlPlistReader {
 public:
  explicit XmlPlistReader(std::string_view input) : in_(input), budget_(input.size()) {}

  std::optional<PlistStringDictionary> read() {
    constexpr std::string_view kUtf8Bom = "\xEF\xBB\xBF";
    if (startsWith(kUtf8Bom)) pos_ = kUtf8Bom.size();
    if (!isValidUtf8(in_.substr(pos_)) || !readProlog()) return std::nullopt;

    std::optional<Tag> root = readTag();
    if (!root || root->isEnd || root->isEmpty || root->name != "plist") return std::nullopt;
    std::optional<Tag> value = readChildTag();
    // A root of another kind is well-formed but not a dictionary.
    if (!value || value->isEnd || value->name != "dict") return std::nullopt;
    PlistStringDictionary entries;
    if (!readDict(*value, 1, &entries)) return std::nullopt;
    std::optional<Tag> rootEnd = readChildTag();
    if (!rootEnd || !rootEnd->isEnd || rootEnd->name != "plist") return std::nullopt;
    if (!skipMisc() || pos_ != in_.size()) return std::nullopt;
    return entries;
  }

 private:
  [[nodiscard]] bool atEnd() const { return pos_ >= in_.size(); }
  [[nodiscard]] char peek() const { return in_[pos_]; }
  [[nodiscard]] bool startsWith(std::string_view s) const {
    return in_.substr(pos_, s.size()) == s;
  }

  bool consume(std::string_view s) {
    if (!startsWith(s)) return false;
    pos_ += s.size();
    return true;
  }

  /// Skips whitespace; true when there was some.
  bool skipSpace() {
    const std::size_t start = pos_;
    while (!atEnd() && isXmlSpace(peek())) ++pos_;
    return pos_ != start;
  }

  bool skipPast(std::string_view terminator) {
    const std::size_t found = in_.find(terminator, pos_);
    if (found == std::string_view::npos) return false;
    pos_ = found + terminator.size();
    return true;
  }

  /// The XML declaration, then whitespace, comments, processing
  /// instructions and at most one DOCTYPE, up to the root's "<".
  bool readProlog() {
    if (startsWith("<?xml") && pos_ + 5 < in_.size() && isXmlSpace(in_[pos_ + 5])) {
      pos_ += 5;
      if (!readXmlDeclaration()) return false;
    }
    bool sawDoctype = false;
    while (true) {
      if (!skipMisc()) return false;
      if (!startsWith("<!DOCTYPE")) break;
      if (sawDoctype || !skipDoctype()) return false;
      sawDoctype = true;
    }
    return !atEnd();
  }

  bool readXmlDeclaration() {
    std::string_view encoding = "UTF-8";
    if (!readAttributes(&encoding) || !consume("?>")) return false;
    return equalsIgnoringAsciiCase(encoding, "UTF-8");
  }

  /// Skips "<!DOCTYPE ...>", including an internal subset in brackets;
  /// nothing declared there is used, so entities it defines stay unknown.
  bool skipDoctype() {
    pos_ += std::string_view("<!DOCTYPE").size();
    char quote = 0;
    bool inSubset = false;
    while (!atEnd()) {
      const char c = in_[pos_++];
      if (quote != 0) {
        if (c == quote) quote = 0;
      } else if (c == '"' || c == '\'') {
        quote = c;
      } else if (inSubset && c == '<' && startsWith("!--")) {
        --pos_;
        if (!skipComment()) return false;
      } else if (c == '[') {
        inSubset = true;
      } else if (c == ']') {
        inSubset = false;
      } else if (c == '>' && !inSubset) {
        return true;
      }
    }
    return false;
  }

  /// Whitespace, comments and processing instructions, as may stand
  /// between elements.
  bool skipMisc() {
    while (true) {
      skipSpace();
      if (startsWith("<!--")) {
        if (!skipComment()) return false;
      } else if (startsWith("<?")) {
        if (!skipProcessingInstruction()) return false;
      } else {
        return true;
      }
    }
  }

  /// A comment, at its "<!--". The closing "-->" is looked for only after
  /// the opening one, so "<!-->" and "<!--->" do not close themselves.
  bool skipComment() {
    pos_ += std::string_view("<!--").size();
    return skipPast("-->");
  }

  bool skipProcessingInstruction() {
    pos_ += 2;
    std::string_view target;
    // The target "xml" is reserved for the declaration at the very start.
    if (!readName(&target) || equalsIgnoringAsciiCase(target, "xml")) return false;
    return skipPast("?>");
  }

  bool readName(std::string_view* name) {
    const std::size_t start = pos_;
    while (!atEnd()) {
      const char c = peek();
      if (isXmlSpace(c) || c == '/' || c == '>' || c == '<' || c == '=' || c == '?' || c == '&' ||
          c == '"' || c == '\'') {
        break;
      }
      ++pos_;
    }
    *name = in_.substr(start, pos_ - start);
    return !name->empty() && !isDigit(name->front()) && name->front() != '-' &&
           name->front() != '.';
  }

  /// Attributes up to, not including, the ">", "/>" or "?>" that ends the
  /// tag. Values are checked but not expanded; `encoding`, when given,
  /// receives the raw value of an "encoding" attribute.
  bool readAttributes(std::string_view* encoding) {
    while (true) {
      const bool spaced = skipSpace();
      if (atEnd()) return false;
      if (peek() == '>' || startsWith("/>") || startsWith("?>")) return true;
      std::string_view name;
      if (!spaced || !readName(&name)) return false;
      skipSpace();
      if (!consume("=")) return false;
      skipSpace();
      if (atEnd() || (peek() != '"' && peek() != '\'')) return false;
      const char quote = in_[pos_++];
      const std::size_t start = pos_;
      std::string scratch;
      while (!atEnd() && peek() != quote) {
        if (peek() == '<') return false;
        if (peek() == '&') {
          if (!readReference(&scratch)) return false;
        } else {
          ++pos_;
        }
      }
      if (atEnd()) return false;
      if (encoding != nullptr && name == "encoding") *encoding = in_.substr(start, pos_ - start);
      ++pos_;
    }
  }

  /// A start tag (with any attributes) or an end tag, at its "<".
  std::optional<Tag> readTag() {
    Tag tag;
    if (!consume("<")) return std::nullopt;
    tag.isEnd = consume("/");
    if (!readName(&tag.name)) return std::nullopt;
    if (tag.isEnd) {
      skipSpace();
    } else if (!readAttributes(nullptr)) {
      return std::nullopt;
    }
    tag.isEmpty = !tag.isEnd && consume("/");
    if (!consume(">")) return std::nullopt;
    return tag;
  }

  /// The next tag inside a container, past whitespace, comments and
  /// processing instructions; any other text there is an error.
  std::optional<Tag> readChildTag() {
    if (!skipMisc()) return std::nullopt;
    return readTag();
  }

  bool readEndTag(std::string_view name) {
    std::optional<Tag> tag = readTag();
    return tag && tag->isEnd && tag->name == name;
  }

  /// "&name;" or "&#...;" at its "&", appended as UTF-8.
  bool readReference(std::string* out) {
    const std::size_t semicolon = in_.find(';', pos_);
    if (semicolon == std::string_view::npos) return false;
    const std::string_view name = in_.substr(pos_ + 1, semicolon - pos_ - 1);
    pos_ = semicolon + 1;
    if (name.empty()) return false;
    if (name.front() == '#') return appendCharacterReference(name.substr(1), out);
    static constexpr std::pair<std::string_view, char> kEntities[] = {
        {"lt", '<'}, {"gt", '>'}, {"amp", '&'}, {"apos", '\''}, {"quot", '"'}};
    const auto* const entity = std::find_if(std::begin(kEntities), std::end(kEntities),
                                            [&](const auto& known) { return known.first == name; });
    if (entity == std::end(kEntities)) return false;
    *out += entity->second;
    return true;
  }

  /// "123" or "x7B" (after the "#"): a Unicode scalar value other than NUL.
  static bool appendCharacterReference(std::string_view digits, std::string* out) {
    const bool hex = !digits.empty() && digits.front() == 'x';
    if (hex) digits.remove_prefix(1);
    if (digits.empty()) return false;
    char32_t value = 0;
    for (char c : digits) {
      const int digit = hex ? hexDigitValue(c) : (isDigit(c) ? c - '0' : -1);
      if (digit < 0) return false;
      value = value * (hex ? 16 : 10) + static_cast<char32_t>(digit);
      if (value > 0x10FFFF) return false;
    }
    if (value == 0 || (value >= 0xD800 && value <= 0xDFFF)) return false;
    appendUtf8(*out, value);
    return true;
  }

  /// Character data, CDATA sections and references up to the next end tag;
  /// comments and processing instructions in between are dropped.
  bool readText(std::string* out) {
    while (!atEnd()) {
      if (peek() == '&') {
        if (!readReference(out)) return false;
      } else if (peek() != '<') {
        const std::size_t end = std::min(in_.find_first_of("<&", pos_), in_.size());
        out->append(in_.substr(pos_, end - pos_));
        pos_ = end;
      } else if (startsWith("</")) {
        return true;
      } else if (consume("<![CDATA[")) {
        const std::size_t end = in_.find("]]>", pos_);
        if (end == std::string_view::npos) return false;
        out->append(in_.substr(pos_, end - pos_));
        pos_ = end + 3;
      } else if (startsWith("<!--")) {
        if (!skipComment()) return false;
      } else if (startsWith("<?")) {
        if (!skipProcessingInstruction()) return false;
      } else {
        return false;  // an element where only text may be
      }
    }
    return false;
  }

  /// The text of a leaf element whose start tag has been read.
  bool readLeafText(const Tag& tag, std::string* text) {
    if (tag.isEmpty) return true;
    return readText(text) && readEndTag(tag.name);
  }

  /// One value whose start tag has been read. `depth` is the nesting level
  /// the value has if it is a container. `stringValue`, when given,
  /// receives the text of a <string> and stays empty for any other kind.
  bool readValue(const Tag& tag, int depth, std::optional<std::string>* stringValue) {
    if (tag.isEnd) return false;
    if (tag.name == "dict" || tag.name == "array") {
      if (depth > kPlistMaxDepth) return false;
      return tag.name == "dict" ? readDict(tag, depth, nullptr) : readArray(tag, depth);
    }
    std::string text;
    if (!readLeafText(tag, &text)) return false;
    if (tag.name == "string") {
      if (stringValue != nullptr) *stringValue = std::move(text);
      return true;
    }
    if (tag.name == "true" || tag.name == "false") return text.empty();
    if (tag.name == "integer") return isPlistInteger(text);
    if (tag.name == "real") return isPlistReal(text);
    if (tag.name == "date") return isPlistDate(text);
    if (tag.name == "data") return isPlistData(text);
    return false;
  }

  bool readArray(const Tag& tag, int depth) {
    if (tag.isEmpty) return true;
    while (true) {
      std::optional<Tag> child = readChildTag();
      if (!child) return false;
      if (child->isEnd) return child->name == "array";
      if (!readValue(*child, depth + 1, nullptr)) return false;
    }
  }

  /// Key and value pairs up to "</dict>". `entries`, when given, collects
  /// the string values; a later repeat of a key replaces the earlier entry,
  /// and removes it if its value is not a string. Each entry kept is taken
  /// from the budget by what its texts hold, which for text built piece by
  /// piece can be more than its length.
  bool readDict(const Tag& tag, int depth, PlistStringDictionary* entries) {
    if (tag.isEmpty) return true;
    while (true) {
      std::optional<Tag> keyTag = readChildTag();
      if (!keyTag) return false;
      if (keyTag->isEnd) return keyTag->name == "dict";
      std::string key;
      if (keyTag->name != "key" || !readLeafText(*keyTag, &key)) return false;
      std::optional<Tag> valueTag = readChildTag();
      std::optional<std::string> value;
      std::optional<std::string>* const wanted = entries != nullptr ? &value : nullptr;
      if (!valueTag || !readValue(*valueTag, depth + 1, wanted)) return false;
      if (entries == nullptr) continue;
      if (value) {
        if (!budget_.takeEntry(key.capacity(), value->capacity())) return false;
        (*entries)[std::move(key)] = std::move(*value);
      } else {
        entries->erase(key);
      }
    }
  }

  std::string_view in_;
  std::size_t pos_ = 0;  // never beyond in_.size()
  PlistResultBudget budget_;
};

}  // namespace

std::optional<PlistStringDictionary> readXmlPlistStringDictionary(std::string_view bytes) {
  return XmlPlistReader(bytes).read();
}

}  // namespace tavuro::platform
