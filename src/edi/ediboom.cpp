// Module edihdl: the tree of mailboxes made, moved and taken away. A move goes directory by directory and file by file, by
// calls of its own: a name may have any bytes. Its invariants, at every moment and behind a kill:
//  1. Each file has its whole content under its name, in the old tree, the new one, or both.
//  2. A name of the new tree is given by a link, which overwrites nothing; the old one goes behind it. So a file in both
//     trees with the same content is one whose move was cut off.
//  3. A copy to another file system stands as EDIBOUW in the new root until it is whole and on disk; one that is left is
//     thrown away by the next move. What has that name in an old root gets another one before it is moved.
//  4. The setting is changed when the old tree is empty.
//  5. No directory of one tree is also one of the other, by a link or a second mount: there the same file is no copy.
#include "edi/edibinnen.h"
#include "edi/edihdl.h"
#include "edi/teksten.h"
#include "shared/files.h"
#include "shared/mapbeurt.h"
#include "shared/report.h"
#include "shared/syscalls.h"
#include "term/natl.h"
#include "term/scherm.h"
#include "term/teksten.h"
#include "term/vast.h"
#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>
#include <vector>

namespace zg {
namespace {

constexpr mode_t MAPRECHTEN = 02774;

// ---- names in a directory, sorted; not through a link

struct Inhoud {
    std::vector<std::string> mappen, bestanden; // names; the second are all that is no directory
};

bool lees_map(const std::string& pad, Inhoud* inhoud) {
    const int fd = SYS.open(pad.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC, 0);
    DIR* map = fd < 0 ? nullptr : fdopendir(fd);
    if (!map) {
        const int fout = errno;
        if (fd >= 0)
            SYS.close(fd);
        errno = fout;
        return false;
    }
    int fout = 0;
    struct stat st;
    for (const dirent* de; errno = 0, (de = readdir(map));) {
        const std::string naam = de->d_name;
        if (naam == "." || naam == "..")
            continue;
        if (lstat((pad + "/" + naam).c_str(), &st) == 0)
            (S_ISDIR(st.st_mode) ? inhoud->mappen : inhoud->bestanden).push_back(naam);
        else if (errno != ENOENT) // gone meanwhile: somebody took it
            fout = errno;
    }
    fout = fout ? fout : errno;
    closedir(map);
    for (auto* namen : {&inhoud->mappen, &inhoud->bestanden})
        std::sort(namen->begin(), namen->end());
    errno = fout;
    return fout == 0;
}

// Is there anything but directories in it? Also when that can't be seen.
bool bevat_bestanden(const std::string& pad) {
    Inhoud inhoud;
    if (!lees_map(pad, &inhoud) || !inhoud.bestanden.empty())
        return true;
    return std::any_of(inhoud.mappen.begin(), inhoud.mappen.end(),
                       [&](const std::string& naam) { return bevat_bestanden(pad + "/" + naam); });
}

// ---- one file

bool zelfde_inhoud(const std::string& a, const std::string& b) {
    const int van = SYS.open(a.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK, 0);
    const int naar = SYS.open(b.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK, 0);
    bool gelijk = van >= 0 && naar >= 0;
    char x[8192], y[8192];
    ssize_t n = 1;
    for (int64_t plaats = 0; gelijk && n > 0; plaats += n) {
        n = SYSLEES(van, x, sizeof x, plaats);
        gelijk =
            n >= 0 && SYSLEES(naar, y, sizeof y, plaats) == n && memcmp(x, y, static_cast<size_t>(n)) == 0;
    }
    for (int fd : {van, naar})
        if (fd >= 0)
            SYS.close(fd);
    return gelijk;
}

// By whatever two paths.
bool zelfde_map(const std::string& a, const std::string& b) {
    struct stat x, y;
    return stat(a.c_str(), &x) == 0 && stat(b.c_str(), &y) == 0 && x.st_dev == y.st_dev &&
           x.st_ino == y.st_ino;
}

enum class Doel { vrij, zelfde, bezet };

// What stands under the new name of a file: nothing, the same file or its copy, or something else.
Doel doel_van(const std::string& van, const struct stat& st, const std::string& naar) {
    struct stat daar;
    if (lstat(naar.c_str(), &daar) < 0)
        return Doel::vrij;
    if (daar.st_dev == st.st_dev && daar.st_ino == st.st_ino)
        return Doel::zelfde;
    return S_ISREG(st.st_mode) && S_ISREG(daar.st_mode) && st.st_size == daar.st_size &&
                   zelfde_inhoud(van, naar)
               ? Doel::zelfde
               : Doel::bezet;
}

// A copy with the rights and times of the file, whole and on disk, under a name that nobody reads.
bool kopieer(const std::string& van, const struct stat& st, const std::string& bouw) {
    IOUNLINK(bouw.c_str());
    if (!IOCOPY(van.c_str(), bouw.c_str(), -1)) {
        errno = errno ? errno : EIO;
        return false;
    }
    const int fd = SYS.open(bouw.c_str(), O_RDWR | O_NOFOLLOW | O_CLOEXEC, 0);
    const timespec tijden[] = {st.st_atim, st.st_mtim};
    bool goed = fd >= 0 && SYSEVENALS(fd, van.c_str());
    if (goed)
        futimens(fd, tijden); // a file system without times keeps its own
    goed = goed && SYS.fsync(fd) == 0;
    const int fout = errno;
    if (fd >= 0 && SYS.close(fd) != 0)
        goed = false;
    if (!goed)
        IOUNLINK(bouw.c_str());
    errno = fout;
    return goed;
}

// What has the name of our copies in a root out of the way: "zgedi.tmp", with a number when that is taken.
bool geef_ruimte(const std::string& root) {
    constexpr int POGINGEN = 99;
    const std::string bouw = root + "/" + EDIBOUW, kaal = root + "/" + (EDIBOUW + 1);
    std::string naam = kaal;
    for (int nr = 1; IOEXISTS(bouw.c_str()) && nr <= POGINGEN; naam = kaal + std::to_string(nr++))
        if (renameat2(AT_FDCWD, bouw.c_str(), AT_FDCWD, naam.c_str(), RENAME_NOREPLACE) != 0 &&
            errno != EEXIST)
            break;
    return !IOEXISTS(bouw.c_str());
}

// The new name of a file, its old one still there. False with errno.
bool geef_naam(const std::string& van, const struct stat& st, const std::string& naar,
               const std::string& bouw) {
    if (SYS.link(van.c_str(), naar.c_str()) == 0)
        return true;
    if (errno == EEXIST || !S_ISREG(st.st_mode) || !kopieer(van, st, bouw))
        return false;
    const bool goed =
        SYS.link(bouw.c_str(), naar.c_str()) == 0 ||
        (errno != EEXIST && !IOEXISTS(naar.c_str()) && SYS.rename(bouw.c_str(), naar.c_str()) == 0);
    const int fout = errno;
    IOUNLINK(bouw.c_str());
    errno = fout;
    return goed;
}

bool verplaats_bestand(const std::string& van, const std::string& naar, const std::string& bouw) {
    struct stat st;
    if (lstat(van.c_str(), &st) < 0)
        return errno == ENOENT || edi_zeg(T_EDI_NIET_VERPLAATST, van, errno);
    const Doel doel = doel_van(van, st, naar);
    if (doel == Doel::bezet)
        return edi_zeg(T_EDI_STAAT_AL, naar);
    if ((doel == Doel::vrij && !geef_naam(van, st, naar, bouw)) || !IOUNLINK(van.c_str()))
        return edi_zeg(errno == EXDEV ? T_EDI_SOORT : T_EDI_NIET_VERPLAATST, van, errno);
    return true;
}

// ---- the tree

// Before anything is moved: is every name of it free in the new tree, and can every file be had there? `schijf`: where
// the new tree is; `bytes` grows by those that are to be copied there.
bool keur(const std::string& van, const std::string& naar, dev_t schijf, uintmax_t* bytes) {
    struct stat st;
    Inhoud inhoud;
    if (lstat(naar.c_str(), &st) == 0 && !IOISDIR(naar.c_str()))
        return edi_zeg(T_EDI_STAAT_AL, naar);
    if (zelfde_map(van, naar))
        return edi_zeg(T_EDI_BINNEN, naar);
    if (!lees_map(van, &inhoud))
        return edi_zeg(T_EDI_NIET_VERPLAATST, van, errno);
    for (const std::string& naam : inhoud.bestanden) {
        if (lstat((van + "/" + naam).c_str(), &st) < 0)
            continue;
        if (!S_ISREG(st.st_mode) && st.st_dev != schijf)
            return edi_zeg(T_EDI_SOORT, van + "/" + naam);
        const Doel doel = doel_van(van + "/" + naam, st, naar + "/" + naam);
        if (doel == Doel::bezet)
            return edi_zeg(T_EDI_STAAT_AL, naar + "/" + naam);
        if (doel == Doel::vrij && st.st_dev != schijf)
            *bytes += static_cast<uintmax_t>(st.st_size);
    }
    return std::all_of(inhoud.mappen.begin(), inhoud.mappen.end(), [&](const std::string& naam) {
        return keur(van + "/" + naam, naar + "/" + naam, schijf, bytes);
    });
}

// The line at the bottom that says where a move is.
struct Voortgangsregel {
    Voortgangsregel() : er(SCHERM.bestaat && !SCHERM.dicht && SCHERM.aantal < VENSTERS) {
        if (er)
            WINOPEN1(SCHERM.lines - 1, 1, 1, SCHERM.cols);
    }
    ~Voortgangsregel() {
        if (er)
            WINCLOSE();
    }
    Voortgangsregel(const Voortgangsregel&) = delete;
    Voortgangsregel& operator=(const Voortgangsregel&) = delete;
    void toon(const std::string& map) const {
        if (!er)
            return;
        SCRPUT(A_LABEL, 1, 1, "%s", TXT(T_EDI_VERPLAATSEN));
        SCRPUT(A_WAARDE, 1, 2 + static_cast<int>(strlen(TXT(T_EDI_VERPLAATSEN))), "%-58.58s", map.c_str());
        SCRFLUSH(0);
    }
    bool er;
};

bool verplaats(const std::string& van, const std::string& naar, const std::string& bouw,
               const Voortgangsregel& regel) {
    Inhoud inhoud;
    regel.toon(van);
    if (!edi_maakmap(naar, van))
        return false;
    if (zelfde_map(van, naar))
        return edi_zeg(T_EDI_BINNEN, naar);
    if (!lees_map(van, &inhoud))
        return edi_zeg(T_EDI_NIET_VERPLAATST, van, errno);
    for (const std::string& naam : inhoud.mappen)
        if (!verplaats(van + "/" + naam, naar + "/" + naam, bouw, regel))
            return false;
    return std::all_of(inhoud.bestanden.begin(), inhoud.bestanden.end(), [&](const std::string& naam) {
        return verplaats_bestand(van + "/" + naam, naar + "/" + naam, bouw);
    });
}

// A root with all mailboxes in it; those that are made are as those of the root `zoals`, where there is one.
bool maak_boom(const std::string& root, const std::string& zoals = "") {
    const auto maak = [&](const std::string& map) {
        return edi_maakmap(edi_zonder_streep(root) + map, zoals.empty() ? "" : zoals + map);
    };
    bool goed = edi_maakmap(root, zoals);
    for (int soort = 0; goed && soort < EDI_SOORTEN; soort++) {
        const std::string bus = std::string("/") + edidirname(soort);
        goed = maak(bus) && (soort > EDI_BEWAART || maak(bus + "/save"));
    }
    return goed;
}

// May mailboxes come there: is it new, empty, or does it have some? What else stands in a root moves along one day.
bool neemt_bussen(const std::string& map) {
    Inhoud inhoud;
    if (!lees_map(map, &inhoud)) // what is wrong with it shows when it is made
        return true;
    return (inhoud.mappen.empty() && inhoud.bestanden.empty()) ||
           std::any_of(inhoud.mappen.begin(), inhoud.mappen.end(), [](const std::string& naam) {
               int soort = 0;
               while (soort < EDI_SOORTEN && naam != edidirname(soort))
                   soort++;
               return soort < EDI_SOORTEN;
           });
}

// A path without links, its last part maybe not there yet; empty when its directory isn't.
std::string echt_pad(const std::string& pad) {
    char vol[PATH_MAX];
    if (realpath(pad.c_str(), vol))
        return vol;
    const std::string kaal = edi_zonder_streep(pad);
    const size_t streep = kaal.rfind('/');
    const std::string boven = streep == std::string::npos ? "." : kaal.substr(0, streep + 1);
    if (!realpath(boven.c_str(), vol))
        return "";
    return edi_zonder_streep(vol) + "/" + kaal.substr(streep == std::string::npos ? 0 : streep + 1);
}

bool binnen(const std::string& pad, const std::string& map) {
    return (pad + "/").starts_with(edi_zonder_streep(map) + "/");
}

} // namespace

bool edi_zeg(const Tekst& tekst, const std::string& pad, int fout) {
    char regel[160];
    std::string kort = pad.size() > 50 ? "..." + pad.substr(pad.size() - 47) : pad;
    for (char& c : kort)
        if (NKLASSE[static_cast<uint8_t>(c)] & N_CONTROL)
            c = '?';
    snprintf(regel, sizeof regel, TXT(tekst), kort.c_str(), IOREDEN(fout));
    ALARMBOX(regel);
    return false;
}

bool edi_maakmap(const std::string& zoals_gezet, const std::string& voorbeeld) {
    if (IOISDIR(zoals_gezet.c_str()))
        return true;
    const std::string pad = edi_zonder_streep(zoals_gezet);
    if (!SYSNIEUWEMAP(pad.c_str()))
        return IOISDIR(pad.c_str()) ||
               edi_zeg(errno == EEXIST ? T_EDI_STAAT_AL : T_EDI_NIET_GEMAAKT, pad, errno);
    const int fd = SYS.open(pad.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC, 0);
    if (fd < 0)
        return edi_zeg(T_EDI_NIET_GEMAAKT, pad, errno);
    if (!IOISDIR(voorbeeld.c_str()) || !SYSEVENALS(fd, voorbeeld.c_str()))
        SYS.fchmod(fd, MAPRECHTEN); // as far as the file system has rights
    SYS.close(fd);
    return true;
}

int edimaketree() {
    const std::string root = ediroot();
    return !root.empty() && maak_boom(root);
}

int edimovetree(const char* van, const char* naar) {
    const std::string bron = IOISDIR(van) ? echt_pad(van) : "", doel = echt_pad(naar), hier = echt_pad(".");
    if (bron.empty())
        return edi_zeg(T_EDI_GEEN_ROOT, van);
    if (doel.empty())
        return edi_zeg(T_EDI_NIET_GEMAAKT, naar, ENOENT);
    if (bron == doel)
        return 1;
    if (binnen(doel, bron))
        return edi_zeg(T_EDI_BINNEN, naar);
    if (binnen(hier, bron))
        return edi_zeg(T_EDI_DATAMAP, van);
    struct stat st {};
    const std::string boven = doel.substr(0, doel.rfind('/') + 1);
    if (stat(doel.c_str(), &st) < 0 && stat(boven.c_str(), &st) < 0)
        return edi_zeg(T_EDI_NIET_GEMAAKT, naar, errno);
    const std::string bouw = doel + "/" + EDIBOUW;
    if (!geef_ruimte(bron))
        return edi_zeg(T_EDI_STAAT_AL, bron + "/" + EDIBOUW);
    uintmax_t bytes = 0;
    struct statvfs ruimte {};
    if (!keur(bron, doel, st.st_dev, &bytes))
        return 0;
    if (statvfs((IOISDIR(doel.c_str()) ? doel : boven).c_str(), &ruimte) == 0 &&
        bytes > uintmax_t{ruimte.f_bavail} * ruimte.f_frsize)
        return edi_zeg(T_EDI_NIET_VERPLAATST, bron, ENOSPC);
    if (!maak_boom(doel, bron))
        return 0;
    const IOBEURT beurt(bouw.c_str()); // one move into a tree at a time
    IOUNLINK(bouw.c_str());
    const Voortgangsregel regel;
    return verplaats(bron, doel, bouw, regel) || (bevat_bestanden(doel) && edi_zeg(T_EDI_HALF, naar));
}

int ediremovedir(const char* map) {
    Inhoud inhoud;
    const std::string pad = edi_zonder_streep(map);
    if (!lees_map(pad, &inhoud))
        return 0;
    for (const std::string& naam : inhoud.mappen)
        if (!ediremovedir((pad + "/" + naam).c_str()))
            return 0;
    return inhoud.bestanden.empty() && SYS.rmdir(pad.c_str()) == 0;
}

namespace {

// The old tree empty, and gone where it may go. What programs dropped in it meanwhile goes along, too.
bool haal_leeg(const std::string& van, const char* naar) {
    constexpr int RONDEN = 5;
    const std::string bron = echt_pad(van);
    for (int i = 0; i < RONDEN; i++) {
        if (!edimovetree(van.c_str(), naar))
            return false;
        if (bron == echt_pad(naar) || ediremovedir(bron.c_str()) || !bevat_bestanden(bron))
            return true;
    }
    return edi_zeg(T_EDI_OUDE_ROOT, van);
}

// The tree out of the root that is set. Where that isn't there, but the new one is, a move was cut off behind its last
// file, or somebody else did it.
bool verhuis(const std::string& van, const char* naar) {
    const std::string doel = echt_pad(naar);
    if (doel != echt_pad(van) && !neemt_bussen(doel))
        return edi_zeg(T_EDI_ANDERS, naar);
    if (van.empty())
        return maak_boom(naar);
    if (IOISDIR(van.c_str()))
        return haal_leeg(van, naar);
    return IOISDIR(naar) || edi_zeg(T_EDI_GEEN_ROOT, van);
}

// A path as it is named when the root has moved; one that doesn't lie in it stays as it is.
std::string mee(const std::string& pad, const std::string& van, const std::string& naar) {
    const std::string root = edi_zonder_streep(van);
    return root.empty() || !binnen(pad, root) ? pad : edi_zonder_streep(naar) + pad.substr(root.size());
}

} // namespace

int edi_verplaats(const char* naar) {
    if (!*naar || !edi_mag("ZEBEDI", naar))
        return edi_zeg(*naar ? T_EDI_PAD_LANG : T_VERPLICHT, naar);
    if (const std::string doel = echt_pad(naar); !doel.empty() && binnen(echt_pad("."), doel))
        return edi_zeg(T_EDI_DATAMAP, naar);
    const bool sluit = !edi_open();
    if (!edisys('O', 0, nullptr))
        return 0;
    edirec rec;
    edisys('X', 0, &rec);
    const std::string was(VASTUIT(rec.zebedi)), edidir(VASTUIT(rec.edidir)), straks = mee(edidir, was, naar);
    int uit = straks == edidir || edi_past("EDIDIR", straks.c_str()) ? verhuis(was, naar)
                                                                     : edi_zeg(T_EDI_PAD_LANG, straks);
    if (uit) {
        VASTIN(rec.zebedi, naar);
        VASTIN(rec.edidir, straks);
        uit = edisys('W', 0, &rec);
    } else {
        edisys('U', 0, &rec);
    }
    if (uit && *ediget("EDIDIR")) // who looks for the mailboxes by these files finds them where they are
        uit = edimakeloc();
    if (sluit)
        edisys('C', 0, nullptr);
    return uit;
}

} // namespace zg
