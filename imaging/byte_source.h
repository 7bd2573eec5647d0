// Where the bytes of an image file come from: memory or a stream.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <span>
#include <vector>

class ByteSource {
  public:
    virtual ~ByteSource() = default;
    // The next bytes, as many as there are of those wanted; valid until the next call.
    virtual std::span<const std::uint8_t> next(std::size_t wanted) = 0;
    // Goes on at this position from the front. May lie beyond the end: then nothing more comes.
    virtual void seek(std::uint64_t position) = 0;
};

class SpanSource final : public ByteSource {
  public:
    explicit SpanSource(std::span<const std::uint8_t> bytes) : m_bytes(bytes), m_rest(bytes) {}
    std::span<const std::uint8_t> next(std::size_t wanted) override {
        const auto part = m_rest.first(wanted < m_rest.size() ? wanted : m_rest.size());
        m_rest = m_rest.subspan(part.size());
        return part;
    }
    void seek(std::uint64_t position) override {
        const std::uint64_t end = m_bytes.size();
        m_rest = m_bytes.subspan(static_cast<std::size_t>(position < end ? position : end));
    }

  private:
    std::span<const std::uint8_t> m_bytes, m_rest;
};

// Reads a stream that someone else opened and closes.
class StreamSource final : public ByteSource {
  public:
    explicit StreamSource(std::FILE* stream) : m_stream(stream) {}
    std::span<const std::uint8_t> next(std::size_t wanted) override {
        if (m_ended) return {};
        if (m_buffer.size() < wanted) m_buffer.resize(wanted);
        return {m_buffer.data(), std::fread(m_buffer.data(), 1, wanted, m_stream)};
    }
    void seek(std::uint64_t position) override {
        m_ended = position > static_cast<std::uint64_t>(std::numeric_limits<long>::max()) ||
                  std::fseek(m_stream, static_cast<long>(position), SEEK_SET) != 0;
    }

  private:
    std::FILE* m_stream;
    std::vector<std::uint8_t> m_buffer;
    bool m_ended = false;
};
