// PICTURE: a number in a fixed layout, "Z.ZZ9,99" for amounts in reports.
#include "term/strings.h"
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <string>

namespace zg {
namespace {

constexpr double GROOTST = 1e15; // above this a double has no units left, and no layout is that wide

bool plaats(char c) {
    return c == '9' || c == 'Z' || c == '*';
}

} // namespace

void PICTURE(const char* plaatje, double waarde, char* uit) {
    const size_t lengte = strlen(plaatje);
    const char teken = waarde < 0 ? '-' : ' ';
    if (waarde == 0 && !strchr(plaatje, '9')) {
        memset(uit, ' ', lengte + 1);
        uit[lengte + 1] = 0;
        return;
    }
    const char* komma = strchr(plaatje, ',');
    int decimalen = 0;
    for (const char* p = komma; p && *p; p++)
        decimalen += plaats(*p);

    bool past = std::fabs(waarde) < GROOTST;
    std::string getal;
    if (past) {
        char cijfers[512];
        int breedte = static_cast<int>(std::min(lengte, sizeof cijfers - 1));
        int n =
            snprintf(cijfers, sizeof cijfers, "%0*.*f", breedte, std::min(decimalen, 100), std::fabs(waarde));
        n = std::min(n, static_cast<int>(sizeof cijfers) - 1);
        getal.assign(cijfers, static_cast<size_t>(n));
        past = getal.size() <= lengte;
    }
    if (past) {
        size_t geheel = getal.find('.');
        if (geheel == std::string::npos)
            geheel = getal.size();
        else
            getal[geheel] = ',';
        for (size_t i = geheel; i-- > 0;)
            if (plaatje[i] == ' ' || plaatje[i] == '.') {
                past = past && (getal[0] == '0' || getal[0] == ' ' || getal[0] == '.');
                getal.erase(0, 1);
                getal.insert(i, 1, plaatje[i]);
            }
    }
    // A layout too narrow for the value must not show another value.
    if (!past) {
        memset(uit, '*', lengte);
    } else {
        if (plaatje[0] == 'Z' || plaatje[0] == '*') {
            const char* negen = strchr(plaatje, '9');
            size_t tot = negen ? static_cast<size_t>(negen - plaatje) : lengte;
            for (size_t i = 0; i < tot && i < getal.size() && strchr(" 0.", getal[i]); i++)
                getal[i] = plaatje[0] == 'Z' ? ' ' : '*';
        }
        memcpy(uit, getal.data(), getal.size());
        memset(uit + getal.size(), ' ', lengte - getal.size());
    }
    uit[lengte] = teken;
    uit[lengte + 1] = 0;
}

} // namespace zg
