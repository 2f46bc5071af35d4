/// Where the guard finds what the program hands it.
#pragma once

namespace velorin::GuardDescriptors {

inline constexpr int keys = 3;
inline constexpr int life = 4;
inline constexpr int tapWakeUp = 5;

} // namespace velorin::GuardDescriptors
