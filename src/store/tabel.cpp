// Definition texts from field addresses, names of private indexes, and the set-up of a program's own tables.
#include "store/tabel.h"
#include "shared/files.h"
#include "shared/report.h"
#include "store/node.h"
#include "store/rebuild.h"
#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <fcntl.h>
#include <sys/file.h>
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

// One program at a time sets up the tables of a directory: two that start together would empty each other's. Where
// a directory can't be locked they take their chance.
class Beurt {
public:
    explicit Beurt(const char* naam) {
        std::string map(naam, static_cast<size_t>(IOBASENAME(naam) - naam));
        fd_ = open(map.empty() ? "." : map.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        if (fd_ >= 0)
            while (flock(fd_, LOCK_EX) < 0 && errno == EINTR) {
            }
    }
    ~Beurt() {
        if (fd_ >= 0)
            close(fd_);
    }
    Beurt(const Beurt&) = delete;
    Beurt& operator=(const Beurt&) = delete;

private:
    int fd_;
};

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
    std::string index = IXINDEXPAD(naam), data = IXDATAPAD(naam);
    Beurt beurt(naam);
    bool datamist = !IOEXISTS(data.c_str());
    if (IXCHECK(naam) < 0 || datamist)
        IOUNLINK(index.c_str());
    if (!IOEXISTS(index.c_str()))
        maak(naam, datamist, definieer);
    if (eerste && IOSIZE(data.c_str()) == 0) // new, or its maker was killed before it came to this
        vul(naam, eerste);
    return IXOPEN(naam, modus);
}

} // namespace zg
