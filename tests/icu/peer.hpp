// The installed ICU called directly, apart from the library's own names of ICU's functions, for which ICU's headers
// have macros.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace nls::test::peer {

inline constexpr int32_t kUsedFallback = -128, kUsedDefault = -127;

int versionOfIcu();

// The locale whose order a collator has; `collator` is ICU's own.
std::string orderOf(const void* collator);

std::u16string unitsOf(std::string_view utf8);

class Collator {
public:
    // `strength` as ICU counts, 0 for the primary.
    Collator(const char* locale, int strength);
    Collator(const Collator&) = delete;
    Collator& operator=(const Collator&) = delete;
    ~Collator();

    int compare(const std::u16string& a, const std::u16string& b) const;
    std::string key(const std::u16string& text) const;  // without its NUL
    std::vector<unsigned char> version() const;         // that of the collator, then that of UCA

private:
    void* collator_;
};

// A converter with ICU's own substitutes.
class Converter {
public:
    explicit Converter(const char* charset);
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;
    ~Converter();

    std::string encode(std::u16string_view text) const;
    std::u16string decode(std::string_view bytes) const;
    // Bytes that have been written once so many units have been read, for each number of units from 1.
    std::vector<std::size_t> bytesAfterUnits(std::u16string_view text) const;

private:
    void* converter_;
};

}  // namespace nls::test::peer
