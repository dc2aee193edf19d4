#include "integrations/sqlite/connection.hpp"

#include <algorithm>
#include <cstring>

#include "tools/nls/failure.hpp"

namespace nls::sqlite {
namespace {

using tool::Exit;
using tool::Failure;

// Names of collations are equal to SQLite without regard to the case of ASCII. That of an order for functions alone
// has a NUL in it.
std::string keyOfName(const std::string& name) {
    std::string key = name;
    std::transform(key.begin(), key.end(), key.begin(), [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter + 32) : letter;
    });
    return key;
}

void checkName(const std::string& name) {
    const std::string key = keyOfName(name);
    if (name.empty() || name.find('\0') != std::string::npos || name.find('/') != std::string::npos) {
        throw Failure(Exit::usage, "a collation's name isn't empty and has no \"/\"");
    }
    for (const char* const own : {"binary", "nocase", "rtrim"}) {
        if (key == own) throw Failure(Exit::usage, name + " is SQLite's own collation; take another name");
    }
}

std::string titleOf(const KeptCollation& form) {
    return form.source + " " + form.mode;
}

// A collation as SQLite holds it.
struct Use {
    std::shared_ptr<Connection> connection;
    sqlite3* db;
    Order* order;
};

void goOn(void* db) noexcept {
    sqlite3_commit_hook(static_cast<sqlite3*>(db), nullptr, nullptr);
    sqlite3_rollback_hook(static_cast<sqlite3*>(db), nullptr, nullptr);
}

int refuseCommit(void* db) noexcept {
    goOn(db);
    return 1;
}

// A comparison can't tell SQLite that it failed. So the statement is interrupted. One that writes may come to its end
// all the same, since SQLite looks at interrupts in loops alone: what it wrote can't be committed. Hooks of the
// application's own are lost by that.
void stop(sqlite3* db) noexcept {
    constexpr int knowsTransactions = 3034000;
    sqlite3_interrupt(db);
    if (sqlite3_libversion_number() >= knowsTransactions && sqlite3_txn_state(db, nullptr) != SQLITE_TXN_WRITE) return;
    sqlite3_commit_hook(db, &refuseCommit, db);
    sqlite3_rollback_hook(db, &goOn, db);
}

int compare(void* context, int sizeA, const void* a, int sizeB, const void* b) noexcept {
    const auto& use = *static_cast<const Use*>(context);
    const auto view = [](const void* bytes, int size) {
        return ByteView{static_cast<const unsigned char*>(bytes), static_cast<std::size_t>(size)};
    };
    try {
        return use.order->compare(view(a, sizeA), view(b, sizeB));
    } catch (const std::exception& failure) {
        sqlite3_log(SQLITE_ERROR, "nls: %s; the statement is interrupted", failure.what());
        stop(use.db);
    }
    const int least = std::min(sizeA, sizeB);
    const int sign = least == 0 ? 0 : std::memcmp(a, b, static_cast<std::size_t>(least));
    return sign != 0 ? sign : sizeA - sizeB;
}

void forget(void* context) noexcept {
    delete static_cast<Use*>(context);
}

}  // namespace

Connection::Named& Connection::add(const std::string& key, OpenOrder opened, KeptCollation form) {
    Named named{std::move(opened), std::move(form), false};
    return orders_.insert_or_assign(key, std::move(named)).first->second;
}

std::string Connection::registerCollation(const std::string& name, Named& named) {
    if (named.isCollation) return titleOf(named.form);
    auto* const use = new Use{shared_from_this(), db_, named.opened.order.get()};
    const int status = sqlite3_create_collation_v2(db_, name.c_str(), SQLITE_UTF8, use, &compare, &forget);
    if (status != SQLITE_OK) {
        delete use;  // SQLite doesn't, in this one case
        throw Failure(Exit::fileTrouble, "the collation " + name + " can't be registered: " + sqlite3_errmsg(db_));
    }
    named.isCollation = true;
    return titleOf(named.form);
}

std::optional<KeptCollation> Connection::kept(const std::string& name) {
    if (isReading_) throw Failure(Exit::badInput, "the table nls_collations wants the collation " + name + " itself");
    const struct Reading {
        explicit Reading(bool& flag) : flag_(flag) { flag_ = true; }
        ~Reading() { flag_ = false; }
        bool& flag_;
    } reading{isReading_};
    return findKept(db_, name);
}

const KeptCollation& Connection::formOf(Named& named) {
    if (named.form.record.empty()) named.form = keptForm(library_, *named.opened.order);
    return named.form;
}

std::string Connection::load(const std::string& name, const std::string& source, Mode mode) {
    checkName(name);
    Named loaded{library_.open(source, mode), {}, false};
    loaded.form.source = loaded.opened.order->name();
    loaded.form.mode = nameOf(mode);
    const auto known = orders_.find(keyOfName(name));
    if (known != orders_.end()) {
        Named& old = known->second;
        const bool isSame = old.form.source == loaded.form.source && old.form.mode == loaded.form.mode &&
                            (old.opened.stored == nullptr || formOf(old) == formOf(loaded));
        if (isSame) return registerCollation(name, old);
        throw Failure(Exit::usage, "the collation " + name + " is " + old.form.source + ", " + old.form.mode +
                                       ", on this connection; take another name");
    }
    const std::optional<KeptCollation> row = kept(name);
    if (row && !(*row == formOf(loaded))) {
        throw Failure(Exit::loss, "the database keeps a collation " + name + " that is another (" + row->source + ", " +
                                      row->mode + ") or has other tables than " + library_.dataFile() +
                                      "; SELECT nls_collation_open('" + name + "') takes the one of the database");
    }
    return registerCollation(name, add(keyOfName(name), std::move(loaded.opened), std::move(loaded.form)));
}

std::string Connection::store(const std::string& name) {
    const auto known = orders_.find(keyOfName(name));
    if (known == orders_.end()) {
        throw Failure(Exit::usage, "no collation " + name + " is loaded; SELECT nls_collation_load('" + name +
                                       "', 'CHARSET/COLLATION') does that");
    }
    const KeptCollation& form = formOf(known->second);
    const std::optional<KeptCollation> row = kept(name);
    if (row && !(*row == form)) {
        throw Failure(Exit::usage, "the database keeps another collation " + name + "; take another name");
    }
    if (!row) keep(db_, name, form);
    return titleOf(form);
}

Connection::Named& Connection::openKeptAs(const std::string& name, const KeptCollation& row) {
    const auto known = orders_.find(keyOfName(name));
    if (known == orders_.end()) return add(keyOfName(name), openKept(library_, name, row), row);
    if (formOf(known->second) == row) return known->second;
    throw Failure(Exit::usage, "the collation " + name + " is another on this connection (" +
                                   known->second.form.source + ", " + known->second.form.mode +
                                   ") than in the database (" + row.source + ", " + row.mode +
                                   "); open the database on a connection of its own");
}

std::string Connection::openStored(const std::string& name) {
    const std::optional<KeptCollation> row = kept(name);
    if (!row) {
        throw Failure(Exit::usage, "the database keeps no collation " + name +
                                       "; nls_collation_load makes one, and nls_collation_store keeps it");
    }
    return registerCollation(name, openKeptAs(name, *row));
}

Order& Connection::order(const std::string& name, const std::string& mode, Mode usual) {
    const bool isOfFile = name.find('/') != std::string::npos;
    const std::string key = isOfFile ? name : keyOfName(name);
    const std::string wanted = !mode.empty() ? mode : isOfFile ? nameOf(usual) : "";
    const std::string own = wanted.empty() ? key : key + '\0' + wanted;
    if (const auto known = orders_.find(own); known != orders_.end()) return *known->second.opened.order;
    if (isOfFile) return *add(own, library_.open(name, modeOf(wanted)), {}).opened.order;
    const Named& named = byName(name);
    if (wanted.empty() || wanted == named.form.mode) return *named.opened.order;
    KeptCollation other = named.form;  // the same tables in the other mode
    other.mode = nameOf(modeOf(wanted));
    OpenOrder opened =
        other.record.empty() ? library_.open(other.source, modeOf(wanted)) : openKept(library_, name, other);
    return *add(own, std::move(opened), {}).opened.order;
}

Connection::Named& Connection::byName(const std::string& name) {
    if (const auto known = orders_.find(keyOfName(name)); known != orders_.end()) return known->second;
    const std::optional<KeptCollation> row = kept(name);
    if (row) return openKeptAs(name, *row);
    throw Failure(Exit::usage, "no collation " + name +
                                   " is loaded or kept in this database; name a CHARSET/COLLATION, " +
                                   "or SELECT nls_collation_load('" + name + "', 'CHARSET/COLLATION')");
}

}  // namespace nls::sqlite
