// The real program killed, and refused by the disk, at every single write of an order that is opened, changed and
// committed. The writes are found by strace, which counts the calls on the supplier's files only.
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
    std::string regel; // the header refused, the line gone
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
        regel = voor + order("Mijn", 5, regels) + achter;
        klaar = voor + order("Zomer", 5, regels) + achter;
        if (nieuw)
            kop = klaar = regel = oud;
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

bool ingegrepen(const Datamap& map) {
    return lees_bestand(map.bestand("strace.out")).find("INJECTED") != std::string::npos;
}

bool gemeld(const std::string& scherm) {
    return scherm.find("kan niet worden geschreven") != std::string::npos ||
           scherm.find("Orderjournaal niet beschikbaar") != std::string::npos ||
           scherm.find("niet te openen") != std::string::npos;
}

// What a session with one call disturbed came to. What it tells on the screen is answered with ENTER.
struct Afloop {
    int einde;
    std::string verteld;
};
Afloop speel(Datamap& map, const Sessie& sessie, const std::string& call, const std::string& wat) {
    Afloop uit;
    Terminal t(met_strace(map, call, wat), map.opties());
    t.wacht_op(1, 46, "2016");
    for (size_t i = 0; i < sessie.stappen.size() + 8 && t.leeft(); i++) {
        EXPECT_TRUE(t.kalm()) << t.scherm();
        for (int box = 0; box < 5 && t.leeft() && gemeld(t.scherm()); box++) {
            uit.verteld += t.scherm();
            t.toetsen("<Enter>");
        }
        t.reeks(i < sessie.stappen.size() ? sessie.stappen[i] : "<Esc>");
        if (i >= sessie.stappen.size())
            t.einde(50);
    }
    uit.einde = t.einde(10000);
    return uit;
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
            int einde = speel(map, sessie, CALLS[call], "signal=KILL:when=" + std::to_string(n)).einde;
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

// Full once, and full from then on: told, the journal as it was or new, and what was entered is there at the
// next start.
TEST(Storing, SchijfVolBijElkeSchrijfactie) {
    const Toestand toestand(false);
    for (const char* hoe : {"", "+"}) {
        size_t call = 0;
        for (int n = 1; std::string(CALLS[call]) != "unlink"; n++) {
            SCOPED_TRACE("disk full at " + std::string(CALLS[call]) + " " + std::to_string(n) + hoe);
            Datamap map;
            map.journaal(toestand.oud);
            auto [einde, verteld] =
                speel(map, SESSIES[0], CALLS[call], "error=ENOSPC:when=" + std::to_string(n) + hoe);
            EXPECT_EQ(einde, 0);
            if (!ingegrepen(map)) {
                call++, n = 0;
                if (*hoe && call > 2)
                    break; // full for good: the calls that take room are enough
                continue;
            }
            // A deletion of a scratch file that fails is no loss; whatever stays is the next start's.
            const bool werk = map.bestaat("2016Z/ORD0012.WRK");
            if (!verteld.empty() && werk) {
                EXPECT_EQ(map.journaal(), toestand.oud) << "told that it isn't written";
                EXPECT_TRUE(map.bestaat("2016Z/ORD0012.ACT"));
            }
            if (verteld.empty()) {
                EXPECT_EQ(map.journaal(), toestand.klaar) << "not told";
            }
            auto heel = [&] {
                return toestand.heel(map.journaal()) ||
                       (!verteld.empty() && map.journaal() == toestand.regel);
            };
            EXPECT_TRUE(heel());
            Herstel herstel = volgende_start(map);
            EXPECT_TRUE(heel());
            if (werk) {
                EXPECT_NE(herstel, NIET);
            }
            ASSERT_FALSE(HasFailure()) << verteld;
        }
    }
}
