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
    void modus(uint8_t m) const {
        wijzig_bestand(bestand("DTSYS.TXT"), zg::SYS_RECORD.start + 6 * 64 + 25,
                       {reinterpret_cast<char*>(&m), 1});
    }
    // "0103 4110.101.1.PCX" of the link that a series has in the file; free slots are none.
    std::string link(int groep, int kleur, int volg) const {
        const std::string bytes = lees_bestand(bestand("DTSERPIC.TXT"));
        for (size_t p = 0; p + sizeof(zg::serpicrec) <= bytes.size(); p += sizeof(zg::serpicrec)) {
            zg::serpicrec r;
            memcpy(&r, &bytes[p], sizeof r);
            if (r.serie.artikelgroep == groep && r.serie.kleur == kleur && r.serie.volgnummer == volg)
                return std::to_string(r.merk) + " " + zg::VASTTEKST(r.bestand);
        }
        return "";
    }
};

// Supplier 12's latest order: one line, series 4110.101.1 of brand 103, which has a picture.
struct Koper : Programma {
    explicit Koper(const Fotomap& map) : Programma(overgave(map), demo_opties(map)) {
        eerste_order();
        t.toetsen("wm", "Afbeelding (Q)");
    }
    void toetsen(const char* toetsen, const char* wat) {
        t.toetsen(toetsen);
        EXPECT_TRUE(t.wacht(wat)) << toetsen << "\n" << t.scherm();
    }
    void klaar() {
        t.toetsen("<Esc><Esc><Esc>");
        uit();
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
    k.toetsen("q<F8>blau<Enter>", "Aantal afbeeldingen met te lange naam: 1");
    EXPECT_TRUE(bevat(k.t.scherm(), "Deze afbeelding kan hierna niet worden geselecteerd."));
    k.toetsen("<Enter>", "BLAUW ZIJ.Jpg");
    const std::string lijst = k.t.scherm();
    EXPECT_FALSE(bevat(lijst, "blauw.txt"));
    EXPECT_FALSE(bevat(lijst, "[2J"));
    EXPECT_FALSE(bevat(lijst, ".BLAUW"));
    k.toetsen("<Enter>", "Uw keuze _  Merk");
    EXPECT_EQ(map.link(4110, 101, 1), "103 BLAUW ZIJ.Jpg");
    // By the list: what is linked, what isn't; the one of 45 bytes.
    k.toetsen("q<F5><Enter>+", "wel koppeling ");
    EXPECT_TRUE(bevat(k.t.scherm(), "BLAUW ZIJ"));
    EXPECT_FALSE(bevat(k.t.scherm(), lang41));
    k.toetsen("-", "geen koppeling ");
    EXPECT_FALSE(bevat(k.t.scherm(), "BLAUW ZIJ"));
    k.toetsen("<F8>lll<Enter>", (lang41 + ".jpg").c_str());
    k.toetsen("<Enter>", "Uw keuze _  Merk");
    EXPECT_EQ(map.link(4110, 101, 1), "103 " + lang41 + ".jpg");
    // Typed: no picture, not there; emptied, the link goes.
    k.toetsen("q../DTSYS.PCX<Enter>", "Afbeelding heeft foutief formaat!");
    k.toetsen("<Enter><Home><Del><Del><Del>", "Afbeelding (Q)     DTSYS.PCX");
    k.toetsen("<Enter>", "Afbeelding DTSYS.PCX niet aanwezig");
    fs::create_directory(map.bestand("foto/0103/DTSYS.PCX"));
    k.toetsen("<Enter><Enter>", "Afbeelding DTSYS.PCX niet aanwezig");
    k.toetsen("<Enter><Esc>q <Enter>", "Uw keuze _  Merk");
    k.klaar();
    EXPECT_EQ(map.link(4110, 101, 1), "");
}

TEST(Foto, ShownInBothModes) {
    Fotomap map;
    const std::string lang(30, 'A');
    map.maak("foto/0103/" + lang + ".PCX");
    {
        Koper k(map);
        k.toetsen("<Esc>wp", "PRIJSINFORMATIE");
        k.toetsen("q", "Fotoflits");
        EXPECT_NE(k.t.regel(22).find(" foto/0103/4110.101.1.PCX "), std::string::npos) << k.t.scherm();
        // The key goes on to the screen below.
        k.toetsen("i", "INKOOPPRIJZEN");
        k.t.toetsen("<Esc><Esc><Esc>");
        fs::remove(map.bestand("foto/0103/4110.101.1.PCX"));
        k.toetsen("waq", "De afbeelding is niet (meer) aanwezig.");
        k.toetsen("<Enter><Esc>", "Uw keuze _  T");
        k.klaar();
    }
    map.modus(10);
    map.maak("foto/0103/ROOD.JPG");
    Koper k(map);
    k.toetsen("q<Del>ROOD.JPG<F10>", "Afbeelding heeft foutief formaat.");
    k.toetsen(("<Enter><Home>" + lang + ".PCX<F10>").c_str(), "Naam van de afbeelding is te lang.");
    k.toetsen("<Enter><Esc>q<F5><Enter>", "Uw keuze _  Merk");
    k.klaar();
}

TEST(Foto, ReadInAndLostWithTheBrand) {
    Fotomap map;
    map.maak("foto/0103/ZOMER.PCX");
    Koper k(map);
    k.toetsen("q<F5><F7>", "ZOMER.PCX                                     *1");
    k.toetsen("<F6><F3>", "wel/geen koppeling");
    EXPECT_TRUE(fs::exists(map.bestand("foto/0103/ZOMER.01.PCX")));
    EXPECT_TRUE(fs::exists(map.bestand("foto/0103/ACHTERKANT.PCX")));
    EXPECT_TRUE(fs::is_empty(map.bestand("foto/nieuw")));
    k.toetsen("<Esc><Esc>r104<Enter>", "Aan deze serie is een afbeelding gekoppeld.");
    k.toetsen("n<Enter>", "Merk               103");
    EXPECT_EQ(map.link(4110, 101, 1), "103 4110.101.1.PCX");
    k.toetsen("r104<Enter>j<Enter>", "Merk               104");
    EXPECT_EQ(map.link(4110, 101, 1), "");
    // The first ones of a brand that has no directory yet; one that goes while the list stands isn't linked.
    fs::remove_all(map.bestand("foto/0104"));
    map.maak("foto/nieuw/HERFST.PCX");
    k.toetsen("q<F5>", "<F3> Inlezen");
    k.toetsen("<F6><F3>", "wel/geen koppeling");
    fs::remove(map.bestand("foto/0104/HERFST.PCX"));
    k.toetsen("<Enter>", "De afbeelding is niet (meer) aanwezig.");
    k.t.toetsen("<Enter><Esc>");
    EXPECT_EQ(map.link(4110, 101, 1), "");
    k.klaar();
}

// A duplicate gets the picture that is chosen for it; a series that is given up leaves no link behind.
TEST(Foto, Duplicate) {
    Fotomap map;
    Koper k(map);
    k.toetsen("<Esc>d", "DUPLICEREN MODEL");
    k.toetsen("<Enter>7<Enter><Enter>", "Afbeelding(Q)");
    k.toetsen("q<F5><Enter><Esc>", "PRIJSINFORMATIE");
    k.toetsen("<Esc><Esc><Esc>", "Uw keuze _  T");
    EXPECT_EQ(map.link(4110, 7, 1), "103 4110.101.1.PCX") << k.t.scherm();
    k.uit("<Esc><Esc>");
}

} // namespace
