package com.tavuro.common;

import java.lang.ref.Reference;

/**
 * The record of the five service base addresses; each is a text or {@code null} (absent).
 *
 * <p>A record is a shared reference to one native object: the store's own record, given by
 * {@link Credential#endpoints()}, changes the store when it is changed. Set it from one thread at a
 * time. Its native memory is given back when the Java object is collected.
 */
public class Endpoints extends NativeObject {
  // BEGIN generated from interface/TavuroCommon.json: members
  static {
    NativeLibrary.load();
  }

  /** Takes over one reference to a native object (see NativeObject). */
  Endpoints(long handle) {
    super(handle, Endpoints::nRelease);
  }

  /** The object over a reference that the caller hands over, or null for 0. */
  @Nullable
  static Endpoints wrap(long handle) {
    return handle == 0 ? null : new Endpoints(handle);
  }

  private static native void nRelease(long handle);

  /** A new Endpoints with every field at its default. */
  public Endpoints() {
    super(nNewInstance(), Endpoints::nRelease);
  }

  /** The frmEndpoint, or null when absent. */
  public @Nullable String getFrmEndpoint() {
    byte[] buffer = NativeLibrary.textBuffer();
    try {
      return NativeLibrary.text(nFrmEndpoint(buffer, handle), buffer);
    } finally {
      Reference.reachabilityFence(this);
    }
  }

  /** Replaces the frmEndpoint; null clears it. */
  public void setFrmEndpoint(@Nullable String endpoint) {
    try {
      nSetFrmEndpoint(handle, endpoint);
    } finally {
      Reference.reachabilityFence(this);
    }
  }

  /** The idEndpoint, or null when absent. */
  public @Nullable String getIdEndpoint() {
    byte[] buffer = NativeLibrary.textBuffer();
    try {
      return NativeLibrary.text(nIdEndpoint(buffer, handle), buffer);
    } finally {
      Reference.reachabilityFence(this);
    }
  }

  /** Replaces the idEndpoint; null clears it. */
  public void setIdEndpoint(@Nullable String endpoint) {
    try {
      nSetIdEndpoint(handle, endpoint);
    } finally {
      Reference.reachabilityFence(this);
    }
  }

  /** The passiveLivenessEndpoint, or null when absent. */
  public @Nullable String getPassiveLivenessEndpoint() {
    byte[] buffer = NativeLibrary.textBuffer();
    try {
      return NativeLibrary.text(nPassiveLivenessEndpoint(buffer, handle), buffer);
    } finally {
      Reference.reachabilityFence(this);
    }
  }

  /** Replaces the passiveLivenessEndpoint; null clears it. */
  public void setPassiveLivenessEndpoint(@Nullable String endpoint) {
    try {
      nSetPassiveLivenessEndpoint(handle, endpoint);
    } finally {
      Reference.reachabilityFence(this);
    }
  }

  /** The healthInsuranceEndpoint, or null when absent. */
  public @Nullable String getHealthInsuranceEndpoint() {
    byte[] buffer = NativeLibrary.textBuffer();
    try {
      return NativeLibrary.text(nHealthInsuranceEndpoint(buffer, handle), buffer);
    } finally {
      Reference.reachabilityFence(this);
    }
  }

  /** Replaces the healthInsuranceEndpoint; null clears it. */
  public void setHealthInsuranceEndpoint(@Nullable String endpoint) {
    try {
      nSetHealthInsuranceEndpoint(handle, endpoint);
    } finally {
      Reference.reachabilityFence(this);
    }
  }

  /** The kelmoEndpoint, or null when absent. */
  public @Nullable String getKelmoEndpoint() {
    byte[] buffer = NativeLibrary.textBuffer();
    try {
      return NativeLibrary.text(nKelmoEndpoint(buffer, handle), buffer);
    } finally {
      Reference.reachabilityFence(this);
    }
  }

  /** Replaces the kelmoEndpoint; null clears it. */
  public void setKelmoEndpoint(@Nullable String endpoint) {
    try {
      nSetKelmoEndpoint(handle, endpoint);
    } finally {
      Reference.reachabilityFence(this);
    }
  }

  /** Same as the no-argument constructor: a new record with every field absent. */
  public static Endpoints newInstance() {
    return Endpoints.wrap(nNewInstance());
  }

  private static native long nNewInstance();
  private static native int nFrmEndpoint(byte[] buffer, long handle);
  private static native void nSetFrmEndpoint(long handle, String endpoint);
  private static native int nIdEndpoint(byte[] buffer, long handle);
  private static native void nSetIdEndpoint(long handle, String endpoint);
  private static native int nPassiveLivenessEndpoint(byte[] buffer, long handle);
  private static native void nSetPassiveLivenessEndpoint(long handle, String endpoint);
  private static native int nHealthInsuranceEndpoint(byte[] buffer, long handle);
  private static native void nSetHealthInsuranceEndpoint(long handle, String endpoint);
  private static native int nKelmoEndpoint(byte[] buffer, long handle);
  private static native void nSetKelmoEndpoint(long handle, String endpoint);
  // END generated: members
}
