// Every family's use without memory: each call gives what it gives with memory, or fails as its header says
// and leaves all as it was; made again, it gives the same.
#include "bvutil/env.h"
#include "bvutil/messages.h"
#include "bvutil/strings.h"
#include "tests/calcgeom/calculator_server.h"
#include "tests/faults/memory_faults.h"
#include "tests/foreign/families.h"
#include "tests/support/calculator_registration.h"
#include "tests/support/message_boxes.h"
#include "tests/support/second_copy.h"

#include <algorithm>
#include <thread>

namespace {

using memory_faults::fail_each_allocation;
using memory_faults::Fault;

// A copy of the library whose imports fail too, with a state of its own.
class WatchedCopy : public SecondCopy {
  public:
    WatchedCopy() { memory_faults::watch(module()); }
    ~WatchedCopy() { memory_faults::forget(module()); }
    HMODULE module() const { return GetModuleHandleA(dir().file("copy.dll").c_str()); }
};

// How functions tell that there was no memory; the first row whose name one begins with counts. Without a
// result, or with one that says nothing, a call has failed when it wrote nothing.
struct Failure {
    std::string_view name;
    const char* result = nullptr;
    const char* outputs = nullptr; // null: as they were
    bool in_part = false;          // what it made may be incomplete: it is made again in any case
};
constexpr Failure failures[] = {
    {"env_open", "null"},
    {"env_create_subenv", "null"},
    {"env_write"},
    {"env_get_string", "-10", " \"\""},
    {"env_list_elem_names", "-10", " \"\""},
    {"env_exist", "0"},
    {"env_", "-10"},
    {"fio_open", "null"},
    {"fio_", "-1"},
    {"mini_open", "null"},
    {"mini_read_doubles", "-1", nullptr, true},
    {"mini_", "-1"},
    {"_ZN10CBvMatFile4Read", "0"},
    {"_ZN10CBvMatFile5Write", "0"},
    {"_ZN10CBv", nullptr, nullptr, true},
    {"BvUtil_Listdir", nullptr, " null 0"},
    {"BvUtil_Makepath", "null"},
    {"BvUtil_StrIPos", "-1"},
    {"BvUtil_StringToDouble", "-inf"},
    {"BvUtil_GetProgPathAppData", "null"},
    {"BvUtil_GetProgPathRoaming", "0"},
    {"BvUtil_MB_Suche", "-1"},
    {"BvUtil_SetWriteToLogfile", nullptr, nullptr, true},
    {"BvUtil_CreateRegion", nullptr, nullptr, true},
    {"Triangulieren", "0", " null 0"},
    {"AVGetPSFilterAndInfo", "0", " null null null -1"},
    {"AVApplyPSFilter", nullptr, nullptr, true},
    {"gdiPlusGetGraphics", nullptr, nullptr, true},
    {"gdiPlusSaveImage"},
    {"gdiPlus", "0"},
    {"Convert", "0"},
    {"Conv", "4102"},
    {"jpgToXML", "0"},
    {"bmpExInit", "0"},
    {""},
};

class FamilyMemory : public testing::Test {
  protected:
    FamilyMemory() {
        server.number = 2.5;
        server.text = L"two and a half";
    }
    // Uses a family; what allocation fails in one call is told by that call. Once memory is gone for good,
    // what follows need only end.
    std::vector<std::string> use(const Family& family, Fault& fault) {
        Caller caller(library.module(), {}, folder.path());
        AT(BvUtil_SetWriteToLogfile)(1, folder.file("all.txt").c_str(), 0);
        bool told = false;
        caller.again = [&](const MadeCall& made) {
            if (!fault.struck || told) return false;
            told = true;
            const Failure& failure = *std::ranges::find_if(
                failures, [&](const Failure& row) { return made.name.starts_with(row.name); });
            const bool as_stated = made.after == (failure.outputs ? failure.outputs : made.before);
            const bool failed = failure.result ? made.result == failure.result : as_stated;
            EXPECT_TRUE(!failed || as_stated || failure.in_part)
                << made.name << made.before << " became" << made.after;
            return (failed || failure.in_part) && !fault.lasts;
        };
        fault.active = true;
        family.use(caller);
        fault.active = false;
        caller.again = nullptr;
        AT(BvUtil_SetWriteToLogfile)(1, folder.file("all.txt").c_str(), 0);
        server.take_calls();
        return caller.transcript;
    }

    const WatchedCopy library;
    const TempDir folder;
    const HiddenCalculatorRegistration hidden;
    CalculatorServer server;
    const CalculatorServer::Registration registration{server};
    const MessageBoxWatcher boxes;
};

TEST_F(FamilyMemory, EachCallFailsAsStatedOrWorks) {
    for (const Family& family : families) {
        // The one needs no memory, and what the other's callbacks call would take its failures for their own.
        if (family.use == use_numbers || family.use == use_own_filter) continue;
        SCOPED_TRACE(family.name);
        // A filter's settings are the plug-in's to release, and an object of bmpEx the test's.
        const bool keeps = family.use == use_filters || family.use == use_gdi;
        std::vector<std::string> plain;
        fail_each_allocation(
            [&](Fault& fault) {
                const std::vector<std::string> found = use(family, fault);
                if (plain.empty()) plain = found;
                if (fault.lasts) return;
                const auto [expected, actual] = std::ranges::mismatch(plain, found);
                EXPECT_TRUE(expected == plain.end() && actual == found.end())
                    << (expected == plain.end() ? "the end" : *expected) << "\nis\n"
                    << (actual == found.end() ? "the end" : *actual);
            },
            keeps);
    }
}

// What an exception needs is made with the first of a process and of a thread: then there must be room for
// it.
TEST(FirstFailure, IsOneLikeAnyOther) {
    const WatchedCopy library;
    const auto makepath = library.function<decltype(BvUtil_Makepath)>("BvUtil_Makepath");
    const auto fail = [&] {
        char path[100];
        Fault& fault = memory_faults::the_fault = {.countdown = 1, .lasts = true};
        EXPECT_EQ(fault([&] { return makepath(path, "", "", "a name too long to be kept in its object"); }),
                  nullptr);
        EXPECT_TRUE(fault.struck);
    };
    fail();
    std::thread(fail).join();
}

// A name that is taken, and one that is not.
TEST(FamilyMemoryLog, IsOpenOrOff) {
    const WatchedCopy library;
    const auto set_log = library.function<decltype(BvUtil_SetWriteToLogfile)>("BvUtil_SetWriteToLogfile");
    const auto message = library.function<decltype(BvUtil_Message)>("BvUtil_Message");
    const auto is_on = library.function<decltype(BvUtil_GetWriteToLogfile)>("BvUtil_GetWriteToLogfile");
    const TempDir dir;
    const MessageBoxWatcher boxes;
    const std::string log = dir.file("log"), taken = dir.file("taken"), text(200, 'x');
    std::filesystem::create_directory(taken);
    fail_each_allocation([&](Fault& fault) {
        for (const std::string& path : {log, taken}) {
            fault([&] { set_log(1, path.c_str(), 0); });
            std::string opened; // the first name that could be, in a folder with nothing else
            for (const char* suffix : {"", "_1", "_2"})
                if (opened.empty() && std::filesystem::is_regular_file(path + suffix)) opened = path + suffix;
            EXPECT_EQ(is_on() != 0, !opened.empty());
            fault([&] { message(text.c_str(), text.c_str(), nullptr, "unit", 7); });
            set_log(0, nullptr, 0);
            const std::string written = read_file(opened);
            DeleteFileA(opened.c_str());
            EXPECT_TRUE(written.empty() ? fault.struck : written.ends_with(" in \"unit\" line 7\r\n"))
                << written;
        }
    });
}

} // namespace
