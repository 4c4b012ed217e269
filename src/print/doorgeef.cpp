// A job through the user's own terminal: its printer port, or its screen. Both are sent by the program itself, which has
// the terminal, and are described beside their spool file meanwhile, so that what a kill interrupts is told.
#include "print/doorgeef.h"
#include "shared/syscalls.h"
#include "term/poort.h"
#include "term/uitvoer.h"
#include <algorithm>
#include <cerrno>
#include <vector>

namespace zg {
namespace {

constexpr size_t BLOK = 4096; // between two looks at the keyboard

enum class Einde { klaar, gestopt, fout };

// The bytes from `van` to `tot` in blocks; `naar` answers false when the user has enough.
template <class F> Einde blokken(int fd, int64_t van, int64_t tot, F naar) {
    char blok[BLOK];
    for (int64_t p = van; p < tot;) {
        const ssize_t n = SYSLEES(fd, blok, static_cast<size_t>(std::min<int64_t>(tot - p, BLOK)), p);
        if (n <= 0) {
            errno = n ? errno : EIO;
            return Einde::fout;
        }
        if (!naar(blok, static_cast<size_t>(n)))
            return Einde::gestopt;
        p += n;
    }
    return Einde::klaar;
}

// In blocks of bytes as they go out, whatever they were before; a keyboard that is looked at too soon would take keys that
// are for the screen behind a short report.
Einde naar_poort(const spooljob& job, int fd) {
    std::string uit;
    auto stuur = [&](size_t n) {
        XLPR(true);
        SCHRIJFUIT(uit.data(), n);
        XLPR(false);
        uit.erase(0, n);
        return !XPRT_STOP();
    };
    auto voeg = [&](const std::string& bytes) {
        uit += bytes;
        bool door = true;
        while (door && uit.size() >= BLOK)
            door = stuur(BLOK);
        return door;
    };
    auto zo = [&](const char* b, size_t n) { return voeg({b, n}); };
    auto om = [&](const char* b, size_t n) { return voeg(prt_omzet({b, n}, job.tekens)); };
    Einde e = blokken(fd, 0, job.begin, zo);
    if (e == Einde::klaar)
        e = blokken(fd, job.begin, job.eind, om);
    if (e == Einde::klaar)
        e = blokken(fd, job.eind, SYSOMVANG(fd), zo);
    return e == Einde::klaar && !uit.empty() && !stuur(uit.size()) ? Einde::gestopt : e;
}

} // namespace

bool prt_doorgeef(int slot, spooljob* job) {
    const int fd = SYS.open(job->spool.c_str(), O_RDONLY | O_CLOEXEC, 0);
    if (fd < 0)
        return false;
    job->stand = Spoolstand::bezig;
    const bool scherm = job->weg == Printweg::terminal;
    if (scherm)
        SCRTERZIJDE();
    Einde e = Einde::klaar;
    for (; job->gedaan < job->kopieen && e == Einde::klaar; job->gedaan++) {
        spool_schrijf_stand(slot, *job);
        e = scherm ? blokken(fd, job->begin, job->eind, SCRREGELS) : naar_poort(*job, fd);
    }
    const int fout = errno;
    if (scherm)
        SCRTERUG();
    SYS.close(fd);
    errno = fout;
    return e != Einde::fout;
}

} // namespace zg
