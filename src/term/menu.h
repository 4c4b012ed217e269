// Pull-down menus: a bar on row 2 or a pop-up column, a tree of items with ids, hot letters, marks, handlers.
#pragma once
#include <cstdint>

namespace zg {

struct TR_MENU;
using TR_HANDLERF = void (*)(TR_MENU* top, int32_t id);

struct TR_ITEM {
    int32_t id, letter, toets, aan, lijn;
    uint16_t merk, groep;
    char* tekst;
    TR_HANDLERF handler;
    TR_MENU* sub;
};

struct TR_MENU {
    uint32_t balk, actief, auto_, vlag;
    uint16_t niveau, breedte, aantal;
    int16_t kolom, rij;
    uint16_t eerste, laatste;
    char* titel;
    TR_ITEM** items;
};

// TR_NEW flags: 1 automatic width, 2 bar, 4 and 8 centred, 16 CANCEL has no effect, 32 no idle time.
// TR_ADD flags: 1 enabled, 2 separator, 4 and 8 check box, 16 and 32 radio button.
TR_MENU* TR_NEW(int vlag, int rij, int kolom, int breedte, const char* titel);
int TR_ADD(TR_MENU* menu, int submenu_id, const char* tekst, int id, int addvlag, int toets,
           TR_HANDLERF handler);
int TR_INSERT(TR_MENU* menu, int submenu_id, int positie, const char* tekst, int id, int addvlag, int toets,
              TR_HANDLERF handler);
int TR_REMOVE(TR_MENU* menu, int id);
void TR_FREE(TR_MENU* menu);
int TR_ENABLE(TR_MENU* menu, int id, int stand); // 0, 1, or 3 to toggle
int TR_HANDLER(TR_MENU* menu, int id, TR_HANDLERF functie);
int TR_HOTKEY(TR_MENU* menu, int id, int toets);
int TR_TEXT(TR_MENU* menu, int id, const char* tekst);
int TR_SETID(TR_MENU* menu, int id, int nieuw);
int TR_TITLE(TR_MENU* menu, int submenu_id, const char* tekst);
int TR_WIDTH(TR_MENU* menu, int submenu_id, int breedte);
int TR_PLACE(TR_MENU* menu, int rij, int kolom);
int TR_FLAGS(TR_MENU* menu, int vlag, int submenu_id);
int TR_GETMARK(TR_MENU* menu, int id);
int TR_SETMARK(TR_MENU* menu, int id, int stand);
int TR_STATE(TR_MENU* menu, int id); // packed word; 65535 for a wrong id
int TR_CHOSEN(TR_MENU* menu, int submenu_id, int id);
int TR_HOTLETTER(TR_MENU* menu, int id);
void TR_TIMEOUT(int seconden);
// Show and run: the id chosen; 0 left by CANCEL or ESC; -2 idle time over; 65535 no items; -1 null menu.
int TR_RUN(TR_MENU* menu, int id);

} // namespace zg
