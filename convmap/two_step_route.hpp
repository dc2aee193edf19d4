// Finding a way through a middle charset, for a pair without an entry of its own.
//
// Only a pair with a Unicode charset on one side has such a way. The names "UTF-8", "UCS2", "UTF-16" and "UTF-32",
// tried in this order as beginnings of the source's and then the target's name, say from which side the contents are
// searched; that side's entries are taken in the order of the file, and the first that leads to the other side makes
// the route.
//
// A pure search: nothing is loaded. Tested by tests/convmap/two_step_route_test.cpp.
#pragma once

#include "convmap/toc.hpp"

namespace nls {

struct TwoStepRoute {
    const nlsTocEntry* first = nullptr;   // from the source to the middle charset
    const nlsTocEntry* second = nullptr;  // from the middle charset to the target

    bool found() const { return first != nullptr; }
};

TwoStepRoute findTwoStepRoute(const Contents& contents, NamePair pair);

}  // namespace nls
