// BvCalc.dll as a COM server: registration, class object, life times; and the library's client on top.
#include "bvutil/calculator.h"
#include "tests/support/calculator_registration.h"
#include "tests/support/message_boxes.h"
#include "tests/support/second_copy.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <objbase.h>
#include <optional>

#include <oleauto.h>

namespace {

constexpr CLSID class_id = {0x9BA593B7, 0x2640, 0x493B, {0xAA, 0x8A, 0xB3, 0xD9, 0x17, 0x23, 0x37, 0xC1}};
constexpr IID interface_id = {0x9464C5B0, 0xCAB6, 0x4093, {0xA2, 0x1D, 0x45, 0x72, 0xA1, 0xB7, 0x51, 0x3E}};

// The component's own exports, without COM in between.
class Component {
  public:
    Component() : m_module(LoadLibraryA("BvCalc.dll")) {}
    ~Component() { FreeLibrary(m_module); }
    Component(const Component&) = delete;
    Component& operator=(const Component&) = delete;

    HRESULT call(const char* name) const { return function<HRESULT WINAPI()>(name)(); }
    HRESULT class_object(const CLSID& id, const IID& requested, void** out) const {
        return function<HRESULT WINAPI(const CLSID&, const IID&, void**)>("DllGetClassObject")(id, requested,
                                                                                               out);
    }

  private:
    template <class Function>
    Function* function(const char* name) const {
        return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(m_module, name)));
    }
    HMODULE m_module;
};

std::string registered_value(HKEY root, const char* name) {
    char value[MAX_PATH] = "";
    DWORD size = sizeof value;
    const std::string key = std::string(calculator_class_key) + "\\InprocServer32";
    RegGetValueA(root, key.c_str(), name, RRF_RT_REG_SZ, nullptr, value, &size);
    return value;
}

TEST(BvCalc, RegistersItselfForTheMachineAndTakesItBack) {
    const HiddenCalculatorRegistration hidden;
    const Component component;
    ASSERT_EQ(component.call("DllRegisterServer"), S_OK);
    char path[MAX_PATH] = "";
    GetModuleFileNameA(GetModuleHandleA("BvCalc.dll"), path, MAX_PATH);
    EXPECT_EQ(registered_value(HKEY_LOCAL_MACHINE, nullptr), path);
    EXPECT_EQ(registered_value(HKEY_LOCAL_MACHINE, "ThreadingModel"), "Apartment");
    EXPECT_FALSE(key_exists(HKEY_CURRENT_USER, calculator_class_key));
    EXPECT_EQ(component.call("DllUnregisterServer"), S_OK);
    EXPECT_FALSE(key_exists(HKEY_LOCAL_MACHINE, calculator_class_key));
    EXPECT_EQ(component.call("DllUnregisterServer"), S_OK) << "nothing there is no failure";
}

TEST(BvCalc, RegistersForTheUserWhereTheMachineRefuses) {
    const HiddenCalculatorRegistration hidden;
    const Component component;
    // A deleted key in the machine's place refuses every write.
    HKEY deleted = nullptr;
    RegCreateKeyExA(HKEY_CURRENT_USER, "Software\\BvUtilDeleted", 0, nullptr, 0, KEY_ALL_ACCESS, nullptr,
                    &deleted, nullptr);
    RegDeleteKeyA(HKEY_CURRENT_USER, "Software\\BvUtilDeleted");
    RegOverridePredefKey(HKEY_LOCAL_MACHINE, deleted);
    const HRESULT result = component.call("DllRegisterServer");
    RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr);
    RegCloseKey(deleted);
    EXPECT_EQ(result, S_OK);
    EXPECT_FALSE(key_exists(HKEY_LOCAL_MACHINE, calculator_class_key));
    EXPECT_NE(registered_value(HKEY_CURRENT_USER, nullptr), "");
    EXPECT_EQ(component.call("DllUnregisterServer"), S_OK);
    EXPECT_FALSE(key_exists(HKEY_CURRENT_USER, calculator_class_key));
}

TEST(BvCalc, LeavesAnotherCalculatorsRegistration) {
    const HiddenCalculatorRegistration hidden;
    const Component component;
    for (const HKEY root : {HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER}) {
        const char description[] = "Another calculator";
        RegSetKeyValueA(root, calculator_class_key, nullptr, REG_SZ, description, sizeof description);
        EXPECT_EQ(component.call("DllUnregisterServer"), S_OK);
        EXPECT_TRUE(key_exists(root, calculator_class_key));
    }
}

TEST(BvCalc, CountsWhatKeepsItLoaded) {
    const Component component;
    void* out = &out;
    EXPECT_EQ(component.class_object(interface_id, IID_IClassFactory, &out), CLASS_E_CLASSNOTAVAILABLE);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(component.class_object(class_id, interface_id, &out), E_NOINTERFACE);
    EXPECT_EQ(component.call("DllCanUnloadNow"), S_OK);

    IClassFactory* factory = nullptr;
    ASSERT_EQ(component.class_object(class_id, IID_IClassFactory, reinterpret_cast<void**>(&factory)), S_OK);
    EXPECT_EQ(component.call("DllCanUnloadNow"), S_FALSE);
    IUnknown* object = nullptr;
    EXPECT_EQ(factory->CreateInstance(factory, IID_IUnknown, reinterpret_cast<void**>(&object)),
              CLASS_E_NOAGGREGATION);
    EXPECT_EQ(factory->CreateInstance(nullptr, IID_IDispatch, reinterpret_cast<void**>(&object)),
              E_NOINTERFACE);
    EXPECT_EQ(object, nullptr);
    ASSERT_EQ(factory->CreateInstance(nullptr, IID_IUnknown, reinterpret_cast<void**>(&object)), S_OK);
    factory->LockServer(TRUE);
    factory->Release();
    IUnknown* calculator = nullptr;
    ASSERT_EQ(object->QueryInterface(interface_id, reinterpret_cast<void**>(&calculator)), S_OK);
    EXPECT_EQ(calculator, object);
    EXPECT_EQ(object->Release(), 1u);
    EXPECT_EQ(calculator->Release(), 0u);
    EXPECT_EQ(component.call("DllCanUnloadNow"), S_FALSE) << "locked";
    ASSERT_EQ(component.class_object(class_id, IID_IClassFactory, reinterpret_cast<void**>(&factory)), S_OK);
    factory->LockServer(FALSE);
    factory->Release();
    EXPECT_EQ(component.call("DllCanUnloadNow"), S_OK);
}

TEST(BvCalc, ServesTheLibrary) {
    const HiddenCalculatorRegistration hidden;
    const Component component;
    ASSERT_EQ(component.call("DllRegisterServer"), S_OK);
    const SecondCopy library; // without a connection
    MessageBoxWatcher boxes;
    const auto init = library.function<decltype(calc_init)>("calc_init");
    const auto expression = library.function<decltype(calc_expression)>("calc_expression");
    const auto error = library.function<decltype(calc_error)>("calc_error");
    const auto to_double = library.function<decltype(ConvStringToDouble)>("ConvStringToDouble");
    const auto to_string = library.function<decltype(ConvDoubleToString)>("ConvDoubleToString");

    init(0x10);
    expression("w = 2,5; w * sin(30)", 0, 3);
    double value = 0;
    EXPECT_EQ(to_double("r3 + ans", 0, &value), CALC_SUCCESS);
    EXPECT_EQ(value, 2.5);
    char text[128] = "kept";
    EXPECT_EQ(to_string(value, 3, 16, 0, text), CALC_SUCCESS);
    EXPECT_STREQ(text, "2 1/2");
    EXPECT_EQ(to_string(-value, 1, 2, 0, text), CALC_SUCCESS);
    EXPECT_STREQ(text, "-2,50");
    EXPECT_EQ(to_double("(2\xFC", 0, &value), 0x1001);
    EXPECT_EQ(value, 2.5);
    error(2, 0, 0, text);
    EXPECT_STREQ(text, "Syntaxfehler an Stelle 3");
    error(0x1004, 0, 0, text);
    EXPECT_STREQ(text, "Ung\xFCltige Option");
    expression("", 0, 0);
    error(1, 3, 0, text);
    EXPECT_STREQ(text, "4098");
    EXPECT_TRUE(boxes.take().empty());
}

} // namespace
