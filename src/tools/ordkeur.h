// The whole check of a journal or work file, for the operators' tools: its grammar (order/ordcheck.h), and what each field may
// hold.
#pragma once
#include "order/ordcheck.h"

namespace zg {

// As ord_controle, by place.
std::vector<ordkwaal> ord_keur(int fd, ordsoort soort, const ordomgeving& omgeving, ordtelling* telling);

} // namespace zg
