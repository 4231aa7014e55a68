package com.tavuro.common;

import java.lang.ref.Reference;
import java.time.Instant;
import java.util.Objects;

/**
 * An immutable session token: its text and the instant it expires. Safe to read from any thread.
 */
public class TavuroJwtToken extends NativeObject {
  // BEGIN generated from interface/TavuroCommon.json: members
  static {
    NativeLibrary.load();
  }

  /** Takes over one reference to a native object (see NativeObject). */
  TavuroJwtToken(long handle) {
    super(handle, TavuroJwtToken::nRelease);
  }

  /** The object over a reference that the caller hands over, or null for 0. */
  @Nullable
  static TavuroJwtToken wrap(long handle) {
    return handle == 0 ? null : new TavuroJwtToken(handle);
  }

  private static native void nRelease(long handle);

  /** A token record of {@code value} expiring at {@code expiration}; either being null throws
   * NullPointerException. */
  public TavuroJwtToken(String value, Instant expiration) {
    super(
        nInitWithValueExpiration(
            Objects.requireNonNull(value, "value"),
            NativeLibrary.seconds(Objects.requireNonNull(expiration, "expiration"))),
        TavuroJwtToken::nRelease);
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
