// The two readers behind readPlistStringDictionary, one per form, and the
// limits they share.
#ifndef TAVURO_PLATFORM_PLISTFORMATS_H_
#define TAVURO_PLATFORM_PLISTFORMATS_H_

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace tavuro::platform {

using PlistStringDictionary = std::map<std::string, std::string>;

/// Deepest nesting of arrays and dicts accepted, the root dict counting as
/// one; one level more makes the list malformed.
inline constexpr int kPlistMaxDepth = 128;

/// What the entries of a read dictionary may hold together: each counts the
/// bytes of its key and value texts plus kPlistEntryOverhead (its tree node,
/// and the allocator's own share of the node and of the two texts), and the
/// total may not exceed kPlistMaxResultRatio times the input's size plus
/// kPlistResultAllowance. With the input itself and what a reader holds
/// while it reads (at most the input's size again), reading stays under
/// eight times the input's size plus that allowance.
inline constexpr std::uint64_t kPlistMaxResultRatio = 6;
inline constexpr std::uint64_t kPlistResultAllowance = std::uint64_t{256} * 1024;
inline constexpr std::uint64_t kPlistEntryOverhead = 160;

/// The bytes a reader may still copy into its result.
class PlistResultBudget {
 public:
  explicit PlistResultBudget(std::uint64_t inputSize)
      : left_(kPlistMaxResultRatio * inputSize + kPlistResultAllowance) {}

  /// Takes `bytes`; false when they do not fit, which makes the list
  /// malformed.
  bool take(std::uint64_t bytes) {
    if (bytes > left_) return false;
    left_ -= bytes;
    return true;
  }

  /// Takes one entry of the result with texts of these sizes.
  bool takeEntry(std::uint64_t keyBytes, std::uint64_t valueBytes) {
    return take(kPlistEntryOverhead) && take(keyBytes) && take(valueBytes);
  }

 private:
  std::uint64_t left_;
};

/// The XML form. The bytes must be UTF-8 (a UTF-8 byte-order mark is
/// skipped, and then any declared encoding is ignored); any other encoding,
/// whether announced by a byte-order mark or by the XML declaration, makes
/// the list unreadable.
[[nodiscard]] std::optional<PlistStringDictionary> readXmlPlistStringDictionary(
    std::string_view bytes);

/// The binary form, starting with the "bplist00" magic.
[[nodiscard]] std::optional<PlistStringDictionary> readBinaryPlistStringDictionary(
    std::string_view bytes);

}  // namespace tavuro::platform

#endif  // TAVURO_PLATFORM_PLISTFORMATS_H_
