#include "ImageDB.h"

#include "keygen.h"

#include <iostream>

QPixmap ImageDB::img(int t, int z, const QString& name, int cache_time)
{
    const std::string key = keygen(pos4i(0, 0, z, t));
    if (const auto found = db.find(key); found != db.end())
        return found->second;
    const QPixmap image(name);
    if (image.isNull()) {
        std::cerr << "Cannot find " << name.toStdString() << std::endl;
        return {};
    }
    drop_outside(keygen(pos4i(0, 0, 0, t - cache_time)), keygen(pos4i(0, 0, 0, t + cache_time)));
    db.emplace(key, image);
    return image;
}

void ImageDB::drop_outside(const std::string& key_min, const std::string& key_max)
{
    std::erase_if(db, [&](const auto& entry) { return entry.first < key_min || entry.first > key_max; });
}
