// Mutations for the tills: which lines go out, and that each goes out whole and once, whatever happens beside it.
#include "control/batchvw.h"
#include "edi/iokasmut.h"
#include "edi/konl_mut.h"
#include "shared/regelbij.h"
#include "support/systeem.h"
#include "term/scherm.h"
#include <sstream>

namespace zg::test {
namespace {

constexpr char BESTAND[] = "KASMUT.TXT";

std::string regels() {
    return IOEXISTS(BESTAND) ? lees_bestand(BESTAND) : "none";
}

struct Kasmut : Systeem {
    Kasmut() {
        firma.vlag30 = 4;
        firma.filialen = 12;
        sessie = 1;
        tills_lees();
    }
    ~Kasmut() override {
        SYS = calls;
        tills_vrij();
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
    verwacht_stop([] { kasmut_branch(12, 'S', ""); }, "konl_mut: errno=3");
    verwacht_stop([] { tills_vrij(), tills_of(1); }, "konl_mut: errno=2");
    firma.vlag30 = 0;
    tills_lees();
    EXPECT_EQ(tills_count(), 0);
    EXPECT_FALSE(tills_of(99) || tills_write(255, 255, 'S', "z"));
}

TEST_F(Kasmut, LinesByLetter) {
    const struct {
        char letter;
        int filiaal;
        const char* regels[4]; // with neither option 19 nor a till, with one of them, with both
        int klasse;            // with both
    } rijen[] = {
        {'S', 7, {"007255S", "007255S", "007255S", "007255S"}, 2},
        {'M', 255, {"255255M", "255255M", "255255M", "255255M"}, 3},
        {'E', 255, {"", "", "255255E", "255255E"}, 1},
        {'E', 3, {"", "", "", ""}, 0},
        {'G', 255, {"", "255255G", "", "255255G"}, 2},
        {'U', 255, {"", "", "", ""}, 0},
        {'\0', 255, {"", "", "", ""}, 0},
    };
    for (int stand = 0; stand < 8; stand++)
        for (const auto& r : rijen) {
            firma.vlag30 = stand < 4 ? 4 : 3; // linked, else not
            instel15.overdracht = stand & 1;
            IOUNLINK("KAS0102.SYS");
            if (stand & 2)
                schrijf_bestand("KAS0102.SYS", "");
            tills_lees();
            IOUNLINK(BESTAND);
            EXPECT_TRUE(kasmut_branch(r.filiaal, r.letter, "X"));
            const std::string regel = stand < 4 ? r.regels[stand] : "";
            EXPECT_EQ(regels(), regel.empty() ? "none" : regel + "X\n")
                << r.letter << r.filiaal << " " << stand;
            EXPECT_TRUE(stand != 3 || kasmut_class(r.filiaal, 255, r.letter) == r.klasse) << r.letter;
        }
    firma.vlag30 = 4;
    tills_lees();
    instel15.overdracht = 0;
    const Mutatie kantoor[] = {{'G', "1"}, {'W', "2"}};
    EXPECT_TRUE(kasmut_reeks(kantoor));
    EXPECT_EQ(regels(), "none") << "nothing to write, nothing made";
    EXPECT_TRUE(kasmut_write(1, 2, 'E', std::string("a\nb\x1b\x7f") + "c"));
    EXPECT_EQ(regels(), "001002Ea b  c\n") << "one mutation, one line";
    static std::string artikelen;
    ARTREGHAAK = [](char letter, const std::string& wat) { artikelen += letter + wat; };
    kasmut_all('A', "1");
    schrijf_bestand("DTARTREG.INX", "");
    for (const char letter : {'A', 'E', 'B'})
        kasmut_branch(1, letter, "2");
    kasmut_branch(3, 'A', "3");
    ARTREGHAAK = nullptr;
    EXPECT_EQ(artikelen, "A2E2") << "only with its index, for a till that is there";
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
    kasmut_close();
    EXPECT_FALSE(groep_vrij());
    EXPECT_TRUE(kasmut_all('S', "1"));
    kasmut_close();
    EXPECT_TRUE(groep_vrij());
    kasmut_close();
    sessie = 99;
    ASSERT_TRUE(kasmut_open(0));
    EXPECT_FALSE(groep_vrij());
    kasmut_close();
    IOUNLINK(BESTAND);
    EXPECT_FALSE(kasmut_open(0)) << "nothing to read";
    EXPECT_TRUE(groep_vrij());
    mkdir(BESTAND, 0777);
    verwacht_stop([] { als(1), kasmut_all('S', "4"); }, "iokasmut: ");
}

// Two users with ten thousand lines each, in pieces and one by one, while a batch run takes the file away.
TEST_F(Kasmut, NothingLostBesideABatchRun) {
    constexpr int REGELS = 10'000;
    auto schrijver = [](int32_t slot) {
        return [slot] {
            als(slot);
            std::vector<Mutatie> stuk;
            for (int i = 0; i < REGELS; i++) {
                stuk.push_back({'S', std::to_string(slot * REGELS + i)});
                if ((i % 20 == 19 || i % 1000 == 0) && !kasmut_reeks(std::exchange(stuk, {})))
                    return 1;
            }
            return 0;
        };
    };
    Agent run([](const std::string&) {
        als(99);
        std::string uit;
        for (int keer = 0; keer < 20'000 && uit.empty();
             keer++) // it doesn't wait: one try is lost among the writers
            if (kasmut_open(0)) {
                rename(BESTAND, "WEG");
                uit = lees_bestand("WEG");
                IOUNLINK("WEG"); // what is written into it from now on is lost
                kasmut_close();
            }
        std::replace(uit.begin(), uit.end(), '\n', ' '); // an answer is one line
        return uit;
    });
    Terminal een(schrijver(1)), twee(schrijver(2));
    std::map<std::string, int> geteld;
    int keren = 0;
    for (bool klaar = false; !klaar; keren++) {
        klaar = een.einde(20) >= 0 && twee.einde(20) >= 0;
        std::istringstream in(run.vraag("haal", 10'000));
        for (std::string r; in >> r;)
            geteld[r]++;
    }
    EXPECT_EQ(een.einde() + twee.einde(), 0);
    EXPECT_GE(keren, 5);
    EXPECT_FALSE(IOEXISTS(BESTAND));
    EXPECT_EQ(geteld.size(), 2u * REGELS);
    for (int i = REGELS; i < 3 * REGELS; i++)
        ASSERT_EQ(geteld["255255S" + std::to_string(i)], 1);
}

// A batch run at work is waited for, and nobody is asked. Who is killed meanwhile has noted what waits, and it goes out at his
// next start; what the disk refuses goes with the next.
TEST_F(Kasmut, WhatWaitsIsNoted) {
    auto programma = [](const std::function<bool()>& doe) {
        return [=] {
            SCRINIT();
            als(1);
            MUTATIEHAAK = kasmut_reeks;
            const bool goed = mutaties_herstel() && doe();
            SCREXIT();
            return goed ? 10 : 11;
        };
    };
    Agent run([] {
        als(99);
        return batch_claim(BATCH_KASSA);
    });
    Terminal een(programma([] {
        mutaties_houd();
        return mutatie('S', "1") && mutatie('S', "2") && mutatie('S', "1") && mutaties_stuur();
    }));
    ASSERT_TRUE(een.wacht("Verwerking is actief")) << een.scherm();
    EXPECT_FALSE(bevat(een.scherm(), "(J/N)"));
    een.sein(SIGKILL);
    een.einde();
    EXPECT_EQ(lees_bestand("MUT01.RES"), "S1\nS2\n");
    schrijf_bestand("MUT01.RES", "S1\nS2\nShalf");
    Terminal twee(programma([] { return mutatie('S', "3"); }));
    ASSERT_TRUE(twee.wacht("Verwerking is actief")) << twee.scherm();
    EXPECT_EQ(regels(), "none");
    run.dood();
    EXPECT_EQ(twee.einde(), 10);
    EXPECT_EQ(regels(), "255255S1\n255255S2\n255255S3\n");
    EXPECT_FALSE(IOEXISTS("MUT01.RES"));
    IOUNLINK(BESTAND);
    const auto verteld = in_proces([] {
        als(1);
        MUTATIEHAAK = kasmut_reeks;
        const auto echt = SYS.write;
        SYS.write = [](int, const void*, size_t) -> ssize_t { return errno = ENOSPC, -1; };
        const bool goed = mutatie('S', "4");
        SYS.write = echt;
        return !goed && mutatie('S', "5");
    });
    EXPECT_TRUE(verteld.status == 1 && verteld.uitvoer.find(BESTAND) != std::string::npos) << verteld.uitvoer;
    EXPECT_EQ(regels(), "255255S4\n255255S5\n");
    ASSERT_EQ(symlink("elders", "MUT01.RES"), 0);
    const auto vreemd = in_proces([] {
        als(1);
        MUTATIEHAAK = kasmut_reeks;
        return mutaties_herstel() && mutatie('S', "6");
    });
    EXPECT_EQ(vreemd.uitvoer.find("MUT01.RES\nis niet van dit programma"), 0u) << vreemd.uitvoer;
    EXPECT_EQ(regels(), "255255S4\n255255S5\n255255S6\n");
}

// A disk that takes a part of a line, or nothing; a part that somebody has left.
TEST_F(Kasmut, NoHalfLine) {
    enum Storing { GEEN, NIETS, DEEL, DEEL_ANDER };
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
        return k;
    };
    const struct {
        Storing storing;
        const char *was, *bij, *na;
    } rijen[] = {
        {NIETS, "een\n", "een\n", "een\n255255Sy\n"},
        {DEEL, "een\n", "een\n", "een\n255255Sy\n"},
        {DEEL_ANDER, "een\n", "een\n25525VREEMD\n\n", "een\n25525VREEMD\n\n255255Sy\n"},
        {DEEL, "half", "half", "half\n255255Sy\n"},
    };
    for (const auto& r : rijen) {
        schrijf_bestand(BESTAND, r.was);
        const auto verteld = in_proces([&] {
            als(1);
            storing = r.storing;
            return kasmut_all('S', "x");
        });
        EXPECT_EQ(verteld.status, 0) << r.was;
        EXPECT_TRUE(bevat(verteld.uitvoer, "KASMUT.TXT"));
        EXPECT_EQ(regels(), r.bij);
        EXPECT_TRUE(kasmut_all('S', "y"));
        EXPECT_EQ(regels(), r.na);
    }
}

} // namespace
} // namespace zg::test
