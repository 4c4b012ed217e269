// The text editor. Offsets count bytes of the divided text, soft breaks included; rows and columns from 0.
#include "order/dialog.h"
#include "order/teksten.h"
#include "shared/report.h"
#include "term/natl.h"
#include "term/prompt.h"
#include "term/scherm.h"
#include "term/teksten.h"
#include "term/toets.h"
#include <algorithm>
#include <cstring>
#include <memory>
#include <new>

namespace zg {
namespace {

constexpr char HARD = 10, ZACHT = 13;

// One running editor.
struct Vlak {
    int rij, kolom, rijen, breedte;
    char* tekst;
    int* begin; // rijen + 1 row starts
    int cursor = 0, wens = 0;
    bool invoegen = false;
};

int capaciteit(const Vlak& v) {
    return v.rijen * (v.breedte + 1) + 1;
}

void zonder_zacht(char* tekst) {
    char* uit = tekst;
    for (const char* in = tekst; *in; in++)
        if (*in != ZACHT)
            *uit++ = *in;
    *uit = 0;
}

// Text bytes as they will be stored.
int opgeslagen(const Vlak& v) {
    return static_cast<int>(strlen(v.tekst)) -
           static_cast<int>(std::count(v.tekst, v.tekst + strlen(v.tekst), ZACHT));
}

void deel(Vlak& v) {
    tekst_indeling(v.tekst, v.rijen, v.breedte, v.begin);
    v.cursor = std::clamp(v.cursor, 0, v.begin[v.rijen]);
}

int rij_van(const Vlak& v) {
    return tekst_rij(v.tekst, v.rijen, v.begin, v.cursor);
}
int kolom_van(const Vlak& v) {
    return v.cursor - v.begin[rij_van(v)];
}

// Last offset of a row on which the cursor can stand: its line end, or behind its last byte.
int rij_einde(const Vlak& v, int rij) {
    int einde = v.begin[rij + 1];
    bool gesloten = einde > v.begin[rij] && (v.tekst[einde - 1] == HARD || v.tekst[einde - 1] == ZACHT);
    return gesloten ? einde - 1 : einde;
}

// Is there text, or the empty row behind a line end, on this row?
bool rij_bestaat(const Vlak& v, int rij) {
    if (rij == 0 || v.begin[rij] < v.begin[v.rijen])
        return true;
    return v.begin[rij] > v.begin[rij - 1] && v.tekst[v.begin[rij] - 1] == HARD;
}

void toon(const Vlak& v) {
    std::string regel;
    for (int r = 0; r < v.rijen; r++) {
        regel.assign(v.tekst + v.begin[r], static_cast<size_t>(v.begin[r + 1] - v.begin[r]));
        if (!regel.empty() && (regel.back() == HARD || regel.back() == ZACHT))
            regel.back() = ' ';
        SCRPUT(A_WAARDE, v.rij + r, v.kolom, "%-*.*s", v.breedte + 1, v.breedte + 1, regel.c_str());
    }
}

void wis_byte(Vlak& v) {
    memmove(v.tekst + v.cursor, v.tekst + v.cursor + 1, strlen(v.tekst + v.cursor + 1) + 1);
}

void naar_rij(Vlak& v, int rij) {
    if (rij >= 0 && rij < v.rijen && rij_bestaat(v, rij))
        v.cursor = std::min(v.begin[rij] + v.wens, rij_einde(v, rij));
}

void teken(Vlak& v, char c) {
    int rij = rij_van(v);
    if (rij == v.rijen - 1 && kolom_van(v) >= v.breedte) {
        PIEP();
        return;
    }
    char hier = v.tekst[v.cursor];
    if (!v.invoegen && c != HARD && hier != 0 && hier != HARD && hier != ZACHT) {
        v.tekst[v.cursor++] = c;
        return;
    }
    if (opgeslagen(v) >= v.rijen * v.breedte) {
        PIEP();
        return;
    }
    // The soft breaks go first, so that the new byte always has room.
    int voor = static_cast<int>(std::count(v.tekst, v.tekst + v.cursor, ZACHT));
    zonder_zacht(v.tekst);
    int plek = v.cursor - voor;
    memmove(v.tekst + plek + 1, v.tekst + plek, strlen(v.tekst + plek) + 1);
    v.tekst[plek] = c;
    int oud = v.cursor;
    deel(v);
    v.cursor = std::min(oud, v.begin[v.rijen]);
    if (c == HARD && rij == v.rijen - 1)
        return; // no row below to go to
    v.cursor += v.tekst[v.cursor] == ZACHT ? 2 : 1;
    v.cursor = std::min(v.cursor, v.begin[v.rijen]);
}

void delete_toets(Vlak& v) {
    if (v.tekst[v.cursor] == 0) {
        if (v.cursor > 0 && v.tekst[v.cursor - 1] == ZACHT)
            v.cursor--;
    } else if (v.tekst[v.cursor] == ZACHT) {
        v.cursor++;
    } else {
        wis_byte(v);
    }
    deel(v);
}

void back_toets(Vlak& v) {
    if (v.cursor == 0)
        return;
    v.cursor--;
    if (v.tekst[v.cursor] != ZACHT)
        wis_byte(v);
    deel(v);
}

// False for a key that means nothing here.
bool verwerk(Vlak& v, int32_t toets) {
    int rij = rij_van(v);
    switch (toets) {
    case K_LEFT:
        v.cursor = std::max(v.cursor - 1, 0);
        break;
    case K_RIGHT:
        v.cursor = std::min(v.cursor + 1, v.begin[v.rijen]);
        break;
    case K_UP:
        naar_rij(v, rij - 1);
        break;
    case K_DOWN:
        naar_rij(v, rij + 1);
        break;
    case K_HOME:
        v.cursor = v.begin[rij];
        v.wens = 0;
        return true;
    case K_END:
        v.cursor = rij_einde(v, rij);
        break;
    case K_BACK:
    case 8:
        back_toets(v);
        break;
    case K_DC:
        delete_toets(v);
        break;
    case K_IC:
        v.invoegen = !v.invoegen;
        break;
    default:
        if (toets == K_HELP)
            toets = '?';
        if (toets != HARD && (toets < 32 || toets > 255 || (NKLASSE[static_cast<size_t>(toets)] & N_CONTROL)))
            return false;
        teken(v, static_cast<char>(toets));
    }
    v.wens = kolom_van(v);
    return true;
}

bool einde_toets(int32_t toets) {
    return toets == K_CANCEL || toets == K_ESC || toets == K_F3 || toets == K_F6;
}

const char* soort_naam(int soort) {
    switch (soort) {
    case 1:
        return TXT(T_LEVERINGSCONDITIES);
    case 2:
        return TXT(T_BETALINGSCONDITIES);
    case 3:
        return TXT(T_MODEL_OPMERKING);
    default:
        return TXT(T_DESSIN_OPMERKING);
    }
}

} // namespace

void tekst_indeling(char* tekst, int rijen, int breedte, int* regelstart) {
    zonder_zacht(tekst);
    int plek = 0;
    for (int r = 0; r < rijen; r++) {
        regelstart[r] = plek;
        size_t rest = strlen(tekst + plek);
        if (rest == 0)
            continue;
        size_t kijk = std::min(rest, static_cast<size_t>(breedte) + 1);
        if (const void* hard = memchr(tekst + plek, HARD, kijk)) {
            plek = static_cast<int>(static_cast<const char*>(hard) - tekst) + 1;
        } else if (rest <= static_cast<size_t>(breedte)) {
            plek += static_cast<int>(rest);
        } else {
            char* breek = tekst + plek + breedte;
            memmove(breek + 1, breek, strlen(breek) + 1);
            *breek = ZACHT;
            plek += breedte + 1;
        }
    }
    regelstart[rijen] = plek;
}

int tekst_rij(const char* tekst, int rijen, const int* regelstart, int cursor) {
    for (int r = 0; r < rijen; r++)
        if (cursor < regelstart[r + 1])
            return r;
    // At the end: the last row with text, or the one below when a line end closes it.
    int r = rijen - 1;
    while (r > 0 && regelstart[r] == regelstart[r + 1])
        r--;
    bool gesloten = regelstart[r + 1] > regelstart[r] && tekst[regelstart[r + 1] - 1] == HARD;
    return gesloten && r + 1 < rijen ? r + 1 : r;
}

void tekst_dialoog(int rij, int kolom, int rijen, int breedte, char* tekst) {
    std::unique_ptr<int[]> begin(new (std::nothrow) int[static_cast<size_t>(rijen) + 1]);
    if (!begin)
        NOMEM("dialog", 1);
    Vlak v{rij, kolom, rijen, breedte, tekst, begin.get()};
    tekst[capaciteit(v) - 1] = 0;
    zonder_zacht(tekst);
    // Room for a soft break a row: a foreign text that is longer than the rows hold is cut here.
    tekst[rijen * breedte] = 0;
    deel(v);
    int32_t toets;
    BEZIGWIS();
    for (;;) {
        toon(v);
        int r = rij_van(v);
        WINAT(rij + r, kolom + std::min(kolom_van(v), breedte));
        toets = TOETS();
        error("%s", "");
        if (einde_toets(toets))
            break;
        if (!verwerk(v, toets))
            error("%s", TXT(T_ONGELDIGE_TOETS));
    }
    BEZIGTOON();
    tekst[v.begin[rijen]] = 0;
    zonder_zacht(tekst);
    size_t n = strlen(tekst);
    memset(tekst + n, 0, static_cast<size_t>(capaciteit(v)) - n);
    SCHERM.laatste = toets;
}

bool tekst_venster(int rij, int kolom, int soort, char* blok) {
    char oud[BLOKLEN];
    memcpy(oud, blok, BLOKLEN);
    WINOPEN1(rij, kolom, TEKSTRIJEN + 2, TEKSTBREEDTE + 4);
    WINBOX(" %s ", soort_naam(soort));
    WINVOET(TXT(T_VOET_ESC));
    tekst_dialoog(1, 1, TEKSTRIJEN, TEKSTBREEDTE, blok);
    WINCLOSE();
    return memcmp(oud, blok, BLOKLEN) != 0;
}

bool tekst_item(int rij, int kolom, int soort, char* blok) {
    const bool anders = tekst_venster(rij, kolom, soort, blok);
    if (SCHERM.laatste != K_F6)
        SCHERM.laatste = K_ENTER;
    return anders;
}

namespace {
// A block of an order divided over its rows, to look at.
struct Bladspiegel {
    char tekst[BLOKLEN + TEKSTRIJEN];
    int begin[TEKSTRIJEN + 1];
    explicit Bladspiegel(const char* blok) {
        memcpy(tekst, blok, BLOKLEN);
        tekst[BLOKLEN - 1] = 0;
        tekst_indeling(tekst, TEKSTRIJEN, TEKSTBREEDTE, begin);
    }
};
} // namespace

void tekst_bekijk(int rij, int kolom, int soort, const char* blok) {
    Bladspiegel blad(blok);
    WINOPEN1(rij, kolom, TEKSTRIJEN + 3, TEKSTBREEDTE + 4);
    WINBOX(" %s ", soort_naam(soort));
    toon(Vlak{1, 1, TEKSTRIJEN, TEKSTBREEDTE, blad.tekst, blad.begin});
    TOETSAAN(K_CANCEL); // ESC does as well
    ENTERWACHT(TEKSTRIJEN + 1, 2);
    WINCLOSE();
}

void tekst_regel(int rij, int kolom, int breedte, const char* blok) {
    Bladspiegel blad(blok);
    std::string eerste(blad.tekst, strcspn(blad.tekst, "\n\r"));
    bool meer = eerste.size() > static_cast<size_t>(breedte);
    for (const char* p = blad.tekst + eerste.size(); *p && !meer; p++)
        meer = *p != HARD && *p != ZACHT && *p != ' ';
    SCRPUT(A_WAARDE, rij, kolom, "%-*.*s%-3s", breedte, breedte, eerste.c_str(), meer ? "..." : "");
}

} // namespace zg
