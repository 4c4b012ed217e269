// The screens of macros: box, menu, lists, recording. Macros are off while one of them is open.
#include "shared/report.h"
#include "shared/teksten.h"
#include "term/lijst.h"
#include "term/macro/macro.h"
#include "term/macro/teksten.h"
#include "term/menu.h"
#include "term/natl.h"
#include "term/prompt.h"
#include "term/teksten.h"
#include "term/vast.h"
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <vector>

namespace zg {
namespace {

constexpr int OMSCHRIJVING = sizeof(mac_rec::omschrijving) - 1;
constexpr int GETOOND = 10; // keys on the recording window, five columns each

class Stil {
public:
    Stil() { MACROUIT(); }
    ~Stil() { MACROAAN(); }
    Stil(const Stil&) = delete;
    Stil& operator=(const Stil&) = delete;
};

std::vector<std::string> splits(const std::string& tekst, size_t hoogstens) {
    std::vector<std::string> regels;
    for (size_t van = 0; van != std::string::npos && regels.size() < hoogstens;) {
        const size_t tot = tekst.find('\n', van);
        regels.push_back(tekst.substr(van, tot == std::string::npos ? tot : tot - van).substr(0, 76));
        van = tot == std::string::npos ? tot : tot + 1;
    }
    return regels;
}

// ---- lists: one's own macros, in memory

struct Lijst {
    std::vector<mac_rec> rijen;
    LIJST* lijst;
    const char* onder; // on the last row
    bool wissen;
};
Lijst* nu;

int32_t haal(int32_t stap) {
    const int64_t n = std::ssize(nu->rijen), was = nu->lijst->positie;
    int64_t p = was + stap;
    if (p < 0 && was > 0)
        p = 0; // a long stride back goes as far as there are rows
    if (p < 0 || p >= n)
        return 0;
    nu->lijst->positie = static_cast<uint32_t>(p);
    return 1;
}

void kop() {
    SCRPUT(A_LABEL, 1, 2, "%-6s %-5s %-30s", TXT(T_MAC_USER), TXT(T_MAC_KEY), TXT(T_MAC_OMSCHRIJVING));
}

const char* regel() {
    static char tekst[64];
    const mac_rec& r = nu->rijen[nu->lijst->positie];
    char naam[8];
    TOETSNAAM(r.toets, naam);
    snprintf(tekst, sizeof tekst, "%-6u %-5s %-30s", unsigned{r.gebruiker}, naam,
             MACROOMSCHRIJVING(r).c_str());
    return tekst;
}

void wis() {
    const uint32_t p = nu->lijst->positie;
    const mac_rec r = nu->rijen[p];
    const int weg = MACROWEG(r.toets, r.gebruiker);
    if (weg < 0)
        MACROMELD(errno);
    else if (mac_rec er;
             weg || MACROZOEK(r.toets, r.gebruiker, &er) == 0) // gone, also when another was first
        nu->rijen.erase(nu->rijen.begin() + p);
    nu->lijst->positie = std::min(p, static_cast<uint32_t>(std::max<int64_t>(std::ssize(nu->rijen) - 1, 0)));
    nu->lijst->modus = 1;
}

void toets() {
    SCRPUT(A_LABEL, LIJSTVELDRIJ(), 2, "%s", nu->onder);
    TOETSAAN(K_ENTER);
    if (nu->wissen)
        TOETSAAN(K_DC);
    TOETSKIES(&SCHERM.toets[key_cancel], "");
    error("%s", "");
    if (SCHERM.laatste == K_DC) {
        wis();
    } else if (nu->wissen && SCHERM.laatste == K_ENTER) {
        SCHERM.laatste = K_DOWN; // here a choice means nothing
    } else if (nu->wissen && SCHERM.laatste == K_F3) {
        error("%s", TXT(T_ONGELDIGE_TOETS));
        SCHERM.laatste = 0;
    }
}

// The row chosen, -1 for none.
int lijst(Lijst* l) {
    Stil stil;
    if (MACROLEES(MACROGEBRUIKER(), &l->rijen) < 0) {
        MACROMELD(errno);
        return -1;
    }
    if (l->rijen.empty()) {
        MELDBOX(MELD_INFO, TXT(T_GEEN_INFORMATIE), nullptr, nullptr);
        return -1;
    }
    nu = l;
    l->lijst = LIJSTNEW(haal, toets, kop, regel);
    if (!l->lijst)
        NOMEM("macro", 1);
    l->lijst->positie = 0;
    l->lijst->aantal = [] { return int64_t{std::ssize(nu->rijen)}; };
    l->lijst->breedte = 6 + 1 + 5 + 1 + 30 + 4;
    snprintf(l->lijst->titel, sizeof l->lijst->titel, "%s", TXT(T_MAC_LIJST));
    const int uit = LIJSTRUN(l->lijst, 0) ? static_cast<int>(l->lijst->positie) : -1;
    LIJSTDEL(l->lijst);
    return uit;
}

// ---- recording

// Letter or digit as it stands in a record, or 0 after ESC.
uint16_t vraag_toets() {
    for (;;) {
        SCRCLREOL(3, 23);
        WINAT(3, 23);
        const int32_t key = TOETS();
        if (key == K_ESC || key == K_CANCEL)
            return 0;
        if (const uint16_t t = MACROTOETS(key))
            return t;
        PIEP();
    }
}

void toon_toetsen(const mac_rec& rec) {
    const int van = std::max(rec.aantal - GETOOND, 0);
    SCRCLREOL(3, 2);
    for (int i = van; i < rec.aantal; i++) {
        char naam[8];
        TOETSNAAM(rec.toetsen[i], naam);
        SCRPUT(A_WAARDE, 3, 2 + (i - van) * 5, "%-5.5s", naam);
    }
    WINAT(3, 2 + (rec.aantal - van) * 5);
}

// The keys of a macro, until F2 or until there are a hundred.
void neem_op(mac_rec* rec) {
    rec->aantal = 0;
    memset(rec->toetsen, 0, sizeof rec->toetsen);
    WINOPEN1(12, 10, 5, 60);
    WINBOX("%s", TXT(T_MAC_OPNAME));
    SCRPUT(A_LABEL, 1, 2, "%s", TXT(T_MAC_DRUK_TOETSEN));
    toon_toetsen(*rec);
    while (rec->aantal < MACROTOETSEN) {
        int32_t key = TOETS();
        if (key == K_F2)
            break;
        if (key == K_CANCEL)
            key = '/';
        if (MACROCODE(key)) {
            rec->toetsen[rec->aantal++] = static_cast<uint16_t>(key);
            toon_toetsen(*rec);
        } else
            PIEP();
    }
    WINCLOSE();
    if (rec->aantal == MACROTOETSEN) {
        TOETSLEEG(); // the hand goes on typing: it must not land in the next field
        MACRODOOS(-1, TXT(T_MAC_VOL));
    }
}

// One macro: its description, its keys, its record. False after ESC, or when the table can't be used.
bool een_macro(uint16_t toets) {
    mac_rec oud{}, rec{};
    const int er = MACROZOEK(toets, MACROGEBRUIKER(), &oud);
    if (er < 0) {
        MACROMELD(errno);
        return false;
    }
    char naam[8], omschrijving[OMSCHRIJVING + 1] = "";
    TOETSNAAM(toets, naam);
    SCRPUT(A_WAARDE, 3, 23, "%-5s ", naam);
    if (er)
        snprintf(omschrijving, sizeof omschrijving, "%s", MACROOMSCHRIJVING(oud).c_str());
    if (REGELEDIT(5, 17, omschrijving, OMSCHRIJVING) == K_ESC)
        return false;
    neem_op(&rec);
    if (rec.aantal == 0 && er) // only its description
        memcpy(&rec, &oud, sizeof rec);
    rec.toets = toets;
    rec.gebruiker = MACROGEBRUIKER();
    VASTIN(rec.omschrijving, omschrijving);
    if (rec.aantal == 0)
        MACRODOOS(-1, TXT(T_MAC_LEEG));
    else if (MACROSCHRIJF(rec) < 0) // a refused write has been told
        MACROMELD(errno);
    return true;
}

} // namespace

int MACRODOOS(int optie, const std::string& tekst) {
    const auto regels = splits(tekst + (optie == -1 ? TXT(T_MAC_DRUK_ENTER) : ""), 10);
    size_t breed = 0;
    for (const auto& r : regels)
        breed = std::max(breed, r.size());
    const int w = std::max(static_cast<int>(breed) + 4, 32), h = static_cast<int>(regels.size()) + 2;
    const char ja = TXTLETTER(T_JA), nee = TXTLETTER(T_NEE);
    const char letters[] = {ja, static_cast<char>(NKLEIN(static_cast<uint8_t>(ja))), nee,
                            static_cast<char>(NKLEIN(static_cast<uint8_t>(nee))), '\0'};
    WINOPEN1(10, (SCHERM.cols - w) / 2 + 1, h, w);
    WINBOX(nullptr);
    for (size_t i = 0; i < regels.size(); i++)
        SCRPUT(A_WAARDE, static_cast<int>(i) + 1, 2, "%s", regels[i].c_str());
    SCRFLUSH(0);
    int32_t key;
    if (optie == -1) {
        TOETSAAN(K_ENTER);
        key = TOETSKIES("");
    } else
        key = TOETSKIES(&SCHERM.toets[key_cancel], letters);
    WINCLOSE();
    return optie == -1 || key == letters[0] || key == letters[1];
}

void MACROMELD(int fout) {
    const char* reden = fout == EINVAL         ? TXT(T_MAC_ANDER_BESTAND)
                        : fout == ENAMETOOLONG ? TXT(T_MAC_MAP_LANG)
                                               : IOREDEN(fout);
    const std::string pad = MACROPAD();
    char tekst[300];
    snprintf(tekst, sizeof tekst, TXT(T_MAC_GEEN_TABEL), pad.c_str(), reden);
    MACRODOOS(-1, tekst);
}

void MACROOPNAME(int32_t gevraagd) {
    Stil stil;
    WINOPEN1(7, 10, 12, 60);
    WINBOX("%s", TXT(T_MAC_OPNEMEN));
    for (uint16_t toets = MACROTOETS(gevraagd);; toets = 0) {
        SCRCLREOW(1, 1);
        SCRPUT(A_LABEL, 3, 2, "%s", TXT(T_MAC_ACTIVEREND));
        SCRPUT(A_LABEL, 5, 2, "%s", TXT(T_MAC_OMSCHRIJVING_VRAAG));
        SCRPUT(A_LABEL, 7, 2, "%s", TXT(T_MAC_DRUK_F2));
        SCRPUT(A_LABEL, 9, 2, "%s", TXT(T_MAC_DRUK_ESC));
        if ((!toets && !(toets = vraag_toets())) || !een_macro(toets))
            break;
    }
    WINCLOSE();
}

void MACROWIS() {
    Lijst l{{}, nullptr, TXT(T_MAC_DRUK_DEL), true};
    lijst(&l);
}

int32_t MACROKIES() {
    Lijst l{{}, nullptr, TXT(T_MAC_PIJLEN), false};
    const int rij = lijst(&l);
    return rij < 0 ? 0 : l.rijen[static_cast<size_t>(rij)].toets;
}

int32_t MACROMENU() {
    enum { INVOEREN = 1, VERWIJDEREN, UITVOEREN, TERUG };
    int keus = 0;
    {
        Stil stil;
        TR_MENU* menu = TR_NEW(13, 10, 10, 10, TXT(T_MAC_MENU));
        TR_ADD(menu, -1, TXT(T_MAC_INVOEREN), INVOEREN, 1, 0, nullptr);
        TR_ADD(menu, -1, TXT(T_MAC_VERWIJDEREN), VERWIJDEREN, 1, 0, nullptr);
        TR_ADD(menu, -1, TXT(T_MAC_UITVOEREN), UITVOEREN, 1, 0, nullptr);
        TR_ADD(menu, -1, nullptr, 0, 2, 0, nullptr);
        TR_ADD(menu, -1, TXT(T_MAC_TERUG), TERUG, 1, 0, nullptr);
        keus = TR_RUN(menu, INVOEREN);
        TR_FREE(menu);
    }
    return keus == INVOEREN ? K_IC : keus == VERWIJDEREN ? K_DC : keus == UITVOEREN ? MACROKIES() : 0;
}

} // namespace zg
