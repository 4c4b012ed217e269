// A field that asks the code of a table: typed, or picked from the table's list with F5; an unknown code is told
// and the field stays open, or it is added on the spot. One const row a table says how.
#pragma once
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace zg {

// A code as a table's functions see it: a number, or a text without trailing blanks. 0 and "" are no code.
struct Lijstcode {
    int32_t nummer = 0;
    std::string tekst;
    bool leeg() const { return nummer == 0 && tekst.empty(); }
};

// A table. Its functions get the row itself, so that rows which differ in `welke` only can share them.
struct Lijsttabel {
    const char*
        formaat; // type and width of the field: "1U", "3c", "4u"; its option letters come with the call
    int welke;
    // Is there such a code (never an empty one)? What it stands for, a description or name, goes into *naam.
    bool (*lees)(const Lijsttabel& tabel, const Lijstcode& code, std::string* naam);
    // Tell, by error(), that there isn't.
    void (*onbekend)(const Lijsttabel& tabel, const Lijstcode& code);
    // The list, beginning on *code; false without a pick. Null: no F5.
    bool (*kies)(const Lijsttabel& tabel, Lijstcode* code);
    // A code that isn't there may be added by who may change master data: the question ("Wilt u merk 12 toevoegen";
    // empty: not this code), and what does it, true when the code is there now. Null: it may not.
    std::string (*vraag)(const Lijsttabel& tabel, const Lijstcode& code) = nullptr;
    bool (*voeg_toe)(const Lijsttabel& tabel, const Lijstcode& code) = nullptr;
};

enum class Lijstuit {
    weg,    // CANCEL or ESC: the code as it was
    zelfde, // left with the code that it had; ENTER, or a key allowed before the call, is in SCHERM.laatste
    anders
};

// The field at a place of the current window. `opties`: the format's letters behind the comma ("", "ZP"). An
// empty field is accepted as no code where the format takes it. Keys allowed before the call leave as in INGAVE.
// The variable is what the format's type wants; `breedte` is that of a text of at most 8, which is NUL padded (a
// wider one stops with INTERNAL 1).
Lijstuit lijstveld(const Lijsttabel& tabel, int rij, int kolom, const char* opties, uint8_t* code);
Lijstuit lijstveld(const Lijsttabel& tabel, int rij, int kolom, const char* opties, uint16_t* code);
Lijstuit lijstveld(const Lijsttabel& tabel, int rij, int kolom, const char* opties, int32_t* code);
Lijstuit lijstveld(const Lijsttabel& tabel, int rij, int kolom, const char* opties, char* code,
                   size_t breedte);

// What a code stands for; empty for no code and for an unknown one.
std::string lijstnaam(const Lijsttabel& tabel, const Lijstcode& code);

// The list of a table that is read whole, for its `kies`: every row with its code, and how the list looks. A
// code that is typed in it and isn't there is told as in the field. F10 opens the record under the cursor, when
// there is a function for it; the rows are read again behind it.
struct Lijstblad {
    std::string titel, kop; // of the window, of the columns
    const char* vraag;      // label of the search field
    const char* formaat;    // and its format, an 's' type: "3s[0123456789],I"
    struct Rij {
        Lijstcode code;
        std::string regel;
    };
    std::vector<Rij> (*rijen)(const Lijsttabel& tabel);
    void (*record)(const Lijsttabel& tabel, const Lijstcode& code) = nullptr;
    // Column of the name in a row, from 0: what is typed and isn't a number finds the first name that begins so, or
    // has it in it. 0: codes only.
    int naamkolom = 0;
};
bool lijstkies(const Lijsttabel& tabel, const Lijstblad& blad, Lijstcode* code);

} // namespace zg
