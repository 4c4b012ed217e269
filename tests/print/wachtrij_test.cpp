// A queue of a real scheduler: what it gets, and what a user hears when it is down or refuses.
#include "print/afdruk.h"
#include "shared/syscalls.h"
#include "support/terminal.h"
#include <csignal>
#include <gtest/gtest.h>
#include <sys/wait.h>

namespace zg {
namespace {

using namespace test;

bool doe(const std::string& opdracht) {
    return system(("PATH=$PATH:/usr/sbin; " + opdracht).c_str()) == 0;
}

// A scheduler of our own, with the queue "rij", whose backend writes title, copies and bytes into a file a job.
struct Rooster {
    std::string map;
    pid_t pid = -1;

    explicit Rooster(const std::string& m) : map(m) {
        for (const char* deel : {"", "/etc", "/run", "/spool", "/log", "/cache", "/data", "/data/mime",
                                 "/bin", "/bin/backend", "/bin/daemon", "/uit"})
            SYS.mkdir((map + deel).c_str(), 0755);
        std::string bestanden = "User nobody\nGroup nogroup\n";
        for (const auto& [wat, waar] : {std::pair{"ServerRoot", "etc"},
                                        {"RequestRoot", "spool"},
                                        {"StateDir", "run"},
                                        {"CacheDir", "cache"},
                                        {"ServerBin", "bin"},
                                        {"DataDir", "data"},
                                        {"AccessLog", "log/a"},
                                        {"ErrorLog", "log/e"},
                                        {"PageLog", "log/p"}})
            bestanden += std::string(wat) + " " + map + "/" + waar + "\n";
        schrijf_bestand(map + "/files.conf", bestanden);
        schrijf_bestand(
            map + "/cupsd.conf",
            "Listen " + map +
                "/run/sock\nDefaultAuthType None\nBrowsing No\n<Location />\nAllow all\n</Location>\n"
                "<Policy default>\n<Limit All>\nOrder deny,allow\n</Limit>\n</Policy>\n");
        schrijf_bestand(map + "/data/mime/mime.types",
                        "text/plain txt printable(0,1024)\napplication/vnd.cups-raw\n");
        schrijf_bestand(map + "/bin/backend/vang",
                        "#!/bin/sh\n[ $# = 0 ] && exit\nd=${DEVICE_URI#vang:}\n{ printf '%s|%s|' "
                        "\"$3\" \"$4\"; cat ${6:+\"$6\"}; } >$d/nu && mv $d/nu $d/$1\n");
        chmod((map + "/bin/backend/vang").c_str(), 0700);
        EXPECT_EQ(symlink("/usr/lib/cups/daemon/cups-exec", (map + "/bin/daemon/cups-exec").c_str()), 0);
        setenv("CUPS_SERVER", (map + "/run/sock").c_str(), 1);
        start();
        EXPECT_TRUE(doe("lpadmin -p rij -E -v vang:" + map + "/uit -m raw 2>/dev/null"));
    }
    ~Rooster() {
        stop();
        unsetenv("CUPS_SERVER");
    }
    void start() {
        pid = fork();
        if (pid == 0) {
            execl("/usr/sbin/cupsd", "cupsd", "-f", "-c", (map + "/cupsd.conf").c_str(), "-s",
                  (map + "/files.conf").c_str(), nullptr);
            _exit(127);
        }
        EXPECT_TRUE(binnen([] { return doe("lpstat -r | grep -q 'is running'"); }));
    }
    void stop() {
        if (pid > 0) {
            kill(pid, SIGTERM);
            waitpid(pid, nullptr, 0);
        }
        pid = -1;
    }
    std::string job(int n) const {
        const std::string pad = map + "/uit/" + std::to_string(n);
        binnen([&] { return IOEXISTS(pad.c_str()); });
        return lees_bestand(pad);
    }
};

int druk(const char* tekens) {
    begin(Printweg::wachtrij, "rij", 2, tekens);
    regels(TITEL, 3);
    return XPRT_CLOSE();
}
std::string meldt() { // what a prompt tells
    testing::internal::CaptureStderr();
    prt_meld_mislukt();
    return testing::internal::GetCapturedStderr();
}

TEST(Wachtrij, Scheduler) {
    TijdelijkeMap map;
    chmod(".", 0755);
    Rooster rooster(map.pad() + "/cups");
    EXPECT_TRUE(prt_bestaat(Printweg::wachtrij, "rij"));
    EXPECT_FALSE(prt_bestaat(Printweg::wachtrij, "weg"));
    const std::string titel = "M\xC3\xB8ller & S\xC3\xB8n", kop = titel + "|2|";
    EXPECT_EQ(druk("cp850"), 1);
    EXPECT_EQ(rooster.job(1), kop + verwacht(TITEL, 3));
    EXPECT_EQ(druk("utf-8"), 1);
    EXPECT_EQ(rooster.job(2), kop + verwacht(titel, 3, "\xC3\xB8"));
    EXPECT_TRUE(leeg());
    // Gone, or refused, behind the opening: the user goes on, is told once with what lp said, and the report goes out when
    // it is sent again.
    int n = 2;
    for (const char* reden : {"lp: ", "not accepting jobs"}) {
        const bool weg = ++n == 3;
        weg ? rooster.stop() : (void)doe("cupsreject rij");
        EXPECT_FALSE(weg && prt_bestaat(Printweg::wachtrij, "rij"));
        EXPECT_EQ(druk("cp850"), 1);
        std::string tekst;
        EXPECT_TRUE(binnen([&] { return !(tekst = meldt()).empty(); }));
        EXPECT_NE(tekst.find(reden), std::string::npos) << tekst;
        EXPECT_NE(tekst.find(TITEL), std::string::npos) << tekst;
        EXPECT_EQ(meldt(), "") << "told twice";
        weg ? rooster.start() : (void)doe("cupsaccept rij");
        EXPECT_TRUE(doe("'" ZG_BINARY_DIR "/zgspoel' -w PR*.JOB"));
        EXPECT_EQ(rooster.job(n), kop + verwacht(TITEL, 3));
        EXPECT_TRUE(leeg());
    }
}

} // namespace
} // namespace zg
