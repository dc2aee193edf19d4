#include "tools/nls/spill.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>

#include "tools/nls/failure.hpp"

namespace nls::tool {
namespace {

constexpr std::size_t gathering = std::size_t{1} << 16;

// What stands in front of each line in the file, in the byte order of this machine.
struct Head {
    uint32_t size;
    uint32_t keySize;
};

int openNameless(const std::string& folder) {
    const int descriptor = open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600);
    if (descriptor >= 0) return descriptor;
    // Not every file system makes files without a name.
    std::string path = folder + "/nls.XXXXXX";
    const int named = mkostemp(path.data(), O_CLOEXEC);
    if (named >= 0) unlink(path.c_str());
    return named;
}

Failure spillFailure(const std::string& folder) {
    const Failure failure = fileFailure("temporary file in " + folder);
    return {failure.code(), std::string(failure.what()) + "; --temp names another folder"};
}

}  // namespace

SpillFile::SpillFile(const std::string& folder) : name_(folder), descriptor_(openNameless(folder)) {
    if (descriptor_ < 0) throw spillFailure(name_);
}

SpillFile::~SpillFile() {
    close(descriptor_);
}

void SpillFile::write(const SortedLine& line) {
    const Head head{line.size, line.keySize};
    gathered_.append({reinterpret_cast<const unsigned char*>(&head), sizeof head});
    gathered_.append({line.bytes, line.storedSize()});
    size_ += sizeof head + line.storedSize();
    if (gathered_.size() >= gathering) flush();
}

void SpillFile::flush() {
    ByteView rest = gathered_.view();
    while (!rest.empty()) {
        const ssize_t done = ::write(descriptor_, rest.data(), rest.size());
        if (done < 0 && errno == EINTR) continue;
        if (done < 0) throw spillFailure(name_);
        rest = rest.subspan(static_cast<std::size_t>(done));
    }
    gathered_.clear();
}

SortedRun SpillFile::endRun() {
    flush();
    const SortedRun run{runBegin_, size_};
    runBegin_ = size_;
    return run;
}

std::size_t SpillFile::read(uint64_t place, unsigned char* target, std::size_t room) const {
    std::size_t done = 0;
    while (done < room) {
        const ssize_t got = pread(descriptor_, target + done, room - done, static_cast<off_t>(place + done));
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) throw spillFailure(name_);
        if (got == 0) break;
        done += static_cast<std::size_t>(got);
    }
    return done;
}

RunReader::RunReader(const SpillFile& file, SortedRun run, std::size_t bufferSize, const LineOrder& order)
    : file_(file), rest_(run), bufferSize_(bufferSize), order_(order) {
    advance();
}

// Whether so many bytes stand in the buffer, or could be read into it.
bool RunReader::have(std::size_t bytes) {
    if (buffer_.size() - begin_ >= bytes) return true;
    buffer_.dropFront(begin_);
    begin_ = 0;
    const std::size_t wanted = std::max(bytes, bufferSize_) - buffer_.size();
    const auto room = static_cast<std::size_t>(std::min<uint64_t>(wanted, rest_.end - rest_.begin));
    const std::size_t got = file_.read(rest_.begin, buffer_.reserve(room), room);
    buffer_.grow(got);
    rest_.begin += got;
    return buffer_.size() >= bytes;
}

void RunReader::advance() {
    begin_ += line_.size == 0 ? 0 : line_.storedSize();
    atEnd_ = begin_ == buffer_.size() && rest_.begin == rest_.end;
    if (atEnd_) return;
    Head head{};
    bool whole = have(sizeof head);
    if (whole) {
        std::memcpy(&head, buffer_.view().data() + begin_, sizeof head);
        begin_ += sizeof head;
        whole = have(head.size + std::size_t{head.keySize == SortedLine::noKey ? 0 : head.keySize});
    }
    if (!whole) throw Failure(Exit::fileTrouble, "a temporary file was cut short while it was in use");
    line_ = order_.lineAt(buffer_.view().data() + begin_, head.size, head.keySize);
}

}  // namespace nls::tool
