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

// When set, the list mapper pushes these instances on the itree stack, as a
// framework operation may, with a callback that counts its calls.
struct Instances {
    tidl_yfw_datatree *nodes = nullptr;
    uint32_t count = 0;
    int callbacks = 0;
};
extern Instances instances;
} // namespace test
