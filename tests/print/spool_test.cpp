// The way out of a report: what arrives at a device, a directory, a queue and a file, and what is left, and told, when it
// doesn't.
#include "print/zenden.h"
#include "shared/files.h"
#include "shared/syscalls.h"
#include "shared/sysrec.h"
#include "support/proces.h"
#include "support/terminal.h"
#include <cerrno>
#include <csignal>
#include <ctime>
#include <functional>
#include <gtest/gtest.h>
#include <poll.h>
#include <pty.h>
#include <sys/inotify.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

namespace zg {
namespace {

const std::string INIT("\x1B@\0\n", 4), EXIT("\0\x1B"
                                             "E",
                                             3);
const char TITEL[] = "M\x9Bller & S\x9Bn"; // Møller & Søn

// A job that is open on a spool file here, as XPRT_OPEN leaves it.
void begin(Printweg weg, const std::string& apparaat, int kopieen = 1, const char* tekens = "cp850") {
    printjob job{};
    job.weg = weg;
    job.apparaat = apparaat;
    job.kopieen = kopieen;
    job.tekens = tekens;
    job.titel = TITEL;
    job.kolommen = 80;
    job.init = INIT;
    job.exit = EXIT;
    ASSERT_TRUE(prt_job_open(job, IOTMPNAM("", "PR")));
}
void regels(const std::string& woord, int n) {
    for (int i = 1; i <= n; i++)
        XPRT_PRINT("%s %d \x9B\n", woord.c_str(), i);
}
std::string verwacht(const std::string& woord, int n, const std::string& letter = "\x9B") {
    std::string uit = INIT;
    for (int i = 1; i <= n; i++)
        uit += woord + " " + std::to_string(i) + " " + letter + "\n";
    return uit + EXIT;
}

bool binnen(const std::function<bool()>& waar, int ms = 30000) {
    for (const time_t tot = time(nullptr) + ms / 1000; !waar(); usleep(5000))
        if (time(nullptr) > tot)
            return false;
    return true;
}
int over() { // what lies here of print jobs
    return FILES_PRESENT("PR*");
}
bool leeg() {
    return binnen([] { return over() == 0; });
}

// What comes out of a descriptor until `n` bytes are there, slowly where asked.
std::string ontvang(int fd, size_t n, int traag_us = 0) {
    std::string uit;
    char b[97];
    pollfd p{fd, POLLIN, 0};
    while (uit.size() < n && poll(&p, 1, 30000) > 0) {
        const ssize_t k = read(fd, b, sizeof b);
        if (k <= 0)
            break;
        uit.append(b, static_cast<size_t>(k));
        if (traag_us)
            usleep(static_cast<useconds_t>(traag_us));
    }
    return uit;
}

struct Spool : testing::Test {
    test::TijdelijkeMap map;
};

// A fifo and a terminal line as printers: three copies, byte for byte, NUL and line feeds among them.
TEST_F(Spool, Devices) {
    ASSERT_EQ(mkfifo("fifo", 0600), 0);
    int meester = -1, slaaf = -1;
    char lijn[64];
    ASSERT_EQ(openpty(&meester, &slaaf, lijn, nullptr, nullptr), 0);
    const std::string een = verwacht("regel", 40), utf = verwacht("regel", 40, "\xC3\xB8");
    for (const auto& [pad, tekens, stuk] :
         {std::tuple{map.pad() + "/fifo", "cp850", een}, std::tuple{map.pad() + "/fifo", "utf-8", utf},
          std::tuple{std::string(lijn), "cp850", een}}) {
        SCOPED_TRACE(pad + " " + tekens);
        begin(Printweg::apparaat, pad, 3, tekens);
        regels("regel", 40);
        EXPECT_EQ(XPRT_CLOSE(), 1); // nobody reads yet: the program isn't held up
        const int fd = pad == lijn ? meester : open(pad.c_str(), O_RDONLY);
        EXPECT_TRUE(ontvang(fd, 3 * stuk.size()) == stuk + stuk + stuk);
        EXPECT_TRUE(leeg());
        if (fd != meester)
            close(fd);
    }
    close(meester);
    close(slaaf);
}

// Two programs at one slow printer: the three copies of each behind one another, in either order.
TEST_F(Spool, TwoAtOnePrinter) {
    ASSERT_EQ(mkfifo("fifo", 0600), 0);
    for (const char* wie : {"een", "twee"}) {
        const auto [status, uitvoer] = test::in_proces([&] {
            begin(Printweg::apparaat, map.pad() + "/fifo", 3);
            regels(wie, 600);
            return XPRT_CLOSE() - 1;
        });
        EXPECT_EQ(status, 0) << uitvoer;
    }
    const std::string een = verwacht("een", 600), twee = verwacht("twee", 600);
    const int fd = open("fifo", O_RDONLY);
    const std::string uit = ontvang(fd, 3 * (een.size() + twee.size()), 100);
    EXPECT_TRUE(uit == een + een + een + twee + twee + twee || uit == twee + twee + twee + een + een + een);
    close(fd);
    EXPECT_TRUE(leeg());
}

// A directory: each report whole when its name appears, under a free name; copies are one file.
TEST_F(Spool, Directory) {
    SYS.mkdir("uit", 0777);
    const int kijk = inotify_init1(IN_NONBLOCK);
    ASSERT_GE(inotify_add_watch(kijk, "uit", IN_ALL_EVENTS), 0);
    // Every name but the last two letters of one number is taken, so that names are met that are.
    for (char a = 'A'; a <= 'Z'; a++)
        for (int nr = 0; nr < 100; nr++)
            for (char b = 'A'; b <= 'Z' && a < 'C'; b++) {
                char naam[20];
                snprintf(naam, sizeof naam, "uit/TR%c%c%02d", a, b, nr);
                test::schrijf_bestand(naam, "oud");
            }
    char weg[65536];
    while (read(kijk, weg, sizeof weg) > 0) {
    }
    begin(Printweg::map, "uit", 3);
    regels("regel", 4000);
    EXPECT_EQ(XPRT_CLOSE(), 1);
    EXPECT_TRUE(leeg());
    std::string nieuw;
    alignas(inotify_event) char b[65536];
    for (ssize_t n; (n = read(kijk, b, sizeof b)) > 0;)
        for (const char* p = b; p < b + n;) {
            const auto* e = reinterpret_cast<const inotify_event*>(p);
            if (e->len && e->name[0] == 'T') {
                if (e->mask & (IN_CREATE | IN_MOVED_TO))
                    nieuw += std::string(e->name) + " ";
                EXPECT_FALSE(e->mask & (IN_MODIFY | IN_CLOSE_WRITE | IN_DELETE)) << e->name;
            }
            p += sizeof(inotify_event) + e->len;
        }
    close(kijk);
    ASSERT_EQ(nieuw.size(), 7u) << nieuw;
    EXPECT_TRUE(test::lees_bestand("uit/" + nieuw.substr(0, 6)) == verwacht("regel", 4000));
    EXPECT_EQ(FILES_PRESENT("uit/PR*"), 0);
    EXPECT_EQ(FILES_PRESENT("uit/T*"), 2 * 26 * 100 + 1);
}

// A disk that is full at a call, or the last thing that the process does, counted over all calls that change a file.
SYSCALLS echt;
int nog;
bool doodgaan;
bool stoor() {
    if (nog-- != 0)
        return false;
    if (doodgaan)
        raise(SIGKILL);
    errno = ENOSPC;
    return true;
}
void stoor_bij(int n, bool dood) {
    echt = SYS, nog = n, doodgaan = dood;
    SYS.open = [](const char* p, int v, mode_t m) {
        return (v & O_CREAT) && stoor() ? -1 : echt.open(p, v, m);
    };
    SYS.write = [](int fd, const void* b, size_t k) { return stoor() ? ssize_t{-1} : echt.write(fd, b, k); };
    SYS.pwrite = [](int fd, const void* b, size_t k, off_t p) {
        return stoor() ? ssize_t{-1} : echt.pwrite(fd, b, k, p);
    };
    SYS.fsync = [](int fd) { return stoor() ? -1 : echt.fsync(fd); };
    SYS.link = [](const char* v, const char* n2) { return stoor() ? -1 : echt.link(v, n2); };
    SYS.rename = [](const char* v, const char* n2) { return stoor() ? -1 : echt.rename(v, n2); };
    SYS.unlink = [](const char* p) { return doodgaan && stoor() ? -1 : echt.unlink(p); };
}

std::vector<std::string> beschrijvingen() {
    std::vector<std::string> uit;
    char naam[DIRNAAM] = "PR*.JOB";
    if (DIRECTORY('O', naam, 0)) {
        while (DIRECTORY('N', naam, 0))
            uit.push_back(naam);
        DIRECTORY('C', naam, 0);
    }
    return uit;
}
// The next program of the user: what it tells.
std::string volgende() {
    return test::in_proces([] {
               sessie = 5;
               prt_meld_mislukt();
               return 0;
           })
        .uitvoer;
}
void ruim() {
    for (const char* m : {"PR*", "uit/*"}) {
        char naam[DIRNAAM];
        snprintf(naam, sizeof naam, "%s", m);
        if (!DIRECTORY('O', naam, 0))
            continue;
        while (DIRECTORY('N', naam, 0))
            IOUNLINK(naam);
        DIRECTORY('C', naam, 0);
    }
}
// Reports in the directory; each must be whole.
int aangekomen(const std::string& heel) {
    char naam[DIRNAAM] = "uit/T*";
    int n = 0;
    if (DIRECTORY('O', naam, 0)) {
        for (; DIRECTORY('N', naam, 0); n++)
            EXPECT_TRUE(test::lees_bestand(naam) == heel) << "half: " << naam;
        DIRECTORY('C', naam, 0);
    }
    return n;
}

// The program is killed, or refused, at each of its calls in turn, from the opening of a report to its end.
TEST_F(Spool, ProgramAtEachCall) {
    SYS.mkdir("uit", 0777);
    const std::string heel = verwacht("regel", 6000);
    int gestoord = 0;
    for (bool dood : {true, false})
        for (int n = 0, status = 0; status != 11; n++) {
            SCOPED_TRACE((dood ? "killed at " : "refused ") + std::to_string(n));
            ASSERT_LT(n, 40);
            const auto [s, uitvoer] = test::in_proces([&] {
                sessie = 5;
                stoor_bij(n, dood);
                printjob job{};
                job.weg = Printweg::map;
                job.apparaat = "uit";
                job.kopieen = 1;
                job.tekens = "cp850";
                job.init = INIT;
                job.exit = EXIT;
                job.kolommen = 80;
                const std::string pad = IOTMPNAM("", "PR");
                if (pad.empty() || !prt_job_open(job, pad))
                    return 9;
                regels("regel", 6000);
                const int gesloten = XPRT_CLOSE();
                return nog >= 0 ? 11 : 12 + gesloten;
            });
            status = s;
            bool achter = false;
            EXPECT_TRUE(binnen([&] {
                spooljob job;
                for (const std::string& b : beschrijvingen())
                    switch (spool_kijk(b, &job)) {
                    case Spoolpad::bezig:
                        return false;
                    case Spoolpad::blijft:
                        achter = true;
                        break;
                    case Spoolpad::weg:
                        break;
                    }
                return true;
            }));
            const int er = aangekomen(heel);
            const std::string gemeld = volgende();
            EXPECT_TRUE(status == 137 || status == 9 || status == 11 || status == 12 || status == 13)
                << status << uitvoer;
            EXPECT_LE(er, 1);
            EXPECT_TRUE(status != 11 || (er == 1 && over() == 0));
            EXPECT_TRUE(status != 12 || (er == 0 && uitvoer.find("niet geprint") != std::string::npos))
                << uitvoer;
            EXPECT_TRUE(status != 13 || er == 1) << "said to be printed";
            EXPECT_TRUE(er == 1 || !achter || status != 137 || gemeld.find("geprint") != std::string::npos)
                << gemeld;
            EXPECT_EQ(volgende(), "") << "told twice";
            gestoord += status != 11;
            ruim();
        }
    EXPECT_GE(gestoord, 10);
}

// So is the sender: what isn't out is there, with its reason, and arrives when it is sent again.
TEST_F(Spool, SenderAtEachCall) {
    SYS.mkdir("uit", 0777);
    const std::string heel = verwacht("regel", 3000);
    int gestoord = 0;
    for (bool dood : {true, false})
        for (int n = 0, status = 1; status != 0; n++) {
            SCOPED_TRACE((dood ? "killed at " : "refused ") + std::to_string(n));
            ASSERT_LT(n, 40);
            test::schrijf_bestand("PRAA00", heel);
            spooljob job{};
            job.spool = "PRAA00";
            job.weg = Printweg::map;
            job.apparaat = "uit";
            job.titel = TITEL;
            job.tekens = "cp850";
            job.kopieen = 1;
            job.begin = static_cast<int64_t>(INIT.size());
            job.eind = static_cast<int64_t>(heel.size() - EXIT.size());
            job.sessie = 5;
            const int fd = spool_maak(job);
            ASSERT_GE(fd, 0);
            status = test::in_proces([&] {
                         stoor_bij(n, dood);
                         return spool_verstuur(fd, &job) ? nog < 0 : 2;
                     }).status;
            close(fd);
            const int er = aangekomen(heel);
            EXPECT_LE(er, 1);
            gestoord += status != 0;
            spooljob na;
            const Spoolpad pad = spool_kijk("PRAA00.JOB", &na);
            if (pad != Spoolpad::blijft)
                EXPECT_EQ(er, 1);
            else {
                EXPECT_TRUE(er == 0 || na.stand == Spoolstand::bezig)
                    << "nobody would know that it may be out";
                EXPECT_TRUE(dood || na.reden == "schijf vol" || nog < 0) << na.reden;
                const std::string gemeld = volgende();
                EXPECT_NE(gemeld.find(TITEL), std::string::npos);
                EXPECT_EQ(volgende(), "") << "told twice";
                EXPECT_EQ(system("'" ZG_BINARY_DIR "/zgspoel' -w PRAA00.JOB"), 0);
                EXPECT_EQ(aangekomen(heel), er + 1);
            }
            EXPECT_EQ(over(), 0);
            EXPECT_TRUE(dood || FILES_PRESENT("uit/PR*") == 0);
            ruim();
        }
    EXPECT_GE(gestoord, 10);
}

// A name with an old description is no name for a new report: that would go where the old one should have gone.
TEST_F(Spool, OldDescription) {
    spooljob job{};
    job.spool = "PRAA00", job.weg = Printweg::map, job.kopieen = 1;
    const int fd = spool_maak(job);
    EXPECT_FALSE(test::in_proces([] { return spool_vrij("PRAA00"); }).status)
        << "its sender is about to remove it";
    close(fd);
    test::schrijf_bestand("PRAA00", "x");
    EXPECT_FALSE(spool_vrij("PRAA00"));
    IOUNLINK("PRAA00");
    EXPECT_TRUE(spool_vrij("PRAA00"));
    EXPECT_EQ(over(), 0);
}

// Its description damaged, or of another make: nothing happens to it, nothing is sent.
TEST_F(Spool, DamagedDescription) {
    spooljob job{};
    job.spool = "PRAA00";
    job.weg = Printweg::map;
    job.apparaat = "u\n\\1B'; touch pwn";
    job.titel = "regel\n\\zgspoel";
    job.tekens = "cp850";
    job.kopieen = 2;
    close(spool_maak(job));
    test::schrijf_bestand("PRAA00", "x");
    spooljob terug;
    ASSERT_EQ(spool_kijk("PRAA00.JOB", &terug), Spoolpad::blijft);
    EXPECT_EQ(terug.apparaat, job.apparaat);
    EXPECT_EQ(terug.titel, job.titel);
    const std::string heel = test::lees_bestand("PRAA00.JOB");
    for (size_t n = 0; n <= heel.size(); n++) { // cut, and each byte another
        test::schrijf_bestand("PRAA00.JOB", heel.substr(0, n));
        EXPECT_EQ(spool_kijk("PRAA00.JOB", &terug), n < heel.size() ? Spoolpad::weg : Spoolpad::blijft) << n;
        std::string anders = heel;
        anders[n % heel.size()] ^= 0x25;
        test::schrijf_bestand("PRAA00.JOB", anders);
        spool_kijk("PRAA00.JOB", &terug);
        EXPECT_TRUE(IOEXISTS("PRAA00")) << n;
    }
}

} // namespace
} // namespace zg
