// INGAVE: one field from its call to the stored value. This file holds the call, the drawing and the loop
// over keys; see term/veld.h for the files that do the rest.
#include "term/ingave.h"
#include "term/datum.h"
#include "term/formaat.h"
#include "term/teksten.h"
#include "term/veld.h"
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <ctime>

namespace zg {

char ingavetekst[INGAVEMAX];
double ingavewaarde;

namespace {

constexpr int COMPOSE = K_F11;

struct Pijlen {
    bool links, rechts;
};

Pijlen pijlen() {
    return {SCHERM.scroll && SCHERM.kolom > 1,
            SCHERM.scroll && SCHERM.kolom + SCHERM.zichtbaar <= WINBREEDTE()};
}

void pijl(int kolom, Lijnteken teken, bool aan) {
    if (aan)
        SCRLIJN(A_LIJN_LABEL, SCHERM.rij, kolom, teken, 1);
    else
        SCRPUT(A_LABEL, SCHERM.rij, kolom, " ");
}

void teken_pijlen(const Veld& v, bool leeg) {
    Pijlen p = pijlen();
    const bool wissen = leeg || SCHERM.verborgen;
    const int voorbij = static_cast<int>(strlen(ingavetekst)) - v.begin - SCHERM.zichtbaar;
    if (p.links)
        pijl(SCHERM.kolom - 1, L_LINKS, !wissen && v.begin > 0);
    if (p.rechts)
        pijl(SCHERM.kolom + SCHERM.zichtbaar, L_RECHTS, !wissen && voorbij > 0);
}

int zichtbreedte() {
    return SCHERM.scroll ? SCHERM.zichtbaar : SCHERM.breedte;
}

// The text to show: never the first digits of a number that is wider than its field.
const char* zichttekst() {
    return SCHERM.numeriek && strlen(ingavetekst) > static_cast<size_t>(SCHERM.breedte) ? "*" : ingavetekst;
}

// The field as it stands: the text, or nothing of it for a hidden field, and "_" to the width.
void toon(const Veld& v) {
    char beeld[INGAVEMAX];
    const int w = SCHERM.breedte;
    memset(beeld, '_', sizeof beeld);
    if (!SCHERM.verborgen) {
        const char* tekst = zichttekst();
        memcpy(beeld, tekst, std::min(strlen(tekst), sizeof beeld));
        if (VELDSTREEPJES())
            beeld[2] = beeld[5] = '-';
    }
    beeld[w] = 0;
    const int z = zichtbreedte();
    SCRPUT(A_WAARDE, SCHERM.rij, SCHERM.kolom, "%-*.*s", z, z, beeld + std::min(v.begin, w));
    teken_pijlen(v, false);
    WINAT(SCHERM.rij, std::min(SCHERM.kolom + v.cursor - v.begin, WINBREEDTE()));
}

void scheid(Veld& v) {
    if (!VELDSTREEPJES())
        return;
    VELDSCHEID();
    if (v.cursor == 2 || v.cursor == 5)
        v.cursor++;
}

bool wil_hulp(const Veld& v, int32_t key) {
    if (TOETSTOE(K_HELP))
        return false;
    return (key == K_F1 && !TOETSTOE(K_F1)) || (key == K_HELP && v.cursor == 0);
}

// A key of the terminal's own that has no meaning here may still be a character that it sends.
int32_t vertaal(int32_t key) {
    if (key != K_CANCEL && key != K_EXIT && key != K_HELP)
        return key;
    int32_t teken = TOETSTEKEN(key);
    return teken >= 32 && teken <= 255 ? teken : 0;
}

void verlaat_oud(const Veld& v) {
    VELDTERUG(v);
    if (VELDSTREEPJES())
        VELDKAAL(ingavetekst);
    SCHERM.vlag = 0;
}

// In a text that isn't empty a character is text, also when it is a key of the table.
bool als_teken(int32_t key) {
    return key >= 32 && key <= 255 && VELDTYPE("cCsS") && ingavetekst[0];
}

enum Verloop { VERDER, KLAAR, OPNIEUW };

// The keys that act before the text is looked at. OPNIEUW: draw and read again.
Verloop vooraf(const Veld& v, int32_t key) {
    if (wil_hulp(v, key)) {
        INGAVEHELP();
        return OPNIEUW;
    }
    if (TOETSTOE(key) && !als_teken(key) && (v.cursor == 0 || key == K_ESC)) {
        if (key == K_EXIT)
            SCRFATAL("%s", TXT(T_EXIT_GEBRUIKT));
        if (TOETSNAMED(key) && !TOETSCHECK(key)) {
            verlaat_oud(v);
            return KLAAR;
        }
    }
    return VERDER;
}

// What a key does that has not acted at once: leave, type or edit.
void verwerk(Veld& v, int32_t key, bool weg) {
    const int stond = v.cursor;
    bool bewogen = false;
    if (weg) {
        VELDKEUR(v, key);
    } else if (key >= 32 && key <= 255) {
        v.vol = VELDTEKEN(v, key) && v.cursor >= SCHERM.breedte && VELDOPTIE('A');
    } else {
        bewogen = VELDBEWERK(v, key);
    }
    if (SCHERM.vlag & V_GEWEIGERD) {
        v.cursor = v.begin = 0;
        SCHERM.vlag = V_GEWEIGERD | V_VERS;
    } else if (bewogen || v.cursor != stond) {
        SCHERM.vlag = 0;
    }
}

// Edits until a key leaves the field; answers that key.
int32_t lus() {
    VELDTRIM();
    BEZIGWIS();
    Veld v;
    memcpy(v.oud, ingavetekst, sizeof v.oud);
    v.oudwaarde = ingavewaarde;
    SCHERM.invoegen = 0;
    SCHERM.verborgen = VELDOPTIE('S');
    SCHERM.vlag = V_VERS;

    int32_t key;
    for (;;) {
        scheid(v);
        toon(v);
        key = v.vol ? K_ENTER : TOETS();
        v.vol = false;
        error("%s", "");
        SCHERM.vlag &= ~V_GEWEIGERD;
        Verloop verloop = vooraf(v, key);
        if (verloop == KLAAR)
            break;
        if (verloop == OPNIEUW)
            continue;
        const bool weg =
            key == K_ENTER || (TOETSNAMED(key) && !als_teken(key) && (v.cursor == 0 || vertaal(key) == key));
        if (!weg)
            key = key == COMPOSE && VELDTYPE("cCsS") ? COMPOSEINVOER() : vertaal(key);
        verwerk(v, key, weg);
        if (weg && !(SCHERM.vlag & V_GEWEIGERD)) {
            if (key == K_CANCEL || key == K_ESC)
                verlaat_oud(v);
            break;
        }
    }
    teken_pijlen(v, true);
    BEZIGTOON();
    return key;
}

template <class T> void schrijf(double waarde) {
    // Through 64 bits, so that a value loaded from a wider pattern keeps its bits.
    T x = static_cast<T>(static_cast<int64_t>(round(waarde)));
    memcpy(SCHERM.doel, &x, sizeof x);
}

void bewaar() {
    switch (SCHERM.type) {
    case 'B':
        schrijf<int32_t>(SCHERM.kpos == 2 ? ingavewaarde * 100 : ingavewaarde);
        break;
    case 'l':
        schrijf<int32_t>(ingavewaarde);
        break;
    case 'D':
    case 'd':
    case 'u':
        schrijf<uint16_t>(ingavewaarde);
        break;
    case 'U':
    case 'b':
    case 'n':
        schrijf<uint8_t>(ingavewaarde);
        break;
    case 'f':
        memcpy(SCHERM.doel, &ingavewaarde, sizeof ingavewaarde);
        break;
    default:
        memcpy(SCHERM.doel, ingavetekst, static_cast<size_t>(SCHERM.breedte) + VELDTYPE("sS"));
    }
}

void vul_rechts() {
    size_t n = strlen(ingavetekst), w = static_cast<size_t>(SCHERM.breedte);
    if (!VELDOPTIE('J') || n >= w)
        return;
    memmove(ingavetekst + w - n, ingavetekst, n);
    memset(ingavetekst, ' ', w - n);
}

void toon_einde() {
    const int z = zichtbreedte();
    const char* tekst =
        SCHERM.type == 'D' ? VELDDATUM(static_cast<uint16_t>(round(ingavewaarde))) : zichttekst();
    SCRPUT(A_WAARDE, SCHERM.rij, SCHERM.kolom, "%-*.*s", z, z, SCHERM.verborgen ? "" : tekst);
}

bool in_scherm(const void* p) {
    auto a = reinterpret_cast<uintptr_t>(p), begin = reinterpret_cast<uintptr_t>(&SCHERM);
    return a >= begin && a < begin + sizeof SCHERM;
}

} // namespace

int INGAVEDOE(int rij, int kolom, const char* formaat, const void* const* argumenten, int aantal) {
    SCHERM.rij = rij, SCHERM.kolom = kolom;
    for (int i = 0; i < aantal - 1; i++)
        if (in_scherm(argumenten[i]))
            TOETSAAN(*static_cast<const int32_t*>(argumenten[i]));
    SCHERM.doel = const_cast<void*>(argumenten[aantal - 1]);
    INGAVEFMT(formaat);
    if (VELDOPTIE('E') || VELDOPTIE('F')) { // the arrows don't skip a field that must be filled
        TOETSCHECKAAN(K_UP);
        TOETSCHECKAAN(K_DOWN);
    }
    if (SCHERM.numeriek && ingavewaarde == 0.0 && !(VELDOPTIE('Z') && VELDOPTIE('E')))
        VELDTEKST("");

    SCHERM.laatste = lus();

    if (SCHERM.laatste != K_CANCEL && SCHERM.laatste != K_ESC)
        bewaar();
    if (ingavetekst[0] == 0)
        SCHERM.vlag |= V_LEEG;
    else
        vul_rechts();
    toon_einde();
    SCHERM.ververst = time(nullptr);
    INSTELLEEG();
    SCHERM.scroll = SCHERM.zichtbaar = 0;
    return (SCHERM.vlag & V_GEWIJZIGD) != 0;
}

} // namespace zg
