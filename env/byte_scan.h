// Scans over the few bytes that matter in a long text, sixteen at a time.
#pragma once

#include <bit>
#include <cstddef>
#include <emmintrin.h>

namespace env {

// The first byte from `at` on for which `matches` holds; `end` when there is none. `matches` takes a byte
// and, as sixteen lanes, a vector of bytes, and gives all ones in each lane that matches.
template <class Matches>
const char* find_byte(const char* at, const char* end, const Matches& matches) {
    for (; end - at >= 16; at += 16) {
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(at));
        if (const int mask = _mm_movemask_epi8(matches(bytes)))
            return at + std::countr_zero(static_cast<unsigned>(mask));
    }
    while (at < end && !matches(*at))
        ++at;
    return at;
}

// The same, copying what lies before. Up to fifteen bytes more than that may be written.
template <class Matches>
const char* copy_up_to(const char* at, const char* end, char* out, const Matches& matches) {
    for (; end - at >= 16; at += 16, out += 16) {
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(at));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out), bytes);
        if (const int mask = _mm_movemask_epi8(matches(bytes)))
            return at + std::countr_zero(static_cast<unsigned>(mask));
    }
    while (at < end && !matches(*at))
        *out++ = *at++;
    return at;
}

// Matches any of the bytes.
template <char... Bytes>
struct AnyOf {
    bool operator()(char c) const { return ((c == Bytes) || ...); }
    __m128i operator()(__m128i bytes) const {
        __m128i found = _mm_setzero_si128();
        ((found = _mm_or_si128(found, _mm_cmpeq_epi8(bytes, _mm_set1_epi8(Bytes)))), ...);
        return found;
    }
};

// Matches all others.
template <char... Bytes>
struct NoneOf {
    bool operator()(char c) const { return !AnyOf<Bytes...>()(c); }
    __m128i operator()(__m128i bytes) const {
        return _mm_xor_si128(AnyOf<Bytes...>()(bytes), _mm_set1_epi8(-1));
    }
};

} // namespace env
