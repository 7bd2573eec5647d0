#include "module/multibyte.h"

#include <mbctype.h>
#include <mbstring.h>

namespace multibyte {

bool active() {
    // The runtime names a code page even when it has single bytes only; asking for its lead bytes once per
    // code page is enough.
    static int known = -1;
    static bool known_active = false;
    const int code_page = _getmbcp();
    if (code_page != known) {
        known_active = false;
        for (unsigned byte = 0x80; byte <= 0xFF; ++byte)
            known_active = known_active || _ismbblead(byte) != 0;
        known = code_page;
    }
    return known_active;
}

bool is_lead_byte(unsigned char byte) {
    return _ismbblead(byte) != 0;
}

unsigned lower_case(unsigned character) {
    return _mbctolower(character);
}

} // namespace multibyte
