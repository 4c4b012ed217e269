#include "tools/deelproef.h"
#include "shared/syscalls.h"
#include "tools/deelgesprek.h"
#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <dirent.h>
#include <functional>
#include <map>
#include <sstream>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace zg {

const Rondesoort RONDESOORT[R_AANTAL] = {
    {{"a block rewritten", nullptr}},
    {{"a file grown", nullptr}},
    {{"a file cut", nullptr}},
    {{"a name replaced", "the name still my file", "a lock of the new file", "a replaced file still open"}},
    {{"a name made", "a name removed", "the directory's list"}},
};

namespace {

constexpr int BLOK = 512, BLOKKEN = 16, RIJ = 100;

std::string vulling(int ronde, size_t n) {
    char t[16];
    snprintf(t, sizeof t, "%07d.", ronde);
    std::string s;
    while (s.size() < n)
        s += t;
    return s.substr(0, n);
}

std::string fouttekst() {
    return strerror(errno);
}

// A file that is open here for as long as the trial lasts.
struct Open {
    int fd = -1;
    Open() = default;
    Open(const Open&) = delete;
    Open& operator=(const Open&) = delete;
    ~Open() { dicht(); }
    void dicht() {
        if (fd >= 0)
            SYS.close(fd);
        fd = -1;
    }
    void word(Open* o) {
        dicht();
        std::swap(fd, o->fd);
    }
    bool open(const std::string& naam) {
        if (fd < 0)
            fd = SYS.open(naam.c_str(), O_RDWR | O_CLOEXEC | O_NOFOLLOW, 0);
        return fd >= 0;
    }
    bool maak(const std::string& naam, int vlaggen) {
        dicht();
        fd = SYSNIEUW(naam.c_str(), O_RDWR | O_NOFOLLOW | vlaggen);
        return fd >= 0;
    }
};

void tel(Telling* t, const std::string& kwaal) {
    t->gedaan++;
    if (kwaal.empty())
        return;
    if (t->fout++ == 0)
        t->eerst = kwaal;
}

// What stands at a place of an open file, and what should.
std::string staat(int fd, const std::string& zo, int64_t plaats) {
    std::string s(zo.size(), '\0');
    const ssize_t n = SYSLEES(fd, s.data(), s.size(), plaats);
    return n < 0 ? fouttekst() : n < static_cast<ssize_t>(zo.size()) ? "short" : s == zo ? "" : "old data";
}

struct Proef {
    std::string naam;
    int aantal;
    Open f;
    virtual ~Proef() = default;
    virtual bool bereid() { return true; }
    virtual bool schrijf(int ronde) = 0;
    virtual void kijk(int ronde, Telling* t) = 0;
};

struct Blok : Proef {
    bool bereid() override {
        return f.maak(naam, O_TRUNC) &&
               SYSSCHRIJF(f.fd, vulling(9'999'999, BLOK * BLOKKEN).data(), BLOK * BLOKKEN);
    }
    bool schrijf(int r) override {
        return SYSSCHRIJFOP(f.fd, vulling(r, BLOK).data(), BLOK, int64_t{r % BLOKKEN} * BLOK);
    }
    void kijk(int r, Telling* t) override {
        tel(t, f.open(naam) ? staat(f.fd, vulling(r, BLOK), int64_t{r % BLOKKEN} * BLOK) : fouttekst());
        std::string alles(BLOK * BLOKKEN, '\0'); // so that whatever keeps blocks has them all
        SYSLEES(f.fd, alles.data(), alles.size(), 0);
    }
};

struct Groei : Proef {
    bool bereid() override { return f.maak(naam, O_TRUNC); }
    bool schrijf(int r) override { return SYSSCHRIJFOP(f.fd, vulling(r, RIJ).data(), RIJ, int64_t{r} * RIJ); }
    void kijk(int r, Telling* t) override {
        tel(t, !f.open(naam)                             ? fouttekst()
               : SYSOMVANG(f.fd) != int64_t{r + 1} * RIJ ? "old size"
                                                         : staat(f.fd, vulling(r, RIJ), int64_t{r} * RIJ));
        SYSOMVANG(f.fd); // behind the read, which may have made the system forget it
    }
};

struct Kort : Proef {
    int64_t rest(int r) const { return int64_t{aantal - 1 - r} * RIJ; }
    bool bereid() override {
        const std::string s = vulling(1, static_cast<size_t>(aantal) * RIJ);
        return f.maak(naam, O_TRUNC) && SYSSCHRIJF(f.fd, s.data(), s.size());
    }
    bool schrijf(int r) override { return SYS.ftruncate(f.fd, rest(r)) == 0; }
    void kijk(int r, Telling* t) override {
        char een;
        tel(t, !f.open(naam)                          ? fouttekst()
               : SYSOMVANG(f.fd) != rest(r)           ? "old size"
               : SYSLEES(f.fd, &een, 1, rest(r)) != 0 ? "bytes behind the end"
                                                      : "");
        SYSOMVANG(f.fd);
    }
};

// As a journal at each commit: the new file is locked before it takes the name, and stays open.
struct Vervang : Proef {
    Open ongebruikt; // opened behind the last round, and not touched since
    bool schrijf(int r) override {
        Open nieuw;
        const std::string kladnaam = naam + ".new";
        if (!nieuw.maak(kladnaam, O_TRUNC) || deel_slot(nieuw.fd, 'w', 0, 1) != 1 ||
            !SYSSCHRIJF(nieuw.fd, vulling(r, 600).data(), 600) ||
            SYS.rename(kladnaam.c_str(), naam.c_str()) != 0)
            return false;
        f.word(&nieuw);
        return true;
    }
    void kijk(int r, Telling* t) override {
        struct stat oud, nu;
        if (f.fd >= 0)
            tel(&t[1], SYS.fstat(f.fd, &oud) != 0 || stat(naam.c_str(), &nu) != 0
                           ? (errno == ENOENT || errno == ESTALE ? "" : fouttekst()) // neither is his own
                       : oud.st_ino == nu.st_ino ? "held for the same file"
                                                 : "");
        if (ongebruikt.fd >= 0)
            tel(&t[3], staat(ongebruikt.fd, vulling(r - 1, 600), 0));
        Open nieuw;
        const bool er = nieuw.open(naam);
        tel(&t[0], er ? staat(nieuw.fd, vulling(r, 600), 0) : fouttekst());
        if (er) {
            const int had = deel_slot(nieuw.fd, 'w', 0, 1);
            tel(&t[2], had == 0 ? "" : had == 1 ? "not seen" : fouttekst());
            f.word(&nieuw);
        }
        ongebruikt.dicht();
        if (r % 2) { // nothing else here keeps it
            f.dicht();
            ongebruikt.open(naam);
        }
    }
};

struct Los : Proef {
    bool schrijf(int r) override {
        if (r % 2)
            return SYS.unlink(naam.c_str()) == 0;
        return f.maak(naam, O_EXCL) && SYSSCHRIJF(f.fd, vulling(r, RIJ).data(), RIJ);
    }
    bool in_lijst() const {
        bool er = false;
        if (DIR* d = opendir(DEELMAP)) {
            while (const dirent* e = readdir(d))
                er = er || deel_pad(e->d_name) == naam;
            closedir(d);
        }
        return er;
    }
    void kijk(int r, Telling* t) override {
        const bool zou = r % 2 == 0;
        struct stat st;
        const bool ziet = stat(naam.c_str(), &st) == 0;
        Open hier;
        const bool opent = hier.open(naam);
        tel(&t[zou ? 0 : 1], ziet != zou    ? zou ? "not seen" : "still seen"
                             : opent != zou ? zou ? "seen, but not opened" : "still opened"
                             : zou          ? staat(hier.fd, vulling(r, RIJ), 0)
                                            : "");
        tel(&t[2], in_lijst() != zou ? zou ? "not listed" : "still listed" : "");
    }
};

std::unique_ptr<Proef> proef_van(int soort) {
    switch (soort) {
    case R_BLOK:
        return std::make_unique<Blok>();
    case R_GROEI:
        return std::make_unique<Groei>();
    case R_KORT:
        return std::make_unique<Kort>();
    case R_VERVANG:
        return std::make_unique<Vervang>();
    default:
        return std::make_unique<Los>();
    }
}

std::array<Open, 3> sloten; // the files on which locks are tried

int slotbestand(char welk) {
    Open& o = sloten[static_cast<size_t>(welk - 'a')];
    return o.fd >= 0 || o.maak(deel_pad((std::string("lock-") + welk).c_str()), 0) ? o.fd : -1;
}

bool neem_een(const Slotgeval& g) {
    const int fd = slotbestand(g.bestand);
    if (g.heeft != 'o')
        return deel_slot(fd, g.heeft, g.van, g.lengte) == 1;
    struct flock s {};
    s.l_type = F_WRLCK;
    return SYS.slot(fd, F_OFD_SETLK, &s) == 0;
}

} // namespace

std::string deel_schrijf(const std::vector<Telling>& tellingen) {
    std::string s;
    for (const Telling& t : tellingen)
        s += std::to_string(t.gedaan) + " " + std::to_string(t.fout) + " " + t.eerst + "\n";
    return s;
}

std::vector<Telling> deel_lees(const std::string& s) {
    std::vector<Telling> uit;
    std::istringstream in(s);
    for (Telling t; in >> t.gedaan >> t.fout && in.get() == ' ' && std::getline(in, t.eerst);)
        uit.push_back(t);
    return uit;
}

struct Ronde::Binnen {
    std::unique_ptr<Proef> proef;
    std::unique_ptr<DeelBeurt> beurt;
    std::string fout;
    int soort;
    bool schrijft;
};

Ronde::Ronde(int soort, int fase, int aantal, bool schrijft) : b_(std::make_unique<Binnen>()) {
    b_->soort = soort;
    b_->schrijft = schrijft;
    b_->proef = proef_van(soort);
    b_->proef->naam = deel_pad(("file" + std::to_string(fase)).c_str());
    b_->proef->aantal = aantal;
    b_->beurt = std::make_unique<DeelBeurt>(fase, schrijft);
    if (!b_->beurt->klaar())
        b_->fout = "turn: " + b_->beurt->fout();
    else if (schrijft && !b_->proef->bereid())
        b_->fout = fouttekst();
}

Ronde::~Ronde() = default;

bool Ronde::klaar(std::string* fout) const {
    *fout = b_->fout;
    return fout->empty();
}

std::vector<Telling> Ronde::doe() {
    std::vector<Telling> uit(PROEVEN);
    std::string fout;
    for (int r = 0; r < b_->proef->aantal && fout.empty(); r++) {
        DEELSTAP(RONDESOORT[b_->soort].proeven[0]);
        bool goed = true;
        if (b_->schrijft) {
            if (!b_->proef->schrijf(r))
                fout = "round " + std::to_string(r) + ": " + fouttekst(); // and the turn isn't given
            else
                goed = b_->beurt->geef(r) && b_->beurt->wacht(r);
        } else if ((goed = b_->beurt->wacht(r))) {
            b_->proef->kijk(r, uit.data());
            goed = b_->beurt->geef(r);
        }
        if (!goed)
            fout = "round " + std::to_string(r) + ": " + b_->beurt->fout();
    }
    if (!fout.empty())
        uit[0].gedaan++, uit[0].fout++, uit[0].eerst = fout;
    return uit;
}

std::vector<Slotgeval> deel_sloten() {
    constexpr int64_t GB = int64_t{1} << 30;
    const char *SOORT = "locks, write and read", *BEREIK = "locks on ranges", *VER = "locks far out",
               *VEEL = "many locks at once", *GEHEEL = "locks to the end", *ERF = "locks of an open file";
    std::vector<Slotgeval> g = {
        {SOORT, "write against write", 'a', 'w', 0, 1, 'w', 0, 1, "0w"},
        {SOORT, "read against write", 'a', 'w', 10, 1, 'r', 10, 1, "0w"},
        {SOORT, "write against read", 'a', 'r', 20, 1, 'w', 20, 1, "0r"},
        {SOORT, "read beside read", 'a', 'r', 30, 1, 'r', 30, 1, "1r"},
        {BEREIK, "neighbour below", 'a', 'w', 50, 10, 'w', 40, 10, "1u"},
        {BEREIK, "neighbour above", 'a', 0, 0, 0, 'w', 60, 10, "1u"},
        {BEREIK, "last byte", 'a', 0, 0, 0, 'w', 59, 10, "0w"},
        {BEREIK, "a hole in a lock", 'a', 'w', 200, 12, 'w', 211, 1, "0w"},
        {BEREIK, "the hole", 'a', 'u', 204, 2, 'w', 204, 2, "1u"},
        {VER, "beyond the end", 'a', 'w', 1'000'000, 512, 'w', 1'000'511, 1, "0w"},
        {VER, "over 2 GB", 'a', 'w', 2 * GB - 1, 2, 'w', 2 * GB, 1, "0w"},
        {VER, "over 4 GB", 'a', 'w', 4 * GB, 512, 'w', 4 * GB + 511, 1, "0w"},
        {VER, "not its low half", 'a', 0, 0, 0, 'w', 300, 512, "1u"},
        {VER, "over 1000 TB", 'a', 'w', GB * GB, 1, 'w', GB * GB, 1, "0w"},
        {GEHEEL, "to the end", 'b', 'w', 100, 0, 'w', GB, 1, "0w"},
        {GEHEEL, "before it", 'b', 0, 0, 0, 'w', 0, 100, "1u"},
        {GEHEEL, "all of it wanted", 'b', 0, 0, 0, 'r', 0, 0, "0w"},
        {ERF, "all of it", 'c', 'o', 0, 0, 'w', 0, 0, "0w"},
    };
    for (int i = 0; i < 100; i++) {
        const int64_t p = 5000 + 2 * i;
        g.push_back({VEEL, "one of a hundred", 'a', 'w', p, 1, i % 10 == 7 ? 'w' : '\0', p, 1, "0w"});
    }
    g.push_back({VEEL, "between two of them", 'a', 0, 0, 0, 'w', 5001, 1, "1u"});
    return g;
}

std::string deel_neem() {
    for (const Slotgeval& g : deel_sloten())
        if (g.heeft && !neem_een(g))
            return std::string(g.groep) + ", " + g.naam + ": " + fouttekst();
    return "";
}

void deel_laat() {
    for (Open& o : sloten)
        o.dicht();
}

std::string deel_probeer() {
    std::string s;
    for (const Slotgeval& g : deel_sloten()) {
        if (!g.wil)
            continue;
        DEELSTAP("locks");
        const int fd = slotbestand(g.bestand), had = deel_slot(fd, g.wil, g.wil_van, g.wil_lengte);
        s += had == 1 ? '1' : had == 0 ? '0' : 'E';
        if (had == 1)
            deel_slot(fd, 'u', g.wil_van, g.wil_lengte);
        s += deel_wie(fd, g.wil_van, g.wil_lengte);
    }
    return s;
}

std::string deel_tel(int keren) {
    Open f;
    if (!f.maak(deel_pad("count"), 0))
        return fouttekst();
    double pauze = 0.0002;
    const double einde = deel_nu() + 60;
    for (int i = 0; i < keren;) {
        DEELSTAP("counting in turn");
        const int had = deel_slot(f.fd, 'w', 0, 8);
        if (had < 0 || deel_nu() > einde)
            return had < 0 ? fouttekst() : "no lock for a minute";
        if (had == 0) {
            deel_rust(&pauze);
            continue;
        }
        int64_t n = 0;
        SYSLEES(f.fd, &n, sizeof n, 0);
        n++;
        if (!SYSSCHRIJFOP(f.fd, &n, sizeof n, 0))
            return fouttekst();
        deel_slot(f.fd, 'u', 0, 8);
        i++;
        pauze = 0.0002;
        usleep(static_cast<useconds_t>(100 + i * 37 % 400)); // so that the other has his turn
    }
    return "";
}

int64_t deel_geteld() {
    Open f;
    int64_t n = 0;
    return f.open(deel_pad("count")) && SYSLEES(f.fd, &n, sizeof n, 0) == sizeof n ? n : -1;
}

int deel_maak(int aantal) {
    int gemaakt = 0;
    for (int i = 0; i < aantal; i++) {
        DEELSTAP("names made at once");
        Open f;
        if (f.maak(deel_pad(("one" + std::to_string(i)).c_str()), O_EXCL))
            gemaakt++;
        else if (errno != EEXIST)
            return -1;
    }
    return gemaakt;
}

Houder::~Houder() {
    dood();
}

bool Houder::begin() {
    int pijp[2];
    if (pipe2(pijp, O_CLOEXEC) != 0)
        return false;
    const pid_t ouder = getpid();
    if ((pid_ = fork()) == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        Open f;
        const bool goed = f.maak(deel_pad("held"), 0) && deel_slot(f.fd, 'w', 0, 1) == 1;
        char een = goed ? '1' : '0';
        if (write(pijp[1], &een, 1) == 1 && getppid() == ouder)
            for (;;)
                pause();
        _exit(1);
    }
    char een = '0';
    SYS.close(pijp[1]);
    const bool goed = pid_ > 0 && SYS.read(pijp[0], &een, 1) == 1 && een == '1';
    SYS.close(pijp[0]);
    return goed;
}

void Houder::dood() {
    if (pid_ <= 0)
        return;
    kill(pid_, SIGKILL);
    waitpid(pid_, nullptr, 0);
    pid_ = -1;
}

bool deel_houder_weg(double seconden, double* duur) {
    Open f;
    if (!f.open(deel_pad("held")))
        return false;
    double pauze = 0.0005;
    const double begin = deel_nu();
    int had;
    while ((had = deel_slot(f.fd, 'w', 0, 1)) == 0 && deel_nu() - begin < seconden) {
        DEELSTAP("the lock of a killed program");
        deel_rust(&pauze);
    }
    *duur = deel_nu() - begin;
    return had == 1;
}

std::string deel_duur() {
    Open f;
    const std::string naam = deel_pad("time"), blok = vulling(1, BLOK);
    char s[BLOK];
    struct stat st;
    if (!f.maak(naam, 0))
        return fouttekst();
    const std::pair<const char*, std::function<void()>> roepen[] = {
        {"pwrite", [&] { SYSSCHRIJFOP(f.fd, blok.data(), BLOK, 0); }},
        {"pread", [&] { SYSLEES(f.fd, s, BLOK, 0); }},
        {"lock", [&] { deel_slot(f.fd, 'w', 0, 1); }},
        {"unlock", [&] { deel_slot(f.fd, 'u', 0, 1); }},
        {"stat", [&] { static_cast<void>(stat(naam.c_str(), &st)); }},
    };
    std::map<std::string, std::vector<double>> duren;
    for (int i = 0; i < 50; i++)
        for (const auto& [wat, doe] : roepen) {
            DEELSTAP(wat);
            const double begin = deel_nu();
            doe();
            duren[wat].push_back(deel_nu() - begin);
        }
    std::string uit;
    for (const auto& roep : roepen) {
        std::vector<double>& d = duren[roep.first];
        std::nth_element(d.begin(), d.begin() + 25, d.end());
        char t[64];
        snprintf(t, sizeof t, "%s%s %.3f", uit.empty() ? "" : ", ", roep.first, d[25] * 1000);
        uit += t;
    }
    return uit + " ms";
}

} // namespace zg
