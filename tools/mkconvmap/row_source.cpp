#include "tools/mkconvmap/row_source.hpp"

#include <iconv.h>
#include <unicode/uchar.h>
#include <unicode/ucnv.h>
#include <unicode/ucnv_err.h>
#include <unicode/utf16.h>

#include <array>

namespace nls::mkconvmap {

namespace {

constexpr int32_t kMostUnits = 32;  // far above what a character of any charset takes

class IcuRows final : public RowSource {
public:
    explicit IcuRows(UConverter* converter) : converter_(converter) {}
    ~IcuRows() override { ucnv_close(converter_); }
    IcuRows(const IcuRows&) = delete;
    IcuRows& operator=(const IcuRows&) = delete;

    std::u32string decode(ByteView bytes) override {
        std::array<UChar, kMostUnits> units;
        UChar* target = units.data();
        const char* source = reinterpret_cast<const char*>(bytes.data());
        UErrorCode error = U_ZERO_ERROR;
        ucnv_resetToUnicode(converter_);
        ucnv_toUnicode(converter_, &target, units.data() + units.size(), &source, source + bytes.size(), nullptr, true,
                       &error);
        if (U_FAILURE(error)) return {};
        std::u32string text;
        const auto count = static_cast<int32_t>(target - units.data());
        for (int32_t at = 0; at < count;) {
            UChar32 codePoint = 0;
            U16_NEXT(units.data(), at, count, codePoint);
            text.push_back(static_cast<char32_t>(codePoint));
        }
        return text;
    }

private:
    UConverter* converter_;
};

class IconvRows final : public RowSource {
public:
    explicit IconvRows(iconv_t converter) : converter_(converter) {}
    ~IconvRows() override { iconv_close(converter_); }
    IconvRows(const IconvRows&) = delete;
    IconvRows& operator=(const IconvRows&) = delete;

    std::u32string decode(ByteView bytes) override {
        std::array<char32_t, kMostUnits> units;
        // iconv doesn't write to its source, though its type says so.
        std::string copy{reinterpret_cast<const char*>(bytes.data()), bytes.size()};
        char* source = copy.data();
        std::size_t sourceLeft = copy.size();
        char* target = reinterpret_cast<char*>(units.data());
        const std::size_t room = sizeof units;
        std::size_t targetLeft = room;
        iconv(converter_, nullptr, nullptr, nullptr, nullptr);
        constexpr auto failed = static_cast<std::size_t>(-1);
        if (iconv(converter_, &source, &sourceLeft, &target, &targetLeft) == failed || sourceLeft != 0) return {};
        // A charset with combining marks holds a letter back until it has seen what follows.
        if (iconv(converter_, nullptr, nullptr, &target, &targetLeft) == failed) return {};
        return {units.data(), (room - targetLeft) / sizeof(char32_t)};
    }

private:
    iconv_t converter_;
};

std::unique_ptr<RowSource> openIcu(const Place& place, const std::string& name) {
    UErrorCode error = U_ZERO_ERROR;
    UConverter* const converter = ucnv_open(name.c_str(), &error);
    if (U_FAILURE(error)) fail(place, "ICU has no converter \"" + name + "\"");
    auto rows = std::make_unique<IcuRows>(converter);
    ucnv_setToUCallBack(converter, UCNV_TO_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &error);
    if (U_FAILURE(error)) fail(place, "ICU's converter \"" + name + "\" can't be made to stop at errors");
    return rows;
}

std::unique_ptr<RowSource> openIconv(const Place& place, const std::string& name) {
    // A suffix such as //TRANSLIT would be taken for part of the name.
    if (name.find('/') != std::string::npos) fail(place, "\"" + name + "\" is no plain name of a charset");
    const iconv_t converter = iconv_open("UTF-32LE", name.c_str());
    if (converter == reinterpret_cast<iconv_t>(-1)) fail(place, "iconv knows no charset \"" + name + "\"");
    return std::make_unique<IconvRows>(converter);
}

}  // namespace

std::unique_ptr<RowSource> openRowSource(const Place& place, const std::string& library, const std::string& name) {
    if (library == "icu") return openIcu(place, name);
    if (library == "iconv") return openIconv(place, name);
    fail(place, "\"" + library + "\" is no source of rows: icu or iconv");
}

bool isAlphabetic(char32_t codePoint) {
    return u_isUAlphabetic(static_cast<UChar32>(codePoint)) != 0;
}

}  // namespace nls::mkconvmap
