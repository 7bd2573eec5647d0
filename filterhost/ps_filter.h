// An opened filter plug-in: its module, what its property list said, and what an application of it needs.
#pragma once

#include "bvutil/filter_host.h"
#include "filterhost/filter_record.h"
#include "filterhost/pixel_exchange.h"
#include "module/handles.h"

#include <memory>

// Where a buffer lies that the plug-in got through a pointer in its record. From then on the record owns it:
// the plug-in may free it or keep it, and leave null or another allocated block there instead.
struct Loan {
    std::byte* start = nullptr;
    std::size_t size = 0;

    // Whether the record still has it; a pointer that was moved along over the samples counts.
    bool has(const void* in_record) const noexcept {
        const auto offset =
            reinterpret_cast<std::uintptr_t>(in_record) - reinterpret_cast<std::uintptr_t>(start);
        return start && offset <= size;
    }
};

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
    ~PSFilter_();

  public:
    // Of the application that runs: the caller's pixels, and the copy that receives the result. Null between
    // applications, as is the callback.
    const std::byte* input_image = nullptr;
    std::int32_t source_row_bytes = 0;
    std::byte* output_image = nullptr;
    AVPSFilterProgress progress = nullptr;
    float progress_fraction = 0;
    void* callback_context = nullptr;
    bool aborted = false;

    ps::FilterRecord record{};
    std::int32_t filter_data = 0; // the plug-in's own word
    library module;
    ps::EntryPoint entry_point = nullptr;
    bool prepared = false; // the tables and the fixed fields of the record are filled
    bool found = false;    // a property list was taken
    ps::Handle saved_parameters = nullptr;
    std::unique_ptr<char[]> category;
    std::unique_ptr<char[]> name;
    Tile handed_out; // what the output buffer holds

    std::int32_t width = 0;
    std::int32_t height = 0;
    Loan input_loan;
    Loan output_loan;
    ps::BufferProcs buffer_procs{};
    ps::HandleProcs handle_procs{};
    std::int16_t result = 0; // where the plug-in leaves the result of each call
};
