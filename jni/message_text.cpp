#include "jni/message_text.hpp"

#include "nls/convert.h"
#include "nls/properties.h"
#include "nls/strings.h"

namespace nls {

namespace {

// The records that a conversion works on, each of the size that the library tells; released with the scope.
class Records {
public:
    Records(uint32_t size, bool twoStep) : source_(take(size)) {
        if (source_ != nullptr) target_ = take(size);
        if (target_ != nullptr && twoStep) scratch_ = take(size);
        complete_ = target_ != nullptr && (!twoStep || scratch_ != nullptr);
    }
    ~Records() {
        giveBack(source_);
        giveBack(target_);
        giveBack(scratch_);
    }
    Records(const Records&) = delete;
    Records& operator=(const Records&) = delete;

    bool complete() const { return complete_; }
    nlsStr* source() const { return source_; }
    nlsStr* target() const { return target_; }
    nlsStr* scratch() const { return scratch_; }  // null for a conversion of one step

private:
    static nlsStr* take(uint32_t size) { return static_cast<nlsStr*>(dbut_utmalloc(size)); }
    static void giveBack(nlsStr* record) {
        if (record != nullptr) dbut_utfree(record);
    }

    nlsStr* source_;
    nlsStr* target_ = nullptr;
    nlsStr* scratch_ = nullptr;
    bool complete_ = false;
};

// Whether the text, grown by the worst factor of the conversion, and its NUL fit the UTF-8 buffer.
bool fits(const nlsConversion* conversion, uint32_t length) {
    uint32_t growth = 0;
    if (nlsGetIntConversionProperty(conversion, NLS_PROP_GROWTH, &growth) != NLS_OK) return false;
    return uint64_t{length} * growth + 1 <= kUtf8Size;
}

bool convert(const nlsConversion* conversion, const Records& records, unsigned char* text, unsigned char* utf8,
             unsigned char* middle) {
    const auto length = static_cast<uint16_t>(dbut_stlen(reinterpret_cast<const char*>(text)));
    if (nlsSetString(text, kMessageCapacity, length, records.source()) != NLS_OK) return false;
    if (!fits(conversion, length)) return false;
    if (nlsInitString(utf8, kUtf8Size, records.target()) != NLS_OK) return false;
    if (records.scratch() != nullptr && nlsInitString(middle, kUtf8Size, records.scratch()) != NLS_OK) return false;
    // Below 0: a substitute stands somewhere, and the text is complete.
    return nlsConvertNLS(conversion, nullptr, records.source(), records.scratch(), records.target()) <= NLS_OK;
}

}  // namespace

Utf8Message convertMessage(const nlsMessageContext& context, unsigned char* text, unsigned char* utf8) {
    uint32_t recordSize = sizeof(nlsStr);
    uint32_t twoStep = 0;
    // A handle or a conversion that can't answer fails the conversion as well.
    (void)!nlsGetIntNLSProperty(context.zlmNlsHandle, NLS_PROP_STR_SIZE, &recordSize);
    (void)!nlsGetIntConversionProperty(context.zlmConversion, NLS_PROP_TWO_STEP, &twoStep);
    const Records records{recordSize, twoStep != 0};
    if (!records.complete()) return {NLS_CONVMAP_NO_MEMORY, 0};
    unsigned char middle[kUtf8Size];
    if (!convert(context.zlmConversion, records, text, utf8, middle)) return {NLS_CONVMAP_NO_CONVERSION, 0};
    return {NLS_CONVMAP_OK, records.target()->strLength};
}

}  // namespace nls
