// The one check of journals and work files: every record, the grammar of the orders, and what the fields
// allow. It reads through the descriptor only, takes no lock and stops nothing. Serves the tests and orddump.
#pragma once
#include <cstdint>
#include <string>
#include <vector>

namespace zg {

enum ordsoort { ORD_JOURNAAL, ORD_WERK };

struct ordkwaal {
    int64_t pos; // of the record
    std::string wat;
};
struct ordtelling {
    int64_t records, orders, modellen, regels;
};

// `filialen`: branches of the firm, 0 when not known. Empty when sound. The walk ends at a record it can't
// measure. `telling` may be null.
std::vector<ordkwaal> ord_controle(int fd, ordsoort soort, int filialen, ordtelling* telling);

} // namespace zg
