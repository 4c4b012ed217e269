// What a tool is handed that nobody meant: bytes that would steer a terminal, pipes where files belong, and names of
// outputs under which something stands already.
#include "support/proef.h"
#include "term/natl.h"
#include "tools/shell.h"
#include <algorithm>
#include <sstream>

using namespace zg;
using namespace zg::test;

namespace {

using Vreemd = InMap;

// The first byte that steers a terminal, or "" for a text that can be shown: lines of UTF-8 without controls.
std::string sturing(const std::string& tekst) {
    const auto* s = reinterpret_cast<const uint8_t*>(tekst.data());
    for (size_t i = 0; i < tekst.size();) {
        char32_t u = 0;
        const int n = UTF8TEKEN(s + i, static_cast<int>(std::min<size_t>(4, tekst.size() - i)), &u);
        if (n < 1 || (u < ' ' && u != '\n') || (u >= 127 && u < 0xA0) || u == 0x202E)
            return "byte " + std::to_string(s[i]) + " at " + std::to_string(i);
        i += static_cast<size_t>(n);
    }
    return "";
}

} // namespace

TEST_F(Vreemd, NothingThatSteersATerminalIsShown) {
    merken(3);
    const std::string titel = "\x1b]\a\x82\x9b", naam = "K\x1b\x9b";
    std::string inx = lees_bestand("DTMERK.INX");
    const size_t sleutel = inx.find("key-1");
    ASSERT_NE(sleutel, std::string::npos);
    inx.replace(26, titel.size(), titel).replace(sleutel, naam.size(), naam);
    schrijf_bestand("DTMERK.INX", inx);
    for (const char* opdracht :
         {"ixstat DTMERK", "ixdump DTMERK", "ixdump -j DTMERK",
          "n=$(printf 'a\\033c\\302\\233\\363\\240\\200\\201\\233'); "
          "for e in INX TXT; do cp DTMERK.$e \"$n\".$e; done; "
          "ixcheck .; ixstat .; ixdump \"$n\"; ixcheck \"$n\"x; "
          "{ printf 'T\\001'; head -c 60 /dev/zero; } >\"$n\"; orddump -j \"$n\" \"$n\"; ixstat -j \"$n\"",
          "printf '#ixdump,1,X,t,4,-1,\"k,I,1,4\"\\n\\033\\302\\233\\342\\200\\256\\233,@0\\n' | ixload weg",
          "printf '{\"\\302\\233\\\\u001b\":1}' | ixload -f DTMERK weg",
          "printf '{\"\\302\\233\":1,\"\\302\\233\":2}' | ixload -f DTMERK weg",
          "mkdir 2016Z; printf '{\"tag\":\"\\302\\233\"}' | ordload 2016Z/ORD0012.JRN",
          "printf '{\"tag\":\"M\",\"\\302\\233\":1}' | ordload 2016Z/ORD0012.JRN",
          "mkdir k; touch k/DTSYS.TXT; { echo '# zgcopy 1 x'; head -c 64 /dev/zero | tr '\\0' 0; "
          "printf '  \\033]\\302\\233\\n# end 1\\n'; } >k/ZGCOPY.LST; zgcopy --check k"}) {
        const Uit u = sh(opdracht);
        EXPECT_EQ(sturing(u.tekst), "") << opdracht << "\n" << u.tekst;
        EXPECT_NE(u.tekst, "") << opdracht;
    }
    // As they are where they can be shown, and back in the file that a dump gives.
    EXPECT_TRUE(sh("ixstat DTMERK").zegt("é"));
    EXPECT_TRUE(sh("ixstat -j a*.INX").zegt("\"a\\u001bc\\u009b\\udb40\\udc01")) << "the same data";
    EXPECT_TRUE(sh("ixcheck fiancé").zegt("fiancé.INX: No such"));
    EXPECT_TRUE(sh("LC_ALL=C ixcheck fiancé").zegt("fianc?.INX: No such"));
    for (const char* vorm : {"", "-j"}) {
        ASSERT_EQ(sh(std::string("ixdump ") + vorm + " DTMERK | ixload -r ANDER").status, 0);
        const std::string weer = lees_bestand("ANDER.INX");
        EXPECT_EQ(weer.substr(26, titel.size()), titel);
        EXPECT_EQ(weer.substr(sleutel, naam.size()), naam);
    }
    // A megabyte of one name is no message; and it is the input that is wrong, not what was to be made.
    const Uit u = sh("head -c 50000 /dev/zero | tr '\\0' x | ixload -f DTMERK -i /dev/stdin weg");
    EXPECT_LT(u.tekst.size(), 200u);
    EXPECT_TRUE(u.zegt("ixload: /dev/stdin: line 1: no such field: xxx")) << u.tekst;
}

TEST_F(Vreemd, APipeInAFilesPlaceIsToldAndHoldsNobodyUp) {
    merken(3);
    for (const auto& [voor, opdracht] : Rijen<const char*, const char*>{
             {"mv DTMERK.TXT x; mkfifo DTMERK.TXT", "ixcheck DTMERK"},
             {"", "ixdump DTMERK"},
             {"", "ixremake DTMERK"},
             {"", "ixremake -d DTMERK"},
             {"", "ixload -r -i x DTMERK"},
             {"rm DTMERK.TXT; mv x DTMERK.TXT; rm DTMERK.INX; mkfifo DTMERK.INX", "ixstat DTMERK"},
             {"mkdir -p f/2016Z; touch f/DTSYS.TXT; mkfifo f/2016Z/ORD0012.JRN", "orddump -c f"},
             {"", "orddump f/2016Z/ORD0012.JRN"},
             {"", "ordprint f/2016Z/ORD0012.JRN"},
             {"", "echo '{}' | ordload f/2016Z/ORD0012.JRN"},
             {"mkfifo f/ZGCOPY.LST", "zgcopy --check f"},
         }) {
        sh(voor);
        const Uit u = sh(std::string("timeout 20 sh -c '") + opdracht + "'");
        EXPECT_TRUE(u.status == 3 || (u.status == 1 && std::string(opdracht).starts_with("ixload")))
            << opdracht << " " << u.status << u.tekst;
        EXPECT_TRUE(std::string(opdracht).starts_with("ixload") || u.zegt("not a plain file"))
            << opdracht << "\n"
            << u.tekst;
    }
}

TEST_F(Vreemd, AnOutputTakesNoOthersPlace) {
    merken(3);
    sh("mkdir -p firma/2016Z los; cp DTMERK.* firma; cp DTMERK.* los; touch firma/DTSYS.TXT "
       "firma/2016Z/ORD0012.JRN firma/lijst.csv; ln -s firma/DTSYS.TXT link; echo oud >oud");
    const auto som = [] { return sh("cksum oud */* */*/* DTMERK.*").tekst; };
    const std::string voor = som();
    for (const char* doel :
         {"oud", "firma/DTMERK.TXT", "-r firma/DTMERK.INX", "-r firma/DTSYS.TXT", "-r link",
          "-r firma/2016Z/ORD0012.JRN", "-r los/DTMERK.TXT", "-r DTMERK.TXT", "-r firma/lijst.csv"}) {
        const std::string d = doel;
        const bool weg = d.starts_with("-r ");
        EXPECT_EQ(
            sh("ixdump " + std::string(weg ? "-r " : "") + "-o " + d.substr(weg ? 3 : 0) + " DTMERK").status,
            2)
            << doel;
        EXPECT_EQ(som(), voor) << doel;
    }
    EXPECT_EQ(sh("ixdump -r -o oud DTMERK && ixdump -o nieuw DTMERK && cmp oud nieuw && "
                 "ixdump -o firma/nieuw DTMERK && ixdump -o /dev/stdout DTMERK | cmp oud && ls -A | wc -l")
                  .tekst,
              "7\n");
}

TEST_F(Vreemd, HelpFitsTheScreenAndWhoIsWrongIsNamed) {
    const Uit alle =
        sh("cd '" ZG_BINARY_DIR "' && for t in ix*; do [ -x $t ] && [ $t != ixtool ] && echo $t; done; "
           "for t in zg* ord*; do [ -f $t ] && [ -x $t ] && [ $t != zgteksten ] && echo $t; done");
    std::istringstream namen(alle.tekst);
    int gezien = 0;
    for (std::string tool; namen >> tool; gezien++) {
        std::istringstream woorden(
            tool.starts_with("zgb") || tool == "zgspoel" ? "" : sh(tool + " --words").tekst);
        std::vector<std::string> opdrachten = {""};
        for (std::string rij; std::getline(woorden, rij);)
            if (const size_t c = rij.find("\tcommand\t"); c != std::string::npos)
                opdrachten.push_back(rij.substr(rij.rfind('\t', c - 1) + 1, c - rij.rfind('\t', c - 1) - 1));
        for (const std::string& opdracht : opdrachten)
            for (const char* taal : {"nl_NL.UTF-8", "en_GB.UTF-8"}) {
                const Uit u = sh(std::string("LC_ALL=") + taal + " " + tool + " " + opdracht + " --help");
                EXPECT_EQ(u.status, 0) << tool << " " << opdracht;
                std::istringstream regels(u.tekst);
                for (std::string regel; std::getline(regels, regel);)
                    EXPECT_LE(std::ranges::count_if(regel, [](char c) { return (c & 0xC0) != 0x80; }), 80)
                        << tool << " " << opdracht << ": " << regel;
            }
    }
    EXPECT_GE(gezien, 20) << alle.tekst;
    for (const char* tool : {"ixcheck", "zgcheck", "zgcopy", "ordprint", "zgdeel", "zgmacro"}) {
        const Uit u = sh(tool);
        EXPECT_TRUE(u.status == 2 && u.tekst.starts_with(std::string(tool) + ": ")) << u.tekst;
    }
}
