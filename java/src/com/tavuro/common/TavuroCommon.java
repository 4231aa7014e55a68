package com.tavuro.common;

/**
 * Where the library finds the host's resources. Outside a phone the resource bundle is a
 * directory: the one named here before the first use of {@link Credential}; else the one in the
 * environment variable {@code TAVURO_RESOURCE_PATH}; else the directory of the running program.
 */
public final class TavuroCommon {
  static {
    NativeLibrary.load();
  }

  private TavuroCommon() {}

  /**
   * Names the directory that holds "TavuroConfig.plist". Call it before the first {@link
   * Credential} call; later calls do not reload the store. {@code null} is ignored.
   */
  public static void setResourceDirectory(@Nullable String directory) {
    nSetResourceDirectory(directory);
  }

  /** The resource directory in force now ("" when none can be found). */
  public static String resourceDirectory() {
    String directory = nResourceDirectory();
    return directory == null ? "" : directory;
  }

  private static native void nSetResourceDirectory(String directory);

  private static native String nResourceDirectory();
}
