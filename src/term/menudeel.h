// What the three files of the pull-down menus share: menubouw.cpp (the tree), menuverf.cpp (painting),
// menuloop.cpp (keys). Nobody else includes this.
#pragma once
#include "term/menu.h"
#include "term/scherm.h"
#include <string>

namespace zg {

enum Menuvlag : uint32_t {
    TR_AUTO = 1,
    TR_BALK = 2,
    TR_MIDDEN_H = 4,
    TR_MIDDEN_V = 8,
    TR_GEENCANCEL = 16,
    TR_GEENTIJD = 32,
    TR_GETOOND = 0x40000000,   // open on the screen
    TR_TIJDELIJK = 0x80000000, // one-item submenu that lives for one run of a bar
};
enum Itemvlag : uint16_t { M_AAN = 1, M_LIJN = 2, M_VAK = 4, M_VAKAAN = 8, M_RADIO = 16, M_GEKOZEN = 32 };

// An item in its menu.
struct TR_PLEK {
    TR_MENU* menu;
    int plaats;
    TR_ITEM* item() const { return menu->items[plaats]; }
};

// Depth first; false when there is no such id, without a message.
bool TR_ZOEK(TR_MENU* menu, int id, TR_PLEK* plek);
TR_MENU* TR_NIEUW_SUB(TR_MENU* menu, TR_ITEM* item);
void TR_WIS_SUB(TR_ITEM* item);
void TR_GROEPEN(TR_MENU* menu);          // number the radio groups
void TR_KIES(TR_MENU* menu, int plaats); // choose a radio item of its group
bool TR_IN_BALK(const TR_MENU* menu);    // is this the bar itself?
void TR_IDLEUIT();                       // idle time off, for a menu made with flag 32

// A menu on the screen: the box that it got and the rows or bar items that it shows.
struct TR_BEELD {
    TR_MENU* menu;
    int rij, kolom, breedte, zicht;
};

TR_BEELD TR_MAAT(TR_MENU* menu);
void TR_OPEN(const TR_BEELD& b);
void TR_VERFITEM(const TR_BEELD& b, int plaats, bool keus);
void TR_VERF(const TR_BEELD& b, int keus);
// Scroll so that the item shows; true when the menu has to be painted anew.
bool TR_SCHUIF(const TR_BEELD& b, int plaats);
// Give a submenu its place beside the item that it hangs under.
void TR_LEGSUB(const TR_BEELD& b, int plaats);
void TR_BALKRUST(const TR_MENU* menu); // the bar on the base window, while it is closed
void TR_BALKWEG();
// Hot letter as far as the width leaves it visible, 0 for none.
int TR_LETTER(const TR_MENU* menu, const TR_ITEM* item);

} // namespace zg
