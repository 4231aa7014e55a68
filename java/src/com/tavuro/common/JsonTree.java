package com.tavuro.common;

import java.lang.invoke.MethodHandles;
import java.lang.invoke.VarHandle;
import java.math.BigInteger;
import java.nio.ByteOrder;
import java.nio.charset.StandardCharsets;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.List;
import java.util.Map;

/**
 * Turns the compact form in which native code hands over a whole decoded JSON tree into maps and
 * lists, in one pass. The form, written by java/jni/TavuroCommonJni.cpp: each value is a tag byte
 * and its payload; counts and lengths are unsigned LEB128; integers zigzag LEB128; doubles and
 * unsigned integers 8 bytes little-endian; a key is 0, two bytes of its hash and a string value
 * the first time it occurs, and later its number in the order of those first occurrences, from
 * 1. Strings whose bytes are all ASCII have a tag of their own; long strings travel beside the
 * buffer, referred to by their number: as a byte array when they are ASCII, else as a Java
 * string.
 */
final class JsonTree {
  static final int NULL = 0;
  static final int FALSE = 1;
  static final int TRUE = 2;
  static final int INT = 3;
  static final int DOUBLE = 4;
  static final int UNSIGNED = 5;
  static final int STRING = 6;
  static final int ARRAY = 7;
  static final int OBJECT = 8;
  static final int ASCII_STRING = 9;
  static final int LONG_STRING = 10;

  private static final VarHandle LONG_LE =
      MethodHandles.byteArrayViewVarHandle(long[].class, ByteOrder.LITTLE_ENDIAN);

  /**
   * Keys met before, by hash, shared by all threads: an entry is immutable and published whole
   * (its fields are final), so a thread sees either an older entry or the new one, and a lost
   * update only costs a String.
   */
  private static final KnownKey[] KEY_CACHE = new KnownKey[1024];

  private static final class KnownKey {
    final byte[] bytes;
    final String key;
    /** The first and last eight bytes, or all bytes of a shorter key, little-endian. */
    final long head;
    final long tail;

    KnownKey(byte[] bytes, String key) {
      this.bytes = bytes;
      this.key = key;
      int n = bytes.length;
      if (n >= 8) {
        head = (long) LONG_LE.get(bytes, 0);
        tail = (long) LONG_LE.get(bytes, n - 8);
      } else {
        long h = 0;
        for (int i = n - 1; i >= 0; i--) {
          h = h << 8 | (bytes[i] & 0xff);
        }
        head = h;
        tail = 0;
      }
    }
  }

  private final byte[] bytes;
  private final Object[] longStrings;
  private int pos;
  private String[] keys = new String[64];
  private int keyCount;

  private JsonTree(byte[] bytes, Object[] longStrings) {
    this.bytes = bytes;
    this.longStrings = longStrings;
  }

  /**
   * The dictionary that {@code encoded} holds: a byte array, or an array of the byte array and
   * the long strings it refers to; null for null.
   */
  @Nullable
  @SuppressWarnings("unchecked")
  static Map<String, Object> decodeObject(@Nullable Object encoded) {
    if (encoded == null) {
      return null;
    }
    JsonTree tree = encoded instanceof byte[]
        ? new JsonTree((byte[]) encoded, null)
        : new JsonTree((byte[]) ((Object[]) encoded)[0], (Object[]) encoded);
    return (Map<String, Object>) tree.value();
  }

  private Object value() {
    switch (bytes[pos++]) {
      case NULL:
        return null;
      case FALSE:
        return Boolean.FALSE;
      case TRUE:
        return Boolean.TRUE;
      case INT:
        long zigzag = unsigned();
        return (zigzag >>> 1) ^ -(zigzag & 1);
      case DOUBLE:
        return Double.longBitsToDouble(fixed());
      case UNSIGNED:
        return new BigInteger(Long.toUnsignedString(fixed()));
      case STRING:
        return string();
      case ASCII_STRING:
        return asciiString();
      case LONG_STRING:
        return longString(longStrings[(int) unsigned() + 1]);
      case ARRAY:
        return array();
      case OBJECT:
        return object();
      default:
        throw new IllegalStateException("unknown tag in a JSON tree at " + (pos - 1));
    }
  }

  private List<Object> array() {
    int n = (int) unsigned();
    ArrayList<Object> list = new ArrayList<>(n);
    for (int i = 0; i < n; i++) {
      list.add(value());
    }
    return list;
  }

  /** The keys of an object are distinct: the reader keeps only the first of equal keys. */
  private Map<String, Object> object() {
    int n = (int) unsigned();
    Object[] entries = new Object[2 * n];
    for (int i = 0; i < 2 * n; i += 2) {
      entries[i] = key();
      entries[i + 1] = value();
    }
    return new JsonMap(entries, n);
  }

  private String key() {
    int index = (int) unsigned();
    if (index > 0) {
      return keys[index - 1];
    }
    int hash = (bytes[pos] & 0xff) | (bytes[pos + 1] & 0xff) << 8;
    pos += 2;
    String key = knownKey(hash);
    if (keyCount == keys.length) {
      keys = Arrays.copyOf(keys, keyCount * 2);
    }
    keys[keyCount++] = key;
    return key;
  }

  /**
   * The key whose string value is next, as the String made for the same bytes before when the
   * cache still holds it: most keys recur from one answer to the next, and a String that is
   * reused also keeps its hash code.
   */
  private String knownKey(int hash) {
    int tag = bytes[pos];
    if (tag != ASCII_STRING && tag != STRING) {
      return (String) value();
    }
    pos++;
    int length = (int) unsigned();
    int slot = hash & (KEY_CACHE.length - 1);
    KnownKey known = KEY_CACHE[slot];
    if (known != null && known.bytes.length == length && isAt(known, pos)) {
      pos += length;
      return known.key;
    }
    byte[] keyBytes = Arrays.copyOfRange(bytes, pos, pos + length);
    pos += length;
    known = new KnownKey(keyBytes, tag == ASCII_STRING ? latin1(keyBytes)
        : new String(keyBytes, StandardCharsets.UTF_8));
    KEY_CACHE[slot] = known;
    return known.key;
  }

  /**
   * Whether the bytes at {@code at} are those of {@code known}, of the same length: up to 16 bytes
   * are compared as whole words, which are in the array when the key is 8 bytes or longer.
   */
  private boolean isAt(KnownKey known, int at) {
    int length = known.bytes.length;
    if (length >= 8 && length <= 16) {
      return (long) LONG_LE.get(bytes, at) == known.head
          && (long) LONG_LE.get(bytes, at + length - 8) == known.tail;
    }
    if (length < 8 && at + 8 <= bytes.length) {
      return ((long) LONG_LE.get(bytes, at) & ((1L << (length << 3)) - 1)) == known.head;
    }
    return Arrays.equals(known.bytes, 0, length, bytes, at, at + length);
  }

  @SuppressWarnings("deprecation") // the one constructor that copies bytes as Latin-1 directly
  private static String latin1(byte[] ascii) {
    return new String(ascii, 0);
  }

  private String string() {
    int length = (int) unsigned();
    String s = new String(bytes, pos, length, StandardCharsets.UTF_8);
    pos += length;
    return s;
  }

  @SuppressWarnings("deprecation") // the one constructor that copies bytes as Latin-1 directly
  private String asciiString() {
    int length = (int) unsigned();
    String s = new String(bytes, 0, pos, length);
    pos += length;
    return s;
  }

  @SuppressWarnings("deprecation") // as in asciiString()
  private static String longString(Object text) {
    return text instanceof byte[] ? new String((byte[]) text, 0) : (String) text;
  }

  private long fixed() {
    long v = (long) LONG_LE.get(bytes, pos);
    pos += 8;
    return v;
  }

  private long unsigned() {
    long result = 0;
    int shift = 0;
    while (true) {
      byte b = bytes[pos++];
      result |= (long) (b & 0x7f) << shift;
      if (b >= 0) {
        return result;
      }
      shift += 7;
    }
  }
}
