#include <limits>
#include <stdexcept>

#include "integrations/sqlite/functions.hpp"
#include "integrations/sqlite/match.hpp"
#include "integrations/sqlite/order_key.hpp"

namespace nls::sqlite {
namespace {

constexpr int kPure = SQLITE_DETERMINISTIC | SQLITE_INNOCUOUS;
constexpr const char* kUsualOrder = "UTF-8/basic";

Order& orderOf(const Call& call, int number, Mode usual) {
    const std::string name = call.text(number);
    return call.connection.order(name.empty() ? kUsualOrder : name, call.text(number + 1), usual);
}

// nls_like(pattern, text [, escape [, order [, mode]]])
void runLike(const Call& call) {
    const std::string escape = call.text(2);
    const ByteView sign{reinterpret_cast<const unsigned char*>(escape.data()), escape.size()};
    if (!sign.empty() && firstCharacter(sign).bytes.size() != sign.size()) {
        throw std::invalid_argument("the escape is one character, or null or '' for none");
    }
    Order& order = orderOf(call, 3, Mode::fold);
    sqlite3_result_int(call.context, like(order, call.bytes(0), call.bytes(1), sign) ? 1 : 0);
}

// nls_find(text, pattern [, order [, mode]])
void runFind(const Call& call) {
    Order& order = orderOf(call, 2, Mode::fold);
    sqlite3_result_int64(call.context, static_cast<sqlite3_int64>(find(order, call.bytes(0), call.bytes(1))));
}

// nls_key(text, order [, mode])
void runKey(const Call& call) {
    Order& order = orderOf(call, 1, Mode::exact);
    call.answerBlob(keyOf(order, call.bytes(0)));
}

using ChangeCase = nlsStatus (*)(const nlsLocale*, nlsTlsBlock*, const nlsStr*, nlsStr*);

// Of one piece that is valid UTF-8, in front of its NUL. Forms are at most three bytes for one.
void changePiece(ChangeCase change, const nlsLocale* locale, ByteView piece, Bytes& result) {
    constexpr std::size_t growth = 3;
    if (piece.empty()) return;
    if (piece.size() > std::numeric_limits<int32_t>::max() / growth - 1) throw std::length_error("text too long");
    Bytes source(piece.begin(), piece.end());
    source.push_back(0);
    const std::size_t begin = result.size(), room = piece.size() * growth + 1;
    result.resize(begin + room);
    const nlsStr from{source.data(), static_cast<int32_t>(source.size()), static_cast<uint32_t>(piece.size())};
    nlsStr to{result.data() + begin, static_cast<int32_t>(room), 0};
    const nlsStatus status = change(locale, nullptr, &from, &to);
    if (status != NLS_OK) throw std::runtime_error("case can't be changed (status " + std::to_string(status) + ")");
    result.resize(begin + to.strLength);
}

// Bytes that are no UTF-8, and NULs, stay as they are between pieces that are changed.
void runCase(const Call& call, ChangeCase change) {
    const std::string table = call.text(1);
    const nlsLocale* const locale = call.connection.library().utf8(table.empty() ? "basic" : table);
    ByteView text = call.bytes(0);
    Bytes result;
    result.reserve(text.size() + 16);
    while (!text.empty()) {
        std::size_t size = 0;
        const auto isLetter = [&] {
            if (size == text.size()) return false;
            const Character next = firstCharacter(text.subspan(size));
            if (next.isBroken() || next.value == 0) return false;
            size += next.bytes.size();
            return true;
        };
        while (isLetter()) {
        }
        changePiece(change, locale, text.first(size), result);
        if (size < text.size()) result.push_back(text[size++]);
        text = text.subspan(size);
    }
    call.answer(result);
}

// nls_upper(text [, case table]), nls_lower(text [, case table])
void runUpper(const Call& call) {
    runCase(call, &nlsUpperCase);
}
void runLower(const Call& call) {
    runCase(call, &nlsLowerCase);
}

// Converts all, growing the target as needed. Through two tables the middle is as large as the target.
nlsStatus convertAll(const nlsConvTable* table, ByteView text, Bytes& target) {
    constexpr std::size_t most = std::size_t{1} << 30;
    constexpr int32_t twoSteps = 7;
    Bytes middle;
    for (std::size_t size = text.size() * 4 + 64;; size *= 2) {
        if (size > most) throw std::length_error("text too long");
        target.resize(size);
        if (nlsConversionType(table) == twoSteps) middle.resize(size);
        uint32_t length = 0;
        const nlsStatus status = convertBytes(
            target.data(), static_cast<int32_t>(size), text.data(), static_cast<int32_t>(text.size()),
            middle.empty() ? nullptr : middle.data(), static_cast<int32_t>(middle.size()), table, &length, 0);
        if (status == NLS_BUF_SMALL && size < most / 2) continue;
        target.resize(status == NLS_OK || status == NLS_CONV_SUBST ? length : 0);
        return status;
    }
}

// nls_convert(value, from, to [, what becomes of characters that `to` lacks: 'strict', 'subst' or 'null'])
void runConvert(const Call& call) {
    const std::string lacked = call.text(3);
    if (!lacked.empty() && lacked != "strict" && lacked != "subst" && lacked != "null") {
        throw std::invalid_argument("unknown way \"" + lacked + "\"; 'strict', 'subst' and 'null' are known");
    }
    const nlsConversion* const conversion = call.connection.library().conversion(call.text(1), call.text(2));
    const ByteView text = call.bytes(0);
    Bytes target;
    const nlsStatus status = text.empty() ? NLS_OK : convertAll(conversion->table, text, target);
    const bool isTold = status == NLS_CONV_SUBST && lacked != "subst";
    if ((isTold || (status != NLS_OK && status != NLS_CONV_SUBST)) && lacked == "null") {
        return sqlite3_result_null(call.context);
    }
    if (isTold) {
        throw std::runtime_error(std::string(conversion->target->charsetName) +
                                 " lacks a character of the text, or the text isn't " +
                                 conversion->source->charsetName +
                                 "; a fourth argument 'subst' puts a substitute, 'null' "
                                 "answers null");
    }
    if (status != NLS_OK && status != NLS_CONV_SUBST) {
        throw std::runtime_error(std::string("the text isn't ") + conversion->source->charsetName + " (status " +
                                 std::to_string(status) + "); a fourth argument 'null' answers null");
    }
    if ((conversion->target->attrib->flags & NLS_CHARSET_UTF8) != 0) return call.answer(target);
    call.answerBlob(target);
}

constexpr Function functions[] = {
    {"nls_like", 2, 5, kPure, 2, &runLike},   {"nls_find", 2, 4, kPure, 2, &runFind},
    {"nls_key", 2, 3, kPure, 2, &runKey},     {"nls_convert", 3, 4, kPure, 3, &runConvert},
    {"nls_upper", 1, 2, kPure, 1, &runUpper}, {"nls_lower", 1, 2, kPure, 1, &runLower},
};

}  // namespace

int registerTextFunctions(sqlite3* db, const std::shared_ptr<Connection>& connection) {
    for (const Function& function : functions) {
        if (const int status = registerFunction(db, connection, function); status != SQLITE_OK) return status;
    }
    return SQLITE_OK;
}

}  // namespace nls::sqlite
