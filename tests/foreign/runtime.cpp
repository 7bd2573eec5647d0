#include "bvutil/calculator.h"
#include "bvutil/fio.h"
#include "bvutil/locations.h"
#include "bvutil/messages.h"
#include "bvutil/numeric.h"
#include "bvutil/strings.h"
#include "bvutil/triangulation.h"
#include "tests/foreign/families.h"
#include "tests/support/temp_dir.h"

#include <limits>

namespace {

void use_messages(Caller& caller) {
    const std::string log = caller.file("log.txt");
    AT(BvUtil_SetWriteToLogfile)(1, log.c_str(), 0);
    AT(BvUtil_Message)("one", nullptr, "three", "source", 3);
    AT(BvUtil_GetWriteToLogfile)();
    AT(BvUtil_SetWriteToLogfile)(0, nullptr, 0);
    const std::string line = read_file(log);
    caller.note(line.substr(line.find("::"))); // behind the time, which is told in the locale's words
}

void use_locations(Caller& caller) {
    int number = 0, size = BVUTIL_PATH_SIZE;
    char path[BVUTIL_PATH_SIZE] = "c:\\base";
    AT(BvUtil_GetOperatingSystem)(&number, &size);
    caller.note(number, size);
    AT(BvUtil_GetProgPathAppData)(path);
    caller.note(path);
    AT(BvUtil_GetProgPathRoamingAppData)(path);
    AT(GetLocalMachineRegistryEntry)("Software\\BvUtilTests\\Nothing", 10, path);
    AT(BvUtil_ExecuteProgram)("no such program.exe", "argument");
    const std::string ini = caller.file("mb9.ini");
    write_file(ini, "[S]\r\nk=" + caller.folder + ";c:\\nowhere\r\n");
    SetEnvironmentVariableA("MB", caller.folder.c_str());
    AT(BvUtil_MB_SucheDatei)("S", "k", "mb9.ini", path);
    caller.note(path);
    AT(BvUtil_MB_SuchePfad)("S", "k", path);
    caller.note(path);
    size = sizeof path;
    AT(BvUtil_MB_IniReadString)(ini.c_str(), "S", "k", path, &size);
    caller.note(path);
}

void use_paths(Caller& caller) {
    char drive[BVUTIL_DRIVE_SIZE], dir[BVUTIL_DIR_SIZE], name[BVUTIL_NAME_SIZE], path[BVUTIL_PATH_SIZE];
    AT(BvUtil_Divide)("C:\\Data\\File.Txt", drive, dir, name);
    caller.note(drive, dir, name);
    AT(BvUtil_Makepath)(path, "d:\\base", "Data", "Sub\\FILE.txt");
    caller.note(path);
    AT(BvUtil_GetExtensionPos)("a.b.c");
    int count = 0;
    BvUtilEntry* entries = nullptr;
    write_file(caller.file("listed.one"), "12345");
    AT(BvUtil_Listdir)(caller.folder.c_str(), "*.one", 0, &entries, &count);
    caller.note(count, entries->name, entries->size, entries->attributes);
    AT(BvUtil_FreeEntries)(&entries);
}

void use_texts(Caller& caller) {
    AT(BvUtil_StrIChr)("a,b", ',');
    AT(BvUtil_StrIPos)("needle in hay", "hay");
    char text[16] = " \t a b \n";
    caller.note(AT(BvUtil_StrRTrim)(text));
    caller.note(AT(BvUtil_StrLTrim)(text));
    caller.note(AT(BvUtil_StrTrim)(text));
    for (const char* number : hard_numbers)
        AT(BvUtil_StringToDouble)(number);
    // A stream of the library's own runtime.
    FioFile* file = AT(fio_open)(caller.folder.c_str(), "lines.txt", FIO_WRITE | FIO_UPDATE | FIO_TEXT);
    AT(BvUtil_PutString)(file->stream, "ab\ncd", 7);
    AT(fio_seek)(file, 0, 0);
    AT(BvUtil_GetString)(file->stream, 15, text);
    caller.note(text);
    AT(fio_close)(file);
}

void use_numbers(Caller& caller) {
    constexpr double denormal = std::numeric_limits<double>::denorm_min();
    for (const double x : {1.234565, -2.5, 1 / 3.0, 12345.678905, 1e15 + 0.3, -0.0})
        for (const int p : {-5, 0, 2, -310}) {
            AT(BvUtil_PRound)(x, p);
            AT(BvUtil_FRound)(static_cast<float>(x), p);
        }
    for (const double x : {2.7, -2.7, 3e9, -0.9})
        AT(BvUtil_LRound)(x);
    for (const double x : {30.0, 45.0, 179.99999, -720.1, 0.5, 1000.0, -3.7e5, 1e15, denormal}) {
        AT(sin_deg)(x);
        AT(cos_deg)(x);
        AT(atan_deg)(x);
        AT(atan2_deg)(x, 3);
        AT(acos_deg)(x);
        AT(ddiv)(x, 3);
        AT(fdiv)(static_cast<float>(x), 3);
        AT(fsgn)(x);
    }
    AT(ddiv)(1, 0);
    AT(ddiv)(denormal, denormal);
    AT(ddiv)(1e300, 1e-300);
    AT(fdiv)(1, std::numeric_limits<float>::denorm_min());
    AT(fdiv)(std::numeric_limits<float>::min(), 3);
    AT(fsgn)(-denormal);
}

} // namespace

void use_runtime(Caller& caller) {
    use_messages(caller);
    use_locations(caller);
    use_paths(caller);
    use_texts(caller);
    use_numbers(caller);
}

void use_calculator(Caller& caller) {
    char text[128] = "untouched";
    double value = 0;
    AT(calc_init)(0);
    AT(calc_expression)("a = sin(30) / 3 + 0.1", 0, 0);
    AT(calc_error)(0, 0, 0, text);
    caller.note(text);
    AT(ConvStringToDouble)("a * 10 + 1 / 3", 0, &value);
    caller.note(value);
    AT(ConvDoubleToString)(2 / 3.0, 0, 0, 0, text);
    caller.note(text);
}

void use_triangulation(Caller& caller) {
    float points[400];
    std::uint32_t state = 1;
    for (float& coordinate : points) {
        state = state * 1664525u + 1013904223u;
        coordinate = static_cast<float>(state >> 8) / 9999.0f;
    }
    // Some so near to each other that their differences are below the normal range, or nearly on one line.
    for (int i = 0; i < 40; i += 2) {
        points[i] = 1e-38f * static_cast<float>(i % 7);
        points[i + 1] = 0.7f * points[i] + 1e-39f * static_cast<float>(i);
    }
    float* triangles = nullptr;
    unsigned count = 0;
    AT(Triangulieren)(200u, points, &triangles, &count);
    caller.note_bytes(triangles, count * 6 * sizeof(float));
    AT(FreeTriangs)(&triangles);
    // A grid: every decision is a close one.
    for (int i = 0; i < 200; ++i) {
        points[2 * i] = static_cast<float>(i % 14) / 10.0f;
        points[2 * i + 1] = static_cast<float>(i / 14) / 10.0f;
    }
    AT(Triangulieren)(200u, points, &triangles, &count);
    caller.note_bytes(triangles, count * 6 * sizeof(float));
    AT(FreeTriangs)(&triangles);
}
