package com.tavuro.common.example;

import com.tavuro.common.Credential;
import com.tavuro.common.DocumentProcessingMode;
import com.tavuro.common.Endpoints;
import com.tavuro.common.ITavuroPackage;
import com.tavuro.common.Image;
import com.tavuro.common.Picture;
import com.tavuro.common.PixelFormat;
import com.tavuro.common.Point;
import com.tavuro.common.TavuroCommon;
import com.tavuro.common.TavuroError;
import com.tavuro.common.TavuroErrorCodes;
import com.tavuro.common.TavuroErrorDescriptions;
import com.tavuro.common.TavuroInitializer;
import com.tavuro.common.Utils;
import java.io.IOException;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.Path;
import java.nio.file.Paths;
import java.util.Base64;
import java.util.Comparator;
import java.util.List;
import java.util.Map;
import java.util.stream.Stream;

/**
 * A small Java host: it walks the order in which a host uses the library, on a scratch copy of the
 * sample resources whose directory is the first argument, and prints what each step gives.
 */
public final class ExampleHost {
  private ExampleHost() {}

  /** Runs the walk; the argument is the directory of TavuroConfig.plist and sample_answer.json. */
  public static void main(String[] args) throws IOException {
    Path scratch = Files.createTempDirectory("tavuro-java-host");
    try {
      try (Stream<Path> files = Files.list(Paths.get(args[0]))) {
        for (Path file : (Iterable<Path>) files::iterator) {
          Files.copy(file, scratch.resolve(file.getFileName()));
        }
      }
      walk(scratch);
    } finally {
      try (Stream<Path> files = Files.walk(scratch)) {
        files.sorted(Comparator.reverseOrder()).forEach(p -> p.toFile().delete());
      }
    }
  }

  private static String describe(String text) {
    return text == null ? "(absent)" : "\"" + text + "\"";
  }

  private static void walk(Path resources) throws IOException {
    // 1. The first use of Credential loads TavuroConfig.plist from the resource directory.
    TavuroCommon.setResourceDirectory(resources.toString());
    System.out.println("1. The credential store loads " + resources + "/TavuroConfig.plist");
    System.out.println("   user name " + describe(Credential.username())
        + ", subscription " + describe(Credential.subscription()));
    Endpoints endpoints = Credential.endpoints();
    if (endpoints != null) {
      System.out.println("   FRM " + describe(endpoints.getFrmEndpoint())
          + "\n   document authentication " + describe(endpoints.getIdEndpoint())
          + "\n   Kelmo " + describe(endpoints.getKelmoEndpoint()));
    }

    // 2. The host starts its packages; the callback comes last.
    System.out.println("2. The host starts its packages");
    List<ITavuroPackage> packages = List.of(
        () -> System.out.println("   package DocumentCapture initialized"),
        () -> System.out.println("   package FaceCapture initialized"));
    new TavuroInitializer().initialize(packages, error -> System.out.println(
        "   start-up complete, error: " + (error == null ? "none" : error.getErrorDescription())));

    // 3. A package prepares a request: address, whether the credentials suffice, header value.
    System.out.println("3. A package prepares a request to the document authentication service");
    String endpoint = endpoints == null ? null : endpoints.getIdEndpoint();
    System.out.println("   endpoint " + describe(endpoint) + ", credentials suffice: "
        + (Credential.isCredentialValid(endpoint) ? "yes" : "no"));
    System.out.println("   Authorization: " + describe(Credential.getTavuroAuthHeader()));
    readAnswer(resources.resolve("sample_answer.json"));
    System.out.println("   the service hands out a session token: "
        + (Credential.setToken(sessionToken()) ? "stored" : "refused"));
    System.out.println("   Authorization: " + describe(Credential.getTavuroAuthHeader()));
    System.out.println("   token removed: " + (Credential.removeToken() ? "yes" : "no"));

    // 4. Results travel back to the host as records.
    System.out.println("4. Results travel back to the host");
    TavuroError failure = TavuroError.newInstance();
    failure.setErrorCode(TavuroErrorCodes.ERROR_Network);
    failure.setErrorDescription(TavuroErrorDescriptions.ERROR_DESC_Network);
    System.out.println("   error: code " + failure.getErrorCode()
        + ", description " + describe(failure.getErrorDescription()));
    Picture picture = Picture.make(2, 2, PixelFormat.GRAY8, new byte[] {0, 85, (byte) 170, -1});
    Image image = Image.newInstance(picture, new byte[] {-1, -40, -1, -39});
    image.setDpi(300);
    image.setAspectRatio(1.586F);
    image.setCorrectAspectRatio(true);
    image.setPoints(List.of(new Point(0, 0), new Point(2, 2)));
    System.out.printf("   image: %dx%d pixels, %d encoded bytes, %d dpi, aspect ratio %.3f, "
            + "%d points, passport %s, error %s%n",
        image.getImage().getWidth(), image.getImage().getHeight(), image.getData().length,
        image.getDpi(), image.getAspectRatio(), image.getPoints().size(),
        image.isPassport() ? "yes" : "no", image.getError() == null ? "none" : "yes");

    System.out.println("Processing mode and shared settings");
    System.out.println("   processing mode: " + DocumentProcessingMode.processingMode());
    DocumentProcessingMode.setDataCaptureProcessingMode();
    System.out.println("   after switching to data capture: "
        + DocumentProcessingMode.processingMode());
    System.out.printf("   JPEG quality of sent images: %.2f%n",
        Utils.getSENT_IMAGE_QUALITY_JPEG_COMPRESSION());
    System.out.println("   kit version: " + Utils.getSDK_VERSION_CODE());
  }

  // The service's JSON answer, read with the lenient getters.
  private static void readAnswer(Path path) throws IOException {
    Map<String, Object> answer =
        Utils.convertToDictionary(new String(Files.readAllBytes(path), StandardCharsets.UTF_8));
    System.out.println("   the answer in " + path + ": result " + Utils.getIntValue(answer, "Result")
        + ", instance " + Utils.getStringValue(answer, "InstanceId"));
    Map<String, Object> biographic = Utils.getObjectValue(answer, "Biographic");
    System.out.println("   " + Utils.getStringValue(biographic, "FullName")
        + ", age " + Utils.getIntValue(biographic, "Age")
        + ", born " + Utils.dateFieldToDateString(Utils.getStringValue(biographic, "BirthDate"))
        + ", expires "
        + Utils.dateFieldToDateString(Utils.getStringValue(biographic, "ExpirationDate")));
    List<Object> fields = Utils.getArrayValue(answer, "Fields");
    for (Object element : fields == null ? List.of() : fields) {
      @SuppressWarnings("unchecked")
      Map<String, Object> field = element instanceof Map ? (Map<String, Object>) element : null;
      System.out.printf("   field %-16s %-14s reliability %.2f%s%n",
          Utils.getStringValue(field, "Key"),
          Utils.dateFieldToDateString(Utils.getStringValue(field, "Value")),
          Utils.getDoubleValue(field, "Reliability"),
          Utils.getBooleanValue(field, "IsConsistent") ? "" : " (inconsistent)");
    }
  }

  // An unsigned session token that expires in an hour, as a service hands out.
  private static String sessionToken() {
    Base64.Encoder url = Base64.getUrlEncoder().withoutPadding();
    long inOneHour = System.currentTimeMillis() / 1000 + 3600;
    return url.encodeToString("{\"alg\":\"none\"}".getBytes(StandardCharsets.UTF_8)) + "."
        + url.encodeToString(("{\"exp\":" + inOneHour + "}").getBytes(StandardCharsets.UTF_8))
        + "." + url.encodeToString("signature".getBytes(StandardCharsets.UTF_8));
  }
}
