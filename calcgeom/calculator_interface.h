// The calculator component as COM sees it.
#pragma once

#include <unknwn.h>
#include <windows.h>

#include <oleauto.h> // needs windows.h before it

// {9BA593B7-2640-493B-AA8A-B3D9172337C1}
inline constexpr CLSID calculator_class_id = {
    0x9BA593B7, 0x2640, 0x493B, {0xAA, 0x8A, 0xB3, 0xD9, 0x17, 0x23, 0x37, 0xC1}};

// {9464C5B0-CAB6-4093-A21D-4572A1B7513E}
inline constexpr IID calculator_interface_id = {
    0x9464C5B0, 0xCAB6, 0x4093, {0xA2, 0x1D, 0x45, 0x72, 0xA1, 0xB7, 0x51, 0x3E}};

// Result codes that the library itself knows; all others are the calculator's own.
enum CalculatorCode : LONG { calculator_success = 0x1000, calculator_not_reachable = 0x1006 };

// The method table. Positions 3 to 16 belong to the component: their arguments are unknown here, and they are
// never called.
struct ICalculator : public IUnknown {
    virtual void position_3() = 0;
    virtual void position_4() = 0;
    virtual void position_5() = 0;
    virtual void position_6() = 0;
    virtual void position_7() = 0;
    virtual void position_8() = 0;
    virtual void position_9() = 0;
    virtual void position_10() = 0;
    virtual void position_11() = 0;
    virtual void position_12() = 0;
    virtual void position_13() = 0;
    virtual void position_14() = 0;
    virtual void position_15() = 0;
    virtual void position_16() = 0;

    // Positions 17 to 21. Texts handed out are the caller's, also when the call fails; they may be null.
    virtual HRESULT STDMETHODCALLTYPE init(LONG option) = 0;
    virtual HRESULT STDMETHODCALLTYPE expression(BSTR text, LONG option1, LONG option2) = 0;
    virtual HRESULT STDMETHODCALLTYPE error(LONG option1, LONG option2, LONG option3, BSTR* text) = 0;
    virtual HRESULT STDMETHODCALLTYPE string_to_double(BSTR text, LONG option, double* value, LONG* code) = 0;
    virtual HRESULT STDMETHODCALLTYPE double_to_string(double value, LONG option1, LONG option2, LONG option3,
                                                       BSTR* text, LONG* code) = 0;

  protected:
    ~ICalculator() = default;
};
