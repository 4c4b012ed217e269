// zgcopy: a copy has all of a directory as it stood at one moment, also while others write; what can't be copied leaves
// nothing; and a copy in which something changed is told.
#include "support/demomap.h"
#include "support/paar.h"
#include "support/rechten.h"
#include "tools/shell.h"
#include <sys/file.h>

using namespace zg;
using namespace zg::test;
namespace fs = std::filesystem;

namespace {

struct Kopie : testing::Test {
    DemoMap demo;
    TijdelijkeMap map; // the present directory
    std::string zgcopy(const std::string& naar = "kopie") const {
        return "zgcopy " + demo.pad() + " " + naar;
    }
    static std::string inhoud(const std::string& waar) { return sh("ls -A " + waar).tekst; }
};

// A writer of two pairs and a file between them: everywhere the same number, but for the moment of one step.
constexpr char EEN[] = "DTEEN", TWEE[] = "DTTWEE";
void tel(const std::string& pad) {
    if (chdir(pad.c_str()) != 0)
        return;
    const uint32_t van = static_cast<uint32_t>(atoi(lees_bestand("TELLER.TXT").c_str())) + 1;
    ICB *een = IXOPEN(EEN, 2), *twee = IXOPEN(TWEE, 2);
    for (uint32_t n = van;; n++) {
        uint8_t rec[IXRECMAX] = {};
        memcpy(rec, &n, sizeof n);
        IXWRITE(een, rec);
        schrijf_bestand("TELLER.NEW", std::to_string(n));
        if (rename("TELLER.NEW", "TELLER.TXT") != 0)
            return;
        IXWRITE(twee, rec);
    }
}

} // namespace

TEST_F(Kopie, HasAllOfItAndComesBack) {
    const std::string d = demo.pad();
    const Uit maak =
        sh("m=" + map.pad() + "; cd " + d +
           " && zgedi init internet && ln DTRCMSYS.TXT EDISYS.CVC && mkdir -p leeg/diep 'met spatie' && "
           "echo x >'met spatie/a\\b' && ln -s DTLEV.TXT binnen && ln -s nergens los && ln -s .. op && "
           "mkfifo pijp && "
           "echo x >gat && truncate -s 64M gat && echo y >>gat && truncate -s 80M gat && "
           "chmod 0640 DTLEV.TXT && chmod 2770 leeg && chgrp " +
           std::to_string(GROEP) +
           " . && touch SERNR01.RES && "
           "mkdir .ixwerkAAAAAA $m/buiten && echo y >$m/buiten/ver && ln -s $m/buiten uit-huis && "
           "touch -d '2016-03-01 12:00' ZGDEMO.MRK");
    ASSERT_EQ(maak.status, 0) << maak.tekst;
    Agent([&] { // a key that nobody in the copy will write
        ICB* icb = chdir(d.c_str()) == 0 ? IXOPEN("DTMERK", 2) : nullptr;
        uint8_t rec[IXRECMAX] = {0x67, 0x12};
        return icb && IXREADL(icb, rec) == 0;
    })
        .dood();
    ASSERT_TRUE(sh("ixcheck " + d + "/DTMERK").zegt("key reserved"));
    const Uit u = sh(zgcopy());
    ASSERT_EQ(u.status, 0) << u.tekst;
    for (const char* noot : {"pijp: no file", "los: a link that leads nowhere", "op: leads to",
                             "uit-huis: leads to", " pairs checked"})
        EXPECT_TRUE(u.zegt(noot)) << noot << u.tekst;
    EXPECT_FALSE(u.zegt("moved")) << u.tekst;
    const Uit anders = sh("diff -r --no-dereference " + d + " kopie");
    for (const char* mag : {"DTMERK.INX", ".ixwerkAAAAAA", "SERNR01.RES", "pijp", "uit-huis", "ZGCOPY.LST"})
        EXPECT_TRUE(anders.zegt(mag)) << mag;
    EXPECT_EQ(std::count(anders.tekst.begin(), anders.tekst.end(), '\n'), 6) << anders.tekst;
    EXPECT_FALSE(sh("ixcheck kopie/DTMERK").zegt("reserved"));
    EXPECT_TRUE(fs::equivalent("kopie/DTRCMSYS.TXT", "kopie/EDISYS.CVC")) << "two names of one file";
    EXPECT_EQ(lees_bestand("kopie/uit-huis/ver"), "y\n");
    EXPECT_LT(std::stoi(sh("stat -c %b kopie/gat").tekst), 8 * 1024) << "holes stay, in blocks of 512 bytes";
    EXPECT_EQ(rechten("kopie/DTLEV.TXT"), rechten(d + "/DTLEV.TXT"));
    EXPECT_EQ(rechten("kopie/leeg"), rechten(d + "/leeg"));
    EXPECT_EQ(rechten("kopie"), rechten(d));
    EXPECT_EQ(rechten("kopie/ZGCOPY.LST"), rechten(d).replace(0, 4, "0660"))
        << "or zgcheck says it is another's";
    EXPECT_FALSE(sh("zgcheck kopie").zegt("ZGCOPY"));
    EXPECT_TRUE(fs::last_write_time("kopie/ZGDEMO.MRK") == fs::last_write_time(d + "/ZGDEMO.MRK"));

    EXPECT_EQ(sh("cd kopie && sha256sum --quiet -c ZGCOPY.LST").tekst, "");
    EXPECT_TRUE(sh("zgcopy --check kopie").zegt("kopie: good, "));
    ASSERT_EQ(sh("zgcopy kopie terug && diff -r --no-dereference -x ZGCOPY.LST kopie terug").status, 0);

    for (const auto& [wat, schade, zegt, status] : Rijen<const char*, const char*, const char*, int>{
             {"a byte", "printf x | dd of=k/DTLEV.TXT bs=1 seek=40 conv=notrunc",
              "DTLEV.TXT: its bytes have changed", 1},
             {"longer", "echo >>k/ORDPARM.SYS", "ORDPARM.SYS: its bytes have changed", 1},
             {"a file less", "rm k/2016Z/ORD0012.JRN", "2016Z/ORD0012.JRN: isn't there", 1},
             {"an empty directory less", "rmdir k/leeg/diep", "leeg/diep: isn't there", 1},
             {"a name with signs", "rm 'k/met spatie/a\\b'", "a\\b: isn't there", 1},
             {"another kind", "rm k/DTLEV.TXT && mkdir k/DTLEV.TXT", "DTLEV.TXT: is of another kind", 1},
             {"a pair that was damaged before",
              "printf '\\001' | dd of=k/DTMERK.INX bs=1 seek=45 conv=notrunc && rm k/ZGCOPY.LST "
              "&& zgcopy k l; rm -r k; mv l k",
              "DTMERK: ", 1},
             {"a file more", "touch k/nieuw", "note: nieuw: came later", 0},
             {"a list cut off", "sed -i '$d' k/ZGCOPY.LST", "is cut off or damaged", 3},
             {"a row less in it", "sed -i 3d k/ZGCOPY.LST", "is cut off or damaged", 3},
             {"a row behind its end", "tail -1 k/ZGCOPY.LST | sed 's/end.*/link x/' >>k/ZGCOPY.LST",
              "is cut off or damaged", 3},
             {"no list", "rm k/ZGCOPY.LST", "no copy, or not the whole of one", 3},
         }) {
        SCOPED_TRACE(wat);
        sh("rm -rf k; cp -a kopie k; " + std::string(schade));
        hoort("zgcopy --check k", status, zegt);
    }
}

TEST_F(Kopie, WhatCantBeCopiedLeavesNothing) {
    const std::string d = demo.pad();
    const auto vast = [](const std::string& bestand, int64_t van, int64_t lengte) {
        const int fd = open(bestand.c_str(), O_RDWR | O_CLOEXEC);
        return fd >= 0 && IOLOCK('E', fd, van, lengte) == 1;
    };
    const struct {
        const char* wat;
        std::string voor, opdracht;
        int status;
        std::string zegt, blijft = "";
        std::function<bool()> houdt = {}; // by another process
    } GEVALLEN[] = {
        {"not empty", "mkdir kopie && touch kopie/iets", zgcopy(), 2, "isn't empty", "iets\n"},
        {"in itself", "", zgcopy(d + "/kopie"), 2, "in the directory that is copied"},
        {"no data directory", "mkdir leeg", "zgcopy leeg kopie", 3, "DTSYS.TXT"},
        {"a pair that another has for himself", "", zgcopy() + " -w 1", 4, "DTLEV.INX: in use by process", "",
         [&] { return vast(d + "/DTLEV.INX", 0, 512); }},
        {"free labels that another changes", "", zgcopy() + " -w 0", 4, "DTSYS.TXT: in use by process", "",
         [&] { return vast(d + "/DTSYS.TXT", 192, 64); }},
        {"a record that another has", "", zgcopy() + " -w 0", 0, " files", "",
         [&] { return vast(d + "/DTLEV.TXT", 0, 332); }},
        {"another copy", "mkdir kopie", zgcopy(), 4, "another copy is being made", "",
         [&] { return flock(open("kopie", O_RDONLY | O_CLOEXEC), LOCK_EX) == 0; }},
        {"another host's copy", "mkdir kopie && touch kopie/.zgcopy.lck", "ZGGEDEELD=1 " + zgcopy(), 4,
         "another copy is being made", ".zgcopy.lck\n", [&] { return vast("kopie/.zgcopy.lck", 0, 1); }},
        {"what a killed one left on a shared file system",
         "mkdir -p kopie/.zgcopy/2016Z && touch kopie/.zgcopy.lck", "ZGGEDEELD=1 " + zgcopy() + " -q", 0, ""},
        {"what a killed one left", "mkdir -p kopie/.zgcopy/2016Z && touch kopie/.zgcopy/2016Z/x",
         zgcopy("kopie/") + " -q", 0, ""},
    };
    for (const auto& g : GEVALLEN) {
        SCOPED_TRACE(g.wat);
        sh("rm -rf kopie; " + g.voor);
        const std::unique_ptr<Agent> houder = g.houdt ? std::make_unique<Agent>(g.houdt) : nullptr;
        ASSERT_TRUE(!houder || houder->ok());
        const Uit u = sh(g.opdracht);
        EXPECT_EQ(u.status, g.status) << u.tekst;
        EXPECT_TRUE(u.zegt(g.zegt)) << u.tekst;
        EXPECT_TRUE(!g.zegt.ends_with("process") || u.zegt("process " + std::to_string(houder->pid())))
            << u.tekst;
        if (g.status)
            EXPECT_EQ(fs::exists("kopie") ? inhoud("kopie") : "", g.blijft);
        EXPECT_FALSE(fs::exists("kopie/.zgcopy") || fs::exists(d + "/kopie"));
        EXPECT_TRUE(g.status || !fs::exists("kopie/.zgcopy.lck"));
    }
    // On a disk of its own that is too small, and on one that the holes of a file wouldn't fit on.
    const std::string schijf = geteuid() == 0 ? "unshare -m" : "unshare -rm";
    for (const auto& [ruim, status, zegt] :
         Rijen<const char*, int, const char*>{{"100k", 1, "no room"}, {"4m", 0, "pairs checked"}})
        if (sh("rm -rf kopie; mkdir kopie; truncate -s 40M " + d + "/groot; echo x >>" + d + "/groot; " +
               schijf + " true")
                .status == 0)
            hoort(schijf + " sh -c 'mount -t tmpfs -o size=" + ruim + " none kopie; " + zgcopy("kopie/k") +
                      "'",
                  status, zegt);
    // Broken off at any moment by a signal it removes what it made; killed it leaves what the next one sweeps.
    sh("rm -rf kopie; rm -f " + d + "/groot; mkdir kopie; head -c 30000000 /dev/urandom >" + d + "/veel");
    for (const char* sein : {"TERM", "INT", "KILL"})
        for (const char* na : {"0.01", "0.05", "0.1", "0.2"}) {
            const Uit u = sh("timeout -s " + std::string(sein) + " " + na + " " + zgcopy());
            const bool af = u.zegt(" pairs checked"); // also where the signal came behind it
            if (*sein != 'K' && !af)
                EXPECT_EQ(inhoud("kopie"), "") << sein << na << u.tekst;
            if (af)
                sh("rm -r kopie; mkdir kopie");
        }
    hoort(zgcopy() + " && zgcopy --check kopie", 0, "kopie: good");
}

// Half a firm is copied as it stands, and told by the copy, by its check, and without a look into the pairs.
TEST_F(Kopie, TellsWhatIsMissing) {
    for (const auto& [schade, zegt, later] : Rijen<const char*, const char*, const char*>{
             {"rm DTLEV.INX", "DTLEV.INX: isn't there, so DTLEV.TXT is half a pair",
              "DTLEV.INX: isn't there"},
             {"rm DTMERK.TXT", "DTMERK.TXT: isn't there", "DTMERK.TXT: isn't there"},
             {"rm print/TR_PTRC.TXT", "print/TR_PTRC.TXT: isn't there", "print/TR_PTRC.TXT: isn't there"},
             {"rm DTLEV.TXT && mkfifo DTLEV.TXT", "DTLEV.TXT: no plain file, so it isn't in the copy",
              "DTLEV.TXT: isn't there"},
             {"rm DTFILGEG.TXT && mkdir DTFILGEG.TXT", "DTFILGEG.TXT: no plain file", nullptr},
             {"rm 2016Z/ORD0012.JRN && mkfifo 2016Z/ORD0012.JRN", "ORD0012.JRN: no plain file", nullptr},
             {"echo 'zgdemo is at work here, or was broken off: it begins anew next time.' >ZGDEMO.MRK",
              "ZGDEMO.MRK: half made", "ZGDEMO.MRK: half made"},
         }) {
        sh("rm -rf van kopie; cp -a " + demo.pad() + " van && cd van && " + schade);
        hoort("zgcopy -qC van kopie", 1, zegt);
        hoort("zgcopy -qC --check kopie", later ? 1 : 0, later ? later : "");
    }
    hoort("zgcheck -q kopie", 1, "ZGDEMO.MRK: half made");
}

// Beside a writer who never stops: at the moment of the copy no number is further than the ones written before it, and
// none is more than a step behind.
TEST_F(Kopie, IsOfOneMoment) {
    const std::string d = demo.pad();
    ASSERT_EQ(in_proces([&] {
                  if (chdir(d.c_str()) != 0)
                      return 1;
                  for (const char* naam : {EEN, TWEE})
                      IXCLOSE(nieuw_paar(naam, {"tel,20", "k,NODUPS,I,1,4"}));
                  return 0;
              }).status,
              0);
    // Everybody is held at once, sooner or later seen by one who looks all the time.
    const Afloop vast = in_proces(
        [&] {
            const pid_t ouder = getpid(), kijker = fork();
            if (kijker == 0) {
                int fds[3], n = 0;
                for (const char* naam : {"/DTEEN.INX", "/DTTWEE.INX", "/DTSYS.TXT"})
                    fds[n++] = open((d + naam).c_str(), O_RDWR | O_CLOEXEC);
                while (getppid() == ouder)
                    if (IOLOCKPID(fds[0], 0, 512) && IOLOCKPID(fds[1], 0, 512) && IOLOCKPID(fds[2], 192, 64))
                        _exit(0);
                _exit(1);
            }
            int status = 9 << 8;
            for (int i = 0; i < 40 && waitpid(kijker, &status, WNOHANG) == 0; i++)
                sh("rm -rf vast; " + zgcopy("vast"));
            kill(kijker, SIGKILL);
            return WEXITSTATUS(status);
        },
        120'000);
    EXPECT_EQ(vast.status, 0);
    for (int keer = 0; keer < 6; keer++) {
        const Afloop a = in_proces(
            [&] {
                const pid_t schrijver = fork();
                if (schrijver == 0) {
                    tel(d);
                    _exit(1);
                }
                const std::string kopie = "kopie" + std::to_string(keer);
                const Uit u =
                    sh("while [ ! -s " + d + "/TELLER.TXT ]; do sleep 0.01; done; " + zgcopy(kopie));
                kill(schrijver, SIGKILL);
                fputs(u.tekst.c_str(), stderr);
                if (u.status != 0 || u.zegt("moved meanwhile"))
                    return 1;
                const std::string teller = lees_bestand(kopie + "/TELLER.TXT");
                uint32_t een = 0, twee = 0;
                if (chdir(kopie.c_str()) != 0)
                    return 2;
                for (auto [naam, n] : {std::pair{EEN, &een}, {TWEE, &twee}}) {
                    ICB* icb = IXOPEN(naam, 0);
                    uint8_t rec[IXRECMAX];
                    memset(rec, 0x7F, sizeof rec);
                    if (IXLAST(icb, rec) == 1)
                        memcpy(n, rec, sizeof *n);
                    IXCLOSE(icb);
                }
                const uint32_t midden = static_cast<uint32_t>(atoi(teller.c_str()));
                fprintf(stderr, "%u %u %u\n", een, midden, twee);
                const bool goed = een >= midden && midden >= twee && (een == midden || een == midden + 1) &&
                                  (midden == twee || midden == twee + 1);
                return goed ? 0 : 3;
            },
            60'000);
        EXPECT_EQ(a.status, 0) << a.uitvoer;
        if (testing::Test::HasFailure())
            return;
        sh("ixremake " + d + "/" + EEN + " " + d + "/" + TWEE); // the writer was killed
    }
}

// The moment is one without a critical step, if one comes; and a file that never rests is whole.
TEST_F(Kopie, WaitsForAQuietMoment) {
    const std::string d = demo.pad();
    constexpr int64_t SLOT = 2640 + 64, STAND = SLOT + 38;
    constexpr size_t RUST = 3'000'000;
    const auto kritiek = [&](int ms) { // of the second user, for so long
        const int fd = open((d + "/DTSYS.TXT").c_str(), O_RDWR | O_CLOEXEC);
        if (pwrite(fd, "\012", 1, STAND) != 1 || !IOLOCK('S', fd, SLOT, 64))
            return false;
        if (ms && fork() == 0) {
            usleep(static_cast<useconds_t>(ms) * 1000);
            _exit(pwrite(fd, "\001", 1, STAND) == 1 ? 0 : 1);
        }
        return true;
    };
    const auto rusteloos = [&] {
        const pid_t agent = getpid();
        if (fork() != 0)
            return true;
        std::string a(RUST, 'a');
        for (int n = 0; getppid() == agent; a.replace(0, 4, reinterpret_cast<const char*>(&++n), 4)) {
            schrijf_bestand(d + "/NIEUW", a);
            if (rename((d + "/NIEUW").c_str(), (d + "/RUST.LOG").c_str()) != 0)
                break;
        }
        _exit(0);
    };
    const struct {
        const char *wat, *wacht, *zegt, *niet;
        std::function<bool()> bezig;
    } GEVALLEN[] = {
        {"a step that ends", "60", " files", "critical", [&] { return kritiek(1000); }},
        {"one that doesn't", "1", "was in a critical step", "moved", [&] { return kritiek(0); }},
        {"a file that is replaced", "0", " files", "changes all", rusteloos},
    };
    for (const auto& g : GEVALLEN) {
        SCOPED_TRACE(g.wat);
        Agent agent(g.bezig);
        ASSERT_TRUE(agent.ok());
        const Uit u = sh(zgcopy() + " -w " + g.wacht);
        EXPECT_EQ(u.status, 0) << u.tekst;
        EXPECT_TRUE(u.zegt(g.zegt) && !u.zegt(g.niet)) << u.tekst;
        EXPECT_TRUE(!fs::exists("kopie/RUST.LOG") || fs::file_size("kopie/RUST.LOG") == RUST)
            << "half a file";
        EXPECT_EQ(sh("zgcopy --check kopie && rm -r kopie").status, 0);
    }
}
