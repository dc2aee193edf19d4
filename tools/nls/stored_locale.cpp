#include "tools/nls/stored_locale.hpp"

#include "tools/nls/hex_text.hpp"
#include "tools/nls/icu_install.hpp"
#include "tools/nls/input.hpp"
#include "tools/nls/unicode_check.hpp"

namespace nls::tool {
namespace {

[[noreturn]] void refuseStored(nlsStatus status, const stored::StoredCollation& stored, const Session& session) {
    const std::string name = shown(orderNameOf(stored));
    const std::string charset = shown(stored::charsetOf(stored.record));
    if (status == NLS_BAD_COLLATION) {
        throw Failure(
            Exit::badInput,
            "damaged: its image is too short for its kind, tells sizes that it can't have, or lacks the marks "
            "of its kind");
    }
    if (status == NLS_NO_ATTRIB_TABLE) {
        throw Failure(Exit::fileTrouble, session.dataFile() + " has no charset " + charset);
    }
    if (status == NLS_NO_CASE_TABLE) {
        throw Failure(Exit::fileTrouble, session.dataFile() + " has no case table \"basic\" for " + charset);
    }
    if (status == NLS_NO_CONV_TABLE && !stored.wordBreakCharset.empty()) {
        throw Failure(Exit::fileTrouble, session.dataFile() + " has no conversion from " + charset + " to " +
                                             shown(stored.wordBreakCharset) + ", for which its words are completed");
    }
    if (isOfKind(stored, StoredKind::site) && status == NLS_NO_COLL_TABLE) {
        throw Failure(Exit::fileTrouble, name + " wants a sort of the site's own, which doesn't open here");
    }
    if (isOfKind(stored, StoredKind::icu) && (status == NLS_NO_MEM || status == NLS_NO_COLL_TABLE)) {
        const IcuVerdict verdict = judgeIcuName(stored::collationOf(stored.record));
        throw Failure(Exit::fileTrouble, name + " can't be had of ICU" +
                                             (verdict.reason.empty() ? "" : ": " + verdict.reason) +
                                             "; nls doctor tells more");
    }
    throw Failure(Exit::fileTrouble, name + " can't be opened here (status " + std::to_string(status) + ")");
}

}  // namespace

stored::Bytes readWhole(const std::string& path) {
    constexpr std::size_t chunk = std::size_t{1} << 16, most = std::size_t{1} << 26;
    Input input{path};
    stored::Bytes bytes;
    for (;;) {
        const std::size_t size = bytes.size();
        bytes.resize(size + chunk);
        const std::size_t got = input.read(bytes.data() + size, chunk);
        bytes.resize(size + got);
        if (got == 0) return bytes;
        if (bytes.size() > most) throw Failure(Exit::badInput, input.name() + ": more than 64 MiB");
    }
}

stored::StoredCollation readStored(const std::string& path) {
    std::string trouble;
    const std::optional<stored::StoredCollation> stored = stored::fromFileForm(readWhole(path), trouble);
    if (!stored) throw Failure(Exit::badInput, trouble);
    return *stored;
}

std::string shown(const std::string& text) {
    const ByteView bytes{reinterpret_cast<const unsigned char*>(text.data()), text.size()};
    const bool isText = validUtf8(bytes);
    std::string shown;
    for (const unsigned char byte : bytes) {
        const bool isPrintable = byte >= 0x80 ? isText : byte >= 0x20 && byte != 0x7F;
        shown += isPrintable ? std::string(1, static_cast<char>(byte)) : formatted("\\x%02X", unsigned{byte});
    }
    return shown;
}

std::string orderNameOf(const stored::StoredCollation& stored) {
    return stored::charsetOf(stored.record) + "/" + stored::collationOf(stored.record);
}

StoredLocale::StoredLocale(Session& session, const stored::StoredCollation& stored) {
    nlsLocale* second = nullptr;
    if (!stored.wordBreakCharset.empty()) {
        try {
            second = session.locale(stored.wordBreakCharset);
        } catch (const Failure& failure) {
            throw Failure(Exit::fileTrouble, std::string("its word-break table wants a charset: ") + failure.what());
        }
    }
    const nlsStatus status = session.openStored(stored, second, block_, locale_);
    if (status != NLS_OK) refuseStored(status, stored, session);
}

StoredLocale::~StoredLocale() {
    void* block = nullptr;
    uint32_t size = 0;
    if (locale_ != nullptr) nlsCloseDBLocale(locale_, &block, &size);
}

}  // namespace nls::tool
