// The grid that every screen is laid out on: multiples of four, and the few sizes that recur.
#pragma once

namespace fernwick::grid {

inline constexpr int kUnit = 4;
inline constexpr int kTight = kUnit;          // between parts of one thing
inline constexpr int kSmall = 2 * kUnit;      // between things that belong together
inline constexpr int kMedium = 3 * kUnit;     // inside a panel
inline constexpr int kLarge = 4 * kUnit;      // around a panel
inline constexpr int kExtraLarge = 6 * kUnit; // around a page

inline constexpr int kControlHeight = 30;
inline constexpr int kToolButtonSize = 28;
inline constexpr int kHeaderHeight = 52;
inline constexpr int kControlRadius = 7;
inline constexpr int kPanelRadius = 10;

} // namespace fernwick::grid
