// LIJST: the page of rows on the screen, the keys, marks and their hand-back. The data are the caller's: rows
// are known here by `positie` only, and what stands on the screen is remembered so that a step of the cursor
// draws two rows and reads one. Row numbers in this file count from 0 at the top of the page.
#include "term/lijst.h"
#include "term/ingave.h"
#include "term/teksten.h"
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>

namespace zg {

namespace {

constexpr int PAGINAMAX = 60; // the tallest screen has 43 lines
constexpr int TERUGSTAP = 15; // stride back to the start of the data

enum Modus : int32_t { M_SCHUIF = 1, M_PAGINA = 2, M_SCHUIF2 = 8, M_PAGINA2 = 16 };
enum Stand : int32_t { NIET_GETOOND = 0, EERSTE_RONDE = 1, VOLGENDE = 2 };

int veldrij = 0;

struct Rij {
    uint32_t positie;
    std::string tekst;
};

struct Beeld {
    LIJST* lijst;
    int ampersand;
    int eerste;            // window row of row 0
    int pagina;            // rows on a page
    int breedte;           // inner width
    int telrij;            // where "3 van 60" stands
    std::string telling{}; // it, as it stands now
    int n = 0;             // rows shown
    int cursor = 0;
    Rij rijen[PAGINAMAX];
};

// ---- marks

Gemerkt** zoek_merk(LIJST* lijst, uint32_t positie) {
    Gemerkt** p = &lijst->gemerkt;
    while (*p && (*p)->positie != positie)
        p = &(*p)->volgende;
    return p;
}

void wis_merk(Gemerkt** p) {
    Gemerkt* weg = *p;
    *p = weg->volgende;
    free(weg);
}

void keer_merk(LIJST* lijst, uint32_t positie) {
    Gemerkt** p = zoek_merk(lijst, positie);
    if (*p) {
        wis_merk(p);
        return;
    }
    *p = static_cast<Gemerkt*>(calloc(1, sizeof(Gemerkt)));
    if (*p)
        (*p)->positie = positie;
    else
        error("%s", TXT(T_GEEN_GEHEUGEN_SELECTIE));
}

void wis_merken(LIJST* lijst) {
    while (lijst->gemerkt)
        wis_merk(&lijst->gemerkt);
    lijst->omgekeerd = 0;
}

// ---- drawing

void teken_merk(const Beeld& b, int i) {
    bool aan = (*zoek_merk(b.lijst, b.rijen[i].positie) != nullptr) != (b.lijst->omgekeerd != 0);
    if (aan)
        SCRLIJN(A_LIJN_WAARDE, b.eerste + i, 1, L_RECHTS, 1);
    else
        SCRPUT(A_LABEL, b.eerste + i, 1, " ");
}

void teken_rij(const Beeld& b, int i) {
    const bool keus = i == b.cursor;
    const int rij = b.eerste + i;
    std::string tekst = b.rijen[i].tekst;
    size_t letter = std::string::npos;
    if (b.ampersand) {
        letter = tekst.find('&');
        if (letter != std::string::npos)
            tekst.erase(letter, 1);
    }
    teken_merk(b, i);
    // A row that needs the last cell has it; otherwise it stays outside the highlight.
    const int vak = std::max(0, b.breedte - 2);
    SCRPUT(keus ? A_KEUS : A_WAARDE, rij, 2, "%-*.*s", vak, vak + 1, tekst.c_str());
    if (static_cast<int>(tekst.size()) <= vak)
        SCRPUT(A_LABEL, rij, b.breedte, " ");
    if (letter < tekst.size())
        SCRPUT((keus ? A_KEUS : 0u) | A_SNELLETTER, rij, 2 + static_cast<int>(letter), "%c", tekst[letter]);
}

// Everything to be drawn is known by now, so nothing of it need reach the screen before the next key is read.
void stel_uit() {
    SCHERM.ververst = time(nullptr);
}

void teken_alles(const Beeld& b) {
    stel_uit();
    for (int i = 0; i < b.n; i++)
        teken_rij(b, i);
    for (int i = b.n; i < b.pagina; i++)
        SCRCLREOL(b.eerste + i, 1);
}

void teken_merken(const Beeld& b) {
    stel_uit();
    for (int i = 0; i < b.n; i++)
        teken_merk(b, i);
}

// Which row of how many, at the right of the free row above the search field.
void toon_telling(Beeld& b) {
    const LIJST* l = b.lijst;
    const int64_t van = l->aantal ? l->aantal() : 0;
    const int64_t nr = van <= 0 ? 0 : l->rang ? l->rang() : int64_t{l->positie} + 1;
    char tekst[48] = "";
    if (nr >= 1 && nr <= van)
        snprintf(tekst, sizeof tekst, TXT(T_LIJST_STAND), static_cast<long>(nr), static_cast<long>(van));
    if (tekst == b.telling)
        return;
    const int breed = static_cast<int>(std::max(b.telling.size(), strlen(tekst)));
    b.telling = tekst;
    stel_uit();
    if (breed + 2 <= b.breedte && b.telrij >= b.eerste + b.pagina)
        SCRPUT(A_LABEL, b.telrij, b.breedte - breed, "%*s", breed, tekst);
}

// ---- rows

bool lees(const Beeld& b, int i) {
    b.lijst->positie = b.rijen[i].positie;
    return b.lijst->haal(0) != 0;
}

void onthoud(Beeld& b, int i) {
    b.lijst->schermrij = b.eerste + i;
    b.rijen[i].positie = b.lijst->positie;
    const char* tekst = b.lijst->regel();
    b.rijen[i].tekst = tekst ? tekst : "";
}

// Fill the page from `positie` on; the cursor keeps its row as far as there are rows. false: no data at all.
bool vul(Beeld& b) {
    LIJST* l = b.lijst;
    b.n = 0;
    if (l->haal(0) || l->haal(1) || l->haal(-b.pagina)) {
        do
            onthoud(b, b.n++);
        while (b.n < b.pagina && l->haal(1));
    }
    if (b.n == 0)
        return false;
    b.cursor = std::min(b.cursor, b.n - 1);
    lees(b, b.cursor);
    teken_alles(b);
    return true;
}

// Rows have gone or changed: fill the page again from its first row that is still there.
bool herlees(Beeld& b) {
    uint32_t positie = b.lijst->positie;
    for (int i = 0; i < b.n; i++)
        if (lees(b, i))
            return vul(b);
    b.lijst->positie = positie;
    return vul(b);
}

// The cursor to a row that is shown. false: no data any more.
bool naar(Beeld& b, int i) {
    if (!lees(b, i)) {
        b.cursor = i;
        return herlees(b);
    }
    if (!b.lijst->vast)
        onthoud(b, i);
    int oud = b.cursor;
    b.cursor = i;
    stel_uit();
    teken_rij(b, oud);
    teken_rij(b, i);
    return true;
}

bool omhoog(Beeld& b) {
    if (b.cursor > 0)
        return naar(b, b.cursor - 1);
    if (!lees(b, 0))
        return herlees(b);
    if (!b.lijst->haal(-1)) {
        lees(b, 0);
        return true;
    }
    b.n = std::min(b.n + 1, b.pagina);
    std::rotate(b.rijen, b.rijen + b.n - 1, b.rijen + b.n);
    onthoud(b, 0);
    teken_alles(b);
    return true;
}

bool omlaag(Beeld& b) {
    if (b.cursor + 1 < b.n)
        return naar(b, b.cursor + 1);
    if (b.n < b.pagina)
        return true;
    if (!lees(b, b.n - 1))
        return herlees(b);
    if (!b.lijst->haal(1)) {
        lees(b, b.n - 1);
        return true;
    }
    std::rotate(b.rijen, b.rijen + 1, b.rijen + b.n);
    onthoud(b, b.n - 1);
    teken_alles(b);
    return true;
}

bool pagina_verder(Beeld& b) {
    if (!lees(b, b.n - 1))
        return herlees(b);
    return b.lijst->haal(1) ? vul(b) : naar(b, b.n - 1);
}

bool pagina_terug(Beeld& b) {
    if (!lees(b, 0))
        return herlees(b);
    uint32_t was = b.lijst->positie;
    b.lijst->haal(-b.pagina);
    if (b.lijst->positie == was)
        return naar(b, 0);
    return vul(b);
}

// ---- the conversation

void toetsen_toe(const LIJST* lijst) {
    for (int32_t key : {K_UP, K_DOWN, K_PGUP, K_PGDN, K_CANCEL, K_F3})
        TOETSAAN(key);
    if (lijst->merken)
        for (int32_t key : {K_F6, K_F7, K_F10})
            TOETSAAN(key);
}

// What the callback has done to the data shows: `modus` 1 or 8 rows changed in place, else another page.
bool na_callback(Beeld& b) {
    if (b.lijst->modus & (M_SCHUIF | M_SCHUIF2))
        return herlees(b);
    b.cursor = 0;
    return vul(b);
}

// true: a row, or what is marked, was chosen.
bool gesprek(Beeld& b) {
    LIJST* l = b.lijst;
    for (bool door = vul(b); door;) {
        toon_telling(b);
        toetsen_toe(l);
        l->modus = 0;
        l->toets();
        const int32_t key = SCHERM.laatste;
        if (key == K_CANCEL || key == K_ESC) {
            wis_merken(l);
            return false;
        }
        if (!(SCHERM.vlag & V_LEEG)) {
            door = na_callback(b);
            continue;
        }
        const bool gemerkt = l->gemerkt || l->omgekeerd;
        switch (key) {
        case K_ENTER:
            if (l->merken && gemerkt)
                break;
            [[fallthrough]];
        case K_F3:
            if (!gemerkt)
                keer_merk(l, b.rijen[b.cursor].positie);
            return true;
        case K_UP:
            door = omhoog(b);
            break;
        case K_DOWN:
            door = omlaag(b);
            break;
        case K_PGUP:
            door = pagina_terug(b);
            break;
        case K_PGDN:
            door = pagina_verder(b);
            break;
        case K_TAB:
            l->positie = b.rijen[b.cursor].positie;
            b.cursor = 0;
            door = vul(b);
            break;
        case K_F6:
        case K_F7:
        case K_F10:
            if (!l->merken)
                break;
            if (key == K_F7) {
                keer_merk(l, b.rijen[b.cursor].positie);
                teken_merk(b, b.cursor);
                door = omlaag(b);
                break;
            }
            if (key == K_F6)
                l->omgekeerd = !l->omgekeerd;
            else
                wis_merken(l);
            teken_merken(b);
            break;
        default:
            if (l->modus)
                door = na_callback(b);
        }
    }
    return false;
}

bool toon(LIJST* l, int ampersand) {
    if (!l->haal(0))
        return false;
    const int lines = SCHERM.lines, cols = SCHERM.cols;
    int rij = l->rij <= 0 ? 3 : std::min(l->rij, lines - 5);
    int breedte = l->breedte;
    if (breedte < 1) {
        const char* tekst = l->regel();
        breedte = static_cast<int>(tekst ? strlen(tekst) : 0) + 4;
    }
    l->titel[sizeof l->titel - 1] = '\0';
    breedte = std::max(breedte, static_cast<int>(strlen(l->titel)) + 4 * (l->titel[0] != '\0'));
    int uiterst = cols - breedte + 1;
    int kolom = l->kolom <= 0 ? uiterst : std::min(l->kolom, uiterst);
    if (kolom < 1) {
        kolom = 1;
        breedte = cols;
    }
    // At least head, one row and the search field.
    int hoogte = l->hoogte <= 0 ? lines - 1 - rij : std::clamp(l->hoogte, 5, lines - rij);

    Beeld b;
    b.lijst = l;
    b.ampersand = ampersand;
    b.eerste = l->kop ? 2 : 1;
    b.pagina = std::clamp(hoogte - b.eerste - 3, 1, PAGINAMAX);
    b.breedte = breedte - 2;
    b.telrij = hoogte - 3;
    b.cursor = std::clamp(l->cursor, 0, b.pagina - 1);

    const int buiten = veldrij; // a list opened from another list's callback
    veldrij = hoogte - 2;
    WINOPEN1(rij, kolom, hoogte, breedte);
    if (l->titel[0])
        WINBOX("%s", l->titel);
    else
        WINBOX(nullptr);
    if (l->kop)
        l->kop();
    bool gekozen = gesprek(b);
    WINCLOSE();
    veldrij = buiten;
    return gekozen;
}

// ---- hand-back

int volgende_gemerkte(LIJST* l) {
    while (l->gemerkt) {
        l->positie = l->gemerkt->positie;
        wis_merk(&l->gemerkt);
        if (l->haal(0)) {
            l->stand = l->merken ? VOLGENDE : NIET_GETOOND;
            return 1;
        }
    }
    l->stand = NIET_GETOOND;
    return 0;
}

int volgende_ongemerkte(LIJST* l) {
    int er;
    if (l->stand == EERSTE_RONDE) {
        uint32_t was;
        do {
            was = l->positie;
            l->haal(-TERUGSTAP);
        } while (l->positie != was);
        er = l->haal(0);
    } else {
        l->haal(0); // the caller may have used the file in between
        er = l->haal(1);
    }
    for (; er; er = l->haal(1)) {
        Gemerkt** p = zoek_merk(l, l->positie);
        if (!*p) {
            l->stand = VOLGENDE;
            return 1;
        }
        wis_merk(p);
    }
    l->stand = NIET_GETOOND;
    return 0;
}

} // namespace

LIJST* LIJSTNEW(int32_t (*haal)(int32_t), void (*toets)(), void (*kop)(), const char* (*regel)()) {
    auto* lijst = static_cast<LIJST*>(calloc(1, sizeof(LIJST)));
    if (!lijst)
        return nullptr;
    lijst->haal = haal;
    lijst->toets = toets;
    lijst->kop = kop;
    lijst->regel = regel;
    lijst->positie = 0xFFFFFFFF;
    lijst->modus = M_PAGINA;
    return lijst;
}

int LIJSTRUN(LIJST* lijst, int ampersand) {
    if (lijst->stand == NIET_GETOOND) {
        if (!toon(lijst, ampersand))
            return 0;
        lijst->stand = EERSTE_RONDE;
    }
    return lijst->omgekeerd ? volgende_ongemerkte(lijst) : volgende_gemerkte(lijst);
}

void LIJSTDEL(LIJST* lijst) {
    if (!lijst)
        return;
    wis_merken(lijst);
    free(lijst);
}

int LIJSTVELDRIJ() {
    return veldrij;
}

} // namespace zg
