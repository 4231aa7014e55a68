/* The C interface from C: every kind of handle through its life and every
 * text through its ownership rule. Run under LeakSanitizer, a missing or
 * doubled release shows up as a leak or a double free. What the values mean
 * is the C++ tests' business; here, what C adds: copies, sharing, NULL. */
#define _POSIX_C_SOURCE 200809L

#include <TavuroCommon/TavuroCommon_c.h>

#include <pthread.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

static int failures = 0;

#define CHECK(condition)                                                            \
  do {                                                                              \
    if (!(condition)) {                                                             \
      fprintf(stderr, "%s:%d: CHECK failed: %s\n", __FILE__, __LINE__, #condition); \
      ++failures;                                                                   \
    }                                                                               \
  } while (0)

static int same_text(const char* a, const char* b) {
  return (a == NULL || b == NULL) ? a == b : strcmp(a, b) == 0;
}

/* Compares an owned text with `expected` (NULL: absent), then frees it. */
#define CHECK_TEXT(owned, expected) check_text((owned), (expected), __LINE__)
static void check_text(char* owned, const char* expected, int line) {
  if (!same_text(owned, expected)) {
    fprintf(stderr, "line %d: text \"%s\", expected \"%s\"\n", line, owned ? owned : "(absent)",
            expected ? expected : "(absent)");
    ++failures;
  }
  tavuro_string_free(owned);
}

/* A payload of {"exp":4102444800} (year 2100) and of {"exp":1}. */
#define LIVE_TOKEN "eyJhbGciOiJub25lIn0.eyJleHAiOjQxMDI0NDQ4MDB9.sig"
#define EXPIRED_TOKEN "eyJhbGciOiJub25lIn0.eyJleHAiOjF9.sig"

/* The buffer form of a header: absent as false with length 0; nothing
 * written into a buffer one byte short; the bytes alone into an exact one; a
 * NUL after them when there is room. */
static void check_header_copy(bool (*copy)(char*, size_t, size_t*), const char* expected) {
  char buffer[128];
  size_t length = 99;
  const size_t n = expected != NULL ? strlen(expected) : 0;
  memset(buffer, '#', sizeof buffer);
  CHECK(copy(NULL, 0, &length) == (expected != NULL) && length == n);
  if (expected == NULL || n >= sizeof buffer) return;
  CHECK(copy(buffer, n - 1, &length) && length == n && buffer[0] == '#');
  CHECK(copy(buffer, n, NULL) && memcmp(buffer, expected, n) == 0 && buffer[n] == '#');
  CHECK(copy(buffer, sizeof buffer, &length) && strcmp(buffer, expected) == 0);
}

static void errors(void) {
  char description[] = "Network problem";
  tavuro_TavuroError* error = tavuro_TavuroError_newInstance();
  CHECK_TEXT(tavuro_TavuroError_errorDescription(error), NULL);
  tavuro_TavuroError_setErrorCode(error, tavuro_TavuroErrorCodes_ERROR_Network());
  tavuro_TavuroError_setErrorDescription(error, description);
  description[0] = 'X'; /* the record holds its own copy */
  CHECK_TEXT(tavuro_TavuroError_errorDescription(error), "Network problem");
  tavuro_TavuroError_setErrorDescription(error, "");
  CHECK_TEXT(tavuro_TavuroError_errorDescription(error), "");
  CHECK(tavuro_TavuroError_retain(error) == error);
  tavuro_TavuroError_release(error);
  CHECK(tavuro_TavuroError_errorCode(error) == -5); /* one reference still held */
  tavuro_TavuroError_release(error);
  tavuro_TavuroError_release(NULL);
  error = tavuro_TavuroError_initWithErrorCode_errorDescription(-29, NULL);
  CHECK(tavuro_TavuroError_errorCode(error) == -29);
  tavuro_TavuroError_release(error);
  /* Static texts: compared, never freed. */
  CHECK(strcmp(tavuro_TavuroErrorDescriptions_ERROR_DESC_INVALID_PARAMETERS(),
               "Invalid Parameters.") == 0 &&
        tavuro_TavuroErrorCodes_ERROR_InvalidNfcKeyFormatting() == -62);

  /* The lookup fills in the table's entry, its text the constant itself; the
   * whole table lists the codes from -1 down, then the texts without one. */
  tavuro_TavuroErrorInfo all[64], info = {1, NULL, NULL, NULL};
  const size_t count = tavuro_TavuroErrorInfo_all(all, 64);
  CHECK(count > 1 && count <= 64 && tavuro_TavuroErrorInfo_all(NULL, 0) == count);
  CHECK(tavuro_TavuroErrorInfo_forCode(-27, &info) && info.code == -27 &&
        same_text(info.codeName, "ERROR_CouldNotAccessCredential") &&
        same_text(info.descriptionName, "ERROR_DESC_ERROR_CouldNotAccessCredential") &&
        info.description ==
            tavuro_TavuroErrorDescriptions_ERROR_DESC_ERROR_CouldNotAccessCredential());
  CHECK(all[0].code == -1 && all[count - 1].codeName == NULL && all[count - 1].code == 0);
  for (size_t i = 1; i < count; ++i) CHECK(!all[i].codeName || all[i].code < all[i - 1].code);
  CHECK(!tavuro_TavuroErrorInfo_forCode(0, NULL) && !tavuro_TavuroErrorInfo_forCode(-63, NULL));
}

static void image_record(void) {
  const uint8_t gray[4] = {0, 85, 170, 255};
  size_t size = 0;
  CHECK(tavuro_Picture_make(2, 2, TAVURO_PIXEL_FORMAT_RGB8, gray, sizeof gray) == NULL);
  tavuro_Picture* picture = tavuro_Picture_make(2, 2, TAVURO_PIXEL_FORMAT_GRAY8, gray, sizeof gray);
  tavuro_ByteBuffer* buffer = tavuro_ByteBuffer_initWithBytes_length("\xFF\xD8", 2);
  tavuro_Image* image = tavuro_Image_newInstanceWithImage_data(picture, buffer);
  tavuro_Picture_release(picture); /* the record keeps its own reference */
  picture = tavuro_Image_image(image);
  CHECK(tavuro_Picture_width(picture) == 2 && tavuro_Picture_pixels(picture, &size)[3] == 255);
  tavuro_Picture_release(picture);

  /* The buffer is shared, not copied. */
  CHECK(tavuro_ByteBuffer_appendBytes_length(buffer, "\xFF\xD9", 2) &&
        !tavuro_ByteBuffer_appendBytes_length(NULL, "\xFF", 1));
  tavuro_ByteBuffer_release(buffer);
  buffer = tavuro_Image_data(image);
  CHECK(tavuro_ByteBuffer_length(buffer) == 4 && tavuro_ByteBuffer_bytes(buffer)[3] == 0xD9);
  tavuro_ByteBuffer_release(buffer);

  tavuro_TavuroError* error = tavuro_TavuroError_newInstance();
  CHECK(tavuro_Image_error(image) == NULL);
  tavuro_Image_setError(image, error);
  tavuro_TavuroError_setErrorCode(error, -22);
  tavuro_TavuroError_release(error);
  error = tavuro_Image_error(image);
  CHECK(tavuro_TavuroError_errorCode(error) == -22);
  tavuro_TavuroError_release(error);

  /* Points are copied in both directions. */
  tavuro_Point points[3] = {{1, 2}, {3, 4}, {5, 6}}, out[2] = {{0, 0}, {0, 0}};
  CHECK(tavuro_Image_points(image, NULL, 0) == 0);
  tavuro_Image_setPoints(image, points, 3);
  points[0].x = 99;
  CHECK(tavuro_Image_points(image, out, 2) == 3 && out[0].x == 1 && out[1].y == 4);
  tavuro_Image_setAspectRatio(image, 1.5F);
  tavuro_Image_setIsPassport(image, true);
  tavuro_Image_setData(image, NULL);
  CHECK(tavuro_Image_aspectRatio(image) == 1.5F && tavuro_Image_isPassport(image) &&
        tavuro_Image_data(image) == NULL);
  tavuro_Image_release(image);
}

static char package_order[8];
static void start_package(void* context) {
  strncat(package_order, (const char*)context, 1);
}
static void started(void* context, tavuro_TavuroError* error) {
  CHECK(error == NULL && strcmp(package_order, (const char*)context) == 0);
  strcat(package_order, "!");
}

static void initializer(void) {
  /* A null entry is skipped, a duplicate runs again, the callback comes last. */
  const tavuro_ITavuroPackage packages[4] = {
      {start_package, "a"}, {NULL, NULL}, {start_package, "b"}, {start_package, "a"}};
  tavuro_TavuroInitializer* starter = tavuro_TavuroInitializer_init();
  tavuro_TavuroInitializer_initializeWithPackages_callback(starter, packages, 4, started, "aba");
  tavuro_TavuroInitializer_initializeWithPackages_callback(starter, NULL, 0, started, "aba!");
  CHECK(strcmp(package_order, "aba!!") == 0);
  tavuro_TavuroInitializer_release(starter);
}

static void json(void) {
  tavuro_JsonDictionary* answer = tavuro_Utils_convertToDictionaryWithText(
      "{\"n\":12,\"x\":12.5,\"s\":\"a\\u0000b\",\"ok\":true,\"list\":[1,{\"k\":\"v\"}],\"nil\":"
      "null}");
  CHECK(tavuro_JsonDictionary_count(answer) == 6 &&
        tavuro_Utils_getIntValueWithJsonDict_key(answer, "n") == 12 &&
        tavuro_Utils_getDoubleValueWithJsonDict_key(answer, "x") == 12.5 &&
        tavuro_Utils_getBooleanValueWithJsonDict_key(answer, "ok") &&
        tavuro_Utils_getObjectValueWithJsonDict_key(answer, "list") == NULL &&
        tavuro_JsonDictionary_keyAtIndex(answer, 6) == NULL &&
        tavuro_JsonDictionary_objectForKey(answer, "missing") == NULL);
  CHECK_TEXT(tavuro_Utils_getStringValueWithJsonDict_key(answer, "n"), "");
  CHECK_TEXT(tavuro_Utils_getStringValueWithJsonDict_key(NULL, "s"), "");
  CHECK_TEXT(tavuro_JsonDictionary_keyAtIndex(answer, 4), "list");
  tavuro_JsonValue* value = tavuro_JsonDictionary_objectForKey(answer, "s");
  size_t length = 0;
  char* bytes = tavuro_JsonValue_stringValue(value, &length); /* NUL inside */
  CHECK(length == 3 && bytes[1] == '\0' && bytes[2] == 'b');
  tavuro_string_free(bytes);
  tavuro_JsonValue_release(value);
  value = tavuro_JsonDictionary_objectForKey(answer, "nil");
  CHECK(value != NULL && tavuro_JsonValue_kind(value) == TAVURO_JSON_NULL);
  tavuro_JsonValue_release(value);

  /* An array outlives the dictionary it came from. */
  tavuro_JsonArray* list = tavuro_Utils_getArrayValueWithJsonDict_key(answer, "list");
  CHECK(tavuro_JsonArray_count(list) == 2);
  tavuro_JsonArray_release(list);
  list = tavuro_Utils_getArrayValueFromJsonWithJsonDict_key(answer, "list");
  tavuro_JsonDictionary_release(answer);
  int64_t number = 0;
  bool flag = false;
  value = tavuro_JsonArray_objectAtIndex(list, 0);
  CHECK(tavuro_JsonArray_count(list) == 2 && tavuro_JsonArray_objectAtIndex(list, 2) == NULL);
  CHECK(tavuro_JsonValue_int64Value(value, &number) && number == 1 &&
        !tavuro_JsonValue_boolValue(value, &flag));
  tavuro_JsonValue_release(value);
  value = tavuro_JsonArray_objectAtIndex(list, 1);
  tavuro_JsonDictionary* inner = tavuro_JsonValue_dictionaryValue(value);
  CHECK_TEXT(tavuro_Utils_getStringValueWithJsonDict_key(inner, "k"), "v");
  tavuro_JsonDictionary_release(inner);
  tavuro_JsonValue_release(value);
  tavuro_JsonArray_release(list);
  CHECK(tavuro_Utils_convertToDictionaryWithText("[1,2]") == NULL &&
        tavuro_Utils_convertToDictionaryWithText(NULL) == NULL);
}

static void tokens(void) {
  tavuro_TavuroJwtParser* parser = tavuro_TavuroJwtParser_init();
  tavuro_ByteBuffer* decoded = tavuro_TavuroJwtParser_base64UrlDecode(parser, "eyJhIjoxfQ");
  CHECK(tavuro_ByteBuffer_length(decoded) == 7 &&
        memcmp(tavuro_ByteBuffer_bytes(decoded), "{\"a\":1}", 7) == 0);
  tavuro_ByteBuffer_release(decoded);
  tavuro_JsonDictionary* claims = tavuro_TavuroJwtParser_decodeWithJwtToken(parser, "x.!!!!.y");
  CHECK(claims != NULL && tavuro_JsonDictionary_count(claims) == 0);
  tavuro_JsonDictionary_release(claims);
  CHECK(tavuro_TavuroJwtParser_decodeJWTPart(parser, "WzFd") == NULL); /* [1] */
  tavuro_TavuroJwtToken* live = tavuro_TavuroJwtParser_parseTokenWithJwtToken(parser, LIVE_TOKEN);
  tavuro_TavuroJwtToken* made = tavuro_TavuroJwtToken_initWithValue_expiration("", 1.0);
  CHECK(tavuro_TavuroJwtToken_expiration(live) == 4102444800.0 &&
        tavuro_TavuroJwtToken_isValid(live) && !tavuro_TavuroJwtToken_isValid(made));
  CHECK_TEXT(tavuro_TavuroJwtToken_value(live), LIVE_TOKEN);
  CHECK_TEXT(tavuro_TavuroJwtToken_value(made), "");
  tavuro_TavuroJwtToken_release(live);
  tavuro_TavuroJwtToken_release(made);
  tavuro_TavuroJwtParser_release(parser);
}

static void credential(const char* directory) {
  char path[512], saved[4096] = "";
  snprintf(path, sizeof path, "%s/TavuroConfig.plist", directory);
  FILE* file = fopen(path, "w");
  if (file != NULL) {
    fputs(
        "<plist><dict><key>tavuro_username</key><string>demo</string><key>tavuro_password</key>"
        "<string>secret</string><key>kelmo_endpoint</key><string>https://k/</string></dict>"
        "</plist>",
        file);
    fclose(file);
  }
  tavuro_string_free(tavuro_resourceDirectory()); /* none named, none in the environment */
  setenv("TAVURO_RESOURCE_PATH", directory, 1);
  CHECK_TEXT(tavuro_resourceDirectory(), directory);
  unsetenv("TAVURO_RESOURCE_PATH");
  tavuro_setResourceDirectory(directory);
  CHECK_TEXT(tavuro_resourceDirectory(), directory);
  CHECK_TEXT(tavuro_Credential_username(), "demo");
  CHECK_TEXT(tavuro_Credential_subscription(), NULL);
  CHECK_TEXT(tavuro_Credential_getTavuroAuthHeader(), "Basic ZGVtbzpzZWNyZXQ=");
  check_header_copy(tavuro_Credential_copyTavuroAuthHeader, "Basic ZGVtbzpzZWNyZXQ=");
  uint64_t revision = tavuro_Credential_headerRevision();
  CHECK(!tavuro_Credential_isCredentialValidWithEndpoint("https://f/"));

  /* The store hands out its own record: a change is seen by a later reader,
   * and the next save writes it (and not kelmo). */
  tavuro_Endpoints* endpoints = tavuro_Credential_endpoints();
  CHECK_TEXT(tavuro_Endpoints_kelmoEndpoint(endpoints), "https://k/");
  tavuro_Endpoints_setFrmEndpoint(endpoints, "https://f/");
  tavuro_Endpoints_release(endpoints);
  endpoints = tavuro_Credential_endpoints();
  CHECK_TEXT(tavuro_Endpoints_frmEndpoint(endpoints), "https://f/");
  tavuro_Endpoints_release(endpoints);
  tavuro_Credential_setSubscriptionWithSubscription("sub");
  file = fopen(path, "rb");
  CHECK(file != NULL && fread(saved, 1, sizeof saved - 1, file) > 0);
  if (file != NULL) fclose(file);
  CHECK(strstr(saved, "https://f/") != NULL && strstr(saved, "kelmo_endpoint") == NULL);
  CHECK(tavuro_Credential_isCredentialValidWithEndpoint("https://f/"));

  /* A record set from C is kept by the store after the caller lets go. */
  endpoints = tavuro_Endpoints_newInstance();
  tavuro_Endpoints_setIdEndpoint(endpoints, "https://i/");
  tavuro_Credential_setEndpointsWithEndpoints(endpoints);
  tavuro_Endpoints_release(endpoints);
  endpoints = tavuro_Credential_endpoints();
  CHECK_TEXT(tavuro_Endpoints_idEndpoint(endpoints), "https://i/");
  CHECK_TEXT(tavuro_Endpoints_frmEndpoint(endpoints), NULL);
  tavuro_Endpoints_release(endpoints);

  CHECK(!tavuro_Credential_setTokenWithToken(EXPIRED_TOKEN) &&
        !tavuro_Credential_setTokenWithToken(NULL) &&
        tavuro_Credential_setTokenWithToken(LIVE_TOKEN));
  CHECK_TEXT(tavuro_Credential_getTavuroAuthHeader(), "Bearer " LIVE_TOKEN);
  check_header_copy(tavuro_Credential_copyTavuroAuthHeader, "Bearer " LIVE_TOKEN);
  /* Every change of a header moves the revision on. */
  CHECK(tavuro_Credential_headerRevision() != revision);
  revision = tavuro_Credential_headerRevision();
  CHECK(tavuro_Credential_removeToken() && !tavuro_Credential_removeToken());
  CHECK(tavuro_Credential_headerRevision() != revision);
  revision = tavuro_Credential_headerRevision();
  tavuro_Credential_setPasswordWithPassword(NULL);
  CHECK(tavuro_Credential_headerRevision() != revision);
  CHECK_TEXT(tavuro_Credential_getBasicAuthHeader(), NULL);
  check_header_copy(tavuro_Credential_copyBasicAuthHeader, NULL);
  remove(path);
}

static void settings_and_mode(void) {
  CHECK(tavuro_DocumentProcessingMode_processingMode() == TAVURO_PROCESSING_MODE_STANDARD);
  tavuro_DocumentProcessingMode_setDataCaptureProcessingMode();
  CHECK(tavuro_DocumentProcessingMode_processingMode() == TAVURO_PROCESSING_MODE_DATA_CAPTURE);
  tavuro_Utils_setSENT_IMAGE_QUALITY_JPEG_COMPRESSION(1.5);
  CHECK(tavuro_Utils_SENT_IMAGE_QUALITY_JPEG_COMPRESSION() == 1.5);
  tavuro_Utils_setSDK_VERSION_CODE("");
  tavuro_Utils_setSDK_VERSION_CODE(NULL); /* ignored: the setting is never absent */
  CHECK_TEXT(tavuro_Utils_SDK_VERSION_CODE(), "");
  CHECK_TEXT(tavuro_Utils_dateFieldToDateStringWithDateStr("/Date(1234567890000)/"), "02-13-2009");
}

/* Reference counts are atomic: handles of one record may be retained and
 * released on several threads at once (checked by ThreadSanitizer). */
static void* churn(void* handle) {
  for (int i = 0; i < 2000; ++i) {
    tavuro_Endpoints* mine = tavuro_Endpoints_retain((tavuro_Endpoints*)handle);
    tavuro_string_free(tavuro_Endpoints_kelmoEndpoint(mine));
    tavuro_Endpoints_release(mine);
  }
  return NULL;
}

int main(void) {
  char directory[] = "/tmp/tavuro_c_api_XXXXXX";
  CHECK(mkdtemp(directory) != NULL);
  errors();
  image_record();
  initializer();
  json();
  tokens();
  credential(directory);
  settings_and_mode();
  tavuro_Endpoints* shared = tavuro_Endpoints_newInstance();
  tavuro_Endpoints_setKelmoEndpoint(shared, "https://k/");
  pthread_t workers[2];
  for (int i = 0; i < 2; ++i) CHECK(pthread_create(&workers[i], NULL, churn, shared) == 0);
  for (int i = 0; i < 2; ++i) pthread_join(workers[i], NULL);
  CHECK_TEXT(tavuro_Endpoints_kelmoEndpoint(shared), "https://k/");
  tavuro_Endpoints_release(shared);
  rmdir(directory);
  return failures == 0 ? 0 : 1;
}
