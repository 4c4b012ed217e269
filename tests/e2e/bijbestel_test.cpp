// Series in the full registration as a buyer meets them: the demo firm's register, ordering again with each refusal,
// a duplicate, two who add at once; and what stands in the files then.
#include "e2e/storingsmap.h"
#include "sub/omserie.h"
#include "sub/serzoek.h"
#include "term/scherm.h"
#include "tools/shell.h"

using namespace zg::test;

namespace {

struct Registermap : DemoMap {
    Registermap() : DemoMap("data/demo", "--register") {}
    // A series of the file by its text; its place in the file.
    size_t plaats(int groep, int kleur, int volg) const {
        const auto series = alle<zg::serrec>("DTSER.TXT");
        for (size_t i = 0; i < series.size(); i++)
            if (series[i].serie.artikelgroep == groep && series[i].serie.kleur == kleur &&
                series[i].serie.volgnummer == volg)
                return i;
        return SIZE_MAX;
    }
    zg::serrec serie(int groep, int kleur, int volg) const {
        const size_t p = plaats(groep, kleur, volg);
        return p == SIZE_MAX ? zg::serrec{} : alle<zg::serrec>("DTSER.TXT")[p];
    }
    // Labels of an order: size x pieces, in one text.
    std::string labels(int order) const {
        std::map<int, int> per;
        for (const zg::etiket& l : labels_van(*this, order))
            per[l.maat]++;
        std::string uit;
        for (auto [maat, n] : per)
            uit += std::to_string(maat) + "x" + std::to_string(n) + " ";
        return uit;
    }
};

struct Koper : Programma {
    explicit Koper(const Registermap& map, int slot = 1, const char* naam = "Joke")
        : Programma(overgave(map, slot, naam), demo_opties(map)) {}
    // A new order, on its line screen; `datum` typed over the one proposed, `kop` typed in the header.
    void nieuwe_order(const char* lev, const std::string& datum = "", const std::string& kop = "") {
        t.toetsen(std::string("<Enter><Enter>") + lev + "<Enter>");
        if (t.scherm().find("</> voor nieuwe order") != std::string::npos)
            t.toetsen("/");
        t.toetsen(datum + "<Enter><Esc>" + kop + "<Esc>", "Uw keuze _  Toevoegen");
    }
    void geweigerd(const char* sleutel, const char* waarom) {
        t.toetsen(std::string("Bs") + sleutel, waarom);
        t.toetsen("<Enter><Esc>", "Uw keuze _  T");
    }
};

// The orders of the demo firm look as they do without a register, and looking changes no byte.
TEST(Bijbestel, TheDemoFirmsRegister) {
    Registermap map;
    const auto voor = map.inhoud();
    for (const auto& s : map.alle<zg::serrec>("DTSER.TXT"))
        EXPECT_TRUE(s.nummer >= 1000 && s.etiketkop >= 0 && s.in_nota > 0) << s.nummer;
    EXPECT_EQ(map.alle<zg::serrec>("DTSER.TXT").size(), map.alle<zg::prijsset>("DTIPA.TXT").size());
    Koper p(map);
    p.eerste_order(13);
    p.t.wacht("Inkoop      395.77");
    EXPECT_EQ(p.t.regel(8),
              " NORD Kjole Søs       Bomuld       Prikket          1110  36       7    1323.00");
    EXPECT_EQ(p.t.stuk(5, 14, 10), "1008 / Vår");
    p.t.toetsen("RA<Esc>");
    p.uit("<Esc><Esc>");
    EXPECT_EQ(DemoMap::verschil(voor, map.inhoud()), "DTSYS.TXT ");
}

TEST(Bijbestel, ByNumberWithEachRefusal) {
    Registermap map;
    const zg::serrec was = map.serie(1110, 14, 1);
    ASSERT_EQ(was.leverancier, 13);
    {
        Koper p(map);
        p.nieuwe_order("13");
        p.geweigerd("1100<Enter><Enter><Enter>", "Geen prijzen bekend bij deze leverancier dd. 01-03-16");
        p.t.toetsen("Bs1110<Enter>14<Enter><Enter>", "Levertermijn"); // without quantities it doesn't come
        p.t.toetsen("010416<Enter>300416<Enter><Esc><Esc><Esc>");
        p.t.wacht("Bijbestelling zonder aantallen, wordt niet toegevoegd");
        p.t.toetsen("<Enter>");
        p.t.toetsen("Bs1110<Enter>14<Enter><Enter>", "Levertermijn");
        p.t.toetsen("010416<Enter>300416<Enter>2<Enter>3<Enter><Esc><Esc>", " 14       5 ");
        p.geweigerd("1110<Enter>14<Enter><Enter>",
                    "Er bestaat al een order met dezelfde orderdatum 01-03-16");
        p.uit("<Esc><Esc>");
    }
    zg::serrec nu = map.serie(1110, 14, 1);
    EXPECT_EQ(nu.in_nota, was.in_nota + 5);
    EXPECT_EQ(nu.nummer, was.nummer);
    EXPECT_EQ(nu.levering_tot - nu.laatste_order, 60);
    EXPECT_EQ(map.labels(1013), "2x2 3x3 ") << "the sizes of its price set, from the first on";
    EXPECT_EQ(map.alle<zg::prijsset>("DTIPA.TXT").size(), map.alle<zg::serrec>("DTSER.TXT").size() + 1)
        << "this order has another surcharge: its own prices from its day on";
    {
        Koper p(map);
        p.nieuwe_order("13", "<Home>191015");
        p.geweigerd("1110<Enter>14<Enter><Enter>",
                    "Op de orderdatum was deze serie nog niet gedefinieerd (19-10-15)");
        zet(map, "DTSER.TXT",
            map.plaats(1110, 14, 1) * sizeof(zg::serrec) + offsetof(zg::serrec, stempel_mag),
            '\1'); // now it may be moved back: the next test says no
        p.geweigerd("1110<Enter>14<Enter><Enter>",
                    "Er bestaat al een order met dezelfde orderdatum 19-10-15");
        p.uit("<Esc><Esc>");
    }
    EXPECT_EQ(map.serie(1110, 14, 1).stempel, was.stempel) << "only with a line";
    {
        Koper p(map);
        p.nieuwe_order("13", "<Home>181015");
        p.t.toetsen("Bs1110<Enter>14<Enter><Enter>", "Levertermijn");
        p.t.toetsen("010416<Enter>300416<Enter>1<Enter><Esc><Esc>", " 14       1 ");
        p.uit("<Esc><Esc>");
    }
    EXPECT_EQ(map.serie(1110, 14, 1).stempel % 86400, 0) << "the first second of the order's day";
    EXPECT_LT(map.serie(1110, 14, 1).stempel, was.stempel);
    Koper p(map);
    p.nieuwe_order("13", "<Home>050316", "VEUR<Enter>");
    p.geweigerd("1110<Enter>14<Enter><Enter>", "Afwijkende valutacode");
    p.uit("<Esc><Esc>");
}

// By brand and model; and a duplicate, which is a series of its own with the next free number.
TEST(Bijbestel, ByModelAndDuplicated) {
    Registermap map;
    const size_t series = map.alle<zg::serrec>("DTSER.TXT").size();
    Koper p(map);
    p.nieuwe_order("13");
    p.t.toetsen("Bmnord<Enter>", "Model Bluse"); // the first model of the brand is proposed
    p.t.toetsen("Kjole<Enter>", 25, 1, "<KJOLE> Onbekende serie. Eerstvolgende genomen");
    p.t.toetsen("<Enter><Enter><Enter>", "Levertermijn");
    p.t.toetsen("010416<Enter>300416<Enter>2<Enter><Esc><Esc>", " 14       2 ");
    p.t.toetsen("D<Enter>14<Enter>", "Volgnummer         2");
    p.t.toetsen("1<Enter>", 25, 1, "Serie 1110.14.1 reeds aanwezig");
    p.t.toetsen("7<Enter><Esc><Esc>", "AANTALLEN");
    p.t.toetsen("A<Esc>", "Regels          2");
    p.uit("<Esc><Esc>");
    EXPECT_EQ(map.alle<zg::serrec>("DTSER.TXT").size(), series + 1);
    const zg::serrec nieuw = map.serie(1110, 14, 7);
    EXPECT_EQ(nieuw.in_nota * 10 + (nieuw.etiketkop >= 0), 21);
    EXPECT_EQ(nieuw.nummer, 1000 + static_cast<int>(series));
    EXPECT_EQ(map.labels(1013).substr(1), "x4 ") << "both lines";
}

// Two at work on one group and colour get two numbers, and who gives up leaves none behind.
TEST(Bijbestel, TwoAddAtOnce) {
    Registermap map;
    Koper een(map), twee(map, 2, "Pieter");
    auto tot_het_nummer = [](Koper& p, const char* lev, const char* nummer) {
        p.nieuwe_order(lev);
        p.t.toetsen("T104<Enter>Testjurk<Enter>1110<Enter><Enter><Enter><Esc><Esc><Esc>K14<Enter><Esc>");
        p.t.wacht(std::string("Sernr.  1110. 14.") + nummer);
    };
    tot_het_nummer(een, "13", "2");
    tot_het_nummer(twee, "11", "3");
    twee.t.toetsen("<Home>2<Enter>", 25, 1, "Serie 1110.14.2 reeds aanwezig");
    een.t.toetsen("<Esc>", "Uw keuze _  M, D"); // back in the screen, its number is free again
    twee.t.toetsen("<Home>2<Enter><Enter>", "34  36  38");
    een.t.toetsen("<Esc>", "Sernr.  1110. 14.3");
    twee.t.sein(9);
    EXPECT_EQ(twee.t.einde(), 137);
    EXPECT_NE(lees_bestand(map.bestand("SERNR02.RES")), "");
    Koper weer(map, 2, "Pieter");
    EXPECT_EQ(lees_bestand(map.bestand("SERNR02.RES")), "") << "its number was given up";
    weer.uit("<Esc>");
    een.t.toetsen("<Esc><F6>J<Enter>", "Uw keuze _  Toevoegen");
    een.uit("<Esc><Esc>");
    EXPECT_EQ(lees_bestand(map.bestand("SERNR01.RES")), "");
}

// A list that a sibling has sorted by model follows a model that is changed on an order.
TEST(Bijbestel, AnothersSortIndexFollowsTheModel) {
    Registermap map;
    const std::string index = map.bestand("DTSER.MAKV");
    Terminal maker(
        [] {
            zg::SCRINIT();
            zg::dtser = zg::IXOPEN("DTSER", 2);
            zg::IXCLOSE(zg::sort_index("MAKV", "DTSER.MAKV"));
            zg::SCREXIT();
            return 0;
        },
        demo_opties(map));
    ASSERT_EQ(maker.einde(), 0) << maker.scherm();
    Koper p(map);
    p.eerste_order(13);
    p.t.toetsen("WMMOmega<Enter><Esc>", " NORD OMEGA ");
    p.uit("<Esc><Esc>");
    const zg::serrec serie = map.serie(1110, 36, 1);
    zg::ICB* icb = zg::IXOPEN(index.c_str(), 0);
    uint8_t rec[zg::IXRECMAX] = {};
    memcpy(rec, &serie, sizeof serie);
    EXPECT_TRUE(zg::IXEXISTS(icb, rec));
    zg::IXCLOSE(icb);
}

// Two orders of one series in two terminals: a walk over the lines waits for the one that another has in hand, also when
// he dies with it; two walks that meet the series in opposite order don't wait for each other.
TEST(Bijbestel, OneSeriesInTwoOrders) {
    Registermap map;
    auto een = std::make_unique<Koper>(map);
    Koper twee(map, 2, "Pieter");
    een->eerste_order(13); // Kjole 36, Kjole 14, Bluse 31
    twee.t.toetsen("2016<Enter>W<Enter>13<Enter><Home>020316<Enter><Esc><Esc>");
    for (const char* kleur : {"14", "36"}) { // the other way round
        twee.t.wacht("Uw keuze _  T");
        twee.t.toetsen("Bs1110<Enter>" + std::string(kleur) + "<Enter><Enter>", "Levertermijn");
        twee.t.toetsen("010816<Enter>310816<Enter>2<Enter>3<Enter><Esc><Esc>");
    }
    twee.t.wacht(" 1790.00");
    for (bool sterft : {false, true}) {
        een->t.toetsen("<Down>WA", "AANTALLEN");
        twee.t.reeks(sterft ? "WOI2<Enter><Esc>" : "WOG10<Enter><Esc>");
        twee.t.wacht("DTSER: series --> Informatie in gebruik door Joke");
        if (sterft) {
            een->t.sein(9);
            EXPECT_EQ(een->t.einde(), 137);
            een = std::make_unique<Koper>(map);
            een->leverancier(13);
            een->t.wacht("hersteld");
            een->t.toetsen("<Enter><Enter>");
        } else {
            een->t.toetsen("<Esc><Up>");
        }
        EXPECT_TRUE(twee.t.wacht(" 1611.00") && twee.t.kalm()) << twee.t.scherm();
        een->t.wacht(" 2953.00");
    }
    std::string heen; // their labels' purchase code, through all lines
    for (int ronde = 0; ronde < 8; ronde++)
        heen += "WOI1<Enter><Esc>WOI2<Enter><Esc>";
    een->t.reeks(heen);
    twee.t.reeks(heen);
    EXPECT_TRUE(een->t.kalm(120'000) && twee.t.kalm(120'000)) << een->t.scherm() << twee.t.scherm();
    twee.t.wacht(" 1611.00");
    een->t.wacht(" 2953.00");
    een->uit("<Esc><Esc>");
    twee.uit("<Esc><Esc>");
    EXPECT_EQ(map.labels(1013), "2x4 3x6 ");
    EXPECT_EQ(sh("zgcheck -q \"" + map.pad() + "\"").tekst, "");
}

} // namespace
