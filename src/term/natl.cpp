// National tables of code page 850: character classes, case, the compose table, and the case helpers on them.
// Built at compile time from the few rules and pairs that differ from byte to byte.
#include "term/natl.h"
#include <array>
#include <cstring>

namespace zg {
namespace {

using Tabel = std::array<uint8_t, 256>;

// Accented letters, lower case beside upper case.
constexpr uint8_t PAREN[][2] = {
    {0x87, 0x80}, {0x81, 0x9A}, {0x82, 0x90}, {0x83, 0xB6}, {0x84, 0x8E}, {0x85, 0xB7},
    {0x86, 0x8F}, {0x88, 0xD2}, {0x89, 0xD3}, {0x8A, 0xD4}, {0x8B, 0xD8}, {0x8C, 0xD7},
    {0x8D, 0xDE}, {0x91, 0x92}, {0x93, 0xE2}, {0x94, 0x99}, {0x95, 0xE3}, {0x96, 0xEA},
    {0x97, 0xEB}, {0x9B, 0x9D}, {0xA0, 0xB5}, {0xA1, 0xD6}, {0xA2, 0xE0}, {0xA3, 0xE9},
    {0xA4, 0xA5}, {0xC6, 0xC7}, {0xD0, 0xD1}, {0xE4, 0xE5}, {0xE7, 0xE8}, {0xEC, 0xED},
};
constexpr uint8_t LEESTEKENS[][2] = {
    {0x21, 0x2F}, {0x3A, 0x40}, {0x5B, 0x60}, {0x7B, 0x7E}, {0x9C, 0x9C}, {0x9E, 0x9F}, {0xA6, 0xB4},
    {0xB8, 0xC5}, {0xC8, 0xCF}, {0xD5, 0xD5}, {0xD9, 0xDD}, {0xDF, 0xDF}, {0xE6, 0xE6},
};
constexpr uint8_t Y_TREMA = 0x98, S_SCHERP = 0xE1, I_TREMA_GROOT = 0xD8;

constexpr Tabel klassen() {
    Tabel t{};
    for (unsigned c = 0; c < 256; c++) {
        unsigned k = 0;
        if (c >= 'A' && c <= 'Z')
            k |= N_GROOT;
        if (c >= 'a' && c <= 'z')
            k |= N_KLEIN;
        if (c >= '0' && c <= '9')
            k |= N_CIJFER;
        if ((c >= '0' && c <= '9') || (c >= 'A' && c <= 'F') || (c >= 'a' && c <= 'f'))
            k |= N_HEX;
        if ((c >= 9 && c <= 13) || c == 32 || c == 255)
            k |= N_WIT;
        if (c == 32 || c == 255)
            k |= N_BLANCO;
        if (c < 32 || c == 127)
            k |= N_CONTROL;
        for (const auto& [van, tot] : LEESTEKENS)
            if (c >= van && c <= tot)
                k |= N_LEESTEKEN;
        t[c] = static_cast<uint8_t>(k);
    }
    for (const auto& [klein, groot] : PAREN) {
        t[klein] = N_KLEIN;
        t[groot] = N_GROOT;
    }
    t[Y_TREMA] = t[S_SCHERP] = N_KLEIN;
    return t;
}

constexpr Tabel kasten() {
    Tabel t{};
    for (unsigned c = 0; c < 256; c++) {
        bool letter = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
        t[c] = static_cast<uint8_t>(letter ? c ^ 0x20 : c);
    }
    for (const auto& [klein, groot] : PAREN) {
        t[klein] = groot;
        t[groot] = klein;
    }
    // The package has always treated these two so, and its files are sorted by it.
    t[Y_TREMA] = 'Y';
    t[I_TREMA_GROOT] = I_TREMA_GROOT;
    return t;
}

constexpr Tabel KLASSE_TABEL = klassen(), KAST_TABEL = kasten();

struct Samen {
    const char* reeks;
    uint8_t code;
};

constexpr Samen SAMEN[] = {
    {"C,", 128},  {"u\"", 129}, {"e'", 130},  {"a^", 131},  {"a\"", 132}, {"a`", 133},  {"ao", 134},
    {"c,", 135},  {"e^", 136},  {"e\"", 137}, {"e`", 138},  {"i\"", 139}, {"i^", 140},  {"i`", 141},
    {"A\"", 142}, {"Ao", 143},  {"E'", 144},  {"ae", 145},  {"AE", 146},  {"o^", 147},  {"o\"", 148},
    {"o`", 149},  {"u^", 150},  {"u`", 151},  {"y\"", 152}, {"O\"", 153}, {"U\"", 154}, {"o/", 155},
    {"O/", 157},  {"\\/", 158}, {"a'", 160},  {"i'", 161},  {"o'", 162},  {"u'", 163},  {"n~", 164},
    {"N~", 165},  {"a_", 166},  {"o_", 167},  {"ro", 169},  {"1/2", 171}, {"1/4", 172}, {"<<", 174},
    {">>", 175},  {"A'", 181},  {"A^", 182},  {"A`", 183},  {"co", 184},  {"c/", 189},  {"Y=", 190},
    {"a~", 198},  {"A~", 199},  {"D-", 209},  {"E^", 210},  {"E\"", 211}, {"E`", 212},  {"I'", 214},
    {"I^", 215},  {"I\"", 216}, {"I`", 222},  {"O'", 224},  {"ss", 225},  {"O^", 226},  {"O`", 227},
    {"o~", 228},  {"O~", 229},  {"u,", 230},  {"U'", 233},  {"U^", 234},  {"U`", 235},  {"y'", 236},
    {"Y'", 237},  {"+-", 241},  {"3/4", 243}, {"SS", 245},  {":-", 246},  {"gr", 248},
};
static_assert(std::size(SAMEN) == 76);

} // namespace

const std::array<uint8_t, 256> NKLASSE = KLASSE_TABEL;
const std::array<uint8_t, 256> NKAST = KAST_TABEL;

int COMPOSE(const char* reeks) {
    for (const Samen& s : SAMEN)
        if (strcmp(s.reeks, reeks) == 0)
            return s.code;
    return 0;
}

void GROOT(char* s) {
    for (; *s; s++)
        *s = static_cast<char>(NGROOT(static_cast<uint8_t>(*s)));
}

std::string GROOTKOPIE(std::string s) {
    GROOT(s.data());
    return s;
}

void BEGINGROOT(char* s) {
    while (*s && (NKLASSE[static_cast<uint8_t>(*s)] & N_BLANCO))
        s++;
    *s = static_cast<char>(NGROOT(static_cast<uint8_t>(*s)));
}

} // namespace zg
