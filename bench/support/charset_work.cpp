#include "bench/support/charset_work.hpp"

#include <cstdlib>
#include <string_view>

#include "bench/support/peers.hpp"
#include "core/base/cpu.hpp"

namespace nls::bench {

Candidate ours(const std::shared_ptr<const Work>& work, const nlsConvTable* table) {
    return candidate("nls", work, [table](const std::string& text, std::string& target) {
        uint32_t length = 0;
        const nlsStatus status =
            convertBytes(reinterpret_cast<unsigned char*>(target.data()), static_cast<int32_t>(target.size()),
                         reinterpret_cast<const unsigned char*>(text.data()), static_cast<int32_t>(text.size()),
                         nullptr, 0, table, &length, 0);
        if (status != NLS_OK) giveUp("nls: status " + std::to_string(status) + " on " + text.substr(0, 100));
    });
}

std::vector<Candidate> withPeers(const std::shared_ptr<const Work>& work, const nlsConvTable* table, const Name& from,
                                 const Name& to) {
    const auto iconv = std::make_shared<Iconv>(from.iconv, to.iconv);
    const auto icu = std::make_shared<IcuPair>(from.icu, to.icu);
    return {ours(work, table),
            candidate("iconv", work,
                      [iconv](const std::string& text, std::string& target) {
                          iconv->convert(text, target.data(), target.size());
                      }),
            candidate("ICU streaming", work,
                      [icu](const std::string& text, std::string& target) {
                          icu->convertStreaming(text, target.data(), target.size());
                      }),
            candidate("ICU whole", work, [icu](const std::string& text, std::string& target) {
                icu->convertWhole(text, target.data(), target.size());
            })};
}

std::shared_ptr<const Work> inCharset(const std::vector<std::string>& utf8, const Name& charset) {
    const Iconv iconv("UTF-8", charset.iconv);
    std::vector<std::string> texts;
    for (const std::string& text : utf8) texts.push_back(iconv.convert(text));
    return std::make_shared<const Work>(std::move(texts));
}

std::vector<std::string> strings(Language language, std::size_t shortest, std::size_t longest) {
    return columnValues(language, shortest, longest, 1000);
}

std::vector<char*> holdCpuLevel(int argc, char** argv) {
    constexpr std::string_view kLevel = "--cpu-level=";
    std::vector<char*> arguments;
    for (int i = 0; i < argc; ++i) {
        if (std::string_view{argv[i]}.starts_with(kLevel))
            limitCpuLevel(CpuLevel{std::atoi(argv[i] + kLevel.size())});
        else
            arguments.push_back(argv[i]);
    }
    return arguments;
}

}  // namespace nls::bench
