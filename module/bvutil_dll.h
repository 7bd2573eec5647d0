// The application object: what lives as long as the library is loaded.
#pragma once

#include "module/handles.h"

class CBvUtilDll {
  public:
    // Module start, on the loading thread.
    void init_instance();
    // Module stop.
    void exit_instance();

    // The log (BvUtil_Message and its switches).
    bool write_to_logfile = false;
    unique_stream log_stream;

    // The calculator component's interface; null means not connected. Dropped, not released, at module
    // stop: by then the component's own module may be gone.
    void* calculator = nullptr;

  private:
    bool m_com_initialised = false;
};

// The library's only application object.
CBvUtilDll& application();
