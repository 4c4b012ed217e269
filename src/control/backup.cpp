// The report of the backup program, see backup_lezen in control/controle.h. It lies where anybody may put files: only a
// plain file of root or the user's own is read, no link is followed, and the shortened report takes its place by one rename
// of a file that nobody else has made. Where the directory refuses that, the report stays as it is.
#include "control/controle.h"
#include "control/teksten.h"
#include "shared/iotab.h"
#include "shared/syscalls.h"
#include "term/datum.h"
#include "term/vast.h"
#include <algorithm>
#include <array>
#include <cctype>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <unistd.h>

namespace zg {
namespace {

constexpr int64_t OMVANG_MAX = 1 << 20; // a report of a month has some kilobytes
constexpr int DAGEN = 30;
constexpr time_t OUD = 60; // seconds, after which a new report that its maker left behind is nobody's
constexpr int32_t STATUSRECORD = 10, BACKUPRECORD = 19;

using Blok = std::array<std::string, 3>; // with their line feeds

struct Verslag {
    struct stat st;
    std::vector<Blok> blokken;
    std::string rest; // what is no whole block, yet
};

bool vertrouwd(const struct stat& st) {
    return S_ISREG(st.st_mode) && (st.st_uid == 0 || st.st_uid == geteuid());
}

bool lees(const std::string& pad, Verslag* v) {
    const int fd = SYS.open(pad.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC, 0);
    if (fd < 0)
        return false;
    std::string bytes;
    bool goed = SYS.fstat(fd, &v->st) == 0 && vertrouwd(v->st) && v->st.st_size <= OMVANG_MAX;
    if (goed) {
        bytes.resize(static_cast<size_t>(v->st.st_size));
        goed = SYSLEES(fd, bytes.data(), bytes.size(), 0) == static_cast<ssize_t>(bytes.size());
    }
    SYS.close(fd);
    Blok blok;
    size_t regel = 0, van = 0;
    for (size_t eind; (eind = bytes.find('\n', van)) != std::string::npos; van = eind + 1) {
        blok[regel++] = bytes.substr(van, eind + 1 - van);
        if (regel == blok.size()) {
            v->blokken.push_back(blok);
            regel = 0;
        }
    }
    for (size_t i = 0; i < regel; i++)
        v->rest += blok[i];
    v->rest += bytes.substr(van);
    return goed;
}

// ---- the date, by its shape: a month's name, the day beside it, a year of four digits

std::vector<std::string> woorden(const std::string& regel) {
    std::vector<std::string> uit(1);
    for (const char c : regel)
        if (isalnum(static_cast<uint8_t>(c)) || c == ':')
            uit.back() += c;
        else if (!uit.back().empty())
            uit.emplace_back();
    return uit;
}

int maand(std::string woord) {
    constexpr const char* NAMEN[] = {"january", "february", "march",     "april",   "may",      "june",
                                     "july",    "august",   "september", "october", "november", "december"};
    std::transform(woord.begin(), woord.end(), woord.begin(),
                   [](char c) { return static_cast<char>(tolower(static_cast<uint8_t>(c))); });
    for (int m = 0; m < 12; m++)
        if (woord.size() >= 3 && std::string_view(NAMEN[m]).starts_with(woord))
            return m + 1;
    return 0;
}

// A number of so many digits, else 0.
int getal(const std::string& woord, size_t minst, size_t meest) {
    const bool cijfers =
        std::all_of(woord.begin(), woord.end(), [](char c) { return isdigit(static_cast<uint8_t>(c)); });
    return cijfers && woord.size() >= minst && woord.size() <= meest ? atoi(woord.c_str()) : 0;
}

uint16_t datum(const std::string& regel) {
    const std::vector<std::string> w = woorden(regel);
    int jaar = 0;
    for (const std::string& woord : w)
        if (!jaar)
            jaar = getal(woord, 4, 4);
    for (size_t i = 0; i < w.size() && jaar; i++) {
        const int m = maand(w[i]);
        int dag = m && i + 1 < w.size() ? getal(w[i + 1], 1, 2) : 0;
        if (m && !dag && i > 0)
            dag = getal(w[i - 1], 1, 2);
        if (!dag)
            continue;
        char tekst[40];
        snprintf(tekst, sizeof tekst, "%02d%02d%04d", dag, m, jaar);
        return DATUMNR(tekst);
    }
    return 0;
}

// ---- the shortened report

// Something that stands in the way: gone when it is the user's own and its maker has left it behind.
void ruim_op(const std::string& pad) {
    struct stat st;
    if (lstat(pad.c_str(), &st) == 0 && S_ISREG(st.st_mode) && st.st_uid == geteuid() &&
        st.st_mtime < time(nullptr) - OUD)
        SYS.unlink(pad.c_str());
}

bool ongewijzigd(const std::string& pad, const struct stat& was) {
    struct stat st;
    return lstat(pad.c_str(), &st) == 0 && st.st_ino == was.st_ino && st.st_dev == was.st_dev &&
           st.st_size == was.st_size && st.st_mtim.tv_sec == was.st_mtim.tv_sec &&
           st.st_mtim.tv_nsec == was.st_mtim.tv_nsec;
}

void vervang(const std::string& pad, const std::string& nieuw, const Verslag& v, const std::string& inhoud) {
    ruim_op(nieuw);
    const int fd = SYS.open(nieuw.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600);
    if (fd < 0)
        return;
    bool goed = SYSSCHRIJF(fd, inhoud.data(), inhoud.size()) &&
                (v.st.st_uid == geteuid() || SYS.fchown(fd, v.st.st_uid, v.st.st_gid) == 0) &&
                SYS.fchmod(fd, v.st.st_mode & 0777) == 0 && SYS.fsync(fd) == 0;
    SYS.close(fd);
    // The backup program may have added a block meanwhile.
    goed = goed && ongewijzigd(pad, v.st) && SYS.rename(nieuw.c_str(), pad.c_str()) == 0;
    if (!goed)
        SYS.unlink(nieuw.c_str());
}

void snoei(const std::string& pad, const std::string& nieuw, const Verslag& v) {
    std::string inhoud;
    for (const Blok& b : v.blokken) {
        const uint16_t dag = datum(b[0]);
        if (!dag || dag + DAGEN >= VANDAAG())
            inhoud += b[0] + b[1] + b[2];
    }
    inhoud += v.rest;
    if (static_cast<int64_t>(inhoud.size()) < v.st.st_size)
        vervang(pad, nieuw, v, inhoud);
}

// ---- the records

std::string uitslag(const std::string& regel) {
    if (regel.find("backup gemaakt") != std::string::npos)
        return "";
    const bool tape = regel.find("Geen tape") != std::string::npos;
    return std::string(TXT(T_BU_NIET_GELUKT)) + ", " + TXT(tape ? T_BU_GEEN_TAPE : T_BU_GEBRUIKERS);
}

} // namespace

void backup_lezen(const char* map) {
    const std::string pad = std::string(map) + "/result.bu", nieuw = std::string(map) + "/result.new";
    Verslag v{};
    if (!lees(pad, &v) || v.blokken.empty())
        return;
    sysstatus s;
    int32_t nr = STATUSRECORD;
    iotab('X', &nr, &s, SYS_RECORD);
    if (s.status == STATUS_VRIJ) {
        VASTIN(s.tekst, uitslag(v.blokken.back()[1]).substr(0, sizeof s.tekst - 1));
        iotab('W', &nr, &s, SYS_RECORD);
    } else {
        iotab('U', &nr, &s, SYS_RECORD); // the text says why nobody may work
    }
    sysbackup b;
    nr = BACKUPRECORD;
    iotab('X', &nr, &b, SYS_RECORD);
    b.datum = VANDAAG();
    iotab('W', &nr, &b, SYS_RECORD);
    snoei(pad, nieuw, v);
}

} // namespace zg
