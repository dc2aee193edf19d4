// One piece of work done by several candidates in one run, and the ratio between them.
//
//   compare("UTF-8 to UTF-16", "Greek", bytes, 1, {{"nls", ours}, {"icu", peer}});
//   int main(int argc, char** argv) { registerAll(); return runComparisons(argc, argv); }
//
// Others use the machine too, which only ever adds time. So the candidates are measured in turns, each several times,
// and the fastest counts; beside the rates the ratio of the first candidate to the best of the others is printed.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace nls::bench {

struct Candidate {
    std::string name;
    std::function<void()> run;  // does the whole work once; a failure calls std::abort
};

// `bytes` is the source text of one run, `calls` how many conversions a run makes (1 for one long text).
// The first candidate is ours.
void compare(const std::string& work, const std::string& text, std::size_t bytes, std::size_t calls,
             const std::vector<Candidate>& candidates);

// Runs what has been registered and prints a table in Markdown. Takes the flags of Google Benchmark.
int runComparisons(int argc, char** argv);

}  // namespace nls::bench
