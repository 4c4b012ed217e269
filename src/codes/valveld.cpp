// The fields of currency code and rate.
#include "codes/valveld.h"
#include "codes/teksten.h"
#include "price/ing_val.h"
#include "price/koers.h"
#include "price/teksten.h"
#include "term/ingave.h"
#include "term/vast.h"
#include <cstdio>

namespace zg {

namespace {

bool lees(const Lijsttabel&, const Lijstcode& code, std::string* naam) {
    if (!valuta_zoek(code.tekst.c_str()))
        return false;
    *naam = VASTTEKST(valuta_nu.naam);
    return true;
}

void onbekend(const Lijsttabel&, const Lijstcode& code) {
    error("<%s> %s", code.tekst.c_str(), TXT(T_ONBEKENDE_VALUTACODE));
}

std::vector<Lijstblad::Rij> rijen(const Lijsttabel&) {
    std::vector<Lijstblad::Rij> uit;
    for (const auto& v : valuta_tabel()) {
        const std::string code = VASTTEKST(v.r.code);
        char regel[48];
        snprintf(regel, sizeof regel, "%-3.3s   %-30.30s", code.c_str(), VASTTEKST(v.r.naam).c_str());
        uit.push_back({{0, code}, regel});
    }
    return uit;
}

bool kies(const Lijsttabel& tabel, Lijstcode* code) {
    char kop[48];
    snprintf(kop, sizeof kop, "%-4.4s  %s", TXT(T_CODE), TXT(T_VALUTANAAM));
    if (code->tekst.empty())
        code->tekst = VASTTEKST(valuta_nu.code);
    return lijstkies(tabel, {TXT(T_KIES_VALUTACODE), kop, TXT(T_VALUTACODE), "3s,IU", rijen}, code);
}

} // namespace

const Lijsttabel VALUTATABEL{"3c", 0, lees, onbekend, kies};

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
