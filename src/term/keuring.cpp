// Validation of a field when a key leaves it: numbers with their range, dates by calendar and range, relative
// dates, mandatory and full fields. What is refused is told on the status line and stays open.
#include "term/datum.h"
#include "term/strings.h"
#include "term/teksten.h"
#include "term/veld.h"
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace zg {
namespace {

constexpr double LAATSTE_DAG = 65380; // 31 December 2078

bool geweigerd() {
    return SCHERM.vlag & V_GEWEIGERD;
}

void weiger(const char* tekst, const char* melding) {
    error("<%s> %s", tekst, melding);
    SCHERM.vlag |= V_GEWEIGERD;
}

void weiger(const Tekst& melding) {
    weiger(ingavetekst, TXT(melding));
}

void zet_gewijzigd(bool ja) {
    if (ja)
        SCHERM.vlag |= V_GEWIJZIGD;
    else
        SCHERM.vlag &= ~V_GEWIJZIGD;
}

std::string bereik() {
    auto getal = [](double x) {
        char s[400];
        snprintf(s, sizeof s, "%*.*f", SCHERM.decimalen + 1, SCHERM.decimalen, x);
        return std::string(s);
    };
    return std::string(TXT(T_ALLEEN)) + ' ' + getal(INSTEL.minimum) + ' ' + TXT(T_TM) + ' ' +
           getal(INSTEL.maximum) + ' ' + TXT(T_MOGELIJK);
}

// The text as a number into ingavewaarde. Always with a point, whatever the country: the program never sets
// another numeric locale. A number ends at the first character that can't belong to it.
void keur_getal() {
    std::string t = ingavetekst;
    const bool min = t.front() == '-' || t.back() == '-';
    if (t.front() == '-')
        t.erase(0, 1);
    else if (min)
        t.pop_back();
    std::replace(t.begin(), t.end(), ',', '.');
    size_t van = std::min(t.find_first_not_of(' '), t.size());
    size_t punt = std::min(t.find_first_not_of("0123456789", van), t.size());
    size_t einde = punt;
    if (punt < t.size() && t[punt] == '.')
        einde = std::min(t.find_first_not_of("0123456789", punt + 1), t.size());
    const int decimalen = einde > punt ? static_cast<int>(einde - punt - 1) : 0;
    double waarde = strtod(t.substr(van, einde - van).c_str(), nullptr);
    if (decimalen > SCHERM.decimalen)
        return weiger(T_TEVEEL_DECIMALEN);
    if (min && waarde != 0.0)
        waarde = -waarde;
    if (waarde == 0.0 && !VELDOPTIE('Z'))
        return weiger(T_NIET_NUL);
    if (waarde < INSTEL.minimum || waarde > INSTEL.maximum)
        return weiger(ingavetekst, bereik().c_str());
    ingavewaarde = waarde;
}

void keur_numeriek(const Veld& v) {
    ingavewaarde = 0.0;
    if (ingavetekst[0]) {
        keur_getal();
        if (geweigerd())
            return;
        VELDGETAL();
    }
    // An untouched text keeps the value behind it, with the decimals that it doesn't show.
    bool anders = strcmp(ingavetekst, v.oud) != 0 &&
                  std::fabs(ingavewaarde - v.oudwaarde) > std::pow(0.1, SCHERM.decimalen + 1);
    zet_gewijzigd(anders);
    if (!anders)
        ingavewaarde = v.oudwaarde;
}

bool leeg(char c) {
    return c == ' ' || c == '_';
}
bool cijfer(char c) {
    return c >= '0' && c <= '9';
}

// A day or month of one digit stands behind a 0.
void vul_tientallen() {
    for (int i : {0, 3}) {
        char *tien = ingavetekst + i, *een = tien + 1;
        if (static_cast<int>(strlen(ingavetekst)) < i + 2)
            return;
        if (cijfer(*tien) && leeg(*een))
            *een = *tien, *tien = '0';
        else if (leeg(*tien) && cijfer(*een))
            *tien = '0';
    }
}

void oude_tekst(const Veld& v) {
    memcpy(ingavetekst, v.oud, sizeof v.oud);
}

void buiten_bereik(const Veld& v, const char* tekst, double min, double max) {
    auto dag = [](double x) { return static_cast<uint16_t>(std::clamp(x, 0.0, LAATSTE_DAG)); };
    const std::string van = DATUM10(dag(min));
    error(TXT(T_DATUM_TUSSEN), tekst, van.c_str(), DATUM10(dag(max)));
    oude_tekst(v);
    SCHERM.vlag |= V_GEWEIGERD;
}

bool in_bereik(double dag, double min, double max) {
    if ((min == 0.0 && max == 0.0) || min > max)
        return true;
    return dag >= min && dag <= max;
}

// +n or -n: days from the date that the field began with.
void keur_relatief(const Veld& v) {
    const std::string getypt = ingavetekst;
    const double dagen = static_cast<double>(std::strtol(getypt.c_str() + 1, nullptr, 10));
    const double dag = getypt[0] == '-' ? v.oudwaarde - dagen : v.oudwaarde + dagen;
    if (dag == 0.0 && VELDOPTIE('E')) {
        weiger(T_FOUTIEVE_INGAVE);
        return oude_tekst(v);
    }
    const bool bestaat = dag >= 0.0 && dag <= LAATSTE_DAG;
    const double min = INSTEL.minimum == 0.0 ? DATUMNR("010180") : INSTEL.minimum;
    const bool vrij = INSTEL.minimum == 0.0 && INSTEL.maximum == 0.0;
    if (!bestaat || (!vrij && !in_bereik(dag, min, INSTEL.maximum))) {
        const std::string tekst = bestaat && dag > 0 ? DATUM6(static_cast<uint16_t>(dag)) : getypt;
        return buiten_bereik(v, tekst.c_str(), vrij ? 1 : min, vrij ? LAATSTE_DAG : INSTEL.maximum);
    }
    ingavewaarde = dag;
    VELDTEKST(dag > 0 ? VELDDATUM(static_cast<uint16_t>(dag)) : "");
}

void keur_absoluut(const Veld& v) {
    const bool ongemoeid = strcmp(ingavetekst, v.oud) == 0;
    if (SCHERM.breedte >= 8)
        vul_tientallen();
    const std::string getypt = ingavetekst;
    if (SCHERM.breedte >= 8)
        VELDKAAL(ingavetekst);
    const std::string bloot = ingavetekst;
    if (bloot.empty())
        return;
    if (!DATUMGELDIG(ingavetekst)) {
        const Tekst& melding = SCHERM.breedte == 8    ? T_DATUM_8
                               : SCHERM.breedte == 10 ? T_DATUM_10
                                                      : T_DATUM_6;
        error(TXT(melding), getypt.c_str());
        oude_tekst(v);
        SCHERM.vlag |= V_GEWEIGERD;
        return;
    }
    // Two digits say less than the day number that the field began with.
    const double dag = ongemoeid ? v.oudwaarde : DATUMNR(ingavetekst);
    const bool vrij = INSTEL.minimum == 0.0 && INSTEL.maximum == 0.0;
    if (dag == 0.0 || !in_bereik(dag, INSTEL.minimum, INSTEL.maximum))
        return buiten_bereik(v, bloot.c_str(), vrij ? 1 : INSTEL.minimum,
                             vrij ? LAATSTE_DAG : INSTEL.maximum);
    ingavewaarde = dag;
}

void keur_datum(const Veld& v) {
    ingavewaarde = 0.0;
    if (VELDRELATIEF())
        keur_relatief(v);
    else
        keur_absoluut(v);
    if (!geweigerd())
        zet_gewijzigd(ingavewaarde != v.oudwaarde);
}

} // namespace

void VELDKEUR(Veld& v, int32_t key) {
    VELDTRIM();
    const bool afbreken = key == K_CANCEL || key == K_ESC;
    if (SCHERM.type == 'D') {
        keur_datum(v);
    } else if (SCHERM.numeriek) {
        if (!afbreken)
            keur_numeriek(v);
    } else {
        if (SCHERM.type == 'b')
            ingavewaarde = ingavetekst[0] == TXTLETTER(T_JA) ? 1.0 : 0.0;
        zet_gewijzigd(memcmp(ingavetekst, v.oud, static_cast<size_t>(SCHERM.breedte)) != 0);
        if (SCHERM.type == 'b' && !(SCHERM.vlag & V_GEWIJZIGD))
            ingavewaarde = v.oudwaarde;
    }
    if (geweigerd())
        return;
    const size_t vol = SCHERM.type == 'D' ? 6 : static_cast<size_t>(SCHERM.breedte);
    if (VELDOPTIE('F') && strlen(ingavetekst) < vol)
        weiger(T_VOLLEDIG_VULLEN);
    else if (VELDOPTIE('E') && ingavetekst[0] == 0)
        weiger(T_VERPLICHT);
}

} // namespace zg
