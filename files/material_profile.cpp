#include "files/material_profile.h"

#include "bvutil/strings.h"
#include "files/number_text.h"

#include <array>
#include <cmath>
#include <cstdlib>
#include <cstring>

namespace {

struct Coefficient {
    const char* key;
    float matTyp::*field;
};
// In the order of the file; the first two must not be empty.
constexpr Coefficient diffuse = {"kdiffus", &matTyp::diffuse}, ambient = {"kambient", &matTyp::ambient};
constexpr Coefficient specular = {"kspiegel", &matTyp::specular}, alpha = {"alpha", &matTyp::alpha};
constexpr Coefficient exponent = {"Oe", &matTyp::exponent};

struct ColorKeys {
    const char *unit, *unit_default;   // components 0.0 to 1.0
    const char *bytes, *bytes_default; // components 0 to 255
};
constexpr ColorKeys diffuse_color = {"RGBDiffus", "0.4,0.4,0.4", "RGBDiffus255", "102,102,102"};
// Kept: the key for 0 to 255 is the same key again, so an empty value stays without a colour.
constexpr ColorKeys specular_color = {"RGBSpiegel", "0.5,0.5,0.5", "RGBSpiegel", "128,128,128"};

float unit_component(const char* text) {
    return static_cast<float>(BvUtil_StringToDouble(text));
}
float byte_component(const char* text) {
    return static_cast<float>(std::strtoul(text, nullptr, 10)) / 255.0f;
}

// A text without two commas leaves the colour as it is.
void parse_color(const char* text, float (*component)(const char*), float (&color)[3]) {
    const char* const first = std::strchr(text, ',');
    const char* const second = first ? std::strchr(first + 1, ',') : nullptr;
    if (!second) return;
    color[0] = component(text);
    color[1] = component(first + 1);
    color[2] = component(second + 1);
}

void read_color(const char* file, const char* section, const ColorKeys& keys, float (&color)[3]) {
    const MaterialValue unit(file, section, keys.unit, keys.unit_default);
    if (!unit.empty()) return parse_color(unit.text(), unit_component, color);
    const MaterialValue bytes(file, section, keys.bytes, keys.bytes_default);
    parse_color(bytes.text(), byte_component, color);
}

void derive_shades(matTyp& material) {
    const float e = material.exponent;
    if (!(e > 0.1f)) {
        material.shade1 = 0;
        return;
    }
    material.shade1 = -1.0f / (e * std::sqrt(e));
    material.shade3 = -1.0f / material.shade1;
    material.shade2 = material.shade3 - 1.0f / (1.0f - material.shade1);
}

std::string color_text(const float (&color)[3]) {
    GeneralText text;
    std::string joined = general_text(color[0], text);
    for (const int i : {1, 2})
        joined.append(",").append(general_text(color[i], text));
    return joined;
}

} // namespace

bool read_material(const char* file, const char* section, matTyp& material) {
    const auto read = [&](const Coefficient& coefficient, const char* missing) {
        const MaterialValue value(file, section, coefficient.key, missing);
        if (!value.empty()) material.*coefficient.field = unit_component(value.text());
        return !value.empty();
    };
    const MaterialValue first(file, section, diffuse.key, "0.4");
    if (first.empty()) return false;
    material = {};
    material.diffuse = unit_component(first.text());
    if (!read(ambient, "0.4")) return false;
    read(specular, "0.4");
    read(alpha, "0.4");
    if (read(exponent, "30.0")) derive_shades(material);
    const MaterialValue bits(file, section, "Bits", "");
    material.bits = std::strtoul(bits.text(), nullptr, 10);
    read_color(file, section, diffuse_color, material.diffuseColor);
    read_color(file, section, specular_color, material.specularColor);
    return true;
}

bool write_material(const char* file, const char* section, const matTyp& material) {
    bool written = true;
    const auto write = [&](const char* key, const char* value) {
        written = WritePrivateProfileStringA(section, key, value, file) != FALSE && written;
    };
    GeneralText text;
    for (const auto& [key, field] : {diffuse, ambient, specular, alpha, exponent})
        write(key, general_text(material.*field, text));
    write("Bits", std::to_string(material.bits & ~1u).c_str());
    write(diffuse_color.unit, color_text(material.diffuseColor).c_str());
    write(specular_color.unit, color_text(material.specularColor).c_str());
    return written;
}
