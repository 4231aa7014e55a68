package com.tavuro.common.example; public final class ExampleHost { public static void main(String[] a) {} }
