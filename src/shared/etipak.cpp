// A label's place in DTETI.TXT: nine words, each with fields packed by decimal digits; docs/formats.md has the table.
// Words are taken apart by floor, so that one below 0 gives its fields back, too.
#include "shared/ioeti.h"
#include <algorithm>
#include <cstring>

namespace zg {

bool eti_intern;

namespace {

constexpr int64_t MILJARD = 1'000'000'000, MILJOEN = 1'000'000, ORDER = 10'000'000;

struct woorden {
    int32_t w[ETIPLAATS / 4];
};

int64_t deel(int64_t waarde, int64_t door) {
    const int64_t q = waarde / door;
    return waarde % door < 0 ? q - 1 : q;
}

int64_t rest(int64_t waarde, int64_t door) {
    return waarde - deel(waarde, door) * door;
}

uint8_t byte(int64_t waarde) {
    return static_cast<uint8_t>(std::min<int64_t>(waarde, UINT8_MAX));
}

bool zet(int32_t* woord, int64_t waarde) {
    *woord = static_cast<int32_t>(waarde);
    return waarde >= INT32_MIN && waarde <= INT32_MAX;
}

bool zet_bedrag(int32_t* woord, int32_t bedrag, uint8_t cijfer) {
    return bedrag <= ETIBEDRAG_MAX && bedrag >= -ETIBEDRAG_MAX && cijfer <= 9 &&
           zet(woord, int64_t{bedrag} * 10 + cijfer);
}

bool zet_halven(int32_t* woord, uint32_t laag, uint32_t hoog) {
    const uint32_t w = (laag & 0xFFFF) | hoog << 16;
    memcpy(woord, &w, sizeof w);
    return laag <= 0xFFFF && hoog <= 0xFFFF;
}

uint32_t laag(int32_t woord) {
    return static_cast<uint32_t>(woord) & 0xFFFF;
}

uint32_t hoog(int32_t woord) {
    return static_cast<uint32_t>(woord) >> 16;
}

// The mark of a branch, 0 for none; `was` what a label in stock that stands has.
unsigned filiaalmerk(const etiket& l, unsigned was) {
    if (l.status == ETI_ORDER)
        return l.locatie_aan ? l.locatie + 1u : 0;
    if (l.status == ETI_VOORRAAD)
        return !eti_intern ? was : l.merk_aan ? l.merk + 1u : 0;
    return 0;
}

bool heeft_btw(uint8_t status) {
    return status == ETI_VERKOCHT || status == ETI_CORRECTIE;
}

} // namespace

uint8_t eti_status(const uint8_t* plaats) {
    woorden van;
    memcpy(&van, plaats, sizeof van);
    return static_cast<uint8_t>(rest(van.w[2], 10));
}

void eti_uit(const uint8_t* plaats, const seriesleutel& serie, uint8_t etiketsoort, etiket* label) {
    woorden van;
    memcpy(&van, plaats, sizeof van);
    const int32_t* w = van.w;
    etiket l{};
    l.serie = serie;
    l.etiketsoort = etiketsoort;
    l.inkoop = static_cast<int32_t>(deel(w[0], 10));
    l.inkoopcode = byte(rest(w[0], 10));
    l.prijs = static_cast<int32_t>(deel(w[1], 10));
    l.actiecode = byte(rest(w[1], 10));
    l.netto = static_cast<int32_t>(deel(w[2], 10));
    l.status = byte(rest(w[2], 10));
    l.met_de_hand = static_cast<int8_t>(deel(w[3], MILJARD));
    l.kassa = static_cast<uint16_t>(rest(w[3], MILJARD) / MILJOEN);
    l.ontvangst = static_cast<int32_t>(rest(w[3], MILJOEN));
    l.klant = w[4];
    l.maat = byte(laag(w[5]) / 100);
    l.maatsoort = byte(laag(w[5]) % 100);
    l.filiaal = static_cast<uint8_t>(hoog(w[5]) & 0xFF);
    const unsigned merk = hoog(w[5]) >> 8;
    l.leverancier = static_cast<uint16_t>(laag(w[6]));
    l.orderdatum = static_cast<uint16_t>(hoog(w[6]));
    l.levering_tot = static_cast<uint16_t>(laag(w[7]));
    if (l.status == ETI_ORDER)
        l.levering_van = static_cast<uint16_t>(hoog(w[7]));
    else if (heeft_btw(l.status))
        l.datum = static_cast<uint16_t>(hoog(w[7]));
    l.locatie = GEEN_MAGAZIJN;
    if (l.status == ETI_ORDER && merk) {
        l.locatie_aan = 1;
        l.locatie = static_cast<uint8_t>(merk - 1);
    } else if (l.status == ETI_VOORRAAD && merk) {
        l.merk_aan = 1;
        l.merk = static_cast<uint8_t>(merk - 1);
    }
    if (heeft_btw(l.status))
        l.btw = static_cast<uint16_t>(deel(w[8], ORDER));
    l.ordernummer = static_cast<int32_t>(rest(w[8], ORDER));
    *label = l;
}

bool eti_pak(const etiket& l, const uint8_t* was, uint8_t* plaats) {
    woorden oud{};
    etiket o{};
    if (was) {
        memcpy(&oud, was, sizeof oud);
        eti_uit(was, l.serie, l.etiketsoort, &o);
    }
    const bool zelfde = was && o.status == l.status;
    const unsigned oud_merk = zelfde ? hoog(oud.w[5]) >> 8 : 0;
    woorden naar = oud;
    bool past = l.status >= ETI_ORDER && l.status <= ETI_CORRECTIE;
    // A word whose fields are as they stand keeps its digits, also those that no field names.
    auto woord = [&](int nr, bool gelijk, auto pak) {
        if (!(zelfde && gelijk) && !pak(&naar.w[nr]))
            past = false;
    };

    woord(0, o.inkoop == l.inkoop && o.inkoopcode == l.inkoopcode,
          [&](int32_t* w) { return zet_bedrag(w, l.inkoop, l.inkoopcode); });
    woord(1, o.prijs == l.prijs && o.actiecode == l.actiecode,
          [&](int32_t* w) { return zet_bedrag(w, l.prijs, l.actiecode); });
    woord(2, o.netto == l.netto, [&](int32_t* w) { return zet_bedrag(w, l.netto, l.status); });
    woord(3, o.met_de_hand == l.met_de_hand && o.kassa == l.kassa && o.ontvangst == l.ontvangst,
          [&](int32_t* w) {
              return l.met_de_hand >= 0 && l.met_de_hand <= 2 && l.kassa <= 999 && l.ontvangst >= 0 &&
                     l.ontvangst < MILJOEN &&
                     zet(w, l.met_de_hand * MILJARD + l.kassa * MILJOEN + l.ontvangst);
          });
    naar.w[4] = l.klant;
    const unsigned merk = filiaalmerk(l, oud_merk);
    woord(5,
          o.maat == l.maat && o.maatsoort == l.maatsoort && o.filiaal == l.filiaal &&
              (merk == oud_merk || heeft_btw(l.status)),
          [&](int32_t* w) {
              return l.maat <= 95 && l.maatsoort <= 99 && merk <= 0xFF &&
                     zet_halven(w, l.maat * 100u + l.maatsoort, l.filiaal | merk << 8);
          });
    zet_halven(&naar.w[6], l.leverancier, l.orderdatum);
    const bool tweede = l.status == ETI_ORDER || heeft_btw(l.status);
    const uint16_t datum = l.status == ETI_ORDER ? l.levering_van : l.datum;
    woord(7,
          o.levering_tot == l.levering_tot &&
              (!tweede || datum == (l.status == ETI_ORDER ? o.levering_van : o.datum)),
          [&](int32_t* w) { return zet_halven(w, l.levering_tot, tweede ? datum : 0); });
    woord(8, o.ordernummer == l.ordernummer && (!heeft_btw(l.status) || o.btw == l.btw), [&](int32_t* w) {
        return l.ordernummer >= 0 && l.ordernummer < ORDER &&
               zet(w, (heeft_btw(l.status) ? l.btw : 0) * ORDER + l.ordernummer);
    });
    if (!past)
        return false;
    memcpy(plaats, &naar, sizeof naar);
    return true;
}

} // namespace zg
