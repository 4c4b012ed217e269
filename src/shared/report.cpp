// Error reports: one line with the module's tag and its number, handed to the abort box.
#include "shared/report.h"
#include "shared/teksten.h"
#include "term/natl.h"
#include "term/teksten.h"
#include <cerrno>
#include <cstring>

namespace zg {
namespace {

// A tag given as a path reports as the plain lower-case name. Static: a report must not allocate.
const char* plat(const char* tag) {
    static char uit[64];
    if (!tag)
        tag = "";
    if (const char* schuin = strrchr(tag, '/'))
        tag = schuin + 1;
    size_t n = 0;
    for (; tag[n] && tag[n] != '.' && n < sizeof uit - 1; n++)
        uit[n] = static_cast<char>(NKLEIN(static_cast<uint8_t>(tag[n])));
    uit[n] = 0;
    return uit;
}

} // namespace

void NOMEM(const char* tag, int nr) {
    SCRFATAL("%s: %s (nr=%d)", plat(tag), TXT(T_ONVOLDOENDE_GEHEUGEN), nr);
}

void OPENFAIL(const char* tag, const char* bestand) {
    int fout = errno;
    SCRFATAL("%s: %s (file=%s, errno=%d)", plat(tag), TXT(T_OPEN_NIET_GELUKT), bestand ? bestand : "", fout);
}

void BADKEY(const char* tag, const char* naam, int keynr, int verwacht) {
    SCRFATAL("%s: %s (file=%.11s, keynr=%d/%d)", plat(tag), TXT(T_ONJUIST_KEYNR), naam, keynr, verwacht);
}

void INTERNAL(const char* tag, int nr) {
    SCRFATAL("%s: errno=%d", plat(tag), nr);
}

void IOFAIL(const char* tag, int nr) {
    INTERNAL(tag, nr);
}

} // namespace zg
