#include "integrations/sqlite/library.hpp"

#include <dlfcn.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <mutex>

#include "tools/nls/failure.hpp"
#include "tools/nls/icu_install.hpp"
#include "tools/nls/order_name.hpp"

namespace nls::sqlite {
namespace {

namespace fs = std::filesystem;
using tool::Exit;
using tool::Failure;

std::mutex& makers() {
    static std::mutex mutex;
    return mutex;
}

bool isThere(const fs::path& path) {
    std::error_code ignored;
    return fs::exists(path, ignored);
}

// The folder of the file that holds this code.
fs::path ownFolder() {
    Dl_info info;
    if (dladdr(reinterpret_cast<const void*>(&ownFolder), &info) == 0 || info.dli_fname == nullptr) return {};
    std::error_code failed;
    const fs::path path = fs::canonical(info.dli_fname, failed);
    return failed ? fs::path{} : path.parent_path();
}

std::string findDataFile() {
    if (const char* const file = std::getenv("ZELCONV"); file != nullptr && *file != 0) return file;
    std::vector<fs::path> places;
    if (const char* const folder = std::getenv("QRD"); folder != nullptr && *folder != 0) {
        places.emplace_back(fs::path(folder) / "convmap.cp");
    }
    for (const char* const way : {NLS_DATA_FROM_EXTENSION, "../../share/nls/convmap.cp"}) {
        const fs::path place = (ownFolder() / way).lexically_normal();
        if (places.empty() || places.back() != place) places.push_back(place);
    }
    std::string tried;
    for (const fs::path& place : places) {
        if (isThere(place)) return place;
        tried += (tried.empty() ? "" : ", ") + place.string();
    }
    throw Failure(
        Exit::fileTrouble,
        "no convmap.cp at " + tried + "; name it with SELECT nls_data_file('PATH') or in the environment as ZELCONV");
}

// FNV-1a of 64 bits.
class Print {
public:
    void add(ByteView bytes) {
        for (const unsigned char byte : bytes) value_ = (value_ ^ byte) * 0x100000001B3U;
    }
    void addNumber(uint32_t number) {
        unsigned char bytes[sizeof number];
        std::memcpy(bytes, &number, sizeof number);
        add(bytes);
    }
    void addConverted(ByteView text, const nlsConvTable* table) {
        unsigned char target[4096];
        uint32_t length = 0;
        const nlsStatus status =
            nlsConvertBytes(target, sizeof target, text.data(), static_cast<int32_t>(text.size()), table, &length);
        addNumber(static_cast<uint32_t>(status));
        addNumber(length);
        add(ByteView{target}.first(std::min<std::size_t>(length, sizeof target)));
    }
    uint64_t value() const { return value_; }

private:
    uint64_t value_ = 0xCBF29CE484222325U;
};

void appendUtf8(uint32_t code, Bytes& text) {
    const auto tail = [&](unsigned shift) {
        text.push_back(static_cast<unsigned char>(0x80 | ((code >> shift) & 0x3F)));
    };
    if (code < 0x80) return text.push_back(static_cast<unsigned char>(code));
    if (code < 0x800) {
        text.push_back(static_cast<unsigned char>(0xC0 | code >> 6));
    } else if (code < 0x10000) {
        text.push_back(static_cast<unsigned char>(0xE0 | code >> 12));
        tail(6);
    } else {
        text.push_back(static_cast<unsigned char>(0xF0 | code >> 18));
        tail(12);
        tail(6);
    }
    tail(0);
}

// In runs of 256 code points, which no charset takes more than 4 bytes a character for.
void addAllCharacters(const nlsConvTable* table, Print& print) {
    constexpr uint32_t end = 0x110000, run = 256;
    Bytes text;
    for (uint32_t first = 0; first < end; first += run) {
        if (first >= 0xD800 && first < 0xE000) continue;
        text.clear();
        for (uint32_t code = first; code < first + run; ++code) appendUtf8(code, text);
        print.addConverted(text, table);
    }
}

void addWayToSjis(const nlsLocale& locale, Print& print) {
    if (getSjisHandles(&locale) != NLS_OK) return;
    const nlsAttribStruct& sjis = *locale.attrib->sjisAttrib;
    print.add(sjis.lengthMap);
    print.add(sjis.trailMap);
    const nlsConvTable* const table = locale.attrib->sjisConversion->table;
    for (unsigned first = 1; first < 256; ++first) {
        unsigned char code[] = {static_cast<unsigned char>(first), 0};
        print.addConverted(ByteView{code}.first(1), table);
        for (unsigned second = 1; (locale.attrib->lengthMap[first] & 7U) != 0 && second < 256; ++second) {
            code[1] = static_cast<unsigned char>(second);
            print.addConverted(code, table);
        }
    }
}

// As one of `known` spells it: a stored collation is the same however it was asked for.
std::string spelled(const std::string& name, const std::vector<std::string>& known) {
    const auto found = std::find_if(known.begin(), known.end(),
                                    [&](const std::string& one) { return nlsStbcmp(one.c_str(), name.c_str()) == 0; });
    return found == known.end() ? name : *found;
}

std::vector<std::string> collationNames(const tool::Session& session) {
    constexpr uint16_t collationEntry = 4;
    std::vector<std::string> names = tool::icuNames();
    for (const nlsTocEntry& entry : session.contents()) {
        if (entry.entryType == collationEntry) names.emplace_back(entry.name2);
    }
    return names;
}

std::string refusalOf(nlsStatus status, const stored::StoredCollation& stored, const std::string& dataFile) {
    const std::string charset = stored::charsetOf(stored.record);
    if (status == NLS_BAD_COLLATION) return "its record is damaged";
    if (status == NLS_NO_ATTRIB_TABLE) return dataFile + " has no charset " + charset;
    if (status == NLS_NO_CASE_TABLE) return dataFile + " has no case table \"basic\" for " + charset;
    if (stored.record.dbCollKind == kIcuOrder && (status == NLS_NO_MEM || status == NLS_NO_COLL_TABLE)) {
        const std::string collation = stored::collationOf(stored.record);
        const std::string reason = tool::judgeIcuName(collation).reason;
        return collation + " can't be had of ICU" + (reason.empty() ? "" : ": " + reason) + "; nls doctor tells more";
    }
    return "status " + std::to_string(status);
}

}  // namespace

StoredLocale::StoredLocale(tool::Session& session, const stored::StoredCollation& stored) {
    if (!stored.wordBreakCharset.empty())
        throw Failure(Exit::usage, "it has a word-break table, which has no use here");
    const nlsStatus status = session.openStored(stored, nullptr, block_, locale_);
    if (status != NLS_OK) throw Failure(Exit::fileTrouble, refusalOf(status, stored, session.dataFile()));
}

StoredLocale::~StoredLocale() {
    void* block = nullptr;
    uint32_t size = 0;
    if (locale_ != nullptr) nlsCloseDBLocale(locale_, &block, &size);
}

Library::~Library() {
    const std::lock_guard<std::mutex> guard(makers());
    storedSession_.reset();
    session_.reset();
}

std::string Library::dataFile() const {
    if (session_) return session_->dataFile();
    return given_.empty() ? findDataFile() : given_;
}

void Library::useDataFile(const std::string& path) {
    const std::lock_guard<std::mutex> guard(makers());
    if (session_) {
        throw Failure(Exit::usage, session_->dataFile() +
                                       " is in use by this connection already; name another data file before anything "
                                       "else, on a new connection");
    }
    session_ = std::make_unique<tool::Session>(path);
    given_ = path;
}

tool::Session& Library::session() {
    if (!session_) session_ = std::make_unique<tool::Session>(dataFile());
    return *session_;
}

tool::Session& Library::storedSession() {
    if (!storedSession_) storedSession_ = std::make_unique<tool::Session>(session().dataFile());
    return *storedSession_;
}

const nlsConversion* Library::toCharset(const nlsLocale& locale) {
    if ((locale.attrib->flags & NLS_CHARSET_UTF8) != 0) return nullptr;
    const std::string charset = locale.charsetName;
    if ((locale.attrib->flags & (NLS_CHARSET_UNITS16 | NLS_CHARSET_UNITS32)) != 0) {
        throw Failure(Exit::usage, charset + " has NULs in its texts and can't be compared; take UTF-8");
    }
    const nlsConversion* const conversion = session().conversion(session().locale("UTF-8"), session().locale(charset));
    if (conversion == nullptr || !TextFormer::canForm(*conversion)) {
        throw Failure(Exit::fileTrouble,
                      session().dataFile() + " has no straight conversion from UTF-8 to " + charset + "; take UTF-8");
    }
    return conversion;
}

OpenOrder Library::open(const std::string& name, Mode mode) {
    const std::lock_guard<std::mutex> guard(makers());
    const tool::OrderName parts = tool::parseOrderName(name);
    const std::string charset = spelled(parts.charset, session().charsets());
    const std::string collation =
        parts.collation.empty() ? "basic" : spelled(parts.collation, collationNames(session()));
    const std::string caseName = session().hasCaseTable(charset, "basic") ? "basic" : "";
    const nlsLocale* const locale = session().locale(charset, collation, caseName);
    return {nullptr, std::make_unique<Order>(locale, toCharset(*locale), mode)};
}

OpenOrder Library::open(const stored::StoredCollation& stored, Mode mode) {
    const std::lock_guard<std::mutex> guard(makers());
    OpenOrder opened{std::make_unique<StoredLocale>(storedSession(), stored), nullptr};
    const nlsLocale* const locale = opened.stored->get();
    opened.order = std::make_unique<Order>(locale, toCharset(*locale), mode);
    return opened;
}

const nlsLocale* Library::utf8(const std::string& caseName) {
    const std::lock_guard<std::mutex> guard(makers());
    return session().locale("UTF-8", "", caseName);
}

const nlsConversion* Library::conversion(const std::string& from, const std::string& to) {
    const std::lock_guard<std::mutex> guard(makers());
    const nlsConversion* const found = session().conversion(session().locale(from), session().locale(to));
    if (found == nullptr) {
        throw Failure(Exit::usage, session().dataFile() + " has no conversion from " + from + " to " + to +
                                       "; go by UTF-8 if both have one to it");
    }
    return found;
}

uint64_t Library::print(const Order& order) {
    const std::lock_guard<std::mutex> guard(makers());
    Print print;
    const nlsConversion* const conversion = toCharset(*order.locale());
    if (conversion != nullptr) addAllCharacters(conversion->table, print);
    if ((order.locale()->attrib->flags & NLS_CHARSET_VIA_SJIS) != 0) addWayToSjis(*order.locale(), print);
    return print.value();
}

}  // namespace nls::sqlite
