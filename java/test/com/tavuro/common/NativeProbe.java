package com.tavuro.common;

/** Native functions that only the binding's tests and benchmark call. */
public final class NativeProbe {
  static {
    NativeLibrary.load();
  }

  private NativeProbe() {}

  /** Bytes of the native heap in use now. */
  public static native long heapInUse();

  /**
   * What the native getter {@code which} (0 int, 1 double, 2 string, 3 boolean, 4 object, 5
   * array, 6 array from JSON) gives for {@code key} of the dictionary of {@code json}; for the
   * last three the size of the result as a Long, or null when absent.
   */
  public static native Object nativeGetter(int which, String json, String key);

  /** Nanoseconds per call of the C++ authorization header over {@code calls} calls. */
  public static native double nativeAuthHeaderNanos(int calls);
}
