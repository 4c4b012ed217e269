// Module ioord: the order journal and work file as a stream of tagged records, read through a buffer, locked
// by byte 0 while open for writing. One static image per tag: reading a record overwrites the previous of its
// kind. order/wrk.h stands on it: the work file, its index, the marker file and the commit.
#pragma once
#include "order/ordrec.h"
#include <cstdint>
#include <string>

namespace zg {

inline constexpr int BLOKLEN = 306;       // a text block in memory; 300 of it are stored
inline constexpr size_t TEKSTSTUKKEN = 5; // T records of a block

// The record images, one per tag.
extern ordkop kop;
extern ordmodel model;
extern orddessin dessin;
extern ordtekst tekstrec;
extern ordmaat maatrec;
extern ordextra extra_e, extra_b;
extern ordlevt levtrec;
extern ordfil filrec;

struct ordhandle {
    int fd;
    int32_t offset; // of the current record
    char tag;       // of the current record, 'X' at the end
    uint8_t* buffer;
    int32_t buflen, bufgeldig, bufstart;
    char naam[13];
    char seizoen[6];
    std::string pad;                         // the path it was opened by
    int32_t laatste_o, laatste_m, laatste_d; // -1 when none met
    bool schrijven;
    bool gewijzigd; // written to since it was opened
    int verloren;   // errno since its lock was found to be gone, 0
};

// The image of a tag, null for an unknown one.
void* ord_beeld(char tag);

// Open by season directory and supplier; flags of open(2). Null when it can't be opened, with errno set (told in a
// window for a journal that should be there), or when another terminal holds it that is opened for writing (told
// with the holder's name), with errno 0.
ordhandle* ord_open_jrn(const char* map, int leverancier, int vlaggen);
ordhandle* ord_open_wrk(const char* map, int leverancier, int vlaggen);
void ord_sluit(ordhandle* h);
// Close a journal; an empty one is deleted first, while the lock still keeps others out.
void ord_sluit_jrn(ordhandle* h);
// Is the path still the file whose lock is held? On a shared file system a lock can go without its holder's doing, so it
// is asked for again before a name beside a journal is touched; elsewhere there is nothing to ask. False with errno,
// ECANCELED when another has the lock or the name: for good, as far as this handle goes.
bool ord_nog_vast(ordhandle* h);
int ord_slotfout(int fd, const char* pad); // the same for who has no handle: 0 or the errno
// modus 'N' steps past the current record first. False at the end (tag 'X').
bool ord_lees(ordhandle* h, char modus);
bool ord_lees_op(ordhandle* h, int32_t plaats); // the record at a place of the file
bool ord_kind(ordhandle* h, char soort);
bool ord_volgende_order(ordhandle* h);
// Can every line of the order at the handle's place be loaded? A branch or size outside the firm, a quantity below 0, a
// sum that does not fit, a record without the one it belongs to stops with the "inconsistent, pos." report.
void ord_keur_order(const ordhandle* h);
bool ord_eerste_order(ordhandle* h);
// In place; false when the write failed: told in a box, the file is as it was.
bool ord_schrijf(ordhandle* h);
// The header `kop` with its two condition texts at offset 0, in one write; answers as ord_schrijf.
bool ord_kop_schrijf(ordhandle* h, const char* levering, const char* betaling);
// The text of a kind behind the current O, M or D record into a block; false when there is no such record.
// Offset and tag stay.
bool ord_tekst_lees(ordhandle* h, int soort, char* blok);

} // namespace zg
