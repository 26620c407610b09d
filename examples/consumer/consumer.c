/*
 * A host of the mapping library written in C, built against an installed
 * copy: it loads the library, registers the host-name tree as a framework
 * does, maps a device's answer holding a host name to OpenConfig through the
 * stand-in framework, and prints the OpenConfig tree one path per leaf.
 *
 *   consumer [HOST-NAME]     exit 0 when the host name comes back mapped
 */
#include <stdio.h>
#include <string.h>

#include "ocsystem_map_version.h"
#include "yfw/standin.h"
#include "ymap_ocsystem.h"

/* Leaves as "/tag/tag = value", the way down held in `path`. */
static int print_leaves(const tidl_yfw_datatree *node, char *path, size_t used, size_t size,
                        const char *host_name) {
    int found = 0;
    int n = snprintf(path + used, size - used, "/%s", node->tag != NULL ? node->tag : "");
    if (n < 0 || (size_t)n >= size - used)
        return 0;
    used += (size_t)n;
    if (node->present_value && node->value != NULL) {
        printf("%s = \"%s\"\n", path, node->value);
        found = strcmp(node->tag, "hostname") == 0 && strcmp(node->value, host_name) == 0;
    }
    for (uint32_t i = 0; node->present_subtrees && i < node->subtree_count; ++i)
        found |= print_leaves(&node->subtrees[i], path, used, size, host_name);
    return found;
}

int main(int argc, char **argv) {
    const char *host_name = argc > 1 ? argv[1] : "router-1";
    if (yfw_ocsystem_init() != YFW_SUCCESS) {
        fprintf(stderr, "consumer: the mapping library did not load\n");
        return 2;
    }
    printf("ocsystem_map %s\n", OCSYSTEM_MAP_VERSION);

    yfw_map_reg_mod_t tree;
    memset(&tree, 0, sizeof tree);
    yfw_map_reg_oc_shellutil_cfg(&tree);

    yfw_standin_session *run = yfw_standin_session_new(KIND_GET_CONFIG);
    tidl_yfw_datatree *root =
        run != NULL ? yfw_standin_new_root(run, tree.native_root, tree.native_namespace) : NULL;
    if (root == NULL || yfw_standin_append_child(run, root, "host-name", host_name) == NULL) {
        fprintf(stderr, "consumer: out of memory\n");
        yfw_standin_session_free(run);
        return 2;
    }

    cerrno status = tree.native_to_oc(yfw_standin_ctx(run), root, yfw_standin_output(run));
    char path[512] = "";
    int found = 0;
    const tidl_yfw_datatree *out = yfw_standin_output(run);
    for (uint32_t i = 0; out->present_subtrees && i < out->subtree_count; ++i)
        found |= print_leaves(&out->subtrees[i], path, 0, sizeof path, host_name);
    printf("status: 0x%08x\n", (unsigned)status);

    yfw_standin_session_free(run);
    yfw_ocsystem_cleanup();
    return status == YFW_SUCCESS && found ? 0 : 1;
}
