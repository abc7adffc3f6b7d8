// What a step of the curation names: read from its lines, as the journal has them.
#include "keygen.h"
#include "unit_scene.h"

#include <algorithm>

#include <charconv>
#include <sstream>

namespace {

std::vector<std::string> words_of(std::string_view line)
{
    std::vector<std::string> words;
    while (!line.empty()) {
        const std::size_t end = std::min(line.find(' '), line.size());
        words.push_back(plain_word(line.substr(0, end)));
        line.remove_prefix(std::min(end + 1, line.size()));
    }
    return words;
}

int number_in(const std::string& word)
{
    int value = 0;
    std::from_chars(word.data(), word.data() + word.size(), value);
    return value;
}

void take_roi(const std::vector<std::string>& words, int sign, scene_changes& changes)
{
    const pos4i at(number_in(words[1]), number_in(words[2]), number_in(words[3]), number_in(words[4]));
    changes.rois.insert(keygen(at));
    changes.planes[at.z()] += sign;
}

void take_note(const std::string& note, scene_changes& changes)
{
    std::istringstream text(note);
    for (std::string word; text >> word;)
        if (is_roi_key(word)) {
            changes.relinked.insert(word);
            changes.rois.insert(word);    // a dismissal may be of an ROI in no unit
        }
}

void take(std::string_view line, bool forth, scene_changes& changes)
{
    const int sign = (line.front() == '+') == forth ? 1 : -1;
    const std::vector<std::string> words = words_of(line.substr(1));
    const std::string& kind = words.front();
    if (kind == name_of(change_kind::roi) && words.size() > 4)
        take_roi(words, sign, changes);
    else if (words.size() < 2)
        return;
    else if (kind == name_of(change_kind::unit))
        changes.reshaped.insert(words[1]);
    else if (kind == name_of(change_kind::head) || kind == name_of(change_kind::false_positive))
        changes.rois.insert(words[1]);
    else if (kind == name_of(change_kind::link))
        changes.relinked.insert({words[1], words[2]});
    else if (kind == name_of(change_kind::elite))
        changes.relinked.insert(words[1]);
    else if (kind == name_of(change_kind::note))
        take_note(words[1], changes);
    else if (kind == name_of(change_kind::scale))
        changes.is_everything = true;
}

}    // namespace

scene_changes changes_in(const edit_step& step, bool forth)
{
    scene_changes changes;
    std::string_view text = step.changes();
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        if (end > 1)
            take(text.substr(0, end), forth, changes);
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return changes;
}
