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
   * A copy of the stored session token, or null when none is stored (also when it has expired
   * since it was stored: ask {@link TavuroJwtToken#isValid()}).
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


  /** Username of the Credential class; null when absent. */
  public static @Nullable String username() {
    return nUsername();
  }

  /** Password of the Credential class; null when absent. */
  public static @Nullable String password() {
    return nPassword();
  }

  /** Subscription of the Credential class; null when absent. */
  public static @Nullable String subscription() {
    return nSubscription();
  }

  /** The store's own record ; null when it has none. */
  public static @Nullable Endpoints endpoints() {
    return Endpoints.wrap(nEndpoints());
  }

  /** Drops the stored token; false when none was stored. */
  public static boolean removeToken() {
    return nRemoveToken();
  }

  /** Stores the token when its "exp" lies after now. null gives false; a token without "." throws
   * before the native call (see the class comment). */
  public static boolean setToken(@Nullable String token) {
    if (token != null && token.indexOf('.') < 0) {
      throw new ArrayIndexOutOfBoundsException("a token needs at least one '.'");
    }
    return nSetTokenWithToken(token);
  }

  /** IsCredentialValid of the Credential class. */
  public static boolean isCredentialValid(@Nullable String endpoint) {
    return nIsCredentialValidWithEndpoint(endpoint);
  }

  /** GetTavuroAuthHeader of the Credential class; null when absent. */
  public static @Nullable String getTavuroAuthHeader() {
    return nGetTavuroAuthHeader();
  }

  /** GetBasicAuthHeader of the Credential class; null when absent. */
  public static @Nullable String getBasicAuthHeader() {
    return nGetBasicAuthHeader();
  }

  /** SetUsername of the Credential class. */
  public static void setUsername(@Nullable String username) {
    nSetUsernameWithUsername(username);
  }

  /** SetPassword of the Credential class. */
  public static void setPassword(@Nullable String password) {
    nSetPasswordWithPassword(password);
  }

  /** SetSubscription of the Credential class. */
  public static void setSubscription(@Nullable String subscription) {
    nSetSubscriptionWithSubscription(subscription);
  }

  /** Keeps the record itself (its own reference), not a copy; null clears. */
  public static void setEndpoints(@Nullable Endpoints endpoints) {
    try {
      nSetEndpointsWithEndpoints(endpoints == null ? 0 : endpoints.handle);
    } finally {
      Reference.reachabilityFence(endpoints);
    }
  }

  private static native String nUsername();
  private static native String nPassword();
  private static native String nSubscription();
  private static native long nEndpoints();
  private static native boolean nRemoveToken();
  private static native boolean nSetTokenWithToken(String token);
  private static native boolean nIsCredentialValidWithEndpoint(String endpoint);
  private static native String nGetTavuroAuthHeader();
  private static native String nGetBasicAuthHeader();
  private static native void nSetUsernameWithUsername(String username);
  private static native void nSetPasswordWithPassword(String password);
  private static native void nSetSubscriptionWithSubscription(String subscription);
  private static native void nSetEndpointsWithEndpoints(long endpoints);
  // END generated: members
}
