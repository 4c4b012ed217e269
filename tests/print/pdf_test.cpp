// What leaves in another form: PDFs read back by other programs, and character sets.
#include "print/printjob.h"
#include "support/proef.h"
#include "support/roepstoring.h"
#include "term/natl.h"
#include "tools/shell.h"

namespace zg {
namespace {

using Pdf = test::InMap;

std::string uitvoer(const std::string& opdracht) {
    return test::sh(opdracht).tekst;
}

// Letters, signs and lines: all that code page 850 can print.
std::string alle_tekens() {
    std::string uit;
    for (unsigned c = '!'; c < 255; c++)
        if (c != 127)
            uit += static_cast<char>(c);
    return uit;
}

// Full pages of every shape come back to the letter, each row on its own line, all of it on the paper.
TEST_F(Pdf, RowsAndColumns) {
    const struct {
        int rijen, kolommen;
        bool staand;
        int regels; // printed
        size_t bladen;
        const char* maat;
    } rijen[] = {
        {64, 80, true, 64, 1, "595.276 x 841.89"},
        {64, 132, false, 64, 1, "841.89 x 595.276"},
        {20, 233, false, 41, 3, "841.89 x 595.276"}, // more rows than were said
        {0, 80, true, 100, 2, "595.276 x 841.89"},
    };
    const std::string tekens = alle_tekens() + alle_tekens();
    for (const auto& r : rijen) {
        SCOPED_TRACE(std::to_string(r.rijen) + " x " + std::to_string(r.kolommen));
        std::string tekst, verwacht;
        for (int i = 0; i < r.regels; i++) {
            const std::string regel =
                tekens.substr(static_cast<size_t>(i * 7 % 200), static_cast<size_t>(r.kolommen));
            tekst += regel + "\n";
            verwacht += CP850UTF8(regel) + "\n";
        }
        test::schrijf_bestand("in", tekst + "\f");
        ASSERT_TRUE(prt_pdf("in", "uit.pdf", r.rijen, r.kolommen, r.staand, "M\x9Bller & S\x9Bn"));
        EXPECT_EQ(uitvoer("qpdf --check uit.pdf >/dev/null 2>&1 && echo goed"), "goed\n");
        const std::string feiten = uitvoer("pdfinfo uit.pdf");
        for (const std::string& feit : {std::string("Title:           Møller & Søn\n"), std::string(r.maat),
                                        "Pages:           " + std::to_string(r.bladen) + "\n"})
            EXPECT_TRUE(test::bevat(feiten, feit));
        std::string terug = uitvoer("pdftotext -raw uit.pdf -");
        std::erase(terug, '\f');
        EXPECT_EQ(terug, verwacht);
        // Words off the paper would still be in its text.
        EXPECT_EQ(
            uitvoer(
                "pdftotext -bbox uit.pdf - | awk -F'\"' '/<page/ { w = $2; h = $4 } /<word/ && ($2 < 25 || "
                "$4 < 20 || $6 > w - 25 || $8 > h - 20)'"),
            "");
        IOUNLINK("uit.pdf");
    }
}

TEST_F(Pdf, PagesAndOddFiles) {
    const struct {
        const char* in;
        const char* uit;
        int rijen, kolommen;
    } rijen[] = {
        {"een\n\ftwee\n\f", "een\n\ftwee\n\f", 64, 80},
        {"een\n\f\n\fdrie", "een\n\f\fdrie\n\f", 64, 80}, // an empty page is a page
        {"", "\f", 64, 80},
        {"a\tb\x1B"
         "c\r\nd\n",
         "a b c\nd\n\f", 64, 80},
        {"12345678\n", "1234\n\f", 64, 4},
        {"x\n", "x\n\f", 65535, 65535},
    };
    for (const auto& r : rijen) {
        test::schrijf_bestand("in", r.in);
        ASSERT_TRUE(prt_pdf("in", "uit.pdf", r.rijen, r.kolommen, true, "t\nu")) << r.in;
        EXPECT_EQ(uitvoer("pdftotext -raw uit.pdf -"), r.uit) << r.in;
        EXPECT_EQ(uitvoer("qpdf --check uit.pdf >/dev/null 2>&1 && echo goed"), "goed\n") << r.in;
        IOUNLINK("uit.pdf");
    }
}

// Over a file that stands, and refused at each call in turn: nothing half is left, and the reason is told.
TEST_F(Pdf, Refused) {
    test::schrijf_bestand("in", "x\n");
    test::schrijf_bestand("oud.pdf", "oud");
    EXPECT_FALSE(prt_pdf("in", "oud.pdf", 64, 80, true, ""));
    EXPECT_EQ(errno, EEXIST);
    EXPECT_EQ(test::lees_bestand("oud.pdf"), "oud");
    EXPECT_FALSE(prt_pdf("geen", "uit.pdf", 64, 80, true, ""));
    EXPECT_EQ(errno, ENOENT);
    int n = 0;
    for (int status = ENOSPC; status == ENOSPC && n < 200; n++) {
        status = test::in_proces([&] {
                     test::stoor_roep(n, false);
                     return prt_pdf("in", "uit.pdf", 64, 80, true, "") ? 0 : errno;
                 }).status;
        EXPECT_EQ(IOEXISTS("uit.pdf") != 0, status == 0) << n;
        EXPECT_TRUE(status == 0 || status == ENOSPC) << status;
    }
    EXPECT_GE(n, 4);
}

TEST(Omzet, Sets) {
    for (const auto& [tekens, in, uit] : test::Rijen<const char*, const char*, const char*>{
             {"cp850", "M\x9Bller \xDB", "M\x9Bller \xDB"},
             {"pdf", "\x9B", "\x9B"},
             {"utf-8", "M\x9Bller\x1B\n\xC4\xF0.", "Møller\x1B\n─-."},
             {"latin1", "M\x9Bller \x9F\xD5\xC4\xF0\xDB", "M\xF8ller fi--#"},
             {"ascii", "M\x9Bller \x9F\xD5\xC4\xF0\xDB\f", "Moller fi--#\f"},
         })
        EXPECT_EQ(prt_omzet(in, tekens), uit) << tekens;
    EXPECT_EQ(prt_omzet(std::string("a\0b", 3), "utf-8"), std::string("a\0b", 3));
    for (const char* set : {"latin1", "ascii"}) // one column each
        EXPECT_EQ(prt_omzet(alle_tekens(), set).size(), alle_tekens().size());
    const std::string ascii = prt_omzet(alle_tekens(), "ascii");
    EXPECT_EQ(std::count(ascii.begin(), ascii.end(), '?'), 2); // itself, and the inverted one
}

} // namespace
} // namespace zg
