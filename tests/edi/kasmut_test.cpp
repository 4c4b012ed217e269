// Mutations for the tills: which lines go out, and that each goes out whole and once, whatever happens beside it.
#include "control/batchvw.h"
#include "edi/iokasmut.h"
#include "edi/konl_mut.h"
#include "shared/regelbij.h"
#include "shared/syscalls.h"
#include "support/proces.h"
#include "support/systeem.h"
#include "term/scherm.h"
#include <cerrno>
#include <cstdio>
#include <map>
#include <sstream>
#include <sys/stat.h>
#include <unistd.h>

namespace zg {
namespace {

using test::Agent;
using test::lees_bestand;
using test::schrijf_bestand;

constexpr char BESTAND[] = "KASMUT.TXT";

std::string regels() {
    return IOEXISTS(BESTAND) ? lees_bestand(BESTAND) : "none";
}

struct Kasmut : test::Systeem {
    Kasmut() {
        firma = {};
        firma.vlag30 = 4;
        firma.filialen = 12;
        instel15 = {};
        sessie = 1;
        tills_lees();
    }
    ~Kasmut() override {
        SYS = calls;
        tills_vrij();
        firma = {};
        instel15 = {};
        sessie = 0;
    }
    // What a child of the test needs: a descriptor and a slot of its own.
    static void als(int32_t slot) {
        open();
        sessie = slot;
    }
    const SYSCALLS calls = SYS;
};

TEST_F(Kasmut, Tills) {
    for (const char* naam : {"KAS0102.SYS", "KAS1199.SYS", "KAS-103.SYS", "KAS 104.SYS", "KAS01050.SYS",
                             "KAS106.SYS", "kas0107.SYS", "KAS0108.sys", "KASab09.SYS"})
        schrijf_bestand(naam, "");
    mkdir("KAS0110.SYS", 0777);
    tills_lees();
    EXPECT_EQ(tills_count(), 2);
    EXPECT_TRUE(tills_has(1, 2) && tills_has(11, 99) && tills_of(1) && tills_of(255) && tills_any());
    EXPECT_FALSE(tills_has(1, 3) || tills_has(1, 10) || tills_of(2) || tills_has(1, 100) || tills_has(1, -1));
    EXPECT_TRUE(tills_write(255, 255, 'S', "x") && tills_write(1, 255, 'b', "y"));
    EXPECT_FALSE(tills_write(2, 255, 'S', "x"));
    EXPECT_EQ(lees_bestand("DCMU0102.TXT") + lees_bestand("DCMU1199.TXT"), "Sx\nby\nSx\n");
    test::verwacht_stop([] { tills_of(12); }, "konl_mut: errno=3");
    test::verwacht_stop([] { tills_vrij(), tills_of(1); }, "konl_mut: errno=2");
    firma.vlag30 = 0;
    tills_lees();
    EXPECT_EQ(tills_count(), 0);
    EXPECT_FALSE(tills_of(99) || tills_write(255, 255, 'S', "z"));
}

TEST_F(Kasmut, LinesByLetter) {
    const struct {
        char letter;
        int filiaal, kassa;
        const char* regels[4]; // with neither option 19 nor a till, with one of them, with both
        int klasse;            // with both
    } rijen[] = {
        {'S', 7, 255, {"007255SX", "007255SX", "007255SX", "007255SX"}, 2},
        {'M', 255, 255, {"255255MX", "255255MX", "255255MX", "255255MX"}, 3},
        {'E', 255, 255, {"", "", "255255EX", "255255EX"}, 1},
        {'E', 1, 2, {"", "", "001002EX", "001002EX"}, 1},
        {'E', 3, 255, {"", "", "", ""}, 0},
        {'G', 255, 255, {"", "255255GX", "", "255255GX"}, 2},
        {'d', 1, 255, {"", "001255dX", "", "001255dX"}, 2},
        {'U', 255, 255, {"", "", "", ""}, 0},
        {'\0', 255, 255, {"", "", "", ""}, 0},
    };
    for (int stand = 0; stand < 8; stand++)
        for (const auto& r : rijen) {
            const bool gekoppeld = stand < 4;
            firma.vlag30 = gekoppeld ? 4 : 3;
            instel15.overdracht = stand & 1;
            if (stand & 2)
                schrijf_bestand("KAS0102.SYS", "");
            else
                IOUNLINK("KAS0102.SYS");
            tills_lees();
            IOUNLINK(BESTAND);
            EXPECT_TRUE(kasmut_write(r.filiaal, r.kassa, r.letter, "X"));
            const std::string regel = gekoppeld ? r.regels[stand] : "";
            EXPECT_EQ(regels(), regel.empty() ? "none" : regel + "\n")
                << r.letter << r.filiaal << " " << stand;
            if (stand == 3) {
                EXPECT_EQ(kasmut_class(r.filiaal, r.kassa, r.letter), r.klasse) << r.letter;
            }
        }
    firma.vlag30 = 4;
    tills_lees();
    IOUNLINK(BESTAND);
    instel15.overdracht = 0;
    const Mutatie kantoor[] = {{'G', "1"}, {'W', "2"}};
    EXPECT_TRUE(kasmut_reeks(kantoor));
    EXPECT_EQ(regels(), "none") << "nothing to write, nothing made";
    EXPECT_TRUE(kasmut_all('S', std::string("a\nb\x1b\x7f") + "c"));
    EXPECT_EQ(regels(), "255255Sa b  c\n") << "one mutation, one line";
    static std::string artikelen;
    ARTREGHAAK = [](char letter, const std::string& wat) { artikelen += letter + wat; };
    kasmut_all('A', "1");
    schrijf_bestand("DTARTREG.INX", "");
    for (const char letter : {'A', 'E', 'B'})
        kasmut_branch(1, letter, "2");
    kasmut_branch(3, 'A', "3");
    ARTREGHAAK = nullptr;
    EXPECT_EQ(artikelen, "A2E2") << "only with its index, for a till that is there";
    test::verwacht_stop([] { kasmut_branch(12, 'S', ""); }, "konl_mut: errno=3");
}

// Openings within each other: the outermost ends lock and file. A reader wants the group for himself.
TEST_F(Kasmut, Openings) {
    auto groep_vrij = [] {
        return Agent([] {
                   als(99);
                   return batch_claim(BATCH_KASSA);
               })
            .ok();
    };
    ASSERT_TRUE(kasmut_open(1) && kasmut_open(1));
    EXPECT_TRUE(kasmut_all('S', "1"));
    kasmut_close();
    EXPECT_FALSE(groep_vrij());
    EXPECT_TRUE(Agent([] {
                    als(2);
                    return kasmut_all('S', "2");
                }).ok())
        << "another user appends meanwhile";
    EXPECT_TRUE(kasmut_all('S', "3"));
    kasmut_close();
    EXPECT_TRUE(groep_vrij());
    kasmut_close();
    EXPECT_EQ(regels(), "255255S1\n255255S2\n255255S3\n");
    sessie = 99;
    ASSERT_TRUE(kasmut_open(0));
    EXPECT_FALSE(groep_vrij());
    kasmut_close();
    IOUNLINK(BESTAND);
    EXPECT_FALSE(kasmut_open(0)) << "nothing to read";
    EXPECT_TRUE(groep_vrij());
    mkdir(BESTAND, 0777);
    test::verwacht_stop([] { als(1), kasmut_all('S', "4"); }, "iokasmut: ");
}

// Two users with ten thousand lines each, in pieces and one by one, while a batch run takes the file away.
TEST_F(Kasmut, NothingLostBesideABatchRun) {
    constexpr int REGELS = 10'000, STUK = 20;
    auto schrijver = [](int32_t slot) {
        return [slot] {
            als(slot);
            std::vector<Mutatie> stuk;
            for (int i = 0; i < REGELS; i++) {
                stuk.push_back({'S', std::to_string(slot) + "." + std::to_string(i)});
                if (i % STUK == STUK - 1 || i % 1000 == 0) {
                    if (!kasmut_reeks(stuk))
                        return 1;
                    stuk.clear();
                }
            }
            return 0;
        };
    };
    auto batch = [](const std::string&) -> std::string {
        als(99);
        static int gehaald;
        bool open = false;
        for (int keer = 0; keer < 20'000 && !open;
             keer++) // a run doesn't wait: one try is lost among the writers
            open = kasmut_open(0);
        if (open) {
            rename(BESTAND, "WEG");
            schrijf_bestand("UIT." + std::to_string(gehaald++), lees_bestand("WEG"));
            IOUNLINK("WEG"); // what is written into it from now on is lost
            kasmut_close();
        }
        return std::to_string(gehaald);
    };
    Agent run(batch);
    test::Terminal een(schrijver(1)), twee(schrijver(2));
    std::string gehaald;
    while (een.einde(20) < 0 || twee.einde(20) < 0)
        gehaald = run.vraag("haal", 10'000);
    EXPECT_EQ(een.einde(60'000) + twee.einde(60'000), 0);
    gehaald = run.vraag("haal", 10'000);
    const int keren = atoi(gehaald.c_str());
    EXPECT_GE(keren, 5);
    std::map<std::string, int> geteld;
    for (int i = 0; i < keren; i++) {
        std::istringstream in(lees_bestand("UIT." + std::to_string(i)));
        for (std::string r; std::getline(in, r);)
            geteld[r]++;
    }
    EXPECT_FALSE(IOEXISTS(BESTAND));
    EXPECT_EQ(geteld.size(), 2u * REGELS);
    for (int slot : {1, 2})
        for (int i = 0; i < REGELS; i++)
            ASSERT_EQ(geteld["255255S" + std::to_string(slot) + "." + std::to_string(i)], 1)
                << slot << " " << i;
}

TEST_F(Kasmut, ABatchAtWorkIsWaitedFor) {
    Agent run([] {
        als(99);
        return batch_claim(BATCH_KASSA);
    });
    ASSERT_TRUE(run.ok());
    test::Terminal t([] {
        SCRINIT();
        als(1);
        const bool goed = kasmut_all('S', "na");
        SCREXIT();
        return goed ? 10 : 11;
    });
    ASSERT_TRUE(t.wacht("Verwerking is actief")) << t.scherm();
    EXPECT_EQ(t.scherm().find("(J/N)"), std::string::npos) << "nobody is asked";
    EXPECT_EQ(regels(), "none");
    run.dood();
    EXPECT_EQ(t.einde(), 10);
    EXPECT_EQ(regels(), "255255Sna\n");
}

// A disk that takes a part of a line, or nothing; a part that somebody has left.
TEST_F(Kasmut, NoHalfLine) {
    enum Storing { GEEN, NIETS, DEEL, DEEL_VAST, DEEL_ANDER };
    static Storing storing;
    static const SYSCALLS echt = SYS;
    SYS.write = [](int fd, const void* buf, size_t n) -> ssize_t {
        if (storing == GEEN)
            return echt.write(fd, buf, n);
        const Storing nu = storing;
        storing = GEEN;
        if (nu == NIETS) {
            errno = ENOSPC;
            return -1;
        }
        const ssize_t k = echt.write(fd, buf, 5);
        if (nu == DEEL_ANDER)
            schrijf_bestand("KASMUT.TXT", lees_bestand("KASMUT.TXT") + "VREEMD\n");
        if (nu == DEEL_VAST)
            SYS.ftruncate = [](int, off_t) {
                SYS.ftruncate = echt.ftruncate;
                errno = EIO;
                return -1;
            };
        return k;
    };
    const struct {
        Storing storing;
        const char *was, *bij, *na;
    } rijen[] = {
        {NIETS, "een\n", "een\n", "een\n255255Sy\n"},
        {DEEL, "een\n", "een\n", "een\n255255Sy\n"},
        {DEEL, "", "", "255255Sy\n"},
        {DEEL_VAST, "een\n", "een\n25525\n", "een\n25525\n255255Sy\n"},
        {DEEL_ANDER, "een\n", "een\n25525VREEMD\n\n", "een\n25525VREEMD\n\n255255Sy\n"},
        {NIETS, "half", "half", "half\n255255Sy\n"},
        {DEEL, "half", "half", "half\n255255Sy\n"},
    };
    for (const auto& r : rijen) {
        schrijf_bestand(BESTAND, r.was);
        const auto verteld = test::in_proces([&] {
            als(1);
            storing = r.storing;
            return kasmut_all('S', "x");
        });
        EXPECT_EQ(verteld.status, 0) << r.was;
        EXPECT_NE(verteld.uitvoer.find("KASMUT.TXT"), std::string::npos) << verteld.uitvoer;
        EXPECT_EQ(regels(), r.bij);
        EXPECT_TRUE(kasmut_all('S', "y"));
        EXPECT_EQ(regels(), r.na);
    }
}

} // namespace
} // namespace zg
