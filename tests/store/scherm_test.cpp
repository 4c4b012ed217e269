// What a user sees of the store: the question when a file can't be opened, who is in the way, the warning boxes, a
// report that ends the program.
#include "store/bestand.h"
#include "store/hulp.h"
#include "store/node.h"
#include "term/gesprek.h"

namespace zg::test {
namespace {

const Tabel tabel{20, {"k,I,1,4"}};

int weigeringen;
int geen_toegang(const char* pad, int vlaggen, mode_t bits) {
    if (weigeringen-- > 0) {
        errno = EACCES;
        return -1;
    }
    return open(pad, vlaggen, bits);
}

TEST(StoreScherm, GeenToegangNogmaalsProberen) {
    TijdelijkeMap map;
    maak_paar("T", tabel);
    auto vraag = [](int n) {
        return [n] {
            weigeringen = n;
            SYS.open = geen_toegang;
            IXCLOSE(IXOPEN("T", 2 + IXVRAAG));
            return std::string("open");
        };
    };
    Gesprek g(vraag(2));
    EXPECT_TRUE(g.wacht("onvoldoende bevoegdheden om het bestand te openen."));
    EXPECT_TRUE(g.wacht("T.TXT"));
    EXPECT_TRUE(g.wacht("Nogmaals proberen"));
    g.toetsen("J<Enter>");
    g.toetsen("<Enter>"); // yes is the default
    EXPECT_EQ("open", g.antwoord());
    Gesprek nee(vraag(1));
    nee.toetsen("N<Enter>");
    EXPECT_TRUE(nee.wacht("QUILLDB(13): T.TXT "));
    EXPECT_TRUE(nee.wacht("PROGRAMMA AFGEBROKEN"));
    nee.stuur("\r");
    EXPECT_EQ(1, nee.einde());
}

// An index that was cut under an open handle, without its root and without a leaf: the block that isn't there stands at the foot
// for a second, also while another may be writing, and as it stays away when he has gone the program ends.
TEST(StoreScherm, BlokVoorbijHetEinde) {
    for (const auto& [blokken, er_niet] : {std::pair{1, 1}, {3, 4}}) {
        TijdelijkeMap map;
        maak_paar("T", tabel);
        Gesprek g([&] {
            ICB* icb = IXOPEN("T", 2);
            char r[20] = {};
            for (int i = 0; i < 300; i++)
                IXWRITE(icb, (ZET32(r, i), r));
            TOETS();
            return std::to_string(truncate("T.INX", blokken * IXBLOK) + IXREAD(icb, r));
        });
        Agent schrijver([] { return IOLOCK('E', open("T.INX", O_RDWR | O_CLOEXEC), 0, IXBLOK) == 1; });
        EXPECT_TRUE(schrijver.ok());
        g.stuur("x");
        EXPECT_TRUE(g.wacht(vorm(".INX (EOF: r=%d)", er_niet)));
        schrijver.dood();
        EXPECT_TRUE(g.wacht("PROGRAMMA AFGEBROKEN") && g.kalm());
        g.stuur("\r");
        EXPECT_EQ(1, g.einde());
    }
}

// Who may only read is told so on the screen when he writes.
TEST(StoreScherm, AlleenLezen) {
    TijdelijkeMap map;
    maak_paar("T", tabel);
    Gesprek g([] {
        const char r[20] = "x";
        return std::to_string(IXWRITE(IXOPEN("T", 0), r));
    });
    g.wacht("IXWRITE op een bestand dat READ-ONLY geopend is");
    EXPECT_EQ("1", g.antwoord("<Enter>"));
}

} // namespace
} // namespace zg::test
