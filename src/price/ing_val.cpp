// Module ing_val: the table of currencies.
#include "price/ing_val.h"
#include "shared/iotab.h"
#include "shared/report.h"
#include "term/vast.h"
#include <algorithm>
#include <string_view>

namespace zg {

valutarec valuta_nu;

namespace {

Tabelbeeld<valutarec> tabel{SYS_VALUTA};

std::string_view codetekst(const char* code) {
    return VASTTRIM({code, strnlen(code, VALUTACODE)});
}

const valutarec* vind(std::string_view code) {
    const auto& rijen = valuta_tabel();
    auto rij = std::find_if(rijen.begin(), rijen.end(),
                            [&](const Slot<valutarec>& s) { return VASTGELIJK(s.r.code, code); });
    return rij == rijen.end() ? nullptr : &rij->r;
}

} // namespace

const std::vector<Slot<valutarec>>& valuta_tabel() {
    return tabel.alle();
}

void valuta_vergeet() {
    tabel.vergeet();
}

bool valuta_zoek(const char* code) {
    if (codetekst(code).empty())
        INTERNAL("ing_val", 1);
    const valutarec* gevonden = vind(codetekst(code));
    if (gevonden)
        valuta_nu = *gevonden;
    return gevonden != nullptr;
}

int valuta_decimalen(const char* code) {
    const valutarec* gevonden = vind(valuta_of_thuis(code));
    return gevonden && gevonden->decimalen == 0 ? 0 : 2;
}

std::string valuta_of_thuis(const char* code) {
    const std::string_view tekst = codetekst(code);
    return std::string(tekst.empty() ? codetekst(instel15.valuta) : tekst);
}

bool thuisvaluta_anders(const char* code) {
    std::string_view tekst = codetekst(code);
    return !tekst.empty() && tekst != codetekst(instel15.valuta);
}

} // namespace zg
