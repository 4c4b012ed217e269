// A window that is smaller than the screen, 25 rows of 80 columns: what stands outside it can't be seen, so it is
// told instead of shown, and keys go nowhere until there is room again (toets.cpp).
#include "term/binnen.h"
#include "term/teksten.h"
#include "term/uitvoer.h"
#include <algorithm>
#include <cstdio>
#include <sys/ioctl.h>
#include <unistd.h>

namespace zg {
namespace {

constexpr int RIJEN = 25, KOLOMMEN = 80;
int rijen, kolommen; // of the window, 0 when nobody knows: then it is trusted

} // namespace

bool WINDOWMAAT(int* hoog, int* breed) {
    winsize w{};
    bool bekend = ioctl(STDOUT_FILENO, TIOCGWINSZ, &w) == 0 && w.ws_row > 0 && w.ws_col > 0;
    *hoog = bekend ? w.ws_row : 0;
    *breed = bekend ? w.ws_col : 0;
    return bekend;
}

void KLEINKIJK() {
    WINDOWMAAT(&rijen, &kolommen);
}

bool KLEIN() {
    return SCHERM.bestaat && !SCHERM.dicht && rijen > 0 && (rijen < RIJEN || kolommen < KOLOMMEN);
}

void KLEINTOON() {
    char regels[4][80];
    snprintf(regels[0], sizeof regels[0], TXT(T_KLEIN_NU), kolommen, rijen);
    snprintf(regels[1], sizeof regels[1], TXT(T_KLEIN_NODIG), KOLOMMEN, RIJEN);
    snprintf(regels[2], sizeof regels[2], "%s", TXT(T_KLEIN_VERDER));
    snprintf(regels[3], sizeof regels[3], "%s", TXT(T_KLEIN_STOPPEN));
    std::string uit;
    const int eerste = rijen > 3 ? 0 : 2; // how to go on, when there is no room for more
    for (int i = eerste; i < std::min(4, eerste + rijen); i++) {
        uit += i > eerste ? "\r\n" : "";
        for (int k = 0; regels[i][k] && k < kolommen - 1; k++)
            TEKENUIT(uit, TEKENSETUIT(static_cast<uint8_t>(regels[i][k])).teken);
    }
    ZEND("clear");
    SCHRIJFUIT(uit.data(), uit.size());
    BEELDNIEUW();
}

} // namespace zg
