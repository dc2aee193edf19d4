#include "bench/support/peers.hpp"

#include <cstdio>
#include <cstdlib>

namespace nls::bench {

void giveUp(const std::string& reason) {
    std::fprintf(stderr, "%s\n", reason.c_str());
    std::exit(1);
}

Iconv::Iconv(const std::string& from, const std::string& to)
    : what_("iconv " + from + " to " + to), converter_(iconv_open(to.c_str(), from.c_str())) {
    if (converter_ == reinterpret_cast<iconv_t>(-1)) giveUp(what_ + ": no such pair");
}

Iconv::~Iconv() {
    iconv_close(converter_);
}

std::size_t Iconv::convert(std::string_view source, char* target, std::size_t room) const {
    char* in = const_cast<char*>(source.data());
    std::size_t left = source.size(), free = room;
    iconv(converter_, nullptr, nullptr, nullptr, nullptr);
    if (iconv(converter_, &in, &left, &target, &free) == static_cast<std::size_t>(-1)) giveUp(what_ + ": refused");
    return room - free;
}

std::string Iconv::convert(std::string_view source) const {
    std::string target(source.size() * 4 + 16, '\0');
    target.resize(convert(source, target.data(), target.size()));
    return target;
}

IcuPair::Converter IcuPair::open(const std::string& name) {
    UErrorCode error = U_ZERO_ERROR;
    Converter converter{ucnv_open(name.c_str(), &error)};
    if (U_FAILURE(error)) giveUp("ICU " + name + ": " + u_errorName(error));
    return converter;
}

IcuPair::IcuPair(const std::string& from, const std::string& to) : from_(open(from)), to_(open(to)) {}

std::size_t IcuPair::convertStreaming(std::string_view source, char* target, std::size_t room) {
    UErrorCode error = U_ZERO_ERROR;
    UChar pivot[1024];
    UChar *pivotSource = pivot, *pivotTarget = pivot;
    char* out = target;
    const char* in = source.data();
    ucnv_convertEx(to_.get(), from_.get(), &out, target + room, &in, in + source.size(), pivot, &pivotSource,
                   &pivotTarget, pivot + 1024, true, true, &error);
    if (U_FAILURE(error)) giveUp(std::string("ucnv_convertEx: ") + u_errorName(error));
    return static_cast<std::size_t>(out - target);
}

std::size_t IcuPair::convertWhole(std::string_view source, char* target, std::size_t room) {
    if (middle_.size() < source.size() + 1) middle_.resize(source.size() + 1);
    UErrorCode error = U_ZERO_ERROR;
    const int32_t units = ucnv_toUChars(from_.get(), middle_.data(), static_cast<int32_t>(middle_.size()),
                                        source.data(), static_cast<int32_t>(source.size()), &error);
    const int32_t length =
        ucnv_fromUChars(to_.get(), target, static_cast<int32_t>(room), middle_.data(), units, &error);
    if (U_FAILURE(error)) giveUp(std::string("ucnv_toUChars, ucnv_fromUChars: ") + u_errorName(error));
    return static_cast<std::size_t>(length);
}

}  // namespace nls::bench
