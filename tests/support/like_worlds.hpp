// Locales and the pieces of text that tell the ways of LIKE apart: characters of every length, cut short and broken,
// blanks, letters in both cases, and signs of one byte and several.
#pragma once

#include <algorithm>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "tests/reference/like.hpp"
#include "tests/support/case_locale.hpp"
#include "tests/support/hand_collations.hpp"

namespace nls::test {

struct LikeSet {
    nlsLChar escape, single, multi;
};

struct LikeWorld {
    std::string name;
    nlsLocale* locale;
    std::vector<std::string> pieces;  // the first is the most frequent
    std::vector<LikeSet> signs;
};

class LikeWorlds {
public:
    LikeWorlds() : routes_(handRoutes()) {
        table_.fillFromLibrary();
        wild_.fillFromLibrary();
        wild_.fillWild(3, false);
        ownAscii_.fillFromLibrary();
        ownAscii_.set(0x41, CaseForm::lower, 0x62);
        for (const HandRoute& route : routes_) add(route.name, route.get());
        for (const int32_t kind : {2, 3, 4}) {
            addMade("single", kind, singleByteCharset());
            addMade("odd", kind, oddCharset());
        }
        addMade("utf8", 1, utf8Charset());
        addMade("utf8", 3, utf8Charset()).caseTable = table_.get();
        addMade("utf8, wild table", 3, utf8Charset()).caseTable = wild_.get();
        addMade("utf8, own ASCII", 3, utf8Charset()).caseTable = ownAscii_.get();
        addMade("utf8, no table", 3, utf8Charset());
        nlsAttribStruct oddLengths = utf8Charset();
        oddLengths.lengthMap[0xC1] = 0;
        addMade("utf8, first bytes alone", 3, oddLengths).caseTable = table_.get();
        oddLengths.lengthMap[0xC4] = 0;
        oddLengths.lengthMap[0xD0] = 2;
        addMade("utf8, odd lengths", 3, oddLengths).caseTable = table_.get();
        oddLengths = utf8Charset();
        oddLengths.lengthMap[unsigned{'s'}] = 1;
        addMade("utf8, a letter with a trailing byte", 3, oddLengths).caseTable = table_.get();
        addMade("shift-jis", 3, sjisCharset());
        addMade("no collation", 1, singleByteCharset()).coll = nullptr;
        addMade("no collation, shift-jis", 1, sjisCharset()).coll = nullptr;
        // First bytes of two that weigh as a letter, as the letter of an expansion, and as an expansion.
        addMade("shift-jis, crowded", 1, sjisCharset());
        made_.back()->coll().foldMap[0xE0] = made_.back()->coll().foldMap[unsigned{'a'}];
        made_.back()->coll().foldMap[0x81] = made_.back()->coll().foldMap[unsigned{'s'}];
        made_.back()->coll().foldMap[0x8E] = 0;
        nlsAttribStruct noBridge = eucCharset();
        addMade("no bridge", 1, noBridge);
        noBridge = singleByteCharset();
        noBridge.flags |= NLS_CHARSET_VIA_SJIS;
        addMade("single bytes by way of a bridge", 1, noBridge);
        made_.back()->coll().collKind = 9;
        addMade("blank expands", 1, singleByteCharset());
        made_.back()->coll().foldMap[unsigned{' '}] = 0;
        nlsAttribStruct liar = singleByteCharset();
        liar.lengthMap[unsigned{'b'}] = 1;
        addMade("longer characters in a single-byte charset", 1, liar);
    }
    LikeWorlds(const LikeWorlds&) = delete;
    LikeWorlds& operator=(const LikeWorlds&) = delete;

    const std::vector<LikeWorld>& all() const { return worlds_; }
    const LikeWorld& at(const std::string& name) const {
        return *std::find_if(worlds_.begin(), worlds_.end(), [&](const LikeWorld& w) { return w.name == name; });
    }

private:
    nlsLocale& addMade(const std::string& name, int32_t kind, const nlsAttribStruct& attrib) {
        made_.push_back(std::make_unique<CollatedLocale>(attrib, plainCollation()));
        made_.back()->coll().collKind = kind;
        add(name + ", kind " + std::to_string(kind), made_.back()->get());
        return *made_.back()->get();
    }

    void add(const std::string& name, nlsLocale* locale) {
        LikeWorld world{name, locale, {"a", "A", "b", " ", "_", "%", "\\", "?", "s", "\xDF", "\x01"}, {}};
        const std::vector<std::string> wide =
            (locale->attrib->flags & NLS_CHARSET_UTF8) != 0
                ? std::vector<std::string>{"\xC3\xA9",
                                           "\xC3\x89",
                                           "\xE3\x81\x82",
                                           "\xF0\x9F\x98\x80",
                                           "\xC3",
                                           "\xE3\x81",
                                           "\xF9\x80\x80\x80\x80",
                                           "\xC4\xB0",
                                           "\xE2\x84\xAA",
                                           "\xF9",
                                           "\x80",
                                           "\xD0\xA0",
                                           "\xD1\x80",
                                           "\xEF\xBC\xA1",
                                           "\xEF\xBD\x81",
                                           "\xF0"}
                : std::vector<std::string>{"\x81\x40",     "\x81\x41", "\xA4\xA2",    "\x8E\xB1", "\x81",
                                           "\x8F\xA2\xAF", "\xE0 ",    "\x17zzzzzzz", "\xA4",     "\xE0\x5C"};
        world.pieces.insert(world.pieces.end(), wide.begin(), wide.end());
        const nlsLChar two = numberOf(wide[0]), three = numberOf(wide[2]);
        world.signs = {{'\\', '_', '%'},
                       {0, '_', '%'},
                       {'_', '_', '%'},
                       {'%', '_', '%'},
                       {'\\', '_', '_'},
                       {'_', '_', '_'},
                       {0, 0, '%'},
                       {0, '_', 0},
                       {'\\', 0, 0},
                       {'a', 'A', 'b'},
                       {'\\', '?', '%'},
                       {'?', '_', '%'},
                       {'\\', two, three},
                       {two, '_', three},
                       {three, two, '%'},
                       {' ', '_', '%'},
                       {'\\', ' ', '%'},
                       {'\\', '_', ' '},
                       {0x8140815C, '_', 0x100 + '%'}};
        worlds_.push_back(world);
    }

    std::vector<HandRoute> routes_;
    std::vector<std::unique_ptr<CollatedLocale>> made_;
    MadeCaseTable table_, wild_, ownAscii_;
    std::vector<LikeWorld> worlds_;
};

}  // namespace nls::test
