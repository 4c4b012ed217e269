// Branch fields: one number, and the text of a set of branches.
#include "shared/filveld.h"
#include "shared/arraylijst.h"
#include "shared/iofil.h"
#include "shared/sysrec.h"
#include "shared/teksten.h"
#include "term/ingave.h"
#include "term/prompt.h"
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace zg {
namespace {

constexpr int NAAMBREEDTE = 20;

void toon_naam(int rij, int kolom, uint8_t nummer) {
    int index;
    if (kolom == 0)
        return;
    std::string naam = nummer && iofil_index(nummer, &index) ? iofil_naam(index) : std::string();
    SCRPUT(A_WAARDE, rij, kolom, "%-*.*s", NAAMBREEDTE, NAAMBREEDTE, naam.c_str());
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

int fil_kiezen(uint8_t* nummer) {
    std::vector<uint8_t> nummers;
    ArrayLijst lijst{};
    filiaalrec rec;
    for (int i = 0; i < firma.filialen; i++) {
        iofil('R', i, &rec);
        char regel[48];
        snprintf(regel, sizeof regel, "%3d  %-30.30s", rec.nummer, iofil_naam(i).c_str());
        if (rec.nummer == *nummer)
            lijst.begin = i;
        nummers.push_back(rec.nummer);
        lijst.regels.push_back(regel);
    }
    char kop[48];
    snprintf(kop, sizeof kop, " %s", TXT(T_FILIAALKOP));
    lijst.titel = TXT(T_FILIALEN), lijst.kop = kop, lijst.vraag = TXT(T_FILIAALVRAAG);
    lijst.formaat = "3s[0123456789],I";
    lijst.zoek = [&](const char* tekst) {
        auto vanaf = std::find(nummers.begin(), nummers.end(), strtoul(tekst, nullptr, 10));
        if (vanaf != nummers.end())
            return static_cast<int>(vanaf - nummers.begin());
        error("<%s> %s", tekst, TXT(T_ONBEKEND_FILIAAL));
        return -1;
    };
    int gekozen = arraylijst(lijst);
    if (gekozen < 0)
        return 0;
    *nummer = nummers[static_cast<size_t>(gekozen)];
    return 1;
}

int fil_veld(int rij, int kolom, int naam_kolom, const char* opties, uint8_t* nummer) {
    Instel* bewaard = INSTELNEW(0);
    std::string formaat = std::string("3U,") + opties;
    uint8_t nieuw = *nummer;
    int gewijzigd = 0, index;
    toon_naam(rij, naam_kolom, nieuw);
    for (;;) {
        if (bewaard)
            INSTELSET(bewaard);
        INGAVE(rij, kolom, formaat.c_str(), &SCHERM.toets[key_cancel], &SCHERM.toets[key_f5], &nieuw);
        if (TOETSWEG())
            break;
        if (SCHERM.laatste == K_F5) {
            nieuw = *nummer;
            if (!fil_kiezen(&nieuw))
                continue;
            SCHERM.laatste = K_ENTER;
            SCRPUT(A_WAARDE, rij, kolom, "%-3d", nieuw);
        } else if (nieuw != 0 && !iofil_index(nieuw, &index)) {
            error("<%d> %s", nieuw, TXT(T_ONBEKEND_FILIAAL));
            nieuw = *nummer;
            continue;
        }
        gewijzigd = nieuw != *nummer;
        *nummer = nieuw;
        break;
    }
    toon_naam(rij, naam_kolom, *nummer);
    INSTELDEL(bewaard);
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
                uit[i / 8] |= static_cast<uint8_t>(1 << (i % 8));
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

} // namespace zg
