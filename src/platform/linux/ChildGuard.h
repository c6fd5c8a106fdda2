// What a new child does to itself between its creation and its program. All run in a child that may share the
// parent's memory, so they only make system calls.
#pragma once

namespace fernwick::platform {

// Lets the kernel kill the calling child when the THREAD that made it ends (PR_SET_PDEATHSIG(2const)); `parent`
// is the parent's process id. False when the parent has gone already.
[[nodiscard]] bool dieWithParent(int parent) noexcept;

// Every signal at its default, and none blocked.
void resetSignals() noexcept;

// Lets the program that follows inherit nothing but descriptors 0, 1 and 2.
void closeOthersOnExec() noexcept;

} // namespace fernwick::platform
