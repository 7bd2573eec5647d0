// A calculator that answers as the test scripts it and records every call. It is a bare table of functions,
// so that each one's position and arguments are held against the interface and not against a declaration.
#pragma once

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <string>
#include <utility>
#include <vector>
#include <windows.h>

#include <objbase.h>
#include <oleauto.h>

struct CalculatorServer {
    // The script.
    HRESULT factory_result = S_OK; // when one of the first three fails, a pointer without reference is stored
    HRESULT create_result = S_OK;
    HRESULT query_result = S_OK;
    HRESULT call_result = S_OK;
    LONG code = 0x1000;
    double number = 0;
    const wchar_t* text = L""; // null: a null BSTR

    // The record.
    std::vector<std::string> calls; // "position arguments"
    std::wstring received;          // the last text that came in
    LONG object_references = 0;
    LONG factory_references = 0;

    CalculatorServer() {
        std::fill(m_methods + 3, m_methods + 17, entry(foreign));
        const void* const own[] = {entry(init), entry(expression), entry(error), entry(to_double),
                                   entry(to_string)};
        std::copy(std::begin(own), std::end(own), m_methods + 17);
    }
    CalculatorServer(const CalculatorServer&) = delete;
    CalculatorServer& operator=(const CalculatorServer&) = delete;

    std::vector<std::string> take_calls() { return std::exchange(calls, {}); }

    // Registers the class for this process while it lives.
    class Registration {
      public:
        explicit Registration(CalculatorServer& server) {
            CoRegisterClassObject(class_id, reinterpret_cast<IUnknown*>(&server.m_factory),
                                  CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &m_cookie);
        }
        ~Registration() { CoRevokeClassObject(m_cookie); }
        Registration(const Registration&) = delete;
        Registration& operator=(const Registration&) = delete;

      private:
        DWORD m_cookie = 0;
    };

  private:
    struct Facet {
        const void* const* table;
        CalculatorServer* server;
    };
    static constexpr IID interface_id = {
        0x9464C5B0, 0xCAB6, 0x4093, {0xA2, 0x1D, 0x45, 0x72, 0xA1, 0xB7, 0x51, 0x3E}};
    static constexpr CLSID class_id = {
        0x9BA593B7, 0x2640, 0x493B, {0xAA, 0x8A, 0xB3, 0xD9, 0x17, 0x23, 0x37, 0xC1}};

    template <class... Values>
    HRESULT record(const char* format, Values... values) {
        char line[128];
        std::snprintf(line, sizeof line, format, values...);
        calls.push_back(line);
        return call_result;
    }
    void answer(BSTR* out) const { *out = text ? SysAllocString(text) : nullptr; }
    static HRESULT hand_out(Facet* self, void** out, HRESULT result, LONG& references) {
        *out = self;
        if (SUCCEEDED(result)) ++references;
        return result;
    }

    static HRESULT WINAPI query(Facet* self, const IID& id, void** out) {
        self->server->record(id == interface_id ? "query calculator" : "query");
        return hand_out(self, out, self->server->query_result, self->server->object_references);
    }
    static HRESULT WINAPI query_factory(Facet* self, const IID& id, void** out) {
        if (id != IID_IClassFactory && id != IID_IUnknown) return E_NOINTERFACE;
        return hand_out(self, out, self->server->factory_result, self->server->factory_references);
    }
    static HRESULT WINAPI create(Facet* self, IUnknown* outer, const IID& id, void** out) {
        CalculatorServer& server = *self->server;
        server.record(!outer && id == IID_IUnknown ? "create" : "create something else");
        return hand_out(&server.m_object, out, server.create_result, server.object_references);
    }
    template <LONG CalculatorServer::*references, LONG by>
    static ULONG WINAPI count(Facet* self) {
        return ULONG(self->server->*references += by);
    }
    static HRESULT WINAPI lock(Facet*, BOOL) { return S_OK; }
    static void WINAPI foreign(Facet* self) { self->server->record("a method of another's"); }

    static HRESULT WINAPI init(Facet* self, LONG a) { return self->server->record("17 %ld", a); }
    static HRESULT WINAPI expression(Facet* self, BSTR in, LONG a, LONG b) {
        self->server->received.assign(in, SysStringLen(in));
        return self->server->record("18 %ld %ld", a, b);
    }
    static HRESULT WINAPI error(Facet* self, LONG a, LONG b, LONG c, BSTR* out) {
        self->server->answer(out);
        return self->server->record("19 %ld %ld %ld", a, b, c);
    }
    static HRESULT WINAPI to_double(Facet* self, BSTR in, LONG a, double* out, LONG* code) {
        self->server->received.assign(in, SysStringLen(in));
        *out = self->server->number;
        *code = self->server->code;
        return self->server->record("20 %ld", a);
    }
    static HRESULT WINAPI to_string(Facet* self, double value, LONG a, LONG b, LONG c, BSTR* out,
                                    LONG* code) {
        self->server->answer(out);
        *code = self->server->code;
        return self->server->record("21 %g %ld %ld %ld", value, a, b, c);
    }

    template <class Function>
    static const void* entry(Function* function) {
        return reinterpret_cast<const void*>(function);
    }

    const void* m_methods[22] = {entry(query), entry(count<&CalculatorServer::object_references, 1>),
                                 entry(count<&CalculatorServer::object_references, -1>)};
    const void* m_factory_methods[5] = {
        entry(query_factory), entry(count<&CalculatorServer::factory_references, 1>),
        entry(count<&CalculatorServer::factory_references, -1>), entry(create), entry(lock)};
    Facet m_object = {m_methods, this};
    Facet m_factory = {m_factory_methods, this};
};
