// Reports and boxes of the store, and the names of a pair's two files.
#include "shared/report.h"
#include "store/bestand.h"
#include "store/getuige.h"
#include "store/node.h"
#include "store/teksten.h"
#include "term/prompt.h"
#include "term/scherm.h"
#include <cerrno>
#include <cstdarg>
#include <cstdio>

namespace zg {

void IXEIS(const ICB* icb, const char* tag) {
    if (!icb)
        SCRFATAL(TXT(T_ICB_NULL), tag);
}

void IXSTUK(const ICB* icb, int32_t blok) {
    char wat[64];
    snprintf(wat, sizeof wat, TXT(T_IX_NIET_CONSISTENT_BLOK), static_cast<long>(blok));
    // The name as it was opened: the one in a damaged header may be anything.
    std::string naam = IXNAAM(icb->path);
    SCRFATAL(TXT(T_IX_REGEL), naam.c_str(), icb->h.title, wat);
}

void IXINCONSISTENT(const ICB* icb) {
    SCRFATAL(TXT(T_IX_REGEL), icb->h.name, icb->h.title, TXT(T_IX_NIET_CONSISTENT));
}

void IXEISPAAR(ICB* icb, bool slot) {
    int64_t omvang = INT64_MAX;
    if (icb->tempidx || !IXBESTANDBEURT(icb->idxfd, slot))
        return;
    if (IXBESTANDVERVANGEN(icb->idxfd) || IXBESTANDVERVANGEN(icb->datfd, &omvang))
        SCRFATAL(TXT(T_IX_REGEL), icb->h.name, icb->h.title, TXT(T_IX_VERVANGEN));
    if (IXTEKORT(icb, omvang))
        IXINGEKORT(icb);
}

void IXSCHIJFFOUT(const ICB* icb, int fd, int64_t plaats, int lengte) {
    char naam[sizeof icb->h.name + 1] = {};
    memcpy(naam, icb->h.name, sizeof icb->h.name);
    const int fout = errno;
    STOPREDEN(fout);
    if (icb->h.busy) { // the pair stays marked
        char reden[120];
        snprintf(reden, sizeof reden, TXT(T_IX_HERBOUW), SCRFATALREDEN());
        SCRFATALREDEN(reden);
    }
    SCRFATAL(TXT(T_QUILLDB_SEEK), fout, naam, icb->idxfd, icb->datfd, fd, static_cast<long>(plaats),
             static_cast<unsigned>(lengte));
}

int IXWEIGERINGEN;

void IXGEWEIGERD(const ICB* icb, int fout, const char* gevolg) {
    IXWEIGERINGEN++;
    SCHRIJFFOUT(IXNAAM(icb->path).c_str(), fout, gevolg ? gevolg : TXT(T_IX_NIET_OPGESLAGEN));
}

void IXWAARSCHUW(const char* titel, const char* fmt, ...) {
    char tekst[1024];
    va_list ap;
    va_start(ap, fmt);
    vsnprintf(tekst, sizeof tekst, fmt, ap);
    va_end(ap);
    if (SCHERM.bestaat)
        FFLASH(-1, 2, A_WAARDE, titel, "%s", tekst);
    else
        fprintf(stderr, "%s: %s\n", titel, tekst);
}

int IXJANEE(const char* titel, const char* fmt, ...) {
    char tekst[1024];
    va_list ap;
    va_start(ap, fmt);
    vsnprintf(tekst, sizeof tekst, fmt, ap);
    va_end(ap);
    return SCHERM.bestaat ? FFLASH(-2, 2, A_WAARDE, titel, "%s", tekst) : 0;
}

void BADKEY(const char* tag, const ICB* icb, int verwacht) {
    IXEIS(icb, tag);
    BADKEY(tag, icb->h.name, IXSLEUTEL(icb), verwacht);
}

std::string IXNAAM(const char* naam) {
    const char* schuin = strrchr(naam, '/');
    return schuin ? schuin + 1 : naam;
}

bool IXTIJDELIJKENAAM(const char* naam) {
    return IXNAAM(naam).find('.') != std::string::npos;
}

std::string IXINDEXPAD(const char* naam) {
    return IXTIJDELIJKENAAM(naam) ? std::string(naam) : std::string(naam) + ".INX";
}

std::string IXDATAPAD(const char* naam) {
    std::string pad = naam;
    size_t begin = pad.rfind('/');
    begin = begin == std::string::npos ? 0 : begin + 1;
    return pad.substr(0, pad.find('.', begin)) + ".TXT";
}

} // namespace zg
