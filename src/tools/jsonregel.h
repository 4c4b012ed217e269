// One line of JSON lines as the tools read it: an object of texts and whole numbers, each name once.
#pragma once
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zg {

using Jsonvelden = std::vector<std::pair<std::string, std::string>>; // name and value, in their order, UTF-8

// Empty when *velden holds the line; else what is wrong with it.
std::string json_regel(std::string_view regel, Jsonvelden* velden);

} // namespace zg
