#include "tools/nls/input.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <vector>

#include "tools/nls/failure.hpp"

namespace nls::tool {
namespace {

constexpr std::size_t chunkSize = std::size_t{1} << 17;

bool isRegularFile(int descriptor) {
    struct stat status {};
    return fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
}

int openForReading(const std::string& path) {
    if (path == "-") return STDIN_FILENO;
    const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0) throw fileFailure(path);
    return descriptor;
}

}  // namespace

Input::Input(const std::string& path)
    : name_(path == "-" ? "(standard input)" : path),
      descriptor_(openForReading(path)),
      regular_(isRegularFile(descriptor_)) {}

Input::~Input() {
    if (descriptor_ != STDIN_FILENO) close(descriptor_);
}

std::size_t Input::read(unsigned char* place, std::size_t room) {
    for (;;) {
        const ssize_t got = ::read(descriptor_, place, room);
        if (got >= 0) return static_cast<std::size_t>(got);
        if (errno != EINTR) throw fileFailure(name_);
    }
}

uint64_t totalSize(const std::vector<std::string>& paths) {
    uint64_t total = 0;
    for (const std::string& path : paths) {
        struct stat status {};
        const int answer = path == "-" ? fstat(STDIN_FILENO, &status) : stat(path.c_str(), &status);
        if (answer != 0 || !S_ISREG(status.st_mode)) return 0;
        total += static_cast<uint64_t>(status.st_size);
    }
    return total;
}

bool forEachPiece(Input& input, Converter& converter, Progress& progress,
                  const std::function<bool(const Piece&, const Place&)>& handle) {
    std::vector<unsigned char> buffer(chunkSize);
    std::size_t kept = 0;  // the start of a character whose end hasn't been read yet
    const LineEnds ends = converter.from().lineEnds();
    Place place;
    for (bool last = false; !last;) {
        const std::size_t got = input.read(buffer.data() + kept, buffer.size() - kept);
        last = got == 0;
        ByteView rest{buffer.data(), kept + got};
        while (const std::optional<Piece> piece = converter.next(rest, last)) {
            if (!handle(*piece, place)) return false;
            if (piece->good) {
                place.advance(piece->source.size(), piece->text, ends);
            } else {
                place.skip(piece->source.size());
            }
            rest = rest.subspan(piece->source.size());
        }
        kept = rest.size();
        if (kept != 0) std::memmove(buffer.data(), rest.data(), kept);
        progress.add(got);
    }
    return true;
}

}  // namespace nls::tool
