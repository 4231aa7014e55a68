package com.tavuro.common;

import static org.junit.jupiter.api.Assertions.assertArrayEquals;
import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertNull;
import static org.junit.jupiter.api.Assertions.assertSame;
import static org.junit.jupiter.api.Assertions.assertThrows;
import static org.junit.jupiter.api.Assertions.assertTrue;

import com.fasterxml.jackson.databind.ObjectMapper;
import java.math.BigInteger;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.time.Instant;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.Base64;
import java.util.Collections;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;
import java.util.function.Supplier;
import org.junit.jupiter.api.BeforeAll;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.api.function.Executable;

/** What the binding adds at the border: names, absence, ownership, conversions, exceptions. */
class BindingTest {
  @BeforeAll
  static void scratchResources() throws Exception {
    // The store rewrites its file: keep it away from any real configuration.
    TavuroCommon.setResourceDirectory(Files.createTempDirectory("tavuro-java-test").toString());
  }

  private static String token(long exp) {
    Base64.Encoder url = Base64.getUrlEncoder().withoutPadding();
    return url.encodeToString("{}".getBytes(StandardCharsets.UTF_8)) + "."
        + url.encodeToString(("{\"exp\":" + exp + "}").getBytes(StandardCharsets.UTF_8)) + ".s";
  }

  @Test
  void absentIsNullAndEveryFailureIsAValue() {
    Supplier<?>[] absent = {
      () -> new Endpoints().getKelmoEndpoint(),
      () -> new TavuroError().getErrorDescription(),
      () -> Image.newInstance().getImage(),
      () -> Image.newInstance().getData(),
      () -> Image.newInstance().getError(),
      () -> Utils.convertToDictionary(null),
      () -> Utils.convertToDictionary("[1,2]"),
      () -> Utils.convertToDictionary("{"),
      () -> Utils.convertToDictionary("{\"a\":\"\ud800\"}"), // a lone surrogate has no UTF-8
      () -> new TavuroJwtParser().decodeJWTPart("!"),
      () -> new TavuroJwtParser().parseToken("a.b"),
      () -> new TavuroJwtParser().decode(null),
      () -> Picture.make(2, 2, PixelFormat.RGB8, new byte[3]),
      () -> TavuroErrorInfo.forCode(0),
      () -> ProcessingMode.fromRawValue(3),
      () -> DeleteType.fromRawValue(-1),
    };
    for (int i = 0; i < absent.length; i++) {
      assertNull(absent[i].get(), "case " + i);
    }
    assertEquals("", Utils.getStringValue(null, "k"));
    assertEquals(Map.of(), new TavuroJwtParser().decode("a.b"));
    assertSame(ProcessingMode.DataCapture, ProcessingMode.fromRawValue(1));
    assertEquals(1L, DeleteType.Kind1.rawValue());
    assertEquals("Network problem", TavuroErrorInfo.forCode(-5).getDescription());
  }

  @Test
  void textsCrossBothWaysUnchanged() {
    Endpoints endpoints = new Endpoints();
    String[] texts = {"", "plain", "ü€", "emoji \ud83d\ude00", "\uffff",
      "\u00e9\ud83d\ude00".repeat(3000)}; // longer than the text buffer
    for (String text : texts) {
      endpoints.setFrmEndpoint(text);
      assertEquals(text, endpoints.getFrmEndpoint());
    }
    endpoints.setFrmEndpoint("lone \udc00");
    assertEquals("lone \ufffd", endpoints.getFrmEndpoint());
    endpoints.setFrmEndpoint(null);
    assertNull(endpoints.getFrmEndpoint());
    assertArrayEquals("\u00ff\u00fe".getBytes(StandardCharsets.UTF_8),
        new TavuroJwtParser().base64UrlDecode("w7_Dvg"));
  }

  @Test
  void recordsAreSharedNotCopied() {
    Endpoints mine = new Endpoints();
    Credential.setEndpoints(mine);
    mine.setIdEndpoint("https://id.example/");
    assertEquals("https://id.example/", Credential.endpoints().getIdEndpoint());
    Credential.endpoints().setKelmoEndpoint("k");
    assertEquals("k", mine.getKelmoEndpoint());

    Image image = Image.newInstance();
    TavuroError error = new TavuroError(TavuroErrorCodes.ERROR_Network, null);
    image.setError(error);
    error.setErrorDescription(TavuroErrorDescriptions.ERROR_DESC_Network);
    assertEquals("Network problem", image.getError().getErrorDescription());

    byte[] data = {1, 2, 3};
    image.setData(data);
    data[0] = 9; // bytes are copied in and out
    assertArrayEquals(new byte[] {1, 2, 3}, image.getData());
    List<Point> points = List.of(new Point(0.5, -1), new Point(1e300, 0));
    image.setPoints(points);
    assertEquals(points, image.getPoints());
    Picture picture = Picture.make(1, 2, PixelFormat.RGBA8, new byte[8]);
    image.setImage(picture);
    assertEquals(2, image.getImage().getHeight());
    assertEquals(PixelFormat.RGBA8, image.getImage().getPixelFormat());
  }

  @Test
  void instantsAndTokensCross() {
    Instant at = Instant.ofEpochSecond(1_700_000_000L, 250_000_000);
    assertEquals(at, new TavuroJwtToken("t", at).getExpiration());
    assertTrue(new TavuroJwtToken("t", Instant.now().plusSeconds(60)).isValid());
    long exp = Instant.now().getEpochSecond() + 3600;
    assertTrue(Credential.setToken(token(exp)));
    assertEquals(token(exp), Credential.getToken().getValue());
    assertEquals(Instant.ofEpochSecond(exp), Credential.getToken().getExpiration());
    assertEquals("Bearer " + token(exp), Credential.getTavuroAuthHeader());
    assertTrue(Credential.removeToken());
    assertNull(Credential.getToken());
  }

  @Test
  void theTwoFatalStopsThrowBeforeNativeCode() {
    TavuroJwtParser parser = new TavuroJwtParser();
    Executable[] noDot = {
      () -> Credential.setToken("nodot"), () -> parser.parseToken(""), () -> parser.decode("x")
    };
    for (Executable call : noDot) {
      assertThrows(ArrayIndexOutOfBoundsException.class, call);
    }
    assertThrows(NullPointerException.class, () -> Utils.dateFieldToDateString(null));
    assertEquals("02-13-2009", Utils.dateFieldToDateString("/Date(1234567890000)/"));
  }

  @Test
  void initializerRunsPackagesInOrderAndStopsAtAThrow() {
    List<String> log = new ArrayList<>();
    ITavuroPackage a = () -> log.add("a");
    ITavuroPackage boom = () -> {
      log.add("boom");
      throw new IllegalStateException("boom");
    };
    TavuroInitializer initializer = new TavuroInitializer();
    initializer.initialize(Collections.nCopies(40, a), error -> log.add("done " + error));
    initializer.initialize(List.of(), error -> log.add("empty " + error));
    assertEquals(40, Collections.frequency(log, "a"));
    assertEquals(List.of("done null", "empty null"), log.subList(40, 42));

    log.clear();
    assertThrows(IllegalStateException.class,
        () -> initializer.initialize(List.of(a, boom, a), error -> log.add("done")));
    assertEquals(List.of("a", "boom"), log);
    assertThrows(UnsupportedOperationException.class, () -> initializer.initialize(List.of(a),
        error -> {
          throw new UnsupportedOperationException();
        }));
    assertThrows(NullPointerException.class,
        () -> initializer.initialize(Arrays.asList(a, null), null));
  }

  @Test
  void jsonBecomesPlainJavaValues() {
    Map<String, Object> map = Utils.convertToDictionary("{\"i\":-7,\"f\":2.5,\"e\":1e2,\"t\":true,"
        + "\"n\":null,\"s\":\"\\u0000\u00e9\\ud83d\\ude00\",\"big\":18446744073709551615,"
        + "\"a\":[{\"i\":1},{\"i\":2,\"i\":3}],\"o\":{},\"d\":1,\"d\":2}");
    assertEquals(Arrays.asList("i", "f", "e", "t", "n", "s", "big", "a", "o", "d"),
        new ArrayList<>(map.keySet()));
    assertEquals(-7L, map.get("i"));
    assertEquals(2.5, map.get("f"));
    assertEquals(100.0, map.get("e"));
    assertEquals(Boolean.TRUE, map.get("t"));
    assertTrue(map.containsKey("n") && map.get("n") == null);
    assertEquals("\u0000\u00e9\ud83d\ude00", map.get("s"));
    assertEquals(new BigInteger("18446744073709551615"), map.get("big"));
    assertEquals(List.of(Map.of("i", 1L), Map.of("i", 2L)), map.get("a"));
    assertEquals(Map.of(), map.get("o"));
    assertEquals(1L, map.get("d"));
    map.put("added", "maps are the host's own"); // mutable
    Map<String, Object> marks = Map.of("\u00e9", "?", "?", 2L); // '?' also stands for lone surrogates
    assertEquals(marks, Utils.convertToDictionary("{\"\u00e9\":\"?\",\"?\":2}"));
    assertEquals(marks, Utils.convertToDictionary("{\"\\u00e9\":\"?\",\"?\":2}")); // key met before
    String ascii = "x".repeat(9000);
    String accented = "\u00e9".repeat(9000);
    Map<String, Object> longTexts = Utils.convertToDictionary(
        "{\"a\":\"" + ascii + "\",\"b\":[\"" + accented + "\"],\"" + ascii + "\":1}");
    assertEquals(Map.of("a", ascii, "b", List.of(accented), ascii, 1L), longTexts);
    for (int length = 1; length <= 40; length++) { // one non-ASCII char anywhere in the text
      for (int at = 0; at < length; at++) {
        String s = "a".repeat(at) + "\u00e9" + "b".repeat(length - at - 1);
        assertEquals(Map.of(s, s), Utils.convertToDictionary("{\"" + s + "\":\"" + s + "\"}"));
      }
    }
  }

  @Test
  void decodedMapsBehaveAsLinkedHashMaps() throws Exception {
    java.util.Random random = new java.util.Random(7);
    for (int keys : new int[] {3, 8, 9, 40}) { // both sides of the index
      StringBuilder json = new StringBuilder("{\"k0\":0");
      for (int i = 1; i < keys; i++) {
        json.append(",\"k").append(i).append("\":").append(i);
      }
      Map<String, Object> ours = Utils.convertToDictionary(json.append('}').toString());
      Map<String, Object> theirs = new LinkedHashMap<>(ours);
      for (int step = 0; step < 400; step++) {
        String key = random.nextInt(10) == 0 ? null : "k" + random.nextInt(2 * keys);
        int op = random.nextInt(6);
        Object value = step;
        if (op == 0 || op == 1) {
          assertEquals(theirs.put(key, value), ours.put(key, value));
        } else if (op == 2) {
          assertEquals(theirs.remove(key), ours.remove(key));
        } else if (op == 3 && !ours.isEmpty()) { // through the iterator and the entries
          int at = random.nextInt(ours.size());
          for (Map<String, Object> map : List.of(ours, theirs)) {
            java.util.Iterator<Map.Entry<String, Object>> it = map.entrySet().iterator();
            for (int i = 0; it.hasNext(); i++) {
              it.next().setValue(i);
              if (i == at) {
                it.remove();
              }
            }
          }
        } else if (op == 4 && random.nextInt(20) == 0) {
          ours.clear();
          theirs.clear();
        }
        assertEquals(theirs.containsKey(key) + " " + theirs.get(key), ours.containsKey(key) + " " + ours.get(key));
        assertEquals(new ArrayList<>(theirs.entrySet()), new ArrayList<>(ours.entrySet()));
        assertTrue(ours.equals(theirs) && theirs.equals(ours) && ours.hashCode() == theirs.hashCode());
      }
      java.io.ByteArrayOutputStream bytes = new java.io.ByteArrayOutputStream();
      new java.io.ObjectOutputStream(bytes).writeObject(ours);
      assertEquals(theirs, new java.io.ObjectInputStream(
          new java.io.ByteArrayInputStream(bytes.toByteArray())).readObject());
    }
    // Readers on several threads at once, the first lookups building the index.
    StringBuilder json = new StringBuilder("{\"k0\":0");
    for (int i = 1; i < 5000; i++) {
      json.append(",\"k").append(i).append("\":").append(i);
    }
    java.util.concurrent.ExecutorService pool =
        java.util.concurrent.Executors.newFixedThreadPool(3);
    try {
      for (int round = 0; round < 20; round++) {
        Map<String, Object> fresh = Utils.convertToDictionary(json + "}");
        java.util.concurrent.CyclicBarrier start = new java.util.concurrent.CyclicBarrier(3);
        java.util.concurrent.Callable<Boolean> reader = () -> {
          start.await();
          boolean all = true;
          for (int i = 0; i < 5000; i++) {
            all &= Long.valueOf(i).equals(fresh.get("k" + i));
          }
          return all;
        };
        for (java.util.concurrent.Future<Boolean> read :
            pool.invokeAll(List.of(reader, reader, reader))) {
          assertTrue(read.get());
        }
      }
    } finally {
      pool.shutdown();
    }
  }

  @Test
  void keysThatShareACacheSlotAreToldApart() {
    // Hand-made trees {key: null} whose keys claim the same hash, so that each is compared with
    // the String cached for the one before: equal length, one byte different, with and without
    // bytes after the tree.
    for (int length = 0; length <= 20; length++) {
      for (int at = 0; at < Math.max(1, length); at++) {
        for (int trailing : new int[] {0, 8}) {
          byte[] a = new byte[length];
          Arrays.fill(a, (byte) 'a');
          byte[] b = a.clone();
          if (length > 0) {
            b[at] = 'b';
          }
          for (byte[] key : List.of(a, b)) {
            byte[] head = {JsonTree.OBJECT, 1, 0, 0x34, 0x12, JsonTree.ASCII_STRING, (byte) length};
            byte[] tree = Arrays.copyOf(head, head.length + length + 1 + trailing); // value: null
            System.arraycopy(key, 0, tree, head.length, length);
            assertEquals(new String(key, StandardCharsets.US_ASCII),
                JsonTree.decodeObject(tree).keySet().iterator().next());
          }
        }
      }
    }
  }

  private static final String[] DOCUMENTS = {
    "{}",
    "{\"k\":12,\"K\":\"12\"}",
    "{\"k\":12.0}",
    "{\"k\":12.5}",
    "{\"k\":-0.0}",
    "{\"k\":1e20}",
    "{\"k\":-1e19}",
    "{\"k\":9223372036854775807}",
    "{\"k\":-9223372036854775808}",
    "{\"k\":9223372036854775808}",
    "{\"k\":18446744073709551615}",
    "{\"k\":9007199254740993}",
    "{\"k\":1e400}",
    "{\"k\":true}",
    "{\"k\":false}",
    "{\"k\":0}",
    "{\"k\":1}",
    "{\"k\":null}",
    "{\"k\":\"\"}",
    "{\"k\":\"true\"}",
    "{\"k\":[1,\"a\",null]}",
    "{\"k\":{\"x\":[]}}",
  };

  private static Object javaGetter(int which, Map<String, Object> map) {
    switch (which) {
      case 0: return Utils.getIntValue(map, "k");
      case 1: return Utils.getDoubleValue(map, "k");
      case 2: return Utils.getStringValue(map, "k");
      case 3: return Utils.getBooleanValue(map, "k");
      case 4: return size(Utils.getObjectValue(map, "k"));
      case 5: return size(Utils.getArrayValue(map, "k"));
      default: return size(Utils.getArrayValueFromJson(map, "k"));
    }
  }

  private static Long size(Object container) {
    if (container == null) {
      return null;
    }
    return (long) (container instanceof Map ? ((Map<?, ?>) container).size()
        : ((List<?>) container).size());
  }

  @Test
  @SuppressWarnings("unchecked")
  void gettersAnswerAsTheNativeGettersOnTheSameJson() throws Exception {
    ObjectMapper jackson = new ObjectMapper();
    for (String json : DOCUMENTS) {
      Map<String, Object> ours = Utils.convertToDictionary(json);
      List<Map<String, Object>> maps = new ArrayList<>(Arrays.asList(ours));
      if (!json.contains("1e400")) { // Jackson reads that one as infinity
        maps.add(jackson.readValue(json, LinkedHashMap.class)); // a map the host made
      }
      for (int which = 0; which < 7; which++) {
        Object expected = NativeProbe.nativeGetter(which, json, "k");
        for (Map<String, Object> map : maps) {
          assertEquals(expected, javaGetter(which, map), json + " getter " + which);
        }
      }
    }
    Map<String, Object> hostMade = new LinkedHashMap<>(Map.of("int", 3, "float", 0.5f,
        "short", (short) 4, "odd", Map.of(1, 2)));
    assertEquals(3L, Utils.getIntValue(hostMade, "int"));
    assertEquals(0.5, Utils.getDoubleValue(hostMade, "float"));
    assertEquals(4.0, Utils.getDoubleValue(hostMade, "short"));
    assertNull(Utils.getObjectValue(hostMade, "odd")); // keys must be texts
    for (int which = 0; which < 7; which++) {
      assertEquals(NativeProbe.nativeGetter(which, null, "k"), javaGetter(which, null));
    }
  }

  @Test
  void droppedRecordsGiveTheirNativeMemoryBack() throws Exception {
    for (int i = 0; i < 20_000; i++) { // warm up: allocator pools, JIT
      new TavuroError(i, "warm-up description").getErrorCode();
    }
    collect(Long.MAX_VALUE);
    long before = NativeProbe.heapInUse();
    for (int i = 0; i < 1_000_000; i++) {
      TavuroError error = new TavuroError(i, "a description long enough to need its own block");
      Endpoints endpoints = Endpoints.newInstance();
      endpoints.setIdEndpoint("https://id.example/");
      Utils.convertToDictionary("{\"i\":" + i + "}");
      error.getErrorDescription();
    }
    long after = collect(before + (8L << 20));
    assertTrue(after - before < (8L << 20), "native heap grew by " + (after - before) + " bytes");
  }

  // Collects until the native heap is at most `bound` bytes, for 30 s at most.
  private static long collect(long bound) throws InterruptedException {
    long inUse = NativeProbe.heapInUse();
    for (int i = 0; i < 300 && inUse > bound || i < 3; i++) {
      System.gc();
      Thread.sleep(100);
      inUse = NativeProbe.heapInUse();
    }
    return inUse;
  }
}
