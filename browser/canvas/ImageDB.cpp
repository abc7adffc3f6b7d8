#include "ImageDB.h"

#include "error_line.h"
#include "keygen.h"

const QPixmap* ImageDB::cached(int t, int z) const
{
    const auto found = db.find(keygen(pos4i(0, 0, z, t)));
    return found == db.end() ? nullptr : &found->second;
}

QPixmap ImageDB::img(int t, int z, const QString& name, int cache_time)
{
    if (const QPixmap* const image = cached(t, z))
        return *image;
    const QPixmap image(name);
    if (image.isNull()) {
        error_line("Cannot find ", name.toStdString());
        return {};
    }
    // Where keys end, at 999, so does the window.
    drop_outside(time_key(t - cache_time), end_of_time_point(t + cache_time - 1));
    db.emplace(keygen(pos4i(0, 0, z, t)), image);
    return image;
}

void ImageDB::drop_outside(const std::string& key_min, const std::string& key_max)
{
    std::erase_if(db, [&](const auto& entry) { return entry.first < key_min || entry.first > key_max; });
}
