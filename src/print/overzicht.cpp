// The pages and lines of a finished report.
#include "print/overzicht.h"
#include "shared/syscalls.h"
#include <algorithm>

namespace zg {
namespace {

constexpr size_t BLOK = 256 * 1024;

// The reading of a report: the line that has begun, and whether anything stands on it.
struct Lezer {
    Overzicht* o;
    int64_t begin;
    bool iets, return_; // a return waits: it counts only when no feed comes behind it
};

void regel_klaar(Lezer* l, int64_t volgende) {
    l->o->regels.push_back(l->begin);
    l->begin = volgende;
    l->iets = false;
}

void lees(Lezer* l, const char* bytes, size_t n, int64_t plaats) {
    for (size_t i = 0; i < n; i++, plaats++) {
        const char c = bytes[i];
        if (l->return_ && c != '\n' && c != '\f')
            regel_klaar(l, plaats);
        l->return_ = c == '\r';
        if (c == '\n') {
            regel_klaar(l, plaats + 1);
        } else if (c == '\f') {
            if (l->iets)
                regel_klaar(l, plaats + 1);
            l->begin = plaats + 1;
            l->iets = false;
            l->o->bladen.push_back(l->o->regels.size());
        } else
            l->iets = l->iets || (c != ' ' && c != '\r');
    }
}

} // namespace

bool overzicht_open(Overzicht* o, const char* pad, int64_t begin, int64_t eind) {
    *o = {};
    o->fd = SYS.open(pad, O_RDONLY | O_CLOEXEC, 0);
    if (o->fd < 0)
        return false;
    o->bladen.push_back(0);
    Lezer l{o, begin, false, false};
    std::string blok(BLOK, '\0');
    for (int64_t plaats = begin; plaats < eind;) {
        const auto wil = static_cast<size_t>(std::min(eind - plaats, static_cast<int64_t>(BLOK)));
        const ssize_t n = SYSLEES(o->fd, blok.data(), wil, plaats);
        if (n < 0) {
            overzicht_sluit(o);
            return false;
        }
        lees(&l, blok.data(), static_cast<size_t>(n), plaats);
        plaats += n;
        if (static_cast<size_t>(n) < wil)
            break;
    }
    if (l.iets)
        regel_klaar(&l, l.begin);
    if (o->bladen.size() == 1 || o->bladen.back() < o->regels.size())
        o->bladen.push_back(o->regels.size());
    return true;
}

void overzicht_sluit(Overzicht* o) {
    if (o->fd >= 0)
        SYS.close(o->fd);
    *o = {};
}

std::string overzicht_regel(const Overzicht& o, size_t regel, int van, int tot) {
    if (regel >= o.regels.size() || van >= tot)
        return "";
    std::string uit(static_cast<size_t>(tot), '\0');
    const ssize_t n = SYSLEES(o.fd, uit.data(), uit.size(), o.regels[regel]);
    uit.resize(n < 0 ? 0 : static_cast<size_t>(n));
    uit.resize(std::min(uit.size(), uit.find_first_of("\r\n\f")));
    uit.erase(0, static_cast<size_t>(van));
    std::replace_if(
        uit.begin(), uit.end(), [](char c) { return static_cast<unsigned char>(c) < ' ' || c == 0x7F; }, '.');
    return uit;
}

} // namespace zg
