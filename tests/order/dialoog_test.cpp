// The text dialog: how a text falls over its rows, where the cursor stands, and its keys in a real terminal.
#include "order/dialog.h"
#include "term/gesprek.h"

using namespace zg;
using namespace zg::test;

namespace {

// Rows of five characters, four of them; "|" stands for a hard line end, "~" for a soft break.
constexpr int RIJEN = 4, BREEDTE = 5;

std::string leesbaar(std::string s) {
    for (char& c : s)
        c = c == 10 ? '|' : c == 13 ? '~' : c;
    return s;
}
std::string echt(std::string s) {
    for (char& c : s)
        c = c == '|' ? 10 : c == '~' ? 13 : c;
    return s;
}

struct Indeling {
    char tekst[RIJEN * (BREEDTE + 1) + 8] = {};
    int begin[RIJEN + 1];
    explicit Indeling(const char* van) {
        strcpy(tekst, echt(van).c_str());
        tekst_indeling(tekst, RIJEN, BREEDTE, begin);
    }
};

struct Tikken {
    const char *wat, *begin, *toetsen, *na;
    int bellen = 0;
};

const Tikken TIKKEN[] = {
    {"typed over a full row", "", "abcdefg<Esc>", "abcdefg"},
    {"inserts", "abc", "<Ins>XY<Esc>", "XYabc"},
    {"ENTER always inserts", "abc", "<Right><Enter><Esc>", "a|bc"},
    {"backspace joins lines", "ab|cd", "<Down><Home><Back><Esc>", "abcd"},
    {"backspace at a soft break first steps onto it", "abcdefg", "<Down><Home><Back><Back>X<Esc>", "abcdXg"},
    {"delete a line end", "ab|cd", "<End><Del><Esc>", "abcd"},
    {"end, then left over the row's start", "ab|cd", "<Down><Home><Left>X<Esc>", "abX|cd"},
    {"a short row becomes the wanted column", "abcd|e|fghi", "<Right><Right><Right><Down><Down>X<Esc>",
     "abcd|e|fXhi"},
    {"nothing above the first or below the last", "ab|cd", "<Up><Down><Down><Down>X<Esc>", "ab|Xd"},
    {"full text takes no more", "abcdefghijklmnopqrst", "<End><Down><End><Down><End><Down><End>Z<Ins>Z<Esc>",
     "abcdefghijklmnopqrst", 2},
    {"insert in a full text is refused too", "abcdefghijklmnopqrst", "<Ins>Z<Esc>", "abcdefghijklmnopqrst",
     1},
    {"insert pushes lines off the end", "a|b|c|d", "<Ins><Enter><Esc>", "|a|b|c|"},
    {"a key that means nothing", "ab", "<F9>X<Esc>", "Xb", 1},
    {"accented letters are one byte", "", "\xC3\xA9t\xC3\xA9<F3>", "été"},
};

} // namespace

TEST(Dialoog, IndelingVanDeRijen) {
    for (const auto& [tekst, verdeeld, begin] : Rijen<const char*, const char*, std::vector<int>>{
             {"", "", {0, 0, 0, 0, 0}},
             {"abcde", "abcde", {0, 5, 5, 5, 5}},     // a full row that ends the text has no break
             {"abcdef", "abcde~f", {0, 6, 7, 7, 7}},  // at the column, not between words
             {"abcde|f", "abcde|f", {0, 6, 7, 7, 7}}, // the line end still belongs to the full row
             {"a|b||c", "a|b||c", {0, 2, 4, 5, 6}},
             {"a~b~c", "abc", {0, 3, 3, 3, 3}}, // breaks of an earlier division go
             {"abcdefghijklmnopqrst", "abcde~fghij~klmno~pqrst", {0, 6, 12, 18, 23}},
             {"a|b|c|d|e", "a|b|c|d|e", {0, 2, 4, 6, 8}}, // behind the last row: not on the screen

         }) {
        const Indeling i(tekst);
        EXPECT_EQ(leesbaar(i.tekst), verdeeld);
        EXPECT_EQ(std::vector<int>(i.begin, std::end(i.begin)), begin) << tekst;
    }
}

TEST(Dialoog, RijVanDeCursor) {
    struct {
        const char* tekst;
        int cursor, rij;
    } const gevallen[] = {
        {"", 0, 0},       {"abc", 3, 0},      {"abcde", 5, 0}, // end of a full row: stays on it
        {"abcdef", 5, 0}, {"abcdef", 6, 1},   {"abcdef", 7, 1}, {"abc|", 4, 1}, // below a line end
        {"abc|", 3, 0},   {"a|b|c|d|", 8, 3},                                   // no row below the last
    };
    for (const auto& g : gevallen) {
        const Indeling i(g.tekst);
        EXPECT_EQ(tekst_rij(i.tekst, RIJEN, i.begin, g.cursor), g.rij) << g.tekst << " at " << g.cursor;
    }
}

TEST(Dialoog, Toetsen) {
    for (const Tikken& g : TIKKEN) {
        SCOPED_TRACE(g.wat);
        Gesprek t([&] {
            char tekst[RIJEN * (BREEDTE + 1) + 1] = {};
            strcpy(tekst, echt(g.begin).c_str());
            tekst_dialoog(3, 5, RIJEN, BREEDTE, tekst);
            for (const char* p = tekst + strlen(tekst); p < std::end(tekst); p++)
                EXPECT_EQ(*p, 0) << "behind the text";
            return testing::Test::HasFailure() ? "zeros behind the text" : leesbaar(tekst);
        });
        EXPECT_EQ(t.antwoord(g.toetsen), g.na);
        EXPECT_EQ(t.bellen(), g.bellen);
    }
}
