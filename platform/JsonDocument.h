// The in-memory form of a parsed JSON text: what the reader makes, and the
// lookups and exact number conversions that read it.
//
// One document owns its text (strings were unescaped in place, so every
// string is a view into it) and an arena of 16-byte nodes. The children of a
// container sit side by side in one arena block; an object's members are
// stored as key node, value node, key node, value node, ..., and a larger
// object's hash slots follow its members in the same block.
#ifndef TAVURO_PLATFORM_JSONDOCUMENT_H_
#define TAVURO_PLATFORM_JSONDOCUMENT_H_

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <optional>
#include <string_view>

namespace tavuro::platform {

enum class NodeType : std::uint8_t {
  Null,
  False,
  True,
  Int64,
  UInt64,
  Double,
  String,
  Array,
  Object,
};

struct JsonNode {
  NodeType type;
  /// Objects only: log2 of the number of hash slots, 0 when the object is
  /// small enough to be searched from front to back.
  std::uint8_t indexBits;
  std::uint16_t unused;
  /// Byte length of a string, element count of an array, member count of an
  /// object.
  std::uint32_t size;
  union Payload {
    std::int64_t i;
    std::uint64_t u;
    double d;
    const char* chars;
    const JsonNode* children;
  } payload;
};
static_assert(sizeof(JsonNode) == 16, "nodes are meant to pack four to a cache line");

/// One hash slot of an indexed object: the high half of the key's hash and
/// the member's position plus one (0 marks an empty slot).
struct KeySlot {
  std::uint32_t tag;
  std::uint32_t member;
};

/// Memory for node blocks: chunks that never move, so nodes may point at
/// each other. Small blocks share chunks; a large one gets its own.
class NodeArena {
 public:
  /// The header of one block of arena memory; the block's bytes follow it.
  struct Chunk {
    Chunk* next;
    std::size_t size;  // also keeps what follows 16-byte aligned
  };

  NodeArena() = default;
  NodeArena(const NodeArena&) = delete;
  NodeArena& operator=(const NodeArena&) = delete;
  ~NodeArena();

  /// Uninitialised, 8-byte aligned room for `bytes` bytes.
  [[nodiscard]] void* allocate(std::size_t bytes) {
    if (bytes <= static_cast<std::size_t>(limit_ - cursor_)) {
      void* block = cursor_;
      cursor_ += bytes;
      return block;
    }
    return allocateSlow(bytes);
  }

  /// Makes the first chunk about `bytes` large, within the usual chunk
  /// sizes, so that a document whose nodes take about that much gets one.
  /// Has no effect once a chunk exists.
  void expect(std::size_t bytes) noexcept;

  static void freeChunks(Chunk* list) noexcept;

 private:
  void* allocateSlow(std::size_t bytes);
  void* newChunk(std::size_t bytes);

  Chunk* chunks_ = nullptr;
  char* cursor_ = nullptr;
  char* limit_ = nullptr;
  std::size_t nextChunkSize_ = 2048;
};

/// One parsed text. Immutable once the reader hands it out, so it may be
/// read from any number of threads.
struct JsonDocument {
  std::unique_ptr<char[]> text;
  NodeArena arena;
  std::uint64_t hashSeed = 0;
  /// The top-level object or array.
  JsonNode root{};
};

/// The seed of this process's key hashes. Random per process so that no
/// input can be prepared in advance to make every key land in one slot.
std::uint64_t processHashSeed() noexcept;

inline std::uint64_t load64(const char* p) noexcept {
  std::uint64_t v;
  std::memcpy(&v, p, sizeof v);
  return v;
}

inline std::uint32_t load32(const char* p) noexcept {
  std::uint32_t v;
  std::memcpy(&v, p, sizeof v);
  return v;
}

inline std::uint64_t mixHash(std::uint64_t a, std::uint64_t b) noexcept {
  // 64 x 64 -> 128-bit multiply folded back to 64 bits: one instruction on
  // 64-bit targets and a strong mixer.
#if defined(__SIZEOF_INT128__)
  __extension__ using Wide = unsigned __int128;
  const Wide product = static_cast<Wide>(a) * b;
  return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
#else
  const std::uint64_t x = (a ^ (b >> 29)) * 0x9E3779B97F4A7C15ULL;
  return x ^ (x >> 32) ^ b;
#endif
}

/// Hash of a key. Reads only the key's own bytes. Both factors of every
/// multiply carry the secret seed, so that no key can be chosen to zero one
/// of them and collide with its neighbours whatever the seed.
[[nodiscard]] inline std::uint64_t hashKey(const char* key, std::size_t size,
                                           std::uint64_t seed) noexcept {
  constexpr std::uint64_t kOdd1 = 0xA0761D6478BD642FULL;
  constexpr std::uint64_t kOdd2 = 0xE7037ED1A0B428DBULL;
  std::uint64_t h = seed ^ (size * kOdd1);
  const auto rotate = [](std::uint64_t x) { return (x << 29) | (x >> 35); };
  const char* p = key;
  std::size_t left = size;
  while (left > 16) {
    h = mixHash(load64(p) ^ h, load64(p + 8) ^ rotate(h) ^ kOdd2);
    p += 16;
    left -= 16;
  }
  std::uint64_t a = 0;
  std::uint64_t b = 0;
  if (left >= 8) {
    a = load64(p);
    b = load64(p + left - 8);
  } else if (left >= 4) {
    a = load32(p);
    b = load32(p + left - 4);
  } else if (left > 0) {
    const auto byte = [p](std::size_t i) {
      return static_cast<std::uint64_t>(static_cast<unsigned char>(p[i]));
    };
    a = (byte(0) << 16) | (byte(left >> 1) << 8) | byte(left - 1);
  }
  return mixHash(a ^ h ^ kOdd2, b ^ rotate(h) ^ kOdd1);
}

inline bool keyEquals(const JsonNode& key, std::string_view wanted) noexcept {
  return key.size == wanted.size() &&
         (wanted.empty() || std::memcmp(key.payload.chars, wanted.data(), wanted.size()) == 0);
}

inline const KeySlot* keySlotsOf(const JsonNode& object) noexcept {
  return reinterpret_cast<const KeySlot*>(object.payload.children + 2 * std::size_t{object.size});
}

/// The value stored under `key` in `object`, or null when there is none.
[[nodiscard]] inline const JsonNode* findMember(const JsonDocument& document,
                                                const JsonNode& object,
                                                std::string_view key) noexcept {
  const JsonNode* members = object.payload.children;
  if (object.indexBits == 0) {
    for (std::uint32_t i = 0; i < object.size; ++i) {
      if (keyEquals(members[2 * std::size_t{i}], key)) return &members[2 * std::size_t{i} + 1];
    }
    return nullptr;
  }
  const std::uint64_t hash = hashKey(key.data(), key.size(), document.hashSeed);
  const auto tag = static_cast<std::uint32_t>(hash >> 32);
  const std::size_t mask = (std::size_t{1} << object.indexBits) - 1;
  const KeySlot* slots = keySlotsOf(object);
  for (std::size_t slot = hash & mask;; slot = (slot + 1) & mask) {
    const KeySlot entry = slots[slot];
    if (entry.member == 0) return nullptr;
    if (entry.tag == tag) {
      const JsonNode* keyNode = &members[2 * (std::size_t{entry.member} - 1)];
      if (keyEquals(*keyNode, key)) return keyNode + 1;
    }
  }
}

// Exact number conversions: a number converts only when the target type
// holds exactly the same value.

[[nodiscard]] inline std::optional<std::int64_t> exactInt64(const JsonNode& node) noexcept {
  switch (node.type) {
    case NodeType::Int64: return node.payload.i;
    case NodeType::Double: {
      const double d = node.payload.d;
      // [-2^63, 2^63): the upper bound itself is not an int64.
      if (d >= -9223372036854775808.0 && d < 9223372036854775808.0 && std::trunc(d) == d) {
        return static_cast<std::int64_t>(d);
      }
      return std::nullopt;
    }
    default: return std::nullopt;  // UInt64 holds only values above INT64_MAX
  }
}

[[nodiscard]] inline std::optional<std::uint64_t> exactUInt64(const JsonNode& node) noexcept {
  switch (node.type) {
    case NodeType::Int64:
      if (node.payload.i >= 0) return static_cast<std::uint64_t>(node.payload.i);
      return std::nullopt;
    case NodeType::UInt64: return node.payload.u;
    case NodeType::Double: {
      const double d = node.payload.d;
      if (d >= 0.0 && d < 18446744073709551616.0 && std::trunc(d) == d) {
        return static_cast<std::uint64_t>(d);
      }
      return std::nullopt;
    }
    default: return std::nullopt;
  }
}

[[nodiscard]] inline std::optional<double> exactDouble(const JsonNode& node) noexcept {
  switch (node.type) {
    case NodeType::Double: return node.payload.d;
    case NodeType::Int64: {
      const auto d = static_cast<double>(node.payload.i);
      // A rounded conversion can reach 2^63, which must not be cast back.
      if (d < 9223372036854775808.0 && static_cast<std::int64_t>(d) == node.payload.i) return d;
      return std::nullopt;
    }
    case NodeType::UInt64: {
      const auto d = static_cast<double>(node.payload.u);
      if (d < 18446744073709551616.0 && static_cast<std::uint64_t>(d) == node.payload.u) return d;
      return std::nullopt;
    }
    default: return std::nullopt;
  }
}

[[nodiscard]] inline std::optional<bool> exactBool(const JsonNode& node) noexcept {
  if (node.type == NodeType::True) return true;
  if (node.type == NodeType::False) return false;
  return std::nullopt;
}

}  // namespace tavuro::platform

#endif  // TAVURO_PLATFORM_JSONDOCUMENT_H_
