// The two readers behind readPlistStringDictionary, one per form, and the
// limits they share.
#ifndef TAVURO_PLATFORM_PLISTFORMATS_H_
#define TAVURO_PLATFORM_PLISTFORMATS_H_

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace tavuro::platform {

using PlistStringDictionary = std::map<std::string, std::string>;

/// Deepest nesting of arrays and dicts accepted, the root dict counting as
/// one; one level more makes the list malformed.
inline constexpr int kPlistMaxDepth = 128;

/// The XML form. The bytes must be UTF-8 (a UTF-8 byte-order mark is
/// skipped); any other encoding, whether announced by a byte-order mark or by
/// the XML declaration, makes the list unreadable.
std::optional<PlistStringDictionary> readXmlPlistStringDictionary(std::string_view bytes);

/// The binary form, starting with the "bplist00" magic.
std::optional<PlistStringDictionary> readBinaryPlistStringDictionary(std::string_view bytes);

}  // namespace tavuro::platform

#endif  // TAVURO_PLATFORM_PLISTFORMATS_H_
