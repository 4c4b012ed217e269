// Module iofil: DTFILGEG.TXT, the branches.
#include "shared/iofil.h"
#include "shared/files.h"
#include "shared/report.h"
#include "shared/syscalls.h"
#include "shared/sysrec.h"
#include "term/vast.h"
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace zg {
namespace {

constexpr char BESTAND[] = "DTFILGEG.TXT";
constexpr size_t HOOFDNAAM = 32; // bytes of the head office that are not on file
int fd = -1;

void controleer(int index) {
    if (index < 0 || index > firma.filialen)
        INTERNAL("iofil", 1);
    if (fd < 0)
        INTERNAL("iofil", 2);
}

bool hoofdkantoor(int index) {
    return index == firma.filialen;
}

int64_t plaats(int index) {
    return (hoofdkantoor(index) ? 0 : index + 1) * static_cast<int64_t>(sizeof(filiaalrec));
}

void lees(int index, filiaalrec* rec) {
    auto* bytes = reinterpret_cast<char*>(rec);
    ssize_t n = IOLEES(fd, bytes, sizeof *rec, plaats(index));
    size_t goed = n < 0 ? 0 : static_cast<size_t>(n);
    memset(bytes + goed, 0, sizeof *rec - goed);
    if (hoofdkantoor(index)) {
        memcpy(bytes, &firma, HOOFDNAAM);
        return;
    }
    char naam[sizeof rec->naam + 1] = "";
    memcpy(naam, rec->naam, sizeof rec->naam);
    UNSCRAMBLE(naam);
    VASTIN(rec->naam, naam);
}

int schrijf(int index, const filiaalrec& rec) {
    filiaalrec kopie = rec;
    if (hoofdkantoor(index)) {
        memset(static_cast<void*>(&kopie), 0, HOOFDNAAM);
    } else {
        char naam[sizeof rec.naam + 1] = ""; // scrambling adds a byte: 29 characters of a name are kept
        memcpy(naam, rec.naam, sizeof rec.naam - 1);
        SCRAMBLE(naam);
        VASTIN(kopie.naam, naam);
    }
    if (SYSVERVANG(fd, &kopie, sizeof kopie, plaats(index)))
        return 1;
    SCHRIJFFOUT(BESTAND, errno);
    return 0;
}

bool is_filiaal(int index) {
    return index >= 0 && index < firma.filialen;
}

} // namespace

int iofil(char letter, int index, filiaalrec* rec) {
    switch (letter) {
    case 'O':
        if (fd < 0)
            fd = SYS.open(BESTAND, O_RDWR | O_CLOEXEC, 0);
        if (fd < 0)
            OPENFAIL("iofil", BESTAND);
        return 1;
    case 'C':
        if (fd >= 0)
            SYS.close(fd);
        fd = -1;
        return 1;
    case 'R':
        controleer(index);
        lees(index, rec);
        return 1;
    case 'W':
        controleer(index);
        return schrijf(index, *rec);
    default:
        return 0;
    }
}

int iofil_index(uint8_t nummer, int* index) {
    filiaalrec rec;
    // Mostly a branch's number is its index.
    if (is_filiaal(nummer) && iofil('R', nummer, &rec) && rec.nummer == nummer) {
        *index = nummer;
        return 1;
    }
    for (int i = 0; i < firma.filialen; i++)
        if (iofil('R', i, &rec) && rec.nummer == nummer) {
            *index = i;
            return 1;
        }
    return 0;
}

uint8_t iofil_nummer(int index) {
    filiaalrec rec;
    return is_filiaal(index) && iofil('R', index, &rec) ? rec.nummer : 0;
}

std::string iofil_naam(int index) {
    filiaalrec rec;
    return is_filiaal(index) && iofil('R', index, &rec) ? VASTTEKST(rec.naam) : std::string();
}

} // namespace zg
