// Typed profile values and drawing records: texts on disk against values in memory, in a comma locale.
#include "bvutil/ini_file.h"
#include "bvutil/mini.h"
#include "bvutil/strings.h"
#include "module/handles.h"
#include "tests/files/comma_locale.h"
#include "tests/support/rows.h"
#include "tests/support/temp_dir.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstring>
#include <vector>

namespace {

template <class Value>
using Function = int(MiniHandle, const char*, const char*, Value*);

class Mini : public testing::Test {
  protected:
    Mini() {
        write_file(path, "");
        h = mini_open_ex(path.c_str(), 0);
    }
    ~Mini() override { EXPECT_EQ(mini_close(&h), 1); }

    // A file where the key "k" of section "s" has this value, among neighbours.
    static std::string file_with(const std::string& value) {
        return "[r]\r\nk=other\r\n[s]\r\na=1\r\nk=" + value + "\r\nz=2\r\n";
    }
    void put(const std::string& value) { write_file(path, file_with(value)); }
    std::string stored(const std::string& key = "k") {
        std::string buffer(2000, '\0');
        GetPrivateProfileStringA("s", key.c_str(), "", buffer.data(), 2000, path.c_str());
        return buffer.c_str();
    }
    // What is stored of a list that was read as a record and written again; "-" when it is refused.
    template <class Record>
    auto written_again(Function<Record>* read, Function<const Record>* write) {
        return [=, this](const std::string& list) -> std::string {
            put(list);
            Record record, untouched;
            std::memset(&record, 0xEE, sizeof record); // all of an old one must be set, or nothing
            std::memset(&untouched, 0xEE, sizeof untouched);
            if (read(h, "s", "k", &record) == 0) return written(write, record);
            EXPECT_EQ(std::memcmp(&record, &untouched, sizeof record), 0) << list;
            return "-";
        };
    }
    // The list that is stored for a record, among neighbours that stay.
    template <class Record>
    std::string written(Function<const Record>* write, const Record& record) {
        put("old");
        EXPECT_EQ(write(h, "s", "k", &record), 0);
        EXPECT_TRUE(read_file(path).starts_with(file_with(stored())));
        return stored();
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
    }
    EXPECT_FALSE(std::filesystem::exists(none));
    SetFileAttributesA(path.c_str(), FILE_ATTRIBUTE_READONLY);
    EXPECT_EQ(mini_open_ex(path.c_str(), 0), nullptr);
    MiniHandle reading = mini_open_ex(path.c_str(), 4 | 0x100);
    SetFileAttributesA(path.c_str(), FILE_ATTRIBUTE_NORMAL);
    MiniHandle joined = mini_open(dir.path().c_str(), "VALUES.ini", 0);
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
    const auto read = [&](const std::string& text) {
        put(text);
        long integer = 0;
        double number = 0;
        std::ostringstream values; // "-" for what is refused
        mini_read_long(h, "s", "k", &integer) == 0 ? values << integer : values << "-";
        mini_read_double(h, "s", "k", &number) == 0 ? values << "|" << number : values << "|-";
        return values.str();
    };
    expect_rows(read, "-12.9abc -> -12|-12.9", "abc -> 0|0", " -> 0|-", "1,5 -> 1|1", "0x10 -> 0|0",
                "99999999999 -> 2147483647|1e+11", "1e400 -> 1|-", "-1e400 -> -1|-inf",
                "_TheDefault_ -> -|-");
}

TEST_F(Mini, ReadsStringsIntoWhatRoomThereIs) {
    // "value|room": the result, the length, and what became of a buffer full of '#'.
    const auto read = [&](const std::string& row) {
        put(fields_of(row)[0]);
        std::string buffer(1100, '#');
        int length = std::stoi(fields_of(row)[1]);
        const int result = mini_read_string(h, "s", "k", buffer.data(), &length);
        std::replace(buffer.begin(), buffer.end(), '\0', '0');
        return std::to_string(result) + "|" + std::to_string(length) + "|" +
               buffer.substr(0, buffer.find('#'));
    };
    const std::string many(1023, 'v');
    expect_rows(read, "abcd|5 -> 0|4|abcd0", "abcd|4 -> 0|4|abcd0", "abcd|3 -> 0|3|abc0", "abcd|0 -> 0|0|0",
                "abcd|-1 -> -1|-1|", "|3 -> 0|0|0", "_TheDefault_|50 -> -1|50|",
                many + "|5000 -> 0|1023|" + many + "0", many + "v|5000 -> 0|1023|" + many + "0");
}

TEST_F(Mini, ReadsListsOfNumbers) {
    // The result, the count and the numbers stored in room for so many, also in front of a broken one.
    const auto read_into = [&](int room) {
        return [=, this](const std::string& list) {
            put(list);
            std::vector<double> values(10, -7);
            int count = room;
            std::ostringstream text;
            text << mini_read_doubles(h, "s", "k", values.data(), &count) << "|" << count;
            for (auto value = values.begin(); *value != -7; ++value)
                text << "|" << *value;
            return text.str();
        };
    };
    expect_rows(read_into(2), "1,2,3 -> 0|2|1|2", "1,2, -> 0|2|1|2");
    expect_rows(read_into(1), "1,x -> 0|1|1");
    expect_rows(read_into(0), "1,2 -> -1|0");
    expect_rows(read_into(-1), "1,2 -> -1|-1");
    expect_rows(read_into(9), "1;2x3-4 5 -> 0|5|1|2|3|4|5", "1,2, -> -1|9|1|2", "1,,3 -> -1|9|1", " -> -1|9",
                "1, 2,\t3 -> 0|3|1|2|3", "1 ,2 -> -1|9|1", "-.5,+1.,.25e1 -> 0|3|-0.5|1|2.5",
                "1e,2 -> -1|9|1", "1e+5,2D-1 -> 0|2|100000|0.2", "1.2.3 -> 0|2|1.2|3", ". -> -1|9",
                "-,1 -> -1|9", "0x10 -> 0|2|0|10", "inf -> -1|9", "1e999 -> 0|1|inf", "_TheDefault_ -> -1|9");
}

TEST_F(Mini, WritesValuesAndKeepsTheNeighbours) {
    const auto list = [&](const std::string& numbers) {
        std::vector<double> values;
        std::istringstream in(numbers);
        for (std::string number; in >> number;)
            values.push_back(BvUtil_StringToDouble(number.c_str()));
        put("old");
        EXPECT_EQ(mini_write_doubles(h, "s", "k", values.data(), static_cast<int>(values.size())), 0);
        EXPECT_EQ(read_file(path), file_with(stored()));
        return stored();
    };
    expect_rows(list, "3 0.25 -> 3,0.250000", "-0 -2 -0.5 -> 0,-2,-0.500000",
                "2147483647 -2147483648 -> 2147483647,-2147483648",
                "2147483648 -1e300 1e999 -> -2147483648,-2147483648,-2147483648",
                "2147483648.5 1e-9 0.0000005 0.9999999 -> 2147483648.500000,0.000000,0.000000,1.000000");
    const double nan = std::nan("");
    const auto store = [&](int result) { return result == 0 ? stored() : "-"; };
    EXPECT_EQ(store(mini_write_doubles(h, "s", "k", &nan, 1)), "nan");
    EXPECT_EQ(store(mini_write_doubles(h, "s", "k", &nan, -1)), "-");
    EXPECT_EQ(store(mini_write_doubles(h, "s", "k", &nan, 0)), "");
    EXPECT_EQ(store(mini_write_long(h, "s", "k", LONG_MIN)), "-2147483648");
    EXPECT_EQ(store(mini_write_double(h, "s", "k", 1e20)), "1e+20");
    EXPECT_EQ(store(mini_write_string(h, "s", "k", "")), "");
}

TEST_F(Mini, RecordsAreListsOfNumbers) {
    // The five-decimal rounding of value1 to value3 leaves a last bit: they are written with decimals.
    const MiniFillStyle fill = {3, 7, 0x00030201, 255, 0x00FF8000, 12};
    EXPECT_EQ(written(mini_write_fillstyle, fill), "3,7.000000,1,2,3,255.000000,0,128,255,12.000000");
    expect_rows(written_again(mini_read_fillstyle, mini_write_fillstyle),
                "1,2,3,4,5,6,7,8,9,10,11 -> 1,2,3,4,5,6.000000,7,8,9,10",
                "1.9,2.9,3.9,4,5,6.9,7,8,9.9,10.9 -> 1,2,3,4,5,6.000000,7,8,9,10",
                "257,4294967295,256,-1,511,256,0,0,0,-1 -> 1,-2147483648,0,255,255,0,0,0,0,255.000000",
                "1,-1,3 -> 1,4294967295.000000,3,0,0,0,0,0,0,0", "1,2,x -> -", " -> -",
                "1,2,3,4,5,6,7,8,9, -> -");

    const struct {
        MiniPenStyle pen;
        const char *list, *scaled;
    } pens[] = {
        {{-2, 0.25f, 0x000064C8}, "-2,0.250000,200,100,0", "-2,0.250000,1,0,0"},
        {{5, 0.123456f, 0xFF807FFF}, "5,0.123460,255,127,128", "5,0.123460,1,0,1"},
        {{1, 3.0f, 0}, "1,3.000000,0,0,0", "1,3.000000,0,0,0"}, // rounded, it has a last bit too many
        {{1, 5.0f, 0}, "1,5,0,0,0", "1,5,0,0,0"},
        {{0, 1e30f, 0}, "0,-2147483648,0,0,0", "0,-2147483648,0,0,0"},
    };
    for (const auto& [pen, list, scaled] : pens) {
        EXPECT_EQ(written(mini_write_penstyle, pen), list);
        EXPECT_EQ(written(mini_write_penstyleEX, pen), scaled);
    }
    expect_rows(written_again(mini_read_penstyle, mini_write_penstyle),
                "-2.9,0.75,1,2,3 -> -2,0.750000,1,2,3", "9 -> 9,0,0,0,0", "x -> -");

    const MiniTexProps texture = {2, {0.5f, 0, 0, 0, 0, 0, 0, -0.125f}, 0, -1, 0.0625f, 0};
    EXPECT_EQ(written(mini_write_texprops, texture), "1,0.500000,0,0,0,0,0,0,-0.125000,0,1,0.062500,0");
    expect_rows(written_again(mini_read_texprops, mini_write_texprops),
                "0.0001,1,2,3.5,4,5,6,7,8.5,-0.0001,0.00009,9.5,10.5 -> "
                "1,1,2,3.500000,4,5,6.000000,7.000000,8.500000,1,0,9.500000,10.500000",
                "7,1 -> 1,1,0,0,0,0,0,0,0,0,0,0,0", "0.00009 -> 0,0,0,0,0,0,0,0,0,0,0,0,0", " -> -");
}

TEST_F(Mini, ExtendedFillStylesHaveAGuidKey) {
    const MiniFillStyleEx fill = {{1, 0, 0, 0, 0, 0},
                                  {0x0123ABCD, 0x45EF, 0x6789, {1, 2, 3, 4, 5, 6, 7, 0xFE}}};
    const std::string guid = "{0123ABCD-45EF-6789-0102-0304050607FE}", numbers = "1,0,0,0,0,0,0,0,0,0";
    const std::string longest(250, 'k'), longer(251, 'k');
    for (const auto& [key, result] : {std::pair{std::string("k"), 0}, {longest, 0}, {longer, -1}}) {
        EXPECT_EQ(mini_write_fillstyle_ex(h, "s", key.c_str(), &fill), result);
        EXPECT_EQ(stored(key), numbers) << "they are written first";
        EXPECT_EQ(stored(key + "GUID"), result == 0 ? guid : "");
        WritePrivateProfileStringA("s", (key + "GUID").c_str(), guid.c_str(), path.c_str());
        MiniFillStyleEx read_back;
        EXPECT_EQ(mini_read_fillstyle_ex(h, "s", key.c_str(), &read_back), result);
    }
    const auto read = written_again(mini_read_fillstyle_ex, mini_write_fillstyle_ex);
    const auto guid_again = [&](const std::string& text) {
        return read(numbers + "\r\nkguid=" + text) == "-" ? "-" : stored("kGUID");
    };
    expect_rows(guid_again, guid + " -> " + guid, "{0123abcd-45ef-6789-0102-0304050607fe} -> " + guid,
                "0123ABCD-45EF-6789-0102-0304050607FE -> -", "{0123ABCD-45EF-6789-0102-0304050607F} -> -",
                "{0123ABCD-45EF-6789-0102-0304050607FE}x -> -", "{0123ABCG-45EF-6789-0102-0304050607FE} -> -",
                "StdFont -> -", " -> -");
    EXPECT_EQ(read(numbers), "-");
}

// The functions of all records alike.
template <class Value>
void expect_refused(MiniHandle h, Function<Value>* function) {
    std::remove_const_t<Value> value = {};
    EXPECT_EQ(function(nullptr, "s", "k", &value), -1);
    EXPECT_EQ(function(h, nullptr, "k", &value), -1);
    EXPECT_EQ(function(h, "s", nullptr, &value), -1);
    EXPECT_EQ(function(h, "s", "k", nullptr), -1);
    EXPECT_EQ(function(h, "none", "k", &value), std::is_const_v<Value> ? 0 : -1)
        << "missing, or to be written";
}

TEST_F(Mini, RefusesNullArguments) {
    const auto expect_all_refused = [&](auto*... functions) { (expect_refused(h, functions), ...); };
    expect_all_refused(mini_read_long, mini_read_double, mini_read_fillstyle, mini_read_fillstyle_ex,
                       mini_read_penstyle, mini_read_texprops, mini_write_string, mini_write_fillstyle,
                       mini_write_fillstyle_ex, mini_write_penstyle, mini_write_penstyleEX,
                       mini_write_texprops);
    char buffer[9];
    int room = 8;
    double value = 0;
    for (const int result :
         {mini_read_string(h, "s", "k", nullptr, &room), mini_read_string(h, "s", "k", buffer, nullptr),
          mini_read_doubles(h, "s", "k", nullptr, &room), mini_read_doubles(h, "s", "k", &value, nullptr),
          mini_write_doubles(h, "s", "k", nullptr, 0), mini_write_doubles(h, "s", nullptr, &value, 1),
          mini_write_long(nullptr, "s", "k", 1), mini_write_double(h, nullptr, "k", 1)})
        EXPECT_EQ(result, -1);
}

TEST_F(Mini, FailsToWriteWhatIsHeldOrGone) {
    const MiniFillStyleEx fill = {};
    double value = 1;
    put("kept");
    unique_file holder(CreateFileA(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    for (const int result : {mini_write_string(h, "s", "k", "1"), mini_write_double(h, "s", "k", 1),
                             mini_write_fillstyle_ex(h, "s", "k", &fill)})
        EXPECT_EQ(result, -1);
    EXPECT_FALSE(CBvIniFile::FileWriteInt(path, "s", "k", 1));
    holder.reset();
    EXPECT_EQ(read_file(path), file_with("kept"));
    std::filesystem::remove(path);
    EXPECT_EQ(mini_read_double(h, "s", "k", &value), -1);
}

} // namespace
