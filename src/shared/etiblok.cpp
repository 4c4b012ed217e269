// Module ioeti: the block in memory, those read along with it, and what is wrong with one.
#include "shared/etibinnen.h"
#include "shared/iotab.h"
#include "shared/report.h"
#include "shared/syscalls.h"
#include "shared/teksten.h"
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <set>
#include <string>

namespace zg {
namespace eti {

int fd = -1;
bool gewapend;
seriesleutel serie;
int32_t* kop;
etiblok blok;
int32_t blok_nr = -1;
char letter;

namespace {

etischade schade;

// Blocks that a walk has read along with the one it came to: those of a chain mostly lie one behind the other. A block that
// is written isn't in it any more.
constexpr int MEEGELEZEN = 32;
struct {
    int32_t van;
    int aantal;
    etiblok blokken[MEEGELEZEN];
} mee;

// Into memory from there; read with those behind it when it isn't there yet.
bool lees_mee(int32_t nr) {
    if (nr < mee.van || nr - mee.van >= mee.aantal) {
        if (nr > ioeti_hoogste_blok())
            return false;
        const ssize_t n = IOLEES(fd, mee.blokken, sizeof mee.blokken, begin(nr));
        mee.van = nr;
        mee.aantal = n > 0 ? static_cast<int>(n / static_cast<ssize_t>(sizeof(etiblok))) : 0;
        if (!mee.aantal)
            return false;
    }
    blok = mee.blokken[nr - mee.van];
    return true;
}

} // namespace

void vergeet_mee() {
    mee.aantal = 0;
}

int64_t blokken() {
    const int64_t omvang = IOOMVANG(fd);
    return (omvang + static_cast<int64_t>(sizeof(etiblok)) - 1) / static_cast<int64_t>(sizeof(etiblok));
}

bool beschadigd(int32_t nr, const char* fmt, ...) {
    va_list lijst;
    va_start(lijst, fmt);
    vsnprintf(schade.reden, sizeof schade.reden, fmt, lijst);
    va_end(lijst);
    schade.blok = nr;
    return false;
}

bool lees_los(int32_t nr, etiblok* naar) {
    if (nr < 0 || nr > ioeti_hoogste_blok())
        return beschadigd(nr, "%s", TXT(T_ETI_ONGELDIG));
    const ssize_t n = IOLEES(fd, naar, sizeof *naar, begin(nr));
    return n == static_cast<ssize_t>(sizeof *naar) || beschadigd(nr, "%s", TXT(T_ETI_BUITEN));
}

bool lees(int32_t nr, bool mee_lezen) {
    if (nr != blok_nr || nr < 0) {
        blok_nr = -1;
        if (!(mee_lezen && lees_mee(nr)) && !lees_los(nr, &blok))
            return false;
        blok_nr = nr;
    }
    return !gewapend || zelfde_serie(blok.serie, serie) ||
           beschadigd(nr, "%s %d.%d.%d", TXT(T_ETI_NIET_VAN), serie.artikelgroep, serie.kleur,
                      serie.volgnummer);
}

int volgend_blok(int64_t* gelopen) {
    const int32_t van = blok_nr, naar = blok.volgende;
    if (naar == -1)
        return 0;
    static int64_t grens;
    if (++*gelopen > grens)
        grens = blokken();
    if (*gelopen > grens || naar == van) {
        beschadigd(van, "%s", TXT(T_ETI_ROND));
        return -1;
    }
    return lees(naar, naar == van + 1) ? 1 : -1;
}

void stop(int32_t nr) {
    const int fout = errno;
    gebruiker_stand(11);
    SCRFATAL("%s(%d): a=%c,f=%d,r=%d -> %s", "ioeti", fout, letter, fd, nr, schade.reden);
}

} // namespace eti

using namespace eti;

int32_t ioeti_hoogste_blok() {
    switch (instel15.etiketcijfers) {
    case 6:
        return 99'999;
    case 8:
        return 2'999'999;
    default:
        return 999'999;
    }
}

const etischade& ioeti_schade() {
    return schade;
}

void ioeti_keur_af(int32_t nummer, const char* reden) {
    beschadigd((nummer - 1) / ETIPLAATSEN, "%s", reden);
}

void ioeti_schademeld(const seriesleutel& van, bool eens) {
    static std::set<std::string> verteld;
    char regel[80];
    snprintf(regel, sizeof regel, TXT(T_ETI_SCHADE), BESTAND, van.artikelgroep, van.kleur, van.volgnummer,
             schade.blok);
    const std::string reden = schade.reden;
    const bool nieuw = verteld.insert(regel + reden).second;
    if (nieuw || !eens)
        ALARMBOX(regel, reden.c_str());
}

} // namespace zg
