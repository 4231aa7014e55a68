package com.tavuro.common;

import java.math.BigDecimal;
import java.math.BigInteger;
import java.nio.charset.StandardCharsets;
import java.util.List;
import java.util.Map;
import java.util.Objects;

/**
 * Typed access to decoded JSON, date fields and the two shared settings.
 *
 * <p>A JSON dictionary is a {@code Map<String, Object>} whose values are {@code String}, {@code
 * Long}, {@code Double}, {@code Boolean}, {@code List<Object>}, {@code Map<String, Object>} or
 * {@code null} (a JSON null, kept under its key). A whole number above {@link Long#MAX_VALUE} is a
 * {@link BigInteger}. {@link #convertToDictionary(String)} makes such maps; the getters take them
 * and also maps that the host made itself (other {@link Number} types are read as the number they
 * hold), and answer as the native getters do on the same JSON.
 *
 * <p>The JSON operations keep no state and may run on any thread; the map must not change during
 * a call. {@link #dateFieldToDateString(String)} throws {@link NullPointerException} for {@code
 * null} before native code is reached. The settings are meant to be set from one thread before
 * work spreads over threads.
 */
public final class Utils {
  private static final double TWO_63 = 9223372036854775808.0;
  private static final double TWO_64 = 18446744073709551616.0;
  // Texts up to this many characters are first tried as ASCII bytes: beyond it,
  // a text that turns out not to be ASCII would cost too much to try.
  private static final int ASCII_CHECK_LIMIT = 8192;

  /** Makes an instance, which has nothing to do: every operation is static. */
  public Utils() {}

  /**
   * The dictionary of a JSON object text as a new mutable map in the order of the text; null for
   * null, for an array, for a text that cannot be encoded as UTF-8 (a lone surrogate) and for text
   * that is not JSON (which also prints the reader's one-line error description on standard
   * output).
   *
   * <p>Its maps and lists belong to the caller. The maps are of a compact kind that keeps keys and
   * values in one array: they support every {@code Map} operation, are serializable and iterate in
   * the order of the text; {@code get} and {@code put} take constant time, {@code remove} time in
   * proportion to the size of the map. Like {@code HashMap} they are not safe for several threads
   * when one of them writes.
   */
  @Nullable
  public static Map<String, Object> convertToDictionary(@Nullable String text) {
    if (text == null) {
      return null;
    }
    // A short text that is all ASCII leaves the JVM at copying speed as its own UTF-8.
    byte[] utf8 = text.length() <= ASCII_CHECK_LIMIT ? text.getBytes(StandardCharsets.UTF_8) : null;
    return JsonTree.decodeObject(
        nConvertToDictionary(text, utf8 != null && utf8.length == text.length() ? utf8 : null,
            NativeLibrary.textBuffer()));
  }

  /** The number under {@code key} when it is exactly a 64-bit integer; 0 otherwise. */
  public static long getIntValue(@Nullable Map<String, Object> jsonDict, String key) {
    Object value = jsonDict == null ? null : jsonDict.get(key);
    if (value instanceof Long || value instanceof Integer || value instanceof Short
        || value instanceof Byte) {
      return ((Number) value).longValue();
    }
    if (value instanceof BigInteger) {
      BigInteger big = (BigInteger) value;
      return big.bitLength() < 64 ? big.longValue() : 0;
    }
    if (value instanceof Number) {
      double d = asDouble((Number) value);
      return d >= -TWO_63 && d < TWO_63 && d == Math.floor(d) ? (long) d : 0;
    }
    return 0;
  }

  /** The number under {@code key} when a double holds it exactly; 0.0 otherwise. */
  public static double getDoubleValue(@Nullable Map<String, Object> jsonDict, String key) {
    Object value = jsonDict == null ? null : jsonDict.get(key);
    if (value instanceof Long || value instanceof Integer || value instanceof Short
        || value instanceof Byte) {
      long l = ((Number) value).longValue();
      double d = (double) l;
      return d < TWO_63 && (long) d == l ? d : 0.0;
    }
    if (value instanceof BigInteger) {
      BigInteger big = (BigInteger) value;
      if (big.bitLength() < 64) {
        long l = big.longValue();
        return (double) l < TWO_63 && (long) (double) l == l ? (double) l : 0.0;
      }
      double d = big.doubleValue();
      boolean unsigned = big.signum() > 0 && big.bitLength() <= 64;
      if (!unsigned) {
        return d;
      }
      return d < TWO_64 && new BigDecimal(d).toBigInteger().equals(big) ? d : 0.0;
    }
    if (value instanceof Number) {
      return asDouble((Number) value);
    }
    return 0.0;
  }

  /** The text under {@code key}; "" when there is none. Never null. */
  public static String getStringValue(@Nullable Map<String, Object> jsonDict, String key) {
    Object value = jsonDict == null ? null : jsonDict.get(key);
    return value instanceof String ? (String) value : "";
  }

  /** The JSON boolean under {@code key}; false otherwise (a text or number is never one). */
  public static boolean getBooleanValue(@Nullable Map<String, Object> jsonDict, String key) {
    Object value = jsonDict == null ? null : jsonDict.get(key);
    return value instanceof Boolean && (Boolean) value;
  }

  /**
   * The dictionary under {@code key} (the map itself, not a copy), or null when the value is not a
   * map whose keys are all texts.
   */
  @Nullable
  @SuppressWarnings("unchecked")
  public static Map<String, Object> getObjectValue(
      @Nullable Map<String, Object> jsonDict, String key) {
    Object value = jsonDict == null ? null : jsonDict.get(key);
    if (!(value instanceof Map)) {
      return null;
    }
    for (Object k : ((Map<?, ?>) value).keySet()) {
      if (!(k instanceof String)) {
        return null;
      }
    }
    return (Map<String, Object>) value;
  }

  /**
   * The array under {@code key} (the list itself, not a copy; its elements unconverted), or null
   * when the value is not a list.
   */
  @Nullable
  @SuppressWarnings("unchecked")
  public static List<Object> getArrayValue(@Nullable Map<String, Object> jsonDict, String key) {
    Object value = jsonDict == null ? null : jsonDict.get(key);
    return value instanceof List ? (List<Object>) value : null;
  }

  /** Exactly {@link #getArrayValue(Map, String)}: a second name for the same operation. */
  @Nullable
  public static List<Object> getArrayValueFromJson(
      @Nullable Map<String, Object> jsonDict, String key) {
    return getArrayValue(jsonDict, key);
  }

  private static double asDouble(Number number) {
    if (number instanceof Float) {
      return (double) (Float) number;
    }
    return number.doubleValue();
  }

  /**
   * The compact tree of {@code text} (see JsonTree), written into {@code into} when it fits and
   * otherwise into a new array; null for none.
   */
  private static native Object nConvertToDictionary(String text, @Nullable byte[] utf8,
      byte[] into);

  // BEGIN generated from interface/TavuroCommon.json: members
  static {
    NativeLibrary.load();
  }


  /** "/Date(1234567890000)/" gives "02-13-2009" (GMT); anything that is not a plain millisecond
   * count comes back unchanged. Null throws NullPointerException before native code is reached. */
  public static @Nullable String dateFieldToDateString(@Nullable String dateStr) {
    Objects.requireNonNull(dateStr, "dateStr");
    byte[] buffer = NativeLibrary.textBuffer();
    return NativeLibrary.text(nDateFieldToDateStringWithDateStr(buffer, dateStr), buffer);
  }

  /** The JPEG quality, on the encoder's scale of 0.0 to 1.0, of images sent to services; 0.9 at
   * first. */
  public static double getSENT_IMAGE_QUALITY_JPEG_COMPRESSION() {
    return nSENTIMAGEQUALITYJPEGCOMPRESSION();
  }

  /** Stores the JPEG quality unchecked, for the whole process. */
  public static void setSENT_IMAGE_QUALITY_JPEG_COMPRESSION(double quality) {
    nSetSENTIMAGEQUALITYJPEGCOMPRESSION(quality);
  }

  /** The kit's version text; "11.4.10" at first. */
  public static String getSDK_VERSION_CODE() {
    byte[] buffer = NativeLibrary.textBuffer();
    return NativeLibrary.text(nSDKVERSIONCODE(buffer), buffer);
  }

  /** Stores a copy of the version text for the whole process; null leaves it unchanged. */
  public static void setSDK_VERSION_CODE(@Nullable String versionCode) {
    nSetSDKVERSIONCODE(versionCode);
  }

  private static native int nDateFieldToDateStringWithDateStr(byte[] buffer, String dateStr);
  private static native double nSENTIMAGEQUALITYJPEGCOMPRESSION();
  private static native void nSetSENTIMAGEQUALITYJPEGCOMPRESSION(double quality);
  private static native int nSDKVERSIONCODE(byte[] buffer);
  private static native void nSetSDKVERSIONCODE(String versionCode);
  // END generated: members
}
