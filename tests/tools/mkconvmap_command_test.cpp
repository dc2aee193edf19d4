// The command as a user runs it: exit codes, messages, and no half-written file under the final name.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <array>
#include <cstdio>
#include <iterator>

#include "tests/tools/map_folder.hpp"

namespace nls::test {
namespace {

struct Outcome {
    int code;
    std::string output;  // of both streams
};

Outcome run(const std::string& arguments) {
    const std::string command = std::string{NLS_MKCONVMAP} + " " + arguments + " 2>&1";
    std::FILE* const pipe = popen(command.c_str(), "r");
    Outcome outcome{-1, {}};
    std::array<char, 256> piece;
    while (std::fgets(piece.data(), piece.size(), pipe) != nullptr) outcome.output += piece.data();
    const int status = pclose(pipe);
    if (WIFEXITED(status)) outcome.code = WEXITSTATUS(status);
    return outcome;
}

std::string contentsOf(const std::filesystem::path& file) {
    std::ifstream stream{file, std::ios::binary};
    return {std::istreambuf_iterator<char>{stream}, {}};
}

class MkconvmapCommand : public testing::Test {
protected:
    MkconvmapCommand() { addSmallCharsets(folder_); }

    Outcome compile(const std::string& listText, const std::string& more = "") {
        folder_.write("map.list", listText);
        return run(folder_.list().string() + " -o " + output().string() + " " + more);
    }
    std::filesystem::path output() const { return folder_.path("out.cp"); }
    std::size_t filesInFolder() const {
        const auto files = std::filesystem::directory_iterator{folder_.path("")};
        return static_cast<std::size_t>(std::distance(begin(files), end(files)));
    }

    MapFolder folder_;
};

TEST_F(MkconvmapCommand, WritesTheFileAndTellsWhatItHolds) {
    const std::string listing = folder_.path("listing.txt").string();
    const Outcome outcome = compile("charset UTF-8 LATIN\nconvert UTF-8 LATIN\n", "--listing " + listing);
    EXPECT_EQ(outcome.code, 0) << outcome.output;
    EXPECT_EQ(outcome.output,
              "4 entries: 2 attribute tables, 2 conversions (1 without a record, 0 with a shared one)\n"
              "3904 bytes: contents 256, attribute tables 3104, conversion records 528, arrays 0\n" +
                  outcome.output.substr(outcome.output.rfind('\n', outcome.output.size() - 2) + 1));
    EXPECT_EQ(std::filesystem::file_size(output()), 3904U);
    EXPECT_EQ(contentsOf(listing),
              "kind        name                to                   raw   offset   bytes   arena\n"
              "attributes  UTF-8                                     10      272   1552      792\n"
              "attributes  LATIN                                      1     1824   1552      792\n"
              "conversion  UTF-8               LATIN                 20        -      -     3488\n"
              "conversion  LATIN               UTF-8                 51     3376    528        0\n");
    const std::string first = contentsOf(output());
    EXPECT_EQ(compile("charset UTF-8 LATIN\nconvert UTF-8 LATIN\n").code, 0);
    EXPECT_EQ(contentsOf(output()), first);
}

TEST_F(MkconvmapCommand, RefusalLeavesTheOldFileAlone) {
    std::ofstream{output()} << "old";
    const Outcome outcome = compile("charset UTF-8\nconvert UTF-8 LATIN\n");
    EXPECT_EQ(outcome.code, 1);
    EXPECT_EQ(outcome.output, folder_.list().string() + ":2: no charset LATIN in the list so far\n");
    EXPECT_EQ(contentsOf(output()), "old");
    EXPECT_EQ(filesInFolder(), 3U);  // charsets, map.list, out.cp
}

TEST_F(MkconvmapCommand, TellsUsageFromFileTrouble) {
    EXPECT_EQ(run("").code, 2);
    EXPECT_EQ(run("--help").code, 0);
    EXPECT_EQ(run("a b c -o d").code, 2);
    const Outcome missing = run(folder_.path("none.list").string() + " -o " + output().string());
    EXPECT_EQ(missing.code, 4);
    EXPECT_EQ(missing.output, folder_.path("none.list").string() + ": the file can't be read\n");
    folder_.write("map.list", "charset UTF-8\n");
    const Outcome nowhere = run(folder_.list().string() + " -o " + folder_.path("none/out.cp").string());
    EXPECT_EQ(nowhere.code, 4);
    EXPECT_EQ(nowhere.output, folder_.path("none/out.cp.new").string() + ": the file can't be written\n");
    std::filesystem::create_directory(output());
    EXPECT_EQ(run(folder_.list().string() + " -o " + output().string()).code, 4);
    EXPECT_EQ(filesInFolder(), 3U);
}

}  // namespace
}  // namespace nls::test
