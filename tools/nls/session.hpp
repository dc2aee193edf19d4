// The library with a data file open, through its public interface.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "nls/nls.h"
#include "tools/nls/data_file.hpp"
#include "tools/stored/stored_file.hpp"

namespace nls::tool {

// Opens a handle on a data file and gives its arena further buffers as objects need them. What goes wrong is thrown as
// a Failure.
class Session {
public:
    explicit Session(const std::string& dataFile);
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    const std::string& dataFile() const { return file_.path(); }

    const nlsHandle& handle() const { return *handle_; }

    // The charsets of the file, as it spells them, in its order.
    std::vector<std::string> charsets() const;
    // Records of the file's table of contents.
    std::vector<nlsTocEntry> contents() const;

    // A locale of a charset, without collation and case table. An unknown name is a usage failure with the nearest
    // names.
    nlsLocale* locale(const std::string& charset);
    // A locale with a collation and, unless `caseName` is empty, a case table; an empty `collation` is none. Unknown
    // names are usage failures with the nearest names. So are collations that ICU doesn't know; where ICU can't be had,
    // that is trouble with a file.
    nlsLocale* locale(const std::string& charset, const std::string& collation, const std::string& caseName);
    // Whether the file has that case table for the charset.
    bool hasCaseTable(const std::string& charset, const std::string& caseName) const;
    // Null if the file knows no way from one to the other.
    const nlsConversion* conversion(nlsLocale* from, nlsLocale* to);

    // Makes a locale of a stored collation in `block`, with the library's answer. The locale is to be closed, and the
    // block to stand, before the session goes.
    nlsStatus openStored(const stored::StoredCollation& stored, nlsLocale* wordBreakLocale,
                         std::vector<uint64_t>& block, nlsLocale*& made);

    // Bytes of the arena that objects and tables have taken so far.
    uint64_t arenaUsed() const;

private:
    nlsStatus open(std::size_t blockSize);
    // The names of a charset's records of one type.
    std::vector<std::string> namesOf(uint16_t entryType, const std::string& charset) const;
    [[noreturn]] void refuseCollation(const std::string& charset, const std::string& collation) const;
    [[noreturn]] void refuseLocale(nlsStatus status, const std::string& charset, const std::string& collation,
                                   const std::string& caseName) const;
    bool addBuffer(std::size_t size);
    nlsLocale* icuLocale(const nlsLocale& plain, const std::string& collation, const std::string& caseName);
    [[noreturn]] void refuseIcu(const std::string& charset, const std::string& collation) const;
    // Calls `create` again with a further, larger buffer as long as it answers `full`.
    template <typename Create>
    nlsStatus withRoom(Create create, nlsStatus full);

    OpenFile file_;
    std::vector<std::unique_ptr<uint64_t[]>> buffers_;  // words, for their alignment
    nlsHandle* handle_ = nullptr;
    uint64_t earlierBuffers_ = 0;  // sizes of the buffers in front of the one in use
    uint64_t bufferSize_ = 0;
};

}  // namespace nls::tool
