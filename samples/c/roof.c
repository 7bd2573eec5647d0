/* Works out the rafters of a gable roof:  roof SPAN RISE [OVERHANG], in metres */
#include <bvutil/numeric.h>

#include <stdio.h>
#include <stdlib.h>

enum { millimetres = -3, tenths = -1 }; /* powers of ten to round to */

int main(int argc, char** argv) {
    double run, rise, overhang, pitch, rafter;

    if (argc != 3 && argc != 4) return 64;
    run = atof(argv[1]) / 2;
    rise = atof(argv[2]);
    overhang = argc == 4 ? atof(argv[3]) : 0;
    if (run <= 0 || rise < 0 || overhang < 0) {
        fprintf(stderr, "roof: a span above 0, and a rise and an overhang that are not below\n");
        return 2;
    }

    pitch = atan2_deg(rise, run);
    rafter = ddiv(run + overhang, cos_deg(pitch)); /* run is above 0, so the pitch is below 90 degrees */
    printf("pitch   %g degrees, %ld %%\n", BvUtil_PRound(pitch, tenths),
           BvUtil_LRound(100 * ddiv(rise, run)));
    printf("rafter  %g m, %g m of it over the wall\n", BvUtil_PRound(rafter, millimetres),
           BvUtil_PRound(ddiv(overhang, cos_deg(pitch)), millimetres));
    printf("eaves   %g m below the wall's top\n", BvUtil_PRound(overhang * ddiv(rise, run), millimetres));
    return 0;
}
