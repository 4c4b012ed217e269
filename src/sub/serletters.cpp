// The letters of a series' fields, see sub/serletters.h.
#include "sub/serletters.h"
#include "shared/leesstam.h"
#include "sub/teksten.h"
#include "term/vast.h"
#include <algorithm>

namespace zg {
namespace {

// clang-format off
const Serieletter LETTERS[] = {
    {'A', &T_SL_ARTIKELGROEP, "5l,P",  'I', offsetof(serrec, serie),       4, 5, &T_SK_ARTIKELGROEP},
    {'K', &T_SL_KLEUR,        "3u,P",  'I', offsetof(serrec, serie) + 4,   2, 3, &T_SK_KLEUR},
    {'V', &T_SL_VOLGNUMMER,   "4u,P",  'I', offsetof(serrec, serie) + 6,   2, 4, &T_SK_VOLGNUMMER},
    {'R', &T_SL_MERK,         "4s,U",  'I', offsetof(serrec, merk),        2, 4, &T_SK_MERK},
    {'M', &T_SL_MODEL,        "15s,U", 'C', offsetof(serrec, model),      15, 15, &T_SL_MODEL},
    {'D', &T_SL_DOELGROEP,    "1s,",   'I', offsetof(serrec, doelgroep),   1, 1, &T_SK_DOELGROEP},
    {'J', &T_SL_JAAR,         "4u,P",  'I', offsetof(serrec, jaar),        2, 4, &T_SK_JAAR},
    {'S', &T_SL_SEIZOEN,      "1s[%s],U", 'C', offsetof(serrec, seizoen),  1, 1, &T_SK_SEIZOEN},
    {'E', &T_SL_DESSIN,       "12s,",  'C', offsetof(serrec, dessin),     12, 12, &T_SL_DESSIN},
    {'N', &T_SL_KENMERK,      "2s,",   'C', offsetof(serrec, kenmerk),     2, 2, &T_SK_KENMERK},
    {'Z', &T_SL_DEELSEIZOEN,  "1u,P",  'I', offsetof(serrec, deelseizoen), 1, 1, &T_SK_DEELSEIZOEN},
    {'I', &T_SL_INKOOPCODE},
    {'B', &T_SL_MAATSOORT,    "2u,P",  'I', offsetof(serrec, maatsoort),   1, 2, &T_SK_MAATSOORT},
    {'L', &T_SL_LEVERANCIER,  "4u,P",  'I', offsetof(serrec, leverancier), 4, 4, &T_SK_LEVERANCIER},
    {'C', &T_SL_COLLECTIE},
    {'F', &T_SL_FILIAAL},
    {'T', &T_SL_MAAT},
    {'U', &T_SL_NUMMER},
    {'m', &T_SL_MATERIAAL,    "12s,",  'C', offsetof(serrec, materiaal),  12, 12, &T_SL_MATERIAAL},
};
// clang-format on

const char* tekst(const serrec& rec, const Serieletter& l) {
    return reinterpret_cast<const char*>(&rec) + l.plaats;
}

} // namespace

const std::span<const Serieletter> SERIELETTERS = LETTERS;

const Serieletter* serieletter(char letter) {
    for (const Serieletter& l : LETTERS)
        if (l.letter == letter)
            return &l;
    return nullptr;
}

int serie_vergelijk(const serrec& a, const serrec& b, const std::string& letters, size_t aantal) {
    for (size_t i = 0; i < aantal && i < letters.size(); i++) {
        const Serieletter* l = serieletter(letters[i]);
        if (!l || !l->type)
            continue;
        int v = 0;
        if (l->type == 'C')
            v = IXCOLLATE(tekst(a, *l), tekst(b, *l), l->breedte);
        else if (const uint32_t x = serie_getal(a, *l), y = serie_getal(b, *l); x != y)
            v = x < y ? -1 : 1;
        if (v)
            return v;
    }
    return 0;
}

std::string serie_sleutelletters(const ICB* icb, int sleutel) {
    const IXKEYDEF& def = icb->h.keydef[sleutel - 1];
    std::string uit;
    for (size_t n = 0; n < IXDELEN && def.ptype[n]; n++) {
        const auto l = std::ranges::find_if(LETTERS, [&](const Serieletter& x) {
            return x.type && def.ptype[n] == x.type && def.pstart[n] == x.plaats + 1 &&
                   def.pend[n] == x.plaats + x.breedte;
        });
        uit += l == std::end(LETTERS) ? '?' : l->letter;
    }
    return uit;
}

uint32_t serie_getal(const serrec& rec, const Serieletter& l) {
    uint32_t uit = 0;
    memcpy(&uit, reinterpret_cast<const char*>(&rec) + l.plaats, l.breedte); // little-endian
    return uit;
}

std::string serie_waarde(const serrec& rec, char letter) {
    const Serieletter* l = serieletter(letter);
    if (!l || !l->type)
        return {};
    char uit[32];
    if (letter == 'R') {
        merkrec merk{};
        if (dtmerk && leesmerk(dtmerk, &merk, rec.merk) && !VASTLEEG(merk.zoeknaam))
            return VASTTEKST(merk.zoeknaam);
    }
    if (letter == 'J' && rec.jaar == 0)
        return TXT(T_SL_STD);
    if (letter == 'D')
        return rec.doelgroep ? std::string(1, rec.doelgroep) : "";
    if (l->type == 'C')
        return std::string(VASTTRIM({tekst(rec, *l), strnlen(tekst(rec, *l), l->breedte)}));
    snprintf(uit, sizeof uit, "%u", serie_getal(rec, *l));
    return uit;
}

} // namespace zg
