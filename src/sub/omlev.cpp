#include "sub/omlev.h"
#include "shared/leesstam.h"
#include "sub/stamlijst.h"
#include "sub/teksten.h"
#include "term/scherm.h"
#include "term/vast.h"
#include <cstdio>
#include <cstdlib>

namespace zg {

ICB* dtlev;

namespace {

// ---- the list: by number or name

void zet_nummer(void* rec, const char* getypt) {
    static_cast<levrec*>(rec)->nummer = static_cast<uint16_t>(atoi(getypt));
}

void zet_naam(void* rec, const char* getypt) {
    VASTIN(static_cast<levrec*>(rec)->naam, getypt);
}

std::string regel(const void* rec) {
    const levrec lev = stam_beeld<levrec>(rec);
    char tekst[64];
    snprintf(tekst, sizeof tekst, "%-4u - %-20.20s, %-25.25s", lev.nummer, VASTTEKST(lev.naam).c_str(),
             VASTTEKST(lev.plaats).c_str());
    return tekst;
}

int32_t code(const void* rec) {
    return stam_beeld<levrec>(rec).nummer;
}

void zet_code(void* rec, int32_t nummer) {
    static_cast<levrec*>(rec)->nummer = static_cast<uint16_t>(nummer);
}

bool past(const void* rec, int welke) {
    return (stam_beeld<levrec>(rec).soort & welke) != 0;
}

const Stamsleutel SLEUTELS[] = {
    {1, &T_NUMMER, "4s[0123456789],I", zet_nummer},
    {2, &T_NAAM, "10s,UI", zet_naam},
};
void record(int32_t nummer, int welke) {
    relatie_scherm(static_cast<uint16_t>(nummer), static_cast<Relatiesoort>(welke), Relatiemodus::wijzigen);
}

const Stamlijst LIJST_RELATIES{&dtlev, &T_KOP_RELATIE, 58, SLEUTELS, regel, code, zet_code, record, past};

// ---- the field

bool lees(const Lijsttabel& tabel, const Lijstcode& code, std::string* naam) {
    levrec lev{};
    if (!relatie_lees(static_cast<uint16_t>(code.nummer), &lev) || !(lev.soort & tabel.welke))
        return false;
    *naam = VASTTEKST(lev.naam);
    return true;
}

void onbekend(const Lijsttabel& tabel, const Lijstcode& code) {
    levrec lev{};
    const bool andere = relatie_lees(static_cast<uint16_t>(code.nummer), &lev);
    error("<%d> %s %s", code.nummer, TXT(andere ? T_RELATIE_IS_GEEN : T_ONBEKENDE),
          relatie_woord(static_cast<Relatiesoort>(tabel.welke)));
}

bool kies(const Lijsttabel& tabel, Lijstcode* code) {
    return stamlijst(LIJST_RELATIES, relatie_woord(static_cast<Relatiesoort>(tabel.welke)), tabel.welke,
                     &code->nummer);
}

std::string vraag(const Lijsttabel& tabel, const Lijstcode& code) {
    return relatie_vraag(static_cast<uint16_t>(code.nummer), static_cast<Relatiesoort>(tabel.welke));
}

bool voeg_toe(const Lijsttabel& tabel, const Lijstcode& code) {
    return relatie_voeg_toe(static_cast<uint16_t>(code.nummer), static_cast<Relatiesoort>(tabel.welke));
}

} // namespace

const char* relatie_woord(Relatiesoort soort) {
    return TXT(soort == REL_LEVERANCIER ? T_LEVERANCIER
               : soort == REL_AGENT     ? T_AGENT
               : soort == REL_FABRIKANT ? T_FABRIKANT
                                        : T_RELATIE);
}

const Lijsttabel LEVERANCIERTABEL{"4u", REL_LEVERANCIER, lees, onbekend, kies, vraag, voeg_toe};
const Lijsttabel AGENTTABEL{"4u", REL_AGENT, lees, onbekend, kies, vraag, voeg_toe};
const Lijsttabel FABRIKANTTABEL{"4u", REL_FABRIKANT, lees, onbekend, kies, vraag, voeg_toe};

bool relatie_lees(uint16_t nummer, levrec* beeld) {
    if (leeslev(dtlev, beeld, nummer))
        return true;
    *beeld = {};
    return false;
}

} // namespace zg
