// Module leesstam: the master record behind a code.
#include "shared/leesstam.h"
#include "shared/files.h"
#include "shared/iomaat.h"
#include "shared/iotab.h"
#include "shared/report.h"
#include "term/strings.h"
#include "term/vast.h"
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <memory>
#include <string>

namespace zg {

ICB *dtart, *dtmerk, *dtomzgrp, *dtvvtab, *dtdoelgr, *dtlevext;
namespace {

doelgrrec laatste_doelgroep;

// IXREAD by one of the keys through a buffer that holds what any header may say; the key that was current is
// so again.
template <class R> int lees(ICB* icb, R* rec, int sleutel) {
    uint8_t buffer[IXRECMAX + 1] = {};
    memcpy(buffer, rec, sizeof *rec);
    int oude = IXSLEUTEL(icb);
    if (oude != sleutel)
        IXSWITCH(icb, sleutel);
    int gelezen = IXREAD(icb, buffer);
    if (oude != sleutel)
        IXSWITCH(icb, oude);
    if (gelezen)
        stam_uit(buffer, icb->h.reclen, rec);
    return gelezen;
}

// A record by its number, which is its first field and may stand at any address.
template <class R, class N> int lees_nummer(ICB* icb, R* rec, N nummer, int fout, int sleutel = 1) {
    if (!icb)
        INTERNAL("leesstam", fout);
    N staat;
    memcpy(&staat, rec, sizeof staat);
    if (nummer != 0 && staat == nummer)
        return 1;
    *rec = R{};
    memcpy(static_cast<void*>(rec), &nummer, sizeof nummer);
    int gelezen = lees(icb, rec, sleutel);
    if (!gelezen)
        memset(static_cast<void*>(rec), 0, sizeof nummer);
    return gelezen;
}

template <class N> int lees_tabel(Slot<tekst20>* rec, N code, const Systabel& tabel) {
    if (code != 0 && rec->nr == code)
        return 1;
    rec->nr = code;
    int gelezen = iotab('R', rec, tabel);
    if (!gelezen)
        rec->nr = 0;
    return gelezen;
}

int lees_ean(ICB* icb, eanrec* rec, const std::string& code) {
    *rec = eanrec{};
    VASTIN(rec->code, code);
    return lees(icb, rec, 1);
}

// The same question to a file that lacks the second key.
int loop_eanmaat(ICB* icb, eanrec* rec) {
    uint8_t buffer[IXRECMAX + 1] = {};
    eanrec deze;
    int antwoord;
    for (int32_t nr = 0; (antwoord = IXGET(icb, buffer, nr)) >= 0; nr++) {
        stam_uit(buffer, icb->h.reclen, &deze);
        if (antwoord && deze.soort == rec->soort && deze.artikelgroep == rec->artikelgroep &&
            deze.kleur == rec->kleur && deze.volgnummer == rec->volgnummer && deze.maat == rec->maat) {
            *rec = deze;
            return 1;
        }
    }
    return 0;
}

} // namespace

int leesart(ICB* icb, artrec* rec, int32_t artikelgroep) {
    return lees_nummer(icb, rec, artikelgroep, 1);
}

int leeskleinart(ICB* icb, kleinartrec* rec, uint16_t nummer) {
    return lees_nummer(icb, rec, nummer, 2, icb ? IXSLEUTEL(icb) : 1);
}

int leesmerk(ICB* icb, merkrec* rec, uint16_t merk) {
    return lees_nummer(icb, rec, merk, 3);
}

int leeslev(ICB* icb, levrec* rec, uint16_t nummer) {
    return lees_nummer(icb, rec, nummer, 4);
}

int leesklant(ICB* icb, klantrec* rec, int32_t nummer) {
    return lees_nummer(icb, rec, nummer, 5);
}

int leesdoelgr(ICB* icb, doelgrrec* rec, char code) {
    int gelezen = lees_nummer(icb, &laatste_doelgroep, code, 8);
    *rec = gelezen ? laatste_doelgroep : doelgrrec{};
    return gelezen;
}

int leescode(Slot<tekst20>* rec, uint8_t code) {
    if (code != 0 && rec->nr == code)
        return 1;
    int32_t nr = code;
    int gelezen = iotab_setcode(&nr, &rec->r);
    rec->nr = gelezen ? nr : 0;
    return gelezen;
}

int leeskleur(Slot<tekst20>* rec, uint16_t kleur) {
    return lees_tabel(rec, kleur, SYS_KLEUR);
}

int leesmaatsoort(Slot<tekst20>* rec, uint8_t maatsoort) {
    return lees_tabel(rec, maatsoort, SYS_MAATSOORT);
}

void leesmaat(mthandle** maten, uint8_t stelsel, uint8_t soort, const uint8_t* masker) {
    if (!*maten || (*maten)->stelsel != stelsel || (*maten)->soort != soort) {
        if (*maten)
            mtclose(*maten);
        *maten = mtopen(stelsel, soort, 0);
    }
    if (masker)
        mtselect(*maten, masker);
}

void leesmaatx(mthandle** maten, uint8_t stelsel, uint8_t soort, const uint8_t* masker) {
    leesmaat(maten, stelsel, soort, masker);
    (*maten)->mtom = true;
}

int leesean(ICB* icb, eanrec* rec, const char* tekst) {
    std::string code(tekst, strnlen(tekst, sizeof rec->code));
    code.erase(0, code.find_first_not_of(' '));
    code.erase(code.find_last_not_of(' ') + 1);
    if (!icb)
        INTERNAL("leesstam", 6);
    if (lees_ean(icb, rec, code))
        return 1;
    eanrec korter;
    if (code.size() == sizeof rec->code && code[0] == '0' && lees_ean(icb, &korter, code.substr(1))) {
        *rec = korter;
        return 1;
    }
    return 0;
}

int leeseanmaat(ICB* icb, eanrec* rec, const seriesleutel& serie, uint8_t maat) {
    if (!icb)
        INTERNAL("leesstam", 7);
    *rec = eanrec{};
    rec->soort = 'M';
    rec->artikelgroep = serie.artikelgroep;
    rec->kleur = serie.kleur;
    rec->volgnummer = serie.volgnummer;
    rec->maat = maat;
    return icb->h.nkeys >= 2 ? lees(icb, rec, 2) : loop_eanmaat(icb, rec);
}

Stampaar::Stampaar(const char* naam, int modus)
    : icb(stam_aanwezig(naam) && IOSIZE((std::string(naam) + ".TXT").c_str()) > 0 ? IXOPEN(naam, modus)
                                                                                  : nullptr) {}

Stampaar::~Stampaar() {
    if (icb)
        IXCLOSE(icb);
}

bool stam_aanwezig(const char* naam) {
    std::string pad = naam;
    return IOSIZE((pad + ".INX").c_str()) >= IXBLOK && IOSIZE((pad + ".TXT").c_str()) >= 0;
}

void stam_open(const char* wie, std::span<const Stambestand> bestanden, bool lezen) {
    constexpr int LEZEN = 0, SHARED = 2;
    for (const Stambestand& b : bestanden) {
        const bool er = stam_aanwezig(b.naam);
        if (!er && !b.mag_ontbreken) {
            errno = ENOENT;
            OPENFAIL(wie, b.naam);
        }
        *b.icb = er ? IXOPEN(b.naam, lezen ? LEZEN : SHARED) : nullptr;
    }
}

void stam_sluit(std::span<const Stambestand> bestanden) {
    for (size_t i = bestanden.size(); i-- > 0;) {
        if (*bestanden[i].icb)
            IXCLOSE(*bestanden[i].icb);
        *bestanden[i].icb = nullptr;
    }
}

int opart(artrec* rec, int32_t artikelgroep) {
    Stampaar paar("DTART", 0);
    return paar.icb ? leesart(paar.icb, rec, artikelgroep) : 0;
}

int opmerk(merkrec* rec, uint16_t merk) {
    Stampaar paar("DTMERK", 0);
    return paar.icb ? leesmerk(paar.icb, rec, merk) : 0;
}

int oplev(levrec* rec, uint16_t nummer) {
    Stampaar paar("DTLEV", 0);
    return paar.icb ? leeslev(paar.icb, rec, nummer) : 0;
}

int opklant(klantrec* rec, int32_t nummer) {
    Stampaar paar("DTKLT", 0);
    return paar.icb ? leesklant(paar.icb, rec, nummer) : 0;
}

int opean(eanrec* rec, const char* tekst) {
    Stampaar paar("DTEAN", 0);
    return paar.icb ? leesean(paar.icb, rec, tekst) : 0;
}

int opeanmaat(eanrec* rec, const seriesleutel& serie, uint8_t maat) {
    Stampaar paar("DTEAN", 0);
    return paar.icb ? leeseanmaat(paar.icb, rec, serie, maat) : 0;
}

namespace {
std::vector<void (*)()> houders;
}

void stam_houder(void (*vergeet)()) {
    if (std::find(houders.begin(), houders.end(), vergeet) == houders.end())
        houders.push_back(vergeet);
}

void stam_gewijzigd() {
    laatste_doelgroep = {};
    for (void (*vergeet)() : houders)
        vergeet();
}

} // namespace zg
