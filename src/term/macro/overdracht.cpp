// A playing macro handed over to the next program of the chain: the transfer file, 406 bytes (docs/formats.md).
// Whoever may write in the data directory can put a file or a link in its place, so none is followed, and what is read
// is believed only as far as the header tells.
#include "shared/syscalls.h"
#include "term/macro/macro.h"
#include "term/macro/speelbuffer.h"
#include "term/toets.h"
#include <cerrno>
#include <cstring>
#include <ctime>
#include <unistd.h>

namespace zg {
namespace {

constexpr long GELDIG_SECONDEN = 10;
constexpr int MAPRUIMTE = 80;

struct [[gnu::packed]] overdracht {
    char map[MAPRUIMTE],
        pad[MAPRUIMTE]; // directory with its '/', and the pair's path; written for other programs
    int32_t speelt, aan;
    uint16_t gebruiker;
    mac_rec rec; // as the play buffer: reversed
};
static_assert(sizeof(overdracht) == 406 && offsetof(overdracht, speelt) == 160 &&
              offsetof(overdracht, rec) == 170);

mac_rec wachtend; // taken from the file, until its user is known; no keys: none

// Empty when this is no terminal.
std::string pad() {
    const char* tty = isatty(STDOUT_FILENO) ? ttyname(STDOUT_FILENO) : nullptr;
    if (!tty)
        return "";
    const char* streep = strrchr(tty, '/');
    return std::string("MAC") + (streep ? streep + 1 : tty) + ".TMP";
}

// A file that nobody else can have written, written just now.
bool eigen(const struct stat& st) {
    const time_t nu = time(nullptr);
    return S_ISREG(st.st_mode) && st.st_uid == geteuid() && st.st_nlink == 1 &&
           (st.st_mode & (S_IWGRP | S_IWOTH)) == 0 && st.st_size == off_t{sizeof(overdracht)} &&
           st.st_mtime <= nu && nu - st.st_mtime <= GELDIG_SECONDEN;
}

bool gaaf(const overdracht& o) {
    return o.speelt == 1 && o.aan == 1 && o.gebruiker != 0 && o.rec.gebruiker == o.gebruiker &&
           MACROGAAF(o.rec);
}

} // namespace

void MACROBEWAAR() {
    MACROLAATLOS(); // goes along with the other keys that were typed
    const std::string naam = pad();
    overdracht o{};
    o.speelt = o.aan = 1;
    o.gebruiker = MACROGEBRUIKER();
    o.rec = speelbuffer;
    o.rec.gebruiker = o.gebruiker;
    const std::string paar = MACROPAD();
    snprintf(o.map, sizeof o.map, "%s", paar.substr(0, paar.rfind('/') + 1).c_str());
    snprintf(o.pad, sizeof o.pad, "%s", paar.c_str());
    MACROHAAK.speelt = 0;
    speelbuffer.aantal = 0;
    if (naam.empty() || !gaaf(o))
        return;
    SYS.unlink(naam.c_str());
    const int fd = SYS.open(naam.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600);
    bool goed = fd >= 0;
    if (goed) {
        goed = SYSSCHRIJF(fd, &o, sizeof o);
        goed = SYS.close(fd) == 0 && goed;
        if (!goed)
            SYS.unlink(naam.c_str());
    }
    if (!goed)
        PIEP(); // the macro ends here: the screen is on its way out, and nobody may be asked anything now
}

void MACROHERSTEL() {
    wachtend = {};
    const std::string naam = pad();
    if (naam.empty())
        return;
    overdracht o;
    bool goed = false;
    // O_NONBLOCK: a pipe without a writer must not hold the program up.
    const int fd = SYS.open(naam.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, 0);
    if (fd >= 0) {
        struct stat st;
        goed = SYS.fstat(fd, &st) == 0 && eigen(st) && SYSLEES(fd, &o, sizeof o, 0) == ssize_t{sizeof o};
        SYS.close(fd);
    }
    // What can't be taken away would play again at the next start.
    const bool weg = SYS.unlink(naam.c_str()) == 0;
    if (goed && weg && gaaf(o))
        wachtend = o.rec;
}

void MACROGAVERDER() {
    if (wachtend.aantal && wachtend.gebruiker == MACROGEBRUIKER()) {
        speelbuffer = wachtend;
        MACROHAAK.speelt = 1;
        MACROHAAK.geduwd = 0;
    }
    wachtend = {};
}

} // namespace zg
