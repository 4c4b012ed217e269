// The modem driver against a stand-in that speaks on the other side of a pseudo-terminal. Each case is a process of its
// own, and all of a table run at once: most of their time is pauses.
#include "edi/modem.h"
#include "shared/report.h"
#include "support/proef.h"
#include "term/scherm.h"
#include "term/toets.h"
#include "tools/shell.h"
#include <atomic>
#include <sys/ioctl.h>
#include <termios.h>
#include <thread>

namespace zg {
namespace {

// What it hears, and says to it; "hang up" closes the line; "..." in front says it for ever, "~" after two seconds.
struct Regel {
    const char *op, *antwoord;
};
using Gesprek = std::vector<Regel>;

// A port with a modem behind it for as long as this lives.
class Poort {
public:
    explicit Poort(const Gesprek& gesprek) {
        const int meester = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
        if (meester < 0 || grantpt(meester) < 0 || unlockpt(meester) < 0)
            abort();
        naam = ptsname(meester);
        // As ports are found: cooked, at another speed, by whoever had it last. Kept open, so that its modes stay.
        slaaf = open(naam.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
        gevonden = nu();
        pid_ = fork();
        if (pid_ == 0) {
            close(slaaf);
            spreek(meester, gesprek);
            pause();
            _exit(0);
        }
        close(meester);
    }
    ~Poort() {
        kill(pid_, SIGKILL);
        waitpid(pid_, nullptr, 0);
        close(slaaf);
    }
    Poort(const Poort&) = delete;
    Poort& operator=(const Poort&) = delete;

    bool zoals_gevonden() const {
        const struct termio t = nu();
        return memcmp(&t, &gevonden, sizeof t) == 0;
    }
    struct termio nu() const {
        struct termio t {};
        ioctl(slaaf, TCGETA, &t);
        return t;
    }
    // Was the line dropped (speed 0) at some moment while `doe` ran?
    bool zakt(const std::function<void()>& doe) const {
        std::atomic<bool> nul = false, klaar = false;
        std::thread kijk([&] {
            for (; !klaar; usleep(1000))
                nul = nul || (nu().c_cflag & CBAUD) == B0;
        });
        doe();
        klaar = true;
        kijk.join();
        return nul;
    }
    std::string naam;
    int slaaf;

private:
    // Line by line; the second word of a conversation counts from where the first was heard.
    static void spreek(int fd, const Gesprek& gesprek) {
        std::string gehoord;
        for (const Regel& r : gesprek) {
            while (gehoord.find(r.op) == std::string::npos) {
                char b[256];
                const ssize_t n = read(fd, b, sizeof b);
                if (n <= 0)
                    usleep(1000);
                else
                    gehoord.append(b, static_cast<size_t>(n));
            }
            gehoord.erase(0, gehoord.find(r.op) + strlen(r.op));
            std::string tekst = r.antwoord;
            if (tekst == "hang up")
                _exit(0);
            const bool steeds = tekst.starts_with("...");
            if (tekst.starts_with("~"))
                sleep(2);
            tekst.erase(0, steeds ? 3 : tekst.starts_with("~"));
            do {
                if (write(fd, tekst.data(), tekst.size()) < 0)
                    usleep(1000);
            } while (steeds);
        }
    }
    struct termio gevonden;
    pid_t pid_;
};

modemlijn lijn(const std::string& apparaat, int tijd = 2) {
    return {apparaat, 9600, 'N', 8, 1, false, "AT&F", 'T', "0201234567", tijd, "ATZ", 1};
}

TEST(Modem, Ports) {
    test::TijdelijkeMap map;
    test::schrijf_bestand("plat", "no port");
    for (auto [naam, fout] : {std::pair{"", "Poort niet te openen"},
                              {"/dev/er-niet", "Controleer file-attributes: /dev/er-niet"},
                              {"plat", "Controleer file-attributes: plat"}}) {
        EXPECT_EQ(mdopen(lijn(naam)), 0) << naam;
        EXPECT_EQ(mderror(), fout);
        EXPECT_FALSE(mdinit() || mddial() || mdhangup() || mdsend("x"));
        EXPECT_EQ(mderror(), "Modem niet actief");
        mdclose();
    }
    EXPECT_EQ(test::lees_bestand("plat"), "no port");
    Poort p(Gesprek{{"ATZ\r", "ATZ\r\r\nOK\r\n"}}); // an echoing modem
    modemlijn l = lijn(p.naam);
    l.pariteit = 'O', l.stopbits = 2, l.snelheid = 1200;
    ASSERT_EQ(mdopen(l), 1);
    const struct termio t = p.nu();
    EXPECT_EQ(t.c_cflag & (PARODD | CSTOPB | CBAUD | CREAD | HUPCL | CLOCAL),
              PARODD | CSTOPB | B1200 | CREAD | HUPCL | CLOCAL);
    EXPECT_EQ(t.c_lflag, 0);
    EXPECT_EQ(t.c_iflag & (ICRNL | IXON | IXOFF | IGNBRK), IXOFF | IGNBRK);
    EXPECT_EQ(t.c_oflag & OPOST, 0);
    EXPECT_TRUE(t.c_cc[VMIN] == 0 && t.c_cc[VTIME] == 1);
    ASSERT_EQ(mdsend("ATZ\r"), 1);
    for (int code : {MD_ANDERS, MD_ANDERS, MD_OK})
        EXPECT_EQ(mdanswer(500), code);
    EXPECT_EQ(mdanswer(1), MD_TIJD);
    const auto echt = SYS.write;
    SYS.write = [](int, const void*, size_t) { return errno = EIO, ssize_t{-1}; };
    EXPECT_EQ(mdsend("AT\r"), 0);
    SYS.write = echt;
    mdclose();
    EXPECT_TRUE(p.zoals_gevonden());
}

TEST(Modem, Conversations) {
    constexpr const char* LANG = "xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx"
                                 "xxxxxxxxxxxxxxxxxxxxxxxxxxxx\r\n";
    enum { BELT, STELT_IN };
    const struct {
        int doet;
        Gesprek gesprek;
        int fout;     // 0: it went well
        int seconden; // that it may take at most; twice that on a busy machine
        int pauze = 1;
    } rijen[] = {
        {BELT, {{"ATDT0201234567\r", "\r\nCONNECT 9600\r\n"}}, 0, 3},
        {BELT, {{"ATD", "ATDT0201234567\r\r\nCONNECT\r\n"}}, 0, 3}, // an echo
        {BELT, {{"ATD", "\r\nBUSY\r\n"}}, MD_BUSY, 3},
        {BELT, {{"ATD", "\r\nNO CARRIER\r\n"}}, MD_NO_CARRIER, 3},
        {BELT, {{"ATD", "\r\nNO DIALTONE\r\n"}}, MD_NO_DIAL, 3},
        {BELT, {{"ATD", "\r\nNO ANSWER\r\n"}}, MD_NO_ANSWER, 3},
        {BELT, {{"ATD", "\r\nRING\r\n"}}, MD_RING, 3},
        {BELT, {{"ATD", "OK\r"}}, 100, 3}, // an answer, but no connection
        {BELT, {}, MD_TIJD, 5},
        {BELT, {{"ATD", "CONN"}}, MD_ERROR, 4},       // broken off
        {BELT, {{"ATD", LANG}}, MD_ERROR, 4},         // and too long
        {BELT, {{"ATD", "...zwam\r\n"}}, MD_TIJD, 9}, // babble of every kind
        {BELT, {{"ATD", "...\r\n\r\n"}}, MD_TIJD, 9},
        {BELT, {{"ATD", "...\x01\x02\xFF"}}, MD_TIJD, 9},
        {BELT, {{"ATD", "...xx"}}, MD_ERROR, 9},
        {BELT, {{"\r", "hang up"}}, MD_NO_CARRIER, 3},
        {STELT_IN, {{"ATZ\r", ""}, {"AT&F\r", "OK\r\n"}}, 0, 5},
        {STELT_IN,
         {{"ATZ\r", "ATZ\r\r\nOK\r\n"}, {"AT&F\r", "AT&F\r\r\nOK\r\n"}, {"AT\r", "AT\r\r\nOK\r\n"}},
         0,
         8}, // an echo
        {STELT_IN, {{"ATZ\r", ""}, {"AT&F\r", "\r\nERROR\r\n"}, {"AT\r", "\r\nERROR\r\n"}}, MDF_INIT, 8},
        {STELT_IN, {{"ATZ\r", ""}, {"AT&F\r", "~OK\r\n"}}, 0, 10, 3}, // within the pause, which is seconds
        {STELT_IN, {}, MDF_INIT, 10},
        {STELT_IN, {{"AT&F", "...zwam\r"}}, MDF_INIT, 16},
        {STELT_IN, {{"ATZ", "hang up"}}, MDF_INIT, 10},
    };
    constexpr size_t N = std::size(rijen);
    std::vector<std::unique_ptr<Poort>> poorten;
    for (const auto& r : rijen)
        poorten.push_back(std::make_unique<Poort>(r.gesprek));
    pid_t lopers[N];
    for (size_t i = 0; i < N; i++)
        if (lopers[i] = fork(); lopers[i] == 0) {
            alarm(static_cast<unsigned>(2 * rijen[i].seconden));
            modemlijn l = lijn(poorten[i]->naam);
            l.pauze = rijen[i].pauze;
            if (!mdopen(l))
                _exit(99);
            const int goed = rijen[i].doet == BELT ? mddial() : mdinit();
            const int fout = goed ? 0 : mdfout() ? mdfout() : 100;
            mdclose();
            _exit(fout);
        }
    for (size_t i = 0; i < N; i++) {
        const std::string wat = rijen[i].gesprek.empty() ? "silence" : rijen[i].gesprek.back().antwoord;
        int st;
        waitpid(lopers[i], &st, 0);
        EXPECT_EQ(WIFEXITED(st) ? WEXITSTATUS(st) : 128 + WTERMSIG(st), rijen[i].fout) << i << ": " << wat;
        EXPECT_TRUE(poorten[i]->zoals_gevonden() || wat == "hang up") << i << ": " << wat;
    }
}

// A fatal report with the line open: the line drops, the port gets its modes back, and what hung in the report's hook
// before is called as well, whatever the other side does.
TEST(Modem, FatalStopClosesTheLine) {
    for (const char* zegt : {"", "...zwam", "hang up"}) {
        Poort p(Gesprek{{"open", zegt}});
        test::Afloop a;
        const bool zakte = p.zakt([&] {
            a = test::in_proces([&] {
                SCRFATALHAAK = [] { fputs("hook before", stderr); };
                modemlijn l = lijn(p.naam);
                l.ophangen = true;
                if (!mdopen(l) || !mdsend("open"))
                    return 99;
                if (*zegt)
                    mdanswer(300);
                INTERNAL("proef", 7);
            });
        });
        EXPECT_EQ(a.status, 1) << zegt;
        EXPECT_TRUE(test::bevat(a.uitvoer, "hook before")) << zegt;
        EXPECT_TRUE(test::bevat(a.uitvoer, "proef: errno=7")) << zegt;
        EXPECT_TRUE((zakte && p.zoals_gevonden()) || !strcmp(zegt, "hang up")) << zegt;
    }
}

// ESC gives it up; the seconds stand at the right of the first row; other keys are for who comes next. A hang-up of the
// terminal while it dials again drops the line, and the port gets its modes back.
TEST(Modem, OnTheScreen) {
    Poort p(Gesprek{});
    test::Terminal t([&] {
        SCRINIT();
        modemlijn l = lijn(p.naam, 60);
        l.ophangen = true;
        if (!mdopen(l))
            return 99;
        const int uit = mddial();
        const int32_t a = TOETS(), b = TOETS();
        SCRPUT(A_WAARDE, 3, 1, "%d %s %c%c", uit, mderror().c_str(), a, b);
        mddial();
        return 98;
    });
    EXPECT_TRUE(t.wacht_op(1, 78, "60") || t.wacht_op(1, 78, "5"));
    t.stuur("xy\033");
    t.wacht("0 Bellen niet binnen tijd gelukt xy");
    t.wacht_op(1, 78, "5");
    EXPECT_TRUE(p.zakt([&] {
        t.sein(SIGHUP);
        EXPECT_EQ(t.einde(), 1);
    }));
    EXPECT_TRUE(p.zoals_gevonden());
}

TEST(Zgmodem, TestDialSend) {
    for (const auto& [opdracht, gesprek, status, zegt] : test::Rijen<const char*, Gesprek, int, const char*>{
             {"test", {{"ATZ\r", ""}, {"ATE0V1\r", "OK\r"}}, 0, "OK\n"},
             {"dial -n 0201234567", {{"ATDT0201234567\r", "CONNECT 9600\r"}}, 0, "CONNECT 9600\n"},
             {"dial -n -k 1 9 | true", {{"ATDT9\r", "CONNECT\r"}}, 0, ""}, // nobody reads what it says
             {"dial -n -k 60 9", {{"ATDT9\r", "CONNECT\rNO CARRIER\r"}}, 1, "the line has gone"},
             {"dial -n \"$(printf '9\\r+++')\"", {}, 2, "NUMBER"},
             {"dial -n --pulse 9", {{"ATDP9\r", "BUSY\r"}}, 1, "In gesprek"},
             {"send ATI", {{"ATI\r", "\r\nzgproef\r\nOK\r\n"}}, 0, "\nzgproef\nOK\n"},
             {"send ATI", {{"ATI\r", "...zwam\r\n"}}, 1, "no end of answers"},
             {"-s 42 test", {}, 2, "speed"},
             {"-p /dev/er-niet test", {}, 2, "port"},
         }) {
        Poort p(gesprek);
        test::hoort("zgmodem -p " + p.naam + " " + opdracht, status, zegt);
        EXPECT_TRUE(p.zoals_gevonden()) << opdracht;
    }
    EXPECT_EQ(test::sh("zgmodem -p /dev/er-niet test").status, 3);
}

} // namespace
} // namespace zg
