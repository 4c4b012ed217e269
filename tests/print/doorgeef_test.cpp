// A report through the user's own terminal, its printer port and its screen; and one that the user breaks off.
#include "print/afdruk.h"
#include "term/poort.h"
#include "term/prompt.h"
#include "term/toets.h"
#include <termios.h>

namespace zg::test {
namespace {

const std::string AAN = "\x1B[5i", UIT = "\x1B[4i";
constexpr int REGELS = 900; // three blocks and a bit

// What the printer of the terminal got, and what its screen got.
std::pair<std::string, std::string> splits(const std::string& alles) {
    std::string geprint, scherm;
    for (size_t p = 0; p < alles.size();) {
        const size_t a = std::min(alles.find(AAN, p), alles.size()),
                     u = std::min(alles.find(UIT, a), alles.size());
        scherm += alles.substr(p, a - p);
        if (a < alles.size())
            geprint += alles.substr(a + AAN.size(), u - a - AAN.size());
        p = a < alles.size() ? u + UIT.size() : a;
    }
    return {geprint, scherm};
}

void scherm() {
    SCRINIT();
    SCRPUT(A_LABEL, 5, 10, "het scherm");
    SCRFLUSH(0);
}
// The report out of a program with this screen: 3 when it is out and nothing is left.
int druk(Printweg weg, int kopieen, int n, int geleden = 0) {
    if (!prt_bestaat(weg, "") || !begin(weg, "", kopieen))
        return 5;
    regels("regel", n);
    printopdracht.geopend -= std::chrono::seconds(geleden);
    const int antwoord = XPRT_CLOSE();
    error("gedaan");
    TOETS();
    SCREXIT();
    return antwoord == 1 && FILES_PRESENT("PR*") == 0 ? 3 : 4;
}

using Doorgeef = InMap;

// Every byte between on and off, and of the screen only the status line; with a question in between when ESC is typed.
TEST_F(Doorgeef, PrinterPort) {
    for (bool afgebroken : {false, true}) {
        Terminal t([&] {
            scherm();
            TOETS();
            if (afgebroken)
                SYS.pread = [](int fd, void* b, size_t n,
                               off_t p) { // typed in the first block, a second later
                    SYS.pread = ::pread;
                    for (const time_t nu = time(nullptr); time(nullptr) == nu;)
                        usleep(5000);
                    TOETSTERUG(K_ESC);
                    return ::pread(fd, b, n, p);
                };
            return druk(Printweg::aux, 2, REGELS, 5);
        });
        t.wacht_op(5, 10, "het scherm");
        t.kalm();
        const size_t vanaf = t.uitvoer().size();
        t.toetsen("x");
        if (afgebroken) {
            t.wacht("Akkoord");
            t.toetsen("j<Enter>");
        }
        t.wacht("gedaan");
        const auto [geprint, rest] = splits(t.uitvoer().substr(vanaf));
        const std::string een = verwacht("regel", REGELS);
        if (afgebroken)
            EXPECT_TRUE(geprint.size() < een.size() && een.compare(0, geprint.size(), geprint) == 0);
        else
            EXPECT_TRUE(geprint == een + een && rest.size() < 100);
        EXPECT_FALSE(bevat(rest, "regel"));
        t.toetsen("x");
        EXPECT_EQ(t.einde(), 3);
    }
}

// Killed half-way: the next program takes the terminal out of printing before anything else, its line as it was.
TEST_F(Doorgeef, KilledHalfway) {
    Terminal t([] {
        termios was{}, na{};
        tcgetattr(1, &was);
        const pid_t pid = fork();
        if (pid == 0) {
            scherm();
            static decltype(SYS.pread) echt;
            echt = SYS.pread;
            SYS.pread = [](int fd, void* b, size_t n, off_t p) {
                if (p > 5000) {
                    SYS.pread = echt;
                    XLPR(true);
                    raise(SIGKILL);
                }
                return echt(fd, b, n, p);
            };
            _exit(druk(Printweg::aux, 1, REGELS));
        }
        waitpid(pid, nullptr, 0);
        const bool dood = write(1, "<dood>", 6) == 6;
        scherm();
        TOETS();
        SCREXIT();
        tcgetattr(1, &na);
        return dood && na.c_oflag == was.c_oflag ? 3 : 4;
    });
    std::string uit;
    EXPECT_TRUE(binnen([&] {
        uit = t.uitvoer();
        return uit.find("het scherm", std::min(uit.find("<dood>"), uit.size())) != std::string::npos;
    }));
    EXPECT_EQ(uit.compare(uit.find("<dood>") + 6, UIT.size(), UIT), 0) << "before the screen is switched";
    t.kalm();
    t.toetsen("x");
    EXPECT_EQ(t.einde(), 3);
    EXPECT_EQ(FILES_PRESENT("PR*.JOB"), 1); // to be told
}

// On the screen itself: lines without control bytes, in the terminal's characters; ENTER brings the screen back.
TEST_F(Doorgeef, Screen) {
    Terminal t([] {
        scherm();
        return druk(Printweg::terminal, 1, 3);
    });
    t.wacht("<ENTER> voor vervolg");
    EXPECT_NE(t.scherm().find("regel 1 ø.\nregel 2 ø\nregel 3 ø."), std::string::npos) << t.scherm();
    EXPECT_FALSE(bevat(t.scherm(), "het scherm"));
    t.toetsen("<Enter>", 5, 10, "het scherm");
    EXPECT_FALSE(bevat(t.scherm(), "regel"));
    t.toetsen("x");
    EXPECT_EQ(t.einde(), 3);
}

} // namespace
} // namespace zg::test
