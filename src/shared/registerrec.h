// Records of the full registration: series, price sets with their groups, labels, order numbers, picture links.
// docs/formats.md has the offsets. Bytes that no field names are zero in a new record and kept in an existing one.
#pragma once
#include "shared/stamrec.h"
#include <cstring>
#include <string>

namespace zg {

inline constexpr uint16_t PRIJS_TOT = 65534; // the end marker of a period

struct [[gnu::packed]] serrec { // DTSER, key 1 series, 2 brand and model, 3 number
    seriesleutel serie;
    uint16_t merk;
    uint16_t jaar; // of the collection; 0 is the standard one
    char seizoen;
    uint8_t deelseizoen, inkoopplan;
    char doelgroep; // blank if none
    uint8_t maatsoort;
    uint8_t stempel_mag; // not 0: the stamp may be moved back to an earlier order's day
    uint8_t etiketsoort;
    char model[15], omschrijving[20], dessin[12], materiaal[12], kenmerk[2];
    uint8_t maten[12];                   // by size index; bits are only added
    uint8_t adviesblok[40];              // see price/uniprijs.h
    int32_t leverancier;                 // set when the record is first made
    uint16_t levering_tot, levering_van; // bounds of the terms of all its orders; 0 for none yet
    int32_t correcties, verkopen, voorraad,
        in_nota; // its labels by status 4, 3, 2, 1: counted, not raised and lowered
    uint16_t laatste_order;
    char vrij158[12];
    uint8_t regtype; // 1 per size, 0 per label
    char vrij171;
    int32_t consprijs;
    int32_t etiketkop; // first block of its labels, -1 none
    int32_t stempel;   // seconds since 01-01-1980, see serie_stempel
    char vrij184[4];
    int32_t nummer; // running number
    char vrij192[8];
};
static_assert(sizeof(serrec) == 200 && offsetof(serrec, merk) == 8 && offsetof(serrec, seizoen) == 12 &&
              offsetof(serrec, maatsoort) == 16 && offsetof(serrec, model) == 19 &&
              offsetof(serrec, omschrijving) == 34 && offsetof(serrec, kenmerk) == 78 &&
              offsetof(serrec, maten) == 80 && offsetof(serrec, adviesblok) == 92 &&
              offsetof(serrec, leverancier) == 132 && offsetof(serrec, levering_tot) == 136 &&
              offsetof(serrec, correcties) == 140 && offsetof(serrec, in_nota) == 152 &&
              offsetof(serrec, laatste_order) == 156 && offsetof(serrec, regtype) == 170 &&
              offsetof(serrec, consprijs) == 172 && offsetof(serrec, etiketkop) == 176 &&
              offsetof(serrec, stempel) == 180 && offsetof(serrec, nummer) == 188);

struct [[gnu::packed]] prijsset { // DTIPA, key 1 series, set number, last day
    seriesleutel serie;
    uint16_t setnr; // the supplier
    uint16_t tot;   // last day
    int32_t koersfactor;
    uint8_t soort;
    uint8_t maten[12]; // union of the groups'
    char valuta[3];
    uint16_t van; // first day
    char vrij34[2];
    int32_t groep; // first record in DTIPG.TXT, -1 none
};
static_assert(sizeof(prijsset) == 40 && offsetof(prijsset, koersfactor) == 12 &&
              offsetof(prijsset, maten) == 17 && offsetof(prijsset, valuta) == 29 &&
              offsetof(prijsset, van) == 32 && offsetof(prijsset, groep) == 36);

struct [[gnu::packed]] prijsgroeprec { // DTIPG.TXT, record r at r x 40
    seriesleutel serie;
    uint16_t setnr, tot;
    uint8_t maten[12];
    char valuta[3];
    uint8_t soort;
    int32_t netto, bruto;
    int32_t volgende; // -1 at the end
};
static_assert(sizeof(prijsgroeprec) == 40 && offsetof(prijsgroeprec, valuta) == 24 &&
              offsetof(prijsgroeprec, netto) == 28 && offsetof(prijsgroeprec, volgende) == 36);

enum Etiketstatus : uint8_t {
    ETI_VRIJ = 0,
    ETI_ORDER = 1,
    ETI_VOORRAAD = 2,
    ETI_VERKOCHT = 3,
    ETI_CORRECTIE = 4
};

struct [[gnu::packed]] etiket { // a label as its callers see it; DTETI.TXT packs it
    seriesleutel serie;
    uint8_t status, etiketsoort, maat, filiaal; // size index, branch index
    uint16_t leverancier, orderdatum;
    uint16_t levering_van; // on order
    uint16_t levering_tot; // on order; from then on the date of receipt
    uint16_t datum;        // of sale or correction
    uint16_t btw;          // tenths of a per cent
    int32_t inkoop;        // purchase value, home currency
    int32_t prijs;         // selling price
    int32_t netto;         // in the order's currency; sold: the price paid
    int8_t met_de_hand;    // price set by hand
    uint8_t actiecode, maatsoort, inkoopcode;
    int32_t ontvangst, klant;
    uint16_t kassa;
    uint8_t merk_aan, merk; // in stock: byte 51 is a branch
    int32_t ordernummer;
    uint8_t locatie, locatie_aan; // on order: receiving location, 255 none; 1 when it is below 255
    char vrij58[2];
};
static_assert(sizeof(etiket) == 60 && offsetof(etiket, leverancier) == 12 && offsetof(etiket, btw) == 22 &&
              offsetof(etiket, inkoop) == 24 && offsetof(etiket, met_de_hand) == 36 &&
              offsetof(etiket, inkoopcode) == 39 && offsetof(etiket, ontvangst) == 40 &&
              offsetof(etiket, merk_aan) == 50 && offsetof(etiket, ordernummer) == 52 &&
              offsetof(etiket, locatie) == 56);

struct [[gnu::packed]] ordnrrec { // DTORDNR, key 1 order number
    int32_t ordernummer;
    char lev_ordernr[35];
    uint8_t ontvangstlocatie;
    uint16_t leverancier, jaar;
    char seizoen;
    uint8_t edi_soort;
    uint16_t orderdatum;
};
static_assert(sizeof(ordnrrec) == 48 && offsetof(ordnrrec, ontvangstlocatie) == 39 &&
              offsetof(ordnrrec, orderdatum) == 46);

struct [[gnu::packed]] serpicrec { // DTSERPIC, key 1 series; a file of 53 bytes a record has no brand
    seriesleutel serie;
    char bestand[45];
    uint8_t nul;
    uint16_t merk;
};
static_assert(sizeof(serpicrec) == 56 && offsetof(serpicrec, merk) == 54);

using sleutelwaarde = uint64_t; // the bytes of a seriesleutel, for tables
inline sleutelwaarde sleutel_van(const seriesleutel& serie) {
    sleutelwaarde uit;
    static_assert(sizeof uit == sizeof serie);
    memcpy(&uit, &serie, sizeof uit);
    return uit;
}
inline seriesleutel sleutel_uit(sleutelwaarde waarde) {
    seriesleutel uit;
    memcpy(&uit, &waarde, sizeof uit);
    return uit;
}

inline std::string serie_tekst(const seriesleutel& s) { // "groep.kleur.volgnummer"
    return std::to_string(s.artikelgroep) + "." + std::to_string(s.kleur) + "." +
           std::to_string(s.volgnummer);
}

inline bool zelfde_serie(const seriesleutel& a, const seriesleutel& b) {
    return a.artikelgroep == b.artikelgroep && a.kleur == b.kleur && a.volgnummer == b.volgnummer;
}

} // namespace zg
