// Triangulates a terrain survey and draws it, lit from the north-west:  terrain SURVEY.csv PICTURE.bmp WIDTH
#include <bvutil/gdiplus_services.h>
#include <bvutil/triangulation.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
#include <vector>

struct Survey {
    std::vector<float> points;                         // x and y of each
    std::map<std::pair<float, float>, double> heights; // the triangles come back as points
    float left = 1e30f, right = -1e30f, bottom = 1e30f, top = -1e30f;
};

static Survey read(const char* path) {
    Survey survey;
    std::ifstream file(path);
    file.ignore(1000, '\n'); // the heading
    char comma;
    for (float x, y, height; file >> x >> comma >> y >> comma >> height;) {
        survey.points.insert(survey.points.end(), {x, y});
        survey.heights[{x, y}] = height;
        survey.left = std::fmin(survey.left, x), survey.right = std::fmax(survey.right, x);
        survey.bottom = std::fmin(survey.bottom, y), survey.top = std::fmax(survey.top, y);
    }
    return survey;
}

// How bright a slope is, by the angle between its upright and the light.
static BYTE brightness(const Survey& survey, const float* t) {
    const double z0 = survey.heights.at({t[0], t[1]});
    const double ax = t[2] - t[0], ay = t[3] - t[1], az = survey.heights.at({t[2], t[3]}) - z0;
    const double bx = t[4] - t[0], by = t[5] - t[1], bz = survey.heights.at({t[4], t[5]}) - z0;
    const double flat = ax * by - ay * bx; // twice the area, below 0 when the corners turn clockwise
    if (flat == 0) return 0;
    const double east = (ay * bz - az * by) / flat, north = (az * bx - ax * bz) / flat;
    const double light = (-0.5 * east + 0.5 * north + 0.7) / std::hypot(east, north, 1.0);
    return static_cast<BYTE>(std::clamp(light * 290, 0.0, 255.0));
}

static void draw(const Survey& survey, const float* t, float scale, HDC dc) {
    POINT corners[3];
    for (int i = 0; i < 3; ++i) // y goes up in the survey, down in the picture
        corners[i] = {std::lround((t[2 * i] - survey.left) * scale),
                      std::lround((survey.top - t[2 * i + 1]) * scale)};
    const BYTE shade = brightness(survey, t), red = static_cast<BYTE>(shade * 3 / 4);
    gdiPlusFillPolygon(dc, 0, 255, red, shade, static_cast<BYTE>(shade * 3 / 5), corners, 3);
}

int main(int argc, char** argv) {
    if (argc != 4) return 64;
    const Survey survey = read(argv[1]);
    float* triangles;
    unsigned int points = static_cast<unsigned int>(survey.points.size() / 2), count;
    if (!Triangulieren(points, survey.points.data(), &triangles, &count) || count == 0) return 2;

    gdiPlusInit();
    const int width = std::atoi(argv[3]);
    const float scale = static_cast<float>(width) / (survey.right - survey.left);
    const int height = static_cast<int>((survey.top - survey.bottom) * scale);
    const std::vector<BYTE> white(static_cast<std::size_t>(4 * width * height), 255);
    BvUtilImage picture;
    BvUtilGraphics graphics;
    HDC dc;
    if (!gdiPlusGetBitmap(width, height, width * 4, 1, white.data(), &picture)) return 4;
    gdiPlusGetGraphicsFromBitmap(picture, &graphics);
    gdiPlusGetHDCFromGraphics(graphics, &dc);
    for (const float* t = triangles; t != triangles + 6 * count; t += 6)
        draw(survey, t, scale, dc);
    gdiPlusFreeHDC(graphics, dc);
    gdiPlusFreeGraphics(graphics);
    gdiPlusSaveImage(picture, argv[2], 0);
    gdiPlusFreeImage(picture);
    std::printf("%u points, %u triangles, %d x %d pixels\n", points, count, width, height);
    return FreeTriangs(&triangles) ? 0 : 4;
}
