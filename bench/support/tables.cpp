#include "bench/support/tables.hpp"

#include <cstdio>
#include <cstring>
#include <vector>

#include "bench/support/peers.hpp"

namespace nls::bench {

namespace {

std::vector<unsigned char> readFile(const char* path) {
    std::FILE* const file = std::fopen(path, "rb");
    if (file == nullptr) giveUp(std::string(path) + ": can't be opened");
    std::vector<unsigned char> bytes;
    unsigned char block[65536];
    for (std::size_t got = 0; (got = std::fread(block, 1, sizeof block, file)) != 0;)
        bytes.insert(bytes.end(), block, block + got);
    std::fclose(file);
    return bytes;
}

const std::vector<unsigned char>& dataFile() {
    static const std::vector<unsigned char> bytes = readFile(NLS_CONVMAP);
    return bytes;
}

uint32_t readData(uint32_t, uint32_t offset, void* buffer, uint32_t length) {
    const auto& bytes = dataFile();
    if (offset > bytes.size() || length > bytes.size() - offset) return 0;
    std::memcpy(buffer, bytes.data() + offset, length);
    return length;
}

nlsHandle* openHandle() {
    constexpr std::size_t kArena = std::size_t{64} << 20;
    static std::vector<std::uint64_t> block(kArena / sizeof(std::uint64_t));
    nlsHandle* handle = nullptr;
    if (nlsInit(0, block.data(), static_cast<int32_t>(kArena), readData, &handle) != NLS_OK) giveUp(NLS_CONVMAP);
    return handle;
}

nlsLocale* locale(nlsHandle* handle, const std::string& charset) {
    nlsLocale* result = nullptr;
    if (nlsCreateLocale(handle, charset.c_str(), NLS_NO_COLLATION, nullptr, &result) != NLS_OK)
        giveUp(charset + ": no such charset");
    return result;
}

}  // namespace

const nlsConvTable* table(const std::string& from, const std::string& to) {
    static nlsHandle* const handle = openHandle();
    nlsConversion* conversion = nullptr;
    if (nlsCreateConversion(handle, locale(handle, from), locale(handle, to), &conversion) != NLS_OK)
        giveUp(from + " to " + to + ": no such conversion");
    return conversion->table;
}

}  // namespace nls::bench
