#include "term/strings.h"
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <gtest/gtest.h>
#include <string>

namespace zg {
namespace {

TEST(Strings, WissenEnInvoegen) {
    struct {
        const char* in;
        int pos, n;
        const char* uit;
    } const wissen[] = {
        {"abcdef", 0, 2, "cdef"},     {"abcdef", 4, 2, "abcd"},   {"abcdef", 2, 1, "abdef"},
        {"abcdef", 0, 6, ""},         {"abcdef", 5, 2, "abcdef"}, {"abcdef", 6, 1, "abcdef"},
        {"abcdef", -1, 2, "abcdef"},  {"abcdef", 1, 0, "abcdef"}, {"", 0, 1, ""},
        {"abc", 1, INT32_MAX, "abc"},
    };
    for (const auto& g : wissen) {
        char s[16];
        memset(s, '#', sizeof s);
        strcpy(s, g.in);
        WISTEKENS(s, g.pos, g.n);
        EXPECT_STREQ(s, g.uit) << g.in << ' ' << g.pos << ' ' << g.n;
        for (size_t i = strlen(s); i <= strlen(g.in); i++)
            EXPECT_EQ(s[i], 0) << "the tail must be NUL";
        EXPECT_EQ(s[strlen(g.in) + 1], '#');
    }
    struct {
        const char *in, *erin;
        int pos;
        const char* uit;
    } const invoegen[] = {
        {"ad", "bc", 1, "abcd"}, {"", "x", 0, "x"},   {"ab", "c", 2, "abc"},   {"ab", "c", 3, "ab"},
        {"ab", "c", -1, "ab"},   {"ab", "", 1, "ab"}, {"ab", "zz", 0, "zzab"},
    };
    for (const auto& g : invoegen) {
        char s[16] = "";
        strcpy(s, g.in);
        VOEGTEKST(s, g.erin, g.pos);
        EXPECT_STREQ(s, g.uit) << g.in << ' ' << g.pos;
    }
}

TEST(Strings, ZoekenEnTrimmen) {
    EXPECT_EQ(ZOEKTEKEN('c', "abcabc"), 2);
    EXPECT_EQ(ZOEKTEKEN('x', "abc"), -1);
    EXPECT_EQ(ZOEKTEKEN(0, "abc"), -1);
    EXPECT_EQ(ZOEKTEKST("ca", "abcabc"), 2);
    EXPECT_EQ(ZOEKTEKST("cb", "abcabc"), -1);
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
    EXPECT_EQ(VERGELIJK("abc", "abd", 2), 0);
    EXPECT_LT(VERGELIJK("abc", "abd", 3), 0);
    EXPECT_GT(VERGELIJK("\xE9", "z", 1), 0) << "bytes, not signed characters";
}

TEST(Strings, Hextekst) {
    const std::pair<const char*, const char*> gevallen[] = {
        {"\\1B[1m", "\x1B[1m"}, {"a\\41\\42c", "aABc"}, {"\\4", "\\4"},
        {"\\zz", "\\zz"},       {"\\", "\\"},           {"\\5c41", "\\41"},
    };
    for (auto [in, uit] : gevallen) {
        char s[16];
        HEXTEKST(strcpy(s, in));
        EXPECT_STREQ(s, uit) << in;
    }
}

TEST(Strings, Alloceer) {
    void* p = nullptr;
    EXPECT_EQ(ALLOCEER(&p, 10, 100), 100u);
    EXPECT_EQ(static_cast<char*>(p)[99], 0);
    free(p);
#ifndef __SANITIZE_ADDRESS__ // which stops at a size that malloc refuses
    EXPECT_EQ(ALLOCEER(&p, SIZE_MAX / 4, SIZE_MAX / 2), 0u);
    EXPECT_EQ(p, nullptr);
#endif
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
