// The order header: its window "ORDER", field by field.
#pragma once
#include <cstdint>

namespace zg {

extern int16_t korting_bij_opening; // the order's discount when it was opened

// New order: true when it was accepted. Existing order: true when anything changed. Written to the work file.
bool order_kop(bool nieuw);

} // namespace zg
