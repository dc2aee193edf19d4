// The conversion engine: one look at the type of a table, and the walk or transform that belongs to it.
//
// It knows every type; the rooms that it calls know one each, get views, and answer with a status and a count.
// Tested by tests/conversion/engine_test.cpp.
#pragma once

#include <cstdint>

#include "convmap/conv_table.hpp"
#include "core/base/views.hpp"
#include "nls/base.h"
#include "nls/records.h"

namespace nls {

// Some refusals leave the caller's count alone: `counted` is false then.
struct EngineAnswer {
    nlsStatus status;
    bool counted;
    uint32_t length;  // bytes written; 0 where they aren't counted
};

// A text and where it goes. `scratch` is the middle buffer of a two-step table, else empty.
struct Conversion {
    ByteSpan target;
    ByteView source;
    ByteSpan scratch;
    bool check = false;  // tell by NLS_CONV_CHANGED whether the text changes
};

EngineAnswer convert(ConvTable table, const Conversion& text);

// One character. Not counted where nothing came out; else `value` holds it.
struct ConvertedCharacter {
    nlsStatus status;
    bool counted;
    nlsLChar value;
};
ConvertedCharacter convertCharacter(ConvTable table, nlsLChar value);

}  // namespace nls
