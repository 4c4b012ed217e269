// Journals out of orddump's lines: byte for byte back, or refused whole. And what orddump holds an order against when it
// stands in a firm's directory.
#include "control/batchvw.h"
#include "shared/sysrec.h"
#include "support/demomap.h"
#include "support/ordbytes.h"
#include "tools/shell.h"
#include <random>

using namespace zg;
using namespace zg::test;

namespace {

// Other bytes wherever a record may have any, and what comes behind prices.
void roer(std::string* bytes, unsigned zaad) {
    const struct {
        char tag;
        size_t van, tot;
        bool tekst;
    } vrij[] = {{'O', 8, 23, true},     {'O', 24, 44, true},    {'O', 46, 47, false}, {'O', 49, 52, true},
                {'O', 52, 55, false},   {'O', 58, 59, false},   {'O', 60, 63, false}, {'O', 64, 66, false},
                {'O', 68, 103, true},   {'O', 104, 120, false}, {'M', 2, 17, true},   {'M', 19, 20, false},
                {'D', 0, 44, true},     {'D', 48, 49, true},    {'D', 50, 52, true},  {'D', 105, 107, false},
                {'D', 108, 127, false}, {'T', 1, 61, true},     {'S', 1, 7, false},   {'S', 8, 11, false},
                {'F', 2, 4, false},     {'F', 5, 7, false}};
    std::mt19937 rnd(zaad);
    std::string uit;
    for (size_t p = 0, n; p < bytes->size(); p += n) {
        n = static_cast<size_t>(ord_lengte((*bytes)[p])) + 1;
        std::string rec = bytes->substr(p, n);
        for (const auto& v : vrij)
            for (size_t i = v.van; v.tag == rec[0] && i < v.tot; i++)
                rec[1 + i] = static_cast<char>(v.tekst ? " \"\\,#\x84\xFE\xE1"[rnd() % 8] : rnd());
        uit += rec;
        if (rec[0] == 'S' && rnd() % 2)
            uit += (rnd() % 2 ? "E" : "B") + rec.substr(0, 13);
    }
    *bytes = uit;
}

const std::string JRN = "2016Z/ORD0012.JRN";

void is_terug(const std::string& pad, const std::string& naam) {
    std::filesystem::create_directories(std::filesystem::path(naam).parent_path());
    const Uit u = sh("orddump -j " + pad + " >eerst; ordload -r " + naam + " <eerst && orddump -j " + naam +
                     " | cmp - eerst && cmp " + pad + " " + naam);
    EXPECT_EQ(u.status, 0) << pad << "\n" << u.tekst.substr(0, 500);
}

} // namespace

TEST(Ordload, GivesTheSameJournal) {
    TijdelijkeMap hier;
    unsigned journalen = 0;
    for (const char* optie : {"", "--register"}) {
        const DemoMap demo("data/demo", optie);
        for (auto [naam, bytes] : demo.inhoud())
            if (naam.ends_with(".JRN")) {
                is_terug(demo.bestand(naam), naam);
                for (int keer = 0; keer < 3; keer++) {
                    roer(&bytes, ++journalen);
                    schrijf_bestand("proef", bytes);
                    is_terug("proef", naam);
                }
            }
    }
    EXPECT_GT(journalen, 30);
}

TEST(Ordload, RefusesWholeAndLeavesNothing) {
    TijdelijkeMap hier;
    std::filesystem::create_directory("2016Z");
    const std::string
        o = R"({"tag":"O","leverancier":12,"jaar":2016,"seizoen":"Z","orderdatum":"2016-02-01"})"
            "\n",
        m = R"({"tag":"M","model":"A"})"
            "\n",
        d = m + R"({"tag":"D"})"
                "\n";
    const struct {
        std::string in;
        const char* zegt;
        int status = 1;
        const char* hoe = "";
    } gevallen[] = {
        {"", "nothing to load"},
        {o + "\n" + m, "line 3: model without a line"},
        {o + d + R"({"tag":"L","eerste":"2016-03-02","laatste":"2016-03-01"})",
         "line 4: a delivery term that ends"},
        {o + R"({"tag":"Q"})", "line 2: no such tag: Q"},
        {o + R"({"tag":"M","dessin":"A"})", "line 2: no such field of M: dessin"},
        {o + R"({"tag":"M","merk":1.5})", "line 2: merk: not a text or a whole number"},
        {o + R"({"tag":"M","merk":1,"merk":2})", "line 2: merk stands in it twice"},
        {o + R"({"tag":"M","merk":1)", "line 2: not a JSON object"},
        {o + R"({"file":"ander","tag":"M"})", "line 2: of another file"},
        {std::string(o).replace(o.find("12"), 2, "13"), "supplier 13 in a file of supplier 12"},
        {o, "exists already", 2, "cp 2016Z/x 2016Z/ORD0012.JRN;"},
        {o, "broken off", 4, "cp 2016Z/x 2016Z/ORD0012.WRK;"},
        {o, "taken up first", 4, "touch 2016Z/NEWORD.TXT;"},
        {o, "taken up first", 4, "touch STAT01.TXT;"},
        {o, "full registration", 2, "touch DTSER.INX;"},
        {o, "File too large", 1, "ulimit -f 0;"},
    };
    for (const auto& g : gevallen) {
        SCOPED_TRACE(g.zegt);
        schrijf_bestand("2016Z/x", g.in);
        hoort(std::string(g.hoe) + "ordload -i 2016Z/x " + JRN, g.status, g.zegt);
        const Uit over = sh("rm -f DTSER.INX STAT01.TXT; cd 2016Z; cmp -s ORD0012.JRN x && rm ORD0012.JRN;"
                            "rm -f x NEWORD.TXT ORD0012.WRK; ls -A; rm -f *");
        EXPECT_EQ(over.tekst, "");
    }
    schrijf_bestand("x", o);
    EXPECT_EQ(sh("ordload -c -i x " + JRN + "; ls 2016Z").tekst.find("JRN\n"), std::string::npos)
        << "only checked";
    for (const char* naam : {"2016Z/ORD0012.WRK", "2016Z/ORD12.JRN", "ORD0012.JRN", "2016Z/ORD0012.TXT"})
        EXPECT_EQ(sh(std::string("ordload -i x ") + naam).status, 2) << naam;
    EXPECT_EQ(sh("ordload -i weg " + JRN).status, 3);
    EXPECT_EQ(sh("ordload -i x 2017Z/ORD0012.JRN").status, 3) << "no such season";
}

TEST(Ordload, KeepsOutOfTheWay) {
    const DemoMap demo;
    const auto terug = std::filesystem::current_path();
    std::filesystem::current_path(demo.pad());
    EXPECT_EQ(sh("orddump -j 2016Z/ORD0010.JRN >x").status, 0);
    const std::string voor = lees_bestand("2016Z/ORD0010.JRN");
    const auto laad = [](const char* hoe = "") {
        return sh(std::string("timeout 60 ordload ") + hoe + " -r -i x 2016Z/ORD0010.JRN");
    };
    const int jrn_fd = open("2016Z/ORD0010.JRN", O_RDWR | O_CLOEXEC),
              sys = open("DTSYS.TXT", O_RDWR | O_CLOEXEC);
    ASSERT_TRUE(IOLOCK('E', jrn_fd, 0, 1));
    Uit u = laad();
    EXPECT_EQ(u.status, 4);
    EXPECT_TRUE(u.zegt("in use by process " + std::to_string(getpid()))) << u.tekst;
    ASSERT_TRUE(IOLOCK('U', jrn_fd, 0, 1));
    ASSERT_TRUE(IOLOCK('E', sys, SYS_BATCHSLOTEN + BATCH_ORDERS * 99, 99));
    u = laad();
    EXPECT_EQ(u.status, 4);
    EXPECT_TRUE(u.zegt("processing is active")) << u.tekst;
    close(sys);
    EXPECT_EQ(voor, lees_bestand("2016Z/ORD0010.JRN"));
    EXPECT_EQ(sh("chmod 640 2016Z/ORD0010.JRN; sed -i 's/Basics zomer/Winters/' x").status, 0);
    u = laad();
    EXPECT_EQ(u.status, 0) << u.tekst;
    EXPECT_TRUE(lees_bestand("2016Z/ORD0010.JRN").find("Winters") != std::string::npos);
    EXPECT_EQ(sh("stat -c %a 2016Z/ORD0010.JRN; ls 2016Z/ORD0010.*").tekst, "640\n2016Z/ORD0010.JRN\n");
    close(jrn_fd);
    std::filesystem::current_path(terug);
}

TEST(Ordload, RefusedOrKilledAnywhereItIsTheOldJournalOrTheNew) {
    TijdelijkeMap hier;
    std::filesystem::create_directory("2016Z");
    const std::string oud = record('O', kop_op(42400)), nieuw = oud + record('O', kop_op(42401));
    schrijf_bestand("proef.JRN", nieuw);
    ASSERT_EQ(sh("orddump -j proef.JRN >x").status, 0);
    for (const char* hoe : {"error=ENOSPC", "signal=KILL"})
        for (const char* aanroep : {"write", "fsync", "rename", "fchmod"})
            for (const char* keer : {"1", "2", "3"}) {
                SCOPED_TRACE(std::string(aanroep) + " " + keer + " " + hoe);
                schrijf_bestand(JRN, oud);
                const Uit u = sh(std::string("strace -qq -o /dev/null -e inject=") + aanroep + ":" + hoe +
                                 ":when=" + keer + " ordload -r -i x " + JRN);
                const std::string nu = lees_bestand(JRN);
                EXPECT_TRUE(nu == nieuw || (nu == oud && u.status != 0)) << u.tekst;
                const bool over = IOEXISTS("2016Z/ORD0012.TMP") != 0;
                EXPECT_TRUE(!over || *hoe == 's') << "left behind";
                EXPECT_EQ(sh("ordload -r -i x " + JRN + " 2>/dev/null; ls 2016Z").tekst, "ORD0012.JRN\n");
            }
}

TEST(Orddump, HoldsADirectoryAgainstItsFirm) {
    const DemoMap demo;
    hoort("orddump -c " + demo.pad(), 0, "2016Z/ORD0010.JRN: journal, ", "0 wrong");
    EXPECT_TRUE(sh("orddump -j " + demo.pad() + "/2016Z | tail -1").zegt("{\"file\":\"")) << "which it is of";
    EXPECT_EQ(sh("mkdir leeg; orddump leeg; s=$?; rmdir leeg; exit $s").status, 3);
    // Supplier 10's first order, and its file.
    const std::string oud = lees_bestand(demo.bestand("2016Z/ORD0010.JRN"));
    const size_t f = oud.find(std::string("F\x00", 2));
    ASSERT_NE(f, std::string::npos);
    const struct {
        size_t plaats;
        std::string bytes;
        const char *zegt, *naam = "ORD0010";
    } gevallen[] = {
        {1, std::string("\xE7\x03", 2), "supplier 999 is not on file", "ORD0999"},
        {3, std::string("\xE7\x03", 2), "agent 999 is not on file"},
        {104, "\x63", "receiving location 99 is no branch"},
        {f + 1, "\x09", "branch index 9"},
    };
    for (const auto& g : gevallen) {
        schrijf_bestand(demo.bestand(std::string("2016Z/") + g.naam + ".JRN"),
                        std::string(oud).replace(g.plaats, g.bytes.size(), g.bytes));
        hoort("orddump -c " + demo.pad(), 1, g.zegt);
    }
}
