// The operators' tools as an operator uses them: at the shell.
#pragma once
#include "shared/woordenboek.h"
#include "store/ix.h"
#include <cstdio>
#include <cstring>
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
