// Runs the command nls as its users do: a process of its own, with files in a folder of their own.
#pragma once

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <vector>

namespace nls::test {

struct Answer {
    int exit;  // 1000 and the number of a signal that ended it
    std::string out;
    std::string err;
};

// A folder for the files of one test, removed at its end.
class Folder {
public:
    Folder() {
        char name[] = "/tmp/nls_test_XXXXXX";
        if (mkdtemp(name) == nullptr) std::abort();
        path_ = name;
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    ~Folder() { std::filesystem::remove_all(path_); }

    std::string path(const std::string& name) const { return path_ / name; }
    std::string put(const std::string& name, const std::string& content) const {
        std::ofstream(path(name), std::ios::binary) << content;
        return path(name);
    }
    std::string get(const std::string& name) const {
        std::ifstream file(path(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    std::set<std::string> names() const {
        std::set<std::string> found;
        for (const auto& entry : std::filesystem::directory_iterator(path_)) found.insert(entry.path().filename());
        return found;
    }

private:
    std::filesystem::path path_;
};

// A collator that is opened with a locale stays open: for the sanitizer's search for leaks.
class KnownLeaks {
public:
    KnownLeaks() { folder_.put("known", "leak:libicuuc\nleak:libicui18n\n"); }
    std::string variable() const { return "LSAN_OPTIONS=print_suppressions=0:suppressions=" + folder_.path("known"); }

private:
    Folder folder_;
};

using Words = std::vector<std::string>;

// Starts `program` with the descriptors given as its standard three; the environment knows of no data file
// and of no ICU.
inline pid_t start(const std::string& program, const Words& words, int in, int out, int err,
                   const Words& environment = {}) {
    const pid_t child = fork();
    if (child != 0) return child;
    dup2(in, 0);
    dup2(out, 1);
    dup2(err, 2);
    unsetenv("ZELCONV");
    unsetenv("QRD");
    unsetenv("BINPATHX");
    for (const std::string& entry : environment) putenv(const_cast<char*>(entry.c_str()));
    std::vector<char*> arguments{const_cast<char*>(program.c_str())};
    for (const std::string& word : words) arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    execv(program.c_str(), arguments.data());
    _exit(127);
}

inline int ended(pid_t child) {
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 1000 + WTERMSIG(status);
}

// Runs the command to its end, with `input` as its standard input.
inline Answer run(const Words& words, const std::string& input = {}, const Words& environment = {},
                  const std::string& program = NLS_COMMAND) {
    const Folder folder;
    folder.put("in", input);
    const int in = open(folder.path("in").c_str(), O_RDONLY);
    const int out = open(folder.path("out").c_str(), O_WRONLY | O_CREAT, 0600);
    const int err = open(folder.path("err").c_str(), O_WRONLY | O_CREAT, 0600);
    const int exit = ended(start(program, words, in, out, err, environment));
    for (const int descriptor : {in, out, err}) close(descriptor);
    return {exit, folder.get("out"), folder.get("err")};
}

}  // namespace nls::test
