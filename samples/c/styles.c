/* Keeps the pens and fills of a style editor in a profile:
 *   styles FILE pen NAME                            shows a pen
 *   styles FILE pen NAME STYLE WIDTH RRGGBB         stores it
 *   styles FILE fill NAME                           shows a fill
 *   styles FILE fill NAME TYPE RRGGBB RRGGBB        stores it */
#include <bvutil/mini.h>

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

enum { done, missing, not_written = 3, usage = 64 };

/* The records have red in the lowest byte; RRGGBB has it in the highest. */
static unsigned int swapped(unsigned int color) {
    return (color & 0xFF) << 16 | (color & 0xFF00) | (color >> 16 & 0xFF);
}

static unsigned int color_of(const char* rrggbb) {
    return swapped((unsigned int)strtoul(rrggbb, NULL, 16));
}

static int edit_pen(MiniHandle file, const char* name, int count, char** given) {
    MiniPenStyle pen;
    if (count == 3) {
        pen.style = atoi(given[0]);
        pen.width = (float)atof(given[1]);
        pen.color = color_of(given[2]);
        if (mini_write_penstyle(file, "Stifte", name, &pen) != 0) return not_written;
    }
    if (mini_read_penstyle(file, "Stifte", name, &pen) != 0) return missing; /* shown as it is stored */
    printf("pen %s: style %d, %g mm, %06X\n", name, pen.style, pen.width, swapped(pen.color));
    return done;
}

static int edit_fill(MiniHandle file, const char* name, int count, char** given) {
    /* The texture that the fill names; it has a key of its own, NAME followed by "GUID". */
    static const MiniGuid brick = {
        0x6F1C4E20, 0x52A7, 0x4B3D, {0x9E, 0x10, 0x2D, 0x8A, 0x77, 0x41, 0xC0, 0x05}};
    MiniFillStyleEx style = {{1, 0, 0, 0, 0xFFFFFF, 0}, {0}};
    if (count == 3) {
        mini_read_fillstyle_ex(file, "Flaechen", name, &style); /* what is not given stays */
        style.fill.type = (unsigned char)atoi(given[0]);
        style.fill.color1 = color_of(given[1]);
        style.fill.color2 = color_of(given[2]);
        style.guid = brick;
        if (mini_write_fillstyle_ex(file, "Flaechen", name, &style) != 0) return not_written;
    }
    if (mini_read_fillstyle_ex(file, "Flaechen", name, &style) != 0) return missing;
    printf("fill %s: type %d, %06X on %06X\n", name, style.fill.type, swapped(style.fill.color1),
           swapped(style.fill.color2));
    return done;
}

int main(int argc, char** argv) {
    char path[_MAX_PATH];
    MiniHandle file;
    int result = usage;

    /* A bare name would be looked up in the Windows directory. */
    if ((argc != 4 && argc != 7) || !_fullpath(path, argv[1], sizeof path)) return usage;
    file = mini_open_ex(path, argc == 4 ? MINI_READONLY : 0);
    if (!file) {
        fprintf(stderr, "styles: %s cannot be opened\n", argv[1]);
        return not_written;
    }
    if (strcmp(argv[2], "pen") == 0) result = edit_pen(file, argv[3], argc - 4, argv + 4);
    if (strcmp(argv[2], "fill") == 0) result = edit_fill(file, argv[3], argc - 4, argv + 4);
    mini_close(&file);
    if (result == missing) fprintf(stderr, "styles: no %s %s\n", argv[2], argv[3]);
    return result;
}
