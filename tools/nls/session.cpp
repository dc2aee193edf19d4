#include "tools/nls/session.hpp"

#include <algorithm>

#include "tools/nls/failure.hpp"
#include "tools/nls/icu_install.hpp"
#include "tools/nls/nearest_names.hpp"

namespace nls::tool {
namespace {

constexpr std::size_t smallestBlock = std::size_t{1} << 18;
constexpr std::size_t largestBlock = std::size_t{1} << 24;

// Entry types of the contents.
constexpr uint16_t caseEntry = 3;
constexpr uint16_t collationEntry = 4;

std::string openingFailure(nlsStatus status) {
    switch (status) {
        case NLS_BAD_MAGIC:
            return "is no data file of nls";
        case NLS_BAD_VERSION:
            return "is a data file of a version that this program doesn't know";
        case NLS_BAD_TOC:
            return "is damaged: its table of contents can't be read";
        default:
            return "can't be opened as a data file (status " + std::to_string(status) + ")";
    }
}

}  // namespace

Session::Session(const std::string& dataFile) : file_(dataFile) {
    nlsStatus status = NLS_NO_MEM;
    for (std::size_t size = smallestBlock; status == NLS_NO_MEM && size <= largestBlock; size *= 2) {
        buffers_.clear();
        status = open(size);
    }
    if (status != NLS_OK) throw Failure(Exit::fileTrouble, dataFile + " " + openingFailure(status));
}

Session::~Session() {
    nlsClose(handle_);
}

nlsStatus Session::open(std::size_t blockSize) {
    buffers_.push_back(std::make_unique<uint64_t[]>(blockSize / sizeof(uint64_t)));
    bufferSize_ = blockSize;
    return nlsInit(static_cast<uint32_t>(file_.descriptor()), buffers_.back().get(), static_cast<int32_t>(blockSize),
                   &nlsToolRead, &handle_);
}

template <typename Create>
nlsStatus Session::withRoom(Create create, nlsStatus full) {
    nlsStatus status = create();
    for (std::size_t size = smallestBlock; status == full && size <= largestBlock; size *= 2) {
        if (!addBuffer(size)) break;
        status = create();
    }
    return status;
}

bool Session::addBuffer(std::size_t size) {
    buffers_.push_back(std::make_unique<uint64_t[]>(size / sizeof(uint64_t)));
    earlierBuffers_ += bufferSize_ - handle_->freeBytes;
    bufferSize_ = size;
    return nlsAddBuffer(handle_, buffers_.back().get(), static_cast<int32_t>(size)) == NLS_OK;
}

std::vector<nlsTocEntry> Session::contents() const {
    return {handle_->toc, handle_->toc + (handle_->tocCount > 0 ? handle_->tocCount : 0)};
}

std::vector<std::string> Session::charsets() const {
    constexpr uint16_t attributeTable = 2;
    std::vector<std::string> names;
    for (const nlsTocEntry& entry : contents()) {
        if (entry.entryType == attributeTable) names.emplace_back(entry.name1);
    }
    return names;
}

nlsLocale* Session::locale(const std::string& charset) {
    nlsLocale* made = nullptr;
    const nlsStatus status = withRoom(
        [&] { return nlsCreateLocale(handle_, charset.c_str(), NLS_NO_COLLATION, nullptr, &made); }, NLS_NO_MEM);
    // A locale may stand though its companion for comparison couldn't be made; conversion doesn't need that.
    if (made != nullptr) return made;
    if (status == NLS_NO_ATTRIB_TABLE) {
        throw Failure(Exit::usage, "unknown charset \"" + charset + "\"" + nearestNamesHint(charset, charsets()) +
                                       "; nls list shows all");
    }
    throw Failure(Exit::fileTrouble, dataFile() + ": the record of charset \"" + charset + "\" can't be read (status " +
                                         std::to_string(status) + ")");
}

nlsLocale* Session::locale(const std::string& charset, const std::string& collation, const std::string& caseName) {
    nlsLocale* const plain = locale(charset);
    if (collation.empty() && caseName.empty()) return plain;
    if (isIcuName(collation)) return icuLocale(*plain, collation, caseName);
    nlsLocale* made = nullptr;
    const char* const collationName = collation.empty() ? NLS_NO_COLLATION : collation.c_str();
    const nlsStatus status = withRoom(
        [&] {
            return nlsCreateLocale(handle_, charset.c_str(), collationName,
                                   caseName.empty() ? nullptr : caseName.c_str(), &made);
        },
        NLS_NO_MEM);
    if (status != NLS_OK) refuseLocale(status, plain->charsetName, collation, caseName);
    return made;
}

// Its NLS_NO_MEM also says that ICU can't be had. So there is room before it is asked.
nlsLocale* Session::icuLocale(const nlsLocale& plain, const std::string& collation, const std::string& caseName) {
    constexpr uint32_t plenty = 4096;
    if ((plain.attrib->flags & NLS_CHARSET_UTF8) == 0) {
        throw Failure(Exit::usage, std::string(plain.charsetName) + " has no collation \"" + collation +
                                       "\": ICU's are for UTF-8 alone; convert the text first");
    }
    if (!caseName.empty()) locale(plain.charsetName, "", caseName);
    if (handle_->freeBytes < plenty) addBuffer(smallestBlock);
    nlsLocale* made = nullptr;
    const nlsStatus status = nlsCreateLocale(handle_, plain.charsetName, collation.c_str(),
                                             caseName.empty() ? nullptr : caseName.c_str(), &made);
    if (status == NLS_NO_MEM || status == NLS_NO_COLL_TABLE) refuseIcu(plain.charsetName, collation);
    if (status != NLS_OK) refuseLocale(status, plain.charsetName, collation, caseName);
    return made;
}

void Session::refuseIcu(const std::string& charset, const std::string& collation) const {
    const IcuVerdict verdict = judgeIcuName(collation);
    if (verdict.kind == IcuVerdict::Kind::unknownName) {
        throw Failure(Exit::usage, "ICU knows no collation \"" + collation + "\"" +
                                       nearestNamesHint(collation, icuNames()) + "; nls list --icu shows all");
    }
    if (verdict.kind == IcuVerdict::Kind::notLoaded) {
        const IcuFolder folder = icuFolder();
        throw Failure(Exit::fileTrouble, charset + "/" + collation + " wants ICU, which can't be loaded: " +
                                             verdict.reason + " (" + folder.source + "); nls doctor tells more");
    }
    throw Failure(Exit::fileTrouble, charset + "/" + collation + " can't be opened: " +
                                         (verdict.opened() ? "not enough memory" : verdict.reason));
}

void Session::refuseLocale(nlsStatus status, const std::string& charset, const std::string& collation,
                           const std::string& caseName) const {
    if (status == NLS_NO_COLL_TABLE) refuseCollation(charset, collation);
    if (status == NLS_NO_CASE_TABLE) {
        throw Failure(Exit::usage, charset + " has no case table \"" + caseName + "\"" +
                                       nearestNamesHint(caseName, namesOf(caseEntry, charset)));
    }
    if (status == NLS_BAD_COLLATION) {
        throw Failure(Exit::fileTrouble, dataFile() + ": the collation " + charset + "/" + collation +
                                             " can't be used: its record is unsound, or it belongs to a sort of the "
                                             "site's own that isn't there");
    }
    throw Failure(Exit::fileTrouble, dataFile() + ": " + charset + "/" + collation + " can't be loaded (status " +
                                         std::to_string(status) + ")");
}

// All of them are told where none comes near.
void Session::refuseCollation(const std::string& charset, const std::string& collation) const {
    const std::vector<std::string> own = namesOf(collationEntry, charset);
    std::string hint = nearestNamesHint(collation, own);
    if (hint.empty() && nlsStbcmp(charset.c_str(), "UTF-8") == 0) hint = nearestNamesHint(collation, icuNames());
    if (hint.empty()) {
        for (const std::string& name : own) hint += (hint.empty() ? " (it has " : ", ") + name;
        if (!hint.empty()) hint += ")";
    }
    throw Failure(Exit::usage, charset + " has no collation \"" + collation + "\"" + hint);
}

std::vector<std::string> Session::namesOf(uint16_t entryType, const std::string& charset) const {
    std::vector<std::string> names;
    for (const nlsTocEntry& entry : contents()) {
        if (entry.entryType != entryType || nlsStbcmp(entry.name1, charset.c_str()) != 0) continue;
        names.emplace_back(entry.name2);
    }
    return names;
}

bool Session::hasCaseTable(const std::string& charset, const std::string& caseName) const {
    const std::vector<std::string> names = namesOf(caseEntry, charset);
    return std::any_of(names.begin(), names.end(),
                       [&](const std::string& name) { return nlsStbcmp(name.c_str(), caseName.c_str()) == 0; });
}

const nlsConversion* Session::conversion(nlsLocale* from, nlsLocale* to) {
    nlsConversion* made = nullptr;
    const nlsStatus status = withRoom([&] { return nlsCreateConversion(handle_, from, to, &made); }, NLS_NO_MEM);
    if (status == NLS_OK) return made;
    if (status == NLS_NO_CONV_TABLE) return nullptr;
    throw Failure(Exit::fileTrouble, dataFile() + ": the conversion from " + from->charsetName + " to " +
                                         to->charsetName + " can't be loaded (status " + std::to_string(status) + ")");
}

// Of a collation of ICU's NLS_NO_MEM also says that ICU can't be had. So there is room before it is asked.
nlsStatus Session::openStored(const stored::StoredCollation& stored, nlsLocale* wordBreakLocale,
                              std::vector<uint64_t>& block, nlsLocale*& made) {
    constexpr uint32_t plenty = 1U << 16;
    constexpr int32_t kindOfIcu = 5;
    const auto open = [&] { return stored::openStored(handle_, stored, wordBreakLocale, block, made); };
    if (handle_->freeBytes < plenty) addBuffer(smallestBlock);
    return stored.record.dbCollKind == kindOfIcu ? open() : withRoom(open, NLS_NO_MEM);
}

uint64_t Session::arenaUsed() const {
    return earlierBuffers_ + bufferSize_ - handle_->freeBytes;
}

}  // namespace nls::tool
