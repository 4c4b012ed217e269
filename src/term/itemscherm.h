// A screen of items: a window of labels with their values. A new record's items are asked one by one, by flags
// of the installation; then each is chosen by its letter from the row "Uw keuze". One const table a screen.
#pragma once
#include "term/tekst.h"
#include <cstdint>
#include <span>

namespace zg {

// One item. `rij` is its row in the window. Functions may be null: no value, not to be edited, always to be
// chosen, always on the screen, nothing to look at.
struct Item {
    int nummer;         // 0 to 31: of the choice, and place of its flag for the first walk
    const Tekst* label; // '&' before its letter
    void (*toon)(int rij);
    // Ask it, and answer true when it changed; the key is in SCHERM.laatste. Keys allowed before leave the field.
    bool (*bewerk)(int rij) = nullptr;
    bool (*te_kiezen)() = nullptr;
    bool (*aanwezig)() = nullptr;
    // Look at it: the one function that is called where the record may only be looked at. It changes nothing.
    void (*bekijk)() = nullptr;
    // What is asked, in a line; shown meanwhile where the screen has a row for it.
    const Tekst* hulp = nullptr;
    // A new record can't do without it: is it still missing? Asked in the walk whatever its byte, and again when the
    // screen is left without it.
    bool (*ontbreekt)() = nullptr;
};

struct Itemscherm {
    const Tekst* titel;
    int rij, kolom, hoogte, breedte; // of the window
    int keusrij;                     // row of the choices, and of the question behind F6
    int eerste;                      // number at which the first walk begins
    int (*itemrij)(int nummer);
    std::span<const Item> items; // ascending by number
};

enum class Itemwijze { lezen, wijzigen, nieuw };

// How a run of the screen goes. `vraag`: a new record's first walk asks the items whose byte isn't 0; ESC ends the
// walk. `afbreekbaar`: F6 asks "Toevoegen afbreken" in every field and at the choices. `opgave`: ESC at an item of the
// walk up to this number breaks off.
struct Itemverloop {
    Itemwijze wijze;
    const uint8_t* vraag = nullptr;
    bool afbreekbaar = false;
    int opgave = -1;
    // Asked in the open window when the screen is left from the choices; false: it isn't.
    bool (*verlaten)() = nullptr;
};

// Open the window, run until ESC or cancel, close it. False when it was broken off. *anders becomes true when an
// item changed at the choices, and is never set back.
bool itemscherm(const Itemscherm& scherm, const Itemverloop& verloop, bool* anders);

} // namespace zg
