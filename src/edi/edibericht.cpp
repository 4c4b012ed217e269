// Module edihdl: what messages say, in the package's own forms: dates, numbers, bar codes, brands.
#include "edi/edihdl.h"
#include "shared/ean.h"
#include "shared/report.h"
#include "shared/stamrec.h"
#include "store/ix.h"
#include "term/datum.h"
#include "term/natl.h"
#include "term/strings.h"
#include "term/vast.h"
#include <algorithm>
#include <cstdio>
#include <cstring>

namespace zg {
namespace {

constexpr size_t EANLANG = 13;
constexpr int S_NAAM = 3; // key of DTMERK

std::string trim(std::string_view tekst) {
    tekst = VASTTRIM(tekst);
    tekst.remove_prefix(std::min(tekst.find_first_not_of(' '), tekst.size()));
    return std::string(tekst);
}

// Counts the brands of one name in a walk from a record on, and says whether the walk goes on.
struct Merkteller {
    const std::string naam; // in capitals
    int aantal = 0;
    uint16_t merk = 0;

    void tel(const merkrec& rec) {
        if (GROOTKOPIE(trim(VASTUIT(rec.naam))) == naam && aantal++ == 0)
            merk = rec.merk;
    }
};

// Does the key of names file all its spellings at one place? A letter whose capital stands elsewhere parts them.
bool bijeen(const std::string& naam) {
    return std::all_of(naam.begin(), naam.end(), [](char groot) {
        const uint8_t klein = NKLEIN(static_cast<uint8_t>(groot));
        return IXCOLLATE(&klein, &groot, 1) == 0;
    });
}

template <class Verder> void loop(ICB* dtmerk, const std::string& vanaf, Merkteller* teller, Verder verder) {
    uint8_t buffer[IXRECMAX] = {};
    merkrec rec{};
    VASTIN(rec.naam, vanaf);
    memcpy(buffer, &rec, sizeof rec);
    int64_t rest = int64_t{dtmerk->h.nrecs} + 1;
    for (int er = IXFIRSTR(dtmerk, buffer, 0); er == 1 && rest > 0 && teller->aantal < 2; rest--) {
        rec = {};
        memcpy(&rec, buffer, std::min(sizeof rec, static_cast<size_t>(dtmerk->h.reclen)));
        if (!verder(rec))
            break;
        teller->tel(rec);
        er = IXNEXT(dtmerk, buffer);
    }
}

} // namespace

int edidatum(const char* tekst, char* uit) {
    const size_t n = strlen(tekst);
    *uit = '\0';
    if (n < 6)
        return 0;
    if (n == 6)
        snprintf(uit, 9, "%-2.2s%-2.2s%-2.2s", tekst + 4, tekst + 2, tekst);
    else
        snprintf(uit, 9, "%-2.2s%-2.2s%-4.4s", tekst + 6, tekst + 4, tekst);
    if (DATUMGELDIG(uit))
        return 1;
    if (n > 6) {
        WISTEKENS(uit, 4, 2);
        if (DATUMGELDIG(uit))
            return 1;
    }
    *uit = '\0';
    return 0;
}

void edigetal(char* tekst) {
    const size_t n = strlen(tekst);
    const char* punt = std::find_if(tekst, tekst + n, [](char c) { return c == '.' || c == ','; });
    for (const char* p = punt; *p; p++) // the last one of several is the point, the others part thousands
        if (*p == '.' || *p == ',')
            punt = p;
    if (!*punt)
        return;
    char* eind = tekst + n;
    while (eind - 1 > punt && eind[-1] == '0')
        eind--;
    if (eind - 1 == punt)
        eind--;
    if (eind == tekst ||
        (eind == tekst + 1 && *tekst == '-')) // nothing stood in front of the point, which has gone
        *eind++ = '0';
    *eind = '\0';
}

int ediean(char* tekst) {
    std::string code = tekst;
    if (code.size() == EANLANG + 1 && code[0] == '0')
        code.erase(0, 1);
    else if (code.size() == EANLANG - 1)
        code.insert(0, "0");
    if ((code.size() != EANLANG && code.size() != 8) || !ean_geldig(code.c_str()) ||
        (code[0] == '2' && !ean_prefix(code.c_str())))
        return 0;
    memcpy(tekst, code.c_str(), code.size() + 1);
    return 1;
}

uint16_t edimerk(ICB* dtmerk, const char* naam, int breedte) {
    if (!dtmerk)
        INTERNAL("edihdl", 1);
    Merkteller teller{GROOTKOPIE(trim(trim(naam).substr(0, static_cast<size_t>(std::max(breedte, 0)))))};
    if (teller.naam.empty() || teller.naam.size() > sizeof merkrec::naam)
        return 0;
    const int oude = IXSLEUTEL(dtmerk);
    if (dtmerk->h.nkeys >= S_NAAM && bijeen(teller.naam)) {
        IXSWITCH(dtmerk, S_NAAM);
        // Names that begin with a blank stand in front of all others.
        loop(dtmerk, " ", &teller, [](const merkrec& rec) { return rec.naam[0] == ' '; });
        loop(dtmerk, teller.naam, &teller, [&](const merkrec& rec) {
            return IXCOLLATE(rec.naam, teller.naam.c_str(), static_cast<int>(teller.naam.size())) <= 0;
        });
    } else {
        IXSWITCH(dtmerk, 1);
        loop(dtmerk, "", &teller, [](const merkrec&) { return true; });
    }
    IXSWITCH(dtmerk, oude);
    return teller.aantal == 1 ? teller.merk : 0;
}

} // namespace zg
