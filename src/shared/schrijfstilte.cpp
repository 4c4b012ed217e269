// Refused writes kept for later, see shared/schrijfstilte.h.
#include "shared/schrijfstilte.h"

namespace zg {

std::string* SCHRIJFSTIL;

Schrijfstilte::Schrijfstilte(std::string* waarom) : was_(SCHRIJFSTIL) {
    SCHRIJFSTIL = waarom;
}

Schrijfstilte::~Schrijfstilte() {
    SCHRIJFSTIL = was_;
}

} // namespace zg
