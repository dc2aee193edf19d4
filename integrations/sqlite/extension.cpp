// nls.so: the library as an extension of SQLite. What it offers stands in README.md beside this file.
#include <sqlite3ext.h>

#include <new>

#include "integrations/sqlite/functions.hpp"

SQLITE_EXTENSION_INIT1

namespace nls::sqlite {
namespace {

void answer(const Call& call, const std::string& text) {
    call.answer({reinterpret_cast<const unsigned char*>(text.data()), text.size()});
}

// nls_collation_load(name, 'CHARSET/COLLATION' [, mode [, 'keep']])
void runLoad(const Call& call) {
    const std::string name = call.text(0), source = call.text(1), mode = call.text(2), keep = call.text(3);
    if (!keep.empty() && keep != "keep") throw std::invalid_argument("the fourth argument is 'keep' or nothing");
    const std::string title = call.connection.load(name, source, mode.empty() ? Mode::exact : modeOf(mode));
    if (!keep.empty()) call.connection.store(name);
    answer(call, title);
}

void runStore(const Call& call) {
    answer(call, call.connection.store(call.text(0)));
}

void runOpen(const Call& call) {
    answer(call, call.connection.openStored(call.text(0)));
}

// nls_data_file([path]): the one in use
void runDataFile(const Call& call) {
    if (!call.isNull(0)) call.connection.library().useDataFile(call.text(0));
    answer(call, call.connection.library().dataFile());
}

constexpr Function functions[] = {
    {"nls_collation_load", 2, 4, SQLITE_DIRECTONLY, 2, &runLoad},
    {"nls_collation_store", 1, 1, SQLITE_DIRECTONLY, 1, &runStore},
    {"nls_collation_open", 1, 1, SQLITE_DIRECTONLY, 1, &runOpen},
    {"nls_data_file", 0, 1, SQLITE_DIRECTONLY, 0, &runDataFile},
};

// SQLite asks for a collation that isn't registered: one that the database keeps is opened. Where that can't be, SQLite
// refuses the statement, and nls_collation_open tells why.
void collationNeeded(void* connection, sqlite3*, int, const char* name) noexcept {
    try {
        static_cast<Connection*>(connection)->openStored(name);
    } catch (const std::exception& failure) {
        sqlite3_log(SQLITE_WARNING, "nls: %s", failure.what());
    }
}

}  // namespace

int registerCollationFunctions(sqlite3* db, const std::shared_ptr<Connection>& connection) {
    for (const Function& function : functions) {
        if (const int status = registerFunction(db, connection, function); status != SQLITE_OK) return status;
    }
    return sqlite3_collation_needed(db, connection.get(), &collationNeeded);
}

}  // namespace nls::sqlite

// Stays loaded to the end of the process, as do the builds of ICU that the library loads.
extern "C" __attribute__((visibility("default"))) int sqlite3_nls_init(sqlite3* db, char** message,
                                                                       const sqlite3_api_routines* api) {
    SQLITE_EXTENSION_INIT2(api);
    try {
        const auto connection = std::make_shared<nls::sqlite::Connection>(db);
        int status = nls::sqlite::registerTextFunctions(db, connection);
        if (status == SQLITE_OK) status = nls::sqlite::registerCollationFunctions(db, connection);
        return status == SQLITE_OK ? SQLITE_OK_LOAD_PERMANENTLY : status;
    } catch (const std::exception& failure) {
        if (message != nullptr) *message = sqlite3_mprintf("nls: %s", failure.what());
        return SQLITE_ERROR;
    }
}
