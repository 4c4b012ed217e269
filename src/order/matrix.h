// The order matrix: a colour-by-size overview of the order for the model or the article group of the cursor's line.
#pragma once
#include "order/regel.h"

namespace zg {

void order_matrix();

} // namespace zg
