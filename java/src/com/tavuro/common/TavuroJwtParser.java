package com.tavuro.common;

import java.lang.ref.Reference;
import java.util.Map;

/**
 * Decodes JSON Web Tokens in compact form. Stateless: any thread may use one at any time.
 *
 * <p>A token text without any "." given to {@link #parseToken(String)} or {@link #decode(String)}
 * throws {@link ArrayIndexOutOfBoundsException} before native code is reached.
 */
public class TavuroJwtParser extends NativeObject {
  /**
   * The payload's claims as a new map of the kind {@link Utils#convertToDictionary} makes, empty
   * when they cannot be read; null only for a null token.
   */
  @Nullable
  public Map<String, Object> decode(@Nullable String jwtToken) {
    if (jwtToken == null) {
      return null;
    }
    if (jwtToken.indexOf('.') < 0) {
      throw new ArrayIndexOutOfBoundsException("a token needs at least one '.'");
    }
    return JsonTree.decodeObject(nDecode(jwtToken));
  }

  /** The bytes of a base64url text; null when it cannot be decoded or is null. */
  @Nullable
  public byte[] base64UrlDecode(@Nullable String text) {
    return text == null ? null : nBase64UrlDecode(text);
  }

  /** The JSON object in one base64url segment; null when there is none. */
  @Nullable
  public Map<String, Object> decodeJWTPart(@Nullable String segment) {
    return segment == null ? null : JsonTree.decodeObject(nDecodeJWTPart(segment));
  }

  private static native Object nDecode(String jwtToken);

  private static native byte[] nBase64UrlDecode(String text);

  private static native Object nDecodeJWTPart(String segment);

  // BEGIN generated from interface/TavuroCommon.json: members
  static {
    NativeLibrary.load();
  }

  /** Takes over one reference to a native object (see NativeObject). */
  TavuroJwtParser(long handle) {
    super(handle, TavuroJwtParser::nRelease);
  }

  /** The object over a reference that the caller hands over, or null for 0. */
  @Nullable
  static TavuroJwtParser wrap(long handle) {
    return handle == 0 ? null : new TavuroJwtParser(handle);
  }

  private static native void nRelease(long handle);

  /** A new parser; it keeps no state. */
  public TavuroJwtParser() {
    super(nInit(), TavuroJwtParser::nRelease);
  }

  /** The token record of a token text; null when its "exp" is missing or not a whole number, or
   * when the token is null. A token without any "." throws ArrayIndexOutOfBoundsException before
   * native code is reached. */
  public @Nullable TavuroJwtToken parseToken(@Nullable String jwtToken) {
    if (jwtToken != null && jwtToken.indexOf('.') < 0) {
      throw new ArrayIndexOutOfBoundsException("a token needs at least one '.'");
    }
    try {
      return TavuroJwtToken.wrap(nParseTokenWithJwtToken(handle, jwtToken));
    } finally {
      Reference.reachabilityFence(this);
    }
  }

  private static native long nInit();
  private static native long nParseTokenWithJwtToken(long handle, String jwtToken);
  // END generated: members
}
