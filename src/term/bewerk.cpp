// The keys that change the text of a field or move in it. Positions are 0-based in `ingavetekst`; the
// separators of a date stand at 2 and 5.
#include "term/datum.h"
#include "term/natl.h"
#include "term/strings.h"
#include "term/teksten.h"
#include "term/veld.h"
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace zg {
namespace {

constexpr int CTRL_W = 23;
constexpr int BACKSPACE = 8;

int lengte() {
    return static_cast<int>(strlen(ingavetekst));
}

bool op_streepje(int pos) {
    return VELDSTREEPJES() && (pos == 2 || pos == 5);
}

bool hexveld() {
    return VELDTYPE("xX");
}

int stap() {
    return std::max(1, SCHERM.zichtbaar / 3);
}

bool schuift() {
    return SCHERM.scroll && SCHERM.zichtbaar < SCHERM.breedte;
}

void schuif_rechts(Veld& v) {
    while (schuift() && v.cursor - v.begin >= SCHERM.zichtbaar) {
        v.begin += stap();
        if (v.begin + SCHERM.zichtbaar >= SCHERM.breedte)
            v.begin = SCHERM.breedte - SCHERM.zichtbaar + 1;
    }
}

void schuif_links(Veld& v) {
    while (v.begin > 0 && v.cursor <= v.begin)
        v.begin = std::max(0, v.begin - stap());
}

void kap(int n) {
    if (lengte() > n)
        memset(ingavetekst + n, 0, static_cast<size_t>(INGAVEMAX - n));
}

void ongeldige_toets() {
    error("%s", TXT(T_ONGELDIGE_TOETS));
}

// "\" in a hexadecimal field: the next key is a byte; its first digit now, the second by way of the key
// stack.
int32_t hexbyte() {
    int32_t key = TOETS();
    if (key < 0 || key > 255) {
        ongeldige_toets();
        return 0;
    }
    char cijfers[8];
    snprintf(cijfers, sizeof cijfers, "%02X", static_cast<unsigned>(key));
    TOETSDRUK(cijfers[1]);
    return cijfers[0];
}

// Insert before the cursor. A date keeps its separators in place: the digits alone move.
void voeg_in(Veld& v, char c) {
    int pos = v.cursor, breedte = SCHERM.breedte;
    bool streepjes = VELDSTREEPJES();
    if (streepjes) {
        VELDKAAL(ingavetekst);
        pos -= (pos > 2) + (pos > 5);
        breedte -= 2;
    }
    kap(breedte - 1);
    VOEGIN(ingavetekst, c, pos);
    if (streepjes)
        for (int p : {2, 5})
            VOEGIN(ingavetekst, '-', p);
}

void zet(Veld& v, char c) {
    if (SCHERM.invoegen && v.cursor < lengte())
        voeg_in(v, c);
    else
        ingavetekst[v.cursor] = c;
    v.cursor++;
    schuif_rechts(v);
}

// After a character of a date's day or month has gone: keep the other digits in their places.
void vul_datum(Veld& v, char met) {
    if (v.cursor < 5)
        VOEGIN(ingavetekst, met, v.cursor == 0 || v.cursor == 3 ? v.cursor + 1 : v.cursor);
    if (lengte() == 6)
        WISTEKENS(ingavetekst, 5, 1), VELDTRIM();
    if (lengte() == 3)
        WISTEKENS(ingavetekst, 2, 1), VELDTRIM();
    v.cursor = std::min(v.cursor, lengte());
}

void wis_alles(Veld& v) {
    memset(ingavetekst, 0, INGAVEMAX);
    v.begin = 0;
}

void wis_terug(Veld& v) {
    bool streepjes = VELDSTREEPJES();
    if (op_streepje(v.cursor - 1))
        v.cursor--;
    WISTEKENS(ingavetekst, --v.cursor, 1);
    if (streepjes)
        vul_datum(v, ' ');
    schuif_links(v);
}

void wis_hier(Veld& v) {
    if (v.cursor >= lengte())
        return;
    bool streepjes = VELDSTREEPJES();
    WISTEKENS(ingavetekst, v.cursor, 1);
    if (streepjes)
        vul_datum(v, '_');
}

} // namespace

bool VELDRELATIEF() {
    return ingavetekst[0] == '+' || ingavetekst[0] == '-';
}

bool VELDSTREEPJES() {
    return SCHERM.type == 'D' && SCHERM.breedte >= 8 && !VELDRELATIEF();
}

void VELDSCHEID() {
    if (lengte() > 1)
        ingavetekst[2] = '-';
    if (lengte() > 4)
        ingavetekst[5] = '-';
}

void VELDKAAL(char* tekst) {
    for (int pos : {5, 2})
        if (static_cast<int>(strlen(tekst)) > pos && tekst[pos] == '-')
            WISTEKENS(tekst, pos, 1);
}

const char* VELDDATUM(uint16_t nr) {
    return SCHERM.breedte == 10 ? DATUM10(nr) : SCHERM.breedte == 8 ? DATUM8(nr) : DATUM6(nr);
}

void VELDTEKST(const char* tekst) {
    size_t n = strnlen(tekst, INGAVEMAX - 1);
    memmove(ingavetekst, tekst, n);
    memset(ingavetekst + n, 0, INGAVEMAX - n);
}

void VELDTRIM() {
    if (SCHERM.breedte > 1 || !VELDTYPE("cC"))
        RTRIM(ingavetekst);
}

void VELDGETAL() {
    memset(ingavetekst, 0, INGAVEMAX);
    snprintf(ingavetekst, INGAVEMAX, "%-*.*f", SCHERM.breedte, SCHERM.decimalen, ingavewaarde);
    VELDTRIM();
    if (ingavetekst[0] == '-' && strspn(ingavetekst, "-0.") == strlen(ingavetekst))
        WISTEKENS(ingavetekst, 0, 1); // a small negative value rounds to 0, not to "-0.00"
}

void VELDTERUG(const Veld& v) {
    memcpy(ingavetekst, v.oud, sizeof v.oud);
    ingavewaarde = v.oudwaarde;
    if (SCHERM.type == 'b' && ingavetekst[0] == 0)
        ingavetekst[0] = TXTLETTER(T_NEE);
}

bool VELDTEKEN(Veld& v, int32_t key) {
    if (v.cursor >= SCHERM.breedte) {
        error("%s", TXT(T_TIK_ENTER));
        return false;
    }
    auto c = static_cast<uint8_t>(key);
    if (VELDOPTIE('U'))
        c = NGROOT(c);
    const bool hex = hexveld() && c == '\\' && v.cursor % 2 == 0;
    if (!hex && (!TOETSTOE(c) || (hexveld() && c == '\\'))) {
        error("<%c> %s", c, TXT(T_TEKEN_ONGELDIG));
        return false;
    }
    if (VELDSTREEPJES() && c == '-' && (v.cursor == 3 || v.cursor == 6))
        return false; // typed where the field has put it already
    if (hex) {
        c = static_cast<uint8_t>(hexbyte());
        if (c == 0)
            return false;
    }
    if (SCHERM.type == 'D' || hexveld()) {
        if (v.cursor == 0 && (c == '+' || c == '-'))
            memset(ingavetekst, 0, INGAVEMAX);
    } else if (SCHERM.vlag & V_VERS) {
        memset(ingavetekst, 0, INGAVEMAX);
    }
    if (SCHERM.type == 'b' && (c == '+' || c == '-'))
        c = static_cast<uint8_t>(TXTLETTER(c == '+' ? T_JA : T_NEE));
    if (VELDSTREEPJES() && c == '-' && (v.cursor == 1 || v.cursor == 4) && lengte() == v.cursor) {
        VOEGIN(ingavetekst, '0', v.cursor - 1); // "5-" is the fifth
        v.cursor++;
    }
    zet(v, static_cast<char>(c));
    return true;
}

bool VELDBEWERK(Veld& v, int32_t key) {
    switch (key) {
    case K_HOME:
        if (v.cursor == 0) {
            VELDTERUG(v);
            SCHERM.vlag = 0;
        }
        v.cursor = v.begin = 0;
        break;
    case K_LEFT:
        if (v.cursor > 0)
            v.cursor -= op_streepje(v.cursor - 1) ? 2 : 1;
        schuif_links(v);
        break;
    case K_RIGHT:
        if (v.cursor < std::min(lengte(), SCHERM.breedte))
            v.cursor += op_streepje(v.cursor + 1) ? 2 : 1;
        schuif_rechts(v);
        break;
    case K_END:
        v.cursor = std::min(lengte(), SCHERM.breedte);
        if (v.cursor - v.begin > SCHERM.zichtbaar && SCHERM.scroll)
            v.begin = v.cursor - SCHERM.zichtbaar;
        break;
    case K_IC:
        SCHERM.invoegen = !SCHERM.invoegen;
        break;
    case K_DC:
        wis_hier(v);
        break;
    case K_BACK:
    case BACKSPACE:
        if (v.cursor == 0) {
            wis_alles(v);
            return true;
        }
        wis_terug(v);
        break;
    case CTRL_W:
        if (SCHERM.huidig < 0 || !SCHERM.venster[SCHERM.huidig].rand)
            ongeldige_toets();
        break;
    default:
        ongeldige_toets();
    }
    return false;
}

} // namespace zg
