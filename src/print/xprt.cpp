// The open job: bytes on the spool file, lines, pages, heads, and the two halves of a job without its destination.
#include "price/koers.h"
#include "print/printjob.h"
#include "print/spooljob.h"
#include "print/teksten.h"
#include "shared/files.h"
#include "shared/syscalls.h"
#include "shared/sysrec.h"
#include "term/datum.h"
#include "term/prompt.h"
#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>

namespace zg {

printjob printopdracht;

namespace {

constexpr size_t BUFFER = 64 * 1024;
constexpr std::chrono::seconds STILTE{1}; // before the keyboard is looked at
constexpr int NAMEN = 20;                 // tries of a spool file's name

void spoel() {
    printjob& job = printopdracht;
    if (!job.fout && !SYSSCHRIJF(job.fd, job.buffer.data(), job.buffer.size()))
        job.fout = errno;
    job.buffer.clear();
}

void schrijf(const std::string& bytes) {
    prt_schrijf(bytes.data(), bytes.size());
}

void blanco(int n) {
    schrijf(std::string(static_cast<size_t>(std::max(n, 0)), ' '));
}

__attribute__((format(printf, 1, 0))) std::string vorm(const char* fmt, va_list ap) {
    va_list nogmaals;
    va_copy(nogmaals, ap);
    std::string uit(static_cast<size_t>(std::max(vsnprintf(nullptr, 0, fmt, nogmaals), 0)) + 1, '\0');
    va_end(nogmaals);
    vsnprintf(uit.data(), uit.size(), fmt, ap);
    uit.pop_back();
    return uit;
}

// The next page. Without pages only the first begins one; a later one is an empty line.
void bladsprong(bool marge) {
    printjob& job = printopdracht;
    if (job.blad > 0 && !prt_bladen(job)) {
        XPRT_NL();
        return;
    }
    if (job.blad > 0)
        schrijf("\f");
    job.blad++;
    job.regel = 1;
    if (!marge)
        return;
    if (job.boven == 0)
        blanco(job.links);
    for (int i = 0; i < job.boven; i++)
        XPRT_NL();
}

} // namespace

void prt_schrijf(const char* bytes, size_t n) {
    printjob& job = printopdracht;
    if (!job.open || job.fout)
        return;
    job.buffer.append(bytes, n);
    job.plaats += static_cast<int64_t>(n);
    if (job.buffer.size() >= BUFFER)
        spoel();
}

bool prt_job_open(const printjob& vraag, const std::string& pad) {
    zigzag_start();
    printjob& job = printopdracht;
    job = vraag;
    job.fd = SYSNIEUW(pad.c_str(), O_WRONLY | O_EXCL);
    if (job.fd < 0) {
        const int fout = errno;
        zigzag_stop();
        errno = fout;
        return false;
    }
    job.spool = pad;
    job.open = true;
    job.blad = 0;
    job.regel = PRT_REGEL_VOOR;
    job.boven = job.links = 0;
    job.buffer.clear();
    job.plaats = job.fout = 0;
    job.geopend = std::chrono::steady_clock::now();
    schrijf(job.init);
    job.begin = job.plaats;
    return true;
}

bool prt_job_begin(const printjob& vraag, const std::string& map) {
    printjob job = vraag;
    errno = EEXIST;
    for (int i = 0; i < NAMEN && errno == EEXIST; i++) {
        job.spool = IOTMPNAM(map.c_str(), "PR");
        if (job.spool.empty())
            break;
        errno = EEXIST;
        if (!spool_vrij(job.spool) || (job.slot = spool_maak(spool_van(job, Spoolstand::maak))) < 0)
            continue;
        if (prt_job_open(job, job.spool))
            return true;
        const int fout = errno;
        IOUNLINK(spool_beschrijving(job.spool).c_str());
        SYS.close(job.slot);
        errno = fout;
    }
    return false;
}

void prt_job_weg() {
    printjob& job = printopdracht;
    if (job.slot >= 0) {
        spool_weg(spool_van(job, Spoolstand::maak));
        SYS.close(job.slot);
        job.slot = -1;
    } else
        IOUNLINK(job.spool.c_str());
}

Jobeind prt_job_sluit(bool onderbroken) {
    printjob& job = printopdracht;
    XPRT_REGEL();
    zigzag_stop();
    const bool leeg = job.plaats <= job.begin;
    if (!leeg) {
        if (onderbroken) {
            const std::string tekst = std::string("** ") + TXT(T_PRT_ONDERBROKEN) + " **",
                              sterren(tekst.size(), '*');
            XPRT_NL();
            XPRT_NL();
            for (const std::string* r : {&sterren, &tekst, &sterren}) {
                schrijf(*r);
                XPRT_NL();
            }
        }
        if (job.regel > 1 && prt_bladen(job))
            bladsprong(false);
        schrijf(job.exit);
        spoel();
    }
    job.open = false;
    if (SYS.close(job.fd) < 0 && !job.fout)
        job.fout = errno;
    job.fd = -1;
    if (leeg)
        prt_job_weg();
    return leeg ? Jobeind::leeg : job.fout ? Jobeind::fout : Jobeind::klaar;
}

void XPRT_STAAK() {
    printjob& job = printopdracht;
    zigzag_stop();
    job.open = false;
    SYS.close(job.fd);
    job.fd = -1;
    job.buffer.clear();
    prt_job_weg();
    ONDERBREKAAN();
    ONDERBREKRESET();
}

std::string XPRT_BESTAND() {
    return printopdracht.bestand;
}

void XPRT_WIS() {
    zigzag_leeg();
    if (printopdracht.open)
        spoel();
}

void XPRT_NL() {
    schrijf("\n");
    printopdracht.regel++;
    blanco(printopdracht.links);
}

void XPRT_FF() {
    bladsprong(true);
}

void XPRT_BLAD() {
    XPRT_REGEL();
    XPRT_FF();
}

void XPRT_MARGE(int boven, int links) {
    printopdracht.boven = std::max(boven, 0);
    printopdracht.links = std::max(links, 0);
}

void XPRT_RAW(const char* fmt, ...) {
    va_list ap;
    va_start(ap, fmt);
    schrijf(vorm(fmt, ap));
    va_end(ap);
}

void XPRT_BYTES(const std::string& bytes) {
    XPRT_REGEL();
    schrijf(bytes);
}

void XPRT_KOP(const char* links, const char* fmt, ...) {
    va_list ap;
    va_start(ap, fmt);
    std::string midden = vorm(fmt, ap), kop = links ? links : "";
    va_end(ap);
    prt_blank(midden.data(), midden.size());
    prt_blank(kop.data(), kop.size());
    XPRT_BLAD();
    const printjob& job = printopdracht;
    char rechts[80];
    snprintf(rechts, sizeof rechts, " %s %5.5s %.40s:%4d", DATUM10(VANDAAG()), TIJDTEKST(NUSECONDEN()),
             TXT(T_PRT_BLAD), job.blad);
    const auto breedte = static_cast<size_t>(std::max(job.kolommen, 0));
    const size_t zijden = kop.size() + strlen(rechts);
    auto regel = [&](const std::string& tekst) {
        schrijf(tekst.substr(0, breedte));
        XPRT_NL();
    };
    auto marge = [&](size_t bezet) { return std::string(bezet < breedte ? (breedte - bezet) / 2 : 0, ' '); };
    if (zijden + midden.size() + 2 <= breedte) {
        const std::string ruimte = marge(zijden + midden.size());
        regel(kop + ruimte + midden + ruimte + rechts);
    } else {
        kop.resize(breedte > strlen(rechts) ? breedte - strlen(rechts) : 0, ' ');
        regel(kop + rechts);
        regel(marge(midden.size()) + midden);
    }
    XPRT_NL();
}

void XPRT_BEDRAGIN(const char* valuta, int64_t bedrag, int breedte) {
    const std::string tekst = bedrag_tekst(valuta, bedrag);
    if (tekst.find('.') != std::string::npos)
        XPRT_PRINT("%*.2lf", breedte, strtod(tekst.c_str(), nullptr));
    else
        XPRT_PRINT("%*ld", breedte, static_cast<long>(bedrag));
}

void XPRT_BEDRAG(int64_t bedrag, int breedte) {
    XPRT_BEDRAGIN(instel15.valuta, bedrag, breedte);
}

bool XPRT_STOP() {
    // Not at once: keys typed ahead of a short report are for the screen behind it.
    return std::chrono::steady_clock::now() - printopdracht.geopend > STILTE && ONDERBREKEN();
}

bool XPRT_VOL(int regels) {
    const printjob& job = printopdracht;
    // A line may take two rows, and its feed goes one further.
    return job.blad == 0 || (prt_bladen(job) && job.regel + regels + 1 > job.rijen);
}

int XPRT_KOLOMMEN() {
    return printopdracht.kolommen;
}

int XPRT_RIJEN() {
    return prt_bladen(printopdracht) ? printopdracht.rijen : 0;
}

} // namespace zg
