package com.lorvanta.halvane.common;

/**
 * Where warnings of the native library go. A product that shows them elsewhere puts a class of this name in front of
 * {@code nls.jar}.
 */
public final class Tools {
    private Tools() {}

    /** Shows one line: here, on the standard error output. */
    public static void ps(String line) {
        System.err.println(line);
    }
}
