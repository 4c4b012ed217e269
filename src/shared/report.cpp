// Error reports: one line with the module's tag and its number, handed to the abort box.
#include "shared/report.h"
#include "shared/files.h"
#include "shared/schrijfstilte.h"
#include "shared/syscalls.h"
#include "shared/teksten.h"
#include "term/natl.h"
#include "term/prompt.h"
#include "term/teksten.h"
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <unistd.h>

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

const char* IOREDEN(int fout) {
    static char nummer[32];
    static constexpr struct {
        int fout;
        const Tekst* woorden;
    } redenen[] = {
        {EACCES, &T_GEEN_RECHTEN},        {EPERM, &T_GEEN_RECHTEN},
        {EROFS, &T_ALLEEN_LEZEN},         {ENOENT, &T_BESTAAT_NIET},
        {ENOTDIR, &T_BESTAAT_NIET},       {EISDIR, &T_IS_MAP},
        {ENOSPC, &T_SCHIJF_VOL},          {EDQUOT, &T_SCHIJF_VOL},
        {EFBIG, &T_BESTAND_TE_GROOT},     {EIO, &T_IO_FOUT},
        {EOVERFLOW, &T_BESTAND_TE_GROOT}, {EMFILE, &T_TEVEEL_OPEN},
        {ENFILE, &T_TEVEEL_OPEN},         {ENOLCK, &T_GEEN_SLOTEN},
        {EOPNOTSUPP, &T_GEEN_SLOTEN},     {ENOTCONN, &T_VERBINDING},
        {ESTALE, &T_VERBINDING},          {EBADFD, &T_VERBINDING},
        {EHOSTDOWN, &T_VERBINDING},       {EREMOTEIO, &T_IO_FOUT},
        {ETIMEDOUT, &T_VERBINDING},       {ECONNABORTED, &T_VERBINDING},
        {ECANCELED, &T_SLOT_WEG},
    };
    for (const auto& r : redenen)
        if (r.fout == fout)
            return TXT(*r.woorden);
    snprintf(nummer, sizeof nummer, TXT(T_FOUT_NR), fout);
    return nummer;
}

void STOPREDEN(int fout) {
    SCRFATALREDEN(IOREDEN(fout));
}

std::string IOFDNAAM(int fd) {
    return IOBASENAME(SYSFDPAD(fd).c_str());
}

void IOLEESFOUT(int fd) {
    const int fout = errno;
    STOPREDEN(fout);
    SCRFATAL(TXT(T_NIET_GELEZEN), IOFDNAAM(fd).c_str(), fout);
}

ssize_t IOLEES(int fd, void* buf, size_t n, int64_t plaats) {
    const ssize_t gelezen = SYSLEES(fd, buf, n, plaats);
    if (gelezen < 0)
        IOLEESFOUT(fd);
    return gelezen;
}

int64_t IOOMVANG(int fd) {
    const int64_t omvang = SYSOMVANG(fd);
    if (omvang < 0)
        IOLEESFOUT(fd);
    return omvang;
}

void ALARMBOX(const char* regel1, const char* regel2, const char* regel3) {
    if (SCHERM.bestaat) {
        MELDBOX(MELD_ALARM, regel1, regel2, regel3);
        return;
    }
    for (const char* r : {regel1, regel2, regel3})
        if (r)
            fprintf(stderr, "%s\n", CP850UTF8(r).c_str());
}

void SCHRIJFFOUT(const char* bestand, int fout, const char* regel2, const char* regel3) {
    char regel[120];
    snprintf(regel, sizeof regel, TXT(T_NIET_GESCHREVEN), bestand, IOREDEN(fout));
    if (SCHRIJFSTIL)
        *SCHRIJFSTIL = regel;
    else
        ALARMBOX(regel, regel2, regel3);
}

void NOMEM(const char* tag, int nr) {
    SCRFATAL("%s: %s (nr=%d)", plat(tag), TXT(T_ONVOLDOENDE_GEHEUGEN), nr);
}

void OPENFAIL(const char* tag, const char* bestand) {
    int fout = errno;
    STOPREDEN(fout);
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
