// Module ioink: the price file opened, its sets read. inkschrijf.cpp writes them, inkgroep.cpp has the groups.
#include "shared/ioink.h"
#include "shared/inkdeel.h"
#include "shared/iotab.h"
#include "shared/report.h"
#include "shared/syscalls.h"
#include "shared/teksten.h"
#include "term/datum.h"
#include <set>
#include <string>
#include <unistd.h>

namespace zg {

inkbestand ink = {nullptr, -1, 0};

namespace {

constexpr char SETS[] = "DTIPA";
constexpr int DELEN_SET = 4; // of key 1, without the last day

void eis_open() {
    if (!ink.dtipa)
        INTERNAL("ioink", 3);
    if (ink.fd < 0)
        INTERNAL("ioink", 4);
}

struct Buffer {
    uint8_t bytes[IXRECMAX + 1] = {};
    explicit Buffer(const prijsset& set) { memcpy(bytes, &set, sizeof set); }
    prijsset set() const {
        prijsset uit{};
        stam_uit(bytes, ink.dtipa->h.reclen, &uit);
        return uit;
    }
};

// A set by `haal`, and its chain. Readers take no lock: a chain that doesn't fit may be one in change, so it counts as
// damaged only when it is so twice while nobody writes.
template <class F> Prijsset lees(F haal, prijsset* set, prijsgroepen* groepen) {
    constexpr int GEDULD = 400, PAUZE = 5000; // tries, and microseconds between them
    std::vector<inkrecord> keten;
    Inkfout fout;
    int32_t waar;
    int rust = 0;
    for (int poging = 0;; poging++) {
        int32_t nr = INK_SYSRECORD;
        const bool niemand = poging > 0 && (iotab_fd() < 0 || iotab('T', &nr, nullptr, SYS_RECORD));
        groepen->clear();
        if (!haal(set))
            return Prijsset::geen;
        fout = ink_keten(*set, &keten, &waar);
        if (fout == Inkfout::geen || (niemand && ++rust == 2) || poging == GEDULD)
            break;
        if (poging > 0 && !niemand)
            usleep(PAUZE);
    }
    for (const inkrecord& r : keten) {
        prijsgroep g{};
        memcpy(g.maten, r.rec.maten, sizeof g.maten);
        g.bruto = r.rec.bruto;
        g.netto = r.rec.netto;
        groepen->push_back(g);
    }
    if (fout == Inkfout::geen)
        return Prijsset::gelezen;
    ink_meld(*set, fout, waar, false);
    return Prijsset::stuk;
}

// The first set of a series and supplier from a day on, by its key and then by its number: where the end of the file was
// lost it isn't there, and that closes one line, while a walk would stop the program.
bool eerste_set(prijsset* uit) {
    int er = 0;
    for (int poging = 0; poging < 3;
         poging++) { // the record may have become another's since its key was seen
        Buffer b(*uit);
        IXSWITCH(ink.dtipa, 1);
        ink.dtipa->currec = 0;
        if (!IXFIRSTK(ink.dtipa, b.bytes, DELEN_SET + 1))
            return false;
        er = IXGET(ink.dtipa, b.bytes, ink.dtipa->currec);
        const prijsset set = b.set();
        if (er == 1 && zelfde_serie(set.serie, uit->serie) && set.setnr == uit->setnr &&
            set.tot >= uit->tot) {
            *uit = set;
            return true;
        }
    }
    return er == 1 && ioink_move('F', uit, DELEN_SET, 1);
}

} // namespace

void ioink_open(int modus) {
    if (ink.dtipa)
        INTERNAL("ioink", 1);
    if (ink.fd >= 0)
        INTERNAL("ioink", 2);
    ink.modus = modus;
    ink.dtipa = IXOPEN(SETS, modus);
    ink.fd = SYS.open(INK_GROEPEN, (modus ? O_RDWR : O_RDONLY) | O_CLOEXEC, 0);
    if (ink.fd < 0)
        OPENFAIL("ioink", INK_GROEPEN);
}

void ioink_close() {
    if (ink.dtipa)
        IXCLOSE(ink.dtipa);
    if (ink.fd >= 0)
        SYS.close(ink.fd);
    ink = {nullptr, -1, 0};
    gebruiker_stand(1);
}

ICB* ioink_icb() {
    return ink.dtipa;
}

Prijsset ioink_find(const seriesleutel& serie, uint16_t setnr, uint16_t datum, prijsset* set,
                    prijsgroepen* groepen) {
    eis_open();
    return lees(
        [&](prijsset* uit) {
            *uit = {};
            uit->serie = serie;
            uit->setnr = setnr;
            uit->tot = datum;
            return eerste_set(uit) && uit->van <= datum;
        },
        set, groepen);
}

Prijsset ioink_read(prijsset* set, prijsgroepen* groepen) {
    eis_open();
    return lees(
        [](prijsset* uit) {
            Buffer b(*uit);
            const int gelezen = IXREAD(ink.dtipa, b.bytes);
            if (gelezen)
                *uit = b.set();
            return gelezen == 1;
        },
        set, groepen);
}

bool ioink_move(char letter, prijsset* set, int delen, int sleutel) {
    if (!ink.dtipa)
        INTERNAL("ioink", 3);
    Buffer b(*set);
    IXSWITCH(ink.dtipa, sleutel);
    const int gevonden = letter == 'F'   ? IXFIRSTR(ink.dtipa, b.bytes, delen)
                         : letter == 'N' ? IXNEXTR(ink.dtipa, b.bytes, delen)
                         : letter == 'P' ? IXPREVR(ink.dtipa, b.bytes, delen)
                                         : 0;
    IXSWITCH(ink.dtipa, 1);
    if (gevonden)
        *set = b.set();
    return gevonden == 1;
}

std::vector<inkset> ink_verzamel(const seriesleutel& serie, int delen, uint16_t setnr, uint16_t tot) {
    prijsset set{};
    set.serie = serie;
    set.setnr = setnr;
    set.tot = tot;
    std::vector<inkset> uit;
    for (char letter = 'F'; ioink_move(letter, &set, delen, 1); letter = 'N') {
        inkset s{set, {}, Inkfout::geen, -1};
        s.fout = ink_keten(set, &s.keten, &s.waar);
        uit.push_back(s);
    }
    return uit;
}

bool ink_heel(const inkset& s) {
    if (s.fout != Inkfout::geen)
        ink_meld(s.set, s.fout, s.waar, true);
    return s.fout == Inkfout::geen;
}

void ioink_ontbreekt(const char* tag, const seriesleutel& serie, uint16_t setnr, uint16_t datum,
                     const char* gevolg) {
    static std::set<std::string> verteld;
    char regel[120];
    snprintf(regel, sizeof regel, "%s: %ld.%hu.%hu  %hu  %s %s", tag, static_cast<long>(serie.artikelgroep),
             serie.kleur, serie.volgnummer, setnr, DATUM8(datum), TXT(T_INK_GEEN_SET));
    if (verteld.insert(regel).second)
        ALARMBOX(regel, gevolg);
}

} // namespace zg
