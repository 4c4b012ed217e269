// A journal has no index: each call walks it once and sorts what it met in memory. Three orderings of the
// same rows; the list's position counts in the ordering in force.
#include "order/zoek_ord.h"
#include "order/programma.h"
#include "order/teksten.h"
#include "shared/report.h"
#include "shared/sysrec.h"
#include "shared/teksten.h"
#include "store/ix.h"
#include "term/datum.h"
#include "term/ingave.h"
#include "term/lijst.h"
#include "term/prompt.h"
#include "term/vast.h"
#include <algorithm>
#include <cstring>
#include <numeric>
#include <string>
#include <vector>

namespace zg {
namespace {

constexpr uint16_t VLAG_LEV_ORDERNR = 4; // of the firm's flags word
bool nieuw_hint;                         // of the next list

// One order of the list, sortable: the complements make the latest date, number and place sort first.
struct Rij {
    uint16_t datum;       // 100000 - orderdatum, 16 bits
    uint32_t ordernummer; // 100000 - ordernummer
    char lev_ordernr[35]; // only where the firm uses it
    uint32_t plaats;      // 100000000 - offset in the journal
};

Rij rij_maak(const ordkop& van, int32_t offset, bool met_lev_ordernr) {
    Rij rij{};
    rij.datum = static_cast<uint16_t>(100000 - van.orderdatum);
    rij.ordernummer = 100000u - static_cast<uint32_t>(van.ordernummer);
    if (met_lev_ordernr)
        memcpy(rij.lev_ordernr, van.lev_ordernr, sizeof rij.lev_ordernr);
    rij.plaats = 100000000u - static_cast<uint32_t>(offset);
    return rij;
}

// Order of two rows under key 1 date, 2 order number, 3 supplier's number: below 0, 0, above 0.
int rij_vergelijk(const Rij& a, const Rij& b, int sleutel) {
    auto richting = [](auto x, auto y) { return x < y ? -1 : x > y ? 1 : 0; };
    int v = 0;
    if (sleutel == 1)
        v = richting(a.datum, b.datum);
    if (sleutel == 3)
        v = IXCOLLATE(a.lev_ordernr, b.lev_ordernr, static_cast<int>(sizeof a.lev_ordernr));
    if (v == 0)
        v = richting(a.ordernummer, b.ordernummer);
    return v != 0 ? v : richting(a.plaats, b.plaats);
}

// The list that runs.
struct Zoeklijst {
    ordhandle* h;
    LIJST* lijst;
    bool lev_ordernr, nieuw;
    int sleutels, sleutel;
    std::vector<Rij> rijen;
    std::vector<uint32_t> volgorde[3]; // per key: row numbers in order

    const Rij& rij(uint32_t positie) const { return rijen[volgorde[sleutel - 1][positie]]; }
    int32_t offset(uint32_t positie) const { return static_cast<int32_t>(100000000u - rij(positie).plaats); }
};
Zoeklijst* z;

void lees_order(uint32_t positie) {
    ord_lees_op(z->h, z->offset(positie));
}

int32_t haal(int32_t stap) {
    int64_t aantal = std::ssize(z->rijen);
    int64_t naar = std::clamp<int64_t>(int64_t{z->lijst->positie} + stap, 0, aantal - 1);
    if (stap != 0 && naar == z->lijst->positie)
        return 0;
    z->lijst->positie = static_cast<uint32_t>(naar);
    return 1;
}

// First row at or behind a row of key values only, else the last.
void zoek(const Rij& gezocht) {
    const auto& volgorde = z->volgorde[z->sleutel - 1];
    auto plek = std::lower_bound(volgorde.begin(), volgorde.end(), gezocht, [](uint32_t n, const Rij& g) {
        return rij_vergelijk(z->rijen[n], g, z->sleutel) < 0;
    });
    if (plek == volgorde.end())
        --plek;
    z->lijst->positie = static_cast<uint32_t>(plek - volgorde.begin());
    z->lijst->modus = 2;
}

// Rows and headings have the same columns. Receiving location and supplier's number are columns that stay
// blank in the rows.
std::string kolommen(const char* nr, const char* datum, const char* oms, const char* coll, const char* ont,
                     const char* lev) {
    char t[128];
    bool meer = firma.filialen > 1;
    if (!z->lev_ordernr)
        snprintf(t, sizeof t, "%6s %-15.15s %-20.20s %-8s", datum, oms, coll, nr);
    else if (z->sleutel == 2 && meer)
        snprintf(t, sizeof t, "%-8s %6s %-15.15s %-20.20s  %3s %-16.16s", nr, datum, oms, coll, ont, lev);
    else if (z->sleutel == 2)
        snprintf(t, sizeof t, "%-8s %6s %-15.15s %-20.20s %-16.16s %3s", nr, datum, oms, coll, lev, ont);
    else if (z->sleutel == 3 && meer)
        snprintf(t, sizeof t, "%-16.16s %6s %-8s %-15.15s %-20.20s  %3s ", lev, datum, nr, oms, coll, ont);
    else if (z->sleutel == 3)
        snprintf(t, sizeof t, "%-16.16s %-8s %6s %-15.15s %-20.20s %3s", lev, nr, datum, oms, coll, ont);
    else if (meer)
        snprintf(t, sizeof t, "%6s %-15.15s %-20.20s %-8s %3s %-16.16s", datum, oms, coll, nr, ont, lev);
    else
        snprintf(t, sizeof t, "%6s %-15.15s %-20.20s %-8s %-16.16s %3s", datum, oms, coll, nr, lev, ont);
    return t;
}

void kopregel() {
    SCRCLREOL(1, 2);
    SCRPUT(A_LABEL, 1, 2, "%s",
           kolommen(TXT(T_Z_ORDERNR), TXT(T_Z_ORDDAT), TXT(T_Z_OMSCHRIJV), TXT(T_Z_COLLECTIE),
                    firma.filialen > 1 ? TXT(T_Z_ONT) : "", TXT(T_Z_LEVORDNR))
               .c_str());
}

const char* regel() {
    static std::string tekst;
    lees_order(z->lijst->positie);
    tekst = kolommen(std::to_string(kop.ordernummer).c_str(), DATUM6(kop.orderdatum),
                     VASTTEKST(kop.omschrijving).c_str(), VASTTEKST(kop.collectie).c_str(), "", "");
    return tekst.c_str();
}

// The search field of the key in force. `gezocht` gets what was typed.
void vraag(int rij, Rij* gezocht) {
    const char* label = z->sleutel == 1   ? TXT(T_LIJST_ORDERDATUM)
                        : z->sleutel == 2 ? TXT(T_LIJST_ORDERNR)
                                          : TXT(T_LIJST_LEVORDERNR);
    SCRPUT(A_LABEL, rij, 2, "%-11.11s: ", label);
    constexpr int veld = 15;
    *gezocht = {};
    if (z->sleutel == 1) {
        uint16_t datum = 0;
        INGAVE(rij, veld, "D,I", &SCHERM.toets[key_tab], &SCHERM.toets[key_extra], &datum);
        gezocht->datum = static_cast<uint16_t>(100000 - datum);
    } else if (z->sleutel == 2) {
        int32_t nummer = 0;
        INGAVE(rij, veld, "8l,I", &SCHERM.toets[key_tab], &SCHERM.toets[key_extra], &nummer);
        gezocht->ordernummer = 100000u - static_cast<uint32_t>(nummer);
    } else {
        char tekst[10] = {};
        INGAVE(rij, veld, "10c,I", &SCHERM.toets[key_tab], &SCHERM.toets[key_extra], &tekst);
        memcpy(gezocht->lev_ordernr, tekst, sizeof tekst);
    }
}

void toets() {
    int rij = LIJSTVELDRIJ();
    SCRCLREOL(rij, 1);
    if (z->nieuw)
        SCRPUT(A_LABEL, rij, 28, "%s", TXT(T_VOOR_NIEUWE_ORDER));
    if (z->sleutels > 2)
        SCRPUT(A_LABEL, rij, 53, "%s", TXT(T_TAB_SORTERING));
    // "/" leaves the field as a key of the table does: at once when nothing is typed yet. Behind a part of a
    // supplier's number it is typed, behind digits it enters them.
    Rij gezocht;
    SCHERM.toets[key_extra] = '/';
    vraag(rij, &gezocht);
    SCHERM.toets[key_extra] = 0;
    bool leeg = (SCHERM.vlag & V_LEEG) != 0;
    if (SCHERM.laatste == '/')
        SCHERM.laatste = leeg ? K_CANCEL : K_ENTER;
    if (SCHERM.laatste == K_F3) {
        SCHERM.laatste = K_CANCEL;
    } else if (SCHERM.laatste == K_TAB) {
        // The cursor stays on its order; only its place changes.
        uint32_t nu = z->volgorde[z->sleutel - 1][z->lijst->positie];
        z->sleutel = z->sleutel % z->sleutels + 1;
        const auto& volgorde = z->volgorde[z->sleutel - 1];
        z->lijst->positie =
            static_cast<uint32_t>(std::find(volgorde.begin(), volgorde.end(), nu) - volgorde.begin());
        z->lijst->modus = 2;
        SCHERM.vlag &= ~static_cast<uint32_t>(V_LEEG);
        kopregel();
    } else if (!(SCHERM.vlag & V_LEEG) && !TOETSWEG()) {
        zoek(gezocht);
    }
}

void verzamel(uint16_t van, uint16_t tot) {
    for (bool er = ord_eerste_order(z->h); er; er = ord_volgende_order(z->h))
        if (kop.orderdatum >= van && kop.orderdatum <= tot)
            z->rijen.push_back(rij_maak(kop, z->h->offset, z->lev_ordernr));
    for (int s = 1; s <= z->sleutels; s++) {
        auto& volgorde = z->volgorde[s - 1];
        volgorde.resize(z->rijen.size());
        std::iota(volgorde.begin(), volgorde.end(), 0u);
        std::sort(volgorde.begin(), volgorde.end(),
                  [s](uint32_t a, uint32_t b) { return rij_vergelijk(z->rijen[a], z->rijen[b], s) < 0; });
    }
}

} // namespace

bool zoek_ord_periode(ordhandle* h, uint16_t van, uint16_t tot) {
    Zoeklijst hier{};
    hier.h = h;
    hier.nieuw = nieuw_hint;
    hier.lev_ordernr = (firma.vlaggen & VLAG_LEV_ORDERNR) != 0;
    hier.sleutels = hier.lev_ordernr ? 3 : 2;
    hier.sleutel = 1;
    z = &hier;
    verzamel(van, tot);
    if (hier.rijen.empty()) {
        error("%s", TXT(T_GEEN_ORDERS));
        return false;
    }
    hier.lijst = LIJSTNEW(haal, toets, kopregel, regel);
    if (!hier.lijst)
        NOMEM("zoek_ord", 1);
    hier.lijst->positie = 0;
    hier.lijst->vast = 1;
    hier.lijst->aantal = [] { return int64_t{std::ssize(z->rijen)}; };
    hier.lijst->rij = 6;
    hier.lijst->kolom = 1;
    hier.lijst->breedte = SCHERM.cols;
    bool gekozen = LIJSTRUN(hier.lijst, 0) != 0;
    if (gekozen)
        lees_order(hier.lijst->positie);
    LIJSTDEL(hier.lijst);
    return gekozen;
}

bool zoek_ord(ordhandle* h, bool nieuw_toegestaan) {
    nieuw_hint = nieuw_toegestaan;
    bool gekozen = zoek_ord_periode(h, 0, UINT16_MAX);
    nieuw_hint = false;
    return gekozen;
}

} // namespace zg
