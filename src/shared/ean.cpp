// Bar codes as texts, see shared/ean.h.
#include "shared/ean.h"
#include "shared/sysrec.h"
#include "shared/teksten.h"
#include "term/vast.h"
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>

namespace zg {
namespace {

constexpr size_t LANG = 13, KORT = 8;
constexpr int32_t NUMMER_MAX = 999'999'999;

bool cijfers(std::string_view tekst) {
    return !tekst.empty() &&
           std::all_of(tekst.begin(), tekst.end(), [](char c) { return c >= '0' && c <= '9'; });
}

// -1 for what isn't digits, or is more than a label's number can be.
int64_t getal(std::string_view tekst) {
    if (!cijfers(tekst) || tekst.size() > LANG)
        return -1;
    return strtoll(std::string(tekst).c_str(), nullptr, 10);
}

// Weighted from the last digit on: times 1, 3, 1, 3 ...
bool som_past(const char* tekst) {
    int som = 0, gewicht = 1;
    for (size_t i = strlen(tekst); i-- > 0; gewicht = 4 - gewicht)
        som += (tekst[i] - '0') * gewicht;
    return som % 10 == 0;
}

// The second digit of a code, which is 0, to the one that makes the sum right: at weight 3 in 13 digits, 1 in 8.
std::string keurcijfer(std::string code) {
    for (char c = '0'; c <= '9'; c++) {
        code[1] = c;
        if (som_past(code.c_str()))
            break;
    }
    return code;
}

std::string_view trim(std::string_view tekst) {
    tekst = VASTTRIM(tekst);
    tekst.remove_prefix(std::min(tekst.find_first_not_of(' '), tekst.size()));
    return tekst;
}

} // namespace

bool ean_geldig(const char* tekst) {
    const size_t n = strlen(tekst);
    if (!cijfers(tekst) || (n != KORT && n != 12 && n != LANG) || !som_past(tekst))
        return false;
    return n != KORT || (tekst[0] != '0' && (instel15.etiketcijfers != 8 || tekst[0] > '2'));
}

bool ean_prefix(const char* tekst) {
    if (!instel15.prefix_aan)
        return false;
    return std::any_of(std::begin(instel15.prefix), std::end(instel15.prefix), [&](const auto& veld) {
        const std::string prefix = VASTTEKST(veld);
        return !prefix.empty() && !strncmp(tekst, prefix.c_str(), prefix.size());
    });
}

bool ean_intern(const char* tekst) {
    return ean_geldig(tekst) && strlen(tekst) == LANG && tekst[0] == '2' && !ean_prefix(tekst);
}

int32_t etiket_hoogste() {
    return instel15.etiketcijfers == 6 ? 999'999 : instel15.etiketcijfers == 8 ? 29'999'999 : 9'999'999;
}

std::string ean_etiket(char letter, int32_t nummer) {
    char code[32];
    snprintf(code, sizeof code, "20%02d%09d", letter ? letter - 'A' + 1 : 0, nummer);
    return keurcijfer(code);
}

std::string ean_etiket_kort(int32_t nummer, int breedte) {
    char code[32];
    snprintf(code, sizeof code, breedte == static_cast<int>(KORT) ? "20%06d" : "20%011d", nummer);
    return keurcijfer(code);
}

int32_t ean_lees_etiket(const char* van) {
    const std::string tekst(trim(van));
    const bool acht = instel15.etiketcijfers == 8;
    const size_t plat = acht ? 9 : 8; // a plain number is shorter
    int64_t nummer = -1;
    if (ean_geldig(tekst.c_str()) && tekst[0] == '2' &&
        (tekst.size() == LANG || (!acht && tekst.size() == KORT)))
        nummer = getal(std::string_view(tekst).substr(2)); // zeros in front of it, or it is too high
    else if (tekst.size() - (tekst[0] == '0') < plat)
        nummer = getal(tekst);
    return nummer <= etiket_hoogste() ? static_cast<int32_t>(nummer) : -1;
}

bool ean_lees_letter(const char* van, char* letter, int32_t* nummer) {
    const std::string tekst(trim(std::string_view(van).substr(0, LANG)));
    char teken = 0;
    int64_t waarde = 0;
    if (ean_intern(tekst.c_str())) {
        const int64_t plaats = getal(std::string_view(tekst).substr(2, 2));
        if (plaats > 'Z' - 'A' + 1)
            return false;
        teken = plaats ? static_cast<char>('A' + plaats - 1) : '\0';
        waarde = getal(std::string_view(tekst).substr(4));
    } else if (ean_geldig(tekst.c_str())) {
        teken = 'E';
    } else {
        std::string_view rest = tekst;
        if (!rest.empty() && (rest[0] < '0' || rest[0] > '9')) {
            const char* gevonden = strchr(TXT(T_EAN_LETTERS), rest[0]);
            const auto plaats = gevonden ? gevonden - TXT(T_EAN_LETTERS) : 4;
            if (plaats >= 4)
                return false;
            teken = T_EAN_LETTERS.standaard[plaats];
            rest.remove_prefix(1);
        }
        waarde = getal(rest);
    }
    if (waarde < 0 || waarde > (teken ? NUMMER_MAX : etiket_hoogste()))
        return false;
    *letter = teken;
    *nummer = static_cast<int32_t>(waarde);
    return true;
}

std::string ean_maat(int32_t nummer) {
    char code[32];
    for (char c = '0'; c <= '9'; c++) {
        snprintf(code, sizeof code, "2013%08d%c", nummer, c);
        if (som_past(code))
            break;
    }
    return code;
}

std::string ean_toon(const char* code, int ruimte) {
    std::string uit = code;
    if (uit.empty() || ean_geldig(code))
        return uit;
    const std::string woorden = std::string(" ") + TXT(T_EAN_ONGELDIG_LANG);
    return static_cast<int>(uit.size() + woorden.size()) <= ruimte ? uit + woorden : uit + "*";
}

} // namespace zg
