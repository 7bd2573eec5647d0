// Drawing records and the lists of numbers that stand for them.
#pragma once

#include "bvutil/mini.h"

#include <array>

using FillNumbers = std::array<double, 10>;
using PenNumbers = std::array<double, 5>;
using TextureNumbers = std::array<double, 13>;

FillNumbers to_numbers(const MiniFillStyle& fill);
PenNumbers to_numbers(const MiniPenStyle& pen);
TextureNumbers to_numbers(const MiniTexProps& texture);
// The same with the parts of the colour brought from 0..255 to 0..1 before they are rounded.
PenNumbers to_scaled_numbers(const MiniPenStyle& pen);

void from_numbers(const FillNumbers& numbers, MiniFillStyle& fill);
void from_numbers(const PenNumbers& numbers, MiniPenStyle& pen);
void from_numbers(const TextureNumbers& numbers, MiniTexProps& texture);
