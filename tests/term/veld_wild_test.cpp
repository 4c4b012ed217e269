// Random keys into fields of every kind: nothing crashes or hangs, and nothing is written outside the variable.
#include "support/wild.h"
#include "term/formaat.h"
#include "term/ingave.h"
#include "veldmaat.h"

namespace zg::test {
namespace {

constexpr size_t MAAT = 300;

const char* const FORMATEN[] = {
    "5B",     "9B,ZP",    "8D",     "10D,E", "D,I",     "5d,NZP", "4n,N",       "12l,A",  "5u,E",
    "3U,F",   "b,E",      "8.2f,N", "3f,Z",  "c,A",     "20c,U",  "6c[^ABC\\]", "90s,EI", "8s[ABCabc12 ],J",
    "40.10C", "30.30S,I", "255c,F", "6x",    "40.4X,A", "8c,S",   "2c,IUE",     "90.3C,", "20.8S[^Q],U",
};

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

// One field; what is wrong with its outcome, or nothing.
std::string veld(const std::string& f) {
    alignas(8) char doel[MAAT], oud[MAAT];
    for (char& c : doel)
        c = static_cast<char>(worp());
    const char type = f[f.find_first_not_of("0123456789.")];
    if (strchr("cCsSxX", type)) { // any bytes at all, ended inside the field for the strings
        size_t n = veldmaat(type, std::max(1, atoi(f.c_str())));
        doel[dobbel(static_cast<int>(n))] = 0;
    }
    memcpy(oud, doel, MAAT);
    INSTELLEEG();
    // The stack gives the last key first: these end whatever is open.
    for (int32_t key : {K_ESC, K_ESC, K_ESC, K_ENTER, K_ENTER, K_ENTER})
        TOETSTERUG(key);
    for (int i = dobbel(60); i > 0; i--)
        TOETSTERUG(toets());
    int gewijzigd = INGAVE(1 + dobbel(24), 1 + dobbel(70), f.c_str(), &SCHERM.toets[key_cancel],
                           &SCHERM.toets[key_up], &SCHERM.toets[key_f5], doel);
    TOETSLEEG();
    const size_t n = veldmaat(type, SCHERM.breedte);
    const int32_t laatste = SCHERM.laatste;

    if (memcmp(doel + n, oud + n, MAAT - n) != 0)
        return "wrote behind the variable";
    if (std::any_of(ingavetekst + strlen(ingavetekst), ingavetekst + INGAVEMAX,
                    [](char c) { return c != 0; }))
        return "bytes behind the text";
    if (laatste == K_CANCEL || laatste == K_ESC)
        return memcmp(doel, oud, n) == 0 && !gewijzigd ? "" : "a cancelled field changed its variable";
    if (laatste != K_ENTER && laatste != K_UP && laatste != K_F1 + 4)
        return "left by a key that is not allowed: " + std::to_string(laatste);
    if (!gewijzigd)
        return "";
    if ((SCHERM.vlag & V_LEEG) && strchr(SCHERM.opties, 'E'))
        return "a mandatory field left empty";
    if (strchr("cCsS", type) && std::any_of(doel + strnlen(doel, n), doel + n, [](char c) { return c != 0; }))
        return "bytes behind the stored text";
    return "";
}

TEST(VeldWild, WillekeurigeToetsen) {
    wilde_beurten(
        6000, 0, [] {},
        [] {
            const std::string f = FORMATEN[dobbel(std::size(FORMATEN))], fout = veld(f);
            return fout.empty() ? "" : "\"" + f + "\": " + fout;
        });
}

} // namespace
} // namespace zg::test
