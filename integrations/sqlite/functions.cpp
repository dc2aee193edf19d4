#include "integrations/sqlite/functions.hpp"

#include <new>
#include <stdexcept>

namespace nls::sqlite {
namespace {

// What SQLite keeps for a registered function.
struct Registered {
    std::shared_ptr<Connection> connection;
    const Function* function;
};

void fail(sqlite3_context* context, const Function& function, const char* what) noexcept {
    char* const text = sqlite3_mprintf("%s: %s", function.name, what);
    if (text == nullptr) return sqlite3_result_error_nomem(context);
    sqlite3_result_error(context, text, -1);
    sqlite3_free(text);
}

void run(sqlite3_context* context, int count, sqlite3_value** arguments) noexcept {
    const auto& registered = *static_cast<const Registered*>(sqlite3_user_data(context));
    const Call call{*registered.connection, context, arguments, count};
    for (int number = 0; number < registered.function->nulls; ++number) {
        if (call.isNull(number)) return sqlite3_result_null(context);
    }
    try {
        registered.function->run(call);
    } catch (const std::bad_alloc&) {
        sqlite3_result_error_nomem(context);
    } catch (const std::exception& failure) {
        fail(context, *registered.function, failure.what());
    }
}

void forget(void* registered) noexcept {
    delete static_cast<Registered*>(registered);
}

}  // namespace

ByteView Call::bytes(int number) const {
    sqlite3_value* const value = arguments[number];
    const bool isBlob = sqlite3_value_type(value) == SQLITE_BLOB;
    const void* const start = isBlob ? sqlite3_value_blob(value) : sqlite3_value_text(value);
    const int size = sqlite3_value_bytes(value);
    if (start == nullptr && (size != 0 || !isBlob)) throw std::bad_alloc();
    return {static_cast<const unsigned char*>(start), static_cast<std::size_t>(size)};
}

std::string Call::text(int number) const {
    if (isNull(number)) return {};
    const ByteView view = bytes(number);
    if (holdsNul(view)) throw std::invalid_argument("argument " + std::to_string(number + 1) + " has a NUL in it");
    return {view.begin(), view.end()};
}

void Call::answer(ByteView text) const {
    sqlite3_result_text64(context, text.empty() ? "" : reinterpret_cast<const char*>(text.data()), text.size(),
                          SQLITE_TRANSIENT, SQLITE_UTF8);
}

void Call::answerBlob(ByteView bytes) const {
    sqlite3_result_blob64(context, bytes.empty() ? "" : static_cast<const void*>(bytes.data()), bytes.size(),
                          SQLITE_TRANSIENT);
}

int registerFunction(sqlite3* db, const std::shared_ptr<Connection>& connection, const Function& function) {
    for (int count = function.least; count <= function.most; ++count) {
        auto* const registered = new Registered{connection, &function};
        // SQLite forgets it, of a refused registration too.
        const int status = sqlite3_create_function_v2(db, function.name, count, SQLITE_UTF8 | function.flags,
                                                      registered, &run, nullptr, nullptr, &forget);
        if (status != SQLITE_OK) return status;
    }
    return SQLITE_OK;
}

}  // namespace nls::sqlite
