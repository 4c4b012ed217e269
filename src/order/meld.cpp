// The messages of order/meld.h.
#include "order/meld.h"
#include "shared/report.h"
#include "term/prompt.h"
#include "term/scherm.h"
#include <cstdio>

namespace zg {

namespace {

// Window at the bottom with a line, and why in front of the wait for Enter.
void venster(const char* regel, const char* waarom) {
    if (!SCHERM.bestaat) {
        fprintf(stderr, *waarom ? "%s (%s)\n" : "%s\n", regel, waarom);
        return;
    }
    WINOPEN2(21, 1, 4, 80);
    WINBOX(nullptr);
    SCRPUT(A_LABEL, 1, 2, "%s", regel);
    const int n = *waarom ? SCRPUT(A_WAARDE, 2, 2, "%.54s", waarom) + 2 : 0;
    PIEP();
    ENTERWACHT(2, 2 + n);
    WINCLOSE();
}

} // namespace

void ord_meld_bezet(const char* naam, const char* houder) {
    char regel[120];
    snprintf(regel, sizeof regel, "%s %s %s.", TXT(T_JRN_ORDER), naam, TXT(T_JRN_IN_GEBRUIK));
    venster(regel, houder);
}

void ord_meld_geen_toegang(const char* naam, int reden) {
    char regel[120];
    snprintf(regel, sizeof regel, "%s %s: %s", TXT(T_JRN_ORDER), naam, TXT(T_JRN_NIET_TE_OPENEN));
    venster(regel, IOREDEN(reden));
}

void ord_meld_niet_open(const char* naam, int reden) {
    if (!SCHERM.bestaat) {
        fprintf(stderr, reden ? "%s: %s (%s)\n" : "%s: %s\n", naam, TXT(T_JRN_NIET_TE_OPENEN),
                IOREDEN(reden));
        return;
    }
    int rij = SCHERM.lines - 2; // the last line is the status line
    SCRCLREOL(rij, 1);
    SCRCLREOL(rij + 1, 1);
    int n = SCRPUT(A_LABEL, rij, 1, "%s: %s", naam, TXT(T_JRN_NIET_TE_OPENEN));
    if (reden)
        SCRPUT(A_WAARDE, rij + 1, 1, "(%s)", IOREDEN(reden));
    PIEP();
    ENTERWACHT(rij, n + 3);
    SCRCLREOL(rij, 1);
    SCRCLREOL(rij + 1, 1);
}

void ord_inconsistent(const ordhandle* h, int64_t pos, char tag) {
    const char letter[2] = {tag, 0};
    SCRFATAL("%s %s-%s %s %ld (%-1.1s)", TXT(T_JRN_ORDER), h->seizoen, h->naam, TXT(T_JRN_INCONSISTENT),
             static_cast<long>(pos), letter);
}

} // namespace zg
