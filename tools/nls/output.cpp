#include "tools/nls/output.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <memory>

#include "tools/nls/failure.hpp"

namespace nls::tool {
namespace {

constexpr std::size_t gathered = std::size_t{1} << 16;

// What a signal has to remove; empty while there is nothing.
char signalPath[4096];

extern "C" void removeAndEnd(int signal) {
    if (signalPath[0] != 0) unlink(signalPath);
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

void guardAgainstSignals(const std::string& path) {
    if (path.size() >= sizeof signalPath) return;
    std::copy(path.c_str(), path.c_str() + path.size() + 1, signalPath);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        // Signals that the caller has switched off stay off.
        if (std::signal(signal, &removeAndEnd) == SIG_IGN) std::signal(signal, SIG_IGN);
    }
}

mode_t newFileMode() {
    const mode_t mask = umask(0);
    umask(mask);
    return 0666 & ~mask;
}

// The path behind symbolic links, so that a link stays one.
std::string behindLinks(const std::string& path) {
    const std::unique_ptr<char, decltype(&std::free)> real{realpath(path.c_str(), nullptr), &std::free};
    return real != nullptr ? real.get() : path;
}

}  // namespace

Output::Output(const std::string& path)
    : name_(path.empty() || path == "-" ? "(standard output)" : path), descriptor_(STDOUT_FILENO) {
    if (path.empty() || path == "-") return;
    struct stat status {};
    if (stat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode)) {
        descriptor_ = open(path.c_str(), O_WRONLY | O_CLOEXEC);
        if (descriptor_ < 0) throw fileFailure(path);
        return;
    }
    openTemporary(path);
}

void Output::openTemporary(const std::string& path) {
    final_ = behindLinks(path);
    struct stat status {};
    const bool exists = stat(final_.c_str(), &status) == 0;
    if (exists && access(final_.c_str(), W_OK) != 0) throw fileFailure(path);
    temporary_ = final_ + ".XXXXXX";
    descriptor_ = mkostemp(temporary_.data(), O_CLOEXEC);
    if (descriptor_ < 0) {
        const int error = errno;
        temporary_.clear();
        throw fileFailure(path, error);
    }
    guardAgainstSignals(temporary_);
    // Some file systems keep no modes; the text matters more.
    [[maybe_unused]] const int ignored = fchmod(descriptor_, exists ? status.st_mode & 0777 : newFileMode());
}

Output::~Output() {
    if (descriptor_ != STDOUT_FILENO && descriptor_ >= 0) close(descriptor_);
    if (temporary_.empty()) return;
    unlink(temporary_.c_str());
    signalPath[0] = 0;
}

void Output::write(ByteView bytes) {
    if (bytes.size() < gathered) {
        pending_.append(reinterpret_cast<const char*>(bytes.data()), bytes.size());
        if (pending_.size() >= gathered) flush();
        return;
    }
    flush();
    writeAll(bytes);
}

void Output::writeAll(ByteView bytes) {
    while (!bytes.empty()) {
        const ssize_t done = ::write(descriptor_, bytes.data(), bytes.size());
        if (done < 0 && errno == EINTR) continue;
        if (done < 0) throw fileFailure(name_);
        bytes = bytes.subspan(static_cast<std::size_t>(done));
    }
}

void Output::flush() {
    writeAll({reinterpret_cast<const unsigned char*>(pending_.data()), pending_.size()});
    pending_.clear();
}

void Output::keep() {
    flush();
    if (descriptor_ == STDOUT_FILENO) return;
    const int closed = close(descriptor_);
    descriptor_ = -1;
    if (closed != 0) throw fileFailure(name_);
    if (temporary_.empty()) return;
    if (rename(temporary_.c_str(), final_.c_str()) != 0) throw fileFailure(name_);
    temporary_.clear();
    signalPath[0] = 0;
}

}  // namespace nls::tool
