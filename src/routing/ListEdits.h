// What a list on screen asks of the list behind it: elements at some places taken out or moved.
// A place is an index from 0; places that the list does not have are passed over, and one that is named twice
// counts once. Threads: any.
#pragma once

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <utility>
#include <vector>

namespace fernwick {

using ListOffsets = std::vector<std::size_t>;

// Whether each place of a list of that size is among the offsets.
[[nodiscard]] inline std::vector<bool> marksOf(std::size_t size, const ListOffsets& offsets) {
    std::vector<bool> marks(size);
    for (const auto offset : offsets) {
        if (offset < size) {
            marks[offset] = true;
        }
    }
    return marks;
}

// Takes the elements out; returns them in their order.
template <class T>
std::vector<T> takeOffsets(std::vector<T>& list, const ListOffsets& offsets) {
    const auto marks = marksOf(list.size(), offsets);
    std::vector<T> taken;
    std::vector<T> kept;
    for (std::size_t at = 0; at < list.size(); ++at) {
        (marks[at] ? taken : kept).push_back(std::move(list[at]));
    }
    list = std::move(kept);
    return taken;
}

// Puts the elements, in their order, in front of the one that stands at `toOffset` before the move; at the end
// when none stands there.
template <class T>
void moveOffsets(std::vector<T>& list, const ListOffsets& fromOffsets, std::size_t toOffset) {
    const auto split = std::min(toOffset, list.size());
    const auto marks = marksOf(split, fromOffsets);
    const auto before = std::count(marks.begin(), marks.end(), true);
    auto moved = takeOffsets(list, fromOffsets);
    const auto place = static_cast<std::ptrdiff_t>(split) - before; // in what is left, which may be nothing
    list.insert(list.begin() + place, std::move_iterator(moved.begin()), std::move_iterator(moved.end()));
}

} // namespace fernwick
