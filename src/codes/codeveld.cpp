// The code tables: what a code stands for, the message for an unknown one, the list.
#include "codes/codeveld.h"
#include "codes/teksten.h"
#include "shared/iotab.h"
#include "term/scherm.h"
#include "term/vast.h"
#include <algorithm>
#include <cstdio>

namespace zg {
namespace {

using Rijen = std::vector<Lijstblad::Rij>;

template <class... A> std::string regel(const char* fmt, A... delen) {
    char tekst[80];
    snprintf(tekst, sizeof tekst, fmt, delen...);
    return tekst;
}

std::string kop() {
    return regel("%-4.4s  %s", TXT(T_CODE), TXT(T_OMSCHRIJVING));
}

// ---- one-digit codes; `welke` is the kind of iotab_code

constexpr int INKOOP = 3, DEELSEIZOEN = 4;

bool code_lees(const Lijsttabel& tabel, const Lijstcode& code, std::string* naam) {
    tekst30 rec;
    int32_t nr = code.nummer;
    if (nr < 1 || !iotab_code('R', tabel.welke, &nr, &rec))
        return false;
    *naam = VASTTEKST(rec.tekst);
    return true;
}

void code_onbekend(const Lijsttabel&, const Lijstcode& code) {
    error("<%d> %s", code.nummer, TXT(T_ONBEKENDE_CODE));
}

Rijen codes(const Lijsttabel& tabel) {
    Rijen uit;
    tekst30 rec;
    for (int32_t nr = 0; iotab_code('N', tabel.welke, &nr, &rec);)
        uit.push_back({{nr, ""}, regel("%-4d  %-30.30s", nr, VASTTEKST(rec.tekst).c_str())});
    return uit;
}

bool code_kies(const Lijsttabel& tabel, Lijstcode* code) {
    tekst30 hoofd;
    int32_t nr = 0;
    const bool er = iotab_code('R', tabel.welke, &nr, &hoofd);
    return lijstkies(
        tabel,
        {er ? VASTTEKST(hoofd.tekst) : TXT(T_CODEVRAAG), kop(), TXT(T_CODEVRAAG), "1s[123456789],I", codes},
        code);
}

// ---- size systems

bool stelsel_lees(const Lijsttabel&, const Lijstcode& code, std::string* naam) {
    Slot<tekst20> slot{code.nummer, {}};
    if (!iotab('R', &slot, SYS_MAATSTELSEL))
        return false;
    *naam = VASTTEKST(slot.r.tekst);
    return true;
}

void stelsel_onbekend(const Lijsttabel&, const Lijstcode& code) {
    error("<%d> %s", code.nummer, TXT(T_ONBEKEND_STELSEL));
}

Rijen stelsels(const Lijsttabel&) {
    Rijen uit;
    Tabelbeeld<tekst20> beeld{SYS_MAATSTELSEL};
    for (const auto& s : beeld.alle())
        uit.push_back({{s.nr, ""}, regel("%-2d %-20.20s", s.nr, VASTTEKST(s.r.tekst).c_str())});
    return uit;
}

bool stelsel_kies(const Lijsttabel& tabel, Lijstcode* code) {
    return lijstkies(tabel,
                     {TXT(T_KIES_STELSEL), TXT(T_STELSELKOP), TXT(T_CODEVRAAG), "2s[0123456789],I", stelsels},
                     code);
}

// ---- countries, read once

Tabelbeeld<landrec> landen{SYS_LAND};

bool land_lees(const Lijsttabel&, const Lijstcode& code, std::string* naam) {
    const auto& alle = landen.alle();
    auto rij = std::find_if(alle.begin(), alle.end(),
                            [&](const Slot<landrec>& s) { return VASTGELIJK(s.r.iso3, code.tekst); });
    if (rij == alle.end())
        return false;
    *naam = VASTTEKST(rij->r.naam);
    return true;
}

void land_onbekend(const Lijsttabel&, const Lijstcode& code) {
    error("<%s> %s", code.tekst.c_str(), TXT(T_ONBEKEND_LAND));
}

Rijen land_rijen(const Lijsttabel&) {
    Rijen uit;
    for (const auto& s : landen.alle()) {
        const std::string code = VASTTEKST(s.r.iso3);
        uit.push_back({{0, code}, regel("%-3.3s  %-20.20s", code.c_str(), VASTTEKST(s.r.naam).c_str())});
    }
    return uit;
}

bool land_kies(const Lijsttabel& tabel, Lijstcode* code) {
    return lijstkies(tabel, {TXT(T_KIES_LAND), kop(), TXT(T_CODEVRAAG), "3s,IU", land_rijen}, code);
}

} // namespace

const Lijsttabel INKOOPTABEL{"1U", INKOOP, code_lees, code_onbekend, code_kies};
const Lijsttabel DEELSEIZOENTABEL{"1U", DEELSEIZOEN, code_lees, code_onbekend, code_kies};
const Lijsttabel STELSELTABEL{"2U", 0, stelsel_lees, stelsel_onbekend, stelsel_kies};
const Lijsttabel LANDTABEL{"3c", 0, land_lees, land_onbekend, land_kies};

void landen_vergeet() {
    landen.vergeet();
}

} // namespace zg
