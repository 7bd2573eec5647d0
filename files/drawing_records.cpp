#include "files/drawing_records.h"

#include "bvutil/numeric.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace {

double whole(double number) {
    return BvUtil_PRound(number, 0);
}
double five_decimals(double number) {
    return BvUtil_PRound(number, -5);
}
// 0 is red, 1 green, 2 blue.
unsigned part(unsigned color, int index) {
    return color >> (8 * index) & 0xFF;
}
void put_color(unsigned color, double* numbers) {
    for (int i = 0; i < 3; ++i)
        numbers[i] = whole(part(color, i));
}

// A negative number of an unsigned field wraps, and a byte keeps the low bits.
unsigned to_unsigned(double number) {
    return static_cast<unsigned>(BvUtil_LRound(number));
}
unsigned char to_byte(double number) {
    return static_cast<unsigned char>(to_unsigned(number));
}
unsigned to_color(const double* numbers) {
    return to_byte(numbers[0]) | unsigned{to_byte(numbers[1])} << 8 | unsigned{to_byte(numbers[2])} << 16;
}
int to_flag(double number) {
    return std::fabs(number) >= 0.0001 ? 1 : 0;
}
float to_float(double number) {
    return static_cast<float>(number);
}

} // namespace

FillNumbers to_numbers(const MiniFillStyle& fill) {
    FillNumbers numbers = {whole(fill.type), five_decimals(fill.value1)};
    put_color(fill.color1, &numbers[2]);
    numbers[5] = five_decimals(fill.value2);
    put_color(fill.color2, &numbers[6]);
    numbers[9] = five_decimals(fill.value3);
    return numbers;
}

void from_numbers(const FillNumbers& numbers, MiniFillStyle& fill) {
    fill.type = to_byte(numbers[0]);
    fill.value1 = to_unsigned(numbers[1]);
    fill.color1 = to_color(&numbers[2]);
    fill.value2 = to_byte(numbers[5]);
    fill.color2 = to_color(&numbers[6]);
    fill.value3 = to_byte(numbers[9]);
}

PenNumbers to_numbers(const MiniPenStyle& pen) {
    PenNumbers numbers = {whole(pen.style), five_decimals(pen.width)};
    put_color(pen.color, &numbers[2]);
    return numbers;
}

PenNumbers to_scaled_numbers(const MiniPenStyle& pen) {
    PenNumbers numbers = to_numbers(pen);
    for (int i = 0; i < 3; ++i)
        numbers[static_cast<std::size_t>(2 + i)] = whole(part(pen.color, i) / 255.0);
    return numbers;
}

void from_numbers(const PenNumbers& numbers, MiniPenStyle& pen) {
    pen.style = BvUtil_LRound(numbers[0]);
    pen.width = to_float(numbers[1]);
    pen.color = to_color(&numbers[2]);
}

TextureNumbers to_numbers(const MiniTexProps& texture) {
    TextureNumbers numbers = {texture.enabled ? 1.0 : 0.0};
    std::transform(std::begin(texture.values), std::end(texture.values), &numbers[1], five_decimals);
    numbers[9] = texture.flag1 ? 1.0 : 0.0;
    numbers[10] = texture.flag2 ? 1.0 : 0.0;
    numbers[11] = five_decimals(texture.value9);
    numbers[12] = five_decimals(texture.value10);
    return numbers;
}

void from_numbers(const TextureNumbers& numbers, MiniTexProps& texture) {
    texture.enabled = to_flag(numbers[0]);
    std::transform(&numbers[1], &numbers[9], texture.values, to_float);
    texture.flag1 = to_flag(numbers[9]);
    texture.flag2 = to_flag(numbers[10]);
    texture.value9 = to_float(numbers[11]);
    texture.value10 = to_float(numbers[12]);
}
