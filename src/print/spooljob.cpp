// The description of a job that has been handed over, what is left behind, and the start of the program that sends it.
#include "print/spooljob.h"
#include "print/printtabel.h"
#include "print/teksten.h"
#include "shared/files.h"
#include "shared/report.h"
#include "shared/syscalls.h"
#include "shared/sysrec.h"
#include "term/plaats.h"
#include <algorithm>
#include <cerrno>
#include <charconv>
#include <climits>
#include <csignal>
#include <cstring>
#include <ctime>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace zg {
namespace {

constexpr char STAART[] = ".JOB", KENMERK[] = "zgspoel 1", EINDE[] = "einde\n", ZENDER[] = "zgspoel";
constexpr size_t STANDREGEL = 160, MAX = 8192; // the first line; a whole description
constexpr const char* STANDEN[] = {"wacht", "bezig", "fout", "maak"};
constexpr const char* WEGEN[] = {"geen", "wachtrij", "apparaat", "map", "aux", "terminal", "bestand"};
constexpr int SLOT = 3; // where zgspoel finds the lock

// As control texts are written: a "\" and two hex digits for what would break the line.
std::string veilig(const std::string& tekst) {
    std::string uit;
    for (const char c : tekst)
        if (static_cast<unsigned char>(c) < ' ' || c == '\\') {
            char hex[4];
            snprintf(hex, sizeof hex, "\\%02X", static_cast<unsigned>(c));
            uit += hex;
        } else
            uit += c;
    return uit;
}

std::string standregel(const spooljob& job) {
    std::string reden = job.reden.substr(0, SPOOLREDEN);
    prt_blank(reden.data(), reden.size());
    std::string uit = std::string(KENMERK) + " " + STANDEN[static_cast<int>(job.stand)] + " " +
                      std::to_string(std::clamp(job.gedaan, 0, 9999)) + " " + (job.gemeld ? "1 " : "0 ") +
                      reden;
    uit.resize(STANDREGEL - 1, ' ');
    return uit + "\n";
}

std::string heel(const spooljob& job) {
    std::string tekst = standregel(job);
    auto veld = [&](const char* naam, const std::string& waarde) {
        tekst += std::string(naam) + " " + veilig(waarde) + "\n";
    };
    auto getal = [&](const char* naam, int breedte, int64_t n) {
        char cijfers[32];
        snprintf(cijfers, sizeof cijfers, "%0*lld", breedte, static_cast<long long>(n));
        veld(naam, cijfers);
    };
    veld("weg", WEGEN[static_cast<int>(job.weg)]);
    veld("apparaat", job.apparaat);
    veld("titel", job.titel.substr(0, 120));
    veld("tekens", job.tekens);
    getal("kopieen", 5, job.kopieen);
    getal("rijen", 1, job.rijen);
    getal("kolommen", 1, job.kolommen);
    getal("staand", 1, job.staand);
    getal("over", 1, job.over);
    getal("begin", 12, job.begin);
    getal("eind", 12, job.eind);
    getal("sessie", 1, job.sessie);
    getal("tijd", 12, job.tijd);
    return tekst + EINDE;
}

// Was it cut off while it was made? Nothing has been printed then.
bool half(int fd, const std::string& spool) {
    char begin[sizeof KENMERK - 1];
    const ssize_t n = SYSLEES(fd, begin, sizeof begin, 0);
    return n >= 0 && memcmp(begin, KENMERK, static_cast<size_t>(n)) == 0 && !spool.empty() &&
           !IOEXISTS(spool.c_str());
}

template <class T> bool getal(const std::string& tekst, T* uit) {
    const char* einde = tekst.data() + tekst.size();
    const auto [tot, fout] = std::from_chars(tekst.data(), einde, *uit);
    return fout == std::errc() && tot == einde;
}

template <size_t N> bool keuze(const std::string& tekst, const char* const (&namen)[N], int* uit) {
    const auto p = std::find(std::begin(namen), std::end(namen), tekst);
    *uit = static_cast<int>(p - std::begin(namen));
    return p != std::end(namen);
}

// The word up to a blank, taken off the front.
std::string woord(std::string* tekst) {
    const size_t n = std::min(tekst->find(' '), tekst->size());
    const std::string uit = tekst->substr(0, n);
    tekst->erase(0, n + 1);
    return uit;
}

bool ontleed_stand(std::string regel, spooljob* job) {
    if (regel.compare(0, sizeof KENMERK, std::string(KENMERK) + " ") != 0)
        return false;
    regel.erase(0, sizeof KENMERK);
    int stand = 0, gemeld = 0;
    if (!keuze(woord(&regel), STANDEN, &stand) || !getal(woord(&regel), &job->gedaan) ||
        !getal(woord(&regel), &gemeld))
        return false;
    job->stand = static_cast<Spoolstand>(stand);
    job->gemeld = gemeld != 0;
    job->reden = regel.substr(0, regel.find_last_not_of(' ') + 1);
    return true;
}

bool ontleed_veld(const std::string& naam, const std::string& waarde, spooljob* job) {
    int weg = 0, vlag = 0;
    if (naam == "weg") {
        const bool goed = keuze(waarde, WEGEN, &weg);
        job->weg = goed ? static_cast<Printweg>(weg) : Printweg::geen;
        return goed;
    }
    for (const auto& [n, veld] : {std::pair{"staand", &job->staand}, std::pair{"over", &job->over}})
        if (naam == n) {
            const bool goed = getal(waarde, &vlag);
            *veld = vlag != 0;
            return goed;
        }
    for (const auto& [n, veld] : {std::pair{"apparaat", &job->apparaat}, std::pair{"titel", &job->titel},
                                  std::pair{"tekens", &job->tekens}})
        if (naam == n) {
            *veld = prt_bytes(waarde.data(), waarde.size());
            return true;
        }
    for (const auto& [n, veld] : {std::pair{"kopieen", &job->kopieen}, std::pair{"rijen", &job->rijen},
                                  std::pair{"kolommen", &job->kolommen}, std::pair{"sessie", &job->sessie}})
        if (naam == n)
            return getal(waarde, veld);
    for (const auto& [n, veld] :
         {std::pair{"begin", &job->begin}, std::pair{"eind", &job->eind}, std::pair{"tijd", &job->tijd}})
        if (naam == n)
            return getal(waarde, veld);
    return true; // of a later version
}

bool uitvoerbaar(const std::string& pad) {
    return access(pad.c_str(), X_OK) == 0 && !IOISDIR(pad.c_str());
}

// Beside the running program, or where the programs of the package are looked for.
std::string zender() {
    std::string pad = EIGENMAP() + ZENDER;
    if (pad != ZENDER && uitvoerbaar(pad))
        return pad;
    for (const char* variabele : {"TSTBIN", "BIN"})
        if (const char* map = getenv(variabele); map && *map)
            if (pad = std::string(map) + "/" + ZENDER; uitvoerbaar(pad))
                return pad;
    return ZENDER; // along the path
}

} // namespace

std::string spool_beschrijving(const std::string& spool) {
    return spool + STAART;
}

std::string spool_bestand(const std::string& beschrijving) {
    const size_t n = sizeof STAART - 1;
    return beschrijving.size() > n && beschrijving.compare(beschrijving.size() - n, n, STAART) == 0
               ? beschrijving.substr(0, beschrijving.size() - n)
               : std::string();
}

std::string spool_naast(const spooljob& job, const char* soort) {
    return job.spool + "." + soort;
}

std::string spool_ginds(const spooljob& job) {
    if (job.weg != Printweg::map)
        return "";
    struct stat st {};
    stat(spool_beschrijving(job.spool).c_str(), &st); // zeros when somebody took it away
    char eigen[40];
    snprintf(eigen, sizeof eigen, ".%llx-%llx", static_cast<unsigned long long>(st.st_dev),
             static_cast<unsigned long long>(st.st_ino));
    return job.apparaat + "/" + job.spool.substr(job.spool.rfind('/') + 1) + eigen;
}

void spool_weg_ernaast(const spooljob& job) {
    for (const std::string& pad : {spool_naast(job, "UIT"), spool_naast(job, "TMP"), spool_ginds(job)})
        if (!pad.empty())
            IOUNLINK(pad.c_str());
}

spooljob spool_van(const printjob& job, Spoolstand stand) {
    spooljob uit{};
    uit.spool = job.spool;
    uit.weg = job.weg;
    uit.apparaat = job.apparaat;
    uit.titel = job.titel;
    uit.tekens = job.tekens;
    uit.kopieen = job.kopieen;
    uit.rijen = job.rijen;
    uit.kolommen = job.kolommen;
    uit.staand = job.staand;
    uit.over = job.over;
    uit.begin = job.begin;
    uit.eind = std::max(job.begin, job.plaats - static_cast<int64_t>(job.exit.size()));
    uit.sessie = sessie;
    uit.tijd = time(nullptr);
    uit.stand = stand;
    return uit;
}

int spool_maak(const spooljob& job) {
    const std::string pad = spool_beschrijving(job.spool);
    const std::string tekst = heel(job);
    const int fd = SYSNIEUW(pad.c_str(), O_RDWR | O_EXCL);
    if (fd < 0)
        return -1;
    struct stat st;
    int fout = 0;
    if (!IOLOCKERF(fd))
        fout = errno == EAGAIN ? EEXIST : errno;
    else if (SYS.fstat(fd, &st) == 0 && st.st_nlink == 0)
        fout = EEXIST; // somebody came upon it unlocked, and took it for one that was left
    else if (SYSSCHRIJF(fd, tekst.data(), tekst.size()))
        return fd;
    else
        fout = errno;
    SYS.close(fd);
    if (fout != EEXIST)
        SYS.unlink(pad.c_str());
    errno = fout;
    return -1;
}

bool spool_lees(int fd, const std::string& beschrijving, spooljob* job) {
    std::string tekst(MAX, '\0');
    const ssize_t n = SYSLEES(fd, tekst.data(), tekst.size(), 0);
    tekst.resize(n > 0 ? static_cast<size_t>(n) : 0);
    *job = {};
    job->spool = spool_bestand(beschrijving);
    if (job->spool.empty() || tekst.size() < STANDREGEL || tekst[STANDREGEL - 1] != '\n' ||
        !ontleed_stand(tekst.substr(0, STANDREGEL - 1), job))
        return false;
    bool einde = false;
    for (size_t p = STANDREGEL, q; !einde && (q = tekst.find('\n', p)) != std::string::npos; p = q + 1) {
        std::string regel = tekst.substr(p, q - p);
        einde = regel + "\n" == EINDE;
        const std::string naam = woord(&regel);
        if (!einde && !ontleed_veld(naam, regel, job))
            return false;
    }
    return einde && (job->weg != Printweg::geen || job->stand == Spoolstand::maak) && job->kopieen >= 1 &&
           job->begin >= 0 && job->eind >= job->begin;
}

int spool_neem(const std::string& beschrijving, spooljob* job) {
    const int fd = SYS.open(beschrijving.c_str(), O_RDWR | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, 0);
    if (fd < 0)
        return -1;
    int fout = IOLOCKERF(fd) ? 0 : errno;
    if (!spool_lees(fd, beschrijving, job)) {
        if (!fout && half(fd, job->spool))
            SYS.unlink(beschrijving.c_str());
        fout = EINVAL;
    } else if (!fout && job->stand == Spoolstand::maak) {
        spool_weg(*job);
        fout = ENOENT;
    }
    if (!fout)
        return fd;
    SYS.close(fd);
    errno = fout;
    return -1;
}

bool spool_schrijf(int fd, const spooljob& job) {
    const std::string tekst = heel(job);
    return SYSSCHRIJFOP(fd, tekst.data(), tekst.size(), 0);
}

bool spool_schrijf_stand(int fd, const spooljob& job) {
    return SYSSCHRIJFOP(fd, standregel(job).data(), STANDREGEL, 0);
}

bool spool_plaats(const std::string& van, const std::string& naar, bool over) {
    const int fd = SYS.open(van.c_str(), O_RDONLY | O_CLOEXEC, 0);
    if (fd < 0)
        return false;
    const bool vast = SYS.fsync(fd) == 0 || errno == EINVAL; // no such thing there
    const int fout = errno;
    SYS.close(fd);
    errno = fout;
    if (!vast)
        return false;
    if (over)
        return SYS.rename(van.c_str(), naar.c_str()) == 0;
    if (SYS.link(van.c_str(), naar.c_str()) == 0) {
        SYS.unlink(van.c_str());
        return true;
    }
    // Not every file system has links.
    if (errno == EPERM || errno == EOPNOTSUPP || errno == ENOSYS || errno == EMLINK)
        return renameat2(AT_FDCWD, van.c_str(), AT_FDCWD, naar.c_str(), RENAME_NOREPLACE) == 0;
    return false;
}

void spool_weg(const spooljob& job) {
    spool_weg_ernaast(job);
    if (IOUNLINK(job.spool.c_str()))
        IOUNLINK(spool_beschrijving(job.spool).c_str());
}

bool spool_verdwenen(const spooljob& job) {
    return (job.stand == Spoolstand::fout ||
            (job.stand == Spoolstand::wacht && job.weg != Printweg::bestand)) &&
           !IOEXISTS(job.spool.c_str());
}

Spoolpad spool_kijk(const std::string& beschrijving, spooljob* job) {
    const int fd = spool_neem(beschrijving, job);
    if (fd < 0)
        return errno == EAGAIN ? Spoolpad::bezig : Spoolpad::weg;
    const bool uit = !IOEXISTS(job->spool.c_str()) && (job->gemeld || !spool_verdwenen(*job));
    if (uit)
        spool_weg(*job);
    SYS.close(fd);
    return uit ? Spoolpad::weg : Spoolpad::blijft;
}

bool spool_vrij(const std::string& spool) {
    const std::string beschrijving = spool_beschrijving(spool);
    spooljob job;
    if (IOEXISTS(beschrijving.c_str()))
        spool_kijk(beschrijving, &job); // of one that is out it goes
    return !IOEXISTS(beschrijving.c_str());
}

std::vector<std::string> spool_beschrijvingen(const std::string& map) {
    std::vector<std::string> uit;
    char naam[DIRNAAM];
    snprintf(naam, sizeof naam, "%sPR????%s", map.c_str(), STAART);
    if (!DIRECTORY('O', naam, 0))
        return uit;
    while (DIRECTORY('N', naam, 0))
        uit.push_back(naam);
    DIRECTORY('C', naam, 0);
    return uit;
}

std::vector<spooljob> spool_achtergebleven(const std::string& map) {
    std::vector<spooljob> uit;
    for (const std::string& n : spool_beschrijvingen(map))
        if (spooljob job; spool_kijk(n, &job) == Spoolpad::blijft)
            uit.push_back(job);
    std::stable_sort(uit.begin(), uit.end(),
                     [](const spooljob& a, const spooljob& b) { return a.tijd < b.tijd; });
    return uit;
}

const char* spool_reden(int fout) {
    return fout == EEXIST   ? TXT(T_PRT_BESTAAT_AL)
           : fout == ENODEV ? TXT(T_PRT_GEEN_APPARAAT)
           : fout == EPIPE  ? TXT(T_PRT_ONTVANGER_WEG)
           : fout           ? IOREDEN(fout)
                            : "";
}

bool spool_start(int fd, const spooljob& job, bool wacht) {
    const std::string program = zender(), beschrijving = spool_beschrijving(job.spool);
    std::string opties = wacht ? "-3w" : "-3", pad = beschrijving;
    char* argv[] = {const_cast<char*>(ZENDER), opties.data(), pad.data(), nullptr};
    posix_spawn_file_actions_t daden;
    posix_spawnattr_t hoe;
    sigset_t alle, geen;
    sigfillset(&alle);
    sigemptyset(&geen);
    int fout = posix_spawn_file_actions_init(&daden);
    if (fout == 0 && (fout = posix_spawnattr_init(&hoe)) != 0)
        posix_spawn_file_actions_destroy(&daden);
    if (fout == 0) {
        // The lock first: it may lie where one of the others goes.
        pid_t pid = -1;
        const int over = fcntl(fd, F_DUPFD_CLOEXEC, 10);
        fout = over < 0 ? errno : posix_spawn_file_actions_adddup2(&daden, over, SLOT);
        for (int i = 0; i < SLOT && fout == 0; i++)
            fout = posix_spawn_file_actions_addopen(&daden, i, "/dev/null", O_RDWR, 0);
        if (fout == 0)
            fout = posix_spawn_file_actions_addclosefrom_np(&daden, SLOT + 1);
        posix_spawnattr_setsigdefault(&hoe, &alle);
        posix_spawnattr_setsigmask(&hoe, &geen);
        posix_spawnattr_setflags(
            &hoe, static_cast<short>(POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSID));
        if (fout == 0)
            fout = posix_spawnp(&pid, program.c_str(), &daden, &hoe, argv, environ);
        posix_spawnattr_destroy(&hoe);
        posix_spawn_file_actions_destroy(&daden);
        if (over >= 0)
            close(over);
        int status = 0;
        if (fout == 0) {
            while (waitpid(pid, &status, 0) < 0 && errno == EINTR)
                ;
            errno = 0;
            return WIFEXITED(status) && WEXITSTATUS(status) == 0;
        }
    }
    errno = fout;
    return false;
}

} // namespace zg
