/* Finds a texture on the search path of the suite's configuration:  texture NAME */
#include <bvutil/locations.h>

#include <io.h>
#include <stdio.h>
#include <stdlib.h>

/* The search waits until there is a configuration file, so it is begun only when there is one. */
static int is_configured(void) {
    const char* folders[] = {".", getenv("MB"), "C:"};
    char path[2 * BVUTIL_PATH_SIZE];
    int folder, number;

    for (number = 9; number >= 0; --number) {
        for (folder = 0; folder < 3; ++folder) {
            if (!folders[folder]) continue;
            if (number > 0)
                snprintf(path, sizeof path, "%s\\mb%d.ini", folders[folder], number);
            else
                snprintf(path, sizeof path, "%s\\mb.ini", folders[folder]);
            if (_access(path, 0) == 0) return 1;
        }
    }
    return 0;
}

int main(int argc, char** argv) {
    char path[BVUTIL_PATH_SIZE];

    if (argc != 2) return 64;
    if (!is_configured()) {
        fprintf(stderr, "texture: the suite has no configuration\n");
        return 3;
    }
    if (BvUtil_MB_SucheDatei("Pfade", "Texturen", argv[1], path) != 0) {
        fprintf(stderr, "texture: no %s on the search path\n", argv[1]);
        return 1;
    }
    printf("%s\n", path);
    return 0;
}
