// The destinations that will do for a report, as a list and as a menu of widths.
#include "print/bestemlijst.h"
#include "print/printjob.h"
#include "print/teksten.h"
#include "shared/arraylijst.h"
#include "term/menu.h"
#include "term/scherm.h"
#include "term/teksten.h"
#include "term/toets.h"
#include "term/vast.h"
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <strings.h>

namespace zg {
namespace {

constexpr int KORT_BLAD = 66; // rows of a page that counts as short, at most
constexpr int MENU_RIJ = 9, MENU_KOLOM = 30;

bool lijst_uit = true;

const struct {
    Printmasker bit;
    int kolommen;
    const Tekst& tekst;
} BREEDTES[] = {
    {PRT_40, 40, T_PRT_40_KOLOMS}, {PRT_80, 80, T_PRT_80_KOLOMS}, {PRT_132, 132, T_PRT_132_KOLOMS}};

// A field of a table on the screen.
template <size_t N> std::string veld(const char (&v)[N]) {
    std::string uit = VASTTEKST(v);
    prt_blank(uit.data(), uit.size());
    return uit;
}

} // namespace

void XPRT_LIJSTUIT(bool mag) {
    lijst_uit = mag;
}

bool prt_past(const prtconfig& config, uint16_t masker) {
    const bool breedte =
        masker == PRT_ALLES || std::any_of(std::begin(BREEDTES), std::end(BREEDTES), [&](const auto& b) {
            return b.kolommen == config.kolommen && (masker & b.bit);
        });
    if (!breedte)
        return false;
    if (config.code == PRT_SCHERM || config.rijen == 0 || config.rijen == PRT_ZONDER_BLADEN)
        return true;
    const int rijen = masker & (PRT_LANG | PRT_KORT) ? int{masker} : int{PRT_KORT};
    return rijen & (config.rijen > KORT_BLAD ? PRT_LANG : PRT_KORT);
}

int prt_breedste(uint16_t masker) {
    return masker & PRT_132 ? 132 : masker & PRT_80 ? 80 : masker & PRT_40 ? 40 : 132;
}

std::vector<Bestemming> prt_bestemmingen(const printtabellen& t, uint16_t masker) {
    std::vector<Bestemming> uit;
    for (const prtrec& p : t.printers)
        for (const prtverbinding& v : t.verbindingen)
            for (const prtconfig& c : t.configs)
                if (v.code == p.code && c.code == p.code && prt_past(c, masker))
                    uit.push_back({p, v, c});
    return uit;
}

std::string prt_lijstregel(const Bestemming& b) {
    char uit[120];
    snprintf(uit, sizeof uit, "%-12.12s %-20.20s %-29.29s %3hd %4hd %-1.1s %1s", veld(b.printer.naam).c_str(),
             veld(b.verbinding.naam).c_str(), veld(b.config.omschrijving).c_str(),
             static_cast<short>(b.config.kolommen), static_cast<short>(b.config.rijen),
             TXT(b.config.staand ? T_PRT_STAAND : T_PRT_LIGGEND), TXT(b.verbinding.map ? T_JA : T_NEE));
    return uit;
}

int XPRT_KIES(const std::vector<Bestemming>& rijen) {
    ArrayLijst lijst{};
    lijst.titel = TXT(T_PRT_PRINTBESTEMMING);
    lijst.kop = TXT(T_PRT_LIJSTKOP);
    lijst.vraag = TXT(T_PRT_PRINTER);
    lijst.formaat = "12s";
    for (const Bestemming& b : rijen)
        lijst.regels.push_back(prt_lijstregel(b));
    lijst.zoek = [&](const char* getypt) {
        for (size_t i = 0; i < rijen.size(); i++)
            if (strncasecmp(lijst.regels[i].c_str(), getypt, strlen(getypt)) == 0)
                return static_cast<int>(i);
        error("%s", TXT(T_PRT_GEEN_PRINTER));
        return -1;
    };
    for (;;) {
        const int gekozen = arraylijst(lijst);
        if (gekozen >= 0 || (lijst_uit && (SCHERM.laatste == K_CANCEL || SCHERM.laatste == K_ESC)))
            return gekozen;
        error("%s", TXT(T_PRT_KIES_BESTEMMING));
    }
}

int XPRT_BREEDTE(uint16_t masker) {
    TR_MENU* menu = TR_NEW(33, MENU_RIJ, MENU_KOLOM, 0, TXT(T_PRT_PRINTBREEDTE));
    if (!menu)
        return prt_breedste(masker);
    for (const auto& b : BREEDTES)
        TR_ADD(menu, -1, TXT(b.tekst), b.kolommen, masker & b.bit ? 1 : 0, 0, nullptr);
    const int gekozen = TR_RUN(menu, 0);
    TR_FREE(menu);
    return gekozen == 40 || gekozen == 80 ? gekozen : 132;
}

} // namespace zg
