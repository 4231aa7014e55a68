package com.tavuro.common;

import java.util.List;
import java.util.function.Consumer;

/** The start-up entry point: starts the packages in order, then tells the host. */
public interface ITavuroInitializer {
  /**
   * Starts every package of {@code packages} in list order, then calls {@code callback} once.
   *
   * @param packages the packages, taken literally (duplicates are started twice)
   * @param callback told that start-up is complete; its argument is null on success
   */
  void initialize(List<ITavuroPackage> packages, @Nullable Consumer<TavuroError> callback);
}
