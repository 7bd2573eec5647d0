/* Reads settings with the log on, so that a failure is told in the program's own way and not by message
 * boxes: log FILE.env */
#include <bvutil/env.h>
#include <bvutil/messages.h>

#include <stdio.h>
#include <string.h>

/* Each line of the log is "<when> :: <text> in "<source>" line <number>". */
static void print_messages(const char* log) {
    char line[512];
    FILE* file = fopen(log, "r");
    if (!file) return;
    while (fgets(line, sizeof line, file)) {
        char* text = strstr(line, " :: ");
        char* source = text ? strstr(text, " in \"") : NULL;
        if (source) *source = '\0';
        if (text) printf("  %s\n", text + 4);
    }
    fclose(file);
}

int main(int argc, char** argv) {
    const char* log = "read.log";
    EnvHandle settings;
    EnvStatus status;

    if (argc != 2) return 64;
    settings = env_open(0, NULL);
    if (!settings) return 4;

    BvUtil_SetWriteToLogfile(1, log, 0); /* a log of an earlier run is overwritten */
    status = env_read_file(argv[1], settings);
    BvUtil_SetWriteToLogfile(0, NULL, 0); /* closed: now it can be read */

    if (status != ENV_OK) {
        printf("%s could not be read (%d):\n", argv[1], status);
        print_messages(log);
    }
    printf("%ld sections\n", env_count_elements(settings, NULL, NULL, 1)); /* those before the error */
    env_close(settings, 0);
    remove(log);
    return status == ENV_OK ? 0 : 2;
}
