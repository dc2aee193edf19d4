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

// A count that the caller isn't told: some refusals leave it alone.
inline constexpr int64_t kUncounted = -1;

// Two words that travel in registers; with narrower ones the answer would cost more than a short conversion.
struct EngineAnswer {
    nlsStatus status;
    int64_t length;  // bytes written, or kUncounted

    bool counted() const { return length != kUncounted; }
};

// A text and where it goes. `scratch` is the middle buffer of a two-step table, else empty.
struct Conversion {
    ByteSpan target;
    ByteView source;
    ByteSpan scratch;
    bool check = false;  // tell by NLS_CONV_CHANGED whether the text changes
};

EngineAnswer convert(ConvTable table, const Conversion& text);

// One character. `value` holds it, or kUncounted where nothing came out.
struct ConvertedCharacter {
    nlsStatus status;
    int64_t value;

    bool counted() const { return value != kUncounted; }
};
ConvertedCharacter convertCharacter(ConvTable table, nlsLChar value);

}  // namespace nls
