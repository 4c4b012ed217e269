// The screen on the settings of the transfer: each an item that is stored at once, the root behind a question, since the
// mailboxes move with it.
#include "edi/edibinnen.h"
#include "edi/edihdl.h"
#include "edi/teksten.h"
#include "shared/files.h"
#include "term/ingave.h"
#include "term/itemscherm.h"
#include "term/prompt.h"
#include "term/vast.h"
#include <cstdio>

namespace zg {
namespace {

constexpr int WAARDE = 20, KEUSRIJ = 9, HOSTBYTES = 20;

int itemrij(int nummer) {
    return 1 + nummer;
}

void toon(int rij, const Tekst& label, const std::string& waarde) {
    std::string naam = TXT(label);
    naam.erase(naam.find('&') == std::string::npos ? naam.size() : naam.find('&'), 1);
    SCRPUT(A_LABEL, rij, 2, "%s", naam.c_str());
    SCRPUT(A_WAARDE, rij, WAARDE, "%-59.59s", waarde.c_str());
}

// Asked; false when it stays as it was.
bool vraag(int rij, const char* naam, std::string* waarde) {
    const bool host = std::string(naam) == "RPCHOST";
    char tekst[EDIPAD];
    VASTIN(tekst, *waarde);
    if (!INGAVE(rij, WAARDE, host ? "20c" : "59c", &SCHERM.toets[key_cancel], tekst))
        return false;
    const std::string nieuw = VASTTEKST(tekst).substr(0, host ? HOSTBYTES : EDIPAD);
    if (nieuw == *waarde)
        return false;
    *waarde = nieuw;
    return true;
}

template <auto& NAAM, auto& LABEL> void toon_item(int rij) {
    toon(rij, LABEL, edi_kaal(NAAM));
}
template <auto& NAAM> bool vraag_item(int rij) {
    std::string waarde = edi_kaal(NAAM);
    if (!vraag(rij, NAAM, &waarde))
        return false;
    return edi_mag(NAAM, waarde.c_str()) ? ediset(NAAM, waarde.c_str()) != 0 : edi_zeg(T_EDI_PAD_LANG, "");
}

constexpr char ZEBEDI[] = "ZEBEDI", EDIDIR[] = "EDIDIR", EDIRPC[] = "EDIRPC", RPCHOST[] = "RPCHOST",
               EDICMD[] = "EDICMD";

// Who looks for the mailboxes by the files there finds them at once.
bool vraag_locaties(int rij) {
    if (!vraag_item<EDIDIR>(rij))
        return false;
    if (!edi_kaal(EDIDIR).empty())
        edimakeloc();
    return true;
}

bool vraag_postbussen(int rij) {
    std::string waarde = edi_kaal(ZEBEDI);
    const int32_t was = SCHERM.laatste;
    if (!vraag(rij, ZEBEDI, &waarde))
        return false;
    const int32_t toets = SCHERM.laatste;
    const bool ja =
        waarde.empty() || // which is refused
        JNVRAAG(KEUSRIJ, 2, (std::string("[-]") + TXT(T_EDI_VERPLAATS_VRAAG)).c_str(), waarde.c_str()) != 0;
    SCRCLREOL(KEUSRIJ, 1);
    SCHERM.laatste = ja ? toets : was;
    return ja && edi_verplaats(waarde.c_str());
}

void toon_methode(int rij) {
    SCRPUT(A_LABEL, rij, 2, "%s", TXT(T_EDI_METHODE));
    SCRPUT(A_WAARDE, rij, 22, "%-40.40s", edi_methodetekst(edi_methode()));
}
bool vraag_methode(int) {
    const uint8_t methode = edi_kies_methode(edi_methode());
    return methode != edi_methode() && edi_methode_zet(methode);
}

const Item ITEMS[] = {
    {0, &T_EDI_I_METHODE, toon_methode, vraag_methode},
    {1, &T_EDI_I_POSTBUSSEN, toon_item<ZEBEDI, T_EDI_I_POSTBUSSEN>, vraag_postbussen},
    {2, &T_EDI_I_LOCATIES, toon_item<EDIDIR, T_EDI_I_LOCATIES>, vraag_locaties},
    {3, &T_EDI_I_RPC, toon_item<EDIRPC, T_EDI_I_RPC>, vraag_item<EDIRPC>},
    {4, &T_EDI_I_OPDRACHT, toon_item<EDICMD, T_EDI_I_OPDRACHT>, vraag_item<EDICMD>},
    {5, &T_EDI_I_HOST, toon_item<RPCHOST, T_EDI_I_HOST>, vraag_item<RPCHOST>},
};

const Itemscherm EDISCHERM{&T_EDI_TITEL, 5, 1, 11, 80, KEUSRIJ, 0, itemrij, ITEMS};

} // namespace

void edi_scherm() {
    if (!edi_maak_vraag())
        return;
    bool anders = false;
    itemscherm(EDISCHERM, {Itemwijze::wijzigen}, &anders);
    edisys('C', 0, nullptr);
}

} // namespace zg
