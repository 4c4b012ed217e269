// Branch fields: one number, and the text of a set of branches.
#include "shared/filveld.h"
#include "shared/iofil.h"
#include "shared/sysrec.h"
#include "shared/teksten.h"
#include "term/ingave.h"
#include "term/scherm.h"
#include "term/vast.h"
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <memory>
#include <vector>

namespace zg {
namespace {

constexpr int NAAMBREEDTE = 20;

std::vector<Lijstblad::Rij> filialen(const Lijsttabel&) {
    std::vector<Lijstblad::Rij> uit;
    filiaalrec rec;
    for (int i = 0; i < firma.filialen; i++) {
        iofil('R', i, &rec);
        char regel[48];
        snprintf(regel, sizeof regel, "%3d  %-30.30s", rec.nummer, VASTTEKST(rec.naam).c_str());
        uit.push_back({{rec.nummer, ""}, regel});
    }
    return uit;
}

bool lees(const Lijsttabel&, const Lijstcode& code, std::string* naam) {
    int index;
    if (!iofil_index(static_cast<uint8_t>(code.nummer), &index))
        return false;
    *naam = iofil_naam(index);
    return true;
}

void onbekend(const Lijsttabel&, const Lijstcode& code) {
    error("<%d> %s", code.nummer, TXT(T_ONBEKEND_FILIAAL));
}

bool kies(const Lijsttabel& tabel, Lijstcode* code) {
    return lijstkies(tabel,
                     {TXT(T_FILIALEN), std::string(" ") + TXT(T_FILIAALKOP), TXT(T_FILIAALVRAAG),
                      "3s[0123456789],I", filialen},
                     code);
}

void toon_naam(int rij, int kolom, uint8_t nummer) {
    if (kolom != 0)
        SCRPUT(A_WAARDE, rij, kolom, "%-*.*s", NAAMBREEDTE, NAAMBREEDTE,
               lijstnaam(FILIAALTABEL, {nummer, ""}).c_str());
}

// One number of a set's text; -1 when there is none.
int getal(const char** p) {
    while (**p == ' ')
        ++*p;
    if (**p < '0' || **p > '9')
        return -1;
    int n = 0;
    for (; **p >= '0' && **p <= '9'; ++*p)
        n = std::min(n * 10 + **p - '0', 1000);
    while (**p == ' ')
        ++*p;
    return n;
}

} // namespace

const Lijsttabel FILIAALTABEL{"3U", 0, lees, onbekend, kies};

int fil_veld(int rij, int kolom, int naam_kolom, const char* opties, uint8_t* nummer) {
    toon_naam(rij, naam_kolom, *nummer);
    const bool gewijzigd = lijstveld(FILIAALTABEL, rij, kolom, opties, nummer) == Lijstuit::anders;
    toon_naam(rij, naam_kolom, *nummer);
    return gewijzigd;
}

Filreeks filreeks_lees(const char* tekst, uint8_t* bits, int* onbekend) {
    uint8_t uit[32] = {};
    uint8_t nummers[FILIALEN] = {};
    for (int i = 0; i < firma.filialen && i < FILIALEN; i++)
        nummers[i] = iofil_nummer(i);
    const char* p = tekst + strspn(tekst, " ");
    while (*p) {
        int van = getal(&p), tot = van;
        bool bereik = *p == '-';
        if (bereik) {
            p++;
            tot = getal(&p);
        }
        if (van < 0 || tot < van)
            return Filreeks::fout;
        bool er = false;
        for (int i = 0; i < firma.filialen && i < FILIALEN; i++)
            if (nummers[i] >= van && nummers[i] <= tot) {
                fil_erbij(uit, i);
                er = true;
            }
        if (!er && !bereik) {
            if (onbekend)
                *onbekend = van;
            return Filreeks::onbekend;
        }
        if (*p == ',')
            p += 1 + strspn(p + 1, " ");
        else if (*p)
            return Filreeks::fout;
        else
            break;
        if (!*p)
            return Filreeks::fout; // a comma with nothing behind it
    }
    memcpy(bits, uit, sizeof uit);
    return Filreeks::goed;
}

std::string filreeks_tekst(const uint8_t* bits) {
    std::vector<int> in;
    for (int i = 0; i < firma.filialen && i < FILIALEN; i++)
        if (fil_in(bits, i))
            in.push_back(iofil_nummer(i));
    std::sort(in.begin(), in.end());
    std::string uit;
    for (size_t i = 0; i < in.size();) {
        size_t j = i;
        while (j + 1 < in.size() && in[j + 1] == in[j] + 1)
            j++;
        uit += (uit.empty() ? "" : ",") + std::to_string(in[i]);
        if (j > i)
            uit += "-" + std::to_string(in[j]);
        i = j + 1;
    }
    return uit;
}

bool filreeks_veld(int rij, int kolom, int breedte, const char* opties, uint8_t* bits) {
    constexpr int LANGST = 250;
    const std::string was = filreeks_tekst(bits);
    const bool te_lang = was.size() > LANGST;
    char tekst[LANGST + 1] = "";
    snprintf(tekst, sizeof tekst, "%s", te_lang ? "" : was.c_str());
    std::unique_ptr<Instel, void (*)(Instel*)> toetsen(INSTELNEW(0), INSTELDEL);
    char formaat[32];
    snprintf(formaat, sizeof formaat, "%d.%dS,%.8s", LANGST, breedte, opties);
    for (;;) {
        if (toetsen)
            INSTELSET(toetsen.get());
        const bool getypt = INGAVE(rij, kolom, formaat, &SCHERM.toets[key_cancel], tekst) != 0;
        if (TOETSWEG() || (te_lang && !getypt))
            return false;
        int nummer = 0;
        switch (filreeks_lees(tekst, bits, &nummer)) {
        case Filreeks::goed:
            return filreeks_tekst(bits) != was;
        case Filreeks::onbekend:
            error("<%d> %s", nummer, TXT(T_ONBEKEND_FILIAAL));
            break;
        case Filreeks::fout:
            error("<%s> %s", tekst, TXT(T_FILREEKS_FOUT));
        }
    }
}

} // namespace zg
