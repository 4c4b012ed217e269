// Naming the holder of a lock.
#include "shared/houder.h"
#include "shared/files.h"
#include "shared/iotab.h"
#include "shared/teksten.h"
#include "store/ix.h"
#include "store/wachtrij.h"
#include "term/scherm.h"
#include "term/vast.h"
#include <cstdio>
#include <cstring>
#include <string>
#include <unistd.h>

namespace zg {
namespace {

constexpr int WACHT = 2; // seconds

// The slot of the user whose program is this process; false when it isn't a logged-in user's.
bool slot_van(int64_t proces, gebruikerslot* slot) {
    int fd = iotab_fd();
    if (fd < 0 || proces <= 0)
        return false;
    for (int32_t nr = 1; nr <= SYS_GEBRUIKER.slots; nr++) {
        int64_t start = SYS_GEBRUIKER.start + int64_t{nr - 1} * SYS_GEBRUIKER.grootte;
        if (IOLOCKPID(fd, start, SYS_GEBRUIKER.grootte) == proces)
            return pread(fd, slot, sizeof *slot, start) == static_cast<ssize_t>(sizeof *slot);
    }
    return false;
}

} // namespace

bool houder_slot(int fd, int64_t start, int64_t lengte, gebruikerslot* slot) {
    return slot_van(IOLOCKPID(fd, start, lengte), slot);
}

int houder_tekst(char* tekst, size_t ruimte, int fd, int64_t start, int64_t lengte) {
    std::string woord = tekst;
    gebruikerslot slot;
    if (!houder_slot(fd, start, lengte, &slot)) {
        snprintf(tekst, ruimte, "%s", TXT(T_IN_GEBRUIK));
        return 0;
    }
    std::string uit;
    if (woord == "PROG")
        uit = TXT(T_PROG_GEBRUIK_DOOR);
    else if (!woord.empty() && woord[0] == '~')
        uit = woord.substr(1) + ": " + TXT(T_GEBRUIK_DOOR);
    else
        uit = TXT(T_INFO_GEBRUIK_DOOR);
    uit = uit + " " + gebruiker_naam(slot);
    if (slot.usertty[0])
        uit += " (tty" + std::string(VASTUIT(slot.usertty)) + ")";
    snprintf(tekst, ruimte, "%s", uit.c_str());
    return 1;
}

void houder_toon(const char* kop, const char* tekst) {
    if (!SCHERM.bestaat || SCHERM.dicht || SCHERM.aantal >= VENSTERS) {
        sleep(WACHT);
        return;
    }
    char regel[81];
    snprintf(regel, sizeof regel, "%s%s", kop, tekst);
    WINOPEN1(SCHERM.lines - 1, 1, 1, SCHERM.cols);
    SCRPUT(A_WAARDE, 1, 1, "%-80.80s", regel);
    SCRFLUSH(WACHT);
    WINCLOSE();
}

void houder_wacht(ICB* icb) {
    char tekst[81] = "", kop[48];
    if (icb->wachtsleutel) // the queue names no owner
        snprintf(tekst, sizeof tekst, TXT(T_SLEUTEL_GERESERVEERD),
                 IXSLEUTELTEKST(icb->h.keydef[0], icb->keybuf).c_str());
    else
        houder_tekst(tekst, sizeof tekst, icb->datfd, int64_t{icb->currec} * icb->h.reclen, icb->h.reclen);
    snprintf(kop, sizeof kop, "%.11s: %.19s --> ", icb->h.name, icb->h.title);
    houder_toon(kop, tekst);
}

} // namespace zg
