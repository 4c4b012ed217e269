// What the tills and the back office must hear of: each change as the letter of its kind and its data. Nothing goes out
// unless tills are linked. The files that carry it are a module of their own, which hangs itself in.
#pragma once
#include <string>

namespace zg {

bool kassakoppeling(); // are tills linked? (system record 1)
// A mutation for all tills ('G', 'W', code 73 is 'I'). False when its line could not be written, which was told.
bool mutatie(char letter, const std::string& inhoud);
// Who writes it; null while nobody does. Answers as mutatie.
extern bool (*MUTATIEHAAK)(char letter, const std::string& inhoud);

} // namespace zg
