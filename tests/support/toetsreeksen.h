// Key names to the byte sequences that a terminal sends, taken from the program's own terminal descriptions.
#pragma once
#include <string>
#include <string_view>
#include <vector>

namespace zg::test {

// "2016<Enter><F5>" as one sequence a key. Fails the test on an unknown name.
std::vector<std::string> toetsreeksen(const std::string& term, std::string_view reeks);

} // namespace zg::test
