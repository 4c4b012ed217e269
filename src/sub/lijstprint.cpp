// vv_lijst and reeks_lijst: what stands on file, size type by size type.
#include "sub/lijstprint.h"
#include "print/xprt.h"
#include "shared/iofil.h"
#include "shared/maatbalk.h"
#include "sub/maatsoort.h"
#include "sub/reeksdelen.h"
#include "sub/teksten.h"
#include "sub/vvdeel.h"
#include "term/keuze.h"
#include "term/prompt.h"
#include "term/vast.h"
#include <cstdio>
#include <string>

namespace zg {
namespace {

constexpr int BLOK = 30; // sizes beside each other: 5 + 7 + 30 x 4 columns
constexpr int SOORTEN = 99;
constexpr int VOORTGANGRIJ = 20, VOORTGANGBREEDTE = 20;

// Another bar for as long as it lives, then the one that was in force.
struct Balkterug {
    uint8_t stelsel = maatbalk ? maatbalk->stelsel : uint8_t{0},
            soort = maatbalk ? maatbalk->soort : uint8_t{0};
    uint8_t maten[MAATBYTES];
    Balkterug() { balk_maten(maten); }
    ~Balkterug() { balk_open(stelsel, soort, maten); }
    Balkterug(const Balkterug&) = delete;
    Balkterug& operator=(const Balkterug&) = delete;
    // All sizes of a type, in the size system that was in force where the type has sizes in it.
    bool open(uint8_t ander) const {
        const uint8_t standaard = mtstelsel(0);
        balk_open(stelsel && maatsoort_gevuld(stelsel, ander) ? stelsel : standaard, ander, nullptr);
        return balk_kolommen() > 0;
    }
};

// A report of one type or all: doe(type) for each that has sizes, until the user wants out.
template <class F> void verslag(const Tekst& titel, uint8_t maatsoort, F doe) {
    const auto masker = static_cast<uint16_t>(PRT_132 | (XPRT_MASKER() & (PRT_LANG | PRT_KORT)));
    if (!XPRT_OPEN(XPRT_WENS(), masker, nullptr, TXT(titel)))
        return;
    if (SCHERM.bestaat)
        WINOPEN1(VOORTGANGRIJ, 1, 1, VOORTGANGBREEDTE);
    {
        const Balkterug balk;
        const int eerste = maatsoort ? maatsoort : 1, laatste = maatsoort ? maatsoort : SOORTEN;
        for (int soort = eerste; soort <= laatste && !XPRT_STOP(); soort++) {
            if (SCHERM.bestaat)
                SCRPUT(A_WAARDE, 1, 1, "%s %lu ", TXT(T_VV_MAATSOORT_G), static_cast<unsigned long>(soort));
            if (balk.open(static_cast<uint8_t>(soort)))
                doe(static_cast<uint8_t>(soort));
        }
    }
    if (SCHERM.bestaat)
        WINCLOSE();
    XPRT_CLOSE();
}

// Quantities in block `van`; nothing for 0.
template <class C> void cellen(int van, C cel) {
    for (int kol = van; kol < van + BLOK && kol <= balk_kolommen(); kol++) {
        const int32_t n = cel(balk_maat(kol));
        if (n)
            XPRT_PRINT("%4ld", long{n});
        else
            XPRT_PRINT("%4s", "");
    }
    XPRT_PRINT("\n");
}

void kolomkop(const char* voor, int van) {
    XPRT_PRINT(" %3s  %4s  ", voor, TXT(T_TOT));
    for (int kol = van; kol < van + BLOK && kol <= balk_kolommen(); kol++)
        XPRT_PRINT(" %3.3s", std::string(VASTTRIM(balk_naam(kol))).c_str());
    XPRT_PRINT("\n");
}

long naamnummer(uint8_t soort, std::string* naam) {
    *naam = lijstnaam(MAATSOORTTABEL, {soort, ""});
    return soort;
}

void vv_kop(uint8_t soort, uint16_t nummer) {
    char verdeling[40];
    std::string naam;
    const long nr = naamnummer(soort, &naam);
    snprintf(verdeling, sizeof verdeling, "%s %-2hu", TXT(T_VV_VERDELINGNR), nummer);
    XPRT_KOP(TXT(T_VV_LIJST), "%s  %s: %-2ld %-20.20s", verdeling, TXT(T_VV_MAATSOORT_G), nr, naam.c_str());
}

// One distribution on pages of its own.
void vv_blad(uint8_t soort, uint16_t nummer) {
    aantalmatrix tabel;
    vv_laden(soort, nummer, &tabel, nullptr);
    if (fm_leeg(tabel))
        return;
    vv_kop(soort, nummer);
    for (int van = 1; van <= balk_kolommen(); van += BLOK) {
        auto ruimte = [&](int regels, bool kop) {
            const bool vol = XPRT_VOL(regels);
            if (vol)
                vv_kop(soort, nummer);
            if (vol || kop)
                kolomkop(TXT(T_FIL), van);
        };
        ruimte(4, true);
        for (int f = 0; f < firma.filialen; f++) {
            if (matrix_cel(tabel, f, 0) == 0)
                continue;
            ruimte(1, false);
            XPRT_PRINT(" %3hu  %4ld  ", static_cast<unsigned short>(iofil_nummer(f)),
                       long{matrix_cel(tabel, f, 0)});
            cellen(van, [&](int maat) { return matrix_cel(tabel, f, maat); });
        }
        ruimte(1, false);
        XPRT_PRINT(" %s  %4ld  ", TXT(T_TOT), long{matrix_totalen(tabel)[0]});
        cellen(van, [&](int maat) { return matrix_totalen(tabel)[maat]; });
        XPRT_PRINT("\n");
    }
}

void reeks_kop(uint8_t soort) {
    std::string naam;
    const long nr = naamnummer(soort, &naam);
    XPRT_KOP(TXT(T_REEKS_LIJST), "%s: %-2ld %-20.20s", TXT(T_VV_MAATSOORT_G), nr, naam.c_str());
}

const char* omvangtekst(int keus) {
    return keus == 0 ? TXT(T_PRINT_DEZE) : keus == 1 ? TXT(T_PRINT_ALLE) : nullptr;
}

void printen(int rij, uint8_t maatsoort, void (*lijst)(uint8_t)) {
    KEUZESTART(omvangtekst);
    KEUZEAAN(0);
    KEUZEAAN(1);
    KEUZEVAST(0);
    TOETSAAN(K_CANCEL);
    const int keus = KEUZE(rij, 2);
    if (keus >= 0)
        lijst(keus == 0 ? maatsoort : uint8_t{0});
}

} // namespace

void vv_lijst(uint8_t maatsoort) {
    verslag(T_VV_LIJST, maatsoort, [](uint8_t soort) {
        for (const uint16_t nummer : vv_nummers(soort)) {
            if (XPRT_STOP())
                return;
            vv_blad(soort, nummer);
        }
    });
}

void reeks_lijst(uint8_t maatsoort) {
    verslag(T_REEKS_LIJST, maatsoort, [](uint8_t soort) {
        const std::vector<Reeksregel> regels = reeks_regels(soort);
        for (int van = 1; van <= balk_kolommen() && !regels.empty(); van += BLOK) {
            bool kop = true;
            for (const Reeksregel& regel : regels) {
                const bool vol = van == 1 && kop ? true : XPRT_VOL(kop ? 3 : 1);
                if (vol)
                    reeks_kop(soort);
                if (vol || kop)
                    kolomkop("", van);
                kop = false;
                XPRT_PRINT(" %3hu  %4ld  ", static_cast<unsigned short>(regel.nr), long{regel.rij[0]});
                cellen(van, [&](int maat) { return regel.rij[static_cast<size_t>(maat)]; });
            }
            XPRT_PRINT("\n");
        }
    });
}

void vv_printen(int vraagrij, uint8_t maatsoort) {
    printen(vraagrij, maatsoort, vv_lijst);
}

void reeks_printen(int vraagrij, uint8_t maatsoort) {
    printen(vraagrij, maatsoort, reeks_lijst);
}

} // namespace zg
