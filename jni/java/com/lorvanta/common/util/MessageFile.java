package com.lorvanta.common.util;

import java.io.IOException;
import java.nio.charset.StandardCharsets;
import java.nio.file.Path;
import java.util.Objects;

/**
 * An open message file. Its texts, in whatever charset the file has them, come as Strings. It may be used by many
 * threads.
 *
 * <pre>{@code
 * try (MessageFile messages = MessageFile.ofLocale("eng")) {
 *     System.out.println(messages.text(1001));
 * }
 * }</pre>
 */
public final class MessageFile implements AutoCloseable {
    private static final ZelmsgsFile NATIVE = new ZelmsgsFile();

    private static final int LONGEST_PATH = 255;

    private long context;

    private MessageFile(String file, String locale) throws IOException {
        context = NATIVE.juZlmOpen(IOException.class, file, locale);
        if (context == 0) {
            throw new IOException("no memory or no conversion for the charset of the message file");
        }
    }

    /** Opens a message file, whose path has at most 255 bytes. */
    public static MessageFile open(Path file) throws IOException {
        String path = file.toString();
        // The native side would cut it, and might open another file.
        if (path.getBytes(StandardCharsets.UTF_8).length > LONGEST_PATH) {
            throw new IOException("path of a message file too long: " + path);
        }
        return new MessageFile(path, null);
    }

    /** Opens the installed message file of a locale of three characters. */
    public static MessageFile ofLocale(String locale) throws IOException {
        return new MessageFile(null, Objects.requireNonNull(locale, "locale"));
    }

    /** A message; of a number that the file doesn't have, an exception. */
    public synchronized String text(int number) throws IOException {
        if (context == 0) {
            throw new IOException("the message file is closed");
        }
        return NATIVE.juZlmLookup(IOException.class, context, number);
    }

    @Override
    public synchronized void close() {
        if (context != 0) {
            NATIVE.juZlmClose(IOException.class, context);
            context = 0;
        }
    }
}
