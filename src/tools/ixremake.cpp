// ixremake: the index of pairs rebuilt from their data files, in exclusive use.
#include "shared/files.h"
#include "shared/woordenboek.h"
#include "store/diepcheck.h"
#include "store/rebuild.h"
#include "tools/opdracht.h"

namespace zg {

namespace {

int maak(const std::string& naam, const Opdracht& o) {
    const std::string tabel = tabelnaam(naam);
    if (!IOEXISTS((naam + ".TXT").c_str()))
        return klacht(naam + ".TXT", "No such file or directory"), NIET_TE_OPENEN;
    bool kopt = IOSIZE((naam + ".INX").c_str()) >= IXBLOK;
    if (kopt && o.woordenboek && DDCOMPARE(DDNUMMER(tabel.c_str()), naam.c_str()) != 0)
        kopt = false;
    if (!kopt) {
        if (DDNUMMER(tabel.c_str()) == 0)
            return klacht(naam, "no index to take the definition from, and not in the dictionary"),
                   FOUT_GEVONDEN;
        if (!o.woordenboek)
            return klacht(naam, "no index to take the definition from; --dictionary makes it anew"),
                   FOUT_GEVONDEN;
        // The data file is looked at before anything changes.
        IXHEADER kop;
        if (!woordenboekkop(tabel, &kop) || IOSIZE((naam + ".TXT").c_str()) % kop.reclen != 0)
            return klacht(naam, "the data file's length is no multiple of the record length"), FOUT_GEVONDEN;
        if (DDCREATE(DDNUMMER(tabel.c_str()), naam.c_str()) == 0)
            return klacht(naam, "the index can't be created"), FOUT_GEVONDEN;
    }
    {
        // Whoever works in the pair keeps it: the rebuild needs it alone.
        Paar paar;
        if (int fout = paar_open(naam, &paar))
            return fout;
        if (int fout = paar_vast(&paar, o.wacht))
            return fout;
    }
    int gebouwd;
    {
        Werkbalk balk("rebuild " + tabel);
        gebouwd = IXBLDIX(naam.c_str());
    }
    if (!gebouwd)
        return klacht(naam, "can't be rebuilt: header or length of the data file is wrong"), FOUT_GEVONDEN;
    std::vector<std::string> bevindingen;
    {
        Werkbalk balk("check " + tabel);
        bevindingen = IXDIEPCHECK(naam.c_str());
    }
    for (const std::string& b : bevindingen)
        klacht(naam, b);
    if (!bevindingen.empty())
        return FOUT_GEVONDEN;
    if (!o.stil)
        printf("%s: rebuilt\n", naam.c_str());
    return GOED;
}

} // namespace

int ixremake(const Opdracht& o) {
    std::vector<std::string> namen;
    int slechtst = paren(o.namen, &namen) ? GOED : FOUT_GEBRUIKT;
    for (const std::string& naam : namen)
        if (int uitkomst = maak(naam, o))
            slechtst = slechtst == GOED || uitkomst == FOUT_GEVONDEN ? uitkomst : slechtst;
    return slechtst;
}

} // namespace zg
