// The run of a screen of items: first walk, choices, looking.
#include "term/itemscherm.h"
#include "term/ingave.h"
#include "term/keuze.h"
#include "term/prompt.h"
#include "term/teksten.h"

namespace zg {
namespace {

constexpr int LABELKOLOM = 2;

const Itemscherm* nu; // whose choices are asked

bool geldt(bool (*functie)()) {
    return !functie || functie();
}

const Item* item(int nummer) {
    for (const Item& i : nu->items)
        if (i.nummer == nummer)
            return &i;
    return nullptr;
}

const char* itemtekst(int nummer) {
    const Item* i = item(nummer);
    return i ? TXT(*i->label) : nullptr;
}

void toon(const Itemscherm& s) {
    for (const Item& i : s.items)
        if (i.toon && geldt(i.aanwezig))
            i.toon(s.itemrij(i.nummer));
}

bool bewerk(const Itemscherm& s, const Item& i) {
    SCHERM.laatste = 0;
    bool anders = i.bewerk(s.itemrij(i.nummer));
    TOETSUIT(K_F6); // a field that didn't open leaves its keys behind
    const int32_t toets = SCHERM.laatste;
    toon(s);
    SCHERM.laatste = toets;
    return anders;
}

// F6: the answer. The question's row is free again afterwards.
bool afbreken(const Itemscherm& s) {
    bool ja = JNVRAAG(s.keusrij, LABELKOLOM, "[-]%s", TXT(T_TOEVOEGEN_AFBREKEN)) != 0;
    SCRCLREOL(s.keusrij, 1);
    return ja;
}

bool eerste_gang(const Itemscherm& s, const Itemverloop& v) {
    for (size_t n = 0; n < s.items.size(); n++) {
        const Item& i = s.items[n];
        if (i.nummer < s.eerste || !v.vraag[i.nummer] || !i.bewerk || !geldt(i.aanwezig))
            continue;
        if (v.afbreekbaar)
            TOETSAAN(K_F6);
        bewerk(s, i);
        if (SCHERM.laatste == K_F6 && v.afbreekbaar) {
            if (afbreken(s))
                return false;
            n--;
        } else if (TOETSWEG()) {
            break;
        }
    }
    return true;
}

bool aangeboden(const Item& i, bool lezen) {
    return geldt(i.aanwezig) && (lezen ? i.bekijk != nullptr : i.bewerk && geldt(i.te_kiezen));
}

// The choices until ESC; false when broken off.
bool keuzes(const Itemscherm& s, const Itemverloop& v, bool* anders) {
    const bool lezen = v.wijze == Itemwijze::lezen;
    for (;;) {
        nu = &s; // an item may have run a screen of its own
        KEUZESTART(itemtekst);
        for (const Item& i : s.items)
            if (aangeboden(i, lezen))
                KEUZEAAN(i.nummer);
        TOETSAAN(K_CANCEL);
        if (v.afbreekbaar && !lezen)
            TOETSAAN(K_F6);
        const Item* gekozen = item(KEUZE(s.keusrij, LABELKOLOM));
        if (gekozen && lezen)
            gekozen->bekijk();
        else if (gekozen)
            *anders |= bewerk(s, *gekozen);
        else if (SCHERM.laatste != K_F6)
            return true;
        else if (afbreken(s))
            return false;
    }
}

} // namespace

bool itemscherm(const Itemscherm& s, const Itemverloop& v, bool* anders) {
    WINOPEN1(s.rij, s.kolom, s.hoogte, s.breedte);
    WINBOX(" %s ", TXT(*s.titel));
    for (const Item& i : s.items)
        if (geldt(i.aanwezig))
            AMPTEKST(s.itemrij(i.nummer), LABELKOLOM, TXT(*i.label));
    toon(s);
    const bool gang = v.wijze == Itemwijze::nieuw && v.vraag;
    const bool goed = (!gang || eerste_gang(s, v)) && keuzes(s, v, anders);
    WINCLOSE();
    return goed;
}

} // namespace zg
