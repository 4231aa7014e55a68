package com.tavuro.common;

import java.util.function.LongConsumer;

/**
 * The Java side of one reference to a native record, which every class over such a record
 * extends. The reference is held for the whole life of the Java object and given back, through
 * the release function of the subclass, on the thread of {@link NativeLibrary#CLEANER} once the
 * Java object is unreachable. The handle never changes, so any thread may read it; what a record
 * allows across threads is said by its class.
 */
abstract class NativeObject {
  /** The native record; never 0. */
  final long handle;

  /**
   * Takes over the reference {@code handle}, which {@code release} gives back later. A handle of 0
   * is what native code returns when it had no memory for the record: it throws {@link
   * OutOfMemoryError}, and nothing is registered.
   */
  NativeObject(long handle, LongConsumer release) {
    if (handle == 0) {
      throw new OutOfMemoryError("no memory for a " + getClass().getSimpleName());
    }
    this.handle = handle;
    NativeLibrary.CLEANER.register(this, new Release(handle, release));
  }

  /** Gives one reference back; holds nothing that keeps the Java object reachable. */
  private static final class Release implements Runnable {
    private final long handle;
    private final LongConsumer release;

    Release(long handle, LongConsumer release) {
      this.handle = handle;
      this.release = release;
    }

    @Override
    public void run() {
      release.accept(handle);
    }
  }
}
