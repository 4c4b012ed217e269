// The operators' tools on a directory that others are at work in: reserved keys, pairs in use, files that take another's
// place, definitions that are left alone; and the demo directory that only its maker may empty.
#include "shared/iotab.h"
#include "store/kop.h"
#include "store/rebuild.h"
#include "support/demomap.h"
#include "support/paar.h"
#include "support/rechten.h"
#include "tools/paar.h"
#include "tools/shell.h"
#include "tools/werkmap.h"
#include <sys/file.h>

using namespace zg;
using namespace zg::test;
namespace fs = std::filesystem;

namespace {

struct Handen : InMap {
    const SYSCALLS echt = SYS;
    ~Handen() override { SYS = echt; }
    static std::string paar(const std::string& naam) { // but for the change count, which goes on
        return lees_bestand(naam + ".INX").replace(TELPLAATS, 4, 4, '\0') + "|" + lees_bestand(naam + ".TXT");
    }
    static bool reserveer(uint16_t merk) {
        ICB* icb = IXOPEN("DTMERK", 2);
        uint8_t rec[76] = {};
        memcpy(rec, &merk, 2);
        return IXREADL(icb, rec) == 0;
    }
};

} // namespace

TEST_F(Handen, ReservedKeysAreSeenAndOnlyIxremakeClearsThem) {
    merken(20);
    Agent(std::function<bool()>([] {
        return reserveer(4711) && reserveer(99);
    })).dood(); // and leaves them behind
    hoort("ixcheck DTMERK", 0, "DTMERK: key reserved: 4711\nDTMERK: key reserved: 99\n"); // no damage
    EXPECT_FALSE(sh("ixcopy DTMERK KOPIE && ixcheck KOPIE").zegt("reserved"))
        << "nobody will write them there";
    IXREMOVE("KOPIE");
    // Neither an exclusive opener nor a rebuild takes them from who may be alive.
    IXCLOSE(IXOPEN("DTMERK", 1));
    EXPECT_EQ(IXBLDIX("DTMERK"), 1);
    EXPECT_TRUE(sh("ixcheck DTMERK").zegt("reserved: 4711"));
    {
        fs::create_symlink("DTSYS.TXT", "DTSYS.TXT"); // is there, and can't be opened
        hoort("ixremake DTMERK", 4, "DTSYS.TXT can't be opened", "--force");
        IOUNLINK("DTSYS.TXT");
        schrijf_bestand("DTSYS.TXT", std::string(10'000, '\0'));
        Agent gebruiker([] {
            int fd = open("DTSYS.TXT", O_RDWR | O_CLOEXEC);
            return IOLOCK('S', fd, 2640 + 41 * 64, 64) == 1;
        });
        const std::string voor = paar("DTMERK");
        for (const char* hoe : {"ixremake DTMERK", "ixremake -d DTMERK", "ixremake ."}) {
            hoort(hoe, 4, "key reserved: 4711",
                  "a user is at work (process " + std::to_string(gebruiker.pid()) + ", test_tools, user");
            EXPECT_TRUE(paar("DTMERK") == voor);
        }
        hoort("ixremake --force DTMERK", 0, "reserved key cleared: 4711", "cleared: 99");
        EXPECT_EQ(sh("ixremake DTMERK").status, 0) << "nothing to clear, nobody to ask";
    }
    EXPECT_FALSE(sh("ixcheck DTMERK").zegt("reserved"));
    Agent(std::function<bool()>([] { return reserveer(5000); })).dood();
    hoort("ixremake DTMERK", 0, "reserved key cleared: 5000"); // nobody is at work
    EXPECT_TRUE(Agent([] { return reserveer(5000); }).ok()) << "free again";
    // A header that makes no sense, and then a queue that makes none: told as far as it can be.
    const std::string index = lees_bestand("DTMERK.INX");
    schrijf_bestand("DTMERK.INX", std::string(index).replace(11, 1, 1, '\0'));
    hoort("ixremake -d DTMERK", 0, "reserved key cleared: 5000");
    schrijf_bestand("DTMERK.INX", std::string(index).replace(11, 1, 1, '\0').replace(4 * 512, 1, "x"));
    hoort("ixremake -d DTMERK", 0, "which keys were reserved can't be read");
    Agent(std::function<bool()>([] { return reserveer(6000); })).dood();
    schrijf_bestand("script", "open DTMERK 1\ninit\n");
    EXPECT_TRUE(sh("ixsh < script").zegt("reserved key cleared: 6000"));
}

// A key that is reserved while the rebuild is at work is not lost.
TEST_F(Handen, ARebuildWaitsForTheQueue) {
    merken(20);
    auto houder = std::make_unique<Agent>([] {
        int fd = open("DTMERK.INX", O_RDWR | O_CLOEXEC);
        return IOLOCK('E', fd, 4 * 512, 512) == 1; // three keys: the queue is block 4
    });
    ASSERT_TRUE(houder->ok());
    pid_t pid = fork();
    if (pid == 0) {
        IXWAITHOOK = [](ICB*) {};
        _exit(IXBLDIX("DTMERK") == 1 ? 0 : 1);
    }
    int status = 0;
    for (int i = 0; i < 20; i++, usleep(20'000))
        ASSERT_EQ(waitpid(pid, &status, WNOHANG), 0) << "it writes the queue under another's lock";
    houder.reset();
    ASSERT_EQ(waitpid(pid, &status, 0), pid);
    EXPECT_EQ(status, 0);
}

TEST_F(Handen, IxshTellsInUseFromDamaged) {
    merken(5);
    auto bezig = [](char c) {
        int fd = open("DTMERK.INX", O_RDWR | O_CLOEXEC);
        return IOLOCK('E', fd, 0, 512) == 1 && pwrite(fd, &c, 1, 45) == 1;
    };
    schrijf_bestand("script", "open DTMERK 2\nclose\n");
    {
        Agent schrijver([&] { return bezig(1); }); // as in the middle of an update
        Uit u = sh("ixsh -w 0 < script");
        EXPECT_TRUE(u.zegt("in use by process " + std::to_string(schrijver.pid()))) << u.tekst;
        EXPECT_FALSE(u.zegt("rebuild")) << u.tekst;
        EXPECT_EQ(u.status, 4);
    }
    EXPECT_TRUE(sh("ixsh < script").zegt("marked busy: rebuild it first"));
    std::string index = lees_bestand("DTMERK.INX");
    schrijf_bestand("DTMERK.INX", index.replace(45, 1, 1, '\0'));
    EXPECT_EQ(sh("ixsh < script").status, 0);
}

// A script's own reservations end with it, others' stay; what the disk refused is told in words and by the status, and
// the pair is as it was.
TEST_F(Handen, ToolsEndReservationsAndTellAFullDisk) {
    merken(5);
    Agent(std::function<bool()>([] { return reserveer(4711); })).dood();
    for (const char* einde : {"", "quit\n", "close\n"}) {
        schrijf_bestand("script", std::string("open DTMERK 2\nreadl clear merk=77\nreadl merk=78\n") + einde);
        EXPECT_EQ(sh("ixsh < script").status, 0);
        Uit u = sh("ixcheck DTMERK");
        EXPECT_TRUE(u.zegt("4711") && !u.zegt("reserved: 7")) << u.tekst;
    }
    // It gives up waiting for another's key, or is told to stop.
    schrijf_bestand("script", "open DTMERK 2\nreadl clear merk=77\nreadl merk=4711\n");
    EXPECT_EQ(sh("ixsh -w 0 < script").status, 4);
    Uit weg = sh("mkfifo in; ixsh <in >uit & exec 3>in; printf 'open DTMERK 2\\nreadl clear merk=78\\n' >&3; "
                 "until grep -q merk=78 uit; do sleep .02; done; kill -TERM $!; wait $!");
    EXPECT_EQ(weg.status, 128 + SIGTERM) << weg.tekst;
    EXPECT_TRUE(sh("ixcheck DTMERK").zegt("4711") && !sh("ixcheck DTMERK").zegt("reserved: 7"));
    const std::string voor = paar("DTMERK");
    schrijf_bestand("dump", "merk,naam\n5,x\n");
    for (const char* werk : {"write clear merk=90", "readl clear merk=90", "read clear merk=3\ndelete"}) {
        schrijf_bestand("script", std::string("open DTMERK 2\n") + werk + "\n");
        hoort("ulimit -f 0; ixsh < script", 1, "bestand te groot");
        EXPECT_TRUE(paar("DTMERK") == voor) << werk;
    }
    for (const char* werk :
         {"ulimit -f 0; ixremake DTMERK", "ulimit -f 1; ixremake DTMERK",
          "ulimit -f 0; ixload -d -i dump -r DTMERK"}) { // at the header, at the first block
        Uit u = sh(werk);
        EXPECT_TRUE(u.status == 1 && u.zegt("bestand te groot") && !u.zegt("daarna ixremake"))
            << werk << u.tekst;
        EXPECT_TRUE(paar("DTMERK") == voor) << werk;
    }
}

// The new pair stands whole, or the old one does; and the new one has the old one's rights.
TEST_F(Handen, ACopyTakesAPairsPlaceWholeOrNotAtAll) {
    static int wanneer, telling, gesynct;
    merken(30, "NIEUW");
    for (bool was : {false, true})
        for (int n : {1, 2, 3}) {
            SCOPED_TRACE(std::to_string(n) + (was ? " over a pair" : " new"));
            IXREMOVE("DOEL");
            if (was) {
                merken(7, "DOEL");
                for (const char* f : {"DOEL.INX", "DOEL.TXT"})
                    ASSERT_TRUE(chown(f, static_cast<uid_t>(-1), GROEP) == 0 && chmod(f, 0664) == 0);
            }
            const std::string voor = was ? paar("DOEL") : "", nieuw = paar("NIEUW");
            wanneer = n, telling = gesynct = 0;
            SYS.rename = [](const char* a, const char* b) {
                return ++telling == wanneer ? (errno = EIO, -1) : rename(a, b);
            };
            SYS.fsync = [](int fd) { return gesynct++, fsync(fd); };
            {
                Werkmap werk("DOEL");
                fs::remove("OUD.INX");
                if (was)
                    fs::create_hard_link("DOEL.INX", "OUD.INX");
                for (const char* ext : {".INX", ".TXT"})
                    fs::copy_file(std::string("NIEUW") + ext, werk.pad() + "/DOEL" + ext);
                EXPECT_EQ(werk.naar("DOEL", true, 0), n < 3 ? FOUT_GEVONDEN : GOED);
            }
            SYS = echt;
            for (const char* f : {"DOEL.INX", "DOEL.TXT"})
                EXPECT_EQ(IOEXISTS(f), was || n == 3) << f;
            if (was || n == 3)
                EXPECT_TRUE(paar("DOEL") == (n == 3 ? nieuw : voor));
            if (n == 3) {
                EXPECT_EQ(gesynct, 3) << "both files and their directory";
                if (was)
                    EXPECT_EQ(lees_bestand("OUD.INX")[45], '\1') << "the old one is marked";
                EXPECT_EQ(rechten("DOEL.TXT"),
                          was ? "0664 " + std::to_string(GROEP) : "0660 " + std::to_string(getegid()));
            }
            for (const auto& e : fs::directory_iterator("."))
                EXPECT_FALSE(e.path().filename().string().starts_with(".ixwerk"));
        }
}

TEST_F(Handen, WhatATellerMustKnowAboutDoubleValues) {
    merken(9);
    std::string data = lees_bestand("DTMERK.TXT");
    schrijf_bestand("DTMERK.TXT", data.replace(76 * 7, 2, data.substr(76 * 3, 2)));
    hoort("ixremake DTMERK", 1, "key 1: records 7 and 3 have the same value");
}

// A definition is made anew only for records of its own length, and only while nobody has the pair open.
TEST_F(Handen, RemakeByTheDictionaryLeavesRecordsAsLongAsTheyAre) {
    auto fotos = [](int reclen, const char* sleutel2) {
        IXREMOVE("DTSERPIC");
        ICB* icb = nieuw_paar("DTSERPIC", {"fotobestanden," + std::to_string(reclen),
                                           "key-1,NODUPS,I,1,4,I,5,6,I,7,8", sleutel2});
        char rec[60] = {};
        for (int i = 1; i < 56; i++) {
            memcpy(rec, &i, 4);
            snprintf(rec + 8, 45, "FOTO%d.JPG", i * 37 % 100);
            IXWRITE(icb, rec);
        }
        IXCLOSE(icb);
    };
    const char *goed = "key-2,C,9,18", *fout = "key-2,C,10,18";
    const struct {
        int reclen;
        const char* sleutel2;
        bool index;
        int status;
    } gevallen[] = {{56, goed, true, 0}, {56, fout, true, 0},  {56, goed, false, 0}, {53, goed, true, 0},
                    {53, fout, true, 0}, {53, goed, false, 0}, {60, goed, true, 1}};
    for (const auto& g : gevallen) {
        SCOPED_TRACE(std::to_string(g.reclen) + " " + g.sleutel2 + (g.index ? "" : " without index"));
        fotos(g.reclen, g.sleutel2);
        const std::string data = lees_bestand("DTSERPIC.TXT"), voor = paar("DTSERPIC");
        EXPECT_EQ(sh("ixcheck DTSERPIC").status, 0) << "no fault";
        if (!g.index)
            IOUNLINK("DTSERPIC.INX");
        Uit u = sh("ixremake -d DTSERPIC");
        EXPECT_EQ(u.status, g.status) << u.tekst;
        EXPECT_TRUE(lees_bestand("DTSERPIC.TXT") == data);
        if (g.status) {
            EXPECT_TRUE(paar("DTSERPIC") == voor && u.zegt("60 bytes a record")) << u.tekst;
            continue;
        }
        ICB* icb = IXOPEN("DTSERPIC", 0);
        EXPECT_EQ(icb->h.reclen, g.reclen);
        EXPECT_EQ(icb->h.keydef[1].pstart[0], 9);
        IXCLOSE(icb);
        EXPECT_TRUE(sh("ixdump -d DTSERPIC").zegt("\n6,,7,0,0,FOTO59.JPG")) << sh("ixdump -d DTSERPIC").tekst;
    }
    // A length in the header that the data contradicts: nothing is cut by it, and the dictionary's is named.
    fotos(56, goed);
    const std::string heel = lees_bestand("DTSERPIC.TXT");
    schrijf_bestand("DTSERPIC.INX", lees_bestand("DTSERPIC.INX").replace(24, 1, 1, 57));
    for (const char* hoe : {"ixremake DTSERPIC", "ixremake -t DTSERPIC"}) {
        hoort(hoe, 1, "--dictionary makes the index anew");
        EXPECT_TRUE(lees_bestand("DTSERPIC.TXT") == heel && !IOEXISTS("DTSERPIC.CUT"));
    }
    EXPECT_EQ(sh("ixremake -dt DTSERPIC && ixcheck -q DTSERPIC").status, 0);
    EXPECT_TRUE(lees_bestand("DTSERPIC.TXT") == heel);
    // Without an index, and a size that both lengths divide.
    schrijf_bestand("DTSERPIC.TXT", std::string(56 * 53, '\xFF'));
    for (auto [lengte, status] : {std::pair{"", 1}, {"-l 60", 1}, {"-l 53", 0}}) {
        IOUNLINK("DTSERPIC.INX");
        Uit u = sh(std::string("ixremake -d DTSERPIC ") + lengte);
        EXPECT_EQ(u.status, status) << u.tekst;
        EXPECT_EQ(u.zegt("records of 56 and of 53 bytes; --record-length says which"), !*lengte) << u.tekst;
    }
    EXPECT_EQ(lees_bestand("DTSERPIC.INX").substr(24, 1), "\x35");
    IXREMOVE("DTSERPIC");
    ASSERT_TRUE(DDNEW(DDNUMMER("DTSERPIC"), "DTSERPIC"));
    EXPECT_EQ(lees_bestand("DTSERPIC.INX").substr(24, 2), std::string("\x38\0", 2));
    fotos(56, fout);
    const std::string voor = paar("DTSERPIC");
    ICB* icb = IXOPEN("DTSERPIC", 2); // holds no lock, and knows the old keys
    hoort("ixremake -d -w 0 DTSERPIC", 4, "a program has it open by process " + std::to_string(getpid()));
    IXLOCK(icb, 3); // record 0
    EXPECT_EQ(sh("ixremake -d -w 0 DTSERPIC").status, 4);
    IXCLOSE(icb);
    EXPECT_TRUE(paar("DTSERPIC") == voor);
}

TEST_F(Handen, OnlyAnOwnAndIdleDirectoryIsEmptied) {
    auto zgdemo = [](const std::string& rest) { return sh("zgdemo " + rest); };
    // A firm's data, without the mark: whatever is asked.
    ASSERT_EQ(zgdemo("firma").status, 0);
    IOUNLINK("firma/ZGDEMO.MRK");
    schrijf_bestand("firma/2016Z/ORD0099.JRN", "a firm's order");
    EXPECT_EQ(zgdemo("firma").status, 0) << "kept, when nothing else is asked";
    fs::create_directory("brieven");
    schrijf_bestand("brieven/brief", "");
    EXPECT_EQ(zgdemo("brieven").status, 1) << "no data directory at all";
    for (const char* hoe : {"firma --fresh", "firma/ --fresh --register", "./firma --fresh"}) {
        Uit u = zgdemo(hoe);
        EXPECT_TRUE(u.status == 1 && u.zegt("zgdemo didn't make")) << u.tekst;
        EXPECT_EQ(lees_bestand("firma/2016Z/ORD0099.JRN"), "a firm's order");
    }
    // One that was broken off half-way is made anew.
    ASSERT_EQ(zgdemo("half").status, 0);
    schrijf_bestand("half/ZGDEMO.MRK",
                    "zgdemo is at work here, or was broken off: it begins anew next time.\n");
    IOUNLINK("half/DTLEV.INX");
    EXPECT_EQ(zgdemo("half").status, 0);
    EXPECT_TRUE(fs::exists("half/DTLEV.INX"));
    // Its own, while somebody is in: a user's slot, a pair, a journal, a hand-over.
    ASSERT_EQ(zgdemo("demo").status, 0);
    schrijf_bestand("demo/2016Z/ORD0099.JRN", "played with");
    const std::string sys = lees_bestand("demo/DTSYS.TXT");
    const struct {
        const char* wat;
        std::function<bool()> doe;
    } gevallen[] = {
        {"DTSYS.TXT", [] { return IOLOCK('S', open("demo/DTSYS.TXT", O_RDWR), 2640, 64) == 1; }},
        {"DTLEV.INX", [] { return open("demo/DTLEV.INX", O_RDWR) >= 0; }},
        {"ORD0099.JRN", [] { return IOLOCK('E', open("demo/2016Z/ORD0099.JRN", O_RDWR), 0, 1) == 1; }},
        {"DTSYS.TXT",
         [] {
             onderweg("demo/DTSYS.TXT", 1, time(nullptr));
             return true;
         }},
    };
    for (const auto& g : gevallen) {
        Agent ander(g.doe);
        ASSERT_TRUE(ander.ok());
        Uit u = zgdemo("demo --fresh");
        EXPECT_TRUE(u.status == 1 && u.zegt(std::string("is in use (") + g.wat)) << g.wat << u.tekst;
        EXPECT_EQ(lees_bestand("demo/2016Z/ORD0099.JRN"), "played with");
    }
    schrijf_bestand("demo/DTSYS.TXT", sys);
    chmod("demo", 02770);
    struct stat voor {
    }, na{};
    stat("demo", &voor);
    EXPECT_EQ(zgdemo("demo --fresh --register").status, 0);
    stat("demo", &na);
    EXPECT_TRUE(voor.st_ino == na.st_ino && na.st_mode == voor.st_mode) << "emptied, not replaced";
    EXPECT_TRUE(!IOEXISTS("demo/2016Z/ORD0099.JRN") && IOEXISTS("demo/DTSER.INX"));
    IOUNLINK("demo/DTSYS.TXT"); // broken off: made by us, so made again
    EXPECT_EQ(zgdemo("demo").status, 0);
    EXPECT_TRUE(IOEXISTS("demo/DTSYS.TXT"));
}

// Two terminals choose one user; and a user on his way from one program to the next is nobody's to take.
TEST(Menu, TakesAFreeUserOnly) {
    DemoMap demo;
    Opties o = demo_opties(demo);
    o.klok.clear();
    Terminal een({programma("zgbsmenu")}, o), twee({programma("zgbsmenu")}, o);
    ASSERT_TRUE(een.wacht("Joke") && twee.wacht("Joke")) << twee.scherm();
    een.kalm(), twee.kalm();
    een.toetsen("<Enter>");
    ASSERT_TRUE(een.wacht("Orders registreren")) << een.scherm();
    twee.toetsen("<Enter>");
    ASSERT_TRUE(twee.wacht("Deze gebruiker is net aan het werk gegaan")) << twee.scherm();
    twee.toetsen("<Enter>");
    ASSERT_TRUE(twee.wacht("Pieter") && twee.kalm()) << twee.scherm();
    EXPECT_EQ(twee.scherm().find("Joke"), std::string::npos) << twee.scherm();
    // Pieter chains: free, but not for long.
    onderweg(demo.bestand("DTSYS.TXT"), 2, time(nullptr));
    twee.toetsen("<Enter>");
    ASSERT_TRUE(twee.wacht("Deze gebruiker is net aan het werk gegaan")) << twee.scherm();
    twee.toetsen("<Enter>");
    twee.kalm();
    EXPECT_EQ(twee.scherm().find("Pieter"), std::string::npos) << twee.scherm();
    // A hand-over that nobody took up is over after a while.
    onderweg(demo.bestand("DTSYS.TXT"), 2, time(nullptr) - 60);
    Terminal drie({programma("zgbsmenu")}, o);
    drie.wacht("Pieter");
}

// Back from a program, and another has the slot: he is named, and waiting can be left.
TEST(Menu, WaitingForTheOwnSlotCanBeLeft) {
    DemoMap demo;
    Agent ander([&] {
        int fd = open(demo.bestand("DTSYS.TXT").c_str(), O_RDWR);
        return IOLOCK('S', fd, 2640, 64) == 1;
    });
    Terminal t({programma("zgbsmenu"), "zgbsmenu", "Joke", "1", "zgbestel"}, demo_opties(demo));
    ASSERT_TRUE(t.wacht("Informatie in gebruik door Joke")) << t.scherm();
    t.stuur("\x1b");
    EXPECT_EQ(t.einde(), 0);
}

// What killed loads left goes with the next one, but not what somebody works in, nor the last of the old records.
TEST_F(Handen, DirectoriesOfKilledLoadsAreSwept) {
    merken(20);
    for (const std::string gedeeld : {"0", "1"}) {
        SCOPED_TRACE(gedeeld);
        setenv("ZGGEDEELD", gedeeld.c_str(), 1);
        const std::string alleen = gedeeld == "1" ? " --alone --replace " : " --replace ";
        sh("rm -f KOPIE.*; mkdir .ixwerkDOOD01 .ixwerkDOOD02 .ixwerkLEEFT1 && touch .ixwerkDOOD01/DTMERK.TXT "
           ".ixwerkDOOD01/keten .ixwerkDOOD01/slot && "
           "echo oud >.ixwerkDOOD02/vorige && echo bezig >.ixwerkLEEFT1/DTMERK.TXT");
        Agent bezig([&] {
            return gedeeld == "0"
                       ? flock(open(".ixwerkLEEFT1", O_RDONLY | O_CLOEXEC), LOCK_EX) == 0
                       : IOLOCK('E', open(".ixwerkLEEFT1/slot", O_RDWR | O_CREAT | O_CLOEXEC, 0600), 0, 1);
        });
        ASSERT_TRUE(bezig.ok());
        for (int keer = 0; keer < 2; keer++) {
            hoort("ixcopy" + alleen + "DTMERK KOPIE", 0, "DOOD02/vorige: the old records");
            EXPECT_EQ(sh("cat .ixwerkDOOD02/vorige .ixwerkLEEFT1/DTMERK.TXT; ls -d .ixwerk*").tekst,
                      "oud\nbezig\n.ixwerkDOOD02\n.ixwerkLEEFT1\n");
        }
        bezig.dood();
        EXPECT_EQ(sh("ixdump DTMERK | ixload" + alleen + "KOPIE").status, 0);
        EXPECT_FALSE(IOISDIR(".ixwerkLEEFT1"));
        sh("rm -r .ixwerkDOOD02");
    }
    unsetenv("ZGGEDEELD");
}
