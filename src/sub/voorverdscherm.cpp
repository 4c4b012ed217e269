// One pre-distribution on the screen: looked at, changed, added or deleted in the grid.
#include "shared/maatbalk.h"
#include "sub/matrixinvoer.h"
#include "sub/teksten.h"
#include "sub/vvdeel.h"
#include "term/prompt.h"
#include "term/teksten.h"

namespace zg {
namespace {

const char* woord(Vvkeus wat) {
    return TXT(wat == Vvkeus::wijzigen      ? T_VV_W_WIJZIGEN
               : wat == Vvkeus::toevoegen   ? T_VV_W_TOEVOEGEN
               : wat == Vvkeus::verwijderen ? T_VV_W_VERWIJDEREN
                                            : T_VV_W_RAADPLEGEN);
}

void open_scherm(Matrixscherm* s, const Vvsoort& soort, Vvkeus wat, uint16_t nummer,
                 const aantalmatrix& tabel) {
    WINOPEN1(VVRIJ, 1, 21, 80);
    WINBOX("%s %s %2d, %s %ld %-.20s", woord(wat), TXT(T_VV_VERDELING), nummer, TXT(T_VV_MAATSOORT),
           long{soort.maatsoort}, soort.naam.c_str());
    const int laatste = WINHOOGTE() - 4;
    s->uitgesloten = soort.uitgesloten;
    matrix_begin(s, 1, laatste, tabel);
    s->totaalrij = laatste + 2; // below a line
    s->vrijrij = laatste + 3;
    SCRLIJN(A_LIJN_LABEL, laatste + 1, 1, L_HORIZONTAAL, WINBREEDTE());
    matrix_teken(s, tabel);
}

void bekijk(Matrixscherm* s, const aantalmatrix& tabel) {
    WINVOET(TXT(T_VOET_ESC));
    do {
        for (int32_t key : {K_LEFT, K_RIGHT, K_ENTER})
            TOETSAAN(key);
        TOETSKIES(&SCHERM.toets[key_cancel], &SCHERM.toets[key_up], &SCHERM.toets[key_down],
                  &SCHERM.toets[key_pgup], &SCHERM.toets[key_pgdn], &SCHERM.toets[key_f7],
                  &SCHERM.toets[key_f8], "");
        const int32_t key = SCHERM.laatste;
        RASTERSTAP(&s->raster, key == K_UP || key == K_PGUP     ? 'U'
                               : key == K_DOWN || key == K_PGDN ? 'D'
                               : key == K_LEFT || key == K_F7   ? 'L'
                               : key == K_RIGHT || key == K_F8  ? 'R'
                                                                : ' ');
        matrix_teken(s, tabel);
    } while (!TOETSWEG() && SCHERM.laatste != K_ENTER);
}

// Changed in the grid or deleted; the number is in hand, and let go here. Where saving was refused, and told, the
// screen stays: it may be tried again, or left without another change.
void bewerk(Matrixscherm* s, uint8_t maatsoort, Vvkeus wat, uint16_t nummer, aantalmatrix* tabel) {
    for (aantalmatrix was = *tabel;;) {
        if (wat != Vvkeus::verwijderen)
            matrix_hand(s, tabel);
        else if (JNVRAAG(WINHOOGTE(), 2, "[-]%s", TXT(T_VV_VRAAG_VERWIJDEREN)))
            fmclear(tabel);
        if (*tabel == was)
            return vv_laatlos(maatsoort, nummer);
        if (vv_vervang(maatsoort, nummer, *tabel) || !vv_grijp(maatsoort, nummer))
            return;
        was = *tabel;
    }
}

} // namespace

uint16_t vv_scherm(const Vvsoort& soort, Vvkeus wat, uint16_t nummer) {
    const Balkkeuze alle(nullptr);
    const uint8_t maatsoort = soort.maatsoort;
    const bool vast = wat != Vvkeus::raadplegen;
    if (wat == Vvkeus::toevoegen)
        nummer = vv_grijp_vrije(maatsoort);
    else if (vast && !vv_grijp(maatsoort, nummer))
        nummer = 0;
    if (nummer == 0)
        return 0;
    aantalmatrix tabel;
    vv_laden(maatsoort, nummer, &tabel, nullptr);
    if (vast && wat != Vvkeus::toevoegen && fm_leeg(tabel)) { // deleted by another since it was listed
        error("%s", TXT(T_VV_GEWIJZIGD));
        vv_laatlos(maatsoort, nummer);
        return nummer;
    }
    Matrixscherm s;
    open_scherm(&s, soort, wat, nummer, tabel);
    if (vast)
        bewerk(&s, maatsoort, wat, nummer, &tabel);
    else
        bekijk(&s, tabel);
    WINCLOSE();
    return nummer;
}

} // namespace zg
