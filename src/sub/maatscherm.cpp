// The screen of one size type: its description, and its sizes in the grid of sub/maatcellen.h. What is there when the
// screen opens counts as used, whether or not anything refers to it: it keeps its number and its label. The sizes are
// written in one record, under its lock, before the description: who comes in between finds no type without sizes.
#include "shared/iotab.h"
#include "shared/leesstam.h"
#include "shared/maatbalk.h"
#include "shared/mutatie.h"
#include "sub/maatcellen.h"
#include "sub/maatsoort.h"
#include "sub/teksten.h"
#include "term/ingave.h"
#include "term/keuze.h"
#include "term/prompt.h"
#include "term/teksten.h"
#include "term/vast.h"
#include <algorithm>
#include <cstring>
#include <string>

namespace zg {
namespace {

constexpr int HOOGTE = 12, BREEDTE = 80, KOLOM = 2, WAARDE = 18;
constexpr int KEUSRIJ = 9, VOETRIJ = 10; // inside the window
constexpr uint16_t R_OMSCHRIJVING = 11, R_MATEN = 12;

enum Keus { WIJZIGEN, VERWIJDEREN, RIJNUMMER };

struct Type {
    uint8_t stelsel;
    int32_t nr;
    tekst20 rec;
    mthandle* h;
    uint8_t gebruik[MAATBYTES]; // sizes found on opening
    bool nieuw;                 // made in this screen
    bool anders;                // the description
    bool bestaat;               // the description is on file
    bool geschreven;
    bool tussengevoegd; // sizes put in between, not yet on file
    bool melden;        // those on file: the tills hear of them when the type is let go
};

void toon_omschrijving(const Type& t) {
    SCRPUT(A_WAARDE, 1, WAARDE, "%-20.20s", VASTTEKST(t.rec.tekst).c_str());
}

void teken(const Type& t, int rij, int kolom) {
    WINOPEN1(std::clamp(rij, 1, SCHERM.lines - HOOGTE), std::clamp(kolom, 1, SCHERM.cols - BREEDTE + 1),
             HOOGTE, BREEDTE);
    if (t.stelsel == mtstelsel(0))
        WINBOX(" %s %d ", TXT(T_MS_MAATSOORT), t.nr);
    else
        WINBOX(" %s %d, %s %d ", TXT(T_MS_MAATSOORT), t.nr, TXT(T_MS_MAATSTELSEL), t.stelsel);
    SCRPUT(A_LABEL, 1, KOLOM, "%d %s", R_OMSCHRIJVING, TXT(T_MS_OMSCHRIJVING));
    SCRPUT(A_LABEL, 2, KOLOM, "%d %s", R_MATEN, TXT(T_MS_MATEN));
    toon_omschrijving(t);
    maatcellen_toon(nullptr);
}

void open_maten(Type* t, int vlaggen) {
    t->h = mtopen(t->stelsel, static_cast<uint8_t>(t->nr), vlaggen);
    for (int maat = 1; maat <= MATEN; maat++) {
        t->h->mtom |= dtmtom && maat_in(t->h->nummers.mtombits, maat); // descriptions go with their sizes
        if (mtpos(t->h, maat))
            maat_aan(t->gebruik, maat);
    }
    maatcellen_toon(t->h);
}

// ---- rows

void vraag_omschrijving(Type* t) {
    t->anders |= INGAVE(1, WAARDE, "20c,E", &SCHERM.toets[key_cancel], t->rec.tekst) != 0;
}

void vraag_maten(Type* t) {
    t->tussengevoegd |= maatcellen_bewerk(t->h, t->gebruik, VOETRIJ) > 0;
}

// Rows by number, or both, until cancel or ESC.
void wijzig(Type* t) {
    const int veld = KOLOM + static_cast<int>(strlen(TXT(T_UW_KEUZE))) + 1;
    for (;;) {
        int16_t nummer = 0;
        SCRCLREOL(KEUSRIJ, 1);
        SCRPUT(A_LABEL, KEUSRIJ, KOLOM, "%s", TXT(T_UW_KEUZE));
        SCRPUT(A_LABEL, KEUSRIJ, veld + 4, "%s", TXT(T_REC_ENTER_ALLE));
        INGAVE(KEUSRIJ, veld, "2d,IAP", &SCHERM.toets[key_cancel], &nummer);
        const bool alle = (SCHERM.vlag & V_LEEG) != 0;
        if (TOETSWEG())
            return;
        if (!alle && nummer != R_OMSCHRIJVING && nummer != R_MATEN) {
            error("<%d> %s", nummer, TXT(T_REC_ONGELDIGE_KEUZE));
            continue;
        }
        SCRCLREOL(KEUSRIJ, 1);
        if (alle || nummer == R_OMSCHRIJVING)
            vraag_omschrijving(t);
        if (nummer == R_MATEN || (alle && !TOETSWEG()))
            vraag_maten(t);
    }
}

// ---- files

// Sizes, then description; true when the screen may be left.
bool bewaar(Type* t) {
    const bool maten = t->h->gewijzigd, melden = maten && t->tussengevoegd;
    const std::string nr = std::to_string(t->nr);
    if (melden)
        mutatie_vooraf(MUT_MAATSOORT, nr);
    bool goed = mtbewaar(t->h) != 0;
    t->melden |= goed && melden;
    if (melden && !t->melden)
        mutatie_niet(MUT_MAATSOORT, nr);
    t->tussengevoegd &= !goed;
    if (goed && t->anders)
        goed = iotab('w', &t->nr, &t->rec, SYS_MAATSOORT) != 0;
    if (goed) {
        t->geschreven |= maten || t->anders;
        t->bestaat = true;
        t->anders = false;
        return true;
    }
    if (!JNVRAAG(KEUSRIJ, KOLOM, "[-]%s", TXT(T_REC_NIET_VASTLEGGEN)))
        return false;
    t->h->gewijzigd = t->anders = false;
    return true;
}

// The sizes out of the file; nothing is written where there are none.
bool wis_maten(Type* t) {
    mtinfo info{};
    while (mtread(t->h, 'F', &info, 1) && mtdelete(t->h, &info)) {
    }
    const bool goed = mtbewaar(t->h) != 0;
    t->h->gewijzigd = false; // refused, and told: they stay as they are on file
    return goed;
}

// True when the screen ends.
bool verwijder(Type* t) {
    if (!JNVRAAG(KEUSRIJ, KOLOM, "[-]%s", TXT(T_MS_VERWIJDEREN_VRAAG)))
        return false;
    t->geschreven = true;
    tekst20 geen{};
    t->bestaat = !iotab('w', &t->nr, &geen, SYS_MAATSOORT); // the name first: never one without sizes
    if (!t->bestaat) {
        t->melden = false;
        mutatie_niet(MUT_MAATSOORT, std::to_string(t->nr));
        wis_maten(t);
    }
    return true;
}

// ---- the run

const char* keustekst(int keus) {
    return keus == WIJZIGEN ? TXT(T_REC_WIJZIGEN) : keus == VERWIJDEREN ? TXT(T_MS_VERWIJDEREN) : nullptr;
}

void keuzes(Type* t) {
    for (;;) {
        uint16_t nummer = 0;
        KEUZESTART(keustekst);
        KEUZEAAN(WIJZIGEN);
        if (t->nieuw)
            KEUZEAAN(VERWIJDEREN);
        KEUZEGETAL(RIJNUMMER, &nummer, R_OMSCHRIJVING, R_MATEN);
        TOETSAAN(K_CANCEL);
        switch (KEUZE(KEUSRIJ, KOLOM)) {
        case WIJZIGEN:
            wijzig(t);
            break;
        case VERWIJDEREN:
            if (verwijder(t))
                return;
            break;
        case RIJNUMMER:
            SCRCLREOL(KEUSRIJ, 1);
            nummer == R_MATEN ? vraag_maten(t) : vraag_omschrijving(t);
            break;
        default:
            if (bewaar(t))
                return;
        }
    }
}

// Description and sizes of a new type, both asked for; false when it is given up.
bool eerste_gang(Type* t) {
    vraag_omschrijving(t);
    if (TOETSWEG())
        return false;
    t->anders = true;
    vraag_maten(t);
    if (maatcellen_aantal(t->h) == 0) {
        error("%s", TXT(T_MS_MINIMAAL));
        vraag_maten(t);
    }
    return maatcellen_aantal(t->h) > 0 && (!bewaar(t) || t->bestaat);
}

bool te_wijzigen(const Type& t) {
    if (t.h->stuk)
        MELDBOX(MELD_ALARM, TXT(T_MS_BESCHADIGD), TXT(T_MS_NIET_WIJZIGEN), nullptr);
    return t.h->schrijven && !t.h->stuk;
}

void voeg_toe(Type* t) {
    if (!JNVRAAG(KEUSRIJ, KOLOM, "[-]%s", TXT(T_MS_NIEUWE)))
        return;
    SCRCLREOL(KEUSRIJ, 1);
    open_maten(t, 2);
    t->nieuw =
        maatcellen_aantal(t->h) == 0; // else sizes without a description, which may be used all the same
    if (te_wijzigen(*t)) {
        if (eerste_gang(t))
            keuzes(t);
        t->h->gewijzigd = false;
        if (t->nieuw && !t->bestaat && !t->geschreven)
            wis_maten(t);
    }
    mtclose(t->h);
}

void bekijk(Type* t) {
    open_maten(t, 0);
    TOETSAAN(K_CANCEL);
    ENTERWACHT(KEUSRIJ, KOLOM);
    mtclose(t->h);
}

void onderhoud(Type* t) {
    t->bestaat = true;
    open_maten(t, 2);
    if (te_wijzigen(*t))
        keuzes(t);
    mtclose(t->h);
}

} // namespace

bool maatsoort_onderhoud(int rij, int kolom, uint8_t stelsel, uint8_t soort) {
    if (stelsel == 0 || soort == 0 || soort > SYS_MAATSOORT.slots)
        return false;
    const bool kijken = gebruiker.userkind == 'I';
    Type t{};
    t.stelsel = stelsel;
    t.nr = soort;
    const bool er = iotab(kijken ? 'R' : 'X', &t.nr, &t.rec, SYS_MAATSOORT) != 0;
    if (kijken && !er) {
        error("<%d> %s", soort, TXT(T_MAAT_ONBEKEND));
        return false;
    }
    // The bar in force is closed meanwhile, and shows the same sizes again.
    const bool balk = maatbalk != nullptr;
    const mthandle was = balk ? *maatbalk : mthandle{};
    balk_sluit();
    teken(t, rij, kolom);
    if (kijken)
        bekijk(&t);
    else if (er)
        onderhoud(&t);
    else
        voeg_toe(&t);
    WINCLOSE();
    if (!kijken)
        iotab('U', &t.nr, &t.rec, SYS_MAATSOORT);
    if (t.melden)
        mutatie(MUT_MAATSOORT, std::to_string(t.nr));
    if (t.geschreven)
        stam_gewijzigd();
    if (balk)
        balk_open(was.stelsel, was.soort, was.keuze);
    return iotab('R', &t.nr, &t.rec, SYS_MAATSOORT) && maatsoort_gevuld(stelsel, soort);
}

} // namespace zg
