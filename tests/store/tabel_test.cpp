// Tables that a program defines itself: texts from field addresses, set-up and repair at start, two at once.
#include "store/hulp.h"
#include "store/node.h"
#include "store/tabel.h"

namespace zg::test {
namespace {

struct [[gnu::packed]] Rij {
    uint8_t balk;
    uint16_t nr;
    char maat[2];
    char rest[25];
};

int eerste_gemaakt;

void definieer(ICB* icb) {
    Rij r{};
    UPDFCB_INX("proeftabel met een te lange titel", &r, sizeof r);
    UPDFCB_END(icb);
    UPDFCB_KEY(1, "sleutelnaam", 0);
    UPDFCB_FLD('I', &r.nr, sizeof r.nr);
    UPDFCB_FLD('I', &r.balk, sizeof r.balk);
    UPDFCB_END(icb);
    UPDFCB_KEY(2, "tekst", 1);
    UPDFCB_FLD('C', r.maat, sizeof r.maat);
    UPDFCB_END(icb);
}

void eerste(ICB* icb) {
    Rij r{};
    for (uint16_t nr : {uint16_t{3}, uint16_t{1}, uint16_t{2}}) {
        r.nr = nr;
        IXWRITE(icb, &r);
    }
    eerste_gemaakt++;
}

int tel(ICB* icb) {
    Rij r{};
    int n = 0;
    for (int ok = IXFIRST(icb, &r); ok; ok = IXNEXT(icb, &r))
        n++;
    return n;
}

TEST(Tabel, definitions_from_field_addresses) {
    TijdelijkeMap map;
    ICB* icb = IXCREATE(IXTIJDELIJK("EIGEN", 7).c_str(), 1);
    EXPECT_STREQ(icb->path, "EIGEN.07");
    definieer(icb);
    UPDFCB_END(icb); // nothing is open: nothing changes
    EXPECT_EQ(std::string(icb->h.title, 19), std::string("proeftabel met een\0", 19));
    EXPECT_TRUE(icb->h.reclen == 30 && icb->h.nkeys == 2);
    const IXKEYDEF &a = icb->h.keydef[0], &b = icb->h.keydef[1];
    EXPECT_EQ(std::string(a.keyname, 8), "sleuteln");
    EXPECT_EQ(std::string(&a.dupflag, 1) + std::string(&b.dupflag, 1), "NJ");
    EXPECT_EQ(std::string(a.ptype, 3), std::string("II\0", 3));
    EXPECT_EQ(a.pstart[0] * 1000 + a.pend[0], 2003);
    EXPECT_EQ(a.pstart[1] * 1000 + a.pend[1], 1001) << "a field at the start is position 1";
    EXPECT_EQ(b.pstart[0] * 1000 + b.pend[0], 4005);
    // A definition that was begun and not ended keeps the old one.
    UPDFCB_KEY(2, "anders", 0);
    EXPECT_EQ(b.dupflag, 'J');
    IXLAATLOS(icb);
}

TEST(Tabel, sets_itself_up_and_repairs_itself) {
    struct {
        const char* wat;
        void (*stuk)();
        int eerste, records;
    } gevallen[] = {
        {"nothing there", [] {}, 1, 3},
        {"all well", [] {}, 0, 3},
        {"index lost", [] { unlink("T.INX"); }, 0, 3},
        {"index cut", [] { schrijf_bestand("T.INX", lees_index("T.INX").substr(0, 700)); }, 0, 3},
        {"index of rubbish", [] { schrijf_bestand("T.INX", std::string(4096, 'x')); }, 0, 3},
        {"marked busy",
         [] {
             std::string s = lees_index("T.INX");
             s[45] = 1;
             schrijf_bestand("T.INX", s);
         },
         0, 3},
        {"a record more than the header counts",
         [] { schrijf_bestand("T.TXT", lees_bestand("T.TXT") + std::string(30, 'A')); }, 0, 4},
        {"data lost", [] { unlink("T.TXT"); }, 1, 3},
        {"killed before the first records were in", [] { in_kind([] { IXINIT(IXOPEN("T", 1)); }); }, 1, 3},
    };
    TijdelijkeMap map;
    for (const auto& g : gevallen) {
        SCOPED_TRACE(g.wat);
        g.stuk();
        eerste_gemaakt = 0;
        ICB* icb = IXEIGEN("T", 2, definieer, eerste);
        EXPECT_EQ(eerste_gemaakt, g.eerste);
        EXPECT_EQ(tel(icb), g.records);
        IXCLOSE(icb);
        EXPECT_GEZOND("T");
    }
    // Records of another length are not guessed at: a report, and the data stays.
    unlink("T.INX");
    schrijf_bestand("T.TXT", std::string(31, 'A'));
    EXPECT_EXIT(IXEIGEN("T", 2, definieer, eerste), testing::ExitedWithCode(1), "");
    EXPECT_EQ(lees_bestand("T.TXT"), std::string(31, 'A'));
}

TEST(Tabel, many_programs_starting_together_make_it_once) {
    TijdelijkeMap map;
    for (int ronde = 0; ronde < 20; ronde++) {
        IXREMOVE("T");
        int poort[2];
        ASSERT_EQ(pipe(poort), 0);
        EXPECT_EQ(0, processen(4,
                               [&](int p) {
                                   char c; // the last one opens the gate to the others
                                   if (p == 3 ? write(poort[1], "abc", 3) != 3 : read(poort[0], &c, 1) != 1)
                                       return false;
                                   IXWAITHOOK = [](ICB*) { usleep(100); };
                                   return tel(IXEIGEN("T", 2, definieer, eerste)) == 3;
                               }))
            << ronde;
        close(poort[0]);
        close(poort[1]);
        EXPECT_GEZOND("T");
    }
}

} // namespace
} // namespace zg::test
