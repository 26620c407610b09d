// Node arrays and texts of an arena: every node finds its parent whatever
// size its array grew to and however arrays were reused, and texts are
// shared or copied by what they hold, not by where the caller kept them.
#include <string>

#include <gtest/gtest.h>

#include "tree_text.hpp"

namespace {

using fwtest::add_node;
using fwtest::new_root;

// Children of `parent` are all its, after every growth and move of the array.
void expect_parents(const tidl_yfw_datatree *parent) {
    for (uint32_t i = 0; i < parent->subtree_count; ++i) {
        ASSERT_EQ(yfw::parent_of(&parent->subtrees[i]), parent) << "child " << i;
        expect_parents(&parent->subtrees[i]);
    }
}

TEST(Arena, ParentsHoldAcrossGrowthFromOneChildToLargeArrays) {
    // Small arrays share slabs; past a few thousand an array has a slab of its own.
    for (uint32_t width : {1u, 2u, 3u, 17u, 4096u, 20000u}) {
        yfw::Arena arena;
        tidl_yfw_datatree *root = new_root(arena, "list");
        for (uint32_t i = 0; i < width; ++i) {
            tidl_yfw_datatree *entry = add_node(arena, root, "entry");
            add_node(arena, entry, "key", std::to_string(i).c_str());
        }
        ASSERT_EQ(root->subtree_count, width);
        expect_parents(root);
        EXPECT_STREQ(root->subtrees[width - 1].subtrees[0].value,
                     std::to_string(width - 1).c_str());
        EXPECT_EQ(yfw::parent_of(root), nullptr);
    }
}

TEST(Arena, OperationsInheritThroughArraysOfEarlierArenas) {
    // Memory of an arena that is gone serves the next: nothing of the old
    // tree may show through.
    for (int round = 0; round < 3; ++round) {
        yfw::Arena arena;
        tidl_yfw_datatree *root = new_root(arena, "a");
        if (round == 1)
            yfw_dt_set_operation(root, OP_DELETE);
        tidl_yfw_datatree *leaf = root;
        for (int depth = 0; depth < 40; ++depth)
            leaf = add_node(arena, leaf, "b");
        EXPECT_EQ(yfw::effective_operation(leaf), round == 1 ? OP_DELETE : -1) << round;
        EXPECT_EQ(leaf->subtree_count, 0u);
        EXPECT_EQ(leaf->present_value, 0u);
    }
}

TEST(Arena, GrowsAgainAfterSubtreesWentBackToTheSystem) {
    // A host lets a large tree go part by part: slabs emptied go to the
    // system, and the arrays once free in them must not be handed out again.
    yfw::Arena arena;
    tidl_yfw_datatree *root = new_root(arena, "list");
    for (int i = 0; i < 20000; ++i)
        add_node(arena, add_node(arena, add_node(arena, root, "entry"), "state"), "id", "x");
    for (uint32_t i = 0; i < root->subtree_count; ++i)
        yfw::release_subtrees(&root->subtrees[i]);
    yfw::release_kept_memory();
    EXPECT_EQ(root->subtrees[19999].subtree_count, 0u);
    tidl_yfw_datatree *again = add_node(arena, root, "again");
    for (int i = 0; i < 20000; ++i)
        add_node(arena, add_node(arena, again, "entry"), "id", std::to_string(i).c_str());
    expect_parents(root);
    EXPECT_STREQ(again->subtrees[19999].subtrees[0].value, "19999");
    yfw::release_subtrees(root);
    EXPECT_EQ(root->subtree_count, 0u);
}

TEST(Arena, NodesOutsideArenasHaveNoParent) {
    tidl_yfw_datatree own[2]{};
    yfw_dt_set_subtrees(&own[0], &own[1], 1);
    EXPECT_EQ(yfw::parent_of(&own[1]), nullptr);
    EXPECT_EQ(yfw::parent_of(nullptr), nullptr);
}

TEST(Arena, TextsFollowTheContentOfTheCallersBuffer) {
    yfw::Arena arena;
    char buffer[] = "alpha";
    const char *first = arena.text(buffer);
    EXPECT_EQ(arena.text(buffer), first); // equal texts may share
    buffer[0] = 'A';                      // the same buffer, filled anew
    const char *second = arena.text(buffer);
    EXPECT_STREQ(second, "Alpha");
    EXPECT_STREQ(first, "alpha");
    EXPECT_EQ(arena.text(std::string_view(buffer, 3)), std::string_view("Alp"));

    const char *copy = arena.copy("alpha");
    EXPECT_STREQ(copy, "alpha");
    EXPECT_NE(copy, first); // a copy is shared with nothing
}

} // namespace
