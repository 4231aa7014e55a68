package com.tavuro.common;

import java.lang.ref.Reference;

/**
 * The process-wide credential store: user name, password, subscription, service endpoints and the
 * session token. It loads the configuration file "TavuroConfig.plist" from the resource directory
 * (see {@link TavuroCommon#setResourceDirectory(String)}) on its first use; every setter stores
 * the value ({@code null} clears it) and rewrites the file.
 *
 * <p>Call it from one thread at a time. A token text without any "." throws {@link
 * ArrayIndexOutOfBoundsException} from {@link #setToken(String)} before native code is reached.
 */
public final class Credential {
  private Credential() {}

  /**
   * A copy of the stored session token, expired or not (ask {@link TavuroJwtToken#isValid()}), or
   * null when none is stored.
   */
  @Nullable
  public static TavuroJwtToken getToken() {
    return TavuroJwtToken.wrap(nGetToken());
  }

  private static native long nGetToken();

  // BEGIN generated from interface/TavuroCommon.json: members
  static {
    NativeLibrary.load();
  }


  /** The account user name; null until the file or a setter gives one. */
  public static @Nullable String username() {
    byte[] buffer = NativeLibrary.textBuffer();
    return NativeLibrary.text(nUsername(buffer), buffer);
  }

  /** The account password; null until the file or a setter gives one. */
  public static @Nullable String password() {
    byte[] buffer = NativeLibrary.textBuffer();
    return NativeLibrary.text(nPassword(buffer), buffer);
  }

  /** The subscription identifier; null until the file or a setter gives one. */
  public static @Nullable String subscription() {
    byte[] buffer = NativeLibrary.textBuffer();
    return NativeLibrary.text(nSubscription(buffer), buffer);
  }

  /** The store's own record, not a copy (changing it changes the store); null when no configuration
   * file was read and none was set. */
  public static @Nullable Endpoints endpoints() {
    return Endpoints.wrap(nEndpoints());
  }

  /** Drops the stored token; false when none was stored. */
  public static boolean removeToken() {
    return nRemoveToken();
  }

  /** Decodes the token and stores it when its "exp" lies strictly after now; false, with the stored
   * token unchanged, when it cannot be decoded, has no usable "exp", has expired or is null. A
   * token without any "." throws ArrayIndexOutOfBoundsException before native code is reached. */
  public static boolean setToken(@Nullable String token) {
    if (token != null && token.indexOf('.') < 0) {
      throw new ArrayIndexOutOfBoundsException("a token needs at least one '.'");
    }
    return nSetTokenWithToken(token);
  }

  /** False for a null or empty endpoint; otherwise true when user name, password and subscription
   * are all present and non-empty, or when any token is stored. */
  public static boolean isCredentialValid(@Nullable String endpoint) {
    return nIsCredentialValidWithEndpoint(endpoint);
  }

  /** "Bearer " and the stored token (expired or not) while one is stored, else
   * getBasicAuthHeader(). */
  public static @Nullable String getTavuroAuthHeader() {
    byte[] buffer = NativeLibrary.textBuffer();
    return NativeLibrary.text(nGetTavuroAuthHeader(buffer), buffer);
  }

  /** "Basic " and the base64 of user name ":" password; null when either is absent. */
  public static @Nullable String getBasicAuthHeader() {
    byte[] buffer = NativeLibrary.textBuffer();
    return NativeLibrary.text(nGetBasicAuthHeader(buffer), buffer);
  }

  /** Stores the user name (null clears it), then rewrites the configuration file. */
  public static void setUsername(@Nullable String username) {
    nSetUsernameWithUsername(username);
  }

  /** Stores the password (null clears it), then rewrites the configuration file. */
  public static void setPassword(@Nullable String password) {
    nSetPasswordWithPassword(password);
  }

  /** Stores the subscription identifier (null clears it), then rewrites the configuration file. */
  public static void setSubscription(@Nullable String subscription) {
    nSetSubscriptionWithSubscription(subscription);
  }

  /** Stores the record itself, not a copy (null clears it), then rewrites the configuration file. */
  public static void setEndpoints(@Nullable Endpoints endpoints) {
    try {
      nSetEndpointsWithEndpoints(endpoints == null ? 0 : endpoints.handle);
    } finally {
      Reference.reachabilityFence(endpoints);
    }
  }

  private static native int nUsername(byte[] buffer);
  private static native int nPassword(byte[] buffer);
  private static native int nSubscription(byte[] buffer);
  private static native long nEndpoints();
  private static native boolean nRemoveToken();
  private static native boolean nSetTokenWithToken(String token);
  private static native boolean nIsCredentialValidWithEndpoint(String endpoint);
  private static native int nGetTavuroAuthHeader(byte[] buffer);
  private static native int nGetBasicAuthHeader(byte[] buffer);
  private static native void nSetUsernameWithUsername(String username);
  private static native void nSetPasswordWithPassword(String password);
  private static native void nSetSubscriptionWithSubscription(String subscription);
  private static native void nSetEndpointsWithEndpoints(long endpoints);
  // END generated: members
}
