// The progress bar on the screen. Columns count from 1 inside the bar; a bar is two narrower than the screen.
// Cells still to come show the block character in the label colour, cells done are highlighted blanks.
#include "store/voortgang.h"
#include "term/scherm.h"
#include <algorithm>
#include <cstring>
#include <string>

namespace zg {

void (*VOORTGANGHAAK)(int, int64_t, int64_t, const char*) = nullptr;

namespace {

constexpr char BLOK = static_cast<char>(254);
constexpr size_t TEKSTMAX = 69;

struct Balk {
    bool open = false;
    int breedte = 0, vol = 0;
};
Balk venster, status;
std::string statustekst; // what the status bar shows under its cells, as wide as the bar

int breedte_nu() {
    return std::clamp(SCHERM.cols - 2, 1, 512);
}

int kolommen(const Balk& balk, int64_t waarde, int64_t totaal) {
    if (totaal <= 0)
        totaal = waarde > 0 ? waarde : 1;
    waarde = std::clamp<int64_t>(waarde, 0, totaal);
    return static_cast<int>(static_cast<long double>(waarde) * balk.breedte /
                            static_cast<long double>(totaal));
}

void open_venster(const char* tekst) {
    if (venster.open || SCHERM.aantal >= VENSTERS)
        return;
    venster = {true, breedte_nu(), 0};
    WINOPEN1(SCHERM.lines - 3, 1, 3, SCHERM.cols);
    WINBOX("%s", tekst);
    SCRPUT(A_LIJN_LABEL, 1, 1, "%s", std::string(static_cast<size_t>(venster.breedte), BLOK).c_str());
    WINCURSOR(0);
    SCRFLUSH(0);
}

void open_status(const char* tekst) {
    status = {true, breedte_nu(), 0};
    statustekst.clear();
    size_t n = strlen(tekst), b = static_cast<size_t>(status.breedte);
    if (n >= 1 && n <= TEKSTMAX && n <= b) {
        statustekst.assign(b, ' ');
        statustekst.replace((b - n) / 2, n, tekst);
        SCRBASE(A_LABEL, SCHERM.lines, 2, "%s", statustekst.c_str());
    } else {
        statustekst.assign(b, ' ');
        SCRBASE(A_LIJN_LABEL, SCHERM.lines, 2, "%s", std::string(b, BLOK).c_str());
    }
    SCRFLUSH(0);
}

void toon_venster(int64_t waarde, int64_t totaal) {
    int n = kolommen(venster, waarde, totaal);
    if (!venster.open || n <= venster.vol)
        return;
    SCRPUT(A_WAARDE_KEUS, 1, venster.vol + 1, "%*s", n - venster.vol, "");
    venster.vol = n;
    SCRFLUSH(0);
}

void toon_status(int64_t waarde, int64_t totaal) {
    int n = kolommen(status, waarde, totaal);
    if (n <= status.vol)
        return;
    SCRBASE(A_WAARDE_KEUS, SCHERM.lines, 2 + status.vol, "%.*s", n - status.vol,
            statustekst.c_str() + status.vol);
    status.vol = n;
    SCRFLUSH(0);
}

} // namespace

void VOORTGANG(int stap, int64_t waarde, int64_t totaal, const char* tekst) {
    if (!tekst)
        tekst = "";
    if (VOORTGANGHAAK) {
        VOORTGANGHAAK(stap, waarde, totaal, tekst);
        return;
    }
    if (!SCHERM.bestaat || SCHERM.dicht) // a bar that stands over from a screen that is gone is forgotten
        return;
    switch (stap) {
    case VG_OPEN:
        open_venster(tekst);
        break;
    case VG_TOON:
        toon_venster(waarde, totaal);
        break;
    case VG_SLUIT:
        if (venster.open) {
            venster.open = false;
            WINCLOSE();
            WINCURSOR(1);
        }
        break;
    case VG_STATUSTOON:
        if (!status.open)
            open_status(tekst);
        toon_status(waarde, totaal);
        break;
    case VG_STATUSOPEN:
        open_status(tekst);
        break;
    case VG_STATUSSLUIT:
        SCRBASE(A_LABEL, SCHERM.lines, 1, "%*s", SCHERM.cols - 1, "");
        status.open = false;
        SCRFLUSH(0);
        break;
    default:
        break;
    }
}

} // namespace zg
