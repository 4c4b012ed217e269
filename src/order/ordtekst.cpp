// Text blocks of orders: five T records of 60 bytes behind the O, M or D record they belong to.
#include "order/ioord.h"
#include "order/meld.h"
#include "order/wrkbinnen.h"
#include "shared/report.h"
#include "shared/syscalls.h"
#include <cstring>

namespace zg {

namespace {
inline constexpr size_t STUK = sizeof tekstrec.tekst, TRECORD = 1 + sizeof(ordtekst);

// Do the five records stand there, or does the file end there?
bool tekst_past(int fd, int64_t plaats, int soort) {
    uint8_t bytes[TEKSTSTUKKEN * TRECORD];
    ssize_t n = IOLEES(fd, bytes, sizeof bytes, plaats);
    if (n == 0)
        return plaats == IOOMVANG(fd);
    if (n != static_cast<ssize_t>(sizeof bytes))
        return false;
    for (size_t i = 0; i < TEKSTSTUKKEN; i++)
        if (bytes[i * TRECORD] != 'T' || bytes[i * TRECORD + 1] != soort)
            return false;
    return true;
}
} // namespace

void tekst_records(int soort, const char* blok, uint8_t* uit) {
    static const char LEEG[BLOKLEN] = {};
    size_t lengte = strnlen(blok, BLOKLEN), regeleinden = 0;
    while (regeleinden < lengte && blok[regeleinden] == '\n')
        regeleinden++;
    if (regeleinden == lengte)
        blok = LEEG;
    for (size_t i = 0; i < TEKSTSTUKKEN; i++, uit += TRECORD) {
        uit[0] = 'T';
        uit[1] = static_cast<uint8_t>(soort);
        memcpy(uit + 2, blok + i * STUK, STUK);
    }
}

bool ord_tekst_lees(ordhandle* h, int soort, char* blok) {
    memset(blok, 0, BLOKLEN);
    if (h->tag != 'O' && h->tag != 'M' && h->tag != 'D')
        return false;
    int32_t offset = h->offset;
    char tag = h->tag;
    size_t stuk = 0;
    while (ord_kind(h, 'T'))
        if (tekstrec.soort == soort && stuk < TEKSTSTUKKEN)
            memcpy(blok + STUK * stuk++, tekstrec.tekst, STUK);
    h->offset = offset;
    h->tag = tag;
    return true;
}

bool ord_kop_schrijf(ordhandle* h, const char* levering, const char* betaling) {
    uint8_t bytes[1 + sizeof kop + 2 * TEKSTSTUKKEN * TRECORD];
    bytes[0] = 'O';
    memcpy(bytes + 1, &kop, sizeof kop);
    uint8_t* teksten = bytes + 1 + sizeof kop;
    tekst_records(1, levering, teksten);
    tekst_records(2, betaling, teksten + TEKSTSTUKKEN * TRECORD);
    uint8_t oud[sizeof bytes];
    const ssize_t er = IOLEES(h->fd, oud, sizeof oud, 0);
    if (er != 0) {
        if (er < 1 || oud[0] != 'O' || !tekst_past(h->fd, 1 + sizeof kop, 1) ||
            !tekst_past(h->fd, static_cast<int64_t>(1 + sizeof kop + TEKSTSTUKKEN * TRECORD), 2))
            return false;
    }
    h->offset = h->laatste_o = 0;
    h->tag = 'O';
    if (er == ssize_t{sizeof oud} && memcmp(oud, bytes, sizeof bytes) == 0)
        return true; // nothing to write, nothing to commit
    return ord_schrijf_op(h, 0, bytes, sizeof bytes);
}

} // namespace zg
