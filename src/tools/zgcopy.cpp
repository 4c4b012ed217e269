// zgcopy: a data directory copied while people work in it, whole and of one moment, with a list of checksums; and the
// check of such a copy. Nothing of the original is written.
#include "shared/files.h"
#include "shared/gedeeld.h"
#include "shared/syscalls.h"
#include "tools/kopie.h"
#include "tools/paar.h"
#include "tools/tool.h"
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <memory>
#include <sys/file.h>
#include <sys/statvfs.h>
#include <unistd.h>

namespace {

using namespace zg;
namespace fs = std::filesystem;

struct Wens {
    std::string map, doel;
    bool nakijken = false, zonder_check = false, stil = false;
    int wacht = 10;
} wens;

// What has been made so far, to be taken away when it doesn't come to a copy.
struct Gemaakt {
    std::string werk;                   // the directory in which the copy is made
    std::vector<std::string> geplaatst; // what stands in its place already
    std::string doel;                   // the target, when it was made
    std::string slot;                   // the file that is locked there
} gemaakt;

// What is in the target stays as it is.
void laat_staan() {
    if (!gemaakt.slot.empty())
        SYS.unlink(gemaakt.slot.c_str());
    gemaakt = {};
}

void ruim_op() {
    if (gemaakt.werk.empty())
        return;
    for (const std::string& pad : gemaakt.geplaatst)
        if (SYS.unlink(pad.c_str()) != 0)
            kopie_ruim(pad);
    kopie_ruim(gemaakt.werk);
    if (!gemaakt.slot.empty())
        SYS.unlink(gemaakt.slot.c_str());
    if (!gemaakt.doel.empty())
        SYS.rmdir(gemaakt.doel.c_str());
    gemaakt = {};
}

Uitkomst mis(Uitkomst uit, const std::string& wat) {
    ruim_op();
    return meld(uit, wat);
}

std::string tijdtekst(time_t t) {
    char tekst[32];
    strftime(tekst, sizeof tekst, "%Y-%m-%d %H:%M:%S", localtime(&t));
    return tekst;
}

std::string grootte(int64_t bytes) {
    char tekst[32];
    snprintf(tekst, sizeof tekst, bytes < 1'000'000 ? "%.0f kB" : "%.1f MB",
             static_cast<double>(bytes) / (bytes < 1'000'000 ? 1e3 : 1e6));
    return tekst;
}

std::string kaal(std::string pad) {
    while (pad.size() > 1 && pad.back() == '/')
        pad.pop_back();
    return pad;
}

// The target locked, until the program ends: the directory, or on a shared file system, where that says nothing to others, a
// byte of a file in it, which goes with the last thing that is done there. False: another has it.
bool neem_doel(int map) {
    if (!IOSOORTVAN(map).gedeeld)
        return flock(map, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK;
    const std::string pad = wens.doel + "/" + KOPIESLOT;
    const int fd = SYSNIEUW(pad.c_str(), O_RDWR | O_NOFOLLOW | O_NONBLOCK);
    struct stat st, daar;
    if (fd < 0 || !IOLOCK('E', fd, 0, 1) || SYS.fstat(fd, &st) != 0 || stat(pad.c_str(), &daar) != 0 ||
        st.st_ino != daar.st_ino) // who had it is just through with it
        return false;
    gemaakt.slot = pad;
    return true;
}

// The target is there, empty but for what a killed copy left, and this program's alone; *slot keeps it so.
Uitkomst doel_klaar(int* slot) {
    std::error_code fout;
    if (SYSNIEUWEMAP(wens.doel.c_str()))
        gemaakt.doel = wens.doel;
    else if (errno != EEXIST)
        return meld(NIET_TE_OPENEN, wens.doel + ": " + strerror(errno));
    const std::string van = fs::canonical(wens.map, fout).string() + "/",
                      naar = fs::canonical(wens.doel, fout).string() + "/";
    gemaakt.werk = wens.doel + "/" + KOPIEWERK;
    *slot = SYS.open(wens.doel.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC, 0);
    if (*slot < 0)
        return meld(NIET_TE_OPENEN, wens.doel + ": " + strerror(errno));
    if (naar.starts_with(van)) {
        SYS.rmdir(gemaakt.doel.c_str());
        return gemaakt = {}, meld(FOUT_GEBRUIKT, wens.doel + ": is in the directory that is copied");
    }
    if (!neem_doel(*slot))
        return gemaakt = {}, meld(IN_GEBRUIK, wens.doel + ": another copy is being made there");
    kopie_ruim(gemaakt.werk);
    bool leeg = true;
    for (fs::directory_iterator e(wens.doel, fout); !fout && e != fs::directory_iterator(); e.increment(fout))
        leeg = leeg && e->path().filename() == KOPIESLOT;
    if (!leeg || fout) {
        const bool half = fs::exists(gemaakt.werk, fout);
        laat_staan();
        return meld(fout ? NIET_TE_OPENEN : FOUT_GEBRUIKT, wens.doel + (fout   ? ": " + fout.message()
                                                                        : half ? ": can't be emptied"
                                                                               : ": isn't empty"));
    }
    return SYS.mkdir(gemaakt.werk.c_str(), 0700) == 0
               ? GOED
               : mis(NIET_TE_OPENEN, gemaakt.werk + ": " + strerror(errno));
}

std::unique_ptr<Balk> balk;
int64_t gekopieerd;

// All of it once, without a lock: what takes time is done then, and the rounds behind it only compare.
Uitkomst grof(Kopie* k) {
    Kopieboom boom;
    if (!kopie_boom(k, &boom))
        return mis(NIET_TE_OPENEN, k->fout);
    int64_t bytes = 0, nodig = 0;
    for (const auto& [naam, post] : boom) {
        bytes += post.st.st_size;
        nodig += std::min<int64_t>(post.st.st_size, post.st.st_blocks * 512); // without holes
    }
    struct statvfs vrij;
    if (statvfs(k->naar.c_str(), &vrij) == 0 && static_cast<int64_t>(vrij.f_bavail * vrij.f_frsize) < nodig)
        return mis(FOUT_GEVONDEN, wens.doel + ": no room: " + grootte(nodig) + " to copy, " +
                                      grootte(static_cast<int64_t>(vrij.f_bavail * vrij.f_frsize)) + " free");
    balk = std::make_unique<Balk>("copy", bytes);
    std::vector<std::string> anders;
    const bool goed = kopie_ronde(k, &anders, [](int64_t n) { balk->bij(gekopieerd += n); });
    balk.reset();
    return goed ? GOED : mis(FOUT_GEVONDEN, k->fout);
}

struct Moment {
    time_t tijd;
    int64_t vast = 0; // milliseconds that others were held in all
    std::vector<std::string> anders, kritiek;
};

// Rounds while everybody is held, until one finds nothing different and nobody is in a critical step: that was the
// moment. When the time is up the last one counts.
Uitkomst fijn(Kopie* k, Moment* m) {
    constexpr int RONDEN = 4, MINSTENS = 1000; // milliseconds for the locks, when the time is up too
    constexpr int ADEM = 50'000;               // microseconds for others between two tries
    const int64_t eind = kopie_klok() + int64_t{wens.wacht} * 1000;
    for (;;) {
        std::string wie;
        if (!kopie_vast(k, std::max(eind, kopie_klok() + MINSTENS), &wie))
            return mis(wie.empty() || k->fout != wie ? NIET_TE_OPENEN : IN_GEBRUIK, k->fout);
        const int64_t begin = kopie_klok();
        const bool laatste = begin > eind;
        m->kritiek = kopie_kritiek(*k, false);
        bool goed = true;
        for (int i = 0; goed && i < RONDEN && (m->kritiek.empty() || laatste); i++) {
            m->tijd = time(nullptr);
            m->anders.clear();
            goed = kopie_ronde(k, &m->anders);
            if (m->anders.empty())
                break;
        }
        if (goed && (m->kritiek.empty() || laatste))
            m->kritiek = kopie_kritiek(*k, true);
        const bool klaar = (m->anders.empty() && m->kritiek.empty()) || laatste;
        for (const std::string& naam : m->anders) // whole at least
            goed = goed && (!klaar || kopie_stil(k, naam));
        kopie_los(k);
        m->vast += kopie_klok() - begin;
        if (!goed)
            return mis(FOUT_GEVONDEN, k->fout);
        if (klaar)
            return GOED;
        usleep(ADEM);
    }
}

// From the directory in which it was made into its place, the list last: without it there is no copy.
Uitkomst plaats(Kopie* k, int slot) {
    for (const int s : {SIGINT, SIGTERM, SIGHUP})
        signal(s, SIG_IGN);
    std::vector<std::string> namen;
    std::error_code fout;
    for (const auto& e : fs::directory_iterator(k->naar, fout))
        if (e.path().filename() != KOPIELIJST)
            namen.push_back(e.path().filename().string());
    namen.push_back(KOPIELIJST);
    for (const std::string& naam : namen) {
        const std::string pad = wens.doel + "/" + naam;
        if (SYS.rename((k->naar + "/" + naam).c_str(), pad.c_str()) != 0)
            return mis(FOUT_GEVONDEN, pad + ": " + strerror(errno));
        gemaakt.geplaatst.push_back(pad);
    }
    SYS.rmdir(gemaakt.werk.c_str());
    if (!gemaakt.slot.empty())
        SYS.unlink(gemaakt.slot.c_str());
    if ((!gemaakt.doel.empty() && !SYSEVENALS(slot, wens.map.c_str())) || SYS.fsync(slot) != 0)
        return mis(FOUT_GEVONDEN, wens.doel + ": " + strerror(errno));
    gemaakt = {};
    return GOED;
}

void zeg(const std::string& wat) {
    if (!wens.stil)
        tool_zeg("%s\n", wat.c_str());
}

int kopieer() {
    int slot = -1;
    if (const Uitkomst uit = doel_klaar(&slot); uit != GOED)
        return uit;
    for (const int s : {SIGINT, SIGTERM, SIGHUP})
        signal(s, [](int nr) { kopie_gestopt = nr; });
    Kopie k{wens.map, gemaakt.werk, {}, {}, {}, ""};
    Moment m{};
    Uitkomst uit = grof(&k);
    if (uit == GOED)
        uit = fijn(&k, &m);
    if (uit != GOED)
        return uit;
    const std::vector<std::string> in_handen = kopie_in_handen(k);
    if (!kopie_af(&k))
        return mis(FOUT_GEVONDEN, k.fout);
    std::vector<std::string> kwalen = k.kwalen;
    for (const std::string& half : kopie_half(k.naar, k.boom))
        kwalen.push_back(half);
    const int paren = wens.zonder_check ? 0 : kopie_paren(k.naar, &kwalen);
    if (kopie_gestopt)
        return mis(FOUT_GEVONDEN, "stopped");
    if (!kopie_lijst(&k, tijdtekst(m.tijd) + " of " + wens.map))
        return mis(FOUT_GEVONDEN, k.fout);
    const std::vector<std::string> buiten = kopie_buiten(k);
    if (uit = plaats(&k, slot); uit != GOED)
        return uit;

    int64_t bytes = 0, bestanden = 0;
    for (const auto& [naam, post] : k.boom)
        if (S_ISREG(post.st.st_mode))
            bytes += post.st.st_size, bestanden++;
    for (const std::string& naam : m.anders)
        zeg(naam + ": moved meanwhile; whole, but of a later moment");
    for (const std::string& naam : m.kritiek)
        zeg("user " + naam +
            " was in a critical step: behind a restore zgcheck has to look before zgstatus free");
    for (const auto& noten : {in_handen, buiten, k.noten})
        for (const std::string& n : noten)
            zeg(n);
    for (const std::string& kwaal : kwalen)
        klacht("", kwaal);
    zeg(wens.doel + ": " + std::to_string(bestanden) + " files, " + grootte(bytes) + ", as at " +
        tijdtekst(m.tijd) + "; writers waited " + std::to_string(m.vast) + " ms" +
        (wens.zonder_check ? "" : "; " + std::to_string(paren) + " pairs checked"));
    return kwalen.empty()
               ? GOED
               : meld(FOUT_GEVONDEN, "the copy stands, but what was copied is damaged, or not all there");
}

int nakijken() {
    std::vector<std::string> kwalen, noten;
    std::string fout;
    if (!kopie_nakijken(wens.map, &kwalen, &noten, &fout))
        return meld(NIET_TE_OPENEN, fout);
    const int paren = wens.zonder_check ? 0 : kopie_paren(wens.map, &kwalen);
    for (const std::string& kwaal : kwalen)
        tool_zeg("%s\n", kwaal.c_str());
    for (const std::string& n : noten)
        zeg("note: " + n);
    zeg(wens.map + ": " + (kwalen.empty() ? "good" : std::to_string(kwalen.size()) + " wrong") +
        (wens.zonder_check ? "" : ", " + std::to_string(paren) + " pairs checked"));
    return kwalen.empty() ? GOED : FOUT_GEVONDEN;
}

} // namespace

int main(int argc, char** argv) {
    tool_begin("zgcopy", ruim_op);
    CLI::App app{"copy a data directory while people work in it, or check such a copy.\n"
                 "The copy is of one moment; programs wait while the last differences are taken over.",
                 "zgcopy"};
    tool_kop(app, "0 good, 1 found wrong, 2 used wrong, 3 cannot open, 4 in use.");
    app.add_option("DIR", wens.map, "data directory; with --check the copy")->required();
    app.add_option("TARGET", wens.doel, "empty directory for the copy, made if it isn't there");
    app.add_flag("-c,--check", wens.nakijken, "check a copy: its files by the list of checksums, its pairs");
    app.add_flag("-C,--no-check", wens.zonder_check, "leave out the check of the pairs");
    app.add_flag("-q,--quiet", wens.stil, "say only what is wrong");
    app.add_option("-w,--wait", wens.wacht, "seconds to wait for a file in use, and for a quiet moment")
        ->check(CLI::Range(0, 86400));
    if (int uit; !tool_woorden(app, argc, argv, &uit))
        return uit;
    if (wens.nakijken != wens.doel.empty())
        return meld(FOUT_GEBRUIKT, wens.nakijken ? "--check takes one directory" : "where to? Name a TARGET");
    wens.map = kaal(wens.map), wens.doel = kaal(wens.doel);
    if (!IOEXISTS((wens.map + "/DTSYS.TXT").c_str()))
        return meld(NIET_TE_OPENEN, wens.map + "/DTSYS.TXT: " + strerror(errno));
    const int uit = wens.nakijken ? nakijken() : kopieer();
    if (kopie_gestopt) {
        fflush(nullptr);
        signal(kopie_gestopt, SIG_DFL);
        raise(kopie_gestopt);
    }
    return tool_einde(uit);
}
