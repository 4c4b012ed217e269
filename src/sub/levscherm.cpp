// The screen on one relation: two columns of fields, looked at or changed one by one under the record's lock.
#include "codes/codeveld.h"
#include "codes/valveld.h"
#include "price/ing_val.h"
#include "price/koers.h"
#include "shared/leesstam.h"
#include "shared/sysrec.h"
#include "store/ix.h"
#include "sub/omlev.h"
#include "sub/teksten.h"
#include "term/ingave.h"
#include "term/prompt.h"
#include "term/vast.h"
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>

namespace zg {

namespace {

constexpr int RIJEN = 20, EERSTE = 2, LABEL = 2, WAARDE = 41, BREEDTE = 76;

enum Bijzonder { GEWOON, LAND, VALUTA, KOERS, TOESLAG, STELSEL };

// A field of the screen: label, format (the option letters of a field with a list) and its place in the record.
struct Veldrij {
    const Tekst* label;
    const char* formaat;
    size_t plaats;
    int breedte;
    Bijzonder wat;
};

#define TEKSTVELD(label, formaat, lid)                                                                       \
    { &label, formaat, offsetof(levrec, lid), sizeof(levrec::lid), GEWOON }

const Veldrij VELDEN[] = {
    TEKSTVELD(T_L_NAAM, "20c,E", naam),
    TEKSTVELD(T_L_ADRES, "30c,", adres),
    TEKSTVELD(T_L_POSTCODE, "7c,U", postcode),
    TEKSTVELD(T_L_PLAATS, "25c,U", plaats),
    {&T_L_LAND, "UE", offsetof(levrec, land), 3, LAND},
    TEKSTVELD(T_L_TELEFOON, "20c,", telefoon),
    TEKSTVELD(T_L_FAX, "20c,", fax),
    TEKSTVELD(T_L_MOBIEL, "20c,", mobiel),
    TEKSTVELD(T_L_ADRESCODE, "13c,", adrescode),
    {&T_L_OPMERKING, "24c,", offsetof(levrec, opmerking), 24, GEWOON},
    {nullptr, "24c,", offsetof(levrec, opmerking) + 24, 24, GEWOON},
    TEKSTVELD(T_G_ADRES, "30c", goed_adres),
    TEKSTVELD(T_G_POSTCODE, "7c,U", goed_postcode),
    TEKSTVELD(T_G_PLAATS, "25c,U", goed_plaats),
    {&T_G_LAND, "U", offsetof(levrec, goed_land), 3, LAND},
    TEKSTVELD(T_G_VERVOERDER, "15c", goed_vervoerder),
    // From here on for a supplier only.
    TEKSTVELD(T_O_BTW, "12c", btwnummer),
    TEKSTVELD(T_O_DEBITEUR, "10c", debiteurnr),
    TEKSTVELD(T_O_CREDITEUR, "6c", crediteurnr),
    {&T_O_VALUTA, "U", offsetof(levrec, valuta), 3, VALUTA},
    {&T_O_KOERS, "", 0, 0, KOERS},
    {&T_O_TOESLAG, "8.4f,EP", 0, 0, TOESLAG},
    {&T_O_MAATSTELSEL, "", 0, 0, STELSEL},
};
constexpr int ALLE = static_cast<int>(std::size(VELDEN)), ALGEMEEN = 16;

#undef TEKSTVELD

struct Beeld {
    levrec rec;
    Relatiesoort soort;
    int velden; // shown
    int top = 0;

    char* tekst(const Veldrij& v) { return reinterpret_cast<char*>(&rec) + v.plaats; }
    bool vreemd() const { return thuisvaluta_anders(std::string(VASTUIT(rec.valuta)).c_str()); }
    // As shown and asked; 0 is the rate of the day.
    double koers() const {
        return koers_dubbel(static_cast<int32_t>(rec.koers),
                            rec.koerseenheid ? rec.koerseenheid : uint16_t{1});
    }
    double toeslag() const { return (rec.toeslag ? rec.toeslag : 10000u) / 10000.0; }
};

std::string waarde(Beeld& b, const Veldrij& v) {
    char t[64] = "";
    switch (v.wat) {
    case KOERS:
        if (b.rec.koers == 0)
            return b.vreemd() ? TXT(T_DAGKOERS) : "";
        snprintf(t, sizeof t, "%.5f", b.koers());
        return t;
    case TOESLAG:
        snprintf(t, sizeof t, "%5.4f", b.toeslag());
        return t;
    case STELSEL:
        snprintf(t, sizeof t, "%-2u %.20s", b.rec.maatstelsel,
                 lijstnaam(STELSELTABEL, {b.rec.maatstelsel, ""}).c_str());
        return t;
    default:
        return std::string(
            VASTTRIM(std::string_view(b.tekst(v), strnlen(b.tekst(v), static_cast<size_t>(v.breedte)))));
    }
}

void toon(Beeld& b, int gekozen) {
    for (int i = 0; i < RIJEN - 4; i++) {
        int nr = b.top + i, rij = EERSTE + i;
        SCRCLREOL(rij, LABEL);
        if (nr >= b.velden)
            continue;
        const Veldrij& v = VELDEN[nr];
        if (v.label) {
            bool van_de = nr < 10;
            SCRPUT(nr == gekozen ? A_KEUS : A_LABEL, rij, LABEL, "%s%s%s", TXT(*v.label), van_de ? " " : "",
                   van_de ? relatie_woord(b.soort) : "");
        }
        SCRPUT(A_WAARDE, rij, WAARDE, "%s", waarde(b, v).c_str());
    }
}

// Ask one field; true when it changed. The key is in SCHERM.laatste.
bool vraag(Beeld& b, int nr) {
    const Veldrij& v = VELDEN[nr];
    const int rij = EERSTE + nr - b.top;
    for (int32_t k : {K_UP, K_DOWN})
        TOETSAAN(k);
    switch (v.wat) {
    case VALUTA:
        return lijstveld(VALUTATABEL, rij, WAARDE, v.formaat, b.rec.valuta, VALUTACODE) == Lijstuit::anders;
    case LAND:
        return lijstveld(LANDTABEL, rij, WAARDE, v.formaat, b.tekst(v), sizeof b.rec.land) ==
               Lijstuit::anders;
    case STELSEL:
        return lijstveld(STELSELTABEL, rij, WAARDE, v.formaat, &b.rec.maatstelsel) == Lijstuit::anders;
    case KOERS: {
        if (!b.vreemd())
            return SCHERM.laatste = K_ENTER, false;
        double koers = b.koers();
        if (!koers_veld(rij, WAARDE, "", b.rec.valuta, &koers))
            return false;
        int32_t geheel = 0;
        uint16_t eenheid = 1;
        koers_integer(koers, &geheel, &eenheid);
        b.rec.koers = static_cast<uint32_t>(geheel);
        b.rec.koerseenheid = eenheid;
        return true;
    }
    case TOESLAG: {
        double factor = b.toeslag();
        bool anders = INGAVE(rij, WAARDE, v.formaat, &SCHERM.toets[key_cancel], &factor) != 0;
        if (anders)
            b.rec.toeslag = static_cast<uint32_t>(std::lround(factor * 10000));
        return anders;
    }
    case GEWOON:
        break;
    }
    return INGAVE(rij, WAARDE, v.formaat, &SCHERM.toets[key_cancel], b.tekst(v)) != 0;
}

// Field by field, up and down; ENTER goes to the next, cancel ends.
bool wijzig(Beeld& b) {
    bool anders = false;
    for (int nr = 0; nr >= 0 && nr < b.velden;) {
        if (nr < b.top || nr >= b.top + RIJEN - 4)
            b.top = nr < b.top ? nr : nr - (RIJEN - 5);
        toon(b, nr);
        anders |= vraag(b, nr);
        if (TOETSWEG())
            break;
        nr += SCHERM.laatste == K_UP ? (nr > 0 ? -1 : 0) : 1;
    }
    return anders;
}

} // namespace

bool relatie_scherm(uint16_t nummer, Relatiesoort soort, Relatiemodus modus) {
    union {
        levrec lev;
        uint8_t ruimte[IXRECMAX];
    } r{};
    const int sleutel = IXSLEUTEL(dtlev);
    const bool schrijven = modus == Relatiemodus::wijzigen && dtlev->mode != 0;
    IXSWITCH(dtlev, 1);
    r.lev.nummer = nummer;
    const int gelezen = schrijven ? IXREADL(dtlev, &r) : IXREAD(dtlev, &r);
    bool anders = false;
    if (gelezen != 1) {
        if (schrijven && gelezen == 0) {
            memset(&r, 0, sizeof r);
            r.lev.nummer = nummer;
            IXUNLOCK(dtlev, &r);
        }
        error("<%u> %s %s", nummer, TXT(T_ONBEKENDE), relatie_woord(soort));
    } else {
        Beeld b{r.lev, soort, soort == REL_LEVERANCIER ? ALLE : ALGEMEEN};
        WINOPEN1(3, 2, RIJEN, BREEDTE);
        WINBOX(" %s %s %u ", TXT(schrijven ? T_WIJZIGEN : T_RAADPLEGEN), relatie_woord(soort), nummer);
        toon(b, -1);
        if (schrijven) {
            anders = wijzig(b);
        } else {
            // Two pages at most: ENTER shows the rest, then leaves.
            for (;; b.top += RIJEN - 4, toon(b, -1)) {
                TOETSAAN(K_CANCEL); // ESC leaves at once
                ENTERWACHT(RIJEN - 2, LABEL);
                if (SCHERM.laatste != K_ENTER || b.top + RIJEN - 4 >= b.velden)
                    break;
            }
        }
        WINCLOSE();
        if (anders) {
            r.lev = b.rec;
            IXWRITE(dtlev, &r);
        } else if (schrijven) {
            IXUNLOCK(dtlev, &r);
        }
    }
    IXSWITCH(dtlev, sleutel);
    return anders;
}

} // namespace zg
