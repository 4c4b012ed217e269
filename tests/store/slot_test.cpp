// Locks: ranges, the queue of reserved keys, and two users on one record. The other user is a process that does as it
// is told.
#include "shared/files.h"
#include "store/diepcheck.h"
#include "store/hulp.h"
#include "store/node.h"
#include <cstring>
#include <memory>

namespace zg::test {
namespace {

// Commands: open MODE | close | lock N | test FILE START LENGTH (0 index, 1 data) | read, readl, unlock, delete N |
// write N BYTE
struct Gebruiker {
    ICB* icb = nullptr;
    char r[40] = {};
    std::string operator()(const std::string& opdracht) {
        char wat[16] = "";
        int a = 0, b = 0, c = 0;
        sscanf(opdracht.c_str(), "%15s %d %d %d", wat, &a, &b, &c);
        const std::string w = wat;
        if (w == "open")
            return icb = IXOPEN("T", a), "ok";
        if (w == "close")
            return IXCLOSE(icb), "ok";
        if (w == "lock")
            return IXLOCK(icb, a) ? "1" : "0";
        if (w == "test") // is this range free for a write lock?
            return IOLOCK('T', a ? icb->datfd : icb->idxfd, b, c) ? "free" : "held";
        if (w != "write" && w != "delete")
            memset(r, 0, sizeof r);
        ZET32(r, a);
        if (w == "write")
            r[39] = static_cast<char>(b);
        else if (w == "unlock")
            return IXUNLOCK(icb, r), "ok";
        else if (w == "delete")
            return IXDELETE(icb, r), "ok";
        return (w == "write" ? IXWRITE(icb, r) : w == "readl" ? IXREADL(icb, r) : IXREAD(icb, r)) ? "1" : "0";
    }
};

const Tabel tabel{40, {"k,I,1,4,C,5,40", "n,C,5,8"}}; // key 1 of 40 bytes

struct Slot : testing::Test {
    TijdelijkeMap map;
    KorteWacht kort;
    Gebruiker ik;
    std::unique_ptr<Agent> ander;
    void SetUp() override {
        maak_paar("T", tabel);
        ander = std::make_unique<Agent>(Gebruiker{});
    }
    void open() {
        ik("open 2");
        ASSERT_EQ("ok", ander->vraag("open 2"));
    }
};

TEST_F(Slot, Gebieden) {
    open();
    ik("write 1");
    ik("write 2");
    struct {
        const char *eerst, *vraag, *uit;
    } gevallen[] = {
        {"readl 2", "test 1 40 40", "held"}, {"readl 2", "test 1 0 40", "free"},
        {"readl 2", "test 1 80 0", "free"},  {"readl 2", "test 0 0 0", "free"},
        {"readl 9", "test 1 0 0", "free"}, // a reservation is no lock
        {"lock 2", "test 0 0 512", "held"},  {"lock 2", "test 0 512 0", "free"},
        {"lock 12", "test 0 0 0", "free"},   {"lock 1", "test 1 4000 1", "held"},
        {"lock 1", "test 0 0 512", "held"},  {"lock 11", "test 1 0 0", "free"},
        {"lock 15", "test 1 0 0", "free"},
    };
    for (auto& g : gevallen) {
        ik(g.eerst);
        EXPECT_EQ(g.uit, ander->vraag(g.vraag)) << g.eerst;
        ik("lock 11");
        ik("unlock 9");
    }
    EXPECT_EQ("0", ik("lock 15"));
    EXPECT_EQ("0", ik("lock 5"));
    IXCLOSE(ik.icb);
}

TEST_F(Slot, RecordVanEenAnder) {
    open();
    ik("write 1 7");
    EXPECT_EQ("1", ik("readl 1"));
    EXPECT_EQ("1", ander->vraag("read 1")) << "reading asks no lock";
    EXPECT_EQ(Agent::geen_antwoord, ander->vraag("readl 1"));
    EXPECT_EQ("1", ik("write 1 8")); // lets go
    EXPECT_EQ("1", ander->antwoord());
    EXPECT_EQ(0, IXLOCK(ik.icb, 3));
    EXPECT_GE(kort.teller, 1);
    ander->dood(); // a lock ends with its process
    EXPECT_EQ("1", ik("readl 1"));
    EXPECT_EQ(8, ik.r[39]);
    IXCLOSE(ik.icb);
}

TEST_F(Slot, VerdwenenTerwijlGewachtWerd) {
    open();
    ik("write 1");
    ik("write 2");
    EXPECT_EQ("1", ik("readl 1"));
    EXPECT_EQ(Agent::geen_antwoord, ander->vraag("readl 1"));
    ik("delete 1");
    EXPECT_EQ("0", ander->antwoord()) << "gone: the key is reserved for him now";
    EXPECT_EQ("free", ander->vraag("test 1 0 0"));
    ik("write 3"); // uses the slot
    EXPECT_EQ("1", ander->vraag("write 1"));
    EXPECT_EQ("1", ik("readl 3"));
    IXCLOSE(ik.icb);
    ander->vraag("close");
    EXPECT_GEZOND("T");
}

TEST_F(Slot, ReserverenVanEenNieuweSleutel) {
    open();
    EXPECT_EQ("0", ik("readl 5"));
    EXPECT_EQ(Agent::geen_antwoord, ander->vraag("readl 5"));
    EXPECT_EQ("1", ik("write 5 1"));
    EXPECT_EQ("1", ander->antwoord()) << "it exists now";
    EXPECT_EQ("1", ander->vraag("write 5 2"));
    EXPECT_EQ("0", ander->vraag("readl 6"));
    ander->vraag("unlock 6"); // gives up
    EXPECT_EQ("0", ik("readl 6"));
    ik("unlock 6");
    // A second time through the same handle is refused like any other's.
    EXPECT_EQ("0", ander->vraag("readl 7"));
    EXPECT_EQ(Agent::geen_antwoord, ander->vraag("readl 7"));
    ander->dood(); // what a crash leaves behind stays refused
    memset(ik.r, 0, sizeof ik.r);
    ik.r[0] = 7;
    IXBLDKEY(ik.icb, ik.r, 40);
    kort.teller = 0;
    EXPECT_EQ(0, IXLOCK(ik.icb, 4));
    EXPECT_EQ(1, kort.teller);
    IXLOCK(ik.icb, 14);
    IXLOCK(ik.icb, 14); // not there: no failure
    EXPECT_EQ(1, IXLOCK(ik.icb, 4));
    IXCLOSE(ik.icb);
}

TEST_F(Slot, WachtrijVol) {
    open();
    for (int i = 0; i < 11; i++) // 12 keys of 40 bytes
        EXPECT_EQ("0", ander->vraag("readl " + std::to_string(i)));
    ik.r[0] = 11;
    IXBLDKEY(ik.icb, ik.r, 40);
    IXSWITCH(ik.icb, 2);
    EXPECT_EQ(1, IXLOCK(ik.icb, 4));
    EXPECT_EQ(2, IXSLEUTEL(ik.icb)) << "the node in hand stays the handle's own";
    IXSWITCH(ik.icb, 1);
    std::string uit = stopt([&] { ik("readl 12"); });
    EXPECT_NE(std::string::npos, uit.find("T          : proef               --> Lock queue vol.")) << uit;
    for (int i : {3, 11, 0})
        ander->vraag("unlock " + std::to_string(i));
    EXPECT_EQ("0", ik("readl 12"));
    EXPECT_EQ("0", ik("readl 3"));
    std::string q = lees_bestand("T.INX").substr(3 * 512, 512);
    EXPECT_EQ(11, q[4]);
    EXPECT_EQ(std::string(505 - 440, '\0'), q.substr(5 + 440, 505 - 440));
    EXPECT_EQ(std::string("\1\0", 2), q.substr(0, 2));
    IXCLOSE(ik.icb);
}

TEST_F(Slot, Exclusief) {
    ASSERT_EQ("ok", ander->vraag("open 0"));
    ik("open 1");
    EXPECT_EQ("held", ander->vraag("test 0 0 512"));
    EXPECT_EQ("held", ander->vraag("test 1 0 0"));
    EXPECT_EQ(1, IXLOCK(ik.icb, 3));
    EXPECT_EQ(1, IXLOCK(ik.icb, 12));
    EXPECT_EQ("held", ander->vraag("test 0 0 512")) << "an update inside doesn't open the file to others";
    ik("write 1");
    EXPECT_EQ(0u, IXDIEPCHECK("T").at(0).find("in use")) << "it would let the lock go";
    Agent derde{Gebruiker{}};
    EXPECT_EQ(Agent::geen_antwoord, derde.vraag("open 2"));
    IXCLOSE(ik.icb);
    EXPECT_EQ("ok", derde.antwoord());
    // And the other way: mode 1 waits for all record locks.
    EXPECT_EQ("1", derde.vraag("readl 1"));
    EXPECT_EQ(Agent::geen_antwoord, ander->vraag("open 1"));
    derde.vraag("unlock 1");
    EXPECT_EQ("ok", ander->antwoord());
}

// While the opener waits for the whole file the header that it has read grows old.
TEST_F(Slot, ExclusiefNaHetWerkVanEenAnder) {
    ik("open 2");
    ik("write 1");
    EXPECT_EQ("1", ik("readl 1"));
    EXPECT_EQ(Agent::geen_antwoord, ander->vraag("open 1"));
    for (int i = 2; i < 60; i++)
        ik("write " + std::to_string(i));
    ik("unlock 1");
    EXPECT_EQ("ok", ander->antwoord());
    EXPECT_EQ("1", ander->vraag("write 100"));
    EXPECT_EQ("ok", ander->vraag("close"));
    EXPECT_EQ("1", ik("read 100"));
    EXPECT_EQ(59 * 40 + 40u, lees_bestand("T.TXT").size());
    IXCLOSE(ik.icb);
    EXPECT_GEZOND("T");
}

} // namespace
} // namespace zg::test
