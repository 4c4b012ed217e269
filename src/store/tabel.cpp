// Definition texts from field addresses, names of private indexes, and the set-up of a program's own tables.
#include "store/tabel.h"
#include "shared/files.h"
#include "shared/mapbeurt.h"
#include "shared/report.h"
#include "shared/syscalls.h"
#include "store/diepcheck.h"
#include "store/node.h"
#include "store/rebuild.h"
#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zg {
namespace {

constexpr size_t TEKSTMAX = 132;

// The definition under construction. Ten parts with any name fit; what a caller adds beyond that is dropped, as
// IXUPDFCB would drop it.
char tekst[TEKSTMAX + 1];
const char* basis;
int sleutel = -1;

void voeg(const char* fmt, ...) __attribute__((format(printf, 1, 2)));
void voeg(const char* fmt, ...) {
    size_t n = strlen(tekst);
    va_list ap;
    va_start(ap, fmt);
    int bij = vsnprintf(tekst + n, sizeof tekst - n, fmt, ap);
    va_end(ap);
    if (bij < 0 || n + static_cast<size_t>(bij) >= sizeof tekst)
        tekst[n] = '\0';
}

void vul(const char* naam, void (*eerste)(ICB*)) {
    ICB* icb = IXOPEN(naam, 1);
    eerste(icb);
    IXCLOSE(icb);
}

void maak(const char* naam, bool nieuw, void (*definieer)(ICB*)) {
    ICB* icb = IXCREATE(naam, 1);
    definieer(icb);
    if (nieuw)
        IXINIT(icb);
    IXCLOSE(icb);
    if (!nieuw && !IXBLDIX(naam)) { // records of another length: not to be guessed at
        errno = EINVAL;
        OPENFAIL("tabel", IXDATAPAD(naam).c_str());
    }
}

constexpr size_t PROEF = 32 * 1024; // what a new table takes, amply

// Does the directory take files of this size now? Making a table stops the program when it doesn't.
bool ruimte(const std::string& map) {
    const std::string pad = IOTMPNAM(map.c_str(), "IX");
    if (pad.empty()) {
        errno = EACCES;
        return false;
    }
    const int fd = SYSNIEUW(pad.c_str(), O_WRONLY | O_EXCL);
    if (fd < 0)
        return false;
    const std::string proef(PROEF, '\0');
    bool goed = SYSSCHRIJF(fd, proef.data(), proef.size());
    goed = SYS.close(fd) == 0 && goed;
    const int fout = errno;
    IOUNLINK(pad.c_str());
    errno = fout;
    return goed;
}

// A plain file that may be read and written, or none.
bool bestand_goed(const std::string& pad) {
    struct stat st;
    if (stat(pad.c_str(), &st) != 0)
        return errno == ENOENT;
    if (!S_ISREG(st.st_mode)) {
        errno = EINVAL;
        return false;
    }
    return access(pad.c_str(), R_OK | W_OK) == 0;
}

// An index of the former version stops whoever opens it, IXCHECK too.
bool van_vroeger(const std::string& index) {
    IXHEADER h;
    const int fd = SYS.open(index.c_str(), O_RDONLY | O_CLOEXEC, 0);
    const ssize_t n = fd < 0 ? -1 : SYSLEES(fd, &h, sizeof h, 0);
    if (fd >= 0)
        SYS.close(fd);
    return n == static_cast<ssize_t>(sizeof h) && h.version == IXVERSIE - 1;
}

// May it be made, or its index again, without stopping the program?
bool te_maken(const char* naam, int reclen) {
    const std::string map(naam, static_cast<size_t>(IOBASENAME(naam) - naam));
    const int64_t omvang = IOSIZE(IXDATAPAD(naam).c_str());
    errno = EINVAL;
    return (omvang <= 0 || omvang % reclen == 0) &&
           access(map.empty() ? "." : map.c_str(), R_OK | W_OK | X_OK) == 0 && ruimte(map);
}

ICB* open_eigen(const char* naam, int modus, void (*definieer)(ICB*), void (*eerste)(ICB*)) {
    std::string index = IXINDEXPAD(naam), data = IXDATAPAD(naam);
    bool datamist = !IOEXISTS(data.c_str());
    if (IXCHECK(naam) < 0 || datamist)
        IOUNLINK(index.c_str());
    if (!IOEXISTS(index.c_str()))
        maak(naam, datamist, definieer);
    if (eerste && IOSIZE(data.c_str()) == 0) // new, or its maker was killed before it came to this
        vul(naam, eerste);
    return IXOPEN(naam, modus);
}

} // namespace

void UPDFCB_INX(const char* titel, const void* adres, int reclen) {
    tekst[0] = '\0';
    voeg("%-.19s,%d", titel, reclen);
    basis = static_cast<const char*>(adres);
    sleutel = 0;
}

void UPDFCB_KEY(int nr, const char* naam, int dubbel) {
    tekst[0] = '\0';
    voeg("%-.8s", naam);
    if (!dubbel)
        voeg(",NODUPS");
    sleutel = nr;
}

void UPDFCB_FLD(char letter, const void* veld, int breedte) {
    long positie = static_cast<const char*>(veld) - basis + 1;
    voeg(",%c,%ld,%ld", letter, positie, positie + breedte - 1);
}

void UPDFCB_END(ICB* icb) {
    if (sleutel >= 0)
        IXUPDFCB(icb, sleutel, tekst);
    sleutel = -1;
    tekst[0] = '\0';
}

std::string IXTIJDELIJK(const char* tabel, int slot) {
    char nr[16];
    snprintf(nr, sizeof nr, ".%02d", slot);
    return tabel + std::string(nr);
}

ICB* IXEIGEN(const char* naam, int modus, void (*definieer)(ICB*), void (*eerste)(ICB*)) {
    const IOBEURT beurt(naam);
    return open_eigen(naam, modus, definieer, eerste);
}

ICB* IXEIGENOF(const char* naam, int modus, int reclen, void (*definieer)(ICB*), void (*eerste)(ICB*)) {
    const std::string index = IXINDEXPAD(naam), data = IXDATAPAD(naam);
    const IOBEURT beurt(naam);
    if (!bestand_goed(index) || !bestand_goed(data))
        return nullptr;
    errno = EINVAL;
    if (van_vroeger(index))
        return nullptr;
    if (!IOEXISTS(data.c_str()) || IXCHECK(naam) < 0 || (eerste && IOSIZE(data.c_str()) == 0)) {
        if (!te_maken(naam, reclen))
            return nullptr;
    } else if (!IXDIEPCHECK(naam).empty() && (!IXBLDIX(naam) || !IXDIEPCHECK(naam).empty())) {
        errno = EINVAL;
        return nullptr;
    }
    ICB* icb = open_eigen(naam, modus, definieer, eerste);
    if (icb->h.reclen == reclen)
        return icb;
    IXCLOSE(icb);
    errno = EINVAL;
    return nullptr;
}

} // namespace zg
