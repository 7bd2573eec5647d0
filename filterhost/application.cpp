#include "filterhost/application.h"

#include "filterhost/host_record.h"
#include "filterhost/host_state.h"
#include "module/own_arithmetic.h"

#include <cstring>
#include <limits>
#include <new>

namespace {

// Makes a filter the current one for the length of an application, and lets go of all that was the caller's
// at its end. Buffers that an early end left with the plug-in stay in the record (kept): the next exchange
// takes them back, and writes that output into the image of its own application.
class CurrentFilter {
  public:
    explicit CurrentFilter(PSFilter_& filter) noexcept : m_filter(filter) {
        host_state().current = &filter;
        host_state().callers_arithmetic = m_arithmetic.former();
    }
    CurrentFilter(const CurrentFilter&) = delete;
    CurrentFilter& operator=(const CurrentFilter&) = delete;
    ~CurrentFilter() {
        m_filter.input_image = nullptr;
        m_filter.output_image = nullptr;
        m_filter.progress = nullptr;
        m_filter.callback_context = nullptr;
        host_state().current = nullptr;
    }

  private:
    const ArithmeticIn m_arithmetic{ArithmeticState::own()};
    PSFilter_& m_filter;
};

// Four bytes for each byte of the image (kept: callers size their own copies by it); null when there is no
// memory for it, or the image's size makes no sense.
std::int32_t* allocate_output(int height, int row_bytes) {
    if (height < 0 || row_bytes < 0) return nullptr;
    const auto elements = std::uint64_t{static_cast<unsigned>(height)} * static_cast<unsigned>(row_bytes);
    if (elements > std::numeric_limits<std::ptrdiff_t>::max() / sizeof(std::int32_t)) return nullptr;
    return new (std::nothrow) std::int32_t[static_cast<std::size_t>(elements)];
}

int call_keeping_result(PSFilter_& filter, ps::Selector selector) {
    const ArithmeticIn plugins(ArithmeticState::own()); // whatever it sets ends with the call
    filter.entry_point(selector, &filter.record, &filter.filter_data, &filter.result);
    return filter.result;
}

int call(PSFilter_& filter, ps::Selector selector) {
    filter.result = ps::result_ok;
    return call_keeping_result(filter, selector);
}

int ask_for_parameters(PSFilter_& filter) {
    if (!filter.prepared) prepare_record(filter);
    // Kept: the result is what the plug-in's last call left, unless this one writes it.
    const int code = call_keeping_result(filter, ps::selector_parameters);
    filter.saved_parameters = filter.record.parameters;
    return code;
}

int prepare(PSFilter_& filter, const Application& application, std::byte* output) {
    if (!filter.prepared) prepare_record(filter);
    filter.input_image = application.image;
    filter.source_row_bytes = application.row_bytes;
    filter.output_image = output;
    filter.width = application.width;
    filter.height = application.height;
    filter.progress = application.progress;
    filter.callback_context = application.context;
    filter.progress_fraction = 0;
    filter.aborted = false;
    describe_image(filter);
    filter.record.parameters = filter.saved_parameters;
    return call(filter, ps::selector_prepare);
}

bool wants_data(const ps::FilterRecord& record) {
    return is_non_empty(record.inRect) || is_non_empty(record.outRect) ||
           (record.haveMask && is_non_empty(record.maskRect));
}

// Kept: an error while continuing brings the finish call, is not reported, and the loop goes on as long as
// the plug-in asks for data; after a normal end there is no finish call.
int run(PSFilter_& filter) {
    if (const int code = call(filter, ps::selector_start); code != ps::result_ok) return code;
    while (wants_data(filter.record)) {
        exchange_buffers(filter);
        if (call(filter, ps::selector_continue) != ps::result_ok) call(filter, ps::selector_finish);
    }
    exchange_buffers(filter);
    return ps::result_ok;
}

} // namespace

Outcome apply(PSFilter_& filter, const Application& application, void** output) {
    const CurrentFilter current(filter);
    std::int32_t* const copy = allocate_output(application.height, application.row_bytes);
    if (!copy) return no_memory;
    *output = copy;
    std::memcpy(copy, application.image,
                static_cast<std::size_t>(application.height) *
                    static_cast<std::size_t>(application.row_bytes));

    if (!application.repeat_last || !filter.saved_parameters)
        if (const int code = ask_for_parameters(filter); code < 0) return {code, true};
    int code = prepare(filter, application, reinterpret_cast<std::byte*>(copy));
    if (code >= 0) code = run(filter);
    return {code, true};
}
