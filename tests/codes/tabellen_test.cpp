// The code tables: each table's record from the field to its bytes, looked at, changed, deleted; refused and broken
// writes.
#include "codes/codetabel.h"
#include "codes/codeveld.h"
#include "support/schrijfstoring.h"
#include "support/slotboek.h"
#include "support/systeem.h"
#include "term/gesprek.h"

namespace zg::test {
namespace {

using namespace std::string_literals;

struct Codes : Systeem {
    Codes() {
        maak_filialen({1, 2, 3, 14, 20});
        firma.btw[0] = 210, firma.btw[1] = 90;
        landrec nederland{};
        VASTIN(nederland.iso3, "NLD");
        VASTIN(nederland.naam, "Nederland");
        zet(1, nederland, SYS_LAND);
        landen_vergeet();
        gebruiker.set = 2;
        pair("DTOMZGRP", &dtomzgrp);
    }
    ~Codes() override {
        sluit_paren();
        landen_vergeet();
    }
    static void pair(const char* naam, ICB** icb) {
        EXPECT_TRUE(DDNEW(DDNUMMER(naam), naam));
        *icb = IXOPEN(naam, 2);
    }
    static void sluit_paren() {
        for (ICB** icb : {&dtomzgrp, &dtdoelgr}) {
            if (*icb)
                IXCLOSE(*icb);
            *icb = nullptr;
        }
    }
    // In a child: handles from before the fork would share their locks.
    static void opnieuw() {
        open();
        const bool doelgr = dtdoelgr != nullptr;
        sluit_paren();
        dtomzgrp = IXOPEN("DTOMZGRP", 2);
        if (doelgr)
            dtdoelgr = IXOPEN("DTDOELGR", 2);
    }
};

// The field of a table on an empty code; then the code and what it stands for, and the locks that are left.
std::string veld(const Lijsttabel& tabel) {
    Codes::opnieuw();
    union {
        uint8_t u8;
        uint16_t u16;
        char tekst[4];
    } code{};
    Lijstcode uit;
    switch (*std::find_if(tabel.formaat, tabel.formaat + 4, isalpha)) {
    case 'U':
        lijstveld(tabel, 3, 10, "ZP", &code.u8);
        uit.nummer = code.u8;
        break;
    case 'u':
        lijstveld(tabel, 3, 10, "ZP", &code.u16);
        uit.nummer = code.u16;
        break;
    default:
        lijstveld(tabel, 3, 10, "", code.tekst, static_cast<size_t>(std::max(atoi(tabel.formaat), 1)));
        uit.tekst = code.tekst;
    }
    return codetekst(uit) + " " + lijstnaam(tabel, uit) + slotboek();
}

// Typed where there is nothing, and what stands in the file then.
TEST_F(Codes, AddedFromTheField) {
    struct {
        const Lijsttabel* tabel;
        const char *toetsen, *uit;
        int plaats; // in DTSYS.TXT; 0: record 0 of the pair
        std::string bytes;
    } const rijen[] = {
        {&ACTIETABEL, "3<Enter>J<Enter>Opruiming<Enter>", "3 Opruiming", 10416 + 3 * 30, "Opruiming\0"s},
        {&CORRECTIETABEL, "9<Enter>J<Enter>Breuk<Enter>", "9 Breuk", 10716 + 9 * 30, "Breuk\0"s},
        {&INKOOPTABEL, "1<Enter>J<Enter>Vooruit<Enter>", "1 Vooruit", 11016 + 30, "Vooruit\0"s},
        {&DEELSEIZOENTABEL, "2<Enter>J<Enter>Na<Enter>", "2 Na", 11316 + 60, "Na\0"s},
        {&KLEURTABEL, "999<Enter>J<Enter>Mosterd<Enter>", "999 Mosterd", 18444 + 998 * 20, "Mosterd\0"s},
        {&ETIKETSOORTTABEL, "2<Enter>J<Enter>Hang<Enter>40<Enter>8<Enter>", "2 Hang", 49672 + 68 + 26,
         "\0\0\0\0\x28\x08\0"s},
        {&KENMERKSOORTTABEL, "4<Enter>J<Enter>Hak<Enter>", "4 Hak", 65460 + 23 * 20, "Hak\0"s},
        {&PRIJSKLASSETABEL, "9<Enter>J<Enter>Hoog<Enter>", "9 Hoog", 1600 + 8 * 40, "Hoog\0"s},
        {&STELSELTABEL, "99<Enter>J<Enter>Int<Enter>", "99 Int", 42780 + 98 * 20, "Int\0"s},
        {&LANDTABEL, "SWE<Enter>J<Enter>752<Enter>se<Enter>Zweden<Enter>", "SWE Zweden", 46900 + 28,
         "\xF0\x02SESWEZweden\0"s},
        {&FILIAALREEKSTABEL, "5<Enter>J<Enter>Noord<Enter>7<Enter>1,3-20<Enter>", "5 Noord",
         117804 + 4 * 52 + 18, "\0\0\x1D\0"s},
        {&OMZETGROEPTABEL, "1234<Enter>J<Enter>Jassen<Enter>0<Enter>11<Enter>2<Enter>", "1234 Jassen", 0,
         "\xD2\x04Jassen\0\0\0\0\0\0\0\0\0\0\0\0\0\0\x02\0"s},
        {&DOELGROEPTABEL, "K<Enter>J<Enter>Kind<Enter>", "K Kind", 0, "K\0Kind\0"s},
        // Given up in the walk, said no, not a code: nothing there.
        {&KLEURTABEL, "8<Enter>J<Enter>Mos<Esc><Enter>", "0 ", 18444 + 7 * 20, std::string(20, '\0')},
        {&KLEURTABEL, "8<Enter><Enter><Enter>", "0 ", 18444 + 7 * 20, std::string(20, '\0')},
        {&LANDTABEL, "NL<Enter>J<Enter><Esc>", "0 ", 46900 + 56, std::string(28, '\0')},
    };
    for (const auto& r : rijen) {
        SCOPED_TRACE(r.toetsen);
        Gesprek t([&] { return veld(*r.tabel); });
        t.toetsen(r.toetsen);
        EXPECT_EQ(t.antwoord(), std::string(r.uit).substr(0, std::string(r.uit).find_last_not_of(' ') + 1));
        const std::string naam = r.tabel == &OMZETGROEPTABEL  ? "DTOMZGRP"
                                 : r.tabel == &DOELGROEPTABEL ? "DTDOELGR"
                                                              : "";
        const std::string bytes = lees_bestand(naam.empty() ? "DTSYS.TXT" : naam + ".TXT");
        EXPECT_EQ(bytes.substr(static_cast<size_t>(r.plaats), r.bytes.size()), r.bytes);
    }
    EXPECT_GE(IXCHECK("DTDOELGR"), 0) << "the missing pair was made";
    uint8_t filialen[32];
    EXPECT_TRUE(filiaalreeks_lees(5, filialen) && filialen[0] == 0x1D && !filiaalreeks_lees(6, filialen));
    EXPECT_EQ(omzetgroep_btw(1234), 2);
}

// Right 'I' isn't asked and only looks; who may change, changes and deletes with what ties to it.
TEST_F(Codes, RecordOfARow) {
    zet(5, tekst20{"Rood"}, SYS_KLEUR);
    zet(9, tekst20{"Zwart"}, SYS_KLEUR);
    mkdir("edistam", 0777);
    ICB* icb = nieuw_paar("edistam/DTKL0012", {"kl,80", "een,NODUPS,C,1,35"}, 2);
    for (uint8_t kleur : {uint8_t{5}, uint8_t{9}, uint8_t{5}}) {
        std::array<uint8_t, IXRECMAX> rec{};
        snprintf(reinterpret_cast<char*>(rec.data()), 35, "code %d", icb->h.nrecs);
        rec[36] = kleur;
        schrijf(icb, rec);
    }
    IXCLOSE(icb);
    const std::string vooraf = lees_bestand("DTSYS.TXT");
    {
        Gesprek t([] {
            gebruiker.userkind = 'I';
            return veld(KLEURTABEL);
        });
        t.toetsen("7<Enter>", 25, 1, "<7> Onbekende kleur");
        t.toetsen("<F5><F10>WV", " RAADPLEGEN KLEUR ");
        EXPECT_EQ(t.scherm().find("Wijzigen"), std::string::npos) << t.scherm();
        t.toetsen("<Enter>art<Enter>", "9     Zwart"); // part of a name
        t.toetsen("x<Enter>", 25, 1, "<x> niet gevonden");
        EXPECT_EQ(t.antwoord("<Enter>"), "9 Zwart");
        EXPECT_EQ(lees_bestand("DTSYS.TXT"), vooraf);
    }
    Gesprek t([] { return veld(KLEURTABEL); });
    t.toetsen("7<Enter>", "Wilt u kleur 7 toevoegen? (J/N)");
    t.toetsen("J<Enter>");
    EXPECT_TRUE(t.wacht("NIEUWE KLEUR") && t.wacht(" Omschrijving kleur")) << t.scherm();
    t.toetsen("<Esc><F5><Down><F10>W11Wit<Enter><Esc>", "9     Wit");
    t.toetsen("<Up><F10>V", "Deze kleur wordt verwijderd. Akkoord? (J/N)");
    EXPECT_EQ(t.antwoord("J<Enter><Enter>"), "9 Wit");
    icb = IXOPEN("edistam/DTKL0012", 0);
    uint8_t rec[IXRECMAX] = {};
    EXPECT_TRUE(IXFIRST(icb, rec) == 1 && rec[36] == 9 && IXNEXT(icb, rec) == 0);
    IXCLOSE(icb);
}

// Every write of an addition, a change and a delete is refused, or the last thing that the process does: the table has
// the record old, new or not at all, and nothing beside it moves.

std::string stand(const Codetabel& t) {
    std::string uit;
    Codes::opnieuw();
    landen_vergeet();
    for (const Coderij& r : code_rijen(t))
        uit += codetekst(r.code) + " " + r.naam + "|";
    return uit;
}

enum Werk { VOEG_TOE, WIJZIG, WIS };

bool doe(const Codetabel& t, const Lijstcode& code, Werk werk) {
    Coderecord rec;
    const int gelezen = code_lees(t, code, true, &rec);
    if (gelezen < 0)
        return false;
    rec[t.tekst] = werk == WIJZIG ? 'Y' : 'Z';
    if (werk == WIS ? code_wis(t, code) : code_schrijf(t, code, rec))
        return true;
    const bool gereserveerd = werk == VOEG_TOE && t.plaats == Codetabel::PAAR; // no lock that the ledger sees
    EXPECT_TRUE(werk == WIS || gereserveerd || !slotboek().empty()) << "the screen stays, and its record";
    code_vrij(t, code);
    return false;
}

TEST_F(Codes, RefusedAndKilledAtEachWrite) {
    pair("DTDOELGR", &dtdoelgr);
    for (const auto& [tabel, staat, nieuw, paar] :
         Rijen<const Lijsttabel*, Lijstcode, Lijstcode, std::string>{
             {&KLEURTABEL, {5, ""}, {6, ""}, ""},
             {&LANDTABEL, {0, "NLD"}, {0, "SWE"}, ""},
             {&DOELGROEPTABEL, {0, "D"}, {0, "H"}, "DTDOELGR"},
             {&OMZETGROEPTABEL, {3, ""}, {4, ""}, "DTOMZGRP"}}) {
        const Codetabel& t = codetabel(*tabel);
        EXPECT_TRUE(doe(t, staat, VOEG_TOE));
        std::vector<std::string> namen = {"DTSYS.TXT"};
        if (!paar.empty())
            namen.insert(namen.end(), {paar + ".INX", paar + ".TXT"});
        const std::string oud = stand(t);
        const std::string daarna[] = {oud + codetekst(nieuw) + " Z|",
                                      std::string(oud).replace(oud.find('Z'), 1, "Y"), ""};
        for (Werk werk : {VOEG_TOE, WIJZIG, WIS}) {
            SCOPED_TRACE(vorm("%s%d %d", paar.c_str(), t.slots.start, werk));
            const auto werkt = [&] {
                opnieuw();
                const bool goed = doe(t, werk == VOEG_TOE ? nieuw : staat, werk);
                return goed ? 0 : testing::Test::HasFailure() ? 8 : 7;
            };
            bij_elke_schrijf(namen, 1, werkt, [&](const Storing& st) {
                if (!paar.empty() && st.dood && !st.klaar)
                    EXPECT_EQ(IXBLDIX(paar.c_str()), 1);
                const std::string nu = stand(t);
                EXPECT_TRUE(nu == daarna[werk] || (nu == oud && !st.klaar)) << nu;
                EXPECT_TRUE(st.klaar ? st.status == 0
                                     : st.dood || (st.status == 7 && nu == oud && !st.uitvoer.empty()))
                    << st.status << st.uitvoer << nu;
            });
        }
    }
}

} // namespace
} // namespace zg::test
