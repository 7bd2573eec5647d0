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

void use_locations(Caller& caller) {
    int number = 0, size = BVUTIL_PATH_SIZE;
    char path[BVUTIL_PATH_SIZE] = "c:\\base";
    AT(BvUtil_GetOperatingSystem)(&number, &size);
    AT(BvUtil_GetProgPathAppData)(path);
    AT(BvUtil_GetProgPathRoamingAppData)(path);
    AT(GetLocalMachineRegistryEntry)("Software", 10, path);
    AT(BvUtil_ExecuteProgram)("no such program of a name that is long.exe", "argument");
    const std::string ini = caller.file("mb9.ini");
    write_file(ini, "[S]\r\nempty=\r\nk=" + caller.folder + "\\below;c:\\nowhere\r\n");
    CreateDirectoryA(caller.file("below").c_str(), nullptr);
    write_file(caller.file("below\\sought"), "");
    SetEnvironmentVariableA("MB", caller.folder.c_str());
    AT(BvUtil_MB_SucheDatei)("S", "k", "sought", path);
    AT(BvUtil_MB_SucheDatei)("S", "k", "mb9.ini", path);
    AT(BvUtil_MB_SuchePfad)("S", "k", path);
    AT(BvUtil_MB_SuchePfad)("S", "empty", path);
    size = sizeof path;
    AT(BvUtil_MB_IniReadString)(ini.c_str(), "S", "k", path, &size);
}

// With a log: a message would wait for a person otherwise.
void use_messages(Caller& caller) {
    const std::string log = caller.file("log.txt");
    caller.restart = [&] { AT(BvUtil_SetWriteToLogfile)(0, nullptr, 0); };
    AT(BvUtil_SetWriteToLogfile)(1, log.c_str(), 0);
    caller.written_file = log;
    AT(BvUtil_Message)("one, longer than a text that is kept in its object", nullptr, "three", "source", 3);
    caller.written_file.clear();
    AT(BvUtil_GetWriteToLogfile)();
    use_locations(caller);
    AT(BvUtil_SetWriteToLogfile)(0, nullptr, 0);
    std::string line = read_file(log);
    line.resize(std::min(line.size(), line.find('\r')));
    caller.note(
        line.substr(std::min(line.size(), line.find("::")))); // behind the time, in the locale's words
}

void use_paths(Caller& caller) {
    char drive[BVUTIL_DRIVE_SIZE] = "", dir[BVUTIL_DIR_SIZE] = "", name[BVUTIL_NAME_SIZE] = "",
         path[BVUTIL_PATH_SIZE] = "";
    AT(BvUtil_Divide)("C:\\Data\\File.Txt", drive, dir, name);
    AT(BvUtil_Makepath)(path, "d:\\base", "Data in a long folder's name", "Sub\\FILE.txt");
    AT(BvUtil_GetExtensionPos)("a.b.c");
    int count = 0;
    BvUtilEntry* entries = nullptr;
    for (char letter = 'a'; letter < 'z'; ++letter)
        write_file(caller.file(std::string("listed.") + letter), "12345");
    AT(BvUtil_Listdir)(caller.folder.c_str(), "listed.*", 0, &entries, &count);
    if (entries) caller.note(entries[0].name, entries[24].name, entries->size, entries->attributes);
    AT(BvUtil_FreeEntries)(&entries);
}

void use_texts(Caller& caller) {
    AT(BvUtil_StrIChr)("a,b", ',');
    AT(BvUtil_StrIPos)("needle in hay, and more of it than is kept", "HAY");
    char text[16] = " \t a b \n";
    for (const auto name : {"BvUtil_StrRTrim", "BvUtil_StrLTrim", "BvUtil_StrTrim"})
        caller.at<decltype(BvUtil_StrTrim)>(name)(text);
    for (const char* number : hard_numbers)
        AT(BvUtil_StringToDouble)(number);
    AT(BvUtil_StringToDouble)("12345678901234567890d5");
    // A stream of the library's own runtime.
    FioFile* file = AT(fio_open)(caller.folder.c_str(), "lines.txt", FIO_WRITE | FIO_UPDATE | FIO_TEXT);
    AT(BvUtil_PutString)(file ? file->stream : nullptr, "ab\ncd", 7);
    AT(fio_seek)(file, 0, 0);
    AT(BvUtil_GetString)(file ? file->stream : nullptr, 15, text);
    AT(fio_close)(file);
}

} // namespace

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
        for (const auto name : {"sin_deg", "cos_deg", "atan_deg", "acos_deg", "fsgn"})
            caller.at<decltype(sin_deg)>(name)(x);
        AT(atan2_deg)(x, 3);
        AT(ddiv)(x, 3);
        AT(fdiv)(static_cast<float>(x), 3);
    }
    AT(ddiv)(1, 0);
    AT(ddiv)(denormal, denormal);
    AT(ddiv)(1e300, 1e-300);
    AT(fdiv)(1, std::numeric_limits<float>::denorm_min());
    AT(fdiv)(std::numeric_limits<float>::min(), 3);
    AT(fsgn)(-denormal);
}

void use_runtime(Caller& caller) {
    use_messages(caller);
    use_paths(caller);
    use_texts(caller);
}

void use_calculator(Caller& caller) {
    char text[128] = "untouched";
    double value = 7;
    AT(calc_init)(0);
    AT(calc_expression)("a = sin(30) / 3 + 0.1", 0, 0);
    AT(calc_error)(0, 0, 0, text);
    AT(ConvStringToDouble)("a * 10 + 1 / 3", 0, &value);
    AT(ConvDoubleToString)(2 / 3.0, 0, 0, 0, text);
}

void use_triangulation(Caller& caller) {
    float random[400], grid[400];
    std::uint32_t state = 1;
    for (float& coordinate : random) {
        state = state * 1664525u + 1013904223u;
        coordinate = static_cast<float>(state >> 8) / 9999.0f;
    }
    // Some so near to each other that their differences are below the normal range, or nearly on one line.
    for (int i = 0; i < 40; i += 2) {
        random[i] = 1e-38f * static_cast<float>(i % 7);
        random[i + 1] = 0.7f * random[i] + 1e-39f * static_cast<float>(i);
    }
    // Here every decision is a close one.
    for (int i = 0; i < 400; ++i)
        grid[i] = static_cast<float>(i % 2 ? i / 2 / 14 : i / 2 % 14) / 10.0f;
    for (const float* points : {random, grid}) {
        float* triangles = nullptr;
        unsigned count = 0;
        AT(Triangulieren)(200u, points, &triangles, &count);
        caller.note_bytes(triangles, count * 6 * sizeof(float));
        AT(FreeTriangs)(&triangles);
    }
}
