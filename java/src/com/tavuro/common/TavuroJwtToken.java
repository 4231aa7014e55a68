package com.tavuro.common;

import java.lang.ref.Reference;
import java.time.Instant;
import java.util.Objects;

/**
 * An immutable session token: its text and the instant it expires. Safe to read from any thread.
 */
public class TavuroJwtToken {
  // BEGIN generated from interface/TavuroCommon.json: members
  static {
    NativeLibrary.load();
  }

  /** The native object; never 0. */
  final long handle;

  /** Takes over one reference to a native object, which the cleaner gives back. */
  TavuroJwtToken(long handle, boolean owned) {
    this.handle = handle;
    NativeLibrary.CLEANER.register(this, new Release(handle));
  }

  /** The object over a reference that the caller hands over, or null for 0. */
  @Nullable
  static TavuroJwtToken wrap(long handle) {
    return handle == 0 ? null : new TavuroJwtToken(handle, true);
  }

  private static final class Release implements Runnable {
    private final long handle;

    Release(long handle) {
      this.handle = handle;
    }

    @Override
    public void run() {
      nRelease(handle);
    }
  }

  private static native void nRelease(long handle);

  /** A token record of {@code value} expiring at {@code expiration}; either being null throws
   * NullPointerException. */
  public TavuroJwtToken(String value, Instant expiration) {
    Objects.requireNonNull(value, "value");
    Objects.requireNonNull(expiration, "expiration");
    handle = nInitWithValueExpiration(value, NativeLibrary.seconds(expiration));
    if (handle == 0) {
      throw new OutOfMemoryError("no memory for a TavuroJwtToken");
    }
    NativeLibrary.CLEANER.register(this, new Release(handle));
  }

  /** The token text. */
  public final String getValue() {
    byte[] buffer = NativeLibrary.textBuffer();
    try {
      return NativeLibrary.text(nValue(buffer, handle), buffer);
    } finally {
      Reference.reachabilityFence(this);
    }
  }

  /** The instant the token expires. */
  public final Instant getExpiration() {
    try {
      return NativeLibrary.instant(nExpiration(handle));
    } finally {
      Reference.reachabilityFence(this);
    }
  }

  /** True while now is strictly before the expiration. */
  public boolean isValid() {
    try {
      return nIsValid(handle);
    } finally {
      Reference.reachabilityFence(this);
    }
  }

  private static native long nInitWithValueExpiration(String value, double expiration);
  private static native int nValue(byte[] buffer, long handle);
  private static native double nExpiration(long handle);
  private static native boolean nIsValid(long handle);
  // END generated: members
}
