package com.tavuro.common;

/**
 * The process-wide document processing mode: {@link ProcessingMode#Standard} at first, {@link
 * ProcessingMode#DataCapture} once switched; it never switches back. Meant to be set from one
 * thread before work spreads over threads.
 */
public final class DocumentProcessingMode {
  private DocumentProcessingMode() {}

  // BEGIN generated from interface/TavuroCommon.json: members
  static {
    NativeLibrary.load();
  }


  /** The process's mode: Standard at first, DataCapture after the switch. */
  public static ProcessingMode processingMode() {
    return ProcessingMode.fromRawValue(nProcessingMode());
  }

  /** Switches the process to DataCapture, for good. */
  public static void setDataCaptureProcessingMode() {
    nSetDataCaptureProcessingMode();
  }

  private static native long nProcessingMode();
  private static native void nSetDataCaptureProcessingMode();
  // END generated: members
}
