#include "support/toetsreeksen.h"
#include <cctype>
#include <cstdlib>
#include <gtest/gtest.h>
#include <map>

#include <curses.h>
#include <term.h> // last: its names are macros

namespace zg::test {

namespace {

// Key name and terminfo capability; what to send when the description lacks it.
struct Naam {
    const char *naam, *cap, *anders;
};
const Naam NAMEN[] = {
    {"Enter", "", "\r"},
    {"Esc", "", "\033"},
    {"Tab", "", "\t"},
    {"BTab", "kcbt", "\033[Z"},
    {"Up", "kcuu1", "\033OA"},
    {"Down", "kcud1", "\033OB"},
    {"Left", "kcub1", "\033OD"},
    {"Right", "kcuf1", "\033OC"},
    {"Home", "khome", "\033OH"},
    {"End", "kend", "\033OF"},
    {"PgUp", "kpp", "\033[5~"},
    {"PgDn", "knp", "\033[6~"},
    {"Ins", "kich1", "\033[2~"},
    {"Del", "kdch1", "\033[3~"},
    {"Back", "kbs", "\177"},
    {"Cancel", "kcan", nullptr},
    {"Help", "khlp", nullptr},
    {"Exit", "kext", nullptr},
    {"lt", "", "<"},
};

const char* const FTOETSEN[] = {"\033OP",   "\033OQ",   "\033OR",   "\033OS",   "\033[15~", "\033[17~",
                                "\033[18~", "\033[19~", "\033[20~", "\033[21~", "\033[23~", "\033[24~"};

} // namespace

std::string vermogen(const std::string& term, const char* cap) {
    // Never freed: a child that exits would leak what it holds.
    static auto& alle = *new std::map<std::string, TERMINAL*>;
    auto [it, nieuw] = alle.try_emplace(term);
    TERMINAL* voor = cur_term;
    if (nieuw) {
        std::string naam = term;
        naam[0] = static_cast<char>(toupper(static_cast<unsigned char>(naam[0])));
        int fout = 0;
        setenv("TERMINFO", ZG_BINARY_DIR "/terminfo", 1);
        if (setupterm(naam.c_str(), 1, &fout) == OK)
            it->second = cur_term;
        unsetenv("TERMINFO");
    }
    if (!it->second)
        return {};
    set_curterm(it->second);
    const char* s = tigetstr(cap);
    set_curterm(voor);
    return s && s != reinterpret_cast<const char*>(-1) ? s : "";
}

std::vector<std::string> toetsreeksen(const std::string& term, std::string_view reeks) {
    std::vector<std::string> uit;
    for (size_t i = 0; i < reeks.size();) {
        unsigned char c = static_cast<unsigned char>(reeks[i]);
        if (c != '<') {
            size_t n = c < 0x80 ? 1 : c < 0xE0 ? 2 : c < 0xF0 ? 3 : 4;
            uit.emplace_back(reeks.substr(i, n));
            i += n;
            continue;
        }
        size_t dicht = reeks.find('>', i);
        std::string naam(reeks.substr(i + 1, dicht - i - 1));
        i = dicht == std::string_view::npos ? reeks.size() : dicht + 1;
        bool gevonden = naam.size() > 1 && naam[0] == 'F' && isdigit(naam[1]);
        if (gevonden) {
            const std::string bytes = vermogen(term, ("kf" + naam.substr(1)).c_str());
            uit.push_back(bytes.empty() ? FTOETSEN[atoi(&naam[1]) - 1] : bytes);
        }
        for (const Naam& n : NAMEN) {
            if (naam != n.naam)
                continue;
            std::string bytes = vermogen(term, n.cap);
            gevonden = !bytes.empty() || n.anders;
            if (gevonden)
                uit.push_back(bytes.empty() ? n.anders : bytes);
        }
        EXPECT_TRUE(gevonden) << "no such key: <" << naam << ">";
    }
    return uit;
}

} // namespace zg::test
