// The pick list over an indexed table (LIJST on a pair): sorted by one of its keys, TAB goes to the next, the search
// field stands on the last row. One const record a table says how its rows look.
#pragma once
#include "shared/stamrec.h"
#include "term/tekst.h"
#include <span>
#include <string>

namespace zg {

// A sort order: number of the key in the header, the search field's label and format (an 's' type of at most 20),
// and what puts the text that was typed into an empty record.
struct Stamsleutel {
    int nummer;
    const Tekst* vraag;
    const char* formaat;
    void (*zet)(void* rec, const char* getypt);
};

// Records are handed over as 512 bytes, zeros behind those of the file.
struct Stamlijst {
    ICB* const* icb;
    const Tekst* kop;                      // of the columns
    int breedte;                           // of the window
    std::span<const Stamsleutel> sleutels; // the first is that of the code
    std::string (*regel)(const void* rec); // text of a row
    int32_t (*code)(const void* rec);      // its number
    void (*zet_code)(void* rec, int32_t code);
    void (*record)(int32_t code, int welke) = nullptr;  // F10: open the record
    bool (*past)(const void* rec, int welke) = nullptr; // only these; null: all
};

// The list from *code on; `welke` is for `past`. False without a pick, or when there is nothing to list (told).
bool stamlijst(const Stamlijst& lijst, const char* titel, int welke, int32_t* code);

// A record as the list has it, as its struct.
template <class R> R stam_beeld(const void* rec) {
    R uit;
    stam_uit(rec, IXRECMAX, &uit);
    return uit;
}

} // namespace zg
