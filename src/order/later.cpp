// What doesn't stand yet, see order/later.h. Each row goes when its module comes.
#include "order/later.h"
#include "order/teksten.h"
#include "term/prompt.h"
#include "term/scherm.h"

namespace zg {

namespace {

bool nog_niet() {
    MELDBOX(MELD_INFO, TXT(T_NOG_NIET_BESCHIKBAAR), nullptr, nullptr);
    return false;
}

} // namespace

bool serie_register() {
    return nog_niet();
}
bool serie_bijbestellen() {
    return nog_niet();
}

Serie serie_laad(const ors_ingang&, orderregel*, bool) {
    return Serie::niet_beschikbaar;
}
bool serie_bewaar(const orderregel&, const prijsrijen&) {
    return true;
}
void label_korting(const orderregel&) {}
bool label_kan_weg(const orderregel&) {
    // Labels can't be left behind without the line that they are of.
    error("%s", TXT(T_REGEL_HEEFT_ETIKETTEN));
    return false;
}
void ordnr_schrijf() {}
void ordnr_wis() {}
void label_los() {}

} // namespace zg
