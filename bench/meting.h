// What the benchmarks of the program's own steps share: medians, limits, and system calls on files, counted at the table
// that all files go through.
#pragma once
#include "shared/syscalls.h"
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <vector>

namespace meting {

using klok = std::chrono::steady_clock;

inline constexpr int RONDEN = 9;
inline bool te_traag; // a step took longer than it may: the program's status
inline long aanroepen;
inline zg::SYSCALLS echt;

// Every row of the table counts, and calls what stood there.
template <auto RIJ, class R, class... A> void tel_rij(R (*zg::SYSCALLS::*)(A...)) {
    zg::SYS.*RIJ = [](A... a) -> R {
        aanroepen++;
        return (echt.*RIJ)(a...);
    };
}
inline void tel_aanroepen() {
    using zg::SYSCALLS;
    echt = zg::SYS;
#define TEL(rij) tel_rij<&SYSCALLS::rij>(&SYSCALLS::rij)
    TEL(open), TEL(close), TEL(read), TEL(write), TEL(pread), TEL(pwrite), TEL(ftruncate), TEL(fsync),
        TEL(fstat);
    TEL(fchmod), TEL(fchown), TEL(rename), TEL(link), TEL(unlink), TEL(mkdir), TEL(slot);
#undef TEL
}

inline double ms_sinds(klok::time_point t) {
    return std::chrono::duration<double, std::milli>(klok::now() - t).count();
}

inline double mediaan(std::vector<double> v) {
    std::sort(v.begin(), v.end());
    return v.empty() ? 0 : v[v.size() / 2];
}

inline void toon(const char* naam, double ms, double grens, long calls) {
    printf("%-56s %9.3f ms  %s%6ld calls\n", naam, ms, ms > grens ? "SLOW " : "     ", calls);
    te_traag |= ms > grens;
}

// The median of a step, and its calls in one round; `voor` makes ready without being counted.
template <class V, class F> double meet(V voor, F stap, long* calls) {
    std::vector<double> ms;
    for (int i = 0; i < RONDEN; i++) {
        voor();
        aanroepen = 0;
        auto t0 = klok::now();
        stap();
        ms.push_back(ms_sinds(t0));
        *calls = aanroepen;
    }
    return mediaan(ms);
}

} // namespace meting
