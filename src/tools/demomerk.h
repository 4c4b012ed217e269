// The mark that zgdemo puts into a directory first and makes whole last: what stands beside it is ours, half made or whole.
#pragma once
#include <filesystem>
#include <string>
#include <string_view>

namespace zg {

inline constexpr char DEMOMERK[] = "ZGDEMO.MRK";
inline constexpr std::string_view DEMOHALFTEKST =
    "zgdemo is at work here, or was broken off: it begins anew next time.\n";

// Is a directory's mark that of one half made?
inline bool demo_half(const std::string& map) {
    std::error_code fout;
    return std::filesystem::file_size(map + "/" + DEMOMERK, fout) == DEMOHALFTEKST.size();
}
inline constexpr char DEMOHALFMADE[] = "half made: zgdemo is at work here, or was broken off";

} // namespace zg
