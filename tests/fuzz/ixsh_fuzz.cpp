// Lines fed to ixsh, in an empty directory: nothing may crash.
#include "fuzz/hulp.h"
#include "store/ix.h"
#include "store/keur.h"
#include "tools/opdracht.h"
#include <filesystem>
#include <iostream>
#include <sstream>

using namespace zg;
using namespace zg::fuzz;

// Put and bulk write past the trees, as their user wants it: that the next write keeps these whole is no promise here.
void zg::IXKEUR(const ICB*, const Gekeurd*, size_t) {}

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    begin();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t n) {
    std::string tekst(reinterpret_cast<const char*>(data), n);
    if (tekst.find('/') != std::string::npos)
        return 0; // stay in this directory
    std::istringstream in(tekst);
    std::cin.clear();
    std::streambuf* oud = std::cin.rdbuf(in.rdbuf());
    ronde([] { ixsh(Opdracht{}); });
    std::cin.rdbuf(oud);
    std::error_code fout;
    for (const auto& e : std::filesystem::directory_iterator(".", fout))
        std::filesystem::remove_all(e.path(), fout);
    return 0;
}
