#include "strings/case_mapping.hpp"

#include <ctype.h>

#include <array>

#include "collation/ascii_case.hpp"
#include "collation/lchar_text.hpp"
#include "conversion/byte_map.hpp"
#include "core/base/charset.hpp"
#include "core/base/cpu.hpp"
#include "strings/utf8_case.hpp"

namespace nls {
namespace {

constexpr CaseMapped kFull{NLS_BUF_SMALL, 0};

CaseMapped closed(ByteWriter& target) {
    if (target.room() == 0) return kFull;
    *target.place() = 0;
    return {NLS_OK, static_cast<uint32_t>(target.written())};
}

// A character of several bytes found too little room.
CaseMapped cutAt(ByteWriter& target) {
    if (target.room() != 0) *target.place() = 0;
    return kFull;
}

// ---- Bytes

using ByteForms = std::array<unsigned char, 256>;

ByteForms formsOfCLocale(CaseForm form) {
    const auto* const table = form == CaseForm::lower ? *__ctype_tolower_loc() : *__ctype_toupper_loc();
    ByteForms forms;
    for (unsigned byte = 0; byte < 256; ++byte) forms[byte] = static_cast<unsigned char>(table[byte]);
    return forms;
}

CaseMapped mapSingleBytes(const unsigned char* map, ByteView text, ByteSpan target) {
    const std::size_t count = text.size() < target.size() ? text.size() : target.size();
    mapBytes(map, text.data(), count, target.data());
    ByteWriter writer{target};
    writer.advance(count);
    return closed(writer);
}

// How much of a character of several bytes is copied; what is left is read as characters again.
enum class Copy { whole, twoBytes };

CaseMapped mapMixedBytes(const Charset& charset, const unsigned char* map, Copy copy, ByteView text, ByteSpan target) {
    ByteReader reader{text};
    ByteWriter writer{target};
    while (!reader.atEnd()) {
        const unsigned char first = reader.peek();
        const unsigned trails = charset.trailCount(first);
        if (trails == 0) {
            if (!writer.put(map[first])) return kFull;
            reader.skip(1);
            continue;
        }
        const std::size_t whole = copy == Copy::whole ? trails + 1 : 2;
        const std::size_t count = whole < reader.left() ? whole : reader.left();
        if (count > writer.room()) return cutAt(writer);
        std::memmove(writer.place(), reader.place(), count);  // the text may be its own target
        writer.advance(count);
        reader.skip(count);
    }
    return closed(writer);
}

CaseMapped mapByBytes(const nlsAttribStruct& attrib, const unsigned char* map, Copy copy, ByteView text,
                      ByteSpan target) {
    if (areSingleBytes<256>(attrib)) return mapSingleBytes(map, text, target);
    return mapMixedBytes(Charset{attrib}, map, copy, text, target);
}

// ---- UTF-8

unsigned bytesOf(nlsLChar value) {
    return value <= 0xFF ? 1 : value <= 0xFFFF ? 2 : value <= 0xFFFFFF ? 3 : 4;
}

class Utf8Walk {
public:
    Utf8Walk(const nlsAttribStruct& attrib, const nlsUnicodeCaseStruct& table, CaseForm form, ByteView text,
             ByteSpan target)
        : charset_(attrib),
          pages_(table.casePages),
          form_(form),
          text_{text.data(), text.data() + text.size()},
          target_(target) {}

    CaseMapped run() {
        while (!text_.atEnd()) {
            if (!step()) return cutAt(target_);
        }
        return closed(target_);
    }

    // The same, with blocks of ASCII at once. REQUIRES: ASCII has its usual lengths and forms.
    CaseMapped runWithAscii() {
        for (bool worthBlock = true; !text_.atEnd();) {
            const bool ascii = *text_.place < 0x80;
            if (ascii && worthBlock && blockRoom() >= kAsciiBlock)
                skip(mapAsciiCase(form_, text_.place, blockRoom(), target_.place()));
            if (text_.atEnd()) break;
            if (!step()) return cutAt(target_);
            worthBlock = ascii;  // behind a longer character ASCII is mostly a blank
        }
        return closed(target_);
    }

    // The same, with blocks of any regular text. REQUIRES: hasUsualUtf8CaseAvx512.
    CaseMapped runWithBlocks() {
        constexpr int kStepsBetween = 8;  // where a block stops, more such places are near
        for (;;) {
            skip(mapUtf8CaseAvx512(pages_, form_, text_.place, blockRoom(), target_.place()));
            for (int steps = 0; steps != kStepsBetween; ++steps) {
                if (text_.atEnd()) return closed(target_);
                if (!step()) return cutAt(target_);
            }
        }
    }

private:
    // Bytes that a block may read and write. None where it would write what is still to be read: the steps then read
    // what they wrote, one character after the other.
    std::size_t blockRoom() const {
        const auto left = static_cast<std::size_t>(text_.limit - text_.place);
        const std::size_t count = left < target_.room() ? left : target_.room();
        const std::uintptr_t ahead =
            reinterpret_cast<std::uintptr_t>(target_.place()) - reinterpret_cast<std::uintptr_t>(text_.place);
        return ahead != 0 && ahead < count ? 0 : count;
    }

    void skip(std::size_t count) {
        text_.place += count;
        target_.advance(count);
    }

    // One character. False when it doesn't fit.
    bool step() {
        if (target_.room() == 0) return false;
        nlsLChar form = caseFormOf(pages_, nextLChar(charset_, text_), form_);
        const unsigned count = bytesOf(form);
        if (count > target_.room()) return false;
        unsigned char* const place = target_.place();
        for (unsigned i = count; i-- != 0; form >>= 8) place[i] = static_cast<unsigned char>(form);
        target_.advance(count);
        return true;
    }

    const Charset charset_;
    const uint16_t* const (&pages_)[kCasePages];
    const CaseForm form_;
    Text text_;
    ByteWriter target_;
};

CaseMapped mapUtf8(const nlsLocale& locale, ByteView text, ByteSpan target, CaseForm form) {
    const nlsAttribStruct& attrib = *locale.attrib;
    const nlsUnicodeCaseStruct& table = unicodeCaseTable(*locale.caseTable);
    Utf8Walk walk{attrib, table, form, text, target};
    if (cpuLevel() >= CpuLevel::avx512 && hasUsualUtf8CaseAvx512(attrib, table, form)) return walk.runWithBlocks();
    if (hasPlainAsciiForms(table.casePages, form) && isAsciiSingleByte(attrib)) return walk.runWithAscii();
    return walk.run();
}

}  // namespace

CaseMapped mapCase(const nlsLocale& locale, ByteView text, ByteSpan target, CaseForm form) {
    if (locale.caseTable == nullptr)
        return mapByBytes(*locale.attrib, formsOfCLocale(form).data(), Copy::whole, text, target);
    if (Charset{*locale.attrib}.isUtf8()) return mapUtf8(locale, text, target, form);
    const nlsCaseStruct& table = *locale.caseTable;
    const unsigned char* const map = form == CaseForm::lower ? table.lowerMap : table.upperMap;
    return mapByBytes(*locale.attrib, map, Copy::twoBytes, text, target);
}

}  // namespace nls
