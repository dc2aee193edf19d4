// Realistic text in many languages, the same on every run.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace nls::bench {

enum class Language {
    ascii,
    german,
    french,
    polish,
    russian,
    greek,
    turkish,
    hebrew,
    arabic,
    thai,
    japanese,
    chineseSimplified,
    chineseTraditional,
    korean,
    emoji
};

const char* languageName(Language language);

// UTF-8 text of about `bytes` bytes (never more), whole sentences in shuffled order, ending with a whole character:
// prose, and log lines between. German and French have 5 to 8 % accented letters; Japanese mixes kana, kanji and ASCII.
std::string text(Language language, std::size_t bytes);

// Column values cut from such text between characters: each of `shortest` to `longest` bytes in UTF-8, `count` of them.
std::vector<std::string> columnValues(Language language, std::size_t shortest, std::size_t longest, std::size_t count);

}  // namespace nls::bench
