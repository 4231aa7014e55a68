// Property lists: a reader of the XML and binary ("bplist00") forms and a
// writer of the XML form exactly as the phone platform lays it out.
#ifndef TAVURO_PLATFORM_PLIST_H_
#define TAVURO_PLATFORM_PLIST_H_

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace tavuro::platform {

/// The root dictionary of a property list (XML or binary form, told apart by
/// its first bytes), keeping only the entries whose value is a string: every
/// other kind of value (integer, real, boolean, date, data, array, dict) is
/// recognised, checked and left out. nullopt when the bytes are not a
/// well-formed property list or the root is not a dictionary. Never crashes,
/// hangs or allocates without bound on hostile input.
///
/// A key given twice in one dict takes its last value. Containers nest at
/// most 128 deep, the root dict counting as one. XML must be UTF-8 (a
/// byte-order mark is skipped; another declared encoding is refused); its
/// text is kept byte for byte, line ends and control characters included.
/// Integers are decimal or 0x-hexadecimal, signed, from -2^63 to 2^64-1.
std::optional<std::map<std::string, std::string>> readPlistStringDictionary(
    std::string_view bytes);

/// The XML form of a dictionary of strings, byte for byte as the phone
/// platform writes it (declaration, DOCTYPE, tab indentation, keys in byte
/// order, only "<", ">" and "&" escaped, "<dict/>" when empty).
std::string writeXmlPlist(const std::map<std::string, std::string>& dictionary);

}  // namespace tavuro::platform

#endif  // TAVURO_PLATFORM_PLIST_H_
