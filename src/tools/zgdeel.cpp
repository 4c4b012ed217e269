// zgdeel: can a directory be shared by several hosts? Started on two of them, it tries out what the programs rely on. This
// file has the words, the order of the trials and the report; deelproef.cpp the trials, deelgesprek.cpp how the two
// speak.
#include "shared/files.h"
#include "shared/volume.h"
#include "tools/deelgesprek.h"
#include "tools/deelproef.h"
#include "tools/tool.h"
#include <CLI/CLI.hpp>
#include <atomic>
#include <cerrno>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <sstream>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using namespace zg;

struct Wens {
    std::string map;
    bool wacht = false;
    int tijd = 0, rondes = 200;
} wens;

constexpr int STIL = 90; // seconds in which the program must get on

// What the working process does, for the one that watches over it: a call into a file system may never come back.
struct Toezicht {
    std::atomic<long> stappen;
    char wat[64];
} * toezicht;

void stap(const std::string& wat) {
    snprintf(toezicht->wat, sizeof toezicht->wat, "%s", wat.c_str());
    toezicht->stappen++;
}

std::string hier() {
    char naam[65] = "";
    gethostname(naam, sizeof naam - 1);
    return naam;
}

// The file system of the present directory, as the system calls it.
std::string soort() {
    const std::string s = IOMOUNTVAN(IOHIER()).soort;
    return s.empty() ? "unknown" : s;
}

// What is set wrong here, or "none"; "unknown" when the file system doesn't tell.
std::string instellingen() {
    std::string kwaal;
    return !deel_instellingen(IOMOUNTVAN(IOHIER()).punt, &kwaal) ? "unknown" : kwaal.empty() ? "none" : kwaal;
}

// What to set where a trial goes wrong.
const char* raad(const std::string& fs, const std::string& proef) {
    const struct {
        const char *fs, *proef, *wat;
    } RADEN[] = {
        {"", "settings", "\"gluster volume set\" it the other way"},
        {"", "clocks", "keep the clocks of both by one time server"},
        {"fuse.glusterfs", "locks", "volume: features.locks on; mount without local locks"},
        {"nfs", "locks", "NFS version 4, without nolock and local_lock"},
        {"cifs", "locks", "without nobrl and nolock"},
        {"", "locks", "a file system with POSIX locks over all hosts"},
        {"fuse.glusterfs", "",
         "mount: direct-io-mode=enable,attribute-timeout=0,entry-timeout=0,negative-timeout=0; volume: "
         "performance.stat-prefetch, quick-read, open-behind, io-cache, read-ahead, readdir-ahead and "
         "write-behind off"},
        {"fuse", "", "no caching by the kernel: direct I/O, attribute and entry time-outs of 0"},
        {"nfs", "", "mount: noac,lookupcache=none"},
        {"cifs", "", "mount: cache=none,actimeo=0"},
        {"", "", "no caching of blocks, attributes and names"},
    };
    const bool slot = proef.starts_with("lock") || proef.find(" lock ") != proef.npos;
    for (const auto& r : RADEN)
        if (fs.starts_with(r.fs) && (slot ? strcmp(r.proef, "locks") == 0 : proef.starts_with(r.proef)))
            return r.wat;
    return "";
}

class Vragen {
public:
    int doe();

private:
    void zeg(const std::string& proef, const std::string& kwaal) {
        if (kwaal.empty())
            tool_zeg("good   %s\n", proef.c_str());
        else
            tool_zeg("wrong  %s: %s; %s\n", proef.c_str(), kwaal.c_str(), raad(fs_, proef));
        fflush(stdout);
        fout_ += !kwaal.empty();
    }
    std::string vraag(const std::string& wat) {
        std::string s;
        if (!weg_ && !g_.vraag(wat, &s))
            weg_ = true;
        return s;
    }
    void klok();
    void ingesteld();
    bool sloten();
    void gedood();
    void samen();
    void ronde(int soort);
    Deelgesprek g_;
    std::string fs_, daar_;
    int fout_ = 0, fase_ = 0;
    bool weg_ = false; // the other side doesn't answer
};

void Vragen::klok() {
    const time_t voor = time(nullptr);
    const std::string s = vraag("clock");
    const time_t na = time(nullptr), daar = atoll(s.c_str());
    const long scheelt = daar < voor ? voor - daar : daar > na ? daar - na : 0;
    if (!weg_)
        zeg("clocks", scheelt <= 60 ? "" : std::to_string(scheelt) + " seconds apart");
}

void Vragen::ingesteld() {
    const std::string proef = "settings of the volume", eigen = instellingen(), ander = vraag("settings");
    if (weg_ || !fs_.starts_with("fuse.glusterfs"))
        return;
    if (eigen == "unknown" || ander == "unknown")
        tool_zeg("       %s: not told by the mount\n", proef.c_str());
    else
        zeg(proef, eigen != "none" ? eigen : ander != "none" ? ander : "");
}

// Rows whose answer isn't the one that should come, by group.
bool Vragen::sloten() {
    std::vector<std::pair<std::string, std::string>> groepen;
    auto keur = [&](const std::string& komt, bool vrij, const std::string& waar) {
        size_t i = 0;
        for (const Slotgeval& s : deel_sloten()) {
            if (groepen.empty() || (groepen.back().first != s.groep && waar.empty()))
                groepen.emplace_back(s.groep, "");
            if (!s.wil)
                continue;
            const std::string zo = vrij ? "1u" : s.komt, is = i < komt.size() ? komt.substr(i, 2) : "E?";
            i += 2;
            if (zo == is)
                continue;
            const auto groep =
                std::find_if(groepen.begin(), groepen.end(), [&](auto& g) { return g.first == s.groep; });
            if (groep->second.empty())
                groep->second = std::string(s.naam) + (vrij ? ", given back, " : " ") +
                                (is[0] == 'E'     ? "can't be asked for"
                                 : is[0] != zo[0] ? is[0] == '1' ? "was had twice" : "was refused"
                                                  : "is told wrongly by F_GETLK") +
                                " on " + waar;
        }
    };
    for (const Slotgeval& s : deel_sloten())
        if (groepen.empty() || groepen.back().first != s.groep)
            groepen.emplace_back(s.groep, "");
    std::string kwaal = vraag("take");
    if (kwaal == "done") {
        keur(deel_probeer(), false, hier());
        vraag("leave");
        keur(deel_probeer(), true, hier());
        kwaal = deel_neem();
        if (kwaal.empty()) {
            keur(vraag("try"), false, daar_);
            deel_laat();
            keur(vraag("try"), true, daar_);
            vraag("leave");
        }
    }
    deel_laat();
    if (weg_)
        return false;
    if (!kwaal.empty() && kwaal != "done") {
        zeg("locks", kwaal);
        return false;
    }
    const int voor = fout_;
    for (const auto& [groep, wat] : groepen)
        zeg(groep, wat);
    return fout_ == voor;
}

void Vragen::gedood() {
    if (vraag("hold") != "done")
        return zeg("the lock of a killed program", "it can't be held");
    double duur;
    if (deel_houder_weg(0, &duur))
        return zeg("the lock of a killed program", "was had twice");
    vraag("kill");
    const bool vrij = deel_houder_weg(10, &duur);
    char t[32];
    snprintf(t, sizeof t, "%.2f s", duur);
    zeg(std::string("the lock of a killed program") + (vrij ? std::string(", free behind ") + t : ""),
        vrij ? "" : "not free within 10 s");
}

void Vragen::samen() {
    std::string s = vraag("count " + std::to_string(wens.rondes));
    if (weg_)
        return;
    s = deel_tel(wens.rondes);
    const std::string t = vraag("result");
    const int64_t n = deel_geteld();
    zeg("counting by turns", !s.empty()    ? s
                             : t != "done" ? t
                             : n != wens.rondes * 2
                                 ? "counted " + std::to_string(n) + " of " + std::to_string(wens.rondes * 2)
                                 : "");
    constexpr int NAMEN = 50;
    vraag("make " + std::to_string(NAMEN));
    const int hier_gemaakt = deel_maak(NAMEN), daar = atoi(vraag("result").c_str());
    zeg("a name made once", hier_gemaakt < 0 || daar < 0 ? "can't be made"
                            : hier_gemaakt + daar != NAMEN
                                ? std::to_string(hier_gemaakt + daar) + " of 50 made"
                                : "");
}

void Vragen::ronde(int soort) {
    std::vector<Telling> t[2]; // looked at here, and there
    for (const bool schrijft : {false, true}) {
        if (weg_)
            return;
        fase_++;
        const std::string opdracht = "round " + std::to_string(soort) + " " + std::to_string(fase_) + " " +
                                     std::to_string(wens.rondes) + (schrijft ? " 0" : " 1");
        Ronde r(soort, fase_, wens.rondes, schrijft);
        std::string fout, s;
        if (r.klaar(&fout)) {
            s = vraag(opdracht);
            if (s == "done") {
                t[schrijft] = r.doe();
                s = vraag("result");
                if (!schrijft) // what the writer there couldn't do
                    fout = deel_lees(s).empty() ? "" : deel_lees(s)[0].eerst;
                else {
                    fout = t[1][0].eerst;
                    t[1] = deel_lees(s);
                }
                s.clear();
            }
        }
        if (!s.empty() || !fout.empty())
            return zeg(RONDESOORT[soort].proeven[0], s.empty() ? fout : s);
    }
    for (size_t i = 0; i < PROEVEN && RONDESOORT[soort].proeven[i]; i++) {
        std::string kwaal;
        for (const int daar : {0, 1})
            if (i < t[daar].size() && t[daar][i].fout)
                kwaal += (kwaal.empty() ? "" : ", ") + std::to_string(t[daar][i].fout) + " of " +
                         std::to_string(t[daar][i].gedaan) + " on " + (daar ? daar_ : hier()) + " (" +
                         t[daar][i].eerst + ")";
        zeg(RONDESOORT[soort].proeven[i], kwaal);
    }
}

int Vragen::doe() {
    std::string fout;
    switch (g_.zoek(wens.tijd ? wens.tijd : 60, &fout)) {
    case Deelgesprek::BEGONNEN:
        break;
    case Deelgesprek::NIEMAND:
        return meld(NIET_TE_OPENEN,
                    "nobody waits there; first \"zgdeel --wait " + wens.map + "\" on the other host");
    default:
        return meld(NIET_TE_OPENEN, fout);
    }
    fs_ = soort();
    const std::string ander = vraag("who");
    daar_ = ander.substr(0, ander.find(' '));
    tool_zeg("%s: %s (%s) and %s\n", wens.map.c_str(), hier().c_str(), fs_.c_str(), ander.c_str());
    if (daar_ == hier())
        daar_ = "the other side";
    klok();
    ingesteld();
    if (sloten()) {
        if (!weg_)
            gedood();
        if (!weg_)
            samen();
        for (int s = 0; s < R_AANTAL && !weg_; s++)
            ronde(s);
        if (!weg_)
            tool_zeg("time   %s\n", deel_duur().c_str());
    } else if (!weg_)
        tool_zeg("       the rest goes by turns that are locks: not looked at\n");
    if (weg_) {
        zeg("the other side", "doesn't answer any more");
        g_.ruim();
    } else
        vraag("end " + std::to_string(fout_));
    tool_zeg("%s: %s\n", wens.map.c_str(), fout_ ? "can't be shared like this" : "can be shared");
    return fout_ ? FOUT_GEVONDEN : GOED;
}

// The side that waits: answers until it is told the end.
int antwoord() {
    Deelgesprek g;
    std::string fout;
    fprintf(stderr, "zgdeel: waits for \"zgdeel %s\" on another host\n", wens.map.c_str());
    const auto begin = g.wacht(wens.tijd ? wens.tijd : 600, &fout);
    if (begin == Deelgesprek::BEZET)
        return meld(IN_GEBRUIK, fout);
    if (begin != Deelgesprek::BEGONNEN) {
        g.ruim();
        return meld(NIET_TE_OPENEN, begin == Deelgesprek::NIEMAND ? "nobody came" : fout);
    }
    Houder houder;
    std::string uitslag;
    for (std::string s; !(s = g.volgende()).empty();) {
        std::istringstream in(s);
        std::string woord;
        int n = 0, fase = 0, aantal = 0, schrijft = 0;
        in >> woord >> n >> fase >> aantal >> schrijft;
        std::string uit = "done";
        if (woord == "who")
            uit = hier() + " (" + soort() + ")";
        else if (woord == "clock")
            uit = std::to_string(time(nullptr));
        else if (woord == "settings")
            uit = instellingen();
        else if (woord == "take")
            uit = deel_neem().empty() ? "done" : deel_neem();
        else if (woord == "leave")
            deel_laat();
        else if (woord == "try")
            uit = deel_probeer();
        else if (woord == "hold")
            uit = houder.begin() ? "done" : "no";
        else if (woord == "kill")
            houder.dood();
        else if (woord == "result")
            uit = uitslag.empty() ? "done" : uitslag;
        else if (woord == "count" || woord == "make") {
            g.antwoord(uit);
            uitslag = woord == "count" ? deel_tel(n) : std::to_string(deel_maak(n));
            continue;
        } else if (woord == "round" && n >= 0 && n < R_AANTAL) {
            Ronde r(n, fase, aantal, schrijft);
            if (r.klaar(&uit)) {
                g.antwoord("done");
                uitslag = deel_schrijf(r.doe());
                continue;
            }
        } else if (woord == "end") {
            g.antwoord(uit);
            usleep(500'000); // the other reads that
            g.ruim();
            tool_zeg("%s: %s\n", wens.map.c_str(), n ? "can't be shared like this" : "can be shared");
            return n ? FOUT_GEVONDEN : GOED;
        }
        g.antwoord(uit);
    }
    g.ruim();
    return meld(FOUT_GEVONDEN, "the other side doesn't answer any more");
}

// The trials in a process of their own: what hangs is killed and told.
int onder_toezicht() {
    void* p = mmap(nullptr, sizeof(Toezicht), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (p == MAP_FAILED)
        return meld(NIET_TE_OPENEN, strerror(errno));
    toezicht = new (p) Toezicht{};
    DEELSTAP = stap;
    fflush(nullptr);
    const pid_t kind = fork();
    if (kind < 0)
        return meld(NIET_TE_OPENEN, strerror(errno));
    if (kind == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        tool_weg(tool_einde(wens.wacht ? antwoord() : Vragen().doe()));
    }
    long gezien = -1;
    double sinds = deel_nu();
    for (int status;;) {
        if (waitpid(kind, &status, WNOHANG) == kind)
            return WIFEXITED(status)
                       ? WEXITSTATUS(status)
                       : meld(FOUT_GEVONDEN, "ended by signal " + std::to_string(WTERMSIG(status)));
        if (const long nu = toezicht->stappen; nu != gezien)
            gezien = nu, sinds = deel_nu();
        if (deel_nu() - sinds > STIL) {
            kill(kind, SIGKILL);
            return meld(FOUT_GEVONDEN, std::string("hangs in the file system: ") + toezicht->wat);
        }
        usleep(20'000);
    }
}

} // namespace

int main(int argc, char** argv) {
    tool_begin("zgdeel");
    CLI::App app{"can a directory be shared by several hosts? Started on two of them: with --wait on the "
                 "one, then on the "
                 "other.\nWhat the programs rely on is tried out between them, one line each: good, or wrong "
                 "and what to set.",
                 "zgdeel"};
    tool_kop(
        app,
        "0 it can be shared, 1 something is wrong, 2 used wrong, 3 cannot open or nobody came, 4 in use.");
    app.add_option("DIR", wens.map, "directory that both hosts see")->required();
    app.add_flag("-w,--wait", wens.wacht, "wait for the other host");
    app.add_option("-t,--timeout", wens.tijd,
                   "seconds to wait for the other, else 600 with --wait and 60 without")
        ->check(CLI::Range(1, 86400));
    app.add_option("-n,--rounds", wens.rondes, "how often each change is looked at, from either side")
        ->check(CLI::Range(2, 10000));
    if (int uit; !tool_woorden(app, argc, argv, &uit))
        return uit;
    if (const Uitkomst uit = tool_map(wens.map); uit != GOED)
        return uit;
    return onder_toezicht();
}
