// family.h - a handful of units that are cut, merged and linked, in a window or without one.
#pragma once
#include "temp_folder.h"
#include "units.h"

#include <QStringList>

#include <sys/stat.h>

inline QString outline_of_box(int width, int height)
{
    return QString(height, '2') + QString(width, '3') + QString(height, '0') + QString(width, '1');
}

// Units of two planes named by letters. D spans A and B of the time point before it, and C and E of the
// one after it, as W does. G is around the centre of A. M is where the right half of D starts when it is cut.
const struct {
    char letter;
    int t, x, y = 10, width = 8, height = 8;
} family[] = {{'K', 0, 10},       {'L', 0, 20},           {'A', 1, 11},         {'B', 1, 25},
              {'F', 1, 40},       {'G', 1, 12, 11, 6, 6}, {'D', 2, 11, 10, 22}, {'S', 2, 40},
              {'T', 2, 18, 30},   {'X', 2, 50, 1, 1, 1},  {'C', 3, 11},         {'E', 3, 25},
              {'W', 3, 11, 9, 22}};

template <class Base>
class FamilyIn : public Base {
public:
    template <class... Arguments>
    explicit FamilyIn(const QString& links, const QString& elite, const Arguments&... arguments)
        : Base(arguments...), _keys{{'M', keygen({32, 10, 20, 2})}}
    {
        for (const auto& [letter, t, x, y, width, height] : family) {
            std::vector<std::string> members{put_roi(*this, {x, y, 20, t}, width, height)};
            if (letter != 'X')    // a single pixel
                members.push_back(put_roi(*this, {x, y, 21, t}, width, height));
            _keys[letter] = put_unit(*this, members);
        }
        for (const QString& pair : links.split(' ', Qt::SkipEmptyParts))
            this->m_linkage_multimap.emplace(at(pair[1].toLatin1()), at(pair[0].toLatin1()));
        for (const QChar letter : elite)
            this->m_elite_head_roi_set.insert(at(letter.toLatin1()));
    }

    [[nodiscard]] const std::string& at(char letter) const { return _keys.at(letter); }

    // "AD BD": A is a parent of D, and so is B.
    [[nodiscard]] QString links() const
    {
        QStringList pairs;
        for (const auto& [child, parent] : this->m_linkage_multimap)
            pairs << named(QString::fromStdString(parent + child));
        return pairs.join(' ');
    }

    // With letters for keys.
    [[nodiscard]] QString named(QString text) const
    {
        for (const auto& [letter, key] : _keys)
            text.replace(QString::fromStdString(key), QChar(letter));
        return text;
    }

private:
    std::map<char, std::string> _keys;
};

// In place of the ROI maker: a line of its own, then it reads the mask and answers.
inline void answer_for_roimaker(const temp_folder& folder, const std::string& answer,
                                const std::string& line = {})
{
    const std::string script = folder.with(
        "script", "#!/bin/sh\n" + line +
                      "\nread w; read h\nwhile [ $h -gt 0 ]; do read row; h=$((h-1)); done\nprintf '" +
                      answer + "\\n'\n");
    ::chmod(script.c_str(), 0755);
    qputenv("ORVBROWSER_ROIMAKER", script.c_str());
}
