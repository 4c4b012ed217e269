// Shared file systems: which ones are, how long is waited on them, and the fixed tables when the connection is lost.
#include "shared/gedeeld.h"
#include "shared/houder.h"
#include "shared/mapbeurt.h"
#include "shared/volume.h"
#include "support/systeem.h"
#include <sys/prctl.h>

namespace zg::test {
namespace {

struct Gedeeld : Systeem {
    ~Gedeeld() override { unsetenv("ZGGEDEELD"); }
};

TEST_F(Gedeeld, KindsOfFileSystem) {
    const struct {
        const char *pad, *proef;
        bool gedeeld, kaart;
    } gevallen[] = {
        {"/dev/shm", "0", false, true}, {"/dev/shm", "1", true, false}, {"/proc", "0", true, false}};
    for (const auto& g : gevallen) {
        SCOPED_TRACE(std::string(g.pad) + g.proef);
        const int status = in_proces([&] {
                               setenv("ZGGEDEELD", g.proef, 1);
                               EXPECT_EQ(chdir(g.pad), 0);
                               const int fd = ::open(".", O_RDONLY | O_CLOEXEC);
                               const IOSOORT s = IOSOORTVAN(fd);
                               return (IOGEDEELD() == g.gedeeld) + (s.gedeeld == g.gedeeld) +
                                      (s.kaart == g.kaart) + (!s.zetten || s.kaart);
                           }).status;
        EXPECT_EQ(status, 4);
        // Before any file was met, in a process that never asked: the working directory's kind.
        GTEST_FLAG_SET(death_test_style, "threadsafe");
        EXPECT_EXIT(
            {
                setenv("ZGGEDEELD", g.proef, 1);
                _exit(chdir(g.pad) == 0 ? 1 + IOGEDEELD() : 9);
            },
            testing::ExitedWithCode(1 + g.gedeeld), "");
    }
}

// A mount is found by whole names, the innermost one, and one that isn't of FUSE is asked for nothing.
TEST_F(Gedeeld, Mounts) {
    const struct {
        const char *pad, *soort, *punt;
    } gevallen[] = {
        {"/proc", "proc", "/proc"}, {"/proc/self/fd", "proc", "/proc"}, {"/procent", nullptr, "/"}};
    for (const auto& g : gevallen) {
        const IOMOUNT m = IOMOUNTVAN(g.pad);
        EXPECT_EQ(m.punt, g.punt) << g.pad;
        EXPECT_EQ(m.soort, g.soort ? g.soort : m.soort) << g.pad;
    }
    EXPECT_FALSE(IOVOLUME("/proc", [](const std::string&, const std::string&) { ADD_FAILURE(); }));
}

// Nobody who is refused three times asks again at once; nobody waits long for what is held for a moment.
TEST_F(Gedeeld, Pauses) {
    int langst = 0, soorten = 0;
    for (int n = 0; n < 3; n++)
        EXPECT_EQ(IONETPAUZE(n), 0);
    for (int n = 3, vorige = 0; n < 400; n++) {
        const int us = IONETPAUZE(n);
        EXPECT_GE(us, 2000);
        EXPECT_LE(us, std::min(20'000, 3000 + (n - 3) * 1000)) << n;
        soorten += us != vorige;
        langst = std::max(langst, vorige = us);
    }
    EXPECT_GT(langst, 12'000);
    EXPECT_GT(soorten, 100);
}

int met_fout;
bool sloten_ook;

// A lock or a read that the connection refuses stops with file and reason; who only gives back goes on.
TEST_F(Gedeeld, LostConnection) {
    gebruiker_in(3, "Joke", "03");
    const std::string voor = lees_bestand("DTSYS.TXT");
    const auto weg = [] {
        SYS.slot = [](int fd, int o, struct flock* s) {
            return sloten_ook ? (errno = met_fout, -1) : fcntl(fd, o, s);
        };
        SYS.pread = [](int, void*, size_t, off_t) { return errno = met_fout, ssize_t{-1}; };
    };
    for (int fout : {ENOTCONN, EBADF, EBADFD, ESTALE, EIO, ENOLCK})
        for (bool sloten : {true, false})
            for (char letter : {'X', 'R', 'T', 'N'}) {
                if (sloten != (letter == 'X' || letter == 'T'))
                    continue;
                met_fout = fout, sloten_ook = sloten;
                const std::string wat = std::string("Bestand DTSYS.TXT kan niet ") +
                                        (sloten ? "vergrendeld" : "gelezen") +
                                        " worden (errno=" + std::to_string(fout);
                verwacht_stop(
                    [&] {
                        open();
                        weg();
                        gebruikerslot g;
                        int32_t nr = 3;
                        iotab(letter, &nr, &g, SYS_GEBRUIKER);
                    },
                    wat);
            }
    met_fout = ENOTCONN, sloten_ook = true;
    EXPECT_EQ(in_proces([&] {
                  open();
                  weg();
                  gebruikerslot g;
                  int32_t nr = 3;
                  iotab('U', &nr, &g, SYS_GEBRUIKER);
                  const int van = ::open("DTSYS.TXT", O_RDWR | O_CLOEXEC);
                  return IOCOPY("DTSYS.TXT", "KOPIE", -1) + IOFLOCK(van, 3, 10) + IOEXISTS("KOPIE");
              }).status,
              0);
    EXPECT_EQ(voor, lees_bestand("DTSYS.TXT"));
}

std::map<int64_t, int>
    antwoord; // by place in DTSYS.TXT, and -1 for the region: the number that a lock's holder has here
int dtsys;

// Joke works on this machine, Piet and Ans on others. A number says whose a lock is only when it can be nobody else's.
TEST_F(Gedeeld, HolderIsNamedOnlyWhenSure) {
    gebruiker_in(3, "Joke", "03");
    gebruiker_in(5, "Piet", "03");
    gebruiker_in(6, "Ans", "");
    ASSERT_EQ(mkfifo("pijp", 0600), 0);
    ASSERT_EQ(symlink("/bin/cat", "zgbestel"), 0);
    schrijf_bestand("order", "");
    const int fd = ::open("order", O_RDWR); // hers too
    const int dicht = ::open("DTSYS.TXT", O_RDWR | O_CLOEXEC);
    const pid_t joke = fork();
    if (joke == 0) { // any program that waits, with her arguments
        execl("zgbestel", "zgbestel", "pijp", "Joke", "3", "zgbsmenu", nullptr);
        _exit(1);
    }
    std::string woorden;
    for (int i = 0; i < 1000 && woorden.find("Joke") == std::string::npos; i++, usleep(1000))
        woorden = lees_bestand("/proc/" + std::to_string(joke) + "/cmdline");
    const int zomaar = getppid(); // has a number here, and nothing to do with the package
    const int ik = getpid();      // of the package, but an own lock is never in the way
    prctl(PR_SET_NAME, "zgbestel");
    const struct {
        int gebied;
        std::map<int, int> slots;
        const char* tekst;
        bool niet_open = false; // by Joke's program
    } gevallen[] = {
        {ik, {{5, ik}}, "Informatie in gebruik door Piet (tty03)"},
        {ik, {{5, ik}, {6, ik}}, "Informatie in gebruik op een andere computer"},
        {ik, {{5, 0}}, "Informatie in gebruik op een andere computer"},
        {joke, {{3, joke}, {5, joke}}, "Informatie in gebruik door Piet (tty03)", true},
        {joke, {{3, joke}}, "Informatie in gebruik op een andere computer", true},
        {joke, {{3, joke}}, "Informatie in gebruik door Joke (tty03)"},
        {joke, {{3, joke}, {5, 0}}, "Informatie in gebruik door Joke (tty03)"},
        {joke, {{3, joke}, {5, joke}}, "Informatie in gebruik op ander scherm"},
        {0, {{3, joke}, {5, 0}}, "Informatie in gebruik door Piet (tty03)"},
        {-1, {{3, joke}, {5, -1}}, "Informatie in gebruik door Piet (tty03)"},
        {0, {{5, 0}, {6, 0}}, "Informatie in gebruik op een andere computer"},
        {0, {{3, joke}}, "Informatie in gebruik op een andere computer"},
        {zomaar, {{5, zomaar}, {6, 0}}, "Informatie in gebruik door Piet (tty03)"},
        {zomaar, {{5, zomaar}, {6, zomaar}}, "Informatie in gebruik op een andere computer"},
        {zomaar, {{3, joke}, {5, 0}}, "Informatie in gebruik op een andere computer"},
    };
    setenv("ZGGEDEELD", "1", 1);
    dtsys = iotab_fd();
    const SYSCALLS echt = SYS;
    SYS.slot = [](int f, int, struct flock* s) {
        const auto a = antwoord.find(f == dtsys ? s->l_start : -1);
        s->l_type = a == antwoord.end() ? F_UNLCK : F_WRLCK;
        s->l_pid = a == antwoord.end() ? 0 : a->second;
        return 0;
    };
    for (const auto& g : gevallen) {
        antwoord = {{-1, g.gebied}};
        for (const auto& [nr, pid] : g.slots)
            antwoord[SYS_GEBRUIKER.start + (nr - 1) * SYS_GEBRUIKER.grootte] = pid;
        char tekst[81] = "";
        EXPECT_EQ(houder_tekst(tekst, sizeof tekst, g.niet_open ? dicht : fd, 10, 10),
                  std::string(g.tekst).find("scherm") == std::string::npos);
        EXPECT_STREQ(tekst, g.tekst) << g.gebied << " " << g.slots.size();
    }
    SYS = echt;
    close(fd);
    close(dicht);
    kill(joke, SIGKILL);
    waitpid(joke, nullptr, 0);
}

// The turn of a directory, and names that no two machines make.
TEST_F(Gedeeld, TurnsAndNames) {
    for (const char* gedeeld : {"0", "1"}) {
        SCOPED_TRACE(gedeeld);
        setenv("ZGGEDEELD", gedeeld, 1);
        Agent ander([](const std::string&) { return IOBEURT("TABEL"), std::string("had it"); });
        {
            const IOBEURT beurt("TABEL");
            EXPECT_EQ(ander.vraag("now"), Agent::geen_antwoord);
        }
        EXPECT_EQ(ander.antwoord(), "had it");
        EXPECT_EQ(IOEXISTS(BEURTBESTAND), gedeeld[0] - '0');
        IOTMPSLOT = 7;
        for (int i = 0; i < 30; i++) {
            const std::string naam = IOTMPNAM("", "PR");
            EXPECT_EQ(naam.size(), 6U);
            EXPECT_TRUE(gedeeld[0] == '0' || naam.substr(4) == "07") << naam;
            schrijf_bestand(naam, "");
        }
        IOTMPSLOT = 0;
    }
}

} // namespace
} // namespace zg::test
