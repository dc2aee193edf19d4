#include "tests/real/peers.hpp"

#include <iconv.h>
#include <unicode/ucnv.h>
#include <unicode/utf16.h>

#include <cstring>
#include <memory>
#include <stdexcept>

namespace nls::real {

namespace {

constexpr uint32_t kAllCodePoints = 0x110000;

// A code of one or two bytes.
uint32_t codeOf(const char* bytes, std::ptrdiff_t count) {
    const auto byte = [bytes](int at) { return uint32_t{static_cast<unsigned char>(bytes[at])}; };
    return count == 1 ? byte(0) : count == 2 ? byte(0) << 8 | byte(1) : kNone;
}

bool isCode(const CharsetModel& charset, uint32_t code) {
    return code <= 0xFF || (charset.trails(static_cast<unsigned char>(code >> 8)) == 1 && (code & 0xFF) != 0);
}

// iconv

struct CloseIconv {
    void operator()(void* converter) const { iconv_close(converter); }
};
using Iconv = std::unique_ptr<void, CloseIconv>;

Iconv openIconv(const char* to, const char* from) {
    const iconv_t converter = iconv_open(to, from);
    // iconv_open's failure is the pointer -1.
    if (reinterpret_cast<intptr_t>(converter) == -1) throw std::runtime_error(std::string("no iconv ") + from + to);
    return Iconv(converter);
}

// The bytes written, or -1 for what isn't one whole text.
std::ptrdiff_t iconvOnce(iconv_t converter, const char* text, std::size_t size, char* target, std::size_t room) {
    auto* source = const_cast<char*>(text);
    char* place = target;
    iconv(converter, nullptr, nullptr, nullptr, nullptr);
    if (iconv(converter, &source, &size, &place, &room) == static_cast<std::size_t>(-1)) return -1;
    if (iconv(converter, nullptr, nullptr, &place, &room) == static_cast<std::size_t>(-1)) return -1;
    return place - target;
}

uint32_t decodeByIconv(iconv_t decoder, const char* bytes, std::size_t size) {
    wchar_t out[4];
    const std::ptrdiff_t count = iconvOnce(decoder, bytes, size, reinterpret_cast<char*>(out), sizeof out);
    return count == sizeof *out ? static_cast<uint32_t>(out[0]) : kNone;
}

uint32_t encodeByIconv(iconv_t encoder, uint32_t codePoint) {
    const auto wide = static_cast<wchar_t>(codePoint);
    char out[16];
    return codeOf(out, iconvOnce(encoder, reinterpret_cast<const char*>(&wide), sizeof wide, out, sizeof out));
}

// ICU

struct CloseIcu {
    void operator()(UConverter* converter) const { ucnv_close(converter); }
};
using Icu = std::unique_ptr<UConverter, CloseIcu>;

Icu openIcu(const char* name) {
    UErrorCode error = U_ZERO_ERROR;
    Icu converter(ucnv_open(name, &error));
    ucnv_setToUCallBack(converter.get(), UCNV_TO_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &error);
    ucnv_setFromUCallBack(converter.get(), UCNV_FROM_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &error);
    ucnv_setFallback(converter.get(), false);
    if (U_FAILURE(error)) throw std::runtime_error(std::string("no ICU ") + name);
    return converter;
}

uint32_t decodeByIcu(UConverter* converter, const char* bytes, std::size_t size) {
    UErrorCode error = U_ZERO_ERROR;
    UChar out[8];
    const int32_t count = ucnv_toUChars(converter, out, 8, bytes, static_cast<int32_t>(size), &error);
    if (U_FAILURE(error)) return kNone;
    if (count == 1 && !U16_IS_SURROGATE(out[0])) return out[0];
    const bool isPair = count == 2 && U16_IS_LEAD(out[0]);
    return isPair ? static_cast<uint32_t>(U16_GET_SUPPLEMENTARY(out[0], out[1])) : kNone;
}

uint32_t encodeByIcu(UConverter* converter, uint32_t codePoint) {
    UErrorCode error = U_ZERO_ERROR;
    UChar units[2];
    int32_t length = 0;
    U16_APPEND_UNSAFE(units, length, static_cast<UChar32>(codePoint));
    char out[16];
    const int32_t count = ucnv_fromUChars(converter, out, sizeof out, units, length, &error);
    return U_SUCCESS(error) ? codeOf(out, count) : kNone;
}

// Either

// The two directions of one converter.
class Converter {
public:
    Converter(Library library, const char* name) {
        if (library == Library::icu) {
            icu_ = openIcu(name);
        } else {
            decoder_ = openIconv("WCHAR_T", name);
            encoder_ = openIconv(name, "WCHAR_T");
        }
    }

    uint32_t decode(uint32_t code) const {
        const char bytes[] = {static_cast<char>(code >> 8), static_cast<char>(code)};
        const std::size_t size = code > 0xFF ? 2 : 1;
        return icu_ != nullptr ? decodeByIcu(icu_.get(), bytes + 2 - size, size)
                               : decodeByIconv(decoder_.get(), bytes + 2 - size, size);
    }
    uint32_t encode(uint32_t codePoint) const {
        return icu_ != nullptr ? encodeByIcu(icu_.get(), codePoint) : encodeByIconv(encoder_.get(), codePoint);
    }

private:
    Icu icu_;
    Iconv decoder_, encoder_;
};

Bytes iconvText(const char* from, const char* to, ByteView text) {
    const Iconv converter = openIconv(to, from);
    std::vector<char> target(text.size() * 4 + 16);
    const std::ptrdiff_t count = iconvOnce(converter.get(), reinterpret_cast<const char*>(text.data()), text.size(),
                                           target.data(), target.size());
    if (count < 0) throw std::runtime_error(std::string("iconv refuses the text: ") + from + " to " + to);
    return {target.begin(), target.begin() + count};
}

Bytes icuText(const char* from, const char* to, ByteView text) {
    const Icu source = openIcu(from), target = openIcu(to);
    UErrorCode error = U_ZERO_ERROR;
    std::vector<UChar> middle(text.size() + 16);
    const int32_t units =
        ucnv_toUChars(source.get(), middle.data(), static_cast<int32_t>(middle.size()),
                      reinterpret_cast<const char*>(text.data()), static_cast<int32_t>(text.size()), &error);
    std::vector<char> bytes(static_cast<std::size_t>(units) * 4 + 16);
    const int32_t count =
        ucnv_fromUChars(target.get(), bytes.data(), static_cast<int32_t>(bytes.size()), middle.data(), units, &error);
    if (U_FAILURE(error)) throw std::runtime_error(std::string("ICU refuses the text: ") + from + " to " + to);
    return {bytes.begin(), bytes.begin() + count};
}

}  // namespace

const char* libraryName(Library library) {
    return library == Library::icu ? "ICU" : "iconv";
}

Peer askPeer(Library library, const char* converter, const CharsetModel& charset) {
    const Converter peer(library, converter);
    Peer answers{std::vector<uint32_t>(0x10000, kNone), std::vector<uint32_t>(kAllCodePoints, kNone)};
    for (uint32_t code = 0; code <= 0xFFFF; ++code)
        if (isCode(charset, code)) answers.decode[code] = peer.decode(code);
    for (uint32_t codePoint = 0; codePoint < kAllCodePoints; ++codePoint)
        answers.encode[codePoint] = peer.encode(codePoint);
    return answers;
}

uint32_t decodeByPeer(Library library, const char* converter, unsigned char byte) {
    return Converter(library, converter).decode(byte);
}

Bytes convertByPeer(Library library, const char* from, const char* to, ByteView text) {
    return library == Library::icu ? icuText(from, to, text) : iconvText(from, to, text);
}

}  // namespace nls::real
