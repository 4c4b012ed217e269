// Journals out of orddump's lines: byte for byte back, or refused whole. And what orddump holds an order against when it
// stands in a firm's directory.
#include "control/batchvw.h"
#include "shared/files.h"
#include "shared/sysrec.h"
#include "support/demomap.h"
#include "support/ordbytes.h"
#include "tools/shell.h"
#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <random>
#include <unistd.h>

using namespace zg;
using namespace zg::test;

namespace {

std::mt19937 rnd(20160301);
unsigned tot(unsigned n) {
    return static_cast<unsigned>(rnd() % n);
}
// Bytes that may be anything come out so; the named texts have letters.
template <class R> R willekeurig() {
    uint8_t b[sizeof(R)];
    for (uint8_t& x : b)
        x = static_cast<uint8_t>(tot(3) ? rnd() : 0);
    R r;
    memcpy(static_cast<void*>(&r), b, sizeof r);
    return r;
}
template <size_t n> void letters(char (&t)[n]) {
    memset(t, 0, n);
    for (size_t i = 0, l = tot(n + 1); i < l; i++)
        t[i] = static_cast<char>(tot(4) ? 128 + tot(128) : "\"\\, #ab"[tot(7)]);
}

std::string een_order() {
    ordkop k = willekeurig<ordkop>();
    k.leverancier = 12, k.jaar = 2016, k.seizoen = 'Z';
    k.orderdatum = static_cast<uint16_t>(1 + tot(65000));
    letters(k.omschrijving), letters(k.collectie), letters(k.valuta), letters(k.lev_ordernr);
    std::string uit = record('O', k) + tekst(1, std::string(tot(301), '\x84')) + tekst(2, "30 dagen\n2%");
    for (unsigned m = tot(3); m-- > 0;) {
        ordmodel model = willekeurig<ordmodel>();
        letters(model.model);
        uit += record('M', model) + tekst(3, std::string(tot(70), '~'));
        for (unsigned d = 1 + tot(3); d-- > 0;) {
            orddessin dessin = willekeurig<orddessin>();
            letters(dessin.dessin), letters(dessin.materiaal), letters(dessin.omschrijving),
                letters(dessin.kenmerk);
            dessin.doelgroep = ' ';
            dessin.maten[0] &= 0xFE;
            uit += record('D', dessin) + tekst(4, tot(2) ? "Borduursel" : "");
            for (unsigned s = 1; s <= 95; s++)
                if (dessin.maten[s / 8] >> s % 8 & 1) {
                    ordmaat maat = willekeurig<ordmaat>();
                    maat.maat = static_cast<uint8_t>(s);
                    uit += record('S', maat);
                    if (!tot(5))
                        uit += record(tot(2) ? 'E' : 'B', willekeurig<ordextra>());
                }
            for (uint16_t l = 0; l < tot(4); l++) {
                uit += record(
                    'L', ordlevt{static_cast<uint16_t>(42000 + tot(9)), static_cast<uint16_t>(42010 + l)});
                for (unsigned f = tot(5); f-- > 0;) {
                    ordfil fil = willekeurig<ordfil>();
                    fil.maat = static_cast<uint8_t>(1 + tot(95)),
                    fil.aantal = static_cast<int32_t>(1 + tot(1u << 30));
                    uit += record('F', fil);
                }
            }
        }
    }
    return uit;
}

std::string jrn(const std::string& seizoen = "2016Z", int leverancier = 12) {
    char naam[40];
    snprintf(naam, sizeof naam, "%s/ORD%04d.JRN", seizoen.c_str(), leverancier);
    return naam;
}

void is_terug(const std::string& pad, const std::string& naam) {
    std::filesystem::create_directories(std::filesystem::path(naam).parent_path());
    const Uit u = sh("orddump -j " + pad + " >eerst; ordload -r " + naam + " <eerst && orddump -j " + naam +
                     " | cmp - eerst && cmp " + pad + " " + naam);
    EXPECT_EQ(u.status, 0) << pad << "\n" << u.tekst.substr(0, 500);
}

} // namespace

TEST(Ordload, GivesTheSameJournal) {
    TijdelijkeMap hier;
    int orders = 0;
    for (const char* optie : {"", "--register"}) {
        const DemoMap demo("data/demo", optie);
        for (const auto& e : std::filesystem::recursive_directory_iterator(demo.pad()))
            if (e.path().extension() == ".JRN") {
                is_terug(e.path(), std::filesystem::relative(e.path(), demo.pad()));
                orders++;
            }
    }
    EXPECT_GT(orders, 10);
    for (int i = 0; i < 40; i++) {
        std::string b;
        for (unsigned n = 1 + tot(4); n-- > 0;)
            b += een_order();
        schrijf_bestand("proef.JRN", b);
        is_terug("proef.JRN", jrn());
    }
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
        const Uit u = sh(std::string(g.hoe) + "ordload -i 2016Z/x " + jrn());
        EXPECT_EQ(u.status, g.status) << u.tekst;
        EXPECT_TRUE(u.zegt(g.zegt)) << u.tekst;
        const Uit over = sh("rm -f DTSER.INX STAT01.TXT 2016Z/NEWORD.TXT 2016Z/ORD0012.WRK; cmp -s "
                            "2016Z/ORD0012.JRN 2016Z/x && rm 2016Z/ORD0012.JRN;"
                            " rm 2016Z/x; ls -A 2016Z");
        EXPECT_EQ(over.tekst, "");
    }
    schrijf_bestand("x", o);
    EXPECT_EQ(sh("ordload -c -i x " + jrn() + "; ls 2016Z").tekst.find("JRN\n"), std::string::npos)
        << "only checked";
    for (const char* naam : {"2016Z/ORD0012.WRK", "2016Z/ORD12.JRN", "ORD0012.JRN", "2016Z/ORD0012.TXT"})
        EXPECT_EQ(sh(std::string("ordload -i x ") + naam).status, 2) << naam;
    EXPECT_EQ(sh("ordload -i weg " + jrn()).status, 3);
    EXPECT_EQ(sh("ordload -i x 2017Z/ORD0012.JRN").status, 3) << "no such season";
}

TEST(Ordload, KeepsOutOfTheWay) {
    const DemoMap demo;
    const auto terug = std::filesystem::current_path();
    std::filesystem::current_path(demo.pad());
    EXPECT_EQ(sh("orddump -j 2016Z/ORD0010.JRN >x").status, 0);
    const std::string voor = lees_bestand("2016Z/ORD0010.JRN");
    const auto laad = [](const char* hoe = "") {
        return sh(std::string("ordload ") + hoe + " -r -i x 2016Z/ORD0010.JRN");
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

TEST(Orddump, HoldsADirectoryAgainstItsFirm) {
    const DemoMap demo;
    const Uit goed = sh("orddump -c " + demo.pad());
    EXPECT_EQ(goed.status, 0) << goed.tekst;
    EXPECT_TRUE(goed.zegt("2016Z/ORD0010.JRN: journal, ") && goed.zegt("0 wrong")) << goed.tekst;
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
        const Uit u = sh("orddump -c " + demo.pad());
        EXPECT_EQ(u.status, 1) << g.zegt;
        EXPECT_TRUE(u.zegt(g.zegt)) << u.tekst;
    }
}
