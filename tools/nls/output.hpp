// The output of a conversion: the standard output, or a file that appears under its name only when it is complete.
#pragma once

#include <unistd.h>

#include <string>

#include "core/base/views.hpp"

namespace nls::tool {

// A named file is written beside its place under another name, and takes its place when it is kept; the file that stood
// there before stays until then, so it may be an input as well. Devices and pipes are written to at once. An output
// that isn't kept, also after SIGINT or SIGTERM, leaves nothing behind. What goes wrong is thrown as a Failure.
class Output {
public:
    // "-" or an empty path: the standard output.
    explicit Output(const std::string& path);
    ~Output();
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;

    const std::string& name() const { return name_; }
    bool isStandardOutput() const { return descriptor_ == STDOUT_FILENO; }
    // Whether it appears under its name only when it is kept.
    bool isFile() const { return !final_.empty(); }
    void write(ByteView bytes);
    // All that was written is there now, under the final name.
    void keep();

private:
    void openTemporary(const std::string& path);
    void writeAll(ByteView bytes);
    void flush();

    std::string name_;
    std::string final_;
    std::string temporary_;
    int descriptor_;
    std::string pending_;  // small writes, gathered
};

}  // namespace nls::tool
