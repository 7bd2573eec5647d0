// Rounding to powers of ten and to whole numbers.
#pragma once

// floor(x / q + 0.5) * q with q = power_of_ten(power).
double round_to_power(double x, int power);

// The double nearest to 10 to the power: 0 below -323, infinity above 308.
double power_of_ten(int power);

// The whole part of x; the lowest long when that is out of range, and for NaN.
long whole_part(double x);
