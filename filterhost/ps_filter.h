// An opened filter plug-in: its module, what its property list said, and what an application needs.
#pragma once

#include "bvutil/filter_host.h"
#include "filterhost/filter_record.h"
#include "module/handles.h"

#include <memory>

// Callers hold it as an opaque pointer, but their compilers may delete it themselves: the table of virtual
// operations has the form that they agree on, the deleting destructor alone.
class PSFilter_ final {
  public:
    // Loads the plug-in and looks for a usable property list. On success the category and the name receive
    // the object's own arrays and the error 0; else the first two are left alone and the error receives the
    // thread's last error.
    PSFilter_(const char* file_name, char** category_out, char** name_out, int* error_out);
    PSFilter_(const PSFilter_&) = delete;
    PSFilter_& operator=(const PSFilter_&) = delete;

    // Slot 0. Ends the object, and releases its memory when the lowest bit of `flags` is set, as that of
    // every delete expression is. Returns the object's address.
    virtual void* __thiscall destroy(unsigned flags) noexcept;

    // Takes the property list with this resource name, unless one was taken before.
    void consider_property_list(HMODULE handed_over, const char* resource_name);

  private:
    ~PSFilter_() = default;

  public:
    ps::FilterRecord record{};
    std::int32_t filter_data = 0; // the plug-in's own word
    library module;               // ends after everything that the plug-in may still look at
    ps::EntryPoint entry_point = nullptr;
    bool found = false; // a property list was taken
    std::unique_ptr<char[]> category;
    std::unique_ptr<char[]> name;
};
