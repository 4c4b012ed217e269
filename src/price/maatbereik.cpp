// The question of a price screen for the size at which a group ends: typed, or picked from the sizes behind its first one,
// which stand in the window's last row but one.
#include "price/prijsvraag.h"
#include "price/teksten.h"
#include "shared/arraylijst.h"
#include "shared/maatbalk.h"
#include "term/ingave.h"
#include "term/natl.h"
#include "term/raster.h"
#include "term/vast.h"
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

namespace zg {
namespace {

std::vector<mtinfo> keus; // sizes that the group may end at, in bar order, from its first one

// A size's name as people write it, without the blanks that fill it up on either side.
std::string naam(const char (&veld)[3]) {
    const std::string_view tekst = VASTTRIM(VASTUIT(veld));
    return std::string(tekst.substr(std::min(tekst.find_first_not_of(' '), tekst.size())));
}

const char* balktekst(int kolom) {
    static std::string tekst;
    tekst = naam(keus[static_cast<size_t>(kolom) - 1].naam);
    return tekst.c_str();
}

void zoek_keus(const prijsgroep_info& groep) {
    const prijsrijen& rijen = *up_lay.rijen;
    keus = {groep.eerste};
    for (mtinfo maat = groep.eerste; mtread(maatbalk, 'N', &maat, 2) == 1;)
        if (up_aanwezig(rijen.bruto, maat.maatnr) &&
            (!up_lay.advies_telt || up_aanwezig(rijen.advies, maat.maatnr)))
            keus.push_back(maat);
}

// Index in `keus` of what was typed, as it stands or else in the other case; -1, told, when there is none.
int zoek(const char* getypt) {
    char veld[3];
    VASTIN(veld, {getypt, strnlen(getypt, sizeof veld)});
    const std::string tekst = naam(veld);
    for (bool precies : {true, false})
        for (size_t i = 0; i < keus.size(); i++)
            if (precies ? naam(keus[i].naam) == tekst : GROOTKOPIE(naam(keus[i].naam)) == GROOTKOPIE(tekst))
                return static_cast<int>(i);
    error("<%.3s> %s", getypt, TXT(T_UP_FOUTE_MAAT));
    return -1;
}

// The pick list, with the descriptions where the installation has them.
int kies(int begin) {
    ArrayLijst lijst{};
    const bool was = maatbalk->mtom;
    maatbalk->mtom = dtmtom != nullptr;
    for (const mtinfo& maat : keus) {
        mtinfo lang = maat;
        mtread(maatbalk, 'R', &lang, 2);
        char omschrijving[sizeof lang - offsetof(mtinfo, extra1)], regel[24];
        memcpy(omschrijving, &lang.extra1, sizeof omschrijving);
        snprintf(regel, sizeof regel, " %3.3s  %-7.7s", naam(maat.naam).c_str(),
                 VASTTEKST(omschrijving).c_str());
        lijst.regels.push_back(regel);
    }
    maatbalk->mtom = was;
    lijst.titel = TXT(T_UP_MAATBEREIK);
    lijst.kop = std::string(TXT(T_UP_KOP_MAAT)) + "  " + TXT(T_UP_KOP_OMSCHR);
    lijst.vraag = TXT(T_UP_KOP_MAAT);
    lijst.formaat = "3s,I";
    lijst.zoek = zoek;
    lijst.begin = begin;
    return arraylijst(lijst);
}

// Index of the size that the group ends at; -1 for cancel.
int vraag_maat(int nu) {
    const int balkrij = WINHOOGTE() - 1;
    RASTER balk{};
    balk.kolommen = static_cast<int32_t>(keus.size());
    RASTERKOL(&balk, 1, WINBREEDTE(), 3);
    RASTERCEL(&balk, 0, nu + 1); // pages to where the group ends
    int gekozen = -1;
    while (gekozen < 0) {
        RASTERKOP(&balk, A_LABEL, balkrij, balktekst);
        char tekst[4];
        snprintf(tekst, sizeof tekst, "%3.3s", naam(keus[static_cast<size_t>(nu)].naam).c_str());
        TOETSAAN(K_F5);
        if (balk.eerstekol > 1)
            TOETSAAN(K_F7);
        if (balk.laatstekol < balk.kolommen)
            TOETSAAN(K_F8);
        INGAVE(up_rij(PK_MATEN), up_lay.nu + 6, "3c,JE", &SCHERM.toets[key_cancel], tekst);
        if (TOETSWEG())
            break;
        if (SCHERM.laatste == K_F7 || SCHERM.laatste == K_F8)
            RASTERSTAP(&balk, SCHERM.laatste == K_F7 ? 'L' : 'R');
        else
            gekozen = SCHERM.laatste == K_F5 ? kies(nu) : zoek(tekst);
    }
    SCRCLREOL(balkrij, 1);
    return gekozen;
}

// The group becomes the first sizes of `keus`; those it takes over get its prices as they stand.
void neem_maten(prijsgroep_info* groep, int laatste) {
    memset(groep->maten, 0, sizeof groep->maten);
    groep->aantal_maten = laatste + 1;
    groep->laatste = keus[static_cast<size_t>(laatste)];
    for (int i = 0; i <= laatste; i++)
        maat_aan(groep->maten, keus[static_cast<size_t>(i)].maatnr);
    prijsrijen* rijen = up_lay.rijen;
    auto vul = [&](prijsrij* rij) { up_vul(rij, groep->maten, (*rij)[groep->eerste.maatnr]); };
    if (up_lay.advies_telt) {
        vul(&rijen->advies);
    } else {
        vul(&rijen->bruto);
        vul(&rijen->netto);
    }
}

} // namespace

bool vraag_maatbereik(prijsgroep_info* groep, int nummer, int laatste_nr) {
    zoek_keus(*groep);
    auto laatste = static_cast<int>(keus.size()) - 1;
    if (nummer < laatste_nr) {
        const auto nu = std::find_if(keus.begin(), keus.end(),
                                     [&](const mtinfo& m) { return m.maatnr == groep->laatste.maatnr; });
        laatste = vraag_maat(static_cast<int>(std::min(nu, keus.end() - 1) - keus.begin()));
    }
    if (laatste < 0)
        return false;
    neem_maten(groep, laatste);
    return true;
}

} // namespace zg
