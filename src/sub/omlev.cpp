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

bool lees(const Lijsttabel& tabel, const Lijstcode& code, std::string* naam) {
    levrec lev{};
    if (!relatie_lees(static_cast<uint16_t>(code.nummer), &lev) || !(lev.soort & tabel.welke))
        return false;
    *naam = VASTTEKST(lev.naam);
    return true;
}

void onbekend(const Lijsttabel& tabel, const Lijstcode& code) {
    levrec lev{};
    const bool andere = relatie_lees(static_cast<uint16_t>(code.nummer), &lev);
    error("<%d> %s %s", code.nummer, TXT(andere ? T_RELATIE_IS_GEEN : T_ONBEKENDE),
          relatie_woord(static_cast<Relatiesoort>(tabel.welke)));
}

bool kies(const Lijsttabel& tabel, Lijstcode* code) {
    const int bewaard = IXSLEUTEL(dtlev);
    gezocht = static_cast<Relatiesoort>(tabel.welke);
    IXSWITCH(dtlev, S_NUMMER);
    lijst = LIJSTNEW(haal, toets, kop, regel);
    if (!lijst)
        NOMEM("omlev", 1);
    memset(&rij, 0, sizeof rij);
    rij.lev.nummer = static_cast<uint16_t>(code->nummer);
    bool gekozen = false;
    if (sta()) {
        snprintf(lijst->titel, sizeof lijst->titel, " %s ", relatie_woord(gezocht));
        lijst->breedte = 58;
        gekozen = LIJSTRUN(lijst, 0) != 0;
    } else {
        MELDBOX(MELD_INFO, TXT(T_GEEN_INFORMATIE), nullptr, nullptr);
    }
    if (gekozen)
        code->nummer = rij.lev.nummer;
    LIJSTDEL(lijst);
    lijst = nullptr;
    IXSWITCH(dtlev, bewaard);
    return gekozen;
}

} // namespace

const char* relatie_woord(Relatiesoort soort) {
    return TXT(soort == REL_LEVERANCIER ? T_LEVERANCIER
               : soort == REL_AGENT     ? T_AGENT
               : soort == REL_FABRIKANT ? T_FABRIKANT
                                        : T_RELATIE);
}

const Lijsttabel LEVERANCIERTABEL{"4u", REL_LEVERANCIER, lees, onbekend, kies};
const Lijsttabel AGENTTABEL{"4u", REL_AGENT, lees, onbekend, kies};

bool relatie_lees(uint16_t nummer, levrec* beeld) {
    if (leeslev(dtlev, beeld, nummer))
        return true;
    *beeld = {};
    return false;
}

} // namespace zg
