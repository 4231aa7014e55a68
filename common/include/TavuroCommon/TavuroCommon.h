// TavuroCommon: the common base library of the Tavuro capture kit.
//
// This is the one header a host includes. It declares every public type of the
// library; nothing else is needed to use it.
//
//   #include <TavuroCommon/TavuroCommon.h>
//
// General rules that hold for every declaration below:
//
//  * Failures are values. No exception leaves this interface: an operation that
//    can fail returns an absent value (`std::nullopt`, `nullptr`), an empty
//    dictionary, a documented default or `false`.
//  * Two preconditions are deliberately not checked and end the process with
//    a one-line message on standard error and `std::abort()`: a token without
//    any "." given to `TavuroJwtParser::decode` / `parseToken`, and an absent
//    argument to `Utils::dateFieldToDateString`.
//  * Optional texts keep "absent" (`std::nullopt`) and "empty" (`""`) apart
//    everywhere; nothing is trimmed or normalised.
//  * Records (`TavuroError`, `Image`, `Endpoints`, `TavuroJwtToken`) are handed
//    out as `std::shared_ptr` and live as long as anyone holds them.
//  * The library writes nothing to the standard streams except the single line
//    that `Utils::convertToDictionary` prints when a text is not valid JSON.
//
// The header needs C++17 or later.

#ifndef TAVUROCOMMON_TAVUROCOMMON_H_
#define TAVUROCOMMON_TAVUROCOMMON_H_

#if (defined(_MSVC_LANG) ? _MSVC_LANG : __cplusplus) < 201703L
#error "TavuroCommon needs C++17 or later: compile with -std=c++17 or /std:c++17"
#endif

/// The library's version as numbers, for tests in the preprocessor; the
/// same as `kVersion` and the CMake package's version. A host built against
/// one major version links any later minor version of it.
#define TAVURO_VERSION_MAJOR 11
#define TAVURO_VERSION_MINOR 4
#define TAVURO_VERSION_PATCH 10

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "TavuroCommon/TavuroExport.h"

namespace tavuro {

/// The kit's version text, also the initial value of `Utils::SDK_VERSION_CODE()`;
/// TAVURO_VERSION_MAJOR, _MINOR and _PATCH as one text.
inline constexpr char kVersion[] = "11.4.10";

/// An absolute point in time: double-precision seconds since
/// 1970-01-01T00:00:00 UTC, compared with the system clock.
using Instant = std::chrono::time_point<std::chrono::system_clock, std::chrono::duration<double>>;

// ===========================================================================
// Value types carried by records
// ===========================================================================

/// A point on a picture, in pixels. A plain value; copy freely.
struct Point {
  double x = 0.0;
  double y = 0.0;

  [[nodiscard]] friend bool operator==(const Point& a, const Point& b) noexcept {
    return a.x == b.x && a.y == b.y;
  }
  [[nodiscard]] friend bool operator!=(const Point& a, const Point& b) noexcept {
    return !(a == b);
  }
};

/// A growable buffer of bytes shared by reference between whoever holds it
/// (an `Image` and the package that filled it, for example): a change made
/// through one holder is seen by all. Not synchronised: change it from one
/// thread at a time.
class TAVURO_EXPORT ByteBuffer {
 public:
  /// An empty buffer.
  ByteBuffer() = default;
  /// A buffer holding a copy of `size` bytes from `bytes` (`bytes` may be
  /// null when `size` is 0).
  ByteBuffer(const void* bytes, std::size_t size);
  /// A buffer that takes over `bytes`.
  explicit ByteBuffer(std::vector<std::uint8_t> bytes) noexcept;

  /// A new, empty shared buffer.
  [[nodiscard]] static std::shared_ptr<ByteBuffer> newInstance();

  [[nodiscard]] std::size_t size() const noexcept { return bytes_.size(); }
  [[nodiscard]] bool empty() const noexcept { return bytes_.empty(); }
  /// The first byte; valid until the buffer is next resized.
  [[nodiscard]] std::uint8_t* data() noexcept { return bytes_.data(); }
  [[nodiscard]] const std::uint8_t* data() const noexcept { return bytes_.data(); }

  /// Appends `size` bytes from `bytes`.
  void append(const void* bytes, std::size_t size);
  /// Grows (with zero bytes) or shrinks the buffer to `size` bytes.
  void resize(std::size_t size);
  /// Empties the buffer.
  void clear() noexcept { bytes_.clear(); }

  /// The bytes themselves, for code that wants the whole vector.
  [[nodiscard]] std::vector<std::uint8_t>& bytes() noexcept { return bytes_; }
  [[nodiscard]] const std::vector<std::uint8_t>& bytes() const noexcept { return bytes_; }

 private:
  std::vector<std::uint8_t> bytes_;
};

/// The layout of one pixel of a `Picture`.
enum class PixelFormat : std::uint8_t {
  Gray8 = 0,  ///< one byte of luminance
  RGB8 = 1,   ///< red, green, blue, one byte each
  RGBA8 = 2,  ///< red, green, blue, alpha, one byte each
  BGRA8 = 3,  ///< blue, green, red, alpha, one byte each (camera order)
};

/// Bytes one pixel of `format` takes.
[[nodiscard]] TAVURO_EXPORT std::size_t bytesPerPixel(PixelFormat format) noexcept;

/// A decoded picture: width, height, pixel format and the pixel rows, top row
/// first, each row `bytesPerRow()` bytes long. Immutable once made, so it may
/// be read from any thread.
class TAVURO_EXPORT Picture {
 public:
  /// An empty picture: 0 x 0 pixels of `PixelFormat::RGBA8`.
  Picture() = default;

  /// A picture of `width` x `height` pixels of `format` made from `pixels`.
  /// Returns nullptr when `pixels` does not hold exactly
  /// width * height * bytesPerPixel(format) bytes, or that size overflows.
  [[nodiscard]] static std::shared_ptr<const Picture> make(std::uint32_t width,
                                                           std::uint32_t height, PixelFormat format,
                                                           std::vector<std::uint8_t> pixels);

  [[nodiscard]] std::uint32_t width() const noexcept { return width_; }
  [[nodiscard]] std::uint32_t height() const noexcept { return height_; }
  [[nodiscard]] PixelFormat pixelFormat() const noexcept { return format_; }
  [[nodiscard]] std::size_t bytesPerRow() const noexcept {
    return static_cast<std::size_t>(width_) * bytesPerPixel(format_);
  }
  [[nodiscard]] const std::vector<std::uint8_t>& pixels() const noexcept { return pixels_; }

 private:
  std::uint32_t width_ = 0;
  std::uint32_t height_ = 0;
  PixelFormat format_ = PixelFormat::RGBA8;
  std::vector<std::uint8_t> pixels_;
};

// ===========================================================================
// Errors
// ===========================================================================

/// The kit's one error record: a code from `TavuroErrorCodes` and a text,
/// normally the `TavuroErrorDescriptions` entry of the same failure. A plain
/// value holder with no invariants between its fields; it is passed as a
/// value and never thrown.
///
/// Thread safety: not synchronised. Fill it before handing it to another
/// thread, then only read it.
class TAVURO_EXPORT TavuroError {
 public:
  /// Code 0 (no code assigned) and an absent description.
  TavuroError() = default;
  /// Stores `errorCode`, then `errorDescription` (a copy; absent stays absent).
  TavuroError(std::int64_t errorCode, std::optional<std::string> errorDescription);
  virtual ~TavuroError();

  /// A new record exactly as the default constructor makes it.
  [[nodiscard]] static std::shared_ptr<TavuroError> newInstance();

  /// The failure's code; 0 when none was assigned. Any value is accepted.
  [[nodiscard]] std::int64_t errorCode() const noexcept { return errorCode_; }
  void setErrorCode(std::int64_t errorCode) noexcept { errorCode_ = errorCode; }

  /// The failure's text for people; absent differs from empty.
  [[nodiscard]] const std::optional<std::string>& errorDescription() const noexcept {
    return errorDescription_;
  }
  void setErrorDescription(std::optional<std::string> errorDescription) {
    errorDescription_ = std::move(errorDescription);
  }

 private:
  std::int64_t errorCode_ = 0;
  std::optional<std::string> errorDescription_;
};

/// The fixed error codes of the kit. All are negative; the gaps in the
/// numbering are unassigned. Each is a compile-time constant, so a host can
/// `switch` on `TavuroError::errorCode()`; `TavuroErrorInfo::forCode` gives a
/// code's names and text at run time.
///
/// Thread safety: constants; read them from anywhere.
class TAVURO_EXPORT TavuroErrorCodes {
 public:
  // BEGIN generated from interface/TavuroCommon.json: error codes
  static constexpr std::int64_t ERROR_InvalidCredentials = -1;
  static constexpr std::int64_t ERROR_InitializationNotFinished = -4;
  static constexpr std::int64_t ERROR_Network = -5;
  static constexpr std::int64_t ERROR_InvalidJson = -6;
  static constexpr std::int64_t ERROR_CouldNotCrop = -7;
  static constexpr std::int64_t ERROR_CouldNotCreateConnectInstance = -13;
  static constexpr std::int64_t ERROR_CouldNotUploadConnectImage = -14;
  static constexpr std::int64_t ERROR_CouldNotUploadConnectBarcode = -15;
  static constexpr std::int64_t ERROR_CouldNotGetConnectData = -16;
  static constexpr std::int64_t ERROR_CouldNotClassifyDocument = -20;
  static constexpr std::int64_t ERROR_LowResolutionImage = -21;
  static constexpr std::int64_t ERROR_BlurryImage = -22;
  static constexpr std::int64_t ERROR_ImageWithGlare = -23;
  static constexpr std::int64_t ERROR_CouldNotGetIPLivenessToken = -24;
  static constexpr std::int64_t ERROR_NotALiveFace = -25;
  static constexpr std::int64_t ERROR_CouldNotAccessLivenessData = -26;
  static constexpr std::int64_t ERROR_CouldNotAccessCredential = -27;
  static constexpr std::int64_t ERROR_USER_CANCELED_ACTIVITY = -28;
  static constexpr std::int64_t ERROR_INVALID_PARAMETER = -29;
  static constexpr std::int64_t ERROR_KelmoInvalidFormat = -50;
  static constexpr std::int64_t ERROR_EChipReadError = -60;
  static constexpr std::int64_t ERROR_InvalidNfcTag = -61;
  static constexpr std::int64_t ERROR_InvalidNfcKeyFormatting = -62;
  // END generated: error codes
};

/// The fixed error texts of the kit, untranslated. Most match a code of
/// `TavuroErrorCodes` (the code of `ERROR_DESC_X` is `ERROR_X`); five have no
/// code, as noted beside each. Note the deliberate irregular names
/// `ERROR_DESC_ERROR_CouldNotAccessCredential` (of `ERROR_CouldNotAccessCredential`)
/// and `ERROR_DESC_INVALID_PARAMETERS` (of `ERROR_INVALID_PARAMETER`).
///
/// Thread safety: constants; read them from anywhere.
class TAVURO_EXPORT TavuroErrorDescriptions {
 public:
  // BEGIN generated from interface/TavuroCommon.json: error descriptions
  static constexpr char ERROR_DESC_InvalidCredentials[] =  // has code
      "Invalid credentials";
  static constexpr char ERROR_DESC_InvalidEndpoint[] =  // no code
      "Invalid endpoint";
  static constexpr char ERROR_DESC_Network[] =  // has code
      "Network problem";
  static constexpr char ERROR_DESC_InitializationNotFinished[] =  // has code
      "Initialization not finished";
  static constexpr char ERROR_DESC_InvalidJson[] =  // has code
      "Invalid Json response";
  static constexpr char ERROR_DESC_CouldNotCrop[] =  // has code
      "Could not crop image";
  static constexpr char ERROR_DESC_BarcodeCaptureFailed[] =  // no code
      "Barcode capture failed";
  static constexpr char ERROR_DESC_BarcodeCaptureTimedOut[] =  // no code
      "Barcode capture timed out";
  static constexpr char ERROR_DESC_CouldNotCreateConnectInstance[] =  // has code
      "Could not create connect Instance";
  static constexpr char ERROR_DESC_CouldNotUploadConnectImage[] =  // has code
      "Could not upload image to connect instance";
  static constexpr char ERROR_DESC_CouldNotUploadConnectBarcode[] =  // has code
      "Could not upload barcode to connect instance";
  static constexpr char ERROR_DESC_CouldNotGetConnectData[] =  // has code
      "Could not get connect image data";
  static constexpr char ERROR_DESC_CardWidthNotSet[] =  // no code
      "Card width not set";
  static constexpr char ERROR_DESC_CouldNotGetHealthCardData[] =  // no code
      "Could not get health card data";
  static constexpr char ERROR_DESC_CouldNotClassifyDocument[] =  // has code
      "Could not classify document";
  static constexpr char ERROR_DESC_LowResolutionImage[] =  // has code
      "Low resolution image";
  static constexpr char ERROR_DESC_BlurryImage[] =  // has code
      "Blurry image";
  static constexpr char ERROR_DESC_ImageWithGlare[] =  // has code
      "Image has glare";
  static constexpr char ERROR_DESC_CouldNotGetIPLivenessToken[] =  // has code
      "Could not get face liveness token";
  static constexpr char ERROR_DESC_NotALiveFace[] =  // has code
      "Not a live face";
  static constexpr char ERROR_DESC_CouldNotAccessLivenessData[] =  // has code
      "Could not access liveness data";
  static constexpr char ERROR_DESC_ERROR_CouldNotAccessCredential[] =  // has code
      "Could not get credential";
  static constexpr char ERROR_DESC_USER_CANCELED_ACTIVITY[] =  // has code
      "User canceled activity";
  static constexpr char ERROR_DESC_INVALID_PARAMETERS[] =  // has code
      "Invalid Parameters.";
  static constexpr char ERROR_DESC_KelmoInvalidFormat[] =  // has code
      "Kelmo returned invalid format";
  static constexpr char ERROR_DESC_EChipReadError[] =  // has code
      "Error reading eChip. Connection lost to passport or incorrect key.";
  static constexpr char ERROR_DESC_InvalidNfcTag[] =  // has code
      "Tag Tech list was null. Most likely means unsupported passport/not a passport";
  static constexpr char ERROR_DESC_InvalidNfcKeyFormatting[] =  // has code
      "Decryption key formatted incorrectly. Check DOB, DOE, and doc number.";
  // END generated: error descriptions
};

/// One entry of the error tables, for looking a failure up at run time: a
/// code with the names of the code and of its description and the text, or
/// one of the texts that have no code. The names and texts are the constants
/// of `TavuroErrorCodes` and `TavuroErrorDescriptions` themselves.
///
/// Thread safety: constants; read them from anywhere.
struct TAVURO_EXPORT TavuroErrorInfo {
  /// The code; 0 for a text without a code (no code is 0).
  std::int64_t code;
  /// The code's name, "ERROR_Network"; nullptr for a text without a code.
  const char* codeName;
  /// The description's name, "ERROR_DESC_Network".
  const char* descriptionName;
  /// The description's text, "Network problem".
  const char* description;

  /// The entry of `code`; absent when no error has that code (0, positive
  /// numbers and the gaps of the numbering).
  [[nodiscard]] static std::optional<TavuroErrorInfo> forCode(std::int64_t code) noexcept;
  /// Every entry: the codes from -1 downwards, then the texts without a code.
  [[nodiscard]] static const std::vector<TavuroErrorInfo>& all() noexcept;
};

// ===========================================================================
// Start-up
// ===========================================================================

/// What the initializer calls back with: an absent error (nullptr) means
/// success, which is what `TavuroInitializer` always reports.
using TavuroInitializerCallback = std::function<void(std::shared_ptr<TavuroError>)>;

/// A capture package: one start-up operation that reports nothing.
class TAVURO_EXPORT ITavuroPackage {
 public:
  virtual ~ITavuroPackage();
  /// Starts the package. Called by `TavuroInitializer`, once per occurrence
  /// of the package in the list it is given.
  virtual void initialize() = 0;
};

/// The start-up entry point as an interface.
class TAVURO_EXPORT ITavuroInitializer {
 public:
  virtual ~ITavuroInitializer();
  virtual void initialize(const std::vector<std::shared_ptr<ITavuroPackage>>& packages,
                          TavuroInitializerCallback callback) = 0;
};

/// Starts the host's packages. `initialize` calls every package's
/// `initialize()` in list order (duplicates included, null entries skipped),
/// each returning before the next starts, and then calls `callback` exactly
/// once with no error, all before it returns. It keeps no state: a second
/// call starts every package again. It works on its own copy of `packages`:
/// a package that changes or clears the caller's vector from `initialize()`
/// changes nothing of the run, and every package of the list as passed is
/// kept alive until the callback has returned.
///
/// Thread safety: stateless; runs entirely on the calling thread.
class TAVURO_EXPORT TavuroInitializer : public ITavuroInitializer {
 public:
  TavuroInitializer() = default;
  ~TavuroInitializer() override;

  void initialize(const std::vector<std::shared_ptr<ITavuroPackage>>& packages,
                  TavuroInitializerCallback callback) override;
};

// ===========================================================================
// Images and processing mode
// ===========================================================================

/// The result record of one captured picture: the picture, its encoded
/// bytes, what the capture measured and, if it failed, the error. No field
/// constrains another. The picture, the byte buffer and the error are held
/// by shared reference, not copied.
///
/// Thread safety: not synchronised; filled by its producer before it is
/// handed over.
class TAVURO_EXPORT Image {
 public:
  /// Every field at its default: no picture, no bytes, dpi 0, no error,
  /// isCorrectAspectRatio false, aspectRatio 0, no points, isPassport false.
  Image() = default;
  virtual ~Image();

  /// A new record exactly as the default constructor makes it.
  [[nodiscard]] static std::shared_ptr<Image> newInstance();
  /// A default record holding `image` and then `data` (which may be null).
  [[nodiscard]] static std::shared_ptr<Image> newInstance(std::shared_ptr<const Picture> image,
                                                          std::shared_ptr<ByteBuffer> data);

  [[nodiscard]] const std::shared_ptr<const Picture>& image() const noexcept { return image_; }
  void setImage(std::shared_ptr<const Picture> image) noexcept { image_ = std::move(image); }

  [[nodiscard]] const std::shared_ptr<ByteBuffer>& data() const noexcept { return data_; }
  void setData(std::shared_ptr<ByteBuffer> data) noexcept { data_ = std::move(data); }

  [[nodiscard]] std::int64_t dpi() const noexcept { return dpi_; }
  void setDpi(std::int64_t dpi) noexcept { dpi_ = dpi; }

  [[nodiscard]] const std::shared_ptr<TavuroError>& error() const noexcept { return error_; }
  void setError(std::shared_ptr<TavuroError> error) noexcept { error_ = std::move(error); }

  [[nodiscard]] bool isCorrectAspectRatio() const noexcept { return isCorrectAspectRatio_; }
  void setIsCorrectAspectRatio(bool value) noexcept { isCorrectAspectRatio_ = value; }

  [[nodiscard]] float aspectRatio() const noexcept { return aspectRatio_; }
  void setAspectRatio(float aspectRatio) noexcept { aspectRatio_ = aspectRatio; }

  /// The located points, in the order they were written; never absent.
  [[nodiscard]] const std::vector<Point>& points() const noexcept { return points_; }
  void setPoints(std::vector<Point> points) noexcept { points_ = std::move(points); }

  [[nodiscard]] bool isPassport() const noexcept { return isPassport_; }
  void setIsPassport(bool isPassport) noexcept { isPassport_ = isPassport; }

 private:
  std::shared_ptr<const Picture> image_;
  std::shared_ptr<ByteBuffer> data_;
  std::int64_t dpi_ = 0;
  std::shared_ptr<TavuroError> error_;
  bool isCorrectAspectRatio_ = false;
  float aspectRatio_ = 0.0F;
  std::vector<Point> points_;
  bool isPassport_ = false;
};

/// How captured documents are processed. Raw value 1 is data capture (what
/// `DocumentProcessingMode::setDataCaptureProcessingMode()` selects), raw
/// value 2 is the mode every process starts in; raw value 0 is defined by the
/// packages that use it.
enum class ProcessingMode : std::int64_t {
  Reserved = 0,
  DataCapture = 1,
  Standard = 2,
};

/// A two-valued choice shared with the packages, which define its meaning.
enum class DeleteType : std::int64_t {
  Kind0 = 0,
  Kind1 = 1,
};

/// The mode for `rawValue`, or nothing unless `rawValue` is 0, 1 or 2.
[[nodiscard]] TAVURO_EXPORT std::optional<ProcessingMode> processingModeWithRawValue(
    std::int64_t rawValue) noexcept;
/// The value for `rawValue`, or nothing unless `rawValue` is 0 or 1.
[[nodiscard]] TAVURO_EXPORT std::optional<DeleteType> deleteTypeWithRawValue(
    std::int64_t rawValue) noexcept;
/// The integer behind a value.
[[nodiscard]] constexpr std::int64_t rawValue(ProcessingMode mode) noexcept {
  return static_cast<std::int64_t>(mode);
}
[[nodiscard]] constexpr std::int64_t rawValue(DeleteType type) noexcept {
  return static_cast<std::int64_t>(type);
}

/// The process-wide document processing mode. It starts at
/// `ProcessingMode::Standard` on first use and can only be switched to
/// `ProcessingMode::DataCapture`, for good.
///
/// Thread safety: the shared instance is created once whichever thread comes
/// first; reads and the switch are single-word atomic stores and loads.
class TAVURO_EXPORT DocumentProcessingMode {
 public:
  /// The current mode.
  [[nodiscard]] static ProcessingMode processingMode() noexcept;
  /// Switches the process to data capture; calling it again changes nothing.
  static void setDataCaptureProcessingMode() noexcept;

 private:
  // Never made: the mode lives in one process-wide slot inside the library.
  DocumentProcessingMode() = default;
};

// ===========================================================================
// JSON values
// ===========================================================================

class JsonArray;
class JsonDictionary;
namespace detail {
// Opaque: a decoded document and one of its values, as the library's JSON
// reader keeps them. Never defined here; only the library looks inside,
// through JsonAccess.
struct JsonDocument;
struct JsonNode;
struct JsonAccess;
template <typename Container, typename Item>
class JsonIterator;
}  // namespace detail

/// One decoded JSON value: null, boolean, number, text, array or dictionary.
/// Numbers remember whether they were read as a signed integer, an unsigned
/// integer or a floating-point number.
///
/// What the reader accepts (`Utils::convertToDictionary`): RFC 8259 JSON in
/// UTF-8, UTF-16 or UTF-32 (detected), with an object or an array at the top
/// level only (a bare number, text or literal there is an error), at most
/// 512 levels of nested arrays and objects, and numbers within a double's
/// range (a number beyond it, such as 1e400, makes the whole text invalid).
/// Of repeated keys the first is kept.
///
/// Values are immutable and share the document they came from: copying one
/// is cheap, and it keeps that document alive. A document holds a copy of
/// its text and 16 bytes per value and per key; when a large one is freed,
/// up to 8 MB of that node memory is kept for reuse by later parses.
///
/// Thread safety: immutable; read it from any number of threads.
class TAVURO_EXPORT JsonValue {
 public:
  enum class Kind : std::uint8_t { Null, Boolean, Number, String, Array, Object };
  enum class NumberKind : std::uint8_t { Int64, UInt64, Double };

  /// A null value.
  JsonValue() noexcept;

  [[nodiscard]] Kind kind() const noexcept;
  [[nodiscard]] bool isNull() const noexcept { return kind() == Kind::Null; }

  /// The boolean; nothing unless this is a JSON true or false.
  [[nodiscard]] std::optional<bool> boolValue() const noexcept;
  /// How the number was read; nothing unless this is a number.
  [[nodiscard]] std::optional<NumberKind> numberKind() const noexcept;
  /// The number as a signed 64-bit integer, only when it equals one exactly
  /// (3 and 3.0 give 3; 3.5, 1e19 and 2^64-1 give nothing).
  [[nodiscard]] std::optional<std::int64_t> int64Value() const noexcept;
  /// The number as an unsigned 64-bit integer, only when it equals one exactly.
  [[nodiscard]] std::optional<std::uint64_t> uint64Value() const noexcept;
  /// The number as a double, only when it equals one exactly (the integer
  /// 2^53+1 gives nothing).
  [[nodiscard]] std::optional<double> doubleValue() const noexcept;
  /// The text, UTF-8; nothing unless this is a string. The view stays valid
  /// while any value of the same document lives.
  [[nodiscard]] std::optional<std::string_view> stringValue() const noexcept;
  /// The array; nothing unless this is an array.
  [[nodiscard]] std::optional<JsonArray> arrayValue() const;
  /// The dictionary; nothing unless this is an object.
  [[nodiscard]] std::optional<JsonDictionary> dictionaryValue() const;

 private:
  friend class JsonArray;
  friend class JsonDictionary;
  friend struct detail::JsonAccess;
  JsonValue(std::shared_ptr<const detail::JsonDocument> document,
            const detail::JsonNode* node) noexcept;

  std::shared_ptr<const detail::JsonDocument> document_;
  const detail::JsonNode* node_ = nullptr;
};

/// A decoded JSON array: an ordered list of values.
///
/// Thread safety: immutable; read it from any number of threads.
class TAVURO_EXPORT JsonArray {
 public:
  /// An empty array.
  JsonArray() noexcept;

  [[nodiscard]] std::size_t size() const noexcept;
  [[nodiscard]] bool empty() const noexcept { return size() == 0; }
  /// The element at `index`; a null value when `index` is out of range.
  [[nodiscard]] JsonValue operator[](std::size_t index) const noexcept;

  /// Iteration in order, for `for (const JsonValue& value : array)`. The
  /// iterator yields values by copy and keeps the document alive, so it
  /// stays valid after the array object it came from is gone.
  using const_iterator = detail::JsonIterator<JsonArray, JsonValue>;
  [[nodiscard]] const_iterator begin() const noexcept;
  [[nodiscard]] const_iterator end() const noexcept;

 private:
  friend class JsonValue;
  friend struct detail::JsonAccess;
  JsonArray(std::shared_ptr<const detail::JsonDocument> document,
            const detail::JsonNode* node) noexcept;

  std::shared_ptr<const detail::JsonDocument> document_;
  const detail::JsonNode* node_ = nullptr;
};

/// A decoded JSON object: exact, case-sensitive text keys mapped to values.
/// When an object repeated a key, the first value is the one kept.
///
/// Thread safety: immutable; read it from any number of threads.
class TAVURO_EXPORT JsonDictionary {
 public:
  /// An empty dictionary.
  JsonDictionary() noexcept;

  [[nodiscard]] std::size_t size() const noexcept;
  [[nodiscard]] bool empty() const noexcept { return size() == 0; }
  [[nodiscard]] bool contains(std::string_view key) const noexcept;
  /// The value under `key`; nothing when there is no such key (a JSON null
  /// under the key is a present null value).
  [[nodiscard]] std::optional<JsonValue> find(std::string_view key) const noexcept;
  /// The key at `index` in the order of the text, for iteration together
  /// with `valueAt`; empty when `index` is out of range.
  [[nodiscard]] std::string_view keyAt(std::size_t index) const noexcept;
  /// The value at `index`; a null value when `index` is out of range.
  [[nodiscard]] JsonValue valueAt(std::size_t index) const noexcept;

  /// One entry, as iteration yields it. `key` is valid while any value of
  /// the same document lives (`value` is one).
  struct Entry {
    std::string_view key;
    JsonValue value;
  };
  /// Iteration in the order of the text, for
  /// `for (const auto& [key, value] : dictionary)`. The iterator yields
  /// entries by copy and keeps the document alive, so it stays valid after
  /// the dictionary object it came from is gone.
  using const_iterator = detail::JsonIterator<JsonDictionary, Entry>;
  [[nodiscard]] const_iterator begin() const noexcept;
  [[nodiscard]] const_iterator end() const noexcept;

 private:
  friend class JsonValue;
  friend struct detail::JsonAccess;
  JsonDictionary(std::shared_ptr<const detail::JsonDocument> document,
                 const detail::JsonNode* node) noexcept;

  std::shared_ptr<const detail::JsonDocument> document_;
  const detail::JsonNode* node_ = nullptr;
};

namespace detail {
inline JsonValue jsonItemAt(const JsonArray& array, std::size_t index) noexcept {
  return array[index];
}
inline JsonDictionary::Entry jsonItemAt(const JsonDictionary& dictionary,
                                        std::size_t index) noexcept {
  return {dictionary.keyAt(index), dictionary.valueAt(index)};
}

// The iterator of both containers: a copy of the container, which shares
// its document, and an index into it. Iterators are equal at the same index;
// compare only iterators of one container.
template <typename Container, typename Item>
class JsonIterator {
 public:
  using iterator_category = std::forward_iterator_tag;
  using value_type = Item;
  using difference_type = std::ptrdiff_t;
  using pointer = void;
  using reference = Item;

  JsonIterator() noexcept = default;
  JsonIterator(Container container, std::size_t index) noexcept
      : container_(std::move(container)), index_(index) {}

  [[nodiscard]] Item operator*() const noexcept { return jsonItemAt(container_, index_); }
  JsonIterator& operator++() noexcept {
    ++index_;
    return *this;
  }
  // A mutable copy, as the standard iterators return it.
  JsonIterator operator++(int) noexcept {  // NOLINT(cert-dcl21-cpp)
    JsonIterator before = *this;
    ++index_;
    return before;
  }
  [[nodiscard]] friend bool operator==(const JsonIterator& a, const JsonIterator& b) noexcept {
    return a.index_ == b.index_;
  }
  [[nodiscard]] friend bool operator!=(const JsonIterator& a, const JsonIterator& b) noexcept {
    return a.index_ != b.index_;
  }

 private:
  Container container_;
  std::size_t index_ = 0;
};
}  // namespace detail

inline JsonArray::const_iterator JsonArray::begin() const noexcept {
  return const_iterator(*this, 0);
}
inline JsonArray::const_iterator JsonArray::end() const noexcept {
  return const_iterator(*this, size());
}
inline JsonDictionary::const_iterator JsonDictionary::begin() const noexcept {
  return const_iterator(*this, 0);
}
inline JsonDictionary::const_iterator JsonDictionary::end() const noexcept {
  return const_iterator(*this, size());
}

// ===========================================================================
// Utilities and shared settings
// ===========================================================================

/// Lenient typed access to decoded JSON, conversion of /Date(ms)/ fields and
/// the two shared settings. All operations are static.
///
/// Thread safety: the JSON and date operations hold no state and may run on
/// any thread at once; the settings are copied whole on every read and write
/// (guarded, so a racing read sees either the old or the new value).
class TAVURO_EXPORT Utils {
 public:
  Utils() = default;

  /// Parses `text` (UTF-8 bytes) as JSON. Returns the dictionary when the top
  /// level is an object; absent when `text` is absent or the top level is an
  /// array (silently). When the text is not valid JSON, prints the reader's
  /// one-line error description followed by "\n" to standard output and
  /// returns absent. What the reader accepts (nesting, top level, numbers)
  /// is described at `JsonValue`.
  [[nodiscard]] static std::optional<JsonDictionary> convertToDictionary(
      const std::optional<std::string>& text);

  // The typed getters. Each returns its default (0, 0.0, "", false or absent)
  // when the dictionary is absent, the key is missing, the value is null or
  // the value is not already of the wanted kind: nothing is converted between
  // kinds. Numbers convert only when exactly representable.

  [[nodiscard]] static std::int64_t getIntValue(const std::optional<JsonDictionary>& jsonDict,
                                                const std::string& key);
  [[nodiscard]] static double getDoubleValue(const std::optional<JsonDictionary>& jsonDict,
                                             const std::string& key);
  [[nodiscard]] static std::string getStringValue(const std::optional<JsonDictionary>& jsonDict,
                                                  const std::string& key);
  [[nodiscard]] static bool getBooleanValue(const std::optional<JsonDictionary>& jsonDict,
                                            const std::string& key);
  [[nodiscard]] static std::optional<JsonDictionary> getObjectValue(
      const std::optional<JsonDictionary>& jsonDict, const std::string& key);
  [[nodiscard]] static std::optional<JsonArray> getArrayValue(
      const std::optional<JsonDictionary>& jsonDict, const std::string& key);
  /// The same as `getArrayValue`.
  [[nodiscard]] static std::optional<JsonArray> getArrayValueFromJson(
      const std::optional<JsonDictionary>& jsonDict, const std::string& key);

  /// Turns a date field such as "/Date(1234567890000)/" into "MM-dd-yyyy" in
  /// GMT ("02-13-2009"). Every "Date", "/", "(" and ")" is removed; what
  /// remains must be a signed decimal 64-bit count of milliseconds, which is
  /// truncated toward zero to whole seconds. Anything else comes back
  /// unchanged. An absent argument ends the process (see the top of this
  /// header).
  ///
  /// The calendar is the Julian one before 1582-10-15 and the Gregorian one
  /// from then on, so /Date(-12219292801000)/ gives "10-04-1582". The year is
  /// the year of era with at least four digits ("0044" for 44 BC, which has
  /// no era mark). Instants are shown from 09-20-5838270 BC to 12-20-5828963;
  /// one beyond either end gives the empty text, as the platform's formatter
  /// (which is not lenient) does.
  [[nodiscard]] static std::optional<std::string> dateFieldToDateString(
      const std::optional<std::string>& dateStr);

  /// The JPEG quality (0.0 to 1.0 by convention, not checked) for images
  /// that packages send to services. Starts at 0.9.
  [[nodiscard]] static double SENT_IMAGE_QUALITY_JPEG_COMPRESSION() noexcept;
  static void setSENT_IMAGE_QUALITY_JPEG_COMPRESSION(double quality) noexcept;

  /// The kit's version text. Starts at "11.4.10"; any text is stored as is.
  [[nodiscard]] static std::string SDK_VERSION_CODE();
  static void setSDK_VERSION_CODE(std::string versionCode);
};

// ===========================================================================
// Endpoints, tokens and the credential store
// ===========================================================================

/// The base addresses of the kit's cloud services, as the configuration
/// file or the host gives them: nothing is checked, joined or normalised,
/// and an empty text stays empty. Every field starts absent; a setter given
/// an absent value clears its field.
///
/// The credential store hands out its own record by shared reference, so a
/// change made here is seen at once by every holder. The record's setters
/// write nothing themselves: a change reaches the configuration file only
/// at the store's next save (any `Credential` setter), and only for
/// `frmEndpoint`, `idEndpoint` and `healthInsuranceEndpoint`.
///
/// Thread safety: not synchronised; use it from one thread at a time.
class TAVURO_EXPORT Endpoints {
 public:
  /// A record with every field absent.
  Endpoints() = default;
  virtual ~Endpoints();

  /// A new record exactly as the default constructor makes it.
  [[nodiscard]] static std::shared_ptr<Endpoints> newInstance();

  /// FRM service ("frm_endpoint").
  [[nodiscard]] virtual std::optional<std::string> frmEndpoint() const;
  virtual void setFrmEndpoint(std::optional<std::string> endpoint);
  /// Document authentication service ("ferisant_endpoint").
  [[nodiscard]] virtual std::optional<std::string> idEndpoint() const;
  virtual void setIdEndpoint(std::optional<std::string> endpoint);
  /// Passive liveness service ("passive_liveness_endpoint"; never saved).
  [[nodiscard]] virtual std::optional<std::string> passiveLivenessEndpoint() const;
  virtual void setPassiveLivenessEndpoint(std::optional<std::string> endpoint);
  /// Health insurance service ("med_endpoint").
  [[nodiscard]] virtual std::optional<std::string> healthInsuranceEndpoint() const;
  virtual void setHealthInsuranceEndpoint(std::optional<std::string> endpoint);
  /// Kelmo e-passport chip verification ("kelmo_endpoint"; never saved, and
  /// given the built-in default when the file has no text under the key;
  /// the default is the CMake cache setting TAVURO_KELMO_DEFAULT_ENDPOINT).
  [[nodiscard]] virtual std::optional<std::string> kelmoEndpoint() const;
  virtual void setKelmoEndpoint(std::optional<std::string> endpoint);

 private:
  std::optional<std::string> frmEndpoint_;
  std::optional<std::string> idEndpoint_;
  std::optional<std::string> passiveLivenessEndpoint_;
  std::optional<std::string> healthInsuranceEndpoint_;
  std::optional<std::string> kelmoEndpoint_;
};

/// A session token: the token text sent to services and the instant from
/// which it may no longer be used. Immutable; it neither decodes nor checks
/// the text.
///
/// Thread safety: immutable; `isValid()` only reads the system clock.
class TAVURO_EXPORT TavuroJwtToken {
 public:
  /// Stores both unchanged; any text (even empty) and any instant is taken.
  TavuroJwtToken(std::string value, Instant expiration);
  virtual ~TavuroJwtToken();

  /// The whole token, byte for byte as given.
  [[nodiscard]] const std::string& value() const noexcept { return value_; }
  /// The instant from which the token is no longer valid.
  [[nodiscard]] Instant expiration() const noexcept { return expiration_; }

  /// True while the current time is strictly before `expiration()`; false
  /// at the very instant of expiry and after. No margin is applied.
  [[nodiscard]] virtual bool isValid() const;
  /// The rule of `isValid()` at the instant `now` instead of the current
  /// time: true only when `now` is strictly before `expiration()`.
  [[nodiscard]] bool isValidAt(Instant now) const noexcept;

 private:
  std::string value_;
  Instant expiration_;
};

/// Decodes JSON Web Tokens (compact form) far enough to read the payload's
/// "exp" claim. It verifies nothing: the header and signature are never
/// read.
///
/// Thread safety: stateless; one parser may be used from any number of
/// threads at once.
class TAVURO_EXPORT TavuroJwtParser {
 public:
  TavuroJwtParser() = default;
  virtual ~TavuroJwtParser();

  /// A token record holding `jwtToken` unchanged and the payload's "exp" as
  /// its expiration (that many seconds after 1970-01-01T00:00:00 UTC);
  /// nullptr when the payload does not decode, has no "exp", or "exp" is
  /// not a JSON number exactly equal to a signed 64-bit integer (1.7e9
  /// counts; 1.5, 2^63, a text of digits and a boolean do not). An expired
  /// token still gives a record. `jwtToken` must contain a "." (see
  /// `decode`).
  [[nodiscard]] virtual std::shared_ptr<TavuroJwtToken> parseToken(
      const std::string& jwtToken) const;

  /// The claims of the payload (the second "."-separated segment, empty
  /// segments counting: in "a..b" it is the empty one); an empty
  /// dictionary when that segment is not base64url of a JSON object.
  /// A token without any "." ends the process: check for one first when
  /// the text is not known to be a token.
  [[nodiscard]] virtual JsonDictionary decode(const std::string& jwtToken) const;

  /// The bytes of a base64url text: "-" and "_" read as "+" and "/", "="
  /// appended up to a multiple of four bytes of the whole text, then
  /// characters outside the base64 alphabet skipped. Absent when the text
  /// cannot be decoded, as when a single alphabet character is left over
  /// at the end ("YWJjZ").
  [[nodiscard]] virtual std::optional<std::vector<std::uint8_t>> base64UrlDecode(
      const std::string& text) const;

  /// The JSON object in one base64url segment; absent when the segment does
  /// not decode or does not hold a JSON object.
  [[nodiscard]] virtual std::optional<JsonDictionary> decodeJWTPart(
      const std::string& segment) const;

 private:
  [[nodiscard]] std::optional<JsonDictionary> objectFromSegment(const std::string& segment) const;
};

/// Names the directory that stands for the host's resource bundle: the
/// credential store reads and rewrites "TavuroConfig.plist" there. Call it
/// before the first use of `Credential`; later calls do not reload the store
/// (its saves do go to the directory named last). An empty text withdraws
/// the name.
///
/// Without a name the directory is the one in the environment variable
/// `TAVURO_RESOURCE_PATH` (when set and not empty), else the directory of
/// the running executable (found through /proc/self/exe on Linux and the
/// loader's executable path on macOS; none elsewhere).
///
/// The configuration resource exists only when
/// "<directory>/TavuroConfig.plist" is a regular file (or a link to one).
/// Otherwise the store starts empty and its setters write no file at all:
/// the library never creates the configuration file.
///
/// Thread safety: may be called from any thread; the name is guarded.
TAVURO_EXPORT void setResourceDirectory(const std::string& directory);

/// The resource directory that is in force now, found as described at
/// `setResourceDirectory`; empty when none can be determined.
[[nodiscard]] TAVURO_EXPORT std::string resourceDirectory();

/// The process-wide credential store: user name, password, subscription,
/// service endpoints and the current session token, and the HTTP
/// "Authorization" values built from them.
///
/// The store loads itself once, on the first call of any operation (except
/// `isCredentialValid` with an absent or empty endpoint), from
/// "TavuroConfig.plist" in the resource directory (see
/// `setResourceDirectory`). Each of the eight keys it knows counts only when
/// it holds a string; "kelmo_endpoint" then falls back to a built-in
/// default, every other key to absent, and unknown keys are ignored. A
/// readable file always gives an `Endpoints` record, even one without any
/// endpoint key. A missing or unreadable file, a malformed property list or
/// a root that is not a dictionary leaves the store empty, endpoints
/// included.
///
/// Every setter, even one that changes nothing, rewrites that file whole and
/// atomically when it exists (no file is ever created). The rewrite holds
/// only "tavuro_username", "tavuro_password", "tavuro_subscription",
/// "ferisant_endpoint", "med_endpoint" and "frm_endpoint", each when
/// present (an empty text is present), so any other key is dropped from the
/// file on purpose, "passive_liveness_endpoint" and "kelmo_endpoint"
/// included: after a save, the next process starts with no passive liveness
/// endpoint and the default Kelmo one. A change made directly on the record
/// from `endpoints()` reaches the file with the next setter call.
///
/// A save writes a new file beside the old one, flushes it, gives it the old
/// file's owner (where the process may set it, as root may) and permission
/// bits, and renames it over the old one, so the file is never left half
/// written. While it is written the new file is readable by its owner only
/// (0600). On Linux it has no name until just before the rename, so a crash
/// of the process leaves nothing behind; elsewhere, or in that last moment,
/// a crash can leave one hidden ".TavuroConfig.plist.tmp-..." file holding
/// the new values, which the next load or save of any process removes.
///
/// A save never writes a file that would not load back as the values saved:
/// when a text is not well-formed UTF-8, or the file would exceed 16 MiB
/// (the largest configuration file the store reads), the save fails. A
/// failed save is not reported: the old file stays as it was and the new
/// value stays in memory. The token is never written. Saving needs a POSIX
/// system; elsewhere changes stay in memory.
///
/// Thread safety: the first use is guarded, so concurrent first callers see
/// one fully loaded store; after that nothing is synchronised, so call it
/// from one thread at a time.
class TAVURO_EXPORT Credential {
 public:
  Credential(const Credential&) = delete;
  Credential& operator=(const Credential&) = delete;

  /// The account user name, password and subscription identifier; absent
  /// until the file or a setter gives one.
  [[nodiscard]] static std::optional<std::string> username();
  [[nodiscard]] static std::optional<std::string> password();
  [[nodiscard]] static std::optional<std::string> subscription();
  /// The store's own record (not a copy); nullptr when no configuration file
  /// was read and none was set.
  [[nodiscard]] static std::shared_ptr<Endpoints> endpoints();

  /// Drops the stored token; false when none was stored.
  static bool removeToken();
  /// Decodes `token` and stores it when its "exp" lies strictly after now
  /// (the clock is read once).
  /// False (with the stored token unchanged) when it cannot be decoded, has
  /// no usable "exp" or has expired. `token` must contain a "."; see
  /// `TavuroJwtParser::decode`.
  static bool setToken(const std::string& token);
  /// The stored token, expired or not; nullptr when none is stored.
  [[nodiscard]] static std::shared_ptr<TavuroJwtToken> getToken();
  /// False for an absent or empty endpoint, without touching the store;
  /// otherwise true when user name, password and subscription are all
  /// present and non-empty, or when any token is stored (its expiry is not
  /// looked at). The endpoint's form is not checked.
  [[nodiscard]] static bool isCredentialValid(const std::optional<std::string>& endpoint);
  /// "Bearer " and the stored token (expired or not) while one is stored,
  /// else `getBasicAuthHeader()`.
  [[nodiscard]] static std::optional<std::string> getTavuroAuthHeader();
  /// "Basic " and the base64 of user name ":" password; absent when either
  /// is absent.
  [[nodiscard]] static std::optional<std::string> getBasicAuthHeader();

  /// Each setter stores the value (absent clears it), then saves the file.
  static void setUsername(const std::optional<std::string>& username);
  static void setPassword(const std::optional<std::string>& password);
  static void setSubscription(const std::optional<std::string>& subscription);
  /// Stores the record itself, not a copy, then saves the file.
  static void setEndpoints(std::shared_ptr<Endpoints> endpoints);

 private:
  // Never made: the state lives in one process-wide store inside the
  // library, which these operations reach.
  Credential() = default;
};

}  // namespace tavuro

#endif  // TAVUROCOMMON_TAVUROCOMMON_H_
