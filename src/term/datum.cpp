// The day-number calendar in which every date of the data files stands, and the clock. Day 1 is 1 January
// 1900; every year divisible by 4 is a leap year, 1900 too, so the calendar is right from March 1900 to June
// 2079.
#include "term/datum.h"
#include <cmath>
#include <cstdio>
#include <cstring>
#include <ctime>

namespace zg {
namespace {

constexpr int VOOR_MAAND[12] = {0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334};
constexpr int LENGTE[12] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
constexpr int LAATSTE_JAAR = 178; // 2078, the last whole year in 16 bits
constexpr uint16_t DAG2000 = 36526;

char buffer[16];

int twee(const char* cijfers) {
    return (cijfers[0] - '0') * 10 + cijfers[1] - '0';
}

char* zet_twee(char* uit, int getal) {
    *uit++ = static_cast<char>('0' + getal / 10);
    *uit++ = static_cast<char>('0' + getal % 10);
    return uit;
}

bool schrikkel(int jj) {
    return jj % 4 == 0;
}

int voor_jaar(int jj) {
    return (jj * 36525 + 99) / 100;
}

struct Dag {
    int dag, maand, jj;
};

Dag uit_nummer(uint16_t nr) {
    int jj = (nr * 100 - 99) / 36525;
    int dag = nr - voor_jaar(jj);
    int maand = 0;
    for (; maand < 11; maand++) {
        int lengte = LENGTE[maand] + (maand == 1 && schrikkel(jj));
        if (dag <= lengte)
            break;
        dag -= lengte;
    }
    return {dag, maand + 1, jj};
}

const char* met_streepjes(uint16_t nr, bool eeuw) {
    char kaal[9];
    DATUMTEKST(kaal, nr, eeuw);
    snprintf(buffer, sizeof buffer, "%.2s-%.2s-%s", kaal, kaal + 2, kaal + 4);
    return buffer;
}

// `nu` as local time; all zero when the system can't tell.
tm plaatselijk() {
    time_t nu = time(nullptr);
    tm t{};
    localtime_r(&nu, &t);
    return t;
}

} // namespace

int DATUMGELDIG(const char* tekst) {
    size_t lengte = strlen(tekst);
    if ((lengte != 6 && lengte != 8) || strspn(tekst, "0123456789") != lengte)
        return 0;
    int dag = twee(tekst), maand = twee(tekst + 2), jj = twee(tekst + lengte - 2);
    if (maand < 1 || maand > 12)
        return 0;
    return dag >= 1 && dag <= LENGTE[maand - 1] + (maand == 2 && schrikkel(jj));
}

uint16_t DATUMNR(const char* tekst) {
    if (!DATUMGELDIG(tekst))
        return 0;
    int dag = twee(tekst), maand = twee(tekst + 2), jj = twee(tekst + 4);
    if (tekst[6] != 0)
        jj = jj * 100 + twee(tekst + 6) - 1900;
    else if (jj < 51)
        jj += 100;
    if (jj < 0 || jj > LAATSTE_JAAR)
        return 0;
    int nr = voor_jaar(jj) + VOOR_MAAND[maand - 1] + dag + (maand > 2 && schrikkel(jj));
    return static_cast<uint16_t>(nr);
}

void DATUMTEKST(char* uit, uint16_t nr, bool eeuw) {
    if (nr == 0) {
        int breedte = eeuw ? 8 : 6;
        memset(uit, ' ', static_cast<size_t>(breedte));
        uit[breedte] = 0;
        return;
    }
    Dag d = uit_nummer(nr);
    uit = zet_twee(zet_twee(uit, d.dag), d.maand);
    if (eeuw)
        uit = zet_twee(uit, nr < DAG2000 ? 19 : 20);
    *zet_twee(uit, d.jj % 100) = 0;
}

const char* DATUM6(uint16_t nr) {
    DATUMTEKST(buffer, nr, false);
    return buffer;
}

const char* DATUM8(uint16_t nr) {
    return met_streepjes(nr, false);
}

const char* DATUM10(uint16_t nr) {
    return met_streepjes(nr, true);
}

int32_t round(double waarde) {
    double heel = std::round(waarde);
    if (heel != heel)
        return 0;
    if (heel >= 2147483647.0)
        return INT32_MAX;
    return heel <= -2147483648.0 ? INT32_MIN : static_cast<int32_t>(heel);
}

uint16_t VANDAAG() {
    tm t = plaatselijk();
    char tekst[16];
    snprintf(tekst, sizeof tekst, "%02u%02u%04u", static_cast<unsigned>(t.tm_mday) % 100,
             static_cast<unsigned>(t.tm_mon + 1) % 100, static_cast<unsigned>(t.tm_year + 1900) % 10000);
    return DATUMNR(tekst);
}

int32_t NUSECONDEN() {
    tm t = plaatselijk();
    return (t.tm_hour * 60 + t.tm_min) * 60 + t.tm_sec;
}

const char* TIJDTEKST(int32_t sec) {
    static char tijd[40];
    snprintf(tijd, sizeof tijd, "%02ld:%02ld:%02ld", static_cast<long>(sec / 3600),
             static_cast<long>(sec / 60 % 60), static_cast<long>(sec % 60));
    return tijd;
}

} // namespace zg
