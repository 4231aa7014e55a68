#include "platform/Base64.h"

#include <array>

namespace tavuro::platform {
namespace {

constexpr char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

// Markers in the sextet table; every alphabet character maps below 64.
constexpr std::uint8_t kSkip = 0x80;
constexpr std::uint8_t kPad = 0x40;

constexpr std::array<std::uint8_t, 256> makeSextetTable() {
  std::array<std::uint8_t, 256> table{};
  for (auto& entry : table) entry = kSkip;
  for (std::uint8_t i = 0; i < 64; ++i) {
    table[static_cast<unsigned char>(kAlphabet[i])] = i;
  }
  table[static_cast<unsigned char>('=')] = kPad;
  return table;
}

constexpr std::array<std::uint8_t, 256> kSextet = makeSextetTable();

// A bit above the 24 data bits, set when a character is not in the alphabet,
// so that four lookups and one test decide whether a whole group is clean.
constexpr std::uint32_t kBadGroup = 0x01000000;

// kShifted[k][c] is the sextet of `c` already moved to its place as the k-th
// character of a group.
constexpr std::array<std::array<std::uint32_t, 256>, 4> makeShiftedTables() {
  std::array<std::array<std::uint32_t, 256>, 4> tables{};
  for (int k = 0; k < 4; ++k) {
    for (int c = 0; c < 256; ++c) {
      const std::uint8_t sextet = kSextet[static_cast<std::size_t>(c)];
      tables[static_cast<std::size_t>(k)][static_cast<std::size_t>(c)] =
          sextet < 64 ? static_cast<std::uint32_t>(sextet) << (18 - 6 * k) : kBadGroup;
    }
  }
  return tables;
}

constexpr std::array<std::array<std::uint32_t, 256>, 4> kShifted = makeShiftedTables();

inline std::uint32_t groupBits(const unsigned char* in) {
  return kShifted[0][in[0]] | kShifted[1][in[1]] | kShifted[2][in[2]] | kShifted[3][in[3]];
}

inline void putThreeBytes(std::uint8_t* out, std::uint32_t bits) {
  out[0] = static_cast<std::uint8_t>(bits >> 16);
  out[1] = static_cast<std::uint8_t>(bits >> 8);
  out[2] = static_cast<std::uint8_t>(bits);
}

// The decoder's running state: up to three sextets of a group not yet
// complete, so that clean runs of four characters can be decoded at any
// position after a skipped character.
struct PendingSextets {
  std::uint32_t bits = 0;
  int count = 0;
};

// Appends the 24 bits of four clean characters behind the pending sextets,
// writes the first three bytes and keeps the rest pending.
inline void appendGroup(PendingSextets& pending, std::uint32_t group, std::uint8_t*& out) {
  const std::uint64_t all = (std::uint64_t{pending.bits} << 24) | group;
  const int keptBits = 6 * pending.count;
  putThreeBytes(out, static_cast<std::uint32_t>(all >> keptBits));
  pending.bits = static_cast<std::uint32_t>(all) & ((std::uint32_t{1} << keptBits) - 1);
  out += 3;
}

inline void appendSextet(PendingSextets& pending, std::uint8_t sextet, std::uint8_t*& out) {
  pending.bits = (pending.bits << 6) | sextet;
  if (++pending.count == 4) {
    putThreeBytes(out, pending.bits);
    out += 3;
    pending = PendingSextets{};
  }
}

// Decodes runs of four alphabet characters until one holds anything else.
inline void decodeCleanGroups(const unsigned char*& in, const unsigned char* end,
                              PendingSextets& pending, std::uint8_t*& out) {
  while (end - in >= 8) {
    const std::uint32_t first = groupBits(in);
    const std::uint32_t second = groupBits(in + 4);
    if (((first | second) & kBadGroup) != 0U) break;
    appendGroup(pending, first, out);
    appendGroup(pending, second, out);
    in += 8;
  }
  if (end - in >= 4) {
    const std::uint32_t group = groupBits(in);
    if ((group & kBadGroup) == 0U) {
      appendGroup(pending, group, out);
      in += 4;
    }
  }
}

// Whether the text ends its data as the platform's decoder demands, given
// the characters of the last group before the first "=" (`pending`),
// whether any group before them was complete, whether a "=" was met and what
// follows it (`rest` to `end`). A last group of one character never makes a
// byte; two need "==" and three "=" (characters outside the alphabet may
// stand between them). After complete groups, a "=" may be followed only by
// more "=" and other skipped characters, and some data must come before it.
// A text with no data and no "=" decodes to nothing only when its length is
// a multiple of four.
bool paddingIsComplete(int pending, bool hadGroups, bool padded, const unsigned char* rest,
                       const unsigned char* end, std::size_t textSize) {
  if (pending == 1) return false;
  if (!padded) return pending == 0 && (hadGroups || textSize % 4 == 0);
  if (pending == 3) return true;
  for (; rest != end; ++rest) {
    const std::uint8_t sextet = kSextet[*rest];
    if (sextet == kPad && pending == 2) return true;
    if (sextet < 64) return false;
  }
  return pending == 0 && hadGroups;
}

}  // namespace

std::string base64Encode(std::string_view bytes) {
  const auto* in = reinterpret_cast<const unsigned char*>(bytes.data());
  const std::size_t size = bytes.size();
  std::string text((size + 2) / 3 * 4, '=');
  char* out = text.data();
  std::size_t i = 0;
  for (; i + 3 <= size; i += 3, out += 4) {
    const std::uint32_t bits =
        (std::uint32_t{in[i]} << 16) | (std::uint32_t{in[i + 1]} << 8) | std::uint32_t{in[i + 2]};
    out[0] = kAlphabet[bits >> 18];
    out[1] = kAlphabet[(bits >> 12) & 63];
    out[2] = kAlphabet[(bits >> 6) & 63];
    out[3] = kAlphabet[bits & 63];
  }
  const std::size_t rest = size - i;
  if (rest > 0) {
    const std::uint32_t bits =
        (std::uint32_t{in[i]} << 16) | (rest == 2 ? std::uint32_t{in[i + 1]} << 8 : 0);
    out[0] = kAlphabet[bits >> 18];
    out[1] = kAlphabet[(bits >> 12) & 63];
    if (rest == 2) out[2] = kAlphabet[(bits >> 6) & 63];
  }
  return text;
}

std::optional<std::vector<std::uint8_t>> base64DecodeLenient(std::string_view text) {
  const auto* in = reinterpret_cast<const unsigned char*>(text.data());
  const unsigned char* const end = in + text.size();
  // Every four characters give at most three bytes, so this never grows.
  std::vector<std::uint8_t> bytes(text.size() / 4 * 3 + 3);
  std::uint8_t* out = bytes.data();

  PendingSextets pending;
  bool padded = false;
  while (in != end && !padded) {
    decodeCleanGroups(in, end, pending, out);
    // The run stopped at a character outside the alphabet (or near the
    // end): take characters one at a time up to and including it.
    while (in != end) {
      const std::uint8_t sextet = kSextet[*in++];
      if (sextet == kSkip) break;
      if (sextet == kPad) {
        padded = true;
        break;
      }
      appendSextet(pending, sextet, out);
    }
  }
  if (!paddingIsComplete(pending.count, out != bytes.data(), padded, in, end, text.size())) {
    return std::nullopt;
  }

  // A last group of two or three characters carries one or two whole bytes;
  // the bits beyond them are dropped.
  switch (pending.count) {
    case 2: *out++ = static_cast<std::uint8_t>(pending.bits >> 4); break;
    case 3:
      *out++ = static_cast<std::uint8_t>(pending.bits >> 10);
      *out++ = static_cast<std::uint8_t>(pending.bits >> 2);
      break;
    default: break;
  }
  bytes.resize(static_cast<std::size_t>(out - bytes.data()));
  return bytes;
}

}  // namespace tavuro::platform
