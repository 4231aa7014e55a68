package com.tavuro.common;

/** A small enumeration of the kit; its cases cross to native code as their raw values. */
public enum DeleteType {
  // BEGIN generated from interface/TavuroCommon.json: cases
  /** Raw value 0. */
  Kind0(0L),
  /** Raw value 1. */
  Kind1(1L);

  private final long raw;

  DeleteType(long raw) {
    this.raw = raw;
  }

  /** The raw value of this case. */
  public long rawValue() {
    return raw;
  }

  /** The case whose raw value is {@code raw}, or null for any other number. */
  @Nullable
  public static DeleteType fromRawValue(long raw) {
    if (raw == 0L) {
      return Kind0;
    }
    if (raw == 1L) {
      return Kind1;
    }
    return null;
  }
  // END generated: cases
}
