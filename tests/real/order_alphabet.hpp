// The real characters of a charset, to make texts of that a collation orders, and which of them excuse a text from a
// law.
#pragma once

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "collation/thai_clusters.hpp"
#include "tests/real/data_file.hpp"

namespace nls::real {

// Characters with which texts needn't be ordered transitively, nor as their keys. Every other law holds for them too.
enum Excuse : std::size_t { kUnexcused, kLight, kLoose, kAlone, kExcuses };
inline constexpr const char* kReasons[kExcuses] = {
    "none",
    // Blanks at the end don't count, yet in front of more text a blank has its weight. Control characters in the basic
    // tables and in Unicode are lighter, and so are characters of EBCDIC that have their weights from a Latin charset:
    // byte 20 is a control there.
    "a byte that weighs no more than byte 20",
    // The comparison takes it for a cluster without a base, lighter than any other; the key marks it with 80.
    "a Thai vowel or tone without the base that it belongs to",
    // It takes a blank behind it for its second byte, and through Shift-JIS it converts otherwise with a text's end.
    "a first byte without its second one",
};

struct Character {
    Bytes bytes;
    Excuse excuse = kUnexcused;
};

// The characters of a charset, as its collation takes them.
class Alphabet {
public:
    Alphabet(const std::string& charset, const nlsLocale& locale) : locale_(locale) {
        const Name& name = RealFile::shared().charset(charset);
        if (locale.coll->collKind == kThai)
            addThai();
        else if (name.isUnicode())
            addUnicode(name);
        else
            addCodes(RealFile::shared().conversion(charset, "UTF-8").table, RealFile::shared().table("UTF-8", charset));
    }

    // Those without an excuse.
    const std::vector<Character>& plain() const { return plain_; }

    const Character& any(std::mt19937& random, bool excused) const {
        const auto& from = excused && !excused_.empty() ? excused_ : plain_;
        return from[random() % from.size()];
    }

private:
    static constexpr int32_t kUnicode = 3, kThai = 4;

    void add(Bytes bytes, Excuse excuse = kUnexcused) {
        // What stands behind a NUL isn't read.
        bytes.erase(std::find(bytes.begin(), bytes.end(), 0), bytes.end());
        if (excuse == kUnexcused && isLight(bytes)) excuse = kLight;
        (excuse == kUnexcused ? plain_ : excused_).push_back({std::move(bytes), excuse});
    }

    bool opensPair(unsigned char byte) const { return locale_.attrib->lengthMap[byte] != 0; }

    bool isLight(const Bytes& bytes) const {
        const nlsCollStruct& coll = *locale_.coll;
        const auto light = [&](unsigned char byte) {
            for (const unsigned char* const map : {coll.foldMap, coll.exactMap})
                if (byte != ' ' && map[byte] != 0 && map[byte] <= map[unsigned{' '}]) return true;
            return false;
        };
        if (coll.collKind == kUnicode) return bytes[0] < ' ';
        for (std::size_t at = 0; at < bytes.size(); ++at)
            if (at % 2 == 1 && opensPair(bytes[0]) ? bytes[at] < ' ' : light(bytes[at])) return true;
        return false;
    }

    void addThai() {
        Bytes of[5] = {{}, {}, {0}, {0}, {0}};
        for (unsigned value = 1; value <= 0xFF; ++value) {
            const auto byte = static_cast<unsigned char>(value);
            const ThaiClass is = thaiClass(byte);
            of[static_cast<std::size_t>(is)].push_back(byte);
            add({byte}, is == ThaiClass::single || is == ThaiClass::base ? kUnexcused : kLoose);
        }
        for (const unsigned char lead : of[3])
            for (const unsigned char base : of[1])
                for (const unsigned char vowel : of[2])
                    for (const unsigned char tone : of[4]) {
                        Bytes cluster{lead, base, vowel, tone};
                        std::erase(cluster, 0);
                        add(std::move(cluster));
                    }
    }

    // A text ends at a NUL: of 16 bits those without one, of 32 bits what stands in front of it.
    void addUnicode(const Name& form) {
        for (const auto& [first, last] : {std::pair{0x01U, 0x250U},
                                          {0x386U, 0x480U},
                                          {0x2018U, 0x2030U},
                                          {0x4E00U, 0x4E80U},
                                          {0xFF01U, 0xFF60U},
                                          {0x10400U, 0x10450U}})
            for (uint32_t value = first; value < last; ++value) {
                Bytes bytes;
                append(bytes, value, form);
                if (form.family == Family::units32 || std::ranges::count(bytes, 0) == 0) add(std::move(bytes));
            }
    }

    void addCodes(const nlsConvTable* toUtf8, const nlsConvTable* back) {
        const auto isReal = [&](const Bytes& code) { return convert(back, convert(toUtf8, code).bytes).bytes == code; };
        for (unsigned first = 1; first <= 0xFF; ++first) {
            const auto byte = static_cast<unsigned char>(first);
            if (opensPair(byte))
                add({byte}, kAlone);
            else if (isReal({byte}))
                add({byte});
            for (unsigned second = 1; opensPair(byte) && second <= 0xFF; ++second)
                if (Bytes pair{byte, static_cast<unsigned char>(second)}; isReal(pair)) add(std::move(pair));
        }
    }

    const nlsLocale& locale_;
    std::vector<Character> plain_, excused_;
};

}  // namespace nls::real
