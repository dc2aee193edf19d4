/* nls for C++20: the same functions, with memory, files and failures looked after. Header-only.

       nls::Runtime runtime{"/usr/share/nls/convmap.cp"};
       const nls::Conversion toUtf8 = runtime.conversion("SHIFT-JIS", "UTF-8");
       std::cout << toUtf8(text).text;

   A Runtime holds the open data file and all memory of a handle. Locale and Conversion are small, are copied freely,
   and are good as long as their Runtime. They may be used by many threads at once; a Runtime guards its own changes by
   a mutex.

   Failures are thrown as nls::Error, which carries the status. Substitutes are no failure: ConvertedText tells of them.
 */
#ifndef NLS_NLS_HPP
#define NLS_NLS_HPP

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include "nls/nls.h"

namespace nls {

class Error : public std::runtime_error {
public:
    Error(nlsStatus status, const std::string& what)
        : std::runtime_error("nls: " + what + ": status " + std::to_string(status)), status_(status) {}

    /* One of the numbers of status.h. */
    nlsStatus status() const noexcept { return status_; }

private:
    nlsStatus status_;
};

struct ConvertedText {
    std::string text;
    bool substituted; /* a substitute stands for at least one character that the target charset lacks */
};

/* A charset, made by Runtime::locale. The texts that its functions take end at their first NUL. */
class Locale {
public:
    nlsLocale* get() const noexcept { return locale_; }
    std::string_view charset() const noexcept { return locale_->charsetName; }

    /* Characters in `text`. Throws NLS_PARTIAL_CHAR where the text ends inside a character. */
    uint32_t countCharacters(const std::string& text) const {
        return text.empty() ? 0 : count(nlsCountChars, text, "characters");
    }

    /* Screen columns that `text` fills. */
    uint32_t countColumns(const std::string& text) const { return count(nlsCountColumns, text, "columns"); }

    /* Calls visit(std::string_view) for each character in turn; one that is cut short at the end comes as it stands. */
    template <typename Visit>
    void forEachCharacter(const std::string& text, Visit visit) const {
        const unsigned char* place = bytes(text);
        while (*place != 0) {
            const unsigned char* next = nullptr;
            const nlsStatus status = nlsGetNextChar(locale_, nullptr, place, &next);
            if (status != NLS_OK && status != NLS_END_OF_STRING) throw Error(status, "step");
            visit(std::string_view{reinterpret_cast<const char*>(place), static_cast<std::size_t>(next - place)});
            place = next;
        }
    }

private:
    friend class Runtime;
    explicit Locale(nlsLocale* locale) : locale_(locale) {}

    static const unsigned char* bytes(const std::string& text) {
        return reinterpret_cast<const unsigned char*>(text.c_str());
    }

    template <typename Counter>
    uint32_t count(Counter counter, const std::string& text, const char* what) const {
        if (text.size() > static_cast<std::size_t>(std::numeric_limits<int32_t>::max()))
            throw std::length_error("nls: text of 2 GiB or more");
        const auto length = static_cast<int32_t>(std::char_traits<char>::length(text.c_str()));
        uint32_t result = 0;
        const nlsStatus status = counter(locale_, nullptr, bytes(text), length, &result);
        if (status != NLS_OK) throw Error(status, std::string("counting ") + what);
        return result;
    }

    nlsLocale* locale_;
};

/* From one charset to another, made by Runtime::conversion. */
class Conversion {
public:
    nlsConversion* get() const noexcept { return conversion_; }

    /* Converts all of `text`, NULs included. Throws NLS_BAD_ARG where the text ends inside a character, and
       NLS_INVALID_STRING or NLS_BAD_ARG for a lone surrogate. */
    ConvertedText operator()(std::string_view text) const {
        if (text.empty()) return {{}, false};
        const bool twoSteps = nlsConversionType(conversion_->table) == kTwoSteps;
        std::string target(roomFor(text, growth()), '\0');
        std::string middle(twoSteps ? roomFor(text, kLargestGrowth) : 0, '\0');
        uint32_t length = 0;
        const nlsStatus status = convertBytes(bytes(target), static_cast<int32_t>(target.size()),
                                              reinterpret_cast<const unsigned char*>(text.data()),
                                              static_cast<int32_t>(text.size()), twoSteps ? bytes(middle) : nullptr,
                                              static_cast<int32_t>(middle.size()), conversion_->table, &length, 0);
        if (status != NLS_OK && status != NLS_CONV_SUBST)
            throw Error(status,
                        std::string(conversion_->source->charsetName) + " to " + conversion_->target->charsetName);
        target.resize(length);
        return {std::move(target), status == NLS_CONV_SUBST};
    }

private:
    friend class Runtime;
    explicit Conversion(nlsConversion* conversion) : conversion_(conversion) {}

    static constexpr int32_t kTwoSteps = 7;
    static constexpr uint32_t kLargestGrowth = 4; /* bytes of the target for a byte of the source, in one step */
    static constexpr std::size_t kSpare = 64;     /* some conversions want a byte free behind the text */

    static unsigned char* bytes(std::string& text) { return reinterpret_cast<unsigned char*>(text.data()); }

    uint32_t growth() const {
        uint32_t factor = kLargestGrowth;
        return getMaxExpSz(conversion_->table, &factor) == NLS_OK ? factor : kLargestGrowth;
    }
    static std::size_t roomFor(std::string_view text, uint32_t factor) {
        constexpr std::size_t kMost = static_cast<std::size_t>(std::numeric_limits<int32_t>::max()) - kSpare;
        if (text.size() > kMost / factor) throw std::length_error("nls: text too long for one call");
        return text.size() * factor + kSpare;
    }

    nlsConversion* conversion_;
};

/* An open data file with the memory of its handle, which grows as objects are made. */
class Runtime {
public:
    /* Throws std::system_error where the file can't be opened, and Error where it is no data file. */
    explicit Runtime(const std::string& convmap) : file_(convmap) {
        memory_.push_back(std::make_unique<uint64_t[]>(kBlock / sizeof(uint64_t)));
        const nlsStatus status =
            nlsInit(static_cast<uint32_t>(file_.number), memory_.back().get(), kBlock, &readFile, &handle_);
        if (status != NLS_OK) throw Error(status, convmap);
    }
    Runtime(const Runtime&) = delete;
    Runtime& operator=(const Runtime&) = delete;
    ~Runtime() { nlsClose(handle_); }

    nlsHandle* get() const noexcept { return handle_; }

    /* Throws NLS_NO_ATTRIB_TABLE for a charset that the data file doesn't know. */
    Locale locale(const std::string& charset) {
        const std::lock_guard<std::mutex> guard(mutex_);
        return Locale{make(charset)};
    }

    /* Throws NLS_NO_CONV_TABLE where the data file has no way from the one to the other. */
    Conversion conversion(const std::string& from, const std::string& to) {
        const std::lock_guard<std::mutex> guard(mutex_);
        nlsLocale* const source = make(from);
        nlsLocale* const target = make(to);
        keepFree(kLargestPair);
        nlsConversion* made = nullptr;
        const nlsStatus status = nlsCreateConversion(handle_, source, target, &made);
        if (status != NLS_OK) throw Error(status, from + " to " + to);
        return Conversion{made};
    }

private:
    static constexpr int32_t kBlock = 524288;
    static constexpr uint32_t kLargestPair = 300000; /* two of the largest multi-byte tables, and objects */
    static constexpr uint32_t kLargestLocale = 4096;

    struct File {
        explicit File(const std::string& path) : number(::open(path.c_str(), O_RDONLY | O_CLOEXEC)) {
            if (number < 0) throw std::system_error(errno, std::generic_category(), path);
        }
        File(const File&) = delete;
        File& operator=(const File&) = delete;
        ~File() { ::close(number); }
        int number;
    };

    static uint32_t readFile(uint32_t file, uint32_t offset, void* buffer, uint32_t length) {
        return static_cast<uint32_t>(::pread(static_cast<int>(file), buffer, length, offset));
    }

    nlsLocale* make(const std::string& charset) {
        keepFree(kLargestLocale);
        nlsLocale* made = nullptr;
        const nlsStatus status = nlsCreateLocale(handle_, charset.c_str(), NLS_NO_COLLATION, nullptr, &made);
        if (status != NLS_OK) throw Error(status, charset);
        return made;
    }

    void keepFree(uint32_t bytes) {
        if (handle_->freeBytes >= bytes) return;
        memory_.push_back(std::make_unique<uint64_t[]>(kBlock / sizeof(uint64_t)));
        const nlsStatus status = nlsAddBuffer(handle_, memory_.back().get(), kBlock);
        if (status != NLS_OK) throw Error(status, "more memory");
    }

    File file_;
    std::vector<std::unique_ptr<uint64_t[]>> memory_;
    nlsHandle* handle_ = nullptr;
    std::mutex mutex_;
};

}  // namespace nls

#endif
