// zgmacro, as an operator uses it.
#include "support/proef.h"
#include "term/macro/macrobestand.h"
#include "tools/shell.h"

namespace zg::test {
namespace {

struct Zgmacro : InMap {
    Zgmacro() { unsetenv("MACRO"); }
};

constexpr char REGELS[] = "macro 1 1 omschrijving=\"\" toetsen=\"x\"\n"
                          "macro 1 k omschrijving=\"Naar \\22kop\\22 é \\5C#\\01\" "
                          "toetsen=\"2016<Enter><Down><lt>é<quot> #\\<F12><Esc><PgUp><13><400>\"\n"
                          "macro 2 k omschrijving=\"b\" toetsen=\"y\"\n";

TEST_F(Zgmacro, ListLoadRemove) {
    schrijf_bestand("m", std::string("# all\n\n") + REGELS);
    EXPECT_EQ(sh("zgmacro list").tekst, "");
    EXPECT_EQ(sh("zgmacro load m && zgmacro list").tekst, REGELS);
    mac_rec k;
    ASSERT_EQ(MACROZOEK('k', 1, &k), 1);
    const uint16_t codes[] = {'2', '0', '1',  '6', 10, 258, '<', 130, '"',
                              ' ', '#', '\\', 276, 27, 339, 13,  400};
    ASSERT_EQ(k.aantal, std::size(codes));
    EXPECT_EQ(memcmp(k.toetsen, codes, sizeof codes), 0);
    EXPECT_EQ(MACROOMSCHRIJVING(k), "Naar \"kop\" \x82 \\#\x01");
    EXPECT_EQ(sh("zgmacro list > n; mkdir d; zgmacro -D d load ../n; zgmacro -D d list | diff - n").tekst,
              "");
    EXPECT_EQ(sh("zgmacro list 2").tekst, "macro 2 k omschrijving=\"b\" toetsen=\"y\"\n");
    EXPECT_EQ(sh("zgmacro list -j 2").tekst, "{\"user\":2,\"name\":\"\",\"key\":\"k\",\"description\":\"b\","
                                             "\"keys\":\"y\",\"good\":true}\n");
    EXPECT_EQ(sh("zgmacro remove 1 K").tekst, "");
    EXPECT_EQ(sh("zgmacro remove 1 k").status, 1);
    EXPECT_EQ(sh("zgmacro remove 1; zgmacro list 1").tekst, "");
    EXPECT_EQ(sh("ixcheck -q .").status, 0);
}

// A wrong line keeps all of a file out; what can't be played is told, and its bytes reach no terminal.
TEST_F(Zgmacro, Wrong) {
    for (const char* regel :
         {"macro 1", "macro 0 k toetsen=x", "macro 100 k toetsen=x", "macro 1 kk toetsen=x",
          "macro 1 - toetsen=x", "macro 1 k", "macro 1 k toetsen=", "macro 1 k toetsen=<F2>",
          "macro 1 k toetsen=<Cancel>", "macro 1 k toetsen=<361>", "macro 1 k toetsen=<0>",
          "macro 1 k toetsen=<512>", "macro 1 k toetsen=<Enter", "macro 1 k toetsen=\"x",
          "macro 1 k toetsen=\u4e2d", "macro 1 k toetsen=x omschrijving=123456789012345678901234567890",
          "macro 1 k toetsen=x wat=y"}) {
        schrijf_bestand("m", std::string(REGELS) + regel + "\n");
        const auto uit = sh("zgmacro load m");
        EXPECT_EQ(uit.status, 2) << regel << uit.tekst;
        EXPECT_TRUE(uit.zegt("m:4: ")) << uit.tekst;
    }
    EXPECT_EQ(sh("zgmacro list").tekst, "");
    EXPECT_EQ(sh("zgmacro load weg").status, 3);
    EXPECT_EQ(sh("zgmacro remove Joke").status, 2);
    EXPECT_EQ(sh("MACRO=weg zgmacro list").status, 3);
    mac_rec raar{};
    raar.toets = 27, raar.gebruiker = 3, raar.aantal = 60000, raar.toetsen[0] = 600;
    memset(raar.omschrijving, 0x1B, sizeof raar.omschrijving);
    EXPECT_EQ(MACROSCHRIJF(raar), 1);
    const auto uit = sh("zgmacro list");
    EXPECT_EQ(uit.status, 1);
    EXPECT_TRUE(uit.tekst.starts_with("# can't be played: macro 3 <27> ")) << uit.tekst;
    EXPECT_FALSE(bevat(uit.tekst, "\033"));
}

} // namespace
} // namespace zg::test
