// The record store: pairs NAME.INX and NAME.TXT, one handle (ICB) per open pair, up to five keys. This header
// is all that users of the store need; docs/formats.md has the file layouts, store/node.h the tree's inside.
// Record numbers count from 0, key numbers from 1. A null handle stops the program with "TAG : ICB == NULL".
#pragma once
#include <cstddef>
#include <cstdint>

namespace zg {

inline constexpr int IXBLOK = 512;      // bytes of an index block
inline constexpr int IXRECMAX = 512;    // longest record; buffers hold this much
inline constexpr int IXSLEUTELMAX = 60; // longest key
inline constexpr int IXSLEUTELS = 5;
inline constexpr int IXDELEN = 10;
inline constexpr uint16_t IXVERSIE = 351;

#pragma pack(push, 1)
// One key in the header, 42 bytes.
struct IXKEYDEF {
    char keyname[8];
    char dupflag; // 'N' unique, 'J' duplicates: 4 bytes of record number behind the parts
    uint8_t keylen;
    uint8_t maxent;
    char ptype[IXDELEN]; // 'I', 'C', 0 ends the list
    uint8_t pstart[IXDELEN];
    uint8_t pend[IXDELEN];
    uint8_t vrij;
};
// The 260 meaningful bytes of block 0.
struct IXHEADER {
    char name[11];
    int8_t nkeys;
    int32_t freehead, nrecs, nblocks;
    int16_t reclen;
    char title[19];
    uint8_t busy;
    char vrij[2];
    IXKEYDEF keydef[IXSLEUTELS];
    uint16_t version;
};
#pragma pack(pop)
static_assert(sizeof(IXKEYDEF) == 42 && sizeof(IXHEADER) == 260);
static_assert(offsetof(IXHEADER, reclen) == 24 && offsetof(IXHEADER, busy) == 45);
static_assert(offsetof(IXHEADER, keydef) == 48 && offsetof(IXHEADER, version) == 258);

// The handle. Callers may read currec, and write it on a temporary index; the rest is the store's own.
struct ICB {
    IXHEADER h; // image of block 0
    int32_t idxfd, datfd;
    int32_t mode; // 0 read-only, 1 exclusive, 2 shared
    int8_t filelocked, tempidx;
    int32_t curblock, currec, insptr;
    uint8_t keybuf[IXSLEUTELMAX + 4];
    uint8_t node[IXBLOK];
    uint8_t* curent;
    int32_t parent[10];
    int32_t commit;
    int8_t cached;
    char path[81];
    // From here on nothing is shared with anybody; not part of the handle's told order.
    int8_t koplock; // 1 while a shared handle holds the header lock: the tree can't change under it
    int32_t gezien; // nblocks as last seen on disk: a reader that may have met a half-done split looks again
};

inline constexpr int IXVRAAG = 4096; // added to a mode: ask and retry when permission lacks

// Pairs. A name with a point behind its last '/' is a temporary index over the data file of the normal pair.
ICB* IXCREATE(const char* naam, int mode);
void IXUPDFCB(ICB* icb, int sleutel, const char* tekst); // key 0: "title,reclen"
void IXINITIX(ICB* icb);
void IXINIT(ICB* icb);
ICB* IXOPEN(const char* naam, int mode);
void IXCLOSE(ICB* icb);
int IXCHECK(const char* naam); // free records, or -1 when the pair isn't usable
extern bool IXDIEPERKIJKEN;    // off: IXCHECK answers 0 once the header has been read
int IXREMOVE(const char* naam);
int IXRECLIVE(const void* rec, int lengte);

// Keys.
void IXBLDKEY(ICB* icb, const void* rec, int lengte);
int IXCOMP(ICB* icb, const void* a, const void* b, int lengte);
int IXCOLLATE(const void* a, const void* b, int n);
int16_t IXKEYLEN(ICB* icb, int delen);
void IXKEYTOREC(ICB* icb, void* rec);
int IXSLEUTEL(const ICB* icb); // number of the current key

// Tree.
void IXRDIX(ICB* icb, int32_t blok);
void IXWRIX(ICB* icb, int32_t blok);
void IXSWITCH(ICB* icb, int sleutel);
void IXLOCKEY(ICB* icb, int lengte);
int32_t IXNODEFIND(ICB* icb, char operatie, int lengte);
int32_t IXSEARCH(ICB* icb, char operatie, int lengte);
void IXINSKEY(ICB* icb);
void IXDELENTRY(ICB* icb);
int IXFIRSTK(ICB* icb, void* rec, int delen);
int IXNEXTK(ICB* icb, void* rec, int delen);
int IXPREVK(ICB* icb, void* rec, int delen);
int IXFIRSTR(ICB* icb, void* rec, int delen);
int IXNEXTR(ICB* icb, void* rec, int delen);
int IXPREVR(ICB* icb, void* rec, int delen);
int IXFIRST(ICB* icb, void* rec);
int IXNEXT(ICB* icb, void* rec);
int IXLAST(ICB* icb, void* rec);
int IXSKIP(ICB* icb, void* rec, int delen, int stappen, int32_t* recnr);
int IXUNIQK(ICB* icb, void* rec, int deel);

// Records. 1 for yes, 0 for no.
int IXGET(ICB* icb, void* rec, int32_t recnr); // -1 no such number, 0 free, 1 live
int IXREAD(ICB* icb, void* rec);
int IXREADL(ICB* icb, void* rec);
void IXUNLOCK(ICB* icb, const void* rec);
int IXEXISTS(ICB* icb, const void* rec);
int IXEXISTSP(ICB* icb, const void* rec, int delen);
int IXWRITE(ICB* icb, const void* rec);
int IXWRITEK(ICB* icb, const void* rec);
int IXDELETE(ICB* icb, void* rec);
int IXPUTREC(ICB* icb, const void* rec);
int IXUPDATE(ICB* icb, const void* rec);
int IXINSERT(ICB* icb, const void* rec);
int64_t IXSEEKDAT(ICB* icb);
void IXRDREC(ICB* icb, void* rec);
void IXWRREC(ICB* icb, const void* rec);

// Locks. The wait routine shows who is in the way and sleeps 2 seconds; start-up replaces it.
extern void (*IXWAITHOOK)(ICB* icb);
int IXLOCKRGN(char letter, ICB* icb, int fd, int64_t start, int64_t lengte);
int IXLOCK(ICB* icb, int operatie);
// IOLOCK, IOFLOCK and IXCOMMITHOOK: shared/files.h.

// Rebuild, bulk, cache, temporary tables: store/rebuild.h, store/cache.h, store/tabel.h.

} // namespace zg
