// Every file that the program reads, damaged in every way that disks and people damage files: a report that
// names the fault, or an answer, and never a crash; and the files that aren't being changed stay as they
// were.
#include "support/demomap.h"
#include <iterator>
#include <random>

using namespace zg::test;
namespace fs = std::filesystem;

namespace {

// Wild bytes, one in each `stap`.
std::string wild(std::string s, std::mt19937& r, size_t van, size_t stap = 1, size_t tot = SIZE_MAX) {
    for (size_t i = van; i < std::min(tot, s.size()); i += stap)
        s[i] = static_cast<char>(r());
    return s;
}

struct Schade {
    const char* wat;
    std::string (*doe)(const std::string&, std::mt19937&);
};

const Schade SCHADES[] = {
    {"cut to half", [](const std::string& s, auto&) { return s.substr(0, s.size() / 2); }},
    {"cut by one byte", [](const std::string& s, auto&) { return s.substr(0, s.size() - !s.empty()); }},
    {"emptied", [](const std::string&, auto&) { return std::string(); }},
    {"garbage", [](const std::string& s, auto& r) { return wild(s, r, 0); }},
    {"all 0xFF", [](const std::string& s, auto&) { return std::string(s.size(), '\xFF'); }},
    {"a wild byte in each sixteen", [](const std::string& s, auto& r) { return wild(s, r, r() % 16, 16); }},
    {"wild head", [](const std::string& s, auto& r) { return wild(s, r, 0, 1, 64); }},
    {"doubled", [](const std::string& s, auto&) { return s + s; }},
};

const char* const BESTANDEN[] = {"DTSYS.TXT",   "DTFILGEG.TXT",     "ORDPARM.SYS", "DTLEV.INX",
                                 "DTLEV.TXT",   "DTMERK.INX",       "DTMERK.TXT",  "DTART.INX",
                                 "DTART.TXT",   "DTMAAT.INX",       "DTMAAT.TXT",  "DTKOERS.INX",
                                 "DTKOERS.TXT", "2016Z/ORD0012.JRN"};

bool afgebroken(Terminal& t) {
    return t.scherm().find("PROGRAMMA AFGEBROKEN") != std::string::npos;
}

// A walk past everything that is read: lists, a supplier, an order, its lines and header, and out again.
// Answers the exit status; the first report stays in `melding`.
int wandel(Terminal& t, std::string* melding) {
    static const char* const STAPPEN[] = {"<Enter>", "<Enter>", "<F5>",   "<Down>", "<Esc>", "12<Enter>",
                                          "<Tab>",   "<Enter>", "<PgDn>", "<Down>", "R",     "O"};
    constexpr size_t UIT = 24; // more than enough ESC to leave from anywhere
    for (size_t i = 0; i < std::size(STAPPEN) + UIT && t.leeft(); i++) {
        EXPECT_TRUE(t.kalm(15000)) << "hangs\n" << t.scherm();
        if (testing::Test::HasFailure())
            break;
        if (afgebroken(t) && melding->empty())
            *melding = t.scherm();
        t.reeks(afgebroken(t) ? "<Enter>" : i < std::size(STAPPEN) ? STAPPEN[i] : "<Esc>");
        if (i >= std::size(STAPPEN))
            t.einde(100);
    }
    return t.einde();
}

// What a walk may leave behind: the damaged file itself where the store puts its version right or an empty
// journal goes, and the work files of an order that a report broke off.
void vergeet(std::map<std::string, std::string>& inhoud, const std::string& naam, bool gemeld) {
    inhoud.erase("DTSYS.TXT"); // the user's own slot changes
    if (naam.ends_with(".INX") || inhoud[naam].empty())
        inhoud.erase(naam);
    for (const char* ext : {"WRK", "ORS", "ACT"})
        if (gemeld)
            inhoud.erase(std::string("2016Z/ORD0012.") + ext);
}

} // namespace

// Half of the combinations; all of them with ZG_ALLES=1.
TEST(Schade, EveryFileEveryDamage) {
    size_t beurt = 0;
    for (const char* pad : BESTANDEN) {
        beurt++;
        for (const Schade& s : SCHADES) {
            if (++beurt % 2 && !getenv("ZG_ALLES"))
                continue;
            const std::string naam = pad, stam = fs::path(naam).stem();
            SCOPED_TRACE(naam + ": " + s.wat);
            std::mt19937 rnd(1234);
            DemoMap map;
            auto argv = overgave(map);
            schrijf_bestand(map.bestand(naam), s.doe(lees_bestand(map.bestand(naam)), rnd));
            Opties o = demo_opties(map);
            // No menu to go back to, beside it neither: the program ends with a report.
            o.omgeving = {{"BIN", "/nonexistent"}};
            fs::copy_file(argv[0], map.bestand("zgbestel"));
            argv[0] = map.bestand("zgbestel");
            auto voor = map.inhoud();
            Terminal t(argv, o);
            std::string melding;
            EXPECT_EQ(wandel(t, &melding), 1) << t.scherm();
            const bool gemeld = melding.find("niet gevonden") == std::string::npos;
            if (gemeld && naam != "DTSYS.TXT")
                EXPECT_TRUE(bevat(melding, stam)) << "does not name the file";
            EXPECT_EQ(t.uitvoer().find("Sanitizer"), std::string::npos) << t.uitvoer();
            EXPECT_EQ(t.uitvoer().find("runtime error"), std::string::npos) << t.uitvoer();
            auto na = map.inhoud();
            vergeet(na, naam, gemeld);
            vergeet(voor, naam, gemeld);
            EXPECT_EQ(DemoMap::verschil(voor, na), "") << "changed on a walk that changes nothing";
            if (HasFailure())
                return; // one is enough to look at
        }
    }
}
