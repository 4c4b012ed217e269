// Brands, article groups and relations: the brand's field, and a conversation on each screen with what stands in the
// file afterwards.
#include "store/wachtrij.h"
#include "sub/artgroep.h"
#include "sub/merken.h"
#include "sub/omlev.h"
#include "sub/stampost.h"
#include "support/schrijfstoring.h"
#include "support/systeem.h"
#include "term/gesprek.h"
#include <numeric>

namespace zg::test {
namespace {

struct Pair {
    const char* naam;
    ICB** icb;
};
const Pair PAREN[] = {{"DTART", &dtart},   {"DTLEV", &dtlev},       {"DTLEVEXT", &dtlevext},
                      {"DTMERK", &dtmerk}, {"DTOMZGRP", &dtomzgrp}, {"DTDOELGR", &dtdoelgr}};

int vergeten; // times that the keepers of master records were told to read anew

struct Stam : Systeem {
    Stam() {
        filialen({1, 2, 3, 14, 20});
        zet(1, tekst20{"Nederlands"}, SYS_MAATSTELSEL);
        landrec land{};
        VASTIN(land.iso3, "NLD");
        zet(1, land, SYS_LAND);
        valuta(1, "EUR", 2, "Euro");
        VASTIN(instel15.valuta, "EUR");
        for (const Pair& p : PAREN)
            EXPECT_NE(DDNEW(DDNUMMER(p.naam), p.naam), 0) << p.naam;
        relatie(12, REL_LEVERANCIER, "Mode Centrale");
        relatie(40, REL_AGENT, "Agentuur Smit");
        merk(104, "Nordlys", "NORD");
        merk(109, "Kroontje", "KROO");
        merk(110, "Kroon Junior", "KRJU");
        bewaar("DTOMZGRP", omzgrprec{7, "Truien", 2, 0});
        bewaar("DTOMZGRP", omzgrprec{8, "Jassen", 1, 0});
    }
    static void filialen(const std::vector<int>& nummers) {
        maak_filialen(nummers);
        firma.maatstelsel = 1;
        firma.btw[0] = 210, firma.btw[1] = 90;
    }
    template <class R> static void bewaar(const char* naam, const R& rec) {
        ICB* icb = IXOPEN(naam, 2);
        schrijf(icb, rec);
        IXCLOSE(icb);
    }
    static void relatie(uint16_t nummer, int soort, const char* naam) {
        levrec rec{};
        rec.nummer = nummer;
        rec.soort = static_cast<uint8_t>(soort);
        VASTIN(rec.naam, naam);
        VASTIN(rec.land, "NLD");
        VASTIN(rec.crediteurnr, "C77");
        bewaar("DTLEV", rec);
    }
    static void merk(uint16_t nummer, const char* naam, const char* zoeknaam) {
        merkrec rec{};
        rec.merk = nummer;
        VASTIN(rec.naam, naam);
        VASTIN(rec.zoeknaam, zoeknaam);
        bewaar("DTMERK", rec);
    }
    // The record with a number; all zero when it isn't there. Nothing is reserved in its table.
    template <class R, class N> static R rec(const char* naam, N nummer) {
        uint8_t buffer[IXRECMAX] = {};
        memcpy(buffer, &nummer, sizeof nummer);
        ICB* icb = IXOPEN(naam, 0);
        EXPECT_EQ(IXRESERVERINGEN(icb->idxfd, icb->h).size(), 0u) << naam;
        R uit{};
        if (IXREAD(icb, buffer))
            stam_uit(buffer, icb->h.reclen, &uit);
        IXCLOSE(icb);
        EXPECT_GE(IXCHECK(naam), 0) << naam;
        return uit;
    }
    static void begin() {
        open();
        for (const Pair& p : PAREN)
            *p.icb = IXOPEN(p.naam, 2);
        stam_houder([] { vergeten++; });
    }
    static int merk_zoekt(const char* zoeknaam) {
        dtmerk = IXOPEN("DTMERK", 0);
        char tekst[4];
        VASTIN(tekst, zoeknaam);
        const int merk = merk_met_zoeknaam(tekst);
        IXCLOSE(dtmerk);
        dtmerk = nullptr;
        return merk;
    }
    // Does another hold this record?
    static bool bezet(const char* naam, uint16_t nummer) {
        uint8_t buffer[IXRECMAX] = {};
        memcpy(buffer, &nummer, sizeof nummer);
        ICB* icb = IXOPEN(naam, 2);
        IXREAD(icb, buffer);
        const bool vrij = IOLOCK('T', icb->datfd, int64_t{icb->currec} * icb->h.reclen, icb->h.reclen) != 0;
        IXCLOSE(icb);
        return !vrij;
    }
};

TEST_F(Stam, ProposedSearchNames) {
    const std::pair<const char*, const char*> rijen[] = {
        {"Van der Velde", "VNDR"},
        {"Nike", "NIKE"},
        {"Abc", "ABC"},
        {"O'Neill", "ONLL"},
        {"Aaaaa", "AAAA"},
        {"H&M Kids B", "HMKD"},
        {"", ""},
        {"A,B", "A,B"},
        {"Twintig tekens samen", "TWNT"},
    };
    for (auto [naam, zoeknaam] : rijen)
        EXPECT_EQ(merk_zoeknaam(naam), zoeknaam) << naam;
}

TEST_F(Stam, BrandByNumberNameAndList) {
    merk(300, "Noa",
         "N\xE3"
         "AA"); // sorts before NORD, and doesn't begin with NO
    gesprekken(
        [] {
            begin();
            uint16_t merk = 104;
            const bool anders = merk_veld(5, 10, "E", &merk) == Lijstuit::anders;
            return vorm("%u %d", merk, anders);
        },
        {
            {"<Enter>", "104 0"},
            {"110<Enter>", "110 1"},
            {"kro<Enter>", "109 1"},
            {"kr<Enter><Esc>", "104 0"},              // two begin so
            {"xx<Enter>no<Enter>", "104 0"},          // none does; its own
            {"0<Enter>00<Enter>109<Enter>", "109 1"}, // no brand, and can't be added
            {"7<Enter><Enter>kroo<Enter>", "109 1"},  // not added
            {"<F5><Tab>KRO<Enter><Enter>", "109 1"},  // by name
            {"<F5>110<Enter><Up><Enter>", "109 1"},   // by number
            {"<F5><Tab><Tab>109<Enter><Esc>9<Esc>", "104 0"},
        });
    Gesprek t([] {
        begin();
        gebruiker.userkind = 'I';
        uint16_t merk = 0;
        merk_veld(5, 10, "E", &merk);
        return vorm("%u", merk);
    });
    t.toetsen("7<Enter>", 25, 1, "<7> Onbekend merk");
    t.toetsen("<F5>300<Enter>", " 4 van 4 ");
    t.toetsen("<Tab>", " 3 van 4 "); // the same record in another order
    t.toetsen("<F10>", "RAADPLEGEN MERK");
    EXPECT_FALSE(bevat(t.scherm(), "Wijzigen")) << "who only looks";
    EXPECT_EQ(t.antwoord("<Enter><Esc><Esc>"), "0");
}

// Added where its number was typed, changed, deleted; what is refused on the way.
TEST_F(Stam, Brand) {
    Gesprek t([] {
        begin();
        uint16_t merk = 0;
        merk_veld(5, 10, "E", &merk);
        const bool anders = merk_scherm(250);
        return vorm("%u %d %d", merk, anders, vergeten);
    });
    t.toetsen("251<Enter>J<Enter>Toch niet<Enter><Esc>"); // given up: nothing stays reserved
    t.wacht_op(25, 1, "<251> Onbekend merk");
    t.toetsen("250<Enter>", "Wilt u merk 250 toevoegen");
    t.toetsen("J<Enter>Van der Velde<Enter>");
    t.wacht("VNDR");
    t.toetsen("kroo<Enter>", 25, 1, "KROO: Zoeknaam bestaat reeds");
    t.toetsen("<Enter>12<Enter>J<Enter>"); // a supplier becomes the manufacturer
    t.toetsen("40<Enter>12<Enter>2,42<Enter><Enter><Enter>1-20<Enter>");
    t.wacht_op(25, 1, "Alle filialen zijn uitgesloten");
    t.toetsen("<Home><Home>2, 14-20<Enter>", "250   ");
    merkrec m = rec<merkrec>("DTMERK", uint16_t{250});
    EXPECT_EQ(vorm("%.20s %.4s %d %d %d %d %d", m.naam, VASTTEKST(m.zoeknaam).c_str(), m.fabrikant, m.agent,
                   m.leverancier, m.calcfactor, m.uitgesloten[0]),
              "Van der Velde VNDR 12 40 12 2000 26");
    EXPECT_EQ(rec<levrec>("DTLEV", uint16_t{12}).soort, REL_LEVERANCIER | REL_FABRIKANT);
    // A name that another brand has taken by the time it is written: told, and the record is held as before.
    t.wacht("RAADPLEGEN MERK");
    EXPECT_TRUE(bezet("DTMERK", 250));
    t.toetsen("W12VELD<Enter>");
    merk(400, "Veldman", "VELD");
    relatie(12, REL_LEVERANCIER, "Mode Centrale"); // no manufacturer any more
    t.toetsen("13", 25, 1, "Type gewijzigd, nummer 12 is geen fabrikant meer");
    t.toetsen("<Enter><Esc>", 25, 1, "VELD: Zoeknaam bestaat reeds");
    t.wacht("Verlaten zonder vast te leggen");
    t.toetsen("<Enter>");
    EXPECT_TRUE(bezet("DTMERK", 250));
    t.toetsen("12VELE<Enter><Esc>");
    EXPECT_EQ(t.antwoord(), "250 1 3") << "the brand added, a relation and the brand changed";
    m = rec<merkrec>("DTMERK", uint16_t{250});
    EXPECT_EQ(vorm("%.4s %d %d %d", m.zoeknaam, m.fabrikant, m.agent, m.calcfactor), "VELE 0 40 2000");
    EXPECT_EQ(merk_zoekt("VELD"), 400);
}

// What ties to a number goes with it, and a damaged record is shown and mended.
TEST_F(Stam, BrandDeletedAndMended) {
    merkrec gek{.merk = 7, .zoeknaam = "GEK", .calcfactor = -5000, .doelgroep = 'X', .maatstelsel = 200};
    memset(gek.uitgesloten, 0xFF, sizeof gek.uitgesloten);
    bewaar("DTMERK", gek);
    mkdir("edistam", 0777);
    ICB* icb = nieuw_paar("edistam/DTMRKMS", {"koppel,10", "een,NODUPS,I,1,2,I,5,8"}, 2);
    for (uint16_t nr : {uint16_t{7}, uint16_t{8}}) {
        std::array<uint8_t, IXRECMAX> los{};
        memcpy(los.data(), &nr, 2);
        schrijf(icb, los);
    }
    IXCLOSE(icb);
    auto kind = [] {
        begin();
        const bool anders = merk_scherm(7);
        return vorm("%d", anders);
    };
    Gesprek t(kind);
    t.wacht("-6.050");
    t.toetsen("W162,42<Enter>17<Del><Enter>18<Del><Del><Del><Enter>193<Enter><Esc>");
    EXPECT_EQ(t.antwoord(), "1") << t.scherm();
    const merkrec m = rec<merkrec>("DTMERK", uint16_t{7});
    EXPECT_EQ(
        vorm("%d %d %d %d %d", m.calcfactor, m.doelgroep, m.maatstelsel, m.uitgesloten[0], m.uitgesloten[1]),
        "2000 0 0 4 0");
    Gesprek weg(kind);
    EXPECT_EQ(weg.antwoord("VJ<Enter>"), "1");
    EXPECT_EQ(rec<merkrec>("DTMERK", uint16_t{7}).merk, 0);
    EXPECT_EQ(lees_bestand("edistam/DTMRKMS.TXT").substr(10, 2), std::string("\x08\0", 2));
    EXPECT_EQ(lees_bestand("edistam/DTMRKMS.TXT").substr(0, 1), "\xFF");
}

// ---- article groups

std::string groeptekst(const artrec& a) {
    return vorm("%d %d %d %.20s | %d %d %d %c %d %d %d %d %x %d | %d %d %d %d %d %d", a.prijsklasse,
                a.kenmerksoort, a.omzetgroep, a.omschrijving, a.etiketsoort, a.maatsoort, a.magazijn,
                a.verdeelsoort, a.minimum, a.btwcode, a.magazijnpct, a.branchecode, a.vlaggen, a.regtype,
                a.perfiliaal[0], a.perfiliaal[1], a.perfiliaal[2], a.perfiliaal[3], a.perfiliaal[4],
                a.perfiliaal[249]);
}

TEST_F(Stam, Group) {
    Gesprek t([] {
        begin();
        int32_t groep = 0;
        lijstveld(ARTGROEPTABEL, 5, 10, "EP", &groep);
        return vorm("%d %d", groep, vergeten);
    });
    t.toetsen("1999<Enter>", "Wilt u artikelgroep 1999 toevoegen");
    t.toetsen("J<Enter>7<Enter>Mutsen<Enter>");
    t.toetsen("<Enter><Enter>2<Enter>123<Enter><Enter>");   // VAT as the turnover group brought it
    t.toetsen("<Enter><Enter>M<Enter>");                    // values for new series
    t.toetsen("99<Enter>", 25, 1, "<99> Onbekend filiaal"); // no such branch
    t.toetsen("<Del><Del>20<Enter>N<Enter>J<Enter>A<Enter><Enter>101");
    t.wacht_op(25, 1, "<101> Moet kleiner zijn dan 101");
    t.toetsen("25<Enter>", "filiaal   0 -   4");
    t.toetsen("1<Enter>", 25, 1, "Mag niet lager zijn dan 2 (minimum voorraad)");
    t.toetsen("2<Enter>251<Enter>", 25, 1, "<251> Maximaal 250");
    t.toetsen("250<Enter><Enter>4<Down>4<Enter>");
    t.wacht_op(25, 1, "<4> Moet ongelijk zijn aan 4"); // the warehouse's own
    EXPECT_EQ(t.antwoord("6<Enter>"), "1999 1");
    EXPECT_EQ(groeptekst(rec<artrec>("DTART", 1999)),
              "0 0 7 Mutsen | 0 0 20 A 2 2 25 123 3 1 | 2 250 0 4 6 0");
}

// Damaged settings are shown and mended; who may look finds his way through the parts.
TEST_F(Stam, GroupMended) {
    bewaar("DTART", artrec{.artikelgroep = 5,
                           .omschrijving = "Gek",
                           .magazijn = 77,
                           .verdeelsoort = 'X',
                           .minimum = 3,
                           .magazijnpct = 200,
                           .perfiliaal = {0, 2}});
    auto kind = [] {
        begin();
        return vorm("%d", artgroep_scherm(5));
    };
    gesprek_met([&] { return gebruiker.userkind = 'I', kind(); },
                {{"19", "Filiaal 77"}, {"17", "Prioriteit per filiaal"}, {"<Enter><Esc><Esc>", ""}}, "0");
    Gesprek t(kind);
    t.toetsen("W131<Enter>1911<Del><Del><Enter>14<Enter>", 25, 1, "<X> Foutieve ingave");
    t.toetsen("A<Enter>", 25, 1, "Aantal in filiaal 2 is lager dan ingegeven minimum voorraad");
    t.toetsen("160<Enter>");
    EXPECT_EQ(t.antwoord("<Esc>118<Enter><Esc>"), "1") << t.scherm();
    EXPECT_EQ(groeptekst(rec<artrec>("DTART", 5)), "0 0 8 Gek | 0 0 255 A 3 1 0 0 0 0 | 0 2 0 0 0 0");
}

// The table of a large firm has two pages; a firm of one branch has none, and other words.
TEST_F(Stam, GroupByFirm) {
    bewaar("DTART", artrec{.artikelgroep = 5, .magazijn = GEEN_MAGAZIJN, .verdeelsoort = 'P'});
    std::vector<int> veel(250);
    std::iota(veel.begin(), veel.end(), 1);
    filialen(veel);
    auto kind = [] {
        begin();
        return vorm("%d", artgroep_scherm(5));
    };
    Gesprek groot(kind);
    groot.toetsen("W1917", "filiaal   0 - 179");
    groot.toetsen("<PgDn>", "filiaal 180 - 249");
    EXPECT_EQ(groot.antwoord("<PgDn>7<Enter><Esc><Esc>"), "1");
    EXPECT_EQ(groeptekst(rec<artrec>("DTART", 5)), "0 0 0  | 0 0 255 P 0 0 0 0 0 0 | 0 0 0 0 0 7");
    filialen({4});
    Gesprek klein(kind);
    EXPECT_FALSE(bevat(klein.scherm(), "Filiaalverdeling"));
    klein.toetsen("W15", "Minimum voorraad in winkel");
    EXPECT_EQ(klein.antwoord("<Esc><Esc>"), "0");
    Gesprek merk([] {
        begin();
        return vorm("%d", merk_scherm(104));
    });
    EXPECT_FALSE(bevat(merk.scherm(), "Filiaal uitsl"));
    EXPECT_EQ(merk.antwoord("<Esc>"), "0");
}

// ---- relations

TEST_F(Stam, Relation) {
    auto agent = [] {
        begin();
        uint16_t nummer = 0;
        lijstveld(AGENTTABEL, 5, 10, "P", &nummer);
        return vorm("%d %d", nummer, vergeten);
    };
    gesprek_met(agent, {{"12<Enter>", "Deze relatie is geen agent, toevoegen als agent"}, {"J<Enter>", ""}},
                "12 1");
    levrec lev = rec<levrec>("DTLEV", uint16_t{12});
    EXPECT_EQ(vorm("%d %.20s %.6s", lev.soort, lev.naam, lev.crediteurnr), "3 Mode Centrale C77");
    // A new one, with a kind that must be set, a wrong e-mail address, the parts.
    gesprek_met(
        [] {
            begin();
            uint16_t nummer = 0;
            lijstveld(LEVERANCIERTABEL, 5, 10, "P", &nummer);
            return vorm("%d", nummer);
        },
        {{"78<Enter>J<Enter><Enter><Enter><Enter><Esc>", "<78> Onbekende leverancier"}, // given up
         {"77<Enter>", "Wilt u leverancier 77 toevoegen"},
         {"J<Enter>N<Enter><Enter><Enter>", "minimaal 1 type markeren"},
         {"J<Enter><Enter>J<Enter>Nieuw<Enter><Enter><Enter>odense<Enter>nld<Enter><Enter><Enter><Enter>a@<"
          "Enter>",
          "Ongeldig e-mailadres"},
         {"a@b.dk<Enter><Enter>ADR<Enter>een<Enter>twee<Enter>", "Relatie goederenadres"},
         {"Kade<Enter><Esc>DK1<Enter>12<Enter>C1<Enter>eur<Enter>1,05<Enter>1<Enter>", ""}},
        "77");
    lev = rec<levrec>("DTLEV", uint16_t{77});
    EXPECT_EQ(vorm("%d %.5s %.6s %.3s %.3s %.4s %.4s %.4s", lev.soort, lev.naam, lev.plaats, lev.land,
                   lev.adrescode, lev.opmerking[0], lev.opmerking[1], lev.goed_adres),
              "5 Nieuw ODENSE NLD ADR een twee Kade");
    EXPECT_EQ(vorm("%.3s %.2s %.2s %.3s %d %u", lev.btwnummer, lev.debiteurnr, lev.crediteurnr, lev.valuta,
                   lev.maatstelsel, lev.toeslag),
              "DK1 12 C1 EUR 1 10500");
    EXPECT_STREQ(rec<levextrec>("DTLEVEXT", uint16_t{77}).email, "a@b.dk");
}

// The relation goes before its e-mail address and site: killed in between, these are as they were.
TEST_F(Stam, RelationAtEachWrite) {
    bewaar("DTLEVEXT", levextrec{12, "a@b", "", ""});
    auto stand = [] {
        return VASTTEKST(rec<levrec>("DTLEV", uint16_t{12}).naam) + " " +
               VASTTEKST(rec<levextrec>("DTLEVEXT", uint16_t{12}).email);
    };
    bij_elke_schrijfactie(
        [] {
            begin();
            relatie_scherm(12, REL_LEVERANCIER, Relatiemodus::wijzigen);
        },
        "W11Anders\n19c@d\n\033\033", {"DTLEV", "DTLEVEXT"}, stand,
        {"Mode Centrale a@b", "Anders a@b", "Anders c@d"});
}

// The only agent deleted in the screen that F10 opens over the list: there is nothing left to pick.
TEST_F(Stam, DeletedFromTheList) {
    Gesprek t([] {
        begin();
        uint16_t nummer = 0;
        lijstveld(AGENTTABEL, 5, 10, "P", &nummer);
        return vorm("%d", nummer);
    });
    t.toetsen("<F5><F10>", "Agentuur Smit");
    t.toetsen("VJ<Enter><Enter>");
    t.weg("Agentuur Smit");
    EXPECT_EQ(t.antwoord("<Esc>"), "0");
}

// Of two kinds one goes and the record stays; with the last goes all that hangs from it.
TEST_F(Stam, RelationDeleted) {
    relatie(12, REL_LEVERANCIER | REL_AGENT, "Mode Centrale");
    bewaar("DTLEVEXT", levextrec{12, "a@b", "", ""});
    bewaar("DTLEVEXT", levextrec{13, "c@d", "", ""});
    mkdir("edistam", 0777);
    for (const char* naam : {"DTAG0012.TXT", "DTKL0012.INX", "DTAG0013.TXT"})
        schrijf_bestand(std::string("edistam/") + naam, "x");
    ICB* icb = nieuw_paar("edistam/DTRCLPAR", {"p,164", "een,NODUPS,I,1,2"}, 2);
    for (uint16_t nr : {uint16_t{12}, uint16_t{13}}) {
        std::array<uint8_t, IXRECMAX> los{};
        memcpy(los.data(), &nr, 2);
        schrijf(icb, los);
    }
    IXCLOSE(icb);
    auto wis = [](Relatiesoort soort) {
        return [soort] {
            begin();
            return vorm("%d", relatie_scherm(12, soort, Relatiemodus::wijzigen));
        };
    };
    gesprek_met(wis(REL_AGENT), {{"V", "Deze agent wordt verwijderd. Akkoord"}, {"J<Enter>", ""}}, "1");
    EXPECT_EQ(rec<levrec>("DTLEV", uint16_t{12}).soort, REL_LEVERANCIER);
    EXPECT_EQ(rec<levextrec>("DTLEVEXT", uint16_t{12}).nummer, 12);
    EXPECT_EQ(lees_bestand("edistam/DTAG0012.TXT"), "x");
    gesprek_met(wis(REL_LEVERANCIER),
                {{"VJ<Enter>", "Eventuele voorkeursinstellingen voor EDI-berichten worden verwijderd"},
                 {"<Enter>", ""}},
                "1");
    EXPECT_EQ(rec<levrec>("DTLEV", uint16_t{12}).nummer, 0);
    EXPECT_EQ(rec<levextrec>("DTLEVEXT", uint16_t{12}).nummer, 0);
    EXPECT_EQ(rec<levextrec>("DTLEVEXT", uint16_t{13}).nummer, 13);
    EXPECT_EQ(lees_bestand("edistam/DTAG0012.TXT") + lees_bestand("edistam/DTKL0012.INX"), "");
    EXPECT_EQ(lees_bestand("edistam/DTAG0013.TXT"), "x");
    using Partner = std::array<uint8_t, 164>;
    EXPECT_EQ(rec<Partner>("edistam/DTRCLPAR", uint16_t{12})[0], 0);
    EXPECT_EQ(rec<Partner>("edistam/DTRCLPAR", uint16_t{13})[0], 13);
}

TEST_F(Stam, BrandAtEachWrite) {
    auto stand = [] {
        return VASTTEKST(rec<merkrec>("DTMERK", uint16_t{104}).naam) + "|" +
               VASTTEKST(rec<merkrec>("DTMERK", uint16_t{9}).naam);
    };
    struct {
        uint16_t merk;
        const char *toetsen, *na;
    } const rijen[] = {
        {9, "j\nZ\nZZ\n\n\n\n\n\n\n\n", "Nordlys|Z"}, {104, "W11Z\n\033", "Z|"}, {104, "VJ\n", "|"}};
    for (const auto& r : rijen) {
        SCOPED_TRACE(r.na);
        bij_elke_schrijfactie(
            [&] {
                begin();
                merk_scherm(r.merk);
            },
            r.toetsen, {"DTMERK"}, stand, {"Nordlys|", r.na});
    }
}

} // namespace
} // namespace zg::test
