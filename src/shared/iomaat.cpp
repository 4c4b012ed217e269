// Module iomaat: sizes of a size type. Two tables that point at each other: `nummers` by size number (link:
// the position, 0 for a size not in use) and `posities` by position (link: the number; the first 0 ends it).
// Links come out of files, so each one is tested before it is used as an index.
#include "shared/iomaat.h"
#include "shared/iotab.h"
#include "shared/report.h"
#include "shared/stamrec.h"
#include "shared/teksten.h"
#include "term/prompt.h"
#include "term/teksten.h"
#include "term/vast.h"
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <new>
#include <string>

namespace zg {

ICB* dtmaat;
ICB* dtmtom;

namespace {

constexpr int REGISTER = 3; // handles open at once, as a guard against ones that are never closed
mthandle* open_handles[REGISTER];

struct [[gnu::packed]] mtomrec { // DTMTOM
    uint8_t stelsel, soort, maatnr;
    int32_t extra1;
    uint16_t extra2;
    uint8_t extra3;
};
static_assert(sizeof(mtomrec) == 10);

bool geldig(int n) {
    return n >= 1 && n <= MATEN;
}

mthandle* eis(mthandle* h) {
    if (!h)
        INTERNAL("iomaat", 4);
    return h;
}

bool standaard(const mthandle& h) {
    return h.stelsel == std::max<uint8_t>(firma.maatstelsel, 1);
}

void registerfout(const char* routine) {
    if (!SCHERM.bestaat) {
        fprintf(stderr, "%s%s\n", routine, TXT(T_FOUT));
        return;
    }
    PIEP();
    FFLASH(-1, 2, A_WAARDE, "", "%s%s\n%s", routine, TXT(T_FOUT), TXT(T_SUPPORT));
}

// The table that is the record on file; the other one is made from it.
maatrij* op_bestand(mthandle* h) {
    return standaard(*h) ? &h->nummers : &h->posities;
}

// 1 read, 0 not there, and then a locked one is reserved; -1 not there and not reserved.
int lees_rij(maatrij* rij, bool op_slot) {
    uint8_t buffer[IXRECMAX + 1] = {rij->stelsel, rij->soort};
    int gelezen = op_slot ? IXREADL(dtmaat, buffer) : IXREAD(dtmaat, buffer);
    if (gelezen == 1)
        stam_uit(buffer, dtmaat->h.reclen, rij);
    return gelezen;
}

// The other table out of the one on file.
void leid_posities_af(mthandle* h) {
    for (int n = 1; n <= MATEN; n++) {
        int p = h->nummers.entry[n].link;
        if (!geldig(p)) {
            h->stuk |= p != 0;
            h->nummers.entry[n].link = 0;
            continue;
        }
        h->stuk |= h->posities.entry[p].link != 0; // two sizes in one place
        memcpy(h->posities.entry[p].naam, h->nummers.entry[n].naam, 3);
        h->posities.entry[p].link = static_cast<uint8_t>(n);
    }
}

void leid_nummers_af(mthandle* h) {
    for (int p = 1; p <= MATEN && geldig(h->posities.entry[p].link); p++) {
        uint8_t* plaats = &h->nummers.entry[h->posities.entry[p].link].link;
        h->stuk |= *plaats != 0;
        *plaats = static_cast<uint8_t>(p);
    }
}

int aantal(const mthandle& h) {
    int p = 0;
    while (p < MATEN && geldig(h.posities.entry[p + 1].link))
        p++;
    return p;
}

// Are there sizes behind the end of the bar?
bool gat(const mthandle& h) {
    for (int p = aantal(h) + 1; p <= MATEN; p++)
        if (h.posities.entry[p].link)
            return true;
    return false;
}

int rang_van(const mthandle& h, int positie) {
    if (!maat_in(h.keuze, h.posities.entry[positie].link))
        return 0;
    int rang = 0;
    for (int p = 1; p <= positie; p++)
        rang += maat_in(h.keuze, h.posities.entry[p].link);
    return rang;
}

void lees_extra(const mthandle& h, mtinfo* info) {
    info->extra1 = 0;
    info->extra2 = 0;
    info->extra3 = 0;
    if (!h.mtom || !maat_in(h.nummers.mtombits, info->maatnr))
        return;
    if (!dtmtom)
        INTERNAL("iomaat", 6);
    uint8_t buffer[IXRECMAX + 1] = {h.stelsel, h.soort, info->maatnr};
    mtomrec rec;
    if (!IXREAD(dtmtom, buffer))
        return;
    stam_uit(buffer, dtmtom->h.reclen, &rec);
    info->extra1 = rec.extra1;
    info->extra2 = rec.extra2;
    info->extra3 = rec.extra3;
}

// The searches answer a position, 0 for none. Of two numbers that a damaged record puts on one position only
// the one that stands there counts: a walk would come back to it for ever.
int positie_van(const mthandle& h, int n) {
    int p = geldig(n) ? h.nummers.entry[n].link : 0;
    return geldig(p) && h.posities.entry[p].link == n ? p : 0;
}

int zoek_nummer(const mthandle& h, char letter, int n) {
    if (letter == 'R')
        return positie_van(h, n);
    if (letter == 'F')
        n = 0;
    int stap = letter == 'P' ? -1 : 1;
    for (n += stap; geldig(n); n += stap)
        if (int p = positie_van(h, n))
            return p;
    return 0;
}

int zoek_positie(const mthandle& h, char letter, int p) {
    int hoogste = aantal(h);
    switch (letter) {
    case 'F':
        p = 1;
        break;
    case 'N':
        p++;
        break;
    case 'P':
        p = p == 0 ? hoogste : std::min(p - 1, hoogste);
        break;
    default:
        break;
    }
    return p >= 1 && p <= hoogste ? p : 0;
}

int zoek_naam(const mthandle& h, char letter, const char* naam) {
    int beste = 0;
    for (int p = 1; p <= aantal(h); p++) {
        const char* deze = h.posities.entry[p].naam;
        int verschil = strncmp(deze, naam, 3);
        if (verschil == 0 && (letter == 'F' || letter == 'R'))
            return p;
        bool dichter = !beste || (letter == 'P' ? strncmp(deze, h.posities.entry[beste].naam, 3) > 0
                                                : strncmp(deze, h.posities.entry[beste].naam, 3) < 0);
        if (letter != 'R' && (letter == 'P' ? verschil < 0 : verschil > 0) && dichter)
            beste = p;
    }
    return beste;
}

int zoek_rang(const mthandle& h, char letter, int rang) {
    int hoogste = 0;
    for (int p = 1; p <= aantal(h); p++)
        hoogste += maat_in(h.keuze, h.posities.entry[p].link);
    if (letter == 'F')
        rang = 1;
    else if (letter == 'N')
        rang++;
    else if (letter == 'P')
        rang = rang > hoogste ? hoogste : rang - 1;
    if (rang < 1 || rang > hoogste)
        return 0;
    for (int p = 1; p <= aantal(h); p++)
        if (maat_in(h.keuze, h.posities.entry[p].link) && --rang == 0)
            return p;
    return 0;
}

// The tables as they are on file; 0 when the disk refused.
int schrijf_rij(mthandle* h) {
    if (!h->gewijzigd)
        return 1;
    maatrij* rij = op_bestand(h);
    if (rij == &h->nummers) {
        sysmaat sys;
        int32_t nr = 8;
        iotab('R', &nr, &sys, SYS_RECORD);
        rij->mtcount = sys.mtcount;
    }
    uint8_t buffer[IXRECMAX + 1] = {rij->stelsel, rij->soort};
    const int weigeringen = IXWEIGERINGEN;
    bool bestaat = IXREAD(dtmaat, buffer); // what a longer record holds behind the sizes stays
    int goed = 1;
    if (aantal(*h) > 0) {
        if (!bestaat)
            memset(buffer, 0, sizeof buffer);
        memcpy(buffer, rij, sizeof *rij);
        goed = IXWRITEK(dtmaat, buffer);
    } else if (bestaat) {
        IXDELETE(dtmaat, buffer);
        goed = weigeringen == IXWEIGERINGEN;
    }
    h->gewijzigd = !goed;
    return goed;
}

void schrijf_extra(mthandle* h, const mtinfo& info, bool weg) {
    if (!h->mtom)
        return;
    if (!dtmtom)
        INTERNAL("iomaat", 6);
    uint8_t buffer[IXRECMAX + 1] = {};
    mtomrec rec{h->stelsel, h->soort, info.maatnr, info.extra1, info.extra2, info.extra3};
    memcpy(buffer, &rec, sizeof rec);
    if (!weg && (info.extra1 & 0xFF) != 0) { // a description begins with a byte that isn't 0
        IXWRITE(dtmtom, buffer);
        maat_aan(h->nummers.mtombits, info.maatnr);
    } else {
        const int er = IXREADL(dtmtom, buffer);
        if (er == 1)
            IXDELETE(dtmtom, buffer);
        else if (er == 0)
            IXUNLOCK(dtmtom, buffer);
        maat_uit(h->nummers.mtombits, info.maatnr);
    }
    memcpy(h->posities.mtombits, h->nummers.mtombits, MAATBYTES);
}

// Put a size at a position in both tables.
void zet(mthandle* h, int positie, int nummer, const char* naam) {
    h->posities.entry[positie].link = static_cast<uint8_t>(nummer);
    memcpy(h->posities.entry[positie].naam, naam, 3);
    h->nummers.entry[nummer].link = static_cast<uint8_t>(positie);
    if (standaard(*h))
        memcpy(h->nummers.entry[nummer].naam, naam, 3);
}

} // namespace

mthandle* mtopen(uint8_t stelsel, uint8_t soort, int vlaggen) {
    if (stelsel == 0 || soort == 0)
        INTERNAL("iomaat", 7);
    if (!dtmaat)
        INTERNAL("iomaat", 5);
    auto* h = new (std::nothrow) mthandle{};
    if (!h)
        NOMEM("iomaat", 1);
    h->stelsel = stelsel;
    h->soort = soort;
    h->schrijven = (vlaggen & 2) != 0;
    h->nummers.stelsel = std::max<uint8_t>(firma.maatstelsel, 1);
    h->posities.stelsel = stelsel;
    h->nummers.soort = h->posities.soort = soort;
    if (standaard(*h)) {
        h->schrijven = lees_rij(&h->nummers, h->schrijven) >= 0 && h->schrijven;
        leid_posities_af(h);
        memcpy(h->posities.mtombits, h->nummers.mtombits, MAATBYTES);
    } else {
        h->schrijven = lees_rij(&h->posities, h->schrijven) >= 0 && h->schrijven;
        leid_nummers_af(h);
        memcpy(h->nummers.mtombits, h->posities.mtombits, MAATBYTES);
    }
    h->stuk |= gat(*h);
    auto* plaats = std::find(std::begin(open_handles), std::end(open_handles), nullptr);
    if (plaats != std::end(open_handles))
        *plaats = h;
    else
        registerfout("mtopen-");
    return h;
}

void mtclose(mthandle* h) {
    eis(h);
    if (h->schrijven) {
        schrijf_rij(h);
        uint8_t sleutel[IXRECMAX + 1] = {h->stelsel, h->soort};
        IXUNLOCK(dtmaat, sleutel);
    }
    auto* plaats = std::find(std::begin(open_handles), std::end(open_handles), h);
    if (plaats != std::end(open_handles))
        *plaats = nullptr;
    else
        registerfout("mtclose-");
    delete h;
}

int mtbewaar(mthandle* h) {
    if (!eis(h)->schrijven)
        return !h->gewijzigd;
    if (schrijf_rij(h))
        return 1;
    if (aantal(*h) == 0) { // a refused delete has let go of the record, a write has not
        uint8_t sleutel[IXRECMAX + 1] = {h->stelsel, h->soort};
        h->schrijven = IXREADL(dtmaat, sleutel) >= 0;
    }
    return 0;
}

int mtread(mthandle* h, char letter, mtinfo* info, int sleutel) {
    eis(h);
    int positie = 0;
    if (sleutel < 1 || sleutel > 4)
        SCRFATAL("mtread(%c,%d) %s", letter, sleutel, TXT(T_KEYNR_ONGEDEFINIEERD));
    if (!letter || !strchr("FRNP", letter))
        SCRFATAL("mtread(%c,%d) %s", letter, sleutel, TXT(T_AKTIE_ONGEDEFINIEERD));
    switch (sleutel) {
    case 1:
        positie = zoek_nummer(*h, letter, info->maatnr);
        break;
    case 2:
        positie = zoek_positie(*h, letter, info->positie);
        break;
    case 3:
        positie = zoek_naam(*h, letter, info->naam);
        break;
    case 4:
        positie = zoek_rang(*h, letter, info->rang);
        break;
    }
    if (!geldig(positie) || !geldig(h->posities.entry[positie].link))
        return 0;
    info->stelsel = h->stelsel;
    info->soort = h->soort;
    info->maatnr = h->posities.entry[positie].link;
    info->positie = static_cast<uint8_t>(positie);
    memcpy(info->naam, h->posities.entry[positie].naam, 3);
    info->rang = static_cast<uint8_t>(rang_van(*h, positie));
    lees_extra(*h, info);
    return 1;
}

void mtselect(mthandle* h, const uint8_t* masker) {
    memcpy(eis(h)->keuze, masker, MAATBYTES);
}

int mtupdate(mthandle* h, mtinfo* info) {
    eis(h);
    if (!h->schrijven || !geldig(info->maatnr) || !geldig(info->positie) ||
        h->nummers.entry[info->maatnr].link != info->positie)
        return 0;
    zet(h, info->positie, info->maatnr, info->naam);
    h->gewijzigd = true;
    schrijf_extra(h, *info, false);
    return 1;
}

int mtdelete(mthandle* h, mtinfo* info) {
    eis(h);
    if (!h->schrijven || !geldig(info->maatnr))
        return 0;
    int positie = h->nummers.entry[info->maatnr].link, hoogste = aantal(*h);
    if (positie < 1 || positie > hoogste)
        return 0;
    h->nummers.entry[info->maatnr] = {};
    for (int p = positie; p < hoogste; p++) {
        auto volgende = h->posities.entry[p + 1];
        zet(h, p, volgende.link, volgende.naam);
    }
    h->posities.entry[hoogste] = {};
    maat_uit(h->keuze, info->maatnr);
    h->gewijzigd = true;
    schrijf_extra(h, *info, true);
    return 1;
}

int mtinsert(mthandle* h, mtinfo* info) {
    eis(h);
    int hoogste = aantal(*h), nummer = info->maatnr;
    if (!h->schrijven || hoogste >= MATEN || info->positie < 1 || info->positie > hoogste + 1)
        return 0;
    if (nummer == 0 && standaard(*h))
        for (nummer = 1; nummer <= MATEN && h->nummers.entry[nummer].link;)
            nummer++;
    if (!geldig(nummer) || h->nummers.entry[nummer].link)
        return 0;
    for (int p = hoogste; p >= info->positie; p--) {
        auto deze = h->posities.entry[p];
        zet(h, p + 1, deze.link, deze.naam);
    }
    info->maatnr = static_cast<uint8_t>(nummer);
    zet(h, info->positie, nummer, info->naam);
    h->gewijzigd = true;
    schrijf_extra(h, *info, false);
    return 1;
}

const char* mtname(mthandle* h, int maatnr) {
    static char naam[4];
    int positie = mtpos(h, maatnr);
    std::string tekst(positie ? VASTUIT(h->posities.entry[positie].naam) : std::string_view());
    snprintf(naam, sizeof naam, "%3.3s", tekst.c_str());
    return naam;
}

int mtpos(mthandle* h, int maatnr) {
    return positie_van(*eis(h), maatnr);
}

int mtranks(mthandle* h) {
    int rang = 0;
    for (int p = 1; p <= aantal(*eis(h)); p++)
        rang += maat_in(h->keuze, h->posities.entry[p].link);
    return rang;
}

int mtremove(uint8_t soort) {
    if (!dtmaat)
        INTERNAL("iomaat", 5);
    uint8_t buffer[IXRECMAX + 1] = {std::max<uint8_t>(firma.maatstelsel, 1), soort};
    const int er = IXREADL(dtmaat, buffer);
    if (er == 0)
        IXUNLOCK(dtmaat, buffer);
    if (er != 1)
        return 0;
    return IXDELETE(dtmaat, buffer) == 0;
}

uint8_t mtstelsel(uint8_t eigen) {
    return eigen ? eigen : std::max<uint8_t>(firma.maatstelsel, 1);
}

} // namespace zg
