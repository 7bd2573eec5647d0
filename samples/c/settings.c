/* Reads settings through two layers and changes one:  settings USER.env SITE.env */
#include <bvutil/env.h>
#include <bvutil/messages.h>

#include <stdio.h>

enum { user_layer, site_layer };

int main(int argc, char** argv) {
    long scale = 0;
    double widths[16];
    long width_count = 16;
    char paper[32];
    int from;
    EnvHandle site, user;

    if (argc != 3) return 64;
    BvUtil_SetWriteToLogfile(1, "settings.log", 0); /* messages go here, not to message boxes */

    site = env_open(site_layer, NULL);
    user = env_open(user_layer, site); /* what the user has not chosen is looked up in the site's layer */
    if (env_read_file(argv[2], site) != ENV_OK || env_read_file(argv[1], user) != ENV_OK) {
        fprintf(stderr, "cannot read the settings, see settings.log\n");
        env_close(user, 1);
        return 1;
    }

    from = env_get_long(user, "view", "scale", 1, &scale);
    if (from >= 0) printf("scale 1:%ld, from the %s's layer\n", scale, from == user_layer ? "user" : "site");
    if (env_get(user, "print", "paper", 1, sizeof paper, paper) >= 0) printf("paper %s\n", paper);
    if (env_get_doubles(user, "pens", "widths", 1, &width_count, widths) >= 0)
        printf("%ld pens, the broadest %g mm\n", width_count, widths[width_count - 1]);

    env_put_double(user, "view", "layers@layer@2@pen", 0.35); /* the second layer, created if need be */
    env_write_file(argv[1], user);

    env_close(user, 1); /* and the site's layer with it */
    return 0;
}
