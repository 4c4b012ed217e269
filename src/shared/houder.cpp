// Naming the holder of a lock.
#include "shared/houder.h"
#include "shared/files.h"
#include "shared/gedeeld.h"
#include "shared/iotab.h"
#include "shared/report.h"
#include "shared/teksten.h"
#include "store/ix.h"
#include "store/wachtrij.h"
#include "term/scherm.h"
#include "term/vast.h"
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace zg {
namespace {

constexpr int WACHT = 2;         // seconds
constexpr size_t ARGUMENTEN = 5; // of a program of the package: path, name, user, slot, who started it

int64_t plaats(int32_t nr) {
    return SYS_GEBRUIKER.start + int64_t{nr - 1} * SYS_GEBRUIKER.grootte;
}

// Is this process, by what it was started with, the program of this slot's user? A number alone may be another machine's.
bool van_hier(int64_t proces, int32_t nr, const gebruikerslot& slot) {
    std::vector<std::string> woorden;
    std::ifstream regel("/proc/" + std::to_string(proces) + "/cmdline");
    for (std::string woord; woorden.size() <= ARGUMENTEN && std::getline(regel, woord, '\0');)
        woorden.push_back(woord);
    return woorden.size() == ARGUMENTEN && woorden[2] == gebruiker_naam(slot) &&
           woorden[3] == std::to_string(nr);
}

// Has this process the file open? Also when that can't be seen: it is another user's.
bool heeft_open(int64_t proces, int fd) {
    struct stat dit, s;
    std::error_code fout;
    const std::filesystem::directory_iterator bestanden("/proc/" + std::to_string(proces) + "/fd", fout);
    if (fout || fstat(fd, &dit) != 0)
        return true;
    for (const auto& f : bestanden)
        if (stat(f.path().c_str(), &s) == 0 && s.st_dev == dit.st_dev && s.st_ino == dit.st_ino)
            return true;
    return false;
}

// Can the process of this number here be the one that holds it? Not this program itself, whose own locks are never in its
// way, nor one that hasn't the file open (fd, where it is known) or isn't of the package; a tool is, and has no slot.
bool kan_van_hier(int64_t proces, int fd) {
    std::string naam;
    if (proces <= 0 || proces == getpid())
        return false;
    std::getline(std::ifstream("/proc/" + std::to_string(proces) + "/comm"), naam);
    return (naam.starts_with("zg") || naam.starts_with("ix") || naam.starts_with("ord")) &&
           (fd < 0 || heeft_open(proces, fd));
}

} // namespace

// Everybody who works has his slot locked, and the process that has a region has its slot under the same number. On one
// machine that says it. On a shared file system several may answer to a number, or all of other machines to none: a user
// is named when he is the only one, and when he and a process of that number here aren't both possible.
Houder houder_van(int64_t proces, int dtsys, gebruikerslot* slot, int fd) {
    const bool gedeeld = IOGEDEELD();
    *slot = {};
    if (dtsys < 0 || proces == 0 || (proces < 0 && !gedeeld))
        return Houder::niemand;
    const bool kan_hier = gedeeld && kan_van_hier(proces, fd);
    int hier = 0, elders = 0;
    for (int32_t nr = 1; nr <= SYS_GEBRUIKER.slots; nr++) {
        gebruikerslot deze;
        if (IOLOCKPID(dtsys, plaats(nr), SYS_GEBRUIKER.grootte) != proces ||
            IOLEES(dtsys, &deze, sizeof deze, plaats(nr)) != static_cast<ssize_t>(sizeof deze))
            continue;
        if (!gedeeld || !van_hier(proces, nr, deze))
            elders++;
        else if (kan_hier)
            hier++;
        else
            continue;
        *slot = deze;
        if (!gedeeld)
            return Houder::bekend;
    }
    if (hier + elders == 1 && (hier || !kan_hier))
        return Houder::bekend;
    *slot = {};
    return !gedeeld || kan_hier ? Houder::niemand : Houder::elders;
}

Houder houder_slot(int fd, int64_t start, int64_t lengte, gebruikerslot* slot) {
    return houder_van(IOLOCKPID(fd, start, lengte), iotab_fd(), slot, fd);
}

int houder_tekst(char* tekst, size_t ruimte, int fd, int64_t start, int64_t lengte) {
    std::string woord = tekst;
    gebruikerslot slot;
    const Houder wie = houder_slot(fd, start, lengte, &slot);
    if (wie == Houder::niemand) {
        snprintf(tekst, ruimte, "%s", TXT(T_IN_GEBRUIK));
        return 0;
    }
    if (wie == Houder::elders) {
        const bool woord_voor = !woord.empty() && woord[0] == '~';
        snprintf(tekst, ruimte, "%s",
                 woord_voor ? (woord.substr(1) + ": " + TXT(T_GEBRUIK_ELDERS)).c_str() : TXT(T_INFO_ELDERS));
        return 1;
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
