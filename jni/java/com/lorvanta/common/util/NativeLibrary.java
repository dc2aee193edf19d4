package com.lorvanta.common.util;

import java.nio.file.Path;

/**
 * Loads {@code libnls.so} once for all classes with native methods: the file that the property {@code nls.library}
 * names, or else the one that {@link System#loadLibrary} finds in {@code java.library.path}.
 */
final class NativeLibrary {
    static final String PROPERTY = "nls.library";

    static {
        String file = System.getProperty(PROPERTY);
        if (file == null) {
            System.loadLibrary("nls");
        } else {
            System.load(Path.of(file).toAbsolutePath().toString());
        }
    }

    private NativeLibrary() {}

    /** Does nothing: the first use of the class has loaded the library. */
    static void load() {}
}
