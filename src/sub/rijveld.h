// Rows of a record's screen that are a fixed-width text of the record: painting and asking, as functions of an Item.
// REC is the image, LID the member, KOLOM where the value stands, LETTERS the format's options.
#pragma once
#include "term/ingave.h"
#include "term/tekst.h"
#include "term/vast.h"
#include <cstdio>

namespace zg {

template <auto& REC, auto LID, int KOLOM> void rij_toon(int rij) {
    constexpr int BREED = sizeof(REC.*LID);
    SCRPUT(A_WAARDE, rij, KOLOM, "%-*.*s", BREED, BREED, VASTTEKST(REC.*LID).c_str());
}

template <auto& REC, auto LID, int KOLOM, char... LETTERS> bool rij_vraag(int rij) {
    const char letters[] = {LETTERS..., '\0'};
    char formaat[16];
    snprintf(formaat, sizeof formaat, "%zuc,%s", sizeof(REC.*LID), letters);
    return INGAVE(rij, KOLOM, formaat, &SCHERM.toets[key_cancel], REC.*LID) != 0;
}

// A text as the title of a window: a blank on both sides.
inline std::string venstertitel(const Tekst& tekst) {
    const std::string t = TXT(tekst);
    return (t.starts_with(' ') ? "" : " ") + t + (t.ends_with(' ') ? "" : " ");
}

} // namespace zg
