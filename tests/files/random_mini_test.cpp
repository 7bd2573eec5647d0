// Random writes, reads and deletions on a real profile file and on a model of it, whose sections and keys are
// found without regard to case and stay in the order in which they came. Answers are compared after each
// operation, the whole file now and then.
#include "bvutil/mini.h"
#include "bvutil/numeric.h"
#include "tests/support/random_runs.h"
#include "tests/support/temp_dir.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <optional>
#include <random>
#include <sstream>
#include <vector>

namespace {

// Sections of keys, or keys of texts.
template <class Value>
class Names {
  public:
    Value* find(const std::string& name) {
        const auto at = position(name);
        return at == m_all.end() ? nullptr : &at->second;
    }
    Value& made(const std::string& name) {
        if (Value* const found = find(name)) return *found;
        return m_all.emplace_back(name, Value()).second;
    }
    void remove(const std::string& name) {
        if (const auto at = position(name); at != m_all.end()) m_all.erase(at);
    }
    const auto& all() const { return m_all; }

  private:
    auto position(const std::string& name) {
        return std::find_if(m_all.begin(), m_all.end(), [&](const auto& each) {
            return _stricmp(each.first.c_str(), name.c_str()) == 0;
        });
    }
    std::vector<std::pair<std::string, Value>> m_all;
};

using Numbers = std::vector<double>;

std::string list_text(const Numbers& numbers) {
    std::string text;
    for (const double number : numbers) {
        char buffer[400];
        const bool whole = number == static_cast<double>(static_cast<long>(number));
        std::snprintf(buffer, sizeof buffer, whole ? "%.0f" : "%f", number);
        text.append(text.empty() ? "" : ",").append(buffer);
    }
    return text;
}

double rounded(double number) { // as records are; seldom whole afterwards
    return BvUtil_PRound(number, -5);
}

// Numbers with one character between them, up to so many.
std::optional<Numbers> list_numbers(const std::string& text, std::size_t most) {
    Numbers numbers;
    const char* at = text.c_str();
    for (;;) {
        char* end;
        numbers.push_back(std::strtod(at, &end));
        if (end == at) return std::nullopt;
        if (!*end || numbers.size() == most) return numbers;
        at = end + 1;
    }
}

class Runner {
  public:
    explicit Runner(unsigned seed) : m_random(seed) {
        write_file(m_path, "");
        m_handle = mini_open_ex(m_path.c_str(), 0);
    }
    ~Runner() { EXPECT_EQ(mini_close(&m_handle), 1); }
    Runner(const Runner&) = delete;
    Runner& operator=(const Runner&) = delete;

    bool step() {
        using Operation = void (Runner::*)();
        constexpr Operation operations[] = {
            &Runner::write_text,   &Runner::write_number, &Runner::write_list,  &Runner::write_pen,
            &Runner::write_fill,   &Runner::read_text,    &Runner::read_number, &Runner::read_list,
            &Runner::read_records, &Runner::read_number,  &Runner::read_text,   &Runner::remove,
        };
        m_section = std::array{"Pens", "PENS", "fill styles", "T"}[below(4)];
        m_key = std::array{"a", "A", "b", "wall 1", "aGUID", "x_y"}[below(6)];
        m_operation = below(std::size(operations));
        (this->*operations[m_operation])();
        if (below(50) == 0) compare_files();
        return !testing::Test::HasFailure();
    }
    std::string last() const { return std::to_string(m_operation) + " on [" + m_section + "] " + m_key; }

  private:
    std::size_t below(std::size_t n) { return m_random() % n; }
    double number() { // exact in six decimals, and often whole
        return static_cast<double>(static_cast<long>(below(200001)) - 100000) / (below(2) ? 8 : 1);
    }
    Numbers numbers(std::size_t count) {
        Numbers all(count);
        for (double& each : all)
            each = number();
        return all;
    }
    const char* section() const { return m_section.c_str(); }
    const char* key() const { return m_key.c_str(); }
    void store(const std::string& key, const std::string& text) { m_model.made(m_section).made(key) = text; }
    // What a read finds: 1023 bytes at most, and nothing where the marker stands.
    std::optional<std::string> stored(const std::string& key) {
        auto* const keys = m_model.find(m_section);
        const std::string* const text = keys ? keys->find(key) : nullptr;
        if (!text || *text == "_TheDefault_") return std::nullopt;
        return text->substr(0, 1023);
    }

    void write_text() {
        const std::string texts[] = {
            "",           "_TheDefault_",     "alpha beta", "1,2,",
            "3;4 5",      "; no comment = 1", "7 walls",    std::string(1000 + below(60), 'y'),
            "\xC4pfel[1]"};
        const std::string& text = texts[below(std::size(texts))];
        EXPECT_EQ(mini_write_string(m_handle, section(), key(), text.c_str()), 0);
        store(m_key, text);
    }
    void write_number() {
        const double value = number();
        char text[32];
        if (below(2)) {
            EXPECT_EQ(mini_write_long(m_handle, section(), key(), static_cast<long>(value)), 0);
            store(m_key, std::to_string(static_cast<long>(value)));
        } else {
            EXPECT_EQ(mini_write_double(m_handle, section(), key(), value), 0);
            std::snprintf(text, sizeof text, "%g", value);
            store(m_key, text);
        }
    }
    void write_list() {
        const Numbers values = numbers(below(20) ? 1 + below(6) : 200);
        EXPECT_EQ(
            mini_write_doubles(m_handle, section(), key(), values.data(), static_cast<int>(values.size())),
            0);
        store(m_key, list_text(values));
    }
    void write_pen() {
        const auto colour = static_cast<unsigned>(below(1 << 24));
        const MiniPenStyle pen{static_cast<int>(below(9)) - 4, static_cast<float>(number()), colour};
        const bool scaled = below(2); // kept: 128 and above are written as 1
        EXPECT_EQ((scaled ? mini_write_penstyleEX : mini_write_penstyle)(m_handle, section(), key(), &pen),
                  0);
        Numbers values{double(pen.style), rounded(pen.width)};
        for (const unsigned shift : {0u, 8u, 16u})
            values.push_back(scaled ? (colour >> shift & 255) / 128 : colour >> shift & 255);
        store(m_key, list_text(values));
    }
    void write_fill() {
        const auto byte = [&] { return static_cast<unsigned char>(below(256)); };
        MiniFillStyleEx fill{
            {byte(), static_cast<unsigned>(below(100000)), byte() * 0x10001u, byte(), byte() * 256u, byte()},
            {0xABCDEF00u + byte(), 0x12, 0x3456, {1, 2, 3, 4, 5, 6, 7, byte()}}};
        EXPECT_EQ(mini_write_fillstyle_ex(m_handle, section(), key(), &fill), 0);
        const auto& f = fill.fill;
        store(m_key,
              list_text({double(f.type), rounded(f.value1), double(f.color1 & 255), 0, double(f.color1 >> 16),
                         rounded(f.value2), 0, double(f.color2 >> 8), 0, rounded(f.value3)}));
        char guid[40];
        std::snprintf(guid, sizeof guid, "{%08X-0012-3456-0102-0304050607%02X}", fill.guid.data1,
                      unsigned(fill.guid.data4[7]));
        store(m_key + "GUID", guid);
    }

    void read_text() {
        const auto text = stored(m_key);
        char buffer[1100] = "";
        const auto room = static_cast<int>(below(2) ? below(8) : 1090);
        int length = room;
        EXPECT_EQ(mini_read_string(m_handle, section(), key(), buffer, &length), text ? 0 : -1);
        if (!text) return;
        EXPECT_EQ(std::string(buffer), text->substr(0, static_cast<std::size_t>(room)));
        EXPECT_EQ(length, std::min(room, static_cast<int>(text->size())));
    }
    void read_number() {
        const auto text = stored(m_key);
        long whole = -7;
        double real = -7;
        EXPECT_EQ(mini_read_long(m_handle, section(), key(), &whole), text ? 0 : -1);
        EXPECT_EQ(whole, text ? std::strtol(text->c_str(), nullptr, 10) : -7);
        const bool readable = text && !text->empty();
        EXPECT_EQ(mini_read_double(m_handle, section(), key(), &real), readable ? 0 : -1);
        EXPECT_EQ(real, readable ? std::strtod(text->c_str(), nullptr) : -7);
    }
    void read_list() {
        const auto text = stored(m_key);
        const std::size_t room = 1 + below(8);
        const auto wanted = text ? list_numbers(*text, room) : std::nullopt;
        Numbers values(room);
        auto count = static_cast<int>(room);
        EXPECT_EQ(mini_read_doubles(m_handle, section(), key(), values.data(), &count), wanted ? 0 : -1);
        if (!wanted) {
            EXPECT_EQ(count, static_cast<int>(room));
            return;
        }
        EXPECT_EQ(count, static_cast<int>(wanted->size()));
        values.resize(wanted->size());
        EXPECT_EQ(values, *wanted);
    }
    // Whatever wrote the list: a pen when it has one's numbers.
    void read_records() {
        const auto text = stored(m_key);
        const auto wanted = text ? list_numbers(*text, 5) : std::nullopt;
        MiniPenStyle pen{};
        EXPECT_EQ(mini_read_penstyle(m_handle, section(), key(), &pen), wanted ? 0 : -1);
        if (wanted && wanted->size() == 5) {
            EXPECT_EQ(pen.style, static_cast<int>((*wanted)[0]));
            EXPECT_EQ(pen.width, static_cast<float>((*wanted)[1]));
        }
        const auto fill_numbers = text ? list_numbers(*text, 10) : std::nullopt;
        const auto guid = stored(m_key + "GUID");
        MiniFillStyleEx fill{};
        EXPECT_EQ(mini_read_fillstyle_ex(m_handle, section(), key(), &fill),
                  fill_numbers && guid && guid->front() == '{' ? 0 : -1);
    }

    void remove() {
        if (below(8) == 0) {
            WritePrivateProfileStringA(section(), nullptr, nullptr, m_path.c_str());
            m_model.remove(m_section);
        } else if (auto* const keys = m_model.find(m_section)) {
            WritePrivateProfileStringA(section(), key(), nullptr, m_path.c_str());
            keys->remove(m_key);
        }
    }

    void compare_files() {
        std::string wanted, got, line;
        for (const auto& [name, keys] : m_model.all()) {
            wanted += "[" + name + "]\n";
            for (const auto& [key, text] : keys.all())
                wanted += key + "=" + text + "\n";
        }
        std::istringstream file(read_file(m_path));
        while (std::getline(file, line)) {
            if (!line.empty() && line.back() == '\r') line.pop_back();
            if (!line.empty()) got += line + "\n";
        }
        EXPECT_EQ(got, wanted);
    }

    std::mt19937 m_random;
    const TempDir m_dir;
    const std::string m_path = m_dir.file("random.ini");
    MiniHandle m_handle = nullptr;
    Names<Names<std::string>> m_model;
    std::string m_section, m_key;
    std::size_t m_operation = 0;
};

TEST(RandomProfile, AgreesWithTheModel) {
    for (const unsigned seed : random_runs::seeds(2)) {
        Runner runner(seed);
        for (long i = 0; i < random_runs::operations(5000); ++i)
            ASSERT_TRUE(runner.step()) << "seed " << seed << ", operation " << i << ": " << runner.last();
    }
}

} // namespace
