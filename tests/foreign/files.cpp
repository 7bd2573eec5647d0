#include "bvutil/fio.h"
#include "bvutil/ini_file.h"
#include "bvutil/mat_file.h"
#include "bvutil/mini.h"
#include "tests/foreign/families.h"
#include "tests/support/temp_dir.h"

#include <memory>

namespace {

void use_streams(Caller& caller) {
    FioFile* file = AT(fio_open)(caller.folder.c_str(), "data.bin", FIO_WRITE | FIO_HEADER);
    AT(fio_putchar)(file, 'a');
    AT(fio_putstring)(file, "text", 6);
    AT(fio_flush)(file);
    AT(fio_close)(file);
    file = AT(fio_open)(caller.folder.c_str(), "data.bin", FIO_READ | FIO_HEADER);
    caller.note(file->byteOrder);
    AT(fio_tell)(file);
    char c = 0, text[8] = "";
    AT(fio_getchar)(file, &c);
    AT(fio_getstring)(file, 6, text);
    caller.note(text);
    AT(fio_seek)(file, 0, 2);
    AT(fio_tell)(file);
    AT(fio_close)(file);
}

void use_values(Caller& caller, MiniHandle h) {
    long number = 0;
    AT(mini_write_long)(h, "S", "long", -5);
    AT(mini_read_long)(h, "S", "long", &number);
    double value = 0;
    AT(mini_write_double)(h, "S", "double", 2 / 3.0);
    AT(mini_read_double)(h, "S", "double", &value);
    caller.note(number, value);
    double values[4] = {1 / 3.0, 0.0000005, 1e15 + 0.3, 3};
    AT(mini_write_doubles)(h, "S", "doubles", values, 4);
    char text[128] = "";
    int length = sizeof text - 1, count = 4;
    AT(mini_read_doubles)(h, "S", "doubles", values, &count);
    caller.note(values[0], values[1], values[2], values[3]);
    AT(mini_write_string)(h, "S", "text", "0.1,1e23,9007199254740993,2.2250738585072011e-308");
    AT(mini_read_string)(h, "S", "text", text, &length);
    count = 4;
    AT(mini_read_doubles)(h, "S", "text", values, &count);
    caller.note(text, count, values[0], values[1], values[2], values[3]);
}

void use_records(Caller& caller, MiniHandle h) {
    MiniFillStyleEx fill{{3, 4000000000u, 0x00C86432, 128, 0x00010203, 7},
                         {1, 2, 3, {4, 5, 6, 7, 8, 9, 10, 11}}};
    AT(mini_write_fillstyle)(h, "R", "fill", &fill.fill);
    AT(mini_read_fillstyle)(h, "R", "fill", &fill.fill);
    AT(mini_write_fillstyle_ex)(h, "R", "fillex", &fill);
    AT(mini_read_fillstyle_ex)(h, "R", "fillex", &fill);
    caller.note_bytes(&fill, sizeof fill);
    MiniPenStyle pen{2, 0.12345678f, 0x0080FF01};
    AT(mini_write_penstyle)(h, "R", "pen", &pen);
    AT(mini_write_penstyleEX)(h, "R", "penex", &pen);
    AT(mini_read_penstyle)(h, "R", "pen", &pen);
    caller.note(pen.width, pen.color);
    MiniTexProps texture{1, {0.1f, 0.2f, 0.3f, 1.000005f, -2.5f, 1e-5f, 12345.678f, 0}, 0, 1, 0.7f, 1 / 3.0f};
    AT(mini_write_texprops)(h, "R", "texture", &texture);
    AT(mini_read_texprops)(h, "R", "texture", &texture);
    for (const float value : texture.values)
        caller.note(value);
}

// The exported classes' names, as this compiler spells them.
#define STRING "RKNSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEE"
#define INI(member) "_ZN10CBvIniFile" member
#define MAT(member) "_ZN10CBvMatFile" member

// An object that a constructor of the library made, and that its destructor ends.
template <class Class>
class Object {
  public:
    template <class... Arguments>
    Object(Caller& caller, const char* constructor, const char* destructor, Arguments... arguments)
        : m_caller(caller), m_destructor(destructor) {
        caller.member<void>(constructor, m_place, arguments...);
    }
    ~Object() { m_caller.member<void>(m_destructor, m_place); }
    Object(const Object&) = delete;
    Object& operator=(const Object&) = delete;
    template <class Result, class... Arguments>
    Result call(const char* name, Arguments... arguments) {
        return m_caller.member<Result>(name, m_place, arguments...);
    }
    const void* get() const { return m_place; }

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
    call(&place.text);
    caller.note(place.text);
}

void use_ini_file(Caller& caller, const std::string& path) {
    const std::string section = "C", key = "key", text = "text", number = "number", real = "real";
    using Text = const std::string*;
    Object<CBvIniFile> file(caller, INI("C1E" STRING "j"), INI("D1Ev"), &path, 1u);
    Object<CBvIniFile> other(caller, INI("C2Ev"), INI("D2Ev"));
    file.call<bool>(INI("4OpenE" STRING "j"), &text, 1u);
    file.call<bool>(INI("11WriteStringE" STRING "S7_S7_"), &section, &key, &text);
    file.call<bool>(INI("8WriteIntE" STRING "S7_i"), &section, &number, -7);
    file.call<bool>(INI("11WriteDoubleE" STRING "S7_d"), &section, &real, 2 / 3.0);
    other.call<const void*>(INI("aSERKS_"), file.get());
    Object<CBvIniFile> copy(caller, INI("C1ERKS_"), INI("D1Ev"), other.get());
    Object<CBvIniFile> second(caller, INI("C2ERKS_"), INI("D1Ev"), other.get());
    // The place of the result goes where the object goes otherwise, and the object to the stack.
    note_returned(caller, [&](void* out) {
        caller.member<const void*>(INI("10ReadStringE" STRING "S7_"), out, copy.get(), &section, &key);
    });
    copy.call<int>(INI("7ReadIntE" STRING "S7_"), &section, &number);
    copy.call<double>(INI("10ReadDoubleE" STRING "S7_"), &section, &real);
    copy.call<void>(INI("5CloseEv"));
    Object<CBvIniFile> third(caller, INI("C2E" STRING "j"), INI("D1Ev"), &path, 1u);
    Object<CBvIniFile> fourth(caller, INI("C1Ev"), INI("D1Ev"));

    caller.at<bool(Text, Text, Text, Text)>(INI("15FileWriteStringE" STRING "S7_S7_S7_"))(&path, &section,
                                                                                          &key, &text);
    caller.at<bool(Text, Text, Text, int)>(INI("12FileWriteIntE" STRING "S7_S7_i"))(&path, &section, &number,
                                                                                    8);
    caller.at<bool(Text, Text, Text, double)>(INI("15FileWriteDoubleE" STRING "S7_S7_d"))(&path, &section,
                                                                                          &real, 1e20 / 3);
    caller.at<int(Text, Text, Text)>(INI("11FileReadIntE" STRING "S7_S7_"))(&path, &section, &number);
    caller.at<double(Text, Text, Text)>(INI("14FileReadDoubleE" STRING "S7_S7_"))(&path, &section, &real);
    note_returned(caller, [&](void* out) {
        caller.at<const void*(void*, Text, Text, Text)>(INI("14FileReadStringE" STRING "S7_S7_"))(
            out, &path, &section, &real);
    });
    void* const deleted = ::operator new(sizeof(CBvIniFile));
    caller.member<void>(INI("C1Ev"), deleted);
    caller.member<void>(INI("D0Ev"), deleted);
}

void use_mat_file(Caller& caller, const std::string& path) {
    write_file(path, "[Material]\r\nName=Glas\r\n[Glas]\r\nkdiffus=0.1\r\nkambient=0.7\r\nOe=7\r\n"
                     "RGBDiffus=0.1,0.2,0.3\r\nRGBSpiegel=\r\n");
    Object<CBvMatFile> file(caller, MAT("C1E" STRING), MAT("D1Ev"), &path);
    Object<CBvMatFile> other(caller, MAT("C2Ev"), MAT("D2Ev"));
    other.call<const void*>(MAT("aSERKS_"), file.get());
    Object<CBvMatFile> copy(caller, MAT("C1ERKS_"), MAT("D1Ev"), other.get());
    Object<CBvMatFile> second(caller, MAT("C2ERKS_"), MAT("D1Ev"), other.get());
    Object<CBvMatFile> third(caller, MAT("C2E" STRING), MAT("D1Ev"), &path);
    copy.call<int>(MAT("4ReadE" STRING), &path);
    copy.call<int>(MAT("8IsLoadedEv"));
    caller.note_bytes(copy.call<matTyp*>(MAT("14GetMaterialPtrEv")), sizeof(matTyp));
    std::string text = "Stein";
    copy.call<void>(MAT("10SetLogNameE" STRING), &text);
    copy.call<void>(MAT("18SetTestTexturePathE" STRING), &text);
    copy.call<int>(MAT("5WriteE" STRING), &path);
    copy.call<int>(MAT("5WriteEv"));
    // Of a reference that is not to a constant, the name lacks the K.
    copy.call<void>(MAT("10GetLogNameERNSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEE"), &text);
    caller.note(text);
    copy.call<void>(MAT("18GetTestTexturePathERNSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEE"), &text);
    caller.note(text);
    caller.note_file(path);
    void* const deleted = ::operator new(sizeof(CBvMatFile));
    caller.member<void>(MAT("C1Ev"), deleted);
    caller.member<void>(MAT("D0Ev"), deleted);
}

} // namespace

void use_files(Caller& caller) {
    use_streams(caller);
    const std::string path = caller.file("values.ini");
    write_file(path, "");
    MiniHandle h = AT(mini_open)(caller.folder.c_str(), "values.ini", 0);
    use_values(caller, h);
    AT(mini_close)(&h);
    h = AT(mini_open_ex)(path.c_str(), 0);
    use_records(caller, h);
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
