#include <gtest/gtest.h>

#include <deque>
#include <random>

#include "core/base/object_chain.hpp"
#include "nls/inner.h"

namespace {

struct Chain {
    nlsHandle handle = {};
    Chain() {
        handle.hdr.typeTag = NLS_TAG_HANDLE;
        handle.hdr.serial = 1;
        handle.chainHead = &handle.hdr;
    }
};

// Newest first, the handle last, each neighbour pointing back.
void expectOrder(const Chain& chain, const std::deque<nlsHdr*>& newestFirst) {
    const nlsHdr* place = chain.handle.chainHead;
    const nlsHdr* before = nullptr;
    for (const nlsHdr* object : newestFirst) {
        ASSERT_EQ(place, object);
        ASSERT_EQ(place->prev, before);
        before = place;
        place = place->next;
    }
    ASSERT_EQ(place, &chain.handle.hdr);
    ASSERT_EQ(place->prev, before);
    ASSERT_EQ(place->next, nullptr);
}

TEST(ObjectChain, KeepsItsOrderUnderAnyLinksAndUnlinks) {
    std::mt19937 random{11};
    for (int round = 0; round < 50; ++round) {
        Chain chain;
        chain.handle.hdr.serial = static_cast<uint16_t>(65500 + round);  // serials wrap at 16 bits
        std::deque<nlsHdr> objects;
        std::deque<nlsHdr*> order;
        for (int step = 0; step < 60; ++step) {
            if (order.empty() || random() % 3 != 0) {
                nlsHdr& object = objects.emplace_back();
                EXPECT_EQ(nlsLinkHdr(&chain.handle, &object), NLS_OK);
                const nlsHdr& before = order.empty() ? chain.handle.hdr : *order.front();
                EXPECT_EQ(object.serial, static_cast<uint16_t>(before.serial + 1));
                order.push_front(&object);
            } else {
                const auto victim = order.begin() + static_cast<std::ptrdiff_t>(random() % order.size());
                EXPECT_TRUE(nls::unlinkObject(chain.handle, **victim));
                EXPECT_FALSE(nls::unlinkObject(chain.handle, **victim));
                order.erase(victim);
            }
            expectOrder(chain, order);
        }
    }
}

TEST(ObjectChain, SearchPassesOverOtherTagsAndUnfinishedObjects) {
    Chain chain;
    nlsLocale older = {}, newer = {}, unfinished = {};
    nlsConversion conversion = {};
    for (nlsHdr* object : {&older.hdr, &newer.hdr, &conversion.hdr, &unfinished.hdr})
        nls::linkObject(chain.handle, *object);
    older.hdr.typeTag = newer.hdr.typeTag = NLS_TAG_LOCALE;
    conversion.hdr.typeTag = NLS_TAG_CONVERSION;
    const auto any = [](const auto&) { return true; };
    EXPECT_EQ(nls::findOnChain<nlsLocale>(chain.handle, NLS_TAG_LOCALE, any), &newer);
    const auto isOlder = [&](const nlsLocale& locale) { return &locale == &older; };
    EXPECT_EQ(nls::findOnChain<nlsLocale>(chain.handle, NLS_TAG_LOCALE, isOlder), &older);
    EXPECT_EQ(nls::findOnChain<nlsConversion>(chain.handle, NLS_TAG_CONVERSION, any), &conversion);
}

}  // namespace
