#include <utility>

#include "TavuroCommon/TavuroCommon.h"
#include "common/CredentialStore.h"
#include "platform/Base64.h"
#include "platform/Clock.h"
#include "platform/FileSystem.h"
#include "platform/NoDestructor.h"
#include "platform/Plist.h"
#include "platform/Resources.h"

#ifndef TAVURO_KELMO_DEFAULT_ENDPOINT
#error "TAVURO_KELMO_DEFAULT_ENDPOINT must be defined by the build"
#endif

namespace tavuro {
namespace {

constexpr char kResourceName[] = "TavuroConfig";
constexpr char kResourceType[] = "plist";

constexpr char kUsernameKey[] = "tavuro_username";
constexpr char kPasswordKey[] = "tavuro_password";
constexpr char kSubscriptionKey[] = "tavuro_subscription";
constexpr char kFrmKey[] = "frm_endpoint";
constexpr char kIdKey[] = "ferisant_endpoint";
constexpr char kHealthInsuranceKey[] = "med_endpoint";
constexpr char kPassiveLivenessKey[] = "passive_liveness_endpoint";
constexpr char kKelmoKey[] = "kelmo_endpoint";

using StringDictionary = std::map<std::string, std::string>;

std::optional<std::string> textAt(const StringDictionary& dictionary, const char* key) {
  const auto found = dictionary.find(key);
  if (found == dictionary.end()) return std::nullopt;
  return found->second;
}

void addWhenPresent(StringDictionary& dictionary, const char* key,
                    const std::optional<std::string>& value) {
  if (value) dictionary.emplace(key, *value);
}

std::shared_ptr<Endpoints> endpointsFrom(const StringDictionary& dictionary) {
  auto endpoints = Endpoints::newInstance();
  endpoints->setFrmEndpoint(textAt(dictionary, kFrmKey));
  endpoints->setIdEndpoint(textAt(dictionary, kIdKey));
  endpoints->setHealthInsuranceEndpoint(textAt(dictionary, kHealthInsuranceKey));
  endpoints->setPassiveLivenessEndpoint(textAt(dictionary, kPassiveLivenessKey));
  endpoints->setKelmoEndpoint(
      textAt(dictionary, kKelmoKey).value_or(detail::kKelmoDefaultEndpoint));
  return endpoints;
}

}  // namespace

// ---------------------------------------------------------------------------
// The configuration file
// ---------------------------------------------------------------------------

namespace detail {

const char* const kKelmoDefaultEndpoint = TAVURO_KELMO_DEFAULT_ENDPOINT;

CredentialFields credentialFieldsFrom(std::string_view bytes) {
  CredentialFields fields;
  // The reader keeps only text values, so a key holding a number, date or
  // dictionary reads as missing, which is exactly the rule for such keys.
  const std::optional<StringDictionary> dictionary = platform::readPlistStringDictionary(bytes);
  if (!dictionary) return fields;
  fields.endpoints = endpointsFrom(*dictionary);
  fields.username = textAt(*dictionary, kUsernameKey);
  fields.password = textAt(*dictionary, kPasswordKey);
  fields.subscription = textAt(*dictionary, kSubscriptionKey);
  return fields;
}

CredentialFields loadCredentialFile(const std::string& path) {
  // A save that a crash interrupted may have left a copy of the new
  // credentials beside the file; it goes now, not at the next save.
  platform::removeStaleTemporaries(path);
  const std::optional<std::string> bytes = platform::readWholeFile(path, platform::kMaxPlistBytes);
  return bytes ? credentialFieldsFrom(*bytes) : CredentialFields{};
}

StringDictionary credentialFileDictionary(const CredentialFields& fields) {
  StringDictionary dictionary;
  addWhenPresent(dictionary, kUsernameKey, fields.username);
  addWhenPresent(dictionary, kPasswordKey, fields.password);
  addWhenPresent(dictionary, kSubscriptionKey, fields.subscription);
  // The passive liveness and Kelmo endpoints are left out on purpose: after
  // a save they fall back to absent and to the default at the next start.
  if (fields.endpoints) {
    addWhenPresent(dictionary, kIdKey, fields.endpoints->idEndpoint());
    addWhenPresent(dictionary, kHealthInsuranceKey, fields.endpoints->healthInsuranceEndpoint());
    addWhenPresent(dictionary, kFrmKey, fields.endpoints->frmEndpoint());
  }
  return dictionary;
}

std::optional<std::string> credentialFileBytes(const CredentialFields& fields) {
  return platform::writeFaithfulXmlPlist(credentialFileDictionary(fields));
}

// ---------------------------------------------------------------------------
// The store
// ---------------------------------------------------------------------------

CredentialStore::Environment CredentialStore::systemEnvironment() {
  Environment environment;
  environment.now = [] { return platform::wallClockNow(); };
  environment.configurationPath = [] {
    return platform::pathForResource(resourceDirectory(), kResourceName, kResourceType);
  };
  environment.writeFile = [](const std::string& path, std::string_view bytes) {
    return platform::writeFileAtomically(path, bytes);
  };
  return environment;
}

CredentialStore::CredentialStore(Environment environment)
    : environment_(std::move(environment)), jwtParser_(std::make_shared<TavuroJwtParser>()) {
  const std::optional<std::string> path = environment_.configurationPath();
  if (!path) return;
  try {
    CredentialFields fields = loadCredentialFile(*path);
    username_ = std::move(fields.username);
    password_ = std::move(fields.password);
    subscription_ = std::move(fields.subscription);
    endpoints_ = std::move(fields.endpoints);
    refreshBasicAuthHeader();
  } catch (...) {
    // Out of memory while loading: the store is left empty, as for any
    // other unreadable file.
    username_.reset();
    password_.reset();
    subscription_.reset();
    endpoints_.reset();
    basicAuthHeader_.reset();
    ++headerRevision_;
  }
}

void CredentialStore::saveFile() const {
  try {
    // Looked up again: a save never creates a file where none was found.
    const std::optional<std::string> path = environment_.configurationPath();
    if (!path) return;
    // A state that no file can hold faithfully (text that is not UTF-8, a
    // file past the reader's limit) is not written: the next start would
    // reject the whole file. The old file stays, as after any failed save.
    const std::optional<std::string> bytes =
        credentialFileBytes({username_, password_, subscription_, endpoints_});
    // The outcome is ignored on purpose: the new value stays in memory.
    if (bytes) static_cast<void>(environment_.writeFile(*path, *bytes));
  } catch (...) {
    // As with a failed write: nothing is reported.
  }
}

void CredentialStore::setUsername(const std::optional<std::string>& username) {
  username_ = username;
  refreshBasicAuthHeader();
  saveFile();
}

void CredentialStore::setPassword(const std::optional<std::string>& password) {
  password_ = password;
  refreshBasicAuthHeader();
  saveFile();
}

void CredentialStore::setSubscription(const std::optional<std::string>& subscription) {
  subscription_ = subscription;
  saveFile();
}

void CredentialStore::setEndpoints(std::shared_ptr<Endpoints> endpoints) {
  endpoints_ = std::move(endpoints);
  saveFile();
}

bool CredentialStore::setToken(const std::string& token) {
  std::shared_ptr<TavuroJwtToken> parsed = jwtParser_->parseToken(token);
  // A token that is already expired is dropped and the stored one, expired
  // or not, stays: a failed call never removes anything.
  if (!parsed || !parsed->isValidAt(environment_.now())) return false;
  token_ = std::move(parsed);
  ++headerRevision_;
  return true;
}

bool CredentialStore::removeToken() noexcept {
  if (!token_) return false;
  token_.reset();
  ++headerRevision_;
  return true;
}

bool CredentialStore::hasCredentialsOrToken() const noexcept {
  const auto filled = [](const std::optional<std::string>& text) { return text && !text->empty(); };
  // Any stored token counts, expired or not.
  return (filled(username_) && filled(password_) && filled(subscription_)) || token_ != nullptr;
}

std::optional<std::string> CredentialStore::tavuroAuthHeader() const {
  std::string_view head;
  std::string_view tail;
  if (!tavuroAuthHeaderParts(head, tail)) return std::nullopt;
  std::string header;
  header.reserve(head.size() + tail.size());
  header.append(head).append(tail);
  return header;
}

bool CredentialStore::tavuroAuthHeaderParts(std::string_view& head,
                                            std::string_view& tail) const noexcept {
  // The token's expiry is deliberately not looked at.
  if (token_) {
    head = "Bearer ";
    tail = token_->value();
    return true;
  }
  head = basicAuthHeader_ ? std::string_view(*basicAuthHeader_) : std::string_view();
  tail = std::string_view();
  return basicAuthHeader_.has_value();
}

void CredentialStore::refreshBasicAuthHeader() {
  ++headerRevision_;
  if (!username_ || !password_) {
    basicAuthHeader_.reset();
    return;
  }
  // std::string holds UTF-8 bytes already, so the encoding step cannot fail.
  basicAuthHeader_ = "Basic " + platform::base64Encode(*username_ + ":" + *password_);
}

CredentialStore& sharedCredentialStore() {
  // Concurrent first callers wait here for the one creation and load. The
  // store is never destroyed, so no exit-time destructor can race a late
  // caller on another thread.
  static platform::NoDestructor<CredentialStore> store(CredentialStore::systemEnvironment());
  return *store;
}

}  // namespace detail

// ---------------------------------------------------------------------------
// The static operations
// ---------------------------------------------------------------------------

using detail::sharedCredentialStore;

std::optional<std::string> Credential::username() {
  return sharedCredentialStore().username();
}

std::optional<std::string> Credential::password() {
  return sharedCredentialStore().password();
}

std::optional<std::string> Credential::subscription() {
  return sharedCredentialStore().subscription();
}

std::shared_ptr<Endpoints> Credential::endpoints() {
  return sharedCredentialStore().endpoints();
}

void Credential::setUsername(const std::optional<std::string>& username) {
  sharedCredentialStore().setUsername(username);
}

void Credential::setPassword(const std::optional<std::string>& password) {
  sharedCredentialStore().setPassword(password);
}

void Credential::setSubscription(const std::optional<std::string>& subscription) {
  sharedCredentialStore().setSubscription(subscription);
}

void Credential::setEndpoints(std::shared_ptr<Endpoints> endpoints) {
  sharedCredentialStore().setEndpoints(std::move(endpoints));
}

bool Credential::removeToken() {
  return sharedCredentialStore().removeToken();
}

bool Credential::setToken(const std::string& token) {
  return sharedCredentialStore().setToken(token);
}

std::shared_ptr<TavuroJwtToken> Credential::getToken() {
  return sharedCredentialStore().token();
}

bool Credential::isCredentialValid(const std::optional<std::string>& endpoint) {
  // The endpoint is looked at before the store is touched.
  if (!endpoint || endpoint->empty()) return false;
  return sharedCredentialStore().hasCredentialsOrToken();
}

std::optional<std::string> Credential::getTavuroAuthHeader() {
  return sharedCredentialStore().tavuroAuthHeader();
}

std::optional<std::string> Credential::getBasicAuthHeader() {
  return sharedCredentialStore().basicAuthHeader();
}

}  // namespace tavuro
