// Module ioord: opening, locking, buffered reading and writing in place of order journals and work files.
// Offsets are bytes from the start of the file. order/ordtekst.cpp does the texts, order/ordloop.cpp raw walks.
//
// 1. A region lock belongs to the process and the inode: closing any descriptor of the file drops it, and it
//    does not follow a rename. So a journal has one descriptor in the process, and an opener that has got the lock
//    looks whether the path still leads to the inode it holds.
// 2. The valid part of a buffer ends on a record boundary.
#include "order/ioord.h"
#include "order/meld.h"
#include "order/ordloop.h"
#include "shared/files.h"
#include "shared/gedeeld.h"
#include "shared/houder.h"
#include "shared/iomaat.h"
#include "shared/report.h"
#include "shared/syscalls.h"
#include "shared/sysrec.h"
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <vector>

namespace zg {

ordkop kop;
ordmodel model;
orddessin dessin;
ordtekst tekstrec;
ordmaat maatrec;
ordextra extra_e, extra_b;
ordlevt levtrec;
ordfil filrec;

namespace {

inline constexpr int32_t BUFFER_MAX = 16384, BUFFER_MIN = 1024;
// An opener that keeps finding another file under its path gives up after so many turns.
inline constexpr int OPENPOGINGEN = 50;

enum openstand { OPEN_GOED, OPEN_MISLUKT, OPEN_BEZET };

// "Informatie in gebruik door Joke (tty03)"; empty when the holder is no user's program.
std::string wie_houdt(int fd) {
    char tekst[81] = "";
    return houder_tekst(tekst, sizeof tekst, fd, 0, 1) ? tekst : "";
}

// *houder: who holds it, when that is the answer. A failure leaves errno.
openstand open_op_slot(const char* pad, int vlaggen, int* uit, std::string* houder) {
    bool schrijven = (vlaggen & O_ACCMODE) != O_RDONLY;
    for (int i = 0; i < OPENPOGINGEN; i++) {
        const int vol = vlaggen | O_CLOEXEC | O_NOCTTY | O_NONBLOCK;
        int fd = vlaggen & O_CREAT ? SYSNIEUW(pad, vol) : SYS.open(pad, vol, 0);
        if (fd < 0)
            return OPEN_MISLUKT;
        struct stat open_st, pad_st;
        int reden = SYS.fstat(fd, &open_st) != 0  ? errno
                    : S_ISDIR(open_st.st_mode)    ? EISDIR
                    : !S_ISREG(open_st.st_mode)   ? EINVAL
                    : open_st.st_size > INT32_MAX ? EFBIG
                                                  : 0;
        if (reden) {
            SYS.close(fd);
            errno = reden;
            return OPEN_MISLUKT;
        }
        if (!schrijven) {
            *uit = fd;
            return OPEN_GOED;
        }
        if (!IOLOCK('E', fd, 0, 1)) {
            *houder = wie_houdt(fd);
            SYS.close(fd);
            return OPEN_BEZET;
        }
        if (stat(pad, &pad_st) == 0 && pad_st.st_dev == open_st.st_dev && pad_st.st_ino == open_st.st_ino) {
            *uit = fd;
            return OPEN_GOED;
        }
        SYS.close(fd); // replaced between our open and our lock
    }
    return OPEN_BEZET;
}

// Null with errno set, or 0 when another holds it, which has been told.
ordhandle* open_bestand(const char* map, const std::string& naam, const std::string& pad, int vlaggen) {
    int fd = -1;
    std::string houder;
    switch (open_op_slot(pad.c_str(), vlaggen, &fd, &houder)) {
    case OPEN_MISLUKT:
        return nullptr;
    case OPEN_BEZET:
        ord_meld_bezet(naam.c_str(), houder.c_str());
        errno = 0;
        return nullptr;
    case OPEN_GOED:
        break;
    }
    auto h = std::make_unique<ordhandle>();
    h->fd = fd;
    h->laatste_o = h->laatste_m = h->laatste_d = -1;
    h->schrijven = (vlaggen & O_ACCMODE) != O_RDONLY;
    snprintf(h->naam, sizeof h->naam, "%s", naam.c_str());
    snprintf(h->seizoen, sizeof h->seizoen, "%.5s", map);
    h->pad = pad;
    for (h->buflen = BUFFER_MAX; h->buflen >= BUFFER_MIN; h->buflen /= 2) {
        h->buffer = static_cast<uint8_t*>(malloc(static_cast<size_t>(h->buflen)));
        if (h->buffer)
            return h.release();
    }
    NOMEM("ioord", 1);
}

// Every record of a journal that will be rebuilt is looked at before anything is written.
void keur(ordhandle* h) {
    ordloop l;
    ordrauw r;
    ordloop_begin(&l, h->fd, 0, INT64_MAX);
    while (ord_verder(h, &l, &r))
        continue;
}

// Fill the buffer from an offset, so that a whole record stands at its start; false at the end of the file.
bool vul(ordhandle* h, int32_t offset) {
    h->bufgeldig = 0;
    h->bufstart = offset;
    if (offset < 0)
        ord_inconsistent(h, offset, h->tag);
    const ssize_t n = IOLEES(h->fd, h->buffer, static_cast<size_t>(h->buflen), offset);
    int32_t p = 0, vol = static_cast<int32_t>(n);
    while (p < vol) {
        int lengte = ord_lengte(static_cast<char>(h->buffer[p]));
        const bool past = lengte >= 0 && p + 1 + lengte <= vol;
        if (!past && lengte >= 0 && vol == h->buflen)
            break; // goes on behind the buffer
        if (!past)
            ord_inconsistent(h, int64_t{offset} + p, static_cast<char>(h->buffer[p]));
        p += 1 + lengte;
    }
    h->bufgeldig = p;
    return p > 0;
}

// The tag at an offset: 'X' at the end.
char tag_op(ordhandle* h, int32_t offset) {
    if (offset >= h->bufstart && offset - h->bufstart < h->bufgeldig) {
        int32_t in = offset - h->bufstart;
        char tag = static_cast<char>(h->buffer[in]);
        int lengte = ord_lengte(tag);
        if (lengte >= 0 && in + 1 + lengte <= h->bufgeldig)
            return tag;
    }
    return vul(h, offset) ? static_cast<char>(h->buffer[0]) : 'X';
}

bool neem(ordhandle* h, char tag) {
    h->tag = tag;
    if (tag == 'X')
        return false;
    memcpy(ord_beeld(tag), h->buffer + (h->offset - h->bufstart) + 1, static_cast<size_t>(ord_lengte(tag)));
    if (tag == 'O')
        h->laatste_o = h->offset;
    else if (tag == 'M')
        h->laatste_m = h->offset;
    else if (tag == 'D')
        h->laatste_d = h->offset;
    return true;
}

} // namespace

void* ord_beeld(char tag) {
    switch (tag) {
    case 'O':
        return &kop;
    case 'M':
        return &model;
    case 'D':
        return &dessin;
    case 'T':
        return &tekstrec;
    case 'S':
        return &maatrec;
    case 'E':
        return &extra_e;
    case 'B':
        return &extra_b;
    case 'L':
        return &levtrec;
    case 'F':
        return &filrec;
    default:
        return nullptr;
    }
}

ordhandle* ord_open_jrn(const char* map, int leverancier, int vlaggen) {
    if (leverancier < 0 || leverancier > UINT16_MAX)
        return nullptr;
    char naam[24];
    std::string pad;
    if (leverancier) {
        snprintf(naam, sizeof naam, "ORD%04u.JRN", static_cast<unsigned>(leverancier));
        pad = std::string(map) + '/' + naam;
    } else {
        snprintf(naam, sizeof naam, "ORD%5.5s.JRN", map);
        pad = naam;
    }
    ordhandle* h = open_bestand(map, naam, pad, vlaggen);
    if (!h && errno && (errno != ENOENT || vlaggen & O_CREAT))
        ord_meld_geen_toegang(naam, errno);
    if (h && h->schrijven)
        keur(h);
    return h;
}

ordhandle* ord_open_wrk(const char* map, int leverancier, int vlaggen) {
    if (leverancier < 0 || leverancier > UINT16_MAX)
        return nullptr;
    char naam[24];
    snprintf(naam, sizeof naam, "ORD%04u.WRK", static_cast<unsigned>(leverancier));
    return open_bestand(map, naam, std::string(map) + '/' + naam, vlaggen);
}

void ord_sluit(ordhandle* h) {
    if (!h)
        return;
    if (h->schrijven)
        IOLOCK('U', h->fd, 0, 1);
    SYS.close(h->fd);
    free(h->buffer);
    delete h;
}

void ord_sluit_jrn(ordhandle* h) {
    if (h && h->schrijven && SYSOMVANG(h->fd) == 0 && ord_nog_vast(h))
        SYS.unlink(h->pad.c_str());
    ord_sluit(h);
}

int ord_slotfout(int fd, const char* pad) {
    if (!IOGEDEELD())
        return 0;
    struct flock slot {};
    struct stat hier, daar;
    slot.l_type = F_WRLCK;
    slot.l_whence = SEEK_SET;
    slot.l_len = 1;
    while (SYS.slot(fd, F_SETLK, &slot) < 0)
        if (errno != EINTR)
            return errno == EAGAIN || errno == EACCES ? ECANCELED : errno;
    if (SYS.fstat(fd, &hier) != 0 || stat(pad, &daar) != 0)
        return errno == ENOENT ? ECANCELED : errno;
    return hier.st_dev == daar.st_dev && hier.st_ino == daar.st_ino ? 0 : ECANCELED;
}

bool ord_nog_vast(ordhandle* h) {
    if (!h->verloren)
        h->verloren = ord_slotfout(h->fd, h->pad.c_str());
    errno = h->verloren ? h->verloren : errno;
    return !h->verloren;
}

void ord_wissel(ordhandle* h, int fd) {
    SYS.close(h->fd);
    h->fd = fd;
    h->gewijzigd = true;
    h->offset = h->bufgeldig = h->bufstart = 0;
    h->tag = 0;
    h->laatste_o = h->laatste_m = h->laatste_d = -1;
}

bool ord_verder(const ordhandle* h, ordloop* l, ordrauw* r) {
    switch (ordloop_volgende(l, r)) {
    case LOOP_RECORD:
        return true;
    case LOOP_EINDE:
        return false;
    case LOOP_FOUT:
        IOLEESFOUT(h->fd);
    case LOOP_TAG:
    case LOOP_KORT:
        break;
    }
    ord_inconsistent(h, r->offset, r->tag);
}

void ord_keur_order(const ordhandle* h) {
    ordloop l;
    ordrauw r;
    int32_t regel = 0;
    int64_t totaal = 0;
    bool maat = false, term = false;
    ordloop_begin(&l, h->fd, h->offset, INT64_MAX);
    while (ord_verder(h, &l, &r)) {
        bool goed = true;
        if (r.tag == 'O' && r.offset != h->offset)
            return;
        if (r.tag == 'D') {
            regel = static_cast<int32_t>(r.offset);
            totaal = 0;
            maat = term = false;
        } else if (r.tag == 'S') {
            maat = goed = r.data[1] >= 1 && r.data[1] <= MATEN;
        } else if (r.tag == 'E' || r.tag == 'B') {
            goed = maat;
        } else if (r.tag == 'L') {
            term = true;
        } else if (r.tag == 'F') {
            ordfil f;
            memcpy(&f, r.data + 1, sizeof f);
            goed = term && f.filiaal < firma.filialen && f.maat >= 1 && f.maat <= MATEN && f.aantal >= 0;
            totaal += f.aantal;
            if (totaal > INT32_MAX)
                ord_inconsistent(h, regel, 'D');
        }
        if (!goed)
            ord_inconsistent(h, r.offset, r.tag);
    }
}

bool ord_lees(ordhandle* h, char modus) {
    if (modus == 'N' && ord_lengte(h->tag) >= 0)
        h->offset += 1 + ord_lengte(h->tag);
    return neem(h, tag_op(h, h->offset));
}

bool ord_lees_op(ordhandle* h, int32_t plaats) {
    h->offset = plaats;
    return ord_lees(h, 'R');
}

bool ord_kind(ordhandle* h, char soort) {
    int lengte = ord_lengte(h->tag);
    if (lengte < 0)
        return false;
    int32_t verder = h->offset + 1 + lengte;
    char tag = tag_op(h, verder);
    bool past = false;
    switch (soort) {
    case 'D':
        past = !strchr("OMDX", tag);
        break;
    case 'M':
        past = !strchr("OMX", tag);
        break;
    case 'O':
        past = !strchr("OX", tag);
        break;
    case 'L':
        past = tag == 'F';
        break;
    case 'S':
        past = tag == 'E' || tag == 'B';
        break;
    case 'T':
        past = tag == 'T';
        break;
    default:
        break;
    }
    if (!past)
        return false;
    h->offset = verder;
    return neem(h, tag);
}

bool ord_volgende_order(ordhandle* h) {
    while (ord_lees(h, 'N'))
        if (h->tag == 'O')
            return true;
    return false;
}

bool ord_eerste_order(ordhandle* h) {
    h->offset = 0;
    return ord_lees(h, 'F') && h->tag == 'O';
}

bool ord_schrijf_op(ordhandle* h, int32_t plaats, const void* bytes, size_t n) {
    h->bufgeldig = 0;
    h->gewijzigd = true;
    if (SYSVERVANG(h->fd, bytes, n, plaats))
        return true;
    SCHRIJFFOUT(h->naam, errno, TXT(T_JRN_WERK_BLIJFT), nullptr);
    return false;
}

bool ord_schrijf(ordhandle* h) {
    const int lengte = ord_lengte(h->tag);
    if (lengte < 0 || h->offset < 0)
        return false;
    uint8_t bytes[1 + sizeof(orddessin)];
    static_assert(sizeof(orddessin) >= sizeof(ordkop));
    bytes[0] = static_cast<uint8_t>(h->tag);
    memcpy(bytes + 1, ord_beeld(h->tag), static_cast<size_t>(lengte));
    return ord_schrijf_op(h, h->offset, bytes, 1 + static_cast<size_t>(lengte));
}

} // namespace zg
