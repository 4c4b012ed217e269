// The bar in force, see shared/maatbalk.h.
#include "shared/maatbalk.h"
#include "shared/leesstam.h"
#include <cstring>

namespace zg {

mthandle* maatbalk;

namespace {

// The columns as they are shown; made anew when the bar or the choice changes.
struct Kolom {
    uint8_t maat;
    char naam[4];
};
Kolom kolommen[MATEN + 1]; // from 1
int aantal;

void vul() {
    mtinfo info{};
    aantal = 0;
    for (int er = mtread(maatbalk, 'F', &info, 4); er && aantal < MATEN;
         er = mtread(maatbalk, 'N', &info, 4)) {
        Kolom& k = kolommen[++aantal];
        k.maat = info.maatnr;
        memcpy(k.naam, info.naam, sizeof info.naam);
        k.naam[3] = '\0';
    }
}

} // namespace

void balk_open(uint8_t stelsel, uint8_t soort, const uint8_t* maten) {
    if (stelsel == 0 || soort == 0) {
        balk_sluit();
        return;
    }
    leesmaat(&maatbalk, stelsel, soort, nullptr);
    balk_kies(maten);
}

void balk_kies(const uint8_t* maten) {
    static const uint8_t ALLE[MAATBYTES] = {0xFE, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF,
                                            0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF};
    if (!maatbalk)
        return;
    mtselect(maatbalk, maten ? maten : ALLE);
    vul();
}

bool balk_vernieuw() {
    if (!maatbalk)
        return false;
    mthandle* nu = mtopen(maatbalk->stelsel, maatbalk->soort, 0);
    const bool anders = memcmp(&nu->nummers, &maatbalk->nummers, sizeof nu->nummers) != 0 ||
                        memcmp(&nu->posities, &maatbalk->posities, sizeof nu->posities) != 0;
    memcpy(nu->keuze, maatbalk->keuze, MAATBYTES);
    nu->mtom = maatbalk->mtom;
    mtclose(maatbalk);
    maatbalk = nu;
    if (anders)
        vul();
    return anders;
}

void balk_sluit() {
    if (maatbalk)
        mtclose(maatbalk);
    maatbalk = nullptr;
    aantal = 0;
}

bool maatsoort_gevuld(uint8_t stelsel, uint8_t soort) {
    if (stelsel == 0 || soort == 0)
        return false;
    mthandle* h = mtopen(stelsel, soort, 0);
    mtinfo info{};
    const bool er = mtread(h, 'F', &info, 1) == 1;
    mtclose(h);
    return er;
}

int balk_kolommen() {
    return aantal;
}

int balk_maat(int kolom) {
    return kolom >= 1 && kolom <= aantal ? kolommen[kolom].maat : 0;
}

const char* balk_naam(int kolom) {
    return kolom >= 1 && kolom <= aantal ? kolommen[kolom].naam : "   ";
}

void balk_maten(uint8_t* maten) {
    memset(maten, 0, MAATBYTES);
    for (int k = 1; k <= aantal; k++)
        maat_aan(maten, kolommen[k].maat);
}

bool balk_heeft(const uint8_t* maten) {
    mtinfo info{};
    for (int er = maatbalk ? mtread(maatbalk, 'F', &info, 2) : 0; er; er = mtread(maatbalk, 'N', &info, 2))
        if (maat_in(maten, info.maatnr))
            return true;
    return false;
}

Balkkeuze::Balkkeuze(const uint8_t* maten) {
    balk_maten(was);
    balk_kies(maten);
}

Balkkeuze::~Balkkeuze() {
    balk_kies(was);
}

} // namespace zg
