/* Writes a picture and its title as XML, in UTF-8:  xml_picture PICTURE TITLE >picture.xml */
#include <bvutil/text_exchange.h>

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

/* jpgToXML leaves the last character to the caller: padding, or the last six bits of the file. */
static int last_character(const char* file_name) {
    static const char alphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    int last = -1;
    FILE* file = fopen(file_name, "rb");
    if (!file) return -1;
    if (fseek(file, -1, SEEK_END) == 0 && (last = getc(file)) >= 0)
        last = ftell(file) % 3 == 0 ? alphabet[last & 63] : '=';
    fclose(file);
    return last;
}

static void print_escaped(const char* text) {
    for (; *text; ++text)
        if (strchr("&<>\"", *text))
            printf("&#%d;", *text);
        else
            putchar(*text);
}

int main(int argc, char** argv) {
    int length = 0, last;
    char *text, *title;

    if (argc != 3) return 64;
    if (!jpgToXML(argv[1], NULL, &length, 1) || length == 0 || (last = last_character(argv[1])) < 0) {
        fprintf(stderr, "xml_picture: cannot read %s, or nothing is in it\n", argv[1]);
        return 3;
    }
    text = malloc((size_t)length);
    title = calloc(3 * strlen(argv[2]) + 1, 1); /* at most three bytes for each, and a zero */
    if (!text || !title || !jpgToXML(argv[1], text, NULL, 0)) return 4;
    text[length - 1] = (char)last;
    ConvertToUTF8(argv[2], title);

    printf("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<picture title=\"");
    print_escaped(title);
    printf("\">");
    fwrite(text, 1, (size_t)length, stdout);
    printf("</picture>\n");
    free(title);
    free(text);
    return 0;
}
