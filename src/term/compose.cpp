// The compose box of F11 in a text field: a sequence of the compose table ("e'") or a character code.
#include "term/natl.h"
#include "term/prompt.h"
#include "term/veld.h"
#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace zg {
namespace {

constexpr int LENGTE = 4, HOOGTE = 3, BREEDTE = LENGTE + 2;

} // namespace

int32_t COMPOSEINVOER() {
    int rij, kolom;
    WINNAARSCHERM(SCHERM.rij, SCHERM.kolom, &rij, &kolom);
    rij = std::clamp(rij, 1, std::max(1, SCHERM.lines - HOOGTE)); // the status line stays free
    kolom = std::clamp(kolom, 1, std::max(1, SCHERM.cols - BREEDTE + 1));
    WINOPEN2(rij, kolom, HOOGTE, BREEDTE);
    WINBOX(nullptr);
    char tekst[LENGTE + 1] = "";
    int32_t key = REGELEDIT(1, 1, tekst, LENGTE);
    WINCLOSE();
    if (key == K_ESC || tekst[0] == 0)
        return 0;
    if (strspn(tekst, "0123456789") < strlen(tekst))
        return COMPOSE(tekst);
    int code = atoi(tekst);
    return code >= 32 && code <= 255 ? code : 0;
}

} // namespace zg
