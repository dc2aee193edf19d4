#include "collation/unicode_key.hpp"

#include "core/base/checks.hpp"
// The key is what the case service writes; that service knows nothing of collations.
#include "strings/case_mapping.hpp"

namespace nls {
namespace {

nlsStatus checkForCase(const nlsLocale& locale) {
    if (const nlsStatus bad = checkLocale(&locale)) return bad;
    return locale.attrib == nullptr ? NLS_NO_ATTRIB : NLS_OK;
}

nlsStatus lowerCaseKey(const nlsLocale& locale, ByteView text, ByteSpan key) {
    if (const nlsStatus bad = checkForCase(locale)) {
        key[0] = 0;
        return bad;
    }
    return mapCase(locale, text, key, CaseForm::lower).status;
}

}  // namespace

nlsStatus unicodeKey(const nlsLocale& locale, ByteView text, ByteSpan key, uint16_t mode) {
    if (text.size() >= key.size()) return NLS_BUF_SMALL;
    if (mode == 0 && !text.empty()) return lowerCaseKey(locale, text, key);
    if (mode > 1 && !text.empty()) return NLS_BAD_COMPARE_MODE;
    if (!text.empty()) std::memmove(key.data(), text.data(), text.size());
    key[text.size()] = 0;
    return NLS_OK;
}

}  // namespace nls
