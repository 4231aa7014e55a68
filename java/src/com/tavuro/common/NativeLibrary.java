package com.tavuro.common;

import java.lang.ref.Cleaner;
import java.nio.charset.StandardCharsets;
import java.time.Instant;

/**
 * Loads {@code libTavuroCommonJni.so} once and holds what every class of the package shares: the
 * cleaner that gives native references back when their Java objects are collected, and the
 * conversions of instants.
 *
 * <p>The library is found through {@code java.library.path}, or at the absolute path in the
 * system property {@code tavuro.jni.library} when that is set.
 */
final class NativeLibrary {
  /** Gives every native reference back once its Java object is unreachable. */
  static final Cleaner CLEANER = Cleaner.create();

  static {
    String path = System.getProperty("tavuro.jni.library");
    if (path != null && !path.isEmpty()) {
      System.load(path);
    } else {
      System.loadLibrary("TavuroCommonJni");
    }
  }

  private NativeLibrary() {}

  /** Makes sure the native library is loaded; every class with native methods calls it first. */
  static void load() {
    // The static initializer above does the work.
  }

  // Text results and small JSON trees arrive in this per-thread buffer: filling a Java array from
  // native code and making the objects in Java costs a fraction of making them in native code,
  // and a call that fits allocates no array. Whoever fills it reads it before the next call.
  private static final ThreadLocal<byte[]> TEXT_BUFFER =
      ThreadLocal.withInitial(() -> new byte[16384]);

  /** The calling thread's buffer for text results and small JSON trees. */
  static byte[] textBuffer() {
    return TEXT_BUFFER.get();
  }

  /**
   * The text result that a native method reported as {@code length} bytes in {@code buffer}: null
   * for -1; when it did not fit, native code kept it and hands it over now.
   */
  @Nullable
  static String text(int length, byte[] buffer) {
    if (length < 0) {
      return null;
    }
    if (length <= buffer.length) {
      return new String(buffer, 0, length, StandardCharsets.UTF_8);
    }
    byte[] whole = new byte[length];
    nTakePendingText(whole);
    return new String(whole, StandardCharsets.UTF_8);
  }

  private static native void nTakePendingText(byte[] whole);

  /** The instant {@code seconds} after 1970-01-01T00:00:00Z (nanosecond precision). */
  static Instant instant(double seconds) {
    double whole = Math.floor(seconds);
    if (whole > Instant.MAX.getEpochSecond()) {
      return Instant.MAX;
    }
    if (whole < Instant.MIN.getEpochSecond()) {
      return Instant.MIN;
    }
    long nanos = Math.round((seconds - whole) * 1e9);
    return Instant.ofEpochSecond((long) whole, 0).plusNanos(nanos);
  }

  /** Seconds since 1970-01-01T00:00:00Z as a double. */
  static double seconds(Instant instant) {
    return instant.getEpochSecond() + instant.getNano() / 1e9;
  }
}
