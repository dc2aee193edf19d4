package com.lorvanta.common.util;

import static com.lorvanta.common.util.World.fails;
import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertArrayEquals;
import static org.junit.jupiter.api.Assertions.assertThrows;
import static org.junit.jupiter.api.Assertions.assertTrue;

import java.io.ByteArrayOutputStream;
import java.io.IOException;
import java.io.PrintStream;
import java.nio.charset.Charset;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.List;
import java.util.Map;
import java.util.concurrent.Callable;
import java.util.concurrent.Executors;
import java.util.stream.Collectors;
import java.util.stream.IntStream;
import org.junit.jupiter.api.BeforeEach;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.api.io.TempDir;

class MessageFileTest {
    private static final String NO_CONVERSION = "error converting zelmsgs to java codepage (UTF8)";
    private static final String TOO_LONG = "internal buffer too small in zelmsgs interface";
    private static final byte[] ONE = {'1'};

    @TempDir
    Path folder;

    @BeforeEach
    void useTheDataFile() throws IOException {
        World.useConvmap(World.CONVMAP);
    }

    private static void holds(Path file, List<String> texts) throws IOException {
        try (MessageFile messages = MessageFile.open(file)) {
            for (int i = 0; i < texts.size(); ++i) {
                assertEquals(texts.get(i), messages.text(i + 1));
            }
        }
    }

    private static List<byte[]> in(Charset charset, List<String> texts) {
        return texts.stream().map(text -> text.getBytes(charset)).collect(Collectors.toList());
    }

    @Test
    void textsComeFromEachCharset() throws IOException {
        String latin = IntStream.range(0xA0, 0x100).mapToObj(Character::toString).collect(Collectors.joining());
        String japanese = "日本語のメッセージ、ｶﾅ、ファイル「表」がありません。";
        Object[][] rows = {
            {"SHIFT-JIS", "windows-31j", japanese}, {"EUCJIS", "EUC-JP", japanese},
            {"GB2312", "GB2312", "找不到文件"},
            {"ISO8859-1", "ISO-8859-1", latin}, {"1252", "windows-1252", latin + "€"}, {"IBM037", "IBM037", latin},
            {"UTF-8", "UTF-8", latin + japanese + "😀"}};
        for (Object[] row : rows) {
            List<String> texts = List.of("", "plain", (String) row[2]);
            holds(World.write(folder, (String) row[0], in(Charset.forName((String) row[1]), texts)), texts);
        }
        World.useConvmap(World.TWO_STEP_CONVMAP);
        Charset sjis = Charset.forName("windows-31j");
        holds(World.write(folder, "SHIFT-JIS", in(sjis, List.of(japanese))), List.of(japanese));
        holds(World.write(folder, "IBM037", in(Charset.forName("IBM037"), List.of(latin))), List.of(latin));
    }

    @Test
    void everyCharacterOfUnicodeArrives() throws IOException {
        List<String> texts = new ArrayList<>();
        StringBuilder text = new StringBuilder();
        for (int point = 1; point <= Character.MAX_CODE_POINT; ++point) {
            if (point < Character.MIN_SURROGATE || point > Character.MAX_SURROGATE) {
                text.appendCodePoint(point);
            }
            if (point % 128 == 127) {
                texts.add(text.toString());
                text.setLength(0);
            }
        }
        holds(World.write(folder, "UTF-8", in(StandardCharsets.UTF_8, texts)), texts);
        // What isn't well-formed stands as U+FFFD. A NUL of the file ends the text.
        holds(World.write(folder, "UTF-8", List.of(new byte[] {'a', (byte) 0xF0, (byte) 0x9F, 'b', 0, 'c'})),
                List.of("a\uFFFD\uFFFDb"));
    }

    @Test
    void theLongestTextFollowsFromTheGrowthOfItsConversion() throws IOException {
        Map<String, Integer> longest = Map.of("UTF-8", 512, "ISO8859-1", 368, "1252", 245, "SHIFT-JIS", 245);
        List<byte[]> texts = IntStream.rangeClosed(0, 513).mapToObj(length -> "x".repeat(length).getBytes())
                .collect(Collectors.toList());
        for (String charset : longest.keySet()) {
            try (MessageFile messages = MessageFile.open(World.write(folder, charset, texts))) {
                for (int length = 0; length <= 513; ++length) {
                    int number = length + 1;
                    if (length <= longest.get(charset)) {
                        assertEquals(length, messages.text(number).length());
                    } else {
                        fails(length > 512 ? TOO_LONG : NO_CONVERSION, () -> messages.text(number));
                    }
                }
            }
        }
    }

    @Test
    void failuresHaveTheirTexts() throws IOException {
        Path good = World.write(folder, "UTF-8", List.of(ONE));
        Path other = Files.write(folder.resolve("other"), World.messages("KLINGON", 1, List.of(ONE)));
        fails("error opening zelmsgs file", () -> MessageFile.open(folder.resolve("none")));
        fails("path of a message file too long: " + "x".repeat(256), () -> MessageFile.open(Path.of("x".repeat(256))));
        fails("error reading zelmsgs file", () -> MessageFile.open(Files.createFile(folder.resolve("empty"))));
        fails("zelmsgs file " + World.CONVMAP + " isn't a zelmsgs file", () -> MessageFile.open(World.CONVMAP));
        fails("invalid or unsupported charset", () -> MessageFile.open(other));
        fails("zelmsgs locale string must be 3 characters long", () -> MessageFile.ofLocale("deu1"));
        fails("$QRD environment variable not found for zelmsgs", () -> MessageFile.ofLocale("deu"));
        fails("invalid context block for zelmsgs file", () -> new ZelmsgsFile().juZlmLookup(IOException.class, 0, 1));
        fails("zelmsgs locale string must be 3 characters long",
                () -> new ZelmsgsFile().juZlmOpen(IOException.class, null, null));
        try (MessageFile messages = MessageFile.open(good)) {
            fails("Requested message does not exist in zelmsgs file", () -> messages.text(2));
            messages.close();
            fails("the message file is closed", () -> messages.text(1));
        }
        new ZelmsgsFile().juZlmClose(IOException.class, 0);
        Files.copy(good, folder.resolve("zelmsgs.deu"));
        World.registry(Map.of("ZELCONV", World.CONVMAP, "QRD", folder));
        try (MessageFile messages = MessageFile.ofLocale("deu")) {
            assertEquals("1", messages.text(1));
        }
        World.registry(Map.of("QRD", folder + "/".repeat(256)));
        fails(TOO_LONG, () -> MessageFile.ofLocale("deu"));
        World.useConvmap(folder.resolve("none"));
        fails("error opening convmap file", () -> MessageFile.open(good));
        byte[] convmap = Files.readAllBytes(World.SMALL_CONVMAP);
        for (int size : new int[] {0, 15, 1000}) {
            World.useConvmap(Files.write(folder.resolve("cut.cp"), Arrays.copyOf(convmap, size)));
            fails(NO_CONVERSION, () -> MessageFile.open(good));
        }
        World.useConvmap(World.SMALL_CONVMAP);
        fails("no memory or no conversion for the charset of the message file",
                () -> MessageFile.open(World.write(folder, "CP950-HKSCS", List.of(ONE))));
    }

    @Test
    void aWarningIsShownByTools() throws IOException {
        Path file = Files.write(folder.resolve("old"), World.messages("UTF-8", 2, List.of(ONE)));
        PrintStream before = System.err;
        ByteArrayOutputStream shown = new ByteArrayOutputStream();
        System.setErr(new PrintStream(shown, true));
        try {
            holds(file, List.of("1"));
        } finally {
            System.setErr(before);
        }
        assertEquals("wrong version number in zelmsgs file" + System.lineSeparator(), shown.toString());
        // A stream that throws makes ps throw.
        System.setErr(new PrintStream(shown) {
            @Override
            public void println(String line) {
                throw new IllegalStateException(line);
            }
        });
        long files = World.held()[0];
        try {
            assertThrows(IllegalStateException.class, () -> MessageFile.open(file));
        } finally {
            System.setErr(before);
        }
        assertEquals(files, World.held()[0]);
    }

    @Test
    void aThousandOpensLeaveNothing() throws IOException {
        Path file = World.write(folder, "SHIFT-JIS", List.of(ONE));
        long[] before = null;
        for (int i = 0; i < 1100; ++i) {
            if (i == 100) {
                before = World.held();
            }
            holds(file, List.of("1"));
            fails("error opening zelmsgs file", () -> MessageFile.open(folder.resolve("none")));
        }
        long[] after = World.held();
        assertEquals(before[0], after[0]);
        assertTrue(after[1] - before[1] < 64 * 1024,
                "grown by " + (after[1] - before[1]) + " KiB, a context takes 128");
    }

    @Test
    void twoThreadsHaveAContextEach() throws Exception {
        List<String> texts = IntStream.range(0, 200).mapToObj(i -> "メッセージ " + i).collect(Collectors.toList());
        Path sjis = World.write(folder, "SHIFT-JIS", in(Charset.forName("windows-31j"), texts));
        Path utf8 = Files.write(folder.resolve("utf8"), World.messages("UTF-8", 1, in(StandardCharsets.UTF_8, texts)));
        var threads = Executors.newFixedThreadPool(2);
        List<Callable<Void>> work = List.of(sjis, utf8).stream().map(file -> (Callable<Void>) () -> {
            for (int i = 0; i < 50; ++i) {
                holds(file, texts);
            }
            return null;
        }).collect(Collectors.toList());
        for (var result : threads.invokeAll(work)) {
            result.get();
        }
        threads.shutdown();
    }

    @Test
    void mkmessagesCompilesWhatIsDescribed() throws Exception {
        Path source = folder.resolve("source");
        Path output = folder.resolve("output");
        List<String> texts = List.of("ファイル\n\\表", "", "last\tone", "z".repeat(246));
        String[][] rows = {
            {"0", "charset SHIFT-JIS\n# three\n3 last\\tone\n\n1 ファイル\\n\\\\\\x95\\x5C\n2\n4 "
                    + texts.get(3) + "\n"},
            {"1", "1 no charset\n"}, {"1", "charset SHIFT-JIS\n1 😀\n"}, {"1", "charset UTF-8\n1 a\n1 b\n"},
            {"1", "charset UTF-8\n1 \\q\n"}, {"1", "charset UTF-8\n1 \\x4\n"}, {"1", "charset UTF-8\n1x\n"},
            {"1", "charset KLINGON\n1 a\n"}, {"1", "charset UTF-8\n1 " + "x".repeat(513) + "\n"}};
        for (String[] row : rows) {
            Files.writeString(source, row[1]);
            Process run = new ProcessBuilder(World.MKMESSAGES.toString(), "-D", World.CONVMAP.toString(),
                    source.toString(), "-o", output.toString()).redirectErrorStream(true).start();
            String told = new String(run.getInputStream().readAllBytes());
            assertEquals(Integer.parseInt(row[0]), run.waitFor(), row[1] + told);
            String tooLong = "line 7: 246 bytes; Java reads at most 245 of this charset\n";
            assertEquals(row[0].equals("0"), told.endsWith(tooLong), told);
        }
        assertArrayEquals(World.messages("SHIFT-JIS", 1, in(Charset.forName("windows-31j"), texts)),
                Files.readAllBytes(output));
    }
}
