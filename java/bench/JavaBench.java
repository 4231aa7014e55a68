package com.tavuro.common.bench;

import com.fasterxml.jackson.databind.ObjectMapper;
import com.google.gson.Gson;
import com.tavuro.common.Credential;
import com.tavuro.common.NativeProbe;
import com.tavuro.common.TavuroCommon;
import com.tavuro.common.Utils;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.Path;
import java.nio.file.Paths;
import java.util.Arrays;
import java.util.Base64;
import java.util.Map;

/**
 * Prints same-run figures of the Java binding: Utils.convertToDictionary into a Map against Gson
 * and Jackson parsing the same text into a Map, and the authorization header through JNI against
 * the C++ call. Arguments: the directory of the JSON corpora, then "quick" for a shorter run.
 */
public final class JavaBench {
  private static final String[][] CORPORA = {
    {"small answer", "d_small_answer.json"},
    {"answer without its images", "a2_answer_text.json"},
    {"answer with four images", "a_answer.json"},
  };

  private static long sink;

  private interface Parser {
    Map<?, ?> parse(String text) throws Exception;
  }

  private JavaBench() {}

  public static void main(String[] args) throws Exception {
    Path corpora = Paths.get(args[0]);
    boolean quick = args.length > 1 && args[1].equals("quick");
    double seconds = quick ? 0.4 : 2.0;
    Gson gson = new Gson();
    ObjectMapper jackson = new ObjectMapper();
    String[] names = {"TavuroCommon", "Gson", "Jackson"};
    Parser[] parsers = {
      Utils::convertToDictionary, text -> gson.fromJson(text, Map.class),
      text -> jackson.readValue(text, Map.class)
    };
    System.out.println("convertToDictionary into Map<String, Object> vs Gson and Jackson into a Map:"
        + " the three take turns in short rounds (same run); best and median round per parse");
    for (String[] corpus : CORPORA) {
      String text = new String(Files.readAllBytes(corpora.resolve(corpus[1])),
          StandardCharsets.UTF_8);
      int rounds = quick ? 15 : 60;
      double[][] perCall = new double[parsers.length][rounds];
      int batch = 1;
      long batchStart = System.nanoTime();
      while (System.nanoTime() - batchStart < (long) (seconds * 1e9) || batch < 2) { // warm-up
        for (Parser parser : parsers) {
          sink += parser.parse(text).size();
        }
        batch++;
      }
      batch = Math.max(1, (int) (batch * 0.01 / seconds)); // about 10 ms of each per round
      for (int round = 0; round < rounds; round++) {
        for (int p = 0; p < parsers.length; p++) {
          long start = System.nanoTime();
          for (int i = 0; i < batch; i++) {
            sink += parsers[p].parse(text).size();
          }
          perCall[p][round] = (double) (System.nanoTime() - start) / batch;
        }
      }
      System.out.printf("  %s, %s (%.1f KB), best / median round:%n", corpus[0], corpus[1],
          Files.size(corpora.resolve(corpus[1])) / 1024.0);
      double[] best = new double[parsers.length];
      double[] median = new double[parsers.length];
      for (int p = 0; p < parsers.length; p++) {
        Arrays.sort(perCall[p]);
        best[p] = perCall[p][0];
        median[p] = perCall[p][rounds / 2];
        System.out.printf("    %-13s %10s / %10s%n", names[p], time(best[p]), time(median[p]));
      }
      System.out.printf("    TavuroCommon vs the faster of Gson and Jackson: best %.2fx, median %.2fx"
          + " (vs Gson %.2fx, vs Jackson %.2fx by median)%n",
          Math.min(best[1], best[2]) / best[0], Math.min(median[1], median[2]) / median[0],
          median[1] / median[0], median[2] / median[0]);
    }
    authHeader(quick);
    if (sink == 42) {
      System.out.println();
    }
  }

  private static String time(double nanos) {
    return nanos >= 1e6 ? String.format("%.2f ms", nanos / 1e6)
        : String.format("%.1f us", nanos / 1e3);
  }

  private static void authHeader(boolean quick) throws Exception {
    TavuroCommon.setResourceDirectory(Files.createTempDirectory("tavuro-java-bench").toString());
    Credential.setUsername("bench.user@example.com");
    Credential.setPassword("bench-password");
    Credential.setSubscription("00000000-0000-4000-8000-000000000000");
    int calls = quick ? 500_000 : 3_000_000;
    System.out.println("Credential.getTavuroAuthHeader() per call (same run)");
    for (String kind : new String[] {"Basic", "Bearer"}) {
      if (kind.equals("Bearer")) {
        Base64.Encoder url = Base64.getUrlEncoder().withoutPadding();
        long exp = System.currentTimeMillis() / 1000 + 3600;
        Credential.setToken(url.encodeToString("{}".getBytes(StandardCharsets.UTF_8)) + "."
            + url.encodeToString(("{\"exp\":" + exp + "}").getBytes(StandardCharsets.UTF_8))
            + ".signature");
      }
      double java = 0;
      double cxx = 0;
      for (int round = 0; round < 3; round++) { // the first rounds warm up
        long start = System.nanoTime();
        for (int i = 0; i < calls; i++) {
          sink += Credential.getTavuroAuthHeader().length();
        }
        java = (double) (System.nanoTime() - start) / calls;
        cxx = NativeProbe.nativeAuthHeaderNanos(calls);
      }
      System.out.printf("  %-6s through JNI %.0f ns, C++ %.0f ns, ratio %.2fx%n", kind, java, cxx,
          java / cxx);
    }
    Credential.removeToken();
  }
}
