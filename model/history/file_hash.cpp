#include "file_hash.h"

#include "file_io.h"

#include <QCryptographicHash>

#include <ctime>
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

std::string content_of(const std::string& filename)
{
    std::string content;
    const bool is_read = read_pieces(filename, [&content](std::string_view piece) { content += piece; });
    return is_read ? content : std::string();
}

std::string time_in_name()
{
    const std::time_t seconds = std::time(nullptr);
    std::tm utc{};
    gmtime_r(&seconds, &utc);
    char text[32];
    return {text, std::strftime(text, sizeof text, "%Y%m%dT%H%M%SZ", &utc)};
}

bool put_aside_compressed(const std::string& filename)
{
    const std::string aside = filename + '.' + time_in_name() + ".gz";
    const gzFile out = gzopen(aside.c_str(), "wbx");    // never in place of another
    if (!out)
        return false;
    bool is_written = true;
    const bool is_read = read_pieces(filename, [&](std::string_view piece) {
        is_written = is_written && gzwrite(out, piece.data(), static_cast<unsigned>(piece.size())) > 0;
    });
    is_written = gzclose(out) == Z_OK && is_written;
    if (is_read && is_written)
        return ::unlink(filename.c_str()) == 0;
    ::unlink(aside.c_str());
    return false;
}
