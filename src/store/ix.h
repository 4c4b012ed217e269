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

// One key in the header, 42 bytes.
struct [[gnu::packed]] IXKEYDEF {
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
struct [[gnu::packed]] IXHEADER {
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
static_assert(sizeof(IXKEYDEF) == 42 && sizeof(IXHEADER) == 260);
static_assert(offsetof(IXHEADER, reclen) == 24 && offsetof(IXHEADER, busy) == 45);
static_assert(offsetof(IXHEADER, keydef) == 48 && offsetof(IXHEADER, version) == 258);

// Where a walk stands: entry and record of its last step, under one key.
struct IXPLAATS {
    int8_t sleutel; // 0: nowhere
    int32_t nr;
    uint8_t entry[IXSLEUTELMAX + 4],
        record[IXSLEUTELMAX + 4]; // key of the entry, key of the record as it was given
};

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
    int8_t koplock;      // 1 while a shared handle holds the header lock: the tree can't change under it
    int8_t wachtsleutel; // 1 while IXWAITHOOK is called for a reserved key, the one in `keybuf`
    struct {
        int32_t nblocks, nrecs, freehead;
        uint32_t telling; // 0: unknown
    } gezien; // counters and change count as last seen on disk: a reader holds against them what he found at an edge
    IXPLAATS plaats;
    // Set by a caller who holds what IXREAD and IXREADL give against the key that he asked for, and tells damage himself: where the
    // record isn't there they answer 0, and where it has another key they give that, instead of stopping.
    int8_t kijktzelf;
    int8_t gemerkt; // an exclusive handle has marked the header
    struct {
        int32_t freehead, nrecs, nblocks;
        uint32_t telling;
    } bladstand; // the pair when `node` was read out of it, telling 0 unknown (store/kop.h)
    uint32_t
        stilstand; // the change count under a mark that stayed up for so long that nobody waits for it any more
    struct {
        int8_t er;
        int32_t nr;
        uint8_t rec[IXRECMAX];
    } vast; // the record that this handle has locked last, as it stood then: a write of it need not look for it
};

inline constexpr int IXVRAAG = 4096; // added to a mode: ask and retry when permission lacks

// Pairs. A name with a point behind its last '/' is a temporary index over the data file of the normal pair: private
// to its maker, its data file never locked. Modes: 0 read-only, 1 exclusive, 2 shared. A file that can't be opened,
// made or written stops the program, and so does a header or block that makes no sense ("Niet consistent"): the pair
// is then to be rebuilt (store/rebuild.h). Handles are freed by IXCLOSE.

// New, empty index; the data file is made when there is none and else kept. To be followed by IXUPDFCB for title and
// keys and by IXINIT or IXINITIX.
ICB* IXCREATE(const char* naam, int mode);
// Definition by text: for key 0 "title,reclen", for keys 1 to 5 "name,NODUPS,C,5,14,I,1,4". Positions count from 1;
// ten parts and 60 bytes a key at most; without NODUPS a key allows duplicates, but for key 1. Stops on a text that
// gives no key.
void IXUPDFCB(ICB* icb, int sleutel, const char* tekst);
void IXINITIX(ICB* icb); // empty trees, queue and counters; the data file stays as it is
void IXINIT(ICB* icb);   // both files emptied
// Existing pair, key 1 current. Mode 1 waits for all record locks. With IXVRAAG missing permission is asked about.
// Version 350 stops the program; any other than 351 becomes 351.
ICB* IXOPEN(const char* naam, int mode);
void IXCLOSE(ICB* icb); // in mode 1 this writes the header
// Is a pair usable that this program has not open? The number of free records, or -1.
int IXCHECK(const char* naam);
extern bool IXDIEPERKIJKEN;                 // off: IXCHECK answers 0 once the header has been read
int IXREMOVE(const char* naam);             // both files of a normal pair: 1 when they are gone
int IXRECLIVE(const void* rec, int lengte); // 1 live, 0 free: 0xFF but for bytes 1 to 4

// Keys. Lengths are in bytes, and those of prefixes end with a part (IXKEYLEN).
// Key of a record under the current key into `keybuf`: its first `lengte` bytes and NULs, or the whole key, which
// with duplicates ends in `currec`.
void IXBLDKEY(ICB* icb, const void* rec, int lengte);
int IXCOMP(ICB* icb, const void* a, const void* b, int lengte); // below 0, 0, above 0
int IXCOLLATE(const void* a, const void* b, int n); // two texts of n bytes: case ignored, accents last
int16_t IXKEYLEN(ICB* icb, int delen);              // of the first parts, or for 0 of the whole key
void IXKEYTOREC(ICB* icb, void* rec);               // the fields of the entry at `curent`, and no others
int IXSLEUTEL(const ICB* icb);                      // number of the current key

// Tree. The operator of a search is '=' (first entry not below the key, which must be equal), '>' (first above) or
// '<' (last below), over the first `lengte` bytes of `keybuf`; the answer a record number, or -1 for none.
void IXRDIX(ICB* icb, int32_t blok);  // block 0 into the header, another into `node` and the path
void IXWRIX(ICB* icb, int32_t blok);  // the reverse
void IXSWITCH(ICB* icb, int sleutel); // another current key; numbers that are none change nothing
void IXLOCKEY(ICB* icb, int lengte);  // `curent` to the first entry in hand not below `keybuf`
// The operator within the node in hand: the pointer of the entry, or -1.
int32_t IXNODEFIND(ICB* icb, char operatie, int lengte);
int32_t IXSEARCH(ICB* icb, char operatie, int lengte);
void IXINSKEY(ICB* icb);   // `keybuf` and `insptr` in front of `curent`, splitting full nodes
void IXDELENTRY(ICB* icb); // the entry for `keybuf` out of `curblock`

// Walking by the current key: 1 found, 0 none, and then `currec` is -1. `delen` 0 goes by the whole key; n above 0
// takes the first n parts as the place. The ..K kind fills in the key's fields only and stays under the first n - 1
// parts, the ..R kind reads the record and stays under all n. A step goes on from the key in the caller's record; where
// that is as it was given, from the entry that gave it, which others may have moved on since.
int IXFIRSTK(ICB* icb, void* rec, int delen); // first at or after the record's key
int IXNEXTK(ICB* icb, void* rec, int delen);
int IXPREVK(ICB* icb, void* rec, int delen);
int IXFIRSTR(ICB* icb, void* rec, int delen);
int IXNEXTR(ICB* icb, void* rec, int delen);
int IXPREVR(ICB* icb, void* rec, int delen);
int IXFIRST(ICB* icb, void* rec); // ..R with 0 parts
int IXNEXT(ICB* icb, void* rec);
int IXLAST(ICB* icb, void* rec); // the one before the record's key
// From record *recnr so many keys on (below 0: back); 0 reads it again, or the next one when it has gone. 1: a live
// record, whose number is in *recnr.
int IXSKIP(ICB* icb, void* rec, int delen, int stappen, int32_t* recnr);
int IXUNIQK(ICB* icb, void* rec,
            int deel); // one value only of this part (from 1) under those before it: filled in

// Records, of `reclen` bytes. 1 for yes, 0 for no; `currec` is the record at work.
int IXGET(ICB* icb, void* rec, int32_t recnr); // -1 no such number, 0 free, 1 live
int IXREAD(ICB* icb,
           void* rec); // by the whole key, no lock; stops when the index leads to another record or to none
// The same and lock it, waiting as long as it takes. 0: no such key, which is now reserved. Ended by a write, a
// delete or IXUNLOCK. -1: no such key, and the disk refused the reservation, which was told: nothing is the caller's.
int IXREADL(ICB* icb, void* rec);
// IXREADL that waits for nobody: -1 also when another has the record or the key at this moment, untold.
int IXREADT(ICB* icb, void* rec);
void IXUNLOCK(ICB* icb, const void* rec);
int IXEXISTS(ICB* icb, const void* rec);
int IXEXISTSP(ICB* icb, const void* rec, int delen); // by the first parts
// Insert, or update when key 1 exists, and let go of the record; the ..K kind keeps its lock. 0: nothing written, the
// index is full, the record would read as free, or the disk refused, which is told in a box: the pair is then as it
// was, and lock and reservation are let go of all the same; the ..K kind keeps them. In mode 0 a box, and 1.
int IXWRITE(ICB* icb, const void* rec);
int IXWRITEK(ICB* icb, const void* rec);
// The record at `currec`, if key 1 agrees: 0, also when there is nothing to delete. -1: the disk refused, which was told,
// and the record stands.
int IXDELETE(ICB* icb, void* rec);
int IXPUTREC(ICB* icb,
             const void* rec); // over the one at `currec`, keys untouched, and let go; 0 refused by the disk
int IXUPDATE(ICB* icb, const void* rec); // the halves of IXWRITE
int IXINSERT(ICB* icb, const void* rec);
// Would a change go through: is the pair not marked by a program that died in one, and its data file not cut? 1 or 0; waits
// for a change under way. Whoever changes several pairs at once asks before the first.
int IXHEEL(ICB* icb);
int64_t IXSEEKDAT(ICB* icb);       // place of `currec` in the data file
void IXRDREC(ICB* icb, void* rec); // 0xFF for what lies past the end
void IXWRREC(ICB* icb, const void* rec);

// Locks. The wait routine shows who is in the way and sleeps 2 seconds; start-up replaces it.
extern void (*IXWAITHOOK)(ICB* icb);
// One try with a letter of IOLOCK, and one wait when it is refused. 1 got, 0 not.
int IXLOCKRGN(char letter, ICB* icb, int fd, int64_t start, int64_t lengte);
// 1 whole file, 2 header (both until got), 3 record at `currec`, 4 reserve the key in `keybuf` (both one try); 11 to 14
// release these. 1 got, 0 not, or no such operation; 4 answers -1 when the disk refuses, which it tells. Stops the
// program when the queue of keys is full.
int IXLOCK(ICB* icb, int operatie);
void IXGEEFTERUG(ICB* icb); // the reservations of this handle that were not ended; IXCLOSE leaves them
extern int IXWEIGERINGEN;   // writes that the disk refused, and that were told, since the program began
// IOLOCK, IOFLOCK and IXCOMMITHOOK: shared/files.h.

// Rebuild, bulk, cache, temporary tables: store/rebuild.h, store/cache.h, store/tabel.h.

} // namespace zg
