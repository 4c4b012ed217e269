// Every file that the program reads, damaged in every way that disks and people damage files: a report that
// names the fault, or an answer, and never a crash; and the files that aren't being changed stay as they
// were.
#include "support/demomap.h"
#include <filesystem>
#include <gtest/gtest.h>
#include <random>

using namespace zg::test;

namespace {

struct Schade {
    const char* wat;
    std::string (*doe)(std::string, std::mt19937&);
};

const Schade SCHADES[] = {
    {"cut to half", [](std::string s, std::mt19937&) { return s.substr(0, s.size() / 2); }},
    {"cut by one byte",
     [](std::string s, std::mt19937&) { return s.substr(0, s.empty() ? 0 : s.size() - 1); }},
    {"emptied", [](std::string, std::mt19937&) { return std::string(); }},
    {"garbage",
     [](std::string s, std::mt19937& r) {
         for (char& c : s)
             c = static_cast<char>(r());
         return s;
     }},
    {"all 0xFF", [](std::string s, std::mt19937&) { return std::string(s.size(), '\xFF'); }},
    {"a wild byte in each sixteen",
     [](std::string s, std::mt19937& r) {
         for (size_t i = r() % 16; i < s.size(); i += 16)
             s[i] = static_cast<char>(r());
         return s;
     }},
    {"wild head",
     [](std::string s, std::mt19937& r) {
         for (size_t i = 0; i < s.size() && i < 64; i++)
             s[i] = static_cast<char>(r());
         return s;
     }},
    {"doubled", [](std::string s, std::mt19937&) { return s + s; }},
};

const char* const BESTANDEN[] = {"DTSYS.TXT",   "DTFILGEG.TXT",     "ORDPARM.SYS", "DTLEV.INX",
                                 "DTLEV.TXT",   "DTMERK.INX",       "DTMERK.TXT",  "DTART.INX",
                                 "DTART.TXT",   "DTMAAT.INX",       "DTMAAT.TXT",  "DTKOERS.INX",
                                 "DTKOERS.TXT", "2016Z/ORD0012.JRN"};

// A walk past everything that is read: lists, a supplier, an order, its lines and header, and out again.
// Answers the exit status; the walk goes on through any report.
int wandel(Terminal& t) {
    for (const char* stap : {"<Enter>", "<Enter>", "<F5>",   "<Down>", "<Esc>", "12<Enter>", "<Tab>",
                             "<Enter>", "<PgDn>",  "<Down>", "R",      "O",     "<Esc>",     "<Esc>",
                             "<Esc>",   "<Esc>",   "<Esc>",  "<Esc>",  "<Esc>", "<Esc>"}) {
        if (!t.leeft())
            break;
        EXPECT_TRUE(t.kalm(15000)) << "hangs\n" << t.scherm();
        if (t.scherm().find("PROGRAMMA AFGEBROKEN") != std::string::npos)
            t.reeks("<Enter>");
        else
            t.reeks(stap);
    }
    for (int i = 0; i < 12 && t.leeft(); i++) {
        t.kalm(15000);
        t.reeks(t.scherm().find("PROGRAMMA AFGEBROKEN") != std::string::npos ? "<Enter>" : "<Esc>");
        t.einde(200);
    }
    return t.einde(5000);
}

} // namespace

TEST(Schade, EveryFileEveryDamage) {
    for (const char* naam : BESTANDEN) {
        for (const Schade& s : SCHADES) {
            SCOPED_TRACE(std::string(naam) + ": " + s.wat);
            std::mt19937 rnd(1234);
            DemoMap map;
            auto argv = overgave(map);
            schrijf_bestand(map.bestand(naam), s.doe(lees_bestand(map.bestand(naam)), rnd));
            auto voor = map.inhoud();
            Opties o = demo_opties(map);
            o.omgeving = {{"BIN", "/nonexistent"}}; // no menu to go back to: the program ends with a report
            Terminal t(argv, o);
            int status = wandel(t);
            EXPECT_TRUE(status == 0 || status == 1 || status == 10) << "status " << status << "\n"
                                                                    << t.scherm();
            EXPECT_EQ(t.uitvoer().find("Sanitizer"), std::string::npos) << t.uitvoer();
            EXPECT_EQ(t.uitvoer().find("runtime error"), std::string::npos) << t.uitvoer();
            auto na = map.inhoud();
            na["DTSYS.TXT"] = voor["DTSYS.TXT"]; // the user's own slot changes
            EXPECT_EQ(DemoMap::verschil(voor, na), "") << "changed on a walk that changes nothing";
        }
    }
}
