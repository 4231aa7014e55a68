package com.tavuro.common;

import java.lang.ref.Reference;

/**
 * A decoded picture: width, height, pixel layout and the pixels, top row first. Immutable and
 * shared by reference; safe to read from any thread.
 */
public final class Picture extends NativeObject {
  static {
    NativeLibrary.load();
  }

  Picture(long handle) {
    super(handle, Picture::nRelease);
  }

  @Nullable
  static Picture wrap(long handle) {
    return handle == 0 ? null : new Picture(handle);
  }

  /**
   * A picture holding a copy of {@code pixels}; null when their count is not width * height *
   * bytes per pixel.
   */
  @Nullable
  public static Picture make(int width, int height, PixelFormat format, byte[] pixels) {
    if (width < 0 || height < 0) {
      return null;
    }
    return wrap(nMake(width, height, format.ordinal(), pixels));
  }

  /** The width in pixels. */
  public int getWidth() {
    try {
      return nWidth(handle);
    } finally {
      Reference.reachabilityFence(this);
    }
  }

  /** The height in pixels. */
  public int getHeight() {
    try {
      return nHeight(handle);
    } finally {
      Reference.reachabilityFence(this);
    }
  }

  /** The layout of one pixel. */
  public PixelFormat getPixelFormat() {
    try {
      return PixelFormat.values()[nPixelFormat(handle)];
    } finally {
      Reference.reachabilityFence(this);
    }
  }

  /** A copy of the pixels, top row first. */
  public byte[] getPixels() {
    try {
      return nPixels(handle);
    } finally {
      Reference.reachabilityFence(this);
    }
  }

  private static native long nMake(int width, int height, int format, byte[] pixels);

  private static native int nWidth(long handle);

  private static native int nHeight(long handle);

  private static native int nPixelFormat(long handle);

  private static native byte[] nPixels(long handle);

  private static native void nRelease(long handle);
}
