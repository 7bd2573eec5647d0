// BvCalc.dll: the calculator as an in-process COM server.
#include "components/calculator/calculator.h"
#include "components/calculator/registration.h"

#include <atomic>
#include <new>
#include <unknwn.h>
#include <windows.h>

#include <oleauto.h> // needs windows.h before it

namespace {

constexpr CLSID class_id = {0x9BA593B7, 0x2640, 0x493B, {0xAA, 0x8A, 0xB3, 0xD9, 0x17, 0x23, 0x37, 0xC1}};
constexpr IID interface_id = {0x9464C5B0, 0xCAB6, 0x4093, {0xA2, 0x1D, 0x45, 0x72, 0xA1, 0xB7, 0x51, 0x3E}};

HMODULE the_module = nullptr;
std::atomic<LONG> module_users = 0; // objects and locks: while there are any, the module stays

// Nothing is thrown at a COM caller.
template <class Body>
HRESULT com_call(Body&& body) noexcept {
    try {
        return body();
    } catch (...) {
        return E_OUTOFMEMORY;
    }
}

static_assert(sizeof(wchar_t) == sizeof(char16_t));

std::u16string text_of(BSTR text) { // null is empty, as everywhere with BSTRs
    const auto* units = reinterpret_cast<const char16_t*>(text);
    return text ? std::u16string(units, SysStringLen(text)) : std::u16string();
}

HRESULT hand_out(const std::u16string& text, BSTR* out) {
    *out = SysAllocStringLen(reinterpret_cast<const wchar_t*>(text.data()), static_cast<UINT>(text.size()));
    return *out ? S_OK : E_OUTOFMEMORY;
}

// The method table. Positions 3 to 16 are no methods of this component: they refuse, which serves a caller
// whose method there has no arguments.
struct CalculatorMethods : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE position_3() { return E_NOTIMPL; }
    virtual HRESULT STDMETHODCALLTYPE position_4() { return E_NOTIMPL; }
    virtual HRESULT STDMETHODCALLTYPE position_5() { return E_NOTIMPL; }
    virtual HRESULT STDMETHODCALLTYPE position_6() { return E_NOTIMPL; }
    virtual HRESULT STDMETHODCALLTYPE position_7() { return E_NOTIMPL; }
    virtual HRESULT STDMETHODCALLTYPE position_8() { return E_NOTIMPL; }
    virtual HRESULT STDMETHODCALLTYPE position_9() { return E_NOTIMPL; }
    virtual HRESULT STDMETHODCALLTYPE position_10() { return E_NOTIMPL; }
    virtual HRESULT STDMETHODCALLTYPE position_11() { return E_NOTIMPL; }
    virtual HRESULT STDMETHODCALLTYPE position_12() { return E_NOTIMPL; }
    virtual HRESULT STDMETHODCALLTYPE position_13() { return E_NOTIMPL; }
    virtual HRESULT STDMETHODCALLTYPE position_14() { return E_NOTIMPL; }
    virtual HRESULT STDMETHODCALLTYPE position_15() { return E_NOTIMPL; }
    virtual HRESULT STDMETHODCALLTYPE position_16() { return E_NOTIMPL; }
    virtual HRESULT STDMETHODCALLTYPE init(LONG option) = 0;
    virtual HRESULT STDMETHODCALLTYPE expression(BSTR text, LONG angle, LONG destination) = 0;
    virtual HRESULT STDMETHODCALLTYPE error(LONG which, LONG part, LONG language, BSTR* text) = 0;
    virtual HRESULT STDMETHODCALLTYPE string_to_double(BSTR text, LONG option, double* value, LONG* code) = 0;
    virtual HRESULT STDMETHODCALLTYPE double_to_string(double value, LONG form, LONG digits, LONG flags,
                                                       BSTR* text, LONG* code) = 0;

  protected:
    ~CalculatorMethods() = default;
};

class CalculatorObject final : public CalculatorMethods {
  public:
    CalculatorObject() { ++module_users; }
    CalculatorObject(const CalculatorObject&) = delete;
    CalculatorObject& operator=(const CalculatorObject&) = delete;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** out) override {
        if (!out) return E_POINTER;
        *out = id == IID_IUnknown || id == interface_id ? this : nullptr;
        if (!*out) return E_NOINTERFACE;
        AddRef();
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++m_references; }
    ULONG STDMETHODCALLTYPE Release() override {
        const ULONG left = --m_references;
        if (left == 0) delete this;
        return left;
    }

    HRESULT STDMETHODCALLTYPE init(LONG option) override {
        return com_call([&] {
            m_calculator.init(option);
            return S_OK;
        });
    }
    HRESULT STDMETHODCALLTYPE expression(BSTR text, LONG angle, LONG destination) override {
        return com_call([&] {
            m_calculator.expression(text_of(text), angle, destination);
            return S_OK;
        });
    }
    HRESULT STDMETHODCALLTYPE error(LONG which, LONG part, LONG language, BSTR* text) override {
        if (!text) return E_POINTER;
        *text = nullptr;
        return com_call([&] { return hand_out(m_calculator.error_text(which, part, language), text); });
    }
    HRESULT STDMETHODCALLTYPE string_to_double(BSTR text, LONG option, double* value, LONG* code) override {
        if (!value || !code) return E_POINTER;
        return com_call([&] {
            *value = 0;
            *code = static_cast<LONG>(m_calculator.string_to_double(text_of(text), option, *value));
            return S_OK;
        });
    }
    HRESULT STDMETHODCALLTYPE double_to_string(double value, LONG form, LONG digits, LONG flags, BSTR* text,
                                               LONG* code) override {
        if (!text || !code) return E_POINTER;
        *text = nullptr;
        return com_call([&] {
            std::string number;
            *code = static_cast<LONG>(m_calculator.double_to_string(value, form, digits, flags, number));
            return hand_out({number.begin(), number.end()}, text);
        });
    }

  private:
    ~CalculatorObject() { --module_users; }

    std::atomic<ULONG> m_references = 1;
    Calculator m_calculator;
};

// The one class object; as long as the module.
class Factory final : public IClassFactory {
  public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** out) override {
        if (!out) return E_POINTER;
        *out = id == IID_IUnknown || id == IID_IClassFactory ? this : nullptr;
        if (!*out) return E_NOINTERFACE;
        AddRef();
        return S_OK;
    }
    // Each reference holds the module.
    ULONG STDMETHODCALLTYPE AddRef() override {
        ++module_users;
        return 2;
    }
    ULONG STDMETHODCALLTYPE Release() override {
        --module_users;
        return 1;
    }
    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID id, void** out) override {
        if (!out) return E_POINTER;
        *out = nullptr;
        if (outer) return CLASS_E_NOAGGREGATION;
        return com_call([&] {
            auto* const object = new CalculatorObject;
            const HRESULT result = object->QueryInterface(id, out);
            object->Release();
            return result;
        });
    }
    HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) override {
        module_users += lock ? 1 : -1;
        return S_OK;
    }
};

Factory the_factory;

} // namespace

STDAPI DllGetClassObject(REFCLSID id, REFIID requested, LPVOID* out) {
    if (!out) return E_POINTER;
    *out = nullptr;
    return id == class_id ? the_factory.QueryInterface(requested, out) : CLASS_E_CLASSNOTAVAILABLE;
}

STDAPI DllCanUnloadNow() {
    return module_users == 0 ? S_OK : S_FALSE;
}

STDAPI DllRegisterServer() {
    return com_call([] { return register_component(the_module); });
}

STDAPI DllUnregisterServer() {
    return com_call([] { return unregister_component(); });
}

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID) {
    if (reason == DLL_PROCESS_ATTACH) {
        the_module = instance;
        DisableThreadLibraryCalls(instance);
    }
    return TRUE;
}
