// How a group is spread over the branches: its warehouse and rules, and the number or priority of each branch.
#include "shared/filveld.h"
#include "shared/iofil.h"
#include "shared/sysrec.h"
#include "sub/artbeeld.h"
#include "sub/rijveld.h"
#include "sub/teksten.h"
#include "term/ingave.h"
#include "term/prompt.h"
#include "term/recordscherm.h"
#include "term/teksten.h"
#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace zg {
namespace {

artrec& nu = artgroep_nu;

constexpr int WAARDE = 34, HOOGSTE = 250, PROCENT = 100;

bool per_aantal() {
    return nu.verdeelsoort == 'A';
}

// ---- the branch table: pages of 180, by index, nine columns of twenty

constexpr int PAGINA = 180, RIJEN = 20, EERSTE = 2, STAP = 8;

struct Plaats {
    int rij, kolom;
};
Plaats plaats(int index) {
    const int p = index % PAGINA;
    return {EERSTE + p % RIJEN, 2 + p / RIJEN * STAP};
}

int laatste() {
    return std::min<int>(firma.filialen, FILIALEN) - 1;
}

void teken_pagina(int begin) {
    SCRCLREOW(1, 1);
    if (laatste() < PAGINA)
        SCRPUT(A_LABEL, 1, 2, TXT(T_AG_PAGINA), laatste());
    else if (begin == 0)
        SCRPUT(A_LABEL, 1, 2, "%s", TXT(T_AG_PAGINA_1));
    else
        SCRPUT(A_LABEL, 1, 2, "%s 180 - %u", TXT(T_AG_FILIAAL_KLEIN), static_cast<unsigned>(laatste()));
    SCRPUT(A_LABEL, 1, 24, "%s", TXT(per_aantal() ? T_AG_AANTAL_PER : T_AG_PRIORITEIT_PER));
    if (per_aantal() && nu.minimum)
        SCRPUT(A_LABEL, 1, 48, "%u %s", nu.minimum, TXT(T_AG_MINIMUM_NOOT));
    for (int i = begin; i <= laatste() && i < begin + PAGINA; i++) {
        const Plaats p = plaats(i);
        SCRPUT(A_LABEL, p.rij, p.kolom, "%3u", iofil_nummer(i));
        SCRPUT(A_WAARDE, p.rij, p.kolom + 4, "%3u", nu.perfiliaal[i]);
    }
}

// Index of another branch with the warehouse's number, -1 when there is none or this isn't the warehouse.
int gelijk_aan_magazijn(int index, unsigned waarde) {
    int magazijn;
    if (waarde == 0 || nu.magazijn == GEEN_MAGAZIJN || !iofil_index(nu.magazijn, &magazijn) ||
        magazijn != index)
        return -1;
    for (int i = 0; i <= laatste(); i++)
        if (i != index && nu.perfiliaal[i] == waarde)
            return i;
    return -1;
}

bool waarde_goed(int index, unsigned waarde) {
    if (waarde > HOOGSTE)
        error("<%u> %s", waarde, TXT(T_AG_MAXIMAAL));
    else if (per_aantal() && waarde != 0 && waarde < nu.minimum)
        error("%s %hu %s", TXT(T_AG_NIET_LAGER), static_cast<unsigned short>(nu.minimum),
              TXT(T_AG_MINIMUM_NOOT));
    else if (const int ander = gelijk_aan_magazijn(index, waarde); ander >= 0)
        error("<%u> %s %u", waarde, TXT(T_AG_ONGELIJK), nu.perfiliaal[ander]);
    else
        return true;
    return false;
}

// One branch; true when its value changed. The key is in SCHERM.laatste.
bool vraag_filiaal(int index) {
    const Plaats p = plaats(index);
    for (;;) {
        uint8_t waarde = nu.perfiliaal[index];
        const bool anders =
            INGAVE(p.rij, p.kolom + 4, "3U,ZEJP", &SCHERM.toets[key_cancel], &SCHERM.toets[key_up],
                   &SCHERM.toets[key_down], &SCHERM.toets[key_pgup], &SCHERM.toets[key_pgdn], &waarde) != 0;
        const bool goed = TOETSWEG() || !anders || waarde_goed(index, waarde);
        if (goed && anders)
            nu.perfiliaal[index] = waarde;
        SCRPUT(A_WAARDE, p.rij, p.kolom + 4, "%3u", nu.perfiliaal[index]);
        if (goed)
            return anders;
    }
}

int volgende(int index) {
    switch (SCHERM.laatste) {
    case K_UP:
        return std::max(index - 1, 0);
    case K_DOWN:
        return std::min(index + 1, laatste());
    case K_PGUP:
        return std::max(index - PAGINA, 0);
    case K_PGDN:
        return std::min(index + PAGINA, laatste());
    default:
        return index + 1; // behind the last branch it ends
    }
}

bool tabel(bool lezen) {
    bool anders = false;
    WINOPEN1(1, 1, 24, 80);
    WINBOX(" %s ", TXT(T_AG_VERDELING));
    for (int begin = -1, i = 0; i <= laatste();) {
        if (i / PAGINA * PAGINA != begin)
            teken_pagina(begin = i / PAGINA * PAGINA);
        if (lezen) {
            TOETSAAN(K_CANCEL);
            ENTERWACHT(EERSTE + RIJEN, 2);
            i = begin + PAGINA;
        } else {
            anders |= vraag_filiaal(i);
            if (!TOETSWEG())
                i = volgende(i);
        }
        if (TOETSWEG())
            break;
    }
    WINCLOSE();
    SCHERM.laatste = K_ENTER; // cancel and ESC were the table's own
    return anders;
}

// ---- warehouse: a branch number, 0 too; empty is none

bool magazijn_lees(const Lijsttabel&, const Lijstcode& code, std::string* naam) {
    const int nummer = atoi(code.tekst.c_str());
    int index;
    if (nummer >= GEEN_MAGAZIJN || !iofil_index(static_cast<uint8_t>(nummer), &index))
        return false;
    *naam = iofil_naam(index);
    return true;
}

bool magazijn_kies(const Lijsttabel&, Lijstcode* code) {
    Lijstcode filiaal{atoi(code->tekst.c_str()), ""};
    if (!FILIAALTABEL.kies(FILIAALTABEL, &filiaal))
        return false;
    code->tekst = std::to_string(filiaal.nummer);
    return true;
}

void magazijn_onbekend(const Lijsttabel&, const Lijstcode& code) {
    FILIAALTABEL.onbekend(FILIAALTABEL, {atoi(code.tekst.c_str()), ""});
}

const Lijsttabel MAGAZIJNTABEL{"3c[0123456789]", 0, magazijn_lees, magazijn_onbekend, magazijn_kies};

std::string magazijntekst() {
    return nu.magazijn == GEEN_MAGAZIJN ? "" : std::to_string(nu.magazijn);
}

void toon_magazijn(int rij) {
    const std::string nummer = magazijntekst();
    SCRPUT(A_LABEL, rij, WAARDE - 8, "%s", TXT(T_AG_FILIAAL));
    SCRPUT(A_WAARDE, rij, WAARDE, "%-3.3s  %-20.20s", nummer.c_str(),
           lijstnaam(MAGAZIJNTABEL, {0, nummer}).c_str());
}

bool vraag_magazijn(int rij) {
    char tekst[4] = "";
    snprintf(tekst, sizeof tekst, "%s", magazijntekst().c_str());
    if (lijstveld(MAGAZIJNTABEL, rij, WAARDE, "", tekst, 3) != Lijstuit::anders)
        return false;
    const uint8_t was = nu.magazijn;
    nu.magazijn = tekst[0] ? static_cast<uint8_t>(atoi(tekst)) : uint8_t{GEEN_MAGAZIJN};
    return nu.magazijn != was;
}

// ---- the rules

// A flag of the group as yes or no; OM: no is the flag.
template <uint8_t VLAG, bool OM> void toon_vlag(int rij) {
    SCRPUT(A_WAARDE, rij, WAARDE, "%s", TXT(((nu.vlaggen & VLAG) != 0) != OM ? T_JA : T_NEE));
}
template <uint8_t VLAG, bool OM> bool vraag_vlag(int rij) {
    uint8_t ja = ((nu.vlaggen & VLAG) != 0) != OM;
    if (!INGAVE(rij, WAARDE, "b,E", &SCHERM.toets[key_cancel], &ja))
        return false;
    nu.vlaggen = static_cast<uint8_t>((ja != 0) != OM ? nu.vlaggen | VLAG : nu.vlaggen & ~VLAG);
    return true;
}

void toon_soort(int rij) {
    SCRPUT(A_WAARDE, rij, WAARDE, "%c", nu.verdeelsoort ? nu.verdeelsoort : ' ');
}
bool vraag_soort(int rij) {
    char soort = nu.verdeelsoort;
    do {
        INGAVE(rij, WAARDE, "1c[AP],UE", &SCHERM.toets[key_cancel], &soort);
        if (TOETSWEG())
            return false;
        if (soort != 'A' && soort != 'P') // as it stood in the file
            error("<%c> %s", soort, TXT(T_FOUTIEVE_INGAVE));
    } while (soort != 'A' && soort != 'P');
    const bool anders = soort != nu.verdeelsoort;
    nu.verdeelsoort = soort;
    if (anders)
        artverdeling_minimum();
    return anders;
}

void toon_procent(int rij) {
    SCRPUT(A_WAARDE, rij, WAARDE, "%-3u", nu.magazijnpct);
}
bool vraag_procent(int rij) {
    for (;;) {
        uint8_t procent = nu.magazijnpct;
        INGAVE(rij, WAARDE, "3U,AIZP", &SCHERM.toets[key_cancel], &procent);
        if (TOETSWEG() || (SCHERM.vlag & V_LEEG))
            return false;
        if (procent <= PROCENT) {
            const bool anders = procent != nu.magazijnpct;
            nu.magazijnpct = procent;
            return anders;
        }
        error("<%u> %s %u", procent, TXT(T_AG_KLEINER), static_cast<unsigned>(PROCENT) + 1);
    }
}

void toon_verdeling(int rij) {
    SCRPUT(A_LABEL, rij, WAARDE, "%-24s", TXT(per_aantal() ? T_AG_AANTAL_PER : T_AG_PRIORITEIT_PER));
}
bool vraag_verdeling(int) {
    return tabel(false);
}
void bekijk_verdeling() {
    tabel(true);
}

const Item VERDEELRIJEN[] = {
    {.nummer = 11,
     .label = &T_AG_MAGAZIJN,
     .toon = toon_magazijn,
     .bewerk = vraag_magazijn,
     .hulp = &T_AG_H_MAGAZIJN},
    {.nummer = 12,
     .label = &T_AG_VERKOOP,
     .toon = toon_vlag<ART_GEEN_VERKOOP, true>,
     .bewerk = vraag_vlag<ART_GEEN_VERKOOP, true>},
    {.nummer = 13,
     .label = &T_AG_AANVULLEN,
     .toon = toon_vlag<ART_AANVULLEN, false>,
     .bewerk = vraag_vlag<ART_AANVULLEN, false>},
    {.nummer = 14,
     .label = &T_AG_VERDELEN,
     .toon = toon_soort,
     .bewerk = vraag_soort,
     .hulp = &T_AG_H_VERDELEN},
    {.nummer = 15,
     .label = &T_AG_AANPASSEN,
     .toon = toon_vlag<ART_AANPASSEN, false>,
     .bewerk = vraag_vlag<ART_AANPASSEN, false>},
    {.nummer = 16, .label = &T_AG_PROCENT, .toon = toon_procent, .bewerk = vraag_procent},
    {.nummer = 17,
     .label = &T_AG_VERDELING,
     .toon = toon_verdeling,
     .bewerk = vraag_verdeling,
     .bekijk = bekijk_verdeling},
};
const Recordrijen VERDEELSCHERM{
    .rij = 7, .kolom = 8, .hoogte = 13, .breedte = 66, .keusrij = 10, .items = VERDEELRIJEN};

} // namespace

bool artverdeling_vraag(int) {
    return recorddeel(VERDEELSCHERM, venstertitel(T_AG_TITEL_VERDELING).c_str());
}

void artverdeling_bekijk() {
    recorddeel(VERDEELSCHERM, venstertitel(T_AG_TITEL_VERDELING).c_str());
}

void artverdeling_minimum() {
    if (firma.filialen < 2 || !per_aantal())
        return;
    for (int i = 0; i <= laatste(); i++)
        if (nu.perfiliaal[i] != 0 && nu.perfiliaal[i] < nu.minimum) {
            error("%s %d %s", TXT(T_AG_AANTAL_IN), iofil_nummer(i), TXT(T_AG_LAGER));
            return;
        }
}

} // namespace zg
