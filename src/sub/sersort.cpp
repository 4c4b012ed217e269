// Sort orders of series: their letters as the user knows them, the dialogue, the work index; those that stand, when a
// series changes.
#include "shared/files.h"
#include "shared/report.h"
#include "shared/sleutelstand.h"
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
#include <array>
#include <cstring>

namespace zg {
namespace {

constexpr size_t VELDEN = 10; // of a key
constexpr char ALTIJD[] = "AKV", ZONDER = '~', NUMMER = 'U';
constexpr int BREEDTE = 40;
constexpr char MODULE[] = "../sub/serdel";

using Record = std::array<uint8_t, IXRECMAX>;

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

// ---- the indexes that stand

// The names of the sort indexes over DTSER, of this moment.
std::vector<std::string> sorteerindexen() {
    std::vector<std::string> uit;
    char naam[DIRNAAM] = "DTSER.*";
    if (!DIRECTORY('O', naam, 0))
        return uit;
    while (DIRECTORY('N', naam, 0)) {
        const std::string ext = strrchr(naam, '.') ? strrchr(naam, '.') + 1 : "";
        if (strncmp(naam, "DTSER.", 6) == 0 && ext != "INX" && ext != "TXT")
            uit.push_back(naam);
    }
    DIRECTORY('C', naam, 0);
    return uit;
}

// Is it an index with entries, of that name? Nobody may have it in hand; false with *bezet when somebody has.
bool is_index(const std::string& naam, bool* bezet) {
    constexpr int64_t MET_INGANGEN = 3 * IXBLOK;
    const int fd = SYS.open(naam.c_str(), O_RDWR | O_CLOEXEC | O_NONBLOCK, 0);
    if (fd < 0)
        OPENFAIL(MODULE, naam.c_str());
    char kop[sizeof IXHEADER::name] = {};
    const int64_t omvang = SYSOMVANG(fd);
    const bool er = omvang >= MET_INGANGEN && omvang % IXBLOK == 0 &&
                    SYSLEES(fd, kop, sizeof kop, 0) == ssize_t{sizeof kop} && VASTGELIJK(kop, naam);
    *bezet = er && !IOLOCK('T', fd, 0, IXBLOK);
    SYS.close(fd);
    return er && !*bezet;
}

// The key of a record under each of an index' keys: out where `eruit`, else in.
void index_bij(ICB* icb, int32_t recnr, const Record& rec, bool eruit) {
    for (int k = 1; k <= icb->h.nkeys; k++) {
        IXSWITCH(icb, k);
        icb->currec = icb->insptr = recnr;
        const int lengte = IXKEYLEN(icb, 0);
        IXBLDKEY(icb, rec.data(), lengte);
        const bool er = IXSEARCH(icb, '=', lengte) == recnr;
        icb->insptr = recnr;
        if (er && eruit)
            IXDELENTRY(icb);
        else if (!er && !eruit)
            IXINSKEY(icb);
    }
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

void serie_index_bij(const serrec& oud, const serrec* nieuw) {
    const std::vector<std::string> namen = sorteerindexen();
    if (namen.empty())
        return;
    Record was{}, wordt{};
    memcpy(was.data(), &oud, sizeof oud);
    if (nieuw)
        memcpy(wordt.data(), nieuw, sizeof *nieuw);
    int32_t recnr = -1;
    {
        const Sleutelstand k1(dtser);
        for (const Record* rec : {&was, &wordt})
            if (recnr < 0 && IXEXISTS(dtser, rec->data()))
                recnr = dtser->currec;
    }
    for (const std::string& naam : namen) {
        bool bezet = false;
        if (!is_index(naam, &bezet) && !bezet)
            continue;
        // Its user goes on with what he has; whoever sorts next makes it anew.
        if (bezet || IXCHECK(naam.c_str()) < 0) {
            IOUNLINK(naam.c_str());
            continue;
        }
        ICB* icb = IXOPEN(naam.c_str(), 1);
        index_bij(icb, recnr, was, true);
        if (nieuw)
            index_bij(icb, recnr, wordt, false);
        IXCLOSE(icb);
    }
}

} // namespace zg
