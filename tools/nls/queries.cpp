#include "tools/nls/queries.hpp"

#include <algorithm>

#include "tools/nls/failure.hpp"

namespace nls::tool {
namespace {

void refuse(uint32_t property, nlsStatus status) {
    throw Failure(Exit::fileTrouble, "the library doesn't answer property " + std::to_string(property) + " (status " +
                                         std::to_string(status) + ")");
}

nlsStatus ask(const nlsHandle& handle, uint32_t property, uint32_t* value) {
    return nlsGetIntNLSProperty(&handle, property, value);
}
nlsStatus ask(const nlsLocale& locale, uint32_t property, uint32_t* value) {
    return nlsGetIntLocaleProperty(&locale, property, value);
}
nlsStatus ask(const nlsHandle& handle, uint32_t property, nlsStr* text) {
    return nlsGetStrNLSProperty(&handle, property, text);
}
nlsStatus ask(const nlsLocale& locale, uint32_t property, nlsStr* text) {
    return nlsGetStrLocaleProperty(&locale, property, text);
}

// A handle's text has ICU's collations behind each of "UTF-8", and its length counts them once.
template <typename Object>
std::string listText(const Object& object, ListNumbers numbers) {
    constexpr uint32_t longest = 1U << 24;
    uint32_t length = 0;
    nlsStatus status = ask(object, numbers.length, &length);
    if (status != NLS_OK) refuse(numbers.length, status);
    status = NLS_BUF_SMALL;
    for (uint32_t room = length + 1; status == NLS_BUF_SMALL && room <= longest; room *= 2) {
        std::vector<unsigned char> bytes(room);
        nlsStr text{bytes.data(), static_cast<int32_t>(room), 0};
        status = ask(object, numbers.text, &text);
        if (status == NLS_OK) return {bytes.begin(), bytes.begin() + text.strLength};
    }
    refuse(numbers.text, status);
    return {};
}

std::vector<std::string> itemsOf(const std::string& text) {
    std::vector<std::string> items;
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t comma = std::min(text.find(',', begin), text.size());
        items.push_back(text.substr(begin, comma - begin));
        begin = comma + 1;
    }
    return items;
}

}  // namespace

std::vector<std::string> listOf(const nlsHandle& handle, ListNumbers numbers) {
    return itemsOf(listText(handle, numbers));
}

std::vector<std::string> listOf(const nlsLocale& locale, ListNumbers numbers) {
    return itemsOf(listText(locale, numbers));
}

uint32_t numberOf(const nlsLocale& locale, uint32_t property) {
    uint32_t value = 0;
    if (const nlsStatus status = ask(locale, property, &value); status != NLS_OK) refuse(property, status);
    return value;
}

std::optional<uint32_t> numberOf(const nlsConversion& conversion, uint32_t property) {
    uint32_t value = 0;
    const nlsStatus status = nlsGetIntConversionProperty(&conversion, property, &value);
    return status == NLS_OK ? std::optional(value) : std::nullopt;
}

Pair pairOf(const std::string& item, const std::string& between) {
    const std::size_t place = item.find(between);
    if (place == std::string::npos) return {item, {}};
    return {item.substr(0, place), item.substr(place + between.size())};
}

}  // namespace nls::tool
