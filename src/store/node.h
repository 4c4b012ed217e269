// Inside of the record store: the tree node, and what its modules call of each other. A node is one block of
// 512 bytes; an entry is `keylen` key bytes and a 4-byte pointer (record number in a leaf, child block
// above). Invariants, which store/keur.cpp asserts by these numbers before a change is written:
//   1. the root of key k is block k for ever, and a block belongs to one key;
//   2. a node on disk has fewer than `maxent` entries;
//   3. entries ascend (among equal keys without record number the order is nobody's);
//   4. the key above a node is the highest key in it;
//   5. the rightmost node of every level ends in a key of all 0xFF, in a leaf with the only pointer of -1;
//   6. a child's level is one below its parent's.
#pragma once
#include "store/ix.h"
#include <array>
#include <bit>
#include <cstring>
#include <string>

namespace zg {

inline constexpr int KNOOPRUIMTE = 505; // bytes for entries
inline constexpr int KNOOPNIVEAUS = 9;  // highest level of a node: `parent` has ten places

struct [[gnu::packed]] IXKNOOP {
    int8_t keyno; // key that it belongs to; 1 in the lock queue
    int8_t level; // 1 a leaf, 0 the lock queue
    char vrij[2];
    uint8_t count;
    uint8_t entries[KNOOPRUIMTE];
    char vrij2[2];
};
static_assert(sizeof(IXKNOOP) == IXBLOK && offsetof(IXKNOOP, count) == 4 && offsetof(IXKNOOP, entries) == 5);

inline IXKNOOP& KNOOP(ICB* icb) {
    return *reinterpret_cast<IXKNOOP*>(icb->node);
}
inline const IXKNOOP& KNOOP(const ICB* icb) {
    return *reinterpret_cast<const IXKNOOP*>(icb->node);
}
inline int32_t LEES32(const void* p) {
    int32_t n;
    memcpy(&n, p, 4);
    return n;
}
inline void ZET32(void* p, int32_t n) {
    memcpy(p, &n, 4);
}
// Where two keys begin to differ; n when they don't. They are short and mostly differ early: no calls, and no byte at a time.
inline int IXVERSCHIL(const uint8_t* a, const uint8_t* b, int n) {
    int i = 0;
    const auto stap = [&]<class T>(T x) { // true: `i` is the place
        T y;
        memcpy(&x, a + i, sizeof x);
        memcpy(&y, b + i, sizeof y);
        x ^= y;
        const bool klein = std::endian::native == std::endian::little;
        i += x ? (klein ? std::countr_zero(x) : std::countl_zero(x)) / 8 : static_cast<int>(sizeof x);
        return x != 0;
    };
    while (i + 8 <= n)
        if (stap(uint64_t{}))
            return i;
    if (i + 4 <= n && stap(uint32_t{}))
        return i;
    while (i < n && a[i] == b[i])
        i++;
    return i;
}
// The counters on disk are these now, the change count too where it is known (store/kop.h).
inline void IXGEZIEN(ICB* icb, const IXHEADER& h, uint32_t telling = 0) {
    icb->gezien = {h.nblocks, h.nrecs, h.freehead, telling};
}
inline int32_t WACHTRIJBLOK(const ICB* icb) {
    return icb->h.nkeys + 1;
}
// May nobody else change the tree at this moment?
inline bool ALLEEN(const ICB* icb) {
    return icb->mode == 1 || icb->filelocked || icb->koplock;
}

// Reports (melding.cpp). They stop the program and name the file.
void IXEIS(const ICB* icb, const char* tag);            // null handle
[[noreturn]] void IXSTUK(const ICB* icb, int32_t blok); // a block makes no sense
[[noreturn]] void IXINCONSISTENT(const ICB* icb);       // marked as being changed
// Before a change, and at the close behind the last (`slot`): stops when another file has taken the place of one of the pair, or the
// data file is shorter than the handle knows.
void IXEISPAAR(ICB* icb, bool slot = false);
[[noreturn]] void IXSCHIJFFOUT(const ICB* icb, int fd, int64_t plaats,
                               int lengte); // seek or write, with errno
// The disk refused a write, with this errno, and all is as it was: told in a box. `gevolg`: what that means, when it is
// not that a change was not stored.
void IXGEWEIGERD(const ICB* icb, int fout, const char* gevolg = nullptr);
// Box with the title "Waarschuwing" and ENTER; a line on standard error without a screen.
void IXWAARSCHUW(const char* titel, const char* fmt, ...) __attribute__((format(printf, 2, 3)));
int IXJANEE(const char* titel, const char* fmt, ...)
    __attribute__((format(printf, 2, 3))); // 0 without a screen
std::string IXNAAM(const char* naam);      // what follows the last '/'
bool IXTIJDELIJKENAAM(const char* naam);   // a point in that
std::string IXINDEXPAD(const char* naam);
std::string IXDATAPAD(const char* naam);

// Keys without a handle (sleutel.cpp). Definitions must have passed IXDEFFOUT.
inline int IXDEELBREEDTE(const IXKEYDEF& def, int deel) { // 0 behind the last part
    if (deel >= IXDELEN || !def.ptype[deel])
        return 0;
    return static_cast<uint8_t>(def.pend[deel] - def.pstart[deel]) + 1;
}
// Key of a record, `lengte` bytes wanted; fills `keylen` bytes of `uit`, which holds IXSLEUTELMAX + 4.
void IXMAAKSLEUTEL(const IXKEYDEF& def, const void* rec, int32_t recnr, int lengte, uint8_t* uit);
// Weights of a text of n bytes as a string of bytes in text order, no such string beginning with another one: at
// most 3 n + 2 bytes. Answers how many (collate.cpp).
int IXGEWICHTEN(const uint8_t* tekst, int n, uint8_t* uit);
int IXVERGELIJK(const IXKEYDEF& def, const void* a, const void* b, int lengte);
extern const std::array<int16_t, 256> IXENKELGEWICHT; // first weight of a byte that has one; -1 of the others
int IXCOLLATEVANAF(const uint8_t* a, const uint8_t* b, int n,
                   int vanaf);         // their first `vanaf` bytes are the same
const IXKEYDEF& IXDEF(const ICB* icb); // of the current key; stops on a number outside the table
// What is wrong with the definitions (number of keys, record length, keys), or with these and the counters:
// null when nothing, else English words. IXDEFFOUT alone is what a rebuild needs to go by.
const char* IXDEFFOUT(const IXHEADER& h);
const char* IXKOPFOUT(const IXHEADER& h);

// Blocks (blok.cpp): every read and write of an index block is made by these. What a handle's file refuses to give stops the
// program: it is no damage and no end of the file.
ssize_t IXBLOKLEES(int fd, int32_t blok, void* doel, size_t n); // bytes got, -1 on an error
bool IXHEELBLOK(const ICB* icb, int32_t blok, void* doel);      // a whole one of this handle's file
// Its header as it stands, and with the same call the change count behind it: is it whole?
bool IXKOPBLOK(const ICB* icb, IXHEADER* h, uint32_t* telling = nullptr);
int IXBLOKSCHRIJF(int fd, int32_t blok, const void* bron, size_t aantal = 1); // 1, or 0 with errno set
enum Leesuitslag { L_GOED, L_EINDE, L_FOUT };
// Block above 0 into `node`, with path and `curblock`. When it does not answer L_GOED the node in hand is an
// empty one of the same key.
Leesuitslag IXLEESKNOOP(ICB* icb, int32_t blok);
// Under the header's lock: the header as IXRDIX reads it, and with the same call the blocks behind it up to the lock
// queue into `blokken`, room for IXSLEUTELS + 2 of them: how many there are.
int32_t IXLEESBEGIN(ICB* icb, uint8_t* blokken, uint32_t* telling);
void IXPAD(ICB* icb); // the node in hand into the path: a root has no parent, and is that of a child
void IXKIES(ICB* icb, int sleutel); // make current without reading: the node in hand is an empty root
void IXEOFTOON(ICB* icb, int32_t blok);

// Locks (slot.cpp). The record at `currec`: one try, and no wait. The key in keybuf out of the queue of reservations
// (false with errno when the disk refuses); the same as part of the change in hand (store/klad.h), whose end lets go of
// the queue's lock: false, and nothing done, when that can't be had at once.
bool IXPROBEERSLOT(ICB* icb);
bool IXSLOTVRIJ(const ICB* icb); // has nobody else the record at `currec` locked?
int IXPROBEERSLEUTEL(ICB* icb);  // IXLOCK 4 without the wait
// The record at `currec` has just been read under its lock, which the caller keeps.
void IXHOUDVAST(ICB* icb, const void* rec);
bool IXVERGEET(ICB* icb);
bool IXVERGEETMEE(ICB* icb);
// When others can see the keys that an exclusive handle has entered: one of them may have been reserved before the pair was
// opened, or while it was, since that asks the queue's lock alone. It would stay reserved for ever: who did so finds the
// record, and gives up its lock instead. What is in the tree goes out of the queue.
void IXVERGEETNA(const ICB* icb);
void IXRIJLOS(ICB* icb, bool geschreven);
void IXSLOTENWEG(int datfd);     // the data file is closed, and the locks on its records with it
void IXEIGENWEG(const ICB* icb); // the handle goes: what it has reserved is nobody's any more

// Handles (pair.cpp): a fresh one around two descriptors of IXBESTANDOPEN, -1 for none; and its end without a write.
ICB* IXHANDVAT(const char* naam, int mode, int idxfd, int datfd);
void IXLAATLOS(ICB* icb);

// Records (record.cpp): the one at `currec`, to which the entry at `curent` leads. To a reader without a lock it
// may have got another key since the entry was read, or not yet have its new one: R_ANDER, pause and search again, as
// long as somebody is writing. Then it is taken as it is; but a record behind the end of the data file is damage, and so is one
// that has not the key asked for ('='), and one that leads back in a walk in this direction ('>' or '<') or is all zeros: the
// program stops. Not with `zelf`, for who looks at that himself.
class Geduld;
enum Recorduitslag { R_GOED, R_VRIJ, R_ANDER };
Recorduitslag IXLEESGEVONDEN(ICB* icb, void* rec, char richting, Geduld* geduld, bool zelf = false);
bool IXLEESHEEL(ICB* icb, void* rec);   // the record at `currec`; false, and 0xFF, past the end of the file
bool IXLEESLEVEND(ICB* icb, void* rec); // the record at `currec`; is it in use?

// The caller gets the record at `currec`: a walk that stands on it knows him by this from now on (wandel.cpp).
void IXGEGEVEN(ICB* icb, const void* rec);
void IXHIERNU(ICB* icb,
              const void* rec); // the same of a read by the current key: where it walks, it stands there now
void IXNERGENS(
    ICB* icb); // the record at `currec` goes, or its number gets another: who stood there stands nowhere

// The next step of a walk out of the leaf in hand, without a search (stap.cpp). The caller has brought back what the
// handle's place gave. False: it isn't certain to be there, and `rec` is as it was.
bool IXSTAPHIER(ICB* icb, void* rec, int delen);
void IXSTAPVOORUIT(const ICB* icb); // the records behind the entry in hand will be asked for
// Are these bytes the key of the record? False also when IXMAAKSLEUTEL must tell.
bool IXSLEUTELSTAAT(const IXKEYDEF& def, const void* rec, int32_t recnr, const uint8_t* sleutel);

// Searching (zoeken.cpp).
bool IXBLADVERS(const ICB* icb); // without a mapping: does the leaf in hand serve the next step of a walk?
int32_t IXZOEKVANAF(ICB* icb, int lengte); // a search for '=', and when that finds nothing for '>'
// Changing (wijzigen.cpp).
// Out of the tree of a key: the entry of the record at `currec` with this value, among equal ones the one that leads
// there. Stops when it isn't there.
void IXHAALWEG(ICB* icb, int sleutel, const uint8_t* waarde);
// Enter the record at `currec` under every key; key 1 is current afterwards, with its key in keybuf.
// bij_plaats: the search for key 1 has just been made.
void IXVOEGTOE(ICB* icb, const void* rec, bool bij_plaats);
void IXADDKEYS(ICB* icb, const void* rec);

} // namespace zg
