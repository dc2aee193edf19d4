package com.lorvanta.common.util;

import java.io.IOException;
import java.util.Objects;

/** The open log file of a database. It may be used by many threads. */
public final class DatabaseLog implements AutoCloseable {
    private static final ZellogFile NATIVE = new ZellogFile();

    private long context;

    private DatabaseLog(String database, boolean create) throws IOException {
        context = NATIVE.juLogOpen(IOException.class, Objects.requireNonNull(database, "database"), create);
        if (context == 0) {
            throw new IOException("no memory for the log of database " + database);
        }
    }

    /** Opens the log of a database that has one. */
    public static DatabaseLog open(String database) throws IOException {
        return new DatabaseLog(database, false);
    }

    /** Opens the log of a database, and makes it where there is none. */
    public static DatabaseLog create(String database) throws IOException {
        return new DatabaseLog(database, true);
    }

    /** Writes one message of two texts, either of which may be null. What the flag means is the log's affair. */
    public synchronized void write(String text1, String text2, boolean flag) throws IOException {
        if (context == 0) {
            throw new IOException("the log is closed");
        }
        NATIVE.juLogWrite(IOException.class, context, text1, text2, flag);
    }

    @Override
    public synchronized void close() {
        if (context != 0) {
            NATIVE.juLogClose(IOException.class, context);
            context = 0;
        }
    }
}
