// Where a trace goes: a file that never follows a symlink, written through a
// buffer, and rotated to FILE.1 when it reaches its size.
#pragma once
#include <cstddef>
#include <cstdint>

namespace lynd {

constexpr size_t TRACE_DEFAULT_SIZE = 1024 * 1024;
constexpr size_t TRACE_PATH_MAX = 128;

class TraceFile {
public:
    ~TraceFile() { close(); }
    // Creates path anew (an old file is removed, a symlink never followed):
    // 0, or -errno.
    int open(const char* path, size_t size_limit);
    bool is_open() const { return fd_ >= 0; }
    // Appends one whole line. Returns true when the line opened a new file
    // (the caller then writes its header first). Lines longer than the
    // buffer go out at once.
    void append(const char* line, size_t len);
    // True when the next line starts a fresh file after rotation.
    bool rotated() const { return rotated_; }
    void clear_rotated() { rotated_ = false; }
    // Writes what the buffer holds; false on a write error.
    bool flush();
    // Flushes when the buffer is well filled or a second has passed.
    void maybe_flush(int64_t now_ms);
    void close();
    const char* path() const { return path_; }

private:
    bool write_all(const char* p, size_t n);
    void rotate();

    static constexpr size_t kBuffer = 32 * 1024;
    char buf_[kBuffer];
    size_t used_ = 0;
    int fd_ = -1;
    size_t written_ = 0;  // bytes in the current file, buffer included
    size_t limit_ = TRACE_DEFAULT_SIZE;
    int64_t flushed_ms_ = 0;
    bool rotated_ = false;
    char path_[TRACE_PATH_MAX] = {};
};

// Opens path for writing as a new file of this user only: -errno on failure.
int trace_create(const char* path);

}  // namespace lynd
