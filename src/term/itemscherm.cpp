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

// Ask an item until it isn't left by F6; false when that broke the record off.
bool vraag_item(const Itemscherm& s, const Itemverloop& v, const Item& i, bool* anders) {
    for (;;) {
        if (v.afbreekbaar)
            TOETSAAN(K_F6);
        *anders |= bewerk(s, i);
        if (!v.afbreekbaar || SCHERM.laatste != K_F6)
            return true;
        if (afbreken(s))
            return false;
    }
}

bool mist(const Item& i) {
    return i.ontbreekt && i.ontbreekt();
}

bool eerste_gang(const Itemscherm& s, const Itemverloop& v) {
    bool anders = false;
    for (const Item& i : s.items) {
        if (i.nummer < s.eerste || (!v.vraag[i.nummer] && !mist(i)) || !i.bewerk || !geldt(i.aanwezig))
            continue;
        if (!vraag_item(s, v, i, &anders))
            return false;
        if (TOETSWEG())
            return i.nummer > v.opgave;
    }
    return true;
}

bool aangeboden(const Item& i, bool lezen) {
    return geldt(i.aanwezig) && (lezen ? i.bekijk != nullptr : i.bewerk && geldt(i.te_kiezen));
}

// The first item that a new record still misses; null for none.
const Item* gemist(const Itemscherm& s, const Itemverloop& v) {
    if (v.wijze == Itemwijze::nieuw)
        for (const Item& i : s.items)
            if (mist(i) && i.bewerk && geldt(i.aanwezig))
                return &i;
    return nullptr;
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
        const Item* te_vragen = item(KEUZE(s.keusrij, LABELKOLOM));
        if (te_vragen && lezen) {
            te_vragen->bekijk();
            continue;
        }
        if (!te_vragen && SCHERM.laatste == K_F6) {
            if (afbreken(s))
                return false;
            continue;
        }
        if (!te_vragen) {
            te_vragen = gemist(s, v);
            if (!te_vragen && v.verlaten && !v.verlaten())
                continue;
            if (!te_vragen)
                return true;
            error("%s", TXT(T_VERPLICHT));
        }
        if (!vraag_item(s, v, *te_vragen, anders))
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
