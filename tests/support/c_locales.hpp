// Locales of the C library, compiled for a test into a folder of its own by localedef (Debian's package "locales").
#pragma once

#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <string>

namespace nls::test {

class CLocales {
public:
    CLocales() {
        char pattern[] = "/tmp/nls-locales-XXXXXX";
        if (mkdtemp(pattern) != nullptr) folder_ = pattern;
        setenv("LOCPATH", folder_.c_str(), 1);
    }
    CLocales(const CLocales&) = delete;
    CLocales& operator=(const CLocales&) = delete;
    ~CLocales() {
        std::setlocale(LC_ALL, "C");
        unsetenv("LOCPATH");
        std::error_code ignored;
        if (!folder_.empty()) std::filesystem::remove_all(folder_, ignored);
    }

    // Makes the process use a locale. False where it can't be had.
    bool use(const std::string& language, const std::string& encoding) {
        if (language == "C") return std::setlocale(LC_ALL, encoding.empty() ? "C" : "C.UTF-8") != nullptr;
        const std::string name = language + "." + encoding;
        const std::string command = "localedef --no-archive -i " + language + " -f " + encoding + " " + folder_ + "/" +
                                    name + " >/dev/null 2>&1";
        return !folder_.empty() && std::system(command.c_str()) == 0 && std::setlocale(LC_ALL, name.c_str()) != nullptr;
    }

private:
    std::string folder_;
};

}  // namespace nls::test
