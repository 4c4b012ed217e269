// A walk over the records of a journal or work file as raw bytes, in large blocks, without touching the
// record images: for copies, for the repair and for the check. It answers what it meets and never stops the
// program.
#pragma once
#include <cstddef>
#include <cstdint>
#include <vector>

namespace zg {

enum loopstand {
    LOOP_RECORD,
    LOOP_EINDE, // the end, on a record boundary
    LOOP_TAG,   // a tag of unknown length at `offset`
    LOOP_KORT,  // the record at `offset` runs beyond the end
    LOOP_FOUT,  // the file can't be read
};

struct ordrauw { // a record as it stands in the file; valid until the next step
    char tag;
    int64_t offset;
    const uint8_t* data; // the tag byte, then the body
    size_t lengte;       // of both
};

struct ordloop {
    int fd;
    int64_t tot; // the walk ends here; INT64_MAX: at the end of the file
    std::vector<uint8_t> blok;
    int64_t blokstart;
    size_t geldig, plaats;
    bool bij_einde;
};

inline constexpr size_t LOOPBLOK = 256 * 1024; // bytes of a read: a whole file

// `blok`: bytes of a read, more than a record has.
void ordloop_begin(ordloop* l, int fd, int64_t van, int64_t tot, size_t blok = LOOPBLOK);
// Go on at another place of the file, out of the block in hand where that holds it.
void ordloop_naar(ordloop* l, int64_t plaats);
// At LOOP_TAG and LOOP_KORT tag and offset are filled.
loopstand ordloop_volgende(ordloop* l, ordrauw* uit);

// Pass over the records of a tag that come next, as far as the block in hand has them whole: their bytes.
size_t ordloop_reeks(ordloop* l, char tag);

} // namespace zg
