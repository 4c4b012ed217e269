// A program that shows the codes of the keys that it gets, for the tests of keyboard and character sets.
#pragma once
#include "gesprek.h"

namespace zg::test {

// Shows the codes of its keys on rows from 1; "q" ends it.
inline void toon_toetsen() {
    int rij = 1, kolom = 1;
    for (int32_t key = 0; key != 'q';) {
        WINAT(rij, kolom);
        key = TOETS();
        kolom += SCRPUT(A_WAARDE, rij, kolom, "%d ", key);
        if (kolom > 70)
            rij++, kolom = 1;
    }
}

inline int toetslog() {
    return op_scherm(toon_toetsen)();
}

// The codes that a row of bytes gives, sent in one burst.
inline std::string codes(std::string_view bytes, const Opties& o = {}) {
    Terminal t(toetslog, o);
    t.kalm();
    t.stuur(bytes);
    t.kalm();
    t.stuur("q");
    t.wacht("113");
    std::string s = t.scherm();
    std::string uit;
    for (size_t i = 0; i < s.size() && s.compare(i, 3, "113") != 0; i++)
        if (s[i] != '\n')
            uit += s[i];
    return uit;
}

} // namespace zg::test
