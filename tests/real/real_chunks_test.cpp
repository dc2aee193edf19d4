// Long real text cut between characters: the pieces come out as the whole does.
#include <random>

#include "tests/real/foretold.hpp"

namespace nls::real {
namespace {

using Random = std::mt19937;

// The text in pieces of 1 to `longest` characters, each converted by itself.
Outcome convertInPieces(const Route& route, const Bytes& text, std::size_t longest, Random& random) {
    const std::vector<std::size_t> places = characterPlaces(route.from, text);
    Outcome whole{NLS_OK, 0, {}};
    for (std::size_t at = 0; at + 1 < places.size();) {
        const std::size_t end = std::min(at + 1 + random() % longest, places.size() - 1);
        const Outcome piece = convert(route.table, ByteView{text}.subspan(places[at], places[end] - places[at]));
        EXPECT_TRUE(piece.status == NLS_OK || piece.status == NLS_CONV_SUBST) << piece.status;
        if (piece.status != NLS_OK) whole.status = piece.status;
        whole.bytes.insert(whole.bytes.end(), piece.bytes.begin(), piece.bytes.end());
        at = end;
    }
    return whole;
}

void expectPiecesMakeTheWhole(const std::string& from, const std::string& to, const Bytes& text, Random& random) {
    const Route route(from, to);
    const Outcome whole = convert(route.table, text);
    forEachCpuLevel([&] {
        for (const std::size_t longest : {9U, 90U, 900U}) {
            const Outcome pieces = convertInPieces(route, text, longest, random);
            EXPECT_EQ(firstDifference(pieces.bytes, whole.bytes), "") << from << " to " << to;
            EXPECT_EQ(pieces.status, whole.status) << from << " to " << to;
        }
    });
}

// UTF-8 text of all languages, most of which a charset can't hold; and back from what it holds. Sixteen and thirty-two
// bits by the forms that the file has tables of its own for.
TEST(Chunks, PiecesMakeTheWhole) {
    Random random(3);
    for (const std::string& charset : RealFile::shared().legacyCharsets()) {
        const bool isMultiByte = CharsetModel::of(charset).isMultiByte();
        for (const char* const form : {"UTF-8", "UTF-16LE", "UTF-16BE"}) {
            if (form != std::string{"UTF-8"} && !isMultiByte) continue;
            expectPiecesMakeTheWhole(form, charset, realText(form), random);
            expectPiecesMakeTheWhole(charset, form, realText(charset), random);
        }
    }
    for (const std::string& from : RealFile::shared().unicodeForms())
        for (const std::string& to : RealFile::shared().unicodeForms())
            if (from != to) expectPiecesMakeTheWhole(from, to, realText(from), random);
}

// The library and the model count the same characters.
TEST(Chunks, CharactersAreCountedAlike) {
    for (const Name& charset : RealFile::shared().charsets()) {
        if (charset.family == Family::units16 || charset.family == Family::units32) continue;
        const Bytes& text = realText(charset.text);
        const nlsLocale* const locale = RealFile::shared().conversion(charset.text, "UTF-16").source;
        uint32_t count = 0;
        EXPECT_EQ(nlsCountChars(locale, nullptr, text.data(), static_cast<int32_t>(text.size()), &count), NLS_OK);
        EXPECT_EQ(count, characterPlaces(charset, text).size() - 1) << charset.text;
    }
}

}  // namespace
}  // namespace nls::real
