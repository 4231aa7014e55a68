// The credential store's configuration file, apart from the store itself, so
// that the load path can be measured and tested on its own.
#ifndef TAVURO_COMMON_CREDENTIALFILE_H_
#define TAVURO_COMMON_CREDENTIALFILE_H_

#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "TavuroCommon/TavuroCommon.h"

namespace tavuro::detail {

/// The Kelmo base address used when the file has no text under
/// "kelmo_endpoint"; fixed at build time.
extern const char* const kKelmoDefaultEndpoint;

/// What a configuration file gives the store.
struct CredentialFields {
  std::optional<std::string> username;
  std::optional<std::string> password;
  std::optional<std::string> subscription;
  /// Present whenever the file was read, even without any endpoint key.
  std::shared_ptr<Endpoints> endpoints;
};

/// What the configuration file `bytes` gives. Every field is absent when
/// the bytes are no property list or its root is no dictionary.
CredentialFields credentialFieldsFrom(std::string_view bytes);

/// Reads the configuration file at `path` as `credentialFieldsFrom` does;
/// every field is absent when the file cannot be read. Removes what crashed
/// saves left beside it first.
CredentialFields loadCredentialFile(const std::string& path);

/// The dictionary a save writes: only the keys that are saved, each only
/// when its value is present.
std::map<std::string, std::string> credentialFileDictionary(const CredentialFields& fields);

/// The file a save writes for `fields`; nullopt when no file would load
/// back as the same fields (see platform::writeFaithfulXmlPlist).
std::optional<std::string> credentialFileBytes(const CredentialFields& fields);

/// How often the store has loaded itself in this process (once at most).
std::size_t credentialLoadCount() noexcept;

}  // namespace tavuro::detail

#endif  // TAVURO_COMMON_CREDENTIALFILE_H_
