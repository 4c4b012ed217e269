// Day numbers as reports and dumps have them.
#pragma once
#include <cstdint>
#include <string>

namespace zg {

// A day of the calendar?
bool is_dag(uint16_t nr);
// 2016-03-01; 0 as nothing, what is behind the calendar's end as #65534.
std::string dag_tekst(uint16_t nr);

} // namespace zg
