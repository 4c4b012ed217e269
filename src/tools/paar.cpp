#include "tools/paar.h"
#include "shared/files.h"
#include "shared/gedeeld.h"
#include "shared/syscalls.h"
#include "shared/woordenboek.h"
#include "store/diepcheck.h"
#include "store/node.h"
#include "store/voortgang.h"
#include "store/wachtrij.h"
#include "term/natl.h"
#include "term/vast.h"
#include "tools/wie.h"
#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <filesystem>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace zg {

Paar::~Paar() {
    if (dat >= 0)
        SYS.close(dat);
    if (idx >= 0)
        SYS.close(idx);
}

namespace {

// Try until it goes, in short naps: a busy writer lets a lock go for moments only.
template <class F> bool binnen_de_tijd(int seconden, F probeer) {
    constexpr int PAUZE = 2000; // microseconds
    const auto klok = [] {
        timespec t;
        clock_gettime(CLOCK_MONOTONIC, &t);
        return int64_t{t.tv_sec} * 1000 + t.tv_nsec / 1'000'000;
    };
    const int64_t eind = klok() + int64_t{seconden} * 1000;
    for (int n = 0;; n++) {
        if (probeer())
            return true;
        if (klok() >= eind)
            return false;
        IOWACHT(n, PAUZE);
    }
}

} // namespace

int paar_open(const std::string& naam, Paar* paar, bool zonder_index) {
    paar->naam = naam;
    for (auto [fd, ext] : {std::pair{&paar->idx, ".INX"}, {&paar->dat, ".TXT"}}) {
        std::string pad = naam + ext;
        *fd = open_gewoon(pad, O_RDWR);
        if (*fd < 0 && (errno == EACCES || errno == EROFS)) {
            *fd = open_gewoon(pad, O_RDONLY);
            paar->alleen_lezen = true;
        }
        if (*fd < 0 && !(zonder_index && fd == &paar->idx && errno == ENOENT)) {
            klacht(pad, openreden(errno));
            return NIET_TE_OPENEN;
        }
    }
    paar->gedeeld = IOSOORTVAN(paar->dat).gedeeld;
    return GOED;
}

std::string paar_kop(Paar* paar) {
    struct stat s;
    paar->idxbytes = SYS.fstat(paar->idx, &s) == 0 ? s.st_size : 0;
    paar->datbytes = SYS.fstat(paar->dat, &s) == 0 ? s.st_size : 0;
    IXHEADER& kop = paar->kop;
    if (SYSLEES(paar->idx, &kop, sizeof kop, 0) != static_cast<ssize_t>(sizeof kop))
        return "the index is shorter than a header";
    if (kop.version == 350)
        return "version 350: convert it with ixremake";
    const char* fout = IXDEFFOUT(kop);
    return fout ? std::string("header: ") + fout : "";
}

int paar_vast(Paar* paar, int seconden) {
    if (paar->alleen_lezen) {
        if (!std::exchange(paar->gezegd, true))
            klacht(paar->naam,
                   "no permission to write, so read without a lock: a change meanwhile looks like damage");
        return GOED;
    }
    if (binnen_de_tijd(seconden, [&] { return IOLOCK('E', paar->idx, 0, IXBLOK); }))
        return paar->vast = true, GOED;
    klacht(paar->naam, "in use" + door_wie(paar->naam, paar->idx, 0, IXBLOK));
    return IN_GEBRUIK;
}

int paar_alleen(Paar* paar, int seconden) {
    bool record = false;
    const bool gelukt = binnen_de_tijd(seconden, [&] {
        record = !IOLOCK('E', paar->dat, 0, 0);
        if (record)
            return 0;
        if (paar->idx < 0 || IOLOCK('E', paar->idx, 0, IXBLOK))
            return 1;
        return IOLOCK('U', paar->dat, 0, 0), 0;
    });
    if (gelukt)
        return paar->vast = paar->idx >= 0, GOED;
    klacht(paar->naam, record ? "in use: a record is locked" + door_wie(paar->naam, paar->dat, 0, 0)
                              : "in use" + door_wie(paar->naam, paar->idx, 0, IXBLOK));
    return IN_GEBRUIK;
}

bool paar_wis_wachtrij(const std::string& index) {
    const int fd = SYS.open(index.c_str(), O_RDWR | O_CLOEXEC, 0);
    IXHEADER h;
    IXKNOOP leeg{};
    leeg.keyno = 1;
    bool goed = fd >= 0;
    if (goed && SYSLEES(fd, &h, sizeof h, 0) == static_cast<ssize_t>(sizeof h) && !IXDEFFOUT(h) &&
        !IXRESERVERINGEN(fd, h).empty())
        goed = SYSSCHRIJFOP(fd, &leeg, sizeof leeg, int64_t{h.nkeys + 1} * IXBLOK);
    const int fout = errno;
    if (fd >= 0)
        SYS.close(fd);
    errno = fout;
    return goed;
}

bool ALLEEN_GEZEGD;

bool elders_open(int fd) {
    if (IOSOORTVAN(fd).gedeeld)
        return !ALLEEN_GEZEGD;
    signal(SIGIO, SIG_IGN); // who opens it at this very moment
    if (fcntl(fd, F_SETLEASE, F_WRLCK) != 0)
        return errno == EAGAIN;
    fcntl(fd, F_SETLEASE, F_UNLCK);
    return false;
}

namespace {
SYSCALLS eronder; // what alleen_lezen was laid over
bool mag_maken, leest;
} // namespace

std::string in_de_weg(const ICB* icb) {
    if (icb && icb->wachtsleutel)
        return "key reserved: " + CP850UTF8(IXSLEUTELTEKST(icb->h.keydef[0], icb->keybuf));
    if (!icb)
        return "in use";
    const std::string record =
        icb->currec < 0
            ? ""
            : door_wie(icb->path, icb->datfd, int64_t{icb->currec} * icb->h.reclen, icb->h.reclen);
    return "in use" + (record.empty() ? door_wie(icb->path, icb->idxfd, 0, IXBLOK) : record);
}

void wacht_hooguit(int seconden) {
    constexpr int PER_SECONDE = 5;
    static int nog;
    nog = seconden * PER_SECONDE;
    IXWAITHOOK = [](ICB* icb) {
        if (nog-- <= 0) {
            klacht(icb ? icb->path : "", in_de_weg(icb));
            tool_weg(IN_GEBRUIK);
        }
        usleep(1'000'000 / PER_SECONDE);
    };
}

void alleen_lezen(bool maken) {
    mag_maken = maken;
    if (!leest)
        eronder = SYS;
    leest = true;
    SYS.open = [](const char* pad, int vlaggen, mode_t mode) {
        return mag_maken && (vlaggen & O_EXCL)
                   ? eronder.open(pad, vlaggen, mode)
                   : eronder.open(pad, (vlaggen & ~(O_ACCMODE | O_CREAT | O_TRUNC)) | O_RDONLY, 0);
    };
    SYS.slot = [](int fd, int opdracht, struct flock* gebied) {
        struct flock lezer = *gebied;
        if (opdracht != F_SETLK || lezer.l_type != F_WRLCK)
            return eronder.slot(fd, opdracht, gebied);
        lezer.l_type = F_RDLCK;
        return eronder.slot(fd, opdracht, &lezer);
    };
}

void weer_schrijven() {
    if (!leest)
        return;
    SYS.open = eronder.open;
    SYS.slot = eronder.slot;
    leest = false;
}

namespace {

int gewoon(decltype(SYS.open) open, const char* pad, int vlaggen, mode_t mode) {
    constexpr int PAUZE = 1000; // microseconds, while another looks whether anybody has it open
    int fd = open(pad, vlaggen | O_NONBLOCK | O_NOCTTY, mode);
    for (int n = 0; fd < 0 && errno == EWOULDBLOCK && n < PAUZE; n++) {
        usleep(PAUZE);
        fd = open(pad, vlaggen | O_NONBLOCK | O_NOCTTY, mode);
    }
    struct stat st;
    if (fd < 0 || (vlaggen & O_DIRECTORY) || (SYS.fstat(fd, &st) == 0 && S_ISREG(st.st_mode)))
        return fd;
    SYS.close(fd);
    errno = ENXIO;
    return -1;
}

} // namespace

int open_gewoon(const std::string& pad, int vlaggen) {
    return gewoon(SYS.open, pad.c_str(), vlaggen | O_CLOEXEC, 0);
}

void gewone_bestanden() {
    static decltype(SYS.open) verder;
    if (verder)
        return;
    verder = SYS.open;
    SYS.open = [](const char* pad, int vlaggen, mode_t mode) { return gewoon(verder, pad, vlaggen, mode); };
}

std::string openreden(int errnr) {
    return errnr == ENXIO || errnr == EISDIR ? "not a plain file"
           : errnr == EACCES                 ? "no permission"
                                             : strerror(errnr);
}

void paar_los(Paar* paar) {
    if (paar->vast)
        IOLOCK('U', paar->idx, 0, IXBLOK);
    paar->vast = false;
}

int paar_neem(const std::string& naam, int seconden, Paar* paar) {
    const int fout = paar_open(naam, paar);
    return fout ? fout : paar_vast(paar, seconden);
}

bool woordenboekkop(const std::string& naam, int64_t databytes, IXHEADER* kop) {
    ICB icb{};
    const int nr = DDNUMMER(naam.c_str());
    if (DDDEFINIEER(&icb, nr, tabelnaam(naam).c_str(), DDRECLEN(nr, databytes)) == 0)
        return false;
    *kop = icb.h;
    return true;
}

std::string kop_naamfout(const IXHEADER& kop) {
    const auto fout = [](std::string_view tekst) {
        return std::ranges::any_of(tekst.substr(0, tekst.find('\0')),
                                   [](char c) { return NKLASSE[static_cast<uint8_t>(c)] & N_CONTROL; });
    };
    if (fout({kop.name, sizeof kop.name}) || fout({kop.title, sizeof kop.title}))
        return "its name or title holds a byte which is no letter";
    for (int k = 0; k < kop.nkeys; k++)
        if (fout({kop.keydef[k].keyname, sizeof kop.keydef[k].keyname}))
            return "the name of key " + std::to_string(k + 1) + " holds a byte which is no letter";
    return "";
}

bool paren(const std::vector<std::string>& argumenten, std::vector<std::string>* namen) {
    namespace fs = std::filesystem;
    bool goed = true;
    for (std::string a : argumenten) {
        std::error_code fout;
        if (fs::is_directory(a, fout)) {
            std::vector<std::string> hier;
            for (const auto& e : fs::directory_iterator(a, fout))
                if (e.path().extension() == ".INX" || e.path().extension() == ".TXT") {
                    fs::path p = e.path();
                    p.replace_extension();
                    // A data file without an index is a pair with a lost index only when the dictionary knows
                    // it.
                    if (e.path().extension() == ".INX" || DDNUMMER(p.filename().c_str()) > 0)
                        hier.push_back(p.string());
                }
            std::sort(hier.begin(), hier.end());
            hier.erase(std::unique(hier.begin(), hier.end()), hier.end());
            if (hier.empty()) {
                klacht(a, "no pairs in this directory");
                goed = false;
            }
            namen->insert(namen->end(), hier.begin(), hier.end());
            continue;
        }
        if (a.ends_with(".INX") || a.ends_with(".TXT"))
            a.resize(a.size() - 4);
        namen->push_back(a);
    }
    return goed;
}

std::string een_paar(const std::vector<std::string>& argumenten) {
    std::vector<std::string> namen;
    if (!paren(argumenten, &namen))
        return "";
    if (namen.size() == 1)
        return namen[0];
    klacht(argumenten[0], "one pair, please");
    return "";
}

Balk::Balk(const std::string& titel, int64_t totaal)
    : titel_(schoon(titel)), totaal_(totaal), zichtbaar_(isatty(2)) {}

void Balk::bij(int64_t stand, int64_t totaal) {
    if (!zichtbaar_ || totaal <= 0)
        return;
    timespec t;
    clock_gettime(CLOCK_MONOTONIC, &t);
    int64_t nu = t.tv_sec * 10 + t.tv_nsec / 100'000'000;
    if (nu < volgende_)
        return;
    volgende_ = nu + 1;
    constexpr int BREED = 40;
    int64_t deel = std::clamp<int64_t>(stand, 0, totaal);
    int vol = static_cast<int>(deel * BREED / totaal);
    fprintf(stderr, "\r%-12.40s [%.*s%*s] %3d%%", titel_.c_str(), vol,
            "########################################", BREED - vol, "",
            static_cast<int>(deel * 100 / totaal));
    fflush(stderr);
}

Balk::~Balk() {
    if (zichtbaar_ && volgende_ > 0)
        fprintf(stderr, "\r\033[K");
}

namespace {
std::unique_ptr<Balk> werkbalk;
}

Werkbalk::Werkbalk(std::string titel) {
    werkbalk = std::make_unique<Balk>(std::move(titel), 0);
    IXDIEPVOORTGANG = [](int64_t gedaan, int64_t totaal) { werkbalk->bij(gedaan, totaal); };
    VOORTGANGHAAK = [](int stap, int64_t waarde, int64_t totaal, const char*) {
        if (stap == VG_TOON)
            werkbalk->bij(waarde, totaal);
    };
}

Werkbalk::~Werkbalk() {
    IXDIEPVOORTGANG = nullptr;
    VOORTGANGHAAK = nullptr;
    werkbalk.reset();
}

} // namespace zg
