// The fields of currency code and rate.
#include "codes/valveld.h"
#include "codes/teksten.h"
#include "price/ing_val.h"
#include "price/koers.h"
#include "price/teksten.h"
#include "shared/arraylijst.h"
#include "term/ingave.h"
#include "term/vast.h"
#include <cstdio>
#include <cstring>

namespace zg {

bool valuta_kiezen() {
    const auto& tabel = valuta_tabel();
    ArrayLijst lijst{};
    for (const auto& v : tabel) {
        char regel[48];
        snprintf(regel, sizeof regel, "%-3.3s   %-30.30s", std::string(VASTUIT(v.r.code)).c_str(),
                 VASTTEKST(v.r.naam).c_str());
        lijst.regels.push_back(regel);
    }
    char kop[48];
    snprintf(kop, sizeof kop, "%-4.4s  %s", TXT(T_CODE), TXT(T_VALUTANAAM));
    lijst.titel = TXT(T_KIES_VALUTACODE), lijst.kop = kop, lijst.vraag = TXT(T_VALUTACODE),
    lijst.formaat = "3s,IU";
    lijst.zoek = [&](const char* tekst) {
        for (size_t i = 0; i < tabel.size(); i++)
            if (VASTGELIJK(tabel[i].r.code, tekst))
                return static_cast<int>(i);
        error("%s", TXT(T_ONBEKENDE_VALUTACODE));
        return -1;
    };
    for (size_t i = 0; i < tabel.size(); i++)
        if (VASTGELIJK(tabel[i].r.code, VASTUIT(valuta_nu.code)))
            lijst.begin = static_cast<int>(i);
    int gekozen = arraylijst(lijst);
    return gekozen >= 0 &&
           valuta_zoek(std::string(VASTUIT(tabel[static_cast<size_t>(gekozen)].r.code)).c_str());
}

bool valuta_veld(int rij, int kolom, const char* formaat, char* code) {
    Instel* bewaard = INSTELNEW(0);
    char nieuw[3];
    memcpy(nieuw, code, 3);
    bool gewijzigd = false;
    for (;;) {
        if (bewaard)
            INSTELSET(bewaard);
        INGAVE(rij, kolom, formaat, &SCHERM.toets[key_cancel], &SCHERM.toets[key_f5], nieuw);
        if (TOETSWEG())
            break;
        if (SCHERM.laatste == K_F5) {
            memcpy(nieuw, code, 3);
            if (!VASTLEEG(nieuw))
                valuta_zoek(code); // the list begins on it
            if (!valuta_kiezen())
                continue;
            memcpy(nieuw, valuta_nu.code, 3);
            SCHERM.laatste = K_ENTER;
            SCHERM.vlag &= ~static_cast<uint32_t>(V_LEEG);
        } else if (!(SCHERM.vlag & V_LEEG)) {
            char gezocht[4] = {nieuw[0], nieuw[1], nieuw[2], 0};
            if (!valuta_zoek(gezocht)) {
                error("<%s> %s", gezocht, TXT(T_ONBEKENDE_VALUTACODE));
                memcpy(nieuw, code, 3);
                continue;
            }
        }
        SCRPUT(A_WAARDE, rij, kolom, "%-*.*s", 3, 3, std::string(VASTUIT(nieuw)).c_str());
        gewijzigd = memcmp(code, nieuw, 3) != 0;
        memcpy(code, nieuw, 3);
        break;
    }
    INSTELDEL(bewaard);
    return gewijzigd;
}

bool koers_veld(int rij, int kolom, const char* vlaggen, const char*, double* koers) {
    int32_t geheel;
    uint16_t eenheid = 1;
    if (*koers > 0)
        koers_integer(*koers, &geheel, &eenheid);
    SCRCLREOL(rij, kolom); // the rate as it stood there may have been for another unit
    if (eenheid <= 10)
        eenheid = 1;
    else
        SCRPUT(A_LABEL, rij, kolom + 10, "(%s %d)", TXT(T_PER), eenheid);
    char formaat[16];
    snprintf(formaat, sizeof formaat, "9.5f,P%.4s", vlaggen);
    double waarde = *koers * eenheid;
    bool gewijzigd = INGAVE(rij, kolom, formaat, &SCHERM.toets[key_cancel], &waarde) != 0;
    if (TOETSWEG())
        return false;
    if (gewijzigd)
        *koers = waarde / eenheid;
    return gewijzigd;
}

} // namespace zg
