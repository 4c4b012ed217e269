// Pull-down menus, the tree: building, changing and asking. Painting: menuverf.cpp; running: menuloop.cpp.
#include "term/menudeel.h"
#include "term/natl.h"
#include "term/teksten.h"
#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace zg {

namespace {

int hotletter(const char* tekst) {
    const char* p = strchr(tekst, '&');
    return p && p[1] ? NGROOT(static_cast<uint8_t>(p[1])) : 0;
}

// Text as it is kept: a leading blank, but not on a separator. Null when out of memory.
char* bewaard(const char* tekst, bool lijn) {
    if (!tekst)
        tekst = "";
    size_t n = strlen(tekst);
    auto* s = static_cast<char*>(malloc(n + 2));
    if (s) {
        s[0] = ' ';
        memcpy(s + !lijn, tekst, n + 1);
    }
    return s;
}

uint16_t nodig(const TR_ITEM* item) {
    size_t n = strlen(item->tekst);
    return static_cast<uint16_t>(std::min<size_t>(item->lijn ? n + 4 : n + 1, 64));
}

void midden(TR_MENU* menu) {
    if (menu->niveau != 0 || menu->balk)
        return;
    if (menu->vlag & TR_MIDDEN_H)
        menu->kolom = static_cast<int16_t>(SCHERM.cols / 2 - (menu->breedte + 2) / 2);
    if (menu->vlag & TR_MIDDEN_V)
        menu->rij = static_cast<int16_t>(SCHERM.lines / 2 - (menu->aantal + 2) / 2);
}

void wis_item(TR_ITEM* item) {
    if (!item)
        return;
    TR_WIS_SUB(item);
    free(item->tekst);
    free(item);
}

void wis_menu(TR_MENU* menu) {
    if (!menu)
        return;
    for (int i = 0; i < menu->aantal; i++)
        wis_item(menu->items[i]);
    free(menu->items);
    free(menu->titel);
    free(menu);
}

int geen_geheugen() {
    error("%s", TXT(T_ONVOLDOENDE_GEHEUGEN));
    return 0;
}

TR_ITEM* maak_item(const char* tekst, int id, int addvlag, int toets, TR_HANDLERF handler) {
    auto* item = static_cast<TR_ITEM*>(calloc(1, sizeof(TR_ITEM)));
    if (!item)
        return nullptr;
    item->id = id;
    item->toets = toets;
    item->aan = addvlag & M_AAN;
    item->lijn = addvlag & M_LIJN;
    item->merk = static_cast<uint16_t>(addvlag & (M_VAK | M_VAKAAN | M_RADIO | M_GEKOZEN));
    item->handler = handler;
    item->tekst = bewaard(tekst, item->lijn);
    if (!item->tekst) {
        free(item);
        return nullptr;
    }
    item->letter = item->lijn ? 0 : hotletter(item->tekst);
    return item;
}

void voeg_in(TR_MENU* menu, int plaats, TR_ITEM* item) {
    auto* items = static_cast<TR_ITEM**>(realloc(menu->items, (menu->aantal + 1u) * sizeof(TR_ITEM*)));
    if (!items)
        SCRFATAL("%s", TXT(T_MENU_GEHEUGEN));
    menu->items = items;
    std::move_backward(items + plaats, items + menu->aantal, items + menu->aantal + 1);
    items[plaats] = item;
    menu->aantal++;
    if (menu->auto_)
        menu->breedte = std::max(menu->breedte, nodig(item));
    midden(menu);
}

// The item with an id, or a message and false.
bool item_van(TR_MENU* menu, int id, TR_PLEK* plek) {
    if (menu && TR_ZOEK(menu, id, plek))
        return true;
    error(TXT(T_ITEM_ID), id);
    return false;
}

// The submenu under an item, -1 for the top, or a message and null.
TR_MENU* sub_van(TR_MENU* menu, int submenu_id) {
    if (!menu || submenu_id == -1)
        return menu;
    TR_PLEK plek;
    if (!TR_ZOEK(menu, submenu_id, &plek)) {
        error(TXT(T_SUBMENU_ID), submenu_id);
        return nullptr;
    }
    if (!plek.item()->sub)
        error(TXT(T_MENU_ID), submenu_id);
    return plek.item()->sub;
}

// A handler can't take away the menu that it was called from.
bool getoond(const TR_MENU* menu) {
    if (!menu || menu->vlag & TR_GETOOND)
        return menu != nullptr;
    return std::any_of(menu->items, menu->items + menu->aantal,
                       [](const TR_ITEM* i) { return getoond(i->sub); });
}

constexpr int ACHTERAAN = 0x7FFFFFFF;

} // namespace

bool TR_ZOEK(TR_MENU* menu, int id, TR_PLEK* plek) {
    for (int i = 0; i < menu->aantal; i++) {
        if (menu->items[i]->id == id && !menu->items[i]->lijn) {
            *plek = {menu, i};
            return true;
        }
        if (menu->items[i]->sub && TR_ZOEK(menu->items[i]->sub, id, plek))
            return true;
    }
    return false;
}

bool TR_IN_BALK(const TR_MENU* menu) {
    return menu->balk && menu->niveau == 0;
}

TR_MENU* TR_NIEUW_SUB(TR_MENU* menu, TR_ITEM* item) {
    auto* sub = static_cast<TR_MENU*>(calloc(1, sizeof(TR_MENU)));
    if (!sub)
        return nullptr;
    sub->balk = menu->balk;
    sub->niveau = static_cast<uint16_t>(menu->niveau + 1);
    // Only a fixed width that was really given is handed down.
    sub->auto_ = menu->auto_ || menu->breedte == 0;
    sub->breedte = sub->auto_ ? uint16_t{0} : menu->breedte;
    sub->actief = static_cast<uint32_t>(item->aan);
    item->sub = sub;
    return sub;
}

void TR_WIS_SUB(TR_ITEM* item) {
    wis_menu(item->sub);
    item->sub = nullptr;
}

void TR_GROEPEN(TR_MENU* menu) {
    uint16_t groep = 1;
    for (int i = 0; i < menu->aantal; i++) {
        TR_ITEM* item = menu->items[i];
        groep = static_cast<uint16_t>(groep + (item->lijn != 0));
        item->groep = item->merk & (M_RADIO | M_GEKOZEN) ? groep : uint16_t{0};
    }
}

void TR_KIES(TR_MENU* menu, int plaats) {
    TR_GROEPEN(menu);
    for (int i = 0; i < menu->aantal; i++)
        if (menu->items[i]->merk == M_GEKOZEN && menu->items[i]->groep == menu->items[plaats]->groep)
            menu->items[i]->merk = M_RADIO;
    menu->items[plaats]->merk = M_GEKOZEN;
}

TR_MENU* TR_NEW(int vlag, int rij, int kolom, int breedte, const char* titel) {
    auto* menu = static_cast<TR_MENU*>(calloc(1, sizeof(TR_MENU)));
    if (!menu)
        return nullptr;
    if (titel && !(menu->titel = strdup(titel))) {
        free(menu);
        return nullptr;
    }
    const auto v = static_cast<uint32_t>(vlag);
    menu->balk = v & TR_BALK;
    menu->actief = 1;
    menu->auto_ = v & TR_AUTO;
    menu->vlag = v & (TR_MIDDEN_H | TR_MIDDEN_V | TR_GEENCANCEL);
    menu->rij = static_cast<int16_t>(menu->balk ? 2 : rij);
    menu->kolom = static_cast<int16_t>(menu->balk ? 1 : kolom);
    menu->breedte = static_cast<uint16_t>(std::clamp(breedte, 0, 64));
    if (v & TR_GEENTIJD)
        TR_IDLEUIT();
    return menu;
}

int TR_ADD(TR_MENU* menu, int submenu_id, const char* tekst, int id, int addvlag, int toets,
           TR_HANDLERF handler) {
    return TR_INSERT(menu, submenu_id, ACHTERAAN, tekst, id, addvlag, toets, handler);
}

int TR_INSERT(TR_MENU* menu, int submenu_id, int positie, const char* tekst, int id, int addvlag, int toets,
              TR_HANDLERF handler) {
    if (!menu)
        return 0;
    TR_MENU* in = menu;
    TR_PLEK plek{nullptr, 0};
    if (submenu_id != -1) {
        if (!TR_ZOEK(menu, submenu_id, &plek)) {
            error(TXT(T_SUBMENU_ID), submenu_id);
            return 0;
        }
        in = plek.item()->sub;
    }
    if (in && TR_IN_BALK(in) && (addvlag & M_LIJN))
        return 1; // a bar has no separators
    TR_ITEM* item = maak_item(tekst, id, addvlag, toets, handler);
    if (!item)
        return geen_geheugen();
    if (!in && !(in = TR_NIEUW_SUB(plek.menu, plek.item()))) {
        wis_item(item);
        return geen_geheugen();
    }
    in->vlag &= ~static_cast<uint32_t>(TR_TIJDELIJK);
    voeg_in(in, std::clamp<int>(positie, 0, in->aantal), item);
    return 1;
}

int TR_REMOVE(TR_MENU* menu, int id) {
    TR_PLEK plek;
    if (!item_van(menu, id, &plek) || getoond(plek.item()->sub))
        return 0;
    wis_item(plek.item());
    TR_ITEM** items = plek.menu->items;
    std::move(items + plek.plaats + 1, items + plek.menu->aantal, items + plek.plaats);
    plek.menu->aantal--;
    midden(plek.menu);
    return 1;
}

void TR_FREE(TR_MENU* menu) {
    if (menu && TR_IN_BALK(menu))
        TR_BALKWEG();
    wis_menu(menu);
}

int TR_ENABLE(TR_MENU* menu, int id, int stand) {
    TR_PLEK plek;
    if (!item_van(menu, id, &plek))
        return 0;
    int32_t& aan = plek.item()->aan;
    aan = stand == 3 ? !aan : stand != 0;
    return 1;
}

int TR_HANDLER(TR_MENU* menu, int id, TR_HANDLERF functie) {
    TR_PLEK plek;
    if (!item_van(menu, id, &plek))
        return 0;
    plek.item()->handler = functie;
    return 1;
}

int TR_HOTKEY(TR_MENU* menu, int id, int toets) {
    TR_PLEK plek;
    if (!item_van(menu, id, &plek))
        return 0;
    plek.item()->toets = toets;
    return 1;
}

int TR_TEXT(TR_MENU* menu, int id, const char* tekst) {
    TR_PLEK plek;
    if (!item_van(menu, id, &plek))
        return 0;
    char* nieuw = bewaard(tekst, false);
    if (!nieuw)
        return geen_geheugen();
    TR_ITEM* item = plek.item();
    free(item->tekst);
    item->tekst = nieuw;
    item->letter = hotletter(nieuw);
    if (plek.menu->auto_) {
        plek.menu->breedte = 0;
        for (int i = 0; i < plek.menu->aantal; i++)
            plek.menu->breedte = std::max(plek.menu->breedte, nodig(plek.menu->items[i]));
        midden(plek.menu);
    }
    return 1;
}

int TR_SETID(TR_MENU* menu, int id, int nieuw) {
    TR_PLEK plek, ander;
    if (!item_van(menu, id, &plek) || TR_ZOEK(menu, nieuw, &ander))
        return 0;
    plek.item()->id = nieuw;
    return 1;
}

int TR_TITLE(TR_MENU* menu, int submenu_id, const char* tekst) {
    TR_MENU* in = sub_van(menu, submenu_id);
    char* titel = in && tekst ? strdup(tekst) : nullptr;
    if (!in)
        return 0;
    if (tekst && !titel)
        return geen_geheugen();
    free(in->titel);
    in->titel = titel;
    return 1;
}

int TR_WIDTH(TR_MENU* menu, int submenu_id, int breedte) {
    TR_MENU* in = sub_van(menu, submenu_id);
    if (!in)
        return 0;
    in->auto_ = 0;
    in->breedte = static_cast<uint16_t>(std::clamp(breedte, 5, 64));
    midden(in);
    return 1;
}

int TR_PLACE(TR_MENU* menu, int rij, int kolom) {
    if (!menu || TR_IN_BALK(menu))
        return 0;
    menu->rij = static_cast<int16_t>(rij);
    menu->kolom = static_cast<int16_t>(kolom);
    return 1;
}

int TR_FLAGS(TR_MENU* menu, int vlag, int submenu_id) {
    TR_MENU* in = sub_van(menu, submenu_id);
    if (!in)
        return 0;
    in->vlag &= ~static_cast<uint32_t>(TR_GEENCANCEL);
    in->vlag |= static_cast<uint32_t>(vlag) & TR_GEENCANCEL;
    return 1;
}

int TR_GETMARK(TR_MENU* menu, int id) {
    TR_PLEK plek;
    return item_van(menu, id, &plek) ? plek.item()->merk : 0;
}

int TR_SETMARK(TR_MENU* menu, int id, int stand) {
    TR_PLEK plek;
    if (!item_van(menu, id, &plek))
        return 0;
    if (stand == M_GEKOZEN) {
        plek.item()->merk = M_RADIO;
        TR_KIES(plek.menu, plek.plaats);
    } else {
        plek.item()->merk = static_cast<uint16_t>(stand & (M_VAK | M_VAKAAN | M_RADIO));
    }
    return 1;
}

int TR_STATE(TR_MENU* menu, int id) {
    TR_PLEK plek;
    if (!item_van(menu, id, &plek))
        return 65535;
    const TR_MENU* m = plek.menu;
    const TR_ITEM* item = plek.item();
    const uint32_t laag = (m->vlag | m->balk | m->auto_) & 0xFF;
    const uint32_t hoog = static_cast<uint32_t>(item->aan | item->lijn | item->merk) & 0xFF;
    return static_cast<int>(hoog << 8 | laag);
}

int TR_CHOSEN(TR_MENU* menu, int submenu_id, int id) {
    TR_MENU* in = sub_van(menu, submenu_id);
    TR_PLEK plek;
    if (!in || !item_van(in, id, &plek))
        return 0;
    TR_GROEPEN(plek.menu);
    for (int i = 0; i < plek.menu->aantal; i++) {
        const TR_ITEM* item = plek.menu->items[i];
        if (item->merk == M_GEKOZEN && item->groep == plek.item()->groep)
            return item->id;
    }
    return 0;
}

int TR_HOTLETTER(TR_MENU* menu, int id) {
    TR_PLEK plek;
    return item_van(menu, id, &plek) ? plek.item()->letter : 0;
}

} // namespace zg
