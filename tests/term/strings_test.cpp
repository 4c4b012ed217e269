#include "support/proef.h"
#include "term/strings.h"
#include <cmath>

namespace zg {
namespace {

TEST(Strings, Wissen) {
    for (const auto& [in, pos, n, uit] : test::Rijen<const char*, int, int, const char*>{
             {"abcdef", 0, 2, "cdef"},
             {"abcdef", 4, 2, "abcd"},
             {"abcdef", 0, 6, ""},
             {"abcdef", 5, 2, "abcdef"},
             {"abcdef", 6, 1, "abcdef"},
             {"abcdef", -1, 2, "abcdef"},
             {"abcdef", 1, 0, "abcdef"},
             {"", 0, 1, ""},
             {"abc", 1, INT32_MAX, "abc"},
         }) {
        char s[16];
        memset(s, '#', sizeof s);
        strcpy(s, in);
        WISTEKENS(s, pos, n);
        EXPECT_STREQ(s, uit) << in << ' ' << pos << ' ' << n;
        for (size_t i = strlen(s); i <= strlen(in); i++)
            EXPECT_EQ(s[i], 0) << "the tail must be NUL";
        EXPECT_EQ(s[strlen(in) + 1], '#');
    }
}

TEST(Strings, Trimmen) {
    struct {
        const char *in, *r, *l, *beide;
    } const trim[] = {
        {"  ab  ", "  ab", "ab  ", "ab"}, {"    ", "", "", ""},           {"", "", "", ""},
        {"a b", "a b", "a b", "a b"},     {"\tx ", "\tx", "\tx ", "\tx"},
    };
    for (const auto& g : trim) {
        char s[16];
        RTRIM(strcpy(s, g.in));
        EXPECT_STREQ(s, g.r);
        LTRIM(strcpy(s, g.in));
        EXPECT_STREQ(s, g.l);
        TRIM(strcpy(s, g.in));
        EXPECT_STREQ(s, g.beide);
    }
}

TEST(Strings, Picture) {
    static const struct {
        const char* plaatje;
        double waarde;
        const char* uit;
    } GEVALLEN[] = {{"Z.ZZ9,99", 1234.5, "1.234,50 "}, {"Z.ZZ9,99", -1234.5, "1.234,50-"},
                    {"Z.ZZ9,99", 0.05, "    0,05 "},   {"Z.ZZZ,ZZ", 0, "         "},
                    {"Z.ZZZ,ZZ", 0.05, "     ,05 "},   {"*.**9,99", 12.5, "***12,50 "},
                    {"9999", 12.5, "0012 "},           {"ZZZ9", -7, "   7-"},
                    {"ZZ ZZ9", 12345, "12 345 "},      {"Z.ZZZ.ZZ9", 1234567, "1.234.567 "},
                    {"Z.ZZZ.ZZ9", 4567, "    4.567 "}, {"999", 1234, "*** "},
                    {"9.999", 12345, "***** "},        {"9,99", -1e300, "****-"},
                    {"99", std::nan(""), "** "},       {"", 5, " "}};
    for (const auto& g : GEVALLEN) {
        char uit[32];
        memset(uit, '#', sizeof uit);
        PICTURE(g.plaatje, g.waarde, uit);
        EXPECT_STREQ(uit, g.uit) << g.plaatje << ' ' << g.waarde;
        EXPECT_EQ(uit[strlen(g.plaatje) + 2], '#');
    }
}

} // namespace
} // namespace zg
