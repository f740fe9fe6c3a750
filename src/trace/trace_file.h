// Where a trace goes: a file in one directory, created anew and never through
// a symlink, written through a buffer, and rotated to NAME.1 in the same
// directory when it reaches its size. Only a trace this daemon wrote (its
// header says so) is ever replaced; a write that fails ends the file.
#pragma once
#include <sys/types.h>

#include <cstddef>
#include <cstdint>

namespace lynd {

constexpr size_t TRACE_DEFAULT_SIZE = 1024 * 1024;
// The most a bus call or the configuration may ask of each of the two files.
constexpr size_t TRACE_SIZE_MAX = 8 * 1024 * 1024;
constexpr size_t TRACE_PATH_MAX = 256;

// Opens dir for traces (made 0700 when missing), never following a link. A
// strict directory must also be this user's and writable by nobody else.
// Its descriptor, or -errno with *why saying what is wrong.
int trace_dir_open(const char* dir, bool strict, const char** why);

enum class TraceSlot { FREE, OURS, FOREIGN };
// What stands at name in the directory: nothing, a trace this daemon wrote
// (a regular file of this user starting with a trace header), or anything else.
TraceSlot trace_slot(int dirfd, const char* name);

// Every write of a trace file goes through this (a test puts a full disk here).
using TraceWriteFn = ssize_t (*)(int fd, const void* p, size_t n);
void trace_set_writer(TraceWriteFn fn);

class TraceFile {
public:
    TraceFile() = default;
    ~TraceFile() { close(); }
    TraceFile(const TraceFile&) = delete;
    TraceFile& operator=(const TraceFile&) = delete;

    // Creates name in the directory dirfd (taken over, closed with the file;
    // dir is its path, for messages). 0, or -errno: -EEXIST when name, or
    // NAME.1 when the file may rotate, is not a trace of this daemon.
    int open(int dirfd, const char* dir, const char* name, size_t size_limit);
    bool is_open() const { return fd_ >= 0; }
    // Appends one whole line. Lines longer than the buffer go out at once.
    void append(const char* line, size_t len);
    // A file's header: not counted against its size, so a configuration
    // larger than the size asked for still leaves room for records.
    void append_header(const char* line, size_t len);
    // True when the next line starts a fresh file after rotation (the caller
    // then writes its header, and the line again).
    bool rotated() const { return rotated_; }
    void clear_rotated() { rotated_ = false; }
    // Writes what the buffer holds; false when the file failed.
    bool flush();
    // Flushes when the buffer is well filled or a second has passed.
    void maybe_flush(int64_t now_ms);
    void close();
    const char* path() const { return path_; }
    // The errno that ended the file (0 while it goes on), and what failed.
    int failure() const { return failure_; }
    const char* failure_what() const { return failure_what_; }

private:
    bool write_all(const char* p, size_t n);
    void fail(int error, const char* what);
    void rotate();

    static constexpr size_t kBuffer = 32 * 1024;
    char buf_[kBuffer];
    size_t used_ = 0;
    int dirfd_ = -1;
    int fd_ = -1;
    size_t written_ = 0;  // bytes in the current file, buffer included
    size_t on_disk_ = 0;  // of them, written to the file
    size_t limit_ = TRACE_DEFAULT_SIZE;
    int64_t flushed_ms_ = 0;
    bool rotated_ = false;
    int failure_ = 0;
    const char* failure_what_ = "";
    char name_[TRACE_PATH_MAX] = {};
    char path_[TRACE_PATH_MAX] = {};
};

}  // namespace lynd
