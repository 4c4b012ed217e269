// The trees as a user of the store walks them: prefixes, fences, skipping, and what a reader does when another
// process has changed the tree under it.
#include "store/hulp.h"
#include "store/node.h"
#include <algorithm>
#include <cstring>
#include <map>

namespace zg::test {
namespace {

#pragma pack(push, 1)
struct Rec {
    uint16_t groep;
    uint8_t code;
    char tekst[13];
};
#pragma pack(pop)
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

TEST_P(Boom, DelenEnHekken) {
    open();
    for (int g : {10, 20, 30})
        for (int c = 1; c <= 100; c++)
            zet(g, c, "x");
    struct {
        int (*doe)(ICB*, void*, int);
        const char* naam;
        int groep, code, delen;
        const char* uit;
    } gevallen[] = {
        {IXFIRSTK, "FIRSTK", 10, 5, 0, "10.5"},   {IXFIRSTK, "FIRSTK", 10, 101, 0, "20.1"},
        {IXFIRSTK, "FIRSTK", 10, 101, 2, "-"},    {IXFIRSTK, "FIRSTK", 11, 77, 1, "20.1"},
        {IXFIRSTK, "FIRSTK", 20, 77, 1, "20.1"},  {IXFIRSTK, "FIRSTK", 31, 0, 1, "-"},
        {IXNEXTK, "NEXTK", 10, 5, 0, "10.6"},     {IXNEXTK, "NEXTK", 10, 100, 0, "20.1"},
        {IXNEXTK, "NEXTK", 10, 100, 2, "-"},      {IXNEXTK, "NEXTK", 10, 5, 1, "20.1"},
        {IXNEXTK, "NEXTK", 30, 5, 1, "-"},        {IXNEXTK, "NEXTK", 30, 100, 0, "-"},
        {IXNEXTK, "NEXTK", 0, 0, 0, "10.1"},      {IXPREVK, "PREVK", 20, 1, 0, "10.100"},
        {IXPREVK, "PREVK", 20, 1, 2, "-"},        {IXPREVK, "PREVK", 20, 50, 2, "20.49"},
        {IXPREVK, "PREVK", 20, 50, 1, "10.100"},  {IXPREVK, "PREVK", 10, 1, 0, "-"},
        {IXPREVK, "PREVK", 99, 0, 0, "30.100"},   {IXPREVK, "PREVK", 25, 0, 1, "20.100"},
        {IXFIRSTR, "FIRSTR", 20, 7, 1, "20.7"},   {IXFIRSTR, "FIRSTR", 20, 101, 1, "-"},
        {IXFIRSTR, "FIRSTR", 20, 101, 0, "30.1"}, {IXNEXTR, "NEXTR", 20, 100, 1, "-"},
        {IXNEXTR, "NEXTR", 20, 99, 1, "20.100"},  {IXPREVR, "PREVR", 20, 1, 1, "-"},
        {IXPREVR, "PREVR", 20, 2, 1, "20.1"},     {IXPREVR, "PREVR", 65535, 255, 0, "30.100"},
    };
    for (auto& g : gevallen) {
        Rec r = rec(g.groep, g.code);
        EXPECT_EQ(g.uit, zo(g.doe(icb, &r, g.delen), r))
            << g.naam << " " << g.groep << "." << g.code << " " << g.delen;
        if (g.uit[0] == '-') {
            EXPECT_EQ(-1, icb->currec) << g.naam;
        }
    }
}

TEST_P(Boom, DubbelenInVolgordeVanNummer) {
    open();
    for (int i = 0; i < 300; i++)
        zet(i % 3, i / 3, i % 3 ? "Zelfde" : "zELFDE");
    IXSWITCH(icb, 2);
    Rec r = rec(0, 0, "ZELFDE");
    int n = 0;
    for (int ok = IXFIRSTR(icb, &r, 1); ok; ok = IXNEXTR(icb, &r, 1))
        EXPECT_EQ(n++, icb->currec);
    EXPECT_EQ(300, n);
    IXSWITCH(icb, 3);
    for (auto [groep, nr] : {std::pair{1, 1}, {7, -1}}) { // first of its group
        r = rec(groep, 0);
        EXPECT_EQ(nr >= 0, IXEXISTSP(icb, &r, 1));
        EXPECT_EQ(nr, icb->currec);
    }
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

TEST_P(Boom, Skip) {
    open();
    for (int g : {1, 2})
        for (int c = 0; c < 120; c++)
            zet(g, c);
    auto nummer = [&](int g, int c) {
        Rec r = rec(g, c);
        return IXEXISTS(icb, &r) ? icb->currec : -1;
    };
    struct {
        int groep, code, delen, stappen;
        const char* uit;
    } gevallen[] = {
        {1, 10, 0, 0, "1.10"}, {1, 10, 0, 5, "1.15"},   {1, 10, 0, -10, "1.0"}, {1, 10, 0, -11, "-"},
        {1, 119, 0, 1, "2.0"}, {1, 119, 2, 1, "-"},     {2, 0, 0, -1, "1.119"}, {2, 119, 0, 1, "-"},
        {1, 50, 1, 1, "2.0"},  {2, 0, 0, 119, "2.119"},
    };
    for (auto& g : gevallen) {
        int32_t nr = nummer(g.groep, g.code);
        Rec r{};
        int uit = IXSKIP(icb, &r, g.delen, g.stappen, &nr);
        EXPECT_EQ(g.uit, zo(uit, r)) << g.groep << "." << g.code << " " << g.stappen;
        if (uit) {
            EXPECT_EQ(icb->currec, nr);
        }
    }
    // The record on which a list stood is gone: 0 steps go to the next, others count from its place.
    for (auto [stappen, uit] : {std::pair{0, "1.41"}, {1, "1.41"}, {2, "1.42"}, {-1, "1.39"}}) {
        zet(1, 40);
        int32_t nr = nummer(1, 40);
        Rec weg = rec(1, 40), r = weg;
        IXREAD(icb, &weg);
        IXDELETE(icb, &weg);
        EXPECT_EQ(uit, zo(IXSKIP(icb, &r, 0, stappen, &nr), r)) << stappen;
    }
    int32_t geen = -1;
    Rec r = rec(1, 5);
    EXPECT_EQ("1.6", zo(IXSKIP(icb, &r, 0, 0, &geen), r));
}

TEST_P(Boom, Uniek) {
    open();
    zet(1, 7, "a");
    zet(2, 1, "b");
    zet(2, 2, "b");
    struct {
        int sleutel, groep, deel, uit;
    } gevallen[] = {
        {1, 0, 1, 0}, // groups 1 and 2
        {1, 1, 2, 1}, // one code in group 1
        {1, 2, 2, 0}, {1, 3, 2, 0}, {3, 0, 1, 0},
    };
    for (auto& g : gevallen) {
        IXSWITCH(icb, g.sleutel);
        Rec r = rec(g.groep, 99);
        EXPECT_EQ(g.uit, IXUNIQK(icb, &r, g.deel)) << g.sleutel << " " << g.groep << " " << g.deel;
        if (g.uit) {
            EXPECT_EQ("1.7", zo(1, r));
        }
    }
    Rec r = rec(1, 7);
    IXSWITCH(icb, 1);
    IXREAD(icb, &r);
    IXDELETE(icb, &r);
    r = {};
    EXPECT_EQ(1, IXUNIQK(icb, &r, 1));
    EXPECT_EQ(2, r.groep);
    IXSWITCH(icb, 2); // the only text, under two records: with the record number it isn't one
    EXPECT_EQ(0, IXUNIQK(icb, &r, 1));
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

// A reader in its own process steps through while this one splits, empties and fills the leaf that it stands on.
TEST(Lezer, GaatDoorTerwijlEenAnderSchrijft) {
    TijdelijkeMap map;
    maak_paar("T", {16, {"k,I,1,2"}});
    ICB* schrijver = IXOPEN("T", 2);
    for (int i = 0; i < 1000; i += 10) {
        Rec r = rec(i, 0);
        IXWRITE(schrijver, &r);
    }
    Agent lezer([icb = static_cast<ICB*>(nullptr), r = Rec{}](const std::string& o) mutable -> std::string {
        if (!icb)
            icb = IXOPEN("T", 0);
        int uit = o == "first"  ? (r = Rec{}, IXFIRST(icb, &r))
                  : o == "next" ? IXNEXT(icb, &r)
                                : IXPREVR(icb, &r, 0);
        return uit ? std::to_string(r.groep) : "-";
    });
    EXPECT_EQ("0", lezer.vraag("first"));
    for (int i = 10; i <= 500; i += 10)
        EXPECT_EQ(std::to_string(i), lezer.vraag("next"));
    for (int i = 0; i < 1000; i++) // splits all around 500
        if (i % 10) {
            Rec r = rec(i, 0);
            IXWRITE(schrijver, &r);
        }
    EXPECT_EQ("501", lezer.vraag("next"));
    EXPECT_EQ("500", lezer.vraag("prev"));
    for (int i = 1; i < 999; i++) { // its leaf, and those around, run empty
        Rec r = rec(i, 0);
        IXREAD(schrijver, &r);
        IXDELETE(schrijver, &r);
    }
    EXPECT_EQ("999", lezer.vraag("next"));
    EXPECT_EQ("0", lezer.vraag("prev"));
    EXPECT_EQ("-", lezer.vraag("prev"));
    // The pair is emptied: blocks that the reader knows are past the end.
    EXPECT_EQ("0", lezer.vraag("first"));
    IXINIT(schrijver);
    Rec r = rec(42, 0);
    IXWRITE(schrijver, &r);
    EXPECT_EQ("42", lezer.vraag("next"));
    IXCLOSE(schrijver);
}

} // namespace
} // namespace zg::test
