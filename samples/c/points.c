/* Keeps points in a data file that tells the byte order of its numbers:
 *   points POINTS.csv FILE.dat     stores the first two columns
 *   points FILE.dat                tells what a file of either byte order holds
 * Behind the header stand the number of points and x and y of each, in 4 bytes each. */
#include <bvutil/fio.h>

#include <float.h>
#include <stdio.h>
#include <string.h>

static int put_word(FioFile* file, const void* word) {
    unsigned char bytes[4]; /* in the order of this machine, Intel's, in which files are made */
    int i, failed = 0;
    memcpy(bytes, word, sizeof bytes);
    for (i = 0; i < 4; ++i)
        failed |= fio_putchar(file, (char)bytes[i]);
    return failed;
}

static int get_word(FioFile* file, void* word) {
    unsigned char bytes[4];
    int i;
    for (i = 0; i < 4; ++i) {
        const int byte = fio_getchar(file, NULL);
        if (byte < 0) return -1;
        bytes[file->byteOrder == FIO_MOTOROLA ? 3 - i : i] = (unsigned char)byte;
    }
    memcpy(word, bytes, sizeof bytes);
    return 0;
}

static int store(const char* from, const char* to) {
    char line[128];
    float point[2];
    unsigned int count = 0;
    FILE* table = fopen(from, "r");
    FioFile* file = table ? fio_open("", to, FIO_WRITE | FIO_HEADER) : NULL;
    int failed = !file || put_word(file, &count);

    while (!failed && fgets(line, sizeof line, table)) {
        if (sscanf(line, "%f,%f", &point[0], &point[1]) != 2) continue; /* the heading */
        failed = put_word(file, &point[0]) || put_word(file, &point[1]);
        ++count;
    }
    /* Behind the header's 16 bytes the number is put in its place. */
    failed = failed || fio_seek(file, 16, 0) != 0 || put_word(file, &count);
    if (table) fclose(table);
    return fio_close(file) != 0 || failed ? 3 : 0;
}

static int tell(const char* path) {
    unsigned int count, i;
    float x, y, left = FLT_MAX, right = -FLT_MAX;
    FioFile* file = fio_open("", path, FIO_READ | FIO_HEADER);
    int broken = !file || file->byteOrder == FIO_NO_HEADER || get_word(file, &count) != 0;

    for (i = 0; !broken && i < count; ++i) {
        broken = get_word(file, &x) != 0 || get_word(file, &y) != 0;
        if (x < left) left = x;
        if (x > right) right = x;
    }
    if (!broken)
        printf("%s, %u points, x from %g to %g\n", file->byteOrder == FIO_MOTOROLA ? "Motorola" : "Intel",
               count, left, right);
    fio_close(file);
    return broken ? 2 : 0;
}

int main(int argc, char** argv) {
    return argc == 2 ? tell(argv[1]) : argc == 3 ? store(argv[1], argv[2]) : 64;
}
