/* TavuroCommon_c.h: the C interface of TavuroCommon.
 *
 * For hosts that do not speak C++: C, Swift, Kotlin through JNI, Python
 * ctypes, any foreign-function interface. Every member is reachable under its
 * object-interface name: the function is "tavuro_" + class + "_" + the
 * selector with each ":" turned into "_" and a final "_" dropped, so
 * `setTokenWithToken:` of `Credential` is tavuro_Credential_setTokenWithToken
 * and `initWithErrorCode:errorDescription:` of `TavuroError` is
 * tavuro_TavuroError_initWithErrorCode_errorDescription.
 *
 *   #include <TavuroCommon/TavuroCommon_c.h>
 *
 * Ownership rules. They hold for every function below; a function states an
 * exception where it has one.
 *
 *  1. Texts are NUL-terminated UTF-8. An absent text is NULL; an empty text
 *     is "" and is not the same.
 *  2. A text argument (const char*) is only read during the call. The
 *     library copies what it keeps; the caller keeps ownership.
 *  3. A text result of type char* is a new copy that the caller owns and
 *     must free with tavuro_string_free() (never with free()). NULL means
 *     absent; tavuro_string_free(NULL) does nothing.
 *  4. A text result of type const char* (the error description constants)
 *     lives for the whole process and must not be freed.
 *  5. Records, JSON values, pictures and byte buffers cross as opaque,
 *     reference-counted handles. A function that returns a handle hands the
 *     caller one reference, which the caller gives back with the type's
 *     _release function. NULL means absent. tavuro_X_retain(h) adds a
 *     reference and returns h; every retain needs its own release.
 *     Releasing NULL does nothing.
 *  6. A handle argument is only borrowed during the call. When the library
 *     keeps the object (a setter, a factory), it takes a reference of its
 *     own: the caller still releases its own reference as usual.
 *  7. Two handles may stand for the same object: a getter returns a new
 *     handle each time. Records are shared, not copied, so a change made
 *     through one handle is seen through every other handle of that object
 *     (the store's Endpoints record, for instance).
 *  8. Handles given to a callback are borrowed for the duration of the
 *     callback; retain one to keep it.
 *  9. Byte and pixel pointers returned by tavuro_ByteBuffer_bytes and
 *     tavuro_Picture_pixels belong to the handle's object: they stay valid
 *     while a reference to the object is held and, for a byte buffer, until
 *     it is next resized or appended to.
 * 10. No function lets an exception or a failure unwind into the caller. A
 *     failure gives the documented default, NULL or false. Handle reference
 *     counts are atomic; everything else follows the thread rules of
 *     TavuroCommon.h.
 * 11. Two calls end the process on purpose, as the C++ interface does: a
 *     token without any "." given to tavuro_TavuroJwtParser_decodeWithJwtToken,
 *     tavuro_TavuroJwtParser_parseTokenWithJwtToken or
 *     tavuro_Credential_setTokenWithToken, and NULL given to
 *     tavuro_Utils_dateFieldToDateStringWithDateStr.
 *
 * The parts between "BEGIN generated" and "END generated" lines are written
 * from interface/TavuroCommon.json by scripts/generate_interface.py: change
 * the table, not them.
 */

#ifndef TAVUROCOMMON_TAVUROCOMMON_C_H_
#define TAVUROCOMMON_TAVUROCOMMON_C_H_

/* A header of C as much as of C++: its includes and typedefs keep the spelling
 * C needs. NOLINTBEGIN(modernize-deprecated-headers, modernize-use-using) */
#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

#include "TavuroCommon/TavuroExport.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ======================================================================== */
/* Handle types                                                             */
/* ======================================================================== */

/* BEGIN generated from interface/TavuroCommon.json: handles */
typedef struct tavuro_TavuroInitializer tavuro_TavuroInitializer;
typedef struct tavuro_Endpoints tavuro_Endpoints;
typedef struct tavuro_TavuroJwtParser tavuro_TavuroJwtParser;
typedef struct tavuro_TavuroJwtToken tavuro_TavuroJwtToken;
typedef struct tavuro_TavuroError tavuro_TavuroError;
typedef struct tavuro_Image tavuro_Image;
typedef struct tavuro_JsonDictionary tavuro_JsonDictionary;
typedef struct tavuro_JsonArray tavuro_JsonArray;
typedef struct tavuro_JsonValue tavuro_JsonValue;
typedef struct tavuro_Picture tavuro_Picture;
typedef struct tavuro_ByteBuffer tavuro_ByteBuffer;
/* END generated: handles */

/* ======================================================================== */
/* Texts and the resource directory                                         */
/* ======================================================================== */

/** Frees a text returned as char* by this interface. NULL is ignored. */
TAVURO_EXPORT void tavuro_string_free(char* text);

/* BEGIN generated from interface/TavuroCommon.json: functions */
/** Names the directory that stands for the host's resource bundle (where
 * "TavuroConfig.plist" lies). Call it before the first Credential call;
 * later calls do not reload the store. NULL is ignored. */
TAVURO_EXPORT void tavuro_setResourceDirectory(const char* directory);
/** The resource directory in force now ("" when none can be found). */
TAVURO_EXPORT char* tavuro_resourceDirectory(void);
/* END generated: functions */

/* ======================================================================== */
/* Pictures and byte buffers                                                */
/* ======================================================================== */

/** The layout of one pixel of a picture; the values of tavuro::PixelFormat. */
typedef enum tavuro_PixelFormat {
  TAVURO_PIXEL_FORMAT_GRAY8 = 0,
  TAVURO_PIXEL_FORMAT_RGB8 = 1,
  TAVURO_PIXEL_FORMAT_RGBA8 = 2,
  TAVURO_PIXEL_FORMAT_BGRA8 = 3
} tavuro_PixelFormat;

/** A picture holding a copy of `size` bytes of `pixels`, top row first. NULL
 * when `size` is not width * height * bytes per pixel. */
TAVURO_EXPORT tavuro_Picture* tavuro_Picture_make(uint32_t width, uint32_t height,
                                                  tavuro_PixelFormat format, const uint8_t* pixels,
                                                  size_t size);
TAVURO_EXPORT uint32_t tavuro_Picture_width(const tavuro_Picture* picture);
TAVURO_EXPORT uint32_t tavuro_Picture_height(const tavuro_Picture* picture);
TAVURO_EXPORT tavuro_PixelFormat tavuro_Picture_pixelFormat(const tavuro_Picture* picture);
/** The pixels (rule 9); their count goes to *size when `size` is not NULL. */
TAVURO_EXPORT const uint8_t* tavuro_Picture_pixels(const tavuro_Picture* picture, size_t* size);
/* BEGIN generated from interface/TavuroCommon.json: Picture */
TAVURO_EXPORT tavuro_Picture* tavuro_Picture_retain(tavuro_Picture* handle);
TAVURO_EXPORT void tavuro_Picture_release(tavuro_Picture* handle);
/* END generated: Picture */

/** A new, empty buffer. */
TAVURO_EXPORT tavuro_ByteBuffer* tavuro_ByteBuffer_newInstance(void);
/** A new buffer holding a copy of `size` bytes (`bytes` may be NULL when
 * `size` is 0). */
TAVURO_EXPORT tavuro_ByteBuffer* tavuro_ByteBuffer_initWithBytes_length(const void* bytes,
                                                                        size_t size);
TAVURO_EXPORT size_t tavuro_ByteBuffer_length(const tavuro_ByteBuffer* buffer);
/** The bytes (rule 9); NULL for an empty buffer. Writable: every holder of the
 * buffer sees the change. */
TAVURO_EXPORT uint8_t* tavuro_ByteBuffer_bytes(tavuro_ByteBuffer* buffer);
/** Appends `size` bytes; false when they could not be stored. */
TAVURO_EXPORT bool tavuro_ByteBuffer_appendBytes_length(tavuro_ByteBuffer* buffer,
                                                        const void* bytes, size_t size);
/** Grows (with zero bytes) or shrinks the buffer; false on failure. */
TAVURO_EXPORT bool tavuro_ByteBuffer_setLength(tavuro_ByteBuffer* buffer, size_t size);
/* BEGIN generated from interface/TavuroCommon.json: ByteBuffer */
TAVURO_EXPORT tavuro_ByteBuffer* tavuro_ByteBuffer_retain(tavuro_ByteBuffer* handle);
TAVURO_EXPORT void tavuro_ByteBuffer_release(tavuro_ByteBuffer* handle);
/* END generated: ByteBuffer */

/* ======================================================================== */
/* TavuroError and the error tables                                         */
/* ======================================================================== */

/* BEGIN generated from interface/TavuroCommon.json: TavuroError */
/** The code and a copy of the description (NULL stays absent). */
TAVURO_EXPORT tavuro_TavuroError* tavuro_TavuroError_initWithErrorCode_errorDescription(
    int64_t errorCode, const char* errorDescription);
/** Code 0 and an absent description. */
TAVURO_EXPORT tavuro_TavuroError* tavuro_TavuroError_newInstance(void);
TAVURO_EXPORT int64_t tavuro_TavuroError_errorCode(const tavuro_TavuroError* error);
TAVURO_EXPORT void tavuro_TavuroError_setErrorCode(tavuro_TavuroError* error, int64_t errorCode);
TAVURO_EXPORT char* tavuro_TavuroError_errorDescription(const tavuro_TavuroError* error);
TAVURO_EXPORT void tavuro_TavuroError_setErrorDescription(tavuro_TavuroError* error,
                                                          const char* errorDescription);
TAVURO_EXPORT tavuro_TavuroError* tavuro_TavuroError_retain(tavuro_TavuroError* handle);
TAVURO_EXPORT void tavuro_TavuroError_release(tavuro_TavuroError* handle);
/* END generated: TavuroError */

/* BEGIN generated from interface/TavuroCommon.json: error tables */
/* The codes: each returns its constant. */
TAVURO_EXPORT int64_t tavuro_TavuroErrorCodes_ERROR_InvalidCredentials(void);
TAVURO_EXPORT int64_t tavuro_TavuroErrorCodes_ERROR_InitializationNotFinished(void);
TAVURO_EXPORT int64_t tavuro_TavuroErrorCodes_ERROR_Network(void);
TAVURO_EXPORT int64_t tavuro_TavuroErrorCodes_ERROR_InvalidJson(void);
TAVURO_EXPORT int64_t tavuro_TavuroErrorCodes_ERROR_CouldNotCrop(void);
TAVURO_EXPORT int64_t tavuro_TavuroErrorCodes_ERROR_CouldNotCreateConnectInstance(void);
TAVURO_EXPORT int64_t tavuro_TavuroErrorCodes_ERROR_CouldNotUploadConnectImage(void);
TAVURO_EXPORT int64_t tavuro_TavuroErrorCodes_ERROR_CouldNotUploadConnectBarcode(void);
TAVURO_EXPORT int64_t tavuro_TavuroErrorCodes_ERROR_CouldNotGetConnectData(void);
TAVURO_EXPORT int64_t tavuro_TavuroErrorCodes_ERROR_CouldNotClassifyDocument(void);
TAVURO_EXPORT int64_t tavuro_TavuroErrorCodes_ERROR_LowResolutionImage(void);
TAVURO_EXPORT int64_t tavuro_TavuroErrorCodes_ERROR_BlurryImage(void);
TAVURO_EXPORT int64_t tavuro_TavuroErrorCodes_ERROR_ImageWithGlare(void);
TAVURO_EXPORT int64_t tavuro_TavuroErrorCodes_ERROR_CouldNotGetIPLivenessToken(void);
TAVURO_EXPORT int64_t tavuro_TavuroErrorCodes_ERROR_NotALiveFace(void);
TAVURO_EXPORT int64_t tavuro_TavuroErrorCodes_ERROR_CouldNotAccessLivenessData(void);
TAVURO_EXPORT int64_t tavuro_TavuroErrorCodes_ERROR_CouldNotAccessCredential(void);
TAVURO_EXPORT int64_t tavuro_TavuroErrorCodes_ERROR_USER_CANCELED_ACTIVITY(void);
TAVURO_EXPORT int64_t tavuro_TavuroErrorCodes_ERROR_INVALID_PARAMETER(void);
TAVURO_EXPORT int64_t tavuro_TavuroErrorCodes_ERROR_KelmoInvalidFormat(void);
TAVURO_EXPORT int64_t tavuro_TavuroErrorCodes_ERROR_EChipReadError(void);
TAVURO_EXPORT int64_t tavuro_TavuroErrorCodes_ERROR_InvalidNfcTag(void);
TAVURO_EXPORT int64_t tavuro_TavuroErrorCodes_ERROR_InvalidNfcKeyFormatting(void);

/* The descriptions: each returns its constant text (rule 4: never free).
 * Beside each, the code it belongs to. */
TAVURO_EXPORT const char*  // code: ERROR_InvalidCredentials
tavuro_TavuroErrorDescriptions_ERROR_DESC_InvalidCredentials(void);
TAVURO_EXPORT const char*  // code: none
tavuro_TavuroErrorDescriptions_ERROR_DESC_InvalidEndpoint(void);
TAVURO_EXPORT const char*  // code: ERROR_Network
tavuro_TavuroErrorDescriptions_ERROR_DESC_Network(void);
TAVURO_EXPORT const char*  // code: ERROR_InitializationNotFinished
tavuro_TavuroErrorDescriptions_ERROR_DESC_InitializationNotFinished(void);
TAVURO_EXPORT const char*  // code: ERROR_InvalidJson
tavuro_TavuroErrorDescriptions_ERROR_DESC_InvalidJson(void);
TAVURO_EXPORT const char*  // code: ERROR_CouldNotCrop
tavuro_TavuroErrorDescriptions_ERROR_DESC_CouldNotCrop(void);
TAVURO_EXPORT const char*  // code: none
tavuro_TavuroErrorDescriptions_ERROR_DESC_BarcodeCaptureFailed(void);
TAVURO_EXPORT const char*  // code: none
tavuro_TavuroErrorDescriptions_ERROR_DESC_BarcodeCaptureTimedOut(void);
TAVURO_EXPORT const char*  // code: ERROR_CouldNotCreateConnectInstance
tavuro_TavuroErrorDescriptions_ERROR_DESC_CouldNotCreateConnectInstance(void);
TAVURO_EXPORT const char*  // code: ERROR_CouldNotUploadConnectImage
tavuro_TavuroErrorDescriptions_ERROR_DESC_CouldNotUploadConnectImage(void);
TAVURO_EXPORT const char*  // code: ERROR_CouldNotUploadConnectBarcode
tavuro_TavuroErrorDescriptions_ERROR_DESC_CouldNotUploadConnectBarcode(void);
TAVURO_EXPORT const char*  // code: ERROR_CouldNotGetConnectData
tavuro_TavuroErrorDescriptions_ERROR_DESC_CouldNotGetConnectData(void);
TAVURO_EXPORT const char*  // code: none
tavuro_TavuroErrorDescriptions_ERROR_DESC_CardWidthNotSet(void);
TAVURO_EXPORT const char*  // code: none
tavuro_TavuroErrorDescriptions_ERROR_DESC_CouldNotGetHealthCardData(void);
TAVURO_EXPORT const char*  // code: ERROR_CouldNotClassifyDocument
tavuro_TavuroErrorDescriptions_ERROR_DESC_CouldNotClassifyDocument(void);
TAVURO_EXPORT const char*  // code: ERROR_LowResolutionImage
tavuro_TavuroErrorDescriptions_ERROR_DESC_LowResolutionImage(void);
TAVURO_EXPORT const char*  // code: ERROR_BlurryImage
tavuro_TavuroErrorDescriptions_ERROR_DESC_BlurryImage(void);
TAVURO_EXPORT const char*  // code: ERROR_ImageWithGlare
tavuro_TavuroErrorDescriptions_ERROR_DESC_ImageWithGlare(void);
TAVURO_EXPORT const char*  // code: ERROR_CouldNotGetIPLivenessToken
tavuro_TavuroErrorDescriptions_ERROR_DESC_CouldNotGetIPLivenessToken(void);
TAVURO_EXPORT const char*  // code: ERROR_NotALiveFace
tavuro_TavuroErrorDescriptions_ERROR_DESC_NotALiveFace(void);
TAVURO_EXPORT const char*  // code: ERROR_CouldNotAccessLivenessData
tavuro_TavuroErrorDescriptions_ERROR_DESC_CouldNotAccessLivenessData(void);
TAVURO_EXPORT const char*  // code: ERROR_CouldNotAccessCredential
tavuro_TavuroErrorDescriptions_ERROR_DESC_ERROR_CouldNotAccessCredential(void);
TAVURO_EXPORT const char*  // code: ERROR_USER_CANCELED_ACTIVITY
tavuro_TavuroErrorDescriptions_ERROR_DESC_USER_CANCELED_ACTIVITY(void);
TAVURO_EXPORT const char*  // code: ERROR_INVALID_PARAMETER
tavuro_TavuroErrorDescriptions_ERROR_DESC_INVALID_PARAMETERS(void);
TAVURO_EXPORT const char*  // code: ERROR_KelmoInvalidFormat
tavuro_TavuroErrorDescriptions_ERROR_DESC_KelmoInvalidFormat(void);
TAVURO_EXPORT const char*  // code: ERROR_EChipReadError
tavuro_TavuroErrorDescriptions_ERROR_DESC_EChipReadError(void);
TAVURO_EXPORT const char*  // code: ERROR_InvalidNfcTag
tavuro_TavuroErrorDescriptions_ERROR_DESC_InvalidNfcTag(void);
TAVURO_EXPORT const char*  // code: ERROR_InvalidNfcKeyFormatting
tavuro_TavuroErrorDescriptions_ERROR_DESC_InvalidNfcKeyFormatting(void);
/* END generated: error tables */

/** One entry of the error tables (tavuro::TavuroErrorInfo): a code with its
 * names and text, or a text that has no code (code 0, codeName NULL). The
 * texts live for the whole process (rule 4). */
typedef struct tavuro_TavuroErrorInfo {
  int64_t code;
  const char* codeName;
  const char* descriptionName;
  const char* description;
} tavuro_TavuroErrorInfo;

/** Stores the entry of `code` in *info and returns true; false when no error
 * has that code (0, positive numbers, the gaps of the numbering). */
TAVURO_EXPORT bool tavuro_TavuroErrorInfo_forCode(int64_t code, tavuro_TavuroErrorInfo* info);
/** Copies up to `capacity` entries into `entries` (which may be NULL when
 * `capacity` is 0) and returns how many there are: the codes from -1
 * downwards, then the texts without a code. */
TAVURO_EXPORT size_t tavuro_TavuroErrorInfo_all(tavuro_TavuroErrorInfo* entries, size_t capacity);

/* ======================================================================== */
/* Start-up                                                                 */
/* ======================================================================== */

/** A capture package as C sees it: `initialize(context)` starts it. The
 * context is the package's own; the library never frees it. */
typedef struct tavuro_ITavuroPackage {
  void (*initialize)(void* context);
  void* context;
} tavuro_ITavuroPackage;

/** Told that start-up is complete. `error` is NULL on success (always, in
 * this library) and borrowed (rule 8). */
typedef void (*tavuro_TavuroInitializerCallback)(void* context, tavuro_TavuroError* error);

/* BEGIN generated from interface/TavuroCommon.json: TavuroInitializer */
TAVURO_EXPORT tavuro_TavuroInitializer* tavuro_TavuroInitializer_init(void);
TAVURO_EXPORT tavuro_TavuroInitializer* tavuro_TavuroInitializer_retain(
    tavuro_TavuroInitializer* handle);
TAVURO_EXPORT void tavuro_TavuroInitializer_release(tavuro_TavuroInitializer* handle);
/* END generated: TavuroInitializer */
/** Calls every package's `initialize` in array order (duplicates included;
 * entries whose `initialize` is NULL are skipped), then `callback(context,
 * NULL)` once, all before it returns. `packages` may be NULL when `count` is
 * 0; `callback` may be NULL. */
TAVURO_EXPORT void tavuro_TavuroInitializer_initializeWithPackages_callback(
    tavuro_TavuroInitializer* initializer, const tavuro_ITavuroPackage* packages, size_t count,
    tavuro_TavuroInitializerCallback callback, void* context);

/* ======================================================================== */
/* Image                                                                    */
/* ======================================================================== */

/** A point on a picture; points cross as arrays of this, copied both ways. */
typedef struct tavuro_Point {
  double x;
  double y;
} tavuro_Point;

/* BEGIN generated from interface/TavuroCommon.json: Image */
/** Every field at its default. */
TAVURO_EXPORT tavuro_Image* tavuro_Image_newInstance(void);
/** A default record holding `image` and then `data` (NULL allowed). */
TAVURO_EXPORT tavuro_Image* tavuro_Image_newInstanceWithImage_data(tavuro_Picture* image,
                                                                   tavuro_ByteBuffer* data);
TAVURO_EXPORT tavuro_Picture* tavuro_Image_image(const tavuro_Image* record);
TAVURO_EXPORT void tavuro_Image_setImage(tavuro_Image* record, tavuro_Picture* image);
/** The record's buffer itself, shared, not a copy. */
TAVURO_EXPORT tavuro_ByteBuffer* tavuro_Image_data(const tavuro_Image* record);
TAVURO_EXPORT void tavuro_Image_setData(tavuro_Image* record, tavuro_ByteBuffer* data);
TAVURO_EXPORT int64_t tavuro_Image_dpi(const tavuro_Image* record);
TAVURO_EXPORT void tavuro_Image_setDpi(tavuro_Image* record, int64_t dpi);
TAVURO_EXPORT tavuro_TavuroError* tavuro_Image_error(const tavuro_Image* record);
TAVURO_EXPORT void tavuro_Image_setError(tavuro_Image* record, tavuro_TavuroError* error);
TAVURO_EXPORT bool tavuro_Image_isCorrectAspectRatio(const tavuro_Image* record);
TAVURO_EXPORT void tavuro_Image_setIsCorrectAspectRatio(tavuro_Image* record, bool value);
TAVURO_EXPORT float tavuro_Image_aspectRatio(const tavuro_Image* record);
TAVURO_EXPORT void tavuro_Image_setAspectRatio(tavuro_Image* record, float aspectRatio);
TAVURO_EXPORT bool tavuro_Image_isPassport(const tavuro_Image* record);
TAVURO_EXPORT void tavuro_Image_setIsPassport(tavuro_Image* record, bool isPassport);
TAVURO_EXPORT tavuro_Image* tavuro_Image_retain(tavuro_Image* handle);
TAVURO_EXPORT void tavuro_Image_release(tavuro_Image* handle);
/* END generated: Image */
/** Copies up to `capacity` points into `points` (which may be NULL when
 * `capacity` is 0) and returns how many the record holds: call it once with
 * capacity 0 to learn the count. */
TAVURO_EXPORT size_t tavuro_Image_points(const tavuro_Image* record, tavuro_Point* points,
                                         size_t capacity);
/** Replaces the points with a copy of `count` points (NULL when 0). */
TAVURO_EXPORT void tavuro_Image_setPoints(tavuro_Image* record, const tavuro_Point* points,
                                          size_t count);

/* ======================================================================== */
/* Processing mode and small enumerations (they cross as raw values)       */
/* ======================================================================== */

/* BEGIN generated from interface/TavuroCommon.json: enums */
enum {
  TAVURO_PROCESSING_MODE_RESERVED = 0,
  TAVURO_PROCESSING_MODE_DATA_CAPTURE = 1,
  TAVURO_PROCESSING_MODE_STANDARD = 2
};
enum { TAVURO_DELETE_TYPE_KIND0 = 0, TAVURO_DELETE_TYPE_KIND1 = 1 };
/* END generated: enums */

/* BEGIN generated from interface/TavuroCommon.json: DocumentProcessingMode */
/** The process's mode as its raw value: 2 at first, 1 after the switch. */
TAVURO_EXPORT int64_t tavuro_DocumentProcessingMode_processingMode(void);
TAVURO_EXPORT void tavuro_DocumentProcessingMode_setDataCaptureProcessingMode(void);
/* END generated: DocumentProcessingMode */

/* ======================================================================== */
/* JSON values                                                              */
/* ======================================================================== */

typedef enum tavuro_JsonKind {
  TAVURO_JSON_NULL = 0,
  TAVURO_JSON_BOOLEAN = 1,
  TAVURO_JSON_NUMBER = 2,
  TAVURO_JSON_STRING = 3,
  TAVURO_JSON_ARRAY = 4,
  TAVURO_JSON_OBJECT = 5
} tavuro_JsonKind;

TAVURO_EXPORT size_t tavuro_JsonDictionary_count(const tavuro_JsonDictionary* dictionary);
/** The key at `index` in the order of the text; NULL when out of range. */
TAVURO_EXPORT char* tavuro_JsonDictionary_keyAtIndex(const tavuro_JsonDictionary* dictionary,
                                                     size_t index);
/** The value at `index`; NULL when out of range. */
TAVURO_EXPORT tavuro_JsonValue* tavuro_JsonDictionary_valueAtIndex(
    const tavuro_JsonDictionary* dictionary, size_t index);
/** The value under `key` (a JSON null is a value); NULL when there is none. */
TAVURO_EXPORT tavuro_JsonValue* tavuro_JsonDictionary_objectForKey(
    const tavuro_JsonDictionary* dictionary, const char* key);
/* BEGIN generated from interface/TavuroCommon.json: JsonDictionary */
TAVURO_EXPORT tavuro_JsonDictionary* tavuro_JsonDictionary_retain(tavuro_JsonDictionary* handle);
TAVURO_EXPORT void tavuro_JsonDictionary_release(tavuro_JsonDictionary* handle);
/* END generated: JsonDictionary */

TAVURO_EXPORT size_t tavuro_JsonArray_count(const tavuro_JsonArray* array);
/** The element at `index`; NULL when out of range. */
TAVURO_EXPORT tavuro_JsonValue* tavuro_JsonArray_objectAtIndex(const tavuro_JsonArray* array,
                                                               size_t index);
/* BEGIN generated from interface/TavuroCommon.json: JsonArray */
TAVURO_EXPORT tavuro_JsonArray* tavuro_JsonArray_retain(tavuro_JsonArray* handle);
TAVURO_EXPORT void tavuro_JsonArray_release(tavuro_JsonArray* handle);
/* END generated: JsonArray */

/** The kind of a value; TAVURO_JSON_NULL for NULL. */
TAVURO_EXPORT tavuro_JsonKind tavuro_JsonValue_kind(const tavuro_JsonValue* value);
/* Each reader stores the value in *out and returns true only when the value
 * is of that kind (and, for numbers, equals one of the wanted type exactly). */
TAVURO_EXPORT bool tavuro_JsonValue_boolValue(const tavuro_JsonValue* value, bool* out);
TAVURO_EXPORT bool tavuro_JsonValue_int64Value(const tavuro_JsonValue* value, int64_t* out);
TAVURO_EXPORT bool tavuro_JsonValue_doubleValue(const tavuro_JsonValue* value, double* out);
/** The text of a string value, NULL otherwise. Its length in bytes goes to
 * *length when `length` is not NULL, so a text holding "\u0000" can be read
 * whole. */
TAVURO_EXPORT char* tavuro_JsonValue_stringValue(const tavuro_JsonValue* value, size_t* length);
TAVURO_EXPORT tavuro_JsonArray* tavuro_JsonValue_arrayValue(const tavuro_JsonValue* value);
TAVURO_EXPORT tavuro_JsonDictionary* tavuro_JsonValue_dictionaryValue(
    const tavuro_JsonValue* value);
/* Whole documents at once, for bindings that turn a dictionary into their
 * own values in one pass instead of one handle per value. The nodes are the
 * document's own, not a copy: they are borrowed like the bytes of rule 9,
 * valid while a reference to the dictionary (or to any value of the same
 * document) is held, and never freed or changed by the caller. */
typedef enum tavuro_JsonNodeType {
  TAVURO_JSON_NODE_NULL = 0,
  TAVURO_JSON_NODE_FALSE = 1,
  TAVURO_JSON_NODE_TRUE = 2,
  TAVURO_JSON_NODE_INT64 = 3,  /* payload.int64Value */
  TAVURO_JSON_NODE_UINT64 = 4, /* payload.uint64Value, only above INT64_MAX */
  TAVURO_JSON_NODE_DOUBLE = 5, /* payload.doubleValue */
  TAVURO_JSON_NODE_STRING = 6, /* `size` bytes of UTF-8 at payload.chars */
  TAVURO_JSON_NODE_ARRAY = 7,  /* `size` elements at payload.children */
  TAVURO_JSON_NODE_OBJECT = 8  /* `size` members at payload.children */
} tavuro_JsonNodeType;

/** One value of a document. The texts of strings are not NUL-terminated and
 * may hold NUL bytes. An object's children are `size` pairs, each a string
 * node (the key) followed by the value; keys are unique (the first of equal
 * keys is kept) and in the order of the text. */
typedef struct tavuro_JsonNode {
  uint8_t type; /* a tavuro_JsonNodeType */
  uint8_t reserved8;
  uint16_t reserved16;
  uint32_t size;
  union tavuro_JsonNodePayload {
    int64_t int64Value;
    uint64_t uint64Value;
    double doubleValue;
    const char* chars;
    const struct tavuro_JsonNode* children;
  } payload;
} tavuro_JsonNode;

/** The object node of `dictionary` (borrowed, see above); NULL for NULL. */
TAVURO_EXPORT const tavuro_JsonNode* tavuro_JsonDictionary_nodes(
    const tavuro_JsonDictionary* dictionary);

/* BEGIN generated from interface/TavuroCommon.json: JsonValue */
TAVURO_EXPORT tavuro_JsonValue* tavuro_JsonValue_retain(tavuro_JsonValue* handle);
TAVURO_EXPORT void tavuro_JsonValue_release(tavuro_JsonValue* handle);
/* END generated: JsonValue */

/* ======================================================================== */
/* Utils                                                                    */
/* ======================================================================== */

/* BEGIN generated from interface/TavuroCommon.json: Utils */
/** The dictionary of a JSON object text; NULL for NULL, for an array and for
 * text that is not JSON (which also prints the reader's one-line error
 * description on standard output). Texts holding a NUL byte cannot be
 * passed: the text ends there. */
TAVURO_EXPORT tavuro_JsonDictionary* tavuro_Utils_convertToDictionaryWithText(const char* text);
/** The typed getters: `jsonDict` NULL stands for an absent dictionary. Each
 * gives its default (0, 0.0, "", false, NULL) when the dictionary is absent,
 * the key is missing or NULL, the value is null or of another kind. */
TAVURO_EXPORT int64_t
tavuro_Utils_getIntValueWithJsonDict_key(const tavuro_JsonDictionary* jsonDict, const char* key);
TAVURO_EXPORT double tavuro_Utils_getDoubleValueWithJsonDict_key(
    const tavuro_JsonDictionary* jsonDict, const char* key);
/** Never absent: "" is the default. NULL only when memory ran out. */
TAVURO_EXPORT char* tavuro_Utils_getStringValueWithJsonDict_key(
    const tavuro_JsonDictionary* jsonDict, const char* key);
TAVURO_EXPORT bool tavuro_Utils_getBooleanValueWithJsonDict_key(
    const tavuro_JsonDictionary* jsonDict, const char* key);
TAVURO_EXPORT tavuro_JsonDictionary* tavuro_Utils_getObjectValueWithJsonDict_key(
    const tavuro_JsonDictionary* jsonDict, const char* key);
TAVURO_EXPORT tavuro_JsonArray* tavuro_Utils_getArrayValueWithJsonDict_key(
    const tavuro_JsonDictionary* jsonDict, const char* key);
TAVURO_EXPORT tavuro_JsonArray* tavuro_Utils_getArrayValueFromJsonWithJsonDict_key(
    const tavuro_JsonDictionary* jsonDict, const char* key);
/** "/Date(1234567890000)/" gives "02-13-2009"; anything that is not a plain
 * millisecond count comes back unchanged. NULL ends the process (rule 11). */
TAVURO_EXPORT char* tavuro_Utils_dateFieldToDateStringWithDateStr(const char* dateStr);
TAVURO_EXPORT double tavuro_Utils_SENT_IMAGE_QUALITY_JPEG_COMPRESSION(void);
TAVURO_EXPORT void tavuro_Utils_setSENT_IMAGE_QUALITY_JPEG_COMPRESSION(double quality);
TAVURO_EXPORT char* tavuro_Utils_SDK_VERSION_CODE(void);
/** Stores a copy of the text; NULL leaves the setting unchanged (the setting
 * is never absent). */
TAVURO_EXPORT void tavuro_Utils_setSDK_VERSION_CODE(const char* versionCode);
/* END generated: Utils */

/** tavuro_Utils_convertToDictionaryWithText for a text given with its length
 * in bytes: it need not end in NUL, and NUL bytes inside it are read as part
 * of it. NULL for NULL `bytes`. For bindings whose texts carry their length. */
TAVURO_EXPORT tavuro_JsonDictionary* tavuro_Utils_convertToDictionaryWithBytes_length(
    const char* bytes, size_t length);

/* ======================================================================== */
/* Endpoints                                                                */
/* ======================================================================== */

/* BEGIN generated from interface/TavuroCommon.json: Endpoints */
/* Getters return a copy (rule 3); setters copy the text, NULL clears it. */
TAVURO_EXPORT char* tavuro_Endpoints_frmEndpoint(const tavuro_Endpoints* endpoints);
TAVURO_EXPORT void tavuro_Endpoints_setFrmEndpoint(tavuro_Endpoints* endpoints,
                                                   const char* endpoint);
TAVURO_EXPORT char* tavuro_Endpoints_idEndpoint(const tavuro_Endpoints* endpoints);
TAVURO_EXPORT void tavuro_Endpoints_setIdEndpoint(tavuro_Endpoints* endpoints,
                                                  const char* endpoint);
TAVURO_EXPORT char* tavuro_Endpoints_passiveLivenessEndpoint(const tavuro_Endpoints* endpoints);
TAVURO_EXPORT void tavuro_Endpoints_setPassiveLivenessEndpoint(tavuro_Endpoints* endpoints,
                                                               const char* endpoint);
TAVURO_EXPORT char* tavuro_Endpoints_healthInsuranceEndpoint(const tavuro_Endpoints* endpoints);
TAVURO_EXPORT void tavuro_Endpoints_setHealthInsuranceEndpoint(tavuro_Endpoints* endpoints,
                                                               const char* endpoint);
TAVURO_EXPORT char* tavuro_Endpoints_kelmoEndpoint(const tavuro_Endpoints* endpoints);
TAVURO_EXPORT void tavuro_Endpoints_setKelmoEndpoint(tavuro_Endpoints* endpoints,
                                                     const char* endpoint);
/** Every field absent. */
TAVURO_EXPORT tavuro_Endpoints* tavuro_Endpoints_newInstance(void);
TAVURO_EXPORT tavuro_Endpoints* tavuro_Endpoints_retain(tavuro_Endpoints* handle);
TAVURO_EXPORT void tavuro_Endpoints_release(tavuro_Endpoints* handle);
/* END generated: Endpoints */

/* ======================================================================== */
/* Tokens                                                                   */
/* ======================================================================== */

/* BEGIN generated from interface/TavuroCommon.json: TavuroJwtToken */
/** A token record holding a copy of `value` and `expiration` (seconds since
 * 1970-01-01T00:00:00 UTC); NULL when `value` is NULL. */
TAVURO_EXPORT tavuro_TavuroJwtToken* tavuro_TavuroJwtToken_initWithValue_expiration(
    const char* value, double expiration);
TAVURO_EXPORT char* tavuro_TavuroJwtToken_value(const tavuro_TavuroJwtToken* token);
/** Seconds since 1970-01-01T00:00:00 UTC; 0 for NULL. */
TAVURO_EXPORT double tavuro_TavuroJwtToken_expiration(const tavuro_TavuroJwtToken* token);
/** True while now is strictly before the expiration; false for NULL. */
TAVURO_EXPORT bool tavuro_TavuroJwtToken_isValid(const tavuro_TavuroJwtToken* token);
TAVURO_EXPORT tavuro_TavuroJwtToken* tavuro_TavuroJwtToken_retain(tavuro_TavuroJwtToken* handle);
TAVURO_EXPORT void tavuro_TavuroJwtToken_release(tavuro_TavuroJwtToken* handle);
/* END generated: TavuroJwtToken */

/* BEGIN generated from interface/TavuroCommon.json: TavuroJwtParser */
TAVURO_EXPORT tavuro_TavuroJwtParser* tavuro_TavuroJwtParser_init(void);
/** The token record, NULL when "exp" is missing or not a whole number. A
 * NULL token gives NULL; a token without "." ends the process (rule 11). */
TAVURO_EXPORT tavuro_TavuroJwtToken* tavuro_TavuroJwtParser_parseTokenWithJwtToken(
    const tavuro_TavuroJwtParser* parser, const char* jwtToken);
/** The payload's claims, empty when unreadable; NULL only for a NULL token.
 * A token without "." ends the process (rule 11). */
TAVURO_EXPORT tavuro_JsonDictionary* tavuro_TavuroJwtParser_decodeWithJwtToken(
    const tavuro_TavuroJwtParser* parser, const char* jwtToken);
/** The bytes of a base64url text; NULL when it cannot be decoded. */
TAVURO_EXPORT tavuro_ByteBuffer* tavuro_TavuroJwtParser_base64UrlDecode(
    const tavuro_TavuroJwtParser* parser, const char* text);
/** The JSON object in one base64url segment; NULL when there is none. */
TAVURO_EXPORT tavuro_JsonDictionary* tavuro_TavuroJwtParser_decodeJWTPart(
    const tavuro_TavuroJwtParser* parser, const char* segment);
TAVURO_EXPORT tavuro_TavuroJwtParser* tavuro_TavuroJwtParser_retain(tavuro_TavuroJwtParser* handle);
TAVURO_EXPORT void tavuro_TavuroJwtParser_release(tavuro_TavuroJwtParser* handle);
/* END generated: TavuroJwtParser */

/* ======================================================================== */
/* Credential: the process-wide store                                       */
/* ======================================================================== */

/* BEGIN generated from interface/TavuroCommon.json: Credential */
/* The process-wide store. It loads itself on first use; every setter stores
 * the value (NULL clears it), then rewrites the file. */
TAVURO_EXPORT char* tavuro_Credential_username(void);
TAVURO_EXPORT char* tavuro_Credential_password(void);
TAVURO_EXPORT char* tavuro_Credential_subscription(void);
/** The store's own record (rule 7); NULL when it has none. */
TAVURO_EXPORT tavuro_Endpoints* tavuro_Credential_endpoints(void);
/** Drops the stored token; false when none was stored. */
TAVURO_EXPORT bool tavuro_Credential_removeToken(void);
/** Stores the token when its "exp" lies after now. NULL gives false; a token
 * without "." ends the process (rule 11). */
TAVURO_EXPORT bool tavuro_Credential_setTokenWithToken(const char* token);
TAVURO_EXPORT bool tavuro_Credential_isCredentialValidWithEndpoint(const char* endpoint);
TAVURO_EXPORT char* tavuro_Credential_getTavuroAuthHeader(void);
TAVURO_EXPORT char* tavuro_Credential_getBasicAuthHeader(void);
TAVURO_EXPORT void tavuro_Credential_setUsernameWithUsername(const char* username);
TAVURO_EXPORT void tavuro_Credential_setPasswordWithPassword(const char* password);
TAVURO_EXPORT void tavuro_Credential_setSubscriptionWithSubscription(const char* subscription);
/** Keeps the record itself (its own reference), not a copy; NULL clears. */
TAVURO_EXPORT void tavuro_Credential_setEndpointsWithEndpoints(tavuro_Endpoints* endpoints);
/* END generated: Credential */
/** The stored session token, expired or not; NULL when none is stored. It has
 * no object-interface name: it is here for the bindings of other languages. */
TAVURO_EXPORT tavuro_TavuroJwtToken* tavuro_Credential_getToken(void);

/** The "Authorization" value of tavuro_Credential_getTavuroAuthHeader,
 * written as UTF-8 into the caller's `buffer` instead of a new copy. Returns
 * false (and 0 in `*length`) when there is no header. Otherwise sets
 * `*length` to the header's length in bytes, NUL not counted, and returns
 * true; the bytes are written only when that length is at most `capacity`,
 * followed by a NUL only when there is room for one. When it is larger,
 * nothing is written: call again with a buffer of at least `*length`
 * bytes. `buffer` may be NULL when `capacity` is 0, and `length` may be
 * NULL. The caller owns the buffer; the library keeps nothing of it. */
TAVURO_EXPORT bool tavuro_Credential_copyTavuroAuthHeader(char* buffer, size_t capacity,
                                                          size_t* length);
/** The value of tavuro_Credential_getBasicAuthHeader, written into the
 * caller's buffer as tavuro_Credential_copyTavuroAuthHeader writes its own. */
TAVURO_EXPORT bool tavuro_Credential_copyBasicAuthHeader(char* buffer, size_t capacity,
                                                         size_t* length);
/** A number that changes whenever the two headers above may have changed (a
 * new user name, password or token), so that a binding may keep the texts
 * it made until then; never 0, except when the store could not be made. */
TAVURO_EXPORT uint64_t tavuro_Credential_headerRevision(void);

#ifdef __cplusplus
} /* extern "C" */
#endif
/* NOLINTEND(modernize-deprecated-headers, modernize-use-using) */

#endif /* TAVUROCOMMON_TAVUROCOMMON_C_H_ */
