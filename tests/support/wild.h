// Random keys, typed ahead of whatever asks for them: turns on a screen of their own, until one says what is wrong.
#pragma once
#include "support/proef.h"
#include "term/scherm.h"
#include "term/toets.h"
#include <random>

namespace zg::test {

inline std::mt19937 worp;
inline int dobbel(int tot) {
    return static_cast<int>(worp() % static_cast<unsigned>(tot));
}

// ZG_WILD sets how many, ZG_SEED which; else the same in every run where `zaad` isn't 0.
inline void wilde_beurten(int beurten, unsigned zaad, const std::function<void()>& begin,
                          const std::function<std::string()>& beurt) {
    const char *aantal = getenv("ZG_WILD"), *vast = getenv("ZG_SEED");
    if (vast || aantal || zaad == 0)
        zaad = vast ? static_cast<unsigned>(atol(vast)) : std::random_device{}();
    Terminal t([&] {
        SCRINIT();
        worp.seed(zaad);
        begin();
        std::string fout;
        for (int i = 0; i < (aantal ? atoi(aantal) : beurten) && fout.empty(); i++)
            fout = beurt();
        SCREXIT();
        puts(fout.c_str());
        return fout.empty() ? 0 : 3;
    });
    EXPECT_EQ(t.einde(600'000), 0) << "seed " << zaad << "\n" << t.scherm();
}

} // namespace zg::test
