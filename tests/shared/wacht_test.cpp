// Locks that others hold, waited for and told on the screen: of a whole file, of a slot of the system tables, of a
// record, of a key that is reserved.
#include "shared/houder.h"
#include "support/systeem.h"
#include "term/scherm.h"

namespace zg::test {
namespace {

constexpr Systabel PROEF{1000, 5, 20};

int neem_slot() {
    int32_t nr = 3;
    char rec[20];
    Systeem::open();
    return iotab('X', &nr, rec, PROEF);
}

// As the program waits: who is in the way of this record, and which key is another's.
int lees_record(const char* sleutel) {
    IXWAITHOOK = houder_wacht;
    uint8_t rec[IXRECMAX] = {};
    memcpy(rec, sleutel, strlen(sleutel));
    return IXREADL(IXOPEN("PROEF", 2), rec);
}

struct Waiting : Systeem {
    Waiting() {
        schrijf_bestand("BRON", "inhoud");
        zet(3, tekst20{"c"}, PROEF);
        ICB* icb = nieuw_paar("PROEF", {"proeftabel,40", "k,NODUPS,I,1,2,C,3,12"});
        schrijf(icb, "\x67\x12Zuid");
        IXCLOSE(icb);
    }
};

TEST_F(Waiting, IsToldAndEndsWithTheHolder) {
    static const struct {
        const char *wat, *melding;
        int (*houder)();
        int (*wachter)();
    } gevallen[] = {
        {"file", "Informatie in gebruik op ander scherm",
         [] { return IOFLOCK(::open("BRON", O_RDWR), 3, 10); }, [] { return IOCOPY("BRON", "DOEL", -1); }},
        {"slot", "SYSTEEM-Informatie in gebruik op ander scherm", neem_slot, neem_slot},
        {"record", "PROEF: proeftabel --> Informatie in gebruik op ander scherm",
         [] { return lees_record("\x67\x12Zuid"); }, [] { return lees_record("\x67\x12Zuid"); }},
        {"key", "PROEF: proeftabel --> Sleutel gereserveerd: 4711 Noord",
         [] { return 1 - lees_record("\x67\x12Noord"); }, [] { return lees_record("\x67\x12Noord"); }},
    };
    for (const auto& g : gevallen) {
        SCOPED_TRACE(g.wat);
        Agent houder([&] { return g.houder() == 1; });
        ASSERT_TRUE(houder.ok());
        Terminal t([&] {
            SCRINIT();
            int uit = g.wachter();
            SCREXIT();
            return uit;
        });
        t.wacht_op(24, 1, g.melding);
        EXPECT_EQ(IOEXISTS("DOEL"), 0);
        EXPECT_TRUE(t.leeft());
        if (std::string(g.wat) != "key") { // which stays reserved behind him: tests/tools
            houder.dood();
            EXPECT_EQ(t.einde(), 1);
        }
        IOUNLINK("DOEL");
    }
}

} // namespace
} // namespace zg::test
