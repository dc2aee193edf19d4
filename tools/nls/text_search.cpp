#include "tools/nls/text_search.hpp"

#include "tools/nls/failure.hpp"

namespace nls::tool {
namespace {

constexpr std::size_t usualStep = 4096;
constexpr std::size_t longestCharacter = 8;

}  // namespace

std::size_t soundPrefix(const nlsLocale* locale, ByteView text) {
    uint32_t chars = 0, bytes = 0;
    if (text.empty()) return 0;
    if (nlsValidateString(locale, nullptr, text.data(), static_cast<int32_t>(text.size()), 0, &chars) == NLS_OK)
        return text.size();
    (void)nlsCountBytes(locale, nullptr, text.data(), static_cast<int32_t>(chars), &bytes);
    return bytes;
}

TextSearch::TextSearch(const Order& order, ByteView pattern)
    : order_(order),
      pattern_(pattern.begin(), pattern.end()),
      step_(usualStep + longestCharacter * pattern.size()),
      window_(step_ + longestCharacter * pattern.size()) {
    pattern_.push_back(0);
}

std::optional<std::size_t> TextSearch::search(ByteView line, Matches matches, std::vector<Span>& spans) {
    fault_.reset();
    if (pattern_.size() == 1) {
        spans.push_back({line.size(), line.size()});
        return fault_;
    }
    line_.assign(line.begin(), line.end());
    line_.push_back(0);
    for (std::size_t begin = 0; begin < line.size();) {
        const std::size_t end = begin + nlsStrlen(line_.data() + begin);
        if (searchBetweenNuls(begin, end, matches, spans)) break;
        begin = end + 1;
    }
    return fault_;
}

// True: no more is wanted.
bool TextSearch::searchBetweenNuls(std::size_t begin, std::size_t end, Matches matches, std::vector<Span>& spans) {
    while (begin < end) {
        const std::size_t sound = begin + soundPrefix(order_.locale(), {line_.data() + begin, end - begin});
        if (searchSound(begin, sound, matches, spans)) return true;
        if (sound < end && !fault_) fault_ = sound;
        begin = sound + 1;
    }
    return false;
}

bool TextSearch::searchSound(std::size_t begin, std::size_t end, Matches matches, std::vector<Span>& spans) {
    while (begin < end) {
        const std::size_t stop = end - begin <= window_ ? end : begin + wholeCharacters(begin, window_);
        if (const std::optional<Span> match = firstIn(begin, stop)) {
            spans.push_back(*match);
            if (matches == Matches::first) return true;
            begin = match->end;
        } else if (stop == end) {
            return false;
        } else {
            begin += wholeCharacters(begin, step_);
        }
    }
    return false;
}

std::optional<Span> TextSearch::firstIn(std::size_t begin, std::size_t end) {
    uint32_t pos = 0, behind = 0;
    const unsigned char* found = nullptr;
    const unsigned char saved = line_[end];
    line_[end] = 0;
    const nlsStatus status = nlsSearchForw(order_.locale(), nullptr, pattern_.data(), line_.data() + begin,
                                           order_.mode(), &pos, &behind, &found);
    line_[end] = saved;
    if (status != NLS_OK)
        throw Failure(Exit::fileTrouble,
                      order_.name() + " can't be searched by (status " + std::to_string(status) + ")");
    if (found == nullptr) return std::nullopt;
    return Span{begin + pos - 1, begin + behind};
}

// Bytes of the whole characters among the next so many.
std::size_t TextSearch::wholeCharacters(std::size_t begin, std::size_t atMost) const {
    uint32_t chars = 0, bytes = 0;
    const unsigned char* const place = line_.data() + begin;
    (void)nlsCountChars(order_.locale(), nullptr, place, static_cast<int32_t>(atMost), &chars);
    (void)nlsCountBytes(order_.locale(), nullptr, place, static_cast<int32_t>(chars), &bytes);
    return bytes;
}

}  // namespace nls::tool
