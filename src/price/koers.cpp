// Module koers: exchange rates and what is computed with them.
#include "price/koers.h"
#include "price/ing_val.h"
#include "price/teksten.h"
#include "shared/leesstam.h"
#include "shared/report.h"
#include "term/datum.h"
#include "term/vast.h"
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>

namespace zg {

namespace {

ICB* bestand;

// The newest record of the code that is not later than the date; false when there is none.
bool zoek(const char* code, uint16_t datum, koersrec* rec) {
    if (!bestand)
        INTERNAL("koers", 1);
    uint8_t buffer[IXRECMAX + 1] = {};
    koersrec sleutel{};
    VASTIN(sleutel.code, VASTTRIM({code, strnlen(code, sizeof sleutel.code)}));
    sleutel.datum = datum;
    memcpy(buffer, &sleutel, sizeof sleutel);
    bool gevonden = IXREAD(bestand, buffer);
    if (!gevonden) {
        memset(buffer, 0, sizeof buffer);
        memcpy(buffer, &sleutel, sizeof sleutel);
        gevonden = IXPREVK(bestand, buffer, 2) && IXGET(bestand, buffer, bestand->currec) == 1;
    }
    if (gevonden)
        stam_uit(buffer, bestand->h.reclen, rec);
    // Also when the file's key is another than code and date: never a rate of another currency or a later
    // day.
    return gevonden && VASTGELIJK(rec->code, VASTUIT(sleutel.code)) && rec->datum <= datum;
}

int32_t als_bedrag(double v) {
    constexpr double grens = std::numeric_limits<int32_t>::max();
    int32_t bedrag = round(std::isfinite(v) ? std::clamp(v, -grens, grens) : 0.0);
    return bedrag == 0 ? 1 : bedrag;
}

double koers_of_vandaag(const char* code, double koers) {
    return koers == 0.0 ? koers_vandaag(code) : koers;
}

} // namespace

void koers_open() {
    if (!bestand)
        bestand = IXOPEN("DTKOERS", 0);
}

void koers_sluit() {
    if (bestand)
        IXCLOSE(bestand);
    bestand = nullptr;
}

double koers_record(const char* code, uint16_t datum, koersrec* rec) {
    if (!zoek(code, datum, rec)) {
        *rec = koersrec{};
        return 1.0;
    }
    const double koers = koers_dubbel(rec->koers, rec->eenheid);
    return koers > 0 ? koers : 1.0;
}

double koers_datum(const char* code, uint16_t datum) {
    koersrec rec;
    return koers_record(code, datum, &rec);
}

double koers_vandaag(const char* code) {
    return koers_datum(code, VANDAAG());
}

double koers_dubbel(int32_t koers, uint16_t eenheid) {
    if (eenheid == 0)
        INTERNAL("koers", 2);
    return koers / (eenheid * 10000.0);
}

void koers_integer(double koers, int32_t* geheel, uint16_t* eenheid) {
    *eenheid = 1;
    if (koers > 1 && koers < 100 && round(koers * 100000) % 10 != 0) {
        koers *= 10;
        *eenheid = 10;
    } else if (koers > 0) {
        while (koers < 1 && *eenheid <= 9999) {
            koers *= 10;
            // 10000 is the largest unit reached: it fits.
            *eenheid = static_cast<uint16_t>(*eenheid * 10);
        }
    }
    double v = 10000 * koers;
    *geheel = v >= std::numeric_limits<int32_t>::max() ? std::numeric_limits<int32_t>::max() : round(v);
}

int32_t naar_valuta(int32_t bedrag, const char* code, double koers, int32_t factor) {
    int thuis = valuta_decimalen(""), vreemd = valuta_decimalen(code);
    double v = bedrag / (factor / 10000.0 * koers_of_vandaag(code, koers));
    if (thuis != vreemd)
        v *= thuis == 0 ? 100 : 0.01;
    return als_bedrag(v);
}

int32_t naar_thuis(int32_t bedrag, const char* code, double koers) {
    return naar_thuis_factor(bedrag, code, koers, 10000);
}

omrekening naar_thuis_met(const char* code, double koers, int32_t factor) {
    const int thuis = valuta_decimalen(""), vreemd = valuta_decimalen(code);
    return {koers_of_vandaag(code, koers), factor / 10000.0, thuis == vreemd ? 1 : thuis == 0 ? 0.01 : 100};
}

int32_t naar_thuis_factor(int32_t bedrag, const omrekening& o) {
    return als_bedrag(bedrag * o.koers * o.factor * o.schaal);
}

int32_t naar_thuis_factor(int32_t bedrag, const char* code, double koers, int32_t factor) {
    return naar_thuis_factor(bedrag, naar_thuis_met(code, koers, factor));
}

double koers_vernauwen(const char* code, int32_t vreemd, int32_t thuis, int32_t factor) {
    const double f = valuta_decimalen(code) == 0 ? vreemd * 100.0 : vreemd;
    const double h = valuta_decimalen("") == 0 ? thuis * 100.0 : thuis;
    const double m = f * (factor / 10000.0);
    if (!(m > 0) || thuis < 1)
        return 1.0;
    // Both bounds line up digit for digit, however many stand before the point.
    char lo[352], hi[352];
    const int breed = snprintf(hi, sizeof hi, "%015.10lf", (h + 0.5) / m);
    snprintf(lo, sizeof lo, "%0*.10lf", breed, (h - 0.5) / m);
    std::string uit;
    const char *a = lo, *b = hi;
    for (; *a && *a == *b; a++, b++)
        uit += *a;
    if (*a)
        uit += static_cast<char>('0' + (*a - '0' + *b - '0' + 1) / 2);
    const auto punt = static_cast<size_t>(strchr(hi, '.') - hi);
    uit.resize(std::max(uit.size(), punt), '0');
    const double koers = strtod(uit.c_str(), nullptr);
    // A bound itself, or more digits than stand there: as it is then.
    return koers > 0 && naar_thuis_factor(vreemd, code, koers, factor) == thuis ? koers : h / m;
}

std::string bedrag_tekst(const char* code, int64_t bedrag) {
    char uit[32];
    if (valuta_decimalen(code) == 0)
        snprintf(uit, sizeof uit, "%ld", static_cast<long>(bedrag));
    else // by integers: a sum may hold more digits than a double
        snprintf(uit, sizeof uit, "%s%ld.%02ld", bedrag < 0 ? "-" : "", labs(static_cast<long>(bedrag / 100)),
                 labs(static_cast<long>(bedrag % 100)));
    return uit;
}

std::string koers_tekst(const char* code, double koers) {
    if (!thuisvaluta_anders(code))
        return TXT(T_NVT);
    std::string uit;
    if (koers == 0.0) {
        uit = TXT(T_ACTUELE_KOERS);
        koers = koers_vandaag(code);
    }
    int per = 1;
    while (koers > 0 && koers < 1 && per < 1'000'000) {
        koers *= 100;
        per *= 100;
    }
    char tekst[400];
    snprintf(tekst, sizeof tekst, "%-9.5f", koers);
    uit += tekst;
    if (per > 1) {
        snprintf(tekst, sizeof tekst, " (%s %d)", TXT(T_PER), per);
        uit += tekst;
    }
    return uit;
}

double tien_macht(int n) {
    double macht = 1;
    while (n-- > 0)
        macht *= 10;
    return macht;
}

} // namespace zg
