// The one dance of all fields with a list: ask, list, look up, refuse or add.
#include "shared/lijstveld.h"
#include "shared/arraylijst.h"
#include "shared/report.h"
#include "shared/sysrec.h"
#include "shared/teksten.h"
#include "term/ingave.h"
#include "term/natl.h"
#include "term/prompt.h"
#include "term/vast.h"
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace zg {
namespace {

// The field's variable as bytes; INGAVE knows its type from the format.
struct Variabele {
    alignas(int32_t) char bytes[8] = {};
    size_t breedte;
    bool tekst;

    Lijstcode code() const {
        Lijstcode uit;
        if (tekst)
            uit.tekst = VASTTRIM({bytes, strnlen(bytes, breedte)});
        else if (breedte == sizeof(int32_t))
            memcpy(&uit.nummer, bytes, breedte);
        else
            uit.nummer =
                static_cast<uint8_t>(bytes[0]) | (breedte > 1 ? static_cast<uint8_t>(bytes[1]) << 8 : 0);
        return uit;
    }
    void zet(const Lijstcode& van) {
        memset(bytes, 0, sizeof bytes);
        if (tekst)
            memcpy(bytes, van.tekst.data(), std::min(van.tekst.size(), breedte));
        else
            memcpy(bytes, &van.nummer, breedte); // little-endian: the low bytes
    }
};

void toon(const Lijsttabel& tabel, int rij, int kolom, const Lijstcode& code) {
    const int breedte = atoi(tabel.formaat);
    const std::string tekst = code.tekst.empty() && code.nummer ? std::to_string(code.nummer) : code.tekst;
    SCRPUT(A_WAARDE, rij, kolom, "%-*.*s", breedte, breedte, tekst.c_str());
}

// The user wants it, and it was added.
bool toegevoegd(const Lijsttabel& tabel, const Lijstcode& code) {
    const std::string vraag = tabel.voeg_toe && mag_onderhoud() ? tabel.vraag(tabel, code) : "";
    return !vraag.empty() && FFLASH(-2, 0, A_WAARDE, nullptr, "[-]%s", vraag.c_str()) &&
           tabel.voeg_toe(tabel, code);
}

// Is the code there, perhaps because the user adds it now? Tells when not.
bool er_is(const Lijsttabel& tabel, const Lijstcode& code) {
    std::string naam;
    if (tabel.lees(tabel, code, &naam) || (toegevoegd(tabel, code) && tabel.lees(tabel, code, &naam)))
        return true;
    tabel.onbekend(tabel, code);
    return false;
}

Lijstuit veld(const Lijsttabel& tabel, int rij, int kolom, const char* opties, void* doel, size_t breedte,
              bool tekst) {
    if (breedte > sizeof Variabele::bytes)
        INTERNAL("lijstveld", 1);
    std::unique_ptr<Instel, void (*)(Instel*)> toetsen(INSTELNEW(0), INSTELDEL);
    const std::string formaat = std::string(tabel.formaat) + "," + opties;
    for (;;) {
        if (toetsen)
            INSTELSET(toetsen.get());
        if (tabel.kies)
            TOETSAAN(K_F5);
        Variabele nieuw{{}, breedte, tekst};
        memcpy(nieuw.bytes, doel, breedte);
        INGAVE(rij, kolom, formaat.c_str(), &SCHERM.toets[key_cancel], nieuw.bytes);
        if (TOETSWEG())
            return Lijstuit::weg;
        Lijstcode code = nieuw.code();
        const bool lijst = SCHERM.laatste == K_F5 && tabel.kies;
        if (lijst) {
            memcpy(nieuw.bytes, doel, breedte);
            code = nieuw.code();
            if (!tabel.kies(tabel, &code))
                continue;
            nieuw.zet(code);
            SCHERM.laatste = K_ENTER;
            SCHERM.vlag &= ~static_cast<uint32_t>(V_LEEG);
        }
        const int32_t toets = SCHERM.laatste;
        const uint32_t vlag = SCHERM.vlag;
        if (!code.leeg() && !er_is(tabel, code))
            continue;
        SCHERM.laatste = toets, SCHERM.vlag = vlag; // what was added had fields of its own
        if (lijst || tekst)
            toon(tabel, rij, kolom, code);
        const bool anders = memcmp(doel, nieuw.bytes, breedte) != 0;
        memcpy(doel, nieuw.bytes, breedte);
        return anders ? Lijstuit::anders : Lijstuit::zelfde;
    }
}

} // namespace

Lijstuit lijstveld(const Lijsttabel& tabel, int rij, int kolom, const char* opties, uint8_t* code) {
    return veld(tabel, rij, kolom, opties, code, sizeof *code, false);
}
Lijstuit lijstveld(const Lijsttabel& tabel, int rij, int kolom, const char* opties, uint16_t* code) {
    return veld(tabel, rij, kolom, opties, code, sizeof *code, false);
}
Lijstuit lijstveld(const Lijsttabel& tabel, int rij, int kolom, const char* opties, int32_t* code) {
    return veld(tabel, rij, kolom, opties, code, sizeof *code, false);
}
Lijstuit lijstveld(const Lijsttabel& tabel, int rij, int kolom, const char* opties, char* code,
                   size_t breedte) {
    return veld(tabel, rij, kolom, opties, code, breedte, true);
}

std::string lijstnaam(const Lijsttabel& tabel, const Lijstcode& code) {
    std::string naam;
    return !code.leeg() && tabel.lees(tabel, code, &naam) ? naam : std::string();
}

namespace {

// The first row whose name begins with a text, else the first that holds it; -1, told, when there is none.
int met_naam(const std::vector<Lijstblad::Rij>& rijen, size_t kolom, const std::string& tekst) {
    int met = -1;
    for (size_t i = 0; i < rijen.size(); i++) {
        const size_t plaats = GROOTKOPIE(rijen[i].regel).find(GROOTKOPIE(tekst), kolom);
        if (plaats == kolom)
            return static_cast<int>(i);
        if (plaats != std::string::npos && met < 0)
            met = static_cast<int>(i);
    }
    if (met < 0)
        error("<%s> %s", tekst.c_str(), TXT(T_NIET_GEVONDEN));
    return met;
}

} // namespace

bool lijstkies(const Lijsttabel& tabel, const Lijstblad& blad, Lijstcode* code) {
    std::vector<Lijstblad::Rij> rijen;
    ArrayLijst lijst{};
    auto lees = [&] {
        rijen = blad.rijen(tabel);
        lijst.regels.clear();
        for (const Lijstblad::Rij& r : rijen)
            lijst.regels.push_back(r.regel);
    };
    auto plaats = [&](const Lijstcode& gezocht) {
        auto rij = std::find_if(rijen.begin(), rijen.end(), [&](const Lijstblad::Rij& r) {
            return r.code.nummer == gezocht.nummer && r.code.tekst == gezocht.tekst;
        });
        return rij == rijen.end() ? -1 : static_cast<int>(rij - rijen.begin());
    };
    lees();
    lijst.titel = blad.titel.c_str(), lijst.kop = blad.kop;
    lijst.vraag = blad.vraag, lijst.formaat = blad.formaat;
    lijst.begin = std::max(plaats(*code), 0);
    lijst.zoek = [&](const char* getypt) {
        Lijstcode gezocht;
        const std::string tekst(VASTTRIM(getypt));
        if (blad.naamkolom > 0 && tekst.find_first_not_of("0123456789") != std::string::npos)
            return met_naam(rijen, static_cast<size_t>(blad.naamkolom), tekst);
        if (rijen.empty() || rijen[0].code.tekst.empty())
            gezocht.nummer = atoi(getypt);
        else
            gezocht.tekst = tekst;
        const int rij = plaats(gezocht);
        if (rij < 0)
            tabel.onbekend(tabel, gezocht);
        return rij;
    };
    if (blad.record)
        lijst.record = [&](int rij) {
            blad.record(tabel, rijen[static_cast<size_t>(rij)].code);
            lees();
        };
    const int gekozen = arraylijst(lijst);
    if (gekozen < 0)
        return false;
    *code = rijen[static_cast<size_t>(gekozen)].code;
    return true;
}

} // namespace zg
