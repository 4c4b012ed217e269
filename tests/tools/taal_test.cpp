// What zgteksten notices in a translation: the English one with one thing wrong at a time.
#include "support/proef.h"
#include "support/terminal.h"
#include "tools/shell.h"

using namespace zg::test;

namespace {

// The file with `door` for the line of `veld` under `sleutel`.
std::string met(std::string po, const std::string& sleutel, const std::string& veld,
                const std::string& door) {
    const size_t rij = po.find("msgctxt \"" + sleutel + "\"\n"), p = po.find("\n" + veld + " ", rij - 1) + 1;
    EXPECT_NE(rij, po.npos) << sleutel;
    return po.replace(p, po.find('\n', p) - p, door);
}

} // namespace

TEST(Taal, WhatTheCheckNotices) {
    TijdelijkeMap map;
    const std::string goed = lees_bestand(ZG_SOURCE_DIR "/data/taal/en.po");
    schrijf_bestand("en.po", goed);
    ASSERT_EQ(sh("zgteksten --check en.po").tekst, "");
    EXPECT_EQ(sh("zgteksten --po en.po").tekst, goed) << "made anew it is what it was";

    for (const auto& [sleutel, veld, door, zegt] : Rijen<const char*, const char*, const char*, const char*>{
             {"DETAIL 27.105", "msgstr", "msgstr \"Name of collection\"", "18 columns, 11 is the room"},
             {"DETAIL 27.137", "msgstr", "msgstr \"That line of the order can't be\"",
              "31 columns, 23 is the room"},
             {"DETAIL 37.41", "msgstr", "msgstr \"Series %s: amount too large\"", "the directives"},
             {"DETAIL 37.47", "msgstr", "msgstr \"Size type %u, series %s\"", "the directives"},
             {"DETAIL 27.123", "msgstr", "msgstr \"&View\"", "one letter, V"},
             {"DETAIL 27.123", "msgstr", "msgstr \"Add\"", "marks of a letter"},
             {"ZEBCAT 1.75", "msgstr", "msgstr \"Y\"", "one letter, Y"},
             {"DETAIL 23.3", "msgstr", "msgstr \"(J/N)\"", "the answers Y/N"},
             {"DETAIL 24.2", "msgstr", "msgstr \"present rate ->\"", "a blank at an end"},
             {"DETAIL 26.156", "msgstr", "msgstr \"No room left\"", "as many lines"},
             {"DETAIL 26.12", "msgstr", "msgstr \"no     name             town\"", "its columns"},
             {"DETAIL 27.309", "msgstr", "msgstr \"Art: ____ Co: ___\"", "places for numbers"},
             {"DETAIL 34.60", "msgstr", "msgstr \"ACQBMTYSDFZPIULREA\"", "one twice"},
             {"DETAIL 27.62", "msgstr", "msgstr \"ΩRDE\"", "code page 850"},
             {"DETAIL 27.62", "msgstr", "msgstr \"\"", "not translated"},
             {"DETAIL 27.62", "msgid", "msgid \"ORDERS\"", "of an older text"},
             {"DETAIL 27.62", "msgctxt", "#, fuzzy\nmsgctxt \"DETAIL 27.62\"", "fuzzy"},
             {"DETAIL 27.62", "msgctxt", "msgctxt \"DETAIL 27.63\"", "27.63: stands twice"},
             {"DETAIL 27.62", "msgctxt", "msgctxt \"DETAIL 99.62\"", "99.62: is no text"},
             {"DETAIL 27.62", "msgstr", "msgstr \"half", "not understood"},
         }) {
        schrijf_bestand("en.po", met(goed, sleutel, veld, door));
        hoort("zgteksten --check en.po", 1, zegt);
    }
    hoort(": > leeg; zgteksten --check leeg; zgteksten --check .", 1, "leeg: no texts", ".: no texts");
    // What doesn't fit any more isn't shown either: the program's own text stands there.
    schrijf_bestand("en.po", met(goed, "DETAIL 27.62", "msgid", "msgid \"OLD\""));
    EXPECT_TRUE(sh("zgteksten DETAIL en.po").zegt("\n62 \"ORDER\"\n63 \"Supplier\"\n"));
}

// A tool tells in the user's language what a library has to say; a file's bytes are of no language.
TEST(Taal, ToolsAndFiles) {
    TijdelijkeMap map;
    EXPECT_TRUE(sh("zgedi init internet; LC_ALL=en_GB.UTF-8 zgedi set ZEBEDI not/so/deep")
                    .zegt("not/so/deep can't be made: doesn't exist\n"));
    merken(3);
    for (const char* taal : {"C.UTF-8", "en_GB.UTF-8"})
        EXPECT_EQ(
            sh(std::string("rm DTMERK.INX; LC_ALL=") + taal + " ixremake -d DTMERK && cp DTMERK.INX " + taal)
                .status,
            0);
    EXPECT_EQ(sh("cmp -n 504 C.UTF-8 en_GB.UTF-8; cmp -i 508 C.UTF-8 en_GB.UTF-8").tekst, "")
        << "but for the change count";
}
