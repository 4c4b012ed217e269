// Message boxes: FFLASH in the middle of the screen, FOUTBOX for errors, MELDBOX above the status line. None
// of them disturbs a field that its caller is preparing, editing or has just left.
#include "term/prompt.h"
#include "term/teksten.h"
#include "term/veldwacht.h"
#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string_view>
#include <vector>

namespace zg {

namespace {

constexpr size_t FFLASHTEKST = 1024;
constexpr size_t FFLASHREGELS = 20;
constexpr size_t FFLASHBREED = 76;
constexpr size_t FFLASHTITEL = 65;

struct Vrij {
    void operator()(char* p) const { free(p); }
};

std::vector<std::string_view> splits(std::string_view tekst) {
    std::vector<std::string_view> regels;
    for (size_t van = 0;;) {
        size_t tot = tekst.find('\n', van);
        regels.push_back(tekst.substr(van, tot == tekst.npos ? tot : tot - van));
        if (tot == tekst.npos)
            return regels;
        van = tot + 1;
    }
}

int langste(const std::vector<std::string_view>& regels) {
    size_t n = 0;
    for (auto r : regels)
        n = std::max(n, r.size());
    return static_cast<int>(n);
}

void zet(uint32_t attr, int rij, std::string_view regel, int hoogstens) {
    int n = std::min(static_cast<int>(regel.size()), hoogstens);
    if (n > 0)
        SCRPUT(attr, rij, 2, "%.*s", n, regel.data());
}

std::vector<std::string_view> fflash_regels(std::string_view tekst, int optie) {
    auto regels = splits(tekst);
    if (regels.size() > FFLASHREGELS) {
        // A question is worth more than the line that it would otherwise be cut off behind.
        if (optie == -2)
            regels[FFLASHREGELS - 1] = regels.back();
        regels.resize(FFLASHREGELS);
    }
    for (auto& r : regels)
        r = r.substr(0, FFLASHBREED);
    if (regels.size() == 1 && regels[0].empty() && optie != -2)
        regels.clear();
    return regels;
}

int fflash_breedte(const std::vector<std::string_view>& regels, int optie, int titellengte) {
    int w = langste(regels);
    if (optie == -2 && regels.back().size() + 9 <= FFLASHBREED)
        w = std::max(w, static_cast<int>(regels.back().size()) + 9);
    w += 4;
    const int t = titellengte ? (titellengte + 2 + 1) / 2 * 2 : 0; // with its blanks, made even
    if (w <= t)
        w = 14;
    if (optie < 0)
        w = std::max(w, 32);
    return std::max(w, t + 2);
}

} // namespace

int FFLASH(int optie, int plaats, uint32_t attr, const char* titel, const char* fmt, ...) {
    if (optie < -2)
        SCRFATAL("FFLASH invalid option [%d]", optie);
    va_list ap;
    va_start(ap, fmt);
    std::unique_ptr<char, Vrij> tekst(static_cast<char*>(malloc(FFLASHTEKST)));
    if (!tekst) {
        char kort[200];
        vsnprintf(kort, sizeof kort, fmt, ap);
        va_end(ap);
        error("%s", kort);
        return 0;
    }
    vsnprintf(tekst.get(), FFLASHTEKST, fmt, ap);
    va_end(ap);
    std::replace(tekst.get(), tekst.get() + strlen(tekst.get()), '\t', ' ');

    const auto regels = fflash_regels(tekst.get(), optie);
    const int n = static_cast<int>(regels.size());
    const size_t titellengte = titel ? strlen(titel) : 0;
    const bool met_titel = titellengte >= 1 && titellengte <= FFLASHTITEL;
    const int w = fflash_breedte(regels, optie, met_titel ? static_cast<int>(titellengte) : 0);
    const int h = n + (optie == -1 ? 3 : 2);

    VELDWACHT wacht;
    WINOPEN((SCHERM.lines - h) / 2, (SCHERM.cols - w) / 2 + 1, h, w, plaats == 1 ? 2 : plaats == 2 ? 3 : 1);
    if (met_titel)
        WINBOX(" %s ", titel);
    else
        WINBOX(nullptr);
    for (int i = 0; i < (optie == -2 ? n - 1 : n); i++)
        zet(attr, i + 1, regels[static_cast<size_t>(i)], w - 4);
    SCRFLUSH(0);
    int antwoord = 1;
    if (optie == -2)
        antwoord = JNVRAAG(n, 2, "%.*s", static_cast<int>(regels.back().size()), regels.back().data());
    else if (optie == -1)
        ENTERWACHT(n + 1, 2);
    else
        SCRFLUSH(optie);
    WINCLOSE();
    return antwoord;
}

void FOUTBOX(const char* tekst, int seconden) {
    auto regels = splits(tekst);
    const int n = static_cast<int>(regels.size());
    const bool enter = seconden <= 0;
    const int w = std::min(std::max(langste(regels), 25) + 4, static_cast<int>(SCHERM.cols));
    const int h = std::min(n + 4 + enter, static_cast<int>(SCHERM.lines));

    VELDWACHT wacht;
    WINOPEN3(std::max(1, (SCHERM.lines - h) / 2), (SCHERM.cols - w) / 2 + 1, h, w);
    WINBOX("%s", TXT(T_FOUTMELDING));
    const int laatste = h - 2 - enter;
    for (int i = 0; i < n && i + 2 <= laatste; i++)
        zet(A_WAARDE, i + 2, regels[static_cast<size_t>(i)], w - 4);
    if (enter) {
        TOETSLEEG();
        ENTERWACHT(h - 2, 2);
    } else {
        SCRFLUSH(seconden);
        TOETSLEEG();
    }
    WINCLOSE();
}

void MELDBOX(Meldsoort soort, const char* regel1, const char* regel2, const char* regel3) {
    const char* enter = TXT(T_MELD_ENTER);
    std::vector<std::string_view> regels;
    for (const char* r : {regel1, regel2, regel3})
        if (r)
            regels.emplace_back(r);
    const int n = static_cast<int>(regels.size());
    const int w = std::min(std::max(langste(regels), static_cast<int>(strlen(enter))) + 4, 80);

    VELDWACHT wacht;
    WINOPEN(SCHERM.lines - 1 - (n + 3), (80 - w) / 2 + 1, n + 3, w, soort == MELD_INFO ? 1 : 3);
    if (soort == MELD_WAARSCHUWING)
        WINBOX("%s", TXT(T_WAARSCHUWING));
    else
        WINBOX(nullptr);
    for (int i = 0; i < n; i++)
        zet(A_WAARDE, i + 1, regels[static_cast<size_t>(i)], w - 4);
    zet(A_LABEL, n + 1, enter, w - 4);
    if (soort != MELD_INFO)
        PIEP();
    BEZIGWIS();
    WINCURSOR(0);
    TOETS();
    WINCURSOR(1);
    WINCLOSE();
    BEZIGTOON();
}

} // namespace zg
