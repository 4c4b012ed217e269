// Sends a described job: to a queue, a device, a directory or a file. In a library of its own, with the PDF: zgspoel has it, a
// program on the screen hasn't.
#include "print/zenden.h"
#include "print/teksten.h"
#include "shared/files.h"
#include "shared/report.h"
#include "shared/syscalls.h"
#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <termios.h>
#include <thread>
#include <unistd.h>

namespace zg {
namespace {

constexpr int64_t ALLES = 1 << 30;
constexpr std::chrono::milliseconds STAP{100};
constexpr std::chrono::seconds LP_WACHT{60};
constexpr int NAMEN = 2000;

struct Dicht { // a descriptor that is closed at the end of its block
    int fd;
    ~Dicht() {
        if (fd >= 0)
            SYS.close(fd);
    }
};

// The bytes of the job between two places, each piece given to `naar`.
template <class F> bool stuk(int van, int64_t p, int64_t tot, F naar) {
    std::array<char, 32768> buffer;
    while (p < tot) {
        const size_t n = static_cast<size_t>(std::min<int64_t>(tot - p, buffer.size()));
        const ssize_t k = SYSLEES(van, buffer.data(), n, p);
        if (k <= 0) {
            errno = k ? errno : EIO; // shorter than the description says
            return false;
        }
        if (!naar(std::string(buffer.data(), static_cast<size_t>(k))))
            return false;
        p += k;
    }
    return true;
}

// The report as it leaves: control texts as they are, what is between them in the characters that the job asks for.
template <class F> bool stroom(const spooljob& job, int van, F naar) {
    const int64_t einde = SYSOMVANG(van);
    auto om = [&](const std::string& s) {
        return naar(job.tekens == "cp850" ? s : prt_omzet(s, job.tekens));
    };
    return stuk(van, 0, std::min(job.begin, einde), naar) &&
           stuk(van, job.begin, std::min(job.eind, einde), om) && stuk(van, job.eind, einde, naar);
}

bool sluit(int fd, bool goed) {
    const int fout = errno;
    if (SYS.close(fd) < 0 && goed)
        return false;
    errno = fout;
    return goed;
}

// What is sent, as a new file. False with errno; nothing is there then.
bool maak(const spooljob& job, const std::string& naar) {
    const Dicht van{SYS.open(job.spool.c_str(), O_RDONLY | O_CLOEXEC, 0)};
    if (van.fd < 0)
        return false;
    const bool pdf = job.tekens == "pdf";
    const std::string tekst = pdf ? spool_naast(job, "TMP") : naar;
    const int fd = SYSNIEUW(tekst.c_str(), O_WRONLY | O_EXCL);
    if (fd < 0)
        return false;
    auto schrijf = [fd](const std::string& s) { return SYSSCHRIJF(fd, s.data(), s.size()); };
    bool goed = sluit(fd, pdf ? stuk(van.fd, job.begin, std::min(job.eind, SYSOMVANG(van.fd)), schrijf)
                              : stroom(job, van.fd, schrijf));
    if (goed && pdf)
        goed = prt_pdf(tekst.c_str(), naar.c_str(), job.rijen, job.kolommen, job.staand, job.titel);
    const int fout = errno;
    if (pdf || !goed)
        IOUNLINK(tekst.c_str());
    errno = fout;
    return goed;
}

// The first line of what lp said, as it can be told.
std::string reden_van(std::string gezegd) {
    gezegd.resize(std::min(gezegd.find('\n'), gezegd.size()));
    if (gezegd.starts_with("lp: "))
        gezegd.erase(0, 4);
    std::replace_if(
        gezegd.begin(), gezegd.end(), [](char c) { return c < ' ' || c > '~'; }, '?');
    return gezegd;
}

bool naar_wachtrij(spooljob* job) {
    std::string bestand = job->spool;
    if (job->tekens != "cp850") {
        bestand = spool_naast(*job, "UIT");
        if (!maak(*job, bestand)) {
            job->reden = spool_reden(errno);
            return false;
        }
    }
    std::string titel = job->titel.empty() ? "zgbestel" : prt_omzet(job->titel, "utf-8");
    prt_blank(titel.data(), titel.size());
    std::vector<std::string> woorden{"lp", "-d" + job->apparaat, "-n" + std::to_string(job->kopieen), "-s",
                                     "-t" + titel};
    // Bytes that are meant for this printer, no text that the queue may lay out.
    if (job->tekens != "pdf" && (job->begin > 0 || job->tekens == "cp850" || job->tekens == "latin1"))
        woorden.insert(woorden.end(), {"-o", "raw"});
    woorden.insert(woorden.end(), {"--", bestand[0] == '/' ? bestand : "./" + bestand});
    int status = 0;
    std::string gezegd;
    if (!prt_programma(woorden, LP_WACHT, &status, &gezegd)) {
        job->reden = TXT(T_PRT_GEEN_ANTWOORD);
        job->gedaan = 1; // perhaps
        return false;
    }
    if (status == 0)
        return true;
    job->reden = gezegd.empty() ? TXT(T_PRT_LP_STATUS) + (" " + std::to_string(status >> 8))
                                : TXT(T_PRT_WACHTRIJ_WEIGERT) + (": " + reden_van(gezegd));
    return false;
}

// The line of a serial printer takes all bytes as they are while it is ours.
struct Lijn {
    int fd;
    termios was{};
    bool is_lijn;
    explicit Lijn(int f) : fd(f), is_lijn(tcgetattr(f, &was) == 0) {
        termios kaal = was;
        kaal.c_oflag &= ~static_cast<tcflag_t>(OPOST);
        kaal.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO | ISIG);
        if (is_lijn)
            tcsetattr(fd, TCSADRAIN, &kaal);
    }
    ~Lijn() {
        if (is_lijn)
            tcsetattr(fd, TCSADRAIN, &was);
    }
};

// Open without waiting in the call: a fifo that nobody reads, a printer that another has open. -1 with errno.
int open_apparaat(const std::string& pad) {
    for (;;) {
        const int fd = SYS.open(pad.c_str(), O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC, 0);
        struct stat st;
        if (fd >= 0) {
            if (SYS.fstat(fd, &st) == 0 && (S_ISCHR(st.st_mode) || S_ISFIFO(st.st_mode)) &&
                fcntl(fd, F_SETFL, O_WRONLY) == 0)
                return fd;
            SYS.close(fd);
            errno = ENODEV;
            return -1;
        }
        if (errno != EINTR && errno != EBUSY &&
            !(errno == ENXIO && stat(pad.c_str(), &st) == 0 && S_ISFIFO(st.st_mode)))
            return -1;
        std::this_thread::sleep_for(STAP);
    }
}

// All copies under one lock of the device, so that jobs come one behind the other.
bool naar_apparaat(int slot, spooljob* job) {
    const Dicht apparaat{open_apparaat(job->apparaat)};
    if (apparaat.fd < 0 || !IOFLOCK(apparaat.fd, 3, ALLES)) {
        job->reden = spool_reden(errno);
        return false;
    }
    std::string bestand;
    if (job->tekens == "pdf" && !maak(*job, bestand = spool_naast(*job, "UIT"))) {
        job->reden = spool_reden(errno);
        return false;
    }
    const Dicht van{
        SYS.open(bestand.empty() ? job->spool.c_str() : bestand.c_str(), O_RDONLY | O_CLOEXEC, 0)};
    const Lijn lijn(apparaat.fd);
    auto schrijf = [&](const std::string& s) { return SYSSCHRIJF(apparaat.fd, s.data(), s.size()); };
    for (job->stand = Spoolstand::bezig; job->gedaan < job->kopieen; job->gedaan++) {
        spool_schrijf_stand(slot, *job);
        if (van.fd < 0 || !(bestand.empty() ? stroom(*job, van.fd, schrijf)
                                            : stuk(van.fd, 0, SYSOMVANG(van.fd), schrijf))) {
            job->reden = spool_reden(errno);
            return false;
        }
        tcdrain(apparaat.fd);
    }
    return true;
}

// The i-th name for a file in a directory: that of the spool file with a T, and those behind it, "TRAB12" to "TRZZ99".
std::string mapnaam(const spooljob& job, int i) {
    constexpr int LETTERS = 26, CIJFERS = 100;
    const size_t p = job.spool.rfind('/') + 1;
    char a = 'A', b = 'A', naam[24];
    int n = 0;
    sscanf(job.spool.c_str() + p, "PR%c%c%2d", &a, &b, &n);
    a = std::clamp(a, 'A', 'Z'), b = std::clamp(b, 'A', 'Z'), n = std::max(n, 0);
    n = (((a - 'A') * LETTERS + (b - 'A')) * CIJFERS + n + i) % (LETTERS * LETTERS * CIJFERS);
    snprintf(naam, sizeof naam, "TR%c%c%02d", 'A' + n / CIJFERS / LETTERS, 'A' + n / CIJFERS % LETTERS,
             n % CIJFERS);
    return naam;
}

// One file, whatever the copies: written under a name that its reader leaves alone, then called T in place of P.
bool naar_map(spooljob* job) {
    errno = EACCES;
    if (!prt_bestaat(Printweg::map, job->apparaat)) {
        job->reden = TXT(T_PRT_NIET_OPEN);
        return false;
    }
    const std::string naam = spool_ginds(*job);
    bool klaar = maak(*job, naam);
    for (int i = 0; klaar; i++) {
        if (spool_plaats(naam, job->apparaat + "/" + mapnaam(*job, i), false))
            return true;
        klaar = errno == EEXIST && i < NAMEN;
    }
    job->reden = errno == EEXIST ? TXT(T_PRT_GEEN_NAAM) : spool_reden(errno);
    return false;
}

bool naar_bestand(spooljob* job) {
    const std::string klaar = spool_naast(*job, "UIT");
    if (maak(*job, klaar) && spool_plaats(klaar, job->apparaat, job->over))
        return true;
    job->reden = spool_reden(errno);
    return false;
}

bool zend(int slot, spooljob* job) {
    switch (job->weg) {
    case Printweg::wachtrij:
        return naar_wachtrij(job);
    case Printweg::apparaat:
        return naar_apparaat(slot, job);
    case Printweg::map:
        return naar_map(job);
    case Printweg::bestand:
        return naar_bestand(job);
    case Printweg::geen:
    case Printweg::aux:
    case Printweg::terminal:
        break;
    }
    job->reden = TXT(T_PRT_NIET_OPEN);
    return false;
}

} // namespace

bool spool_verstuur(int slot, spooljob* job) {
    // At a device it waits for its turn first; what is given to a queue or a directory may be out at any moment.
    job->stand = job->weg == Printweg::apparaat ? Spoolstand::wacht : Spoolstand::bezig;
    job->reden.clear();
    job->gemeld = false;
    spool_schrijf_stand(slot, *job);
    spool_weg_ernaast(*job); // of a sender that was killed
    struct stat st;
    const bool heel = stat(job->spool.c_str(), &st) != 0 || st.st_size >= job->eind;
    if (!heel)
        job->reden = TXT(T_PRT_NIET_HEEL);
    if (heel && zend(slot, job)) {
        spool_weg(*job);
        return true;
    }
    spool_weg_ernaast(*job);
    job->stand = Spoolstand::fout;
    spool_schrijf_stand(slot, *job);
    return false;
}

} // namespace zg
