// The one check of journals and work files: every record, the grammar of the orders, and what the fields
// allow. It reads through the descriptor only, takes no lock and stops nothing. Serves the tests and the operators' tools.
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

// What is known of the file's place: what isn't, isn't held against it.
struct ordomgeving {
    int filialen = 0;                      // branches of the firm, 0 when not known
    int leverancier = -1;                  // by the file's name, -1 when not known
    std::string seizoen{};                 // by its directory, "2016Z"
    std::vector<uint8_t> filiaalnummers{}; // of the firm's branches
    std::vector<bool> relaties{};          // by number: is there such a relation?
};

// Empty when sound. The walk ends at a record it can't measure. `telling` may be null.
std::vector<ordkwaal> ord_controle(int fd, ordsoort soort, const ordomgeving& omgeving, ordtelling* telling);
inline std::vector<ordkwaal> ord_controle(int fd, ordsoort soort, int filialen, ordtelling* telling) {
    return ord_controle(fd, soort, ordomgeving{.filialen = filialen}, telling);
}

} // namespace zg
