// The operators' tools as an operator uses them: at the shell.
#pragma once
#include "shared/woordenboek.h"
#include "store/ix.h"
#include <cstdio>
#include <cstring>
#include <gtest/gtest.h>
#include <string>
#include <sys/wait.h>

namespace zg::test {

struct Uit {
    int status;
    std::string tekst; // both streams
    bool zegt(const std::string& s) const { return tekst.find(s) != std::string::npos; }
};

inline Uit sh(const std::string& opdracht) {
    FILE* p = popen(("PATH=\"" ZG_BINARY_DIR "\":$PATH; exec 2>&1; " + opdracht).c_str(), "r");
    std::string tekst;
    char buf[4096];
    for (size_t n; (n = fread(buf, 1, sizeof buf, p)) > 0;)
        tekst.append(buf, n);
    int st = pclose(p);
    return {WIFEXITED(st) ? WEXITSTATUS(st) : 128 + WTERMSIG(st), tekst};
}

// What a command answers, and words of what it says.
template <class... W> void hoort(const std::string& opdracht, int status, const W&... woorden) {
    const Uit uit = sh(opdracht);
    EXPECT_EQ(uit.status, status) << opdracht << "\n" << uit.tekst;
    for (const std::string& woord : std::vector<std::string>{woorden...})
        EXPECT_TRUE(uit.zegt(woord)) << opdracht << " doesn't say: " << woord << "\n" << uit.tekst;
}

// A pair of brands 1 to n.
inline void merken(int n, const char* naam = "DTMERK") {
    DDNEW(DDNUMMER("DTMERK"), naam);
    ICB* icb = IXOPEN(naam, 1);
    uint8_t rec[76] = {};
    for (uint16_t i = 1; i <= n; i++) {
        memcpy(rec, &i, 2);
        IXWRITE(icb, rec);
    }
    IXCLOSE(icb);
}

} // namespace zg::test
