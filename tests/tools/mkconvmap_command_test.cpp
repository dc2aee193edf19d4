// The compiler of data files as a user runs it: exit codes, messages, and no half-written file under the final name.
#include <gtest/gtest.h>

#include "tests/tools/command.hpp"

namespace nls::test {
namespace {

const std::string kList = "charset UTF-8 LATIN\nconvert UTF-8 LATIN\n";

class MkconvmapCommand : public testing::Test {
protected:
    MkconvmapCommand() {
        std::filesystem::create_directory(folder_.path("charsets"));
        folder_.put("charsets/UTF-8.txt", "charset UTF-8\nkind utf-8\n");
        folder_.put("charsets/LATIN.txt", "charset LATIN\nkind single-byte\nsource iconv ISO-8859-1\n");
    }
    Answer compile(const std::string& list, Words more = {}) {
        more.insert(more.begin(), {folder_.put("map.list", list), "-o", folder_.path("out.cp")});
        return run(more);
    }

    Folder folder_;
};

TEST_F(MkconvmapCommand, WritesTheFileAndTellsWhatItHolds) {
    const Answer answer = compile(kList, {"--listing", folder_.path("listing.txt")});
    EXPECT_EQ(answer.exit, 0) << answer.err;
    EXPECT_TRUE(
        (answer.out + answer.err)
            .starts_with(
                "4 entries: 2 attribute tables, 2 conversions, 0 collations, 0 case tables; 1 without a record, "
                "0 with a shared one\n"
                "3904 bytes: contents 256, attribute tables 3104, conversion records 528, arrays 0, "
                "collations 0, case tables 0\n"));
    EXPECT_EQ(folder_.get("listing.txt"),
              "kind        name                to                   raw   offset   bytes   arena\n"
              "attributes  UTF-8                                     10      272   1552      792\n"
              "attributes  LATIN                                      1     1824   1552      792\n"
              "conversion  UTF-8               LATIN                 20        -      -     3488\n"
              "conversion  LATIN               UTF-8                 51     3376    528        0\n");
    const std::string first = folder_.get("out.cp");
    EXPECT_EQ(first.size(), 3904U);
    EXPECT_EQ(compile(kList).exit, 0);
    EXPECT_EQ(folder_.get("out.cp"), first);
}

TEST_F(MkconvmapCommand, TellsRefusalsUsageAndFileTrouble) {
    folder_.put("out.cp", "old");
    const Answer refused = compile("charset UTF-8\nconvert UTF-8 GREEK\n");
    EXPECT_EQ(refused.exit, 1);
    EXPECT_EQ(refused.err, folder_.path("map.list") + ":2: no charset GREEK in the list so far\n");
    EXPECT_EQ(folder_.get("out.cp"), "old");
    EXPECT_EQ(run({}).exit, 2);
    EXPECT_EQ(run({"--help"}).exit, 0);
    EXPECT_EQ(run({"a", "b", "c", "-o", "d"}).exit, 2);
    const Answer missing = run({folder_.path("none.list"), "-o", folder_.path("out.cp")});
    EXPECT_EQ(missing.exit, 4);
    EXPECT_EQ(missing.err, folder_.path("none.list") + ": the file can't be read\n");
    const std::string list = folder_.put("map.list", "charset UTF-8\n");
    const Answer nowhere = run({list, "-o", folder_.path("none/out.cp")});
    EXPECT_EQ(nowhere.exit, 4);
    EXPECT_EQ(nowhere.err, folder_.path("none/out.cp.new") + ": the file can't be written\n");
    EXPECT_EQ(run({list, "-o", folder_.path("charsets")}).exit, 4);
    EXPECT_EQ(folder_.names(), (std::set<std::string>{"charsets", "map.list", "out.cp"}));
}

}  // namespace
}  // namespace nls::test
