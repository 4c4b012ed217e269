// The discount field with its calculation window.
#include "price/kortingveld.h"
#include "price/prijsvenster.h"
#include "price/teksten.h"
#include "term/ingave.h"
#include "term/natl.h"

namespace zg {
namespace {

constexpr double GRENS = 99.99;

void grenzen() {
    INSTEL.minimum = -GRENS;
    INSTEL.maximum = GRENS;
}

// The window on F10: terms and operators until a cancel, then the total to be accepted or changed.
bool bereken(double* procent) {
    double totaal = *procent + 0.0, term = totaal; // no minus in front of nothing
    char bewerking = 'I';
    WINOPEN1(10, SCHERM.cols - 30, 6, 30);
    WINBOX(" %s ", GROOTKOPIE(TXT(T_BEREKENEN_KORTING)).c_str());
    SCRPUT(A_LABEL, 1, 2, "%-10.10s:", TXT(T_KORTING));
    SCRPUT(A_LABEL, 2, 2, "%-10.10s:", "+, *, C");
    SCRPUT(A_LABEL, 3, 2, "%-10.10s:", TXT(T_TOTAAL));
    bool term_eerst = term == 0;
    if (!term_eerst)
        SCRPUT(A_WAARDE, 1, 14, "%6.2f", term);
    for (;;) {
        SCRPUT(A_WAARDE, 3, 14, "%6.2f", totaal);
        if (!term_eerst) {
            // Shows empty; "+" and "*" ask the next term, "C" starts over.
            char teken = ' ';
            INGAVE(2, 14, "1c[+*C],EIAU", &SCHERM.toets[key_cancel], &teken);
            if (TOETSWEG())
                break;
            bewerking = teken;
            if (bewerking == 'C') {
                totaal = term = 0;
                SCRPUT(A_WAARDE, 3, 14, "%6.2f", totaal);
                bewerking = 'I';
            }
        }
        term_eerst = false;
        grenzen();
        INGAVE(1, 14, "6.2f,EIJNPZ", &SCHERM.toets[key_cancel], &term);
        if (TOETSWEG())
            break;
        totaal = korting_stap(bewerking, totaal, term);
    }
    grenzen();
    INGAVE(3, 14, "6.2f,EJNPZ", &SCHERM.toets[key_cancel], &totaal);
    bool goed = !TOETSWEG();
    WINCLOSE();
    if (goed)
        *procent = totaal;
    return goed;
}

} // namespace

double korting_stap(char bewerking, double totaal, double term) {
    switch (bewerking) {
    case '+':
        return totaal + term;
    case '*':
        return (100 - totaal) / 100 * (100 - term) / 100 * -100 + 100;
    case 'C':
        return 0;
    default:
        return term;
    }
}

bool korting_veld(int rij, int kolom, double* procent) {
    double oud = *procent;
    Instel* instel = INSTELNEW(0);
    const prijshint hint;
    for (;;) {
        INSTELSET(instel);
        grenzen();
        TOETSAAN(K_HELP);
        INGAVE(rij, kolom, "6.2f,ZPN", &SCHERM.toets[key_cancel], &SCHERM.toets[key_f10], procent);
        if (SCHERM.laatste == K_HELP || SCHERM.laatste == K_F1) {
            up_toetshulp("<F10>", TXT(T_BEREKENEN_KORTING));
            continue;
        }
        if (SCHERM.laatste == K_F10) {
            if (!bereken(procent))
                continue;
            SCHERM.laatste = K_ENTER;
        }
        break;
    }
    INSTELDEL(instel);
    if (TOETSWEG())
        *procent = oud;
    return *procent != oud;
}

} // namespace zg
