// The hand-written half of libTavuroCommonJni: the text conversions, the
// members whose values are not plain (JSON trees, bytes, pictures, points,
// packages and callbacks) and a few functions that only the binding's tests
// and benchmarks call. The regular members are in
// TavuroCommonJniGenerated.cpp.
//
// No C++ exception leaves a function here: each one catches what the library
// or the standard library may throw and turns it into a Java
// OutOfMemoryError or a default.
#include <jni.h>
#include <malloc.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "JniSupport.h"
#include "TavuroCommon/TavuroCommon.h"
#include "TavuroCommon/TavuroCommon_c.h"

namespace tavuro_jni {
namespace {

// Classes and methods looked up once when the library is loaded. The global
// references live as long as the library.
struct Cached {
  jmethodID packageInitialize = nullptr;
  jmethodID consumerAccept = nullptr;
  jclass errorClass = nullptr;
  jmethodID errorWrap = nullptr;
  jclass outOfMemory = nullptr;
  jclass objectClass = nullptr;
};
Cached cached;

void throwOutOfMemory(JNIEnv* env) {
  if (!env->ExceptionCheck()) env->ThrowNew(cached.outOfMemory, "no native memory left");
}

void appendUtf8(std::string& out, std::uint32_t c) {
  if (c < 0x80) {
    out.push_back(static_cast<char>(c));
  } else if (c < 0x800) {
    out.push_back(static_cast<char>(0xC0 | (c >> 6)));
    out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
  } else if (c < 0x10000) {
    out.push_back(static_cast<char>(0xE0 | (c >> 12)));
    out.push_back(static_cast<char>(0x80 | ((c >> 6) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
  } else {
    out.push_back(static_cast<char>(0xF0 | (c >> 18)));
    out.push_back(static_cast<char>(0x80 | ((c >> 12) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | ((c >> 6) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
  }
}

// UTF-8 to UTF-16; a byte that does not start a well-formed sequence becomes
// U+FFFD.
std::u16string utf16(const char* utf8, std::size_t size) {
  std::u16string out;
  out.reserve(size);
  const auto* p = reinterpret_cast<const unsigned char*>(utf8);
  std::size_t i = 0;
  while (i < size) {
    const unsigned char b = p[i];
    std::uint32_t c = 0xFFFD;
    std::size_t length = 1;
    auto continuation = [&](std::size_t k) { return i + k < size && (p[i + k] & 0xC0) == 0x80; };
    if (b < 0x80) {
      c = b;
    } else if (b >= 0xC2 && b < 0xE0 && continuation(1)) {
      c = ((b & 0x1Fu) << 6) | (p[i + 1] & 0x3Fu);
      length = 2;
    } else if (b >= 0xE0 && b < 0xF0 && continuation(1) && continuation(2)) {
      const std::uint32_t v = ((b & 0x0Fu) << 12) | ((p[i + 1] & 0x3Fu) << 6) | (p[i + 2] & 0x3Fu);
      if (v >= 0x800 && (v < 0xD800 || v > 0xDFFF)) {
        c = v;
        length = 3;
      }
    } else if (b >= 0xF0 && b < 0xF5 && continuation(1) && continuation(2) && continuation(3)) {
      const std::uint32_t v = ((b & 0x07u) << 18) | ((p[i + 1] & 0x3Fu) << 12) |
                              ((p[i + 2] & 0x3Fu) << 6) | (p[i + 3] & 0x3Fu);
      if (v >= 0x10000 && v <= 0x10FFFF) {
        c = v;
        length = 4;
      }
    }
    if (c >= 0x10000) {
      out.push_back(static_cast<char16_t>(0xD800 + ((c - 0x10000) >> 10)));
      out.push_back(static_cast<char16_t>(0xDC00 + ((c - 0x10000) & 0x3FF)));
    } else {
      out.push_back(static_cast<char16_t>(c));
    }
    i += length;
  }
  return out;
}

}  // namespace

Text::Text(JNIEnv* env, jstring text) {
  if (text == nullptr) return;
  present_ = true;
  const jsize length = env->GetStringLength(text);
  try {
    std::u16string units(static_cast<std::size_t>(length), u'\0');
    env->GetStringRegion(text, 0, length, reinterpret_cast<jchar*>(units.data()));
    if (env->ExceptionCheck()) {
      failed_ = true;
      return;
    }
    utf8_.reserve(units.size());
    for (std::size_t i = 0; i < units.size(); ++i) {
      std::uint32_t c = units[i];
      if (c >= 0xD800 && c <= 0xDBFF && i + 1 < units.size() && units[i + 1] >= 0xDC00 &&
          units[i + 1] <= 0xDFFF) {
        c = 0x10000 + ((c - 0xD800) << 10) + (units[i + 1] - 0xDC00u);
        ++i;
      } else if (c >= 0xD800 && c <= 0xDFFF) {
        c = 0xFFFD;
      }
      appendUtf8(utf8_, c);
    }
  } catch (const std::bad_alloc&) {
    failed_ = true;
    throwOutOfMemory(env);
  }
}

jstring newString(JNIEnv* env, const char* utf8, std::size_t size) {
  bool ascii = true;
  for (std::size_t i = 0; i < size; ++i) {
    const auto c = static_cast<unsigned char>(utf8[i]);
    if (c >= 0x80 || c == 0) {
      ascii = false;
      break;
    }
  }
  try {
    if (ascii) {
      // Plain ASCII is also the JVM's modified UTF-8; it needs a terminator.
      if (utf8[size] == '\0') return env->NewStringUTF(utf8);
      const std::string copy(utf8, size);
      return env->NewStringUTF(copy.c_str());
    }
    const std::u16string units = utf16(utf8, size);
    return env->NewString(reinterpret_cast<const jchar*>(units.data()),
                          static_cast<jsize>(units.size()));
  } catch (const std::bad_alloc&) {
    throwOutOfMemory(env);
    return nullptr;
  }
}

jstring takeText(JNIEnv* env, char* owned) {
  if (owned == nullptr) return nullptr;
  jstring result = newString(env, owned, std::strlen(owned));
  tavuro_string_free(owned);
  return result;
}

namespace {
// The text result that did not fit its buffer, until Java takes it.
thread_local std::unique_ptr<char, void (*)(char*)> pendingText{nullptr, tavuro_string_free};
}  // namespace

jint putText(JNIEnv* env, jbyteArray buffer, char* owned) {
  if (owned == nullptr) return -1;
  const std::size_t size = std::strlen(owned);
  if (size > 0x7FFFFFFF) {
    tavuro_string_free(owned);
    throwOutOfMemory(env);
    return -1;
  }
  if (static_cast<jsize>(size) <= env->GetArrayLength(buffer)) {
    env->SetByteArrayRegion(buffer, 0, static_cast<jsize>(size), reinterpret_cast<jbyte*>(owned));
    tavuro_string_free(owned);
  } else {
    pendingText.reset(owned);
  }
  return static_cast<jint>(size);
}

jbyteArray newBytes(JNIEnv* env, const void* bytes, std::size_t size) {
  if (size > 0x7FFFFFFF) {
    throwOutOfMemory(env);
    return nullptr;
  }
  jbyteArray array = env->NewByteArray(static_cast<jsize>(size));
  if (array == nullptr) return nullptr;  // OutOfMemoryError pending
  if (size > 0) {
    env->SetByteArrayRegion(array, 0, static_cast<jsize>(size), static_cast<const jbyte*>(bytes));
  }
  return array;
}

namespace {

// ---------------------------------------------------------------------------
// JSON trees in the compact form that JsonTree.java reads
// ---------------------------------------------------------------------------

enum Tag : unsigned char {
  kNull = 0,
  kFalse = 1,
  kTrue = 2,
  kInt = 3,
  kDouble = 4,
  kUnsigned = 5,
  kString = 6,
  kArray = 7,
  kObject = 8,
  kAsciiString = 9,
  kLongString = 10
};

// Strings at least this long do not go through the buffer: each becomes a
// Java string of its own, which saves two copies of its bytes.
constexpr std::size_t kLongStringBytes = 8192;

// Buffers kept by a thread between calls stay allocated up to this size.
constexpr std::size_t kKeptBytes = std::size_t{8} << 20;

// True when every byte of `text` is ASCII.
bool ascii(std::string_view text) {
  std::size_t i = 0;
  for (; i + 8 <= text.size(); i += 8) {
    std::uint64_t word = 0;
    std::memcpy(&word, text.data() + i, 8);
    if ((word & 0x8080808080808080ULL) != 0) return false;
  }
  for (; i < text.size(); ++i) {
    if ((static_cast<unsigned char>(text[i]) & 0x80) != 0) return false;
  }
  return true;
}

// A block of bytes that one thread reuses from call to call. It keeps its
// size between calls, so that a large text does not map fresh pages each
// time, and gives back what grew past kKeptBytes once a smaller block will do.
class ThreadBuffer {
 public:
  // Room for `size` bytes, whose contents are undefined.
  char* reserve(std::size_t size) {
    if (size > capacity_ || (capacity_ > kKeptBytes && size <= kKeptBytes)) {
      data_.reset();
      capacity_ = 0;
      data_.reset(static_cast<char*>(std::malloc(size == 0 ? 1 : size)));
      if (data_ == nullptr) throw std::bad_alloc();
      capacity_ = size;
    }
    return data_.get();
  }

  // Room for at least `size` bytes, keeping the contents.
  char* grow(std::size_t size) {
    if (size > capacity_) {
      char* const bigger = static_cast<char*>(std::realloc(data_.get(), size));
      if (bigger == nullptr) throw std::bad_alloc();
      static_cast<void>(data_.release());  // realloc moved it to `bigger`
      data_.reset(bigger);
      capacity_ = size;
    }
    return data_.get();
  }

  [[nodiscard]] char* data() const { return data_.get(); }
  [[nodiscard]] std::size_t capacity() const { return capacity_; }

 private:
  struct Free {
    void operator()(char* p) const { std::free(p); }
  };
  std::unique_ptr<char, Free> data_;
  std::size_t capacity_ = 0;
};

// The first and the last sizeof(Word) of the n >= sizeof(Word) bytes at
// `p`; they overlap when n < 2 * sizeof(Word), and together with n they are
// the whole run.
template <typename Word>
struct Ends {
  Word head = 0;
  Word tail = 0;

  Ends(const char* p, std::size_t n) {
    std::memcpy(&head, p, sizeof(Word));
    std::memcpy(&tail, p + n - sizeof(Word), sizeof(Word));
  }

  // Writes them back at the same places of the n bytes at `p`.
  void store(char* p, std::size_t n) const {
    std::memcpy(p, &head, sizeof(Word));
    std::memcpy(p + n - sizeof(Word), &tail, sizeof(Word));
  }
};

// Copies `n` bytes from `src` to `dst`, which do not overlap; true when all
// of them are ASCII. Short strings, the common case, take a few whole-word
// loads and stores instead of a call to memcpy and a second pass.
inline bool copyCheckingAscii(char* dst, const char* src, std::size_t n) {
  constexpr std::uint64_t kHigh = 0x8080808080808080ULL;
  std::uint64_t seen = 0;
  if (n >= 8) {
    // 16 bytes at a time, the last 16 (or the only 8 to 15) overlapping.
    for (std::size_t i = 0; i + 16 < n; i += 16) {
      const Ends<std::uint64_t> words(src + i, 16);
      words.store(dst + i, 16);
      seen |= words.head | words.tail;
    }
    const std::size_t last = n >= 16 ? n - 16 : 0;
    const Ends<std::uint64_t> words(src + last, n - last);
    words.store(dst + last, n - last);
    seen |= words.head | words.tail;
  } else if (n >= 4) {
    const Ends<std::uint32_t> words(src, n);
    words.store(dst, n);
    seen = words.head | words.tail;
  } else if (n > 0) {
    const char first = src[0];
    const char middle = src[n / 2];
    const char last = src[n - 1];
    dst[0] = first;
    dst[n / 2] = middle;
    dst[n - 1] = last;
    seen = static_cast<unsigned char>(first | middle | last);
  }
  return (seen & kHigh) == 0;
}

// Writes a dictionary in the compact form into a buffer that one thread
// reuses from call to call. Keys are written once and then referred to by
// number, so that Java makes one String per distinct key; the table that
// finds them is open-addressed, stamped with the number of the tree so that
// starting a tree does not clear it, and never allocates per key.
//
// The walk carries its write position and the end of the buffer in an `Out`
// passed by value, so they stay in registers: a store through a char pointer
// may alias any field, and a position kept in a field would be reloaded
// after every byte written.
class TreeWriter {
 public:
  // Starts a tree; `expected` is about how many bytes it will take. A small
  // tree uses the start of the key table only (one slot per 16 bytes, at
  // least 64), which stays in the nearest cache; the table grows to what the
  // largest tree so far used.
  void start(std::size_t expected) {
    buffer_.reserve(expected);
    at_ = 0;
    mask_ = 63;
    while (mask_ < kSlots - 1 && (mask_ + 1) * 16 < expected) mask_ = mask_ * 2 + 1;
    if (slots_.size() <= mask_) slots_.resize(mask_ + 1);  // new slots belong to no tree
    announced_ = 0;
    longStrings_.clear();
    if (++tree_ == 0) {  // the stamp wrapped: forget every slot once
      std::fill(slots_.begin(), slots_.end(), Slot{});
      tree_ = 1;
    }
  }

  // A whole document as the reader laid it out.
  void node(const tavuro_JsonNode& n) { finish(walk(n, begin())); }

  // A dictionary through the C++ types, for results that only they give.
  void object(const tavuro::JsonDictionary& dictionary) { finish(object(dictionary, begin())); }

  [[nodiscard]] const char* data() const { return buffer_.data(); }
  [[nodiscard]] std::size_t size() const { return at_; }
  [[nodiscard]] const std::vector<std::string_view>& longStrings() const { return longStrings_; }

 private:
  static constexpr std::size_t kSlots = 4096;  // a power of two

  // Where the next byte goes, and the end of the buffer.
  struct Out {
    char* p;
    char* end;
  };

  struct KeyWords {
    std::uint64_t head = 0;
    std::uint64_t tail = 0;
  };

  struct Slot {
    KeyWords words;
    const char* data = nullptr;
    std::uint32_t size = 0;
    std::uint32_t number = 0;
    std::uint32_t tree = 0;  // the tree that filled the slot; 0: never
  };

  Out begin() { return {buffer_.data(), buffer_.data() + buffer_.capacity()}; }
  void finish(Out out) { at_ = static_cast<std::size_t>(out.p - buffer_.data()); }

  // A container and all it holds; scalars are written in the loop, so that
  // only containers cost a call. Room is made once per member: a key that
  // was met before and any scalar take at most 16 bytes together, and
  // strings and containers make their own.
  Out walk(const tavuro_JsonNode& n, Out out) {
    out = room(out, 16);
    const tavuro_JsonNode* const children = n.payload.children;
    if (n.type == TAVURO_JSON_NODE_ARRAY) {
      *out.p++ = kArray;
      out.p = unsigned64(out.p, n.size);
      for (std::uint32_t i = 0; i < n.size; ++i) out = item(children[i], room(out, 16));
      return out;
    }
    *out.p++ = kObject;
    out.p = unsigned64(out.p, n.size);
    for (std::uint32_t i = 0; i < n.size; ++i) {
      const tavuro_JsonNode& k = children[2 * std::size_t{i}];
      out = key(room(out, 32), {k.payload.chars, k.size});
      out = item(children[2 * std::size_t{i} + 1], out);
    }
    return out;
  }

  // Needs 11 bytes of room for a scalar.
  __attribute__((always_inline)) Out item(const tavuro_JsonNode& n, Out out) {
    switch (n.type) {
      case TAVURO_JSON_NODE_NULL: *out.p++ = kNull; return out;
      case TAVURO_JSON_NODE_FALSE: *out.p++ = kFalse; return out;
      case TAVURO_JSON_NODE_TRUE: *out.p++ = kTrue; return out;
      case TAVURO_JSON_NODE_INT64: out.p = integer(out.p, n.payload.int64Value); return out;
      case TAVURO_JSON_NODE_UINT64:
        out.p = unsignedInteger(out.p, n.payload.uint64Value);
        return out;
      case TAVURO_JSON_NODE_DOUBLE: out.p = real(out.p, n.payload.doubleValue); return out;
      case TAVURO_JSON_NODE_STRING: return string(out, {n.payload.chars, n.size});
      default: return walk(n, out);
    }
  }

  Out object(const tavuro::JsonDictionary& dictionary, Out out) {
    out = room(out, 16);
    *out.p++ = kObject;
    const std::size_t n = dictionary.size();
    out.p = unsigned64(out.p, n);
    for (std::size_t i = 0; i < n; ++i) {
      out = key(room(out, 32), dictionary.keyAt(i));
      out = value(dictionary.valueAt(i), out);
    }
    return out;
  }

  Out value(const tavuro::JsonValue& v, Out out) {
    out = room(out, 16);
    switch (v.kind()) {
      case tavuro::JsonValue::Kind::Null: *out.p++ = kNull; return out;
      case tavuro::JsonValue::Kind::Boolean:
        *out.p++ = v.boolValue() == std::optional<bool>(true) ? kTrue : kFalse;
        return out;
      case tavuro::JsonValue::Kind::Number:
        switch (*v.numberKind()) {
          case tavuro::JsonValue::NumberKind::Int64:
            out.p = integer(out.p, *v.int64Value());
            return out;
          case tavuro::JsonValue::NumberKind::UInt64:
            out.p = unsignedInteger(out.p, *v.uint64Value());
            return out;
          case tavuro::JsonValue::NumberKind::Double:
            out.p = real(out.p, *v.doubleValue());
            return out;
        }
        return out;
      case tavuro::JsonValue::Kind::String: return string(out, *v.stringValue());
      case tavuro::JsonValue::Kind::Array: {
        const std::optional<tavuro::JsonArray> array = v.arrayValue();
        *out.p++ = kArray;
        const std::size_t n = array->size();
        out.p = unsigned64(out.p, n);
        for (std::size_t i = 0; i < n; ++i) out = value((*array)[i], out);
        return out;
      }
      case tavuro::JsonValue::Kind::Object: return object(*v.dictionaryValue(), out);
    }
    return out;
  }

  // The scalar writers need at most 11 bytes of room.
  static char* integer(char* p, std::int64_t i) {
    *p++ = kInt;
    return unsigned64(p,
                      (static_cast<std::uint64_t>(i) << 1) ^ static_cast<std::uint64_t>(i >> 63));
  }

  static char* unsignedInteger(char* p, std::uint64_t v) {
    *p++ = kUnsigned;
    return fixed(p, v);
  }

  static char* real(char* p, double d) {
    std::uint64_t bits = 0;
    std::memcpy(&bits, &d, sizeof bits);
    *p++ = kDouble;
    return fixed(p, bits);
  }

  __attribute__((always_inline)) Out string(Out out, std::string_view text) {
    if (text.size() >= kLongStringBytes) {
      out = room(out, 16);
      *out.p++ = kLongString;
      out.p = unsigned64(out.p, longStrings_.size());
      longStrings_.push_back(text);
      return out;
    }
    out = room(out, text.size() + 16);
    char* const tag = out.p++;
    out.p = unsigned64(out.p, text.size());
    *tag = static_cast<char>(copyCheckingAscii(out.p, text.data(), text.size()) ? kAsciiString
                                                                                : kString);
    out.p += text.size();
    return out;
  }

  // Needs 16 bytes of room; a key met for the first time makes the rest,
  // leaving at least 13 bytes after it.
  Out key(Out out, std::string_view key) {
    const KeyWords words = wordsOf(key);
    const std::uint64_t hash =
        (words.head ^ (words.tail * 0x9E3779B97F4A7C15ULL) ^ key.size()) * 0xBF58476D1CE4E5B9ULL;
    Slot* const slots = slots_.data();
    const std::size_t mask = mask_;
    const std::uint32_t tree = tree_;
    Slot* empty = nullptr;
    for (std::size_t i = (hash >> 40) & mask, probes = 0; probes < 16;
         i = (i + 1) & mask, ++probes) {
      Slot& slot = slots[i];
      if (slot.tree != tree) {
        empty = &slot;
        break;
      }
      if (slot.size == key.size() && slot.words.head == words.head &&
          slot.words.tail == words.tail &&
          (key.size() <= 16 || std::memcmp(slot.data, key.data(), key.size()) == 0)) {
        out.p = unsigned64(out.p, slot.number);
        return out;
      }
    }
    // Announced with 0 and two bytes of its hash, by which Java finds the
    // String it made for the same key before. Java numbers every announced
    // key, in order, whether or not the table here had room to remember it.
    out.p[0] = 0;
    out.p[1] = static_cast<char>(hash >> 48);
    out.p[2] = static_cast<char>(hash >> 56);
    out.p += 3;
    out = string(out, key);
    const std::uint32_t number = ++announced_;
    if (empty != nullptr && number <= mask / 2) {
      // Field by field: a whole-struct copy goes through the stack here.
      empty->words = words;
      empty->data = key.data();
      empty->size = static_cast<std::uint32_t>(key.size());
      empty->number = number;
      empty->tree = tree;
    }
    return out;
  }

  // Two words of a key: its first and last 8 bytes (4 when shorter than 8;
  // its first, middle and last byte when shorter than 4). Together with the
  // length they are the whole key up to 16 bytes.
  static KeyWords wordsOf(std::string_view key) {
    const char* p = key.data();
    const std::size_t n = key.size();
    KeyWords words;
    if (n >= 8) {
      const Ends<std::uint64_t> ends(p, n);
      words.head = ends.head;
      words.tail = ends.tail;
    } else if (n >= 4) {
      const Ends<std::uint32_t> ends(p, n);
      words.head = ends.head;
      words.tail = ends.tail;
    } else if (n > 0) {
      words.head = static_cast<unsigned char>(p[0]) |
                   static_cast<std::uint64_t>(static_cast<unsigned char>(p[n / 2])) << 8 |
                   static_cast<std::uint64_t>(static_cast<unsigned char>(p[n - 1])) << 16;
    }
    return words;
  }

  // `out` with room for `n` more bytes.
  Out room(Out out, std::size_t n) {
    if (static_cast<std::size_t>(out.end - out.p) >= n) return out;
    return grow(out, n);
  }

  __attribute__((noinline)) Out grow(Out out, std::size_t n) {
    const auto at = static_cast<std::size_t>(out.p - buffer_.data());
    char* const data = buffer_.grow(std::max({buffer_.capacity() * 2, at + n, std::size_t{256}}));
    return {data + at, data + buffer_.capacity()};
  }

  static char* fixed(char* p, std::uint64_t v) {
    for (int b = 0; b < 8; ++b, v >>= 8) p[b] = static_cast<char>(v & 0xFF);
    return p + 8;
  }

  // At most 10 bytes.
  static char* unsigned64(char* p, std::uint64_t v) {
    while (v >= 0x80) {
      *p++ = static_cast<char>((v & 0x7F) | 0x80);
      v >>= 7;
    }
    *p++ = static_cast<char>(v);
    return p;
  }

  ThreadBuffer buffer_;
  std::size_t at_ = 0;
  std::vector<Slot> slots_;
  std::size_t mask_ = 63;
  std::uint32_t tree_ = 0;
  std::uint32_t announced_ = 0;
  std::vector<std::string_view> longStrings_;
};

// This thread's writer, made on first use. Held through a pointer so that the
// writer's own code reaches its fields directly, not as thread-local storage.
TreeWriter& threadWriter() {
  static thread_local std::unique_ptr<TreeWriter> writer;
  if (writer == nullptr) writer = std::make_unique<TreeWriter>();
  return *writer;
}

// The tree that `writer` holds as Java takes it: a byte array, or when it has
// long strings an Object[] of the byte array and those strings in order.
// nullptr when the JVM raised an exception.
jobject handOver(JNIEnv* env, const TreeWriter& writer, jbyteArray into = nullptr) {
  // Into the caller's array when the tree fits: the tree ends itself, so
  // what follows it there does not matter.
  jbyteArray tree = nullptr;
  if (into != nullptr && writer.size() <= static_cast<std::size_t>(env->GetArrayLength(into))) {
    env->SetByteArrayRegion(into, 0, static_cast<jsize>(writer.size()),
                            reinterpret_cast<const jbyte*>(writer.data()));
    tree = static_cast<jbyteArray>(env->NewLocalRef(into));
  } else {
    tree = newBytes(env, writer.data(), writer.size());
  }
  const std::vector<std::string_view>& longStrings = writer.longStrings();
  if (tree == nullptr || longStrings.empty()) return tree;
  jobjectArray parts =
      env->NewObjectArray(static_cast<jsize>(longStrings.size() + 1), cached.objectClass, nullptr);
  if (parts == nullptr) return nullptr;
  env->SetObjectArrayElement(parts, 0, tree);
  env->DeleteLocalRef(tree);
  for (std::size_t i = 0; i < longStrings.size(); ++i) {
    // ASCII travels as bytes, which Java turns into a string at copying
    // speed; anything else is decoded here.
    const std::string_view s = longStrings[i];
    jobject text = ascii(s) ? static_cast<jobject>(newBytes(env, s.data(), s.size()))
                            : static_cast<jobject>(newString(env, s.data(), s.size()));
    if (text == nullptr) return nullptr;
    env->SetObjectArrayElement(parts, static_cast<jsize>(i + 1), text);
    env->DeleteLocalRef(text);
  }
  return parts;
}

// The compact form of a dictionary made by the C++ types; nullptr for none.
jobject encodeTree(JNIEnv* env, const std::optional<tavuro::JsonDictionary>& dictionary) {
  if (!dictionary) return nullptr;
  try {
    TreeWriter& writer = threadWriter();
    writer.start(256);
    writer.object(*dictionary);
    return handOver(env, writer);
  } catch (const std::bad_alloc&) {
    throwOutOfMemory(env);
    return nullptr;
  }
}

// Sixteen UTF-16 units at a time, in the vector registers of any target.
using Units8 = std::uint16_t __attribute__((vector_size(16)));
using Bytes8 = char __attribute__((vector_size(8)));

// When the 16 units at `units` are ASCII: true, having written them to `out`
// as 16 bytes.
inline bool ascii16(const jchar* units, char* out) {
  Units8 low;
  Units8 high;
  std::memcpy(&low, units, sizeof low);
  std::memcpy(&high, units + 8, sizeof high);
  const Units8 above = (low | high) & static_cast<std::uint16_t>(0xFF80);
  std::uint64_t words[2];
  std::memcpy(words, &above, sizeof words);
  if ((words[0] | words[1]) != 0) return false;
  const Bytes8 first = __builtin_convertvector(low, Bytes8);
  const Bytes8 second = __builtin_convertvector(high, Bytes8);
  std::memcpy(out, &first, 8);
  std::memcpy(out + 8, &second, 8);
  return true;
}

// Writes the UTF-8 of `n` UTF-16 units to `out`, which has room for 3 bytes a
// unit, and returns its length; -1 when a surrogate is unpaired, which UTF-8
// cannot carry.
std::ptrdiff_t writeUtf8(const jchar* units, std::size_t n, char* out) {
  char* const start = out;
  std::size_t i = 0;
  while (i < n) {
    if (i + 16 <= n && ascii16(units + i, out)) {
      out += 16;
      i += 16;
      continue;
    }
    std::uint32_t c = units[i++];
    if (c < 0x80) {
      *out++ = static_cast<char>(c);
    } else if (c < 0x800) {
      *out++ = static_cast<char>(0xC0 | (c >> 6));
      *out++ = static_cast<char>(0x80 | (c & 0x3F));
    } else if (c < 0xD800 || c > 0xDFFF) {
      *out++ = static_cast<char>(0xE0 | (c >> 12));
      *out++ = static_cast<char>(0x80 | ((c >> 6) & 0x3F));
      *out++ = static_cast<char>(0x80 | (c & 0x3F));
    } else if (c <= 0xDBFF && i < n && units[i] >= 0xDC00 && units[i] <= 0xDFFF) {
      c = 0x10000 + ((c - 0xD800) << 10) + (units[i++] - 0xDC00U);
      *out++ = static_cast<char>(0xF0 | (c >> 18));
      *out++ = static_cast<char>(0x80 | ((c >> 12) & 0x3F));
      *out++ = static_cast<char>(0x80 | ((c >> 6) & 0x3F));
      *out++ = static_cast<char>(0x80 | (c & 0x3F));
    } else {
      return -1;
    }
  }
  return out - start;
}

ThreadBuffer& threadText() {
  static thread_local ThreadBuffer buffer;
  return buffer;
}

using Dictionary = std::unique_ptr<tavuro_JsonDictionary, void (*)(tavuro_JsonDictionary*)>;

// The dictionary of `size` bytes of JSON at `text`; empty for whatever
// convertToDictionary gives none for. Makes no JNI call, so it may run while
// the text is held critical.
Dictionary parseText(const void* text, std::size_t size) {
  return Dictionary(
      tavuro_Utils_convertToDictionaryWithBytes_length(static_cast<const char*>(text), size),
      tavuro_JsonDictionary_release);
}

// The compact tree of a dictionary read from `size` bytes of text; nullptr
// for none. The reader's own nodes are walked, so no value of the document
// is made in C++.
jobject treeOf(JNIEnv* env, const Dictionary& dictionary, std::size_t size, jbyteArray into) {
  if (dictionary == nullptr) return nullptr;
  TreeWriter& writer = threadWriter();
  writer.start(size + 64);
  writer.node(*tavuro_JsonDictionary_nodes(dictionary.get()));
  return handOver(env, writer, into);
}

std::optional<std::string> bytesArgument(JNIEnv* env, jbyteArray array) {
  if (array == nullptr) return std::nullopt;
  const jsize length = env->GetArrayLength(array);
  std::string bytes(static_cast<std::size_t>(length), '\0');
  env->GetByteArrayRegion(array, 0, length, reinterpret_cast<jbyte*>(bytes.data()));
  if (env->ExceptionCheck()) return std::nullopt;
  return bytes;
}

// ---------------------------------------------------------------------------
// Packages and the callback
// ---------------------------------------------------------------------------

struct PackageCall {
  JNIEnv* env;
  jobjectArray packages;
  jsize index;
};

// Runs one Java package, fetched from the array only for its call so that
// any number of packages needs one local reference at a time. Once one has
// thrown, the exception stays pending and the packages after it are not
// started.
void initializePackage(void* context) {
  auto* call = static_cast<PackageCall*>(context);
  JNIEnv* env = call->env;
  if (env->ExceptionCheck()) return;
  jobject package = env->GetObjectArrayElement(call->packages, call->index);
  if (package == nullptr) return;  // an exception is pending (Java checked for null)
  env->CallVoidMethod(package, cached.packageInitialize);
  env->DeleteLocalRef(package);
}

struct CallbackCall {
  JNIEnv* env;
  jobject callback;
};

void callBack(void* context, tavuro_TavuroError* error) {
  auto* call = static_cast<CallbackCall*>(context);
  JNIEnv* env = call->env;
  if (env->ExceptionCheck() || call->callback == nullptr) return;
  jobject javaError = nullptr;
  if (error != nullptr) {
    javaError = env->CallStaticObjectMethod(cached.errorClass, cached.errorWrap,
                                            toJava(tavuro_TavuroError_retain(error)));
    if (env->ExceptionCheck()) return;
  }
  env->CallVoidMethod(call->callback, cached.consumerAccept, javaError);
  if (javaError != nullptr) env->DeleteLocalRef(javaError);
}

}  // namespace
}  // namespace tavuro_jni

using tavuro_jni::handle;
using tavuro_jni::toJava;

extern "C" JNIEXPORT jint JNICALL JNI_OnLoad(JavaVM* vm, void* /*reserved*/) {
  JNIEnv* env = nullptr;
  if (vm->GetEnv(reinterpret_cast<void**>(&env), JNI_VERSION_1_8) != JNI_OK) return JNI_ERR;
  auto globalClass = [env](const char* name) -> jclass {
    jclass local = env->FindClass(name);
    if (local == nullptr) return nullptr;
    auto global = static_cast<jclass>(env->NewGlobalRef(local));
    env->DeleteLocalRef(local);
    return global;
  };
  tavuro_jni::Cached& c = tavuro_jni::cached;
  c.outOfMemory = globalClass("java/lang/OutOfMemoryError");
  c.objectClass = globalClass("java/lang/Object");
  jclass package = globalClass("com/tavuro/common/ITavuroPackage");
  jclass consumer = globalClass("java/util/function/Consumer");
  c.errorClass = globalClass("com/tavuro/common/TavuroError");
  if (c.outOfMemory == nullptr || c.objectClass == nullptr || package == nullptr ||
      consumer == nullptr || c.errorClass == nullptr) {
    return JNI_ERR;
  }
  c.packageInitialize = env->GetMethodID(package, "initialize", "()V");
  if (c.packageInitialize == nullptr) return JNI_ERR;
  c.consumerAccept = env->GetMethodID(consumer, "accept", "(Ljava/lang/Object;)V");
  if (c.consumerAccept == nullptr) return JNI_ERR;
  c.errorWrap = env->GetStaticMethodID(c.errorClass, "wrap", "(J)Lcom/tavuro/common/TavuroError;");
  if (c.errorWrap == nullptr) return JNI_ERR;
  env->DeleteGlobalRef(package);
  env->DeleteGlobalRef(consumer);
  return JNI_VERSION_1_8;
}

// Copies the text that putText kept into `whole`, which is exactly as long.
extern "C" JNIEXPORT void JNICALL Java_com_tavuro_common_NativeLibrary_nTakePendingText(
    JNIEnv* env, jclass /*unused*/, jbyteArray whole) {
  const std::unique_ptr<char, void (*)(char*)> text = std::move(tavuro_jni::pendingText);
  if (text == nullptr) return;
  env->SetByteArrayRegion(whole, 0, env->GetArrayLength(whole),
                          reinterpret_cast<const jbyte*>(text.get()));
}

// ---------------------------------------------------------------------------
// Resource directory and the stored token
// ---------------------------------------------------------------------------

extern "C" JNIEXPORT void JNICALL Java_com_tavuro_common_TavuroCommon_nSetResourceDirectory(
    JNIEnv* env, jclass /*unused*/, jstring directory) {
  const tavuro_jni::Text text(env, directory);
  if (!text.failed()) tavuro_setResourceDirectory(text.get());
}

extern "C" JNIEXPORT jstring JNICALL
Java_com_tavuro_common_TavuroCommon_nResourceDirectory(JNIEnv* env, jclass /*unused*/) {
  return tavuro_jni::takeText(env, tavuro_resourceDirectory());
}

// The C interface has no function for the stored token: this makes a token
// record of the same text and expiration (the record is immutable, so the
// copy cannot be told apart).
extern "C" JNIEXPORT jlong JNICALL Java_com_tavuro_common_Credential_nGetToken(JNIEnv* env,
                                                                               jclass /*unused*/) {
  try {
    const std::shared_ptr<tavuro::TavuroJwtToken> token = tavuro::Credential::getToken();
    if (!token) return 0;
    const double seconds = token->expiration().time_since_epoch().count();
    tavuro_TavuroJwtToken* copy =
        tavuro_TavuroJwtToken_initWithValue_expiration(token->value().c_str(), seconds);
    if (copy == nullptr) tavuro_jni::throwOutOfMemory(env);
    return toJava(copy);
  } catch (const std::bad_alloc&) {
    tavuro_jni::throwOutOfMemory(env);
    return 0;
  }
}

// ---------------------------------------------------------------------------
// Start-up
// ---------------------------------------------------------------------------

extern "C" JNIEXPORT void JNICALL Java_com_tavuro_common_TavuroInitializer_nInitialize(
    JNIEnv* env, jclass /*unused*/, jlong initializer, jobjectArray packages, jobject callback) {
  const jsize count = env->GetArrayLength(packages);
  try {
    std::vector<tavuro_jni::PackageCall> calls(static_cast<std::size_t>(count));
    std::vector<tavuro_ITavuroPackage> list(static_cast<std::size_t>(count));
    for (jsize i = 0; i < count; ++i) {
      const auto k = static_cast<std::size_t>(i);
      calls[k] = {env, packages, i};
      list[k] = {tavuro_jni::initializePackage, &calls[k]};
    }
    tavuro_jni::CallbackCall done{env, callback};
    tavuro_TavuroInitializer_initializeWithPackages_callback(
        handle<tavuro_TavuroInitializer>(initializer), list.data(), list.size(),
        tavuro_jni::callBack, &done);
  } catch (const std::bad_alloc&) {
    tavuro_jni::throwOutOfMemory(env);
  }
}

// ---------------------------------------------------------------------------
// JSON
// ---------------------------------------------------------------------------

// The compact tree of a JSON text; null for a text with a lone surrogate
// (it has no exact UTF-8) and for whatever convertToDictionary gives none for.
// `utf8`, when not null, is what String.getBytes gave as the text's UTF-8 and
// as long as the text, so ASCII unless a lone surrogate became '?' in it:
// without a '?' those bytes are parsed. Otherwise the characters are read in
// place and encoded here.
extern "C" JNIEXPORT jobject JNICALL Java_com_tavuro_common_Utils_nConvertToDictionary(
    JNIEnv* env, jclass /*unused*/, jstring text, jbyteArray utf8, jbyteArray into) {
  try {
    if (utf8 != nullptr) {
      // Read where it lies: the reader copies the text before it parses.
      const auto size = static_cast<std::size_t>(env->GetArrayLength(utf8));
      void* const bytes = env->GetPrimitiveArrayCritical(utf8, nullptr);
      if (bytes == nullptr) return nullptr;  // OutOfMemoryError pending
      // A '?' may stand for a lone surrogate, which the UTF-16 path refuses.
      const bool plain = std::memchr(bytes, '?', size) == nullptr;
      tavuro_jni::Dictionary dictionary =
          plain ? tavuro_jni::parseText(bytes, size)
                : tavuro_jni::Dictionary(nullptr, tavuro_JsonDictionary_release);
      env->ReleasePrimitiveArrayCritical(utf8, bytes, JNI_ABORT);
      if (plain) return tavuro_jni::treeOf(env, dictionary, size, into);
    }
    const auto n = static_cast<std::size_t>(env->GetStringLength(text));
    char* bytes = tavuro_jni::threadText().reserve(3 * n);
    const jchar* units = env->GetStringCritical(text, nullptr);
    if (units == nullptr) return nullptr;  // OutOfMemoryError pending
    const std::ptrdiff_t size = tavuro_jni::writeUtf8(units, n, bytes);
    env->ReleaseStringCritical(text, units);
    if (size < 0) return nullptr;
    return tavuro_jni::treeOf(env, tavuro_jni::parseText(bytes, static_cast<std::size_t>(size)),
                              static_cast<std::size_t>(size), into);
  } catch (const std::bad_alloc&) {
    tavuro_jni::throwOutOfMemory(env);
    return nullptr;
  }
}

extern "C" JNIEXPORT jobject JNICALL
Java_com_tavuro_common_TavuroJwtParser_nDecode(JNIEnv* env, jclass /*unused*/, jstring token) {
  const tavuro_jni::Text text(env, token);
  if (text.failed()) return nullptr;
  try {
    return tavuro_jni::encodeTree(env, tavuro::TavuroJwtParser().decode(text.str()));
  } catch (const std::bad_alloc&) {
    tavuro_jni::throwOutOfMemory(env);
    return nullptr;
  }
}

extern "C" JNIEXPORT jobject JNICALL Java_com_tavuro_common_TavuroJwtParser_nDecodeJWTPart(
    JNIEnv* env, jclass /*unused*/, jstring segment) {
  const tavuro_jni::Text text(env, segment);
  if (text.failed()) return nullptr;
  try {
    return tavuro_jni::encodeTree(env, tavuro::TavuroJwtParser().decodeJWTPart(text.str()));
  } catch (const std::bad_alloc&) {
    tavuro_jni::throwOutOfMemory(env);
    return nullptr;
  }
}

extern "C" JNIEXPORT jbyteArray JNICALL Java_com_tavuro_common_TavuroJwtParser_nBase64UrlDecode(
    JNIEnv* env, jclass /*unused*/, jstring text) {
  const tavuro_jni::Text argument(env, text);
  if (argument.failed()) return nullptr;
  tavuro_TavuroJwtParser* parser = tavuro_TavuroJwtParser_init();
  tavuro_ByteBuffer* buffer = tavuro_TavuroJwtParser_base64UrlDecode(parser, argument.get());
  tavuro_TavuroJwtParser_release(parser);
  if (buffer == nullptr) return nullptr;
  jbyteArray result =
      tavuro_jni::newBytes(env, tavuro_ByteBuffer_bytes(buffer), tavuro_ByteBuffer_length(buffer));
  tavuro_ByteBuffer_release(buffer);
  return result;
}

// ---------------------------------------------------------------------------
// Pictures and the image record
// ---------------------------------------------------------------------------

extern "C" JNIEXPORT jlong JNICALL Java_com_tavuro_common_Picture_nMake(
    JNIEnv* env, jclass /*unused*/, jint width, jint height, jint format, jbyteArray pixels) {
  try {
    const std::optional<std::string> bytes = tavuro_jni::bytesArgument(env, pixels);
    if (!bytes) return 0;
    return toJava(
        tavuro_Picture_make(static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(height),
                            static_cast<tavuro_PixelFormat>(format),
                            reinterpret_cast<const std::uint8_t*>(bytes->data()), bytes->size()));
  } catch (const std::bad_alloc&) {
    tavuro_jni::throwOutOfMemory(env);
    return 0;
  }
}

extern "C" JNIEXPORT jint JNICALL Java_com_tavuro_common_Picture_nWidth(JNIEnv* /*env*/,
                                                                        jclass /*unused*/,
                                                                        jlong picture) {
  return static_cast<jint>(tavuro_Picture_width(handle<tavuro_Picture>(picture)));
}

extern "C" JNIEXPORT jint JNICALL Java_com_tavuro_common_Picture_nHeight(JNIEnv* /*env*/,
                                                                         jclass /*unused*/,
                                                                         jlong picture) {
  return static_cast<jint>(tavuro_Picture_height(handle<tavuro_Picture>(picture)));
}

extern "C" JNIEXPORT jint JNICALL Java_com_tavuro_common_Picture_nPixelFormat(JNIEnv* /*env*/,
                                                                              jclass /*unused*/,
                                                                              jlong picture) {
  return static_cast<jint>(tavuro_Picture_pixelFormat(handle<tavuro_Picture>(picture)));
}

extern "C" JNIEXPORT jbyteArray JNICALL Java_com_tavuro_common_Picture_nPixels(JNIEnv* env,
                                                                               jclass /*unused*/,
                                                                               jlong picture) {
  std::size_t size = 0;
  const std::uint8_t* pixels = tavuro_Picture_pixels(handle<tavuro_Picture>(picture), &size);
  return tavuro_jni::newBytes(env, pixels, size);
}

extern "C" JNIEXPORT void JNICALL Java_com_tavuro_common_Picture_nRelease(JNIEnv* /*env*/,
                                                                          jclass /*unused*/,
                                                                          jlong picture) {
  tavuro_Picture_release(handle<tavuro_Picture>(picture));
}

extern "C" JNIEXPORT jlong JNICALL Java_com_tavuro_common_Image_nImage(JNIEnv* /*env*/,
                                                                       jclass /*unused*/,
                                                                       jlong record) {
  return toJava(tavuro_Image_image(handle<tavuro_Image>(record)));
}

extern "C" JNIEXPORT void JNICALL Java_com_tavuro_common_Image_nSetImage(JNIEnv* /*env*/,
                                                                         jclass /*unused*/,
                                                                         jlong record,
                                                                         jlong picture) {
  tavuro_Image_setImage(handle<tavuro_Image>(record), handle<tavuro_Picture>(picture));
}

extern "C" JNIEXPORT jbyteArray JNICALL Java_com_tavuro_common_Image_nData(JNIEnv* env,
                                                                           jclass /*unused*/,
                                                                           jlong record) {
  tavuro_ByteBuffer* buffer = tavuro_Image_data(handle<tavuro_Image>(record));
  if (buffer == nullptr) return nullptr;
  jbyteArray result =
      tavuro_jni::newBytes(env, tavuro_ByteBuffer_bytes(buffer), tavuro_ByteBuffer_length(buffer));
  tavuro_ByteBuffer_release(buffer);
  return result;
}

extern "C" JNIEXPORT void JNICALL Java_com_tavuro_common_Image_nSetData(JNIEnv* env,
                                                                        jclass /*unused*/,
                                                                        jlong record,
                                                                        jbyteArray data) {
  try {
    tavuro_ByteBuffer* buffer = nullptr;
    if (data != nullptr) {
      const std::optional<std::string> bytes = tavuro_jni::bytesArgument(env, data);
      if (!bytes) return;
      buffer = tavuro_ByteBuffer_initWithBytes_length(bytes->data(), bytes->size());
      if (buffer == nullptr) {
        tavuro_jni::throwOutOfMemory(env);
        return;
      }
    }
    tavuro_Image_setData(handle<tavuro_Image>(record), buffer);
    tavuro_ByteBuffer_release(buffer);
  } catch (const std::bad_alloc&) {
    tavuro_jni::throwOutOfMemory(env);
  }
}

extern "C" JNIEXPORT jdoubleArray JNICALL Java_com_tavuro_common_Image_nPoints(JNIEnv* env,
                                                                               jclass /*unused*/,
                                                                               jlong record) {
  const auto* image = handle<tavuro_Image>(record);
  try {
    std::vector<tavuro_Point> points(tavuro_Image_points(image, nullptr, 0));
    points.resize(tavuro_Image_points(image, points.data(), points.size()));
    std::vector<double> xy;
    xy.reserve(points.size() * 2);
    for (const tavuro_Point& p : points) {
      xy.push_back(p.x);
      xy.push_back(p.y);
    }
    jdoubleArray result = env->NewDoubleArray(static_cast<jsize>(xy.size()));
    if (result == nullptr) return nullptr;
    env->SetDoubleArrayRegion(result, 0, static_cast<jsize>(xy.size()), xy.data());
    return result;
  } catch (const std::bad_alloc&) {
    tavuro_jni::throwOutOfMemory(env);
    return nullptr;
  }
}

extern "C" JNIEXPORT void JNICALL Java_com_tavuro_common_Image_nSetPoints(JNIEnv* env,
                                                                          jclass /*unused*/,
                                                                          jlong record,
                                                                          jdoubleArray xy) {
  try {
    std::vector<double> values(static_cast<std::size_t>(env->GetArrayLength(xy)));
    env->GetDoubleArrayRegion(xy, 0, static_cast<jsize>(values.size()), values.data());
    if (env->ExceptionCheck()) return;
    std::vector<tavuro_Point> points(values.size() / 2);
    for (std::size_t i = 0; i < points.size(); ++i) points[i] = {values[2 * i], values[2 * i + 1]};
    tavuro_Image_setPoints(handle<tavuro_Image>(record), points.data(), points.size());
  } catch (const std::bad_alloc&) {
    tavuro_jni::throwOutOfMemory(env);
  }
}

// ---------------------------------------------------------------------------
// For the binding's tests and benchmarks only (class NativeProbe there)
// ---------------------------------------------------------------------------

// Bytes of the native heap in use now.
extern "C" JNIEXPORT jlong JNICALL Java_com_tavuro_common_NativeProbe_heapInUse(JNIEnv* /*env*/,
                                                                                jclass /*unused*/) {
#if defined(__GLIBC__)
  return static_cast<jlong>(mallinfo2().uordblks);
#else
  return static_cast<jlong>(mallinfo().uordblks);
#endif
}

// What the native getter `which` (0 int, 1 double, 2 string, 3 boolean,
// 4 object, 5 array, 6 array from JSON) gives for `key` of the dictionary of
// `json`: a Long, Double, String or Boolean, or for the last three the key
// count or element count as a Long (null when absent).
extern "C" JNIEXPORT jobject JNICALL Java_com_tavuro_common_NativeProbe_nativeGetter(
    JNIEnv* env, jclass /*unused*/, jint which, jstring json, jstring key) {
  const tavuro_jni::Text jsonText(env, json);
  const tavuro_jni::Text keyText(env, key);
  if (jsonText.failed() || keyText.failed()) return nullptr;
  const std::optional<tavuro::JsonDictionary> dictionary =
      jsonText.present() ? tavuro::Utils::convertToDictionary(jsonText.str()) : std::nullopt;
  const std::string& k = keyText.str();
  auto box = [env](const char* cls, const char* signature, auto value) -> jobject {
    jclass boxClass = env->FindClass(cls);
    if (boxClass == nullptr) return nullptr;
    jmethodID valueOf = env->GetStaticMethodID(boxClass, "valueOf", signature);
    if (valueOf == nullptr) return nullptr;
    jobject boxed = env->CallStaticObjectMethod(boxClass, valueOf, value);
    env->DeleteLocalRef(boxClass);
    return boxed;
  };
  auto count = [&box](std::size_t n) {
    return box("java/lang/Long", "(J)Ljava/lang/Long;", static_cast<jlong>(n));
  };
  switch (which) {
    case 0:
      return box("java/lang/Long", "(J)Ljava/lang/Long;",
                 static_cast<jlong>(tavuro::Utils::getIntValue(dictionary, k)));
    case 1:
      return box("java/lang/Double", "(D)Ljava/lang/Double;",
                 tavuro::Utils::getDoubleValue(dictionary, k));
    case 2: {
      const std::string s = tavuro::Utils::getStringValue(dictionary, k);
      return tavuro_jni::newString(env, s.data(), s.size());
    }
    case 3:
      return box("java/lang/Boolean", "(Z)Ljava/lang/Boolean;",
                 static_cast<jboolean>(tavuro::Utils::getBooleanValue(dictionary, k) ? JNI_TRUE
                                                                                     : JNI_FALSE));
    case 4: {
      const auto object = tavuro::Utils::getObjectValue(dictionary, k);
      return object ? count(object->size()) : nullptr;
    }
    case 5: {
      const auto array = tavuro::Utils::getArrayValue(dictionary, k);
      return array ? count(array->size()) : nullptr;
    }
    default: {
      const auto array = tavuro::Utils::getArrayValueFromJson(dictionary, k);
      return array ? count(array->size()) : nullptr;
    }
  }
}

// Nanoseconds per call of the C++ getTavuroAuthHeader over `calls` calls.
extern "C" JNIEXPORT jdouble JNICALL Java_com_tavuro_common_NativeProbe_nativeAuthHeaderNanos(
    JNIEnv* /*env*/, jclass /*unused*/, jint calls) {
  std::size_t total = 0;
  const auto start = std::chrono::steady_clock::now();
  for (jint i = 0; i < calls; ++i) {
    const std::optional<std::string> header = tavuro::Credential::getTavuroAuthHeader();
    total += header ? header->size() : 0;
  }
  const auto elapsed = std::chrono::steady_clock::now() - start;
  if (total == 1) return -1.0;  // keeps the loop from being optimised away
  return std::chrono::duration<double, std::nano>(elapsed).count() / (calls > 0 ? calls : 1);
}
