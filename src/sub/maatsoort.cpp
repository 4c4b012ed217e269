// Size types: the field with its list, and that of size systems. The screen of one type: sub/maatscherm.cpp.
#include "sub/maatsoort.h"
#include "codes/codeveld.h"
#include "shared/iomaat.h"
#include "shared/iotab.h"
#include "shared/teksten.h"
#include "sub/teksten.h"
#include "term/scherm.h"
#include "term/vast.h"
#include <cstdio>

namespace zg {
namespace {

constexpr int SCHERMRIJ = 4, SCHERMKOLOM = 1; // of the type's screen, opened from the list

bool lees(const Lijsttabel&, const Lijstcode& code, std::string* naam) {
    Slot<tekst20> slot{code.nummer, {}};
    if (!iotab('R', &slot, SYS_MAATSOORT))
        return false;
    *naam = VASTTEKST(slot.r.tekst);
    return true;
}

void onbekend(const Lijsttabel&, const Lijstcode& code) {
    error("<%d> %s", code.nummer, TXT(T_MAAT_ONBEKEND));
}

std::vector<Lijstblad::Rij> soorten(const Lijsttabel&) {
    std::vector<Lijstblad::Rij> uit;
    Tabelbeeld<tekst20> beeld{SYS_MAATSOORT};
    for (const auto& s : beeld.alle()) {
        char regel[32];
        snprintf(regel, sizeof regel, "%2d   %-.20s", s.nr, VASTTEKST(s.r.tekst).c_str());
        uit.push_back({{s.nr, ""}, regel});
    }
    return uit;
}

// `welke` of a row is the size system of that screen, 0 for the firm's.
void record(const Lijsttabel& tabel, const Lijstcode& code) {
    maatsoort_onderhoud(SCHERMRIJ, SCHERMKOLOM, mtstelsel(static_cast<uint8_t>(tabel.welke)),
                        static_cast<uint8_t>(code.nummer));
}

bool kies(const Lijsttabel& tabel, Lijstcode* code) {
    return lijstkies(
        tabel,
        {TXT(T_DDTITEL_32), TXT(T_MAAT_LIJSTKOP), TXT(T_MAAT_NUMMER), "2s[0123456789],I", soorten, record},
        code);
}

bool altijd(const Lijsttabel&, const Lijstcode&, std::string*) {
    return true;
}

} // namespace

bool (*STELSELHAAK)(uint16_t merk, uint16_t leverancier);

bool stelsel_veld(int rij, int kolom, const char* opties, uint16_t merk, uint16_t leverancier,
                  uint8_t* stelsel) {
    uint8_t nieuw = *stelsel;
    if (lijstveld(STELSELTABEL, rij, kolom, opties, &nieuw) != Lijstuit::anders)
        return false;
    if (STELSELHAAK && STELSELHAAK(merk, leverancier)) {
        error("%s", TXT(T_MAAT_STELSEL_VAST));
        return false;
    }
    *stelsel = nieuw;
    return true;
}

const Lijsttabel MAATSOORTTABEL{"2U", 0, lees, onbekend, kies};

Lijstuit maatsoort_veld(int rij, int kolom, const char* opties, uint8_t* soort, bool moet_bestaan,
                        uint8_t stelsel) {
    Lijsttabel tabel = MAATSOORTTABEL;
    if (!moet_bestaan)
        tabel.lees = altijd;
    tabel.welke = stelsel;
    return lijstveld(tabel, rij, kolom, opties, soort);
}

} // namespace zg
