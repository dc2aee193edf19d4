#include "tests/real/charset_model.hpp"

#include <stdexcept>

namespace nls::real {

uint32_t onlyCodePoint(ByteView utf8) {
    if (utf8.empty()) return kNone;
    const unsigned first = utf8[0];
    const std::size_t size = first < 0x80 ? 1 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
    if (utf8.size() != size) return kNone;
    constexpr unsigned char payload[] = {0, 0x7F, 0x1F, 0x0F, 0x07};
    uint32_t value = first & payload[size];
    for (std::size_t at = 1; at < size; ++at) value = value << 6 | (utf8[at] & 0x3FU);
    return value;
}

const CharsetModel& CharsetModel::of(const std::string& name) {
    static std::map<std::string, std::unique_ptr<CharsetModel>> models;
    auto& model = models[name];
    if (model == nullptr) model.reset(new CharsetModel(RealFile::shared().charset(name)));
    return *model;
}

CharsetModel::CharsetModel(const Name& name)
    : name_(name.text),
      isMultiByte_(name.family == Family::multiByte),
      decode_(0x10000, kNone),
      encode_(kCodePoints, kNone) {
    if (name.isUnicode()) throw std::runtime_error(name_ + " is no legacy charset");
    learnCodes();
    learnCodePoints();
}

void CharsetModel::append(Bytes& text, uint32_t code) const {
    if (code > 0xFF) text.push_back(static_cast<unsigned char>(code >> 8));
    text.push_back(static_cast<unsigned char>(code));
}

uint32_t CharsetModel::exactCode(uint32_t codePoint) const {
    const uint32_t code = encode(codePoint);
    return code != kNone && decode_[code] == codePoint ? code : kNone;
}

void CharsetModel::learnCodes() {
    const nlsConversion& conversion = RealFile::shared().conversion(name_, "UTF-8");
    const nlsAttribStruct& attributes = *conversion.source->attrib;
    for (unsigned first = 0; first <= 0xFF; ++first)
        trails_[first] = isMultiByte_ ? attributes.lengthMap[first] & 0x07 : 0;
    Bytes text, target(16);
    for (uint32_t code = 0; code <= 0xFFFF; ++code) {
        if (code > 0xFF && (trails_[code >> 8] != 1 || (code & 0xFF) == 0)) continue;
        text.clear();
        append(text, code);
        uint32_t count = 0;
        const nlsStatus status =
            convertBytes(target.data(), static_cast<int32_t>(target.size()), text.data(),
                         static_cast<int32_t>(text.size()), nullptr, 0, conversion.table, &count, 0);
        if (status == NLS_OK) decode_[code] = onlyCodePoint({target.data(), count});
    }
}

void CharsetModel::learnCodePoints() {
    const nlsConvTable* const table = RealFile::shared().table("UTF-8", name_);
    const Name& utf8 = RealFile::shared().charset("UTF-8");
    Bytes text;
    unsigned char target[4];
    for (uint32_t codePoint = 0; codePoint < kCodePoints; ++codePoint) {
        if (codePoint % 0x10000 == 0 && isEmptyPlane(codePoint)) {
            codePoint += 0xFFFF;
            continue;
        }
        text.clear();
        real::append(text, codePoint, utf8);
        uint32_t count = 0;
        const nlsStatus status =
            convertBytes(target, 4, text.data(), static_cast<int32_t>(text.size()), nullptr, 0, table, &count, 0);
        if (count != 1 && count != 2) throw std::runtime_error(name_ + ": no character of one or two bytes");
        const uint32_t code = count == 1 ? target[0] : static_cast<uint32_t>(target[0] << 8 | target[1]);
        if (status == NLS_OK)
            encode_[codePoint] = code;
        else if (status == NLS_CONV_SUBST)
            substitute_ = code;
    }
}

// Whether a whole plane becomes substitutes. The first plane has been learnt by then.
bool CharsetModel::isEmptyPlane(uint32_t firstCodePoint) const {
    if (firstCodePoint == 0) return false;
    Bytes text, want;
    for (uint32_t codePoint = firstCodePoint; codePoint <= (firstCodePoint | 0xFFFF); ++codePoint) {
        real::append(text, codePoint, RealFile::shared().charset("UTF-8"));
        append(want, substitute_);
    }
    return convert(RealFile::shared().table("UTF-8", name_), text).bytes == want;
}

}  // namespace nls::real
