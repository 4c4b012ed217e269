// The messages of order/meld.h.
#include "order/meld.h"
#include "term/prompt.h"
#include "term/scherm.h"
#include <cerrno>
#include <cstdio>

namespace zg {

void ord_meld_bezet(const char* naam) {
    char regel[120];
    snprintf(regel, sizeof regel, "%s %s %s.", TXT(T_JRN_ORDER), naam, TXT(T_JRN_IN_GEBRUIK));
    if (!SCHERM.bestaat) {
        fprintf(stderr, "%s\n", regel);
        return;
    }
    WINOPEN2(21, 1, 4, 80);
    WINBOX(nullptr);
    SCRPUT(A_LABEL, 1, 2, "%s", regel);
    PIEP();
    ENTERWACHT(2, 2);
    WINCLOSE();
}

void ord_meld_niet_open(const char* naam) {
    if (!SCHERM.bestaat) {
        fprintf(stderr, "%s: %s\n", naam, TXT(T_JRN_NIET_TE_OPENEN));
        return;
    }
    int rij = SCHERM.lines - 2; // the last line is the status line
    SCRCLREOL(rij, 1);
    int n = SCRPUT(A_LABEL, rij, 1, "%s: %s", naam, TXT(T_JRN_NIET_TE_OPENEN));
    PIEP();
    ENTERWACHT(rij, n + 3);
    SCRCLREOL(rij, 1);
}

void ord_meld_schrijffout(const char* naam, int reden, const char* regel2, const char* regel3) {
    char waarom[60], regel[120];
    switch (reden) {
    case ENOSPC:
    case EDQUOT:
        snprintf(waarom, sizeof waarom, "%s", TXT(T_JRN_SCHIJF_VOL));
        break;
    case EFBIG:
    case EOVERFLOW:
        snprintf(waarom, sizeof waarom, "%s", TXT(T_JRN_BESTAND_TE_GROOT));
        break;
    case EIO:
        snprintf(waarom, sizeof waarom, "%s", TXT(T_JRN_IO_FOUT));
        break;
    default:
        snprintf(waarom, sizeof waarom, TXT(T_JRN_FOUT_NR), reden);
    }
    snprintf(regel, sizeof regel, TXT(T_JRN_NIET_GESCHREVEN), naam, waarom);
    if (SCHERM.bestaat) {
        MELDBOX(MELD_ALARM, regel, regel2, regel3);
        return;
    }
    for (const char* r : {static_cast<const char*>(regel), regel2, regel3})
        if (r)
            fprintf(stderr, "%s\n", r);
}

void ord_inconsistent(const ordhandle* h, int64_t pos, char tag) {
    const char letter[2] = {tag, 0};
    SCRFATAL("%s %s-%s %s %ld (%-1.1s)", TXT(T_JRN_ORDER), h->seizoen, h->naam, TXT(T_JRN_INCONSISTENT),
             static_cast<long>(pos), letter);
}

} // namespace zg
