// The native methods with a Java machine that is a script: every status of every call, each allocation, read and call
// of the machine failing in turn, and what is held afterwards.
#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <set>

#include "jni/jni_text.hpp"
#include "jni/message_context.hpp"
#include "jni/message_helpers.h"
#include "jni/native_methods.h"
#include "jutil/message_file.hpp"
#include "nls/status.h"
#include "tests/jni/scripted_machine.hpp"

namespace {

using nls::test::Answers;
using nls::test::kOwn;
using nls::test::Machine;
using nls::test::script;

// A message file of the messages 1, 2, ... that goes away with the object.
class File {
public:
    File(const std::string& charset, const std::vector<std::string>& texts, uint32_t version = 1) {
        jutil::MessageHeader header{{}, version, static_cast<uint32_t>(texts.size()), {}, 0};
        memcpy(header.magic, jutil::kMagic, sizeof header.magic);
        charset.copy(header.charset, sizeof header.charset - 1);
        std::string entries, all;
        for (const std::string& text : texts) {
            const auto number = static_cast<int32_t>(entries.size() / sizeof(jutil::MessageEntry)) + 1;
            const auto place = static_cast<uint32_t>(sizeof header + texts.size() * sizeof(jutil::MessageEntry));
            const jutil::MessageEntry entry{number, place + static_cast<uint32_t>(all.size()),
                                            static_cast<uint32_t>(text.size())};
            entries.append(reinterpret_cast<const char*>(&entry), sizeof entry);
            all += text;
        }
        header.fileSize = static_cast<uint32_t>(sizeof header + entries.size() + all.size());
        image_ = std::string{reinterpret_cast<const char*>(&header), sizeof header} + entries + all;
        rewrite(image_);
    }
    ~File() { std::filesystem::remove(path_); }
    File(const File&) = delete;
    File& operator=(const File&) = delete;
    const std::string& path() const { return path_; }
    const std::string& image() const { return image_; }
    void rewrite(const std::string& bytes) { std::ofstream{path_, std::ios::binary} << bytes; }

private:
    std::string image_;
    std::string path_ = testing::TempDir() + "messages." + std::to_string(getpid());
};

jlong openFile(Machine& machine, const std::string& path) {
    return Java_com_lorvanta_common_util_ZelmsgsFile_juZlmOpen(machine.env(), nullptr, machine.exceptionClass(),
                                                               machine.string(path), nullptr);
}
jstring lookUp(Machine& machine, jlong context, jint number) {
    return Java_com_lorvanta_common_util_ZelmsgsFile_juZlmLookup(machine.env(), nullptr, machine.exceptionClass(),
                                                                 context, number);
}
void closeFile(Machine& machine, jlong context) {
    Java_com_lorvanta_common_util_ZelmsgsFile_juZlmClose(machine.env(), nullptr, nullptr, context);
}

class Messages : public testing::Test {
protected:
    void SetUp() override { use(NLS_CONVMAP); }
    static void use(const char* convmap) { setenv("ZELCONV", convmap, 1); }
};

TEST_F(Messages, EachStatusOfAnOpenHasItsEnd) {
    const File file{"SHIFT-JIS", {"one"}};
    const std::string silent;
    const struct {
        Answers answers;
        std::string utilityText;
        std::optional<std::string> thrown;  // nothing: the file is open
    } rows[] = {
        {{}, "", {}},
        {{{"juZlmOpen", {-4}}}, "", "unknown zelmsgs error code"},
        {{{"juZlmOpen", {-2}}}, "", "error reading zelmsgs file"},
        {{{"juZlmOpen", {-2}}}, "the disk is gone", "the disk is gone"},
        {{{"juZlmOpen", {0}}}, "not asked", {}},
        {{{"nlsInit", {NLS_BAD_MAGIC}}}, "", "error converting zelmsgs to java codepage (UTF8)"},
        {{{"nlsCreateLocale", {NLS_NO_ATTRIB_TABLE}}}, "", silent},
        {{{"nlsCreateLocale", {kOwn, NLS_NO_ATTRIB_TABLE}}}, "", "invalid or unsupported charset"},
        {{{"nlsCreateLocale", {kOwn, NLS_NO_COLL_TABLE}}}, "", "invalid or unsupported collation"},
        {{{"nlsCreateLocale", {kOwn, NLS_NO_CASE_TABLE}}}, "", "invalid or unsupported case table"},
        {{{"nlsCreateLocale", {kOwn, NLS_READ_FAILED}}}, "", silent},
        {{{"nlsCreateConversion", {NLS_BAD_HANDLE}}}, "", "error in codepage conversion"},
        {{{"nlsCreateConversion", {NLS_NO_CONV_TABLE}}}, "", silent},
        {{{"nlsCreateLocale", {NLS_NO_MEM}}}, "", {}},
        {{{"nlsCreateLocale", {kOwn, NLS_NO_MEM}}}, "", {}},
        {{{"nlsCreateConversion", {NLS_NO_MEM}}}, "", {}},
        {{{"nlsCreateConversion", {NLS_NO_MEM, NLS_NO_MEM}}}, "", silent},
        {{{"nlsCreateLocale", {NLS_NO_MEM}}, {"nlsCreateConversion", {NLS_NO_MEM}}}, "", silent},
        {{{"nlsCreateLocale", {NLS_NO_MEM}}, {"nlsAddBuffer", {NLS_BUSY}}}, "", silent},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << "row " << &row - rows);
        Machine machine;
        script.answers = row.answers;
        script.utilityText = row.utilityText;
        const jlong context = openFile(machine, file.path());
        EXPECT_EQ(context != 0, !row.thrown);
        EXPECT_EQ(machine.pending, row.thrown && !row.thrown->empty());
        EXPECT_EQ(machine.thrown, row.thrown.value_or(""));
        EXPECT_EQ(script.blocks > 2, context != 0 && !row.answers.empty() && row.answers.count("juZlmOpen") == 0);
        closeFile(machine, context);
        EXPECT_TRUE(machine.holdsNothing());
    }
}

TEST_F(Messages, AWarningAboutTheNameOfAFileLeavesNothingToOpen) {
    Machine machine;
    script.answers = {{"juZlmMakeFilename", {1}}};
    EXPECT_EQ(Java_com_lorvanta_common_util_ZelmsgsFile_juZlmOpen(machine.env(), nullptr, machine.exceptionClass(),
                                                                  nullptr, machine.string("eng")),
              0);
    EXPECT_EQ(machine.thrown, "wrong version number in zelmsgs file");
    EXPECT_TRUE(machine.holdsNothing());
}

TEST_F(Messages, OfAPath255BytesCount) {
    const File file{"UTF-8", {"one"}};
    const std::string longest = std::string(255 - file.path().size(), '/') + file.path();
    for (const std::string& path : {longest, longest + "x", longest + std::string(5000, 'x')}) {
        Machine machine;
        const jlong context = openFile(machine, path);
        EXPECT_NE(context, 0) << machine.thrown << path.size();
        closeFile(machine, context);
    }
}

// One failure after the other: in an open with a warning, and in a look-up, of one step and of two.
TEST_F(Messages, WhateverFailsEverythingIsGivenBack) {
    const File file{"SHIFT-JIS", {"one", "two", "\x83\x65"}, 7};
    for (const char* convmap : {NLS_CONVMAP, TWO_STEP_CONVMAP}) {
        use(convmap);
        int opens = 0;
        std::vector<std::string> thrown;  // by look-ups; none by the last
        for (bool failed = true; failed; ++opens) {
            Machine machine;
            script.failAt = opens + 1;
            const jlong context = openFile(machine, file.path());
            failed = script.failed();
            EXPECT_EQ(context == 0, failed) << convmap << opens;
            EXPECT_TRUE(failed || machine.shown == std::vector<std::string>{"wrong version number in zelmsgs file"});
            closeFile(machine, context);
            EXPECT_TRUE(machine.holdsNothing()) << convmap << opens;
        }
        Machine machine;
        const jlong context = openFile(machine, file.path());
        ASSERT_NE(context, 0);
        const int held = script.blocks;
        for (bool failed = true; failed;) {
            script.calls = 0;
            script.failAt = static_cast<int>(thrown.size()) + 1;
            const jstring text = lookUp(machine, context, 3);
            failed = script.failed();
            EXPECT_EQ(text == nullptr, failed);
            EXPECT_EQ(machine.pending, failed);
            EXPECT_EQ(script.blocks, held);
            thrown.push_back(machine.thrown);
            machine.catchException();
        }
        script.failAt = 0;
        EXPECT_EQ(*Machine::textOf(lookUp(machine, context, 3)), "テ");
        closeFile(machine, context);
        EXPECT_TRUE(machine.holdsNothing());
        EXPECT_GT(opens, 20);
        // Two entries and the text are read, two records or three are taken, the String is made.
        std::vector<std::string> expected{"error reading zelmsgs file", "error reading zelmsgs file",
                                          "message 3 of the zelmsgs file can't be read"};
        expected.resize(convmap == std::string{TWO_STEP_CONVMAP} ? 6 : 5, "out of memory");
        expected.resize(expected.size() + 2);
        EXPECT_EQ(thrown, expected);
    }
}

TEST_F(Messages, EachFailureOfALookUpHasItsText) {
    const std::string noConversion = "error converting zelmsgs to java codepage (UTF8)";
    const struct {
        Answers answers;
        std::string utilityText, thrown;
    } rows[] = {
        {{{"juZlmLookup", {-8}}}, "", "Requested message does not exist in zelmsgs file"},
        {{{"juZlmLookup", {-2}}}, "entry 5 is \xF0\x9F\x98\x80", "entry 5 is \xED\xA0\xBD\xED\xB8\x80"},
        {{{"juZlmLookup", {3}}}, "", "unknown zelmsgs error code"},
        {{{"juZlmLookup", {-2}}}, std::string(600, 'x'), std::string(515, 'x')},  // fills its buffer without a NUL
        {{{"nlsSetString", {NLS_BAD_ARG}}}, "", noConversion},
        {{{"nlsGetIntConversionProperty", {kOwn, NLS_BAD_ARG}}}, "", noConversion},
        {{{"nlsInitString", {NLS_BAD_ARG}}}, "", noConversion},
        {{{"nlsInitString", {kOwn, NLS_BAD_ARG}}}, "", noConversion},
        {{{"nlsConvertNLS", {NLS_BUF_SMALL}}}, "", noConversion},
        {{{"nlsConvertNLS", {NLS_CONV_SUBST}}}, "", ""},
    };
    use(TWO_STEP_CONVMAP);
    const File file{"SHIFT-JIS", {"one"}};
    Machine machine;
    const jlong context = openFile(machine, file.path());
    ASSERT_NE(context, 0);
    const int held = script.blocks;
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << "row " << &row - rows);
        script.answers = row.answers;
        script.utilityText = row.utilityText;
        const jstring text = lookUp(machine, context, 1);
        EXPECT_EQ(text == nullptr, !row.thrown.empty());
        EXPECT_EQ(machine.thrown, row.thrown);
        EXPECT_EQ(script.blocks, held);
        machine.catchException();
    }
    closeFile(machine, context);
}

TEST_F(Messages, DamagedFilesFailAndNothingElse) {
    File file{"SHIFT-JIS", {"one", "two", "three"}};
    const std::string sound = file.image();
    for (std::size_t place = 0; place < sound.size(); ++place) {
        std::string flipped = sound;
        flipped[place] = static_cast<char>(flipped[place] ^ 0x81);
        for (const std::string& damaged : {sound.substr(0, place), flipped}) {
            file.rewrite(damaged);
            Machine machine;
            const jlong context = openFile(machine, file.path());
            EXPECT_TRUE(context == 0 || damaged.size() == sound.size()) << "a file that is cut short opens";
            for (jint number = 1; context != 0 && number <= 3; ++number) {
                EXPECT_EQ(lookUp(machine, context, number) == nullptr, machine.pending);
                machine.catchException();
            }
            closeFile(machine, context);
            EXPECT_TRUE(machine.holdsNothing());
        }
    }
}

// Which multi-byte charsets don't fit the memory of a message file, with the extra buffer too.
TEST_F(Messages, TheLargestCharsetsDontFit) {
    using Names = std::set<std::string>;
    const std::pair<const char*, Names> rows[] = {
        {NLS_CONVMAP, {"CP936", "CP949", "CP950", "CP950-HKSCS", "CP1361"}},
        {NLS_SMALL_CONVMAP, {"CP950-HKSCS"}},
    };
    for (const auto& [convmap, expected] : rows) {
        use(convmap);
        Names tooLarge;
        for (const char* const charset : {"UTF-8", "ISO6937", "SHIFT-JIS", "EUCJIS", "KSC5601", "CP949", "CP1361",
                                          "GB2312", "CP936", "BIG-5", "CP950", "CP950-HKSCS"}) {
            const File file{charset, {"one"}};
            Machine machine;
            const jlong context = openFile(machine, file.path());
            EXPECT_FALSE(machine.pending) << charset;
            if (context == 0) tooLarge.insert(charset);
            closeFile(machine, context);
            EXPECT_TRUE(machine.holdsNothing());
        }
        EXPECT_EQ(tooLarge, expected);
    }
}

TEST(MessageHelpers, CodesHaveTheirTexts) {
    const std::pair<int32_t, const char*> rows[] = {
        // The others are thrown in the tests.
        {-100, "out of memory"},
        {-103, "internal buffer too small in convmap interface"},
        {-105, "error closing convmap file"},
        {-106, "error reading convmap file"},
        {-111, "invalid zelmsgs locale"},
        {-112, "invalid UTF8 locale"},
    };
    for (const auto& [code, text] : rows) EXPECT_STREQ(getErrorString(code), text);
    for (const int32_t code : {-4, -9, -99, -113, 2}) EXPECT_STREQ(getErrorString(code), "unknown zelmsgs error code");
    EXPECT_EQ(getErrorString(0), nullptr);
    EXPECT_EQ(getErrorString(-102), nullptr);
}

TEST(MessageHelpers, FindTheDataFileInTheOrderOfItsPlaces) {
    const std::string registry = testing::TempDir() + "registry." + std::to_string(getpid());
    const struct {
        const char *registry, *zelconv, *qrd, *path;
    } rows[] = {
        {nullptr, "/a/own.cp", "/q", "/a/own.cp"},
        {nullptr, nullptr, "/q", "/q/convmap.cp"},
        {nullptr, "", "", "convmap.cp"},
        {nullptr, nullptr, nullptr, "convmap.cp"},
        {"ZELCONV = /r/r.cp\n", "/a", "/q", "/r/r.cp"},
        {"#ZELCONV=/r\nQRD=/r d\n", nullptr, "/q", "/r d/convmap.cp"},
        {"QRD=/r\n", "/a", nullptr, "/a"},
    };
    const auto set = [](const char* name, const char* value) { value ? setenv(name, value, 1) : unsetenv(name); };
    for (const auto& row : rows) {
        if (row.registry != nullptr) std::ofstream{registry} << row.registry;
        set("JUTIL_REGISTRY", row.registry == nullptr ? nullptr : registry.c_str());
        set("ZELCONV", row.zelconv);
        set("QRD", row.qrd);
        const auto length = static_cast<int32_t>(strlen(row.path));
        for (int32_t size = 1; size <= length + 2; ++size) {
            const std::unique_ptr<char[]> path{new char[static_cast<std::size_t>(size)]};
            const bool fits = size > length;
            EXPECT_EQ(convMakeFilename(path.get(), size), fits ? -102 : -103) << row.path << size;
            EXPECT_TRUE(!fits || strcmp(path.get(), row.path) == 0) << path.get();
        }
    }
    for (const char* name : {"JUTIL_REGISTRY", "ZELCONV", "QRD"}) unsetenv(name);
    uint32_t file = 0;
    EXPECT_EQ(convOpenFile(&file), NLS_CONVMAP_OPEN_FAILED);  // there is no convmap.cp in this folder
    EXPECT_EQ(file, UINT32_MAX);
    EXPECT_EQ(convFileClose(&file), NLS_CONVMAP_CLOSE_FAILED);
    std::filesystem::remove(registry);
}

std::string modified(const std::string& bytes) {
    std::vector<char> room(nls::modifiedRoom(bytes.size()));
    return nls::modifiedUtf8({reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size()}, room);
}

TEST(JniText, BecomesModifiedUtf8) {
    const std::string pairs = "\xED\xA0\x80\xED\xB0\x80\xED\xAF\xBF\xED\xBF\xBF";
    EXPECT_EQ(modified({'a', '\0', '.'}), "a\xC0\x80.");
    EXPECT_EQ(modified("\xF0\x90\x80\x80\xF4\x8F\xBF\xBF"), pairs);
    EXPECT_EQ(modified("\xC0\x80" + pairs), "\xC0\x80" + pairs);
    for (const std::string bytes : {"\x80", "\xC0\x81", "\xC1\xBF", "\xE0\x9F\xBF", "\xF0\x8F\xBF\xBF",
                                    "\xF4\x90\x80\x80", "\xF5\xBF", "\xC3", "\xE3\x81", "\xF0\x9F\x98"}) {
        std::string bad;
        while (bad.size() < 3 * bytes.size()) bad += "\xEF\xBF\xBD";
        EXPECT_EQ(modified(bytes), bad);
        EXPECT_EQ(modified(bytes + "\xC3\xA4"), bad + "\xC3\xA4");
    }
}

jlong openLog(Machine& machine, jstring database, jboolean create) {
    return Java_com_lorvanta_common_util_ZellogFile_juLogOpen(machine.env(), nullptr, machine.exceptionClass(),
                                                              database, create);
}

TEST(Log, TextsAndFlagsGoThrough) {
    Machine machine;
    const auto write = [&machine](jlong context, const char* text1, const char* text2, jboolean flag) {
        const auto string = [&machine](const char* text) { return text == nullptr ? nullptr : machine.string(text); };
        Java_com_lorvanta_common_util_ZellogFile_juLogWrite(machine.env(), nullptr, machine.exceptionClass(), context,
                                                            string(text1), string(text2), flag);
    };
    const auto close = [&machine](jlong context) {
        Java_com_lorvanta_common_util_ZellogFile_juLogClose(machine.env(), nullptr, nullptr, context);
    };
    const jlong context = openLog(machine, machine.string("db"), 1);
    ASSERT_NE(context, 0);
    const jlong other = openLog(machine, machine.string("db"), 2);
    write(context, nullptr, nullptr, 2);
    write(context, "a", nullptr, 1);
    write(context, nullptr, "b", 0);
    close(other);
    close(context);
    close(0);
    EXPECT_EQ(script.log, (std::vector<std::string>{"open db.log 1", "open db.log 0", "null null 0", "a null 1",
                                                    "null b 0", "close", "close", "close null"}));
    EXPECT_TRUE(machine.holdsNothing());

    script.answers = {{"juLogWrite", {5}}};
    write(context, "a", "b", 1);
    EXPECT_EQ(machine.thrown, "error writing to database log file");
    for (script.failAt = 1; script.failAt <= 2; ++script.failAt) {
        machine.catchException();
        script.calls = 0;
        script.log.clear();
        write(context, "a", "b", 1);
        EXPECT_TRUE(machine.pending && machine.thrown.empty() && script.log.empty());
    }
    EXPECT_TRUE(machine.holdsNothing());
}

TEST(Log, FailuresOfAnOpenAreThrownAndGivenBack) {
    Machine machine;
    EXPECT_EQ(openLog(machine, nullptr, 1), 0);
    EXPECT_EQ(machine.thrown, "database name must be specified");
    EXPECT_TRUE(script.log.empty());
    for (script.failAt = 1; script.failAt <= 2; ++script.failAt) {  // the string, then the context
        machine.catchException();
        script.calls = 0;
        EXPECT_EQ(openLog(machine, machine.string("db"), 1), 0);
        EXPECT_EQ(machine.pending, script.failAt == 1);
        EXPECT_TRUE(machine.holdsNothing() && machine.thrown.empty());
    }
    script.failAt = 0;
    // Names around the 255 bytes that a text has, of characters of one, two and three bytes: cut between characters.
    for (const std::string character : {"d", "ä", "あ"}) {
        for (std::size_t count = 1; count <= 300; ++count) {
            std::string name;
            while (name.size() < count) name += character;
            machine.catchException();
            script.answers = {{"juLogOpen", {-1}}};
            EXPECT_EQ(openLog(machine, machine.string(name), 0), 0);
            std::string text = "error opening log file for database " + name + "\n";
            if (text.size() > 255) {
                text.resize(255);
                while (text.size() > 36 && (text.size() - 36) % character.size() != 0) text.pop_back();
            }
            ASSERT_EQ(machine.thrown, text);
            ASSERT_TRUE(machine.holdsNothing());
        }
    }
}

TEST(Resolver, NamesThatJavaCantGiveAreNotFound) {
    Machine machine;
    JNIEnv* const env = machine.env();
    const jstring http = machine.string("http"), tcp = machine.string("tcp"), host = machine.string("localhost");
    for (int failAt = 0; failAt <= 2; ++failAt) {
        const auto restart = [&machine, failAt] {
            machine.catchException();
            script.calls = 0;
            script.failAt = failAt;
        };
        restart();
        const jint port = Java_com_lorvanta_common_util_NetLib_getPortNumByNameJNI(env, nullptr, http, tcp);
        EXPECT_EQ(port, failAt == 0 ? 80 : -1);
        restart();
        EXPECT_EQ(Java_com_lorvanta_common_util_NetLib_getServByNameJNI(env, nullptr, http, tcp) == 0, failAt != 0);
        restart();
        EXPECT_EQ(Java_com_lorvanta_common_util_NetLib_getHostByNameJNI(env, nullptr, host) == 0, failAt == 1);
        EXPECT_EQ(Java_com_lorvanta_common_util_NetLib_getPortNumByNameJNI(env, nullptr, nullptr, tcp), -1);
        EXPECT_TRUE(machine.holdsNothing());
    }
}

}  // namespace
