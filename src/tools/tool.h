// How a tool at the shell begins, speaks and ends.
#pragma once
#include <functional>
#include <string>
#include <string_view>

namespace CLI {
class App;
class Option;
} // namespace CLI

namespace zg {

// Exit status of every tool.
enum Uitkomst { GOED = 0, FOUT_GEVONDEN = 1, FOUT_GEBRUIKT = 2, NIET_TE_OPENEN = 3, IN_GEBRUIK = 4 };

extern std::string toolnaam;
// A name, or another text in UTF-8 that somebody else wrote, as what a terminal can show: "?" for controls, for signs that
// turn or hide what stands beside them, for bytes that are no UTF-8, and without a UTF-8 locale for all that isn't ASCII.
std::string schoon(std::string_view tekst);
// The same of a text out of a file, in a message: its begin, when it is long.
std::string citaat(std::string_view tekst);
// A line of a report on standard output, like printf; what `schoon` would change, but line feeds, as "?".
void tool_zeg(const char* vorm, ...) __attribute__((format(printf, 1, 2)));
// A message on standard error, in the same way: "ixdump: NAME: text".
void klacht(const std::string& naam, const std::string& tekst);
// The answer, told with what is wrong unless it is GOED.
Uitkomst meld(Uitkomst uit, const std::string& wat);
// Bytes out of a file, code page 850, as what a terminal can show: UTF-8, controls as blanks.
std::string toon(std::string bytes);
// The name of a file in its own bytes, as it is typed to find it: what can't be shown stands as "\x1b".
std::string toon_naam(const std::string& naam);
// A line of JSON, in UTF-8, with what can't be shown written as JSON's "\u009b": it stays the same data.
std::string toon_json(const std::string& regel);
// Out now, whatever is under way: streams are flushed, nothing is unwound.
[[noreturn]] void tool_weg(int uit);

// Before anything else in main: the tool's name, the signals of a filter, and a report ends it in one line with
// NIET_TE_OPENEN, behind `eerst`.
void tool_begin(const char* naam, void (*eerst)() = nullptr);
// Its version, and the line on its exit status under the help.
void tool_kop(CLI::App& app, const char* statussen);
// The words given: false when they are wrong or ask for help, which has been told, and *uit is what main answers. For
// "--words" alone the words that the tool knows are told.
bool tool_woorden(CLI::App& app, int argc, char** argv, int* uit);
// What an option or argument may be, for the shells' completion, where its validators don't say it: "{a,b}"; or words that
// go by the first, "by:kind/numbers behind it/name=,name=" with "+" between the kinds.
void tool_mag(CLI::Option* optie, std::string wat);
// Into the data directory; "" stays in the present one. GOED, or NIET_TE_OPENEN, told.
Uitkomst tool_map(const std::string& map);
// What main answers: `uit`, unless standard output couldn't be written: told, FOUT_GEVONDEN.
int tool_einde(int uit);

// A command of a tool that has several; what was asked for is left in *daad by tool_woorden.
CLI::App* tool_opdracht(CLI::App& app, std::function<Uitkomst()>* daad, const char* naam, const char* uitleg,
                        std::function<Uitkomst()> f);

} // namespace zg
