// Files read and replaced as a whole, so that a failure loses nothing.
#pragma once

#include <string>
#include <string_view>

// What Windows says of an error code, without a line end.
std::string system_message(unsigned long error);

// All bytes of a file. Throws CommandFailed (exit_io_error) when it is a folder or a device, or cannot be
// read.
std::string read_whole_file(const std::string& path);

bool file_exists(const std::string& path);

// Copies a file to "<path>.bak", over a former copy. Throws CommandFailed.
void back_up(const std::string& path);

// A file's new content: written to a temporary file beside it, which replaces it when all is done. Until then
// the file stands as it was; without replace() nothing remains. Every failure throws CommandFailed.
class ReplacementFile {
  public:
    explicit ReplacementFile(const std::string& target);
    ~ReplacementFile();
    ReplacementFile(const ReplacementFile&) = delete;
    ReplacementFile& operator=(const ReplacementFile&) = delete;

    // Where the new content is until it replaces the old.
    const std::string& path() const { return m_path; }
    // Keeps the first failure for close(): a callback of the library must not throw.
    void put(std::string_view bytes) noexcept;
    // Brings everything to the disk.
    void close();
    void replace();

  private:
    [[noreturn]] void fail(unsigned long error) const;
    void flush() noexcept;

    static constexpr std::size_t capacity = 64 * 1024;

    std::string m_target;
    std::string m_path;
    std::string m_buffer;
    void* m_file;
    unsigned long m_error = 0;
};
