#include "calcgeom/calculator_connection.h"

#include "module/bvutil_dll.h"
#include "module/handles.h"
#include "module/module_instance.h"
#include "module/resource.h"

#include <objbase.h>

namespace {

constexpr DWORD server_kinds = CLSCTX_INPROC_SERVER | CLSCTX_LOCAL_SERVER | CLSCTX_REMOTE_SERVER;

// What a failed call stored is not a reference.
template <class Interface>
void keep_if(HRESULT result, com_ptr<Interface>& stored) {
    if (FAILED(result)) stored.release();
}

com_ptr<IUnknown> create_calculator() {
    com_ptr<IClassFactory> factory;
    com_ptr<IUnknown> object;
    keep_if(
        CoGetClassObject(calculator_class_id, server_kinds, nullptr, IID_IClassFactory, factory.put_void()),
        factory);
    if (factory) keep_if(factory->CreateInstance(nullptr, IID_IUnknown, object.put_void()), object);
    return object;
}

void connect(void*& connection) {
    const com_ptr<IUnknown> object = create_calculator();
    if (object && FAILED(object->QueryInterface(calculator_interface_id, &connection))) connection = nullptr;
}

} // namespace

ICalculator* connected_calculator() {
    void*& connection = application().calculator;
    if (!connection) connect(connection);
    if (!connection) message_box(IDS_NO_CALCULATOR);
    return static_cast<ICalculator*>(connection);
}
