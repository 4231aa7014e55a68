package com.tavuro.common;

import java.lang.ref.Reference;
import java.util.ArrayList;
import java.util.Collections;
import java.util.List;

/**
 * The capture result that packages hand back: the picture, its encoded bytes, resolution, error,
 * aspect-ratio check, corner points and whether it shows a passport. A shared reference to one
 * native record; set it from one thread at a time.
 */
public final class Image extends NativeObject {
  /**
   * A default record holding {@code image} and a copy of {@code data} ({@code null} allowed).
   */
  public static Image newInstance(@Nullable Picture image, @Nullable byte[] data) {
    Image record = newInstance();
    record.setImage(image);
    record.setData(data);
    return record;
  }

  /** The picture, or null when absent. */
  @Nullable
  public Picture getImage() {
    try {
      return Picture.wrap(nImage(handle));
    } finally {
      Reference.reachabilityFence(this);
    }
  }

  /** Replaces the picture, which the record then shares; null clears it. */
  public void setImage(@Nullable Picture image) {
    try {
      nSetImage(handle, image == null ? 0 : image.handle);
    } finally {
      Reference.reachabilityFence(this);
      Reference.reachabilityFence(image);
    }
  }

  /** A copy of the record's bytes, or null when it holds none. */
  @Nullable
  public byte[] getData() {
    try {
      return nData(handle);
    } finally {
      Reference.reachabilityFence(this);
    }
  }

  /** Replaces the bytes with a copy of {@code data}; null clears them. */
  public void setData(@Nullable byte[] data) {
    try {
      nSetData(handle, data);
    } finally {
      Reference.reachabilityFence(this);
    }
  }

  /** A copy of the corner points, in their order; empty when there are none. */
  public List<Point> getPoints() {
    double[] xy;
    try {
      xy = nPoints(handle);
    } finally {
      Reference.reachabilityFence(this);
    }
    List<Point> points = new ArrayList<>(xy.length / 2);
    for (int i = 0; i + 1 < xy.length; i += 2) {
      points.add(new Point(xy[i], xy[i + 1]));
    }
    return Collections.unmodifiableList(points);
  }

  /** Replaces the points with a copy of {@code points}; a null element throws. */
  public void setPoints(List<Point> points) {
    double[] xy = new double[points.size() * 2];
    int i = 0;
    for (Point p : points) {
      xy[i++] = p.getX();
      xy[i++] = p.getY();
    }
    try {
      nSetPoints(handle, xy);
    } finally {
      Reference.reachabilityFence(this);
    }
  }

  private static native long nImage(long handle);

  private static native void nSetImage(long handle, long picture);

  private static native byte[] nData(long handle);

  private static native void nSetData(long handle, byte[] data);

  private static native double[] nPoints(long handle);

  private static native void nSetPoints(long handle, double[] xy);

  // BEGIN generated from interface/TavuroCommon.json: members
  static {
    NativeLibrary.load();
  }

  /** Takes over one reference to a native object (see NativeObject). */
  Image(long handle) {
    super(handle, Image::nRelease);
  }

  /** The object over a reference that the caller hands over, or null for 0. */
  @Nullable
  static Image wrap(long handle) {
    return handle == 0 ? null : new Image(handle);
  }

  private static native void nRelease(long handle);

  /** A record with every field at its default: no picture, bytes or error, 0 dpi, aspect ratio 0,
   * no points, not a passport. */
  public Image() {
    super(nNewInstance(), Image::nRelease);
  }

  /** Same as the no-argument constructor: every field at its default. */
  public static Image newInstance() {
    return Image.wrap(nNewInstance());
  }

  /** The resolution of the picture in dots per inch. */
  public final long getDpi() {
    try {
      return nDpi(handle);
    } finally {
      Reference.reachabilityFence(this);
    }
  }

  /** Replaces the resolution. */
  public final void setDpi(long dpi) {
    try {
      nSetDpi(handle, dpi);
    } finally {
      Reference.reachabilityFence(this);
    }
  }

  /** The error of the capture (the record itself, shared), or null when absent. */
  public final @Nullable TavuroError getError() {
    try {
      return TavuroError.wrap(nError(handle));
    } finally {
      Reference.reachabilityFence(this);
    }
  }

  /** Replaces the error with {@code error} itself, shared; null clears it. */
  public final void setError(@Nullable TavuroError error) {
    try {
      nSetError(handle, error == null ? 0 : error.handle);
    } finally {
      Reference.reachabilityFence(this);
      Reference.reachabilityFence(error);
    }
  }

  /** Whether the picture passed the aspect-ratio check. */
  public final boolean isCorrectAspectRatio() {
    try {
      return nIsCorrectAspectRatio(handle);
    } finally {
      Reference.reachabilityFence(this);
    }
  }

  /** Replaces the result of the aspect-ratio check. */
  public final void setCorrectAspectRatio(boolean value) {
    try {
      nSetIsCorrectAspectRatio(handle, value);
    } finally {
      Reference.reachabilityFence(this);
    }
  }

  /** The aspect ratio measured on the picture. */
  public final float getAspectRatio() {
    try {
      return nAspectRatio(handle);
    } finally {
      Reference.reachabilityFence(this);
    }
  }

  /** Replaces the aspect ratio. */
  public final void setAspectRatio(float aspectRatio) {
    try {
      nSetAspectRatio(handle, aspectRatio);
    } finally {
      Reference.reachabilityFence(this);
    }
  }

  /** Whether the captured document is a passport. */
  public final boolean isPassport() {
    try {
      return nIsPassport(handle);
    } finally {
      Reference.reachabilityFence(this);
    }
  }

  /** Replaces whether the captured document is a passport. */
  public final void setPassport(boolean isPassport) {
    try {
      nSetIsPassport(handle, isPassport);
    } finally {
      Reference.reachabilityFence(this);
    }
  }

  private static native long nNewInstance();
  private static native long nDpi(long handle);
  private static native void nSetDpi(long handle, long dpi);
  private static native long nError(long handle);
  private static native void nSetError(long handle, long error);
  private static native boolean nIsCorrectAspectRatio(long handle);
  private static native void nSetIsCorrectAspectRatio(long handle, boolean value);
  private static native float nAspectRatio(long handle);
  private static native void nSetAspectRatio(long handle, float aspectRatio);
  private static native boolean nIsPassport(long handle);
  private static native void nSetIsPassport(long handle, boolean isPassport);
  // END generated: members
}
