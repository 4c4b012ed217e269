// A queue of a real scheduler: what it gets, and what a user hears when it is down or refuses.
#include "print/printjob.h"
#include "print/printtabel.h"
#include "shared/files.h"
#include "shared/syscalls.h"
#include "support/paar.h"
#include "support/proces.h"
#include "support/terminal.h"
#include "term/vast.h"
#include <csignal>
#include <ctime>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

namespace zg {
namespace {

// A scheduler of our own, with one queue whose backend writes down what it gets.
class Rooster {
public:
    explicit Rooster(const std::string& map) : map_(map) {
        for (const char* m : {"", "/etc", "/run", "/spool", "/log", "/cache", "/data", "/data/mime", "/bin",
                              "/bin/backend", "/bin/daemon", "/bin/filter", "/uit"})
            SYS.mkdir((map + m).c_str(), 0755);
        chmod((map + "/uit").c_str(), 0777);
        test::schrijf_bestand(map + "/files.conf",
                              "ServerRoot " + map + "/etc\nRequestRoot " + map + "/spool\nStateDir " + map +
                                  "/run\nCacheDir " + map + "/cache\nServerBin " + map + "/bin\nDataDir " +
                                  map + "/data\nAccessLog " + map + "/log/access\nErrorLog " + map +
                                  "/log/error\nPageLog " + map + "/log/page\nUser nobody\nGroup nogroup\n");
        test::schrijf_bestand(
            map + "/cupsd.conf",
            "Listen " + map +
                "/run/sock\nDefaultAuthType None\nBrowsing No\n<Location />\nAllow all\n</Location>\n"
                "<Policy default>\n<Limit All>\nOrder deny,allow\n</Limit>\n</Policy>\n");
        test::schrijf_bestand(map + "/data/mime/mime.types",
                              "application/pdf pdf string(0,%PDF)\ntext/plain txt printable(0,1024)\n"
                              "application/vnd.cups-raw\napplication/octet-stream\n");
        test::schrijf_bestand(map + "/data/mime/mime.convs",
                              "application/octet-stream application/vnd.cups-raw 0 -\n");
        test::schrijf_bestand(
            map + "/bin/backend/vang",
            "#!/bin/sh\n[ $# = 0 ] && exit\nd=${DEVICE_URI#vang:}\n"
            "{ printf '%s|%s|' \"$3\" \"$4\"; cat ${6:+\"$6\"}; } >$d/nu && mv $d/nu $d/$1\n");
        chmod((map + "/bin/backend/vang").c_str(), 0700);
        symlink("/usr/lib/cups/daemon/cups-exec", (map + "/bin/daemon/cups-exec").c_str());
        setenv("CUPS_SERVER", (map + "/run/sock").c_str(), 1);
        start();
        doe("lpadmin -p rij -E -v vang:" + map + "/uit -m raw 2>/dev/null");
    }
    ~Rooster() {
        stop();
        unsetenv("CUPS_SERVER");
    }
    void start() {
        pid_ = fork();
        if (pid_ == 0) {
            const int nul = open("/dev/null", O_RDWR);
            for (int fd = 0; fd < 3; fd++)
                dup2(nul, fd);
            execl("/usr/sbin/cupsd", "cupsd", "-f", "-c", (map_ + "/cupsd.conf").c_str(), "-s",
                  (map_ + "/files.conf").c_str(), nullptr);
            _exit(127);
        }
        EXPECT_TRUE(wacht([] { return doe("lpstat -r | grep -q 'is running'"); }));
    }
    void stop() {
        if (pid_ > 0) {
            kill(pid_, SIGTERM);
            waitpid(pid_, nullptr, 0);
        }
        pid_ = -1;
    }
    static bool doe(const std::string& opdracht) {
        return system(("PATH=$PATH:/usr/sbin; " + opdracht).c_str()) == 0;
    }
    template <class F> static bool wacht(F waar) {
        for (const time_t tot = time(nullptr) + 60; !waar(); usleep(20000))
            if (time(nullptr) > tot)
                return false;
        return true;
    }
    // Title, copies and bytes of the n-th job.
    std::string job(int n) const {
        const std::string pad = map_ + "/uit/" + std::to_string(n);
        wacht([&] { return IOEXISTS(pad.c_str()); });
        return test::lees_bestand(pad);
    }

private:
    std::string map_;
    pid_t pid_ = -1;
};

template <class R> void zet(Prttabel tabel, const R& rec) {
    ICB* icb = prt_open(tabel, 2);
    ASSERT_TRUE(icb);
    test::schrijf(icb, rec);
    IXCLOSE(icb);
}

const char TITEL[] = "M\x9Bller & S\x9Bn"; // Møller & Søn

int druk(int kopieen = 1) {
    printopdracht.kopieen = kopieen;
    XPRT_PRINT("%s %d\n", TITEL, 7);
    return XPRT_CLOSE();
}
bool open_rij(uint8_t verbinding = 1, uint16_t masker = PRT_80) {
    return XPRT_OPEN({2, 0, verbinding}, masker, nullptr, TITEL) == 1;
}

TEST(Wachtrij, Scheduler) {
    test::TijdelijkeMap map;
    chmod(".", 0755);
    Rooster rooster(map.pad() + "/cups");
    SYS.mkdir("prt", 0777);
    setenv("ZEBPRT", "prt", 1);
    printtabellen t;
    prt_lees(&t);
    prtrec p{};
    p.code = 2;
    zet(PRT_PRINTERS, p);
    for (const auto& [nr, naam] : {std::pair{1, "rij"}, std::pair{2, "weg"}}) {
        prtverbinding v{};
        v.code = 2, v.nummer = static_cast<uint8_t>(nr);
        VASTIN(v.apparaat, naam);
        zet(PRT_VERBINDINGEN, v);
    }
    for (const auto& [nr, kolommen, init] : {std::tuple{1, 80, ""}, std::tuple{2, 132, "\\1B\\00"}}) {
        prtconfig c{};
        c.code = 2, c.nummer = static_cast<uint8_t>(nr), c.kolommen = static_cast<uint16_t>(kolommen);
        VASTIN(c.init, init);
        zet(PRT_CONFIGS, c);
    }
    auto leeg = [] { return Rooster::wacht([] { return FILES_PRESENT("PR*") == 0; }); };
    // Text for the queue to lay out; bytes for a printer that has an init text.
    ASSERT_TRUE(open_rij());
    EXPECT_EQ(druk(2), 1);
    const std::string titel = "M\xC3\xB8ller & S\xC3\xB8n";
    EXPECT_EQ(rooster.job(1), titel + "|2|" + titel + " 7\n");
    ASSERT_TRUE(open_rij(1, PRT_132));
    EXPECT_EQ(druk(), 1);
    EXPECT_EQ(rooster.job(2), titel + "|1|" + std::string("\x1B\0", 2) + TITEL + " 7\n");
    EXPECT_TRUE(leeg());
    EXPECT_FALSE(open_rij(2)); // unknown at the opening
    auto gemeld = [] {
        std::string uit;
        Rooster::wacht([&] {
            testing::internal::CaptureStderr();
            prt_meld_mislukt();
            uit = testing::internal::GetCapturedStderr();
            return !uit.empty();
        });
        testing::internal::CaptureStderr();
        prt_meld_mislukt();
        EXPECT_EQ(testing::internal::GetCapturedStderr(), "") << "told twice";
        return uit;
    };
    // Gone, or refused, behind the opening: the user goes on, is told with what lp said, and the report is sent again.
    const struct {
        const char *weg, *terug, *reden;
    } rijen[] = {{"", "", "lp: "}, {"cupsreject rij", "cupsaccept rij", "not accepting jobs"}};
    int n = 2;
    for (const auto& r : rijen) {
        SCOPED_TRACE(r.reden);
        ASSERT_TRUE(open_rij());
        *r.weg ? (void)Rooster::doe(r.weg) : rooster.stop();
        EXPECT_EQ(druk(3), 1);
        const std::string tekst = gemeld();
        EXPECT_NE(tekst.find(r.reden), std::string::npos) << tekst;
        EXPECT_NE(tekst.find(TITEL), std::string::npos) << tekst;
        EXPECT_EQ(FILES_PRESENT("PR*"), 2);
        *r.terug ? (void)Rooster::doe(r.terug) : rooster.start();
        EXPECT_TRUE(Rooster::doe("'" ZG_BINARY_DIR "/zgspoel' -w PR*.JOB"));
        EXPECT_EQ(rooster.job(++n), titel + "|3|" + titel + " 7\n");
        EXPECT_TRUE(leeg());
    }
    rooster.stop();
    EXPECT_FALSE(open_rij()); // nobody there at the opening
    EXPECT_EQ(FILES_PRESENT("PR*"), 0);
    unsetenv("ZEBPRT");
}

} // namespace
} // namespace zg
