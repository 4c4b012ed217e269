#include "tools/keurwerk.h"
#include "shared/syscalls.h"
#include "store/ix.h"
#include "store/node.h"
#include "tools/paar.h"
#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <set>
#include <unistd.h>

namespace zg {
namespace {

keurbestand* zoek(keurbestanden* alle, const std::string& naam) {
    const auto p = std::ranges::find(*alle, naam, &keurbestand::naam);
    return p == alle->end() ? nullptr : &*p;
}

std::map<int, std::string> geopend;           // by descriptor, the file that it was last
std::map<std::string, std::string> ongelezen; // files of which a read was refused, and why

ssize_t onthoud(int fd, ssize_t n) {
    const int fout = errno;
    if (n < 0 && fout != EINTR && fout != EAGAIN && geopend.contains(fd))
        ongelezen.emplace(geopend[fd], openreden(fout));
    errno = fout;
    return n;
}

// What both looks saw stays; true when they saw the same.
bool houd_over(keurbestanden* nu, keurbestanden* vorige) {
    bool gelijk = true;
    for (keurbestand& b : *nu) {
        std::multiset<std::string> eerder;
        if (const keurbestand* v = zoek(vorige, b.naam))
            eerder.insert(v->kwalen.begin(), v->kwalen.end());
        for (size_t w = b.kwalen.size(); w-- > 0;)
            if (const auto p = eerder.find(b.kwalen[w]); p != eerder.end()) {
                eerder.erase(p);
            } else {
                b.noten.push_back(b.kwalen[w] + " (changing)");
                b.kwalen.erase(b.kwalen.begin() + static_cast<ptrdiff_t>(w));
                gelijk = false;
            }
        gelijk = gelijk && eerder.empty();
    }
    return gelijk;
}

// Bytes of a record: the header's where it makes sense and can be read, else the dictionary's.
int recordlengte(const std::string& naam, int64_t databytes) {
    const keurlezer inx(naam + ".INX");
    IXHEADER kop;
    if (inx.fd >= 0 && SYSLEES(inx.fd, &kop, sizeof kop, 0) == ssize_t{sizeof kop} && !IXDEFFOUT(kop))
        return kop.reclen;
    return woordenboekkop(naam, databytes, &kop) ? kop.reclen : 0;
}

} // namespace

int keur_rust = 300'000;

keurbestanden keur_herhaald(int pogingen, const std::function<keurbestanden()>& deel) {
    keurbestanden uit = deel();
    auto iets = [](const keurbestand& b) { return !b.kwalen.empty(); };
    for (int i = 1; i < pogingen && std::ranges::any_of(uit, iets); i++) {
        usleep(static_cast<useconds_t>(keur_rust));
        keurbestanden weer = deel();
        const bool gelijk = houd_over(&weer, &uit);
        uit = std::move(weer);
        if (gelijk)
            break;
    }
    return uit;
}

keurbestanden keur_samen(keurbestanden alle) {
    keurbestanden uit;
    for (keurbestand& b : alle) {
        keurbestand* er = zoek(&uit, b.naam);
        if (!er) {
            uit.push_back(std::move(b));
            continue;
        }
        if (!b.telling.empty())
            er->telling = b.telling;
        er->kwalen.insert(er->kwalen.end(), b.kwalen.begin(), b.kwalen.end());
        er->noten.insert(er->noten.end(), b.noten.begin(), b.noten.end());
        er->verloren += b.verloren;
        er->namen |= b.namen;
    }
    return uit;
}

std::string keur_aantal(int64_t n, const char* wat) {
    return std::to_string(n) + " " + wat;
}

void keurhoop::meld(std::vector<std::string>* naar) const {
    for (const auto& [wat, n] : hoop)
        naar->push_back(n == 1 ? wat : wat + " (" + std::to_string(n) + " times)");
}

keurlezer::keurlezer(const std::string& pad) {
    gewone_bestanden();
    fd = SYS.open(pad.c_str(), O_RDONLY | O_CLOEXEC, 0);
    if (fd < 0)
        fout = openreden(errno);
}

keurlezer::~keurlezer() {
    if (fd >= 0)
        SYS.close(fd);
}

void keur_bewaak() {
    gewone_bestanden();
    static const SYSCALLS verder = SYS;
    SYS.open = [](const char* pad, int vlaggen, mode_t mode) {
        const int fd = verder.open(pad, vlaggen, mode);
        if (fd >= 0)
            geopend[fd] = pad;
        return fd;
    };
    SYS.read = [](int fd, void* buf, size_t n) { return onthoud(fd, verder.read(fd, buf, n)); };
    SYS.pread = [](int fd, void* buf, size_t n, off_t plaats) {
        return onthoud(fd, verder.pread(fd, buf, n, plaats));
    };
}

keurbestanden keur_ongelezen() {
    keurbestanden uit;
    for (const auto& [pad, fout] : ongelezen)
        uit.push_back({pad, "", {"can't be read: " + fout}});
    return uit;
}

bool keur_lees(const std::string& pad, size_t meest, std::string* bytes, keurbestand* b) {
    const keurlezer l(pad);
    const int64_t omvang = l.fd < 0 ? -1 : SYSOMVANG(l.fd);
    bytes->resize(static_cast<size_t>(std::clamp<int64_t>(omvang, 0, static_cast<int64_t>(meest))));
    const ssize_t n = l.fd < 0 ? -1 : SYSLEES(l.fd, bytes->data(), bytes->size(), 0);
    bytes->resize(static_cast<size_t>(std::max<ssize_t>(n, 0)));
    if (n < 0 && access(pad.c_str(), F_OK) == 0)
        b->kwalen.push_back(l.fd < 0 ? l.fout : strerror(errno));
    return n >= 0;
}

bool keur_records(const std::string& naam,
                  const std::function<void(int32_t nr, const uint8_t* rec, int lengte)>& f) {
    const keurlezer dat(naam + ".TXT");
    const int64_t bytes = dat.fd < 0 ? -1 : SYSOMVANG(dat.fd);
    const int lengte = bytes < 0 ? 0 : recordlengte(naam, bytes);
    if (lengte <= 0)
        return false;
    const size_t per_stuk = 65536 / static_cast<size_t>(lengte);
    std::vector<uint8_t> stuk(per_stuk * static_cast<size_t>(lengte));
    for (int32_t nr = 0; int64_t{nr} * lengte < bytes;) {
        const ssize_t n = SYSLEES(dat.fd, stuk.data(), stuk.size(), int64_t{nr} * lengte);
        if (n < lengte)
            return n >= 0;
        for (ssize_t p = 0; p + lengte <= n; p += lengte, nr++)
            if (IXRECLIVE(&stuk[static_cast<size_t>(p)], lengte))
                f(nr, &stuk[static_cast<size_t>(p)], lengte);
    }
    return true;
}

bool keur_past(const char* vorm, const std::string& naam) {
    size_t i = 0;
    for (; *vorm && *vorm != '*'; vorm++, i++) {
        const auto c = static_cast<unsigned char>(i < naam.size() ? naam[i] : 0);
        if (!c || (*vorm == '#'   ? !isdigit(c)
                   : *vorm == '@' ? !isupper(c)
                                  : *vorm != '?' && *vorm != naam[i]))
            return false;
    }
    return *vorm || i == naam.size();
}

std::vector<std::string> keur_namen(const std::string& map, std::string* reden) {
    namespace fs = std::filesystem;
    std::vector<std::string> uit;
    std::error_code fout;
    for (fs::directory_iterator it(map, fout), einde; !fout && it != einde; it.increment(fout))
        uit.push_back(it->path().filename());
    if (fout && reden)
        *reden = openreden(fout.value());
    std::ranges::sort(uit);
    return uit;
}

} // namespace zg
