// The screens of prices, how they look: labels of the rows, a column of 9 for each group of sizes with equal prices, six
// groups a page. What is asked in them is price/prijsvraag.h, the flows are price/prijsinvoer.h. A screen works on the rows
// that its caller gives; nothing here reads or writes a file, or knows an order.
#pragma once
#include "price/uniprijs.h"

namespace zg {

inline constexpr int PRIJSGROEPEN = 6;  // groups on a page
inline constexpr int ADVIESGROEPEN = 8; // the same on a screen of advice prices alone
inline constexpr int GROEPBREEDTE = 9;
inline constexpr int MAX_VERKOOPPRIJZEN = 8;

// The layout in force. A screen keeps the one before and puts it back, so that one opens from inside another:
// `prijslay` does.
struct prijsscherm {
    int rij;           // of the first label, in the current window
    int kolom;         // of the labels
    int groepkolom;    // of the first group
    int nu;            // column of the group in hand; GROEPBREEDTE further a group
    bool geen_label;   // "Prijsgroep" isn't written
    bool advies_telt;  // a size is there by its advice price, not by its gross price
    uint8_t kolommen;  // Prijskolom
    prijsrijen* rijen; // the rows in hand
    int eerste;        // number of the page's first group, from 0
};
extern prijsscherm up_lay;
// Begins on the first page.
void up_scherm(int rij, int kolom, int groepkolom, bool geen_label, bool advies_telt, uint8_t kolommen,
               prijsrijen* rijen);
// Keeps up_lay and puts it back at the end of the block.
class prijslay {
public:
    prijslay() : was_(up_lay) {}
    ~prijslay() { up_lay = was_; }
    prijslay(const prijslay&) = delete;
    prijslay& operator=(const prijslay&) = delete;

private:
    prijsscherm was_;
};
prijszicht up_zicht(); // of the layout in force
int up_per_pagina();   // groups on its page
// Row of a column's label in the window: those of the mask stand one below the other.
int up_rij(Prijskolom kolom);

// The labels; with the letter of those that can be chosen marked when a choice is offered.
void up_toon_labels(bool met_keuze);
// One group, which becomes the group in hand: its prices are read again from the rows, up_lay.nu is its column on the page.
// `nummer` counts from 0.
void up_toon_groep(prijsgroep_info* groep, int nummer);
// The same and the groups behind it to the end of the page, with the signs of more before and behind; what stood to the
// right of the last is cleared.
void up_toon_groepen(prijsgroep_info* groep, int nummer);
// Labels and the page of groups that begins with group `eerste`: the whole of a screen that only shows. Works on a layout
// set by up_scherm.
void up_toon_pagina(int eerste);
// The window's last row: the method of discount in force; the calculation of advice prices; nothing.
void up_toon_methode();
void up_toon_berekening();
void up_wis_onderregel();

} // namespace zg
