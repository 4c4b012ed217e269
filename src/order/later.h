// What the order program calls and what doesn't stand yet: pictures.
#pragma once

namespace zg {

bool nog_niet_beschikbaar(); // told; false

} // namespace zg
