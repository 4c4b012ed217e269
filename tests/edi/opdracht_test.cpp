// The settings on the screen; zgedi as an operator uses them.
#include "edi/edifys.h"
#include "edi/edihdl.h"
#include "support/proef.h"
#include "tools/shell.h"

namespace zg::test {
namespace {

namespace fs = std::filesystem;

// Nothing is made before the method is chosen, and no key leaves that question; then every item is stored at once, and
// the mailboxes move with their root.
TEST(Edischerm, MadeAndChanged) {
    TijdelijkeMap map;
    Opties o;
    o.rijen = 25;
    Terminal t({ZG_BINARY_DIR "/zgedi", "setup"}, o);
    ASSERT_TRUE(t.wacht("communicatiemethode"));
    t.toetsen("<Esc><Cancel>", "communicatiemethode");
    EXPECT_FALSE(IOEXISTS("DTRCMSYS.TXT"));
    t.toetsen("2", "Tessaro Transfer via internet");
    t.toetsen("<Enter>", "EDI-INSTELLINGEN");
    t.toetsen("Ozend -a 'b c'<Enter>Ppost<Enter>J<Enter>", 7, 21, "post");
    EXPECT_TRUE(fs::is_directory("post"));
    schrijf_bestand("post/bericht", "x");
    t.toetsen("P<Home>de <Enter><Enter>");
    EXPECT_STREQ(ediget("ZEBEDI"), "post");
    t.toetsen("P<Home>bus<Del><Enter>J<Enter>");
    EXPECT_TRUE(t.kalm());
    EXPECT_STREQ(ediget("ZEBEDI"), "bus");
    EXPECT_EQ(lees_bestand("bus/bericht"), "x");
    EXPECT_FALSE(fs::exists("post"));
    t.toetsen("Lloc<Enter>C<Up><Enter>");
    EXPECT_EQ(lees_bestand("loc/LOC_ORD.GBL").substr(0, 12), "bus/admord/ ");
    EXPECT_EQ(edi_methode(), 1);
    EXPECT_STREQ(ediget("EDICMD"), "zend -a 'b c'");
    t.toetsen("<Esc>");
    EXPECT_EQ(t.einde(), 0);
    EXPECT_TRUE(lees_bestand("DTRCMSYS.TXT")[5] == 1);
}

TEST(Zgedi, Commands) {
    TijdelijkeMap map;
    for (const auto& [opdracht, status, zegt] : Rijen<const char*, int, const char*>{
             {"show", 3, "no DTRCMSYS.TXT here: zgedi init makes it"},
             {"flag 1 -s", 1, "no DTRCMSYS.TXT"},
             {"init pigeon", 2, "METHOD"},
             {"init internet", 0, ""},
             {"init modem", 1, "there is a DTRCMSYS.TXT already"},
             {"method", 0, "internet\n"},
             {"boxes", 1, "no mailboxes are set: zgedi make"},
             {"set EDIDIR loc", 0, ""},
             {"make", 0, ""},
             {"set RPCHOST 123456789012345678901", 2, "doesn't fit"},
             {"set EDICMD 'm\xC3\xB8 $(touch x); \"y\"'", 0, ""},
             {"get EDICMD", 0, "m\xC3\xB8 $(touch x); \"y\"\n"},
             {"get OTHER", 2, "no such setting"},
             {"set -2 ZEBEDI twee", 0, ""},
             {"get -2 ZEBEDI", 0, "twee\n"},
             {"flag 40 -s", 0, ""},
             {"flag 40", 0, "1\n"},
             {"show -j", 0, "\"FILENR\":0,\"flags\":[40]"},
             {"boxes", 0, "pricat        0      0  "},
             {"set ZEBEDI 'nieuwe bus'", 0, ""},
             {"boxes -j", 0,
              "{\"box\":\"in\",\"path\":\"nieuwe bus/in\",\"there\":true,\"files\":1,\"saved\":0}"},
             {"set ZEBEDI ''", 2, "--stay"},
             {"set ZEBEDI sch\xC3\xA9", 2, "ASCII"},
             {"set ZEBEDI weg --stay", 0, ""},
             {"boxes", 1, "weg isn't there"},
             {"check number 12,50", 0, "12,5\n"},
             {"check ean 1", 1, "not a ean"},
             {"check brand Nordlys", 3, "no DTMERK here"},
             {"setup </dev/null", 2, "needs a terminal"},
         }) {
        if (std::string(opdracht) == "set ZEBEDI 'nieuwe bus'")
            schrijf_bestand("zebedi/in/een", "1");
        const Uit uit = sh(std::string("zgedi ") + opdracht);
        EXPECT_EQ(uit.status, status) << opdracht << "\n" << uit.tekst;
        EXPECT_TRUE(*zegt ? uit.zegt(zegt) : uit.tekst.empty()) << opdracht << "\n" << uit.tekst;
    }
    EXPECT_EQ(lees_bestand("loc/LOC_INV.GBL").substr(0, 19), "nieuwe bus/invrpt/ ");
    EXPECT_FALSE(fs::exists("x"));
}

} // namespace
} // namespace zg::test
