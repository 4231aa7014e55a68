// The binary form of a property list ("bplist00"): a header, the objects,
// a table of object offsets and a 32-byte trailer, all big-endian. Every
// number read from the file is checked before it is used, since a hostile
// file can claim any size, count, offset or reference.
#include <algorithm>
#include <cstdint>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/PlistFormats.h"
#include "platform/Utf8.h"

namespace tavuro::platform {

namespace {

constexpr std::string_view kMagic = "bplist00";
constexpr std::uint64_t kTrailerSize = 32;

enum ObjectType : std::uint8_t {
  kSingleton = 0x0,  // null, false, true, fill
  kInteger = 0x1,
  kReal = 0x2,
  kDate = 0x3,
  kData = 0x4,
  kAsciiString = 0x5,
  kUtf16String = 0x6,
  kUid = 0x8,
  kArray = 0xA,
  kSet = 0xC,
  kDict = 0xD,
};

bool isStringType(std::uint8_t type) {
  return type == kAsciiString || type == kUtf16String;
}

bool isContainerType(std::uint8_t type) {
  return type == kArray || type == kSet || type == kDict;
}

/// An object's marker with its length or count resolved.
struct ObjectHeader {
  std::uint8_t type = 0;
  std::uint8_t info = 0;      // low nibble of the marker
  std::uint64_t count = 0;    // bytes, UTF-16 units, or entries
  std::uint64_t content = 0;  // offset of what follows the marker
};

class BinaryPlistReader {
 public:
  explicit BinaryPlistReader(std::string_view input) : in_(input) {}

  std::optional<PlistStringDictionary> read() {
    if (!readTrailer() || !checkOffsetTable()) return std::nullopt;
    std::optional<ObjectHeader> root = readHeader(topObject_);
    if (!root || root->type != kDict) return std::nullopt;
    // One byte per object: the offset table bounds objectCount_ by the
    // file's size. It is let go before the result is built.
    heights_.assign(objectCount_, kUnchecked);
    checkBudget_ = kCheckFactor * objectsEnd_;
    if (!checkObject(topObject_, 1)) return std::nullopt;
    std::vector<std::uint8_t>().swap(heights_);
    return collectStrings(*root);
  }

 private:
  // Marks in heights_ besides a height, which is at most kPlistMaxDepth.
  static constexpr std::uint8_t kUnchecked = 0xFF;
  static constexpr std::uint8_t kOnPath = 0xFE;  // a container being checked
  static_assert(kPlistMaxDepth < kOnPath);
  // How many times over the object area checking may read it.
  static constexpr std::uint64_t kCheckFactor = 4;

  [[nodiscard]] std::uint64_t readBigEndian(std::uint64_t at, std::uint64_t width) const {
    std::uint64_t value = 0;
    for (std::uint64_t i = 0; i < width; ++i) {
      value = (value << 8) | static_cast<unsigned char>(in_[at + i]);
    }
    return value;
  }

  /// True when `count` items of `unit` bytes starting at `start` end within
  /// the object area.
  [[nodiscard]] bool fits(std::uint64_t start, std::uint64_t count, std::uint64_t unit) const {
    if (start > objectsEnd_) return false;
    return count <= (objectsEnd_ - start) / unit;
  }

  bool readTrailer() {
    const std::uint64_t size = in_.size();
    // As on the platform, the version's second digit is not looked at.
    if (size < kMagic.size() + kTrailerSize || in_.substr(0, 7) != kMagic.substr(0, 7)) {
      return false;
    }
    const std::uint64_t trailer = size - kTrailerSize;
    offsetSize_ = readBigEndian(trailer + 6, 1);
    refSize_ = readBigEndian(trailer + 7, 1);
    objectCount_ = readBigEndian(trailer + 8, 8);
    topObject_ = readBigEndian(trailer + 16, 8);
    objectsEnd_ = readBigEndian(trailer + 24, 8);
    // References may be wider than eight bytes, as the platform allows:
    // only their last eight bytes count.
    if (offsetSize_ < 1 || offsetSize_ > 8 || refSize_ < 1) return false;
    if (objectCount_ == 0 || topObject_ >= objectCount_) return false;
    // At least one object byte after the magic, then the offset table,
    // which must end where the trailer starts.
    if (objectsEnd_ <= kMagic.size() || objectsEnd_ > trailer) return false;
    return (trailer - objectsEnd_) % offsetSize_ == 0 &&
           objectCount_ == (trailer - objectsEnd_) / offsetSize_;
  }

  [[nodiscard]] std::uint64_t objectOffset(std::uint64_t index) const {
    return readBigEndian(objectsEnd_ + index * offsetSize_, offsetSize_);
  }

  /// Every offset must lie before the table; as on the platform, one
  /// inside the header is refused only when its object is read.
  [[nodiscard]] bool checkOffsetTable() const {
    for (std::uint64_t i = 0; i < objectCount_; ++i) {
      if (objectOffset(i) >= objectsEnd_) return false;
    }
    return true;
  }

  /// The marker of object `index` and, for kinds that have one, its length
  /// or count, which a low nibble of 0xF moves into a following integer.
  [[nodiscard]] std::optional<ObjectHeader> readHeader(std::uint64_t index) const {
    const std::uint64_t offset = objectOffset(index);
    if (offset < kMagic.size()) return std::nullopt;
    const auto marker = static_cast<std::uint8_t>(in_[offset]);
    ObjectHeader header{static_cast<std::uint8_t>(marker >> 4),
                        static_cast<std::uint8_t>(marker & 0xF), marker & 0xFU, offset + 1};
    const bool hasCount =
        header.type == kData || isStringType(header.type) || isContainerType(header.type);
    if (!hasCount || header.info != 0xF) return header;
    if (!fits(header.content, 1, 1)) return std::nullopt;
    const auto countMarker = static_cast<std::uint8_t>(in_[header.content]);
    if ((countMarker >> 4) != kInteger || (countMarker & 0xF) > 3) return std::nullopt;
    const std::uint64_t width = std::uint64_t{1} << (countMarker & 0xF);
    if (!fits(header.content + 1, width, 1)) return std::nullopt;
    header.count = readBigEndian(header.content + 1, width);
    // Eight-byte integers are signed: a "negative" count is malformed.
    if (header.count >> 63 != 0) return std::nullopt;
    header.content += 1 + width;
    return header;
  }

  [[nodiscard]] std::optional<std::uint64_t> readReference(std::uint64_t at) const {
    const std::uint64_t ref = readBigEndian(at, refSize_);
    if (ref >= objectCount_) return std::nullopt;
    return ref;
  }

  /// Checks object `index` and everything it reaches. `depth` is its
  /// nesting level if it is a container. Each object is checked once: its
  /// subtree height is remembered, so shared references cost one lookup and
  /// the work stays linear in the file size. The objects on the current path
  /// are marked, so a container that reaches itself is rejected.
  bool checkObject(std::uint64_t index, int depth) {
    if (heights_[index] == kOnPath) return false;
    if (heights_[index] != kUnchecked) return depth - 1 + heights_[index] <= kPlistMaxDepth;
    std::optional<ObjectHeader> header = readHeader(index);
    if (!header || !charge(*header)) return false;
    int height = 0;
    if (isContainerType(header->type)) {
      if (depth > kPlistMaxDepth) return false;
      heights_[index] = kOnPath;
      std::optional<int> childHeight = checkChildren(*header, depth);
      if (!childHeight) return false;
      height = 1 + *childHeight;
    } else if (!checkScalar(*header)) {
      return false;
    }
    heights_[index] = static_cast<std::uint8_t>(height);
    return true;
  }

  /// Takes what checking an object costs (its marker, and its references or
  /// string units) from the budget. The objects of a written file never
  /// share bytes, so the total stays within the object area; the platform
  /// also reads objects that overlap, or offsets that name one object twice,
  /// hence the budget of kCheckFactor times that area. Offsets that name one
  /// long array or string many times over, or containers whose reference
  /// lists overlap, would otherwise make the work grow with the square of the
  /// file's size.
  bool charge(const ObjectHeader& header) {
    std::uint64_t units = 0;
    if (isContainerType(header.type)) {
      units = header.type == kDict ? header.count * 2 : header.count;  // count < 2^63
    } else if (isStringType(header.type)) {
      units = header.count;
    }
    if (units >= checkBudget_) return false;
    checkBudget_ -= units + 1;
    return true;
  }

  /// The greatest subtree height among the children of a container.
  std::optional<int> checkChildren(const ObjectHeader& header, int depth) {
    const std::uint64_t perEntry = header.type == kDict ? 2 : 1;
    if (header.count > UINT64_MAX / perEntry ||
        !fits(header.content, header.count * perEntry, refSize_)) {
      return std::nullopt;
    }
    int maxHeight = 0;
    for (std::uint64_t i = 0; i < header.count * perEntry; ++i) {
      std::optional<std::uint64_t> child = readReference(header.content + i * refSize_);
      if (!child || !checkObject(*child, depth + 1)) return std::nullopt;
      // In a dict the first half of the references are the keys.
      if (header.type == kDict && i < header.count) {
        // As on the platform, a key may be of any kind but a container.
        if (isContainerType(readHeader(*child)->type)) return std::nullopt;
      }
      maxHeight = std::max(maxHeight, int{heights_[*child]});
    }
    return maxHeight;
  }

  [[nodiscard]] bool checkScalar(const ObjectHeader& header) const {
    switch (header.type) {
      // Null, false and true; as on the platform, not the fill byte.
      case kSingleton: return header.info == 0x0 || header.info == 0x8 || header.info == 0x9;
      case kInteger: return header.info <= 4 && fits(header.content, 1U << header.info, 1);
      case kReal:
        return (header.info == 2 || header.info == 3) && fits(header.content, 1U << header.info, 1);
      case kDate: return header.info == 3 && fits(header.content, 8, 1);
      case kData: return fits(header.content, header.count, 1);
      case kAsciiString: return textLength(header).has_value();
      // As on the platform, an empty text is ASCII: a UTF-16 one is refused.
      case kUtf16String: return header.count != 0 && textLength(header).has_value();
      case kUid: {
        // Up to 16 bytes, whose value, as on the platform, must fit 32 bits.
        const std::uint64_t size = header.info + 1U;
        if (!fits(header.content, size, 1)) return false;
        const std::string_view high = in_.substr(header.content, size > 4 ? size - 4 : 0);
        return std::all_of(high.begin(), high.end(), [](char c) { return c == '\0'; });
      }
      default: return false;
    }
  }

  [[nodiscard]] std::uint64_t utf16Unit(const ObjectHeader& header, std::uint64_t i) const {
    return readBigEndian(header.content + 2 * i, 2);
  }

  static bool isHighSurrogate(std::uint64_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
  static bool isLowSurrogate(std::uint64_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

  /// The code point at UTF-16 unit `i` of a string object, moving `i` past
  /// a surrogate pair. As on the platform, an unpaired surrogate reads as
  /// U+FFFD.
  [[nodiscard]] std::uint32_t utf16CodePoint(const ObjectHeader& header, std::uint64_t& i) const {
    const std::uint64_t unit = utf16Unit(header, i);
    if (isLowSurrogate(unit)) return 0xFFFD;
    if (!isHighSurrogate(unit)) return static_cast<std::uint32_t>(unit);
    if (i + 1 == header.count || !isLowSurrogate(utf16Unit(header, i + 1))) return 0xFFFD;
    ++i;
    return static_cast<std::uint32_t>(0x10000 + ((unit - 0xD800) << 10) +
                                      (utf16Unit(header, i) - 0xDC00));
  }

  /// The length in UTF-8 of the text of an ASCII or UTF-16 string object;
  /// nullopt when the object overruns the object area. The bytes of an
  /// "ASCII" string read as ISO Latin-1, as on the platform, so a byte
  /// above 0x7F takes two. Nothing is allocated.
  [[nodiscard]] std::optional<std::uint64_t> textLength(const ObjectHeader& header) const {
    if (header.type == kAsciiString) {
      if (!fits(header.content, header.count, 1)) return std::nullopt;
      const std::string_view text = in_.substr(header.content, header.count);
      return header.count + static_cast<std::uint64_t>(std::count_if(
                                text.begin(), text.end(), [](char c) { return (c & 0x80) != 0; }));
    }
    if (!fits(header.content, header.count, 2)) return std::nullopt;
    std::uint64_t length = 0;
    for (std::uint64_t i = 0; i < header.count; ++i) {
      const std::uint32_t codePoint = utf16CodePoint(header, i);
      length += codePoint < 0x80 ? 1 : codePoint < 0x800 ? 2 : codePoint < 0x10000 ? 3 : 4;
    }
    return length;
  }

  /// The text of a string object that textLength found valid, as UTF-8.
  [[nodiscard]] std::string decodeString(const ObjectHeader& header) const {
    std::string text(*textLength(header), '\0');
    char* out = text.data();
    if (header.type == kAsciiString) {
      for (const char c : in_.substr(header.content, header.count)) {
        out = encodeUtf8(static_cast<unsigned char>(c), out);
      }
      return text;
    }
    for (std::uint64_t i = 0; i < header.count; ++i) {
      out = encodeUtf8(utf16CodePoint(header, i), out);
    }
    return text;
  }

  /// The key and value of entry `i` of the (already checked) root dict.
  [[nodiscard]] std::pair<ObjectHeader, ObjectHeader> rootEntry(const ObjectHeader& root,
                                                                std::uint64_t i) const {
    return {*readHeader(*readReference(root.content + i * refSize_)),
            *readHeader(*readReference(root.content + (root.count + i) * refSize_))};
  }

  /// The string entries of the (already checked) root dict; of a repeated
  /// key the first value counts, as on the platform (in the XML form it is
  /// the last), and the key is dropped if that is not a string. One string
  /// object may stand under many keys and is copied under each, so the
  /// copies are sized first and refused, before any is made, when they would
  /// not fit the budget. Every string key is decoded, kept or not, so its
  /// bytes are taken too; keys of other kinds are passed over.
  [[nodiscard]] std::optional<PlistStringDictionary> collectStrings(
      const ObjectHeader& root) const {
    PlistResultBudget budget(in_.size());
    for (std::uint64_t i = 0; i < root.count; ++i) {
      const auto [key, value] = rootEntry(root, i);
      if (!isStringType(key.type)) continue;
      const bool taken = isStringType(value.type)
                             ? budget.takeEntry(*textLength(key), *textLength(value))
                             : budget.take(*textLength(key));
      if (!taken) return std::nullopt;
    }
    PlistStringDictionary entries;
    std::set<std::string> otherKinds;  // keys whose first value is no string
    for (std::uint64_t i = 0; i < root.count; ++i) {
      const auto [key, value] = rootEntry(root, i);
      if (!isStringType(key.type)) continue;  // a number, date, data... as key: no text entry
      std::string name = decodeString(key);
      if (entries.count(name) != 0 || otherKinds.count(name) != 0) continue;
      if (isStringType(value.type)) {
        entries.emplace(std::move(name), decodeString(value));
      } else {
        otherKinds.insert(std::move(name));
      }
    }
    return entries;
  }

  std::string_view in_;
  std::uint64_t offsetSize_ = 0;
  std::uint64_t refSize_ = 0;
  std::uint64_t objectCount_ = 0;
  std::uint64_t topObject_ = 0;
  std::uint64_t objectsEnd_ = 0;       // where the offset table starts
  std::vector<std::uint8_t> heights_;  // subtree height of each checked object, or a mark
  std::uint64_t checkBudget_ = 0;      // what checking may still read
};

}  // namespace

std::optional<PlistStringDictionary> readBinaryPlistStringDictionary(std::string_view bytes) {
  return BinaryPlistReader(bytes).read();
}

}  // namespace tavuro::platform
