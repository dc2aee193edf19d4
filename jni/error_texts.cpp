// The text of each code, as Java sees it in an exception.
#include "jni/message_helpers.h"
#include "jutil.h"

const char* getErrorString(int32_t code) {
    switch (code) {
        case JU_ZLM_OK:
        case NLS_CONVMAP_OK:
            return nullptr;
        case JU_ZLM_WRONG_VERSION:
            return "wrong version number in zelmsgs file";
        case JU_ZLM_NO_FILE:
            return "error opening zelmsgs file";
        case JU_ZLM_READ:
            return "error reading zelmsgs file";
        case JU_ZLM_BAD_CONTEXT:
            return "invalid context block for zelmsgs file";
        case JU_ZLM_BUFFER_SMALL:
            return "internal buffer too small in zelmsgs interface";
        case JU_ZLM_BAD_LOCALE:
            return "zelmsgs locale string must be 3 characters long";
        case JU_ZLM_NO_DIRECTORY:
            return "$QRD environment variable not found for zelmsgs";
        case JU_ZLM_NO_MESSAGE:
            return "Requested message does not exist in zelmsgs file";
        case NLS_CONVMAP_NO_MEMORY:
            return "out of memory";
        case NLS_CONVMAP_NO_CONVERSION:
            return "error converting zelmsgs to java codepage (UTF8)";
        case NLS_CONVMAP_BUFFER_SMALL:
            return "internal buffer too small in convmap interface";
        case NLS_CONVMAP_OPEN_FAILED:
            return "error opening convmap file";
        case NLS_CONVMAP_CLOSE_FAILED:
            return "error closing convmap file";
        case NLS_CONVMAP_READ_FAILED:
            return "error reading convmap file";
        case NLS_CONVMAP_BAD_CHARSET:
            return "invalid or unsupported charset";
        case NLS_CONVMAP_BAD_COLLATION:
            return "invalid or unsupported collation";
        case NLS_CONVMAP_BAD_CASE_TABLE:
            return "invalid or unsupported case table";
        case NLS_CONVMAP_CODEPAGE:
            return "error in codepage conversion";
        case NLS_CONVMAP_BAD_LOCALE:
            return "invalid zelmsgs locale";
        case NLS_CONVMAP_BAD_UTF8_LOCALE:
            return "invalid UTF8 locale";
        default:
            return "unknown zelmsgs error code";
    }
}
