// The texts of a material's section, to and from the record.
#pragma once

#include "bvutil/mat_file.h"
#include "module/profile_value.h"

// Values of material files.
using MaterialValue = ProfileValue<256>;

// Fills the record from the section of the material's name. False when a coefficient that must not be empty
// is: "kdiffus" (the record is untouched) or "kambient" (it holds the diffuse coefficient alone).
bool read_material(const char* file, const char* section, matTyp& material);

// Writes the record into the section; false when the platform refused a value.
bool write_material(const char* file, const char* section, const matTyp& material);
