// The JSON reader: bytes in, one shared document out.
//
// The text is copied once into a buffer owned by the document (converted to
// UTF-8 first when it arrives as UTF-16 or UTF-32) and parsed in place:
// a string without escapes stays where it is, and escapes are decoded by
// moving the rest of their string forward. The buffer ends in kJsonPadding zero
// bytes, so the scanners may read ahead without bounds checks: a zero byte
// stops every one of them, and only then is the end of the text looked at.
//
// Parsing is iterative. Values are pushed on a pending stack; when a
// container closes, its children move from that stack into one block of the
// document's node arena.
#include <algorithm>
#include <cfloat>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <limits>
#include <locale>
#include <new>
#include <sstream>
#include <string>
#include <system_error>
#include <vector>

#if defined(__SSE2__) && !defined(TAVURO_JSON_PORTABLE_SCAN)
#include <emmintrin.h>
#define TAVURO_JSON_SSE2 1
#endif

#include "platform/Json.h"
#include "platform/JsonDocument.h"
#include "platform/JsonInput.h"
#include "platform/Utf8.h"

namespace tavuro::platform {
namespace {

constexpr std::size_t kMaxDepth = 512;
// The first block of a document's nodes is sized from its text, up to this.
constexpr std::size_t kFirstNodeBlockMax = std::size_t{16} * 1024;
// Below this many members an object is searched front to back; from it on it
// gets a hash index.
constexpr std::uint32_t kIndexedObjectMinMembers = 16;

// ---------------------------------------------------------------------------
// Character classes
// ---------------------------------------------------------------------------

struct CharTables {
  bool whitespace[256] = {};
  // '"', '\\', control bytes and every byte of a multi-byte character.
  bool stringSpecial[256] = {};
  std::int8_t hexValue[256] = {};

  constexpr CharTables() {
    whitespace[static_cast<unsigned char>(' ')] = true;
    whitespace[static_cast<unsigned char>('\t')] = true;
    whitespace[static_cast<unsigned char>('\n')] = true;
    whitespace[static_cast<unsigned char>('\r')] = true;
    for (int c = 0; c < 256; ++c) {
      stringSpecial[c] = c < 0x20 || c >= 0x80 || c == '"' || c == '\\';
      hexValue[c] = -1;
    }
    for (int c = '0'; c <= '9'; ++c) hexValue[c] = static_cast<std::int8_t>(c - '0');
    for (int c = 'a'; c <= 'f'; ++c) hexValue[c] = static_cast<std::int8_t>(c - 'a' + 10);
    for (int c = 'A'; c <= 'F'; ++c) hexValue[c] = static_cast<std::int8_t>(c - 'A' + 10);
  }
};

constexpr CharTables kTables;

inline unsigned char byteAt(const char* p) noexcept {
  return static_cast<unsigned char>(*p);
}

inline bool isDigit(char c) noexcept {
  return static_cast<unsigned char>(c - '0') < 10;
}

#if defined(TAVURO_JSON_SSE2)
inline unsigned countTrailingZeros(std::uint32_t mask) noexcept {
#if defined(__GNUC__) || defined(__clang__)
  return static_cast<unsigned>(__builtin_ctz(mask));
#else
  unsigned n = 0;
  while ((mask & 1U) == 0) {
    mask >>= 1;
    ++n;
  }
  return n;
#endif
}
#endif

#if !defined(TAVURO_JSON_SSE2)
// True when any byte of the word is special inside a string. Each test is
// exact as a whole-word answer; the byte itself is then found one by one.
inline bool wordHasSpecial(std::uint64_t v) noexcept {
  constexpr std::uint64_t kOnes = 0x0101010101010101ULL;
  constexpr std::uint64_t kHigh = 0x8080808080808080ULL;
  const auto hasZero = [](std::uint64_t x) { return (x - kOnes) & ~x & kHigh; };
  const std::uint64_t quote = hasZero(v ^ (kOnes * '"'));
  const std::uint64_t backslash = hasZero(v ^ (kOnes * '\\'));
  const std::uint64_t control = (v - kOnes * 0x20) & ~v & kHigh;
  return ((quote | backslash | control) | (v & kHigh)) != 0;
}
#endif

/// The first special string byte at or after `p`.
inline char* findSpecial(char* p) noexcept {
#if defined(TAVURO_JSON_SSE2)
  const __m128i quote = _mm_set1_epi8('"');
  const __m128i backslash = _mm_set1_epi8('\\');
  const __m128i limit = _mm_set1_epi8(0x20);
  // A signed compare with 0x20 catches control bytes and, as negative
  // numbers, every byte from 0x80 up.
  const auto special = [&](__m128i v) {
    return _mm_or_si128(_mm_or_si128(_mm_cmpeq_epi8(v, quote), _mm_cmpeq_epi8(v, backslash)),
                        _mm_cmplt_epi8(v, limit));
  };
  // Most strings are keys and short values: 16 bytes first, then 32 at a
  // time.
  const auto first = static_cast<std::uint32_t>(
      _mm_movemask_epi8(special(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p)))));
  if (first != 0) return p + countTrailingZeros(first);
  for (p += 16;; p += 32) {
    const __m128i a = special(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p)));
    const __m128i b = special(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p + 16)));
    const auto maskA = static_cast<std::uint32_t>(_mm_movemask_epi8(a));
    const auto maskB = static_cast<std::uint32_t>(_mm_movemask_epi8(b));
    if ((maskA | maskB) != 0) {
      return p + countTrailingZeros(maskA | (maskB << 16));
    }
  }
#else
  for (;;) {
    if (wordHasSpecial(load64(p))) {
      while (!kTables.stringSpecial[byteAt(p)]) ++p;
      return p;
    }
    p += 8;
  }
#endif
}

/// Copies n < 16 bytes from `src` down to `dst` (dst < src, overlap
/// allowed) without writing past dst + n: every piece is loaded before any
/// is stored. Cheaper than a call to memmove for these sizes.
inline void moveShort(char* dst, const char* src, unsigned n) noexcept {
  if (n >= 8) {
    const std::uint64_t head = load64(src);
    const std::uint64_t tail = load64(src + n - 8);
    std::memcpy(dst, &head, 8);
    std::memcpy(dst + n - 8, &tail, 8);
  } else if (n >= 4) {
    const std::uint32_t head = load32(src);
    const std::uint32_t tail = load32(src + n - 4);
    std::memcpy(dst, &head, 4);
    std::memcpy(dst + n - 4, &tail, 4);
  } else if (n > 0) {
    const char first = src[0];
    const char middle = src[n / 2];
    const char last = src[n - 1];
    dst[0] = first;
    dst[n / 2] = middle;
    dst[n - 1] = last;
  }
}

/// Moves plain string bytes from `src` down to `dst` until the next special
/// byte; both advance.
inline void moveUntilSpecial(char*& src, char*& dst) noexcept {
#if defined(TAVURO_JSON_SSE2)
  const __m128i quote = _mm_set1_epi8('"');
  const __m128i backslash = _mm_set1_epi8('\\');
  const __m128i limit = _mm_set1_epi8(0x20);
  for (;;) {
    const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(src));
    const __m128i special =
        _mm_or_si128(_mm_or_si128(_mm_cmpeq_epi8(v, quote), _mm_cmpeq_epi8(v, backslash)),
                     _mm_cmplt_epi8(v, limit));
    const auto mask = static_cast<std::uint32_t>(_mm_movemask_epi8(special));
    if (mask == 0) {
      // All 16 bytes belong to the string; dst < src, so the store only
      // overwrites bytes already loaded.
      _mm_storeu_si128(reinterpret_cast<__m128i*>(dst), v);
      src += 16;
      dst += 16;
      continue;
    }
    const unsigned n = countTrailingZeros(mask);
    moveShort(dst, src, n);
    src += n;
    dst += n;
    return;
  }
#else
  for (;;) {
    const std::uint64_t v = load64(src);
    if (!wordHasSpecial(v)) {
      std::memcpy(dst, &v, sizeof v);
      src += 8;
      dst += 8;
      continue;
    }
    while (!kTables.stringSpecial[byteAt(src)]) *dst++ = *src++;
    return;
  }
#endif
}

// ---------------------------------------------------------------------------
// Numbers
// ---------------------------------------------------------------------------

// Powers of ten that doubles hold exactly.
constexpr double kExactPowersOfTen[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                        1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                        1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

// The exact fast path needs every operation in double precision, not in a
// wider register format.
#if defined(FLT_EVAL_METHOD) && FLT_EVAL_METHOD == 0
constexpr bool kExactFastPath = true;
#else
constexpr bool kExactFastPath = false;
#endif

/// Correctly rounded conversion of a JSON number text; false when its value
/// overflows to infinity or underflows to zero.
bool convertDecimal(const char* first, const char* last, double& out) {
#if defined(__cpp_lib_to_chars) || (defined(__GLIBCXX__) && _GLIBCXX_RELEASE >= 11)
  const std::from_chars_result r = std::from_chars(first, last, out);
  return r.ec == std::errc() && r.ptr == last;
#else
  std::istringstream in(std::string(first, last));
  in.imbue(std::locale::classic());
  in >> out;
  return !in.fail() && std::isfinite(out) && out != 0.0;
#endif
}

// ---------------------------------------------------------------------------
// The reader
// ---------------------------------------------------------------------------

struct Frame {
  std::uint32_t pendingStart;
  bool isObject;
};

// The values of the containers still open. A growable array that hands out
// the slot itself, so that a node is written field by field where it lives
// (building it elsewhere and copying it in stalls on the 16-byte reload).
class NodeStack {
 public:
  NodeStack() = default;
  NodeStack(const NodeStack&) = delete;
  NodeStack& operator=(const NodeStack&) = delete;
  ~NodeStack() {
    if (data_ != inline_) ::operator delete(data_);
  }

  JsonNode* push() {
    if (top_ == end_) grow();
    return top_++;
  }
  JsonNode* data() noexcept { return data_; }
  [[nodiscard]] std::size_t size() const noexcept { return static_cast<std::size_t>(top_ - data_); }
  void truncate(std::size_t size) noexcept { top_ = data_ + size; }

 private:
  void grow() {
    const std::size_t size = this->size();
    const std::size_t capacity = 2 * static_cast<std::size_t>(end_ - data_);
    auto* fresh = static_cast<JsonNode*>(::operator new(capacity * sizeof(JsonNode)));
    std::memcpy(static_cast<void*>(fresh), data_, size * sizeof(JsonNode));
    if (data_ != inline_) ::operator delete(data_);
    data_ = fresh;
    top_ = fresh + size;
    end_ = fresh + capacity;
  }

  static constexpr std::size_t kInlineCapacity = 128;
  JsonNode inline_[kInlineCapacity];
  JsonNode* data_ = inline_;
  JsonNode* top_ = inline_;
  JsonNode* end_ = inline_ + kInlineCapacity;
};

struct Children {
  const JsonNode* first;
  std::uint32_t size;
  std::uint8_t indexBits;
};

class Reader {
 public:
  Reader(char* text, std::size_t size, JsonDocument& document)
      : begin_(text), end_(text + size), document_(document) {}

  bool parse();
  [[nodiscard]] JsonErrorKind errorKind() const noexcept { return error_; }
  [[nodiscard]] std::size_t errorOffset() const noexcept {
    return static_cast<std::size_t>(errorAt_ - begin_);
  }

 private:
  bool fail(JsonErrorKind kind, const char* at) noexcept {
    error_ = kind;
    errorAt_ = at;
    return false;
  }
  // fail() for the readers that return a position.
  std::nullptr_t failWithNull(JsonErrorKind kind, const char* at) noexcept {
    fail(kind, at);
    return nullptr;
  }
  // The character at `at` was not what the grammar allows there.
  bool failAt(const char* at) noexcept {
    return fail(at >= end_ ? JsonErrorKind::UnexpectedEnd : JsonErrorKind::UnexpectedCharacter, at);
  }

  // The first byte at or after `p` that is not whitespace.
  static char* skipWhitespace(char* p) noexcept {
    if (byteAt(p) > ' ') return p;
#if defined(TAVURO_JSON_SSE2)
    // One byte (a space after a colon, say) is the common short case;
    // longer runs, such as indentation, go 16 bytes at a time. The zero
    // padding after the text ends every run.
    if (!kTables.whitespace[byteAt(p)]) return p;  // a control byte, or the end
    if (!kTables.whitespace[byteAt(p + 1)]) return p + 1;
    const auto isWhitespace = [](__m128i v) {
      return _mm_or_si128(_mm_or_si128(_mm_cmpeq_epi8(v, _mm_set1_epi8(' ')),
                                       _mm_cmpeq_epi8(v, _mm_set1_epi8('\n'))),
                          _mm_or_si128(_mm_cmpeq_epi8(v, _mm_set1_epi8('\t')),
                                       _mm_cmpeq_epi8(v, _mm_set1_epi8('\r'))));
    };
    for (p += 2;; p += 16) {
      const auto other = static_cast<std::uint32_t>(
          ~_mm_movemask_epi8(isWhitespace(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p)))) &
          0xFFFF);
      if (other != 0) return p + countTrailingZeros(other);
    }
#else
    while (kTables.whitespace[byteAt(p)]) ++p;
    return p;
#endif
  }

  JsonNode* push(NodeType type, std::uint32_t size = 0) {
    JsonNode* node = pending_.push();
    node->type = type;
    node->indexBits = 0;
    node->unused = 0;
    node->size = size;
    return node;
  }
  // `magnitude` fits: at most 2^63 when negative.
  void pushInteger(bool negative, std::uint64_t magnitude) {
    constexpr auto kMax = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
    if (negative) {
      push(NodeType::Int64)->payload.i = magnitude > kMax ? std::numeric_limits<std::int64_t>::min()
                                                          : -static_cast<std::int64_t>(magnitude);
    } else if (magnitude <= kMax) {
      push(NodeType::Int64)->payload.i = static_cast<std::int64_t>(magnitude);
    } else {
      push(NodeType::UInt64)->payload.u = magnitude;
    }
  }

  bool open(bool isObject, const char* at);
  void close();
  // The readers of values below take the position of the value's first
  // byte (after the quote, for strings) and return the position after it,
  // or null when it is not valid.
  char* readLiteral(char* p, const char* word, std::size_t length, NodeType type);
  // Inline for a string without escapes or multi-byte characters, the most
  // common kind; anything else continues out of line.
  char* readString(char* start) {
    char* const special = findSpecial(start);
    if (*special != '"') return readStringFrom(start, special);
    push(NodeType::String, static_cast<std::uint32_t>(special - start))->payload.chars = start;
    return special + 1;
  }
  char* readStringFrom(char* start, char* special);
  bool readEscape(char*& src, char*& dst);
  char* readNumber(char* start);
  bool readUnusualNumber(const char* start, const char* end, bool negative, bool isInteger);
  JsonNode* copyToArena(const JsonNode* nodes, std::size_t count, std::size_t slotCount);
  Children finishObject(JsonNode* members, std::uint32_t count);
  static std::uint32_t removeLaterDuplicates(JsonNode* members, std::uint32_t count);
  std::uint32_t indexKeys(JsonNode* members, std::uint32_t count, KeySlot* slots,
                          unsigned bits) const;

  char* const begin_;
  char* const end_;
  JsonDocument& document_;
  NodeStack pending_;
  Frame frames_[kMaxDepth];
  std::size_t depth_ = 0;
  JsonErrorKind error_ = JsonErrorKind::None;
  const char* errorAt_ = nullptr;
};

bool Reader::parse() {
  // The position is a local, not a member, so that it stays in a register:
  // the char stores of unescaping and of node fields could alias a member
  // and would force it to be reloaded after each.
  char* p = skipWhitespace(begin_);
  if (*p != '{' && *p != '[') {
    return fail(p >= end_ ? JsonErrorKind::UnexpectedEnd : JsonErrorKind::NotAContainer, p);
  }

value:
  p = skipWhitespace(p);
  switch (*p) {
    case '{':
      if (!open(true, p)) return false;
      p = skipWhitespace(p + 1);
      if (*p == '}') {
        ++p;
        close();
        goto after_value;
      }
      goto member;
    case '[':
      if (!open(false, p)) return false;
      p = skipWhitespace(p + 1);
      if (*p == ']') {
        ++p;
        close();
        goto after_value;
      }
      goto value;
    case '"':
      p = readString(p + 1);
      if (p == nullptr) return false;
      goto after_value;
    case 't':
      p = readLiteral(p, "true", 4, NodeType::True);
      if (p == nullptr) return false;
      goto after_value;
    case 'f':
      p = readLiteral(p, "false", 5, NodeType::False);
      if (p == nullptr) return false;
      goto after_value;
    case 'n':
      p = readLiteral(p, "null", 4, NodeType::Null);
      if (p == nullptr) return false;
      goto after_value;
    case '-':
    case '0':
    case '1':
    case '2':
    case '3':
    case '4':
    case '5':
    case '6':
    case '7':
    case '8':
    case '9':
      p = readNumber(p);
      if (p == nullptr) return false;
      goto after_value;
    default: return failAt(p);
  }

member:
  if (*p != '"') return failAt(p);
  p = readString(p + 1);
  if (p == nullptr) return false;
  p = skipWhitespace(p);
  if (*p != ':') return failAt(p);
  ++p;
  goto value;

after_value:
  p = skipWhitespace(p);
  if (depth_ == 0) return p == end_ || fail(JsonErrorKind::TrailingCharacter, p);
  if (*p == ',') {
    ++p;
    if (frames_[depth_ - 1].isObject) {
      p = skipWhitespace(p);
      goto member;
    }
    goto value;
  }
  if (*p == (frames_[depth_ - 1].isObject ? '}' : ']')) {
    ++p;
    close();
    goto after_value;
  }
  return failAt(p);
}

bool Reader::open(bool isObject, const char* at) {
  if (depth_ == kMaxDepth) return fail(JsonErrorKind::TooDeep, at);
  frames_[depth_++] = Frame{static_cast<std::uint32_t>(pending_.size()), isObject};
  return true;
}

void Reader::close() {
  const Frame frame = frames_[--depth_];
  JsonNode* const first = pending_.data() + frame.pendingStart;
  const auto count = static_cast<std::uint32_t>(pending_.size() - frame.pendingStart);
  const Children children = frame.isObject ? finishObject(first, count / 2)
                                           : Children{copyToArena(first, count, 0), count, 0};
  pending_.truncate(frame.pendingStart);
  JsonNode* node = depth_ == 0 ? &document_.root : pending_.push();
  node->type = frame.isObject ? NodeType::Object : NodeType::Array;
  node->indexBits = children.indexBits;
  node->unused = 0;
  node->size = children.size;
  node->payload.children = children.first;
}

JsonNode* Reader::copyToArena(const JsonNode* nodes, std::size_t count, std::size_t slotCount) {
  const std::size_t bytes = count * sizeof(JsonNode) + slotCount * sizeof(KeySlot);
  if (bytes == 0) return nullptr;
  auto* block = static_cast<JsonNode*>(document_.arena.allocate(bytes));
  if (count <= 8) {
    // Most containers are small; a call to memcpy would cost more.
    for (std::size_t i = 0; i < count; ++i) block[i] = nodes[i];
  } else {
    std::memcpy(static_cast<void*>(block), nodes, count * sizeof(JsonNode));
  }
  return block;
}

char* Reader::readLiteral(char* p, const char* word, std::size_t length, NodeType type) {
  // The padding makes reading `length` bytes safe even at the very end.
  if (std::memcmp(p, word, length) != 0) {
    std::size_t same = 0;
    while (p[same] == word[same]) ++same;
    failAt(p + same);
    return nullptr;
  }
  push(type);
  return p + length;
}

char* Reader::readStringFrom(char* const start, char* const special) {
  char* src = special;
  char* dst = src;
  for (;;) {
    const unsigned char c = byteAt(src);
    if (c == '"') break;
    if (c == '\\') {
      if (!readEscape(src, dst)) return nullptr;
    } else if (c >= 0x80) {
      // The zero padding after the text keeps four bytes readable here.
      const unsigned length = utf8SequenceLength(src, 4);
      if (length == 0) return failWithNull(JsonErrorKind::InvalidUtf8, src);
      if (dst != src) moveShort(dst, src, length);
      src += length;
      dst += length;
    } else if (src >= end_) {
      return failWithNull(JsonErrorKind::UnexpectedEnd, end_);
    } else {
      return failWithNull(JsonErrorKind::ControlCharacter, src);
    }
    if (dst == src) {
      src = findSpecial(src);
      dst = src;
    } else {
      moveUntilSpecial(src, dst);
    }
  }
  push(NodeType::String, static_cast<std::uint32_t>(dst - start))->payload.chars = start;
  return src + 1;
}

bool Reader::readEscape(char*& src, char*& dst) {
  const auto hex4 = [](const char* s) -> std::int32_t {
    std::int32_t value = 0;
    for (int i = 0; i < 4; ++i) {
      const std::int8_t digit = kTables.hexValue[byteAt(s + i)];
      if (digit < 0) return -1;
      value = (value << 4) | digit;
    }
    return value;
  };
  char decoded;
  switch (src[1]) {
    case '"': decoded = '"'; break;
    case '\\': decoded = '\\'; break;
    case '/': decoded = '/'; break;
    case 'b': decoded = '\b'; break;
    case 'f': decoded = '\f'; break;
    case 'n': decoded = '\n'; break;
    case 'r': decoded = '\r'; break;
    case 't': decoded = '\t'; break;
    case 'u': {
      std::int32_t cp = hex4(src + 2);
      if (cp < 0) {
        const char* bad = src + 2;
        while (kTables.hexValue[byteAt(bad)] >= 0) ++bad;
        if (bad >= end_) return fail(JsonErrorKind::UnexpectedEnd, end_);
        return fail(JsonErrorKind::InvalidUnicodeEscape, src);
      }
      std::size_t consumed = 6;
      if (cp >= 0xD800 && cp <= 0xDBFF) {
        const std::int32_t low = src[6] == '\\' && src[7] == 'u' ? hex4(src + 8) : -1;
        if (low < 0xDC00 || low > 0xDFFF) return fail(JsonErrorKind::UnpairedSurrogate, src);
        cp = 0x10000 + ((cp - 0xD800) << 10) + (low - 0xDC00);
        consumed = 12;
      } else if (cp >= 0xDC00 && cp <= 0xDFFF) {
        return fail(JsonErrorKind::UnpairedSurrogate, src);
      }
      // The decoded form is never longer than the escape, so writing may
      // start before the escape has been passed.
      dst = encodeUtf8(static_cast<std::uint32_t>(cp), dst);
      src += consumed;
      return true;
    }
    default:
      if (src + 1 >= end_) return fail(JsonErrorKind::UnexpectedEnd, end_);
      return fail(JsonErrorKind::InvalidEscape, src);
  }
  *dst++ = decoded;
  src += 2;
  return true;
}

char* Reader::readNumber(char* const start) {
  char* s = start;
  const bool negative = *s == '-';
  if (negative) ++s;

  // Integer part. Up to 19 digits always fit; more go the slow way.
  std::uint64_t mantissa = 0;
  char* const digitsStart = s;
  if (*s == '0') {
    ++s;
  } else if (isDigit(*s)) {
    while (isDigit(*s)) {
      mantissa = mantissa * 10 + static_cast<unsigned>(*s - '0');
      ++s;
    }
  } else {
    return failWithNull(JsonErrorKind::InvalidNumber, start);
  }
  auto digitCount = static_cast<std::size_t>(s - digitsStart);

  if (*s != '.' && *s != 'e' && *s != 'E') {
    if (isDigit(*s)) return failWithNull(JsonErrorKind::InvalidNumber, start);  // leading zero
    if (digitCount > 19 || (negative && mantissa > (std::uint64_t{1} << 63))) {
      return readUnusualNumber(start, s, negative, true) ? s : nullptr;
    }
    pushInteger(negative, mantissa);
    return s;
  }

  // Fraction and exponent.
  std::int64_t exponent = 0;
  if (*s == '.') {
    ++s;
    if (!isDigit(*s)) return failWithNull(JsonErrorKind::InvalidNumber, start);
    char* const fractionStart = s;
    while (isDigit(*s)) {
      mantissa = mantissa * 10 + static_cast<unsigned>(*s - '0');
      ++s;
    }
    exponent = -static_cast<std::int64_t>(s - fractionStart);
    digitCount += static_cast<std::size_t>(s - fractionStart);
  }
  if (*s == 'e' || *s == 'E') {
    ++s;
    const bool negativeExponent = *s == '-';
    if (*s == '-' || *s == '+') ++s;
    if (!isDigit(*s)) return failWithNull(JsonErrorKind::InvalidNumber, start);
    std::int64_t written = 0;
    while (isDigit(*s)) {
      // Saturate; such exponents are left to the exact converter anyway.
      if (written < 100000) written = written * 10 + (*s - '0');
      ++s;
    }
    exponent += negativeExponent ? -written : written;
  }

  // Leading zeros of "0.000123" count as digits above but add nothing, so
  // the digit count is only an upper bound on the significant digits.
  if (kExactFastPath && digitCount <= 19 && mantissa <= (std::uint64_t{1} << 53) &&
      exponent >= -22 && exponent <= 22) {
    auto value = static_cast<double>(mantissa);
    value =
        exponent < 0 ? value / kExactPowersOfTen[-exponent] : value * kExactPowersOfTen[exponent];
    push(NodeType::Double)->payload.d = negative ? -value : value;
    return s;
  }
  return readUnusualNumber(start, s, negative, false) ? s : nullptr;
}

// Integers of 20 or more digits, and every number the exact fast path
// cannot take.
bool Reader::readUnusualNumber(const char* start, const char* end, bool negative, bool isInteger) {
  if (isInteger) {
    std::uint64_t magnitude = 0;
    bool fits = true;
    for (const char* d = start + (negative ? 1 : 0); d != end && fits; ++d) {
      const auto digit = static_cast<unsigned>(*d - '0');
      fits = magnitude <= (std::numeric_limits<std::uint64_t>::max() - digit) / 10;
      magnitude = magnitude * 10 + digit;
    }
    if (fits && (!negative || magnitude <= (std::uint64_t{1} << 63))) {
      pushInteger(negative, magnitude);
      return true;
    }
  }
  double value = 0.0;
  if (!convertDecimal(start, end, value)) {
    // Only a mantissa with a non-zero digit can overflow or underflow; zeros
    // stay zero whatever the exponent.
    const char* const mantissaEnd =
        std::find_if(start, end, [](char c) { return c == 'e' || c == 'E'; });
    const bool zero = std::none_of(start, mantissaEnd, [](char c) { return c >= '1' && c <= '9'; });
    if (!zero) return fail(JsonErrorKind::NumberOutOfRange, start);
    value = negative ? -0.0 : 0.0;
  }
  push(NodeType::Double)->payload.d = value;
  return true;
}

// ---------------------------------------------------------------------------
// Objects: first duplicate wins, larger ones get a hash index
// ---------------------------------------------------------------------------

inline bool sameKey(const JsonNode& a, const JsonNode& b) noexcept {
  if (a.size != b.size) return false;
  if (a.size == 0) return true;
  return a.payload.chars[0] == b.payload.chars[0] &&
         a.payload.chars[a.size - 1] == b.payload.chars[a.size - 1] &&
         std::memcmp(a.payload.chars, b.payload.chars, a.size) == 0;
}

Children Reader::finishObject(JsonNode* members, std::uint32_t count) {
  if (count < kIndexedObjectMinMembers) {
    count = removeLaterDuplicates(members, count);
    return Children{copyToArena(members, 2 * std::size_t{count}, 0), count, 0};
  }
  unsigned bits = 1;
  while ((std::size_t{1} << bits) < 2 * static_cast<std::size_t>(count)) ++bits;
  const std::size_t slotCount = std::size_t{1} << bits;
  JsonNode* const block = copyToArena(members, 2 * std::size_t{count}, slotCount);
  auto* const slots = reinterpret_cast<KeySlot*>(block + 2 * std::size_t{count});
  std::fill(slots, slots + slotCount, KeySlot{});
  const std::uint32_t kept = indexKeys(block, count, slots, bits);
  if (kept != count) {
    // Lookups expect the slots right behind the members.
    std::memmove(static_cast<void*>(block + 2 * std::size_t{kept}), slots,
                 slotCount * sizeof(KeySlot));
  }
  return Children{block, kept, static_cast<std::uint8_t>(bits)};
}

// Fills the hash slots and drops every member whose key is already there,
// moving later members forward; returns the number kept.
std::uint32_t Reader::indexKeys(JsonNode* members, std::uint32_t count, KeySlot* slots,
                                unsigned bits) const {
  const std::size_t mask = (std::size_t{1} << bits) - 1;
  std::uint32_t kept = 0;
  for (std::uint32_t i = 0; i < count; ++i) {
    const JsonNode& key = members[2 * std::size_t{i}];
    const std::uint64_t hash = hashKey(key.payload.chars, key.size, document_.hashSeed);
    const auto tag = static_cast<std::uint32_t>(hash >> 32);
    std::size_t slot = hash & mask;
    bool duplicate = false;
    for (; slots[slot].member != 0; slot = (slot + 1) & mask) {
      if (slots[slot].tag == tag &&
          sameKey(members[2 * (std::size_t{slots[slot].member} - 1)], key)) {
        duplicate = true;
        break;
      }
    }
    if (duplicate) continue;
    if (kept != i) {
      members[2 * std::size_t{kept}] = members[2 * std::size_t{i}];
      members[2 * std::size_t{kept} + 1] = members[2 * std::size_t{i} + 1];
    }
    slots[slot] = KeySlot{tag, ++kept};
  }
  return kept;
}

// Compacts the member list so that only the first of equal keys remains;
// returns the number kept.
std::uint32_t Reader::removeLaterDuplicates(JsonNode* members, std::uint32_t count) {
  // Equal keys share length, first and last byte. One bit per such feature
  // set tells, for most keys, that nothing before can be equal, without
  // comparing against every earlier key.
  const auto featureBit = [](const JsonNode& key) {
    if (key.size == 0) return std::uint64_t{1};
    const unsigned mix =
        key.size * 7U + byteAt(key.payload.chars) * 3U + byteAt(key.payload.chars + key.size - 1);
    return std::uint64_t{1} << (mix & 63U);
  };
  std::uint64_t seen = 0;
  std::uint32_t kept = 0;
  for (std::uint32_t i = 0; i < count; ++i) {
    const std::uint64_t bit = featureBit(members[2 * std::size_t{i}]);
    bool duplicate = false;
    if ((seen & bit) != 0) {
      for (std::uint32_t j = 0; j < kept && !duplicate; ++j) {
        duplicate = sameKey(members[2 * std::size_t{j}], members[2 * std::size_t{i}]);
      }
      if (duplicate) continue;
    }
    seen |= bit;
    if (kept != i) {
      members[2 * std::size_t{kept}] = members[2 * std::size_t{i}];
      members[2 * std::size_t{kept} + 1] = members[2 * std::size_t{i} + 1];
    }
    ++kept;
  }
  return kept;
}

}  // namespace

JsonParseResult parseJson(std::string_view bytes) {
  JsonParseResult result;
  try {
    JsonInput input = decodeJsonInput(bytes);
    if (input.error != JsonErrorKind::None) {
      result.errorDescription = describeJsonError(bytes, input.error, input.errorOffset);
      return result;
    }
    auto document = std::make_shared<JsonDocument>();
    document->hashSeed = processHashSeed();
    char* const text = input.text.get();
    document->text = std::move(input.text);
    // Half as much again as the nodes of a typical answer take (about one
    // byte per byte of text), so that they fit in the first block; capped,
    // so that a text of a few long strings leaves little of it unused.
    document->arena.expect(std::min(input.size + input.size / 2, kFirstNodeBlockMax));
    Reader reader(text, input.size, *document);
    if (!reader.parse()) {
      result.errorDescription = describeJsonError(bytes, reader.errorKind(), reader.errorOffset());
      return result;
    }
    result.document = std::move(document);
  } catch (...) {  // out of memory; nothing else is thrown here
    result.document.reset();
    try {
      result.errorDescription = "Not enough memory to read the JSON text.";
    } catch (...) {
      result.errorDescription.clear();
    }
  }
  return result;
}

}  // namespace tavuro::platform
