// The settings of the next field (allowed keys, range, exit mask), and the way in which an open field is put
// aside for a dialog inside it.
#include "term/formaat.h"
#include "term/ingave.h"
#include "term/veld.h"
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>

namespace zg {
namespace {

constexpr size_t EXTRAMAAT = 81;

bool geldig(int32_t key) {
    return key >= 1 && key <= 511;
}

// Exit mask of a key: the slots of the key table that hold it.
uint32_t sloten(int32_t key) {
    uint32_t masker = 0;
    for (uint32_t s = 0; s < TOETS_SLOTS; s++)
        if (geldig(key) && SCHERM.toets[s] == key)
            masker |= 1u << s;
    return masker;
}

void zet(const Instel& uit, Instel& naar) {
    naar.toe = uit.toe;
    naar.minimum = uit.minimum;
    naar.maximum = uit.maximum;
    naar.check = uit.check;
    std::copy(std::begin(uit.uitleg), std::end(uit.uitleg), naar.uitleg);
}

} // namespace

Instel INSTEL;

Instel* INSTELNEW(int size) {
    auto p = new (std::nothrow) Instel;
    if (!p)
        return nullptr;
    zet(INSTEL, *p);
    p->extra = calloc(1, size > 0 ? static_cast<size_t>(size) : EXTRAMAAT);
    if (!p->extra) {
        delete p;
        return nullptr;
    }
    return p;
}

void INSTELSET(const Instel* instel) {
    if (instel)
        zet(*instel, INSTEL);
}

void INSTELDEL(Instel* instel) {
    if (instel)
        free(instel->extra);
    delete instel;
}

void INSTELLEEG() {
    zet(Instel{}, INSTEL);
}

void TOETSAAN(int32_t key) {
    if (!geldig(key))
        return;
    INSTEL.toe.set(static_cast<size_t>(key));
    if (key == K_CANCEL)
        INSTEL.toe.set(K_ESC);
    else if (key == K_HELP)
        INSTEL.toe.set(K_F1);
}

void TOETSAANMET(int32_t key, const Tekst& wat) {
    TOETSAAN(key);
    if (key >= K_F1 && key < K_F1 + 12)
        INSTEL.uitleg[key - K_F1] = &wat;
}

void TOETSUIT(int32_t key) {
    if (geldig(key))
        INSTEL.toe.reset(static_cast<size_t>(key));
}

bool TOETSTOE(int32_t key) {
    return geldig(key) && INSTEL.toe.test(static_cast<size_t>(key));
}

bool TOETSNAMED(int32_t key) {
    return TOETSTOE(key) && sloten(key) != 0;
}

bool TOETSCHECK(int32_t key) {
    return TOETSTOE(key) && (sloten(key) & INSTEL.check) != 0;
}

void TOETSCHECKAAN(int32_t key) {
    INSTEL.check |= sloten(key);
}

void TOETSCHECKUIT(int32_t key) {
    INSTEL.check &= ~sloten(key);
}

struct Veldstand {
    Instel instel;
    int32_t rij, kolom, breedte, decimalen;
    char type;
    char opties[sizeof SCHERM.opties];
    uint8_t numeriek, verborgen;
    int32_t scroll, zichtbaar, invoegen, laatste;
    uint32_t vlag;
    void* doel;
    int tekenset;
    char tekst[INGAVEMAX];
    double waarde;
};

Veldstand* VELDBEWAAR() {
    auto s = new Veldstand;
    zet(INSTEL, s->instel);
    s->rij = SCHERM.rij, s->kolom = SCHERM.kolom;
    s->breedte = SCHERM.breedte, s->decimalen = SCHERM.decimalen;
    s->type = SCHERM.type;
    memcpy(s->opties, SCHERM.opties, sizeof s->opties);
    s->numeriek = SCHERM.numeriek, s->verborgen = SCHERM.verborgen;
    s->scroll = SCHERM.scroll, s->zichtbaar = SCHERM.zichtbaar;
    s->invoegen = SCHERM.invoegen, s->laatste = SCHERM.laatste, s->vlag = SCHERM.vlag;
    s->doel = SCHERM.doel;
    s->tekenset = INGAVESET();
    memcpy(s->tekst, ingavetekst, sizeof s->tekst);
    s->waarde = ingavewaarde;
    return s;
}

void VELDHERSTEL(Veldstand* s) {
    if (!s)
        return;
    zet(s->instel, INSTEL);
    SCHERM.rij = s->rij, SCHERM.kolom = s->kolom;
    SCHERM.breedte = s->breedte, SCHERM.decimalen = s->decimalen;
    SCHERM.type = s->type;
    memcpy(SCHERM.opties, s->opties, sizeof s->opties);
    SCHERM.numeriek = s->numeriek, SCHERM.verborgen = s->verborgen;
    SCHERM.scroll = s->scroll, SCHERM.zichtbaar = s->zichtbaar;
    SCHERM.invoegen = s->invoegen, SCHERM.laatste = s->laatste, SCHERM.vlag = s->vlag;
    SCHERM.doel = s->doel;
    VELDTEKENSET(s->tekenset);
    memcpy(ingavetekst, s->tekst, sizeof s->tekst);
    ingavewaarde = s->waarde;
    delete s;
}

} // namespace zg
