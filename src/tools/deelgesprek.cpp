#include "tools/deelgesprek.h"
#include "shared/syscalls.h"
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <random>
#include <unistd.h>

namespace zg {

namespace fs = std::filesystem;

void (*DEELSTAP)(const std::string&) = [](const std::string&) {};

namespace {

constexpr char HEEN[] = "vraag", TERUG[] = "antwoord", WACHT[] = "wacht", BEURT[] = "beurt";
constexpr size_t BERICHT = 4096;
constexpr double GEDULD = 60; // seconds for an answer; old data are seconds old as a rule
constexpr int64_t RONDES = 1'000'000;

// Check sum, number and pair come first, so that half a message is none.
uint64_t som(const std::string& s) {
    uint64_t h = 14695981039346656037u;
    for (const char c : s)
        h = (h ^ static_cast<uint8_t>(c)) * 1099511628211u;
    return h;
}

std::string getal(uint64_t n) {
    char t[24];
    snprintf(t, sizeof t, "%016llx", static_cast<unsigned long long>(n));
    return t;
}

// Text of the message in a file; "" when there is none that is whole.
std::string lees(const char* naam) {
    std::string s(BERICHT, '\0');
    const int fd = SYS.open(deel_pad(naam).c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW, 0);
    if (fd >= 0)
        posix_fadvise(fd, 0, 0, POSIX_FADV_DONTNEED); // some keep their pages over openings
    const ssize_t n = fd < 0 ? -1 : SYSLEES(fd, s.data(), BERICHT, 0);
    if (fd >= 0)
        SYS.close(fd);
    s.resize(n > 0 ? static_cast<size_t>(n) : 0);
    s.resize(strnlen(s.data(), s.size()));
    return s.size() > 17 && s.compare(0, 16, getal(som(s.substr(17)))) == 0 ? s.substr(17) : "";
}

} // namespace

std::string deel_pad(const char* naam) {
    return std::string(DEELMAP) + "/" + naam;
}

double deel_nu() {
    timespec t;
    clock_gettime(CLOCK_MONOTONIC, &t);
    return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_nsec) / 1e9;
}

void deel_rust(double* pauze) {
    usleep(static_cast<useconds_t>(*pauze * 1e6));
    *pauze = std::min(*pauze * 1.3, 0.02);
}

int deel_slot(int fd, char soort, int64_t start, int64_t lengte) {
    struct flock s {};
    s.l_type = static_cast<short>(soort == 'r' ? F_RDLCK : soort == 'w' ? F_WRLCK : F_UNLCK);
    s.l_whence = SEEK_SET;
    s.l_start = start;
    s.l_len = lengte;
    while (SYS.slot(fd, F_SETLK, &s) < 0)
        if (errno != EINTR)
            return errno == EAGAIN || errno == EACCES ? 0 : -1;
    return 1;
}

char deel_wie(int fd, int64_t start, int64_t lengte) {
    struct flock s {};
    s.l_type = F_WRLCK;
    s.l_whence = SEEK_SET;
    s.l_start = start;
    s.l_len = lengte;
    while (SYS.slot(fd, F_GETLK, &s) < 0)
        if (errno != EINTR)
            return 'E';
    return s.l_type == F_UNLCK ? 'u' : s.l_type == F_RDLCK ? 'r' : 'w';
}

bool Deelgesprek::zend(const char* naam, const std::string& tekst) {
    std::string s = getal(sleutel_) + " " + std::to_string(nummer_) + " " + tekst.substr(0, BERICHT - 64);
    s = getal(som(s)) + " " + s;
    s.resize(BERICHT);
    const int fd = SYSNIEUW(deel_pad(naam).c_str(), O_RDWR | O_NOFOLLOW);
    if (fd < 0)
        return false;
    const bool goed = SYSSCHRIJFOP(fd, s.data(), s.size(), 0);
    return (SYS.close(fd) == 0) && goed;
}

// The message of this pair's present number, "" when it doesn't come.
std::string Deelgesprek::ontvang(const char* naam, double seconden) {
    const std::string begin = getal(sleutel_) + " " + std::to_string(nummer_) + " ";
    double pauze = 0.001;
    for (const double einde = deel_nu() + seconden; deel_nu() < einde; deel_rust(&pauze)) {
        DEELSTAP("a message read");
        if (const std::string s = lees(naam); s.starts_with(begin))
            return s.substr(begin.size());
    }
    return "";
}

Deelgesprek::Begin Deelgesprek::wacht(int seconden, std::string* fout) {
    *fout = std::string(DEELMAP) + ": ";
    if (!SYSNIEUWEMAP(DEELMAP) && errno != EEXIST)
        return *fout += strerror(errno), MISLUKT;
    slot_ = SYSNIEUW(deel_pad(WACHT).c_str(), O_RDWR | O_NOFOLLOW);
    const int had = slot_ < 0 ? -1 : deel_slot(slot_, 'w', 0, 1);
    if (had < 0)
        return *fout +=
               std::string(slot_ < 0 ? "can't be written" : "no locks") + " (" + strerror(errno) + ")",
               MISLUKT;
    if (had == 0)
        return *fout += "another zgdeel waits here", BEZET;
    std::error_code e;
    for (const auto& d : fs::directory_iterator(DEELMAP, e)) // of one that was killed
        if (d.path().filename() != WACHT)
            SYS.unlink(d.path().c_str());
    std::random_device toeval;
    sleutel_ = (uint64_t{toeval()} << 32 | toeval()) ^ static_cast<uint64_t>(getpid());
    nummer_ = 0;
    if (!zend(TERUG, "zgdeel 1"))
        return *fout += strerror(errno), MISLUKT;
    nummer_ = 1;
    if (ontvang(HEEN, seconden).empty())
        return NIEMAND;
    return antwoord("zgdeel 1") ? BEGONNEN : MISLUKT;
}

Deelgesprek::Begin Deelgesprek::zoek(int seconden, std::string* fout) {
    double pauze = 0.01;
    for (const double einde = deel_nu() + seconden; deel_nu() < einde; deel_rust(&pauze)) {
        DEELSTAP("the other side looked for");
        const std::string s = lees(TERUG); // "key number zgdeel 1"; one of an earlier pair gets no answer
        const uint64_t sleutel = strtoull(s.substr(0, 16).c_str(), nullptr, 16);
        if (s.size() < 27 || s.compare(18, 8, " zgdeel ") != 0)
            continue;
        if (s.substr(19) != "zgdeel 1")
            return *fout = "the zgdeel that waits is of another release", MISLUKT;
        if (s[17] == '1' && sleutel == sleutel_)
            return BEGONNEN;
        if (s[17] != '0' || sleutel == sleutel_)
            continue;
        sleutel_ = sleutel;
        nummer_ = 1;
        if (!zend(HEEN, "begin"))
            return *fout = deel_pad(HEEN) + ": " + strerror(errno), MISLUKT;
    }
    return NIEMAND;
}

bool Deelgesprek::vraag(const std::string& wat, std::string* antwoord) {
    nummer_++;
    *antwoord = zend(HEEN, wat) ? ontvang(TERUG, GEDULD) : "";
    return !antwoord->empty();
}

std::string Deelgesprek::volgende() {
    nummer_++;
    return ontvang(HEEN, GEDULD);
}

bool Deelgesprek::antwoord(const std::string& tekst) {
    return zend(TERUG, tekst);
}

void Deelgesprek::ruim() {
    std::error_code e;
    for (const auto& d : fs::directory_iterator(DEELMAP, e))
        SYS.unlink(d.path().c_str());
    if (slot_ >= 0)
        SYS.close(slot_);
    slot_ = -1;
    SYS.rmdir(DEELMAP);
}

DeelBeurt::DeelBeurt(int fase, bool eerste) : fase_(fase), eerste_(eerste) {
    fd_ = SYSNIEUW(deel_pad(BEURT).c_str(), O_RDWR | O_NOFOLLOW);
    if (fd_ >= 0 && deel_slot(fd_, 'w', byte(0, eerste), 1) != 1) {
        fout_ = strerror(errno);
        SYS.close(fd_);
        fd_ = -1;
    }
}

DeelBeurt::~DeelBeurt() {
    if (fd_ >= 0)
        SYS.close(fd_);
}

int64_t DeelBeurt::byte(int ronde, bool eerste) const {
    return fase_ * RONDES + 2 * ronde + (eerste ? 0 : 1);
}

bool DeelBeurt::geef(int ronde) {
    const int goed = deel_slot(fd_, 'w', byte(ronde + 1, eerste_), 1);
    if (goed != 1 || deel_slot(fd_, 'u', byte(ronde, eerste_), 1) != 1)
        return fout_ = "turn: " + std::string(strerror(errno)), false;
    return true;
}

bool DeelBeurt::wacht(int ronde) {
    double pauze = 0.0002;
    for (const double einde = deel_nu() + GEDULD / 2; deel_nu() < einde; deel_rust(&pauze)) {
        const int had = deel_slot(fd_, 'r', byte(ronde, !eerste_), 1);
        if (had < 0)
            return fout_ = "turn: " + std::string(strerror(errno)), false;
        if (had == 1)
            return deel_slot(fd_, 'u', byte(ronde, !eerste_), 1), true;
    }
    return fout_ = "the other side takes too long over its turn", false;
}

} // namespace zg
