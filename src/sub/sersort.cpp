// Sort orders of series: their letters as the user knows them, the dialogue, the work index.
#include "shared/syscalls.h"
#include "store/rebuild.h"
#include "store/tabel.h"
#include "sub/omserie.h"
#include "sub/serletters.h"
#include "sub/serzoek.h"
#include "sub/teksten.h"
#include "term/ingave.h"
#include "term/prompt.h"
#include "term/vast.h"
#include <algorithm>

namespace zg {
namespace {

constexpr size_t VELDEN = 10; // of a key
constexpr char ALTIJD[] = "AKV", ZONDER = '~', NUMMER = 'U';
constexpr int BREEDTE = 40;

std::string ontbrekend(const std::string& volgorde) {
    std::string uit;
    for (const char letter : std::string(ALTIJD))
        if (volgorde.find(letter) == std::string::npos)
            uit += letter;
    return uit;
}

bool dubbele(std::string tekst) {
    std::sort(tekst.begin(), tekst.end());
    return std::adjacent_find(tekst.begin(), tekst.end()) != tekst.end();
}

// What was typed, as letters of ours; empty when it was left.
std::string vraag(int rij, const std::string& toegestaan, const std::string& voorstel) {
    char formaat[64], tekst[VELDEN + 1];
    const int veld = 3 + static_cast<int>(strlen(TXT(T_SS_VOLGORDE)));
    snprintf(formaat, sizeof formaat, "10s[%s],UE", sort_letters(toegestaan, true).c_str());
    SCRPUT(A_LABEL, rij, 2, "%s", TXT(T_SS_VOLGORDE));
    snprintf(tekst, sizeof tekst, "%s", sort_letters(voorstel, true).c_str());
    INGAVE(rij, veld, formaat, &SCHERM.toets[key_cancel], tekst);
    return TOETSWEG() ? "" : sort_letters(tekst, false);
}

} // namespace

std::string sort_letters(const std::string& tekst, bool naar_gebruiker) {
    const std::string ons = T_SS_LETTERS.standaard;
    std::string hun = TXT(T_SS_LETTERS);
    if (hun.size() != ons.size() || dubbele(hun))
        hun = ons;
    std::string uit = tekst;
    for (char& letter : uit)
        if (const size_t i = (naar_gebruiker ? ons : hun).find(letter); i != std::string::npos)
            letter = (naar_gebruiker ? hun : ons)[i];
    return uit;
}

bool sort_volgorde(int rij, int kolom, const char* letters, std::string* volgorde) {
    std::string toegestaan = letters;
    const bool zonder = std::erase(toegestaan, ZONDER) > 0;
    if (toegestaan.find(NUMMER) == std::string::npos && std::erase(*volgorde, NUMMER) > 0) {
        error("%s", TXT(T_SS_GEEN_NUMMER));
        return false;
    }
    const int hoogte = static_cast<int>(toegestaan.size()) + 4;
    WINOPEN1(rij, kolom, hoogte, BREEDTE);
    WINBOX(" %s ", TXT(T_SS_MOGELIJKHEDEN));
    int r = 1;
    for (const char letter : toegestaan)
        if (const Serieletter* l = serieletter(letter))
            SCRPUT(A_WAARDE, r++, 2, "%c = %-32s", sort_letters({letter}, true)[0], TXT(*l->label));
    std::string gekozen = *volgorde;
    bool goed = false;
    while (!goed && !(gekozen = vraag(hoogte - 2, toegestaan, gekozen)).empty()) {
        if (dubbele(gekozen))
            continue;
        goed = gekozen.size() + (zonder ? 0 : ontbrekend(gekozen).size()) <= VELDEN;
        if (!goed)
            error("%s", TXT(T_SS_TE_VEEL));
    }
    WINCLOSE();
    if (goed)
        *volgorde = gekozen + (zonder ? "" : ontbrekend(gekozen));
    return goed;
}

ICB* sort_index(const char* letters, const char* bestand) {
    const std::string orde = letters;
    if (orde.empty() || orde.size() > VELDEN || dubbele(orde))
        return nullptr;
    for (const char letter : orde)
        if (const Serieletter* l = serieletter(letter); !l || !l->type)
            return nullptr;
    // Made anew each time: one that stands from before lacks the series that came since.
    ICB* icb = IXCREATE(bestand, 1);
    serrec plaatsen{};
    UPDFCB_INX(letters, &plaatsen, dtser->h.reclen);
    UPDFCB_END(icb);
    UPDFCB_KEY(1, "key-1", !ontbrekend(orde).empty());
    for (const char letter : orde) {
        const Serieletter* l = serieletter(letter);
        UPDFCB_FLD(l->type, reinterpret_cast<const char*>(&plaatsen) + l->plaats, l->breedte);
    }
    UPDFCB_END(icb);
    const bool tijdelijk = strchr(bestand, '.') != nullptr;
    if (!tijdelijk) {
        IXINIT(icb);
        return icb;
    }
    IXINITIX(icb);
    IXBULK('O', icb, nullptr);
    uint8_t rec[IXRECMAX] = {};
    int er;
    for (int32_t nr = 0; (er = IXGET(dtser, rec, nr)) >= 0; nr++)
        if (er == 1) {
            icb->currec = nr;
            IXBULK('W', icb, rec);
        }
    IXBULK('C', icb, nullptr);
    return icb;
}

std::string sort_titel(const char* bestand) {
    IXHEADER h;
    const int fd = SYS.open(bestand, O_RDONLY | O_CLOEXEC | O_NONBLOCK, 0);
    const bool er = fd >= 0 && SYSLEES(fd, &h, sizeof h, 0) == ssize_t{sizeof h};
    if (fd >= 0)
        SYS.close(fd);
    return er ? VASTTEKST(h.title) : "";
}

} // namespace zg
