// What the host puts into a filter's record.
#pragma once

class PSFilter_;

// Fills the tables and the fields that never change, once per filter.
void prepare_record(PSFilter_& filter);

// Fills the fields that describe the image of the application that runs.
void describe_image(PSFilter_& filter);

// Takes back the buffers that the plug-in has, writing the output into the copy, and hands out the
// rectangles that it asks for next.
void exchange_buffers(PSFilter_& filter);
