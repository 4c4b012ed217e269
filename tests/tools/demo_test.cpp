// The demo data directory and the stand-in menu.
#include "order/ioord.h"
#include "order/ordcheck.h"
#include "shared/files.h"
#include "shared/iomaat.h"
#include "shared/iotab.h"
#include "shared/stamrec.h"
#include "store/ix.h"
#include "support/demomap.h"
#include "term/vast.h"
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <set>
#include <unistd.h>

namespace zg {
namespace {

namespace fs = std::filesystem;
using test::DemoMap;
using test::Terminal;

template <class R> R slot(const DemoMap& demo, const Systabel& tabel, int nr) {
    std::string bytes = test::lees_bestand(demo.bestand("DTSYS.TXT"));
    R rec{};
    memcpy(static_cast<void*>(&rec), bytes.data() + tabel.start + (nr - 1) * tabel.grootte, sizeof rec);
    return rec;
}

TEST(Demo, HoldsWhatItShould) {
    DemoMap demo;
    fs::current_path(demo.pad());
    for (const auto& e : fs::directory_iterator("."))
        if (e.path().extension() == ".INX") {
            EXPECT_EQ(IXCHECK(e.path().stem().c_str()), 0) << e.path();
        }
    EXPECT_EQ(slot<sysfirma>(demo, SYS_RECORD, 1).filialen, 5);
    EXPECT_EQ(std::string(slot<sysstatus>(demo, SYS_RECORD, 10).release, 5), RELEASE);
    std::set<char> rechten;
    for (int nr = 1; nr <= 3; nr++)
        rechten.insert(slot<gebruikerslot>(demo, SYS_GEBRUIKER, nr).userkind);
    EXPECT_TRUE(rechten.size() == 3 && rechten.contains('I'));

    ICB* icb = IXOPEN("DTLEV", 0);
    uint8_t rec[IXRECMAX + 1] = {}; // from the lowest key on
    int leveranciers = 0, vreemd = 0;
    bool moller = false;
    for (int er = IXFIRST(icb, rec); er; er = IXNEXT(icb, rec)) {
        levrec lev;
        stam_uit(rec, icb->h.reclen, &lev);
        leveranciers += (lev.soort & REL_LEVERANCIER) != 0;
        vreemd += !VASTLEEG(lev.valuta) && !VASTGELIJK(lev.valuta, "EUR");
        moller |= VASTGELIJK(lev.naam, "M\x9Bller & S\x9Bn");
    }
    IXCLOSE(icb);
    EXPECT_TRUE(leveranciers >= 8 && vreemd >= 3 && moller) << leveranciers << " " << vreemd;
    fs::current_path("/");
}

// Every journal is sound by the same check that the operators' tool uses, and all kinds of order are there.
TEST(Demo, JournalsAreSound) {
    DemoMap demo;
    std::set<int64_t> orders;
    std::set<int> aantallen;
    bool verwerkt = false;
    for (const auto& e : fs::recursive_directory_iterator(demo.pad())) {
        if (e.path().extension() != ".JRN")
            continue;
        int fd = open(e.path().c_str(), O_RDONLY | O_CLOEXEC);
        ordtelling telling;
        for (const ordkwaal& k : ord_controle(fd, ORD_JOURNAAL, 5, &telling))
            ADD_FAILURE() << e.path() << " at " << k.pos << ": " << k.wat;
        close(fd);
        orders.insert(telling.orders);
        std::string bytes = test::lees_bestand(e.path());
        int regels = -1;
        for (size_t p = 0; p < bytes.size(); p += 1 + static_cast<size_t>(ord_lengte(bytes[p]))) {
            if (bytes[p] == 'O') {
                aantallen.insert(regels);
                regels = 0;
                verwerkt |= bytes[p + 1 + offsetof(ordkop, status)] != 0;
            }
            regels += bytes[p] == 'D';
        }
        aantallen.insert(regels);
    }
    EXPECT_TRUE(orders.contains(1) && orders.size() > 2);
    for (int n : {1, 14, 15, 60})
        EXPECT_TRUE(aantallen.contains(n)) << n;
    EXPECT_TRUE(verwerkt);
}

TEST(Menu, HandsOverAndTakesBack) {
    DemoMap demo;
    Terminal t({test::programma("zgbsmenu")}, test::demo_opties(demo));
    test::naar_seizoen(t, 2);
    gebruikerslot in = slot<gebruikerslot>(demo, SYS_GEBRUIKER, 2);
    EXPECT_EQ(in.userstate, 1);
    EXPECT_EQ(std::string(VASTUIT(in.userprog)), "zgbestel");
    EXPECT_FALSE(VASTLEEG(in.usertty));
    // A second terminal: Pieter is at work, so he isn't offered.
    Terminal tweede({test::programma("zgbsmenu")}, test::demo_opties(demo));
    ASSERT_TRUE(tweede.wacht("Bezoeker")) << tweede.scherm();
    EXPECT_NE(tweede.scherm().find("Joke"), std::string::npos);
    EXPECT_EQ(tweede.scherm().find("Pieter"), std::string::npos) << tweede.scherm();
    tweede.toetsen("<Esc>");
    EXPECT_EQ(tweede.einde(), 0);
    t.toetsen("<Esc>");
    ASSERT_TRUE(t.wacht("Orders registreren")) << t.scherm();
    EXPECT_EQ(std::string(VASTUIT(slot<gebruikerslot>(demo, SYS_GEBRUIKER, 2).userprog)), "zgbsmenu");
    t.toetsen("<Esc>");
    EXPECT_EQ(t.einde(), 0);
    gebruikerslot uit = slot<gebruikerslot>(demo, SYS_GEBRUIKER, 2);
    EXPECT_EQ(uit.userstate, 0);
    EXPECT_TRUE(VASTLEEG(uit.usertty) && VASTLEEG(uit.userprog));
    EXPECT_EQ(std::string(gebruiker_naam(uit)), "Pieter");
}

TEST(Menu, RefusesAWrongHandOver) {
    DemoMap demo;
    for (auto [naam, nr] : {std::pair{"Pieter", "1"}, {"Joke", "0"}, {"Joke", "50"}, {"Joke", "x"}}) {
        Terminal t({test::programma("zgbsmenu"), "zgbsmenu", naam, nr, "zgbestel"}, test::demo_opties(demo));
        EXPECT_TRUE(t.wacht("PROGRAMMA AFGEBROKEN")) << naam << nr << t.scherm();
        t.toetsen("<Enter>");
        EXPECT_EQ(t.einde(), 1) << naam << nr;
    }
}

} // namespace
} // namespace zg
