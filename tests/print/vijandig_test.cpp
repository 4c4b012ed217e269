// Settings that somebody wrote with bad intent, or that went wrong: whatever stands in a field of the print tables, in the
// environment or in a file's name, no command runs, no option is taken, no data file changes.
#include "print/afdruk.h"
#include "print/spooljob.h"

namespace zg::test {
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
    memset(veld, tekst == VEERTIG ? 'x' : 0, N);
    memcpy(veld, tekst.data(), std::min(N, tekst.size()));
}

struct Vijandig : Printmap {
    std::map<std::string, std::string> data;
    Vijandig() {
        for (const char* b : {"DTSYS.TXT", "DTLEV.TXT", "2016Z/ORD0012.JRN"})
            schrijf_bestand(b, data[b] = std::string("gegevens van ") + b);
        // Every word that they get, in a file that only grows; every queue is known.
        for (const char* p : {"bin/lp", "bin/lpstat"})
            programma(p, "s=\nfor w; do s=\"$s${0##*/}|$(printf '%s' \"$w\" | tr '\\n' '~')\n\"; done\n"
                         "printf '%s' \"$s\" >>" +
                             tijdelijk.pad() + "/elders/woorden");
    }
    static bool klaar() { // nothing is on its way; what failed stays
        return binnen([] {
            spooljob job;
            for (const std::string& b : spool_beschrijvingen(""))
                if (spool_kijk(b, &job) == Spoolpad::bezig)
                    return false;
            return true;
        });
    }
    void TearDown() override {
        EXPECT_TRUE(klaar());
        for (const auto& [naam, inhoud] : data)
            EXPECT_EQ(lees_bestand(naam), inhoud);
        for (const char* p : {"pwn", "prt/pwn", "uit/pwn", "2016Z/pwn", "../pwn", "raw"})
            EXPECT_FALSE(IOEXISTS(p)) << p;
    }
    // A printer of which each field can be another text.
    static void maak(const std::string& naam, const std::string& apparaat, bool map,
                     const std::string& verbinding, const std::string& config, const std::string& init,
                     const std::string& tekens) {
        prtrec p{2, {}, {}};
        prtverbinding v{2, 1, map, {}, {}};
        prtconfig c{2, 1, 0, 80, 60, {}, {}, {}};
        prtcode k{2, 1, 17, {}};
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
};

TEST_F(Vijandig, EveryFieldOfTheTables) {
    for (const std::string& t : TEKSTEN)
        for (int veld = 0; veld < 9; veld++) {
            auto of = [&](int n, const char* goed) { return veld == n || veld == 7 ? t : std::string(goed); };
            const bool map = veld == 2 || veld == 8; // a device's text as a directory, too
            maak(of(0, "Laser"), veld == 8 ? t : of(1, map ? "uit" : "laser"), map, of(2, "via"), of(3, "A4"),
                 of(4, ""), of(5, "utf-8"));
            druk_af(0, nullptr, of(6, "titel"));
        }
    EXPECT_TRUE(klaar());
    // What the queue's programs were given: a form that can't be an option, each word one.
    const std::string woorden = lees_bestand("elders/woorden");
    int titels = 0;
    for (size_t p = 0, q; (q = woorden.find('\n', p)) != std::string::npos; p = q + 1) {
        const std::string w = woorden.substr(p, q - p);
        const std::string kaal = w.substr(w.find('|') + 1);
        titels += w.starts_with("lp|-t");
        const bool goed = w.starts_with("lpstat|") ? kaal == "-v" || kaal[0] != '-'
                          : kaal.starts_with("-t") ? kaal.find('~') == std::string::npos
                          : kaal.starts_with("-")  ? kaal == "--" || kaal == "-s" || kaal == "-n1" ||
                                                        kaal == "-o" || kaal.starts_with("-d")
                                                  : kaal == "raw" || kaal.starts_with("./PR");
        EXPECT_TRUE(goed) << w;
    }
    EXPECT_GT(titels, 50);
}

TEST_F(Vijandig, EnvironmentAndFileNames) {
    maak("Laser", "laser", false, "via", "A4", "", "utf-8");
    for (const std::string& t : TEKSTEN) {
        druk_af(PRT_BESTAND, t.c_str(), "titel");
        druk_af(PRT_BESTAND, ("elders/../" + t).c_str(), t);
        for (const char* v : {"ZEBPRT", "SYSBUF", "MAXFMT", "MAXSYSBUF"}) {
            const Afloop uit = in_proces([&] {
                setenv(v, t.c_str(), 1);
                druk_af(0, nullptr, "titel");
                return 0;
            });
            EXPECT_TRUE(uit.status == 0 || uit.status == 1) << v << "=" << t << "\n" << uit.uitvoer;
        }
    }
}

} // namespace
} // namespace zg::test
