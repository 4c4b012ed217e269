// Records of the order journal and work file: one tag byte and a body whose length depends on the tag only.
// docs/formats.md has the table of offsets; order/ioord.h reads and writes them.
#pragma once
#include <cstddef>
#include <cstdint>

namespace zg {

struct [[gnu::packed]] ordkop { // 'O'
    uint16_t leverancier, agent, jaar, orderdatum;
    char omschrijving[15];
    char seizoen;
    char collectie[20];
    int16_t korting; // hundredths of a per cent, negative: -250 is a discount of 2.50%
    uint8_t status, deelseizoen, inkoopcode;
    char valuta[3];
    uint32_t koers; // rate = koers / (koerseenheid x 10000)
    uint16_t koerseenheid;
    uint8_t vrij58, edi_soort;
    uint32_t toeslag; // times 10000
    int32_t ordernummer;
    char lev_ordernr[35];
    uint8_t ontvangstlocatie; // branch number, 251 the warehouse
    char vrij104[16];
};
struct [[gnu::packed]] ordmodel { // 'M'
    uint16_t merk;
    char model[15];
    uint8_t maatsoort, etiketsoort, vrij19;
    int32_t artikelgroep;
};
struct [[gnu::packed]] orddessin { // 'D': one order line
    char dessin[12], materiaal[12], omschrijving[20];
    uint16_t kleur, volgnummer;
    char doelgroep;
    uint8_t inkoopplan;
    char kenmerk[2];
    uint8_t maten[12]; // size i is bit i % 8 of byte i / 8
    uint8_t adviesblok[40];
    uint8_t geregistreerd, regtype;
    uint16_t tijdstempel; // seconds since midnight / 2
    char vrij108[16];
    int32_t consprijs;
};
struct [[gnu::packed]] ordtekst { // 'T'
    uint8_t soort;                // 1 delivery, 2 payment, 3 model, 4 dessin
    char tekst[60];
};
struct [[gnu::packed]] ordmaat { // 'S'
    uint8_t maat;
    char vrij1[3];
    int32_t bruto, netto; // net without the order discount
};
struct [[gnu::packed]] ordextra { // 'E' and 'B': kept with the S in front of them
    char inhoud[13];
};
struct [[gnu::packed]] ordlevt { // 'L'
    uint16_t eerste, laatste;
};
struct [[gnu::packed]] ordfil { // 'F'
    uint8_t filiaal, maat;      // branch index, size index
    uint16_t vrij2;
    int32_t aantal;
};
// Body length of a tag, -1 for an unknown one.
constexpr int ord_lengte(char tag) {
    switch (tag) {
    case 'O':
        return sizeof(ordkop);
    case 'M':
        return sizeof(ordmodel);
    case 'D':
        return sizeof(orddessin);
    case 'T':
        return sizeof(ordtekst);
    case 'S':
        return sizeof(ordmaat);
    case 'E':
    case 'B':
        return sizeof(ordextra);
    case 'L':
        return sizeof(ordlevt);
    case 'F':
        return sizeof(ordfil);
    default:
        return -1;
    }
}

struct [[gnu::packed]] ors_ingang { // entry of the ORS file
    uint16_t regel, vrij2;
    int32_t m, d; // offsets in the work file
};
struct [[gnu::packed]] act_record { // the ACT file, exactly 100 bytes
    int32_t start, volgende, omvang;
    uint8_t sessie;
    char vrij13[87];
};
struct [[gnu::packed]] ordparm { // ORDPARM.SYS, 112 bytes
    uint16_t jaar;
    char vrij2[2];
    char letter;
    char vrij5[27];
    uint8_t invoerstijl; // 1 key by key
    char vrij33[11];
    uint8_t kopvraag[20];    // 44 + i, header field i
    uint8_t modelvraag[20];  // 64 + i
    uint8_t dessinvraag[10]; // 84 + i
    uint8_t afbeelding;      // 94
    char vrij95[17];
};

static_assert(sizeof(ordkop) == 120 && offsetof(ordkop, korting) == 44 && offsetof(ordkop, valuta) == 49 &&
              offsetof(ordkop, toeslag) == 60 && offsetof(ordkop, lev_ordernr) == 68 &&
              offsetof(ordkop, ontvangstlocatie) == 103);
static_assert(sizeof(ordmodel) == 24 && offsetof(ordmodel, artikelgroep) == 20);
static_assert(sizeof(orddessin) == 128 && offsetof(orddessin, kleur) == 44 &&
              offsetof(orddessin, maten) == 52 && offsetof(orddessin, adviesblok) == 64 &&
              offsetof(orddessin, consprijs) == 124);
static_assert(sizeof(ordtekst) == 61 && sizeof(ordmaat) == 12 && sizeof(ordextra) == 13);
static_assert(sizeof(ordlevt) == 4 && sizeof(ordfil) == 8 && sizeof(ors_ingang) == 12);
static_assert(sizeof(act_record) == 100 && sizeof(ordparm) == 112 && offsetof(ordparm, invoerstijl) == 32 &&
              offsetof(ordparm, kopvraag) == 44 && offsetof(ordparm, modelvraag) == 64 &&
              offsetof(ordparm, dessinvraag) == 84 && offsetof(ordparm, afbeelding) == 94);

} // namespace zg
