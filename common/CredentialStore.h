// The credential store behind the static operations of `Credential`: an
// object that tests can make, with its clock, its resource lookup and its
// file writer handed in, and the configuration file it loads and saves.
#ifndef TAVURO_COMMON_CREDENTIALSTORE_H_
#define TAVURO_COMMON_CREDENTIALSTORE_H_

#include <cstdint>
#include <functional>
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
[[nodiscard]] CredentialFields credentialFieldsFrom(std::string_view bytes);

/// Reads the configuration file at `path` as `credentialFieldsFrom` does;
/// every field is absent when the file cannot be read. Removes what crashed
/// saves left beside it first.
[[nodiscard]] CredentialFields loadCredentialFile(const std::string& path);

/// The dictionary a save writes: only the keys that are saved, each only
/// when its value is present.
[[nodiscard]] std::map<std::string, std::string> credentialFileDictionary(
    const CredentialFields& fields);

/// The file a save writes for `fields`; nullopt when no file would load
/// back as the same fields (see platform::writeFaithfulXmlPlist).
[[nodiscard]] std::optional<std::string> credentialFileBytes(const CredentialFields& fields);

/// The state and rules of `Credential`. The constructor loads the
/// configuration file; each setter saves it. Not synchronised.
class CredentialStore {
 public:
  /// What the store reads the time, finds its file and writes through.
  struct Environment {
    /// The wall clock.
    std::function<Instant()> now;
    /// The path of the configuration file, looked up at the load and at
    /// every save; nullopt when there is none.
    std::function<std::optional<std::string>()> configurationPath;
    /// Replaces the file at a path by the bytes; false when it failed.
    std::function<bool(const std::string& path, std::string_view bytes)> writeFile;
  };

  /// The system clock, "TavuroConfig.plist" in `resourceDirectory()`, and
  /// the atomic replacement of the file.
  [[nodiscard]] static Environment systemEnvironment();

  explicit CredentialStore(Environment environment);

  [[nodiscard]] const std::optional<std::string>& username() const noexcept { return username_; }
  [[nodiscard]] const std::optional<std::string>& password() const noexcept { return password_; }
  [[nodiscard]] const std::optional<std::string>& subscription() const noexcept {
    return subscription_;
  }
  [[nodiscard]] const std::shared_ptr<Endpoints>& endpoints() const noexcept { return endpoints_; }
  [[nodiscard]] const std::shared_ptr<TavuroJwtToken>& token() const noexcept { return token_; }
  [[nodiscard]] const std::optional<std::string>& basicAuthHeader() const noexcept {
    return basicAuthHeader_;
  }

  void setUsername(const std::optional<std::string>& username);
  void setPassword(const std::optional<std::string>& password);
  void setSubscription(const std::optional<std::string>& subscription);
  void setEndpoints(std::shared_ptr<Endpoints> endpoints);

  bool setToken(const std::string& token);
  bool removeToken() noexcept;
  /// True when user name, password and subscription are all present and
  /// non-empty, or a token is stored; the endpoint is the caller's check.
  [[nodiscard]] bool hasCredentialsOrToken() const noexcept;
  [[nodiscard]] std::optional<std::string> tavuroAuthHeader() const;
  /// The "Authorization" value as two views to be joined, valid until the
  /// store next changes, so that a caller can copy it without building it
  /// first: "Bearer " and the token, or the Basic value and "". False (both
  /// views empty) when there is no header.
  bool tavuroAuthHeaderParts(std::string_view& head, std::string_view& tail) const noexcept;
  /// A number that changes whenever either header may have changed (a new
  /// user name, password or token), so that a caller may keep a header it
  /// made until then.
  [[nodiscard]] std::uint64_t headerRevision() const noexcept { return headerRevision_; }

 private:
  void saveFile() const;
  void refreshBasicAuthHeader();

  Environment environment_;
  std::optional<std::string> username_;
  std::optional<std::string> password_;
  std::optional<std::string> subscription_;
  std::shared_ptr<Endpoints> endpoints_;
  std::shared_ptr<TavuroJwtToken> token_;
  const std::shared_ptr<TavuroJwtParser> jwtParser_;
  // Built whenever the user name or password changes, so that the header
  // asked for on every request costs one copy.
  std::optional<std::string> basicAuthHeader_;
  std::uint64_t headerRevision_ = 1;  // never 0, which stands for "unknown"
};

/// The process-wide store, made and loaded on first use under the once-only
/// guard of a function-local static, and never destroyed.
[[nodiscard]] CredentialStore& sharedCredentialStore();

}  // namespace tavuro::detail

#endif  // TAVURO_COMMON_CREDENTIALSTORE_H_
