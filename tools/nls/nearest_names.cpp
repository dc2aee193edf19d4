#include "tools/nls/nearest_names.hpp"

#include <algorithm>
#include <array>
#include <numeric>

namespace nls::tool {
namespace {

// Names of other systems whose spelling is far from ours, in small letters and digits alone.
constexpr struct {
    const char* elsewhere;
    const char* here;
} otherNames[] = {
    {"ascii", "ISO8859-1"},    {"usascii", "ISO8859-1"},     {"latin1", "ISO8859-1"},
    {"l1", "ISO8859-1"},       {"latin2", "ISO8859-2"},      {"latin9", "ISO8859-15"},
    {"cyrillic", "ISO8859-5"}, {"hebrew", "ISO8859-8"},      {"hproman8", "ROMAN-8"},
    {"sjis", "SHIFT-JIS"},     {"mskanji", "SHIFT-JIS"},     {"windows31j", "SHIFT-JIS"},
    {"cp932", "SHIFT-JIS"},    {"932", "SHIFT-JIS"},         {"eucjp", "EUCJIS"},
    {"ujis", "EUCJIS"},        {"euckr", "KSC5601"},         {"euccn", "GB2312"},
    {"gbk", "CP936"},          {"gb18030", "CP936"},         {"uhc", "CP949"},
    {"johab", "CP1361"},       {"big5hkscs", "CP950-HKSCS"}, {"hkscs", "CP950-HKSCS"},
    {"tis620", "620-2533"},    {"thai", "620-2533"},         {"windows874", "620-2533"},
    {"utf16le", "UTF-16"},     {"ucs4", "UTF-32"},           {"unicode", "UTF-16"},
    {"ebcdic", "IBM037"},
};

std::string plain(const std::string& name) {
    std::string letters;
    for (const char c : name) {
        if (c >= 'A' && c <= 'Z') letters += static_cast<char>(c + ('a' - 'A'));
        if ((c >= 'a' && c <= 'z') || (c >= '0' && c <= '9')) letters += c;
    }
    return letters;
}

// The name without what different systems write in front of a code page's number.
std::string withoutPrefix(const std::string& name) {
    for (const char* const prefix : {"windows", "win", "ibm", "cp", "ms", "pc", "iso", "csiso", "x"}) {
        const std::size_t length = std::string(prefix).size();
        if (name.size() > length && name.starts_with(prefix) && name[length] >= '0' && name[length] <= '9') {
            return name.substr(length);
        }
    }
    return name;
}

// Insertions, deletions and replacements that turn one word into the other.
std::size_t distance(const std::string& a, const std::string& b) {
    std::vector<std::size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < a.size(); ++i) {
        std::size_t diagonal = row[0]++;
        for (std::size_t j = 0; j < b.size(); ++j) {
            const std::size_t replaced = diagonal + (a[i] == b[j] ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({replaced, row[j] + 1, row[j + 1] + 1});
        }
    }
    return row[b.size()];
}

constexpr std::size_t far = 1000;

std::size_t farness(const std::string& asked, const std::string& name) {
    for (const auto& other : otherNames) {
        if (asked == other.elsewhere && name == other.here) return 0;
    }
    const std::string known = plain(name);
    if (withoutPrefix(asked) == withoutPrefix(known)) return 0;
    if (asked.size() >= 2 && known.starts_with(asked)) return 1;
    const std::size_t edits = std::min(distance(asked, known), distance(withoutPrefix(asked), withoutPrefix(known)));
    return edits * 3 <= std::max(asked.size(), known.size()) ? edits : far;
}

}  // namespace

std::vector<std::string> nearestNames(const std::string& asked, const std::vector<std::string>& known) {
    const std::string word = plain(asked);
    std::vector<std::pair<std::size_t, std::string>> ranked;
    for (const std::string& name : known) {
        if (const std::size_t edits = farness(word, name); edits != far) ranked.emplace_back(edits, name);
    }
    std::stable_sort(ranked.begin(), ranked.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
    std::vector<std::string> names;
    for (std::size_t i = 0; i < ranked.size() && i < 3; ++i) names.push_back(ranked[i].second);
    return names;
}

std::string nearestNamesHint(const std::string& asked, const std::vector<std::string>& known) {
    const std::vector<std::string> names = nearestNames(asked, known);
    std::string list;
    for (std::size_t i = 0; i < names.size(); ++i) {
        list += i == 0 ? "" : i + 1 == names.size() ? " or " : ", ";
        list += names[i];
    }
    return list.empty() ? "" : " (do you mean " + list + "?)";
}

}  // namespace nls::tool
