// Size types, bars, the sizes of a series: what a user does, and what the files hold afterwards.
#include "sub/maatsoort.h"
#include "support/schrijfstoring.h"
#include "support/systeem.h"
#include "term/gesprek.h"

namespace zg::test {
namespace {

struct Maten : Systeem {
    Maten() {
        firma.maatstelsel = 1;
        maak_maatsoort(1, "Confectie", {"XS", "S", "M", "L", "XL"});
    }
    static void begin() {
        open(); // the locks of a child are its own
        dtmaat = IXOPEN("DTMAAT", 2);
    }
};

using Nummers = std::vector<int>;

// The bars on file: "2:1,3 ", with their type where it isn't 1.
std::string balken() {
    std::string uit;
    Slot<maatbalkrec> slot{};
    while (iotab('N', &slot, SYS_MAATBALK))
        uit += std::to_string(slot.nr) + ":" + maten_in(slot.r.maten) + " ";
    return uit;
}

TEST_F(Maten, Bars) {
    zet(4, maatbalkrec{1, {0x0A}, {}}, SYS_MAATBALK); // XS, M
    zet(5, maatbalkrec{2, {0x02}, {}}, SYS_MAATBALK); // of another type
    int32_t bezet = 1;
    maatbalkrec leeg;
    iotab('X', &bezet, &leeg, SYS_MAATBALK); // somebody makes number 1
    for (const auto& [acties, toetsen, uit, na] : Rijen<const char*, const char*, const char*, const char*>{
             {"STVW", "t<Enter>tj<Enter>njjn<Left>jj<Down>s", "1 2,3,4,5", "2:2,3,4,5 4:1,3 5:1 "},
             {"STVW", "<Down>w<Right><Right>n<Esc>s", "1 1", "4:1 5:1 "},
             {"STVW", "<Down>wn<Right>n<Esc><Esc>", "0", "5:1 "}, // emptied: gone
             {"STVW", "<Down>v<Enter>vj<Enter><Down><Enter><Enter>s", "1 1,2,3,4,5", "5:1 "},
             {"S", "t<Down>wv<Enter>x<F3> s", "1 1,3", "4:1,3 5:1 "}, // looked at, nothing else
         }) {
        SCOPED_TRACE(toetsen);
        for (int32_t nr : {1, 2, 3, 4})
            if (nr != bezet)
                zet(nr, nr == 4 ? maatbalkrec{1, {0x0A}, {}} : maatbalkrec{}, SYS_MAATBALK);
        Gesprek t([&] {
            begin();
            balk_open(1, 1, nullptr);
            uint8_t maten[MAATBYTES] = {};
            const bool er = maatbalk_kiezen(acties, maten);
            return vorm("%d %s", er, maten_in(maten).c_str());
        });
        EXPECT_EQ(t.antwoord(toetsen), uit);
        EXPECT_EQ(balken(), na);
    }
    zet(4, maatbalkrec{1, {0x0A}, {}}, SYS_MAATBALK);
    Gesprek t([] {
        begin();
        balk_open(1, 1, nullptr);
        uint8_t maten[MAATBYTES] = {};
        return vorm("%d", maatbalk_kiezen("STVW", maten));
    });
    t.toetsen("<Down>w<Right><Right>n<Esc>", " 4  XS     ");
    EXPECT_TRUE(bevat(t.scherm(), " 0 alle maten")) << "the page stays";
}

// A refused bar can be written again, or left.
TEST_F(Maten, BarsAtEachWrite) {
    zet(4, maatbalkrec{1, {0x0A}, {}}, SYS_MAATBALK);
    auto kies = [] {
        balk_open(1, 1, nullptr);
        uint8_t maten[MAATBYTES] = {};
        maatbalk_kiezen("STVW", maten);
    };
    auto lijst = [&] {
        begin();
        kies();
    };
    auto stand = [] {
        open();
        return balken();
    };
    bij_elke_schrijfactie(lijst, "tj\nj\033\033", {}, stand, {"4:1,3 ", "1:1 4:1,3 "});
    zet(1, maatbalkrec{1, {0x1E}, {}}, SYS_MAATBALK);
    Gesprek t([&] {
        begin();
        echt = SYS.pwrite, over = 0;
        SYS.pwrite = stoor;
        kies();
        return balken();
    });
    t.toetsen("<Down>wn<Esc>", "schijf vol");
    EXPECT_EQ(t.antwoord("<Enter><Enter><Right>n<Esc><Esc>"), "1:3,4 4:1,3");
}

TEST_F(Maten, SizesOfASeries) {
    zet(4, maatbalkrec{1, {0x0A, 0x40}, {}}, SYS_MAATBALK); // XS, M, and 14, which the type doesn't have
    gesprekken_over<Nummers>(
        [](const Nummers& er_zijn) {
            begin();
            balk_open(1, 1, nullptr);
            auto maten = maten_van(er_zijn);
            const uint8_t vast[MAATBYTES] = {0x04};
            const bool er = serie_maten(8, 1, maten.data(), vast);
            return vorm("%d %s k%d", er, maten_in(maten.data()).c_str(), balk_kolommen());
        },
        {
            {{}, "s<Enter>", "1 1,2,3,4,5 k5"},
            {{},
             "<Down>s<F5>s<Esc><Esc><Enter>",
             "1 1,2,3,4,5 k5"}, // a bar is added to what there is; ESC changes sizes
            {{}, "<Down>s<Enter>", "1 1,3 k2"},
            {{}, "<Esc><Esc>", "0  k0"},
            {{}, "<Esc>nnnnn<Right>j<Esc><Enter>", "1 2 k1"},
            {{2, 3},
             "<Esc><Right>n<Right>njj<Enter>",
             "1 2,4,5 k3"}, // nothing is taken from a size with quantities
            {{2, 3, 14}, "n<Enter><Right>n<Right>n<Esc><Enter>", "1 2,14 k1"},
            {{14}, "<Esc>", "0 14 k0"}, // its own set again
            {{3}, "n<Enter><Right><Right>n<Esc>", "0 3 k1"},
        });
    std::vector<std::string> veel;
    for (int i = 1; i <= 19; i++)
        veel.push_back("m" + std::to_string(i));
    maak_maatsoort(2, "Veel", veel);
    Gesprek lang([] {
        begin();
        balk_open(1, 2, nullptr);
        uint8_t maten[MAATBYTES] = {0xFE, 0xFF, 0x0F};
        return vorm("%d", serie_maten(8, 1, maten, nullptr));
    });
    lang.toetsen("<F8>");
    EXPECT_TRUE(lang.wacht(" <  m19 ")) << lang.scherm();
    lang.toetsen("<F7>");
    EXPECT_TRUE(lang.wacht("   m1  m2 ")) << lang.scherm();
    lang.toetsen("n<Enter><Left>");
    EXPECT_TRUE(lang.wacht("Ongeldige toets")) << "beside the first";
    lang.toetsen("<Esc><Enter>");
    EXPECT_EQ(lang.antwoord(), "1");
    Gesprek leeg([] {
        begin();
        balk_open(1, 9, nullptr);
        uint8_t maten[MAATBYTES] = {2};
        return vorm("%d %s", serie_maten(8, 1, maten, nullptr), SCHERM.statustekst);
    });
    EXPECT_EQ(leeg.antwoord(), "0 Maatsoort 9: geen maten gedefinieerd");
}

// The sizes of a type on file in bar order, "1:XS 2:S", and its description behind them.
std::string op_bestand(uint8_t stelsel, uint8_t soort) {
    std::string uit;
    dtmaat = IXOPEN("DTMAAT", 2);
    mthandle* h = mtopen(stelsel, soort, 0);
    mtinfo info{};
    for (int er = mtread(h, 'F', &info, 2); er; er = mtread(h, 'N', &info, 2))
        uit += std::to_string(info.maatnr) + ":" + VASTTEKST(info.naam) + " ";
    mtclose(h);
    IXCLOSE(dtmaat);
    dtmaat = nullptr;
    return uit + lijstnaam(MAATSOORTTABEL, {soort, ""});
}

TEST_F(Maten, ScreenOfAType) {
    maak_maatsoort(2, "Heren", {"46", "~1", "48"});
    std::vector<std::string> veel;
    for (int i = 1; i < MATEN; i++)
        veel.push_back(std::to_string(100 + i));
    maak_maatsoort(3, "Veel", veel);
    struct {
        uint8_t stelsel, soort;
        const char *toetsen, *melding, *weg, *uit;
    } const rijen[] = {
        {1, 1, "12<Right><F8>XSM", "", "<Esc><Esc>", "1:XS 2:S 3:M 4:L 5:XL Confectie"}, // not entered
        {1, 1, "12<Right><F8>XSM<Enter>", "", "<Esc><Esc>", "1:XS 6:XSM 2:S 3:M 4:L 5:XL Confectie"},
        // Found on opening: label and number stay, whatever is tried.
        {1, 1, "12Q<Enter>", "wijzigen niet toegestaan, maat mogelijk in gebruik", "<Esc><Esc>",
         "1:XS 6:XSM 2:S 3:M 4:L 5:XL Confectie"},
        {1, 1, "12<Right> <Enter>", "verwijderen niet toegestaan, maat mogelijk in gebruik", "<Esc><Esc>",
         "1:XS 6:XSM 2:S 3:M 4:L 5:XL Confectie"},
        // Added now: changed, taken out, its number used again; a blank that is left goes.
        {1, 1, "12<F8>A<Enter><Left>B<Enter><F8>C<Enter><F8><Enter><Left><Left> <Enter>", "", "<Esc><Esc>",
         "8:C 1:XS 6:XSM 2:S 3:M 4:L 5:XL Confectie"},
        {1, 2, "12<Right>47<Enter><F8>48<Enter>", "<48 > komt reeds voor", "<Esc><Esc>",
         "1:46 2:47 3:48 Heren"},
        {2, 7, "j<Enter>Ander<Enter>A<Enter>B<Enter><Left><Left><F8>C<Enter>", "", "<Esc><Esc>",
         "3:C 1:A 2:B Ander"},
        {1, 7, "12<Left>", "Ongeldige toets", "<Esc><Esc>", "Ander"}, // in the other size system only
        {1, 8, "j<Enter>Niets<Enter><Esc>", "Maatsoort moet minimaal 1 maat bevatten", "<Esc>", ""},
        {1, 9, "j<Enter>Weg<Enter>A<Enter><Esc>V", "", "j<Enter>", ""},
        {1, 9, "", "", "<Enter>", ""},
    };
    for (const auto& r : rijen) {
        SCOPED_TRACE(r.toetsen);
        Gesprek t([&] {
            begin();
            uint8_t twee[MAATBYTES] = {0x0C};
            balk_open(1, 1, twee);
            maatsoort_onderhoud(4, 1, r.stelsel, r.soort);
            return vorm("%d %s", balk_kolommen(), balk_naam(1));
        });
        t.toetsen(r.toetsen);
        EXPECT_EQ(t.regel(25), r.melding);
        EXPECT_EQ(t.antwoord(r.weg), "2 S") << "the bar that was in force is so again";
        EXPECT_EQ(op_bestand(r.stelsel, r.soort), r.uit);
    }
}

// A table that is full, and one that contradicts itself.
TEST_F(Maten, FullAndDamaged) {
    std::vector<std::string> veel;
    for (int i = 1; i < MATEN; i++)
        veel.push_back(std::to_string(100 + i));
    maak_maatsoort(3, "Veel", veel);
    Gesprek t([] {
        begin();
        maatsoort_onderhoud(4, 1, 1, 3);
        return std::string("klaar");
    });
    t.toetsen("12");
    EXPECT_EQ(t.stuk(14, 3, 20), "F8 voor tussenvoegen");
    t.toetsen("<F8>vol<Enter>");
    EXPECT_EQ(t.stuk(14, 3, 20), "                    ") << "95 sizes";
    t.toetsen("<F8><Esc><Esc>");
    t.antwoord();
    EXPECT_EQ(op_bestand(1, 3).substr(0, 19), "95:vol 1:101 2:102 ");

    const std::string goed = lees_bestand("DTMAAT.TXT");
    std::string stuk = goed;
    stuk[14 + 2 * 4 + 3] = 1; // the second size of type 1 on the first one's place
    schrijf_bestand("DTMAAT.TXT", stuk);
    Gesprek d([] {
        begin();
        return vorm("%d", maatsoort_onderhoud(4, 1, 1, 1));
    });
    d.wacht("De maten van deze maatsoort zijn beschadigd");
    EXPECT_EQ(d.antwoord("<Enter>"), "1");
    EXPECT_EQ(lees_bestand("DTMAAT.TXT"), stuk);
}

// A write that the disk refuses is told, and the screen keeps what was entered until it can be written, or is left
// without.
TEST_F(Maten, RefusedWrites) {
    static bool maten; // of the sizes, else of the description
    static int weiger;
    struct {
        bool maten;
        uint8_t soort;
        const char *toetsen, *weg, *uit;
    } const rijen[] = {
        {true, 1, "12<Right><F8>XSM<Enter><Esc><Esc>", "<Enter><Enter><Esc>",
         "1:XS 6:XSM 2:S 3:M 4:L 5:XL Confectie"},
        {true, 1, "12<F8>A<Enter><Esc><Esc>", "<Enter>j<Enter>", "1:XS 6:XSM 2:S 3:M 4:L 5:XL Confectie"},
        {false, 1, "11Dames<Enter><Esc>", "<Enter><Enter><Esc>", "1:XS 6:XSM 2:S 3:M 4:L 5:XL Dames"},
        // A new type whose description can't be written has no sizes either.
        {false, 7, "j<Enter>Nieuw<Enter>A<Enter><Esc>", "<Enter>j<Enter>", ""},
        {false, 7, "j<Enter>Nieuw<Enter>A<Enter><Esc>", "<Enter><Enter><Esc>", "1:A Nieuw"},
        // The key of a new type's sizes is still its own when they are refused.
        {true, 8, "j<Enter>Nieuw<Enter>A<Enter><Esc>", "<Enter><Enter><Esc>", "1:A Nieuw"},
    };
    for (const auto& r : rijen) {
        SCOPED_TRACE(vorm("%s %s", r.toetsen, r.weg));
        Gesprek t([&] {
            begin();
            maten = r.maten, weiger = 1;
            SYS.pwrite = [](int fd, const void* p, size_t n, off_t plaats) -> ssize_t {
                if (weiger && fd == (maten ? dtmaat->datfd : iotab_fd()))
                    return weiger = 0, errno = ENOSPC, -1;
                return pwrite(fd, p, n, plaats);
            };
            maatsoort_onderhoud(4, 1, 1, r.soort);
            return vorm("%d", weiger);
        });
        t.toetsen(r.toetsen, "schijf vol");
        EXPECT_EQ(t.antwoord(r.weg), "0");
        EXPECT_EQ(op_bestand(1, r.soort), r.uit);
    }
}

// The sizes are old or new, and no type has a description without sizes.
TEST_F(Maten, TypeAtEachWrite) {
    for (const auto& [soort, toetsen, goed] : Rijen<uint8_t, const char*, std::vector<std::string>>{
             {1,
              "12\001XXS\n\033\033",
              {"1:XS 2:S 3:M 4:L 5:XL Confectie", "6:XXS 1:XS 2:S 3:M 4:L 5:XL Confectie"}},
             {7, "j\nNieuw\nA\nB\n\033\033", {"", "1:A ", "1:A 2:B ", "1:A 2:B Nieuw"}},
             {7, "j\nNieuw\nA\n\033Vj\n", {"", "1:A ", "1:A Nieuw", ""}},
         })
        bij_elke_schrijfactie(
            [&] {
                begin();
                maatsoort_onderhoud(4, 1, 1, soort);
            },
            toetsen, {"DTMAAT"},
            [&] {
                open();
                return op_bestand(1, soort);
            },
            goed);
}

} // namespace
} // namespace zg::test
