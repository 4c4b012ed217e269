// Size types, bars, the sizes of a series: what a user does, and what the files hold afterwards.
#include "shared/iotab.h"
#include "shared/maatbalk.h"
#include "sub/maatsoort.h"
#include "support/paar.h"
#include "support/systeem.h"
#include "term/gesprek.h"

namespace zg {
namespace {

using test::Gesprek;
using test::vorm;

struct Maten : test::Systeem {
    Maten() {
        firma = {};
        firma.maatstelsel = 1;
        type(1, "Confectie", {"XS", "S", "M", "L", "XL"});
    }
    ~Maten() override { firma = {}; }
    // A size type on file, sizes numbered in bar order.
    static void type(uint8_t soort, const char* naam, const std::vector<std::string>& maten,
                     uint8_t stelsel = 1) {
        tekst20 rec{};
        VASTIN(rec.tekst, naam);
        zet(soort, rec, SYS_MAATSOORT);
        dtmaat = soort == 1 ? test::nieuw_paar("DTMAAT", {"maten,404", "k1,NODUPS,I,1,1,I,2,2"}, 2)
                            : IXOPEN("DTMAAT", 2);
        dtmtom = nullptr;
        mthandle* h = mtopen(stelsel, soort, 2);
        mtinfo info{};
        for (const std::string& m : maten) {
            info.positie++;
            info.maatnr = info.positie;
            VASTIN(info.naam, (m + "  ").substr(0, 3));
            EXPECT_EQ(mtinsert(h, &info), 1);
        }
        mtclose(h);
        IXCLOSE(dtmaat);
        dtmaat = nullptr;
    }
    static void begin() {
        open(); // the locks of a child are its own
        dtmaat = IXOPEN("DTMAAT", 2);
    }
};

using Nummers = std::vector<int>;

void zet_maten(uint8_t* masker, const Nummers& maten) {
    for (int m : maten)
        maat_aan(masker, m);
}
std::string tekst(const uint8_t* masker) {
    std::string uit;
    for (int m = 1; m <= MATEN; m++)
        if (maat_in(masker, m))
            uit += (uit.empty() ? "" : ",") + std::to_string(m);
    return uit;
}
// The bars on file: "2:1,3 ", with their type where it isn't 1.
std::string balken() {
    std::string uit;
    Slot<maatbalkrec> slot{};
    while (iotab('N', &slot, SYS_MAATBALK))
        uit += std::to_string(slot.nr) + ":" + tekst(slot.r.maten) + " ";
    return uit;
}

TEST_F(Maten, Bars) {
    zet(4, maatbalkrec{1, {0x0A}, {}}, SYS_MAATBALK); // XS, M
    zet(5, maatbalkrec{2, {0x02}, {}}, SYS_MAATBALK); // of another type
    int32_t bezet = 1;
    maatbalkrec leeg;
    iotab('X', &bezet, &leeg, SYS_MAATBALK); // somebody makes number 1
    struct {
        const char *acties, *toetsen, *uit, *na;
    } const rijen[] = {
        {"STVW", "t<Enter>tj<Enter>njjn<Left>jj<Down>s", "1 2,3,4,5", "2:2,3,4,5 4:1,3 5:1 "},
        {"STVW", "<Down>w<Right><Right>n<Esc>s", "1 1", "4:1 5:1 "},
        {"STVW", "<Down>wn<Right>n<Esc><Esc>", "0", "5:1 "}, // emptied: gone
        {"STVW", "<Down>v<Enter>vj<Enter><Down><Enter><Enter>s", "1 1,2,3,4,5", "5:1 "},
        {"S", "t<Down>wv<Enter>x<F3> s", "1 1,3", "4:1,3 5:1 "}, // looked at, nothing else
    };
    for (const auto& r : rijen) {
        SCOPED_TRACE(r.toetsen);
        for (int32_t nr : {1, 2, 3, 4})
            if (nr != bezet)
                zet(nr, nr == 4 ? maatbalkrec{1, {0x0A}, {}} : maatbalkrec{}, SYS_MAATBALK);
        Gesprek t([&] {
            begin();
            balk_open(1, 1, nullptr);
            uint8_t maten[MAATBYTES] = {};
            const bool er = maatbalk_kiezen(r.acties, maten);
            return vorm("%d %s", er, tekst(maten).c_str());
        });
        t.toetsen(r.toetsen);
        EXPECT_EQ(t.antwoord(), r.uit);
        EXPECT_EQ(balken(), r.na);
    }
}

TEST_F(Maten, SizesOfASeries) {
    zet(4, maatbalkrec{1, {0x0A, 0x40}, {}}, SYS_MAATBALK); // XS, M, and 14, which the type doesn't have
    struct {
        Nummers begin;
        const char *toetsen, *uit;
    } const rijen[] = {
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
    };
    for (const auto& r : rijen) {
        SCOPED_TRACE(r.toetsen);
        Gesprek t([&] {
            begin();
            balk_open(1, 1, nullptr);
            uint8_t maten[MAATBYTES] = {}, vast[MAATBYTES] = {0x04};
            zet_maten(maten, r.begin);
            const bool er = serie_maten(8, 1, maten, vast, nullptr);
            return vorm("%d %s k%d", er, tekst(maten).c_str(), balk_kolommen());
        });
        t.toetsen(r.toetsen);
        EXPECT_EQ(t.antwoord(), r.uit);
    }
    Gesprek leeg([] {
        begin();
        balk_open(1, 9, nullptr);
        uint8_t maten[MAATBYTES] = {2};
        return vorm("%d %s", serie_maten(8, 1, maten, nullptr, nullptr), SCHERM.statustekst);
    });
    EXPECT_EQ(leeg.antwoord(), "0 Maatsoort 9: geen maten gedefinieerd");
}

} // namespace
} // namespace zg
