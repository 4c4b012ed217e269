// Purchase seasons as directories of the data directory, and their pick list.
#include "codes/seizoen.h"
#include "codes/teksten.h"
#include "shared/arraylijst.h"
#include "shared/files.h"
#include "term/scherm.h"
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace zg {

std::string seizoen_map(uint16_t jaar, char letter) {
    char naam[8];
    snprintf(naam, sizeof naam, "%04u%c", jaar % 10000u, letter);
    return naam;
}

unsigned seizoen_jaar(unsigned getypt) {
    if (getypt == 0 || getypt > 99)
        return getypt;
    return getypt + (getypt < 51 ? 2000 : 1900);
}

std::vector<Seizoen> seizoen_lijst() {
    std::vector<Seizoen> alle;
    char naam[512] = "*";
    if (DIRECTORY('O', naam, 2)) {
        while (DIRECTORY('N', naam, 2)) {
            const char* p = IOBASENAME(naam);
            if (strlen(p) == 5 && strspn(p, "0123456789") == 4 && strchr(SEIZOENLETTERS, p[4]))
                alle.push_back({static_cast<uint16_t>(atoi(p)), p[4]});
        }
        DIRECTORY('C', naam, 2);
    }
    // Winter begins in the year that its summer ends in, so it comes behind that summer.
    auto orde = [](const Seizoen& s) { return s.jaar * 4 + (s.letter == 'W' ? 2 : s.letter == 'Z' ? 1 : 0); };
    std::sort(alle.begin(), alle.end(),
              [&](const Seizoen& a, const Seizoen& b) { return orde(a) > orde(b); });
    return alle;
}

bool seizoen_kiezen(uint16_t* jaar, char* letter) {
    std::vector<Seizoen> alle = seizoen_lijst();
    ArrayLijst lijst{};
    for (const Seizoen& s : alle) {
        char regel[48], naam[8];
        snprintf(naam, sizeof naam, "%04u", s.jaar % 10000u);
        const char* soort = TXT(s.letter == 'Z' ? T_ZOMER : s.letter == 'W' ? T_WINTER : T_DOORLOPEND);
        snprintf(regel, sizeof regel, "%-4.4s %c  %-12.12s %-16.16s", s.jaar ? naam : "Std", s.letter, soort,
                 s.jaar ? "" : TXT(T_STANDAARDSEIZOEN));
        if (s.jaar == *jaar && s.letter == *letter)
            lijst.begin = static_cast<int>(lijst.regels.size());
        lijst.regels.push_back(regel);
    }
    lijst.titel = TXT(T_KIES_SEIZOEN), lijst.kop = TXT(T_SEIZOEN), lijst.vraag = TXT(T_JAAR),
    lijst.formaat = "4s[0123456789],I";
    lijst.zoek = [&](const char* tekst) {
        const unsigned gezocht = seizoen_jaar(static_cast<unsigned>(atoi(tekst)));
        for (size_t i = 0; i < alle.size(); i++)
            if (alle[i].jaar <= gezocht)
                return static_cast<int>(i);
        return static_cast<int>(alle.size()) - 1;
    };
    int gekozen = arraylijst(lijst);
    if (gekozen < 0)
        return false;
    *jaar = alle[static_cast<size_t>(gekozen)].jaar;
    *letter = alle[static_cast<size_t>(gekozen)].letter;
    return true;
}

} // namespace zg
