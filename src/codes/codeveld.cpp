// The fields of the code tables: what a code stands for, the message for an unknown one, the list, the questions.
#include "codes/codeveld.h"
#include "codes/codetabel.h"
#include "codes/teksten.h"
#include "shared/iotab.h"
#include "shared/stamrec.h"
#include "term/scherm.h"
#include "term/strings.h"
#include "term/vast.h"
#include <cstdio>
#include <cstring>

namespace zg {
namespace {

using Rijen = std::vector<Lijstblad::Rij>;

bool lees(const Lijsttabel& tabel, const Lijstcode& code, std::string* naam) {
    const Codetabel& t = codetabel(tabel);
    Coderecord rec;
    if (code_lees(t, code, false, &rec) != 1)
        return false;
    *naam = code_naam(t, rec);
    return true;
}

void onbekend(const Lijsttabel& tabel, const Lijstcode& code) {
    const Codetabel& t = codetabel(tabel);
    error("<%s> %s %s", codetekst(code).c_str(), TXT(t.het ? T_ONBEKEND : T_ONBEKENDE), TXT(*t.woord));
}

std::string vraag(const Lijsttabel& tabel, const Lijstcode& code) {
    const Codetabel& t = codetabel(tabel);
    return code_mogelijk(t, code) ? code_vraag(t, code) : "";
}

bool voeg_toe(const Lijsttabel& tabel, const Lijstcode& code) {
    return code_scherm(codetabel(tabel), code, true);
}

void record(const Lijsttabel& tabel, const Lijstcode& code) {
    code_scherm(codetabel(tabel), code, false);
}

std::string lijstregel(const Codetabel& t, const std::string& code, const std::string& naam) {
    return VORM("%-*.*s%-*.*s", t.kolom, t.kolom, code.c_str(), t.tekstbreedte, t.tekstbreedte, naam.c_str());
}

Rijen rijen(const Lijsttabel& tabel) {
    const Codetabel& t = codetabel(tabel);
    Rijen uit;
    for (const Coderij& r : code_rijen(t))
        uit.push_back({r.code, lijstregel(t, codetekst(r.code), r.naam)});
    return uit;
}

std::string titel(const Codetabel& t) {
    tekst30 hoofd{};
    int32_t nr = 1;
    if (t.kop && iotab('R', &nr, &hoofd, *t.kop))
        return VASTTEKST(hoofd.tekst);
    return VORM("%s %s", TXT(T_SELECTEREN), TXT(*t.woord));
}

bool kies(const Lijsttabel& tabel, Lijstcode* code) {
    const Codetabel& t = codetabel(tabel);
    const bool tekst = t.hoogste == 0;
    constexpr int ZOEKBREEDTE = 12; // of a number or a name
    const std::string zoekformaat = VORM(t.plaats == Codetabel::ISO ? "%ds,IU"
                                         : tekst                    ? "%ds[^.,],I"
                                                                    : "%ds,I",
                                         tekst ? t.codebreedte : ZOEKBREEDTE);
    // The head's columns are those of the rows; a blank is left in front of the second.
    const std::string kop =
        VORM("%-*.*s%s", t.kolom, t.kolom - 1, TXT(t.kolom < 5 ? T_NR : T_CODE), TXT(T_OMSCHRIJVING));
    return lijstkies(
        tabel, {titel(t), kop, TXT(T_CODEVRAAG), zoekformaat.c_str(), rijen, record, tekst ? 0 : t.kolom},
        code);
}

// ---- VAT: the firm's percentages by code

constexpr int BTWCODES = 10;

bool btw_lees(const Lijsttabel&, const Lijstcode& code, std::string* naam) {
    if (code.nummer < 1 || code.nummer > BTWCODES)
        return false;
    *naam = VORM("%4.1f %%", firma.btw[code.nummer - 1] / 10.0);
    return true;
}

void btw_onbekend(const Lijsttabel&, const Lijstcode& code) {
    error("<%d> %s %s", code.nummer, TXT(T_ONBEKENDE), TXT(T_W_BTWCODE));
}

Rijen btw_rijen(const Lijsttabel& tabel) {
    Rijen uit;
    std::string naam;
    for (int32_t nr = 1; btw_lees(tabel, {nr, ""}, &naam); nr++)
        uit.push_back({{nr, ""}, VORM("%-2d    %s", nr, naam.c_str())});
    return uit;
}

bool btw_kies(const Lijsttabel& tabel, Lijstcode* code) {
    return lijstkies(tabel,
                     {VORM("%s %s", TXT(T_SELECTEREN), TXT(T_W_BTWCODE)),
                      VORM("%-6.4s%s", TXT(T_CODE), TXT(T_PERCENTAGE)), TXT(T_CODEVRAAG), "2s[0123456789],I",
                      btw_rijen},
                     code);
}

constexpr Lijsttabel rij(const char* formaat, int welke) {
    return {formaat, welke, lees, onbekend, kies, vraag, voeg_toe};
}

} // namespace

const Lijsttabel ACTIETABEL = rij("1U", C_ACTIE), CORRECTIETABEL = rij("1U", C_CORRECTIE),
                 INKOOPTABEL = rij("1U", C_INKOOP), DEELSEIZOENTABEL = rij("1U", C_DEELSEIZOEN),
                 KLEURTABEL = rij("3u", C_KLEUR), ETIKETSOORTTABEL = rij("2U", C_ETIKETSOORT),
                 KENMERKSOORTTABEL = rij("1U", C_KENMERKSOORT), PRIJSKLASSETABEL = rij("1U", C_PRIJSKLASSE),
                 STELSELTABEL = rij("2U", C_MAATSTELSEL), LANDTABEL = rij("3c", C_LAND),
                 FILIAALREEKSTABEL = rij("2U", C_FILIAALREEKS), OMZETGROEPTABEL = rij("4u", C_OMZETGROEP),
                 DOELGROEPTABEL = rij("1c[^.,]", C_DOELGROEP);
const Lijsttabel BTWTABEL{"2U", 0, btw_lees, btw_onbekend, btw_kies};

uint8_t omzetgroep_btw(uint16_t nummer) {
    Coderecord rec;
    return code_lees(codetabel(OMZETGROEPTABEL), {nummer, ""}, false, &rec) == 1
               ? rec[offsetof(omzgrprec, btwcode)]
               : uint8_t{0};
}

bool filiaalreeks_lees(uint8_t nummer, uint8_t* filialen) {
    Coderecord rec;
    const bool er = code_lees(codetabel(FILIAALREEKSTABEL), {nummer, ""}, false, &rec) == 1;
    memcpy(filialen, rec.data() + offsetof(filiaalreeksrec, filialen), sizeof filiaalreeksrec::filialen);
    return er;
}

} // namespace zg
