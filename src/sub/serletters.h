// The letters that name the fields of a series in search keys and sort orders.
#pragma once
#include "shared/registerrec.h"
#include "term/tekst.h"
#include <span>
#include <string>

namespace zg {

struct Serieletter {
    char letter;
    const Tekst* label;
    const char* formaat = nullptr;   // of its field
    char type = 0;                   // of its part of a key: 'I', 'C'; 0: not in the series' record
    uint8_t plaats = 0, breedte = 0; // in the record
    uint8_t kolom = 0;               // characters on the screen, as a value
    const Tekst* kop = nullptr;      // and the words over them
};
extern const std::span<const Serieletter> SERIELETTERS;

const Serieletter* serieletter(char letter); // null for none
// The fields of two records in the order of the letters, as a key has them: below 0, 0, above 0. `aantal` of them.
int serie_vergelijk(const serrec& a, const serrec& b, const std::string& letters, size_t aantal);
// The letters of a key's parts, '?' for one that has none.
std::string serie_sleutelletters(const ICB* icb, int sleutel);
uint32_t serie_getal(const serrec& rec, const Serieletter& l); // of type 'I'
// What a list shows of a field.
std::string serie_waarde(const serrec& rec, char letter);

} // namespace zg
