// Record operations: reading, writing, deleting, the chain of free slots, and what happens when the caller's record
// is no longer what it was.
#include "store/hulp.h"
#include "store/node.h"

namespace zg::test {
namespace {

struct [[gnu::packed]] Rec {
    int32_t nr;
    char naam[12];
    int32_t waarde;
};

const Tabel tabel{20, {"k,I,1,4", "n,C,5,16", "w,NODUPS,I,17,20"}};

Rec rec(int nr, const char* naam = "", int waarde = 0) {
    Rec r{};
    r.nr = nr;
    snprintf(r.naam, sizeof r.naam, "%s", naam);
    r.waarde = waarde;
    return r;
}

struct Record : testing::TestWithParam<int> {
    TijdelijkeMap map;
    ICB* icb = maak_open("T", tabel, GetParam());
    ~Record() override {
        IXCLOSE(icb);
        EXPECT_GEZOND("T");
    }
    int32_t zet(int nr, const char* naam = "", int waarde = 0) {
        Rec r = rec(nr, naam, waarde ? waarde : nr);
        EXPECT_EQ(1, IXWRITE(icb, &r));
        return icb->currec;
    }
    void weg(int nr) {
        Rec r = rec(nr);
        EXPECT_EQ(1, IXREADL(icb, &r));
        EXPECT_EQ(0, IXDELETE(icb, &r));
        EXPECT_EQ(nr, r.nr) << "the caller's record stays as it was";
    }
};

TEST_P(Record, VrijeKeten) {
    for (int i = 0; i < 5; i++)
        EXPECT_EQ(i, zet(100 + i, "a"));
    weg(101);
    weg(103);
    EXPECT_EQ(3, icb->h.freehead);
    std::string r(20, 0);
    for (auto [nr, uit] : {std::pair{5, -1}, {-1, -1}, {4, 1}, {1, 0}, {3, 0}})
        EXPECT_EQ(uit, IXGET(icb, r.data(), nr)) << nr;
    EXPECT_EQ("\xFF" + std::string("\1\0\0\0", 4) + std::string(15, '\xFF'), r)
        << "leads to the slot freed before";
    EXPECT_EQ(3, zet(200)); // last in, first out
    EXPECT_EQ(1, zet(201));
    EXPECT_EQ(5, zet(202));
    EXPECT_EQ(-1, icb->h.freehead);
}

TEST_P(Record, SchrijvenKiestZelf) {
    zet(1, "Jansen", 10);
    zet(2, "Pietersen", 20);
    EXPECT_EQ(0, zet(1, "Willems", 10)); // key 1 exists: the same record
    Rec r = rec(1);
    EXPECT_EQ(1, IXREAD(icb, &r));
    EXPECT_STREQ("Willems", r.naam);
    IXSWITCH(icb, 2);
    r = rec(0, "jansen");
    EXPECT_EQ(0, IXEXISTSP(icb, &r, 1)) << "the old value has left its tree";
    r = rec(0, "WILLEMS");
    EXPECT_EQ(1, IXEXISTSP(icb, &r, 1));
    r = rec(3, "Derde", 30);
    EXPECT_EQ(1, IXWRITE(icb, &r));
    EXPECT_EQ(2, IXSLEUTEL(icb)) << "the current key is the one it was";
    IXSWITCH(icb, 1);
    EXPECT_EQ(2, zet(3, "DERDE", 30)) << "a change of case alone moves no key";
    EXPECT_EQ(3, icb->h.nrecs);
    r = rec(4);
    EXPECT_EQ(0, IXREAD(icb, &r));
    EXPECT_EQ(-1, icb->currec);
    EXPECT_EQ(0, IXUPDATE(icb, &r)) << "no record to update";
    EXPECT_EQ(0, IXDELETE(icb, &r));
    r = rec(2);
    EXPECT_EQ(1, IXREAD(icb, &r));
    r.waarde = 21;
    EXPECT_EQ(1, IXUPDATE(icb, &r));
    r.naam[11] = 'x';
    EXPECT_EQ(1, IXUPDATE(icb, &r));
    IXSWITCH(icb, 3);
    r = rec(0, "", 21);
    EXPECT_EQ(1, IXREAD(icb, &r)) << "a unique key other than the first";
    EXPECT_EQ(2, r.nr);
    EXPECT_EQ(1, IXPUTREC(icb, &r));
}

// What another has done to the slot since the caller read it.
TEST_P(Record, WissenVanWatErNietMeerIs) {
    zet(1, "een");
    zet(2, "twee");
    Rec een = rec(1), twee = rec(2);
    IXREAD(icb, &een);
    const int32_t nr = icb->currec;
    IXDELETE(icb, &een);
    icb->currec = nr;
    IXDELETE(icb, &een); // again: it must not enter the chain twice
    icb->currec = nr;
    EXPECT_EQ(0, IXUPDATE(icb, &een));
    EXPECT_EQ(nr, zet(3, "drie"));
    icb->currec = nr;
    IXDELETE(icb, &een); // the slot is another's now
    Rec r = rec(3);
    EXPECT_EQ(1, IXREAD(icb, &r));
    EXPECT_EQ(2, zet(4, "vier"));
    // Key fields other than the first are taken from the file.
    twee = rec(2, "iets anders", 999);
    EXPECT_EQ(1, IXEXISTS(icb, &twee));
    IXDELETE(icb, &twee);
    EXPECT_EQ(0, IXEXISTS(icb, &twee));
}

TEST_P(Record, LevendMetFF) {
    const std::string ff(20, '\xFF');
    for (auto [plaats, levend] : {std::pair{0, 1}, {1, 0}, {4, 0}, {5, 1}, {19, 1}, {20, 0}}) {
        std::string b = ff + "x";
        b[static_cast<size_t>(plaats)] = 0;
        EXPECT_EQ(levend, IXRECLIVE(b.data(), 20)) << "a byte of 0 at " << plaats;
    }
    Rec r{};
    memset(&r, 0xFF, sizeof r); // would read as a free slot
    EXPECT_EQ(0, IXWRITE(icb, &r));
    EXPECT_EQ(0, IXINSERT(icb, &r));
    EXPECT_EQ(0, icb->h.nrecs);
    r.waarde = 5;
    r.nr = -1; // first byte 0xFF, and live
    EXPECT_EQ(1, IXWRITE(icb, &r));
    EXPECT_EQ(1, IXREAD(icb, &r));
    weg(-1);
    EXPECT_EQ(0, zet(8));
}

TEST_P(Record, IndexVol) {
    zet(1);
    const int32_t blokken = icb->h.nblocks;
    icb->h.nblocks = 2147483645;
    IXWRIX(icb, 0);
    Rec r = rec(2);
    EXPECT_EQ(0, IXWRITE(icb, &r));
    EXPECT_EQ(0, IXEXISTS(icb, &r));
    EXPECT_EQ(1, icb->h.nrecs);
    icb->h.nblocks = blokken;
    IXWRIX(icb, 0);
}

INSTANTIATE_TEST_SUITE_P(Modes, Record, testing::Values(1, 2));

// Who writes without having locked the record moves its key under the one who has: the trees follow what stands.
TEST(Vastgehouden, BuitenHetSlotOmGeschreven) {
    TijdelijkeMap map;
    ICB *een = maak_open("T", tabel, 2), *twee = IXOPEN("T", 2);
    Rec r = rec(1, "Jansen", 10), ander = rec(1, "Willems", 10);
    IXWRITE(een, &r);
    EXPECT_EQ(1, IXREADL(een, &r));
    EXPECT_EQ(1, IXWRITE(twee, &ander));
    r.waarde = 10;
    EXPECT_EQ(1, IXWRITE(een, &r));
    IXCLOSE(twee);
    IXCLOSE(een);
    EXPECT_GEZOND("T");
}

TEST(Alleenlezen, SchrijftNiets) {
    TijdelijkeMap map;
    ICB* icb = maak_open("T", tabel, 2);
    Rec r = rec(1, "een", 1);
    IXWRITE(icb, &r);
    IXCLOSE(icb);
    const std::string idx = lees_index("T.INX"), data = lees_bestand("T.TXT");
    icb = IXOPEN("T", 0);
    EXPECT_EQ(1, IXREADL(icb, &r));
    r.waarde = 2;
    EXPECT_EQ(1, IXWRITE(icb, &r));
    EXPECT_EQ(1, IXPUTREC(icb, &r));
    EXPECT_EQ(0, IXINSERT(icb, &r));
    EXPECT_EQ(0, IXUPDATE(icb, &r));
    EXPECT_EQ(0, IXDELETE(icb, &r));
    IXCLOSE(icb);
    EXPECT_EQ(idx, lees_index("T.INX"));
    EXPECT_EQ(data, lees_bestand("T.TXT"));
}

// Not closed, as by a kill: the header on disk is of the time of opening, and IXCHECK sees it.
TEST(Exclusief, TellersZijnVanDeHandle) {
    TijdelijkeMap map;
    maak_paar("T", tabel);
    in_kind([] {
        ICB* icb = IXOPEN("T", 1);
        Rec r = rec(1, "naam", 1);
        IXWRITE(icb, &r);
    });
    EXPECT_EQ(-1, IXCHECK("T"));
}

// A chain or count that would make an insert write over a live record is reported instead.
TEST(Schade, NieuwRecordOverschrijftNooit) {
    for (int mode : {1, 2})
        for (auto [freehead, nrecs] : {std::pair{1, 3}, {-1, 2}, {-1, 4}}) {
            TijdelijkeMap map;
            ICB* icb = maak_open("T", tabel, 2);
            for (int i = 0; i < 3; i++) {
                Rec r = rec(i, "x", i);
                IXWRITE(icb, &r);
            }
            icb->h.freehead = freehead;
            icb->h.nrecs = nrecs;
            IXWRIX(icb, 0);
            icb->h.nrecs = 3; // what it wrote stands
            IXCLOSE(icb);
            const std::string data = lees_bestand("T.TXT");
            EXPECT_NE("", stopt([mode] {
                          ICB* i = IXOPEN("T", mode);
                          Rec r = rec(9, "nieuw", 9);
                          IXWRITE(i, &r);
                      }));
            EXPECT_EQ(data, lees_bestand("T.TXT"));
        }
}

} // namespace
} // namespace zg::test
