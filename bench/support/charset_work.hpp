// The frame of the charset benchmarks: texts in a charset, converted through the real data file, by iconv and by ICU.
#pragma once

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "bench/support/compare.hpp"
#include "bench/support/texts.hpp"
#include "nls/nls.h"

namespace nls::bench {

// What one candidate converts: all texts, one call each.
struct Work {
    std::vector<std::string> texts;
    std::size_t bytes = 0, longest = 0;

    explicit Work(std::vector<std::string> all) : texts(std::move(all)) {
        for (const std::string& text : texts) {
            bytes += text.size();
            longest = std::max(longest, text.size());
        }
    }
};

template <typename Convert>
Candidate candidate(const char* name, const std::shared_ptr<const Work>& work, Convert convert) {
    const auto target = std::make_shared<std::string>(work->longest * 4 + 64, '\0');
    return {name, [work, target, convert] {
                for (const std::string& text : work->texts) convert(text, *target);
            }};
}

// A charset by its name here and by the ones that iconv and ICU know.
struct Name {
    const char *nls, *iconv, *icu;
};

Candidate ours(const std::shared_ptr<const Work>& work, const nlsConvTable* table);

// Ours through `table`, then iconv and the two ways of ICU.
std::vector<Candidate> withPeers(const std::shared_ptr<const Work>& work, const nlsConvTable* table, const Name& from,
                                 const Name& to);

// Texts in UTF-8, turned into a charset by iconv.
std::shared_ptr<const Work> inCharset(const std::vector<std::string>& utf8, const Name& charset);

inline constexpr Name kUtf8 = {"UTF-8", "UTF-8", "UTF-8"};

// A thousand column values.
std::vector<std::string> strings(Language language, std::size_t shortest, std::size_t longest);

// Takes --cpu-level=1|2|3 out of the arguments and holds the library down to it.
std::vector<char*> holdCpuLevel(int argc, char** argv);

}  // namespace nls::bench
