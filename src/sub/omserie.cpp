// The files of the registration, and the record of a series: read, held, written; its mutations. Its numbers:
// sub/serienummer.cpp.
#include "sub/omserie.h"
#include "shared/files.h"
#include "shared/ioeti.h"
#include "shared/ioink.h"
#include "shared/leesstam.h"
#include "shared/mutatie.h"
#include "shared/report.h"
#include "shared/sleutelstand.h"
#include "sub/afb_hdl.h"
#include "sub/serienummer.h"
#include "sub/teksten.h"
#include "term/datum.h"
#include "term/prompt.h"
#include "term/vast.h"
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <set>

namespace zg {

ICB *dtser, *dtserpic, *dtean, *dtordnr;

namespace {

constexpr int LEZEN = 0, SHARED = 2;

constexpr Stambestand BESTANDEN[] = {
    {"DTEAN", &dtean},
    {"DTSER", &dtser},
    {"DTSERPIC", &dtserpic, true},
    {"DTORDNR", &dtordnr},
};

// The series in hand. What its record has beyond the struct stays as it is.
struct {
    bool vast;
    seriesleutel sleutel;
    uint8_t ruimte[IXRECMAX];
} hand;

// A size of a series by its place on the bar.
std::string maattekst(const seriesleutel& s, int positie) {
    char tekst[40];
    snprintf(tekst, sizeof tekst, "%05d%03u%04u%02d", s.artikelgroep, s.kleur, s.volgnummer, positie);
    return tekst;
}

bool van_serie(const uint8_t* rec, const seriesleutel& sleutel) {
    return memcmp(rec, &sleutel, sizeof sleutel) == 0;
}

void in_hand(const seriesleutel& sleutel) {
    hand.vast = true;
    hand.sleutel = sleutel;
    mutaties_houd();
}

} // namespace

bool register_aanwezig() {
    if (IOEXISTS("DTSER.INX"))
        return true;
    if (IOEXISTS("DTSER.TXT")) {
        errno = ENOENT;
        OPENFAIL("omserie", "DTSER.INX");
    }
    return false;
}

void register_open(bool lezen) {
    stam_open("omserie", BESTANDEN, lezen);
    dtser->kijktzelf = 1; // a series that is damaged closes its line (serie_kwijt), and stops nobody
    ioeti('O', nullptr, nullptr);
    ioink_open(lezen ? LEZEN : SHARED);
    afb_instelling();
    if (!lezen)
        serie_nummers_opruimen();
}

void register_sluit() {
    if (!dtser)
        return;
    serie_los();
    serie_nummer_los();
    ioink_close();
    ioeti('C', nullptr, nullptr);
    stam_sluit(BESTANDEN);
}

void register_ververs() {
    ioeti_heropen(); // pairs have written all they have as soon as a call returns
}

bool register_heel(ICB* paar, const char* gevolg, const char* gevolg2) {
    for (ICB* icb : {dtser, ioink_icb(), dtean, dtserpic, dtordnr}) {
        if (!icb || (paar && icb != paar) || IXHEEL(icb))
            continue;
        char regel[80];
        snprintf(regel, sizeof regel, TXT(T_REG_NIET_HEEL), icb->path);
        ALARMBOX(regel, gevolg ? gevolg : TXT(T_REG_NIETS_VAST), gevolg2);
        return false;
    }
    return true;
}

bool serie_lees(const seriesleutel& sleutel, serrec* rec) {
    Seriebuffer buffer(sleutel);
    const Sleutelstand k1(dtser);
    if (IXREAD(dtser, buffer.rec) != 1 || !van_serie(buffer.rec, sleutel))
        return false;
    stam_uit(buffer.rec, dtser->h.reclen, rec);
    return true;
}

bool serie_kwijt(const seriesleutel& sleutel) {
    constexpr int KEREN = 3; // a series may go between index and record, and comes record first
    static std::set<std::string> verteld;
    const Sleutelstand k1(dtser);
    for (int keer = 0; keer < KEREN; keer++) {
        Seriebuffer buffer(sleutel);
        if (!IXEXISTS(dtser, buffer.rec) ||
            (IXREAD(dtser, buffer.rec) == 1 && van_serie(buffer.rec, sleutel)))
            return false;
    }
    char regel[80];
    snprintf(regel, sizeof regel, TXT(T_SER_SCHADE), "DTSER.TXT", serie_tekst(sleutel).c_str(),
             dtser->currec);
    if (verteld.insert(regel).second)
        ALARMBOX(regel, TXT(T_SER_INCONSISTENT));
    return true;
}

bool serie_neem(const seriesleutel& sleutel, serrec* rec) {
    const seriesleutel deze = sleutel; // may be part of *rec
    serie_los();
    // An absent series is not asked for with its lock: that would reserve its number.
    if (!serie_lees(deze, rec))
        return false;
    memcpy(hand.ruimte, Seriebuffer(deze).rec, sizeof hand.ruimte);
    const Sleutelstand k1(dtser);
    const int gelezen = IXREADL(dtser, hand.ruimte);
    if (gelezen != 1) { // deleted meanwhile
        if (gelezen == 0)
            IXUNLOCK(dtser, Seriebuffer(deze).rec);
        return false;
    }
    if (!van_serie(hand.ruimte, deze)) {
        IXLOCK(dtser, 13);
        return false;
    }
    stam_uit(hand.ruimte, dtser->h.reclen, rec);
    in_hand(deze);
    return true;
}

void serie_los() {
    if (hand.vast) {
        hand.vast = false;
        const Sleutelstand k1(dtser);
        if (IXEXISTS(dtser, Seriebuffer(hand.sleutel).rec)) // a deleted one took its lock along
            IXLOCK(dtser, 13);
    }
    mutaties_stuur();
}

bool serie_vast(const seriesleutel& sleutel) {
    return hand.vast && zelfde_serie(hand.sleutel, sleutel);
}

bool serie_elders_in_hand(const seriesleutel& sleutel) {
    if (serie_vast(sleutel))
        return false;
    const Sleutelstand k1(dtser);
    const int gelezen = IXREADT(dtser, Seriebuffer(sleutel).rec);
    if (gelezen >= 0)
        IXUNLOCK(dtser, Seriebuffer(sleutel).rec);
    return gelezen < 0;
}

bool serie_schrijf(const serrec& rec) {
    const seriesleutel sleutel = rec.serie;
    const bool nieuw = serie_gereserveerd(sleutel);
    if (!nieuw && !serie_vast(sleutel))
        INTERNAL("omserie", 1);
    uint8_t ruimte[IXRECMAX] = {};
    if (!nieuw)
        memcpy(ruimte, hand.ruimte, sizeof ruimte);
    memcpy(ruimte, &rec, sizeof rec);
    {
        const Sleutelstand k1(dtser);
        const int geweigerd = IXWEIGERINGEN;
        if (!IXWRITEK(dtser, ruimte)) {
            if (IXWEIGERINGEN == geweigerd)
                error("%s", TXT(T_NIET_VASTGELEGD));
            return false;
        }
    }
    memcpy(hand.ruimte, ruimte, sizeof ruimte);
    if (nieuw) {
        in_hand(sleutel);
        serie_nummer_gebruikt();
    }
    return true;
}

int32_t serie_stempel(uint16_t orderdatum, uint16_t tijdstempel) {
    static const uint16_t begin = DATUMNR("01011980");
    constexpr int64_t DAG = 24 * 60 * 60;
    return static_cast<int32_t>(
        std::clamp<int64_t>((orderdatum - begin) * DAG + 2 * int64_t{tijdstempel}, INT32_MIN, INT32_MAX));
}

bool serie_mag(const serrec& rec, int32_t stempel) {
    return rec.stempel <= stempel;
}

void serie_mutatie(char letter, const serrec& rec, uint16_t oud_merk) {
    if (!instel15.overdracht)
        return;
    char tekst[64];
    if (letter == MUT_SERIE)
        snprintf(tekst, sizeof tekst, "%07d%04u%05d%-15.15s*%c", rec.nummer, oud_merk, rec.serie.artikelgroep,
                 std::string(VASTUIT(rec.model)).c_str(), rec.regtype ? 'M' : 'E');
    else
        snprintf(tekst, sizeof tekst, "%05d%03u%04u", rec.serie.artikelgroep, rec.serie.kleur,
                 rec.serie.volgnummer);
    mutatie(letter, tekst);
}

void serie_mutatie_maat(const seriesleutel& serie, int positie) {
    mutatie(MUT_MAAT, maattekst(serie, positie));
}

void serie_mutatie_ean(const eanrec& rec, int positie) {
    mutatie(MUT_EAN, maattekst({rec.artikelgroep, rec.kleur, rec.volgnummer}, positie));
}

} // namespace zg
