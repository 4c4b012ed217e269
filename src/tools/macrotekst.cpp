// Macros as lines of text, and back.
#include "tools/macrotekst.h"
#include "print/printtabel.h"
#include "term/natl.h"
#include "term/scherm.h"
#include "term/vast.h"
#include <algorithm>
#include <charconv>
#include <cstdio>

namespace zg {
namespace {

constexpr struct {
    const char* naam;
    int32_t code;
} NAMEN[] = {
    {"lt", '<'},      {"quot", '"'},     {"Enter", K_ENTER}, {"Esc", K_ESC},     {"Tab", K_TAB},
    {"BTab", K_BTAB}, {"Up", K_UP},      {"Down", K_DOWN},   {"Left", K_LEFT},   {"Right", K_RIGHT},
    {"Home", K_HOME}, {"End", K_END},    {"PgUp", K_PGUP},   {"PgDn", K_PGDN},   {"Ins", K_IC},
    {"Del", K_DC},    {"Back", K_BACK},  {"Help", K_HELP},   {"F1", K_F1},       {"F3", K_F1 + 2},
    {"F4", K_F1 + 3}, {"F5", K_F1 + 4},  {"F6", K_F1 + 5},   {"F7", K_F1 + 6},   {"F8", K_F1 + 7},
    {"F9", K_F1 + 8}, {"F10", K_F1 + 9}, {"F11", K_F1 + 10}, {"F12", K_F1 + 11},
};

bool getal(const std::string& tekst, int laag, int hoog, int* uit) {
    const char* einde = tekst.data() + tekst.size();
    const auto [tot, fout] = std::from_chars(tekst.data(), einde, *uit);
    return fout == std::errc() && tot == einde && *uit >= laag && *uit <= hoog;
}

int code_van(const std::string& naam) {
    for (const auto& n : NAMEN)
        if (naam == n.naam)
            return n.code;
    int code;
    return getal(naam, 1, 511, &code) ? code : 0;
}

std::string toetsen_in(const std::string& utf8, mac_rec* rec) {
    std::string tekst;
    if (!CP850NAAR(utf8, &tekst))
        return "toetsen: a character without a place in code page 850";
    for (size_t i = 0; i < tekst.size(); i++) {
        int code = static_cast<uint8_t>(tekst[i]);
        if (tekst[i] == '<') {
            const size_t dicht = std::min(tekst.find('>', i), tekst.size());
            const std::string naam = tekst.substr(i + 1, dicht - i - 1);
            code = dicht < tekst.size() ? code_van(naam) : 0;
            if (!MACROCODE(code))
                return "toetsen: no key that can be recorded: <" + CP850UTF8(naam) + ">";
            i = dicht;
        }
        if (rec->aantal == MACROTOETSEN)
            return "toetsen: more than " + std::to_string(MACROTOETSEN);
        rec->toetsen[rec->aantal++] = static_cast<uint16_t>(code);
    }
    return "";
}

std::string omschrijving_in(const std::string& utf8, mac_rec* rec) {
    std::string tekst;
    if (!CP850NAAR(utf8, &tekst))
        return "omschrijving: a character without a place in code page 850";
    tekst = prt_bytes(tekst.data(), tekst.size());
    if (tekst.size() >= sizeof rec->omschrijving)
        return "omschrijving: longer than 29 bytes";
    VASTIN(rec->omschrijving, tekst);
    return "";
}

} // namespace

std::string macro_toetsnaam(uint16_t toets) {
    return MACROTOETS(toets) ? CP850UTF8(std::string(1, static_cast<char>(toets)))
                             : "<" + std::to_string(toets) + ">";
}

std::string macro_toetsen(const mac_rec& rec) {
    std::string uit;
    for (int i = 0; i < std::min<int>(rec.aantal, MACROTOETSEN); i++) {
        const uint16_t code = rec.toetsen[i];
        const auto* naam =
            std::find_if(std::begin(NAMEN), std::end(NAMEN), [&](const auto& n) { return n.code == code; });
        if (naam != std::end(NAMEN))
            uit += std::string("<") + naam->naam + ">";
        else if (code >= ' ' && code < 255 && code != 127)
            uit += CP850UTF8(std::string(1, static_cast<char>(code)));
        else
            uit += "<" + std::to_string(code) + ">";
    }
    return uit;
}

std::string macro_regel(const mac_rec& rec) {
    std::string tekst;
    for (const char c : MACROOMSCHRIJVING(rec))
        if (static_cast<uint8_t>(c) < ' ' || c == 127 || c == '"' || c == '\\') {
            char hex[4];
            snprintf(hex, sizeof hex, "\\%02X", static_cast<unsigned>(static_cast<uint8_t>(c)));
            tekst += hex;
        } else
            tekst += c;
    return "macro " + std::to_string(rec.gebruiker) + " " + macro_toetsnaam(rec.toets) + " omschrijving=\"" +
           CP850UTF8(tekst) + "\" toetsen=\"" + macro_toetsen(rec) + "\"";
}

uint16_t macro_gebruiker(const std::string& woord) {
    int nr;
    return getal(woord, 1, UINT16_MAX, &nr) ? static_cast<uint16_t>(nr) : 0;
}

uint16_t macro_toets(const std::string& woord) {
    std::string teken;
    return CP850NAAR(woord, &teken) && teken.size() == 1 ? MACROTOETS(static_cast<uint8_t>(teken[0])) : 0;
}

std::string macro_ontleed(const std::vector<std::string>& woorden, mac_rec* rec) {
    *rec = {};
    constexpr int SLOTS = 99; // nobody else's are ever played
    if (woorden.size() < 3 || woorden[0] != "macro" || !(rec->gebruiker = macro_gebruiker(woorden[1])) ||
        rec->gebruiker > SLOTS || !(rec->toets = macro_toets(woorden[2])))
        return "macro, a user's number from 1 to 99, and a letter or digit come first";
    for (size_t i = 3; i < woorden.size(); i++) {
        const size_t is = woorden[i].find('=');
        const std::string naam = woorden[i].substr(0, is);
        const std::string waarde = is == std::string::npos ? "" : woorden[i].substr(is + 1);
        const std::string fout = naam == "toetsen"        ? toetsen_in(waarde, rec)
                                 : naam == "omschrijving" ? omschrijving_in(waarde, rec)
                                                          : "no such word: " + woorden[i];
        if (!fout.empty())
            return fout;
    }
    return MACROGAAF(*rec) ? "" : "toetsen: 1 to 100 keys that can be recorded";
}

} // namespace zg
