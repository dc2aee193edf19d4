// How a pack names what it exports: ICU's name and the suffix of the build behind it. The name is told to the assembler
// alone, since ICU's headers have macros of the same names.
#pragma once

#define NLS_PACK_ENTRY(name) __asm__(name NLS_PACK_SUFFIX) __attribute__((visibility("default")))
