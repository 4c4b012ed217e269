// The screen of one record: a window of numbered rows, 11 and up. A new record's rows are asked one after the other
// and it is written; one that is there is looked at, changed row by row, or deleted. One const table a screen; a row
// may open a part of the record in a window of its own.
#pragma once
#include "term/itemscherm.h"
#include <string>

namespace zg {

// The rows, as items: `nummer` is the row's number (11 to 99), the label stands behind it, `toon` and `bewerk` get the
// window row. `bewerk` null: shown only. `te_kiezen` false: passed over and refused. `bekijk`: what the number of the
// row opens while the record is only looked at. Several may have one number when at most one is present.
struct Recordrijen {
    int rij, kolom, hoogte, breedte; // of the window
    int keusrij;                 // its row for choices, questions and the help line of the row that is asked
    std::span<const Item> items; // ascending
    // Where the label of a row stands, and with it the row itself: null: row `nummer` - 9, column 2.
    struct Plek {
        int rij, kolom;
    };
    Plek (*plek)(int nummer) = nullptr;
    // What stands in the window beside the rows, on row 1: which record it is. May be null.
    void (*kop)() = nullptr;
};

// The record's image belongs to the caller; these fill and store it.
struct Recordscherm {
    Recordrijen rijen;
    // Read it, with a lock when it may be changed: 1 there; 0 absent (the image then that of a new one, its key
    // locked or reserved); -1 nothing, and nothing was locked.
    int (*lees)(bool slot);
    // Write it and let go. False: refused, which was told. The screen stays, so the record is the caller's as before.
    bool (*schrijf)();
    bool (*wis)();  // delete it and let go; false: refused, which was told, and the screen ends
    void (*vrij)(); // let go, nothing written
    // A new record, behind the question and before the window: fields of its own. False gives it up. May be null.
    bool (*begin)() = nullptr;
};

// Texts of one run: a question for a new record (empty: it isn't asked), the titles of its window, the question in
// front of a delete.
struct Recordteksten {
    std::string toevoegen, nieuw, raadplegen, wijzigen, verwijderen;
};

enum class Recorduit { zelfde, geschreven, verwijderd };

// Run it. Not there: nothing when it may not be changed; else question, window, every row in turn, write; cancel or
// ESC gives it up. There: the view with "&Wijzigen" and "&Verwijderen" when it may be changed; rows are changed until
// cancel or ESC, then it is written when one changed. Where nothing is written the record is let go.
Recorduit recordscherm(const Recordscherm& scherm, const Recordteksten& teksten, bool mag_wijzigen);

// A part of the record in force in a window over it, called by a row's `bewerk` and `bekijk`: goes as the record goes
// (every row in turn, rows by number, or looked at). Ends at cancel or ESC, which is the part's own: SCHERM.laatste is
// ENTER. True when a row changed.
bool recorddeel(const Recordrijen& deel, const char* titel);

} // namespace zg
