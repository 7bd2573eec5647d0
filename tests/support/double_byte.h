// Code page 932 while it lives: lead bytes 81-9F and E0-FC, with '@' and '\' among the trail bytes.
#pragma once

#ifdef _WIN32
#include <type_traits> // before the next: its macros spoil the standard header

#include <mbctype.h>

class DoubleByteCodePage {
  public:
    DoubleByteCodePage() { _setmbcp(932); }
    ~DoubleByteCodePage() { _setmbcp(m_former); }
    DoubleByteCodePage(const DoubleByteCodePage&) = delete;
    DoubleByteCodePage& operator=(const DoubleByteCodePage&) = delete;

  private:
    int m_former = _getmbcp();
};
#else
#include "tests/native/seams.h"

using DoubleByteCodePage = seams::double_byte_code_page;
#endif
