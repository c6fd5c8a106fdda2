#include "platform/posix/ExecWords.h"

#include <algorithm>

namespace fernwick::platform {

std::vector<char*> wordPointers(std::vector<std::string>& words) {
    std::vector<char*> pointers;
    pointers.reserve(words.size() + 1);
    for (auto& word : words) {
        pointers.push_back(word.data());
    }
    pointers.push_back(nullptr);
    return pointers;
}

bool anyHasNul(const std::vector<std::string>& words) {
    return std::ranges::any_of(words, [](const auto& word) { return word.contains('\0'); });
}

} // namespace fernwick::platform
