// The run of a record's screen: the walk over a new one, view, rows by number, write, delete.
#include "term/recordscherm.h"
#include "term/ingave.h"
#include "term/keuze.h"
#include "term/prompt.h"
#include "term/teksten.h"
#include <algorithm>
#include <cstring>

namespace zg {
namespace {

constexpr int KOLOM = 2, NUMMERBREEDTE = 3;

enum class Wijze { nieuw, wijzigen, raadplegen };
Wijze wijze; // of the record in force, for its parts

enum Keus { WIJZIGEN, VERWIJDEREN, BEKIJKEN };

bool geldt(bool (*functie)()) {
    return !functie || functie();
}

Recordrijen::Plek plek(const Recordrijen& r, int nummer) {
    return r.plek ? r.plek(nummer) : Recordrijen::Plek{nummer - 9, KOLOM};
}

void toon(const Recordrijen& r) {
    for (const Item& i : r.items)
        if (i.toon && geldt(i.aanwezig))
            i.toon(plek(r, i.nummer).rij);
}

void open(const Recordrijen& r, const char* titel) {
    WINOPEN1(r.rij, r.kolom, r.hoogte, r.breedte);
    WINBOX("%s", titel);
    if (r.kop)
        r.kop();
    for (const Item& i : r.items) {
        if (!geldt(i.aanwezig))
            continue;
        const Recordrijen::Plek p = plek(r, i.nummer);
        SCRPUT(A_LABEL, p.rij, p.kolom, "%2d", i.nummer);
        SCRPUT(A_LABEL, p.rij, p.kolom + NUMMERBREEDTE, "%s", i.label ? TXT(*i.label) : "");
    }
    toon(r);
}

// Ask a row: did it change? The key is in SCHERM.laatste.
bool bewerk(const Recordrijen& r, const Item& i) {
    SCRCLREOL(r.keusrij, 1);
    if (i.hulp)
        SCRPUT(A_WAARDE, r.keusrij, KOLOM, "%s", TXT(*i.hulp));
    SCHERM.laatste = 0;
    const bool anders = i.bewerk(plek(r, i.nummer).rij);
    const int32_t toets = SCHERM.laatste;
    toon(r);
    SCHERM.laatste = toets;
    return anders;
}

bool te_bewerken(const Item& i) {
    return i.bewerk && geldt(i.aanwezig) && geldt(i.te_kiezen);
}

bool te_bekijken(const Item& i) {
    return i.bekijk && geldt(i.aanwezig);
}

const Item* zoek(const Recordrijen& r, int nummer, bool (*mag)(const Item&)) {
    for (const Item& i : r.items)
        if (i.nummer == nummer && mag(i))
            return &i;
    error("<%d> %s", nummer, TXT(T_REC_ONGELDIGE_KEUZE));
    return nullptr;
}

// Every row in turn; false when cancel or ESC ended it.
bool alle(const Recordrijen& r, bool* anders) {
    for (const Item& i : r.items) {
        if (!te_bewerken(i))
            continue;
        *anders |= bewerk(r, i);
        if (TOETSWEG())
            return false;
    }
    return true;
}

// Rows by number, or all of them, until cancel or ESC.
void keuzes(const Recordrijen& r, bool* anders) {
    for (;;) {
        const char* uw_keuze = TXT(T_UW_KEUZE);
        const int veld = KOLOM + static_cast<int>(strlen(uw_keuze)) + 1;
        int16_t nummer = 0;
        SCRCLREOL(r.keusrij, 1);
        SCRPUT(A_LABEL, r.keusrij, KOLOM, "%s", uw_keuze);
        SCRPUT(A_LABEL, r.keusrij, veld + 4, "%s", TXT(T_REC_ENTER_ALLE));
        INGAVE(r.keusrij, veld, "2d,AP", &SCHERM.toets[key_cancel], &nummer);
        if (TOETSWEG())
            return;
        if (SCHERM.vlag & V_LEEG)
            alle(r, anders);
        else if (const Item* i = zoek(r, nummer, te_bewerken))
            *anders |= bewerk(r, *i);
    }
}

const char* keustekst(int keus) {
    return keus == WIJZIGEN ? TXT(T_REC_WIJZIGEN) : keus == VERWIJDEREN ? TXT(T_REC_VERWIJDEREN) : nullptr;
}

// The choices of a record that is looked at; true when one was made, in *keus. Rows to look into are opened here.
bool bekijk(const Recordrijen& r, bool mag_wijzigen, Keus* keus) {
    const auto laagste = std::find_if(r.items.begin(), r.items.end(), te_bekijken);
    const auto hoogste = std::find_if(r.items.rbegin(), r.items.rend(), te_bekijken);
    const bool delen = laagste != r.items.end();
    if (!delen && !mag_wijzigen) {
        TOETSAAN(K_CANCEL);
        ENTERWACHT(r.keusrij, KOLOM);
        return false;
    }
    for (;;) {
        uint16_t nummer = 0;
        KEUZESTART(keustekst);
        if (mag_wijzigen) {
            KEUZEAAN(WIJZIGEN);
            KEUZEAAN(VERWIJDEREN);
        }
        if (delen)
            KEUZEGETAL(BEKIJKEN, &nummer, laagste->nummer, hoogste->nummer);
        TOETSAAN(K_CANCEL);
        const int gekozen = KEUZE(r.keusrij, KOLOM);
        if (gekozen < 0)
            return false;
        *keus = static_cast<Keus>(gekozen);
        if (*keus != BEKIJKEN)
            return true;
        if (const Item* i = zoek(r, nummer, te_bekijken))
            i->bekijk();
    }
}

// Written, or left all the same behind a refusal: then it is let go.
bool schrijf(const Recordscherm& s, Recorduit* uit) {
    if (s.schrijf()) {
        *uit = Recorduit::geschreven;
        return true;
    }
    if (!JNVRAAG(s.rijen.keusrij, KOLOM, "[-]%s", TXT(T_REC_NIET_VASTLEGGEN)))
        return false;
    s.vrij();
    return true;
}

Recorduit voeg_toe(const Recordscherm& s, const char* titel) {
    Recorduit uit = Recorduit::zelfde;
    bool anders = false;
    wijze = Wijze::nieuw;
    open(s.rijen, titel);
    if (!alle(s.rijen, &anders)) {
        s.vrij();
    } else {
        while (!schrijf(s, &uit)) {
            wijze = Wijze::wijzigen;
            keuzes(s.rijen, &anders);
        }
    }
    WINCLOSE();
    return uit;
}

Recorduit wijzig(const Recordscherm& s, const char* titel) {
    Recorduit uit = Recorduit::zelfde;
    bool anders = false;
    wijze = Wijze::wijzigen;
    open(s.rijen, titel);
    do
        keuzes(s.rijen, &anders);
    while (anders && !schrijf(s, &uit));
    if (!anders)
        s.vrij();
    WINCLOSE();
    return uit;
}

// The view; what was chosen in it is done with the view gone.
Recorduit raadpleeg(const Recordscherm& s, const Recordteksten& t, bool mag_wijzigen) {
    Keus keus{};
    wijze = Wijze::raadplegen;
    open(s.rijen, t.raadplegen.c_str());
    bool gekozen;
    do
        gekozen = bekijk(s.rijen, mag_wijzigen, &keus);
    while (gekozen && keus == VERWIJDEREN &&
           !JNVRAAG(s.rijen.keusrij, KOLOM, "[-]%s", t.verwijderen.c_str()));
    WINCLOSE();
    if (gekozen && keus == WIJZIGEN)
        return wijzig(s, t.wijzigen.c_str());
    if (gekozen && s.wis())
        return Recorduit::verwijderd;
    if (mag_wijzigen)
        s.vrij();
    return Recorduit::zelfde;
}

} // namespace

Recorduit recordscherm(const Recordscherm& s, const Recordteksten& t, bool mag_wijzigen) {
    const Wijze erboven = wijze;
    Recorduit uit = Recorduit::zelfde;
    const int gelezen = s.lees(mag_wijzigen);
    if (gelezen == 1) {
        uit = raadpleeg(s, t, mag_wijzigen);
    } else if (gelezen == 0 && mag_wijzigen) {
        const bool ja = t.toevoegen.empty() || FFLASH(-2, 0, A_WAARDE, nullptr, "[-]%s", t.toevoegen.c_str());
        if (ja && geldt(s.begin))
            uit = voeg_toe(s, t.nieuw.c_str());
        else
            s.vrij();
    }
    wijze = erboven;
    return uit;
}

bool recorddeel(const Recordrijen& deel, const char* titel) {
    const Wijze hoe = wijze;
    bool anders = false;
    Keus geen;
    open(deel, titel);
    if (hoe == Wijze::raadplegen)
        bekijk(deel, false, &geen);
    else if (hoe == Wijze::nieuw)
        alle(deel, &anders);
    else
        keuzes(deel, &anders);
    WINCLOSE();
    wijze = hoe;
    SCHERM.laatste = K_ENTER;
    return anders;
}

} // namespace zg
