#include "convmap/file_reader.hpp"

namespace nls {

bool FileReader::read(uint64_t offset, ByteSpan bytes) const {
    constexpr uint64_t kPositions = uint64_t{1} << 32;
    if (bytes.size() > kPositions || offset > kPositions - bytes.size()) return false;
    const auto length = static_cast<uint32_t>(bytes.size());
    return readFn_(fileHandle_, static_cast<uint32_t>(offset), bytes.data(), length) == length;
}

}  // namespace nls
