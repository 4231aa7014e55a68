package com.tavuro.common;

import java.lang.ref.Reference;

/**
 * The error record of the kit: a code from {@link TavuroErrorCodes} and an optional text, usually
 * the {@link TavuroErrorDescriptions} entry of the same failure. A shared reference to one native
 * record; set it from one thread at a time.
 */
public final class TavuroError extends NativeObject {
  // BEGIN generated from interface/TavuroCommon.json: members
  static {
    NativeLibrary.load();
  }

  /** Takes over one reference to a native object (see NativeObject). */
  TavuroError(long handle) {
    super(handle, TavuroError::nRelease);
  }

  /** The object over a reference that the caller hands over, or null for 0. */
  @Nullable
  static TavuroError wrap(long handle) {
    return handle == 0 ? null : new TavuroError(handle);
  }

  private static native void nRelease(long handle);

  /** A record with code 0 and an absent description. */
  public TavuroError() {
    super(nNewInstance(), TavuroError::nRelease);
  }

  /** A record with {@code errorCode} and {@code errorDescription} (null stays absent). */
  public TavuroError(long errorCode, @Nullable String errorDescription) {
    super(nInitWithErrorCodeErrorDescription(errorCode, errorDescription), TavuroError::nRelease);
  }

  /** Same as the no-argument constructor: code 0 and an absent description. */
  public static TavuroError newInstance() {
    return TavuroError.wrap(nNewInstance());
  }

  /** The error code, one of TavuroErrorCodes (0 at first). */
  public final long getErrorCode() {
    try {
      return nErrorCode(handle);
    } finally {
      Reference.reachabilityFence(this);
    }
  }

  /** Replaces the error code. */
  public final void setErrorCode(long errorCode) {
    try {
      nSetErrorCode(handle, errorCode);
    } finally {
      Reference.reachabilityFence(this);
    }
  }

  /** The error text, or null when absent. */
  public final @Nullable String getErrorDescription() {
    byte[] buffer = NativeLibrary.textBuffer();
    try {
      return NativeLibrary.text(nErrorDescription(buffer, handle), buffer);
    } finally {
      Reference.reachabilityFence(this);
    }
  }

  /** Replaces the error text; null clears it. */
  public final void setErrorDescription(@Nullable String errorDescription) {
    try {
      nSetErrorDescription(handle, errorDescription);
    } finally {
      Reference.reachabilityFence(this);
    }
  }

  private static native long nNewInstance();
  private static native long nInitWithErrorCodeErrorDescription(long errorCode, String errorDescription);
  private static native long nErrorCode(long handle);
  private static native void nSetErrorCode(long handle, long errorCode);
  private static native int nErrorDescription(byte[] buffer, long handle);
  private static native void nSetErrorDescription(long handle, String errorDescription);
  // END generated: members
}
