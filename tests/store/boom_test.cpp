// Trees at their edges. Walks of every kind: wandel_test.cpp; readers beside writers: lezer_test.cpp.
#include "store/hulp.h"
#include "store/node.h"

namespace zg::test {
namespace {

struct [[gnu::packed]] Rec {
    uint16_t groep;
    uint8_t code;
    char tekst[13];
};
static_assert(sizeof(Rec) == 16);

const Tabel tabel{16, {"k,I,1,2,I,3,3", "t,C,4,16", "g,I,1,2"}};

Rec rec(int groep, int code, const char* tekst = "") {
    Rec r{};
    r.groep = static_cast<uint16_t>(groep);
    r.code = static_cast<uint8_t>(code);
    snprintf(r.tekst, sizeof r.tekst, "%s", tekst);
    return r;
}

struct Boom : testing::TestWithParam<int> {
    TijdelijkeMap map;
    ICB* icb = nullptr;
    void open(const Tabel& t = tabel) { icb = maak_open("T", t, GetParam()); }
    void zet(int groep, int code, const char* tekst = "") {
        Rec r = rec(groep, code, tekst);
        ASSERT_EQ(1, IXWRITE(icb, &r));
    }
    void TearDown() override {
        if (icb)
            IXCLOSE(icb);
        EXPECT_GEZOND("T");
    }
};

std::string zo(int uit, const Rec& r) {
    return uit ? std::to_string(r.groep) + "." + std::to_string(r.code) : "-";
}

TEST_P(Boom, AllesWegEnOpnieuw) {
    open();
    for (int i = 0; i < 2000; i++)
        zet(i / 200, i % 200, "weg");
    const int blokken = icb->h.nblocks;
    for (int i = 0; i < 2000; i++) {
        Rec r = rec(i / 200, i % 200);
        ASSERT_EQ(1, IXREAD(icb, &r));
        EXPECT_EQ(0, IXDELETE(icb, &r));
    }
    EXPECT_EQ(blokken, icb->h.nblocks);
    Rec r{};
    for (int k = 1; k <= 3; k++) {
        IXSWITCH(icb, k);
        for (char op : {'=', '>', '<'}) {
            IXBLDKEY(icb, &r, IXKEYLEN(icb, 0));
            EXPECT_EQ(-1, IXSEARCH(icb, op, IXKEYLEN(icb, 0))) << op;
        }
        EXPECT_EQ(0, IXFIRST(icb, &r) + IXLAST(icb, &r));
        IXRDIX(icb, k);
        EXPECT_EQ(1, KNOOP(icb).count) << "only the sentinel is left";
    }
    IXSWITCH(icb, 6); // there is no sixth key
    EXPECT_EQ(3, IXSLEUTEL(icb));
    for (int i = 0; i < 2000; i++)
        zet(i / 200, i % 200, "weer");
    EXPECT_EQ(2000, icb->h.nrecs);
    EXPECT_GT(icb->h.nblocks, blokken);
}

TEST_P(Boom, HoogsteSleutelGelijkAanSluitstuk) {
    open({16, {"k,I,1,2"}});
    for (int i = 65536 - 200; i < 65536; i++)
        zet(i, 0); // the last is FF FF, as the sentinel
    Rec r = rec(65535, 0);
    EXPECT_EQ(1, IXREAD(icb, &r));
    EXPECT_EQ(0, IXNEXT(icb, &r));
    r = rec(65534, 0);
    EXPECT_EQ(1, IXREAD(icb, &r));
    EXPECT_EQ(1, IXNEXT(icb, &r));
    EXPECT_EQ(65535, r.groep);
    EXPECT_EQ(0, IXDELETE(icb, &r));
    EXPECT_EQ(0, IXREAD(icb, &r));
}

TEST_P(Boom, VerouderdeVerwijzing) {
    // Entries that lead to free records, as a reader meets them while another process deletes: passed, in both
    // directions, and to an end.
    open();
    for (int i = 0; i < 200; i++)
        zet(1, i);
    std::string data = lees_bestand("T.TXT"), heel = data;
    schrijf_bestand("T.TXT", data.replace(50 * 16, 100 * 16, 100 * 16, '\xFF'));
    Rec r = rec(1, 49);
    EXPECT_EQ(1, IXREAD(icb, &r));
    EXPECT_EQ("1.150", zo(IXNEXT(icb, &r), r));
    EXPECT_EQ("1.49", zo(IXPREVR(icb, &r, 0), r));
    r = rec(1, 60);
    EXPECT_EQ("1.150", zo(IXFIRSTR(icb, &r, 0), r));
    r = rec(1, 60);
    EXPECT_EQ(0, IXREAD(icb, &r));
    schrijf_bestand("T.TXT", data.replace(150 * 16, 50 * 16, 50 * 16, '\xFF'));
    r = rec(1, 49);
    EXPECT_EQ("-", zo(IXNEXT(icb, &r), r));
    schrijf_bestand("T.TXT", heel);
}

INSTANTIATE_TEST_SUITE_P(Modes, Boom, testing::Values(1, 2));

} // namespace
} // namespace zg::test
