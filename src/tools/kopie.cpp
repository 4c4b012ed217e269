// The rounds of a copy, see tools/kopie.h.
#include "tools/kopie.h"
#include "shared/files.h"
#include "shared/syscalls.h"
#include "shared/woordenboek.h"
#include "tools/paar.h"
#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <set>
#include <unistd.h>

namespace zg {

namespace fs = std::filesystem;

volatile int kopie_gestopt;

namespace {

constexpr size_t STUK = 1 << 20; // bytes; of a new file one of nothing but zeros becomes a hole
constexpr int64_t SECONDE = 1'000'000'000;

int64_t nanos(const timespec& t) {
    return t.tv_sec * SECONDE + t.tv_nsec;
}

int64_t nu() {
    timespec t;
    clock_gettime(CLOCK_REALTIME, &t);
    return nanos(t);
}

bool mis(Kopie* k, const std::string& naam) {
    k->fout = naam + ": " + (kopie_gestopt ? "stopped" : strerror(errno));
    return false;
}

std::string echt_pad(const std::string& pad) {
    char* p = realpath(pad.c_str(), nullptr);
    const std::string uit = p ? p : "";
    free(p);
    return uit;
}

// What belongs to no copy: other copies' own files, work under way, and the notes of reservations, which go as well.
bool overslaan(const std::string& naam) {
    return naam == KOPIELIJST || naam.starts_with(KOPIEWERK) || naam == "lost+found" || naam == ".zgdeel" ||
           IOPAST("SERNR??.RES", naam.c_str()) || IOPAST("*.ixwerk??????", ("x" + naam).c_str());
}

// Is that the place of a pair, a fixed table or a journal?
bool plaats_van_firma(const std::string& naam) {
    const bool hier = naam.find('/') == std::string::npos,
               tabel = naam.ends_with(".TXT") || naam.ends_with(".INX");
    return tabel ? (hier && naam.starts_with("DT")) || kopie_paarnaam(naam.substr(0, naam.size() - 4))
                 : IOPAST("*/ORD*.JRN", naam.c_str());
}

void noot(std::vector<std::string>* noten, const std::string& tekst) {
    if (std::find(noten->begin(), noten->end(), tekst) == noten->end())
        noten->push_back(tekst);
}

struct Wandeling {
    Kopie* k;
    Kopieboom* boom;
    std::string wortel;                      // of the directory itself, links resolved
    std::set<std::pair<dev_t, ino_t>> boven; // directories on the way, and the copy's own
};

// A link that stays in the directory, or leads nowhere, is one in the copy too.
bool blijft_link(Wandeling* w, const std::string& naam, const std::string& pad, Kopiepost* post) {
    const std::string doel = echt_pad(pad);
    struct stat st;
    const bool weg = doel.empty() || stat(pad.c_str(), &st) != 0,
               buiten = !weg && !(doel + "/").starts_with(w->wortel + "/");
    if (buiten && !(w->wortel + "/").starts_with(doel == "/" ? doel : doel + "/") &&
        !w->boven.contains({st.st_dev, st.st_ino})) {
        noot(&w->k->noten, naam + ": leads to " + doel + "; the copy has what is there in its place");
        post->st = st;
        return false;
    }
    char tekst[PATH_MAX];
    const ssize_t n = readlink(pad.c_str(), tekst, sizeof tekst);
    post->link.assign(tekst, static_cast<size_t>(std::max<ssize_t>(n, 0)));
    if (weg)
        noot(&w->k->noten, naam + ": a link that leads nowhere");
    else if (buiten)
        noot(&w->k->noten, naam + ": leads to " + doel +
                               ", which has this directory or the copy in it; the copy has the link alone");
    return true;
}

bool wandel(Wandeling* w, const std::string& onder) {
    const std::string map = onder.empty() ? w->k->van : w->k->van + "/" + onder;
    std::error_code fout;
    fs::directory_iterator rij(map, fout);
    for (; !fout && rij != fs::directory_iterator(); rij.increment(fout)) {
        const std::string naam = rij->path().filename().string(), pad = map + "/" + naam;
        if (onder.empty() && overslaan(naam))
            continue;
        const std::string hier = onder.empty() ? naam : onder + "/" + naam;
        Kopiepost post{};
        if (lstat(pad.c_str(), &post.st) != 0) {
            if (errno == ENOENT) // just gone
                continue;
            return mis(w->k, hier);
        }
        if (S_ISLNK(post.st.st_mode) && blijft_link(w, hier, pad, &post)) {
            (*w->boom)[hier] = post;
            continue;
        }
        if (!S_ISREG(post.st.st_mode) && plaats_van_firma(hier)) {
            noot(&w->k->kwalen, hier + ": no plain file, so it isn't in the copy");
            continue;
        }
        if (!S_ISREG(post.st.st_mode) && !S_ISDIR(post.st.st_mode)) {
            noot(&w->k->noten, hier + ": no file, so it isn't in the copy");
            continue;
        }
        const std::pair sleutel{post.st.st_dev, post.st.st_ino};
        if (S_ISDIR(post.st.st_mode) && w->boven.contains(sleutel)) { // the copy itself, seen through a link
            noot(&w->k->noten, hier + ": left out");
            continue;
        }
        (*w->boom)[hier] = post;
        if (S_ISDIR(post.st.st_mode)) {
            w->boven.insert(sleutel);
            if (!wandel(w, hier))
                return false;
            w->boven.erase(sleutel);
        }
    }
    if (fout && fout.value() != ENOENT) {
        errno = fout.value();
        return mis(w->k, map);
    }
    return true;
}

// Bytes to be read at *p, or at the next place that has data behind a hole there, to which *p goes on.
size_t volgend_stuk(int fd, int64_t* p) {
    const off_t data = lseek(fd, *p, SEEK_DATA);
    if (data < 0 && errno == ENXIO) // a hole up to the end
        *p = std::max(*p, SYSOMVANG(fd));
    if (data < 0)
        return STUK;
    *p = data;
    const off_t gat = lseek(fd, data, SEEK_HOLE);
    return gat > data ? static_cast<size_t>(std::min<off_t>(gat - data, STUK)) : STUK;
}

// Make the bytes of one file those of the other: 1 when that changed something, 0 when not, -1 with errno.
int gelijk(int van, int naar, bool nieuw, void (*gang)(int64_t)) {
    static std::vector<char> a(STUK), b(STUK);
    int anders = 0;
    bool gat = false; // behind the last byte written
    for (int64_t p = 0;;) {
        if (kopie_gestopt)
            return errno = EINTR, -1;
        const int64_t was = p;
        const size_t stuk = nieuw ? volgend_stuk(van, &p) : STUK;
        if (p > was) {
            gat = true;
            if (gang)
                gang(p - was);
        }
        const ssize_t n = SYSLEES(van, a.data(), stuk, p);
        const ssize_t m = nieuw || n < 0 ? 0 : SYSLEES(naar, b.data(), n ? static_cast<size_t>(n) : 1, p);
        if (n < 0 || m < 0)
            return -1;
        if (n == 0)
            return m == 0 && !gat ? anders : SYS.ftruncate(naar, p) == 0 ? 1 : -1;
        gat = nieuw && a[0] == 0 && memcmp(a.data(), a.data() + 1, static_cast<size_t>(n) - 1) == 0;
        if (gat) {
            anders = 1; // a hole
        } else if (n != m || memcmp(a.data(), b.data(), static_cast<size_t>(n)) != 0) {
            if (!SYSSCHRIJFOP(naar, a.data(), static_cast<size_t>(n), p))
                return -1;
            anders = 1;
        }
        p += n;
        if (gang)
            gang(n);
    }
}

// Pairs are always read: their blocks may be written where no time tells of it. Another file that has stood still since
// before it was last read needs no second look.
bool zeker_gelijk(const std::string& naam, const Kopiepost& oud, const Kopiepost& post) {
    if (naam.ends_with(".INX") || naam.ends_with(".TXT"))
        return false;
    const struct stat &a = oud.st, &b = post.st;
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino && a.st_size == b.st_size &&
           nanos(a.st_mtim) == nanos(b.st_mtim) && nanos(a.st_ctim) == nanos(b.st_ctim) &&
           nanos(a.st_ctim) < oud.gezien - SECONDE;
}

// One file: 1 changed, 0 the same, -1 with errno (ENOENT: it is gone).
int bestand(Kopie* k, const std::string& naam, bool nieuw, void (*gang)(int64_t)) {
    const auto slot = k->vast.find(naam);
    const int van = slot != k->vast.end()
                        ? slot->second
                        : SYS.open((k->van + "/" + naam).c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK, 0);
    if (van < 0)
        return -1;
    const std::string doel = k->naar + "/" + naam;
    const int naar = nieuw ? SYSNIEUW(doel.c_str(), O_RDWR | O_EXCL)
                           : SYS.open(doel.c_str(), O_RDWR | O_CLOEXEC | O_NOFOLLOW, 0);
    int uit = naar < 0 ? -1 : gelijk(van, naar, nieuw, gang);
    int fout = errno == ENOENT ? EIO : errno; // of the copy's own
    if (naar >= 0 && SYS.close(naar) != 0 && uit >= 0)
        uit = -1, fout = errno;
    if (slot == k->vast.end())
        SYS.close(van);
    errno = fout;
    return uit < 0 ? -1 : nieuw || uit;
}

bool gelijke_soort(const Kopiepost& a, const Kopiepost& b) {
    return (a.st.st_mode & S_IFMT) == (b.st.st_mode & S_IFMT) && a.link == b.link;
}

} // namespace

bool kopie_paarnaam(const std::string& stam) {
    const size_t streep = stam.rfind('/');
    const std::string map = streep == std::string::npos ? "" : stam.substr(0, streep),
                      naam = stam.substr(streep + 1);
    return naam.starts_with("TR_PTR") || naam == "MACRO" ||
           ((map.empty() || map == "edistam") && DDNUMMER(naam.c_str()) > 0);
}

bool kopie_boom(Kopie* k, Kopieboom* boom) {
    Wandeling w{k, boom, echt_pad(k->van), {}};
    struct stat st;
    if (stat(k->naar.c_str(), &st) == 0)
        w.boven.insert({st.st_dev, st.st_ino});
    return wandel(&w, "");
}

bool kopie_ronde(Kopie* k, std::vector<std::string>* anders, void (*gang)(int64_t)) {
    Kopieboom boom;
    if (!kopie_boom(k, &boom))
        return false;
    for (auto i = k->boom.rbegin(); i != k->boom.rend(); ++i) { // what is in a directory goes before it
        const auto nog = boom.find(i->first);
        if (nog != boom.end() && gelijke_soort(nog->second, i->second))
            continue;
        const std::string pad = k->naar + "/" + i->first;
        if ((S_ISDIR(i->second.st.st_mode) ? SYS.rmdir(pad.c_str()) : SYS.unlink(pad.c_str())) != 0)
            return mis(k, pad);
        if (nog == boom.end())
            anders->push_back(i->first);
    }
    for (auto i = boom.begin(); i != boom.end();) {
        const std::string& naam = i->first;
        const auto was = k->boom.find(naam);
        const bool nieuw = was == k->boom.end() || !gelijke_soort(was->second, i->second);
        const std::string doel = k->naar + "/" + naam;
        int uit = nieuw;
        if (!i->second.link.empty()) {
            if (nieuw && symlink(i->second.link.c_str(), doel.c_str()) != 0)
                return mis(k, doel);
        } else if (S_ISDIR(i->second.st.st_mode)) {
            if (nieuw && SYS.mkdir(doel.c_str(), 0700) != 0)
                return mis(k, doel);
        } else {
            const bool zeker = !nieuw && zeker_gelijk(naam, was->second, i->second);
            i->second.gezien = zeker ? was->second.gezien : nu();
            uit = zeker ? 0 : bestand(k, naam, nieuw, gang);
        }
        if (uit < 0 && errno != ENOENT)
            return mis(k, naam);
        if (uit != 0)
            anders->push_back(naam);
        if (uit < 0) {
            if (!nieuw && SYS.unlink(doel.c_str()) != 0)
                return mis(k, doel);
            i = boom.erase(i);
        } else {
            ++i;
        }
    }
    k->boom = std::move(boom);
    return true;
}

bool kopie_stil(Kopie* k, const std::string& naam) {
    constexpr int POGINGEN = 200; // on a busy machine who replaces it may come in between many times
    const auto post = k->boom.find(naam);
    if (post == k->boom.end() || !S_ISREG(post->second.st.st_mode))
        return true;
    for (int i = 0; i < POGINGEN; i++) {
        const int uit = bestand(k, naam, false, nullptr);
        if (uit == 0)
            return true;
        if (uit < 0 && errno == ENOENT) { // gone since
            SYS.unlink((k->naar + "/" + naam).c_str());
            k->boom.erase(post);
            return true;
        }
        if (uit < 0)
            return mis(k, naam);
    }
    k->fout = naam + ": changes all the time";
    return false;
}

bool kopie_af(Kopie* k) {
    std::map<std::pair<dev_t, ino_t>, std::string> eerste; // of the files with several names
    const int map = SYS.open(k->naar.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC, 0);
    if (map >= 0) {
        syncfs(map); // in one go; what the disk refused is told by each fsync below
        SYS.close(map);
    }
    for (auto i = k->boom.rbegin(); i != k->boom.rend(); ++i) {
        const auto& [naam, post] = *i;
        const std::string doel = k->naar + "/" + naam;
        if (!post.link.empty())
            continue;
        const bool is_map = S_ISDIR(post.st.st_mode);
        if (!is_map && post.st.st_nlink > 1) {
            const auto [was, nieuw] = eerste.try_emplace({post.st.st_dev, post.st.st_ino}, doel);
            if (!nieuw) {
                if (SYS.unlink(doel.c_str()) != 0 || SYS.link(was->second.c_str(), doel.c_str()) != 0)
                    return mis(k, doel);
                continue;
            }
        }
        if (kopie_is_paar(k->boom, naam) && !paar_wis_wachtrij(doel))
            return mis(k, doel);
        const int fd = SYS.open(doel.c_str(), (is_map ? O_RDONLY : O_RDWR) | O_CLOEXEC, 0);
        const timespec tijden[] = {post.st.st_atim, post.st.st_mtim};
        const std::string bron = k->van + "/" + naam;
        // Gone since: a file gets the rights of its new directory, a directory keeps those of its maker.
        bool goed = fd >= 0 && ((is_map && !IOEXISTS(bron.c_str())) || SYSEVENALS(fd, bron.c_str()));
        goed = goed && (futimens(fd, tijden) == 0 || errno == EPERM) && SYS.fsync(fd) == 0;
        const int fout = errno;
        if (fd >= 0)
            SYS.close(fd);
        errno = fout;
        if (!goed)
            return mis(k, doel);
    }
    return true;
}

void kopie_ruim(const std::string& map) {
    std::error_code fout;
    std::vector<fs::path> weg;
    for (fs::recursive_directory_iterator i(map, fout), eind; !fout && i != eind; i.increment(fout))
        weg.push_back(i->path());
    for (auto p = weg.rbegin(); p != weg.rend(); ++p)
        if (SYS.unlink(p->c_str()) != 0)
            SYS.rmdir(p->c_str());
    SYS.rmdir(map.c_str());
}

} // namespace zg
