package com.tavuro.common;

/** A small enumeration of the kit; its cases cross to native code as their raw values. */
public enum ProcessingMode {
  // BEGIN generated from interface/TavuroCommon.json: cases
  /** Raw value 0. */
  Reserved(0L),
  /** Raw value 1. */
  DataCapture(1L),
  /** Raw value 2. */
  Standard(2L);

  private final long raw;

  ProcessingMode(long raw) {
    this.raw = raw;
  }

  /** The raw value of this case. */
  public long rawValue() {
    return raw;
  }

  /** The case whose raw value is {@code raw}, or null for any other number. */
  @Nullable
  public static ProcessingMode fromRawValue(long raw) {
    if (raw == 0L) {
      return Reserved;
    }
    if (raw == 1L) {
      return DataCapture;
    }
    if (raw == 2L) {
      return Standard;
    }
    return null;
  }
  // END generated: cases
}
