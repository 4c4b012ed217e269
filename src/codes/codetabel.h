// The code tables as rows: where each keeps its records, what it is called, what its records hold; and reading,
// locking and writing one of them. Inside codes/; users have codes/codeveld.h.
#pragma once
#include "shared/lijstveld.h"
#include "shared/sysrec.h"
#include "store/ix.h"
#include "term/itemscherm.h"
#include <array>

namespace zg {

using Coderecord = std::array<uint8_t, IXRECMAX>;

// Numbers of the rows, `welke` of the fields' tables.
enum Codesoort {
    C_ACTIE,
    C_CORRECTIE,
    C_INKOOP,
    C_DEELSEIZOEN,
    C_KLEUR,
    C_ETIKETSOORT,
    C_KENMERKSOORT,
    C_PRIJSKLASSE,
    C_MAATSTELSEL,
    C_LAND,
    C_FILIAALREEKS,
    C_OMZETGROEP,
    C_DOELGROEP
};

struct Codetabel {
    // How a code finds its record: its slot; its slot in the ten of the user's set; the slot that holds it as a text
    // (`isoplaats`); key 1 of a pair, at the front.
    enum Plaats { SLOT, SET, ISO, PAAR } plaats;
    Systabel slots; // not of a pair
    ICB** paar;     // null for slots; the handle is null while the pair is missing
    int hoogste;    // code, 0 where codes are texts
    const Tekst* woord;
    bool het;               // its gender
    const Systabel* kop;    // head slot with the list's title; null: "selecteren" and the word
    int codebreedte, kolom; // of the list: width of a code, column of the description
    size_t tekst;           // the description's place in the record, and its width
    int tekstbreedte;
    std::span<const Item> items;           // of the record's screen
    bool (*hangt)(int32_t code) = nullptr; // takes away what ties to a code; false: refused, told
    char mutatie = 0;                      // letter for the tills
};

// By `welke` of the field's table.
const Codetabel& codetabel(const Lijsttabel& tabel);

inline constexpr size_t ISOPLAATS = offsetof(landrec, iso3);

std::string code_vraag(const Codetabel& t, const Lijstcode& code); // "Wilt u kleur 7 toevoegen"
std::string codetekst(const Lijstcode& code);                      // as the user knows it
std::string code_naam(const Codetabel& t, const Coderecord& rec);

// Read a record: 1 there; 0 absent, *rec empty but for its code; -1 refused, told. With `slot` it is locked or
// reserved then (but for -1), and a pair that is missing is made.
int code_lees(const Codetabel& t, const Lijstcode& code, bool slot, Coderecord* rec);
// Of a record that was read with a lock: write and let go (false: refused, told, still locked); delete and let go
// (false: refused, told); let go.
bool code_schrijf(const Codetabel& t, const Lijstcode& code, const Coderecord& rec);
bool code_wis(const Codetabel& t, const Lijstcode& code);
void code_vrij(const Codetabel& t, const Lijstcode& code);
// May a new record have this code? Countries want three letters.
bool code_mogelijk(const Codetabel& t, const Lijstcode& code);

struct Coderij {
    Lijstcode code;
    std::string naam;
};
std::vector<Coderij> code_rijen(const Codetabel& t); // by code

// The screen on one record: added (asked first, unless `gevraagd`), looked at, changed, deleted. True when it was
// written.
bool code_scherm(const Codetabel& t, const Lijstcode& code, bool gevraagd);

} // namespace zg
