package com.tavuro.common;

/** A capture package as the initializer sees it: one start-up operation. */
public interface ITavuroPackage {
  /** Starts the package. It reports nothing; see {@link TavuroInitializer} for exceptions. */
  void initialize();
}
