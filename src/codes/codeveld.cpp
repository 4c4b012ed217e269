// One-digit codes: field, list and text over a head slot and nine slots of DTSYS.TXT.
#include "codes/codeveld.h"
#include "codes/teksten.h"
#include "shared/arraylijst.h"
#include "shared/iotab.h"
#include "term/ingave.h"
#include "term/natl.h"
#include "term/vast.h"
#include <cstdio>

namespace zg {

namespace {

bool lees(Codesoort soort, uint8_t code, tekst30* rec) {
    int32_t nr = code;
    return code >= 1 && code <= 9 && iotab_code('R', soort, &nr, rec);
}

} // namespace

std::string code_tekst(Codesoort soort, uint8_t code) {
    tekst30 rec;
    return lees(soort, code, &rec) ? VASTTEKST(rec.tekst) : std::string();
}

bool code_kiezen(Codesoort soort, uint8_t* code) {
    std::vector<uint8_t> codes;
    ArrayLijst lijst{};
    tekst30 rec;
    int32_t kopnr = 0;
    std::string titel =
        iotab_code('R', soort, &kopnr, &rec) ? VASTTEKST(rec.tekst) : std::string(TXT(T_CODEVRAAG));
    for (uint8_t c = 1; c <= 9; c++)
        if (lees(soort, c, &rec)) {
            char regel[40];
            snprintf(regel, sizeof regel, "%-4d  %-30.30s", c, VASTTEKST(rec.tekst).c_str());
            if (c == *code)
                lijst.begin = static_cast<int>(codes.size());
            codes.push_back(c);
            lijst.regels.push_back(regel);
        }
    char kop[48];
    snprintf(kop, sizeof kop, "%-4.4s  %s", TXT(T_CODE), TXT(T_OMSCHRIJVING));
    lijst.titel = titel.c_str(), lijst.kop = kop, lijst.vraag = TXT(T_CODEVRAAG),
    lijst.formaat = "1s[123456789],I";
    lijst.zoek = [&](const char* tekst) {
        for (size_t i = 0; i < codes.size(); i++)
            if (codes[i] == tekst[0] - '0')
                return static_cast<int>(i);
        error("%s", TXT(T_ONBEKENDE_CODE));
        return -1;
    };
    int gekozen = arraylijst(lijst);
    if (gekozen < 0)
        return false;
    *code = codes[static_cast<size_t>(gekozen)];
    return true;
}

bool code_veld(int rij, int kolom, Codesoort soort, uint8_t* code) {
    Instel* bewaard = INSTELNEW(0);
    uint8_t nieuw = *code;
    bool gewijzigd = false;
    for (;;) {
        if (bewaard)
            INSTELSET(bewaard);
        INGAVE(rij, kolom, "1U,", &SCHERM.toets[key_cancel], &SCHERM.toets[key_f5], &nieuw);
        if (TOETSWEG())
            break;
        if (SCHERM.laatste == K_F5) {
            uint8_t gekozen = *code;
            if (!code_kiezen(soort, &gekozen))
                continue;
            nieuw = gekozen;
            SCHERM.laatste = K_ENTER;
            SCRPUT(A_WAARDE, rij, kolom, "%d", nieuw);
        } else if (nieuw != 0 && code_tekst(soort, nieuw).empty()) {
            error("<%d> %s", nieuw, TXT(T_ONBEKENDE_CODE));
            nieuw = *code;
            continue;
        }
        gewijzigd = nieuw != *code;
        *code = nieuw;
        break;
    }
    INSTELDEL(bewaard);
    return gewijzigd;
}

} // namespace zg
