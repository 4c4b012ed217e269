// The amount field, see price/bedragveld.h.
#include "price/bedragveld.h"
#include "price/ing_val.h"
#include "price/koers.h"
#include "price/teksten.h"
#include "term/ingave.h"
#include <cstdlib>
#include <string>

namespace zg {
namespace {

// The decimals of amount fields for the length of a block.
class Decimalen {
public:
    explicit Decimalen(int n) : was_(SCHERM.kpos) { SCHERM.kpos = n; }
    ~Decimalen() { SCHERM.kpos = was_; }
    Decimalen(const Decimalen&) = delete;
    Decimalen& operator=(const Decimalen&) = delete;

private:
    int32_t was_;
};

} // namespace

bool bedrag_veld(int rij, int kolom, const char* formaat, const char* code, int32_t* bedrag) {
    const Decimalen guard(valuta_decimalen(code));
    const size_t breedte = strtoul(formaat, nullptr, 10);
    std::string f = formaat, tekst = bedrag_tekst(code, *bedrag);
    if (tekst.size() > breedte) {
        const int uit =
            static_cast<int>(tekst.size() - breedte); // sticks out of the field, which is at its right
        SCRPUT(A_WAARDE, rij, kolom - uit, "%*s", uit, "");
        error("<%s> %s", tekst.c_str(), TXT(T_BEDRAG_PAST_NIET));
        f += "I";
    }
    const int32_t oud = *bedrag;
    INGAVE(rij, kolom, f.c_str(), bedrag);
    if (TOETSWEG())
        *bedrag = oud;
    return *bedrag != oud;
}

} // namespace zg
