// A note of a change of the register that goes through many records: a scratch file beside the supplier's work file, there
// before the change begins and until it is whole. A broken-off one is finished from there, under the lock of that supplier's
// journal.
#pragma once
#include <cstdint>
#include <string>
#include <vector>

namespace zg {

struct Noot {
    const char *ext, *ext_nieuw; // of the file, and while it is written
};

// The note whole, or none. False: refused, told.
bool noot_schrijf(const Noot& noot, const std::vector<uint8_t>& bytes);
void noot_wis(const Noot& noot);
// Its bytes; false with errno set when they can't be had.
bool noot_lees(const std::string& pad, std::vector<uint8_t>* bytes);
// The note of the chosen supplier; what a kill left of one that was never whole goes. onbereikbaar: told.
enum class Nootstand { geen, gelezen, onbereikbaar };
Nootstand noot_open(const Noot& noot, std::vector<uint8_t>* bytes);

} // namespace zg
