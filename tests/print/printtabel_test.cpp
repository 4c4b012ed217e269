// The tables of the print directory: made, repaired, read where nothing can be made.
#include "print/printtabel.h"
#include "shared/files.h"
#include "shared/syscalls.h"
#include "store/rebuild.h"
#include "support/paar.h"
#include "support/proces.h"
#include "support/terminal.h"
#include "term/vast.h"
#include <cerrno>
#include <gtest/gtest.h>

namespace zg {
namespace {

struct Tabellen : testing::Test {
    test::TijdelijkeMap map;
    Tabellen() {
        SYS.mkdir("prt", 0777);
        setenv("ZEBPRT", "prt", 1);
    }
    ~Tabellen() override { unsetenv("ZEBPRT"); }
    // Printers, connections and configurations, as they are read.
    static std::string beeld() {
        printtabellen t;
        std::string uit = prt_lees(&t) ? "" : "none ";
        for (const auto& p : t.printers)
            uit += std::to_string(p.code) + VASTTEKST(p.naam) + " ";
        for (const auto& v : t.verbindingen)
            uit += std::to_string(v.nummer) + VASTTEKST(v.naam) + VASTTEKST(v.apparaat) + " ";
        for (const auto& c : t.configs)
            uit +=
                std::to_string(c.kolommen) + "x" + std::to_string(c.rijen) + VASTTEKST(c.omschrijving) + " ";
        return uit;
    }
};
const char NIEUW[] = "1SCR 1SCR 40x9999SCR-40 80x64SCR-80 132x64SCR-132 ";
const char MEER[] = "1SCR 7HP 1SCR 40x9999SCR-40 80x64SCR-80 132x64SCR-132 ";

void printer(uint16_t code, const char* naam) {
    ICB* icb = prt_open(PRT_PRINTERS, 2);
    prtrec r{};
    r.code = code;
    VASTIN(r.naam, naam);
    test::schrijf(icb, r);
    IXCLOSE(icb);
}

TEST_F(Tabellen, MadeAndRepaired) {
    EXPECT_EQ(beeld(), NIEUW);
    for (const char* naam : {"prt/TR_PTRG", "prt/TR_PTRC", "prt/TR_PTRP", "prt/TR_PTRCA"})
        EXPECT_GE(IXCHECK(naam), 0) << naam;
    printer(9, "weg");
    printer(7, "HP");
    ICB* icb = prt_open(PRT_PRINTERS, 2);
    uint8_t rec[IXRECMAX] = {9};
    ASSERT_EQ(IXREADL(icb, rec), 1);
    IXDELETE(icb, rec);
    EXPECT_EQ(icb->h.keydef[0].dupflag, 'N');
    EXPECT_EQ(std::string(icb->h.keydef[1].keyname, 4), "name");
    IXCLOSE(icb);
    const std::string index = test::lees_bestand("prt/TR_PTRG.INX");
    // Index gone, cut, of garbage: made again over the data. Data gone: the screen again.
    for (const std::string& schade :
         {std::string("-"), std::string(), std::string(1536, 'x'), index.substr(0, 512)}) {
        schade == "-" ? (void)IOUNLINK("prt/TR_PTRG.INX") : test::schrijf_bestand("prt/TR_PTRG.INX", schade);
        EXPECT_EQ(beeld(), MEER);
        EXPECT_GE(IXCHECK("prt/TR_PTRG"), 0);
    }
    for (const char* naam : {"prt/TR_PTRG", "prt/TR_PTRC", "prt/TR_PTRP", "prt/TR_PTRCA"})
        IOUNLINK((std::string(naam) + ".TXT").c_str());
    EXPECT_EQ(beeld(), NIEUW);
}

// What can't be made or repaired is read as far as it goes, and nothing of it changes.
TEST_F(Tabellen, NotToBeMade) {
    ASSERT_EQ(beeld(), NIEUW);
    printer(7, "HP");
    const std::string data = test::lees_bestand("prt/TR_PTRG.TXT");
    IOUNLINK("prt/TR_PTRG.INX");
    test::schrijf_bestand("prt/TR_PTRG.TXT", data + "half");
    EXPECT_EQ(beeld(), MEER);
    EXPECT_EQ(test::lees_bestand("prt/TR_PTRG.TXT"), data + "half");
    EXPECT_EQ(prt_open(PRT_PRINTERS, 2), nullptr);
    test::schrijf_bestand("prt/TR_PTRG.TXT", data);
    static decltype(SYS.write) echt;
    echt = SYS.write;
    SYS.write = [](int, const void*, size_t) -> ssize_t {
        errno = ENOSPC;
        return -1;
    };
    EXPECT_EQ(beeld(), MEER);
    SYS.write = echt;
    EXPECT_FALSE(IOEXISTS("prt/TR_PTRG.INX"));
    IOUNLINK("prt/TR_PTRG.TXT");
    SYS.mkdir("prt/TR_PTRG.TXT", 0777);
    EXPECT_EQ(beeld(), std::string("none ") + (NIEUW + 5));
}

TEST_F(Tabellen, Directory) {
    EXPECT_EQ(XPRT_PAD("x"), "prt/x");
    auto melding = [](const std::string& daar) {
        return test::in_proces([&] {
            setenv("ZEBPRT", daar.c_str(), 1);
            return XPRT_PAD("x") == "x" && XPRT_PAD("y") == "y" ? 0 : 1;
        });
    };
    for (const std::string& m :
         {std::string(), std::string("geen"), std::string(31, '.') + std::string(32, '/')}) {
        const auto [status, uitvoer] = melding(m);
        EXPECT_EQ(status, 0) << m;
        const size_t eerste = uitvoer.find("De env.var. ZEBPRT");
        EXPECT_NE(eerste, std::string::npos);
        EXPECT_EQ(uitvoer.find("De env.var. ZEBPRT", eerste + 1), std::string::npos) << "told twice";
    }
}

TEST_F(Tabellen, ControlTexts) {
    const std::pair<const char*, std::string> rijen[] = {
        {"\\1B@", "\x1B@"},   {"\\00\\ff", std::string("\0\xFF", 2)},
        {"a\\\\1B", "a\\1B"}, {"\\1", "\\1"},
        {"\\1G0", "\\1G0"},   {"x\\", "x\\"},
        {"\\0x1", "\\0x1"},   {"\\\\\\41", "\\A"},
    };
    for (const auto& [van, naar] : rijen)
        EXPECT_EQ(prt_bytes(van, strlen(van)), naar) << van;
    EXPECT_EQ(prt_bytes("\\1B", 2), "\\1"); // not past its field
}

} // namespace
} // namespace zg
