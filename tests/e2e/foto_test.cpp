// Pictures of series: found, linked, shown, read in, lost with another brand; and names of files that are no pictures.
#include "e2e/loop.h"
#include "shared/registerrec.h"
#include "shared/sysrec.h"

using namespace zg::test;

namespace {

namespace fs = std::filesystem;

struct Fotomap : DemoMap {
    Fotomap() : DemoMap("data/demo", "--register") {}
    void maak(const std::string& naam) const {
        fs::create_directories(fs::path(bestand(naam)).parent_path());
        schrijf_bestand(bestand(naam), "x");
    }
    void modus(uint8_t m) const { zet(*this, "DTSYS.TXT", zg::SYS_RECORD.start + 6 * 64 + 25, m); }
    // "0103 4110.101.1.PCX" of the link that a series has in the file; free slots are none.
    std::string link(int groep, int kleur, int volg) const {
        for (const auto& r : alle<zg::serpicrec>("DTSERPIC.TXT"))
            if (r.serie.artikelgroep == groep && r.serie.kleur == kleur && r.serie.volgnummer == volg)
                return std::to_string(r.merk) + " " + zg::VASTTEKST(r.bestand);
        return "";
    }
};

// Supplier 12's latest order: one line, series 4110.101.1 of brand 103, which has a picture.
struct Koper : Programma {
    explicit Koper(const Fotomap& map) : Programma(overgave(map), demo_opties(map)) {
        eerste_order();
        t.toetsen("wm", "Afbeelding (Q)");
    }
};

TEST(Foto, FoundAndLinked) {
    Fotomap map;
    const std::string lang41(41, 'L'), lang42(42, 'L');
    for (const std::string& naam :
         {lang41 + ".jpg", lang42 + ".JPG", std::string("BLAUW ZIJ.Jpg"), std::string("blauw.txt"),
          std::string(".BLAUW.PCX"), std::string("BLAUW\x1b[2J.PCX")})
        map.maak("foto/0103/" + naam);
    ASSERT_EQ(map.link(4110, 101, 1), "103 4110.101.1.PCX");
    Koper k(map);
    // 45 bytes stand in the list, 46 are told; what is no picture isn't there.
    k.t.toetsen("q<F8>blau<Enter>", "Aantal afbeeldingen met te lange naam: 1");
    EXPECT_TRUE(bevat(k.t.scherm(), "Deze afbeelding kan hierna niet worden geselecteerd."));
    k.t.toetsen("<Enter>", "BLAUW ZIJ.Jpg");
    const std::string lijst = k.t.scherm();
    EXPECT_FALSE(bevat(lijst, "blauw.txt"));
    EXPECT_FALSE(bevat(lijst, "[2J"));
    EXPECT_FALSE(bevat(lijst, ".BLAUW"));
    k.t.toetsen("<Enter>", "Uw keuze _  Merk");
    EXPECT_EQ(map.link(4110, 101, 1), "103 BLAUW ZIJ.Jpg");
    // By the list: what is linked, what isn't; the one of 45 bytes.
    k.t.toetsen("q<F5><Enter>+", "wel koppeling ");
    EXPECT_TRUE(bevat(k.t.scherm(), "BLAUW ZIJ"));
    EXPECT_FALSE(bevat(k.t.scherm(), lang41));
    k.t.toetsen("-", "geen koppeling ");
    EXPECT_FALSE(bevat(k.t.scherm(), "BLAUW ZIJ"));
    k.t.toetsen("<F8>lll<Enter>", (lang41 + ".jpg"));
    k.t.toetsen("<Enter>", "Uw keuze _  Merk");
    EXPECT_EQ(map.link(4110, 101, 1), "103 " + lang41 + ".jpg");
    // Typed: no picture, not there; emptied, the link goes.
    k.t.toetsen("q../DTSYS.PCX<Enter>", "Afbeelding heeft foutief formaat!");
    k.t.toetsen("<Enter><Home><Del><Del><Del>", "Afbeelding (Q)     DTSYS.PCX");
    k.t.toetsen("<Enter>", "Afbeelding DTSYS.PCX niet aanwezig");
    fs::create_directory(map.bestand("foto/0103/DTSYS.PCX"));
    k.t.toetsen("<Enter><Enter>", "Afbeelding DTSYS.PCX niet aanwezig");
    k.t.toetsen("<Enter><Esc>q <Enter>", "Uw keuze _  Merk");
    k.uit("<Esc><Esc><Esc>");
    EXPECT_EQ(map.link(4110, 101, 1), "");
}

TEST(Foto, ShownInBothModes) {
    Fotomap map;
    const std::string lang(30, 'A');
    map.maak("foto/0103/" + lang + ".PCX");
    {
        Koper k(map);
        k.t.toetsen("<Esc>wp", "PRIJSINFORMATIE");
        k.t.toetsen("q", "Fotoflits");
        EXPECT_NE(k.t.regel(22).find(" foto/0103/4110.101.1.PCX "), std::string::npos) << k.t.scherm();
        // The key goes on to the screen below.
        k.t.toetsen("i", "INKOOPPRIJZEN");
        k.t.toetsen("<Esc><Esc><Esc>");
        fs::remove(map.bestand("foto/0103/4110.101.1.PCX"));
        k.t.toetsen("waq", "De afbeelding is niet (meer) aanwezig.");
        k.t.toetsen("<Enter><Esc>", "Uw keuze _  T");
        k.uit("<Esc><Esc><Esc>");
    }
    map.modus(10);
    map.maak("foto/0103/ROOD.JPG");
    Koper k(map);
    k.t.toetsen("q<Del>ROOD.JPG<F10>", "Afbeelding heeft foutief formaat.");
    k.t.toetsen(("<Enter><Home>" + lang + ".PCX<F10>"), "Naam van de afbeelding is te lang.");
    k.t.toetsen("<Enter><Esc>q<F5><Enter>", "Uw keuze _  Merk");
    k.uit("<Esc><Esc><Esc>");
}

TEST(Foto, ReadInAndLostWithTheBrand) {
    Fotomap map;
    map.maak("foto/0103/ZOMER.PCX");
    Koper k(map);
    k.t.toetsen("q<F5><F7>", "ZOMER.PCX                                     *1");
    k.t.toetsen("<F6><F3>", "wel/geen koppeling");
    EXPECT_TRUE(fs::exists(map.bestand("foto/0103/ZOMER.01.PCX")));
    EXPECT_TRUE(fs::exists(map.bestand("foto/0103/ACHTERKANT.PCX")));
    EXPECT_TRUE(fs::is_empty(map.bestand("foto/nieuw")));
    k.t.toetsen("<Esc><Esc>r104<Enter>", "Aan deze serie is een afbeelding gekoppeld.");
    k.t.toetsen("n<Enter>", "Merk               103");
    EXPECT_EQ(map.link(4110, 101, 1), "103 4110.101.1.PCX");
    k.t.toetsen("r104<Enter>j<Enter>", "Merk               104");
    EXPECT_EQ(map.link(4110, 101, 1), "");
    // The first ones of a brand that has no directory yet; one that goes while the list stands isn't linked.
    fs::remove_all(map.bestand("foto/0104"));
    map.maak("foto/nieuw/HERFST.PCX");
    k.t.toetsen("q<F5>", "<F3> Inlezen");
    k.t.toetsen("<F6><F3>", "wel/geen koppeling");
    fs::remove(map.bestand("foto/0104/HERFST.PCX"));
    k.t.toetsen("<Enter>", "De afbeelding is niet (meer) aanwezig.");
    k.t.toetsen("<Enter><Esc>");
    EXPECT_EQ(map.link(4110, 101, 1), "");
    k.uit("<Esc><Esc><Esc>");
}

// A duplicate gets the picture that is chosen for it; a series that is given up leaves no link behind.
TEST(Foto, Duplicate) {
    Fotomap map;
    Koper k(map);
    k.t.toetsen("<Esc>d", "DUPLICEREN MODEL");
    k.t.toetsen("<Enter>7<Enter><Enter>", "Afbeelding(Q)");
    k.t.toetsen("q<F5><Enter><Esc>", "PRIJSINFORMATIE");
    k.t.toetsen("<Esc><Esc><Esc>", "Uw keuze _  T");
    EXPECT_EQ(map.link(4110, 7, 1), "103 4110.101.1.PCX") << k.t.scherm();
    k.uit("<Esc><Esc>");
}

} // namespace
