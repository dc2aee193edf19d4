package com.lorvanta.common.util;

import static com.lorvanta.common.util.World.fails;
import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertTrue;

import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.List;
import java.util.Optional;
import java.util.OptionalInt;
import java.util.stream.Collectors;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.api.io.TempDir;

class LogAndResolverTest {
    @TempDir
    Path folder;

    @Test
    void aLogHasOneLineForEachMessage() throws IOException {
        String database = folder.resolve("sales").toString();
        fails("error opening log file for database " + database + "\n", () -> DatabaseLog.open(database));
        try (DatabaseLog log = DatabaseLog.create(database)) {
            log.write("begun", "by\nme", true);
            log.write(null, null, false);
            log.write(null, "日本語", false);
            log.close();
            fails("the log is closed", () -> log.write("a", "b", true));
        }
        for (int i = 0; i < 1000; ++i) {
            try (DatabaseLog log = i % 2 == 0 ? DatabaseLog.open(database) : DatabaseLog.create(database)) {
                log.write("" + i, null, true);
            }
        }
        List<String> lines = Files.readAllLines(Path.of(database + ".log")).stream()
                .map(line -> line.replaceFirst("^\\d{4}-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\dZ \\d+ ", ""))
                .collect(Collectors.toList());
        assertEquals(List.of("! begun by me", "-", "- 日本語", "! 0"), lines.subList(0, 4));
        assertEquals(1003, lines.size());
        assertTrue(World.held()[0] < 200);
    }

    @Test
    void failuresOfALogHaveTheirTexts() throws IOException {
        ZellogFile raw = new ZellogFile();
        String nowhere = folder.resolve("none/sales").toString();
        fails("database name must be specified", () -> raw.juLogOpen(IOException.class, null, true));
        fails("error creating log file for database " + nowhere + "\n", () -> DatabaseLog.create(nowhere));
        fails("error creating log file for database " + "x".repeat(218), () -> DatabaseLog.create("x".repeat(300)));
        fails("error writing to database log file", () -> raw.juLogWrite(IOException.class, 0, "a", "b", true));
        raw.juLogClose(IOException.class, 0);
        Files.createSymbolicLink(folder.resolve("full.log"), Path.of("/dev/full"));
        try (DatabaseLog full = DatabaseLog.open(folder.resolve("full").toString())) {
            fails("error writing to database log file", () -> full.write("a", "b", true));
        }
    }

    @Test
    void hostsAndServicesAreFound() {
        NetLib raw = new NetLib();
        assertTrue(Resolver.officialName("localhost").isPresent());
        assertEquals(Optional.of("127.0.0.1"), Resolver.officialName("127.0.0.1"));
        assertEquals(Optional.empty(), Resolver.officialName("no such host"));
        assertEquals(OptionalInt.of(80), Resolver.port("http", "tcp"));
        assertEquals(OptionalInt.of(60179), Resolver.port("fido", "tcp"));
        assertEquals(OptionalInt.empty(), Resolver.port("http", "none"));
        assertEquals(443, raw.getPortNumberJNI(raw.getServByNameJNI("https", "tcp")));
        assertEquals(0, raw.getServByNameJNI("none", "tcp"));
        assertEquals(-1, raw.getPortNumberJNI(0));
        assertEquals(null, raw.getHostNameJNI(0));
        assertEquals(0, raw.getHostByNameJNI(null));
    }
}
