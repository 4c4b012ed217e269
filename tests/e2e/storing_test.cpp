// The real program killed at every single write of an order that is opened, changed and committed. The writes are
// found by strace, which counts the calls on the supplier's files only. A full disk at each of them: tests/order.
#include "e2e/loop.h"
#include "term/vast.h"
#include <algorithm>
#include <csignal>
#include <gtest/gtest.h>

using namespace zg::test;

namespace {

struct Sessie {
    const char* wat;
    std::vector<const char*> stappen;
    bool nieuw;
};
const Sessie SESSIES[] = {
    // The second order of the list gets another description and loses its first line.
    {"existing order",
     {"<Enter>", "<Enter>", "12<Enter>", "<Down>", "<Enter>", "WO", "OZomer<Enter>", "<Esc>", "V", "J<Enter>",
      "<Esc>"},
     false},
    // A header, changed once; without lines it leaves nothing.
    {"new order",
     {"<Enter>", "<Enter>", "12<Enter>", "/", "<Enter>", "Nieuw<Enter>", "<Esc>", "<Esc>", "WO",
      "OZomer<Enter>", "<Esc>", "<Esc>"},
     true},
};

struct Toestand {
    std::string voor, achter; // the other orders
    std::string oud, kop, klaar;
    explicit Toestand(bool nieuw) {
        auto order = [](const char* naam, int dagen, std::vector<Regel> regels) {
            return maak_order(maak_kop(naam, static_cast<uint16_t>(WERKDATUM - dagen)), regels, "Franco");
        };
        std::vector<Regel> regels = {{5, "A", "D1"}, {5, "A", "D2"}, {5, "B", "D3"}};
        voor = order("Eerst", 1, {Regel{}, {5, "X"}});
        achter = order("Laatst", 9, {{5, "Z"}});
        oud = voor + order("Mijn", 5, regels) + achter;
        kop = voor + order("Zomer", 5, regels) + achter;
        regels.erase(regels.begin());
        klaar = voor + order("Zomer", 5, regels) + achter;
        if (nieuw)
            kop = klaar = oud;
    }
    bool heel(const std::string& jrn) const { return jrn == oud || jrn == kop || jrn == klaar; }
};

// strace counts each of them by itself.
const char* const CALLS[] = {"openat", "write", "pwrite64", "ftruncate", "rename", "unlink"};

// The program under strace; the tracer is its grandchild, so that the terminal watches the program itself.
std::vector<std::string> met_strace(Datamap& map, const std::string& call, const std::string& wat) {
    std::vector<std::string> argv = {"strace", "-D", "-f", "-qq", "-o", map.bestand("strace.out")};
    for (const char* ext : {"JRN", "WRK", "TMP", "ORS", "ACT"})
        for (std::string pad : {std::string("2016Z/"), map.bestand("2016Z/"), std::string()})
            argv.insert(argv.end(), {"-P", pad + "ORD0012." + ext});
    argv.insert(argv.end(), {"-e", "trace=" + call, "-e", "inject=" + call + ":" + wat});
    for (const std::string& a : map.overgave())
        argv.push_back(a);
    return argv;
}

// One session with a call disturbed: the exit status.
int speel(Datamap& map, const Sessie& sessie, const std::string& call, const std::string& wat) {
    Terminal t(met_strace(map, call, wat), map.opties());
    t.wacht_op(1, 46, "2016");
    for (size_t i = 0; i < sessie.stappen.size() + 8 && t.leeft(); i++) {
        EXPECT_TRUE(t.kalm()) << t.scherm();
        t.reeks(i < sessie.stappen.size() ? sessie.stappen[i] : "<Esc>");
        if (i >= sessie.stappen.size())
            t.einde(50);
    }
    return t.einde(10000);
}

enum Herstel { GEEN, WEL, NIET };

// The next start: what it says of the order, and no scratch file behind it.
Herstel volgende_start(Datamap& map) {
    Programma p(map);
    p.leverancier();
    std::string scherm = p.t.scherm();
    Herstel uit = GEEN;
    if (scherm.find("foutief afgesloten") != std::string::npos) {
        uit = scherm.find("worden automatisch hersteld...") != std::string::npos ? WEL : NIET;
        EXPECT_EQ(uit == NIET, scherm.find("kunnen NIET worden hersteld...") != std::string::npos) << scherm;
        p.t.toetsen("<Enter>");
    }
    p.t.toetsen("<Esc><Esc>");
    p.uit();
    EXPECT_EQ(map.restjes(), "");
    return uit;
}

} // namespace

TEST(Storing, GedoodBijElkeSchrijfactie) {
    Datamap map;
    for (const Sessie& sessie : SESSIES) {
        const Toestand toestand(sessie.nieuw);
        int aantal[3] = {};
        size_t call = 0;
        for (int n = 1; call < std::size(CALLS); n++) {
            SCOPED_TRACE(std::string(sessie.wat) + " killed at " + CALLS[call] + " " + std::to_string(n));
            map.journaal(toestand.oud);
            int einde = speel(map, sessie, CALLS[call], "signal=KILL:when=" + std::to_string(n));
            const std::string dood = map.journaal();
            if (einde == 0) {
                EXPECT_EQ(dood, toestand.klaar);
                call++, n = 0;
                continue;
            }
            ASSERT_EQ(einde, 128 + SIGKILL);
            EXPECT_TRUE(dood == toestand.oud || dood == toestand.klaar) << "a journal in between";
            Herstel herstel = volgende_start(map);
            aantal[herstel]++;
            EXPECT_TRUE(toestand.heel(map.journaal()));
            if (herstel == NIET) {
                EXPECT_EQ(map.journaal(), toestand.oud);
            }
            ASSERT_FALSE(HasFailure());
        }
        EXPECT_GE(aantal[WEL], sessie.nieuw ? 2 : 6);
        EXPECT_LE(aantal[NIET], 4) << "only before the marker is there";
    }
}

// A header that the disk refuses: told, and screen and files have the old one; the same change is accepted later.
TEST(Storing, KopGeweigerdDoorVolleSchijf) {
    Datamap map;
    const Toestand toestand(false);
    map.journaal(toestand.oud);
    Terminal t(met_strace(map, "pwrite64", "error=ENOSPC:when=2"), // the first is the index of lines
               map.opties());
    t.wacht_op(1, 46, "2016");
    t.toetsen("<Enter><Enter>12<Enter><Down><Enter>WOOZomer<Enter>G5<Enter><Esc>");
    EXPECT_TRUE(t.wacht("schijf vol")) << t.scherm();
    t.toetsen("<Enter>");
    EXPECT_TRUE(t.wacht("0 / Mijn")) << t.scherm();
    EXPECT_EQ(t.stuk(5, 52, 8), "   0.00%");
    t.toetsen("WOOZomer<Enter><Esc>");
    EXPECT_TRUE(t.wacht("0 / Zomer")) << t.scherm();
    t.toetsen("<Esc><Esc><Esc>");
    EXPECT_EQ(t.einde(10000), 0) << t.scherm();
    EXPECT_TRUE(map.journaal() == toestand.kop);
    EXPECT_EQ(map.restjes(), "");
}
