// The floor under a step of the program: its own system calls (bench/spoor.h), made again by a bare loop on copies of the
// data directory as it was before the step.
#pragma once
#include <functional>
#include <string>

namespace vloer {

struct Meting {
    double ms;    // processor time of the step, the median of its rounds
    double vloer; // of its calls alone, likewise
    long calls;   // of one round
};
// `voor` makes ready and isn't measured. The present directory is the data directory; `kopie` is made and removed.
Meting meet(const std::function<void()>& voor, const std::function<void()>& stap, const std::string& kopie);

} // namespace vloer
