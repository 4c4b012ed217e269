// The formatter: calls, and the bytes that they leave on the spool file.
#include "price/ing_val.h"
#include "print/printjob.h"
#include "print/teksten.h"
#include "support/systeem.h"
#include "term/datum.h"

namespace zg {
namespace {

printjob vorm(int kolommen = 80, int rijen = 64) {
    printjob job{};
    job.kolommen = kolommen, job.rijen = rijen;
    return job;
}

// What a report of these calls is on file; a job without pages, so that nothing stands behind it.
std::string uit(const std::function<void()>& doe, const printjob& job = vorm(80, 0),
                bool onderbroken = false) {
    IOUNLINK("PRTEST"); // of one that was stopped
    EXPECT_TRUE(prt_job_open(job, "PRTEST"));
    doe();
    prt_job_sluit(onderbroken);
    std::string tekst = IOEXISTS("PRTEST") ? test::lees_bestand("PRTEST") : "none";
    IOUNLINK("PRTEST");
    return tekst;
}

struct Zigzag : test::InMap {
    ~Zigzag() override { unsetenv("MAXFMT"); }
};

TEST_F(Zigzag, CallsAndBytes) {
    const std::string lang(400, 'x');
    const char* volatile geen = nullptr;
    const struct {
        const char* wat;
        std::function<void()> doe;
        std::string bytes;
    } rijen[] = {
        {"line in pieces", [] { XPRT_PRINT("a"), XPRT_PRINT("b\nc"), XPRT_PRINT("\n"); }, "ab\nc\n"},
        {"empty lines, return before the feed",
         [] { XPRT_PRINT("\na\r\n\r\nb"), XPRT_REGEL(), XPRT_REGEL(); }, "\na\n\nb\n"},
        {"per cent", [] { XPRT_PRINT("%d%%|%%\n", 5); }, "5%|%\n"},
        {"shift behind two blanks", [] { XPRT_PRINT("Totaal  %5d|\n", 123456); }, "Totaal 123456|\n"},
        {"drop behind one", [] { XPRT_PRINT("Totaal %5d|\n", 123456); }, "Totaal      |\n      123456 \n"},
        {"drop behind a label", [] { XPRT_PRINT("Totaal%5d|\n", 123456); }, "Totaal     |\n     123456 \n"},
        {"at the left edge there is no room to go", [] { XPRT_PRINT("%3d|\n", 123456); }, "123456|\n"},
        {"digits that would touch", [] { XPRT_PRINT("%3d%3d%3d|\n", 123, 456, 789); },
         "123   789|\n   456    \n"},
        {"first number behind a text stays", [] { XPRT_PRINT("maat 1%2d|\n", 38); }, "maat 138|\n"},
        {"four numbers", [] { XPRT_PRINT("%5d%5d%5d%5d\n", 123456, 223456, 323456, 423456); },
         "123456    323456     \n     223456    423456\n"},
        {"never over what dropped before", [] { XPRT_PRINT("  %3d%3d%3d\n", 1234, 123456, 99123456); },
         " 1234           \n  12345699123456\n"},
        {"no width, no shift", [] { XPRT_PRINT("a %d %g\n", 123456789, 12345.25); }, "a 123456789 12345.2\n"},
        {"amount, negative", [] { XPRT_PRINT("  %6.2f|\n", -1234.5); }, "-1234.50|\n"},
        {"left aligned", [] { XPRT_PRINT("  %-3d|\n", 1234); }, " 1234|\n"},
        {"stars", [] { XPRT_PRINT("%*d|%-*.*s|%*s|%.*s|\n", 4, 7, 5, 2, "abc", -4, "l", -1, "all"); },
         "   7|ab   |l   |all|\n"},
        {"lengths",
         [] {
             XPRT_PRINT("%hd %ld %lu %lx %zu %Lf\n", static_cast<short>(-1), -5000000000L, 5000000000UL, 255L,
                        sizeof(char), 1.5L);
         },
         "-1 -5000000000 5000000000 ff 1 1.500000\n"},
        {"control bytes of values", [] { XPRT_PRINT("%s|%c%c|\n", "a\nb\f\x1B\x7F", '\0', '\n'); },
         "a b   |  |\n"},
        {"null", [&] { XPRT_PRINT("%s|\n", geen); }, "|\n"},
        {"a field without its NUL",
         [] {
             const char veld[3] = {'a', 'b', 'c'};
             XPRT_PRINT("%-5.3s|\n", veld);
         },
         "abc  |\n"},
        {"cut at the width", [&] { XPRT_PRINT("%s%s\n", std::string(79, 'a').c_str(), "bc"); },
         std::string(79, 'a') + "b\n"},
        {"a dropped number past the width is gone",
         [&] { XPRT_PRINT("%s%5d\n", std::string(82, 'a').c_str(), 123456); }, std::string(80, 'a') + "\n"},
        {"repeat",
         [] { XPRT_HERHAAL(3, '-'), XPRT_HERHAAL(0, 'x'), XPRT_HERHAAL(-1, 'x'), XPRT_HERHAAL(1000, '='); },
         "---" + std::string(77, '=') + "\n"},
        {"thrown away", [] { XPRT_PRINT("abc"), XPRT_WIS(), XPRT_PRINT("%3d\n", 1); }, "  1\n"},
        {"past the line", [] { XPRT_PRINT("a"), XPRT_BYTES(std::string("\0\x1B\n", 3)), XPRT_RAW("%d", 7); },
         std::string("a\n\0\x1B\n7", 6)},
    };
    for (const auto& r : rijen)
        EXPECT_EQ(uit(r.doe), r.bytes) << r.wat;
    printjob breed = vorm(2000, 0);
    EXPECT_EQ(uit([&] { XPRT_PRINT("%s|%*d\n", lang.c_str(), -500, 1); }, breed),
              std::string(350, 'x') + "|1" + std::string(349, ' ') + "\n");
    setenv("MAXFMT", "380", 1);
    EXPECT_EQ(uit([&] { XPRT_PRINT("%s\n", lang.c_str()); }, breed), std::string(380, 'x') + "\n");
}

// Margins, heads, pages; numbers of rows count the feeds of a pair of lines.
TEST_F(Zigzag, Pages) {
    auto kop = [](const char* links, const char* midden, int breedte) {
        std::string t = uit(
            [&] {
                XPRT_KOP(links, "%s", midden);
                XPRT_PRINT("x");
            },
            vorm(breedte, 0));
        if (size_t dubbelepunt = t.find(':'); dubbelepunt != std::string::npos)
            t.replace(dubbelepunt - 2, 5, "hh:mm");
        return t;
    };
    const std::string rechts = std::string(" ") + DATUM10(VANDAAG()) + " hh:mm blad:   1";
    EXPECT_EQ(kop("Zomer\n", "Orders", 60),
              "Zomer           Orders" + std::string(10, ' ') + rechts + "\n\nx\n");
    EXPECT_EQ(kop("Links", "past precies", 46), "Links past precies " + rechts + "\n\nx\n");
    EXPECT_EQ(kop("Links", "past er niet in", 46), "Links" + std::string(14, ' ') + rechts + "\n" +
                                                       std::string(15, ' ') + "past er niet in\n\nx\n");
    EXPECT_EQ(kop("Links", "midden", 8), rechts.substr(0, 8) + "\n midden\n\nx\n");

    printjob job = vorm(80, 6);
    job.init = std::string("\0I", 2), job.exit = "E";
    int koppen = 0;
    auto drie = [&] {
        XPRT_MARGE(1, 2);
        for (int i = 1; i <= 6; i++) {
            if (XPRT_VOL())
                koppen++, XPRT_BLAD();
            XPRT_PRINT("%d\n", i);
        }
    };
    const std::string m = "\n  ";
    EXPECT_EQ(uit(drie, job), std::string("\0I", 2) + m + "1" + m + "2" + m + "3" + m + "\f" + m + "4" + m +
                                  "5" + m + "6" + m + "\fE");
    EXPECT_EQ(koppen, 2);
    // Without pages: one head, however long; no form feed.
    for (int rijen : {0, 9999}) {
        koppen = 0;
        uit(
            [&] {
                for (int i = 0; i < 10'050; i++) {
                    if (XPRT_VOL())
                        koppen++, XPRT_BLAD();
                    XPRT_PRINT("x\n");
                }
            },
            vorm(80, rijen));
        EXPECT_EQ(koppen, 1) << rijen;
    }
    EXPECT_EQ(uit([] { XPRT_PRINT("a\fb\n"); }, vorm(80, 5)), "a\nb\n\f");
    // Broken off; and a report of an init text alone is none.
    EXPECT_EQ(uit([] { XPRT_PRINT("a"); }, vorm(80, 0), true),
              "a\n\n\n*************************\n** Printen onderbroken **\n*************************\n");
    EXPECT_EQ(uit([] {}, job, true), "none");
}

TEST_F(Zigzag, Amounts) {
    VASTIN(instel15.valuta, "EUR");
    test::schrijf_bestand("DTSYS.TXT", std::string(130'000, '\0'));
    test::Systeem::open();
    test::Systeem::valuta(1, "EUR", 2, "Euro");
    test::Systeem::valuta(2, "JPY", 0, "Yen");
    valuta_vergeet();
    EXPECT_EQ(uit([] {
                  XPRT_PRINT("  ");
                  XPRT_BEDRAG(-1234567, 8);
                  XPRT_BEDRAGIN("JPY", 1500, 6);
                  XPRT_REGEL();
              }),
              " -12345.67  1500\n");
    test::Systeem::sluit();
    instel15 = {};
    valuta_vergeet();
}

TEST_F(Zigzag, Stops) {
    const struct {
        std::vector<std::pair<const char*, const char*>> omgeving;
        std::function<void()> doe;
        const char* tekst;
    } rijen[] = {
        {{}, [] { uit([] { zigzag_start(); }); }, "zigzag_printen is reeds gestart"},
        {{}, [] { zigzag_stop(); }, "zigzag_printen is niet gestart"},
        {{}, [] { uit([] { XPRT_HERHAAL(32001, 'x'); }); }, "PrintBuffer > 32000 Bytes, printline too long"},
        {{},
         [] {
             uit([] {
                 int n;
                 XPRT_PRINT("%n", &n);
             });
         },
         "Invalid format specifier: n"},
        {{{"MAXFMT", "veel"}}, [] { zigzag_start(); }, "Unknown Text in MMEINI"},
        {{{"MAXFMT", "0"}}, [] { zigzag_start(); }, "Unknown Text in MMEINI"},
        {{{"SYSBUF", "12x"}}, [] { zigzag_start(); }, "Unknown Text in SYSBUF"},
        {{{"SYSBUF", "-1"}}, [] { zigzag_start(); }, "Unknown Text in SYSBUF"},
        {{{"SYSBUF", "32001"}}, [] { zigzag_start(); }, "SYSBUF IS > 32000"},
        {{{"MAXSYSBUF", ""}}, [] { zigzag_start(); }, "Unknown Text in MAXSYSBUF"},
        {{{"MAXSYSBUF", "32001"}}, [] { zigzag_start(); }, "MAXSYSBUF IS > 32000"},
        {{{"MAXSYSBUF", "299"}}, [] { zigzag_start(); }, "MAXSYSBUF < DEFAULT SYSBUF -> MAXSYSBUF > 300"},
        {{{"SYSBUF", "500"}, {"MAXSYSBUF", "499"}},
         [] { zigzag_start(); },
         "MAXSYSBUF < SYSBUF --> MAXSYSBUF > SYSBUF"},
        {{{"MAXSYSBUF", "310"}},
         [] { uit([] { XPRT_HERHAAL(310, 'x'), XPRT_PRINT("y"); }); },
         "MAXSYSBUF too small. 311 > MAXSYSBUF(310)"},
    };
    for (const auto& r : rijen)
        test::verwacht_stop(
            [&] {
                for (const auto& [naam, waarde] : r.omgeving)
                    setenv(naam, waarde, 1);
                r.doe();
            },
            r.tekst);
}

// A name that is taken isn't shared.
TEST_F(Zigzag, NameTaken) {
    test::schrijf_bestand("PRTEST", "van een ander");
    for (int i = 0; i < 2; i++) { // the refused one stopped the zigzag
        EXPECT_FALSE(prt_job_open(vorm(), "PRTEST"));
        EXPECT_EQ(errno, EEXIST);
    }
    EXPECT_EQ(test::lees_bestand("PRTEST"), "van een ander");
}

} // namespace
} // namespace zg
