// The rows of the tables, their places, and the room at each.
#include "tools/taaltabel.h"
#include "term/natl.h"
#include <algorithm>
#include <cstring>

namespace zg {

const std::vector<Tekstrij> TEKSTRIJEN = [] {
    std::vector<Tekstrij> uit;
#define TEKST(catalogus, set, nummer, naam, standaard)                                                       \
    if (nummer != 0)                                                                                         \
        uit.push_back({{catalogus, set, nummer, standaard}, #naam, TEKSTMAP});
#include "tables/teksten_alle.def"
#undef TEKST
    return uit;
}();

#define PLAATS(naam, breedte, waar) {Tekstplaats::plek, naam, breedte, waar},
#define KOP(naam, waar) {Tekstplaats::kop, naam, 0, waar},
#define LETTERS(naam, waar) {Tekstplaats::letters, naam, 0, waar},
#define KEUZE(waar, namen)
const std::vector<Tekstplaats> TEKSTPLAATSEN{
#include "tools/taalplaatsen.def"
};
#undef PLAATS
#undef KOP
#undef LETTERS
#undef KEUZE
#define PLAATS(naam, breedte, waar)
#define KOP(naam, waar)
#define LETTERS(naam, waar)
#define KEUZE(waar, namen) {waar, namen},
const std::vector<Tekstkeuze> TEKSTKEUZEN{
#include "tools/taalplaatsen.def"
};

bool tekst_heet(const Tekstrij& r, const Tekstplaats& p) {
    const std::string_view naam = p.naam;
    return naam.ends_with('*') ? std::string_view(r.naam).starts_with(naam.substr(0, naam.size() - 1))
                               : naam == r.naam;
}

const Tekstplaats* tekst_plaats(const Tekstrij& r) {
    const Tekstplaats* uit = nullptr;
    for (const Tekstplaats& p : TEKSTPLAATSEN)
        if (tekst_heet(r, p) && (!uit || !strcmp(p.naam, r.naam)))
            uit = &p;
    return uit;
}

std::string tekst_sleutel(const Tekst& t) {
    return std::string(t.catalogus == ZEBCAT ? "ZEBCAT " : "DETAIL ") + std::to_string(t.set) + "." +
           std::to_string(t.nummer);
}

int tekst_breedte(const std::string& utf8, bool keuze) {
    int meest = 0, nu = 0;
    for (const char c : utf8) {
        if (c == '\n')
            nu = 0;
        else if ((c & 0xC0) != 0x80 && !(keuze && c == '&'))
            meest = std::max(meest, ++nu);
    }
    return meest;
}

int tekst_ruimte(const Tekstrij& r) {
    const Tekstplaats* p = tekst_plaats(r);
    return p && p->breedte ? p->breedte
                           : tekst_breedte(CP850UTF8(r.tekst.standaard), strchr(r.tekst.standaard, '&'));
}

} // namespace zg
