#include "bench/support/compare.hpp"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <map>

namespace nls::bench {

namespace {

struct Comparison {
    std::string work, text;
    std::size_t bytes, calls;
    std::vector<std::string> candidates;
};

std::vector<Comparison>& comparisons() {
    static std::vector<Comparison> all;
    return all;
}

std::string benchmarkName(const Comparison& comparison, const std::string& candidate) {
    return comparison.work + "/" + comparison.text + "/" + candidate;
}

// Keeps the seconds of the fastest repetition, and prints the ratios when all is done.
class RatioReporter : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context&) override { return true; }

    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.run_type != Run::RT_Iteration) continue;
            const double seconds = run.real_accumulated_time / static_cast<double>(run.iterations);
            double& least = seconds_.try_emplace(run.run_name.function_name, seconds).first->second;
            least = std::min(least, seconds);
        }
    }

    void Finalize() override {
        std::printf(
            "| Work | Text | nls GB/s | nls ns per call | best peer | peer GB/s | peer ns per call | ratio |\n");
        std::printf("|---|---|---|---|---|---|---|---|\n");
        for (const Comparison& comparison : comparisons()) printRow(comparison);
    }

private:
    void printRow(const Comparison& comparison) const {
        const double ours = secondsOf(comparison, comparison.candidates[0]);
        if (ours == 0) return;  // left out by a filter
        double best = 0;
        std::string peer = "-";
        for (std::size_t i = 1; i < comparison.candidates.size(); ++i) {
            const double theirs = secondsOf(comparison, comparison.candidates[i]);
            if (theirs == 0 || (best != 0 && theirs >= best)) continue;
            best = theirs;
            peer = comparison.candidates[i];
        }
        const double bytes = static_cast<double>(comparison.bytes), calls = static_cast<double>(comparison.calls);
        std::printf("| %s | %s | %.2f | %.1f | %s | %.2f | %.1f | %.2f |\n", comparison.work.c_str(),
                    comparison.text.c_str(), bytes / ours * 1e-9, ours / calls * 1e9, peer.c_str(),
                    best == 0 ? 0 : bytes / best * 1e-9, best / calls * 1e9, best / ours);
    }
    double secondsOf(const Comparison& comparison, const std::string& candidate) const {
        const auto found = seconds_.find(benchmarkName(comparison, candidate));
        return found == seconds_.end() ? 0 : found->second;
    }

    std::map<std::string, double> seconds_;
};

}  // namespace

void compare(const std::string& work, const std::string& text, std::size_t bytes, std::size_t calls,
             const std::vector<Candidate>& candidates) {
    Comparison comparison{work, text, bytes, calls, {}};
    for (const Candidate& candidate : candidates) {
        comparison.candidates.push_back(candidate.name);
        benchmark::RegisterBenchmark(benchmarkName(comparison, candidate.name).c_str(),
                                     [run = candidate.run](benchmark::State& state) {
                                         for (auto _ : state) {
                                             run();
                                             benchmark::ClobberMemory();
                                         }
                                     });
    }
    comparisons().push_back(comparison);
}

int runComparisons(int argc, char** argv) {
    std::vector<std::string> defaults = {"--benchmark_repetitions=5", "--benchmark_enable_random_interleaving=true",
                                         "--benchmark_min_time=0.01"};
    std::vector<char*> arguments = {argv[0]};
    for (std::string& flag : defaults) arguments.push_back(flag.data());
    arguments.insert(arguments.end(), argv + 1, argv + argc);
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) return 2;
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    return 0;
}

}  // namespace nls::bench
