// BvCalc.dll as a COM server: registration, class object, life times; and the library's client on top.
#include "bvutil/calculator.h"
#include "tests/support/calculator_registration.h"
#include "tests/support/message_boxes.h"
#include "tests/support/second_copy.h"

#include <gtest/gtest.h>

#include <objbase.h>

#include <oleauto.h>

namespace {

constexpr CLSID class_id = {0x9BA593B7, 0x2640, 0x493B, {0xAA, 0x8A, 0xB3, 0xD9, 0x17, 0x23, 0x37, 0xC1}};
constexpr IID interface_id = {0x9464C5B0, 0xCAB6, 0x4093, {0xA2, 0x1D, 0x45, 0x72, 0xA1, 0xB7, 0x51, 0x3E}};

// The component's own exports, without COM in between.
class Component {
  public:
    HRESULT call(const char* name) const { return function<HRESULT WINAPI()>(name)(); }
    HRESULT class_object(const CLSID& id, const IID& requested, void** out) const {
        const auto get = function<HRESULT WINAPI(const CLSID&, const IID&, void**)>("DllGetClassObject");
        return get(id, requested, out);
    }

  private:
    template <class Function>
    Function* function(const char* name) const {
        return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(m_module.get(), name)));
    }
    library m_module{LoadLibraryA("BvCalc.dll")};
};

std::string registered_value(HKEY root, const char* name) {
    char value[MAX_PATH] = "";
    DWORD size = sizeof value;
    const std::string key = std::string(calculator_class_key) + "\\InprocServer32";
    RegGetValueA(root, key.c_str(), name, RRF_RT_REG_SZ, nullptr, value, &size);
    return value;
}

TEST(BvCalc, RegistersItselfWhereItMayAndTakesItBack) {
    const HiddenCalculatorRegistration hidden;
    const Component component;
    char path[MAX_PATH] = "";
    GetModuleFileNameA(GetModuleHandleA("BvCalc.dll"), path, MAX_PATH);
    // A deleted key in the machine's place refuses every write.
    registry_key deleted;
    RegCreateKeyExA(HKEY_CURRENT_USER, "Software\\BvUtilDeleted", 0, nullptr, 0, KEY_ALL_ACCESS, nullptr,
                    deleted.put(), nullptr);
    RegDeleteKeyA(HKEY_CURRENT_USER, "Software\\BvUtilDeleted");
    for (const bool machine_refuses : {false, true}) {
        const HKEY place = machine_refuses ? HKEY_CURRENT_USER : HKEY_LOCAL_MACHINE;
        if (machine_refuses) RegOverridePredefKey(HKEY_LOCAL_MACHINE, deleted.get());
        EXPECT_EQ(component.call("DllRegisterServer"), S_OK);
        RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr);
        EXPECT_EQ(registered_value(place, nullptr), path);
        EXPECT_EQ(registered_value(place, "ThreadingModel"), "Apartment");
        for (const HKEY root : {HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER})
            EXPECT_EQ(key_exists(root, calculator_class_key), root == place);
        EXPECT_EQ(component.call("DllUnregisterServer"), S_OK);
        EXPECT_FALSE(key_exists(place, calculator_class_key));
    }
    EXPECT_EQ(component.call("DllUnregisterServer"), S_OK) << "nothing there is no failure";
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
    const auto can_unload = [&] { return component.call("DllCanUnloadNow"); };
    void* out = &out;
    EXPECT_EQ(component.class_object(interface_id, IID_IClassFactory, &out), CLASS_E_CLASSNOTAVAILABLE);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(component.class_object(class_id, interface_id, &out), E_NOINTERFACE);
    EXPECT_EQ(can_unload(), S_OK);

    com_ptr<IClassFactory> factory;
    com_ptr<IUnknown> object, calculator;
    ASSERT_EQ(component.class_object(class_id, IID_IClassFactory, factory.put_void()), S_OK);
    EXPECT_EQ(can_unload(), S_FALSE);
    EXPECT_EQ(factory->CreateInstance(factory.get(), IID_IUnknown, object.put_void()), CLASS_E_NOAGGREGATION);
    EXPECT_EQ(factory->CreateInstance(nullptr, IID_IDispatch, object.put_void()), E_NOINTERFACE);
    EXPECT_FALSE(object);
    ASSERT_EQ(factory->CreateInstance(nullptr, IID_IUnknown, object.put_void()), S_OK);
    factory->LockServer(TRUE);
    factory.reset();
    ASSERT_EQ(object->QueryInterface(interface_id, calculator.put_void()), S_OK);
    EXPECT_EQ(calculator.get(), object.get());
    EXPECT_EQ(object.release()->Release(), 1u);
    EXPECT_EQ(calculator.release()->Release(), 0u);
    EXPECT_EQ(can_unload(), S_FALSE) << "locked";
    ASSERT_EQ(component.class_object(class_id, IID_IClassFactory, factory.put_void()), S_OK);
    factory->LockServer(FALSE);
    factory.reset();
    EXPECT_EQ(can_unload(), S_OK);
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
    EXPECT_EQ(to_double("(2\xFC", 0, &value), 0x1001);
    EXPECT_EQ(value, 2.5);
    error(0x1004, 0, 0, text);
    EXPECT_STREQ(text, "Ung\xFCltige Option");
    error(2, 2, 0, text);
    EXPECT_STREQ(text, "3");
    EXPECT_TRUE(boxes.take().empty());
}

} // namespace
