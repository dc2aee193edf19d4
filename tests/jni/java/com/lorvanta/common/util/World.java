package com.lorvanta.common.util;

import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertThrows;

import java.io.IOException;
import java.nio.ByteBuffer;
import java.nio.ByteOrder;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.List;
import java.util.Map;
import org.junit.jupiter.api.function.Executable;

/** What the tests stand on: the build's data files, a registry, and message files written here by their description. */
final class World {
    static final Path CONVMAP = property("convmap");
    static final Path SMALL_CONVMAP = property("convmap.small");
    static final Path TWO_STEP_CONVMAP = property("convmap.twoStep");
    static final Path MKMESSAGES = property("mkmessages");
    private static final Path REGISTRY = Path.of(System.getenv("JUTIL_REGISTRY"));

    private World() {}

    private static Path property(String name) {
        return Path.of(System.getProperty("nls.test." + name));
    }

    static void registry(Map<String, Object> values) throws IOException {
        StringBuilder lines = new StringBuilder("# of this test\n");
        values.forEach((name, value) -> lines.append(name).append(" = ").append(value).append('\n'));
        Files.writeString(REGISTRY, lines);
    }

    static void useConvmap(Path convmap) throws IOException {
        registry(Map.of("ZELCONV", convmap));
    }

    /** A message file of the messages 1, 2, ... */
    static byte[] messages(String charset, int version, List<byte[]> texts) {
        int size = 48 + texts.stream().mapToInt(text -> 12 + text.length).sum();
        ByteBuffer file = ByteBuffer.allocate(size).order(ByteOrder.LITTLE_ENDIAN);
        file.put("ZELMSGS\n".getBytes(StandardCharsets.US_ASCII)).putInt(version).putInt(texts.size());
        file.put(charset.getBytes(StandardCharsets.US_ASCII)).position(44).putInt(size);
        int place = 48 + 12 * texts.size();
        for (int i = 0; i < texts.size(); ++i) {
            file.putInt(i + 1).putInt(place).putInt(texts.get(i).length);
            place += texts.get(i).length;
        }
        texts.forEach(file::put);
        return file.array();
    }

    static Path write(Path folder, String charset, List<byte[]> texts) throws IOException {
        return Files.write(folder.resolve("messages"), messages(charset, 1, texts));
    }

    static void fails(String text, Executable call) {
        assertEquals(text, assertThrows(IOException.class, call).getMessage());
    }

    /** What must not grow: the files of this process, and its resident memory in KiB. */
    static long[] held() throws IOException {
        try (var files = Files.list(Path.of("/proc/self/fd"))) {
            long memory = Files.readAllLines(Path.of("/proc/self/status")).stream()
                    .filter(line -> line.startsWith("VmRSS"))
                    .mapToLong(line -> Long.parseLong(line.replaceAll("\\D", "")))
                    .sum();
            return new long[] {files.count(), memory};
        }
    }
}
