// A stored collation as the commands take it: from its file, and opened as a locale.
// Tested by tests/tools/nls_db_test.cpp.
#pragma once

#include <string>
#include <vector>

#include "tools/nls/failure.hpp"
#include "tools/nls/session.hpp"
#include "tools/stored/stored_file.hpp"

namespace nls::tool {

// Values of dbCollKind; a kind above the last of them brings its charset's tables along.
enum class StoredKind : int32_t { bytes = 1, site = 2, unicode = 3, thai = 4, icu = 5 };
inline bool isOfKind(const stored::StoredCollation& stored, StoredKind kind) {
    return stored.record.dbCollKind == static_cast<int32_t>(kind);
}
inline bool bringsItsTables(const stored::StoredCollation& stored) {
    return stored.record.dbCollKind > static_cast<int32_t>(StoredKind::icu);
}

// All of a file, "-" for the standard input. Throws if it can't be read, or has more than 64 MiB.
stored::Bytes readWhole(const std::string& path);

// What the file at `path` holds. Throws as bad input what is no stored collation.
stored::StoredCollation readStored(const std::string& path);

// Names and texts of a record may hold anything: what isn't printable ASCII or valid UTF-8 is shown as \xHH.
std::string shown(const std::string& text);

// CHARSET/COLLATION of a record.
std::string orderNameOf(const stored::StoredCollation& stored);

// A database locale, closed at its end. Stands on a session that outlives it.
class StoredLocale {
public:
    // Throws where the library refuses: damage as bad input, what this host lacks as trouble with files.
    StoredLocale(Session& session, const stored::StoredCollation& stored);
    ~StoredLocale();
    StoredLocale(const StoredLocale&) = delete;
    StoredLocale& operator=(const StoredLocale&) = delete;

    nlsLocale* locale() const { return locale_; }

private:
    std::vector<uint64_t> block_;
    nlsLocale* locale_ = nullptr;
};

}  // namespace nls::tool
