// The functions that a build of ICU must have, by the slots of nlsIcuFuncs, in the order in which they are looked up.
// One that nothing calls must be there all the same.
#pragma once

namespace nls {

struct NamedSlot {
    unsigned slot;
    const char* name;
};

// Of the common library.
inline constexpr NamedSlot kConversionSide[] = {
    {0, "ucnv_open"},           {1, "ucnv_close"},      {2, "ucnv_fromUnicode"}, {3, "ucnv_toUnicode"},
    {4, "ucnv_fromUChars"},     {5, "ucnv_toUChars"},   {6, "ucnv_reset"},       {7, "ucnv_resetFromUnicode"},
    {8, "ucnv_resetToUnicode"}, {9, "ucnv_flushCache"},
};
// Of the i18n library.
inline constexpr NamedSlot kCollationSide[] = {
    {18, "ucol_open"},         {20, "ucol_getRules"}, {22, "ucol_getSortKey"},
    {23, "ucol_setStrength"},  {24, "ucol_strcoll"},  {25, "ucol_countAvailable"},
    {26, "ucol_getAvailable"}, {27, "ucol_close"},    {28, "ucol_getVersion"},
};
// Of the newer build's i18n library alone.
inline constexpr NamedSlot kUcaVersion[] = {{29, "ucol_getUCAVersion"}};

// Bytes of a function's name with its suffix, and of the path of a file, in front of the NUL.
inline constexpr unsigned kLongestIcuPath = 302;

}  // namespace nls
