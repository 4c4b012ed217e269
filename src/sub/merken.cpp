// Brands: their list, the field by number or search name, the search name that is proposed. The screen on one brand is
// in sub/merkscherm.cpp.
#include "sub/merken.h"
#include "shared/leesstam.h"
#include "sub/stamlijst.h"
#include "sub/teksten.h"
#include "term/natl.h"
#include "term/scherm.h"
#include "term/vast.h"
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace zg {
namespace {

constexpr int HOOGSTE = 9999, S_ZOEKNAAM = 2;

// ---- the list: by number or search name

void zet_nummer(void* rec, const char* getypt) {
    static_cast<merkrec*>(rec)->merk = static_cast<uint16_t>(atoi(getypt));
}

void zet_zoeknaam(void* rec, const char* getypt) {
    VASTIN(static_cast<merkrec*>(rec)->zoeknaam, getypt);
}

std::string regel(const void* rec) {
    const merkrec merk = stam_beeld<merkrec>(rec);
    char tekst[48];
    snprintf(tekst, sizeof tekst, "%4u  %-4.4s  %-20.20s", merk.merk, VASTTEKST(merk.zoeknaam).c_str(),
             VASTTEKST(merk.naam).c_str());
    return tekst;
}

int32_t code(const void* rec) {
    return stam_beeld<merkrec>(rec).merk;
}

void zet_code(void* rec, int32_t nummer) {
    static_cast<merkrec*>(rec)->merk = static_cast<uint16_t>(nummer);
}

const Stamsleutel SLEUTELS[] = {
    {1, &T_NUMMER, "4s[0123456789],I", zet_nummer},
    {S_ZOEKNAAM, &T_MK_ZOEKNAAM, "4s,UI", zet_zoeknaam},
};
void record(int32_t merk, int) {
    merk_scherm(static_cast<uint16_t>(merk));
}

const Stamlijst LIJST_MERKEN{&dtmerk, &T_MK_KOP, 50, SLEUTELS, regel, code, zet_code, record};

// ---- the field: a text of four

bool cijfers(const std::string& tekst) {
    return tekst.find_first_not_of("0123456789") == std::string::npos;
}

// Brands whose search name begins so, two of them at most; the first one's number. `heel`: is it.
int met_zoeknaam(const std::string& begin, bool heel, uint16_t* merk) {
    const int oude = IXSLEUTEL(dtmerk);
    const bool sleutel = dtmerk->h.nkeys >= S_ZOEKNAAM; // else all of them are looked at
    uint8_t buffer[IXRECMAX] = {};
    char laatste[sizeof merkrec::zoeknaam]; // nothing that begins so sorts behind it
    memset(laatste, 0xFF, sizeof laatste);
    memcpy(laatste, begin.data(), std::min(begin.size(), sizeof laatste));
    int aantal = 0;
    IXSWITCH(dtmerk, sleutel ? S_ZOEKNAAM : 1);
    if (sleutel)
        zet_zoeknaam(buffer, begin.c_str());
    int rest = dtmerk->h.nrecs + 1;
    for (int er = IXFIRSTR(dtmerk, buffer, 0); er == 1 && aantal < 2 && rest > 0; rest--) {
        const merkrec rec = stam_beeld<merkrec>(buffer);
        if (sleutel && IXCOLLATE(rec.zoeknaam, laatste, sizeof laatste) > 0)
            break;
        const std::string naam = GROOTKOPIE(VASTTEKST(rec.zoeknaam));
        if ((heel ? naam == begin : naam.compare(0, begin.size(), begin) == 0) && aantal++ == 0)
            *merk = rec.merk;
        er = IXNEXT(dtmerk, buffer);
    }
    IXSWITCH(dtmerk, oude);
    return aantal;
}

// The brand that a text stands for; 0 for none, *aantal how many begin so.
uint16_t zoek(const std::string& tekst, int* aantal) {
    uint16_t nummer = 0;
    merkrec rec{};
    *aantal = 0;
    if (cijfers(tekst)) {
        nummer = static_cast<uint16_t>(atoi(tekst.c_str()));
        *aantal = nummer != 0 && leesmerk(dtmerk, &rec, nummer);
    } else {
        *aantal = met_zoeknaam(tekst, false, &nummer);
    }
    return *aantal == 1 ? nummer : 0;
}

bool lees(const Lijsttabel&, const Lijstcode& code, std::string* naam) {
    int aantal;
    merkrec rec{};
    const uint16_t nummer = zoek(code.tekst, &aantal);
    if (nummer == 0 || !leesmerk(dtmerk, &rec, nummer))
        return false;
    *naam = VASTTEKST(rec.naam);
    return true;
}

void onbekend(const Lijsttabel&, const Lijstcode& code) {
    int aantal;
    zoek(code.tekst, &aantal);
    error("<%s> %s", code.tekst.c_str(), TXT(aantal > 1 ? T_MK_MEERDERE : T_MK_ONBEKEND));
}

bool kies(const Lijsttabel&, Lijstcode* code) {
    int32_t nummer = cijfers(code->tekst) ? atoi(code->tekst.c_str()) : 0;
    if (!stamlijst(LIJST_MERKEN, TXT(T_MK_LIJST), 0, &nummer))
        return false;
    code->tekst = std::to_string(nummer);
    return true;
}

// A number may be added, a search name not.
std::string vraag(const Lijsttabel&, const Lijstcode& code) {
    const int nummer = cijfers(code.tekst) ? atoi(code.tekst.c_str()) : 0;
    return nummer > 0 ? merk_vraag(static_cast<uint16_t>(nummer)) : "";
}

bool voeg_toe(const Lijsttabel&, const Lijstcode& code) {
    return merk_onderhoud(static_cast<uint16_t>(atoi(code.tekst.c_str())), false) == Recorduit::geschreven;
}

const Lijsttabel MERKTABEL{"4c", 0, lees, onbekend, kies, vraag, voeg_toe};

} // namespace

Lijstuit merk_veld(int rij, int kolom, const char* opties, uint16_t* merk) {
    char tekst[5] = "";
    if (*merk != 0 && *merk <= HOOGSTE)
        snprintf(tekst, sizeof tekst, "%u", *merk % 10000u);
    const std::string formaat = std::string("U") + opties;
    if (lijstveld(MERKTABEL, rij, kolom, formaat.c_str(), tekst, 4) == Lijstuit::weg)
        return Lijstuit::weg;
    int aantal = 0;
    const uint16_t nummer = tekst[0] ? zoek(std::string(VASTTRIM(tekst)), &aantal) : uint16_t{0};
    const bool anders = nummer != *merk;
    *merk = nummer;
    SCRPUT(A_WAARDE, rij, kolom, "%-4.0u", nummer);
    return anders ? Lijstuit::anders : Lijstuit::zelfde;
}

uint16_t merk_van_tekst(const std::string& tekst, int* aantal) {
    return zoek(GROOTKOPIE(std::string(VASTTRIM(tekst))), aantal);
}

uint16_t merk_met_zoeknaam(const char (&zoeknaam)[4]) {
    uint16_t merk = 0;
    met_zoeknaam(GROOTKOPIE(VASTTEKST(zoeknaam)), true, &merk);
    return merk;
}

std::string merk_zoeknaam(const char* naam) {
    std::string uit = GROOTKOPIE(std::string(VASTTRIM({naam, strnlen(naam, sizeof merkrec::naam)})));
    constexpr size_t BREED = sizeof merkrec::zoeknaam;
    for (size_t i = 1; uit.size() > BREED && i < BREED;) {
        if ((NKLASSE[static_cast<uint8_t>(uit[i])] & N_LEESTEKEN) || strchr("AEIOUY ", uit[i]))
            uit.erase(i, 1);
        else
            i++;
    }
    return uit.substr(0, BREED);
}

} // namespace zg
