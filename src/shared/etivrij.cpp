// Module ioeti: blocks taken from the free ones and given back to them. System record 4, held with 'X' while blocks and
// counters are written, says which is the next; free blocks are chained from it and the last leads to the first that
// the file hasn't got yet (`hoogste`).
#include "shared/etibinnen.h"
#include "shared/iotab.h"
#include "shared/report.h"
#include "shared/syscalls.h"
#include "shared/teksten.h"
#include <algorithm>
#include <cerrno>
#include <cstring>

namespace zg {

using namespace eti;

namespace {

enum class Tellers { heel, vol, stuk };

// Batch runs stay out while it lives.
struct Bezig {
    Bezig() : stond(gebruiker_stand(10)) {}
    ~Bezig() { gebruiker_stand(stond); }
    Bezig(const Bezig&) = delete;
    Bezig& operator=(const Bezig&) = delete;
    const uint8_t stond; // 10 and above within a step that is marked already
};

bool is_vrij(const etiblok& b) {
    return zelfde_serie(b.serie, seriesleutel{}) &&
           std::all_of(b.plaats, b.plaats + ETIPLAATSEN, [](const uint8_t* p) { return !eti_status(p); });
}

bool tellers_kloppen(const sysetiket& t) {
    if (t.vrijkop < 0 || t.vrijkop > t.hoogste || t.hoogste > ioeti_hoogste_blok() + 1)
        return beschadigd(t.vrijkop, "%s", TXT(T_ETI_TELLERS));
    // A block at the end that the counters don't know is somebody's; an end far behind the file is of another file.
    return (SYSOMVANG(fd) <= begin(t.hoogste) && t.hoogste <= blokken() + VOORUIT) ||
           beschadigd(t.hoogste, "%s", TXT(T_ETI_TELLERS));
}

// Link of a free block, which must look free; -1 when it is damaged.
int32_t volgende_vrije(int32_t nr, const sysetiket& t) {
    etiblok b;
    if (!lees_los(nr, &b))
        return -1;
    if (is_vrij(b) && b.volgende >= 0 && b.volgende <= t.hoogste && b.volgende != nr)
        return b.volgende;
    beschadigd(nr, "%s", TXT(T_ETI_VRIJKETEN));
    return -1;
}

// The counters with their next block taken.
Tellers neem_blok(const sysetiket& t, sysetiket* na) {
    if (!tellers_kloppen(t))
        return Tellers::stuk;
    *na = t;
    if (t.vrijkop == t.hoogste) {
        if (t.hoogste > ioeti_hoogste_blok())
            return Tellers::vol;
        na->vrijkop++;
        na->hoogste++;
        na->vrij = 0;
        return Tellers::heel;
    }
    na->vrijkop = volgende_vrije(t.vrijkop, t);
    if (na->vrij > 0)
        na->vrij--;
    return na->vrijkop < 0 ? Tellers::stuk : Tellers::heel;
}

bool schrijf_blok(int32_t nr, const etiblok& b) {
    return SYSVERVANG(fd, &b, sizeof b, begin(nr));
}

void tellers(char actie, sysetiket* t) {
    int32_t nr = 4;
    iotab(actie, &nr, t, SYS_RECORD);
}

bool tellers_schrijf(char actie, sysetiket* t) {
    int32_t nr = 4;
    return iotab(actie, &nr, t, SYS_RECORD) != 0;
}

// One block to the free ones, counters in hand.
bool geef_terug(int32_t nr, sysetiket* t) {
    etiblok leeg{};
    leeg.volgende = t->vrijkop;
    if (!schrijf_blok(nr, leeg))
        return false;
    t->vrijkop = nr;
    t->vrij++;
    return true;
}

// The end of the chain, read now, gets its link.
bool hang_aan(int32_t laatste, int32_t nr) {
    if (!SYSVERVANG(fd, &nr, sizeof nr, begin(laatste) + static_cast<int64_t>(offsetof(etiblok, volgende))))
        return false;
    if (blok_nr == laatste)
        blok.volgende = nr;
    return true;
}

} // namespace

namespace eti {

int nieuw_blok(int32_t laatste, uint8_t etiketsoort, const uint8_t* plaats, int32_t* nr) {
    ioeti_vergeet();
    if (laatste >= 0) {
        if (!lees(laatste))
            stop(laatste);
        if (blok.volgende != -1) {
            beschadigd(laatste, "%s", TXT(T_ETI_ONGELDIG));
            stop(laatste);
        }
    }
    const Bezig bezig;
    sysetiket was, na;
    tellers('X', &was);
    const Tellers uitslag = neem_blok(was, &na);
    if (uitslag != Tellers::heel) {
        tellers('U', &was);
        if (uitslag == Tellers::stuk)
            stop(ioeti_schade().blok);
        ALARMBOX(TXT(T_ETI_VOL));
        return 0;
    }
    etiblok nieuw{};
    nieuw.serie = serie;
    nieuw.etiketsoort = etiketsoort;
    nieuw.volgende = -1;
    if (plaats)
        memcpy(nieuw.plaats[0], plaats, ETIPLAATS);
    if (!tellers_schrijf('w', &na)) {
        tellers('U', &was);
        return 0;
    }
    *nr = was.vrijkop;
    if (!schrijf_blok(*nr, nieuw)) {
        const int fout = errno;
        tellers('W', &was);
        SCHRIJFFOUT(BESTAND, fout);
        return 0;
    }
    tellers('U', &was);
    if (laatste < 0) {
        *kop = *nr;
    } else if (!hang_aan(laatste, *nr)) {
        const int fout = errno;
        tellers('X', &na);
        if (tellers_kloppen(na) && geef_terug(*nr, &na))
            tellers('W', &na);
        else
            tellers('U', &na);
        SCHRIJFFOUT(BESTAND, fout);
        return 0;
    }
    blok = nieuw;
    blok_nr = *nr;
    return 1;
}

} // namespace eti

int64_t ioeti_ruimte(int64_t nodig) {
    constexpr int POGINGEN = 5;
    sysetiket t, weer;
    tellers('R', &t);
    // Read without a lock: where the counters have moved on meanwhile, damage may be none.
    for (int i = 0; i < POGINGEN; i++) {
        int64_t vrije = 0;
        int32_t nr = tellers_kloppen(t) ? t.vrijkop : -1;
        for (; nr >= 0 && nr != t.hoogste && vrije < nodig && vrije <= t.hoogste; vrije++)
            nr = volgende_vrije(nr, t);
        if (nr >= 0 && vrije <= t.hoogste)
            return vrije + ioeti_hoogste_blok() + 1 - t.hoogste;
        if (nr >= 0)
            beschadigd(nr, "%s", TXT(T_ETI_VRIJKETEN));
        weer = t;
        tellers('R', &t);
        if (!memcmp(&weer, &t, sizeof t))
            break;
    }
    return -1;
}

bool ioeti_vrij(const seriesleutel& van, int32_t* eerste) {
    letter = 'V';
    ioeti_vergeet();
    const Bezig bezig;
    sysetiket t;
    tellers('X', &t);
    if (!tellers_kloppen(t)) {
        tellers('U', &t);
        ioeti_schademeld(van);
        return false;
    }
    int32_t nr = *eerste;
    etiblok b;
    int fout = 0;
    bool heel = true;
    for (int64_t ruimte = blokken(); nr >= 0; ruimte--) {
        heel = ruimte > 0 && lees_los(nr, &b) && zelfde_serie(b.serie, van);
        if (!heel)
            break;
        if (!geef_terug(nr, &t)) {
            fout = errno;
            break;
        }
        nr = b.volgende;
    }
    const bool geteld = tellers_schrijf('W', &t);
    *eerste = fout ? nr : -1;
    if (fout)
        SCHRIJFFOUT(BESTAND, fout);
    return geteld && !fout && heel;
}

} // namespace zg
