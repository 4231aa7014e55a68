package com.tavuro.common;

/**
 * The error texts of the kit, kept exactly as host applications compare them (the irregular names
 * included).
 */
public final class TavuroErrorDescriptions {
  private TavuroErrorDescriptions() {}

  // BEGIN generated from interface/TavuroCommon.json: constants

  /** The text of ERROR_InvalidCredentials. */
  public static final String ERROR_DESC_InvalidCredentials = "Invalid credentials";
  /** A text that has no code. */
  public static final String ERROR_DESC_InvalidEndpoint = "Invalid endpoint";
  /** The text of ERROR_Network. */
  public static final String ERROR_DESC_Network = "Network problem";
  /** The text of ERROR_InitializationNotFinished. */
  public static final String ERROR_DESC_InitializationNotFinished = "Initialization not finished";
  /** The text of ERROR_InvalidJson. */
  public static final String ERROR_DESC_InvalidJson = "Invalid Json response";
  /** The text of ERROR_CouldNotCrop. */
  public static final String ERROR_DESC_CouldNotCrop = "Could not crop image";
  /** A text that has no code. */
  public static final String ERROR_DESC_BarcodeCaptureFailed = "Barcode capture failed";
  /** A text that has no code. */
  public static final String ERROR_DESC_BarcodeCaptureTimedOut = "Barcode capture timed out";
  /** The text of ERROR_CouldNotCreateConnectInstance. */
  public static final String ERROR_DESC_CouldNotCreateConnectInstance = "Could not create connect Instance";
  /** The text of ERROR_CouldNotUploadConnectImage. */
  public static final String ERROR_DESC_CouldNotUploadConnectImage = "Could not upload image to connect instance";
  /** The text of ERROR_CouldNotUploadConnectBarcode. */
  public static final String ERROR_DESC_CouldNotUploadConnectBarcode = "Could not upload barcode to connect instance";
  /** The text of ERROR_CouldNotGetConnectData. */
  public static final String ERROR_DESC_CouldNotGetConnectData = "Could not get connect image data";
  /** A text that has no code. */
  public static final String ERROR_DESC_CardWidthNotSet = "Card width not set";
  /** A text that has no code. */
  public static final String ERROR_DESC_CouldNotGetHealthCardData = "Could not get health card data";
  /** The text of ERROR_CouldNotClassifyDocument. */
  public static final String ERROR_DESC_CouldNotClassifyDocument = "Could not classify document";
  /** The text of ERROR_LowResolutionImage. */
  public static final String ERROR_DESC_LowResolutionImage = "Low resolution image";
  /** The text of ERROR_BlurryImage. */
  public static final String ERROR_DESC_BlurryImage = "Blurry image";
  /** The text of ERROR_ImageWithGlare. */
  public static final String ERROR_DESC_ImageWithGlare = "Image has glare";
  /** The text of ERROR_CouldNotGetIPLivenessToken. */
  public static final String ERROR_DESC_CouldNotGetIPLivenessToken = "Could not get face liveness token";
  /** The text of ERROR_NotALiveFace. */
  public static final String ERROR_DESC_NotALiveFace = "Not a live face";
  /** The text of ERROR_CouldNotAccessLivenessData. */
  public static final String ERROR_DESC_CouldNotAccessLivenessData = "Could not access liveness data";
  /** The text of ERROR_CouldNotAccessCredential. */
  public static final String ERROR_DESC_ERROR_CouldNotAccessCredential = "Could not get credential";
  /** The text of ERROR_USER_CANCELED_ACTIVITY. */
  public static final String ERROR_DESC_USER_CANCELED_ACTIVITY = "User canceled activity";
  /** The text of ERROR_INVALID_PARAMETER. */
  public static final String ERROR_DESC_INVALID_PARAMETERS = "Invalid Parameters.";
  /** The text of ERROR_KelmoInvalidFormat. */
  public static final String ERROR_DESC_KelmoInvalidFormat = "Kelmo returned invalid format";
  /** The text of ERROR_EChipReadError. */
  public static final String ERROR_DESC_EChipReadError = "Error reading eChip. Connection lost to passport or incorrect key.";
  /** The text of ERROR_InvalidNfcTag. */
  public static final String ERROR_DESC_InvalidNfcTag = "Tag Tech list was null. Most likely means unsupported passport/not a passport";
  /** The text of ERROR_InvalidNfcKeyFormatting. */
  public static final String ERROR_DESC_InvalidNfcKeyFormatting = "Decryption key formatted incorrectly. Check DOB, DOE, and doc number.";
  // END generated: constants
}
