// A plug-in without a property list and without a will of its own: tests give it both.
#include "filterhost/filter_record.h"

extern "C" {

// What the entry point does; set by the test that loaded the plug-in.
__declspec(dllexport) ps::EntryPoint scripted_behaviour = nullptr;

__declspec(dllexport) void PS_CALL
    FilterMain(std::int16_t selector, ps::FilterRecord* record, std::int32_t* data, std::int16_t* result) {
    if (scripted_behaviour) scripted_behaviour(selector, record, data, result);
}
}
