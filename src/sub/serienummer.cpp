// Numbers of series: the sequence number, reserved before its record is there, and the running number.
//
// The queue of reserved keys names no owner and outlives the programs. So:
// 1. A key is written into the file of the user's slot before it is reserved, and taken out of it behind the moment that
//    it is no longer.
// 2. What a slot's file names at the slot's start is given up: its program is dead. Another may have had the same number
//    in hand all along, and this one may have died in front of its try: so a key that a living slot's file names stays,
//    and stays noted, for the start behind this one.
#include "sub/serienummer.h"
#include "shared/iotab.h"
#include "shared/report.h"
#include "shared/sleutelstand.h"
#include "shared/syscalls.h"
#include "sub/afb_hdl.h"
#include "sub/omserie.h"
#include <algorithm>
#include <cerrno>
#include <vector>

namespace zg {
namespace {

constexpr int SYS_SERIE = 2;
constexpr int SLEUTEL_NUMMER = 3;

bool gereserveerd;
seriesleutel nummer; // the one in hand
Sleutels rest;       // of earlier runs of this slot, others' for now

// The file of this slot anew. In place: what it names must not be unnamed for a moment.
bool noteer(const Sleutels& sleutels) {
    const std::string naam = serie_notitie(sessie);
    if (sleutels.empty()) {
        SYS.unlink(naam.c_str());
        return true;
    }
    const size_t bytes = sleutels.size() * sizeof sleutels[0];
    const int fd = SYSNIEUW(naam.c_str(), O_WRONLY);
    const bool goed = fd >= 0 && SYSSCHRIJFOP(fd, sleutels.data(), bytes, 0) &&
                      SYS.ftruncate(fd, static_cast<off_t>(bytes)) == 0;
    const int fout = errno;
    if (fd >= 0)
        SYS.close(fd);
    if (!goed)
        SCHRIJFFOUT(naam.c_str(), fout);
    return goed;
}

bool nummer_bezet(int32_t nr) {
    serrec zoek{};
    zoek.nummer = nr;
    uint8_t rec[IXRECMAX] = {};
    memcpy(rec, &zoek, sizeof zoek);
    if (dtser->h.nkeys >= SLEUTEL_NUMMER) {
        const Sleutelstand k(dtser, SLEUTEL_NUMMER);
        return IXEXISTS(dtser, rec) != 0;
    }
    // A file without that key is walked.
    for (int32_t plaats = 0;; plaats++) {
        const int antwoord = IXGET(dtser, rec, plaats);
        if (antwoord < 0)
            return false;
        stam_uit(rec, dtser->h.reclen, &zoek);
        if (antwoord && zoek.nummer == nr)
            return true;
    }
}

} // namespace

bool serie_gereserveerd(const seriesleutel& sleutel) {
    return gereserveerd && zelfde_serie(nummer, sleutel);
}

void serie_nummer_gebruikt() {
    gereserveerd = false;
    noteer(rest);
}

bool serie_volgnummer_neem(const seriesleutel& sleutel) {
    if (serie_gereserveerd(sleutel))
        return true;
    serie_nummer_los();
    const Sleutelstand k1(dtser);
    Seriebuffer zoek(sleutel);
    if (sleutel.volgnummer == 0 || IXEXISTS(dtser, zoek.rec))
        return false;
    Sleutels met = rest;
    met.push_back(sleutel);
    if (!noteer(met))
        return false;
    const int gelezen = IXREADT(dtser, zoek.rec);
    if (gelezen == 1)
        IXUNLOCK(dtser, zoek.rec);
    gereserveerd = gelezen == 0;
    if (!gereserveerd) {
        noteer(rest);
        return false;
    }
    nummer = sleutel;
    afb_wis(sleutel); // of a series that was deleted half
    return true;
}

uint16_t serie_volgnummer_vrij(int32_t artikelgroep, uint16_t kleur, uint16_t vanaf) {
    const Sleutelstand k1(dtser);
    for (unsigned volg = std::max<unsigned>(vanaf, 1); volg <= VOLGNUMMER_MAX; volg++) {
        const seriesleutel sleutel{artikelgroep, kleur, static_cast<uint16_t>(volg)};
        if (IXEXISTS(dtser, Seriebuffer(sleutel).rec))
            continue;
        const int geweigerd = IXWEIGERINGEN;
        if (serie_volgnummer_neem(sleutel))
            return sleutel.volgnummer;
        if (IXWEIGERINGEN != geweigerd)
            break;
    }
    return 0;
}

void serie_nummer_los() {
    if (!gereserveerd)
        return;
    const Sleutelstand k1(dtser);
    const int geweigerd = IXWEIGERINGEN;
    afb_wis(nummer); // chosen for a series that doesn't come
    IXUNLOCK(dtser, Seriebuffer(nummer).rec);
    gereserveerd = false;
    if (IXWEIGERINGEN != geweigerd)
        rest.push_back(nummer); // stays noted, for the next start
    noteer(rest);
}

void serie_nummers_opruimen() {
    gereserveerd = false;
    rest.clear();
    const Sleutels oud = serie_genoteerd(sessie);
    const Sleutelstand k1(dtser);
    for (const seriesleutel& sleutel : oud) {
        const int geweigerd = IXWEIGERINGEN;
        if (!serie_nummer_levend(sleutel)) {
            IXBLDKEY(dtser, Seriebuffer(sleutel).rec, IXKEYLEN(dtser, 0));
            IXLOCK(dtser, 14);
            if (IXWEIGERINGEN == geweigerd)
                continue;
        }
        rest.push_back(sleutel);
    }
    if (!oud.empty())
        noteer(rest);
}

int32_t serie_nummer_nieuw() {
    return iotab_teller(SYS_SERIE, SERIENUMMER_MAX, nummer_bezet);
}

} // namespace zg
