// A directory in several hands: rights of new files and of those that take another's place, writes that are refused,
// what is said when somebody else is in the way.
#include "shared/houder.h"
#include "shared/report.h"
#include "support/rechten.h"
#include "support/systeem.h"
#include "term/scherm.h"

namespace zg::test {
namespace {

const gid_t ANDERE = geteuid() == 0 ? 4712 : getegid();

struct Masker {
    mode_t oud;
    explicit Masker(mode_t m) : oud(umask(m)) {}
    ~Masker() { umask(oud); }
};

TEST(Rechten, AreThoseOfTheDirectoryWhateverTheUmask) {
    const std::string g = " " + std::to_string(GROEP);
    for (mode_t masker : {0, 022, 077})
        for (mode_t map : {0770, 02775, 0700, 01777}) {
            SCOPED_TRACE(std::to_string(masker) + " in " + std::to_string(map));
            TijdelijkeMap hier;
            Masker m(masker);
            ASSERT_TRUE(mkdir("d", 0700) == 0 && chown("d", static_cast<uid_t>(-1), GROEP) == 0);
            ASSERT_EQ(chmod("d", map), 0);
            close(SYSNIEUW("d/nieuw", O_RDWR));
            EXPECT_EQ(rechten("d/nieuw"), "0660" + g);
            ASSERT_EQ(chmod("d/nieuw", 0640), 0);
            close(SYSNIEUW("d/nieuw", O_RDWR | O_TRUNC));
            EXPECT_EQ(rechten("d/nieuw"), "0640" + g) << "a file that is there keeps what it has";
            char verwacht[40];
            snprintf(verwacht, sizeof verwacht, "%04o %u", (map & 02775) | 0700, GROEP);
            EXPECT_TRUE(SYSNIEUWEMAP("d/2017Z"));
            EXPECT_EQ(rechten("d/2017Z"), verwacht);
            // Taking another's place: mode, group and owner of that file.
            ASSERT_TRUE(chown("d/nieuw", geteuid() == 0 ? 4713 : geteuid(), ANDERE) == 0 &&
                        chmod("d/nieuw", 0664) == 0);
            int fd = open("d/ander", O_RDWR | O_CREAT | O_CLOEXEC, 0600);
            EXPECT_TRUE(SYSEVENALS(fd, "d/nieuw"));
            EXPECT_EQ(rechten("d/ander"), "0664 " + std::to_string(ANDERE));
            struct stat st {};
            EXPECT_TRUE(fstat(fd, &st) == 0 && st.st_uid == (geteuid() == 0 ? 4713 : geteuid()));
            EXPECT_TRUE(SYSEVENALS(fd, "d/nog-geen"));
            EXPECT_EQ(rechten("d/ander"), "0660" + g) << "as a new one";
            close(fd);
        }
}

// What the user may not do is no reason to refuse his work; a failing disk is.
TEST(Rechten, AsFarAsTheUserMay) {
    TijdelijkeMap map;
    schrijf_bestand("oud", "");
    ASSERT_EQ(chmod("oud", 0604), 0);
    const auto echt = SYS;
    for (auto [fout, goed] : {std::pair{EPERM, true}, {ENOSYS, true}, {EIO, false}}) {
        static int antwoord;
        antwoord = fout;
        SYS.fchmod = [](int, mode_t) { return errno = antwoord, -1; };
        int fd = SYSNIEUW("nieuw", O_RDWR);
        EXPECT_EQ(SYSEVENALS(fd, "oud"), goed) << fout;
        close(fd);
        SYS = echt;
    }
}

struct Handen : Systeem {
    // The next pwrite writes half and then the disk is full, for this and all that extend; what stood can be put back.
    static void schijf_vol() {
        static int keer;
        keer = 0;
        SYS.pwrite = [](int fd, const void* p, size_t n, off_t plaats) -> ssize_t {
            if (keer++ == 0)
                return pwrite(fd, p, n / 2, plaats);
            if (keer == 2)
                return errno = ENOSPC, -1;
            return pwrite(fd, p, n, plaats);
        };
    }
};

TEST_F(Handen, RefusedWritesAreToldAndChangeNothing) {
    schrijf_bestand("DTFILGEG.TXT", std::string(6 * 612, 'f'));
    gebruiker_in(3, "Joke", "");
    auto met = [](char letter, int32_t slot, const Systabel& tabel) {
        return [=] {
            int32_t nr = slot;
            gebruikerslot rec{};
            memset(static_cast<void*>(&rec), 'v', sizeof rec);
            return iotab(letter, &nr, &rec, tabel);
        };
    };
    struct {
        const char *wat, *bestand;
        std::function<int()> doe;
    } const gevallen[] = {
        {"W", "DTSYS.TXT", met('W', 4, SYS_KLEUR)},
        {"w", "DTSYS.TXT", met('w', 4, SYS_KLEUR)},
        {"D", "DTSYS.TXT", met('D', 3, SYS_GEBRUIKER)},
        {"counter", "DTSYS.TXT", [] { return iotab_teller(5, 9999999); }},
        {"branch", "DTFILGEG.TXT",
         [] {
             firma.filialen = 5;
             filiaalrec rec{};
             iofil('O', 0, nullptr);
             memset(static_cast<void*>(&rec), 'x', sizeof rec);
             return iofil('W', 1, &rec);
         }},
    };
    for (const auto& g : gevallen) {
        SCOPED_TRACE(g.wat);
        const std::string voor = lees_bestand(g.bestand);
        auto afloop = in_proces([&] {
            open();
            schijf_vol();
            return g.doe() == 0 ? 0 : 1;
        });
        EXPECT_EQ(afloop.status, 0) << "a refused write was answered with yes";
        EXPECT_EQ(afloop.uitvoer, std::string(g.bestand) + " kan niet worden geschreven: schijf vol\n");
        EXPECT_TRUE(lees_bestand(g.bestand) == voor) << "half of it stands";
    }
}

// One draws while the other stands between reading the counter and writing it.
TEST_F(Handen, ACounterGivesNoNumberTwice) {
    static int klaar[2], verder[2];
    ASSERT_TRUE(pipe(klaar) == 0 && pipe(verder) == 0);
    auto kind = [](bool stil, const char* pad) {
        pid_t pid = fork();
        if (pid == 0) {
            open();
            if (stil)
                SYS.pwrite = [](int fd, const void* p, size_t n, off_t plaats) -> ssize_t {
                    char c = 0;
                    if (write(klaar[1], &c, 1) != 1 || read(verder[0], &c, 1) != 1)
                        _exit(1);
                    return pwrite(fd, p, n, plaats);
                };
            schrijf_bestand(pad, std::to_string(iotab_teller(5, 9999999)));
            _exit(0);
        }
        return pid;
    };
    char c = 0;
    pid_t een = kind(true, "een");
    ASSERT_EQ(read(klaar[0], &c, 1), 1);
    pid_t twee = kind(false, "twee");
    // It must be seen waiting: it is done only when the first one has written.
    EXPECT_FALSE(Agent([] {
                     for (int i = 0; i < 30 && !IOEXISTS("twee"); i++)
                         usleep(20'000);
                     return IOEXISTS("twee") != 0;
                 }).ok())
        << "drawn from under the other's hand";
    ASSERT_EQ(write(verder[1], &c, 1), 1);
    waitpid(een, nullptr, 0);
    waitpid(twee, nullptr, 0);
    EXPECT_EQ(lees_bestand("een") + " " + lees_bestand("twee"), "1000 1001");
}

TEST_F(Handen, ASlotIsTriedWithoutWaiting) {
    gebruiker_in(3, "Joke", "");
    auto houder = std::make_unique<Agent>([] {
        open();
        int32_t nr = 3;
        gebruikerslot g;
        return iotab('X', &nr, &g, SYS_GEBRUIKER) == 1;
    });
    int32_t nr = 3;
    gebruikerslot g{};
    EXPECT_EQ(iotab_probeer(&nr, &g, SYS_GEBRUIKER), 0);
    EXPECT_EQ(iotab('T', &nr, &g, SYS_GEBRUIKER), 0);
    EXPECT_EQ(iotab('R', &nr, &g, SYS_GEBRUIKER), 1) << "looking needs no lock";
    houder.reset();
    EXPECT_EQ(iotab_probeer(&nr, &g, SYS_GEBRUIKER), 1);
    EXPECT_STREQ(gebruiker_naam(g), "Joke");
    nr = 5;
    EXPECT_EQ(iotab_probeer(&nr, &g, SYS_GEBRUIKER), 0) << "nobody's";
    EXPECT_FALSE(Agent([] {
                     open();
                     int32_t slot = 3;
                     return iotab('T', &slot, nullptr, SYS_GEBRUIKER) == 1;
                 }).ok());
    EXPECT_TRUE(Agent([] {
                    open();
                    int32_t slot = 5;
                    return iotab('T', &slot, nullptr, SYS_GEBRUIKER) == 1;
                }).ok())
        << "an empty slot isn't held";
}

// A file out of reach: the report says why in words, on a line of its own.
TEST_F(Handen, ReportsSayWhyAFileCantBeHad) {
    static int reden;
    const auto doe = [](void (*open_het)()) {
        return [open_het] {
            SYS.open = [](const char*, int, mode_t) { return errno = reden, -1; };
            open_het();
        };
    };
    schrijf_bestand("DTX.TXT", "");
    for (auto [fout, woorden] : {std::pair{EACCES, "\n(geen rechten)"},
                                 {EROFS, "\n(alleen te lezen)"},
                                 {EMFILE, "\n(te veel bestanden open)"},
                                 {EXDEV, "\n(fout 18)"}}) {
        reden = fout;
        verwacht_stop(doe([] { OPENFAIL("proef", "X"); }), "Open niet gelukt");
        verwacht_stop(doe([] { IXOPEN("DTX", 2); }), woorden);
        verwacht_stop(doe([] { sluit(), open(); }), woorden);
        verwacht_stop(doe([] { iofil('O', 0, nullptr); }), woorden);
    }
}

} // namespace
} // namespace zg::test
