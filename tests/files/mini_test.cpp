// Typed profile values and drawing records: texts on disk against values in memory, in a comma locale.
#include "bvutil/mini.h"
#include "module/handles.h"
#include "tests/files/comma_locale.h"
#include "tests/support/temp_dir.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

namespace {

class Mini : public testing::Test {
  protected:
    Mini() {
        write_file(path, "");
        h = mini_open_ex(path.c_str(), 0);
    }
    ~Mini() override { EXPECT_EQ(mini_close(&h), 1); }

    // Gives the key "k" of section "s" this value, among neighbours.
    void put(const std::string& value) {
        write_file(path, "[r]\r\nk=other\r\n[s]\r\na=1\r\nk=" + value + "\r\nz=2\r\n");
    }
    std::string stored(const std::string& key = "k") {
        std::string buffer(2000, '\0');
        GetPrivateProfileStringA("s", key.c_str(), "", buffer.data(), 2000, path.c_str());
        return buffer.c_str();
    }
    // The record that a list of numbers reads as; the bytes of an old one must all be set.
    template <class Record>
    int read(int (*function)(MiniHandle, const char*, const char*, Record*), const std::string& list,
             Record& record) {
        put(list);
        std::memset(&record, 0xEE, sizeof record);
        return function(h, "s", "k", &record);
    }

    const CommaLocale locale;
    TempDir dir;
    const std::string path = dir.file("values.ini");
    MiniHandle h = nullptr;
};

TEST_F(Mini, OpensFilesThatMayBeUsedSo) {
    const std::string none = dir.file("none.ini");
    for (const int flags : {0, 4, 1}) {
        for (const std::string& refused : {none, dir.path(), std::string()})
            EXPECT_EQ(mini_open_ex(refused.c_str(), flags), nullptr) << refused;
        EXPECT_EQ(mini_open_ex(nullptr, flags), nullptr);
        EXPECT_EQ(mini_open(dir.path().c_str(), nullptr, flags), nullptr);
        EXPECT_EQ(mini_open("", "", flags), nullptr);
    }
    EXPECT_FALSE(std::filesystem::exists(none));
    SetFileAttributesA(path.c_str(), FILE_ATTRIBUTE_READONLY);
    EXPECT_EQ(mini_open_ex(path.c_str(), 0), nullptr);
    MiniHandle reading = mini_open_ex(path.c_str(), 4 | 0x100);
    EXPECT_NE(reading, nullptr);
    SetFileAttributesA(path.c_str(), FILE_ATTRIBUTE_NORMAL);
    MiniHandle joined = mini_open(dir.path().c_str(), "VALUES.ini", 0);
    ASSERT_NE(joined, nullptr);
    put("17");
    for (MiniHandle* handle : {&reading, &joined}) {
        long value = 0;
        EXPECT_EQ(mini_read_long(*handle, "s", "k", &value), 0);
        EXPECT_EQ(value, 17);
        const MiniHandle before = *handle;
        EXPECT_EQ(mini_close(handle), 1);
        EXPECT_EQ(*handle, before);
    }
    MiniHandle closed = nullptr;
    EXPECT_EQ(mini_close(&closed), 0);
    EXPECT_EQ(mini_close(nullptr), -1);
}

TEST_F(Mini, ReadsNumbers) {
    const double none = -7, inf = std::numeric_limits<double>::infinity();
    const struct {
        const char* text;
        long integer; // -7: refused
        double number;
    } cases[] = {
        {"12", 12, 12},
        {"-12.9abc", -12, -12.9},
        {"abc", 0, 0},
        {"", 0, none},
        {"1,5", 1, 1},
        {"99999999999", LONG_MAX, 99999999999.0},
        {"-99999999999", LONG_MIN, -99999999999.0},
        {"0x10", 0, 0},
        {"1e400", 1, none},
        {"-1e400", -1, -inf},
        {"_TheDefault_", -7, none},
    };
    for (const auto& [text, integer, number] : cases) {
        SCOPED_TRACE(text);
        put(text);
        long read_integer = -7;
        double read_number = none;
        EXPECT_EQ(mini_read_long(h, "s", "k", &read_integer), integer == -7 ? -1 : 0);
        EXPECT_EQ(read_integer, integer);
        EXPECT_EQ(mini_read_double(h, "s", "k", &read_number), number == none ? -1 : 0);
        EXPECT_EQ(read_number, number);
    }
    long integer = 0;
    EXPECT_EQ(mini_read_long(h, "s", "none", &integer), -1);
    EXPECT_EQ(mini_read_long(h, "none", "k", &integer), -1);
}

TEST_F(Mini, ReadsStringsIntoWhatRoomThereIs) {
    const struct {
        std::string value;
        int capacity, result, length;
        std::string text;
    } cases[] = {
        {"abcd", 5, 0, 4, "abcd"},
        {"abcd", 4, 0, 4, "abcd"},
        {"abcd", 3, 0, 3, "abc"},
        {"abcd", 1, 0, 1, "a"},
        {"abcd", 0, 0, 0, ""},
        {"abcd", -1, -1, -1, "##"},
        {"", 3, 0, 0, ""},
        {"", 0, 0, 0, ""},
        {"_TheDefault_", 50, -1, 50, "##"},
        {std::string(1023, 'v'), 5000, 0, 1023, std::string(1023, 'v')},
        {std::string(1024, 'v'), 5000, 0, 1023, std::string(1023, 'v')},
        {std::string(5000, 'v'), 1000, 0, 1000, std::string(1000, 'v')},
    };
    for (const auto& [value, capacity, result, length, text] : cases) {
        SCOPED_TRACE(value.substr(0, 20) + " into " + std::to_string(capacity));
        put(value);
        std::string buffer(6000, '#');
        int in_out = capacity;
        EXPECT_EQ(mini_read_string(h, "s", "k", buffer.data(), &in_out), result);
        EXPECT_EQ(in_out, length);
        if (result == 0)
            EXPECT_EQ(buffer.substr(0, text.size() + 2), text + '\0' + '#');
        else
            EXPECT_EQ(buffer.substr(0, 2), text);
    }
}

TEST_F(Mini, ReadsListsOfNumbers) {
    const struct {
        const char* text;
        int capacity, result;
        std::vector<double> values; // stored, also in front of a broken number
    } cases[] = {
        {"1,2,3", 9, 0, {1, 2, 3}},
        {"1,2,3", 2, 0, {1, 2}},
        {"1;2", 9, 0, {1, 2}},
        {"1,2,", 9, -1, {1, 2}},
        {"1,2,", 2, 0, {1, 2}},
        {"1,x,3", 9, -1, {1}},
        {"1,,3", 9, -1, {1}},
        {"x", 9, -1, {}},
        {"", 9, -1, {}},
        {"1, 2,\t3", 9, 0, {1, 2, 3}},
        {"1 ,2", 9, -1, {1}},
        {"1 2", 9, 0, {1, 2}},
        {"1x2", 9, 0, {1, 2}},
        {"1-2", 9, 0, {1, 2}},
        {"-.5,+1.,.25e1", 9, 0, {-0.5, 1, 2.5}},
        {"1e,2", 9, -1, {1}},
        {"1e+5,2D-1", 9, 0, {1e5, 0.2}},
        {"1.2.3", 9, 0, {1.2, 3}},
        {".", 9, -1, {}},
        {"-,1", 9, -1, {}},
        {"0x10", 9, 0, {0, 10}},
        {"inf", 9, -1, {}},
        {"1,5,2,5", 9, 0, {1, 5, 2, 5}},
        {"1,2", 0, -1, {}},
        {"1,2", -1, -1, {}},
        {"_TheDefault_", 9, -1, {}},
        {"1e999", 9, 0, {HUGE_VAL}},
    };
    for (const auto& [text, capacity, result, values] : cases) {
        SCOPED_TRACE(text);
        put(text);
        std::vector<double> read(10, -7);
        int count = capacity;
        EXPECT_EQ(mini_read_doubles(h, "s", "k", read.data(), &count), result);
        EXPECT_EQ(count, result == 0 ? static_cast<int>(values.size()) : capacity);
        std::vector<double> expected = values;
        expected.resize(10, -7);
        EXPECT_EQ(read, expected);
    }
}

TEST_F(Mini, WritesValuesAndKeepsTheNeighbours) {
    const double inf = std::numeric_limits<double>::infinity();
    const std::pair<std::vector<double>, const char*> lists[] = {
        {{3.0, 0.25}, "3,0.250000"},
        {{-0.0, -2.0, -0.5}, "0,-2,-0.500000"},
        {{2147483647.0, -2147483648.0}, "2147483647,-2147483648"},
        {{2147483648.0, -1e300, inf}, "-2147483648,-2147483648,-2147483648"},
        {{2147483648.5, 1e-9, 0.0000005, 0.9999999}, "2147483648.500000,0.000000,0.000000,1.000000"},
        {{std::nan("")}, "nan"},
        {{}, ""},
    };
    for (const auto& [values, text] : lists) {
        put("old");
        const double* data = values.empty() ? &inf : values.data();
        EXPECT_EQ(mini_write_doubles(h, "s", "k", data, static_cast<int>(values.size())), 0);
        EXPECT_EQ(read_file(path), "[r]\r\nk=other\r\n[s]\r\na=1\r\nk=" + std::string(text) + "\r\nz=2\r\n");
    }
    EXPECT_EQ(mini_write_doubles(h, "s", "k", &inf, -1), -1);
    EXPECT_EQ(mini_write_long(h, "s", "k", LONG_MIN), 0);
    EXPECT_EQ(stored(), "-2147483648");
    EXPECT_EQ(mini_write_double(h, "s", "k", 1e20), 0);
    EXPECT_EQ(stored(), "1e+20");
    EXPECT_EQ(mini_write_string(h, "new", "k", "text"), 0);
    EXPECT_NE(read_file(path).find("[new]\r\nk=text\r\n"), std::string::npos);
    EXPECT_EQ(mini_write_string(h, "s", "k", ""), 0);
    EXPECT_EQ(read_file(path).find("[r]\r\nk=other\r\n[s]\r\na=1\r\nk=\r\nz=2\r\n"), 0u);
}

TEST_F(Mini, FillStylesAreTenNumbers) {
    // The five-decimal rounding of value1 to value3 leaves a last bit: they are written with decimals.
    const MiniFillStyle fill = {3, 7, 0x00030201, 255, 0x00FF8000, 12};
    put("old");
    EXPECT_EQ(mini_write_fillstyle(h, "s", "k", &fill), 0);
    EXPECT_EQ(stored(), "3,7.000000,1,2,3,255.000000,0,128,255,12.000000");
    MiniFillStyle read_back;
    EXPECT_EQ(read(mini_read_fillstyle, stored(), read_back), 0);
    EXPECT_EQ(std::memcmp(&read_back, &fill, sizeof fill), 0);

    const struct {
        const char* list;
        MiniFillStyle fill;
    } cases[] = {
        {"1,2,3,4,5,6,7,8,9,10,11", {1, 2, 0x050403, 6, 0x090807, 10}},
        {"1.9,2.9,3.9,4,5,6.9,7,8,9.9,10.9", {1, 2, 0x050403, 6, 0x090807, 10}},
        {"257,4294967295,256,-1,511,256,0,0,0,-1", {1, 0x80000000, 0x00FFFF00, 0, 0, 255}},
        {"1,-1,3", {1, 0xFFFFFFFF, 3, 0, 0, 0}},
    };
    for (const auto& [list, expected] : cases) {
        EXPECT_EQ(read(mini_read_fillstyle, list, read_back), 0) << list;
        EXPECT_EQ(std::memcmp(&read_back, &expected, sizeof expected), 0) << list;
    }
    for (const char* broken : {"1,2,x", "", "1,2,3,4,5,6,7,8,9,"}) {
        EXPECT_EQ(read(mini_read_fillstyle, broken, read_back), -1) << broken;
        EXPECT_EQ(read_back.type, 0xEE) << "untouched";
    }
}

TEST_F(Mini, ExtendedFillStylesHaveAGuidKey) {
    const MiniFillStyleEx fill = {{1, 0, 0, 0, 0, 0},
                                  {0x0123ABCD, 0x45EF, 0x6789, {1, 2, 3, 4, 5, 6, 7, 0xFE}}};
    const char guid[] = "{0123ABCD-45EF-6789-0102-0304050607FE}";
    EXPECT_EQ(mini_write_fillstyle_ex(h, "s", "k", &fill), 0);
    EXPECT_EQ(stored("kGUID"), guid);
    EXPECT_EQ(stored("k"), "1,0,0,0,0,0,0,0,0,0");

    const std::pair<std::string, int> texts[] = {
        {guid, 0},
        {"{0123abcd-45ef-6789-0102-0304050607fe}", 0},
        {"0123ABCD-45EF-6789-0102-0304050607FE", -1},
        {"{0123ABCD-45EF-6789-0102-0304050607F}", -1},
        {"{0123ABCD-45EF-6789-0102-0304050607FE}x", -1},
        {"{0123ABCG-45EF-6789-0102-0304050607FE}", -1},
        {"StdFont", -1},
        {"", -1},
    };
    MiniFillStyleEx read_back;
    for (const auto& [text, result] : texts) {
        WritePrivateProfileStringA("s", "kguid", text.c_str(), path.c_str());
        std::memset(&read_back, 0xEE, sizeof read_back);
        EXPECT_EQ(mini_read_fillstyle_ex(h, "s", "k", &read_back), result) << text;
        if (result == 0)
            EXPECT_EQ(std::memcmp(&read_back, &fill, sizeof fill), 0) << text;
        else
            EXPECT_EQ(read_back.fill.type, 0xEE) << text;
    }
    WritePrivateProfileStringA("s", "kguid", nullptr, path.c_str());
    EXPECT_EQ(mini_read_fillstyle_ex(h, "s", "k", &read_back), -1);

    const std::string longest(250, 'k'), longer(251, 'k');
    EXPECT_EQ(mini_write_fillstyle_ex(h, "s", longest.c_str(), &fill), 0);
    EXPECT_EQ(stored(longest + "GUID"), guid);
    EXPECT_EQ(mini_read_fillstyle_ex(h, "s", longest.c_str(), &read_back), 0);
    EXPECT_EQ(mini_write_fillstyle_ex(h, "s", longer.c_str(), &fill), -1);
    EXPECT_EQ(stored(longer), "1,0,0,0,0,0,0,0,0,0") << "the numbers are written first";
    EXPECT_EQ(stored(longer + "GUID"), "");
    WritePrivateProfileStringA("s", (longer + "GUID").c_str(), guid, path.c_str());
    EXPECT_EQ(mini_read_fillstyle_ex(h, "s", longer.c_str(), &read_back), -1);
}

TEST_F(Mini, PenStylesAreFiveNumbers) {
    const struct {
        MiniPenStyle pen;
        const char *written, *scaled;
    } cases[] = {
        {{-2, 0.25f, 0x000064C8}, "-2,0.250000,200,100,0", "-2,0.250000,1,0,0"},
        {{5, 0.123456f, 0xFF807FFF}, "5,0.123460,255,127,128", "5,0.123460,1,0,1"},
        {{1, 3.0f, 0}, "1,3.000000,0,0,0", "1,3.000000,0,0,0"}, // rounded, it has a last bit too many
        {{1, 5.0f, 0}, "1,5,0,0,0", "1,5,0,0,0"},
        {{0, 1e30f, 0}, "0,-2147483648,0,0,0", "0,-2147483648,0,0,0"},
    };
    for (const auto& [pen, written, scaled] : cases) {
        EXPECT_EQ(mini_write_penstyle(h, "s", "k", &pen), 0);
        EXPECT_EQ(stored(), written);
        EXPECT_EQ(mini_write_penstyleEX(h, "s", "k", &pen), 0);
        EXPECT_EQ(stored(), scaled);
    }
    MiniPenStyle pen;
    EXPECT_EQ(read(mini_read_penstyle, "-2.9,0.75,1,2,3", pen), 0);
    EXPECT_EQ(pen.style, -2);
    EXPECT_EQ(pen.width, 0.75f);
    EXPECT_EQ(pen.color, 0x030201u);
    EXPECT_EQ(read(mini_read_penstyle, "9", pen), 0);
    EXPECT_TRUE(pen.style == 9 && pen.width == 0 && pen.color == 0);
    EXPECT_EQ(read(mini_read_penstyle, "x", pen), -1);
}

TEST_F(Mini, TexturePropertiesAreThirteenNumbers) {
    const MiniTexProps texture = {2, {0.5f, 0, 0, 0, 0, 0, 0, -0.125f}, 0, -1, 0.0625f, 0};
    EXPECT_EQ(mini_write_texprops(h, "s", "k", &texture), 0);
    EXPECT_EQ(stored(), "1,0.500000,0,0,0,0,0,0,-0.125000,0,1,0.062500,0");

    MiniTexProps read_back;
    EXPECT_EQ(read(mini_read_texprops, "0.0001,1,2,3,4,5,6,7,8.5,-0.0001,0.00009,9.5,10.5", read_back), 0);
    const MiniTexProps expected = {1, {1, 2, 3, 4, 5, 6, 7, 8.5f}, 1, 0, 9.5f, 10.5f};
    EXPECT_EQ(std::memcmp(&read_back, &expected, sizeof expected), 0);
    EXPECT_EQ(read(mini_read_texprops, "7,1", read_back), 0);
    const MiniTexProps part = {1, {1, 0, 0, 0, 0, 0, 0, 0}, 0, 0, 0, 0};
    EXPECT_EQ(std::memcmp(&read_back, &part, sizeof part), 0);
    EXPECT_EQ(read(mini_read_texprops, "", read_back), -1);
}

template <class Value>
void expect_refused(int (*function)(MiniHandle, const char*, const char*, Value*), MiniHandle h) {
    std::remove_const_t<Value> value = {};
    EXPECT_EQ(function(nullptr, "s", "k", &value), -1);
    EXPECT_EQ(function(h, nullptr, "k", &value), -1);
    EXPECT_EQ(function(h, "s", nullptr, &value), -1);
    EXPECT_EQ(function(h, "s", "k", nullptr), -1);
    EXPECT_EQ(function(h, "none", "k", &value), std::is_const_v<Value> ? 0 : -1)
        << "missing, or to be written";
}

TEST_F(Mini, RefusesNullArguments) {
    expect_refused(mini_read_long, h);
    expect_refused(mini_read_double, h);
    expect_refused(mini_read_fillstyle, h);
    expect_refused(mini_read_fillstyle_ex, h);
    expect_refused(mini_read_penstyle, h);
    expect_refused(mini_read_texprops, h);
    expect_refused(mini_write_string, h);
    expect_refused(mini_write_fillstyle, h);
    expect_refused(mini_write_fillstyle_ex, h);
    expect_refused(mini_write_penstyle, h);
    expect_refused(mini_write_penstyleEX, h);
    expect_refused(mini_write_texprops, h);
    char buffer[9];
    int room = 8;
    double value = 0;
    EXPECT_EQ(mini_read_string(h, "s", "k", nullptr, &room), -1);
    EXPECT_EQ(mini_read_string(h, "s", "k", buffer, nullptr), -1);
    EXPECT_EQ(mini_read_doubles(h, "s", "k", nullptr, &room), -1);
    EXPECT_EQ(mini_read_doubles(h, "s", "k", &value, nullptr), -1);
    EXPECT_EQ(mini_write_doubles(h, "s", "k", nullptr, 0), -1);
    for (const auto& [handle, section, key] :
         {std::tuple<MiniHandle, const char*, const char*>{nullptr, "s", "k"},
          {h, nullptr, "k"},
          {h, "s", nullptr}}) {
        EXPECT_EQ(mini_write_long(handle, section, key, 1), -1);
        EXPECT_EQ(mini_write_double(handle, section, key, 1), -1);
        EXPECT_EQ(mini_write_doubles(handle, section, key, &value, 1), -1);
        EXPECT_EQ(mini_read_doubles(handle, section, key, &value, &room), -1);
        EXPECT_EQ(mini_read_string(handle, section, key, buffer, &room), -1);
    }
}

TEST_F(Mini, FailsToWriteWhatIsHeldOrGone) {
    MiniFillStyleEx fill = {};
    double value = 1;
    put("kept");
    {
        const unique_file holder(
            CreateFileA(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
        EXPECT_EQ(mini_write_long(h, "s", "k", 1), -1);
        EXPECT_EQ(mini_write_double(h, "s", "k", 1), -1);
        EXPECT_EQ(mini_write_string(h, "s", "k", "1"), -1);
        EXPECT_EQ(mini_write_doubles(h, "s", "k", &value, 1), -1);
        EXPECT_EQ(mini_write_fillstyle_ex(h, "s", "k", &fill), -1);
    }
    EXPECT_NE(read_file(path).find("k=kept"), std::string::npos);
    std::filesystem::remove(path);
    EXPECT_EQ(mini_read_double(h, "s", "k", &value), -1);
}

} // namespace
