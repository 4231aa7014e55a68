// The XML form of a property list. A small reader of just the XML that
// property lists use, taking what the platform's reader takes: no DTD
// processing, no entities beyond the five predefined ones and numeric
// references, one value (inside a <plist> root or alone), tags read as far
// as their first ">", nothing read after the root.
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

/// The length of the space character at the start of `text` among those
/// the platform passes over before a number: U+2000 to U+200B and U+3000,
/// with U+205F before an integer, or U+0080 to U+00A0 and U+FEFF before a
/// real; 0 for any other.
std::size_t unicodeSpaceLength(std::string_view text, bool integer) {
  const auto at = [&](std::size_t i) {
    return i < text.size() ? static_cast<unsigned char>(text[i]) : 0U;
  };
  if (!integer && at(0) == 0xC2 && at(1) >= 0x80 && at(1) <= 0xA0) return 2;
  const bool space = (at(0) == 0xE2 && at(1) == 0x80 && at(2) >= 0x80 && at(2) <= 0x8B) ||
                     (at(0) == 0xE3 && at(1) == 0x80 && at(2) == 0x80) ||
                     (integer && at(0) == 0xE2 && at(1) == 0x81 && at(2) == 0x9F) ||
                     (!integer && at(0) == 0xEF && at(1) == 0xBB && at(2) == 0xBF);
  return space ? 3 : 0;
}

/// Skips what the platform passes over before a number: control characters,
/// the space, DEL and some Unicode spaces; before an integer and after its
/// sign also the bytes 0x80 to 0xA0, even where they are not UTF-8.
std::string_view skipFiller(std::string_view text, bool integer) {
  while (!text.empty()) {
    const auto c = static_cast<unsigned char>(text.front());
    const bool filler = c <= 0x20 || c == 0x7F || (integer && c >= 0x80 && c <= 0xA0);
    const std::size_t length = filler ? 1 : unicodeSpaceLength(text, integer);
    if (length == 0) break;
    text.remove_prefix(length);
  }
  return text;
}

/// Decimal or 0x-prefixed hexadecimal with an optional sign, within the
/// range a property-list integer can hold: -2^63 to 2^64-1. `text` is the
/// element's raw bytes: references and CDATA are not read there.
bool isPlistInteger(std::string_view text) {
  text = skipFiller(text, true);
  bool negative = false;
  if (!text.empty() && (text.front() == '+' || text.front() == '-')) {
    negative = text.front() == '-';
    text = skipFiller(text.substr(1), true);  // an integer's sign may stand apart
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
  // The words stand alone; only numbers may have blanks before them.
  std::string_view word = text;
  if (!word.empty() && (word.front() == '+' || word.front() == '-')) word.remove_prefix(1);
  if (equalsIgnoringAsciiCase(word, "nan") || equalsIgnoringAsciiCase(word, "inf") ||
      equalsIgnoringAsciiCase(word, "infinity")) {
    return true;
  }
  text = skipFiller(text, false);
  if (!text.empty() && (text.front() == '+' || text.front() == '-')) text.remove_prefix(1);
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

/// "YYYY-MM-DDTHH:MM:SSZ" with nothing around it, as the element's raw
/// bytes. As on the platform, the year may have a "-" and any number of
/// digits, none included, and the fields are not checked against the
/// calendar: "2021-02-30" is read as March 2nd, "T24:00:00" as the next day.
bool isPlistDate(std::string_view text) {
  if (!text.empty() && text.front() == '-') text.remove_prefix(1);
  text.remove_prefix(countDigits(text, 0));
  constexpr std::string_view kShape = "-dd-ddTdd:dd:ddZ";
  if (text.size() != kShape.size()) return false;
  for (std::size_t i = 0; i < kShape.size(); ++i) {
    if (kShape[i] == 'd' ? !isDigit(text[i]) : text[i] != kShape[i]) return false;
  }
  return true;
}

/// Whether an encoding name names UTF-8 when compared as the platform
/// compares them: ASCII case, ASCII characters other than letters and
/// digits, and the zeros that begin a number are ignored ("utf8", "UTF_08",
/// "!UTF-8" all match); a byte above 0x7F matches nothing.
bool namesUtf8(std::string_view name) {
  std::string folded;
  bool afterDigit = false;
  for (std::size_t i = 0; i < name.size(); ++i) {
    const char c = name[i];
    if (static_cast<unsigned char>(c) >= 0x80) return false;
    const bool digit = isDigit(c);
    if (!digit && (asciiLower(c) < 'a' || asciiLower(c) > 'z')) {
      afterDigit = false;  // punctuation, blanks and controls
      continue;
    }
    if (c == '0' && !afterDigit && i + 1 < name.size() && isDigit(name[i + 1])) continue;
    afterDigit = digit;
    folded += asciiLower(c);
  }
  return folded == "utf8";
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
    // A byte-order mark outweighs any encoding the declaration names.
    const bool marked = consume(kUtf8Bom);
    if (!readProlog(marked)) return std::nullopt;

    // The value stands inside <plist>, or alone; as on the platform,
    // nothing after it is read.
    std::optional<Tag> root = readTag();
    if (!root || root->isEnd) return std::nullopt;
    const bool wrapped = root->name == "plist";
    if (wrapped && root->isEmpty) return std::nullopt;
    std::optional<Tag> value = wrapped ? readChildTag() : root;
    // A root of another kind is well-formed but not a dictionary.
    if (!value || value->isEnd || value->name != "dict") return std::nullopt;
    PlistStringDictionary entries;
    if (!readDict(*value, 1, &entries)) return std::nullopt;
    if (wrapped) {
      std::optional<Tag> rootEnd = readChildTag();
      if (!rootEnd || !rootEnd->isEnd || rootEnd->name != "plist") return std::nullopt;
    }
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
  /// instructions and DOCTYPEs, up to the root's "<".
  bool readProlog(bool marked) {
    if (startsWith("<?xml") && pos_ + 5 < in_.size() && isXmlSpace(in_[pos_ + 5])) {
      pos_ += 5;
      if (!readXmlDeclaration(marked)) return false;
    }
    while (true) {
      if (!skipMisc()) return false;
      if (!startsWith("<!DOCTYPE")) break;
      if (!skipDoctype()) return false;
    }
    return !atEnd();
  }

  /// The rest of the declaration, whose attributes are not checked, as on
  /// the platform; only a declared encoding other than UTF-8 is refused.
  /// As there, the name is what stands between the quotes right after the
  /// first "encoding=" in the declaration (wherever it is); with no quote
  /// there or none to close it, or after a byte-order mark, the text is UTF-8.
  bool readXmlDeclaration(bool marked) {
    const std::size_t end = in_.find("?>", pos_);
    if (end == std::string_view::npos) return false;
    constexpr std::string_view kEncoding = "encoding=";
    const std::size_t name = in_.substr(pos_, end - pos_).find(kEncoding);
    const std::size_t start = pos_;
    pos_ = end + 2;
    if (marked || name == std::string_view::npos) return true;
    // The closing quote is looked for in the whole file, past the "?>".
    const std::string_view rest = in_.substr(start + name + kEncoding.size());
    if (rest.empty() || (rest.front() != '"' && rest.front() != '\'')) return true;
    const std::size_t close = rest.find(rest.front(), 1);
    if (close == std::string_view::npos) return true;
    const std::string_view encoding = rest.substr(1, close - 1);
    return namesUtf8(encoding.substr(0, encoding.find('\0')));  // the name ends at a NUL
  }

  /// Skips "<!DOCTYPE ...>" up to its first ">". As on the platform, an
  /// internal subset ("[" before that ">") is an error.
  bool skipDoctype() {
    const std::size_t close = in_.find('>', pos_);
    if (close == std::string_view::npos ||
        in_.substr(pos_, close - pos_).find('[') != std::string_view::npos) {
      return false;
    }
    pos_ = close + 1;
    return true;
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
    // Neither the target nor the rest is looked at, as on the platform.
    pos_ += 2;
    return skipPast("?>");
  }

  /// A start tag or an end tag, at its "<". As on the platform, whatever
  /// follows a start tag's name up to the first ">" is passed over
  /// unread (attributes are neither checked nor used, quotes do not hide a
  /// ">"), and a "/" just before that ">" makes the element empty.
  std::optional<Tag> readTag() {
    Tag tag;
    if (!consume("<")) return std::nullopt;
    tag.isEnd = consume("/");
    // The name runs to the first blank, "/" or ">", whatever it holds.
    const std::size_t nameStart = pos_;
    while (!atEnd() && !isXmlSpace(peek()) && peek() != '/' && peek() != '>') ++pos_;
    tag.name = in_.substr(nameStart, pos_ - nameStart);
    if (tag.name.empty()) return std::nullopt;
    if (tag.isEnd) {
      skipSpace();
      if (!consume(">")) return std::nullopt;
      return tag;
    }
    if (consume("/")) {
      tag.isEmpty = true;
      return consume(">") ? std::optional<Tag>(tag) : std::nullopt;
    }
    const std::size_t close = in_.find('>', pos_);
    if (close == std::string_view::npos) return std::nullopt;
    tag.isEmpty = in_[close - 1] == '/';
    pos_ = close + 1;
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

  /// "123" or "x7B" (after the "#"): a Unicode scalar value. As on the
  /// platform, no digits at all ("&#;") stand for NUL, as "&#0;" does.
  static bool appendCharacterReference(std::string_view digits, std::string* out) {
    const bool hex = !digits.empty() && digits.front() == 'x';
    if (hex) digits.remove_prefix(1);
    char32_t value = 0;
    for (char c : digits) {
      const int digit = hex ? hexDigitValue(c) : (isDigit(c) ? c - '0' : -1);
      if (digit < 0) return false;
      value = value * (hex ? 16 : 10) + static_cast<char32_t>(digit);
      if (value > 0x10FFFF) return false;
    }
    if (value >= 0xD800 && value <= 0xDFFF) return false;
    appendUtf8(*out, value);
    return true;
  }

  /// Character data, CDATA sections and references up to the next end tag.
  /// A comment or processing instruction there is an error, as on the
  /// platform.
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
      } else {
        return false;  // an element, comment or instruction where only text may be
      }
    }
    return false;
  }

  /// The text of a leaf element whose start tag has been read. It must be
  /// UTF-8; elsewhere (in tags, comments, after the root) any bytes pass, as
  /// on the platform.
  bool readLeafText(const Tag& tag, std::string* text) {
    if (tag.isEmpty) return true;
    return readText(text) && repairUtf8(text) && readEndTag(tag.name);
  }

  /// The text of an element read as its bytes up to the next "<", then its
  /// end tag; as on the platform for integers, dates and data, references and
  /// CDATA are not read there.
  bool readRawText(const Tag& tag, std::string_view* text) {
    if (tag.isEmpty) return true;
    const std::size_t end = in_.find('<', pos_);
    if (end == std::string_view::npos) return false;
    *text = in_.substr(pos_, end - pos_);
    pos_ = end;
    return readEndTag(tag.name);
  }

  /// Checks that `text` is UTF-8, except that, as on the platform, a byte
  /// 0xA9 where a character would begin stands for U+FFFD; every other stray
  /// byte makes the text invalid.
  static bool repairUtf8(std::string* text) {
    if (isValidUtf8(*text)) return true;
    std::string repaired;
    for (std::size_t i = 0; i < text->size();) {
      const auto c = static_cast<unsigned char>((*text)[i]);
      const unsigned length = c < 0x80 ? 1 : utf8SequenceLength(text->data() + i, text->size() - i);
      if (length != 0) {
        repaired.append(*text, i, length);
        i += length;
      } else if (c == 0xA9) {
        repaired += "\xEF\xBF\xBD";
        ++i;
      } else {
        return false;
      }
    }
    *text = std::move(repaired);
    return true;
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
    if (tag.name == "data") {
      // The platform decodes data leniently and never refuses it, nor does
      // it look for references there.
      std::string_view raw;
      return readRawText(tag, &raw) && isValidUtf8(raw);
    }
    if (tag.name == "integer" || tag.name == "date") {
      std::string_view raw;
      if (!readRawText(tag, &raw)) return false;
      return tag.name == "integer" ? isPlistInteger(raw) : isPlistDate(raw);
    }
    std::string text;
    if (!readLeafText(tag, &text)) return false;
    if (tag.name == "string") {
      if (stringValue != nullptr) *stringValue = std::move(text);
      return true;
    }
    if (tag.name == "true" || tag.name == "false") return text.empty();
    if (tag.name == "real") return isPlistReal(text);
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
