// Random keys into random fields: nothing crashes or hangs, nothing is written outside the variable, and what is
// stored is what the format allows.
#include "support/terminal.h"
#include "term/formaat.h"
#include "term/ingave.h"
#include "veldmaat.h"
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <gtest/gtest.h>
#include <random>
#include <string>

namespace zg {
namespace {

using test::veldmaat;

constexpr size_t MAAT = 300;

std::mt19937 rng;

int dobbel(int tot) {
    return static_cast<int>(rng() % static_cast<unsigned>(tot));
}

std::string formaat() {
    const char* breedtes[] = {"", "1", "2", "3", "6", "8", "10", "20", "90", "255"};
    std::string letters = "BCDSUXbcdflnsux", f = breedtes[dobbel(10)];
    const char type = letters[static_cast<size_t>(dobbel(15))];
    if (strchr("CSX", type) && dobbel(2))
        f += "." + std::to_string(1 + dobbel(30));
    if (type == 'f' && atoi(f.c_str()) > 3 && dobbel(2))
        f += "." + std::to_string(dobbel(3));
    if (type == 'B' && atoi(f.c_str()) < 3)
        f = "9";
    f += type;
    if (strchr("cCsS", type) && dobbel(4) == 0)
        f += dobbel(2) ? "[ABCabc12 ]" : "[^ABCabc\\]";
    f += ',';
    for (char o : std::string("AEFIJNPSUZ"))
        if (dobbel(4) == 0)
            f += o;
    return f;
}

int32_t toets() {
    const int32_t bijzonder[] = {K_HOME,  K_LEFT, K_RIGHT, K_END, K_IC,     K_DC,  K_BACK, 8,        23,
                                 K_ENTER, K_UP,   K_DOWN,  K_F1,  K_F1 + 4, K_F11, K_HELP, K_CANCEL, K_ESC,
                                 K_TAB,   0,      1,       127,   255,      300,   511,    512,      4000};
    const char* tekens = "0123456789+-.,\\JNabcXYZ F";
    switch (dobbel(4)) {
    case 0:
        return bijzonder[dobbel(static_cast<int>(std::size(bijzonder)))];
    case 1:
        return 32 + dobbel(224);
    default:
        return static_cast<uint8_t>(tekens[dobbel(static_cast<int>(strlen(tekens)))]);
    }
}

double waarde(char type, const char* doel) {
    double f;
    memcpy(&f, doel, sizeof f);
    return type == 'f'   ? f
           : type == 'B' ? static_cast<double>(test::veldgetal(type, doel)) / 100
                         : static_cast<double>(test::veldgetal(type, doel));
}

// One field; what is wrong with its outcome, or nothing.
std::string veld(const std::string& f) {
    alignas(8) char doel[MAAT], oud[MAAT];
    for (char& c : doel)
        c = static_cast<char>(rng());
    const char type = f[f.find_first_not_of("0123456789.")];
    if (strchr("cCsSxX", type)) { // any bytes at all, ended inside the field for the strings
        size_t n = veldmaat(type, std::max(1, atoi(f.c_str())));
        doel[dobbel(static_cast<int>(n))] = 0;
    }
    memcpy(oud, doel, MAAT);
    // The same parse beforehand, for what the field allows.
    SCHERM.rij = 1 + dobbel(24), SCHERM.kolom = 1 + dobbel(70);
    const int rij = SCHERM.rij, kolom = SCHERM.kolom;
    SCHERM.doel = doel;
    INSTELLEEG();
    INGAVEFMT(f.c_str());
    const Instel toen = {INSTEL.toe, INSTEL.minimum, INSTEL.maximum, nullptr, 0};
    const std::string opties = SCHERM.opties;
    const int breedte = SCHERM.breedte;
    const bool numeriek = SCHERM.numeriek;
    INSTELLEEG();

    // The stack gives the last key first: these end whatever is open.
    for (int32_t key : {K_ESC, K_ESC, K_ESC, K_ENTER, K_ENTER, K_ENTER})
        TOETSTERUG(key);
    for (int i = dobbel(60); i > 0; i--)
        TOETSTERUG(toets());
    int gewijzigd = INGAVE(rij, kolom, f.c_str(), &SCHERM.toets[key_cancel], &SCHERM.toets[key_up],
                           &SCHERM.toets[key_f5], doel);
    TOETSLEEG();
    const size_t n = veldmaat(type, breedte);
    const int32_t laatste = SCHERM.laatste;
    auto optie = [&](char c) { return opties.find(c) != std::string::npos; };

    if (memcmp(doel + n, oud + n, MAAT - n) != 0)
        return "wrote behind the variable";
    for (size_t i = strlen(ingavetekst); i < INGAVEMAX; i++)
        if (ingavetekst[i])
            return "bytes behind the text";
    if (laatste == K_CANCEL || laatste == K_ESC)
        return memcmp(doel, oud, n) == 0 && !gewijzigd ? "" : "a cancelled field changed its variable";
    if (laatste != K_ENTER && laatste != K_UP && laatste != K_F1 + 4)
        return "left by a key that is not allowed: " + std::to_string(laatste);
    if (!gewijzigd)
        return "";
    const double w = test::veldgeheel(type) || type == 'f' ? waarde(type, doel) : 0;
    const bool leeg = SCHERM.vlag & V_LEEG;
    if (leeg && optie('E'))
        return "a mandatory field left empty";
    if ((numeriek || type == 'D') && !leeg &&
        (w < toen.minimum - 1e-9 * std::fabs(toen.minimum) ||
         w > toen.maximum + 1e-9 * std::fabs(toen.maximum)))
        return "value outside the range: " + std::to_string(w);
    if (numeriek || type == 'D')
        return "";
    if (type == 'b')
        return w == 0 || w == 1 ? "" : "neither yes nor no";
    const size_t lengte = strnlen(doel, n);
    for (size_t i = lengte; i < n; i++)
        if (doel[i])
            return "bytes behind the stored text";
    if ((type == 's' || type == 'S') && doel[breedte])
        return "no end behind the string";
    if (optie('F') && lengte < static_cast<size_t>(breedte))
        return "not filled";
    if (optie('I')) // nothing of the old bytes is left
        for (size_t i = 0; i < lengte; i++)
            if (!toen.toe.test(static_cast<uint8_t>(doel[i])))
                return "a character that is not allowed";
    return "";
}

TEST(VeldWild, WillekeurigeToetsen) {
    const char* aantal = getenv("ZG_WILD");
    const int velden = aantal ? atoi(aantal) : 6000;
    const char* vast = getenv("ZG_SEED");
    const unsigned zaad = vast ? static_cast<unsigned>(atol(vast)) : std::random_device{}();
    test::Terminal t([&] {
        SCRINIT();
        rng.seed(zaad);
        for (int i = 0; i < velden; i++) {
            const std::string f = formaat();
            const std::string fout = veld(f);
            if (!fout.empty()) {
                SCREXIT();
                printf("field %d \"%s\": %s\n", i, f.c_str(), fout.c_str());
                return 3;
            }
        }
        SCREXIT();
        return 0;
    });
    EXPECT_EQ(t.einde(120000), 0) << "seed " << zaad << "\n" << t.scherm();
}

} // namespace
} // namespace zg
