// The demo sources as words: lines without comments, values with blanks in double quotes, UTF-8 to code page
// 850. Any fault in a source ends zgdemo with file and line.
#pragma once
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace zg {

struct Demoregel {
    std::string sectie; // the last "[name]"
    std::vector<std::string> woorden;
    std::string rest; // behind the first word
};

class Demobron {
public:
    explicit Demobron(const std::string& pad);
    bool volgende(Demoregel* regel);
    [[noreturn]] void fout(const std::string& wat) const;
    int getal(const std::string& woord, int laag, int hoog) const;
    uint16_t datum(const std::string& woord) const; // 2016-03-01
    std::string cp850(const std::string& utf8) const;

private:
    std::string pad_, inhoud_, sectie_;
    size_t plaats_ = 0;
    int regelnr_ = 0;
};

// "name=value" among the words from the first on; null when it isn't there.
const char* demowaarde(const std::vector<std::string>& woorden, std::string_view naam, std::string* ruimte);

[[noreturn]] void demofout(const std::string& wat);
void demobestand(const std::string& pad, const void* inhoud, size_t bytes);

// Size names of a size type in bar order, position from 1; the size index is the position.
struct Demomaten {
    int soort;
    std::string naam;
    std::vector<std::string> maten;
    std::vector<std::vector<std::string>> balken; // bars: some of the sizes, by name
    // Runs: pieces of sizes by name, each with its own number.
    std::vector<std::vector<std::pair<std::string, int>>> reeksen = {};
    int nummer(const std::string& maat) const; // 0 for no such size
};

void demo_systeem(const std::string& bron, const std::vector<Demomaten>& maten, bool registermodus);
void demo_orders(const std::string& bron, const std::vector<Demomaten>& maten);
void demo_register();     // what the journals of the present directory hold, into its register
void demo_afbeeldingen(); // of the series in it: files, some of them linked, and new ones
// Branch numbers in index order, from the [filialen] section.
extern std::vector<int> demo_filialen;

} // namespace zg
