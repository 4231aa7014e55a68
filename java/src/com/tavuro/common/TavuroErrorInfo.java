package com.tavuro.common;

import java.util.Arrays;
import java.util.Collections;
import java.util.List;

/**
 * One entry of the error tables: a code with its constant's name, its text's name and its text,
 * or a text that has no code (code 0, no code name). Immutable.
 */
public final class TavuroErrorInfo {
  private static final List<TavuroErrorInfo> ALL =
      Collections.unmodifiableList(
          Arrays.asList(
              // BEGIN generated from interface/TavuroCommon.json: entries
              new TavuroErrorInfo(-1, "ERROR_InvalidCredentials", "ERROR_DESC_InvalidCredentials", "Invalid credentials"),
              new TavuroErrorInfo(-4, "ERROR_InitializationNotFinished", "ERROR_DESC_InitializationNotFinished", "Initialization not finished"),
              new TavuroErrorInfo(-5, "ERROR_Network", "ERROR_DESC_Network", "Network problem"),
              new TavuroErrorInfo(-6, "ERROR_InvalidJson", "ERROR_DESC_InvalidJson", "Invalid Json response"),
              new TavuroErrorInfo(-7, "ERROR_CouldNotCrop", "ERROR_DESC_CouldNotCrop", "Could not crop image"),
              new TavuroErrorInfo(-13, "ERROR_CouldNotCreateConnectInstance", "ERROR_DESC_CouldNotCreateConnectInstance", "Could not create connect Instance"),
              new TavuroErrorInfo(-14, "ERROR_CouldNotUploadConnectImage", "ERROR_DESC_CouldNotUploadConnectImage", "Could not upload image to connect instance"),
              new TavuroErrorInfo(-15, "ERROR_CouldNotUploadConnectBarcode", "ERROR_DESC_CouldNotUploadConnectBarcode", "Could not upload barcode to connect instance"),
              new TavuroErrorInfo(-16, "ERROR_CouldNotGetConnectData", "ERROR_DESC_CouldNotGetConnectData", "Could not get connect image data"),
              new TavuroErrorInfo(-20, "ERROR_CouldNotClassifyDocument", "ERROR_DESC_CouldNotClassifyDocument", "Could not classify document"),
              new TavuroErrorInfo(-21, "ERROR_LowResolutionImage", "ERROR_DESC_LowResolutionImage", "Low resolution image"),
              new TavuroErrorInfo(-22, "ERROR_BlurryImage", "ERROR_DESC_BlurryImage", "Blurry image"),
              new TavuroErrorInfo(-23, "ERROR_ImageWithGlare", "ERROR_DESC_ImageWithGlare", "Image has glare"),
              new TavuroErrorInfo(-24, "ERROR_CouldNotGetIPLivenessToken", "ERROR_DESC_CouldNotGetIPLivenessToken", "Could not get face liveness token"),
              new TavuroErrorInfo(-25, "ERROR_NotALiveFace", "ERROR_DESC_NotALiveFace", "Not a live face"),
              new TavuroErrorInfo(-26, "ERROR_CouldNotAccessLivenessData", "ERROR_DESC_CouldNotAccessLivenessData", "Could not access liveness data"),
              new TavuroErrorInfo(-27, "ERROR_CouldNotAccessCredential", "ERROR_DESC_ERROR_CouldNotAccessCredential", "Could not get credential"),
              new TavuroErrorInfo(-28, "ERROR_USER_CANCELED_ACTIVITY", "ERROR_DESC_USER_CANCELED_ACTIVITY", "User canceled activity"),
              new TavuroErrorInfo(-29, "ERROR_INVALID_PARAMETER", "ERROR_DESC_INVALID_PARAMETERS", "Invalid Parameters."),
              new TavuroErrorInfo(-50, "ERROR_KelmoInvalidFormat", "ERROR_DESC_KelmoInvalidFormat", "Kelmo returned invalid format"),
              new TavuroErrorInfo(-60, "ERROR_EChipReadError", "ERROR_DESC_EChipReadError", "Error reading eChip. Connection lost to passport or incorrect key."),
              new TavuroErrorInfo(-61, "ERROR_InvalidNfcTag", "ERROR_DESC_InvalidNfcTag", "Tag Tech list was null. Most likely means unsupported passport/not a passport"),
              new TavuroErrorInfo(-62, "ERROR_InvalidNfcKeyFormatting", "ERROR_DESC_InvalidNfcKeyFormatting", "Decryption key formatted incorrectly. Check DOB, DOE, and doc number."),
              new TavuroErrorInfo(0, null, "ERROR_DESC_InvalidEndpoint", "Invalid endpoint"),
              new TavuroErrorInfo(0, null, "ERROR_DESC_BarcodeCaptureFailed", "Barcode capture failed"),
              new TavuroErrorInfo(0, null, "ERROR_DESC_BarcodeCaptureTimedOut", "Barcode capture timed out"),
              new TavuroErrorInfo(0, null, "ERROR_DESC_CardWidthNotSet", "Card width not set"),
              new TavuroErrorInfo(0, null, "ERROR_DESC_CouldNotGetHealthCardData", "Could not get health card data")
              // END generated: entries
              ));

  private final long code;
  private final String codeName;
  private final String descriptionName;
  private final String description;

  private TavuroErrorInfo(
      long code, @Nullable String codeName, String descriptionName, String description) {
    this.code = code;
    this.codeName = codeName;
    this.descriptionName = descriptionName;
    this.description = description;
  }

  /** The code, 0 for a text that has none. */
  public long getCode() {
    return code;
  }

  /** The name of the code's constant in {@link TavuroErrorCodes}, or null when there is none. */
  @Nullable
  public String getCodeName() {
    return codeName;
  }

  /** The name of the text's constant in {@link TavuroErrorDescriptions}. */
  public String getDescriptionName() {
    return descriptionName;
  }

  /** The text. */
  public String getDescription() {
    return description;
  }

  /** The entry of {@code code}, or null when no error has that code. */
  @Nullable
  public static TavuroErrorInfo forCode(long code) {
    for (TavuroErrorInfo info : ALL) {
      if (info.code == code && info.codeName != null) {
        return info;
      }
    }
    return null;
  }

  /** Every entry: the codes from -1 downwards, then the texts without a code. */
  public static List<TavuroErrorInfo> all() {
    return ALL;
  }
}
