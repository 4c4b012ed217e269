// The help window of a field: a sentence on its kind, width, characters, keys and range, made of the field's
// own description. No field has a help text of its own.
#include "term/formaat.h"
#include "term/teksten.h"
#include "term/veld.h"
#include <algorithm>
#include <cstdio>
#include <string>
#include <utility>

namespace zg {
namespace {

constexpr int KOLOM = 2, BREED = 70;

void label(const char* tekst) {
    WINATTR(A_LABEL);
    SCRADD("%s", tekst);
}

void waarde(const std::string& tekst) {
    WINATTR(A_WAARDE);
    SCRADD("%s", tekst.c_str());
}

// What each kind of field is called, and the characters it takes when its format names none.
struct Woorden {
    const char* typen;
    const Tekst &soort, &tekens;
};
constexpr Woorden WOORDEN[] = {
    {"B", T_SOORT_BEDRAG, T_HELP_ALLE_CIJFERS},
    {"cCsS", T_SOORT_TEKST, T_HELP_ALLE_TEKENS},
    {"D", T_SOORT_DATUM, T_HELP_ALLE_CIJFERS},
    {"xX", T_SOORT_HEX, T_HELP_HEXTEKENS},
    {"b", T_SOORT_JN, T_HELP_JN},
    {"Udflnu", T_SOORT_GETAL, T_HELP_ALLE_CIJFERS},
};

const Woorden& woorden() {
    const Woorden* w = WOORDEN;
    while (!VELDTYPE(w->typen))
        w++;
    return *w;
}

std::string getal(double x) {
    char s[400];
    if (SCHERM.decimalen > 0)
        snprintf(s, sizeof s, "%-*.*f", SCHERM.decimalen + 1, SCHERM.decimalen, x);
    else
        snprintf(s, sizeof s, "%.0f", x);
    return s;
}

void regel_soort() {
    WINAT(2, KOLOM);
    label(TXT(T_HELP_INGAVE));
    if (SCHERM.type != 'b') {
        label(" ");
        label(TXT(T_HELP_VANEEN));
    }
    waarde(std::string(" ") + TXT(woorden().soort) + " ");
    label(TXT(T_HELP_VERWACHT));
}

void regel_breedte() {
    WINAT(3, KOLOM);
    label(TXT(VELDOPTIE('E') ? T_HELP_MOET : T_HELP_MAG));
    waarde(" " + std::to_string(SCHERM.breedte) + " ");
    label(TXT(T_HELP_POSITIES));
    if (SCHERM.numeriek && SCHERM.decimalen > 0) {
        label((std::string(", ") + TXT(T_HELP_WAARVAN) + " ").c_str());
        waarde(" " + std::to_string(SCHERM.decimalen) + " ");
        label(TXT(T_HELP_CIJFERS_KOMMA));
    } else if (SCHERM.type == 'D') {
        label((std::string("  ") + TXT(T_HELP_DDMMJJ)).c_str());
    }
}

void regel_tekens() {
    WINAT(5, KOLOM);
    if (INGAVESET()) {
        const bool alleen = INGAVESET() == 1;
        std::string tekens;
        for (int c = 32; c <= 254; c++)
            if (TOETSTOE(c) == alleen) {
                tekens += static_cast<char>(c);
                tekens += ' ';
            }
        waarde(tekens);
        if (!alleen) {
            label(TXT(T_HELP_NIET));
            label(" ");
        }
        return label(TXT(T_HELP_TOEGESTAAN));
    }
    waarde(TXT(woorden().tekens));
    label(" ");
    label(TXT(T_HELP_TOEGESTAAN));
}

void regel_toetsen() {
    const std::pair<int32_t, const char*> namen[] = {
        {K_UP, "Cursor Up"}, {K_DOWN, "Cursor Down"}, {K_PGUP, "Page Up"}, {K_PGDN, "Page Down"},
        {K_TAB, "Tab"},      {K_BTAB, "Shift+Tab"},   {K_HELP, "HELP"},    {K_CANCEL, "CANCEL"}};
    std::string lijst, functies;
    for (auto [key, naam] : namen)
        if (TOETSTOE(key))
            lijst += (lijst.empty() ? "" : ", ") + std::string(naam);
    for (int n = 1; n <= 12; n++)
        if (TOETSTOE(K_F1 + n - 1))
            functies += (functies.empty() ? "F" : ", F") + std::to_string(n);
    if (!lijst.empty()) {
        SCRPUT(A_LABEL, 7, KOLOM, "%s", TXT(T_HELP_FUNCTIETOETSEN));
        SCRPUT(A_WAARDE, 8, KOLOM, "%s", lijst.c_str());
    }
    SCRPUT(A_WAARDE, 9, KOLOM, "%s", functies.c_str());
}

// Which field it is, by its label, and what its function keys do.
void regel_veld(const std::string& naam) {
    const std::pair<int32_t, const Tekst*> gewoon[] = {
        {K_F5, &T_HELP_F_LIJST}, {K_F6, &T_TOEVOEGEN_AFBREKEN}, {K_F10, nullptr}};
    std::string toetsen;
    for (auto [key, wat] : gewoon) {
        const int n = key - K_F1;
        if (INSTEL.uitleg[n])
            wat = INSTEL.uitleg[n];
        if (TOETSTOE(key) && wat)
            toetsen += (toetsen.empty() ? "F" : ", F") + std::to_string(n + 1) + " " + TXT(*wat);
    }
    WINAT(11, KOLOM);
    const size_t over = toetsen.size() + 2; // the name of a question may be long
    waarde(naam.substr(0, BREED - 4 - std::min<size_t>(over, BREED - 4)));
    if (!naam.empty() && !toetsen.empty())
        label(": ");
    label(toetsen.c_str());
}

void regel_bereik() {
    if (!SCHERM.numeriek)
        return;
    WINAT(10, KOLOM);
    label((std::string(TXT(T_HELP_BEREIK)) + " : ").c_str());
    waarde(getal(INSTEL.minimum));
    label((std::string(" ") + TXT(T_TM) + " ").c_str());
    waarde(getal(INSTEL.maximum));
}

} // namespace

void INGAVEHELP() {
    const std::string naam = VELDNAAM();
    WINOPEN(9, 5, 14, BREED, 4);
    WINBOX(" %s ", TXT(T_HELP_TITEL));
    regel_soort();
    regel_breedte();
    regel_tekens();
    regel_toetsen();
    regel_bereik();
    regel_veld(naam);
    const int n = SCRPUT(A_LABEL, 12, KOLOM, "%s _", TXT(T_ENTER_VERVOLG));
    for (;;) {
        WINAT(12, KOLOM + n - 1);
        const int32_t key = TOETS();
        if (key == K_ENTER || key == K_ESC || key == K_CANCEL)
            break;
        error("%s", TXT(T_ONGELDIGE_INGAVE));
    }
    error("%s", "");
    WINCLOSE();
}

} // namespace zg
