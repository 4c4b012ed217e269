// SCRFATAL, the one way to give up: a box when there is a screen, plain lines when there is none, Enter,
// status 1. It may be called from anywhere in the program, so it asks nothing of the state it finds.
#include "term/binnen.h"
#include "term/teksten.h"
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <unistd.h>

namespace zg {

void (*SCRFATALHAAK)();

namespace {

char rapport[1000];
char reden[80];

constexpr int RIJ = 18, KOLOM = 10;
constexpr size_t PROEF = 1000;

bool geheugen() {
    void* volatile proef = malloc(PROEF);
    bool er = proef != nullptr;
    free(proef);
    return er;
}

void in_doos(const char* tekst) {
    const char* support = TXT(T_SUPPORT);
    int lengte = static_cast<int>(strlen(tekst)), breedte = static_cast<int>(strlen(support));
    int binnen = SCHERM.cols - 4;
    int w = std::min(std::max(lengte, breedte) + 4, SCHERM.cols);
    int rijen = std::max(1, (lengte + binnen - 1) / binnen); // a long report goes on on the next row
    WINOPEN(RIJ - (rijen - 1) - (*reden != 0), w > SCHERM.cols - KOLOM + 1 ? 1 : KOLOM,
            4 + rijen + (*reden != 0), w, 3);
    WINBOX("%s", TXT(T_AFGEBROKEN));
    for (int i = 0; i < rijen; i++)
        SCRPUT(A_WAARDE, 1 + i, 2, "%.*s", binnen, tekst + i * binnen);
    if (*reden)
        SCRPUT(A_WAARDE, ++rijen, 2, "(%s)", reden);
    SCRPUT(A_WAARDE, rijen + 1, 2, "%s", support);
    SCRPUT(A_LABEL, rijen + 2, 2, "%s", TXT(T_ENTER_VERVOLG));
    TOETSLEEG(); // keys typed ahead must not take the report away unread; what comes after it is shown counts
    TOONVENSTER(WINNU());
    while (TOETSRAW(WINNU()) != K_ENTER) {
    }
    while (SCHERM.aantal > 1)
        WINCLOSE();
}

void op_regels(const char* tekst) {
    TERMINALAF();
    printf("%s\r\n%s\r\n", TXT(T_AFGEBROKEN), tekst);
    if (*reden)
        printf("(%s)\r\n", reden);
    printf("%s\r\n%s\r\n", TXT(T_SUPPORT), TXT(T_ENTER_VERVOLG));
    fflush(stdout);
    if (isatty(STDIN_FILENO)) // without a user there is nobody to wait for
        WACHTREGEL();
}

} // namespace

void VSCRFATAL(const char* fmt, va_list ap) {
    static bool bezig;
    if (bezig) {
        NOODAF();
        _exit(1);
    }
    bezig = true;
    vsnprintf(rapport, sizeof rapport, fmt, ap);
    if (OVERGAVEWACHT()) // the screen of the program before this one still stands
        SCRINIT();
    if (SCHERM.bestaat && SCHERM.dicht) {
        ZEND("mc4");
        SCHERM.dicht = 0;
    }
    if (SCRFATALHAAK) {
        struct Terug { // a test's hook may throw: then the next report is a first one again
            bool gegooid = true;
            ~Terug() { bezig = !gegooid; }
        } terug;
        SCRFATALHAAK();
        terug.gegooid = false;
    }
    if (MACROHAAK.speelt && MACROHAAK.stop)
        MACROHAAK.stop();
    const bool doos = SCHERM.bestaat && SCHERM.aantal > 0 && SCHERM.aantal < VENSTERS && geheugen();
    if (doos && isatty(STDIN_FILENO)) // without a keyboard the box would be gone before it is read
        in_doos(rapport);
    else
        op_regels(rapport);
    SCRSTOP(1);
}

void SCRFATALREDEN(const char* woorden) {
    snprintf(reden, sizeof reden, "%s", woorden);
}

const char* SCRFATALREDEN() {
    return reden;
}

const char* SCRFATALTEKST() {
    return rapport;
}

void SCRFATAL(const char* fmt, ...) {
    va_list ap;
    va_start(ap, fmt);
    VSCRFATAL(fmt, ap);
}

} // namespace zg
