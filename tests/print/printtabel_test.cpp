// The tables of the print directory: made, read where nothing can be made, as far as they go.
#include "print/afdruk.h"
#include "store/rebuild.h"

namespace zg::test {
namespace {

// Printers, connections and configurations, as they are read.
std::string beeld() {
    printtabellen t;
    std::string uit = prt_lees(&t) ? "" : "none ";
    for (const auto& p : t.printers)
        uit += std::to_string(p.code) + VASTTEKST(p.naam) + " ";
    for (const auto& v : t.verbindingen)
        uit += std::to_string(v.nummer) + VASTTEKST(v.naam) + VASTTEKST(v.apparaat) + " ";
    for (const auto& c : t.configs)
        uit += std::to_string(c.kolommen) + "x" + std::to_string(c.rijen) + VASTTEKST(c.omschrijving) + " ";
    return uit;
}
const std::string REST = "1SCR 40x9999SCR-40 80x64SCR-80 132x64SCR-132 ";

TEST_F(Printmap, TablesMadeAndRead) {
    EXPECT_EQ(beeld(), "1SCR " + REST);
    for (const char* naam : {"prt/TR_PTRG", "prt/TR_PTRC", "prt/TR_PTRP", "prt/TR_PTRCA"})
        EXPECT_GE(IXCHECK(naam), 0) << naam;
    printer(9, "weg"), printer(7, "HP");
    ICB* icb = prt_open(PRT_PRINTERS, 2);
    EXPECT_EQ(icb->h.keydef[0].dupflag, 'N');
    EXPECT_EQ(std::string(icb->h.keydef[1].keyname, 4), "name");
    uint8_t rec[IXRECMAX] = {9};
    ASSERT_EQ(IXREADL(icb, rec), 1);
    IXDELETE(icb, rec);
    IXCLOSE(icb);
    EXPECT_EQ(beeld(), "1SCR 7HP " + REST);
    // What can't be repaired is read as far as it goes, and nothing of it changes.
    const std::string data = lees_bestand("prt/TR_PTRG.TXT");
    IOUNLINK("prt/TR_PTRG.INX");
    schrijf_bestand("prt/TR_PTRG.TXT", data + "half");
    EXPECT_EQ(beeld(), "1SCR 7HP " + REST);
    EXPECT_EQ(lees_bestand("prt/TR_PTRG.TXT"), data + "half");
    EXPECT_EQ(prt_open(PRT_PRINTERS, 2), nullptr);
    // Free slots alone are a table without a record; a directory in its place is none.
    schrijf_bestand("prt/TR_PTRG.TXT", std::string(data.size(), '\xFF'));
    EXPECT_EQ(beeld(), REST);
    IOUNLINK("prt/TR_PTRG.TXT");
    SYS.mkdir("prt/TR_PTRG.TXT", 0777);
    EXPECT_EQ(beeld(), "none " + REST);
}

TEST_F(Printmap, NoRoomForTables) {
    const auto echt = SYS.write;
    SYS.write = [](int, const void*, size_t) -> ssize_t {
        errno = ENOSPC;
        return -1;
    };
    EXPECT_EQ(beeld(), "none ");
    SYS.write = echt;
    EXPECT_FALSE(IOEXISTS("prt/TR_PTRG.INX"));
    EXPECT_EQ(beeld(), "1SCR " + REST);
}

TEST_F(Printmap, NoSuchDirectory) {
    EXPECT_EQ(XPRT_PAD("x"), "prt/x");
    for (const std::string& m :
         {std::string(), std::string("geen"), std::string(31, '.') + std::string(32, '/')}) {
        const auto [status, uitvoer] = in_proces([&] {
            setenv("ZEBPRT", m.c_str(), 1);
            return XPRT_PAD("x") == "x" && XPRT_PAD("y") == "y" ? 0 : 1;
        });
        EXPECT_EQ(status, 0) << m;
        const size_t eerste = uitvoer.find("De env.var. ZEBPRT");
        EXPECT_NE(eerste, std::string::npos);
        EXPECT_EQ(uitvoer.find("De env.var. ZEBPRT", eerste + 1), std::string::npos) << "told twice";
    }
}

TEST(Printtekst, Escapes) {
    const std::pair<const char*, std::string> rijen[] = {
        {"\\00\\ff", std::string("\0\xFF", 2)},
        {"a\\\\1B", "a\\1B"},
        {"\\1G0", "\\1G0"},
        {"x\\", "x\\"},
        {"\\\\\\41", "\\A"},
    };
    for (const auto& [van, naar] : rijen)
        EXPECT_EQ(prt_bytes(van, strlen(van)), naar) << van;
    EXPECT_EQ(prt_bytes("\\1B", 2), "\\1"); // not past its field
}

} // namespace
} // namespace zg::test
