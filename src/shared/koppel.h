// Link tables: pairs in the directory `edistam` that tie codes of partners to our own numbers. When a master record
// goes, what ties to its number goes with it. The directory, and any table in it, may be missing.
#pragma once
#include <cstdint>
#include <span>

namespace zg {

// Tables of one kind, by file names as DIRECTORY matches them, and the number in their records.
struct Koppeling {
    const char* bestanden;         // of the data files, without the directory: "DTKL%*4d.TXT"
    int plaats, breedte;           // offset of the number, 2 or 4 bytes of it
    enum Actie { WIS, NUL } actie; // the record is deleted, or its number becomes 0
};

// Do that to every record with the number. They are collected before the first goes, and each is read with a lock and
// looked at again. A table that can't be opened stops the program under the module's name. False when a write was
// refused, which was told; what went before is gone.
bool koppel_wis(std::span<const Koppeling> soorten, int32_t nummer, const char* module);
// Unlink the files of a name ("DTAG0012.*"). False when one stayed, which was told.
bool koppel_bestanden_weg(const char* bestanden);

} // namespace zg
