// The tests' own module, declared and defined from testmod.def.
#pragma once

#include "ymap_rows.hpp"

#define YMAP_PASS DECLARE
#include "testmod.def"
#undef YMAP_PASS

namespace test {
// What the list mapper saw on its last call.
struct ListMapperCall {
    int calls = 0;
    uint32_t walk_suppress = 0;
    bool deleted = false;
};
extern ListMapperCall last_list_mapper_call;
} // namespace test
