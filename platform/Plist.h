// Property lists: a reader of the XML and binary ("bplist00") forms and a
// writer of the XML form exactly as the phone platform lays it out.
#ifndef TAVURO_PLATFORM_PLIST_H_
#define TAVURO_PLATFORM_PLIST_H_

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace tavuro::platform {

/// Property lists larger than this are neither read nor written: no
/// configuration file comes near it, and a hostile one must not make the
/// reader allocate without bound.
inline constexpr std::size_t kMaxPlistBytes = std::size_t{16} << 20;

/// The root dictionary of a property list (XML or binary form, told apart by
/// its first bytes), keeping only the entries whose key and value are
/// strings: every other kind of value (integer, real, boolean, date, data,
/// array, dict), and in the binary form every key that is not a string, is
/// recognised, checked and left out. nullopt when the bytes are not a
/// well-formed property list or the root is not a dictionary. Never crashes
/// or hangs on hostile input.
///
/// Memory is bounded by the input, too: reading holds less than 8 times the
/// input's size plus 256 KiB, the input included. The entries kept, each
/// counted as the UTF-8 bytes of its key and value plus 160 bytes for its
/// node, may total at most 6 times the input's size plus 256 KiB; a list
/// that would need more (in the binary form, one string object named under
/// many keys is copied under each) is malformed. Every file writeXmlPlist
/// writes stays within this.
///
/// A key given twice in one dict takes its last value in XML, its first in
/// the binary form. Containers nest at most 128 deep, the root dict counting
/// as one. XML must be UTF-8 (a byte-order mark is skipped; another declared
/// encoding is refused); its text is kept byte for byte, line ends and
/// control characters included, except that a stray byte 0xA9 reads as
/// U+FFFD, as on the platform.
/// Integers are decimal or 0x-hexadecimal, signed, from -2^63 to 2^64-1.
[[nodiscard]] std::optional<std::map<std::string, std::string>> readPlistStringDictionary(
    std::string_view bytes);

/// The XML form of a dictionary of strings, byte for byte as the phone
/// platform writes it (declaration, DOCTYPE, tab indentation, keys in the
/// order of their UTF-16 code units, only "<", ">" and "&" escaped, "<dict/>" when empty).
[[nodiscard]] std::string writeXmlPlist(const std::map<std::string, std::string>& dictionary);

/// `writeXmlPlist(dictionary)` when `readPlistStringDictionary` gives that
/// file back as `dictionary`; nullopt when a key or value is not well-formed
/// UTF-8 or the file would be larger than kMaxPlistBytes. Whoever saves a
/// file that must load again writes this, never a file it cannot read.
[[nodiscard]] std::optional<std::string> writeFaithfulXmlPlist(
    const std::map<std::string, std::string>& dictionary);

}  // namespace tavuro::platform

#endif  // TAVURO_PLATFORM_PLIST_H_
