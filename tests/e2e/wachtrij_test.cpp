// The order to a queue of a real scheduler: what it gets, and what a user hears when it is down or refuses.
#include "e2e/loop.h"
#include "print/afdruk.h"
#include "tools/shell.h"

namespace zg::test {
namespace {

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

const std::string NAAM = "M\x9Bller & S\x9Bn", TITEL_RIJ = "Order 31 M\xC3\xB8ller & S\xC3\xB8n";

struct Wachtrij : testing::Test {
    TijdelijkeMap plaats{false};
    Datamap map;
    Rooster rooster;
    std::unique_ptr<Programma> p;

    Wachtrij() : rooster((chmod(plaats.pad().c_str(), 0755), plaats.pad() + "/cups")) {
        ordkop kop = maak_kop("Voorjaar");
        kop.leverancier = 31;
        map.journaal(maak_order(kop, {Regel{}}), 31);
        std::filesystem::create_directory(map.bestand("prt"));
        EXPECT_EQ(zgdruk("add printer 2 naam=Rij && zgdruk add verbinding 2 1 apparaat=rij && zgdruk add "
                         "configuratie 2 1 "
                         "kolommen=80 rijen=64 'init=\\1B@\\00' 'exit=\\00Z'"),
                  "");
        const auto argv = map.overgave();
        map.sys(Datamap::slot() + 18, std::string("\2\0\1\1", 4)); // printer 2, look first
        Opties opties = map.opties();
        opties.klok.clear(); // which lp can't live with
        opties.omgeving.push_back({"ZEBPRT", map.bestand("prt")});
        p = std::make_unique<Programma>(argv, opties);
        p->eerste_order(31);
    }
    std::string zgdruk(const std::string& wat) const {
        return sh("cd '" + map.pad() + "' && export ZEBPRT=prt && zgdruk " + wat).tekst;
    }
    // Ask for the order on paper: its preview, or a box.
    bool vraag(const char* ziet) {
        p->t.toetsen("RFKMP");
        return p->t.wacht(ziet);
    }
    // Two copies, out of the preview.
    void print() { p->t.toetsen("a2<Enter>p"); }
    // What a turn of the screen tells sooner or later, in a box.
    bool meldt(const std::string& tekst) {
        return binnen([&] {
            if (p->t.scherm().find(tekst) != std::string::npos)
                return true;
            p->t.toetsen("R<Esc>");
            return false;
        });
    }
    bool niets_over() const { return sh("cd '" + map.pad() + "' && ls PR*").status != 0; }
    // The n-th job of the scheduler is the order: title, copies, control texts, and the supplier in its characters.
    void is_order(int n, const std::string& init, const std::string& naam, const std::string& exit) {
        const std::string job = rooster.job(n), kop = TITEL_RIJ + "|2|" + init;
        EXPECT_EQ(job.substr(0, kop.size()), kop);
        EXPECT_TRUE(bevat(job, ": 31 " + naam));
        EXPECT_TRUE(job.ends_with("\f" + exit)) << job;
        EXPECT_TRUE(binnen([&] { return niets_over(); }));
    }
};

TEST_F(Wachtrij, FromTheLineScreen) {
    const std::string init("\x1B@\0", 3), exit("\0Z", 2);
    ASSERT_TRUE(vraag("Einde overzicht")) << p->t.scherm();
    print();
    is_order(1, init, NAAM, exit);
    // Without control texts it is text for the queue to lay out.
    EXPECT_EQ(zgdruk("change configuratie 2 1 init= exit="), "");
    ASSERT_TRUE(vraag("Einde overzicht")) << p->t.scherm();
    print();
    is_order(2, "", "M\xC3\xB8ller & S\xC3\xB8n", "");
    EXPECT_EQ(zgdruk("change configuratie 2 1 'init=\\1B@\\00' 'exit=\\00Z'"), "");
    // At the opening: a queue that nobody knows, a scheduler that is down. A box, and no job.
    for (const bool weg : {true, false}) {
        EXPECT_EQ(weg ? zgdruk("change verbinding 2 1 apparaat=weg") : (rooster.stop(), ""), "");
        EXPECT_TRUE(vraag(weg ? "Uitvoermedium <weg>" : "Uitvoermedium <rij>")) << p->t.scherm();
        p->t.wacht("kan niet geopend worden");
        EXPECT_TRUE(niets_over());
        p->t.toetsen("<Enter>", 24, 1, "Uw keuze");
        EXPECT_EQ(weg ? zgdruk("change verbinding 2 1 apparaat=rij") : (rooster.start(), ""), "");
    }
}

// In the preview: told with what the scheduler said; the report is kept, and goes out when it is sent again.
TEST_F(Wachtrij, RefusedBehindTheOpening) {
    const std::string init("\x1B@\0", 3), exit("\0Z", 2);
    int n = 0;
    for (const char* reden : {"de wachtrij weigert: ", "not accepting jobs"}) {
        const bool weg = ++n == 1;
        ASSERT_TRUE(vraag("Einde overzicht")) << p->t.scherm();
        weg ? rooster.stop() : (void)doe("cupsreject rij");
        print();
        EXPECT_TRUE(meldt("is niet geprint")) << p->t.scherm();
        for (const char* tekst : {"Order 31 Møller & Søn", reden, "blijft bewaard: PR"})
            p->t.wacht(tekst);
        p->t.toetsen("<Enter>");
        weg ? rooster.start() : (void)doe("cupsaccept rij");
        EXPECT_TRUE(bevat(zgdruk("jobs"), reden));
        EXPECT_EQ(zgdruk("send --all"), "");
        is_order(n, init, NAAM, exit);
    }
}

} // namespace
} // namespace zg::test
