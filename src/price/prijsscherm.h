// The screens of prices, how they look: labels of the rows, a column of 9 for each group of sizes with equal prices, six
// groups a page. What is asked in them is price/prijsvraag.h, the flows are price/prijsinvoer.h. A screen works on the rows
// that its caller gives; nothing here reads or writes a file, or knows an order.
#pragma once
#include "price/uniprijs.h"

namespace zg {

inline constexpr int PRIJSGROEPEN = 6; // groups on a page
inline constexpr int GROEPBREEDTE = 9;
inline constexpr int MAX_VERKOOPPRIJZEN = 8;

// The layout in force. A screen keeps the one before and puts it back, so that one opens from inside another:
// `prijslay` does.
struct prijsscherm {
    int rij;           // of the first label, in the current window
    int kolom;         // of the labels
    int groepkolom;    // of the first group
    int nu;            // column of the group being written; GROEPBREEDTE further a group
    bool geen_label;   // "Prijsgroep" isn't written
    bool advies_telt;  // a size is there by its advice price, not by its gross price
    uint8_t kolommen;  // Prijskolom
    prijsrijen* rijen; // the rows in hand
};
extern prijsscherm up_lay;
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
// Row of a column's label in the window: those of the mask stand one below the other.
int up_rij(Prijskolom kolom);

// The labels, with the first letter of those that can be chosen marked when a choice is offered.
void up_toon_labels(bool met_keuze);
// Write one group in the column in force and move it on; `nummer` counts from 0.
void up_toon_groep(const prijsgroep_info& groep, int nummer);
// The columns from group `vanaf` to the end of the page that begins with group `eerste`, signs of more before and behind
// them too; what stood behind the last group is cleared.
void up_toon_groepen(int eerste, int vanaf);
// Labels and the page of groups that begins with group `eerste`: the whole of a screen that only shows. Works on a layout
// set by up_scherm.
void up_toon_pagina(int eerste);

} // namespace zg
