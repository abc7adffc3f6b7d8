// ImageDB.h - the cache of images around the time point in use.
#pragma once
#include <QPixmap>
#include <QString>

#include <map>
#include <string>

class ImageDB {
public:
    // The image of focal plane z at time point t, read from the file `name` when it is not cached. A
    // null pixmap, not cached, when that fails: "Cannot find " and the name on standard error.
    // Reading one drops the images outside time points t - cache_time to t + cache_time - 1, but for
    // focal plane 0 of t + cache_time.
    QPixmap img(int t, int z, const QString& name, int cache_time);

    // The cached image; null when there is none.
    [[nodiscard]] const QPixmap* cached(int t, int z) const;

    std::map<std::string, QPixmap> db;    // plane key, with x = y = 0, to image

private:
    void drop_outside(const std::string& key_min, const std::string& key_max);
};
