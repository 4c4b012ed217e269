#include "support/toetsreeksen.h"
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>
#include <map>

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
    {"F1", "kf1", "\033OP"},
    {"F2", "kf2", "\033OQ"},
    {"F3", "kf3", "\033OR"},
    {"F4", "kf4", "\033OS"},
    {"F5", "kf5", "\033[15~"},
    {"F6", "kf6", "\033[17~"},
    {"F7", "kf7", "\033[18~"},
    {"F8", "kf8", "\033[19~"},
    {"F9", "kf9", "\033[20~"},
    {"F10", "kf10", "\033[21~"},
    {"F11", "kf11", "\033[23~"},
    {"F12", "kf12", "\033[24~"},
    {"Cancel", "kcan", nullptr},
    {"Help", "khlp", nullptr},
    {"Exit", "kext", nullptr},
    {"lt", "", "<"},
};

// A terminfo source string ("\E[5~", "^H", "\177") as bytes.
std::string ontleed(const std::string& s) {
    std::string uit;
    for (size_t i = 0; i < s.size(); i++) {
        if (s[i] == '^' && i + 1 < s.size()) {
            char c = s[++i];
            uit += c == '?' ? '\177' : static_cast<char>(c & 31);
        } else if (s[i] == '\\' && i + 1 < s.size()) {
            char c = s[++i];
            if (isdigit(static_cast<unsigned char>(c))) {
                uit += static_cast<char>(strtol(s.substr(i, 3).c_str(), nullptr, 8));
                i += 2;
            } else {
                uit += c == 'E' || c == 'e' ? '\033'
                       : c == 'n'           ? '\n'
                       : c == 'r'           ? '\r'
                       : c == 't'           ? '\t'
                       : c == 's'           ? ' '
                                            : c;
            }
        } else {
            uit += s[i];
        }
    }
    return uit;
}

const std::map<std::string, std::string>& beschrijving(const std::string& term) {
    static std::map<std::string, std::map<std::string, std::string>> alle;
    auto [it, nieuw] = alle.try_emplace(term);
    if (!nieuw)
        return it->second;
    std::string naam = term;
    naam[0] = static_cast<char>(toupper(static_cast<unsigned char>(naam[0])));
    std::string opdracht = "infocmp -1 -A \"" ZG_BINARY_DIR "/terminfo\" '" + naam + "' 2>/dev/null";
    FILE* p = popen(opdracht.c_str(), "r");
    char regel[512];
    while (p && fgets(regel, sizeof regel, p)) {
        std::string r = regel;
        size_t begin = r.find_first_not_of("\t "), is = r.find('='), eind = r.rfind(',');
        if (begin != std::string::npos && is != std::string::npos && eind != std::string::npos && is < eind)
            it->second[r.substr(begin, is - begin)] = ontleed(r.substr(is + 1, eind - is - 1));
    }
    if (p)
        pclose(p);
    return it->second;
}

} // namespace

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
        bool gevonden = false;
        for (const Naam& n : NAMEN) {
            if (naam != n.naam)
                continue;
            const auto& caps = beschrijving(term);
            auto cap = caps.find(n.cap);
            if (cap != caps.end() || n.anders) {
                uit.push_back(cap != caps.end() ? cap->second : n.anders);
                gevonden = true;
            }
        }
        EXPECT_TRUE(gevonden) << "no such key: <" << naam << ">";
    }
    return uit;
}

} // namespace zg::test
