#include "collation/thai_compare.hpp"

#include "collation/thai_clusters.hpp"

namespace nls {

int compareThai(const unsigned char* map, Text a, Text b) {
    for (;;) {
        if (a.atEnd()) return onlyBlanksLeft(b) ? 0 : -1;
        if (b.atEnd()) return onlyBlanksLeft(a) ? 0 : 1;
        const uint32_t rankOfA = clusterRank(map, a), rankOfB = clusterRank(map, b);
        if (rankOfA != rankOfB) return rankOfA < rankOfB ? -1 : 1;
    }
}

}  // namespace nls
