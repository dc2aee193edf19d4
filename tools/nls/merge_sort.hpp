// A stable merge sort. Unlike the standard library's it stays inside its array and ends whatever the comparison
// answers: a site's own sort may contradict itself.
#pragma once

#include <cstddef>
#include <utility>

namespace nls::tool {

// Sorts `count` items; `scratch` has room for half of them, rounded down. `compare(a, b)` is above 0 where `a` belongs
// behind `b`. What is sorted already costs one comparison an item.
template <typename Item, typename Compare>
void mergeSort(Item* items, std::size_t count, Item* scratch, const Compare& compare) {
    if (count <= 8) {
        for (std::size_t i = 1; i < count; ++i) {
            const Item item = items[i];
            std::size_t place = i;
            for (; place != 0 && compare(items[place - 1], item) > 0; --place) items[place] = items[place - 1];
            items[place] = item;
        }
        return;
    }
    const std::size_t half = count / 2;
    mergeSort(items, half, scratch, compare);
    mergeSort(items + half, count - half, scratch, compare);
    if (compare(items[half - 1], items[half]) <= 0) return;
    for (std::size_t i = 0; i < half; ++i) scratch[i] = items[i];
    Item* out = items;
    const Item* left = scratch;
    const Item* const leftEnd = scratch + half;
    const Item* right = items + half;
    const Item* const rightEnd = items + count;
    while (left != leftEnd && right != rightEnd) *out++ = compare(*left, *right) > 0 ? *right++ : *left++;
    while (left != leftEnd) *out++ = *left++;
}

}  // namespace nls::tool
