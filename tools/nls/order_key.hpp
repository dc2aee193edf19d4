// Sort keys that stand for texts in a sort: only where it is sure that they order as the comparison does.
//
// Byte tables give such keys, but for a byte that is both an expansion and a first byte, and for the basic table with
// an expansion where "s" doesn't weigh 0x53. Through Shift-JIS texts count whose characters convert one by one to what
// the comparison takes them for. By code points all texts count exactly, and well-formed ones folded. ICU's keys are
// its comparison's, for the texts that have one. Thai keys and those of a site's own sort follow rules of their own:
// there nothing counts.
#pragma once

#include <bitset>

#include "tools/nls/order.hpp"

namespace nls::tool {

class KeyMaker {
public:
    explicit KeyMaker(const Order& order);

    // Appends the key of a text without blanks at its end. False, with anything appended, where no key is sure, or the
    // key is longer than the library can tell.
    bool append(ByteView text, ByteBuffer& key) const;

private:
    void judge();
    void judgeBytes();
    void findPlainCharacters();
    bool standsFor(ByteView text) const;

    const Order& order_;
    bool usable_ = false;
    std::bitset<256> plainSingles_;  // through Shift-JIS: characters that keys and comparison see alike
    std::bitset<65536> plainDoubles_;
    mutable ByteBuffer source_;
};

// The library's key of a text into `key`, appended without its NUL; `trim` as the library takes it. False where the key
// doesn't fit the longest that the library can make, and where a text is too long for a key of ICU's.
bool librarySortKey(const Order& order, ByteView text, bool trim, ByteBuffer& source, ByteBuffer& key);

}  // namespace nls::tool
