// The choice row: labels with their letters, a field of one character, and the same choices as a pop-up menu
// when the row is too short for the labels.
#include "term/keuze.h"
#include "term/dm_hdl.h"
#include "term/ingave.h"
#include "term/natl.h"
#include "term/teksten.h"
#include <cstring>
#include <memory>
#include <string>

namespace zg {

namespace {

constexpr int KEUZES = 32;
constexpr int OPNIEUW = -2, VERDER = -3;

struct Rijstand {
    uint32_t masker = 0;
    int vast = -1, leeg = -1;
    Keuzetekst tekst = nullptr, kort = nullptr;
    uint16_t* doel = nullptr;
    int minimum = 0, maximum = -1, getalkeuze = -1;
} rs;

bool aan(int n) {
    return n >= 0 && n < KEUZES && (rs.masker >> n & 1u);
}

const char* label(int n) {
    return aan(n) && rs.tekst ? rs.tekst(n) : nullptr;
}

char letter(int n) {
    const char* t = label(n);
    const char* p = t ? strchr(t, '&') : nullptr;
    return p ? static_cast<char>(NGROOT(static_cast<uint8_t>(p[1]))) : '\0';
}

int keuze_van(char teken) {
    for (int n = 0; n < KEUZES; n++)
        if (letter(n) && letter(n) == teken)
            return n;
    return -1;
}

bool met_getal() {
    return rs.doel && rs.minimum <= rs.maximum;
}

// The number that is being typed: two digits at most, the row has two columns for them.
struct Getal {
    int tot_nu = 0, plaats = 0;

    // The choice that the number stands for, VERDER for one more digit, OPNIEUW (told) when it can't be one. A
    // zero in front starts over.
    int cijfer(int c) {
        tot_nu = tot_nu * 10 + c;
        if (tot_nu >= rs.minimum && tot_nu <= rs.maximum) {
            *rs.doel = static_cast<uint16_t>(tot_nu);
            return rs.getalkeuze;
        }
        if (plaats == 0 && tot_nu > 0 && tot_nu * 10 + 9 >= rs.minimum && tot_nu * 10 <= rs.maximum)
            return plaats = 1, VERDER;
        if (tot_nu > 0)
            error("<%d> %s", tot_nu, TXT(T_ONGELDIGE_KEUZE));
        return OPNIEUW;
    }
};

struct Rijtekst {
    std::string letters, lang, kort, kortst; // the letters alone; the labels; the shorter ones; "&A, &B"
};

void hang_aan(std::string& rij, const std::string& wat) {
    rij += (rij.empty() ? "" : ", ") + wat;
}

Rijtekst rijtekst() {
    Rijtekst t;
    for (int n = 0; n < KEUZES; n++) {
        const char* l = label(n);
        if (!l)
            continue;
        const char* k = rs.kort ? rs.kort(n) : nullptr;
        hang_aan(t.lang, l);
        hang_aan(t.kort, k ? k : l);
        if (char c = letter(n)) {
            t.letters += c;
            hang_aan(t.kortst, std::string{'&', c});
        }
    }
    return t;
}

// The choices as a menu: a choice, or OPNIEUW for back to the row.
int menu(int rij) {
    int schermrij, schermkolom;
    WINNAARSCHERM(rij, 1, &schermrij, &schermkolom);
    DMREC* m = DMNEW(TXT(T_UW_KEUZE));
    for (int n = 0; n < KEUZES; n++)
        if (label(n))
            DMITEM(m, label(n), n, 1);
    int keus = DMRUN(m, schermrij, rs.vast);
    bool weg = TOETSWEG() || SCHERM.laatste == K_F6;
    return weg ? OPNIEUW : keus;
}

} // namespace

void KEUZESTART(Keuzetekst tekst) {
    rs = Rijstand{};
    rs.tekst = tekst;
}

void KEUZEKORT(Keuzetekst tekst) {
    rs.kort = tekst;
}

void KEUZEGETAL(int keuze, uint16_t* doel, int minimum, int maximum) {
    rs.getalkeuze = keuze;
    rs.doel = doel;
    rs.minimum = minimum;
    rs.maximum = maximum;
}

void KEUZEAAN(int n) {
    if (n >= 0 && n < KEUZES)
        rs.masker |= 1u << n;
}

void KEUZEUIT(int n) {
    if (n >= 0 && n < KEUZES)
        rs.masker &= ~(1u << n);
}

void KEUZEVAST(int n) {
    rs.vast = n;
}

void KEUZELEEG(int n) {
    rs.leeg = n;
}

bool KEUZEENIG(int n) {
    return n >= 0 && n < KEUZES && rs.masker == 1u << n;
}

int KEUZE(int rij, int kolom) {
    const Rijtekst t = rijtekst();
    SCRCLREOL(rij, kolom);
    SCRPUT(A_LABEL, rij, kolom, "%s", TXT(T_UW_KEUZE));
    const int veld = kolom + static_cast<int>(strlen(TXT(T_UW_KEUZE))) + 1;
    auto past = [&](const std::string& labels) {
        return veld + 1 + static_cast<int>(labels.size() - t.letters.size()) < WINBREEDTE();
    };
    if (t.letters.empty() && !met_getal()) // a window to look at
        WINVOET(TXT(T_VOET_ESC));
    const bool lang = past(t.lang);
    if (!lang)
        TOETSAAN(K_HELP);
    AMPTEKST(rij, veld + 3, (lang ? t.lang : rs.kort && past(t.kort) ? t.kort : t.kortst).c_str());

    const std::string formaat = "1c[" + t.letters + (met_getal() ? "0123456789" : "") + "],UA";
    std::unique_ptr<Instel, void (*)(Instel*)> toetsen(INSTELNEW(0), INSTELDEL);
    int antwoord = OPNIEUW;
    for (Getal getal; antwoord == OPNIEUW;) {
        if (toetsen)
            INSTELSET(toetsen.get());
        char teken = getal.plaats == 0 ? letter(rs.vast) : '\0';
        INGAVE(rij, veld + getal.plaats, formaat.c_str(), &teken);
        const int32_t key = SCHERM.laatste;
        if (key == K_HELP || key == K_F1)
            antwoord = menu(rij);
        else if (key != K_ENTER)
            antwoord = -1;
        else if (teken >= '0' && teken <= '9' && met_getal())
            antwoord = getal.cijfer(teken - '0');
        else if (teken != '\0' && teken != ' ')
            antwoord = keuze_van(teken);
        else if (getal.plaats == 0 && rs.leeg >= 0)
            antwoord = rs.leeg;
        if (antwoord == VERDER) {
            antwoord = OPNIEUW; // the next column
        } else if (antwoord == OPNIEUW) {
            getal = {};
            SCRPUT(A_LABEL, rij, veld, "  ");
        }
    }
    return antwoord;
}

void AMPTEKST(int rij, int kolom, const char* tekst) {
    for (const char* p = tekst; *p;) {
        if (*p != '&' || !p[1]) {
            size_t n = strcspn(p + 1, "&") + 1;
            SCRPUT(A_LABEL, rij, kolom, "%.*s", static_cast<int>(n), p);
            kolom += static_cast<int>(n);
            p += n;
            continue;
        }
        bool alleen = (p == tekst || p[-1] == ' ') && (p[2] == ',' || p[2] == '\0');
        SCRPUT(alleen ? A_WAARDE : A_SNELLETTER, rij, kolom++, "%c", p[1]);
        p += 2;
    }
}

} // namespace zg
