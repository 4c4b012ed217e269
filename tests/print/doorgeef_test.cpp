// A report through the user's own terminal: its printer port and its screen.
#include "print/printjob.h"
#include "shared/files.h"
#include "shared/syscalls.h"
#include "support/terminal.h"
#include "term/prompt.h"
#include "term/scherm.h"
#include "term/toets.h"
#include <csignal>
#include <ctime>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

namespace zg {
namespace {

const std::string AAN = "\x1B[5i", UIT = "\x1B[4i", INIT("\x1B@\0\n", 4), EXIT("\0", 1);
constexpr int REGELS = 900; // three blocks and a bit

int druk(Printweg weg, int kopieen, int regels = REGELS) {
    printjob job{};
    job.weg = weg;
    job.tekens = "cp850";
    job.kopieen = kopieen;
    job.kolommen = 80;
    job.init = INIT, job.exit = EXIT;
    if (!prt_job_open(job, IOTMPNAM("", "PR")))
        return -1;
    for (int i = 1; i <= regels; i++)
        XPRT_PRINT("regel %d \x9B%c\n", i, i == 2 ? 0x1B : '.');
    XPRT_RAW("\x07");
    return XPRT_CLOSE();
}
std::string een() {
    std::string uit = INIT;
    for (int i = 1; i <= REGELS; i++)
        uit += "regel " + std::to_string(i) + " \x9B" + (i == 2 ? ' ' : '.') + "\n";
    return uit + "\x07" + EXIT;
}
// What the printer of the terminal got, and what its screen got.
std::pair<std::string, std::string> splits(const std::string& alles) {
    std::string geprint, scherm;
    for (size_t p = 0; p < alles.size();) {
        const size_t a = std::min(alles.find(AAN, p), alles.size()),
                     u = std::min(alles.find(UIT, a), alles.size());
        scherm += alles.substr(p, a - p);
        if (a < alles.size())
            geprint += alles.substr(a + AAN.size(), u - a - AAN.size());
        p = a < alles.size() ? u + UIT.size() : alles.size();
    }
    return {geprint, scherm};
}

struct Doorgeef : testing::Test {
    test::TijdelijkeMap map;
};

// Every byte between on and off, nothing of the screen; the screen as before; with a question in between when ESC is typed.
TEST_F(Doorgeef, PrinterPort) {
    for (bool afgebroken : {false, true}) {
        test::Terminal t([&] {
            SCRINIT();
            SCRPUT(A_LABEL, 5, 10, "het scherm");
            SCRFLUSH(0);
            TOETS();
            if (afgebroken)
                TOETSTERUG(K_ESC);
            const int antwoord = druk(Printweg::aux, 2);
            error("gedaan");
            TOETS();
            SCREXIT();
            return antwoord == 1 && FILES_PRESENT("PR*") == 0 ? 3 : 4;
        });
        EXPECT_TRUE(t.wacht_op(5, 10, "het scherm"));
        t.kalm();
        const size_t begin = t.uitvoer().size();
        t.toetsen("x");
        if (afgebroken) {
            EXPECT_TRUE(t.wacht("Akkoord")) << t.scherm();
            t.toetsen("j<Enter>");
        }
        EXPECT_TRUE(t.wacht("gedaan"));
        const auto [geprint, scherm] = splits(t.uitvoer().substr(begin));
        if (afgebroken) {
            EXPECT_LT(geprint.size(), een().size());
            EXPECT_TRUE(een().compare(0, geprint.size(), geprint) == 0);
        } else
            EXPECT_TRUE(geprint == een() + een());
        EXPECT_EQ(scherm.find("regel"), std::string::npos);
        EXPECT_TRUE(afgebroken || scherm.size() < 100) << "the screen is as it was, but for the status line";
        t.toetsen("x");
        EXPECT_EQ(t.einde(), 3);
    }
}

// Killed half-way: the next program takes the terminal out of printing before anything else, with the line as it was.
TEST_F(Doorgeef, KilledHalfway) {
    test::Terminal t([] {
        termios was{}, na{};
        tcgetattr(1, &was);
        const pid_t pid = fork();
        if (pid == 0) {
            SCRINIT();
            static decltype(SYS.pread) echt;
            echt = SYS.pread;
            SYS.pread = [](int fd, void* b, size_t n, off_t p) {
                if (p > 5000)
                    raise(SIGKILL);
                return echt(fd, b, n, p);
            };
            _exit(druk(Printweg::aux, 1));
        }
        waitpid(pid, nullptr, 0);
        printf("<dood>");
        fflush(stdout);
        SCRINIT();
        SCRPUT(A_LABEL, 5, 10, "het scherm");
        SCRFLUSH(0);
        TOETS();
        SCREXIT();
        tcgetattr(1, &na);
        return na.c_oflag == was.c_oflag ? 3 : 4;
    });
    EXPECT_TRUE(t.wacht("het scherm"));
    const std::string uit = t.uitvoer();
    const size_t dood = uit.find("<dood>");
    EXPECT_EQ(uit.compare(dood + 6, UIT.size(), UIT), 0) << "before the screen is switched";
    t.toetsen("x");
    EXPECT_EQ(t.einde(), 3);
    EXPECT_EQ(FILES_PRESENT("PR*.JOB"), 1); // to be told
}

// On the screen itself: lines without control bytes, in the terminal's characters; ENTER brings the screen back.
TEST_F(Doorgeef, Screen) {
    test::Terminal t([] {
        SCRINIT();
        SCRPUT(A_LABEL, 5, 10, "het scherm");
        SCRFLUSH(0);
        if (prt_bestaat(Printweg::aux, "") != true || !prt_bestaat(Printweg::terminal, ""))
            return 5;
        const int antwoord = druk(Printweg::terminal, 1, 3);
        TOETS();
        SCREXIT();
        return antwoord == 1 && FILES_PRESENT("PR*") == 0 ? 3 : 4;
    });
    EXPECT_TRUE(t.wacht("<ENTER> voor vervolg")) << t.scherm();
    EXPECT_NE(t.scherm().find("regel 1 ø.\nregel 2 ø\nregel 3"), std::string::npos) << t.scherm();
    EXPECT_EQ(t.scherm().find("het scherm"), std::string::npos);
    t.toetsen("<Enter>");
    EXPECT_TRUE(t.wacht_op(5, 10, "het scherm"));
    EXPECT_EQ(t.scherm().find("regel"), std::string::npos);
    t.toetsen("x");
    EXPECT_EQ(t.einde(), 3);
}

// ESC in a long report: what there was of it, and a row that says so. An empty one leaves nothing, init text or not.
TEST_F(Doorgeef, BrokenOffOrEmpty) {
    test::Terminal t([] {
        SCRINIT();
        SYS.mkdir("uit", 0777);
        printjob job{};
        job.weg = Printweg::map, job.apparaat = "uit", job.tekens = "cp850";
        job.kopieen = 1, job.kolommen = 80, job.rijen = 60;
        job.init = INIT, job.exit = EXIT;
        if (!prt_job_open(job, IOTMPNAM("", "PR")) || XPRT_CLOSE() != 1 || FILES_PRESENT("PR*") ||
            FILES_PRESENT("uit/*") || !prt_job_open(job, IOTMPNAM("", "PR")))
            return 5;
        XPRT_BLAD();
        for (const time_t tot = time(nullptr) + 60; !XPRT_STOP() && time(nullptr) < tot; usleep(1000))
            XPRT_PRINT("regel\n");
        const int antwoord = XPRT_CLOSE();
        SCREXIT();
        return antwoord == 1 ? 3 : 4;
    });
    t.stuur("\033");
    EXPECT_TRUE(t.wacht(" Onderbreken ")) << t.scherm();
    t.kalm();
    t.stuur("j\r");
    EXPECT_EQ(t.einde(), 3);
    for (const time_t tot = time(nullptr) + 30; FILES_PRESENT("PR*") && time(nullptr) < tot;)
        usleep(5000);
    char naam[DIRNAAM] = "uit/T*";
    ASSERT_EQ(DIRECTORY('O', naam, 0), 1);
    DIRECTORY('N', naam, 0);
    DIRECTORY('C', naam, 0);
    const std::string uit = test::lees_bestand(naam), sterren(25, '*');
    EXPECT_EQ(uit.compare(0, INIT.size() + 6, INIT + "regel\n"), 0);
    EXPECT_NE(uit.find("\n\n\n" + sterren + "\n** Printen onderbroken **\n" + sterren + "\n\f" + EXIT),
              std::string::npos);
}

} // namespace
} // namespace zg
