#include "tools/veldkeur.h"
#include "shared/dagtekst.h"
#include "shared/registerrec.h"
#include "store/ix.h"
#include "term/natl.h"
#include "term/strings.h"
#include <algorithm>
#include <cstring>
#include <iterator>

namespace zg {
namespace {

using Mag = Veldmag::Soort;

constexpr int RANGES = 8;       // of advice prices
constexpr int64_t GENOEMD = 10; // records that are told of one field

// The text in front of its zeros.
std::string_view tekst(const Veld& v, const uint8_t* p) {
    const auto* t = reinterpret_cast<const char*>(p);
    return {t, strnlen(t, static_cast<size_t>(v.lengte))};
}

bool leeg(const uint8_t* p, const uint8_t* einde) {
    return std::all_of(p, einde, [](uint8_t b) { return b == 0; });
}

std::string geen_letter(const Veld& v, const uint8_t* p) {
    for (const char c : tekst(v, p)) {
        const auto b = static_cast<uint8_t>(c);
        if ((NKLASSE[b] & N_CONTROL) && !(v.mag.soort == Mag::REGELS && b == '\n'))
            return VORM("holds byte %02x, which is no letter", unsigned{b});
    }
    return "";
}

std::string achter_einde(const Veld& v, const uint8_t* p) {
    return leeg(p + tekst(v, p).size(), p + v.lengte) ? "" : "has bytes behind its end";
}

std::string getal(int64_t w, const Veldmag& mag) {
    if ((w >= mag.van && w <= mag.tot) || w == mag.ook)
        return "";
    if (mag.tot == INT32_MAX && w < mag.van)
        return std::to_string(w) + ", below " + std::to_string(mag.van);
    return std::to_string(w) + ", of " + std::to_string(mag.van) + " to " + std::to_string(mag.tot) +
           (mag.ook == mag.van ? "" : " or " + std::to_string(mag.ook));
}

std::string getallen(const Veld& v, const uint8_t* p) {
    const int breedte = v.mag.breedte ? v.mag.breedte : v.lengte;
    for (int i = 0; i + breedte <= v.lengte; i += breedte)
        if (const std::string fout =
                getal(veld_getal(p + i, breedte, v.soort == 'i' || (v.soort == 'x' && breedte == 4)), v.mag);
            !fout.empty())
            return (breedte == v.lengte ? "" : "at " + std::to_string(i / breedte) + " is ") + fout;
    return "";
}

std::string letter(const Veld& v, const uint8_t* p) {
    if (*p && strchr(v.mag.letters, *p))
        return "";
    const std::string wat = (NKLASSE[*p] & (N_GROOT | N_KLEIN | N_CIJFER)) && *p < 128
                                ? VORM("%c", *p)
                                : VORM("byte %02x", unsigned{*p});
    return wat + ", of \"" + v.mag.letters + "\"";
}

std::string datum(const Veld& v, const uint8_t* p) {
    const auto dag = static_cast<uint16_t>(veld_getal(p, 2, false));
    const bool mag = is_dag(dag) || (dag == 0 && v.mag.soort != Mag::DAG && v.mag.soort != Mag::EINDDAG) ||
                     (dag == PRIJS_TOT && v.mag.soort == Mag::EINDDAG);
    return mag ? "" : std::to_string(dag) + " is no day of the calendar";
}

std::string advies(const uint8_t* p) {
    constexpr Veldmag EINDE{Mag::GETAL, 0, 95, 0}, PRIJS{Mag::GETAL, 0, INT32_MAX, 0};
    for (int i = 0; i < RANGES; i++) {
        if (const std::string fout = getal(p[i], EINDE); !fout.empty())
            return "range " + std::to_string(i + 1) + ": size " + fout;
        if (const std::string fout = getal(veld_getal(p + RANGES + 4 * i, 4, true), PRIJS); !fout.empty())
            return "range " + std::to_string(i + 1) + ": price " + fout;
    }
    return "";
}

Mag naar_type(const Veld& v) {
    return v.mag.soort != Mag::NAAR_TYPE ? v.mag.soort
           : v.soort == 'c'              ? Mag::TEKST
           : v.soort == 'd'              ? Mag::DATUM
                                         : Mag::ALLES;
}

std::string fout_in(const Veld& v, const uint8_t* p) {
    switch (naar_type(v)) {
    case Mag::GEVULD:
        if (leeg(p, p + v.lengte))
            return "is empty";
        if (v.soort != 'c')
            return "";
        [[fallthrough]];
    case Mag::TEKST: {
        const std::string fout = geen_letter(v, p);
        return fout.empty() ? achter_einde(v, p) : fout;
    }
    case Mag::VOL:
        if (*p == 0)
            return "is empty";
        [[fallthrough]];
    case Mag::OPVULLING:
        return achter_einde(v, p);
    case Mag::REGELS:
        return geen_letter(v, p);
    case Mag::CIJFERS:
        return tekst(v, p).find_first_not_of("0123456789 ") == std::string_view::npos ? achter_einde(v, p)
                                                                                      : "is no number";
    case Mag::EEN_VAN:
        return letter(v, p);
    case Mag::DATUM:
    case Mag::DAG:
    case Mag::EINDDAG:
        return datum(v, p);
    case Mag::GETAL:
        return getallen(v, p);
    case Mag::EENHEID:
        return veld_getal(p - 4, 4, false) != 0 && veld_getal(p, v.lengte, false) == 0 ? "is 0 for a rate"
                                                                                       : "";
    case Mag::MAATBITS:
        return *p & 1 ? "has size 0, which there isn't" : "";
    case Mag::ADVIES:
        return advies(p);
    case Mag::NAAR_TYPE:
    case Mag::ALLES:
        break;
    }
    return "";
}

} // namespace

std::string veld_kwaal(const Veld& veld, const uint8_t* rec) {
    const std::string fout = fout_in(veld, rec + veld.begin);
    return fout.empty() ? fout : veld.naam + " " + fout;
}

Veldkeur::Veldkeur(const std::string& tabel, int lengte) : wie_(indeling_wie(tabel)) {
    IXHEADER kop{};
    kop.reclen = static_cast<int16_t>(lengte);
    velden_ = indeling(tabel, kop);
    std::erase_if(velden_, [](const Veld& v) { return v.naam[0] == '@'; });
    std::ranges::copy_if(velden_, std::back_inserter(met_regel_),
                         [](const Veld& v) { return naar_type(v) != Mag::ALLES; });
}

void Veldkeur::zie(const uint8_t* rec, const Naam& wie) {
    for (const Veld& v : met_regel_)
        if (const std::string fout = fout_in(v, rec + v.begin); !fout.empty())
            kwaal(
                v.naam, v.naam + " " + fout, wie ? wie : [&] { return naam(rec); });
}

void Veldkeur::kwaal(const std::string& veld, const std::string& wat, const Naam& wie) {
    if (++per_veld_[veld] <= GENOEMD)
        kwalen_.push_back(wie() + ": " + wat);
}

std::string Veldkeur::naam(const uint8_t* rec) const {
    std::string uit;
    for (size_t i = 0; i < wie_.size(); i++) {
        if (wie_[i] != '{') {
            uit += wie_[i];
            continue;
        }
        const Veld& sleutel = velden_.at(static_cast<size_t>(wie_[i + 1] - '0'));
        uit +=
            sleutel.soort == 'c' ? std::string(tekst(sleutel, rec + sleutel.begin)) : veld_uit(sleutel, rec);
        i += 2;
    }
    return uit;
}

void Veldkeur::meld(std::vector<std::string>* naar) const {
    naar->insert(naar->end(), kwalen_.begin(), kwalen_.end());
    for (const auto& [veld, n] : per_veld_)
        if (n > GENOEMD)
            naar->push_back(veld + ": " + std::to_string(n - GENOEMD) + " more records with a wrong one");
}

} // namespace zg
