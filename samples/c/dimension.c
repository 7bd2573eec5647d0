/* Works out a dimension and writes it in fractions of an inch:  dimension "68.2 / 25.4" */
#include <bvutil/calculator.h>

#include <stdio.h>
#include <stdlib.h>

int main(int argc, char** argv) {
    char text[256] = "";
    double value = 0;

    if (argc != 2) return 64;
    calc_init(0);                   /* degrees, decimal point, no variables */
    calc_expression(argv[1], 0, 3); /* the result goes to ans and to r3 */
    calc_error(1, 3, 0, text);      /* the code of the last expression, as a number */
    if (atoi(text) != CALC_SUCCESS) {
        calc_error(1, 0, 1, text); /* what is wrong and where, in English */
        fprintf(stderr, "dimension: %s\n", text);
        return 2;
    }

    if (ConvStringToDouble("ans", 0, &value) != CALC_SUCCESS) return 4;
    if (ConvDoubleToString(value, 3, 16, 0, text) != CALC_SUCCESS) return 4; /* in sixteenths */
    printf("%s in\n", text);
    return 0;
}
