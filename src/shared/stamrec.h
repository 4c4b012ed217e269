// Records of the master tables (pairs of the record store), one packed struct each; docs/formats.md has the
// offsets. A table is opened by its own header, so its records may be longer or shorter than these: read
// through shared/leesstam.h or stam_uit, which cut and fill up with zeros.
#pragma once
#include "store/ix.h"
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace zg {

inline constexpr int GEEN_MAGAZIJN = 255;    // branch number for "none"
inline constexpr int LOCATIE_MAGAZIJN = 251; // receiving location: the warehouse

struct [[gnu::packed]] artrec { // DTART, key 1 artikelgroep
    int32_t artikelgroep;
    uint8_t prijsklasse, kenmerksoort; // 0 for none
    char omschrijving[20];
    uint8_t etiketsoort, maatsoort; // for new series, 0 for none
    uint8_t magazijn;               // branch number, 255 for none
    char verdeelsoort;              // 'A' or 'P'
    uint16_t omzetgroep;
    uint8_t minimum, btwcode, magazijnpct;
    uint8_t vlaggen; // 1 no sale in the warehouse branch, 2 refill per sale, 4 adapt by itself
    int32_t branchecode;
    uint8_t perfiliaal[250]; // by branch index
    uint8_t regtype;         // 1 per maat, 0 per etiket
    char vrij291[13];
};
enum Artvlag : uint8_t { ART_GEEN_VERKOOP = 1, ART_AANVULLEN = 2, ART_AANPASSEN = 4 };

struct [[gnu::packed]] merkrec { // DTMERK, key 1 merk, 2 zoeknaam, 3 naam
    uint16_t merk;
    char naam[20], zoeknaam[4];
    uint16_t fabrikant, agent, leverancier;
    int16_t calcfactor;      // without VAT, thousandths
    char doelgroep;          // NUL or blank for none
    uint8_t maatstelsel;     // 0 for the firm's default
    uint8_t uitgesloten[32]; // bit by branch index
    char vrij68[8];
};

struct [[gnu::packed]] levrec { // DTLEV, key 1 nummer, 2 naam, 3 adrescode
    uint16_t nummer;
    char naam[20], adres[30], postcode[7], plaats[25], land[3];
    char telefoon[20], fax[20], mobiel[20];
    char opmerking[2][24];
    char valuta[3];      // empty for the home currency
    uint8_t maatstelsel; // 0 for the firm's default
    uint32_t koers;      // fixed rate times 10000, 0 for the rate of the day
    uint16_t koerseenheid;
    uint8_t soort; // 1 supplier, 2 agent, 4 manufacturer
    uint8_t edi_soort;
    char adrescode[13];
    char goed_adres[30], goed_postcode[7], goed_plaats[25], goed_land[3], goed_vervoerder[15];
    char btwnummer[12], debiteurnr[10], crediteurnr[6];
    uint32_t toeslag; // times 10000, 0 counts as 10000
};
enum Relatiesoort : uint8_t { REL_LEVERANCIER = 1, REL_AGENT = 2, REL_FABRIKANT = 4 };

struct [[gnu::packed]] levextrec { // DTLEVEXT
    uint16_t nummer;
    char email[80], website[80];
    char vrij162[2];
};
struct [[gnu::packed]] omzgrprec { // DTOMZGRP
    uint16_t nummer;
    char naam[20];
    uint8_t btwcode;
    char vrij23;
};
struct [[gnu::packed]] doelgrrec { // DTDOELGR
    char code;
    char vrij1;
    char naam[20];
    char vrij22[2];
};
struct [[gnu::packed]] vvrec { // DTVVTAB, key 1 maatsoort, nummer, volgnummer
    uint8_t maatsoort;
    char vrij1;
    uint16_t nummer, volgnummer; // 1 to 99; the records of one number from 1
    char vrij6[2];
    uint8_t filialen[32]; // branches with this row, bit by branch index
    int32_t aantal[96];   // by size index; 0 is the sum
};
struct [[gnu::packed]] koersrec { // DTKOERS, key 1 code and date
    char code[3];
    char vrij3;
    int32_t koers;    // times 10000
    uint16_t eenheid; // foreign units that it is for
    uint16_t datum;   // holds from this date until the next record
};
struct [[gnu::packed]] seriesleutel { // head of every record about a series
    int32_t artikelgroep;
    uint16_t kleur, volgnummer;
};
struct [[gnu::packed]] eanrec { // DTEAN, key 1 code, 2 kind, series and size
    char code[13];
    char soort; // 'M' of a series and size, 'A' of an article
    uint16_t kleur;
    int32_t artikelgroep;
    uint16_t volgnummer;
    uint8_t maat, bron;
    uint16_t datum;
    char vrij26[2];
};
struct [[gnu::packed]] kleinartrec { // a 60-byte table of small articles
    uint16_t nummer;
    char vrij2[58];
};
struct [[gnu::packed]] klantrec { // DTKLT
    int32_t nummer;
    char vrij4[308];
};

static_assert(sizeof(artrec) == 304 && offsetof(artrec, magazijn) == 28 && offsetof(artrec, btwcode) == 33 &&
              offsetof(artrec, branchecode) == 36 && offsetof(artrec, perfiliaal) == 40 &&
              offsetof(artrec, regtype) == 290);
static_assert(sizeof(merkrec) == 76 && offsetof(merkrec, zoeknaam) == 22 &&
              offsetof(merkrec, calcfactor) == 32 && offsetof(merkrec, uitgesloten) == 36);
static_assert(sizeof(levrec) == 332 && offsetof(levrec, land) == 84 && offsetof(levrec, opmerking) == 147 &&
              offsetof(levrec, valuta) == 195 && offsetof(levrec, koers) == 199 &&
              offsetof(levrec, soort) == 205 && offsetof(levrec, adrescode) == 207 &&
              offsetof(levrec, goed_adres) == 220 && offsetof(levrec, btwnummer) == 300 &&
              offsetof(levrec, toeslag) == 328);
static_assert(sizeof(levextrec) == 164 && offsetof(levextrec, website) == 82 && sizeof(omzgrprec) == 24 &&
              offsetof(omzgrprec, btwcode) == 22 && sizeof(doelgrrec) == 24 &&
              offsetof(doelgrrec, naam) == 2);
static_assert(sizeof(vvrec) == 424 && offsetof(vvrec, nummer) == 2 && offsetof(vvrec, volgnummer) == 4 &&
              offsetof(vvrec, filialen) == 8 && offsetof(vvrec, aantal) == 40);
static_assert(sizeof(eanrec) == 28 && offsetof(eanrec, artikelgroep) == 16 && offsetof(eanrec, maat) == 22 &&
              sizeof(seriesleutel) == 8);
static_assert(sizeof(koersrec) == 12 && offsetof(koersrec, datum) == 10);
static_assert(sizeof(kleinartrec) == 60 && sizeof(klantrec) == 312);

// A record as the store gives it (512 bytes, `lengte` of them real) into its struct.
template <class R> void stam_uit(const void* van, int lengte, R* naar) {
    size_t n = lengte < 0                                ? 0
               : static_cast<size_t>(lengte) < sizeof(R) ? static_cast<size_t>(lengte)
                                                         : sizeof(R);
    memcpy(static_cast<void*>(naar), van, n);
    memset(reinterpret_cast<char*>(naar) + n, 0, sizeof(R) - n);
}

} // namespace zg
