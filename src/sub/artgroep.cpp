// Article groups: their list and the table of the field. The screen on one group is in sub/artscherm.cpp.
#include "sub/artgroep.h"
#include "shared/leesstam.h"
#include "sub/stamlijst.h"
#include "sub/teksten.h"
#include "term/scherm.h"
#include "term/vast.h"
#include <cstdio>
#include <cstdlib>

namespace zg {
namespace {

void zet_nummer(void* rec, const char* getypt) {
    static_cast<artrec*>(rec)->artikelgroep = atoi(getypt);
}

void zet_naam(void* rec, const char* getypt) {
    VASTIN(static_cast<artrec*>(rec)->omschrijving, getypt);
}

std::string regel(const void* rec) {
    const artrec art = stam_beeld<artrec>(rec);
    char tekst[48];
    snprintf(tekst, sizeof tekst, "%5d %-20.20s", art.artikelgroep, VASTTEKST(art.omschrijving).c_str());
    return tekst;
}

int32_t code(const void* rec) {
    return stam_beeld<artrec>(rec).artikelgroep;
}

void zet_code(void* rec, int32_t nummer) {
    static_cast<artrec*>(rec)->artikelgroep = nummer;
}

const Stamsleutel SLEUTELS[] = {
    {1, &T_NUMMER, "5s[0123456789],I", zet_nummer},
    {2, &T_NAAM, "10s,UI", zet_naam},
};
void record(int32_t artikelgroep, int) {
    artgroep_scherm(artikelgroep);
}

const Stamlijst LIJST_GROEPEN{&dtart, &T_AG_KOP, 50, SLEUTELS, regel, code, zet_code, record};

bool lees(const Lijsttabel&, const Lijstcode& code, std::string* naam) {
    artrec art{};
    if (code.nummer < 1 || !leesart(dtart, &art, code.nummer))
        return false;
    *naam = VASTTEKST(art.omschrijving);
    return true;
}

void onbekend(const Lijsttabel&, const Lijstcode& code) {
    error("<%d> %s", code.nummer, TXT(T_AG_ONBEKEND));
}

bool kies(const Lijsttabel&, Lijstcode* code) {
    return stamlijst(LIJST_GROEPEN, TXT(T_AG_LIJST), 0, &code->nummer);
}

std::string vraag(const Lijsttabel&, const Lijstcode& code) {
    return code.nummer > 0 ? artgroep_vraag(code.nummer) : "";
}

bool voeg_toe(const Lijsttabel&, const Lijstcode& code) {
    return artgroep_onderhoud(code.nummer, false) == Recorduit::geschreven;
}

} // namespace

const Lijsttabel ARTGROEPTABEL{"5l", 0, lees, onbekend, kies, vraag, voeg_toe};

} // namespace zg
