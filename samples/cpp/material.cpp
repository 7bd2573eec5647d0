// Makes a shinier material of another:  material OAK.mat NEW.mat NAME
// The class is for programs that are built with the library's own compiler.
#include <bvutil/mat_file.h>

#include <cstdio>
#include <filesystem>
#include <iostream>

namespace fs = std::filesystem;

int main(int argc, char** argv) {
    if (argc != 4) return 64;
    // With their folders: the platform would look bare names up in the Windows directory.
    const std::string from = fs::absolute(argv[1]).string();
    const std::string to = fs::absolute(argv[2]).string();

    CBvMatFile material(from);
    if (!material.IsLoaded()) {
        std::cerr << "material: " << from << " is no material\n";
        return 2;
    }
    matTyp& values = *material.GetMaterialPtr();
    const auto& [red, green, blue] = values.diffuseColor;
    std::cout << "diffuse " << red << ' ' << green << ' ' << blue << ", exponent " << values.exponent << '\n';

    values.specular = 0.9f;
    values.exponent *= 4;
    material.SetLogName(argv[3]);
    // A material is written into a file that there is; the section of the old name gives way to the new one.
    std::error_code error;
    fs::copy_file(from, to, fs::copy_options::overwrite_existing, error);
    if (error || !material.Write(to)) {
        std::cerr << "material: " << to << " cannot be written\n";
        return 3;
    }
    // The shading constants are derived from the exponent on reading.
    material.Read(to);
    std::cout << argv[3] << ": exponent " << values.exponent << ", shade " << values.shade3 << '\n';
    return 0;
}
