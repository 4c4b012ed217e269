// Pull-down menus, the keys. A menu drives itself through a queue that is emptied from its end, before the
// keyboard is looked at: to open the neighbour of an open submenu it closes that one and queues the keys that
// a user would press.
#include "term/menudeel.h"
#include "term/natl.h"
#include "term/teksten.h"
#include "term/toets.h"
#include <algorithm>
#include <vector>

namespace zg {

namespace {

// A queued key from here up takes the item with that place, enabled or not, whatever its letter is.
constexpr int32_t Q_PLAATS = 0x10000;
constexpr int GEEN_ITEMS = 65535;
constexpr int TIJD_OM = -2;
constexpr int ONBEPERKT = -1, ONBEPERKT_VAST = -2;

int wachttijd = ONBEPERKT;

// The run in progress; a handler may start another one inside it.
struct Loop {
    TR_MENU* top = nullptr;
    std::vector<int32_t> wachtrij;
} nu;

struct Genomen {
    bool sluit;
    int uit;
};
constexpr Genomen BLIJF{false, 0};

bool bruikbaar(const TR_ITEM* item) {
    return item->aan && !item->lijn;
}

int beginplaats(const TR_MENU* menu, int id) {
    int eerste = -1, iets = -1;
    for (int i = menu->aantal - 1; i >= 0; i--) {
        const TR_ITEM* item = menu->items[i];
        if (!item->lijn)
            iets = i;
        if (bruikbaar(item))
            eerste = i;
    }
    for (int i = 0; i < menu->aantal; i++)
        if (bruikbaar(menu->items[i]) && menu->items[i]->id == id)
            return i;
    return eerste >= 0 ? eerste : iets;
}

int stap(const TR_MENU* menu, int plaats, int richting) {
    for (int n = 0; n < menu->aantal; n++) {
        plaats = (plaats + richting + menu->aantal) % menu->aantal;
        if (!menu->items[plaats]->lijn)
            break;
    }
    return plaats;
}

int32_t groot(int32_t key) {
    return key >= 0 && key <= 255 ? NGROOT(static_cast<uint8_t>(key)) : key;
}

// The enabled item that a letter or an extra key stands for, -1 for none.
int plaats_van(const TR_MENU* menu, int32_t key) {
    if (key == ' ')
        return -1;
    key = groot(key == ',' ? '.' : key);
    for (int i = 0; i < menu->aantal; i++) {
        const TR_ITEM* item = menu->items[i];
        if (bruikbaar(item) && key != 0 && (TR_LETTER(menu, item) == key || groot(item->toets) == key))
            return i;
    }
    return -1;
}

bool alleen_radio(const TR_MENU* menu) {
    return std::all_of(menu->items, menu->items + menu->aantal, [](const TR_ITEM* i) {
        return i->lijn || i->merk == M_RADIO || i->merk == M_GEKOZEN;
    });
}

int32_t volgende_toets() {
    if (!nu.wachtrij.empty()) {
        int32_t key = nu.wachtrij.back();
        nu.wachtrij.pop_back();
        return key;
    }
    BEZIGWIS(); // a handler's field may have left it
    if (wachttijd >= 0 && !TOETSWACHT(1, 1, wachttijd))
        return TIJD_OM;
    return TOETS();
}

void roep(TR_ITEM* item) {
    if (!item->handler)
        return;
    WINCURSOR(1);
    item->handler(nu.top, item->id);
    WINCURSOR(0);
}

int lus(TR_MENU* menu, int id);

// Take an item: as ENTER does.
Genomen neem(const TR_BEELD& b, int plaats, int id) {
    TR_MENU* menu = b.menu;
    TR_ITEM* item = menu->items[plaats];
    if (!item->sub && (!item->aan || !menu->actief))
        return BLIJF;
    if (!item->sub || !(item->sub->vlag & TR_TIJDELIJK))
        roep(item);
    // The handler may have changed the menu that it was called from.
    if (plaats >= menu->aantal || menu->items[plaats] != item)
        return BLIJF;
    if (item->sub) {
        if (item->sub->aantal == 0)
            return BLIJF;
        item->sub->actief = item->aan && menu->actief;
        TR_LEGSUB(b, plaats);
        int uit = lus(item->sub, id);
        return {uit != 0, uit};
    }
    if (!item->merk)
        return {true, item->id};
    if (item->merk == M_VAK || item->merk == M_VAKAAN) {
        item->merk ^= M_VAK | M_VAKAAN;
    } else {
        TR_KIES(menu, plaats);
        if (alleen_radio(menu))
            nu.wachtrij.push_back(K_ESC);
    }
    return BLIJF;
}

// Left or right out of a submenu: what follows after it has closed. false: the key doesn't leave it.
bool opzij(const TR_MENU* menu, int32_t key) {
    if (menu->niveau == 0)
        return false;
    if (!menu->balk)
        return key == K_LEFT;
    if (key == K_LEFT && menu->niveau > 1)
        return true;
    nu.wachtrij.push_back(K_ENTER);
    nu.wachtrij.push_back(key);
    for (int n = 1; n < menu->niveau; n++)
        nu.wachtrij.push_back(K_ESC);
    return true;
}

// What a key does in an open menu: where the cursor goes, and whether the item there is taken.
struct Gevolg {
    int plaats;
    bool neem = false, sluit = false;
};

Gevolg gevolg(const TR_MENU* menu, int plaats, int32_t key) {
    const bool balk = TR_IN_BALK(menu);
    switch (key) {
    case K_ENTER:
        return {plaats, true};
    case K_UP:
        return {balk ? plaats : stap(menu, plaats, -1)};
    case K_DOWN:
        return balk ? Gevolg{plaats, true} : Gevolg{stap(menu, plaats, 1)};
    case K_LEFT:
    case K_RIGHT:
        if (balk)
            return {stap(menu, plaats, key == K_LEFT ? -1 : 1)};
        if (key == K_RIGHT && menu->items[plaats]->sub)
            return {plaats, true};
        return {plaats, false, opzij(menu, key)};
    case K_CANCEL:
    case K_ESC:
        return {plaats, false, !(menu->vlag & TR_GEENCANCEL)};
    }
    const int pak = key >= Q_PLAATS ? key - Q_PLAATS : plaats_van(menu, key);
    return pak >= 0 && pak < menu->aantal ? Gevolg{pak, true} : Gevolg{plaats};
}

// The cursor from one item to another: two items are drawn, or all when the menu scrolls.
void beweeg(const TR_BEELD& b, int van, int naar) {
    if (TR_SCHUIF(b, naar)) {
        TR_VERF(b, naar);
    } else if (naar != van) {
        TR_VERFITEM(b, van, false);
        TR_VERFITEM(b, naar, true);
    }
}

int lus(TR_MENU* menu, int id) {
    TR_GROEPEN(menu);
    const TR_BEELD b = TR_MAAT(menu);
    int plaats = beginplaats(menu, id);
    if (plaats < 0)
        return 0;
    menu->eerste = 0;
    menu->vlag |= TR_GETOOND;
    TR_OPEN(b);
    WINCURSOR(0);
    TR_SCHUIF(b, plaats);
    TR_VERF(b, plaats);

    Genomen g = BLIJF;
    while (!g.sluit) {
        const int32_t key = volgende_toets();
        if (key == TIJD_OM) {
            g = {true, TIJD_OM};
            break;
        }
        error("%s", "");
        const Gevolg v = gevolg(menu, plaats, key);
        g.sluit = v.sluit;
        beweeg(b, plaats, v.plaats);
        plaats = v.plaats;
        if (!v.neem)
            continue;
        g = neem(b, plaats, id);
        // A handler may have changed anything, up to taking all items away.
        if (menu->aantal == 0)
            g = {true, 0};
        plaats = std::min<int>(plaats, menu->aantal - 1);
        if (!g.sluit) {
            TR_SCHUIF(b, plaats);
            TR_VERF(b, plaats);
        }
    }
    if (menu->niveau == 0)
        WINCURSOR(1);
    WINCLOSE();
    menu->vlag &= ~static_cast<uint32_t>(TR_GETOOND);
    return g.uit;
}

// Places from the top down to an item, and whether every menu on the way may be entered.
bool pad_naar(TR_MENU* menu, int id, std::vector<int>* pad, bool* actief) {
    for (int i = 0; i < menu->aantal; i++) {
        TR_ITEM* item = menu->items[i];
        if (item->id == id && !item->lijn)
            return true;
        if (!item->sub)
            continue;
        pad->push_back(i);
        if (pad_naar(item->sub, id, pad, actief)) {
            *actief = *actief && item->aan;
            return true;
        }
        pad->pop_back();
    }
    return false;
}

// A key that waits already may choose at once, without anything being shown. 0: it didn't.
int sneltoets(TR_MENU* menu, bool actief) {
    const int32_t key = TOETS();
    const int plaats = actief ? plaats_van(menu, key) : -1;
    TR_ITEM* item = plaats >= 0 ? menu->items[plaats] : nullptr;
    if (!item || item->sub || item->merk) {
        TOETSDRUK(key);
        return 0;
    }
    const int id = item->id;
    if (item->handler)
        item->handler(nu.top, id);
    return id;
}

void balk_vol(TR_MENU* menu) {
    for (int i = 0; i < menu->aantal; i++) {
        TR_ITEM* item = menu->items[i];
        if (item->sub)
            continue;
        TR_MENU* sub = TR_NIEUW_SUB(menu, item);
        if (sub && TR_ADD(sub, -1, item->tekst + 1, item->id, item->aan, item->toets, item->handler))
            sub->vlag |= TR_TIJDELIJK;
        else
            TR_WIS_SUB(item);
    }
}

void balk_leeg(TR_MENU* menu) {
    for (int i = 0; i < menu->aantal; i++)
        if (menu->items[i]->sub && menu->items[i]->sub->vlag & TR_TIJDELIJK)
            TR_WIS_SUB(menu->items[i]);
}

int voer_uit(TR_MENU* menu, int id) {
    std::vector<int> pad;
    bool actief = menu->actief != 0;
    if (id == 0 || !pad_naar(menu, id, &pad, &actief))
        pad.clear();
    if (TOETSKLAAR()) {
        TR_MENU* in = menu;
        for (int plaats : pad)
            in = in->items[plaats]->sub;
        if (int uit = sneltoets(in, actief))
            return uit;
    }
    for (size_t i = pad.size(); i-- > 0;)
        nu.wachtrij.push_back(Q_PLAATS + pad[i]);
    const int uit = lus(menu, id);
    if (TR_IN_BALK(menu))
        TR_BALKRUST(menu);
    return uit;
}

} // namespace

void TR_TIMEOUT(int seconden) {
    if (wachttijd != ONBEPERKT_VAST)
        wachttijd = seconden >= 0 || seconden == ONBEPERKT_VAST ? seconden : ONBEPERKT;
}

void TR_IDLEUIT() {
    TR_TIMEOUT(ONBEPERKT);
}

int TR_RUN(TR_MENU* menu, int id) {
    if (!menu)
        return -1;
    if (menu->aantal == 0)
        return GEEN_ITEMS;
    BEZIGWIS();
    Loop buiten;
    buiten.top = menu;
    std::swap(nu, buiten);
    if (TR_IN_BALK(menu))
        balk_vol(menu);
    const int uit = voer_uit(menu, id);
    if (TR_IN_BALK(menu))
        balk_leeg(menu);
    std::swap(nu, buiten);
    if (uit == 0)
        SCHERM.laatste = K_CANCEL;
    else if (uit != TIJD_OM && uit != GEEN_ITEMS)
        SCHERM.laatste = K_ENTER;
    return uit;
}

} // namespace zg
