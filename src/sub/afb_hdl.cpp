// Links of series to pictures, names of pictures and where they lie. See sub/afb_hdl.h.
#include "sub/afb_hdl.h"
#include "shared/iotab.h"
#include "shared/sleutelstand.h"
#include "sub/omserie.h"
#include "sub/serienummer.h"
#include "sub/teksten.h"
#include "term/scherm.h"
#include "term/vast.h"
#include <algorithm>
#include <cstring>
#include <filesystem>
#include <strings.h>

namespace zg {
namespace {

namespace fs = std::filesystem;

constexpr int RECORD = 7;          // of the settings
constexpr uint8_t ALLEEN_PCX = 10; // their mode; in any other JPG too
constexpr int SLEUTEL_BESTAND = 2; // key of the file's name, its first bytes

sysafbeelding instelling;

bool eindigt(std::string_view naam, const char* extensie) {
    const size_t n = strlen(extensie);
    return naam.size() > n && strncasecmp(naam.data() + naam.size() - n, extensie, n) == 0;
}

// A directory below that of the settings, with its "/".
std::string onder_map(const std::string& wat) {
    std::string uit = VASTTEKST(instelling.map);
    if (!uit.empty() && uit.back() != '/')
        uit += '/';
    return uit + wat + "/";
}

// A record as it is read; the brand of one without it is that of its series.
serpicrec beeld(const uint8_t* rec) {
    serpicrec uit;
    stam_uit(rec, dtserpic->h.reclen, &uit);
    serrec serie;
    if (uit.merk == 0 && serie_lees(uit.serie, &serie))
        uit.merk = serie.merk;
    return uit;
}

bool is_dit(const uint8_t* rec, const std::string& naam, uint16_t merk) {
    serpicrec pic;
    stam_uit(rec, dtserpic->h.reclen, &pic);
    return VASTTEKST(pic.bestand) == naam && beeld(rec).merk == merk;
}

} // namespace

void afb_instelling() {
    Slot<sysafbeelding> slot{RECORD, {}};
    iotab('R', &slot, SYS_RECORD);
    instelling = slot.r;
}

bool afb_in_gebruik() {
    return dtserpic && !VASTLEEG(instelling.map);
}

std::string afb_map(uint16_t merk) {
    char nummer[8];
    snprintf(nummer, sizeof nummer, "%04hu", merk);
    return onder_map(nummer);
}

std::string afb_nieuw_map() {
    return onder_map("nieuw");
}

bool afb_alleen_pcx() {
    return instelling.modus == ALLEEN_PCX;
}

Afbnaam afb_keur(std::string_view naam) {
    const bool soort = eindigt(naam, ".PCX") || (!afb_alleen_pcx() && eindigt(naam, ".JPG"));
    const bool gewoon =
        naam.empty() || (naam[0] != '.' && std::none_of(naam.begin(), naam.end(), [](char c) {
                             return c == '/' || static_cast<unsigned char>(c) < ' ' || c == 127;
                         }));
    if (!soort || !gewoon)
        return Afbnaam::soort;
    return naam.size() > AFB_NAAM ? Afbnaam::lang : Afbnaam::goed;
}

std::vector<std::string> afb_bestanden(const std::string& map, int* lang) {
    std::vector<std::string> uit;
    int te_lang = 0;
    std::error_code fout;
    for (fs::directory_iterator it(map, fout), einde; !fout && it != einde; it.increment(fout)) {
        const std::string naam = it->path().filename().string();
        std::error_code geen;
        if (!it->is_regular_file(geen))
            continue;
        const Afbnaam oordeel = afb_keur(naam);
        te_lang += oordeel == Afbnaam::lang;
        if (oordeel == Afbnaam::goed)
            uit.push_back(naam);
    }
    std::sort(uit.begin(), uit.end());
    if (lang)
        *lang = te_lang;
    return uit;
}

bool afb_aanwezig(const std::string& pad) {
    std::error_code geen;
    return fs::is_regular_file(pad, geen);
}

bool afb_heeft(const seriesleutel& serie) {
    if (!dtserpic)
        return false;
    const Sleutelstand k1(dtserpic);
    return IXEXISTS(dtserpic, Seriebuffer(serie).rec) != 0;
}

std::string afb_van(const seriesleutel& serie, uint16_t* merk) {
    if (!dtserpic)
        return "";
    Seriebuffer buffer(serie);
    const Sleutelstand k1(dtserpic);
    if (!IXREAD(dtserpic, buffer.rec))
        return "";
    const serpicrec pic = beeld(buffer.rec);
    *merk = pic.merk;
    return VASTTEKST(pic.bestand);
}

bool afb_zoek(const std::string& naam, uint16_t merk) {
    if (!dtserpic)
        return false;
    serpicrec zoek{};
    VASTIN(zoek.bestand, naam);
    uint8_t rec[IXRECMAX] = {};
    memcpy(rec, &zoek, sizeof zoek);
    if (dtserpic->h.nkeys >= SLEUTEL_BESTAND) {
        const Sleutelstand k2(dtserpic, SLEUTEL_BESTAND);
        for (int er = IXFIRSTR(dtserpic, rec, 1); er; er = IXNEXTR(dtserpic, rec, 1))
            if (is_dit(rec, naam, merk))
                return true;
        return false;
    }
    // A file without that key is walked.
    for (int32_t nr = 0;; nr++) {
        const int antwoord = IXGET(dtserpic, rec, nr);
        if (antwoord < 0)
            return false;
        if (antwoord && is_dit(rec, naam, merk))
            return true;
    }
}

bool afb_schrijf(const seriesleutel& serie, const std::string& naam, uint16_t merk) {
    Seriebuffer buffer(serie);
    const Sleutelstand k1(dtserpic);
    IXREAD(dtserpic, buffer.rec); // what else the record holds stays
    serpicrec pic;
    memcpy(&pic, buffer.rec, sizeof pic);
    pic.serie = serie;
    VASTIN(pic.bestand, naam);
    pic.merk = merk;
    memcpy(buffer.rec, &pic, sizeof pic);
    return IXWRITE(dtserpic, buffer.rec) != 0;
}

bool afb_wis(const seriesleutel& serie) {
    if (!dtserpic)
        return true;
    Seriebuffer buffer(serie);
    const Sleutelstand k1(dtserpic);
    if (!IXEXISTS(dtserpic, buffer.rec))
        return true;
    const int gelezen = IXREADT(dtserpic, buffer.rec);
    if (gelezen == 0)
        IXUNLOCK(dtserpic, Seriebuffer(serie).rec);
    else if (gelezen < 0) // another program has it in hand
        error("%s", TXT(T_NIET_VASTGELEGD));
    return gelezen == 1 ? IXDELETE(dtserpic, buffer.rec) == 0 : gelezen == 0;
}

} // namespace zg
