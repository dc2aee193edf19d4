#include "tools/mkconvmap/case_source.hpp"

#include <unicode/uchar.h>

#include <algorithm>

namespace nls::mkconvmap {

namespace {

constexpr uint32_t kLastCharacter = 0x10FFFF;

class CaseReader {
public:
    CaseReader(const std::filesystem::path& file, bool isBase)
        : file_{file.string(), 0}, folder_(file.parent_path()), isBase_(isBase) {
        for (const Line& line : readSource(file)) read(line);
    }

    CaseSource finish() {
        if (table_.name.empty()) fail(file_, "the case table has no name: a line \"case NAME\" is missing");
        return std::move(table_);
    }

private:
    void read(const Line& line) {
        const std::string& keyword = line.keyword();
        if (keyword == "case") {
            if (!table_.name.empty()) fail(line.place, "the case table has a name already");
            table_.name = checkedName(line.place, line.field(1, "a name"));
            table_.place = line.place;
            line.endsAfter(2);
        } else if (keyword == "like") {
            readLike(line);
        } else if (keyword == "take") {
            line.field(1, "ranges of characters");
            for (std::size_t at = 1; at < line.fields.size(); ++at)
                table_.taken.push_back(range(line, line.fields[at]));
        } else if (keyword == "upper") {
            readOwn(line, table_.upper);
        } else if (keyword == "lower") {
            readOwn(line, table_.lower);
        } else {
            fail(line.place, "\"" + keyword + "\" is none of case, like, take, upper, lower");
        }
    }

    void readLike(const Line& line) {
        if (isBase_) fail(line.place, "a case table that others are like is like no other itself");
        const std::filesystem::path file = folder_ / (line.field(1, "a case table") + ".txt");
        if (!std::filesystem::exists(file)) fail(line.place, "there is no " + file.string());
        CaseSource base = CaseReader{file, true}.finish();
        table_.taken = std::move(base.taken);
        table_.upper = std::move(base.upper);
        table_.lower = std::move(base.lower);
        line.endsAfter(2);
    }

    static CharacterRange range(const Line& line, const std::string& field) {
        const std::size_t dash = field.find('-');
        const uint32_t first = hexNumber(line.place, field.substr(0, dash), kLastCharacter);
        const uint32_t last =
            dash == std::string::npos ? first : hexNumber(line.place, field.substr(dash + 1), kLastCharacter);
        if (last < first) fail(line.place, "the range " + field + " ends before it begins");
        return {first, last};
    }

    static void readOwn(const Line& line, std::map<char32_t, CaseSource::Own>& own) {
        const char32_t character = hexNumber(line.place, line.field(1, "a character"), kLastCharacter);
        const char32_t form = hexNumber(line.place, line.field(2, "its form"), kLastCharacter);
        line.endsAfter(3);
        own.insert_or_assign(character, CaseSource::Own{line.place, form});
    }

    Place file_;
    std::filesystem::path folder_;
    bool isBase_;
    CaseSource table_;
};

}  // namespace

bool CaseSource::takes(char32_t character) const {
    return std::any_of(taken.begin(), taken.end(), [character](const CharacterRange& range) {
        return character >= range.first && character <= range.last;
    });
}

char32_t CaseSource::formOf(char32_t character, CaseForm form) const {
    const auto found = own(form).find(character);
    if (found != own(form).end()) return found->second.form;
    const auto codePoint = static_cast<UChar32>(character);
    return static_cast<char32_t>(form == CaseForm::upper ? u_toupper(codePoint) : u_tolower(codePoint));
}

CaseSource readCase(const std::filesystem::path& file) {
    return CaseReader{file, false}.finish();
}

}  // namespace nls::mkconvmap
