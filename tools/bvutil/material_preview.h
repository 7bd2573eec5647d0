// A picture of a material.
#pragma once

#include <string>

struct matTyp;

// Saves a picture of a sphere of this material, lit from the upper left, on a checkered ground that shows
// through as far as the material is not opaque. The extension says the format. Throws CommandFailed.
void save_material_preview(const matTyp& material, const std::string& path);
