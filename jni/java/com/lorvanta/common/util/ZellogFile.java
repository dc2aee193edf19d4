package com.lorvanta.common.util;

/**
 * The log file of a database, as the native library has it: a context is an address, which the caller gives back with
 * {@link #juLogClose}. {@link DatabaseLog} takes care of that.
 */
public class ZellogFile {
    static {
        NativeLibrary.load();
    }

    /**
     * Opens the log of a database, or makes it. Failures are thrown as {@code exceptionClass}, which needs a
     * constructor from a String. 0 without an exception: there was no memory.
     */
    public native long juLogOpen(Class<? extends Throwable> exceptionClass, String database, boolean create);

    /** Writes one message; either text may be null. */
    public native void juLogWrite(
            Class<? extends Throwable> exceptionClass, long context, String text1, String text2, boolean flag);

    /** Closes a log; of 0 there is nothing to close. */
    public native void juLogClose(Class<? extends Throwable> exceptionClass, long context);
}
