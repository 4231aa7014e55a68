package com.tavuro.common;

import java.lang.ref.Reference;
import java.util.List;
import java.util.Objects;
import java.util.function.Consumer;

/**
 * Starts the host's packages: {@link #initialize(List, Consumer)} calls every package's {@link
 * ITavuroPackage#initialize()} in list order, then the callback once with {@code null} (success),
 * all before it returns, on the caller's thread. An initializer keeps no state between calls.
 */
public class TavuroInitializer extends NativeObject implements ITavuroInitializer {
  /**
   * Starts the packages in list order (duplicates included), then calls {@code callback} once
   * with {@code null}, before returning.
   *
   * <p>No Java exception passes through native code. When a package's {@code initialize()} throws,
   * the packages after it are not started and the callback is not called; the exception is thrown
   * from this method once the native call has returned. An exception from the callback is thrown
   * from this method the same way.
   *
   * @param packages the packages; a {@code null} list or element throws {@link
   *     NullPointerException} before any package starts
   * @param callback may be {@code null}
   */
  @Override
  public void initialize(List<ITavuroPackage> packages, @Nullable Consumer<TavuroError> callback) {
    ITavuroPackage[] array = packages.toArray(new ITavuroPackage[0]);
    for (ITavuroPackage p : array) {
      Objects.requireNonNull(p, "a package of the list is null");
    }
    try {
      nInitialize(handle, array, callback);
    } finally {
      Reference.reachabilityFence(this);
    }
  }

  private static native void nInitialize(
      long handle, ITavuroPackage[] packages, Consumer<TavuroError> callback);

  // BEGIN generated from interface/TavuroCommon.json: members
  static {
    NativeLibrary.load();
  }

  /** Takes over one reference to a native object (see NativeObject). */
  TavuroInitializer(long handle) {
    super(handle, TavuroInitializer::nRelease);
  }

  /** The object over a reference that the caller hands over, or null for 0. */
  @Nullable
  static TavuroInitializer wrap(long handle) {
    return handle == 0 ? null : new TavuroInitializer(handle);
  }

  private static native void nRelease(long handle);

  /** A new initializer; making one starts nothing. */
  public TavuroInitializer() {
    super(nInit(), TavuroInitializer::nRelease);
  }

  private static native long nInit();
  // END generated: members
}
