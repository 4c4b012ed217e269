// Key names to the byte sequences that a terminal sends, taken from the program's own terminal descriptions.
#pragma once
#include <string>
#include <string_view>
#include <vector>

namespace zg::test {

// "2016<Enter><F5>" as one sequence a key. Fails the test on an unknown name.
std::vector<std::string> toetsreeksen(const std::string& term, std::string_view reeks);

// What a description says under a terminfo name ("kcuu1", "is2"); empty when it says nothing.
std::string vermogen(const std::string& term, const char* cap);

} // namespace zg::test
