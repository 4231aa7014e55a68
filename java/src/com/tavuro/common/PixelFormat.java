package com.tavuro.common;

/** The layout of one pixel of a {@link Picture}. */
public enum PixelFormat {
  /** One byte of gray. */
  GRAY8(1),
  /** Red, green, blue: three bytes. */
  RGB8(3),
  /** Red, green, blue, alpha: four bytes. */
  RGBA8(4),
  /** Blue, green, red, alpha: four bytes. */
  BGRA8(4);

  private final int bytes;

  PixelFormat(int bytes) {
    this.bytes = bytes;
  }

  /** The bytes one pixel takes. */
  public int bytesPerPixel() {
    return bytes;
  }
}
