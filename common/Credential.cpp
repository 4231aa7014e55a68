#include <atomic>

#include "TavuroCommon/TavuroCommon.h"
#include "common/CredentialFile.h"
#include "platform/Base64.h"
#include "platform/Clock.h"
#include "platform/FileSystem.h"
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

std::atomic<std::size_t> g_loadCount{0};

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

std::size_t credentialLoadCount() noexcept { return g_loadCount.load(std::memory_order_acquire); }

}  // namespace detail

// ---------------------------------------------------------------------------
// The shared instance
// ---------------------------------------------------------------------------

Credential::Credential() : jwtParser_(std::make_shared<TavuroJwtParser>()) {}

Credential& Credential::shared() {
  // Concurrent first callers wait here for the one creation and load. The
  // store is never destroyed, so no exit-time destructor can race a late
  // caller on another thread.
  static Credential* const instance = [] {
    auto* created = new Credential();
    created->load();
    return created;
  }();
  return *instance;
}

void Credential::load() {
  g_loadCount.fetch_add(1, std::memory_order_acq_rel);
  const std::optional<std::string> path = platform::pathForResource(kResourceName, kResourceType);
  if (!path) return;
  try {
    detail::CredentialFields fields = detail::loadCredentialFile(*path);
    tavuro_username_ = std::move(fields.username);
    tavuro_password_ = std::move(fields.password);
    tavuro_subscription_ = std::move(fields.subscription);
    tavuro_endpoints_ = std::move(fields.endpoints);
    refreshBasicAuthHeader();
  } catch (...) {
    // Out of memory while loading: the store is left empty, as for any
    // other unreadable file.
    tavuro_username_.reset();
    tavuro_password_.reset();
    tavuro_subscription_.reset();
    tavuro_endpoints_.reset();
    basicAuthHeader_.reset();
  }
}

void Credential::saveFile() const {
  try {
    // Looked up again: a save never creates a file where none was found.
    const std::optional<std::string> path = platform::pathForResource(kResourceName, kResourceType);
    if (!path) return;
    const detail::CredentialFields fields{tavuro_username_, tavuro_password_,
                                          tavuro_subscription_, tavuro_endpoints_};
    // A state that no file can hold faithfully (text that is not UTF-8, a
    // file past the reader's limit) is not written: the next start would
    // reject the whole file. The old file stays, as after any failed save.
    const std::optional<std::string> bytes = detail::credentialFileBytes(fields);
    // The outcome is ignored on purpose: the new value stays in memory.
    if (bytes) platform::writeFileAtomically(*path, *bytes);
  } catch (...) {
    // As with a failed write: nothing is reported.
  }
}

// ---------------------------------------------------------------------------
// Credentials and endpoints
// ---------------------------------------------------------------------------

std::optional<std::string> Credential::username() { return shared().tavuro_username_; }

std::optional<std::string> Credential::password() { return shared().tavuro_password_; }

std::optional<std::string> Credential::subscription() { return shared().tavuro_subscription_; }

std::shared_ptr<Endpoints> Credential::endpoints() { return shared().tavuro_endpoints_; }

void Credential::setUsername(const std::optional<std::string>& username) {
  Credential& store = shared();
  store.tavuro_username_ = username;
  store.refreshBasicAuthHeader();
  store.saveFile();
}

void Credential::setPassword(const std::optional<std::string>& password) {
  Credential& store = shared();
  store.tavuro_password_ = password;
  store.refreshBasicAuthHeader();
  store.saveFile();
}

void Credential::setSubscription(const std::optional<std::string>& subscription) {
  Credential& store = shared();
  store.tavuro_subscription_ = subscription;
  store.saveFile();
}

void Credential::setEndpoints(std::shared_ptr<Endpoints> endpoints) {
  Credential& store = shared();
  store.tavuro_endpoints_ = std::move(endpoints);
  store.saveFile();
}

// ---------------------------------------------------------------------------
// Token and headers
// ---------------------------------------------------------------------------

bool Credential::removeToken() {
  Credential& store = shared();
  if (!store.token_) return false;
  store.token_.reset();
  return true;
}

bool Credential::setToken(const std::string& token) {
  Credential& store = shared();
  std::shared_ptr<TavuroJwtToken> parsed = store.jwtParser_->parseToken(token);
  if (!parsed) return false;
  // A token that is already expired is dropped and the stored one, expired
  // or not, stays: a failed call never removes anything.
  if (!(platform::currentClock().now() < parsed->expiration())) return false;
  store.token_ = std::move(parsed);
  return true;
}

std::shared_ptr<TavuroJwtToken> Credential::getToken() { return shared().token_; }

bool Credential::isCredentialValid(const std::optional<std::string>& endpoint) {
  // The endpoint is looked at before the store is touched.
  if (!endpoint || endpoint->empty()) return false;
  const Credential& store = shared();
  const auto filled = [](const std::optional<std::string>& text) { return text && !text->empty(); };
  if (filled(store.tavuro_username_) && filled(store.tavuro_password_) &&
      filled(store.tavuro_subscription_)) {
    return true;
  }
  // Any stored token counts, expired or not.
  return store.token_ != nullptr;
}

std::optional<std::string> Credential::getTavuroAuthHeader() {
  const Credential& store = shared();
  // The token's expiry is deliberately not looked at here.
  if (store.token_) return "Bearer " + store.token_->value();
  return getBasicAuthHeader();
}

std::optional<std::string> Credential::getBasicAuthHeader() { return shared().basicAuthHeader_; }

void Credential::refreshBasicAuthHeader() {
  if (!tavuro_username_ || !tavuro_password_) {
    basicAuthHeader_.reset();
    return;
  }
  // std::string holds UTF-8 bytes already, so the encoding step cannot fail.
  basicAuthHeader_ = "Basic " + platform::base64Encode(*tavuro_username_ + ":" + *tavuro_password_);
}

}  // namespace tavuro
