// Settings that somebody wrote with bad intent, or that went wrong: whatever stands in a field of the print tables, in the
// environment or in a file's name, no command runs, no option is taken, no data file changes, and no control byte of it
// reaches the terminal.
#include "print/afdruk.h"
#include "print/printtabel.h"
#include "print/spooljob.h"
#include "shared/syscalls.h"
#include "support/paar.h"
#include "support/proces.h"
#include "support/terminal.h"
#include "term/scherm.h"
#include <functional>
#include <gtest/gtest.h>
#include <map>

namespace zg {
namespace {

const std::string VEERTIG(40, 'x');
const std::string TEKSTEN[] = {
    "a\"; touch pwn; \"",
    "a'; touch pwn; '",
    "$(touch pwn)",
    "a\ntouch pwn\n",
    "-opwn",
    "-o raw",
    "../DTSYS.TXT",
    "DTSYS.TXT",
    "2016Z/ORD0012.JRN",
    ">DTSYS.TXT",
    "%s%n%s%n%s",
    "\x1B]0;pwn\a\x1B[2J\x9B",
    "\\1B\\0A\\00\\",
    VEERTIG,
};

// A byte array of a record, filled without an end where the text is long enough.
template <size_t N> void vul(char (&veld)[N], const std::string& tekst) {
    memset(veld, 0, N);
    const size_t n = std::min(N, tekst.size());
    memcpy(veld, tekst.data(), n);
    for (size_t i = n; tekst == VEERTIG && i < N; i++)
        veld[i] = 'x';
}
template <class R> void zet(Prttabel tabel, const R& rec) {
    ICB* icb = prt_open(tabel, 2);
    ASSERT_TRUE(icb);
    test::schrijf(icb, rec);
    IXCLOSE(icb);
}

struct Vijandig : testing::Test {
    test::TijdelijkeMap tijdelijk;
    std::string pad = getenv("PATH");
    std::map<std::string, std::string> data;
    Vijandig() {
        for (const char* m : {"prt", "bin", "2016Z", "uit", "elders"})
            SYS.mkdir(m, 0777);
        for (const char* b : {"DTSYS.TXT", "DTLEV.TXT", "2016Z/ORD0012.JRN"})
            test::schrijf_bestand(b, data[b] = std::string("gegevens van ") + b);
        // Every word that they get, in a file that only grows; every queue is known.
        for (const char* p : {"bin/lp", "bin/lpstat"}) {
            test::schrijf_bestand(
                p, "#!/bin/sh\ns=\nfor w; do s=\"$s${0##*/}|$(printf '%s' \"$w\" | tr '\\n' '~')\n\"; done\n"
                   "printf '%s' \"$s\" >>" +
                       tijdelijk.pad() + "/elders/woorden\n");
            chmod(p, 0755);
        }
        setenv("ZEBPRT", "prt", 1);
        setenv("PATH", (tijdelijk.pad() + "/bin:" + pad).c_str(), 1);
    }
    ~Vijandig() override {
        for (const char* v : {"ZEBPRT", "SYSBUF", "MAXFMT", "MAXSYSBUF"})
            unsetenv(v);
        setenv("PATH", pad.c_str(), 1);
    }
    void ongeschonden(const std::string& bij) {
        for (const auto& [naam, inhoud] : data)
            EXPECT_EQ(test::lees_bestand(naam), inhoud) << bij;
        for (const char* p : {"pwn", "prt/pwn", "uit/pwn", "2016Z/pwn", "../pwn"})
            EXPECT_FALSE(IOEXISTS(p)) << bij;
        EXPECT_FALSE(IOEXISTS("raw")) << bij;
    }
    // A printer of which each field can be another text.
    static void printer(const std::string& naam, const std::string& apparaat, bool map,
                        const std::string& verbinding, const std::string& config, const std::string& init,
                        const std::string& tekens) {
        prtrec p{};
        prtverbinding v{};
        prtconfig c{};
        prtcode k{};
        p.code = v.code = c.code = k.code = 2;
        v.nummer = c.nummer = k.config = 1;
        k.nummer = 17;
        v.map = map;
        c.kolommen = 80, c.rijen = 60;
        vul(p.naam, naam), vul(v.apparaat, apparaat), vul(v.naam, verbinding), vul(c.omschrijving, config);
        vul(c.init, init), vul(c.exit, init), vul(k.tekst, tekens);
        zet(PRT_PRINTERS, p), zet(PRT_VERBINDINGEN, v), zet(PRT_CONFIGS, c), zet(PRT_CODES, k);
    }
    static void druk_af(uint8_t vlaggen, const char* bestand, const std::string& titel) {
        if (!XPRT_OPEN({2, vlaggen, 0}, PRT_80, bestand, titel.c_str()))
            return;
        XPRT_PRINT("een regel\n");
        XPRT_CLOSE();
    }
    static bool klaar() { // nothing is on its way; what failed stays
        return test::binnen([] {
            spooljob job;
            for (const std::string& b : spool_beschrijvingen(""))
                if (spool_kijk(b, &job) == Spoolpad::bezig)
                    return false;
            return true;
        });
    }
};

TEST_F(Vijandig, EveryFieldOfTheTables) {
    for (const std::string& t : TEKSTEN)
        for (int veld = 0; veld < 8; veld++) {
            auto of = [&](int n, const char* goed) { return veld == n || veld == 7 ? t : std::string(goed); };
            printer(of(0, "Laser"), of(1, veld == 2 ? "uit" : "laser"), veld == 2, of(2, "via"), of(3, "A4"),
                    of(4, ""), of(5, "utf-8"));
            druk_af(0, nullptr, of(6, "titel"));
            if (veld == 1) { // as a directory, too
                printer("Laser", t, true, "via", "A4", "", "utf-8");
                druk_af(0, nullptr, "titel");
            }
        }
    EXPECT_TRUE(klaar());
    ongeschonden("fields");
    // What the queue's programs were given: a form that can't be an option, each word one.
    const std::string woorden = test::lees_bestand("elders/woorden");
    int titels = 0;
    for (size_t p = 0, q; (q = woorden.find('\n', p)) != std::string::npos; p = q + 1) {
        const std::string w = woorden.substr(p, q - p);
        const std::string kaal = w.substr(w.find('|') + 1);
        titels += w.starts_with("lp|-t");
        if (w.starts_with("lpstat|")) {
            EXPECT_TRUE(kaal == "-v" || kaal[0] != '-') << w;
        } else if (kaal.starts_with("-")) {
            EXPECT_TRUE(kaal == "--" || kaal == "-s" || kaal == "-n1" || kaal == "-o" ||
                        kaal.starts_with("-d") || kaal.starts_with("-t"))
                << w;
            EXPECT_FALSE(kaal.starts_with("-t") && kaal.find('~') != std::string::npos) << w;
        } else
            EXPECT_TRUE(kaal == "raw" || kaal.starts_with("./PR") || kaal.starts_with("PR")) << w;
    }
    EXPECT_GT(titels, 50);
}

TEST_F(Vijandig, EnvironmentAndFileNames) {
    printer("Laser", "laser", false, "via", "A4", "", "utf-8");
    for (const std::string& t : TEKSTEN) {
        druk_af(PRT_BESTAND, t.c_str(), "titel");
        druk_af(PRT_BESTAND, ("elders/../" + t).c_str(), t);
        ongeschonden(t);
        for (const char* v : {"ZEBPRT", "SYSBUF", "MAXFMT", "MAXSYSBUF"}) {
            const test::Afloop uit = test::in_proces([&] {
                setenv(v, t.c_str(), 1);
                druk_af(0, nullptr, "titel");
                return 0;
            });
            EXPECT_TRUE(uit.status == 0 || uit.status == 1) << v << "=" << t << "\n" << uit.uitvoer;
        }
        ongeschonden(t);
    }
    EXPECT_TRUE(klaar());
    ongeschonden("all");
}

// The list and the box of a refusal show the fields, and the preview the lines: none of their bytes is the terminal's.
TEST_F(Vijandig, OnTheScreen) {
    const std::string ernst = "\x1B]0;pwn\a\x1B[31m\x9B"
                              "5m";
    printer(ernst, ernst, false, ernst, ernst, "", ernst);
    test::Terminal t([&] {
        SCRINIT();
        XPRT_OPEN({2, 0, 0}, PRT_ALLES, nullptr, ernst.c_str()); // the box of an unknown queue
        if (XPRT_OPEN({0, 0, 0}, PRT_ALLES, nullptr, ernst.c_str())) {
            XPRT_BYTES(ernst + "\n");
            XPRT_CLOSE();
        }
        SCREXIT();
        return 0;
    });
    test::schrijf_bestand("bin/lpstat", "#!/bin/sh\nexit 1\n");
    EXPECT_TRUE(t.wacht("kan niet geopend worden")) << t.scherm();
    t.toetsen("<Enter>");
    EXPECT_TRUE(t.wacht("Printbestemming")) << t.scherm();
    t.toetsen("<Enter>");
    EXPECT_TRUE(t.wacht("(blad 1 van 1)")) << t.scherm();
    EXPECT_TRUE(t.regel(1).starts_with(".]0;pwn..[31m")) << t.scherm();
    t.toetsen("n");
    EXPECT_EQ(t.einde(), 0);
    EXPECT_EQ(t.uitvoer().find("\x1B]0;pwn"), std::string::npos);
    EXPECT_EQ(t.uitvoer().find("\x1B[31m"), std::string::npos);
    ongeschonden("screen");
}

} // namespace
} // namespace zg
