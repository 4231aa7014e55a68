package com.tavuro.common.bench; public final class JavaBench { public static void main(String[] a) {} }
