// journal_writer.h - writes a journal in a thread of its own, so that nobody waits for the disk.
//
// Text is handed to the system at once, and synced to the disk every two seconds and at the end. What cannot
// be written is kept and tried again: the file is always a beginning of what was appended.
#pragma once
#include <condition_variable>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>

class journal_writer {
public:
    // Appends to the file open at this descriptor, which it closes at the end.
    explicit journal_writer(int fd);
    ~journal_writer();    // once everything is written, or cannot be
    journal_writer(const journal_writer&) = delete;
    journal_writer& operator=(const journal_writer&) = delete;

    void append(std::string_view text);

    // Waits until everything is on disk. False when that fails.
    bool sync();

    // The reason why nothing can be written at the moment; told once for each time, else "".
    [[nodiscard]] std::string take_failure();

private:
    void run();
    void write_pending(std::unique_lock<std::mutex>& lock);
    void sync_file(std::unique_lock<std::mutex>& lock);

    int _fd;
    std::mutex _mutex;
    std::condition_variable _wake;    // for the thread
    std::condition_variable _done;    // for sync()
    std::string _pending;
    bool _is_synced = true;
    bool _wants_sync = false;
    bool _is_ending = false;
    int _write_error = 0;    // of the last try, like the next
    int _sync_error = 0;
    bool _is_error_told = false;
    std::thread _thread;    // last: it uses all of the above
};
