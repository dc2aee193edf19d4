package com.lorvanta.common.util;

/**
 * A message file, as the native library has it: a context is an address, used by one thread at a time, which the caller
 * gives back with {@link #juZlmClose}. {@link MessageFile} takes care of that.
 */
public class ZelmsgsFile {
    static {
        NativeLibrary.load();
    }

    /**
     * Opens the message file {@code fileName}, or with null the one of {@code locale}, a text of three characters.
     * Failures are thrown as {@code exceptionClass}, which needs a constructor from a String. 0 without an exception:
     * the memory set aside doesn't suffice for the file's charset, or it has no conversion.
     */
    public native long juZlmOpen(Class<? extends Throwable> exceptionClass, String fileName, String locale);

    /** A message. */
    public native String juZlmLookup(Class<? extends Throwable> exceptionClass, long context, int number);

    /** Closes a message file; 0 does nothing. */
    public native void juZlmClose(Class<? extends Throwable> exceptionClass, long context);
}
