package com.tavuro.common;

/** The error codes of the kit: every failure has its fixed negative code. */
public final class TavuroErrorCodes {
  private TavuroErrorCodes() {}

  // BEGIN generated from interface/TavuroCommon.json: constants

  /** Code of "Invalid credentials". */
  public static final long ERROR_InvalidCredentials = -1;
  /** Code of "Initialization not finished". */
  public static final long ERROR_InitializationNotFinished = -4;
  /** Code of "Network problem". */
  public static final long ERROR_Network = -5;
  /** Code of "Invalid Json response". */
  public static final long ERROR_InvalidJson = -6;
  /** Code of "Could not crop image". */
  public static final long ERROR_CouldNotCrop = -7;
  /** Code of "Could not create connect Instance". */
  public static final long ERROR_CouldNotCreateConnectInstance = -13;
  /** Code of "Could not upload image to connect instance". */
  public static final long ERROR_CouldNotUploadConnectImage = -14;
  /** Code of "Could not upload barcode to connect instance". */
  public static final long ERROR_CouldNotUploadConnectBarcode = -15;
  /** Code of "Could not get connect image data". */
  public static final long ERROR_CouldNotGetConnectData = -16;
  /** Code of "Could not classify document". */
  public static final long ERROR_CouldNotClassifyDocument = -20;
  /** Code of "Low resolution image". */
  public static final long ERROR_LowResolutionImage = -21;
  /** Code of "Blurry image". */
  public static final long ERROR_BlurryImage = -22;
  /** Code of "Image has glare". */
  public static final long ERROR_ImageWithGlare = -23;
  /** Code of "Could not get face liveness token". */
  public static final long ERROR_CouldNotGetIPLivenessToken = -24;
  /** Code of "Not a live face". */
  public static final long ERROR_NotALiveFace = -25;
  /** Code of "Could not access liveness data". */
  public static final long ERROR_CouldNotAccessLivenessData = -26;
  /** Code of "Could not get credential". */
  public static final long ERROR_CouldNotAccessCredential = -27;
  /** Code of "User canceled activity". */
  public static final long ERROR_USER_CANCELED_ACTIVITY = -28;
  /** Code of "Invalid Parameters.". */
  public static final long ERROR_INVALID_PARAMETER = -29;
  /** Code of "Kelmo returned invalid format". */
  public static final long ERROR_KelmoInvalidFormat = -50;
  /** Code of "Error reading eChip. Connection lost to passport or incorrect key.". */
  public static final long ERROR_EChipReadError = -60;
  /** Code of "Tag Tech list was null. Most likely means unsupported passport/not a passport". */
  public static final long ERROR_InvalidNfcTag = -61;
  /** Code of "Decryption key formatted incorrectly. Check DOB, DOE, and doc number.". */
  public static final long ERROR_InvalidNfcKeyFormatting = -62;
  // END generated: constants
}
