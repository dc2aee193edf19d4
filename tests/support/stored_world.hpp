// Collations that a database has stored, sound or not: a small data file that makes them, their bytes without a pointer
// among them, and a run from bytes to record to locale to comparison. For tests and the fuzz target.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "core/base/cpu.hpp"
#include "nls/nls.h"
#include "tests/support/convmap_builder.hpp"
#include "tests/support/open_handle.hpp"

namespace nls::test {

inline const unsigned char* asText(const std::string& text) {
    return reinterpret_cast<const unsigned char*>(text.c_str());
}

// Charsets of every way to compare, each with the collation and the case table "basic".
inline Bytes storedWorld() {
    ConvmapBuilder::Attributes latin = singleByte(), utf = utf8();
    for (unsigned c = 'A'; c <= 'z'; ++c) latin.alpha[c] = utf.alpha[c] = 1;
    const auto bridged = doubleByte(NLS_CHARSET_MULTI_BYTE | NLS_CHARSET_VIA_SJIS);
    ByteMap fold = identityBytes(), upper = identityBytes(), lower = identityBytes(), shifted;
    for (unsigned c = 'a'; c <= 'z'; ++c) fold[c] = upper[c] = static_cast<unsigned char>(c - 0x20);
    for (unsigned c = 'A'; c <= 'Z'; ++c) lower[c] = static_cast<unsigned char>(c + 0x20);
    for (unsigned c = 0; c < 256; ++c) shifted[c] = static_cast<unsigned char>(c + 1);
    ConvmapBuilder world;
    world.attributes("LATIN", latin).attributes("GREEK", latin).attributes("THAI", latin).attributes("UTF-8", utf);
    world.attributes("EUC", bridged).attributes("shift-jis", bridged);
    world.byteMap("LATIN", "GREEK", shifted).bare("EUC", "shift-jis", 4).bare("shift-jis", "EUC", 3);
    for (const char* const charset : {"LATIN", "GREEK", "EUC", "shift-jis"}) {
        world.collation(charset, "basic", 1, identityBytes(), fold);
        world.caseTable(charset, "basic", upper, lower);
    }
    world.collation("THAI", "basic", 4, identityBytes(), fold).caseTable("THAI", "basic", upper, lower);
    world.collation("LATIN", "site", 2);
    world.unicodeCollation("UTF-8", "basic");
    world.unicodeCase("UTF-8", "basic", {{'a', 'A'}, {0xE9, 0xC9}, {0x1E01, 0x1E00}},
                      {{'A', 'a'}, {0xC9, 0xE9}, {0x1E00, 0x1E01}});
    return world.build();
}

// The file form of docs/stored-collation.md, read as far as it goes.
struct StoredBytes {
    static constexpr std::size_t kHead = 136, kRecord = 88;

    nlsDbCollation record{};  // its pointers are null
    Bytes image, words;       // no words: no table
    std::string text, target;

    Bytes toBytes() const {
        Bytes bytes(kHead);
        const auto put = [&bytes](std::size_t place, std::size_t value) {
            const auto word = static_cast<uint32_t>(value);
            std::memcpy(bytes.data() + place, &word, sizeof word);
        };
        std::memcpy(bytes.data(), "nlsdbcol", 8);
        put(8, 1);
        put(12, kHead + image.size() + words.size() + text.size());
        std::memcpy(bytes.data() + 16, &record, kRecord);
        put(104, words.size());
        put(108, text.size());
        std::memcpy(bytes.data() + 112, target.data(), std::min<std::size_t>(target.size(), 20));
        bytes.insert(bytes.end(), image.begin(), image.end());
        bytes.insert(bytes.end(), words.begin(), words.end());
        bytes.insert(bytes.end(), text.begin(), text.end());
        return bytes;
    }
    // What is there is what counts: lengths that lie are cut, a table is as long as it says itself.
    static StoredBytes of(const Bytes& bytes) {
        StoredBytes stored;
        if (bytes.size() < kHead) return stored;
        std::memcpy(&stored.record, bytes.data() + 16, kRecord);
        stored.target = std::string(reinterpret_cast<const char*>(bytes.data()) + 112, 20).c_str();
        uint32_t wordsSize;
        std::memcpy(&wordsSize, bytes.data() + 104, sizeof wordsSize);
        auto place = bytes.begin() + kHead;
        const auto take = [&](std::size_t count) {
            const auto from = place;
            place += static_cast<std::ptrdiff_t>(std::min(count, static_cast<std::size_t>(bytes.end() - place)));
            return Bytes(from, place);
        };
        stored.image = take(stored.record.dbImageSize);
        stored.record.dbImageSize = static_cast<uint32_t>(stored.image.size());
        stored.words = take(wordsSize);
        if (stored.words.size() >= 4) stored.words.resize(62U + stored.words[2] + 256U * stored.words[3]);
        if (stored.words.size() < 4) stored.words.clear();
        const Bytes rest = take(bytes.size());
        stored.text = std::string(rest.begin(), rest.end()).c_str();
        return stored;
    }
};

// `kind` 0: the collation's own. REQUIRES: a finished locale with a collation.
inline StoredBytes storedOf(const nlsLocale& locale, int32_t format, int32_t kind = 0) {
    StoredBytes stored;
    stored.image.resize(8000);
    stored.record.dbImage = stored.image.data();
    const auto room = static_cast<uint32_t>(stored.image.size());
    if (nlsLocaleToDbCollation(&locale, format, room, &stored.record) != NLS_OK) std::abort();
    stored.record.dbImage = nullptr;
    stored.image.resize(stored.record.dbImageSize);
    if (kind != 0) stored.record.dbCollKind = kind;
    return stored;
}

// A database locale in a block of just the size that it needs and `more`. What it was made from is gone.
class StoredLocale {
public:
    StoredLocale(nlsHandle* handle, const StoredBytes& stored, uint32_t more = 0) {
        const auto image = exact(stored.image), words = exact(stored.words);
        const auto text = exact({stored.text.c_str(), stored.text.c_str() + stored.text.size() + 1});
        nlsDbCollation record = stored.record;
        record.dbImage = image.get();
        record.dbWordBreak = stored.words.empty() ? nullptr : words.get();
        if (!stored.words.empty() && !stored.target.empty()) record.dbWordBreakLocale = target(handle, stored.target);
        status = nlsDbCollationToLocale(handle, &record, text.get(), &size, nullptr, nullptr);
        if (status != NLS_BUF_SMALL) return;
        size += more;
        block_ = exact(Bytes(size, 0xA5));
        status = nlsDbCollationToLocale(handle, &record, text.get(), &size, block_.get(), &locale);
    }
    StoredLocale(const StoredLocale&) = delete;
    StoredLocale& operator=(const StoredLocale&) = delete;
    ~StoredLocale() { close(); }

    // Gives the block back and frees it, so that the sanitizer sees any later look into it.
    void close() {
        if (locale == nullptr) return;
        void* block = nullptr;
        uint32_t given = 0;
        if (nlsCloseDBLocale(locale, &block, &given) != NLS_OK || block != locale || given != size) std::abort();
        locale = nullptr;
        block_.reset();
    }

    nlsStatus status = NLS_OK;
    uint32_t size = 0;  // of the block
    nlsLocale* locale = nullptr;

private:
    static std::unique_ptr<unsigned char[]> exact(const Bytes& bytes) {
        std::unique_ptr<unsigned char[]> copy{new unsigned char[bytes.size()]};
        std::copy(bytes.begin(), bytes.end(), copy.get());
        return copy;
    }
    static nlsLocale* target(nlsHandle* handle, const std::string& charset) {
        nlsLocale* made = nullptr;
        const nlsStatus status = nlsCreateLocale(handle, charset.c_str(), NLS_NO_COLLATION, nullptr, &made);
        return status == NLS_OK ? made : nullptr;
    }

    std::unique_ptr<unsigned char[]> block_;
};

// What a locale makes of a few texts: signs, keys, cases, words, statuses.
inline Bytes answersOf(const nlsLocale* locale, const std::string& text) {
    const std::string texts[] = {text, "Abc dEf 12 \x81\x40\xE3\x41", "abc DEF-12",
                                 "\xC3\xA9t\xC3\x89 \xE1\xB8\x81\xF0"};
    Bytes answers;
    const auto note = [&answers](int64_t value) {
        for (int byte = 0; byte < 4; ++byte) answers.push_back(static_cast<unsigned char>(value >> (8 * byte)));
    };
    for (std::size_t i = 0; i < std::size(texts); ++i) {
        const std::string& a = texts[i];
        const std::string& b = texts[(i + 1) % std::size(texts)];
        for (const uint16_t mode : {uint16_t{0}, uint16_t{1}}) {
            uint16_t sign = 7, length = 0;
            note(nlsCompare(locale, nullptr, asText(a), asText(b), mode, &sign));
            note(sign);
            note(nlsCompareN(locale, nullptr, asText(a), asText(b), static_cast<int32_t>(a.size()),
                             static_cast<int32_t>(b.size()), mode, &sign));
            note(sign);
            unsigned char key[64] = {};
            note(nlsSortKey(locale, nullptr, asText(a), sizeof key, mode, mode, key, &length));
            answers.insert(answers.end(), key, key + std::min<std::size_t>(length, sizeof key));
        }
        Bytes source(a.begin(), a.end()), other(a.size() * 3 + 8);
        source.resize(a.size() + 4);  // a character of several bytes may lead up to the NUL
        const nlsStr from{source.data(), static_cast<int32_t>(source.size()), static_cast<uint32_t>(a.size())};
        nlsStr to{other.data(), static_cast<int32_t>(other.size()), 0};
        note(i % 2 == 0 ? nlsUpperCase(locale, nullptr, &from, &to) : nlsLowerCase(locale, nullptr, &from, &to));
        answers.insert(answers.end(), to.buf, to.buf + to.strLength);
        const unsigned char* place = source.data();
        for (int words = 0; words < 8; ++words) {
            unsigned char word[200];
            uint32_t length = 0;
            const nlsStatus status = nlsGetNextWord(locale, nullptr, &place, 0, word, sizeof word, &length);
            note(status);
            if (status != NLS_OK && status != NLS_WORD_TRUNCATED) break;
            answers.insert(answers.end(), word, word + length);
        }
    }
    return answers;
}

// Any bytes to a record, a locale, its answers, a second locale from its own record with the same answers, whatever the
// processor can do; then both are gone, and locales of the arena answer as before.
class StoredRun {
public:
    StoredRun() { renew(); }

    nlsStatus run(const Bytes& bytes) {
        if (open_->handle->freeBytes < kLowWater) renew();
        const StoredBytes stored = StoredBytes::of(bytes);
        StoredLocale first{open_->handle, stored};
        if (first.locale == nullptr) {
            require(first.status != NLS_OK && first.status != NLS_BUF_SMALL && open_->handle->busy == 0);
            return first.status;
        }
        // To ask the processor takes longer than a run.
        const bool changesLevel = runs_ % 64 == 0;
        if (changesLevel) limitCpuLevel(runs_ % 128 == 0 ? CpuLevel::avx2 : CpuLevel::avx512);
        const Bytes answers = answersOf(first.locale, stored.text);
        if (changesLevel) limitCpuLevel(runs_ % 256 == 0 ? CpuLevel::baseline : CpuLevel::avx512);
        again(first.locale, stored, answers);
        first.close();
        const std::size_t which = runs_++ % (kSeldom * std::size(lasting_));
        if (which % kSeldom == 0) require(answersOf(lasting_[which / kSeldom], "ab") == before_[which / kSeldom]);
        return NLS_OK;
    }

private:
    static constexpr uint32_t kLowWater = 100000;
    static constexpr std::size_t kSeldom = 4;  // of what costs as much as the rest
    static constexpr const char* kCharsets[] = {"EUC", "LATIN", "UTF-8", "shift-jis"};

    static void require(bool truth) {
        if (!truth) std::abort();
    }
    void renew() {
        open_.reset();
        open_ = std::make_unique<OpenHandle>(storedWorld());
        for (std::size_t i = 0; i < std::size(kCharsets); ++i) {
            require(nlsCreateLocale(open_->handle, kCharsets[i], "basic", "basic", &lasting_[i]) == NLS_OK);
            before_[i] = answersOf(lasting_[i], "ab");
        }
    }
    // The kind of the record may differ from that of the image: both are kept. The words have been completed.
    void again(const nlsLocale* locale, const StoredBytes& from, const Bytes& answers) {
        StoredBytes own = storedOf(*locale, 6, from.record.dbCollKind);
        const auto* const table = reinterpret_cast<const unsigned char*>(locale->wordBreak);
        if (!from.words.empty()) own.words.assign(table, table + from.words.size());
        StoredLocale second{open_->handle, own, 13};
        require(second.status == NLS_OK && answersOf(second.locale, from.text) == answers);
    }

    std::unique_ptr<OpenHandle> open_;
    nlsLocale* lasting_[std::size(kCharsets)] = {};
    Bytes before_[std::size(kCharsets)];
    std::size_t runs_ = 0;
};

}  // namespace nls::test
