// Words as execve(2) takes them. Threads: any.
#pragma once

#include <string>
#include <vector>

namespace fernwick::platform {

// Pointers to the words, and a null at the end. They stay owned by `words`, and are not changed.
[[nodiscard]] std::vector<char*> wordPointers(std::vector<std::string>& words);

// Whether a word has a NUL in it, where it would end for the program.
[[nodiscard]] bool anyHasNul(const std::vector<std::string>& words);

} // namespace fernwick::platform
