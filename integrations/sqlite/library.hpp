// The library for one connection: a data file, opened when it is first needed, and the locales and conversions made
// of it.
//
// The library takes no lock, and what it keeps for the whole process (ICU's builds) is unguarded. So all that makes
// objects runs under one mutex of the process. Finished objects are used without it, by the connection's thread.
#pragma once

#include <memory>
#include <string>

#include "integrations/sqlite/order.hpp"
#include "tools/nls/session.hpp"
#include "tools/stored/stored_file.hpp"

namespace nls::sqlite {

// A database locale, closed at its end. Stands on a session that outlives it.
class StoredLocale {
public:
    // Throws where the library refuses.
    StoredLocale(tool::Session& session, const stored::StoredCollation& stored);
    ~StoredLocale();
    StoredLocale(const StoredLocale&) = delete;
    StoredLocale& operator=(const StoredLocale&) = delete;

    const nlsLocale* get() const { return locale_; }

private:
    std::vector<uint64_t> block_;
    nlsLocale* locale_ = nullptr;
};

// An order with what it stands on.
struct OpenOrder {
    std::unique_ptr<StoredLocale> stored;  // of an order from a stored collation
    std::unique_ptr<Order> order;
};

class Library {
public:
    Library() = default;
    ~Library();

    // The data file in use, or the one that would be taken: the one given; else that of the environment's ZELCONV; else
    // convmap.cp in its QRD; else the one installed, or built, with the extension. Throws where there is none.
    std::string dataFile() const;
    // Throws once a data file is in use.
    void useDataFile(const std::string& path);

    // `name` is CHARSET/COLLATION, or CHARSET for its collation "basic". Throws a text for the user where it
    // can't be had.
    OpenOrder open(const std::string& name, Mode mode);
    OpenOrder open(const stored::StoredCollation& stored, Mode mode);
    // A locale for changing case.
    const nlsLocale* utf8(const std::string& caseName);
    // Throws where there is none.
    const nlsConversion* conversion(const std::string& from, const std::string& to);

    // A number that stands for all that an order takes from the data file beside its record: the conversion of every
    // character, and the way to Shift-JIS.
    uint64_t print(const Order& order);

private:
    tool::Session& session();
    const nlsConversion* toCharset(const nlsLocale& locale);
    // Locales of stored collations have a session of their own, since names would find them in place of the file's.
    tool::Session& storedSession();

    std::string given_;
    std::unique_ptr<tool::Session> session_, storedSession_;
};

}  // namespace nls::sqlite
