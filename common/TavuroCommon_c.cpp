// The C interface: thin wrappers that turn handles and C texts into the C++
// types and back. Every entry point catches everything, because an exception
// unwinding into a C caller is undefined behaviour.
//
// The wrappers of the regular members are generated from
// interface/TavuroCommon.json by scripts/generate_interface.py, between the
// "BEGIN generated" and "END generated" lines; what is written here by hand
// is the helpers they use and the members that do not fit one rule.
#include <atomic>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <new>
#include <string_view>
#include <utility>
#include <vector>

#include "TavuroCommon/TavuroCommon.h"
#include "TavuroCommon/TavuroCommon_c.h"
#include "common/CredentialStore.h"
#include "common/JsonAccess.h"

// The C enumerations carry the C++ values unchanged.
static_assert(TAVURO_PIXEL_FORMAT_RGBA8 == static_cast<int>(tavuro::PixelFormat::RGBA8) &&
              TAVURO_PIXEL_FORMAT_BGRA8 == static_cast<int>(tavuro::PixelFormat::BGRA8));
static_assert(TAVURO_JSON_OBJECT == static_cast<int>(tavuro::JsonValue::Kind::Object) &&
              TAVURO_JSON_STRING == static_cast<int>(tavuro::JsonValue::Kind::String));

namespace {

// One counted reference to a C++ object. A handle holds the object the way
// C++ code would (a shared_ptr or a cheap shared value), so C and C++ holders
// keep it alive alike.
template <typename T>
struct Box {
  explicit Box(T object) noexcept : value(std::move(object)) {}
  std::atomic<std::size_t> references{1};
  T value;
};

}  // namespace

// BEGIN generated from interface/TavuroCommon.json: handles
struct tavuro_TavuroInitializer : Box<std::shared_ptr<tavuro::TavuroInitializer>> {
  using Box::Box;
};
struct tavuro_Endpoints : Box<std::shared_ptr<tavuro::Endpoints>> {
  using Box::Box;
};
struct tavuro_TavuroJwtParser : Box<std::shared_ptr<tavuro::TavuroJwtParser>> {
  using Box::Box;
};
struct tavuro_TavuroJwtToken : Box<std::shared_ptr<tavuro::TavuroJwtToken>> {
  using Box::Box;
};
struct tavuro_TavuroError : Box<std::shared_ptr<tavuro::TavuroError>> {
  using Box::Box;
};
struct tavuro_Image : Box<std::shared_ptr<tavuro::Image>> {
  using Box::Box;
};
struct tavuro_JsonDictionary : Box<tavuro::JsonDictionary> {
  using Box::Box;
};
struct tavuro_JsonArray : Box<tavuro::JsonArray> {
  using Box::Box;
};
struct tavuro_JsonValue : Box<tavuro::JsonValue> {
  using Box::Box;
};
struct tavuro_Picture : Box<std::shared_ptr<const tavuro::Picture>> {
  using Box::Box;
};
struct tavuro_ByteBuffer : Box<std::shared_ptr<tavuro::ByteBuffer>> {
  using Box::Box;
};
static_assert(TAVURO_PROCESSING_MODE_RESERVED ==
              tavuro::rawValue(tavuro::ProcessingMode::Reserved));
static_assert(TAVURO_PROCESSING_MODE_DATA_CAPTURE ==
              tavuro::rawValue(tavuro::ProcessingMode::DataCapture));
static_assert(TAVURO_PROCESSING_MODE_STANDARD ==
              tavuro::rawValue(tavuro::ProcessingMode::Standard));
static_assert(TAVURO_DELETE_TYPE_KIND0 == tavuro::rawValue(tavuro::DeleteType::Kind0));
static_assert(TAVURO_DELETE_TYPE_KIND1 == tavuro::rawValue(tavuro::DeleteType::Kind1));
// END generated: handles

namespace {

// Runs `body` and turns any exception into `fallback`.
template <typename R, typename Body>
R guarded(R fallback, Body&& body) noexcept {
  try {
    return body();
  } catch (...) {
    return fallback;
  }
}

template <typename Body>
void guardedVoid(Body&& body) noexcept {
  try {
    body();
  } catch (...) {
  }
}

// A new handle holding `object`; NULL for an empty shared_ptr.
template <typename Handle, typename T>
Handle* wrap(std::shared_ptr<T> object) {
  return object ? new Handle(std::move(object)) : nullptr;
}

template <typename Handle, typename T>
Handle* wrap(std::optional<T> value) {
  return value ? new Handle(std::move(*value)) : nullptr;
}

// A new byte buffer holding `bytes`; NULL when they are absent.
tavuro_ByteBuffer* wrapBytes(std::optional<std::vector<std::uint8_t>> bytes) {
  if (!bytes) return nullptr;
  return new tavuro_ByteBuffer(std::make_shared<tavuro::ByteBuffer>(std::move(*bytes)));
}

template <typename Handle>
Handle* retain(Handle* handle) noexcept {
  if (handle != nullptr) handle->references.fetch_add(1, std::memory_order_relaxed);
  return handle;
}

template <typename Handle>
void release(Handle* handle) noexcept {
  // acq_rel so that every write made through other references happens before
  // the delete.
  if (handle != nullptr && handle->references.fetch_sub(1, std::memory_order_acq_rel) == 1) {
    delete handle;
  }
}

// The object behind a handle, or an empty shared_ptr for NULL.
template <typename Handle>
auto objectOf(const Handle* handle) -> decltype(handle->value) {
  return handle != nullptr ? handle->value : decltype(handle->value){};
}

// The value behind a handle of a value type, absent for NULL.
template <typename Handle>
auto optionalValue(const Handle* handle) -> std::optional<decltype(handle->value)> {
  if (handle == nullptr) return std::nullopt;
  return handle->value;
}

// A malloc'd, NUL-terminated copy; freed by tavuro_string_free.
char* copyText(std::string_view text) noexcept {
  auto* copy = static_cast<char*>(std::malloc(text.size() + 1));
  if (copy == nullptr) return nullptr;
  if (!text.empty()) std::memcpy(copy, text.data(), text.size());
  copy[text.size()] = '\0';
  return copy;
}

// Writes `head` and `tail` into the caller's buffer when both fit, with a
// NUL after them when there is room; `*length` gets their joint length
// either way (0 when absent). Returns `present`.
bool copyTextInto(bool present, std::string_view head, std::string_view tail, char* buffer,
                  size_t capacity, size_t* length) noexcept {
  const std::size_t size = present ? head.size() + tail.size() : 0;
  if (length != nullptr) *length = size;
  if (!present || buffer == nullptr || size > capacity) return present;
  if (!head.empty()) std::memcpy(buffer, head.data(), head.size());
  if (!tail.empty()) std::memcpy(buffer + head.size(), tail.data(), tail.size());
  if (size < capacity) buffer[size] = '\0';
  return true;
}

// NULL for an absent text.
char* copyOptionalText(const std::optional<std::string>& text) noexcept {
  return text ? copyText(std::string_view(*text)) : nullptr;
}

std::optional<std::string> optionalText(const char* text) {
  if (text == nullptr) return std::nullopt;
  return std::string(text);
}

// One package of the C host, called through its function pointer.
class CPackage final : public tavuro::ITavuroPackage {
 public:
  explicit CPackage(tavuro_ITavuroPackage package) noexcept : package_(package) {}
  void initialize() override { package_.initialize(package_.context); }

 private:
  tavuro_ITavuroPackage package_;
};

tavuro_TavuroErrorInfo cInfo(const tavuro::TavuroErrorInfo& info) noexcept {
  return tavuro_TavuroErrorInfo{info.code, info.codeName, info.descriptionName, info.description};
}

}  // namespace

extern "C" {

// ---------------------------------------------------------------------------
// Texts
// ---------------------------------------------------------------------------

void tavuro_string_free(char* text) {
  std::free(text);
}

// ---------------------------------------------------------------------------
// Pictures and byte buffers
// ---------------------------------------------------------------------------

tavuro_Picture* tavuro_Picture_make(uint32_t width, uint32_t height, tavuro_PixelFormat format,
                                    const uint8_t* pixels, size_t size) {
  return guarded<tavuro_Picture*>(nullptr, [&]() -> tavuro_Picture* {
    if (pixels == nullptr && size != 0) return nullptr;
    const int raw = static_cast<int>(format);
    if (raw < TAVURO_PIXEL_FORMAT_GRAY8 || raw > TAVURO_PIXEL_FORMAT_BGRA8) return nullptr;
    std::vector<std::uint8_t> bytes(pixels, pixels + size);
    return wrap<tavuro_Picture>(tavuro::Picture::make(
        width, height, static_cast<tavuro::PixelFormat>(format), std::move(bytes)));
  });
}

uint32_t tavuro_Picture_width(const tavuro_Picture* picture) {
  return picture != nullptr ? picture->value->width() : 0;
}

uint32_t tavuro_Picture_height(const tavuro_Picture* picture) {
  return picture != nullptr ? picture->value->height() : 0;
}

tavuro_PixelFormat tavuro_Picture_pixelFormat(const tavuro_Picture* picture) {
  return picture != nullptr ? static_cast<tavuro_PixelFormat>(picture->value->pixelFormat())
                            : TAVURO_PIXEL_FORMAT_RGBA8;
}

const uint8_t* tavuro_Picture_pixels(const tavuro_Picture* picture, size_t* size) {
  const std::size_t count = picture != nullptr ? picture->value->pixels().size() : 0;
  if (size != nullptr) *size = count;
  return count != 0 ? picture->value->pixels().data() : nullptr;
}

tavuro_ByteBuffer* tavuro_ByteBuffer_newInstance(void) {
  return guarded<tavuro_ByteBuffer*>(
      nullptr, [] { return wrap<tavuro_ByteBuffer>(tavuro::ByteBuffer::newInstance()); });
}

tavuro_ByteBuffer* tavuro_ByteBuffer_initWithBytes_length(const void* bytes, size_t size) {
  return guarded<tavuro_ByteBuffer*>(nullptr, [&]() -> tavuro_ByteBuffer* {
    if (bytes == nullptr && size != 0) return nullptr;
    return wrap<tavuro_ByteBuffer>(std::make_shared<tavuro::ByteBuffer>(bytes, size));
  });
}

size_t tavuro_ByteBuffer_length(const tavuro_ByteBuffer* buffer) {
  return buffer != nullptr ? buffer->value->size() : 0;
}

uint8_t* tavuro_ByteBuffer_bytes(tavuro_ByteBuffer* buffer) {
  return buffer != nullptr && !buffer->value->empty() ? buffer->value->data() : nullptr;
}

bool tavuro_ByteBuffer_appendBytes_length(tavuro_ByteBuffer* buffer, const void* bytes,
                                          size_t size) {
  return guarded(false, [&] {
    if (buffer == nullptr || (bytes == nullptr && size != 0)) return false;
    buffer->value->append(bytes, size);
    return true;
  });
}

bool tavuro_ByteBuffer_setLength(tavuro_ByteBuffer* buffer, size_t size) {
  return guarded(false, [&] {
    if (buffer == nullptr) return false;
    buffer->value->resize(size);
    return true;
  });
}

// ---------------------------------------------------------------------------
// The error tables' lookup
// ---------------------------------------------------------------------------

bool tavuro_TavuroErrorInfo_forCode(int64_t code, tavuro_TavuroErrorInfo* info) {
  const auto found = tavuro::TavuroErrorInfo::forCode(code);
  if (found && info != nullptr) *info = cInfo(*found);
  return found.has_value();
}

size_t tavuro_TavuroErrorInfo_all(tavuro_TavuroErrorInfo* entries, size_t capacity) {
  const std::vector<tavuro::TavuroErrorInfo>& all = tavuro::TavuroErrorInfo::all();
  for (std::size_t i = 0; entries != nullptr && i < all.size() && i < capacity; ++i) {
    entries[i] = cInfo(all[i]);
  }
  return all.size();
}

// ---------------------------------------------------------------------------
// Start-up: a C array of packages and a function pointer for the callback
// ---------------------------------------------------------------------------

void tavuro_TavuroInitializer_initializeWithPackages_callback(
    tavuro_TavuroInitializer* initializer, const tavuro_ITavuroPackage* packages, size_t count,
    tavuro_TavuroInitializerCallback callback, void* context) {
  if (initializer == nullptr || (packages == nullptr && count != 0)) return;
  guardedVoid([&] {
    std::vector<std::shared_ptr<tavuro::ITavuroPackage>> list;
    list.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
      // A package without a start function is a null entry, which the
      // initializer skips.
      list.push_back(packages[i].initialize != nullptr ? std::make_shared<CPackage>(packages[i])
                                                       : nullptr);
    }
    initializer->value->initialize(
        list, [callback, context](const std::shared_ptr<tavuro::TavuroError>& error) {
          if (callback == nullptr) return;
          // Borrowed for the call: the handle lives on this frame.
          tavuro_TavuroError* handle = error ? new tavuro_TavuroError(error) : nullptr;
          callback(context, handle);
          release(handle);
        });
  });
}

// ---------------------------------------------------------------------------
// Image points: C arrays of tavuro_Point, copied both ways
// ---------------------------------------------------------------------------

size_t tavuro_Image_points(const tavuro_Image* record, tavuro_Point* points, size_t capacity) {
  if (record == nullptr) return 0;
  const std::vector<tavuro::Point>& held = record->value->points();
  if (points != nullptr) {
    for (std::size_t i = 0; i < held.size() && i < capacity; ++i) {
      points[i] = tavuro_Point{held[i].x, held[i].y};
    }
  }
  return held.size();
}

void tavuro_Image_setPoints(tavuro_Image* record, const tavuro_Point* points, size_t count) {
  if (record == nullptr || (points == nullptr && count != 0)) return;
  guardedVoid([&] {
    std::vector<tavuro::Point> copy;
    copy.reserve(count);
    for (std::size_t i = 0; i < count; ++i) copy.push_back(tavuro::Point{points[i].x, points[i].y});
    record->value->setPoints(std::move(copy));
  });
}

// ---------------------------------------------------------------------------
// JSON values
// ---------------------------------------------------------------------------

size_t tavuro_JsonDictionary_count(const tavuro_JsonDictionary* dictionary) {
  return dictionary != nullptr ? dictionary->value.size() : 0;
}

char* tavuro_JsonDictionary_keyAtIndex(const tavuro_JsonDictionary* dictionary, size_t index) {
  if (dictionary == nullptr || index >= dictionary->value.size()) return nullptr;
  return copyText(dictionary->value.keyAt(index));
}

tavuro_JsonValue* tavuro_JsonDictionary_valueAtIndex(const tavuro_JsonDictionary* dictionary,
                                                     size_t index) {
  if (dictionary == nullptr || index >= dictionary->value.size()) return nullptr;
  return guarded<tavuro_JsonValue*>(
      nullptr, [&] { return new tavuro_JsonValue(dictionary->value.valueAt(index)); });
}

tavuro_JsonValue* tavuro_JsonDictionary_objectForKey(const tavuro_JsonDictionary* dictionary,
                                                     const char* key) {
  if (dictionary == nullptr || key == nullptr) return nullptr;
  return guarded<tavuro_JsonValue*>(
      nullptr, [&] { return wrap<tavuro_JsonValue>(dictionary->value.find(key)); });
}

// The C node is the reader's node, field for field, so a document is handed
// out as it lies in memory.
using ReaderNode = tavuro::platform::JsonNode;
static_assert(sizeof(tavuro_JsonNode) == sizeof(ReaderNode) &&
              offsetof(tavuro_JsonNode, size) == offsetof(ReaderNode, size) &&
              offsetof(tavuro_JsonNode, payload) == offsetof(ReaderNode, payload));
static_assert(TAVURO_JSON_NODE_NULL == static_cast<int>(tavuro::platform::NodeType::Null) &&
              TAVURO_JSON_NODE_FALSE == static_cast<int>(tavuro::platform::NodeType::False) &&
              TAVURO_JSON_NODE_TRUE == static_cast<int>(tavuro::platform::NodeType::True) &&
              TAVURO_JSON_NODE_INT64 == static_cast<int>(tavuro::platform::NodeType::Int64) &&
              TAVURO_JSON_NODE_UINT64 == static_cast<int>(tavuro::platform::NodeType::UInt64) &&
              TAVURO_JSON_NODE_DOUBLE == static_cast<int>(tavuro::platform::NodeType::Double) &&
              TAVURO_JSON_NODE_STRING == static_cast<int>(tavuro::platform::NodeType::String) &&
              TAVURO_JSON_NODE_ARRAY == static_cast<int>(tavuro::platform::NodeType::Array) &&
              TAVURO_JSON_NODE_OBJECT == static_cast<int>(tavuro::platform::NodeType::Object));

const tavuro_JsonNode* tavuro_JsonDictionary_nodes(const tavuro_JsonDictionary* dictionary) {
  if (dictionary == nullptr) return nullptr;
  static const tavuro_JsonNode emptyObject{TAVURO_JSON_NODE_OBJECT, 0, 0, 0, {0}};
  const ReaderNode* node = tavuro::detail::JsonAccess::node(dictionary->value);
  // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): same layout, checked above
  return node != nullptr ? reinterpret_cast<const tavuro_JsonNode*>(node) : &emptyObject;
}

tavuro_JsonDictionary* tavuro_Utils_convertToDictionaryWithBytes_length(const char* bytes,
                                                                        size_t length) {
  if (bytes == nullptr) return nullptr;
  return guarded<tavuro_JsonDictionary*>(nullptr, [&] {
    return wrap<tavuro_JsonDictionary>(
        tavuro::detail::dictionaryOfText(std::string_view(bytes, length)));
  });
}

tavuro_TavuroJwtToken* tavuro_Credential_getToken(void) {
  return guarded<tavuro_TavuroJwtToken*>(
      nullptr, [&] { return wrap<tavuro_TavuroJwtToken>(tavuro::Credential::getToken()); });
}

bool tavuro_Credential_copyTavuroAuthHeader(char* buffer, size_t capacity, size_t* length) {
  if (length != nullptr) *length = 0;  // also when the store cannot be made
  return guarded<bool>(false, [&] {
    std::string_view head;
    std::string_view tail;
    const bool present = tavuro::detail::sharedCredentialStore().tavuroAuthHeaderParts(head, tail);
    return copyTextInto(present, head, tail, buffer, capacity, length);
  });
}

uint64_t tavuro_Credential_headerRevision(void) {
  return guarded<uint64_t>(0,
                           [] { return tavuro::detail::sharedCredentialStore().headerRevision(); });
}

bool tavuro_Credential_copyBasicAuthHeader(char* buffer, size_t capacity, size_t* length) {
  if (length != nullptr) *length = 0;  // also when the store cannot be made
  return guarded<bool>(false, [&] {
    const std::optional<std::string>& header =
        tavuro::detail::sharedCredentialStore().basicAuthHeader();
    return copyTextInto(header.has_value(), header ? std::string_view(*header) : std::string_view(),
                        std::string_view(), buffer, capacity, length);
  });
}

size_t tavuro_JsonArray_count(const tavuro_JsonArray* array) {
  return array != nullptr ? array->value.size() : 0;
}

tavuro_JsonValue* tavuro_JsonArray_objectAtIndex(const tavuro_JsonArray* array, size_t index) {
  if (array == nullptr || index >= array->value.size()) return nullptr;
  return guarded<tavuro_JsonValue*>(nullptr,
                                    [&] { return new tavuro_JsonValue(array->value[index]); });
}

tavuro_JsonKind tavuro_JsonValue_kind(const tavuro_JsonValue* value) {
  return value != nullptr ? static_cast<tavuro_JsonKind>(value->value.kind()) : TAVURO_JSON_NULL;
}

bool tavuro_JsonValue_boolValue(const tavuro_JsonValue* value, bool* out) {
  if (value == nullptr || out == nullptr) return false;
  const auto read = value->value.boolValue();
  if (read) *out = *read;
  return read.has_value();
}

bool tavuro_JsonValue_int64Value(const tavuro_JsonValue* value, int64_t* out) {
  if (value == nullptr || out == nullptr) return false;
  const auto read = value->value.int64Value();
  if (read) *out = *read;
  return read.has_value();
}

bool tavuro_JsonValue_doubleValue(const tavuro_JsonValue* value, double* out) {
  if (value == nullptr || out == nullptr) return false;
  const auto read = value->value.doubleValue();
  if (read) *out = *read;
  return read.has_value();
}

char* tavuro_JsonValue_stringValue(const tavuro_JsonValue* value, size_t* length) {
  const auto text = value != nullptr ? value->value.stringValue() : std::nullopt;
  if (length != nullptr) *length = text ? text->size() : 0;
  return text ? copyText(*text) : nullptr;
}

tavuro_JsonArray* tavuro_JsonValue_arrayValue(const tavuro_JsonValue* value) {
  if (value == nullptr) return nullptr;
  return guarded<tavuro_JsonArray*>(
      nullptr, [&] { return wrap<tavuro_JsonArray>(value->value.arrayValue()); });
}

tavuro_JsonDictionary* tavuro_JsonValue_dictionaryValue(const tavuro_JsonValue* value) {
  if (value == nullptr) return nullptr;
  return guarded<tavuro_JsonDictionary*>(
      nullptr, [&] { return wrap<tavuro_JsonDictionary>(value->value.dictionaryValue()); });
}

// ---------------------------------------------------------------------------
// Every regular member
// ---------------------------------------------------------------------------

// The macros below define functions, not expressions, so their replacement
// lists cannot be parenthesised. NOLINTBEGIN(bugprone-macro-parentheses)
#define TAVURO_C_REFERENCE_COUNTING(Type)                        \
  tavuro_##Type* tavuro_##Type##_retain(tavuro_##Type* handle) { \
    return retain(handle);                                       \
  }                                                              \
  void tavuro_##Type##_release(tavuro_##Type* handle) {          \
    release(handle);                                             \
  }
#define TAVURO_C_CODE(name)                      \
  int64_t tavuro_TavuroErrorCodes_##name(void) { \
    return tavuro::TavuroErrorCodes::name;       \
  }
#define TAVURO_C_DESCRIPTION(name)                          \
  const char* tavuro_TavuroErrorDescriptions_##name(void) { \
    return tavuro::TavuroErrorDescriptions::name;           \
  }
// NOLINTEND(bugprone-macro-parentheses)

// BEGIN generated from interface/TavuroCommon.json: wrappers
TAVURO_C_REFERENCE_COUNTING(TavuroInitializer)
TAVURO_C_REFERENCE_COUNTING(Endpoints)
TAVURO_C_REFERENCE_COUNTING(TavuroJwtParser)
TAVURO_C_REFERENCE_COUNTING(TavuroJwtToken)
TAVURO_C_REFERENCE_COUNTING(TavuroError)
TAVURO_C_REFERENCE_COUNTING(Image)
TAVURO_C_REFERENCE_COUNTING(JsonDictionary)
TAVURO_C_REFERENCE_COUNTING(JsonArray)
TAVURO_C_REFERENCE_COUNTING(JsonValue)
TAVURO_C_REFERENCE_COUNTING(Picture)
TAVURO_C_REFERENCE_COUNTING(ByteBuffer)

void tavuro_setResourceDirectory(const char* directory) {
  if (directory == nullptr) return;
  guardedVoid([&] { tavuro::setResourceDirectory(directory); });
}

char* tavuro_resourceDirectory(void) {
  return guarded<char*>(nullptr, [&] { return copyText(tavuro::resourceDirectory()); });
}

tavuro_TavuroInitializer* tavuro_TavuroInitializer_init(void) {
  return guarded<tavuro_TavuroInitializer*>(nullptr, [&] {
    return wrap<tavuro_TavuroInitializer>(std::make_shared<tavuro::TavuroInitializer>());
  });
}

char* tavuro_Credential_username(void) {
  return guarded<char*>(nullptr, [&] { return copyOptionalText(tavuro::Credential::username()); });
}

char* tavuro_Credential_password(void) {
  return guarded<char*>(nullptr, [&] { return copyOptionalText(tavuro::Credential::password()); });
}

char* tavuro_Credential_subscription(void) {
  return guarded<char*>(nullptr,
                        [&] { return copyOptionalText(tavuro::Credential::subscription()); });
}

tavuro_Endpoints* tavuro_Credential_endpoints(void) {
  return guarded<tavuro_Endpoints*>(
      nullptr, [&] { return wrap<tavuro_Endpoints>(tavuro::Credential::endpoints()); });
}

bool tavuro_Credential_removeToken(void) {
  return guarded<bool>(false, [&] { return tavuro::Credential::removeToken(); });
}

bool tavuro_Credential_setTokenWithToken(const char* token) {
  if (token == nullptr) return false;
  return guarded<bool>(false, [&] { return tavuro::Credential::setToken(token); });
}

bool tavuro_Credential_isCredentialValidWithEndpoint(const char* endpoint) {
  return guarded<bool>(
      false, [&] { return tavuro::Credential::isCredentialValid(optionalText(endpoint)); });
}

char* tavuro_Credential_getTavuroAuthHeader(void) {
  return guarded<char*>(
      nullptr, [&] { return copyOptionalText(tavuro::Credential::getTavuroAuthHeader()); });
}

char* tavuro_Credential_getBasicAuthHeader(void) {
  return guarded<char*>(nullptr,
                        [&] { return copyOptionalText(tavuro::Credential::getBasicAuthHeader()); });
}

void tavuro_Credential_setUsernameWithUsername(const char* username) {
  guardedVoid([&] { tavuro::Credential::setUsername(optionalText(username)); });
}

void tavuro_Credential_setPasswordWithPassword(const char* password) {
  guardedVoid([&] { tavuro::Credential::setPassword(optionalText(password)); });
}

void tavuro_Credential_setSubscriptionWithSubscription(const char* subscription) {
  guardedVoid([&] { tavuro::Credential::setSubscription(optionalText(subscription)); });
}

void tavuro_Credential_setEndpointsWithEndpoints(tavuro_Endpoints* endpoints) {
  guardedVoid([&] { tavuro::Credential::setEndpoints(objectOf(endpoints)); });
}

char* tavuro_Endpoints_frmEndpoint(const tavuro_Endpoints* endpoints) {
  if (endpoints == nullptr) return nullptr;
  return guarded<char*>(nullptr, [&] { return copyOptionalText(endpoints->value->frmEndpoint()); });
}

void tavuro_Endpoints_setFrmEndpoint(tavuro_Endpoints* endpoints, const char* endpoint) {
  if (endpoints == nullptr) return;
  guardedVoid([&] { endpoints->value->setFrmEndpoint(optionalText(endpoint)); });
}

char* tavuro_Endpoints_idEndpoint(const tavuro_Endpoints* endpoints) {
  if (endpoints == nullptr) return nullptr;
  return guarded<char*>(nullptr, [&] { return copyOptionalText(endpoints->value->idEndpoint()); });
}

void tavuro_Endpoints_setIdEndpoint(tavuro_Endpoints* endpoints, const char* endpoint) {
  if (endpoints == nullptr) return;
  guardedVoid([&] { endpoints->value->setIdEndpoint(optionalText(endpoint)); });
}

char* tavuro_Endpoints_passiveLivenessEndpoint(const tavuro_Endpoints* endpoints) {
  if (endpoints == nullptr) return nullptr;
  return guarded<char*>(
      nullptr, [&] { return copyOptionalText(endpoints->value->passiveLivenessEndpoint()); });
}

void tavuro_Endpoints_setPassiveLivenessEndpoint(tavuro_Endpoints* endpoints,
                                                 const char* endpoint) {
  if (endpoints == nullptr) return;
  guardedVoid([&] { endpoints->value->setPassiveLivenessEndpoint(optionalText(endpoint)); });
}

char* tavuro_Endpoints_healthInsuranceEndpoint(const tavuro_Endpoints* endpoints) {
  if (endpoints == nullptr) return nullptr;
  return guarded<char*>(
      nullptr, [&] { return copyOptionalText(endpoints->value->healthInsuranceEndpoint()); });
}

void tavuro_Endpoints_setHealthInsuranceEndpoint(tavuro_Endpoints* endpoints,
                                                 const char* endpoint) {
  if (endpoints == nullptr) return;
  guardedVoid([&] { endpoints->value->setHealthInsuranceEndpoint(optionalText(endpoint)); });
}

char* tavuro_Endpoints_kelmoEndpoint(const tavuro_Endpoints* endpoints) {
  if (endpoints == nullptr) return nullptr;
  return guarded<char*>(nullptr,
                        [&] { return copyOptionalText(endpoints->value->kelmoEndpoint()); });
}

void tavuro_Endpoints_setKelmoEndpoint(tavuro_Endpoints* endpoints, const char* endpoint) {
  if (endpoints == nullptr) return;
  guardedVoid([&] { endpoints->value->setKelmoEndpoint(optionalText(endpoint)); });
}

tavuro_Endpoints* tavuro_Endpoints_newInstance(void) {
  return guarded<tavuro_Endpoints*>(
      nullptr, [&] { return wrap<tavuro_Endpoints>(tavuro::Endpoints::newInstance()); });
}

tavuro_TavuroJwtParser* tavuro_TavuroJwtParser_init(void) {
  return guarded<tavuro_TavuroJwtParser*>(nullptr, [&] {
    return wrap<tavuro_TavuroJwtParser>(std::make_shared<tavuro::TavuroJwtParser>());
  });
}

tavuro_TavuroJwtToken* tavuro_TavuroJwtParser_parseTokenWithJwtToken(
    const tavuro_TavuroJwtParser* parser, const char* jwtToken) {
  if (parser == nullptr || jwtToken == nullptr) return nullptr;
  return guarded<tavuro_TavuroJwtToken*>(
      nullptr, [&] { return wrap<tavuro_TavuroJwtToken>(parser->value->parseToken(jwtToken)); });
}

tavuro_JsonDictionary* tavuro_TavuroJwtParser_decodeWithJwtToken(
    const tavuro_TavuroJwtParser* parser, const char* jwtToken) {
  if (parser == nullptr || jwtToken == nullptr) return nullptr;
  return guarded<tavuro_JsonDictionary*>(
      nullptr, [&] { return new tavuro_JsonDictionary(parser->value->decode(jwtToken)); });
}

tavuro_ByteBuffer* tavuro_TavuroJwtParser_base64UrlDecode(const tavuro_TavuroJwtParser* parser,
                                                          const char* text) {
  if (parser == nullptr || text == nullptr) return nullptr;
  return guarded<tavuro_ByteBuffer*>(
      nullptr, [&] { return wrapBytes(parser->value->base64UrlDecode(text)); });
}

tavuro_JsonDictionary* tavuro_TavuroJwtParser_decodeJWTPart(const tavuro_TavuroJwtParser* parser,
                                                            const char* segment) {
  if (parser == nullptr || segment == nullptr) return nullptr;
  return guarded<tavuro_JsonDictionary*>(
      nullptr, [&] { return wrap<tavuro_JsonDictionary>(parser->value->decodeJWTPart(segment)); });
}

tavuro_TavuroJwtToken* tavuro_TavuroJwtToken_initWithValue_expiration(const char* value,
                                                                      double expiration) {
  if (value == nullptr) return nullptr;
  return guarded<tavuro_TavuroJwtToken*>(nullptr, [&] {
    return wrap<tavuro_TavuroJwtToken>(std::make_shared<tavuro::TavuroJwtToken>(
        value, tavuro::Instant(std::chrono::duration<double>(expiration))));
  });
}

char* tavuro_TavuroJwtToken_value(const tavuro_TavuroJwtToken* token) {
  if (token == nullptr) return nullptr;
  return guarded<char*>(nullptr, [&] { return copyText(token->value->value()); });
}

double tavuro_TavuroJwtToken_expiration(const tavuro_TavuroJwtToken* token) {
  if (token == nullptr) return 0.0;
  return guarded<double>(0.0,
                         [&] { return token->value->expiration().time_since_epoch().count(); });
}

bool tavuro_TavuroJwtToken_isValid(const tavuro_TavuroJwtToken* token) {
  if (token == nullptr) return false;
  return guarded<bool>(false, [&] { return token->value->isValid(); });
}

tavuro_TavuroError* tavuro_TavuroError_initWithErrorCode_errorDescription(
    int64_t errorCode, const char* errorDescription) {
  return guarded<tavuro_TavuroError*>(nullptr, [&] {
    return wrap<tavuro_TavuroError>(
        std::make_shared<tavuro::TavuroError>(errorCode, optionalText(errorDescription)));
  });
}

tavuro_TavuroError* tavuro_TavuroError_newInstance(void) {
  return guarded<tavuro_TavuroError*>(
      nullptr, [&] { return wrap<tavuro_TavuroError>(tavuro::TavuroError::newInstance()); });
}

int64_t tavuro_TavuroError_errorCode(const tavuro_TavuroError* error) {
  if (error == nullptr) return 0;
  return guarded<int64_t>(0, [&] { return error->value->errorCode(); });
}

void tavuro_TavuroError_setErrorCode(tavuro_TavuroError* error, int64_t errorCode) {
  if (error == nullptr) return;
  guardedVoid([&] { error->value->setErrorCode(errorCode); });
}

char* tavuro_TavuroError_errorDescription(const tavuro_TavuroError* error) {
  if (error == nullptr) return nullptr;
  return guarded<char*>(nullptr,
                        [&] { return copyOptionalText(error->value->errorDescription()); });
}

void tavuro_TavuroError_setErrorDescription(tavuro_TavuroError* error,
                                            const char* errorDescription) {
  if (error == nullptr) return;
  guardedVoid([&] { error->value->setErrorDescription(optionalText(errorDescription)); });
}

tavuro_Image* tavuro_Image_newInstance(void) {
  return guarded<tavuro_Image*>(nullptr,
                                [&] { return wrap<tavuro_Image>(tavuro::Image::newInstance()); });
}

tavuro_Image* tavuro_Image_newInstanceWithImage_data(tavuro_Picture* image,
                                                     tavuro_ByteBuffer* data) {
  return guarded<tavuro_Image*>(nullptr, [&] {
    return wrap<tavuro_Image>(tavuro::Image::newInstance(objectOf(image), objectOf(data)));
  });
}

tavuro_Picture* tavuro_Image_image(const tavuro_Image* record) {
  if (record == nullptr) return nullptr;
  return guarded<tavuro_Picture*>(nullptr,
                                  [&] { return wrap<tavuro_Picture>(record->value->image()); });
}

void tavuro_Image_setImage(tavuro_Image* record, tavuro_Picture* image) {
  if (record == nullptr) return;
  guardedVoid([&] { record->value->setImage(objectOf(image)); });
}

tavuro_ByteBuffer* tavuro_Image_data(const tavuro_Image* record) {
  if (record == nullptr) return nullptr;
  return guarded<tavuro_ByteBuffer*>(
      nullptr, [&] { return wrap<tavuro_ByteBuffer>(record->value->data()); });
}

void tavuro_Image_setData(tavuro_Image* record, tavuro_ByteBuffer* data) {
  if (record == nullptr) return;
  guardedVoid([&] { record->value->setData(objectOf(data)); });
}

int64_t tavuro_Image_dpi(const tavuro_Image* record) {
  if (record == nullptr) return 0;
  return guarded<int64_t>(0, [&] { return record->value->dpi(); });
}

void tavuro_Image_setDpi(tavuro_Image* record, int64_t dpi) {
  if (record == nullptr) return;
  guardedVoid([&] { record->value->setDpi(dpi); });
}

tavuro_TavuroError* tavuro_Image_error(const tavuro_Image* record) {
  if (record == nullptr) return nullptr;
  return guarded<tavuro_TavuroError*>(
      nullptr, [&] { return wrap<tavuro_TavuroError>(record->value->error()); });
}

void tavuro_Image_setError(tavuro_Image* record, tavuro_TavuroError* error) {
  if (record == nullptr) return;
  guardedVoid([&] { record->value->setError(objectOf(error)); });
}

bool tavuro_Image_isCorrectAspectRatio(const tavuro_Image* record) {
  if (record == nullptr) return false;
  return guarded<bool>(false, [&] { return record->value->isCorrectAspectRatio(); });
}

void tavuro_Image_setIsCorrectAspectRatio(tavuro_Image* record, bool value) {
  if (record == nullptr) return;
  guardedVoid([&] { record->value->setIsCorrectAspectRatio(value); });
}

float tavuro_Image_aspectRatio(const tavuro_Image* record) {
  if (record == nullptr) return 0.0F;
  return guarded<float>(0.0F, [&] { return record->value->aspectRatio(); });
}

void tavuro_Image_setAspectRatio(tavuro_Image* record, float aspectRatio) {
  if (record == nullptr) return;
  guardedVoid([&] { record->value->setAspectRatio(aspectRatio); });
}

bool tavuro_Image_isPassport(const tavuro_Image* record) {
  if (record == nullptr) return false;
  return guarded<bool>(false, [&] { return record->value->isPassport(); });
}

void tavuro_Image_setIsPassport(tavuro_Image* record, bool isPassport) {
  if (record == nullptr) return;
  guardedVoid([&] { record->value->setIsPassport(isPassport); });
}

int64_t tavuro_DocumentProcessingMode_processingMode(void) {
  return guarded<int64_t>(
      0, [&] { return tavuro::rawValue(tavuro::DocumentProcessingMode::processingMode()); });
}

void tavuro_DocumentProcessingMode_setDataCaptureProcessingMode(void) {
  guardedVoid([&] { tavuro::DocumentProcessingMode::setDataCaptureProcessingMode(); });
}

tavuro_JsonDictionary* tavuro_Utils_convertToDictionaryWithText(const char* text) {
  return guarded<tavuro_JsonDictionary*>(nullptr, [&] {
    return wrap<tavuro_JsonDictionary>(tavuro::Utils::convertToDictionary(optionalText(text)));
  });
}

int64_t tavuro_Utils_getIntValueWithJsonDict_key(const tavuro_JsonDictionary* jsonDict,
                                                 const char* key) {
  if (key == nullptr) return 0;
  return guarded<int64_t>(0,
                          [&] { return tavuro::Utils::getIntValue(optionalValue(jsonDict), key); });
}

double tavuro_Utils_getDoubleValueWithJsonDict_key(const tavuro_JsonDictionary* jsonDict,
                                                   const char* key) {
  if (key == nullptr) return 0.0;
  return guarded<double>(
      0.0, [&] { return tavuro::Utils::getDoubleValue(optionalValue(jsonDict), key); });
}

char* tavuro_Utils_getStringValueWithJsonDict_key(const tavuro_JsonDictionary* jsonDict,
                                                  const char* key) {
  if (key == nullptr) return copyText("");
  return guarded<char*>(nullptr, [&] {
    return copyText(tavuro::Utils::getStringValue(optionalValue(jsonDict), key));
  });
}

bool tavuro_Utils_getBooleanValueWithJsonDict_key(const tavuro_JsonDictionary* jsonDict,
                                                  const char* key) {
  if (key == nullptr) return false;
  return guarded<bool>(
      false, [&] { return tavuro::Utils::getBooleanValue(optionalValue(jsonDict), key); });
}

tavuro_JsonDictionary* tavuro_Utils_getObjectValueWithJsonDict_key(
    const tavuro_JsonDictionary* jsonDict, const char* key) {
  if (key == nullptr) return nullptr;
  return guarded<tavuro_JsonDictionary*>(nullptr, [&] {
    return wrap<tavuro_JsonDictionary>(tavuro::Utils::getObjectValue(optionalValue(jsonDict), key));
  });
}

tavuro_JsonArray* tavuro_Utils_getArrayValueWithJsonDict_key(const tavuro_JsonDictionary* jsonDict,
                                                             const char* key) {
  if (key == nullptr) return nullptr;
  return guarded<tavuro_JsonArray*>(nullptr, [&] {
    return wrap<tavuro_JsonArray>(tavuro::Utils::getArrayValue(optionalValue(jsonDict), key));
  });
}

tavuro_JsonArray* tavuro_Utils_getArrayValueFromJsonWithJsonDict_key(
    const tavuro_JsonDictionary* jsonDict, const char* key) {
  if (key == nullptr) return nullptr;
  return guarded<tavuro_JsonArray*>(nullptr, [&] {
    return wrap<tavuro_JsonArray>(
        tavuro::Utils::getArrayValueFromJson(optionalValue(jsonDict), key));
  });
}

char* tavuro_Utils_dateFieldToDateStringWithDateStr(const char* dateStr) {
  return guarded<char*>(nullptr, [&] {
    return copyOptionalText(tavuro::Utils::dateFieldToDateString(optionalText(dateStr)));
  });
}

double tavuro_Utils_SENT_IMAGE_QUALITY_JPEG_COMPRESSION(void) {
  return guarded<double>(0.0, [&] { return tavuro::Utils::SENT_IMAGE_QUALITY_JPEG_COMPRESSION(); });
}

void tavuro_Utils_setSENT_IMAGE_QUALITY_JPEG_COMPRESSION(double quality) {
  guardedVoid([&] { tavuro::Utils::setSENT_IMAGE_QUALITY_JPEG_COMPRESSION(quality); });
}

char* tavuro_Utils_SDK_VERSION_CODE(void) {
  return guarded<char*>(nullptr, [&] { return copyText(tavuro::Utils::SDK_VERSION_CODE()); });
}

void tavuro_Utils_setSDK_VERSION_CODE(const char* versionCode) {
  if (versionCode == nullptr) return;
  guardedVoid([&] { tavuro::Utils::setSDK_VERSION_CODE(versionCode); });
}

TAVURO_C_CODE(ERROR_InvalidCredentials)
TAVURO_C_CODE(ERROR_InitializationNotFinished)
TAVURO_C_CODE(ERROR_Network)
TAVURO_C_CODE(ERROR_InvalidJson)
TAVURO_C_CODE(ERROR_CouldNotCrop)
TAVURO_C_CODE(ERROR_CouldNotCreateConnectInstance)
TAVURO_C_CODE(ERROR_CouldNotUploadConnectImage)
TAVURO_C_CODE(ERROR_CouldNotUploadConnectBarcode)
TAVURO_C_CODE(ERROR_CouldNotGetConnectData)
TAVURO_C_CODE(ERROR_CouldNotClassifyDocument)
TAVURO_C_CODE(ERROR_LowResolutionImage)
TAVURO_C_CODE(ERROR_BlurryImage)
TAVURO_C_CODE(ERROR_ImageWithGlare)
TAVURO_C_CODE(ERROR_CouldNotGetIPLivenessToken)
TAVURO_C_CODE(ERROR_NotALiveFace)
TAVURO_C_CODE(ERROR_CouldNotAccessLivenessData)
TAVURO_C_CODE(ERROR_CouldNotAccessCredential)
TAVURO_C_CODE(ERROR_USER_CANCELED_ACTIVITY)
TAVURO_C_CODE(ERROR_INVALID_PARAMETER)
TAVURO_C_CODE(ERROR_KelmoInvalidFormat)
TAVURO_C_CODE(ERROR_EChipReadError)
TAVURO_C_CODE(ERROR_InvalidNfcTag)
TAVURO_C_CODE(ERROR_InvalidNfcKeyFormatting)

TAVURO_C_DESCRIPTION(ERROR_DESC_InvalidCredentials)
TAVURO_C_DESCRIPTION(ERROR_DESC_InvalidEndpoint)
TAVURO_C_DESCRIPTION(ERROR_DESC_Network)
TAVURO_C_DESCRIPTION(ERROR_DESC_InitializationNotFinished)
TAVURO_C_DESCRIPTION(ERROR_DESC_InvalidJson)
TAVURO_C_DESCRIPTION(ERROR_DESC_CouldNotCrop)
TAVURO_C_DESCRIPTION(ERROR_DESC_BarcodeCaptureFailed)
TAVURO_C_DESCRIPTION(ERROR_DESC_BarcodeCaptureTimedOut)
TAVURO_C_DESCRIPTION(ERROR_DESC_CouldNotCreateConnectInstance)
TAVURO_C_DESCRIPTION(ERROR_DESC_CouldNotUploadConnectImage)
TAVURO_C_DESCRIPTION(ERROR_DESC_CouldNotUploadConnectBarcode)
TAVURO_C_DESCRIPTION(ERROR_DESC_CouldNotGetConnectData)
TAVURO_C_DESCRIPTION(ERROR_DESC_CardWidthNotSet)
TAVURO_C_DESCRIPTION(ERROR_DESC_CouldNotGetHealthCardData)
TAVURO_C_DESCRIPTION(ERROR_DESC_CouldNotClassifyDocument)
TAVURO_C_DESCRIPTION(ERROR_DESC_LowResolutionImage)
TAVURO_C_DESCRIPTION(ERROR_DESC_BlurryImage)
TAVURO_C_DESCRIPTION(ERROR_DESC_ImageWithGlare)
TAVURO_C_DESCRIPTION(ERROR_DESC_CouldNotGetIPLivenessToken)
TAVURO_C_DESCRIPTION(ERROR_DESC_NotALiveFace)
TAVURO_C_DESCRIPTION(ERROR_DESC_CouldNotAccessLivenessData)
TAVURO_C_DESCRIPTION(ERROR_DESC_ERROR_CouldNotAccessCredential)
TAVURO_C_DESCRIPTION(ERROR_DESC_USER_CANCELED_ACTIVITY)
TAVURO_C_DESCRIPTION(ERROR_DESC_INVALID_PARAMETERS)
TAVURO_C_DESCRIPTION(ERROR_DESC_KelmoInvalidFormat)
TAVURO_C_DESCRIPTION(ERROR_DESC_EChipReadError)
TAVURO_C_DESCRIPTION(ERROR_DESC_InvalidNfcTag)
TAVURO_C_DESCRIPTION(ERROR_DESC_InvalidNfcKeyFormatting)
// END generated: wrappers

#undef TAVURO_C_REFERENCE_COUNTING
#undef TAVURO_C_CODE
#undef TAVURO_C_DESCRIPTION

}  // extern "C"
