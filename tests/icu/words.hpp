// Words and other texts that ICU's collations disagree on, and some at random from their letters.
#pragma once

#include <random>
#include <string>
#include <vector>

namespace nls::test {

inline std::vector<std::string> words() {
    std::vector<std::string> words = {"a",
                                      "A",
                                      "á",
                                      "Á",
                                      "a\xCC\x81",
                                      "ab",
                                      "a-b",
                                      "Ab",
                                      "aB",
                                      "aa",
                                      "å",
                                      "ä",
                                      "ae",
                                      "æ",
                                      "o",
                                      "ö",
                                      "ø",
                                      "oe",
                                      "œ",
                                      "z",
                                      "ž",
                                      "c",
                                      "č",
                                      "ch",
                                      "Ch",
                                      "CH",
                                      "cz",
                                      "h",
                                      "i",
                                      "ı",
                                      "ss",
                                      "ß",
                                      "ll",
                                      "ly",
                                      "ü",
                                      "ue",
                                      "Müller",
                                      "Mueller",
                                      "Muller",
                                      "dz",
                                      "dzs",
                                      "か",
                                      "が",
                                      "カ",
                                      "ガ",
                                      "ｶ",
                                      "かー",
                                      "かあ",
                                      "亜",
                                      "一",
                                      "丁",
                                      "中",
                                      "八",
                                      "大",
                                      "𠀀",
                                      "กา",
                                      "เก",
                                      "แข",
                                      "ก็",
                                      "ข",
                                      "가",
                                      "각",
                                      "한",
                                      "漢",
                                      "я",
                                      "ё",
                                      "й",
                                      "α",
                                      "ά",
                                      "א",
                                      "1",
                                      "10",
                                      "2",
                                      "-",
                                      "$",
                                      " a",
                                      "a b",
                                      "a\tb",
                                      "\xEF\xBF\xBD",
                                      "é́"};
    std::mt19937 random{5};
    const std::size_t whole = words.size();
    for (unsigned i = 0; i < 40; ++i) {
        std::string word;
        for (unsigned part = 0; part < 4; ++part) word += words[random() % whole];
        words.push_back(word);
    }
    return words;
}

}  // namespace nls::test
