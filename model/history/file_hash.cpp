#include "file_hash.h"

#include "file_io.h"

#include <QCryptographicHash>

#include <ctime>
#include <fcntl.h>
#include <string_view>
#include <unistd.h>
#include <zlib.h>

namespace {

std::string in_digits(const QCryptographicHash& hash) { return hash.result().toHex().toStdString(); }

QByteArrayView bytes_of(std::string_view text) { return {text.data(), static_cast<qsizetype>(text.size())}; }

// Hands the content over piece by piece. False when it cannot be read to its end.
template <class Take>
bool read_pieces(const std::string& filename, const Take& take)
{
    file_reader file(filename);
    for (std::string_view piece = file.at_hand(); !piece.empty(); piece = file.at_hand()) {
        take(piece);
        file.take(piece.size());
    }
    return file.is_open() && !file.failed();
}

}    // namespace

std::string hash_of_file(const std::string& filename)
{
    QCryptographicHash hash(QCryptographicHash::Sha256);
    const bool is_read =
        read_pieces(filename, [&hash](std::string_view piece) { hash.addData(bytes_of(piece)); });
    return is_read ? in_digits(hash) : std::string();
}

std::string hash_of_text(const std::string& text)
{
    QCryptographicHash hash(QCryptographicHash::Sha256);
    hash.addData(bytes_of(text));
    return in_digits(hash);
}

std::optional<std::string> content_of(const std::string& filename)
{
    if (::access(filename.c_str(), F_OK) != 0)
        return std::string();
    std::string content;
    const bool is_read = read_pieces(filename, [&content](std::string_view piece) { content += piece; });
    return is_read ? std::optional(std::move(content)) : std::nullopt;
}

std::string time_in_name()
{
    const std::time_t seconds = std::time(nullptr);
    std::tm utc{};
    gmtime_r(&seconds, &utc);
    char text[32];
    return {text, std::strftime(text, sizeof text, "%Y%m%dT%H%M%SZ", &utc)};
}

std::string free_name(const std::string& name, const std::string& suffix)
{
    std::string free = name + suffix;
    for (int number = 2; ::access(free.c_str(), F_OK) == 0; ++number)
        free = name + '-' + std::to_string(number) + suffix;
    return free;
}

// The copy is on disk before anything is removed.
bool put_aside_compressed(const std::string& filename, bool stays)
{
    const std::string aside = free_name(filename + '.' + time_in_name(), ".gz");
    const int fd = ::open(aside.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    const gzFile out = fd < 0 ? nullptr : gzdopen(::dup(fd), "wb");
    bool is_written = out != nullptr;
    const bool is_read =
        is_written && read_pieces(filename, [&](std::string_view piece) {
            is_written = is_written && gzwrite(out, piece.data(), static_cast<unsigned>(piece.size())) > 0;
        });
    is_written = out && gzclose(out) == Z_OK && is_written && ::fsync(fd) == 0;
    if (fd >= 0)
        ::close(fd);
    if (is_read && is_written)
        return stays || ::unlink(filename.c_str()) == 0;
    if (fd >= 0)
        ::unlink(aside.c_str());
    return false;
}
