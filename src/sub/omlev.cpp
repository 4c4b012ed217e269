#include "sub/omlev.h"
#include "shared/leesstam.h"
#include "shared/report.h"
#include "shared/teksten.h"
#include "sub/teksten.h"
#include "term/ingave.h"
#include "term/lijst.h"
#include "term/prompt.h"
#include "term/vast.h"
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace zg {

ICB* dtlev;
levrec leverancier;

namespace {

constexpr int S_NUMMER = 1, S_NAAM = 2; // keys of the list

// The list that runs.
Relatiesoort gezocht;
LIJST* lijst;
union {
    levrec lev;
    uint8_t ruimte[IXRECMAX];
} rij;

bool past() {
    return (rij.lev.soort & gezocht) != 0;
}

// Most steps of a walk: where records and index disagree a walk can come back to where it was.
int stappen() {
    return std::max(dtlev->h.nrecs, 0) + 1;
}

// Step over the relations of another kind in the direction of the step; the place stays when there is none.
int32_t haal(int32_t stap) {
    int32_t recnr = static_cast<int32_t>(lijst->positie), goed = recnr;
    int richting = stap < 0 ? -1 : 1, gedaan = 0;
    if (stap == 0)
        return IXSKIP(dtlev, &rij, 0, 0, &recnr) && past();
    for (int over = abs(stap), rest = stappen() + over; over > 0 && rest > 0; rest--) {
        if (!IXSKIP(dtlev, &rij, 0, richting, &recnr))
            break;
        if (past())
            goed = recnr, gedaan++, over--;
    }
    lijst->positie = static_cast<uint32_t>(goed);
    if (gedaan == 0)
        return 0;
    return IXGET(dtlev, &rij, goed) == 1;
}

// Stand on the first relation of the kind from the record's key on; else on the last one.
bool sta() {
    bool er = IXFIRSTR(dtlev, &rij, 0) == 1;
    for (int rest = stappen(); er && !past(); rest--)
        er = rest > 0 && IXNEXT(dtlev, &rij) == 1;
    if (!er) {
        memset(&rij, 0xFF, sizeof rij);
        er = IXLAST(dtlev, &rij) == 1;
        for (int rest = stappen(); er && !past(); rest--)
            er = rest > 0 && IXPREVR(dtlev, &rij, 0) == 1;
    }
    if (er)
        lijst->positie = static_cast<uint32_t>(dtlev->currec);
    return er;
}

void toets() {
    char tekst[21] = "";
    bool nummer = IXSLEUTEL(dtlev) == S_NUMMER;
    int veldrij = LIJSTVELDRIJ();
    SCRCLREOL(veldrij, 2);
    SCRPUT(A_LABEL, veldrij, 2, "%s ", TXT(nummer ? T_NUMMER : T_NAAM));
    SCRPUT(A_LABEL, veldrij, 24, "%s", TXT(T_TAB_SORTERING));
    INGAVE(veldrij, 10, nummer ? "4s[0123456789],I" : "10s,UI", &SCHERM.toets[key_cancel],
           &SCHERM.toets[key_tab], &SCHERM.toets[key_f3], tekst);
    if (SCHERM.laatste == K_F3)
        SCHERM.vlag |= V_LEEG;
    if (SCHERM.laatste == K_TAB) {
        IXSWITCH(dtlev, nummer && dtlev->h.nkeys >= S_NAAM ? S_NAAM : S_NUMMER);
        SCHERM.vlag |= V_LEEG;
        return;
    }
    if ((SCHERM.vlag & V_LEEG) || TOETSWEG())
        return;
    memset(&rij, 0, sizeof rij);
    if (nummer)
        rij.lev.nummer = static_cast<uint16_t>(atoi(tekst));
    else
        VASTIN(rij.lev.naam, tekst);
    sta();
    lijst->modus = 2;
}

void kop() {
    SCRPUT(A_LABEL, 1, 2, "%s", TXT(T_KOP_RELATIE));
}

const char* regel() {
    static char tekst[64];
    snprintf(tekst, sizeof tekst, "%-4u - %-20.20s, %-25.25s", rij.lev.nummer,
             VASTTEKST(rij.lev.naam).c_str(), VASTTEKST(rij.lev.plaats).c_str());
    return tekst;
}

void onbekend(uint16_t nummer, Relatiesoort soort) {
    if (leverancier.nummer == nummer && nummer != 0)
        error("<%u> %s %s", nummer, TXT(T_RELATIE_IS_GEEN), relatie_woord(soort));
    else
        error("<%u> %s %s", nummer, TXT(T_ONBEKENDE), relatie_woord(soort));
}

} // namespace

const char* relatie_woord(Relatiesoort soort) {
    return TXT(soort == REL_LEVERANCIER ? T_LEVERANCIER
               : soort == REL_AGENT     ? T_AGENT
               : soort == REL_FABRIKANT ? T_FABRIKANT
                                        : T_RELATIE);
}

bool relatie_lees(uint16_t nummer) {
    if (leeslev(dtlev, &leverancier, nummer))
        return true;
    leverancier = {};
    return false;
}

bool relatie_kiezen(Relatiesoort soort, uint16_t* nummer) {
    const int bewaard = IXSLEUTEL(dtlev);
    gezocht = soort;
    IXSWITCH(dtlev, S_NUMMER);
    lijst = LIJSTNEW(haal, toets, kop, regel);
    if (!lijst)
        NOMEM("omlev", 1);
    memset(&rij, 0, sizeof rij);
    rij.lev.nummer = *nummer;
    bool gekozen = false;
    if (sta()) {
        snprintf(lijst->titel, sizeof lijst->titel, " %s ", relatie_woord(soort));
        lijst->breedte = 58;
        gekozen = LIJSTRUN(lijst, 0) != 0;
    } else {
        MELDBOX(MELD_INFO, TXT(T_GEEN_INFORMATIE), nullptr, nullptr);
    }
    if (gekozen)
        *nummer = rij.lev.nummer;
    LIJSTDEL(lijst);
    lijst = nullptr;
    IXSWITCH(dtlev, bewaard);
    return gekozen;
}

bool relatie_veld(int veldrij, int kolom, const char* opties, Relatiesoort soort, uint16_t* nummer) {
    Instel* bewaard = INSTELNEW(0);
    char formaat[16];
    snprintf(formaat, sizeof formaat, "4u,P%.4s", opties);
    uint16_t nieuw = *nummer;
    bool goed = false;
    for (;;) {
        if (bewaard)
            INSTELSET(bewaard);
        INGAVE(veldrij, kolom, formaat, &SCHERM.toets[key_cancel], &SCHERM.toets[key_f5], &nieuw);
        if (TOETSWEG())
            break;
        if (SCHERM.laatste == K_F5) {
            nieuw = *nummer;
            if (!relatie_kiezen(soort, &nieuw)) {
                nieuw = *nummer;
                continue;
            }
            SCRPUT(A_WAARDE, veldrij, kolom, "%-4u", nieuw);
            SCHERM.laatste = K_ENTER;
        }
        if (nieuw == 0) {
            leverancier = {};
        } else if (!relatie_lees(nieuw) || !(leverancier.soort & soort)) {
            onbekend(nieuw, soort);
            nieuw = *nummer;
            continue;
        }
        *nummer = nieuw;
        goed = true;
        break;
    }
    INSTELDEL(bewaard);
    return goed;
}

} // namespace zg
