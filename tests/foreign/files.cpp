#include "bvutil/fio.h"
#include "bvutil/ini_file.h"
#include "bvutil/mat_file.h"
#include "bvutil/mini.h"
#include "tests/foreign/families.h"
#include "tests/support/temp_dir.h"

namespace {

void use_streams(Caller& caller) {
    FioFile* file = AT(fio_open)(caller.folder.c_str(), "data.bin", FIO_WRITE | FIO_HEADER);
    AT(fio_putchar)(file, 'a');
    AT(fio_putstring)(file, "text", 6);
    AT(fio_flush)(file);
    AT(fio_close)(file);
    file = AT(fio_open)(caller.folder.c_str(), "data.bin", FIO_READ | FIO_HEADER);
    if (file) caller.note(file->byteOrder);
    AT(fio_tell)(file);
    char text[8] = "";
    AT(fio_getchar)(file, text);
    AT(fio_getstring)(file, 6, text);
    AT(fio_seek)(file, 0, 2);
    AT(fio_tell)(file);
    AT(fio_close)(file);
}

void use_values(Caller& caller, MiniHandle h) {
    const std::string long_key(40, 'k');
    const char* const key = long_key.c_str();
    long number = 0;
    AT(mini_write_long)(h, "S", key, -5);
    AT(mini_read_long)(h, "S", key, &number);
    double value = 0, values[4] = {1 / 3.0, 0.0000005, 1e15 + 0.3, 3};
    AT(mini_write_double)(h, "S", "double", 2 / 3.0);
    AT(mini_read_double)(h, "S", "double", &value);
    AT(mini_write_doubles)(h, "S", "doubles", values, 4);
    AT(mini_write_string)(h, "S", "text", "0.1,1e23,9007199254740993,2.2250738585072011e-308");
    char text[128] = "";
    int length = sizeof text - 1, count = 4;
    AT(mini_read_string)(h, "S", "text", text, &length);
    for (const char* list : {"doubles", "text"}) {
        AT(mini_read_doubles)(h, "S", list, values, &count);
        caller.note(values[1], values[2], values[3]);
    }
}

void use_records(Caller& caller, MiniHandle h) {
    MiniFillStyleEx fill{{3, 4000000000u, 0x00C86432, 128, 0x00010203, 7},
                         {1, 2, 3, {4, 5, 6, 7, 8, 9, 10, 11}}};
    AT(mini_write_fillstyle)(h, "R", "fill", &fill.fill);
    AT(mini_read_fillstyle)(h, "R", "fill", &fill.fill);
    caller.written_file.clear(); // what follows is two writes
    AT(mini_write_fillstyle_ex)(h, "R", "fillex", &fill);
    AT(mini_read_fillstyle_ex)(h, "R", "fillex", &fill);
    caller.note_bytes(&fill, sizeof fill);
    MiniPenStyle pen{2, 0.12345678f, 0x0080FF01};
    AT(mini_write_penstyle)(h, "R", "pen", &pen);
    AT(mini_write_penstyleEX)(h, "R", "penex", &pen);
    AT(mini_read_penstyle)(h, "R", "pen", &pen);
    caller.note_bytes(&pen, sizeof pen);
    MiniTexProps texture{1, {0.1f, 0.2f, 0.3f, 1.000005f, -2.5f, 1e-5f, 12345.678f, 0}, 0, 1, 0.7f, 1 / 3.0f};
    AT(mini_write_texprops)(h, "R", "texture", &texture);
    AT(mini_read_texprops)(h, "R", "texture", &texture);
    caller.note_bytes(&texture, sizeof texture);
}

// The exported classes' names, as this compiler spells them.
#define STRING "RKNSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEE"
#define INI(member) "_ZN10CBvIniFile" member
#define MAT(member) "_ZN10CBvMatFile" member

// An object that a constructor of the library makes, and that a destructor ends.
template <class Class>
class Object {
  public:
    template <class... Arguments>
    Object(Caller& caller, const char* constructor, const char* destructor, Arguments... arguments)
        : m_caller(caller), m_destructor(destructor) {
        caller.restart = [&] { caller.member<void>(m_destructor, m_place); };
        caller.member<void>(constructor, m_place, arguments...);
    }
    ~Object() { m_caller.member<void>(m_destructor, m_place); }
    Object(const Object&) = delete;
    Object& operator=(const Object&) = delete;
    template <class Result, class... Arguments>
    Result call(const char* name, Arguments... arguments) {
        return m_caller.member<Result>(name, m_place, arguments...);
    }
    operator const void*() const { return m_place; }

  private:
    Caller& m_caller;
    const char* m_destructor;
    alignas(Class) char m_place[sizeof(Class)];
};

// A function that returns a string makes it in a place that its caller tells.
template <class Call>
void note_returned(Caller& caller, Call&& call) {
    union Place {
        Place() {}
        ~Place() { text.~basic_string(); }
        std::string text;
    } place;
    call(static_cast<void*>(&place.text));
    caller.note(place.text);
}

void use_ini_file(Caller& caller, const std::string& path) {
    const std::string section = "a section that is long", key = "key", text = "text", number = "number",
                      real = "real";
    using Text = const std::string*;
    const Text values[] = {&path, &section, &key, &text, &number, &real};
    const auto [p, s, k, t, n, r] = values;
    Object<CBvIniFile> file(caller, INI("C1E" STRING "j"), INI("D1Ev"), p, 1u),
        other(caller, INI("C2Ev"), INI("D2Ev"));
    file.call<bool>(INI("4OpenE" STRING "j"), t, 1u);
    file.call<bool>(INI("11WriteStringE" STRING "S7_S7_"), s, k, t);
    file.call<bool>(INI("8WriteIntE" STRING "S7_i"), s, n, -7);
    file.call<bool>(INI("11WriteDoubleE" STRING "S7_d"), s, r, 2 / 3.0);
    other.call<const void*>(INI("aSERKS_"), static_cast<const void*>(file));
    Object<CBvIniFile> copy(caller, INI("C1ERKS_"), INI("D1Ev"), static_cast<const void*>(other)),
        second(caller, INI("C2ERKS_"), INI("D1Ev"), static_cast<const void*>(other)),
        third(caller, INI("C2E" STRING "j"), INI("D1Ev"), p, 1u), fourth(caller, INI("C1Ev"), INI("D1Ev"));
    // The place of the result goes where the object goes otherwise, and the object to the stack.
    note_returned(caller, [&](void* out) {
        caller.member<const void*>(INI("10ReadStringE" STRING "S7_"), out, static_cast<const void*>(copy), s,
                                   k);
    });
    copy.call<int>(INI("7ReadIntE" STRING "S7_"), s, n);
    copy.call<double>(INI("10ReadDoubleE" STRING "S7_"), s, r);
    copy.call<void>(INI("5CloseEv"));

    caller.at<bool(Text, Text, Text, Text)>(INI("15FileWriteStringE" STRING "S7_S7_S7_"))(p, s, k, t);
    caller.at<bool(Text, Text, Text, int)>(INI("12FileWriteIntE" STRING "S7_S7_i"))(p, s, n, 8);
    caller.at<bool(Text, Text, Text, double)>(INI("15FileWriteDoubleE" STRING "S7_S7_d"))(p, s, r, 1e20 / 3);
    caller.at<int(Text, Text, Text)>(INI("11FileReadIntE" STRING "S7_S7_"))(p, s, n);
    caller.at<double(Text, Text, Text)>(INI("14FileReadDoubleE" STRING "S7_S7_"))(p, s, r);
    note_returned(caller, [&, p = p, s = s, r = r](void* out) {
        caller.at<void*(void*, Text, Text, Text)>(INI("14FileReadStringE" STRING "S7_S7_"))(out, p, s, r);
    });
    void* const deleted = ::operator new(sizeof(CBvIniFile));
    caller.member<void>(INI("C1Ev"), deleted);
    caller.member<void>(INI("D0Ev"), deleted);
}

void use_mat_file(Caller& caller, const std::string& path) {
    write_file(path, "[Material]\r\nName=the name of the material\r\n[the name of the material]\r\n"
                     "kdiffus=0.1\r\nkambient=0.7\r\nOe=7\r\nTesttextur=a texture in some folder.bmp\r\n"
                     "RGBDiffus=0.1,0.2,0.3\r\nRGBSpiegel=\r\n");
    const std::string* const p = &path;
    Object<CBvMatFile> file(caller, MAT("C1E" STRING), MAT("D1Ev"), p),
        other(caller, MAT("C2Ev"), MAT("D2Ev"));
    other.call<const void*>(MAT("aSERKS_"), static_cast<const void*>(file));
    Object<CBvMatFile> copy(caller, MAT("C1ERKS_"), MAT("D1Ev"), static_cast<const void*>(other)),
        second(caller, MAT("C2ERKS_"), MAT("D1Ev"), static_cast<const void*>(other)),
        third(caller, MAT("C2E" STRING), MAT("D1Ev"), p), fourth(caller, MAT("C1Ev"), MAT("D1Ev"));
    copy.call<int>(MAT("5WriteEv"));
    caller.note_file(path);
    copy.call<int>(MAT("4ReadE" STRING), p);
    copy.call<int>(MAT("8IsLoadedEv"));
    if (const auto* material = copy.call<matTyp*>(MAT("14GetMaterialPtrEv")))
        caller.note_bytes(material, sizeof *material);
    std::string text = "Stein";
    copy.call<void>(MAT("10SetLogNameE" STRING), &text);
    copy.call<void>(MAT("18SetTestTexturePathE" STRING), &text);
    copy.call<int>(MAT("5WriteE" STRING), p);
    // Of a reference that is not to a constant, the name lacks the K.
    for (const char* name :
         {MAT("10GetLogNameERNSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEE"),
          MAT("18GetTestTexturePathERNSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEE")}) {
        copy.call<void>(name, &text);
        caller.note(text);
    }
    caller.note_file(path);
    void* const deleted = ::operator new(sizeof(CBvMatFile));
    caller.member<void>(MAT("C1Ev"), deleted);
    caller.member<void>(MAT("D0Ev"), deleted);
}

} // namespace

void use_files(Caller& caller) {
    use_streams(caller);
    const std::string path = caller.file("values of a name that is long.ini");
    write_file(path, "");
    caller.written_file = path;
    MiniHandle h = AT(mini_open)(caller.folder.c_str(), "values of a name that is long.ini", 0);
    use_values(caller, h);
    use_records(caller, h);
    AT(mini_close)(&h);
    h = AT(mini_open_ex)(path.c_str(), 0);
    AT(mini_close)(&h);
    caller.note_file(path);
}

void use_classes(Caller& caller) {
    const std::string ini = caller.file("classes.ini");
    write_file(ini, "");
    use_ini_file(caller, ini);
    caller.note_file(ini);
    use_mat_file(caller, caller.file("material.mat"));
}
