// meeting_boxes.h - which boxes of two lists meet, without looking at all pairs.
#pragma once
#include <algorithm>
#include <cstddef>
#include <functional>
#include <vector>

// A box in three axes of one unit; its bounds belong to it. `index` is what it is called outside.
struct indexed_box {
    double left = 0, right = 0;
    double top = 0, bottom = 0;
    double front = 0, back = 0;
    std::size_t index = 0;

    [[nodiscard]] bool meets(const indexed_box& o) const noexcept
    {
        return left <= o.right && o.left <= right && top <= o.bottom && o.top <= bottom && front <= o.back &&
               o.front <= back;
    }
};

inline void sort_by_left(std::vector<indexed_box>& boxes)
{
    std::ranges::sort(boxes, [](const indexed_box& a, const indexed_box& b) {
        return a.left != b.left ? a.left < b.left : a.index < b.index;
    });
}

// Calls pair(a, b) with the indices of every box of `as` and box of `bs` that meet, in an order that depends
// on the boxes alone. A line sweeps over both lists from the left and compares each box it comes to with
// those of the other list that it crosses, so that a huge box costs no more than itself.
// REQUIRES: both lists are in the order of sort_by_left().
// Asks carry_on, where there is one, before each box; false when that ended it.
template <class Pair>
bool for_meeting_boxes(const std::vector<indexed_box>& as, const std::vector<indexed_box>& bs,
                       const std::function<bool()>& carry_on, const Pair& pair)
{
    std::vector<const indexed_box*> crossed_a, crossed_b;
    const auto come_to = [](const indexed_box& box, auto& own, auto& others, const auto& met) {
        std::erase_if(others, [&](const indexed_box* other) { return other->right < box.left; });
        for (const indexed_box* const other : others)
            if (other->meets(box))
                met(*other);
        own.push_back(&box);
    };
    auto a = as.begin();
    auto b = bs.begin();
    while (a != as.end() || b != bs.end()) {
        if (carry_on && !carry_on())
            return false;
        if (b == bs.end() || (a != as.end() && a->left <= b->left)) {
            come_to(*a, crossed_a, crossed_b, [&](const indexed_box& other) { pair(a->index, other.index); });
            ++a;
        } else {
            come_to(*b, crossed_b, crossed_a, [&](const indexed_box& other) { pair(other.index, b->index); });
            ++b;
        }
    }
    return true;
}
