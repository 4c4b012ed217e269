// Can a directory be shared? Two sides on one disk, which can; and a side whose system calls answer as a careless file
// system's do.
#include "support/proef.h"
#include "tools/deelgesprek.h"
#include "tools/deelproef.h"
#include "tools/shell.h"

namespace zg::test {
namespace {

// Both sides go through all of it, say the same, and leave nothing; what an earlier run left is no hindrance.
TEST(Deel, OneDiskCanBeShared) {
    TijdelijkeMap map;
    ASSERT_EQ(sh("mkdir .zgdeel && echo x >.zgdeel/antwoord && echo y >.zgdeel/one0").status, 0);
    const Uit u =
        sh("zgdeel --wait -t 30 . 2>&1 >ander & zgdeel -n 6 -t 30 .; a=$?; wait $!; echo $a $?; cat ander");
    EXPECT_TRUE(u.zegt("\n0 0\n.: can be shared\n")) << u.tekst;
    EXPECT_FALSE(u.zegt("wrong") || u.zegt("settings of the volume")) << u.tekst;
    for (const char* proef :
         {"clocks", "locks far out", "free behind", "counting by turns", "a name made once", "a file cut",
          "the name still my file", "the directory's list"})
        EXPECT_TRUE(u.zegt(std::string("good   ") +
                           (proef[0] == 'f' ? "the lock of a killed program, " : "") + proef))
            << proef << "\n"
            << u.tekst;
    EXPECT_FALSE(std::filesystem::exists(".zgdeel"));
}

// A lock that a third has: each side is refused what it should have had.
TEST(Deel, AWrongAnswerToALockIsTold) {
    TijdelijkeMap map;
    sh("zgdeel --wait -t 30 . >/dev/null 2>&1 &");
    Agent derde([] {
        while (IOSIZE(".zgdeel/antwoord") <= 0)
            usleep(10'000);
        return IOLOCK('E', SYSNIEUW(".zgdeel/lock-a", O_RDWR), 5001, 1) == 1;
    });
    ASSERT_TRUE(derde.ok());
    hoort("zgdeel -t 30 .", 1, "wrong  many locks at once: between two of them was refused on ",
          "the rest goes by turns that are locks: not looked at");
}

TEST(Deel, NobodyWaitsForEver) {
    TijdelijkeMap map;
    hoort("zgdeel -t 1 .", 3, "nobody waits there");
    hoort("zgdeel --wait -t 1 .", 3, "nobody came");
    EXPECT_FALSE(std::filesystem::exists(".zgdeel"));
    const Uit u =
        sh("zgdeel --wait -t 20 . & while [ ! -s .zgdeel/antwoord ]; do sleep 0.05; done; zgdeel --wait .; "
           "echo $?; kill $!");
    EXPECT_TRUE(u.zegt("another zgdeel waits here") && u.zegt("\n4\n")) << u.tekst;
    hoort("zgdeel nowhere", 3, "nowhere: ");
}

// What this side was told before, and is told again.
struct Oud {
    std::map<std::pair<size_t, int64_t>, std::string> stukken; // by length and place
    std::map<int, struct stat> standen;
    std::map<std::string, int> namen;
} oud;
SYSCALLS echt;

ssize_t oude_bytes(int fd, void* buf, size_t n, off_t plaats) {
    std::string& s = oud.stukken[{n, plaats}];
    if (s.empty()) {
        const ssize_t gelezen = echt.pread(fd, buf, n, plaats);
        s.assign(static_cast<const char*>(buf), gelezen > 0 ? static_cast<size_t>(gelezen) : 0);
    }
    memcpy(buf, s.data(), s.size());
    return static_cast<ssize_t>(s.size());
}

int oude_stand(int fd, struct stat* st) {
    if (!oud.standen.contains(fd))
        echt.fstat(fd, &oud.standen[fd]);
    *st = oud.standen[fd];
    return 0;
}

// A name leads where it once led.
int oude_naam(const char* pad, int vlaggen, mode_t mode) {
    if (strstr(pad, "/file") == nullptr)
        return echt.open(pad, vlaggen, mode);
    if (!oud.namen.contains(pad))
        oud.namen[pad] = echt.open(pad, vlaggen, mode);
    return fcntl(oud.namen[pad], F_DUPFD_CLOEXEC, 0);
}

// A file without a name is gone.
ssize_t naamloos_weg(int fd, void* buf, size_t n, off_t plaats) {
    struct stat st;
    if (echt.fstat(fd, &st) == 0 && st.st_nlink == 0)
        return errno = ESTALE, -1;
    return echt.pread(fd, buf, n, plaats);
}

int altijd_slot(int fd, int opdracht, struct flock* s) {
    struct stat st;
    return echt.fstat(fd, &st) == 0 && st.st_size == 600
               ? 0
               : echt.slot(fd, opdracht, s); // not those of the turns
}

TEST(Deel, EachKindOfOldDataIsFound) {
    const struct {
        int soort;
        size_t proef;
        const char* kwaal;
        void (*ziek)();
    } RIJEN[] = {
        {R_BLOK, 0, "old data", [] { SYS.pread = oude_bytes; }},
        {R_GROEI, 0, "old size", [] { SYS.fstat = oude_stand; }},
        {R_KORT, 0, "old size", [] { SYS.fstat = oude_stand; }},
        {R_VERVANG, 0, "old data", [] { SYS.open = oude_naam; }},
        {R_VERVANG, 2, "not seen", [] { SYS.slot = altijd_slot; }},
        {R_VERVANG, 3, "Stale file handle", [] { SYS.pread = naamloos_weg; }},
        {R_LOS, 1, "still opened", [] { SYS.open = oude_naam; }},
    };
    constexpr int RONDES = 40;
    echt = SYS;
    for (const auto& r : RIJEN)
        for (const bool ziek : {false, true}) {
            SCOPED_TRACE(std::string(RONDESOORT[r.soort].proeven[r.proef]) + (ziek ? ", sick" : ""));
            TijdelijkeMap map;
            std::filesystem::create_directory(DEELMAP);
            oud = {};
            std::unique_ptr<Ronde> daar;
            Agent ander([&](const std::string& opdracht) {
                if (opdracht == "begin")
                    return daar = std::make_unique<Ronde>(r.soort, 1, RONDES, true), std::string("ready");
                return daar->doe()[0].eerst + ".";
            });
            Ronde hier(r.soort, 1, RONDES, false);
            ASSERT_EQ(ander.vraag("begin", 5000), "ready");
            ander.vraag("go", 0);
            if (ziek)
                r.ziek();
            const std::vector<Telling> t = hier.doe();
            SYS = echt;
            EXPECT_EQ(ander.antwoord(), ".");
            for (size_t i = 0; i < PROEVEN; i++)
                if (!ziek)
                    EXPECT_EQ(t[i].fout, 0) << t[i].eerst;
            EXPECT_GE(t[r.proef].gedaan, RONDES / 2 - 1);
            EXPECT_GE(t[r.proef].fout, ziek ? RONDES / 4 : 0);
            EXPECT_EQ(t[r.proef].eerst, ziek ? r.kwaal : "");
            for (const auto& [naam, fd] : oud.namen)
                close(fd);
        }
}

// A mount that tells its settings, as a directory here: each wrong one is named as it is set, once.
TEST(Deel, SettingsThatAMountTells) {
    const struct {
        const char *is, *kwaal; // words of the shell
    } RIJEN[] = {
        {":", ""},
        {"echo OFF >c0/options/strict-locks; rm c1/options/strict-locks", "client.strict-locks is off"},
        {"echo enable >c0/options/strict-locks", ""},
        {"rm r/options/eager-lock", "cluster.eager-lock is on"},
        {"mkdir x; echo performance/readdir-ahead >x/type", "performance.readdir-ahead is on"},
        {"mkdir x; echo performance/md-cache >x/type; echo on >r/options/eager-lock",
         "cluster.eager-lock is on, performance.stat-prefetch is on"},
        {"mkdir -p r/subvolumes/0 r/subvolumes/1; printf 'up = 1\\nquorum-type = fixed\\n' >r/private",
         "cluster.quorum-type is fixed, replica 2 instead of 3"},
        {"mkdir -p r/subvolumes/0 r/subvolumes/1 r/subvolumes/2; echo 'quorum-type = auto' >r/private", ""},
        {"echo '0-c1: option strict-locks using set value Off' >>$log",
         "client.strict-locks is off"}, // set behind the mount
        {"echo '0-r: option eager-lock using set value on' >>$log; echo 'Final graph:' >>$log", ""},
        {"printf '0-c1: option %s using set value on\n' gids strict-locks gids >>$log",
         "client.strict-locks is off"}, // reset
        {"printf ': option\n x: option a using\n-: option strict-locks using set value off\n' >>$log", ""},
    };
    TijdelijkeMap map;
    std::string kwaal = "x";
    EXPECT_FALSE(deel_instellingen(".", &kwaal));
    for (const auto& r : RIJEN) {
        ASSERT_EQ(
            sh("rm -rf .meta; mkdir -p .meta/logging .meta/graphs/active; log=$PWD/.meta/logging/logfile; cd "
               ".meta/graphs/active; mkdir -p c0/options "
               "c1/options r/options; echo protocol/client | tee c0/type >c1/type; echo on | tee "
               "c0/options/strict-locks >c1/options/strict-locks; echo cluster/replicate >r/type; echo off "
               ">r/options/eager-lock; touch volfile; " +
               std::string(r.is))
                .status,
            0);
        EXPECT_TRUE(deel_instellingen(".", &kwaal)) << r.is;
        EXPECT_EQ(kwaal, r.kwaal) << r.is;
    }
}

} // namespace
} // namespace zg::test
